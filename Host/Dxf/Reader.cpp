// Reading a well-formed drawing: one pass over the text that makes a slot for every object and parses none of them.
#include "Dxf/Reader.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "Database/Store/Parts.h"
#include "Dxf/Outline.h"
#include "Dxf/Problems.h"
#include "Dxf/Scanner.h"
#include "Text/Text.h"

namespace host::dxf {

using database::BlockContents;
using database::DrawingDatabase;
using database::DrawingVersion;
using database::DxfType;
using database::kBadCode;
using database::Slot;
using database::SymbolTable;

namespace {

/// What the loader keeps of a slot until all handles are known.
struct PendingOwner {
  Slot* slot;
  std::uint64_t owner;
};

class Reader {
 public:
  Reader(DrawingDatabase& db, std::string name) : db_(db), parts_(db.parts()), name_(std::move(name)) {}

  void read(std::string text) {
    parts_.file.text = std::move(text);
    parts_.file.name = name_;
    isUtf8_ = parts_.file.text.starts_with(kUtf8Mark);
    scanner_ = Scanner(parts_.file.text, isUtf8_ ? kUtf8Mark.size() : 0);
    const std::size_t firstLine = parts_.file.text.find('\n');
    parts_.file.lineEnd =
        firstLine != std::string::npos && firstLine > 0 && parts_.file.text[firstLine - 1] == '\r' ? "\r\n" : "\n";
    readSections();
    finish();
  }

 private:
  [[noreturn]] void fail(std::size_t offset, const std::string& what) const {
    throw Problem{Code::FileMalformed, {}, scanner_.lineAt(offset), 0, what};
  }

  void readSections() {
    Token token;
    while (scanner_.next(token)) {
      if (token.code == 999) continue;
      if (token.code != 0) fail(token.offset, "expected a section, found group " + spelled(token));
      if (token.value == "EOF") {
        if (goesOnBehindEof(std::string_view(parts_.file.text).substr(scanner_.offset()),
                            parts_.header.slot() != nullptr)) {
          fail(token.offset, "EOF stands in the middle of the file");
        }
        parts_.file.fileEnd = token.offset;
        return;
      }
      if (token.value != "SECTION") fail(token.offset, "expected a section, found " + shown(token.value));
      if (!scanner_.next(token) || token.code != 2) fail(token.offset, "a section has no name");
      const std::string section(token.value);
      if (section == "HEADER") {
        readHeader();
      } else if (section == "CLASSES") {
        parts_.file.classes = partSlot(DxfType::Classes, "CLASS");
      } else if (section == "TABLES") {
        readTables();
      } else if (section == "BLOCKS") {
        readBlocks();
      } else if (section == "ENTITIES") {
        parts_.file.entitiesEnd = readEntities(nullptr);
      } else if (section == "OBJECTS") {
        readObjects();
      } else {
        skipToEnd();
      }
    }
    fail(parts_.file.text.size(), "the file ends in the middle (EOF is missing)");
  }

  static std::string spelled(const Token& token) {
    if (token.code == kBadCode) {
      std::string_view line = token.codeText();
      if (line.ends_with('\r')) line.remove_suffix(1);
      return shown(line);
    }
    return std::to_string(token.code);
  }

  /// Leaves the scanner behind ENDSEC; answers the offset of ENDSEC. `only` is the type of records that the section may
  /// have; nothing: any.
  std::size_t skipToEnd(std::optional<std::string_view> only = {}) {
    Token token;
    while (scanner_.next(token)) {
      if (token.code == kBadCode) fail(token.offset, "expected a group code, found " + spelled(token));
      if (token.code != 0) continue;
      if (token.value == "ENDSEC") return token.offset;
      if (token.value == "SECTION" || token.value == "EOF") fail(token.offset, "a section is not ended by ENDSEC");
      if (only && token.value != *only) failMisplaced(token);
    }
    fail(parts_.file.text.size(), "the file ends inside a section");
  }

  [[noreturn]] void failMisplaced(const Token& head) const {
    fail(head.offset, shown(head.value) + " cannot stand in this section");
  }

  /// A section whose whole content is edited as one record.
  Slot* partSlot(DxfType type, std::string_view recordType) {
    const std::size_t begin = scanner_.offset();
    const std::size_t end = skipToEnd(recordType);
    Slot* const slot = parts_.slots.make();
    slot->type = type;
    slot->begin = parts_.file.text.data() + begin;
    slot->length = checkedLength(begin, end);
    return slot;
  }

  std::uint32_t checkedLength(std::size_t begin, std::size_t end) const {
    constexpr std::size_t kMost = 0xFFFFFFFFU;
    if (end - begin > kMost) fail(begin, "an object is larger than 4 GB");
    return static_cast<std::uint32_t>(end - begin);
  }

  void readHeader() {
    parts_.header.setSlot(partSlot(DxfType::Header, ""));
    const std::string version = text::toUtf8(db_.headerText("$ACADVER", 1).value_or(L""));
    checkVersion(version);
    if (parts_.file.version < DrawingVersion::V2007 && !isUtf8_) {
      parts_.file.codec =
          text::Codec::forCodePage(text::toUtf8(db_.headerText("$DWGCODEPAGE", 3).value_or(L"ANSI_1252")));
    }
    if (const auto seed = db_.headerText("$HANDSEED", 5)) {
      parts_.handles.setSeed(text::parseHandle(text::toUtf8(*seed)));
    }
  }

  void checkVersion(const std::string& version) {
    int number = 0;
    if (version.size() >= 6 && version.compare(0, 2, "AC") == 0) {
      std::from_chars(version.data() + 2, version.data() + 6, number);
    }
    if (number < 1015) {
      throw problemOf(Code::FileMalformed,
                      version.empty() ? "the drawing names no version" : "drawing version " + shown(version));
    }
    // Versions are even numbers of the format, not of the program; newer ones than 2018 have the same structure.
    static constexpr int kVersions[] = {1015, 1018, 1021, 1024, 1027, 1032};
    int known = kVersions[0];
    for (const int candidate : kVersions) {
      if (candidate <= number) known = candidate;
    }
    parts_.file.version = static_cast<DrawingVersion>(known);
    versionKnown_ = true;
  }

  void needVersion(std::size_t offset) const {
    if (!versionKnown_) {
      fail(offset, "the drawing has no HEADER with a version before its data");
    }
  }

  // ---- records ----

  struct Scanned {
    Slot* slot = nullptr;
    std::string_view type;
    std::uint64_t owner = 0;
    std::string_view name;  // first tag 2
    bool paper = false;
    int flags = 0;  // tag 70, of old-style polylines and vertices
    bool hasAttributes = false;
  };

  /// Reads the record that `head` (a tag 0) begins; stops in front of the next tag 0.
  enum class Kind { Entity, Object, TablePart };

  Scanned scanRecord(const Token& head, Kind what) {
    const bool isEntity = what == Kind::Entity;
    Scanned scanned;
    scanned.type = head.value;
    DxfType type = parts_.types.enter(head.value);
    Slot* const slot = parts_.slots.make();
    slot->begin = parts_.file.text.data() + head.offset;
    if (isEntity) slot->flags |= database::kEntity;
    bool inGroup = false;
    bool hasName = false;
    int subclasses = 0;
    Token token;
    while (scanner_.peek(token)) {
      if (token.code == 0) break;
      if (token.code == kBadCode) fail(token.offset, "expected a group code, found " + spelled(token));
      scanner_.take(token);
      if (token.code >= 1000) {
        slot->flags |= database::kHasXData;
        if (subclasses == 0) needOnlyXData();
        skipTail(*slot);
        break;
      }
      if (token.code == 102) {
        inGroup = token.trimmed().starts_with("{");
        continue;
      }
      if (inGroup) continue;
      switch (token.code) {
        case 5:
          if (subclasses == 0 && type != DxfType::DimStyle) takeHandle(*slot, token);
          if (subclasses == 1 && isEntity && slot->handle == 0)
            fail(token.offset, "the handle stands in the wrong place");
          break;
        case 105:
          if (subclasses == 0) takeHandle(*slot, token);
          break;
        case 330:
          if (subclasses == 0 && scanned.owner == 0) scanned.owner = text::parseHandle(token.trimmed());
          break;
        case 8:
          if (isEntity && slot->layer == 0) slot->layer = parts_.layers.enter(token.value);
          break;
        case 67:
          scanned.paper = isEntity && token.integer() != 0;
          break;
        case 66:
          if (isEntity) scanned.hasAttributes = token.integer() != 0;
          break;
        case 70:
          scanned.flags = static_cast<int>(token.integer());
          break;
        case 2:
          if (!hasName) scanned.name = token.value;
          hasName = true;
          break;
        case 100:
          ++subclasses;
          // Common data end here; what follows matters for few types only.
          // (Some writers put the layer behind the second marker.)
          if (isEntity ? subclasses >= 2 && slot->layer != 0 && !needsOwnData(type) : what == Kind::Object) {
            skipTail(*slot);
          }
          break;
        default:
          break;
      }
    }
    if (isEntity && subclasses == 0 && !isPartType(type) && type != DxfType::EndBlk) {
      fail(head.offset, shown(head.value) + " has no subclass markers");
    }
    if (type == DxfType::Polyline2d) type = polylineType(scanned.flags);
    if (type == DxfType::Vertex2d) type = vertexType(scanned.flags);
    slot->type = type;
    slot->length = checkedLength(head.offset, scanner_.offset());
    if (slot->handle == 0) slot->flags |= database::kNeedsHandle;
    scanned.slot = slot;
    if (scanned.owner != 0) pending_.push_back({slot, scanned.owner});
    return scanned;
  }

  static bool needsOwnData(DxfType type) {
    return type == DxfType::Polyline2d || type == DxfType::Vertex2d || type == DxfType::Insert ||
           type == DxfType::Block;
  }

  /// Runs to the end of the record; only whether there is extended data matters.
  void skipTail(Slot& slot) {
    if (scanner_.skipRecord()) slot.flags |= database::kHasXData;
    Token token;
    if (!scanner_.sawBadCode() || !scanner_.peek(token)) return;
    fail(token.offset, "expected a group code, found " + spelled(token));
  }

  static DxfType polylineType(int flags) {
    if ((flags & 64) != 0) return DxfType::PolyFaceMesh;
    if ((flags & 16) != 0) return DxfType::PolygonMesh;
    return (flags & 8) != 0 ? DxfType::Polyline3d : DxfType::Polyline2d;
  }

  static DxfType vertexType(int flags) {
    if ((flags & (64 | 128)) != 0) return DxfType::VertexOther;
    return (flags & 32) != 0 ? DxfType::Vertex3d : DxfType::Vertex2d;
  }

  /// Steps over the extended data of a record whose own data ought to be in front of them.
  void needOnlyXData() {
    Token token;
    while (scanner_.peek(token) && (token.code >= 1000 || token.code == 999)) scanner_.take(token);
    if (token.code > 0 && token.code < 999) fail(token.offset, "extended data stand in front of the object's own");
  }

  void takeHandle(Slot& slot, const Token& token) const {
    if (slot.handle != 0) fail(token.offset, "the object has two handles");
    slot.handle = handleIn(token.value);
    if (slot.handle == 0) fail(token.offset, shown(token.value) + " is no handle");
  }

  // ---- sections ----

  void readTables() {
    Token token;
    while (scanner_.next(token)) {
      if (token.code == 999) continue;
      if (token.code != 0) fail(token.offset, "expected a table, found group " + spelled(token));
      if (token.value == "ENDSEC") {
        parts_.file.tablesEnd = token.offset;
        return;
      }
      if (token.value != "TABLE") fail(token.offset, "expected a table, found " + shown(token.value));
      needVersion(token.offset);
      readTable(token);
    }
    fail(parts_.file.text.size(), "the file ends inside the TABLES section");
  }

  void readTable(const Token& begin) {
    const Scanned head = scanRecord(begin, Kind::TablePart);
    head.slot->type = DxfType::TableHead;
    const DxfType recordType = parts_.types.enter(trimmed(head.name));
    SymbolTable& table = parts_.tables.enter(recordType);
    const bool isFirst = table.head == nullptr;  // a table twice: records join, the first head stays
    if (isFirst) table.head = head.slot;
    Token token;
    while (scanner_.next(token)) {
      if (token.value == "ENDTAB") {
        if (isFirst) table.insertAt = token.offset;
        return;
      }
      if (token.value == "ENDSEC" || token.value == "EOF") break;
      const Scanned record = scanRecord(token, Kind::TablePart);
      // Tables of unknown names have records of any unknown type.
      const DxfType type = record.slot->type;
      if (type != recordType && (type < DxfType::FirstOther || recordType < DxfType::FirstOther)) failMisplaced(token);
      record.slot->owner = table.head;
      table.records.push_back(record.slot);
      table.byName.try_emplace(parts_.file.codec.decode(record.name), record.slot);
    }
    fail(token.offset, "a table is not ended by ENDTAB");
  }

  void readBlocks() {
    Token token;
    while (scanner_.next(token)) {
      if (token.code == 999) continue;
      if (token.code != 0) fail(token.offset, "expected a block, found group " + spelled(token));
      if (token.value == "ENDSEC") {
        parts_.file.blocksEnd = token.offset;
        return;
      }
      if (token.value != "BLOCK") fail(token.offset, "expected a block, found " + shown(token.value));
      needVersion(token.offset);
      Scanned begin = scanRecord(token, Kind::Entity);
      begin.slot->flags |= database::kSubEntity;
      blocks_.push_back({begin.slot, begin.owner, begin.name, {}, nullptr});
      readEntities(&blocks_.back());
    }
    fail(parts_.file.text.size(), "the file ends inside the BLOCKS section");
  }

  struct PendingBlock {
    Slot* begin;
    std::uint64_t owner;
    std::string_view name;
    std::vector<Slot*> entities;
    Slot* end;
  };

  /// Entities up to ENDSEC (block null) or ENDBLK; answers the offset of the end.
  std::size_t readEntities(PendingBlock* block) {
    Slot* compound = nullptr;  // polyline or reference whose parts follow
    Slot** link = nullptr;
    bool isEnded = false;  // by SEQEND, just now
    Token token;
    while (scanner_.next(token)) {
      if (token.code == 999) continue;
      if (token.code != 0) fail(token.offset, "expected an entity, found group " + spelled(token));
      if (token.value == "ENDSEC" || token.value == "EOF" || token.value == "SECTION") {
        if (block != nullptr) fail(token.offset, "a block is not ended by ENDBLK");
        if (token.value != "ENDSEC") fail(token.offset, "a section is not ended by ENDSEC");
        return token.offset;
      }
      needVersion(token.offset);
      const Scanned scanned = scanRecord(token, Kind::Entity);
      Slot* const slot = scanned.slot;
      if (slot->type == DxfType::EndBlk) {
        if (block == nullptr) fail(token.offset, "ENDBLK outside a block");
        slot->flags |= database::kSubEntity;
        block->end = slot;
        return token.offset;
      }
      if (!isEntityType(slot->type) || token.value == "ENDTAB") failMisplaced(token);
      const bool isPart = compound != nullptr && isPartType(slot->type);
      if (isPart) {
        slot->flags |= database::kSubEntity;
        slot->owner = compound;
        *link = slot;
        link = &slot->nextSub;
        isEnded = slot->type == DxfType::SeqEnd;
        if (isEnded) compound = nullptr;
        continue;
      }
      if (isEnded && isPartType(slot->type)) fail(token.offset, shown(token.value) + " stands behind its SEQEND");
      isEnded = false;
      compound = nullptr;
      if (isOldPolyline(slot->type) || (slot->type == DxfType::Insert && scanned.hasAttributes)) {
        compound = slot;
        link = &slot->madeSub;
      }
      if (block != nullptr) {
        block->entities.push_back(slot);
      } else {
        if (scanned.paper) slot->flags |= database::kPaper;
        entities_.push_back(slot);
      }
    }
    fail(parts_.file.text.size(), "the file ends inside entities");
  }

  /// Types that may stand in blocks. Those that are not known are taken for what their section holds.
  static bool isEntityType(DxfType type) { return type < DxfType::Block || type >= DxfType::FirstOther; }
  static bool isObjectType(DxfType type) {
    return type == DxfType::Unknown || (type >= DxfType::Dictionary && type <= DxfType::Layout) ||
           type >= DxfType::FirstOther;
  }
  static bool isPartType(DxfType type) {
    return type == DxfType::Vertex2d || type == DxfType::Vertex3d || type == DxfType::VertexOther ||
           type == DxfType::Attrib || type == DxfType::SeqEnd;
  }
  static bool isOldPolyline(DxfType type) { return type >= DxfType::Polyline2d && type <= DxfType::PolyFaceMesh; }

  void readObjects() {
    Token token;
    while (scanner_.next(token)) {
      if (token.code == 999) continue;
      if (token.code != 0) fail(token.offset, "expected an object, found group " + spelled(token));
      if (token.value == "ENDSEC") {
        parts_.file.objectsEnd = token.offset;
        return;
      }
      if (token.value == "EOF" || token.value == "SECTION") fail(token.offset, "a section is not ended by ENDSEC");
      needVersion(token.offset);
      const Scanned object = scanRecord(token, Kind::Object);
      if (!isObjectType(object.slot->type) || token.value == "ENDTAB") failMisplaced(token);
      const bool isDictionary = object.slot->type == DxfType::Dictionary;
      if (parts_.dictionaries.root() == nullptr && isDictionary && object.owner == 0) {
        parts_.dictionaries.setRoot(object.slot);
      }
      if (firstDictionary_ == nullptr && isDictionary) firstDictionary_ = object.slot;
    }
    fail(parts_.file.text.size(), "the file ends inside the OBJECTS section");
  }

  // ---- when all is read ----

  void finish() {
    if (!versionKnown_) checkVersion("");
    if (parts_.dictionaries.root() == nullptr) parts_.dictionaries.setRoot(firstDictionary_);
    parts_.handles.index(parts_.slots);
    refuseRepeatedHandles();
    giveMissingHandles();
    std::uint64_t lastHandle = 0;  // neighbours mostly have one owner
    Slot* lastOwner = nullptr;
    for (const PendingOwner& pending : pending_) {
      if (pending.slot->owner != nullptr) continue;
      if (pending.owner != lastHandle) {
        lastHandle = pending.owner;
        lastOwner = db_.findHandle(pending.owner);
      }
      pending.slot->owner = lastOwner;
    }
    for (Slot* const layer : db_.records(DxfType::Layer)) parts_.layers.bind(layer);
    bindBlocks();
    db_.setUnmodified();
  }

  void refuseRepeatedHandles() const {
    if (const Slot* const repeated = parts_.handles.repeated()) failAt(*repeated, "the handle is used twice");
  }

  [[noreturn]] void failAt(const Slot& slot, const std::string& what) const {
    fail(static_cast<std::size_t>(slot.begin - parts_.file.text.data()), text::formatHandle(slot.handle) + ": " + what);
  }

  void giveMissingHandles() {
    parts_.slots.forEach([&](Slot& slot) {
      if ((slot.flags & database::kNeedsHandle) != 0) parts_.handles.enter(slot);
    });
  }

  void bindBlocks() {
    for (PendingBlock& pending : blocks_) {
      Slot* record = db_.findHandle(pending.owner);
      if (record == nullptr || record->type != DxfType::BlockRecord) {
        record = db_.findRecord(DxfType::BlockRecord, parts_.file.codec.decode(pending.name));
      }
      if (record == nullptr) failAt(*pending.begin, "the block has no block record");
      if (parts_.blocks.contents(record).begin != nullptr) failAt(*pending.begin, "two blocks have one block record");
      BlockContents& block = parts_.blocks.contents(record);
      block.record = record;
      block.begin = pending.begin;
      block.end = pending.end;
      pending.begin->owner = record;
      if (pending.end != nullptr) pending.end->owner = record;
      for (Slot* const entity : pending.entities) entity->owner = record;
      block.entities = std::move(pending.entities);
      parts_.blocks.enter(record);
    }
    Slot* const modelSpace = findSpace(L"*Model_Space");
    if (modelSpace == nullptr) throw problemOf(Code::FileMalformed, "the drawing has no model space");
    Slot* const paperSpace = findSpace(L"*Paper_Space");
    parts_.blocks.setSpaces(modelSpace, paperSpace);
    for (Slot* const entity : entities_) {
      Slot* owner = entity->owner;
      if (owner == nullptr || owner->type != DxfType::BlockRecord) {
        const bool inPaper = (entity->flags & database::kPaper) != 0 && paperSpace != nullptr;
        owner = inPaper ? paperSpace : modelSpace;
        entity->owner = owner;
      }
      parts_.blocks.contents(owner).entities.push_back(entity);
    }
  }

  /// The record of a space; some write blanks around its name.
  Slot* findSpace(std::wstring_view name) const {
    if (Slot* const record = db_.findRecord(DxfType::BlockRecord, name)) return record;
    for (Slot* const record : db_.records(DxfType::BlockRecord)) {
      if (text::equalFolded(text::fromUtf8(trimmed(text::toUtf8(db_.recordName(*record)))), name)) return record;
    }
    return nullptr;
  }

  DrawingDatabase& db_;
  DrawingDatabase::Parts& parts_;
  std::string name_;
  Scanner scanner_;
  std::vector<PendingOwner> pending_;
  std::vector<PendingBlock> blocks_;
  std::vector<Slot*> entities_;
  Slot* firstDictionary_ = nullptr;
  bool versionKnown_ = false;
  bool isUtf8_ = false;  // by its first bytes, whatever the version
};

}  // namespace

Result<> readWellFormed(DrawingDatabase& db, std::string text, const std::string& name) {
  try {
    Reader(db, name).read(std::move(text));
    return {};
  } catch (const Problem& problem) {
    return problem;
  }
}

}  // namespace host::dxf
