// One record per open drawing.
#pragma once

#include <map>
#include <utility>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/Reports/Failures.h"

namespace OrvLib {

/// Keeps a `Record` by value for every open document, made on first access and dropped before the host destroys the
/// document. `Record` has `attachTo(AcApDocument&)`, called for the current document whenever one is opened or becomes
/// active, and detaches itself when it is destroyed.
///
/// Meant as a global: it listens to the host's document manager from its construction to its destruction, except
/// between stop and start.
template <class Record>
class AsdkDataManager : public AcApDocManagerReactor {
 public:
  AsdkDataManager() { start(); }
  AsdkDataManager(const AsdkDataManager&) = delete;
  AsdkDataManager& operator=(const AsdkDataManager&) = delete;
  ~AsdkDataManager() override { stop(); }

  void start() {
    if (!isListening_) acDocManager->addReactor(this);
    isListening_ = true;
  }

  /// Drops all records: a document that closes unheard would leave its own to the next one at the same address.
  void stop() {
    if (isListening_) acDocManager->removeReactor(this);
    isListening_ = false;
    records_.clear();
  }

  /// Throws OrvExpAcad when no drawing is open.
  Record& current() {
    AcApDocument* const document = acDocManager->curDocument();
    if (document == nullptr) throw OrvExpAcad(L"Unable to open curDoc.");
    return records_[document];
  }

  /// Attaches the current document's record to it; without an open drawing there is nothing to do.
  void attachCurrent() {
    if (AcApDocument* const document = acDocManager->curDocument()) records_[document].attachTo(*document);
  }

  // The host names a document that need not be the current one yet; it comes again when it becomes active.
  void documentCreated(AcApDocument*) override {
    guarded([this] { attachCurrent(); });
  }
  void documentActivated(AcApDocument*) override {
    guarded([this] { attachCurrent(); });
  }
  void documentToBeDestroyed(AcApDocument* document) override {
    guarded([&] { records_.erase(document); });
  }

 private:
  std::map<AcApDocument*, Record> records_;
  bool isListening_ = false;
};

}  // namespace OrvLib
