// Open drawings as plug-ins see them.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Editor/FileStamp.h"
#include "Editor/Session/Recording.h"
#include "Geometry/EntityPaths.h"
#include "acdocman.h"

namespace host::editor {

class Session;

class InputPointManager final : public AcEdInputPointManager {
 public:
  Acad::ErrorStatus addPointMonitor(AcEdInputPointMonitor* monitor) override;
  Acad::ErrorStatus removePointMonitor(AcEdInputPointMonitor* monitor) override;
  Acad::ErrorStatus turnOnForcedPick() override;
  Acad::ErrorStatus turnOffForcedPick() override;

  const std::vector<AcEdInputPointMonitor*>& monitors() const { return monitors_; }

 private:
  std::vector<AcEdInputPointMonitor*> monitors_;
  int forcedPicks_ = 0;
};

/// A drawing with what the editor remembers about it.
class Document final : public AcApDocument {
 public:
  explicit Document(std::unique_ptr<AcDbDatabase> database) : database_(std::move(database)) {}

  AcDbDatabase* database() const override { return database_.get(); }
  InputPointManager& pointManager() const { return pointManager_; }
  const ACHAR* fileName() const override { return fileName_.c_str(); }
  AcEdInputPointManager* inputPointManager() const override { return &pointManager_; }
  AcAp::DocLockMode myLockMode() const override { return locks > 0 ? AcAp::kWrite : AcAp::kNotLocked; }

  database::DrawingDatabase& drawing() const { return database_->hostDatabase(); }
  const std::filesystem::path& file() const { return file_; }
  /// Full path of the drawing; "Drawing1.dxf" without a folder for a new one.
  void setFile(const std::filesystem::path& file);
  /// The drawing's file as this document has read or written it last.
  FileStamp stamp;
  /// Whether `file` is the document's own, by whatever name.
  bool isOf(const std::filesystem::path& file) const;
  /// Another program has changed the document's file since it was read or written here. A file that is gone is no
  /// change: nothing of it could be lost.
  bool isChangedOutside() const;
  void setUntitled(int number);
  void setUntitled(const std::filesystem::path& name);

  /// Where the content of a new drawing was read from: what belongs to it lies there. Empty when there was none.
  std::filesystem::path contentFolder;

  int locks = 0;
  std::vector<HINSTANCE> resources;
  AcGePoint3d lastPoint;
  std::vector<database::Slot*> previousSelection;
  std::vector<database::Slot*> pickfirst;
  geometry::Box view;  // empty until ZOOM: the extents then
  std::vector<geometry::Box> formerViews;
  geometry::Box screen;     // what a window shows; empty without one
  double screenPixels = 0;  // its width
  std::wstring currentLayout = L"Model";
  Recording recording;

 private:
  std::unique_ptr<AcDbDatabase> database_;
  mutable InputPointManager pointManager_;
  std::filesystem::path file_;
  std::wstring fileName_;
};

class DocumentManager final : public AcApDocManager {
 public:
  explicit DocumentManager(Session& session) : session_(session) {}

  AcApDocument* curDocument() const override { return current_; }
  AcApDocument* mdiActiveDocument() const override { return current_; }
  AcApDocument* document(const AcDbDatabase* db) const override;
  void addReactor(AcApDocManagerReactor* reactor) override;
  void removeReactor(AcApDocManagerReactor* reactor) override;
  Acad::ErrorStatus lockDocument(AcApDocument* document, AcAp::DocLockMode mode, const ACHAR* globalCommand,
                                 const ACHAR* localCommand, bool prompt) override;
  Acad::ErrorStatus unlockDocument(AcApDocument* document) override;
  void pushResourceHandle(HINSTANCE resources) override;
  void popResourceHandle() override;

  Document* current() const { return current_; }
  const std::vector<std::unique_ptr<Document>>& all() const { return documents_; }
  bool owns(const AcApDocument* document) const;
  bool has(const AcApDocManagerReactor* reactor) const;
  /// Takes a new document over, tells the reactors, makes it the current one.
  Document& add(std::unique_ptr<Document> document);
  /// Makes one of the documents the current one and tells the reactors.
  void activate(Document& document);
  /// The open document of a file, by whatever name; null when there is none.
  Document* documentOf(const std::filesystem::path& file) const;
  /// Tells the reactors and destroys it; the last other document becomes current.
  void close(Document& document);
  /// Makes it current without telling the reactors; for messages about one document. Null: none.
  void setCurrent(Document* document);
  /// Resource handle on top of the current document's stack, or null.
  HINSTANCE topResource() const;
  /// Replaces the handle on top of the stack; below the whole stack lies one too.
  void setTopResource(HINSTANCE resources);
  /// Reactors whose code lies in a module.
  std::vector<AcApDocManagerReactor*> reactorsOf(const void* moduleBase) const;

  /// Makes every lock fail from now on, for trying out what plug-ins do then.
  void refuseLocks(bool refuse) { refusesLocks_ = refuse; }

 private:
  /// Tells each reactor; what one of them throws is reported.
  template <class Tell>
  void tell(const Tell& message);
  void tellCurrent(Document& document);

  Session& session_;
  std::vector<std::unique_ptr<Document>> documents_;
  std::vector<AcApDocManagerReactor*> reactors_;
  std::vector<HINSTANCE> resourcesWithoutDocument_;
  HINSTANCE baseResource_ = nullptr;
  Document* current_ = nullptr;
  bool refusesLocks_ = false;
};

}  // namespace host::editor
