// What the host tells the system about drawings and the editor.
#pragma once

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// Hangs on one document's database for as long as the document's record lives.
class DocDataReactor : public AcDbDatabaseReactor {
 public:
  /// Attaches itself when asked to and a document is given; otherwise it holds none.
  DocDataReactor(bool autoAttach, AcApDocument* document);
  ~DocDataReactor() override;

 private:
  AcApDocument* document_ = nullptr;
};

/// Keeps the roof fill layer readable against the background.
class asdkeditorReactor : public AcEditorReactor {
 public:
  /// Attaches itself to the host's editor when asked to.
  explicit asdkeditorReactor(bool autoAttach);
  ~asdkeditorReactor() override;

  void layoutSwitched(const ACHAR* newLayoutName) override;

 private:
  bool isAttached_ = false;
};

}  // namespace OrvLib
