#include "Dxf/Outline.h"

#include <algorithm>
#include <unordered_set>

#include "Database/Record.h"
#include "Database/Store/Names.h"
#include "Dxf/Cutter.h"
#include "Text/Text.h"

namespace host::dxf {

using database::DxfType;
using database::readTag;
using database::Tag;

std::optional<std::size_t> tableIndex(std::string_view name) {
  const auto found = std::find(kTableNames.begin(), kTableNames.end(), name);
  if (found == kTableNames.end()) return std::nullopt;
  return static_cast<std::size_t>(found - kTableNames.begin());
}

bool Outline::isEmpty() const {
  const bool hasTables =
      std::any_of(tables.begin(), tables.end(), [](const Table& table) { return !table.records.empty(); });
  return variables.empty() && !hasTables && blocks.empty() && entities.empty() && objects.empty();
}

namespace {

std::string_view nameOf(Section section) {
  for (const auto& [name, known] : kSections) {
    if (section == known) return name;
  }
  return "other";
}

enum class Place { Entity, TableRecord, Object, Class, Unknown };

/// Where records of the type stand.
Place placeOf(std::string_view type) {
  static const auto setOf = [](DxfType first, DxfType last) {
    std::unordered_set<std::string_view> names;
    for (auto i = static_cast<int>(first); i <= static_cast<int>(last); ++i) {
      names.insert(database::fixedTypeName(static_cast<DxfType>(i)));
    }
    return names;
  };
  static const auto kEntities = setOf(DxfType::Line, DxfType::Proxy);
  static const auto kObjects = setOf(DxfType::Dictionary, DxfType::Layout);
  if (tableIndex(type)) return Place::TableRecord;
  if (kEntities.contains(type)) return Place::Entity;
  if (kObjects.contains(type)) return Place::Object;
  return type == "CLASS" ? Place::Class : Place::Unknown;
}

/// The same where nothing but the record itself can tell.
Place placeOf(const RawRecord& record) {
  const Place place = placeOf(record.type);
  if (place != Place::Unknown || !record.isMarked()) return place;
  if (record.mark == Mark::Entity) return Place::Entity;
  return record.mark == Mark::Other ? Place::Object : Place::Unknown;
}

bool isPart(std::string_view type) { return type == "VERTEX" || type == "ATTRIB" || type == "SEQEND"; }
bool isTableMarker(std::string_view type) { return type == "TABLE" || type == "ENDTAB"; }
bool isBlockMarker(std::string_view type) { return type == "BLOCK" || type == "ENDBLK"; }

std::string_view withoutHead(std::string_view bytes) {
  Tag tag;
  readTag(bytes, tag);
  return bytes;
}

std::string_view nameIn(const RawRecord& record) { return trimmed(firstValue(record.bytes, 2).value_or("")); }

/// Puts records in their places. A section that the file names is what its records stand in until it ends; where none
/// is named, the section is guessed by what stands there.
class Outliner {
 public:
  Outliner(std::string_view text, ProblemLog& problems)
      : text_(text), problems_(problems), cutter_(text, outline_, problems) {}

  Outline run() {
    Cut cut;
    while (!sawEnd_ && cutter_.next(cut)) {
      take(cut);
      cutter_.setSection(section_);
    }
    if (!sawEnd_)
      problems_.add(Code::StructureMended, text_.data() + text_.size(), 0,
                    "the file ends in the middle (EOF is missing)");
    leaveSection();
    std::erase_if(outline_.variables, [&](const Outline::Variable& variable) {
      if (!withoutHead(variable.bytes).empty()) return false;
      problems_.leftOut(variable.bytes.data(), variable.name, 0, "the header variable has no value");
      return true;
    });
    return std::move(outline_);
  }

 private:
  void take(const Cut& cut) {
    const RawRecord& record = cut.record;
    if (record.type.empty()) {
      strayTags(record.bytes);
      return;
    }
    std::string_view loss = cut.loss;
    const bool isLast = cutter_.isAtEnd() && record.type != "ENDSEC" && record.type != "EOF";
    if (isLast && section_ != Section::None && section_ != Section::Header) loss = "cut off by the end of the file";
    if (!loss.empty() && !isMarker(record.type)) {
      problems_.leftOut(record.at, record.type, record.handle, loss);
    } else if (record.type == "EOF") {
      takeEof(record);
    } else if (record.type == "SECTION") {
      beginSection(record);
    } else if (record.type == "ENDSEC") {
      endSection(record);
    } else {
      goOnBehindEndsec(record);
      place(record);
    }
  }

  // ---- sections ----

  void takeEof(const RawRecord& record) {
    if (goesOnBehindEof(cutter_.rest(), hadHeader_)) {
      problems_.leftOut(record.at, record.type, 0, "the file goes on behind it");
      return;
    }
    if (section_ != Section::None)
      problems_.add(Code::StructureMended, record.at, 0, "a section is not ended by ENDSEC");
    sawEnd_ = true;
  }

  void beginSection(const RawRecord& record) {
    std::string_view rest = withoutHead(record.bytes);
    Tag tag;
    const bool hasName = readTag(rest, tag) && tag.code == 2;
    if (!hasName && isNamed_) {
      leaveOut(record);
      return;
    }
    if (section_ != Section::None)
      problems_.add(Code::StructureMended, record.at, 0, "a section is not ended by ENDSEC");
    leaveSection();
    ended_.reset();
    if (!hasName) {
      problems_.add(Code::StructureMended, record.at, 0, "a section has no name; what it holds is taken by its kind");
    } else {
      enterSection(tag.trimmed(), rest);
    }
  }

  void enterSection(std::string_view name, std::string_view tags) {
    section_ = sectionOf(name).value_or(Section::Other);
    isNamed_ = true;
    if (section_ == Section::Header) {
      hadHeader_ = true;
      readVariables(tags);
    } else if (section_ == Section::Other) {
      outline_.others.push_back({name, tags, {}});
    } else {
      strayTags(tags);
    }
  }

  /// Ends whatever section it is, without saying anything of its end.
  void leaveSection() {
    placeOrphans();
    section_ = Section::None;
    isNamed_ = false;
    table_.reset();
    otherTable_ = nullptr;
    block_ = closed_ = nullptr;
    outside_ = Outside::Nothing;
  }

  void endSection(const RawRecord& record) {
    if (section_ == Section::None) problems_.add(Code::StructureMended, record.at, 0, "ENDSEC without SECTION");
    ended_.reset();
    if (isNamed_) ended_ = Ended{record.at, section_, table_, otherTable_, block_};
    leaveSection();
    std::string_view rest = withoutHead(record.bytes);
    std::string_view behindName = rest;
    Tag tag;
    if (readTag(behindName, tag) && tag.code == 2 && sectionOf(tag.trimmed())) {
      problems_.add(Code::StructureMended, tag.bytes.data(), 0, "a section begins without SECTION");
      ended_.reset();
      enterSection(tag.trimmed(), behindName);
    } else {
      strayTags(rest);
    }
  }

  /// A section that what follows its ENDSEC fits into goes on: the ENDSEC was none.
  void goOnBehindEndsec(const RawRecord& record) {
    if (!ended_) return;
    const Ended ended = *ended_;
    ended_.reset();
    if (section_ != Section::None || !fits(record, ended)) return;
    problems_.leftOut(ended.at, "ENDSEC", 0, "its section goes on behind it");
    section_ = ended.section;
    isNamed_ = true;
    table_ = ended.table;
    otherTable_ = ended.otherTable;
    block_ = ended.block;
  }

  struct Ended {
    const char* at;
    Section section;
    std::optional<std::size_t> table;
    Outline::Table* otherTable;
    Outline::Block* block;
  };

  static bool fits(const RawRecord& record, const Ended& ended) {
    const bool isOtherMarker = isTableMarker(record.type) || isBlockMarker(record.type);
    const Place place = placeOf(record);
    switch (ended.section) {
      case Section::Tables:
        return isTableMarker(record.type) || place == Place::TableRecord;
      case Section::Blocks:
        if (isBlockMarker(record.type)) return record.type == "BLOCK" || ended.block != nullptr;
        return ended.block != nullptr && !isOtherMarker && (place == Place::Entity || place == Place::Unknown);
      case Section::Entities:
        return !isOtherMarker && (place == Place::Entity || place == Place::Unknown);
      case Section::Objects:
        return !isOtherMarker && (place == Place::Object || place == Place::Unknown);
      case Section::Classes:
        return place == Place::Class;
      case Section::Other:
        return !isOtherMarker && placeOf(record.type) == Place::Unknown;
      default:
        return false;
    }
  }

  // ---- records ----

  void place(const RawRecord& record) {
    if (section_ != Section::Other) {
      const Section home = isTableMarker(record.type)   ? Section::Tables
                           : isBlockMarker(record.type) ? Section::Blocks
                                                        : section_;
      if (home != section_ && isNamed_ && !beginsOther(record)) {
        leaveOut(record);
        return;
      }
      if (home != section_) {
        leaveSection();
        section_ = home;
      }
    }
    switch (section_) {
      case Section::Other:
        outline_.others.back().records.push_back(record);
        break;
      case Section::Tables:
        placeInTables(record);
        break;
      case Section::Blocks:
        placeInBlocks(record);
        break;
      case Section::Entities:
        placeIn(outline_.entities, Place::Entity, record);
        break;
      case Section::Objects:
        placeIn(outline_.objects, Place::Object, record);
        break;
      case Section::Classes:
      case Section::Header:
      case Section::None:
        placeByKind(record);
    }
  }

  /// Whether a marker of tables or blocks begins some although another section is open: the lines between are lost
  /// then. Among entities the two cannot be told apart.
  bool beginsOther(const RawRecord& record) const {
    const std::string_view next = cutter_.nextType();
    if (record.type == "TABLE" && section_ != Section::Entities && block_ == nullptr) {
      return tableIndex(nameIn(record)) && (next == "ENDTAB" || placeOf(next) == Place::TableRecord);
    }
    if (record.type == "BLOCK" && section_ != Section::Entities) {
      return !nameIn(record).empty() && (next == "ENDBLK" || placeOf(next) == Place::Entity);
    }
    return false;
  }

  void leaveOut(const RawRecord& marker) {
    problems_.leftOut(marker.at, marker.type, marker.handle, "nothing of its kind can begin or end here");
    if (section_ == Section::Header) strayTags(withoutHead(marker.bytes));
  }

  void placeIn(std::vector<RawRecord>& records, Place kind, const RawRecord& record) {
    const Place place = placeOf(record.type);
    if (place == kind || place == Place::Unknown) {
      records.push_back(record);
    } else {
      placeByKind(record);
    }
  }

  /// Records whose section is unknown, or that stand in the wrong one.
  void placeByKind(const RawRecord& record) {
    const Place place = placeOf(record);
    switch (place) {
      case Place::TableRecord:
        outline_.tables[*tableIndex(record.type)].records.push_back(record);
        break;
      case Place::Entity:
        (block_ != nullptr ? block_->entities : outline_.entities).push_back(record);
        break;
      case Place::Object:
        outline_.objects.push_back(record);
        break;
      case Place::Class:
        outline_.classes.push_back(record);
        break;
      case Place::Unknown:
        problems_.leftOut(record.at, record.type, record.handle, "it stands where nothing of its kind can");
        return;
    }
    const bool isAtHome = section_ == Section::Classes && place == Place::Class;
    if (isNamed_ && !isAtHome) tellMoved(record, "in the section " + std::string(nameOf(section_)));
  }

  void tellMoved(const RawRecord& record, const std::string& where) {
    problems_.add(Code::RecordMoved, record.at, record.handle,
                  shown(record.type) + " stood " + where + "; it was moved to its place");
  }

  // ---- tables ----

  void placeInTables(const RawRecord& record) {
    const std::optional<std::size_t> index = tableIndex(record.type);
    if (record.type == "TABLE") {
      beginTable(record);
    } else if (record.type == "ENDTAB") {
      table_.reset();
      otherTable_ = nullptr;
    } else if (index) {
      outline_.tables[*index].records.push_back(record);
      if (table_ && *table_ != *index) tellMoved(record, "in the table " + std::string(kTableNames[*table_]));
    } else if (otherTable_ != nullptr && placeOf(record.type) == Place::Unknown) {
      otherTable_->records.push_back(record);
    } else {
      placeByKind(record);
    }
  }

  void beginTable(const RawRecord& record) {
    const std::string_view name = nameIn(record);
    const bool isOpen = table_ || otherTable_ != nullptr;
    if (name.empty() && isOpen) {
      leaveOut(record);
      return;
    }
    if (isOpen) problems_.add(Code::StructureMended, record.at, 0, "a table is not ended by ENDTAB");
    table_ = tableIndex(name);
    otherTable_ = nullptr;
    if (table_ && !outline_.tables[*table_].head) {
      outline_.tables[*table_].head = record;
    } else if (table_) {
      problems_.leftOut(record.at, record.type, record.handle,
                        "the drawing has a table " + std::string(name) + " already; the records join it");
    } else if (!name.empty() && record.isMarked()) {
      otherTable_ = &outline_.otherTables.emplace_back(Outline::Table{record, {}});
    } else {
      problems_.leftOut(record.at, record.type, record.handle,
                        "its name is not known; its records are taken by their kind");
    }
  }

  // ---- blocks ----

  void placeInBlocks(const RawRecord& record) {
    if (record.type == "BLOCK") {
      const std::string_view name = nameIn(record);
      if (block_ != nullptr && (name.empty() || name == nameIn(block_->begin))) {
        leaveOut(record);
        return;
      }
      if (block_ != nullptr) problems_.add(Code::StructureMended, record.at, 0, "a block is not ended by ENDBLK");
      placeOrphans();
      outline_.blocks.push_back({record, std::nullopt, {}});
      block_ = &outline_.blocks.back();
      closed_ = nullptr;
    } else if (record.type == "ENDBLK") {
      endBlock(record);
    } else if (const Place place = placeOf(record.type); place != Place::Entity && place != Place::Unknown) {
      placeByKind(record);
    } else if (block_ != nullptr) {
      block_->entities.push_back(record);
    } else {
      placeOutsideBlock(record);
    }
  }

  void endBlock(const RawRecord& record) {
    if (block_ == nullptr && !orphans_.empty()) {
      // The block is ended twice, with entities between: the first end was none.
      const RawRecord& former = *closed_->end;
      problems_.leftOut(former.at, former.type, former.handle, "its block goes on behind it");
      closed_->entities.insert(closed_->entities.end(), orphans_.begin(), orphans_.end());
      orphans_.clear();
      block_ = closed_;
    }
    if (block_ == nullptr) {
      problems_.leftOut(record.at, record.type, record.handle, "no block is open");
      return;
    }
    block_->end = record;
    closed_ = block_;
    block_ = nullptr;
  }

  /// Behind a block's end: of that block when another end comes, else of the space that the entity names.
  void placeOutsideBlock(const RawRecord& record) {
    if (!isPart(record.type)) {
      const bool mayBelong = closed_ != nullptr &&
                             (record.owner == 0 || closed_->begin.owner == 0 || record.owner == closed_->begin.owner);
      outside_ = mayBelong ? Outside::Orphan : isSpace(record.owner) ? Outside::Space : Outside::Nothing;
    }
    if (outside_ == Outside::Orphan) {
      orphans_.push_back(record);
    } else if (outside_ == Outside::Space) {
      outline_.entities.push_back(record);
      tellMoved(record, "outside a block");
    } else {
      problems_.leftOut(record.at, record.type, record.handle, "it stands outside a block");
    }
  }

  /// Whether the handle is that of the record of model or paper space.
  bool isSpace(std::uint64_t owner) const {
    const std::vector<RawRecord>& records = outline_.tables.back().records;
    return owner != 0 && std::any_of(records.begin(), records.end(), [&](const RawRecord& record) {
             if (record.handle != owner) return false;
             const std::wstring name = text::folded(text::fromUtf8(nameIn(record)));
             return name == L"*model_space" || name == L"*paper_space";
           });
  }

  /// Entities behind a block's end that no other end follows.
  void placeOrphans() {
    for (const RawRecord& record : orphans_) {
      if (!isPart(record.type)) {
        outside_ = record.owner != 0 && record.owner == closed_->begin.owner ? Outside::Orphan : Outside::Space;
      }
      (outside_ == Outside::Orphan ? closed_->entities : outline_.entities).push_back(record);
      tellMoved(record, "outside a block");
    }
    orphans_.clear();
  }

  // ---- the header, and tags anywhere ----

  void readVariables(std::string_view tags) {
    Tag tag;
    bool isLost = false;
    while (readTag(tags, tag)) {
      if (tag.code == 9) {
        outline_.variables.push_back({tag.trimmed(), tag.bytes});
      } else if (tag.code != 999 && !outline_.variables.empty()) {
        std::string_view& bytes = outline_.variables.back().bytes;
        if (bytes.data() + bytes.size() == tag.bytes.data()) {
          bytes = {bytes.data(), bytes.size() + tag.bytes.size()};
        } else {  // a comment, or something that was left out, stands between the tags of one variable
          outline_.mended.push_back(std::string(bytes).append(tag.bytes));
          bytes = outline_.mended.back();
        }
      } else if (tag.code != 999 && !std::exchange(isLost, true)) {
        problems_.add(Code::LineSkipped, tag.bytes.data(), 0, "a value without a header variable; skipped");
      }
    }
  }

  /// Tags that belong to no record: header variables are taken wherever they stand.
  void strayTags(std::string_view tags) {
    Tag tag;
    std::string_view rest = tags;
    while (readTag(rest, tag) && tag.code == 999) tags = rest;
    if (tags.empty() || tag.code == 999) return;
    const bool isVariable = tag.code == 9 && tag.trimmed().starts_with("$");
    if (isVariable && section_ != Section::Header) {
      problems_.add(Code::StructureMended, tags.data(), 0,
                    "header variables outside the header; they are taken all the same");
    }
    if (isVariable || section_ == Section::Header) {
      readVariables(tags);
    } else {
      problems_.add(Code::LineSkipped, tags.data(), 0, "tags outside a record; skipped");
    }
  }

  std::string_view text_;
  ProblemLog& problems_;
  Outline outline_;
  Cutter cutter_;
  bool sawEnd_ = false;
  bool hadHeader_ = false;

  Section section_ = Section::None;
  bool isNamed_ = false;        // by the file; otherwise it is a guess
  std::optional<Ended> ended_;  // the section whose ENDSEC was just met
  std::optional<std::size_t> table_;
  Outline::Table* otherTable_ = nullptr;
  Outline::Block* block_ = nullptr;   // the last of the blocks, while it is open
  Outline::Block* closed_ = nullptr;  // the last of the blocks, once it is closed
  std::vector<RawRecord> orphans_;    // behind its end
  enum class Outside { Orphan, Space, Nothing } outside_ = Outside::Nothing;  // where the last one outside a block went
};

}  // namespace

Outline outlineOf(std::string_view text, ProblemLog& problems) { return Outliner(text, problems).run(); }

}  // namespace host::dxf
