// The inside of a drawing database, shared by the loader, the saver and the object classes.
#pragma once

#include <array>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Database/FreeHandles.h"
#include "Database/ObjectAccess.h"
#include "Database/OrderKeys.h"
#include "Database/UnwrittenTags.h"
#include "Text/Text.h"

namespace host::database {

/// Blocks of pools and arenas, in bytes. Where every block costs work for each of its bytes, as under a sanitizer,
/// small ones keep small drawings quick.
#ifdef TOLMEX_SMALL_BLOCKS
inline constexpr std::size_t kPoolBlockBytes = std::size_t{1} << 13;
inline constexpr std::size_t kArenaBlockBytes = std::size_t{1} << 13;
#else
inline constexpr std::size_t kPoolBlockBytes = std::size_t{1} << 16;
inline constexpr std::size_t kArenaBlockBytes = std::size_t{1} << 18;
#endif

/// Makes sure that adding `more` elements cannot fail; the memory grows as adding makes it grow.
template <class Vector>
void makeRoom(Vector& vector, std::size_t more = 1) {
  if (vector.capacity() - vector.size() < more) vector.reserve(std::max(vector.size() + more, vector.size() * 2));
}

/// Gives out large pieces of memory, ever larger ones up to a limit; all of it goes back at once. Big drawings spend
/// much of their time on the system's handing out of pages, so it is asked for big ones.
class MemorySource {
 public:
  MemorySource() = default;
  MemorySource(const MemorySource&) = delete;
  MemorySource& operator=(const MemorySource&) = delete;
  ~MemorySource();

  /// A block aligned to its size, a power of two of at most 2 MB. A failure changes nothing.
  char* block(std::size_t bytes);

 private:
  struct Slab {
    char* begin;
    std::size_t bytes;
  };
  std::vector<Slab> slabs_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t slabBytes_ = 0;
};

/// Slots in blocks whose addresses tell their database: the head of each block holds it.
class SlotPool {
 public:
  explicit SlotPool(DrawingDatabase* database) : database_(database) {}
  SlotPool(const SlotPool&) = delete;
  SlotPool& operator=(const SlotPool&) = delete;

  /// The next `make` cannot fail then.
  void makeRoom();
  Slot* make();
  std::size_t size() const { return count_; }
  /// The slots in the order in which they were made.
  Slot& at(std::size_t index) const { return firstSlot(blocks_[index / kSlotsPerBlock])[index % kSlotsPerBlock]; }
  static DrawingDatabase& databaseOf(const Slot* slot);

  template <class Visit>
  void forEach(Visit&& visit) const {
    std::size_t left = count_;
    for (char* const block : blocks_) {
      Slot* const slots = firstSlot(block);
      const std::size_t here = std::min(left, kSlotsPerBlock);
      for (std::size_t i = 0; i < here; ++i) visit(slots[i]);
      left -= here;
    }
  }

 private:
  static constexpr std::size_t kBlockBytes = kPoolBlockBytes;
  static constexpr std::size_t kHeadBytes = 64;
  static constexpr std::size_t kSlotsPerBlock = (kBlockBytes - kHeadBytes) / sizeof(Slot);
  static Slot* firstSlot(char* block) { return reinterpret_cast<Slot*>(block + kHeadBytes); }

  DrawingDatabase* database_;
  MemorySource source_;
  std::vector<char*> blocks_;
  std::size_t count_ = 0;
};

/// Objects of one type, most of them made and few destroyed before the pool is.
template <class T>
class ObjectPool {
 public:
  ObjectPool() = default;
  ObjectPool(const ObjectPool&) = delete;
  ObjectPool& operator=(const ObjectPool&) = delete;

  T* make() {
    if (free_ == nullptr) {
      if (left_ == 0) {
        chunk_ = reinterpret_cast<Place*>(source_.block(kChunkBytes));
        left_ = kPerChunk;
      }
      return new (chunk_ + (kPerChunk - left_--)) T;
    }
    Place* const place = std::exchange(free_, free_->next);
    return new (place) T;
  }
  void destroy(T* object) {
    object->~T();
    auto* const place = reinterpret_cast<Place*>(object);
    place->next = free_;
    free_ = place;
  }

 private:
  union Place {
    Place* next;
    alignas(T) char bytes[sizeof(T)];
  };
  static constexpr std::size_t kChunkBytes = kPoolBlockBytes;
  static constexpr std::size_t kPerChunk = kChunkBytes / sizeof(Place);
  MemorySource source_;
  Place* chunk_ = nullptr;
  std::size_t left_ = 0;
  Place* free_ = nullptr;
};

/// Bytes that live as long as the drawing.
class Arena {
 public:
  Arena() = default;
  explicit Arena(std::size_t chunkBytes) : chunkBytes_(chunkBytes) {}
  std::string_view keep(std::string_view bytes);
  std::size_t used() const { return used_; }

  /// Memory for objects that are never destroyed.
  void* allocate(std::size_t bytes, std::size_t alignment);
  template <class T, class... Arguments>
  T* make(Arguments&&... arguments) {
    static_assert(std::is_trivially_destructible_v<T>);
    return new (allocate(sizeof(T), alignof(T))) T(std::forward<Arguments>(arguments)...);
  }
  template <class T>
  T* makeArray(std::size_t count) {
    static_assert(std::is_trivially_destructible_v<T>);
    return static_cast<T*>(allocate(sizeof(T) * count, alignof(T)));
  }

 private:
  /// Makes the memory in use one of at least so many bytes.
  void refill(std::size_t bytes);

  std::vector<std::unique_ptr<char[]>> chunks_;
  MemorySource source_;
  std::size_t chunkBytes_ = 0;  // 0: blocks of the source
  char* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t used_ = 0;
};

/// Names without regard to case, looked up as they are spelled.
struct FoldedHash {
  using is_transparent = void;
  std::size_t operator()(std::wstring_view name) const { return text::foldedHash(name); }
};
struct FoldedEqual {
  using is_transparent = void;
  bool operator()(std::wstring_view a, std::wstring_view b) const { return text::equalFolded(a, b); }
};
template <class T>
using NameMap = std::unordered_map<std::wstring, T, FoldedHash, FoldedEqual>;

/// Parsed contents of a dictionary; its record is kept in step with every change.
struct DictionaryContents {
  struct Entry {
    std::wstring key;
    Slot* object = nullptr;
  };
  std::vector<Entry> entries;  // file order; removed ones have no object
  NameMap<std::size_t> byKey;  // index
  std::unordered_map<const Slot*, std::size_t> byObject;
  std::uint64_t nextAnonymous = 1;
  void add(std::wstring key, Slot* object);
};

/// Parsed contents of a sort-entities table; written back when the drawing is saved.
struct SortContents {
  explicit SortContents(const FreeHandles& freeHandles) : keys(freeHandles) {}

  Slot* block = nullptr;
  OrderKeys keys;
  std::int64_t moves = 0;  // counts moves to the top
  std::int64_t sinks = 0;  // counts moves to the bottom
  // Every state the keys are ever in has a number; 0 is that of the record. Undo brings a state's number back with it.
  std::uint64_t state = 0;
  std::uint64_t latestState = 0;
};

/// A symbol table: its head and records in file order.
struct SymbolTable {
  Slot* head = nullptr;
  std::vector<Slot*> records;  // erased ones included
  NameMap<Slot*> byName;
  std::size_t insertAt = 0;  // offset of ENDTAB in the file text
};

struct SlotState {
  Slot* slot = nullptr;
  std::uint16_t flags = 0;
  std::uint32_t layer = 0;
  Record record;
};

struct UndoStep {
  std::wstring name;
  UndoGroup group;
  std::vector<SlotState> states;  // before the step (for undo) or after it (for redo)
  // Slots that the step made, as places in the pool. They join `states` when the step is first undone: most never are.
  std::size_t madeBegin = 0, madeEnd = 0;
  struct OrderChange {
    Slot* table = nullptr;
    const Slot* entity = nullptr;
    OrderKey key;
  };
  std::vector<OrderChange> order;
  struct OrderState {
    Slot* table = nullptr;
    std::uint64_t state = 0;
  };
  std::vector<OrderState> orderStates;  // of the sort tables that it changed
  bool isEmpty() const { return states.empty() && orderStates.empty() && madeBegin == madeEnd; }
};

/// How a drawing's text is spelled in its file, when not as it stands (binary drawings).
class FileForm {
 public:
  FileForm() = default;
  FileForm(const FileForm&) = delete;
  FileForm& operator=(const FileForm&) = delete;
  virtual ~FileForm() = default;
  /// What stands before and behind the spelled text.
  virtual std::string_view head() const = 0;
  virtual std::string_view tail() const = 0;
  /// Adds the bytes that a piece of text (whole tags) makes in the file; `text` is the drawing's text as it was read,
  /// in which lie the pieces that nobody changed.
  virtual void spell(std::string_view piece, std::string_view text, std::string& out) const = 0;
};

struct NameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

/// A number for as long as a drawing lives, never given again: tells whoever points into the drawing that it is gone.
class DrawingLife {
 public:
  DrawingLife();
  DrawingLife(const DrawingLife&) = delete;
  DrawingLife& operator=(const DrawingLife&) = delete;
  ~DrawingLife();
  std::uint64_t number() const { return number_; }
  static bool isLiving(std::uint64_t number);

 private:
  std::uint64_t number_;
};

class Attempt;

struct DrawingDatabase::Parts {
  explicit Parts(DrawingDatabase& owner, AcDbDatabase* facadeIn)
      : facade(facadeIn), self(owner), slots(&owner), lateSlots(&owner) {}
  Parts(const Parts&) = delete;
  Parts& operator=(const Parts&) = delete;
  ~Parts();

  AcDbDatabase* facade;
  DrawingDatabase& self;
  DrawingLife life;

  // The file.
  std::string text;
  std::string fileName;                  // as messages call it
  std::shared_ptr<const FileForm> form;  // null: the text is the file
  DrawingVersion version = DrawingVersion::V2013;
  text::Codec codec;
  std::string lineEnd = "\n";
  std::size_t tablesEnd = 0;  // offsets of the ENDSEC of each section; 0 when the file lacks it
  std::size_t blocksEnd = 0;
  std::size_t entitiesEnd = 0;
  std::size_t objectsEnd = 0;
  std::size_t fileEnd = 0;  // offset of EOF
  std::vector<Problem> problems;
  Arena arena;

  // Objects.
  ObjectPool<Live> lives;
  SlotPool slots;
  SlotPool lateSlots;  // vertices made when asked for; undo steps, which count slots, know nothing of them
  // Those of the file, then those that got their handles here; each part ascending. See FreeHandles.
  std::vector<Slot*> byHandle;
  std::size_t fileHandles = 0;  // how many are the file's
  FreeHandles freeHandles;
  std::uint64_t nextHandle = 1;
  std::vector<Slot*> opened;  // slots whose Live holds an object
  // Objects closed a moment ago that still hold what was read from the file: a command that works on an entity opens
  // it several times. Oldest at `nextParked`.
  std::array<Slot*, 8> parked{};
  std::size_t nextParked = 0;
  std::size_t openCount = 0;  // objects open at the moment

  // Names.
  std::vector<std::string> otherTypes;  // names from DxfType::FirstOther on
  std::unordered_map<std::string, DxfType, NameHash, std::equal_to<>> otherTypeIndex;
  struct LayerName {
    std::string raw;  // in the drawing's encoding, as first met
    std::wstring folded;
    Slot* record = nullptr;
    std::optional<bool> isLocked;  // as it was looked up since the layers changed last
  };
  std::vector<LayerName> layers{LayerName{}};
  std::unordered_map<std::string, std::uint32_t, NameHash, std::equal_to<>> layerByRaw;
  std::unordered_map<std::wstring, std::uint32_t> layerByFolded;

  // Containers.
  std::map<DxfType, SymbolTable> tables;  // by record type
  std::unordered_map<const Slot*, BlockContents> blocks;
  std::vector<const Slot*> blockOrder;            // block records in the order of their BLOCKs
  std::optional<std::vector<Slot*>> layoutSlots;  // erased ones included; found when first asked for
  Slot* modelSpaceRecord = nullptr;
  Slot* paperSpaceRecord = nullptr;  // the active one, whose entities stand in ENTITIES
  Slot* header = nullptr;
  // Variables as they were looked up since the header changed last; every new entity asks for some of them.
  std::map<std::pair<std::string, int>, std::optional<Tag>> variables;
  /// What entities made outside the drawing were given before they were added to it.
  struct CommonKey {
    const Slot* layer = nullptr;
    int color = -1;
    bool isColorFirst = false;
    auto operator<=>(const CommonKey&) const = default;
  };
  std::map<CommonKey, const SharedTags*> sharedTags;  // as they were made since the header and the layers changed last
  std::vector<std::unique_ptr<const ObjectData>> hatchStyles;  // what new hatches have in common
  Slot* classes = nullptr;
  Slot* root = nullptr;
  std::unordered_map<const Slot*, std::unique_ptr<DictionaryContents>> dictionaries;
  std::unordered_map<const Slot*, std::unique_ptr<SortContents>> sortTables;

  // Undo.
  std::vector<UndoStep> undoSteps;
  std::vector<UndoStep> redoSteps;
  UndoStep currentStep;
  bool inStep = false;
  std::uint32_t stepNumber = 0;
  std::uint64_t stepChanges = 0;  // change counter when the current step began
  std::uint64_t stepHandle = 0;   // what the current step makes has this handle or a higher one
  Attempt* attempt = nullptr;     // the work under way that leaves nothing behind when it fails
  int lostChanges = 0;            // objects whose values could not be written at their close, since somebody asked

  std::uint64_t changes = 0;
  std::uint64_t savedChanges = 0;
  std::vector<AcDbDatabaseReactor*> reactors;
  WorkObserver* observer = nullptr;

  // ---- names ----
  DxfType typeOf(std::string_view name);
  std::uint32_t internLayer(std::string_view raw);
  void bindLayerRecord(Slot* record);
  bool isLayerLocked(std::uint32_t layerIndex);
  /// Whether the slot must not be opened for write because of its layer; the observer is told then.
  bool refusesChange(const Slot& slot);
  /// To be called when a layer or a header variable has changed.
  void forgetDefaults();

  // ---- slots ----
  /// A new object of this session with a fresh handle, without a record. Its maker holds it with NewSlots until it is
  /// whole.
  Slot* makeSlot(DxfType type, Slot* owner, std::uint16_t flags);
  void indexHandles();  // after loading
  Live& live(Slot& slot);
  /// Puts the slot's state into the undo journal, once per step.
  void journal(Slot& slot);
  /// Record of the slot for editing: journals, marks changed.
  Record& edit(Slot& slot);
  /// Record as it stands.
  Record current(const Slot& slot) const;
  void setRecord(Slot& slot, std::string_view bytes);
  /// Writes what was changed of an open object's parsed data into its record.
  void writeData(Slot& slot, const ObjectData& data);
  /// Whether undoing the current step takes the slot away as a whole, so that nothing of it needs to be journaled.
  bool isOfThisStep(const Slot& slot) const { return inStep && (slot.flags & kNew) != 0 && slot.handle >= stepHandle; }
  Acad::ErrorStatus closeObject(AcDbObject& object);
  /// At the close of an object: drops its data, or keeps those of an unchanged one for a while.
  void parkData(Slot& slot);
  void eraseSlot(Slot& slot, bool erasing);
  AcDbObject* objectFor(Slot& slot);

  /// The value of a header variable under the code.
  std::optional<Tag> variable(std::string_view name, int code);

  // ---- tag edits on slots ----
  bool findTag(const Slot& slot, std::string_view subclass, int code, Tag& tag) const;
  void setTag(Slot& slot, std::string_view subclass, int code, std::string_view value);

  // ---- containers ----
  DxfType tableRecordType(const Slot& head) const;  // which table a head belongs to
  SymbolTable& tableFor(DxfType recordType);        // made when the file lacks it
  DictionaryContents& dictionary(const Slot& slot);
  void removeDictionaryEntry(Slot& dictionarySlot, std::size_t index);
  SortContents& sortTable(const Slot& slot);
  Slot* ensureRoot();
  Slot* dictionaryIn(Slot& parent, std::wstring_view key);  // made when missing
  void setOrderKey(Slot& table, const Slot& entity, OrderKey key);
  /// The records that a saved drawing has in place of those here: sort tables, table counts, classes, the hand seed.
  /// They say what is there when it is saved; the drawing itself does not change. New text goes into `memory`.
  std::unordered_map<const Slot*, Record> settledRecords(Arena& memory);
  BlockContents& contents(const Slot* blockRecord);
};

/// Holds the slots made since: they count as erased, as if undone, unless `keep` says that they are whole. So a failure
/// between making an object and filling it leaves no object without a record.
class NewSlots {
 public:
  explicit NewSlots(DrawingDatabase::Parts& parts) : parts_(parts), begin_(parts.slots.size()) {}
  NewSlots(const NewSlots&) = delete;
  NewSlots& operator=(const NewSlots&) = delete;
  ~NewSlots() {
    for (std::size_t i = begin_; !isKept_ && i < parts_.slots.size(); ++i) parts_.slots.at(i).flags |= kErased;
  }
  void keep() { isKept_ = true; }

 private:
  DrawingDatabase::Parts& parts_;
  std::size_t begin_;
  bool isKept_ = false;
};

/// Work on many objects that leaves nothing behind when it fails: unless `keep` says that it is done, what it made
/// counts as erased and what it changed gets its former record back.
class Attempt {
 public:
  explicit Attempt(DrawingDatabase::Parts& parts);
  Attempt(const Attempt&) = delete;
  Attempt& operator=(const Attempt&) = delete;
  ~Attempt();
  /// Called before the first and any further change of a slot.
  void remember(Slot& slot);
  void keep() {
    made_.keep();
    isKept_ = true;
  }

 private:
  DrawingDatabase::Parts& parts_;
  NewSlots made_;
  std::size_t begin_;
  std::unordered_set<const Slot*> known_;
  std::vector<SlotState> states_;
  Attempt* outer_;
  bool isKept_ = false;
};

/// The record edit that both slots and detached objects use.
bool findTagIn(TagCursor cursor, std::string_view subclass, int code, Tag& tag, std::size_t* index = nullptr);
/// Replaces the tag or adds it at the end of the subclass; `bytes` is a whole tag.
void setTagIn(Record& record, std::string_view subclass, int code, std::string_view bytes);
void removeTagIn(Record& record, std::string_view subclass, int code);

/// Sets one group of a variable in a header's record; `tag` is the whole new one, kept in `memory`.
void setVariableIn(Record& record, std::string_view name, int code, const TagWriter& tag, Arena& memory);
/// Adds an entry to a dictionary and its record.
void addEntry(DrawingDatabase::Parts& parts, Slot& dictionarySlot, const std::wstring& key, Slot& object);
/// Fixed DXF names of types ("LWPOLYLINE"); empty from FirstOther on.
std::string_view fixedTypeName(DxfType type);
bool isTableRecord(DxfType type);
/// The table object of a table whose records have the type; null for tables without a class of their own.
AcDbObject* createTable(DxfType recordType);

}  // namespace host::database
