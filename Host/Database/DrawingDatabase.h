// One drawing in memory: records first, objects on demand.
//
// The file's text stays in memory as it was read; every object has a Slot that says where its bytes are. Opening an
// object gives it a host-interface object over its record; changing it edits the record's tags; saving copies the bytes
// of everything untouched. Geometry for pictures and selections is read from the records, without objects.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Database/Record.h"
#include "Database/Slot.h"
#include "Problems/Problem.h"
#include "Text/Codec.h"
#include "acadstrc.h"
#include "dbid.h"
#include "dbmain.h"

namespace host::database {

/// A block: its record, its BLOCK and ENDBLK, its entities in file order, erased ones included.
struct BlockContents {
  Slot* record = nullptr;
  Slot* begin = nullptr;
  Slot* end = nullptr;
  std::vector<Slot*> entities;
};

using host::Problem;

enum class DrawingVersion {
  R12 = 1009,
  R13 = 1012,
  R14 = 1014,
  V2000 = 1015,
  V2004 = 1018,
  V2007 = 1021,
  V2010 = 1024,
  V2013 = 1027,
  V2018 = 1032
};

/// Called with what becomes of the objects that a command works on; the editor sums a command up from it.
class WorkObserver {
 public:
  enum class Refusal {
    Change,  // it could not be opened for write
    Use,     // what the command makes could not be made of it
  };
  virtual ~WorkObserver() = default;
  /// An object is about to be opened. May throw: nothing has happened yet.
  virtual void working() {}
  /// Opened, changed or moved in the draw order.
  virtual void used(const Slot& object) = 0;
  /// `why` names the reason as in "1 skipped: on a locked layer", "1 not hatched: not closed"; it is a literal.
  virtual void refused(const Slot& object, Refusal what, std::string_view why) = 0;
};

/// Undo steps that are taken back and repeated together.
struct UndoGroup {
  std::uint32_t number = 0;  // 0: none
  std::wstring name;
};

class Arena;
class Attachments;

class DrawingDatabase {
 public:
  DrawingDatabase(AcDbDatabase* facade);
  ~DrawingDatabase();
  DrawingDatabase(const DrawingDatabase&) = delete;
  DrawingDatabase& operator=(const DrawingDatabase&) = delete;

  /// Forgets everything, as before anything was read. No object may be open.
  void clear();

  AcDbDatabase* facade() const { return facade_; }
  DrawingVersion version() const;
  const text::Codec& codec() const;
  std::string_view lineEnd() const;
  /// A writer for this drawing's encoding and line ends.
  TagWriter tagWriter() const { return TagWriter(codec(), lineEnd()); }
  /// Copies bytes into memory that lives as long as the drawing.
  std::string_view keep(std::string_view bytes);

  // ---- names ------------------------------------------------------------------------------------------------------
  std::string_view typeName(DxfType type) const;
  std::string_view typeName(const Slot& slot) const { return typeName(slot.type); }
  /// Layer of an entity slot: its table record, or null when the drawing has no such layer.
  Slot* layerRecord(std::uint32_t layerIndex) const;
  std::wstring layerName(std::uint32_t layerIndex) const;
  /// Index of a layer name (without regard to case); 0 when no entity and no layer has it.
  std::uint32_t findLayer(std::wstring_view name) const;

  // ---- objects ----------------------------------------------------------------------------------------------------
  Slot* findHandle(std::uint64_t handle) const;
  /// All slots in file order, then in the order they were made.
  void forEachSlot(const std::function<void(Slot&)>& visit) const;
  std::size_t slotCount() const;

  Slot* table(DxfType recordType) const;                               // table head of e.g. DxfType::Layer
  Slot* findRecord(DxfType recordType, std::wstring_view name) const;  // living record by name, or null
  const std::vector<Slot*>& records(DxfType recordType) const;         // file order, erased included
  std::wstring recordName(const Slot& record) const;                   // tag 2, decoded
  Slot* rootDictionary() const;

  const BlockContents* block(const Slot* blockRecord) const;
  const BlockContents* findBlock(std::wstring_view name) const;
  const BlockContents& modelSpace() const;
  /// Layouts in tab order with their names: "Model" first.
  std::vector<std::pair<std::wstring, const BlockContents*>> layouts() const;
  /// Living entities of a block, bottom first, by its sort-entities table.
  std::vector<Slot*> drawOrder(const BlockContents& block) const;

  // ---- header variables -------------------------------------------------------------------------------------------
  /// Value of one group of a variable ("$CLAYER", 8), decoded; nothing when the header lacks it.
  std::optional<std::wstring> headerText(std::string_view name, int code) const;
  std::optional<double> headerReal(std::string_view name, int code) const;
  std::optional<std::int64_t> headerInteger(std::string_view name, int code) const;
  void setHeaderText(std::string_view name, int code, std::wstring_view value);
  void setHeaderReal(std::string_view name, int code, double value);
  void setHeaderInteger(std::string_view name, int code, std::int64_t value);

  // ---- changing ---------------------------------------------------------------------------------------------------
  Acad::ErrorStatus open(AcDbObject*& object, Slot* slot, AcDb::OpenMode mode, bool openErased);
  /// Called by the editor when no handler runs: frees closed objects. Open ones (a fault of the plug-in) are closed and
  /// counted; the number is the answer.
  int releaseObjects();
  /// Objects whose changes were lost since the last call, because memory ended when they were closed: they are as they
  /// were before, new ones are gone.
  int takeLostChanges();
  /// Undoing everything since the drawing was opened or saved clears it.
  bool isModified() const;
  void setUnmodified();
  /// It differs from its file from now on until it is saved, whatever is undone.
  void setModified();
  /// Version counter: grows with every change; for caches of pictures and selections.
  std::uint64_t changeCount() const;
  /// The slots that were changed, made, erased or undone since the last call, some of them several times, for the one
  /// cache that follows them; nothing at the first call, and when there were too many to remember.
  std::optional<std::vector<const Slot*>> takeChangedSlots();
  /// Null: no observer is called.
  void setObserver(WorkObserver* observer);
  /// Calls the observer, unless the object was made by the present undo step: the user does not know it.
  void tellRefused(const Slot& object, WorkObserver::Refusal what, std::string_view why) const;

  // ---- undo -------------------------------------------------------------------------------------------------------
  // Undoing everything gives back the drawing that was opened, byte for byte, whether or not it was saved meanwhile. A
  // command that changed nothing is no step: undo takes the last one that changed something.
  void beginUndoStep(std::wstring name, UndoGroup group = {});
  void endUndoStep();
  /// Ends the step; when all that it did was to add table records other than blocks, which nothing uses then, they go
  /// again and there was no such step.
  void endUnusedUndoStep();
  /// Takes back / repeats the last step that changed anything, with the others of its group; its name or the group's,
  /// or nothing when there is none. Of the group that is still growing, `openGroup`, one step at a time goes. When
  /// memory ends meanwhile, std::bad_alloc, and the step that was to go has not changed anything.
  std::optional<std::wstring> undo(std::uint32_t openGroup = 0);
  std::optional<std::wstring> redo(std::uint32_t openGroup = 0);
  /// Names of what undo or redo would take in turn, the next one first.
  std::vector<std::wstring> undoNames(std::size_t most, std::uint32_t openGroup = 0) const;
  std::vector<std::wstring> redoNames(std::size_t most, std::uint32_t openGroup = 0) const;
  /// Steps that can be undone, those of groups counted one by one.
  std::size_t undoStepCount() const;
  /// Ends the step by taking back what it did: the drawing is as it was, and there was no such step. When memory ends
  /// meanwhile, std::bad_alloc, and the step goes on.
  void abandonUndoStep();

  // ---- problems ---------------------------------------------------------------------------------------------------
  const std::vector<Problem>& problems() const;

  /// What modules above this one keep with the drawing.
  Attachments& attachments();
  /// Memory that lives as long as the drawing.
  Arena& memory();

  // ---- the parts --------------------------------------------------------------------------------------------------
  // The object classes, the reader and the writer of files work on these (Store/Parts.h).
  struct Parts;
  Parts& parts() { return *parts_; }
  const Parts& parts() const { return *parts_; }

 private:
  AcDbDatabase* facade_;
  std::unique_ptr<Parts> parts_;
};

/// The database behind a host-interface one.
inline DrawingDatabase& databaseOf(const AcDbDatabase* db) { return db->hostDatabase(); }
/// Common values of an entity's record, read in one walk.
struct EntityProperties {
  std::string_view linetype;    // empty = by layer, in the drawing's encoding
  int color = 256;              // 0 by block, 256 by layer
  std::int64_t trueColor = -1;  // 0xRRGGBB, or -1
  int lineweight = -1;          // hundredths of a millimetre; -1 by layer, -2 by block, -3 default
  double linetypeScale = 1;
  bool invisible = false;
  std::int64_t transparency = 0;  // tag 440 as it stands; 0 = none
};
EntityProperties entityProperties(const Slot& slot);

}  // namespace host::database
