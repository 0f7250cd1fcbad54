#include "Editor/Session/Documents.h"

#include <algorithm>

#include "Database/Reactors.h"
#include "Editor/PlugIns/Modules.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"
#include "axlock.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcApDocument, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcApDocManagerReactor, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcApDocManager, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEdInputPointManager, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEdInputPointMonitor, AcRxObject)

namespace host::editor {

Acad::ErrorStatus InputPointManager::addPointMonitor(AcEdInputPointMonitor* monitor) {
  if (monitor == nullptr) return Acad::eNullObjectPointer;
  if (std::find(monitors_.begin(), monitors_.end(), monitor) == monitors_.end()) monitors_.push_back(monitor);
  return Acad::eOk;
}

Acad::ErrorStatus InputPointManager::removePointMonitor(AcEdInputPointMonitor* monitor) {
  return std::erase(monitors_, monitor) > 0 ? Acad::eOk : Acad::eKeyNotFound;
}

Acad::ErrorStatus InputPointManager::turnOnForcedPick() {
  ++forcedPicks_;
  return Acad::eOk;
}

Acad::ErrorStatus InputPointManager::turnOffForcedPick() {
  if (forcedPicks_ == 0) return Acad::eInvalidInput;
  --forcedPicks_;
  return Acad::eOk;
}

void Document::setFile(const std::filesystem::path& file) {
  file_ = file;
  fileName_ = text::fromUtf8(file.string());
}

bool Document::isOf(const std::filesystem::path& file) const {
  if (file_.empty()) return false;
  const FileStamp own(file_), its(file);
  // Of a file that is gone only the name is left.
  return own.isThere() || its.isThere() ? own.isSameFile(its) : fullPath(file_) == fullPath(file);
}

bool Document::isChangedOutside() const {
  const FileStamp now(file_);
  return stamp.isThere() && now.isThere() && now != stamp;
}

void Document::setUntitled(int number) {
  file_.clear();
  fileName_ = L"Drawing" + std::to_wstring(number) + L".dxf";
}

void Document::setUntitled(const std::filesystem::path& name) {
  file_.clear();
  fileName_ = text::fromUtf8(name.string());
}

template <class Tell>
void DocumentManager::tell(const Tell& message) {
  database::tellEach(
      reactors_, [&](AcApDocManagerReactor& reactor) { callPlugIn(session_, &reactor, [&] { message(reactor); }); });
}

bool DocumentManager::has(const AcApDocManagerReactor* reactor) const {
  return std::find(reactors_.begin(), reactors_.end(), reactor) != reactors_.end();
}

bool DocumentManager::owns(const AcApDocument* document) const {
  return std::any_of(documents_.begin(), documents_.end(), [document](const auto& d) { return d.get() == document; });
}

AcApDocument* DocumentManager::document(const AcDbDatabase* db) const {
  for (const auto& document : documents_) {
    if (document->database() == db) return document.get();
  }
  return nullptr;
}

void DocumentManager::addReactor(AcApDocManagerReactor* reactor) {
  if (reactor != nullptr && !has(reactor)) reactors_.push_back(reactor);
}

void DocumentManager::removeReactor(AcApDocManagerReactor* reactor) { std::erase(reactors_, reactor); }

std::vector<AcApDocManagerReactor*> DocumentManager::reactorsOf(const void* moduleBase) const {
  return objectsOfModule(reactors_, moduleBase);
}

Acad::ErrorStatus DocumentManager::lockDocument(AcApDocument* document, AcAp::DocLockMode, const ACHAR*, const ACHAR*,
                                                bool) {
  if (document == nullptr || !owns(document)) return Acad::eNoDatabase;
  if (refusesLocks_) return Acad::eLockViolation;
  ++static_cast<Document*>(document)->locks;
  return Acad::eOk;
}

Acad::ErrorStatus DocumentManager::unlockDocument(AcApDocument* document) {
  if (document == nullptr || !owns(document)) return Acad::eNoDatabase;
  int& locks = static_cast<Document*>(document)->locks;
  if (locks == 0) return Acad::eLockViolation;
  --locks;
  return Acad::eOk;
}

void DocumentManager::pushResourceHandle(HINSTANCE resources) {
  (current_ != nullptr ? current_->resources : resourcesWithoutDocument_).push_back(resources);
}

void DocumentManager::popResourceHandle() {
  std::vector<HINSTANCE>& stack = current_ != nullptr ? current_->resources : resourcesWithoutDocument_;
  if (!stack.empty()) stack.pop_back();
}

HINSTANCE DocumentManager::topResource() const {
  const std::vector<HINSTANCE>& stack = current_ != nullptr ? current_->resources : resourcesWithoutDocument_;
  return stack.empty() ? baseResource_ : stack.back();
}

void DocumentManager::setTopResource(HINSTANCE resources) {
  std::vector<HINSTANCE>& stack = current_ != nullptr ? current_->resources : resourcesWithoutDocument_;
  (stack.empty() ? baseResource_ : stack.back()) = resources;
}

void DocumentManager::setCurrent(Document* document) {
  current_ = document;
  session_.services().setWorking(document != nullptr ? document->database() : nullptr);
}

Document& DocumentManager::add(std::unique_ptr<Document> document) {
  Document* const added = document.get();
  documents_.push_back(std::move(document));
  tell([added](AcApDocManagerReactor& r) { r.documentCreateStarted(added); });
  // With nothing else to be current, reactors that ask for the current document find the new one.
  if (current_ == nullptr) setCurrent(added);
  tell([added](AcApDocManagerReactor& r) { r.documentCreated(added); });
  tellCurrent(*added);
  return *added;
}

void DocumentManager::tellCurrent(Document& document) {
  Document* const next = &document;
  if (Document* const former = current_; former != next) {
    tell([former](AcApDocManagerReactor& r) { r.documentToBeDeactivated(former); });
    setCurrent(next);
  }
  tell([next](AcApDocManagerReactor& r) { r.documentBecameCurrent(next); });
  tell([next](AcApDocManagerReactor& r) { r.documentToBeActivated(next); });
  tell([next](AcApDocManagerReactor& r) { r.documentActivated(next); });
  session_.observer().currentDrawingChanged();
}

void DocumentManager::activate(Document& document) {
  if (current_ != &document) tellCurrent(document);
}

Document* DocumentManager::documentOf(const std::filesystem::path& file) const {
  for (const auto& document : documents_) {
    if (document->isOf(file)) return document.get();
  }
  return nullptr;
}

void DocumentManager::close(Document& document) {
  const std::wstring name = document.fileName();
  setCurrent(&document);
  tell([&document](AcApDocManagerReactor& r) { r.documentToBeDestroyed(&document); });
  const auto place =
      std::find_if(documents_.begin(), documents_.end(), [&document](const auto& d) { return d.get() == &document; });
  std::unique_ptr<Document> closing = std::move(*place);
  documents_.erase(place);
  Document* const next = documents_.empty() ? nullptr : documents_.back().get();
  setCurrent(next);
  closing.reset();
  tell([&name](AcApDocManagerReactor& r) { r.documentDestroyed(name.c_str()); });
  session_.observer().currentDrawingChanged();
  if (next == nullptr) return;
  tell([next](AcApDocManagerReactor& r) { r.documentBecameCurrent(next); });
  tell([next](AcApDocManagerReactor& r) { r.documentActivated(next); });
}

}  // namespace host::editor

Acad::ErrorStatus AcEdInputPointMonitor::monitorInputPoint(
    bool& appendToTooltipStr, ACHAR*&, AcGiViewportDraw*, AcApDocument*, bool, int, const AcGePoint3d&,
    const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&, AcDb::OsnapMask,
    const AcArray<AcDbCustomOsnapMode*>&, AcDb::OsnapMask, const AcArray<AcDbCustomOsnapMode*>&,
    const AcArray<AcDbObjectId>&, const AcArrayObjectCopy<AcDbObjectIdArray>&, const AcArray<Adesk::GsMarker>&,
    const AcArray<AcDbObjectId>&, const AcArrayObjectCopy<AcDbObjectIdArray>&, const AcArray<Adesk::GsMarker>&,
    const AcArray<AcGeCurve3d*>&, const AcGePoint3d&, const ACHAR*) {
  appendToTooltipStr = false;
  return Acad::eOk;
}

AcApDocManager* acDocManagerPtr() { return &host::editor::Session::instance().documents(); }

AcDbDatabase* acdbCurDwg() {
  const host::editor::Document* const document = host::editor::Session::instance().documents().current();
  return document != nullptr ? document->database() : nullptr;
}

AcAxDocLock::AcAxDocLock(DocLockType) : document_(acDocManager->curDocument()) {
  status_ = acDocManager->lockDocument(document_);
}

AcAxDocLock::AcAxDocLock(const AcDbObjectId& id, DocLockType type)
    : AcAxDocLock(id.isNull() ? nullptr : id.database(), type) {}

AcAxDocLock::AcAxDocLock(AcDbDatabase* db, DocLockType) : document_(acDocManager->document(db)) {
  // A drawing outside the editor needs no lock.
  status_ = db != nullptr && document_ == nullptr ? Acad::eOk : acDocManager->lockDocument(document_);
}

AcAxDocLock::~AcAxDocLock() {
  if (status_ == Acad::eOk && document_ != nullptr) acDocManager->unlockDocument(document_);
}
