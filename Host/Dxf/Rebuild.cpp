#include "Dxf/Rebuild.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <unordered_map>
#include <unordered_set>

#include "Database/DefaultDrawing.h"
#include "Database/Record.h"
#include "Dxf/Fields.h"
#include "Dxf/Upgrade.h"
#include "Text/Codec.h"
#include "Text/Text.h"

namespace host::dxf {

using database::readTag;
using database::Tag;
using database::TagWriter;

namespace {

constexpr std::size_t kLinetypes = 1;
constexpr std::size_t kLayers = 2;
constexpr std::size_t kStyles = 3;
constexpr std::size_t kAppIds = 6;
constexpr std::size_t kDimStyles = 7;
constexpr std::size_t kBlockRecords = 8;
constexpr int kFirstVersion = 1015;
constexpr int kFirstUtf8Version = 1021;

enum class Kind { Entity, TableRecord, Object };

std::string_view trimmed(std::string_view text) {
  Tag tag;
  tag.value = text;
  return tag.trimmed();
}

std::string_view programOf(int version) {
  constexpr std::pair<int, std::string_view> kPrograms[] = {{1014, "R14"}, {1012, "R13"},  {1009, "R12"}, {1006, "R10"},
                                                            {1004, "R9"},  {1003, "R2.6"}, {1002, "R2.5"}};
  for (const auto& [first, name] : kPrograms) {
    if (version >= first) return name;
  }
  return "old";
}

/// Variables that drawings of 2000 no longer have.
bool isObsolete(std::string_view variable) {
  static const std::unordered_set<std::string_view> kObsolete = {
      "$FASTZOOM",  "$GRIDMODE", "$GRIDUNIT",     "$SNAPANG",  "$SNAPBASE", "$SNAPISOPAIR", "$SNAPMODE",
      "$SNAPSTYLE", "$SNAPUNIT", "$VIEWCTR",      "$VIEWDIR",  "$VIEWSIZE", "$FLATLAND",    "$HANDLING",
      "$ATTDIA",    "$ATTREQ",   "$BLIPMODE",     "$COORDS",   "$DRAGMODE", "$OSMODE",      "$PICKSTYLE",
      "$MENU",      "$DELOBJ",   "$ACADMAINTVER", "$AXISMODE", "$AXISUNIT", "$DRAGP1",      "$DRAGP2"};
  return kObsolete.contains(variable);
}

class Rebuilder {
 public:
  Rebuilder(Outline outline, std::string_view lineEnd, ProblemLog& problems)
      : outline_(std::move(outline)),
        lineEnd_(lineEnd),
        problems_(problems),
        basicText_(database::defaultDrawingText()) {
    ProblemLog silent(basicText_, false);
    basic_ = outlineOf(basicText_, silent);
  }

  Rebuilt run() {
    findVersion();
    giveHandles();
    matchTables();
    matchBlocks();
    findRoot();
    cutBlockCycles();

    std::string blocks;
    for (Outline::Block& block : outline_.blocks) writeBlock(blocks, block);
    for (const Outline::Block& block : basic_.blocks) writeBasicBlock(blocks, block);
    const std::string entities = writeEntities();
    const std::string objects = writeObjects();
    addMissingNames();
    const std::string tables = writeTables();

    Rebuilt result;
    result.wasUpgraded = isOld_;
    std::string& out = result.text;
    out.reserve(tables.size() + blocks.size() + entities.size() + objects.size() + 10000);
    writeHeader(out);
    writeClasses(out);
    writeSection(out, "TABLES", tables);
    writeSection(out, "BLOCKS", blocks);
    writeSection(out, "ENTITIES", entities);
    writeSection(out, "OBJECTS", objects);
    for (const Outline::Section& section : outline_.others) {
      std::string content(section.front);
      for (const RawRecord& record : section.records) content += record.bytes;
      writeSection(out, section.name, content);
    }
    out += writer().raw(0, "EOF").str();
    return result;
  }

 private:
  TagWriter writer() const { return TagWriter(codec_, lineEnd_); }

  // ---- version and names ----

  std::optional<std::string_view> variable(std::string_view name, int code) const {
    for (const Outline::Variable& candidate : outline_.variables) {
      if (candidate.name == name) return firstValue(candidate.bytes, code);
    }
    return std::nullopt;
  }

  bool hasMarks() const {
    const auto isMarked = [](const RawRecord& record) { return record.isMarked; };
    return std::any_of(outline_.entities.begin(), outline_.entities.end(), isMarked) ||
           std::any_of(outline_.blocks.begin(), outline_.blocks.end(),
                       [&](const Outline::Block& block) { return block.begin.isMarked; }) ||
           std::any_of(outline_.objects.begin(), outline_.objects.end(), isMarked);
  }

  void findVersion() {
    const std::string_view named = trimmed(variable("$ACADVER", 1).value_or(""));
    int number = 0;
    if (named.size() >= 6 && named.substr(0, 2) == "AC") std::from_chars(named.data() + 2, named.data() + 6, number);
    constexpr int kOldest = 1001;
    if (number < kOldest) {
      number = hasMarks() ? kFirstVersion : 1009;
      const std::string what = named.empty() ? "the drawing names no version" : "unknown version " + shown(named);
      problems_.note(what + "; it is read as AC" + std::to_string(number));
    }
    isOld_ = number < kFirstVersion;
    version_ = isOld_ ? kFirstVersion : number;
    if (isOld_) {
      problems_.note("the drawing is of version AC" + std::to_string(number) + " (" + std::string(programOf(number)) +
                     "); it was upgraded to AC1015 (2000)");
    }
    if (version_ < kFirstUtf8Version) {
      codePage_ = std::string(trimmed(variable("$DWGCODEPAGE", 3).value_or("ANSI_1252")));
      codec_ = text::Codec::forCodePage(codePage_);
    } else {
      codePage_ = std::string(trimmed(variable("$DWGCODEPAGE", 3).value_or("ANSI_1252")));
    }
  }

  std::wstring folded(std::string_view raw) const { return text::folded(codec_.decode(trimmed(raw))); }
  static std::string_view nameOf(const RawRecord& record) { return firstValue(record.bytes, 2).value_or(""); }

  // ---- handles ----

  template <class Visit>
  void forEachRecord(const Visit& visit) {
    for (Outline::Table& table : outline_.tables) {
      if (table.head) visit(*table.head, Kind::TableRecord);
      for (RawRecord& record : table.records) visit(record, Kind::TableRecord);
    }
    for (Outline::Block& block : outline_.blocks) {
      visit(block.begin, Kind::Entity);
      for (RawRecord& record : block.entities) visit(record, Kind::Entity);
      if (block.end) visit(*block.end, Kind::Entity);
    }
    for (RawRecord& record : outline_.entities) visit(record, Kind::Entity);
    for (RawRecord& record : outline_.objects) visit(record, Kind::Object);
  }

  void giveHandles() {
    forEachRecord([&](RawRecord& record, Kind) {
      if (record.handle == 0) return;
      nextHandle_ = std::max(nextHandle_, record.handle + 1);
      if (!handles_.insert(record.handle).second) {
        problems_.add(record.at, record.handle,
                      "the handle is used twice; this " + std::string(record.type.substr(0, 40)) + " gets another");
        record.handle = 0;
      }
    });
    forEachRecord([&](RawRecord& record, Kind) {
      if (record.handle == 0) record.handle = newHandle();
    });
    // Handles of added objects keep their distances.
    basicOffset_ = nextHandle_;
    constexpr std::uint64_t kRoom = 0x100;
    nextHandle_ += kRoom;
  }

  std::uint64_t newHandle() {
    handles_.insert(nextHandle_);
    return nextHandle_++;
  }

  /// The handle that stands for one of the basic drawing.
  std::uint64_t basicHandle(std::uint64_t handle) const {
    if (handle == 0) return 0;
    const auto found = basicHandles_.find(handle);
    return found != basicHandles_.end() ? found->second : basicOffset_ + handle;
  }

  // ---- tables and blocks ----

  void matchTables() {
    for (std::size_t i = 0; i < kTableNames.size(); ++i) {
      Outline::Table& own = outline_.tables[i];
      Outline::Table& basic = basic_.tables[i];
      if (!own.head) {
        own.head = basic.head;
        own.head->isOwn = false;
        own.head->owner = 0;
        own.head->handle = basicHandle(basic.head->handle);
        handles_.insert(own.head->handle);
      } else {
        basicHandles_[basic.head->handle] = own.head->handle;
      }
      std::unordered_map<std::wstring, std::uint64_t> names;
      for (const RawRecord& record : own.records) names.try_emplace(folded(nameOf(record)), record.handle);
      for (RawRecord record : basic.records) {
        const auto [found, isMissing] = names.try_emplace(folded(nameOf(record)), basicHandle(record.handle));
        if (!isMissing) {
          basicHandles_[record.handle] = found->second;
          continue;
        }
        record.isOwn = false;
        record.handle = found->second;
        handles_.insert(record.handle);
        own.records.push_back(record);
      }
      for (const auto& [name, handle] : names) names_[i].insert(name);
    }
  }

  /// R12 names the spaces with a dollar sign.
  std::string_view blockName(const RawRecord& begin) const {
    const std::string_view name = trimmed(nameOf(begin));
    if (isOld_ && text::equalFolded(codec_.decode(name), L"$MODEL_SPACE")) return "*Model_Space";
    if (isOld_ && text::equalFolded(codec_.decode(name), L"$PAPER_SPACE")) return "*Paper_Space";
    return name;
  }

  /// Every block gets its record, every record its block.
  void matchBlocks() {
    std::unordered_set<std::wstring> taken;
    std::vector<Outline::Block> kept;
    kept.reserve(outline_.blocks.size());
    std::vector<RawRecord>& records = outline_.tables[kBlockRecords].records;
    std::unordered_map<std::wstring, std::uint64_t> byName;
    for (const RawRecord& record : records) byName.try_emplace(folded(nameOf(record)), record.handle);
    for (Outline::Block& block : outline_.blocks) {
      const std::string_view name = blockName(block.begin);
      const std::wstring key = folded(name);
      if (name.empty() || !taken.insert(key).second) {
        problems_.leftOut(block.begin.at, "BLOCK", block.begin.handle,
                          name.empty() ? "it has no name" : "another block has the name " + shown(name));
        for (const RawRecord& record : block.entities) {
          problems_.leftOut(record.at, record.type, record.handle, "its block was left out");
        }
        continue;
      }
      const auto found = byName.find(key);
      std::uint64_t recordHandle = found != byName.end() ? found->second : 0;
      if (recordHandle == 0) {
        recordHandle = newHandle();
        byName.emplace(key, recordHandle);
        if (!isOld_) problems_.add(block.begin.at, block.begin.handle, "the block had no block record; it got one");
        addRecord(kBlockRecords, name, recordHandle);
      }
      block.begin.owner = recordHandle;
      kept.push_back(std::move(block));
    }
    outline_.blocks = std::move(kept);
    // Records without a block: the spaces come from the basic drawing, others are made empty.
    std::vector<Outline::Block> basic;
    for (Outline::Block& block : basic_.blocks) {
      if (!taken.contains(folded(nameOf(block.begin)))) {
        taken.insert(folded(nameOf(block.begin)));
        basic.push_back(std::move(block));
      }
    }
    basic_.blocks = std::move(basic);
    for (const RawRecord& record : records) {
      if (!taken.insert(folded(nameOf(record))).second) continue;
      Outline::Block block;
      block.begin.type = "BLOCK";
      block.begin.bytes = keep(writer().raw(0, "BLOCK").raw(8, "0").raw(2, nameOf(record)).str());
      block.begin.handle = newHandle();
      block.begin.owner = record.handle;
      problems_.add(record.at, record.handle, "the block record had no block; an empty one was added");
      outline_.blocks.push_back(std::move(block));
    }
    model_ = byName[L"*model_space"];
    paper_ = byName[L"*paper_space"];
    for (const auto& [name, handle] : byName) blockNames_.emplace(name, handle);
  }

  std::string_view keep(std::string bytes) {
    outline_.mended.push_back(std::move(bytes));
    return outline_.mended.back();
  }

  /// A new record of a table with nothing but its name and what its kind cannot do without.
  void addRecord(std::size_t table, std::string_view name, std::uint64_t handle) {
    TagWriter out = writer();
    out.raw(0, kTableNames[table]).raw(2, name).integer(70, 0);
    if (table == kLayers) out.integer(62, 7).raw(6, "Continuous");
    if (table == kLinetypes) out.raw(3, "").integer(72, 65).integer(73, 0).real(40, 0);
    if (table == kStyles) {
      out.real(40, 0).real(41, 1).real(50, 0).integer(71, 0).real(42, 2.5).raw(3, "txt").raw(4, "");
    }
    RawRecord record;
    record.type = kTableNames[table];
    record.bytes = keep(out.take());
    record.handle = handle;
    outline_.tables[table].records.push_back(record);
  }

  /// Names that entities use get a record each.
  void addMissingNames() {
    for (Outline::Table& table : outline_.tables) {
      for (const RawRecord& record : table.records) useNames(record, Kind::TableRecord);
    }
    for (const auto& [table, raw] : usedInOrder_) {
      const std::wstring key = folded(raw.name);
      if (key.empty() || names_[table].contains(key)) continue;
      names_[table].insert(key);
      if (!isOld_) {
        problems_.add(
            raw.at, raw.handle,
            std::string(kTableNames[table]) + " " + shown(raw.name) + " is used but was not defined; it was added");
      }
      addRecord(table, raw.name, newHandle());
    }
  }

  void use(std::size_t table, std::string_view raw, const RawRecord& by) {
    constexpr std::size_t kLongest = 255;
    const std::string_view name = trimmed(raw);
    if (name.empty() || name.size() > kLongest) return;
    if (used_[table].insert(name).second) usedInOrder_.push_back({table, {name, by.at, by.handle}});
  }

  std::string writeTables() {
    std::string out;
    for (std::size_t i = 0; i < kTableNames.size(); ++i) {
      Outline::Table& table = outline_.tables[i];
      RawRecord& head = *table.head;
      if (head.isOwn && head.isMarked) {
        emit(out, head, 0, Kind::TableRecord);
      } else {
        TagWriter tags = writer();
        tags.raw(0, "TABLE").raw(2, kTableNames[i]).handle(5, head.handle).handle(330, 0);
        tags.raw(100, "AcDbSymbolTable").integer(70, static_cast<std::int64_t>(table.records.size()));
        if (i == kDimStyles) tags.raw(100, "AcDbDimStyleTable").integer(71, 0);
        out += tags.str();
      }
      for (RawRecord& record : table.records) {
        if (!record.isOwn) {
          emitBasic(out, record, head.handle);
        } else if (record.isMarked) {
          emit(out, record, head.handle, Kind::TableRecord);
        } else {
          TagWriter tags = writer();
          upgradeTableRecord(tags, record, {record.handle, head.handle}, i);
          if (i == kBlockRecords && !firstValue(record.bytes, 340)) tags.handle(340, layoutOf(record.handle));
          out += tags.str();
        }
      }
      out += writer().raw(0, "ENDTAB").str();
    }
    return out;
  }

  std::uint64_t layoutOf(std::uint64_t blockRecord) const {
    const auto found = layouts_.find(blockRecord);
    return found != layouts_.end() ? found->second : 0;
  }

  // ---- blocks and entities ----

  void writeBlock(std::string& out, Outline::Block& block) {
    const std::uint64_t owner = block.begin.owner;
    RawRecord begin = block.begin;
    if (begin.isMarked) {
      emit(out, begin, owner, Kind::Entity);
    } else {
      TagWriter tags = writer();
      upgradeBlock(tags, begin, {begin.handle, owner}, blockName(begin));
      out += tags.str();
    }
    writeEntityList(out, block.entities, [&](const RawRecord&) { return owner; });
    if (block.end) {
      emit(out, *block.end, owner, Kind::Entity);
    } else {
      TagWriter tags = writer();
      tags.raw(0, "ENDBLK").handle(5, newHandle()).handle(330, owner).raw(100, "AcDbEntity").raw(8, "0");
      out += tags.raw(100, "AcDbBlockEnd").str();
    }
  }

  void writeBasicBlock(std::string& out, const Outline::Block& block) {
    const std::uint64_t owner = basicHandle(block.begin.owner);
    for (RawRecord record : {block.begin, *block.end}) {
      record.handle = basicHandle(record.handle);
      handles_.insert(record.handle);
      emitBasic(out, record, owner);
    }
  }

  std::string writeEntities() {
    std::string out;
    writeEntityList(out, outline_.entities, [&](const RawRecord& record) {
      if (record.owner == model_ || record.owner == paper_) return record.owner;
      Tag tag;
      tag.value = firstValue(record.bytes, 67).value_or("");
      return tag.integer() != 0 ? paper_ : model_;
    });
    return out;
  }

  static bool isPart(std::string_view type) { return type == "VERTEX" || type == "ATTRIB" || type == "SEQEND"; }

  static int flagsOf(const RawRecord& record) {
    Tag tag;
    tag.value = firstValue(record.bytes, 70).value_or("");
    return static_cast<int>(tag.integer() & 0xFFFF);
  }

  template <class OwnerOf>
  void writeEntityList(std::string& out, std::vector<RawRecord>& records, const OwnerOf& ownerOf) {
    for (std::size_t i = 0; i < records.size();) {
      RawRecord& record = records[i++];
      if (isPart(record.type)) {
        problems_.leftOut(record.at, record.type, record.handle, "it belongs to no polyline or reference");
        continue;
      }
      const bool isPolyline = record.type == "POLYLINE";
      bool hasParts = isPolyline;
      if (record.type == "INSERT") {
        Tag tag;
        tag.value = firstValue(record.bytes, 66).value_or("");
        hasParts = tag.integer() != 0;
      }
      const std::size_t firstPart = i;
      const std::string_view partType = isPolyline ? "VERTEX" : "ATTRIB";
      while (hasParts && i < records.size() && records[i].type == partType) ++i;
      const std::size_t endOfParts = i;
      const bool hasEnd = hasParts && i < records.size() && records[i].type == "SEQEND";
      if (hasEnd) ++i;
      if (const std::string why = whyNot(record); !why.empty()) {
        problems_.leftOut(record.at, record.type, record.handle, why);
        continue;
      }
      const std::uint64_t owner = ownerOf(record);
      const bool isLight = isPolyline && isOld_ && isLightweight(record);
      if (isPolyline && firstPart == endOfParts) {
        problems_.leftOut(record.at, record.type, record.handle, "it has no vertices");
        continue;
      }
      if (isLight) {
        TagWriter tags = writer();
        const std::vector<RawRecord> vertices(records.begin() + static_cast<std::ptrdiff_t>(firstPart),
                                              records.begin() + static_cast<std::ptrdiff_t>(endOfParts));
        writeLightweight(tags, record, vertices, {record.handle, owner});
        useNames(record, Kind::Entity);
        out += tags.str();
        continue;
      }
      emit(out, record, owner, Kind::Entity);
      const int flags = isPolyline ? flagsOf(record) : 0;
      for (std::size_t part = firstPart; part < endOfParts; ++part) {
        emit(out, records[part], partOwner(records[part], record, owner), Kind::Entity, flags);
      }
      if (hasEnd) {
        emit(out, records[i - 1], partOwner(records[i - 1], record, owner), Kind::Entity);
      } else if (hasParts) {
        if (!isOld_) problems_.add(record.at, record.handle, "it is not ended by SEQEND; one was added");
        TagWriter tags = writer();
        tags.raw(0, "SEQEND").handle(5, newHandle()).handle(330, record.handle).raw(100, "AcDbEntity");
        out += tags.raw(8, trimmed(firstValue(record.bytes, 8).value_or("0"))).str();
      }
    }
  }

  /// Some programs give parts the block as their owner; that is left alone.
  static std::uint64_t partOwner(const RawRecord& part, const RawRecord& whole, std::uint64_t owner) {
    return part.owner == owner && part.isMarked ? owner : whole.handle;
  }

  std::string whyNot(const RawRecord& record) const {
    if (record.type != "INSERT") return {};
    if (cut_.contains(record.handle)) return "its block contains itself";
    const std::string_view name = trimmed(nameOf(record));
    if (name.empty()) return "it names no block";
    return blockNames_.contains(folded(name)) ? "" : "its block " + shown(name) + " is not in the drawing";
  }

  /// References that close a circle of blocks are left out.
  void cutBlockCycles() {
    struct Reference {
      std::size_t block;
      std::uint64_t insert;
    };
    std::unordered_map<std::wstring, std::size_t> index;
    for (std::size_t i = 0; i < outline_.blocks.size(); ++i)
      index.emplace(folded(blockName(outline_.blocks[i].begin)), i);
    std::vector<std::vector<Reference>> references(outline_.blocks.size());
    for (std::size_t i = 0; i < outline_.blocks.size(); ++i) {
      for (const RawRecord& record : outline_.blocks[i].entities) {
        if (record.type != "INSERT") continue;
        const auto found = index.find(folded(nameOf(record)));
        if (found != index.end()) references[i].push_back({found->second, record.handle});
      }
    }
    enum class State : char { New, Open, Done };
    std::vector<State> states(references.size(), State::New);
    std::vector<std::pair<std::size_t, std::size_t>> path;  // block, next reference
    for (std::size_t start = 0; start < references.size(); ++start) {
      if (states[start] != State::New) continue;
      path.emplace_back(start, 0);
      states[start] = State::Open;
      while (!path.empty()) {
        auto& [block, next] = path.back();
        if (next == references[block].size()) {
          states[block] = State::Done;
          path.pop_back();
          continue;
        }
        const Reference reference = references[block][next++];
        if (states[reference.block] == State::Open) cut_.insert(reference.insert);
        if (states[reference.block] != State::New) continue;
        states[reference.block] = State::Open;
        path.emplace_back(reference.block, 0);
      }
    }
  }

  // ---- objects ----

  static bool isDictionary(const RawRecord& record) {
    return record.type == "DICTIONARY" || record.type == "ACDBDICTIONARYWDFLT";
  }

  void findRoot() {
    for (RawRecord& record : outline_.objects) {
      if (record.type != "DICTIONARY") continue;
      if (root_ == nullptr || (root_->owner != 0 && record.owner == 0)) root_ = &record;
    }
    std::unordered_set<std::wstring> entries;
    if (root_ != nullptr) {
      basicHandles_[basic_.objects.front().handle] = root_->handle;
      Tag tag;
      for (std::string_view rest = root_->bytes; readTag(rest, tag) && tag.code < 1000;) {
        if (tag.code == 3) entries.insert(folded(tag.value));
      }
    }
    // What the root lacks comes from the basic drawing, with what it holds.
    std::unordered_set<std::uint64_t> wanted;
    Tag tag;
    std::string_view key;
    for (std::string_view rest = basic_.objects.front().bytes; readTag(rest, tag);) {
      if (tag.code == 3) key = tag.value;
      if (tag.code != 350 || entries.contains(folded(key))) continue;
      wanted.insert(tag.handle());
      missingEntries_.emplace_back(key, basicHandle(tag.handle()));
      if (root_ != nullptr && !isOld_) {
        problems_.add(root_->at, root_->handle, "the dictionary " + std::string(key) + " was missing; it was added");
      }
    }
    for (std::size_t i = 0; i < basic_.objects.size(); ++i) {
      RawRecord& record = basic_.objects[i];
      const bool isRoot = i == 0;
      if (isRoot ? root_ != nullptr : !wanted.contains(record.handle) && !wanted.contains(record.owner)) continue;
      if (record.type == "LAYOUT") {
        const std::uint64_t block = basicHandle(lastHandle(record, 330));
        layouts_[block] = basicHandle(record.handle);
      }
      handles_.insert(basicHandle(record.handle));
      basicObjects_.push_back(&record);
    }
    if (root_ == nullptr) rootHandle_ = basicHandle(basic_.objects.front().handle);
    if (root_ != nullptr) rootHandle_ = root_->handle;
  }

  static std::uint64_t lastHandle(const RawRecord& record, int code) {
    std::uint64_t handle = 0;
    Tag tag;
    for (std::string_view rest = record.bytes; readTag(rest, tag);) {
      if (tag.code == code) handle = tag.handle();
    }
    return handle;
  }

  /// Owners of objects: as they say, unless nothing of that handle is there or owners go in a circle; then the
  /// dictionary that lists the object, or the root.
  void settleOwners() {
    std::unordered_map<std::uint64_t, std::uint64_t> listed;
    std::unordered_map<std::uint64_t, RawRecord*> byHandle;
    for (RawRecord& record : outline_.objects) {
      byHandle.emplace(record.handle, &record);
      if (!isDictionary(record)) continue;
      Tag tag;
      for (std::string_view rest = record.bytes; readTag(rest, tag) && tag.code < 1000;) {
        if (tag.code == 350 || tag.code == 360) listed.try_emplace(tag.handle(), record.handle);
      }
    }
    const auto mend = [&](RawRecord& record, const char* why) {
      const auto found = listed.find(record.handle);
      const bool isListed = found != listed.end() && found->second != record.handle && found->second != record.owner;
      record.owner = isListed ? found->second : rootHandle_;
      if (!isOld_) problems_.add(record.at, record.handle, why);
    };
    for (RawRecord& record : outline_.objects) {
      if (&record == root_) {
        record.owner = 0;
      } else if (record.owner == 0 || !handles_.contains(record.owner)) {
        mend(record, record.owner == 0 ? "the object had no owner; it got one"
                                       : "the owner of the object is not in the drawing; it got another");
      }
    }
    std::unordered_map<std::uint64_t, std::size_t> seen;  // handle -> walk in which it was passed
    for (std::size_t walk = 0; walk < outline_.objects.size(); ++walk) {
      RawRecord* at = &outline_.objects[walk];
      while (at != nullptr && at != root_) {
        const auto [place, isNew] = seen.try_emplace(at->handle, walk);
        if (!isNew) {
          if (place->second == walk) {
            at->owner = rootHandle_;
            problems_.add(at->at, at->handle, "owners go in a circle; the object now belongs to the root");
          }
          break;
        }
        const auto next = byHandle.find(at->owner);
        at = next != byHandle.end() ? next->second : nullptr;
      }
    }
  }

  std::string writeObjects() {
    settleOwners();
    std::string out;
    if (root_ == nullptr) {
      for (const RawRecord* const record : basicObjects_) emitBasicObject(out, *record);
    } else {
      emit(out, *root_, 0, Kind::Object);
    }
    for (RawRecord& record : outline_.objects) {
      if (&record != root_) emit(out, record, record.owner, Kind::Object);
    }
    if (root_ != nullptr) {
      for (const RawRecord* const record : basicObjects_) emitBasicObject(out, *record);
    }
    return out;
  }

  void emitBasicObject(std::string& out, const RawRecord& record) {
    RawRecord copy = record;
    copy.handle = basicHandle(record.handle);
    emitBasic(out, copy, basicHandle(record.owner));
  }

  // ---- records ----

  /// A record of the basic drawing, with handles of this one.
  void emitBasic(std::string& out, const RawRecord& record, std::uint64_t owner) {
    TagWriter tags = writer();
    bool isFront = true;
    bool isInGroup = false;
    Tag tag;
    for (std::string_view rest = record.bytes; readTag(rest, tag);) {
      if (tag.code == 100) isFront = false;
      if (tag.code == 102) isInGroup = tag.value.starts_with("{");
      if (isFront && (tag.code == 5 || tag.code == 105)) {
        tags.handle(tag.code, record.handle);
      } else if (isFront && !isInGroup && tag.code == 330) {
        tags.handle(330, owner);
      } else if ((tag.code >= 330 && tag.code <= 369) || (tag.code >= 390 && tag.code <= 399)) {
        tags.handle(tag.code, basicHandle(tag.handle()));
      } else {
        tags.raw(tag.code, tag.value);
      }
    }
    out += tags.str();
  }

  void useNames(const RawRecord& record, Kind kind) {
    const std::string_view type = record.type;
    const bool isText = type == "TEXT" || type == "ATTRIB" || type == "ATTDEF" || type == "MTEXT";
    const bool hasStyle = type == "DIMENSION" || type == "LEADER" || type == "TOLERANCE";
    const bool isEntity = kind == Kind::Entity;
    Tag tag;
    for (std::string_view rest = record.bytes; readTag(rest, tag);) {
      if (tag.code == 8 && isEntity) use(kLayers, tag.value, record);
      if (tag.code == 6 && (isEntity || type == "LAYER")) use(kLinetypes, tag.value, record);
      if (tag.code == 7 && isText) use(kStyles, tag.value, record);
      if (tag.code == 3 && hasStyle) use(kDimStyles, tag.value, record);
      if (tag.code == 1001) use(kAppIds, tag.value, record);
    }
  }

  /// A record of the drawing with its handle and its owner; its own bytes when nothing had to change.
  void emit(std::string& out, RawRecord& record, std::uint64_t owner, Kind kind, int polylineFlags = 0) {
    useNames(record, kind);
    if (kind != Kind::Entity || record.isMarked) {
      emitMended(out, record, owner, kind);
      return;
    }
    TagWriter tags = writer();
    upgradeEntity(tags, record, {record.handle, owner}, polylineFlags);
    RawRecord marked = record;
    const std::string bytes = tags.take();
    marked.bytes = bytes;
    marked.isMarked = true;
    emitMended(out, marked, owner, kind);
  }

  void emitMended(std::string& out, const RawRecord& record, std::uint64_t owner, Kind kind) {
    TagWriter tags = writer();
    bool isChanged = false;
    bool isFront = true;
    bool isInGroup = false;
    bool hasHandle = false;
    bool hasOwner = false;
    bool hasEntries = &record != root_ || missingEntries_.empty();
    const int handleCode = record.type == "DIMSTYLE" ? 105 : 5;
    // Nothing behind may change while the front is incomplete: the handle goes first, the owner ends it.
    const auto endFront = [&] {
      if (isInGroup) {
        tags.raw(102, "}");
        isInGroup = false;
        isChanged = true;
      }
      if (isFront && !hasOwner) {
        tags.handle(330, owner);
        isChanged = true;
      }
      isFront = false;
    };
    std::string_view rest = record.bytes;
    Tag tag;
    const bool fileHasHandle = frontHas(record, handleCode);
    while (readTag(rest, tag)) {
      if (tag.code == 0) {
        tags.bytes(tag.bytes);
        if (!fileHasHandle) {
          tags.handle(handleCode, record.handle);
          isChanged = hasHandle = true;
        }
        continue;
      }
      if (isFront && (tag.code == 100 || tag.code >= 1000)) endFront();
      if (tag.code >= 1000 && !hasEntries) {
        writeMissingEntries(tags);
        isChanged = hasEntries = true;
      }
      if (tag.code == 102) isInGroup = tag.trimmed().starts_with("{");
      if (isFront && !isInGroup && tag.code == handleCode) {
        if (!hasHandle && tag.handle() == record.handle) {
          tags.bytes(tag.bytes);
        } else {
          if (!hasHandle) tags.handle(handleCode, record.handle);
          isChanged = true;
        }
        hasHandle = true;
        continue;
      }
      if (isFront && !isInGroup && tag.code == 330) {
        if (!hasOwner && tag.handle() == owner) {
          tags.bytes(tag.bytes);
        } else {
          if (!hasOwner) tags.handle(330, owner);
          isChanged = true;
          if (!isOld_ && kind != Kind::Object && tag.handle() != 0) {
            problems_.add(record.at, record.handle, "the owner was not the one it should have; it was mended");
          }
        }
        hasOwner = true;
        continue;
      }
      if (!isInGroup && tag.code == 3 && kind == Kind::Object && isDictionary(record)) {
        std::string_view next = rest;
        Tag entry;
        if (readTag(next, entry) && (entry.code == 350 || entry.code == 360) && !handles_.contains(entry.handle())) {
          problems_.add(tag.bytes.data(), record.handle,
                        "the entry " + shown(tag.value) + " names an object that is not in the drawing; removed");
          rest = next;
          isChanged = true;
          continue;
        }
      }
      if (kind == Kind::TableRecord && record.type == "BLOCK_RECORD" && tag.code == 340 && !isInGroup &&
          tag.handle() == 0 && layoutOf(record.handle) != 0) {
        tags.handle(340, layoutOf(record.handle));
        isChanged = true;
        continue;
      }
      if (mendValue(tags, record, tag)) {
        isChanged = true;
        continue;
      }
      tags.bytes(tag.bytes);
    }
    endFront();
    if (!hasEntries) {
      writeMissingEntries(tags);
      isChanged = true;
    }
    if (isOld_ && kind == Kind::TableRecord && record.type == "BLOCK_RECORD" && !firstValue(record.bytes, 340)) {
      tags.handle(340, layoutOf(record.handle));
      isChanged = true;
    }
    if (isChanged) {
      out += tags.str();
    } else {
      out += record.bytes;
    }
    if (!out.ends_with('\n')) out += lineEnd_;
  }

  static bool frontHas(const RawRecord& record, int handleCode) {
    bool isInGroup = false;
    Tag tag;
    for (std::string_view rest = record.bytes; readTag(rest, tag) && tag.code != 100 && tag.code < 1000;) {
      if (tag.code == 102) isInGroup = tag.trimmed().starts_with("{");
      if (!isInGroup && tag.code == handleCode) return true;
    }
    return false;
  }

  void writeMissingEntries(TagWriter& tags) const {
    for (const auto& [key, handle] : missingEntries_) tags.raw(3, key).handle(350, handle);
  }

  /// Values that are none: a number where there is no number becomes 0.
  bool mendValue(TagWriter& tags, const RawRecord& record, const Tag& tag) {
    const Field field = fieldOf(tag.code);
    if (field == Field::Text || field == Field::Chunk) return false;
    const std::string_view value = tag.trimmed();
    const bool isReal = field == Field::Real;
    const bool isPlain = !value.empty() && value.size() < 24 &&
                         value.find_first_not_of(isReal ? "+-.0123456789" : "+-0123456789") == std::string_view::npos &&
                         value.find_first_of("0123456789") != std::string_view::npos;
    if (isPlain) return false;
    bool isNumber = false;
    if (isReal) {
      const auto number = text::parseReal(value);
      isNumber = number && std::isfinite(*number);
    } else {
      isNumber = text::parseInteger(value).has_value();
    }
    if (isNumber) return false;
    problems_.add(tag.bytes.data(), record.handle,
                  std::string(record.type.substr(0, 40)) + ": group " + std::to_string(tag.code) +
                      " holds no number but " + shown(value) + "; 0 is taken");
    if (isReal) {
      tags.real(tag.code, 0);
    } else {
      tags.integer(tag.code, 0);
    }
    return true;
  }

  // ---- the whole ----

  void writeSection(std::string& out, std::string_view name, std::string_view content) const {
    out += writer().raw(0, "SECTION").raw(2, name).str();
    out += content;
    if (!out.ends_with('\n')) out += lineEnd_;
    out += writer().raw(0, "ENDSEC").str();
  }

  void writeHeader(std::string& out) const {
    TagWriter tags = writer();
    tags.raw(9, "$ACADVER").raw(1, "AC" + std::to_string(version_));
    const auto ver = variable("$ACADVER", 1);
    const bool keepsVersion = ver && !isOld_ && trimmed(*ver) == "AC" + std::to_string(version_);
    std::string content;
    if (!keepsVersion) content = tags.str();
    std::unordered_set<std::string_view> written;
    bool hasSeed = false;
    for (const Outline::Variable& one : outline_.variables) {
      if (!written.insert(one.name).second || (isOld_ && isObsolete(one.name))) continue;
      if (one.name == "$ACADVER" && !keepsVersion) continue;
      if (one.name == "$HANDSEED") {
        hasSeed = true;
        content += writer().raw(9, one.name).handle(5, nextHandle_).str();
        continue;
      }
      content += one.bytes;
      if (!content.ends_with('\n')) content += lineEnd_;
    }
    if (!written.contains("$DWGCODEPAGE")) content += writer().raw(9, "$DWGCODEPAGE").raw(3, codePage_).str();
    if (!hasSeed) content += writer().raw(9, "$HANDSEED").handle(5, nextHandle_).str();
    writeSection(out, "HEADER", content);
  }

  void writeClasses(std::string& out) const {
    std::string content;
    std::unordered_set<std::string_view> names;
    for (const RawRecord& record : outline_.classes) {
      names.insert(trimmed(firstValue(record.bytes, 1).value_or("")));
      content += record.bytes;
    }
    for (const RawRecord& record : basic_.classes) {
      if (names.contains(trimmed(firstValue(record.bytes, 1).value_or("")))) continue;
      TagWriter tags = writer();
      Tag tag;
      for (std::string_view rest = record.bytes; readTag(rest, tag);) {
        if (tag.code != 91 || version_ >= 1018) tags.raw(tag.code, tag.value);
      }
      content += tags.str();
    }
    writeSection(out, "CLASSES", content);
  }

  Outline outline_;
  std::string_view lineEnd_;
  ProblemLog& problems_;
  std::string basicText_;
  Outline basic_;
  text::Codec codec_;
  std::string codePage_;
  int version_ = kFirstVersion;
  bool isOld_ = false;

  std::unordered_set<std::uint64_t> handles_;
  std::uint64_t nextHandle_ = 1;
  std::uint64_t basicOffset_ = 0;
  std::unordered_map<std::uint64_t, std::uint64_t> basicHandles_;
  std::array<std::unordered_set<std::wstring>, 9> names_;
  std::unordered_map<std::wstring, std::uint64_t> blockNames_;
  std::unordered_set<std::uint64_t> cut_;  // references left out
  std::uint64_t model_ = 0;
  std::uint64_t paper_ = 0;
  struct Use {
    std::string_view name;
    const char* at;
    std::uint64_t handle;
  };
  std::array<std::unordered_set<std::string_view>, 9> used_;
  std::vector<std::pair<std::size_t, Use>> usedInOrder_;

  RawRecord* root_ = nullptr;
  std::uint64_t rootHandle_ = 0;
  std::vector<std::pair<std::string_view, std::uint64_t>> missingEntries_;  // of the root
  std::vector<RawRecord*> basicObjects_;
  std::unordered_map<std::uint64_t, std::uint64_t> layouts_;  // by block record
};

}  // namespace

Rebuilt rebuild(Outline outline, std::string_view lineEnd, ProblemLog& problems) {
  return Rebuilder(std::move(outline), lineEnd, problems).run();
}

}  // namespace host::dxf
