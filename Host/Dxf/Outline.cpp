#include "Dxf/Outline.h"

#include <algorithm>
#include <unordered_set>

#include "Database/Parts.h"
#include "Database/Record.h"
#include "Dxf/Binary.h"
#include "Dxf/Fields.h"
#include "Text/Text.h"

namespace host::dxf {

using database::DxfType;
using database::kBadCode;
using database::readTag;
using database::Tag;

std::optional<std::size_t> tableIndex(std::string_view name) {
  const auto found = std::find(kTableNames.begin(), kTableNames.end(), name);
  if (found == kTableNames.end()) return std::nullopt;
  return static_cast<std::size_t>(found - kTableNames.begin());
}

std::optional<std::string_view> firstValue(std::string_view bytes, int code) {
  Tag tag;
  while (readTag(bytes, tag) && tag.code < 1000) {
    if (tag.code == code) return tag.value;
  }
  return std::nullopt;
}

bool Outline::isEmpty() const {
  const bool hasTables =
      std::any_of(tables.begin(), tables.end(), [](const Table& table) { return !table.records.empty(); });
  return variables.empty() && !hasTables && blocks.empty() && entities.empty() && objects.empty();
}

namespace {

std::string_view trimmed(std::string_view line) {
  while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
  while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r')) line.remove_suffix(1);
  return line;
}

/// Whether a value of group 0 can be one: a name in capitals mostly, without blanks, never a number.
bool isTypeName(std::string_view name) {
  constexpr std::size_t kLongest = 255;
  if (name.empty() || name.size() > kLongest) return false;
  bool hasLetter = false;
  for (const char c : name) {
    if (c <= ' ' || c >= '\x7f') return false;
    hasLetter = hasLetter || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  }
  return hasLetter && name.find_first_of("\\;={}<>\"") == std::string_view::npos;
}

std::string_view lineAt(std::string_view text, std::size_t position) {
  const std::size_t end = text.find('\n', position);
  return text.substr(position, end == std::string_view::npos ? end : end - position);
}

enum class Place { Entity, TableRecord, Object, Class, Unknown };

/// Where records stand whose section is not known.
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

class Outliner {
 public:
  Outliner(std::string_view text, ProblemLog& problems) : text_(text), problems_(problems) {}

  Outline run() {
    if (text_.starts_with("\xEF\xBB\xBF")) position_ = 3;  // a byte order mark
    while (!sawEof_ && readRecord()) {
    }
    if (!sawEof_) problems_.add(text_.data() + text_.size(), 0, "the file ends in the middle (EOF is missing)");
    std::erase_if(outline_.variables, [&](const Outline::Variable& variable) {
      std::string_view rest = withoutHead(variable.bytes);
      if (!rest.empty()) return false;
      problems_.leftOut(variable.bytes.data(), variable.name, 0, "the header variable has no value");
      return true;
    });
    return std::move(outline_);
  }

 private:
  enum class Section { None, Header, Classes, Tables, Blocks, Entities, Objects, Other };

  const char* at(std::size_t offset) const { return text_.data() + offset; }

  // ---- cutting ----

  struct Cut {
    RawRecord record;
    bool isDamaged = false;
    bool isCutOff = false;  // by the end of the file
    std::string clean;      // its tags when lines between them had to go
    bool isCleaned = false;
  };

  /// Reads one record and puts it in its place; false at the end of the text.
  bool readRecord() {
    if (position_ >= text_.size()) return false;
    Cut cut;
    const std::size_t begin = position_;
    bool hasHead = false;
    bool hasTags = false;
    while (position_ < text_.size()) {
      std::string_view rest = text_.substr(position_);
      Tag tag;
      readTag(rest, tag);
      const std::size_t here = position_;
      if (tag.code == kBadCode && trimmed(lineAt(text_, here)).empty()) {
        skipBlankLine(cut, begin, here);
        continue;
      }
      const bool isBadType = tag.code == 0 && !isTypeName(tag.trimmed());
      if (tag.code == kBadCode || !isGroupCode(tag.code) || isBadType) {
        if (isLastLine(here) && hasHead) cut.isCutOff = true;
        damage(cut, here, isBadType, hasHead);
        break;
      }
      if (tag.code == 0 && hasTags) break;
      hasTags = true;
      if (tag.code == 0) {
        hasHead = true;
        cut.record.type = tag.trimmed();
        cut.record.at = at(here);
      }
      if (rest.empty() && tag.bytes.back() != '\n' && !(tag.code == 0 && tag.value == "EOF")) cut.isCutOff = true;
      if (rest.empty() && valueIsMissing(tag)) cut.isCutOff = true;
      if (cut.isCleaned) cut.clean += tag.bytes;
      position_ = here + tag.bytes.size();
      noteTag(cut.record, tag);
    }
    const std::size_t end = std::min(position_, damagedAt_.value_or(position_));
    damagedAt_.reset();
    cut.record.bytes = text_.substr(begin, end - begin);
    if (cut.isCleaned) {
      outline_.mended.push_back(std::move(cut.clean));
      cut.record.bytes = outline_.mended.back();
    }
    handleCode_ = 5;
    isInFront_ = true;
    isInGroup_ = false;
    if (position_ >= text_.size() && section_ != Section::None && section_ != Section::Header &&
        cut.record.type != "ENDSEC" && cut.record.type != "EOF") {
      cut.isCutOff = true;
    }
    if (hasHead) {
      place(cut);
    } else {
      strayTags(cut.record.bytes);
    }
    return true;
  }

  void noteTag(RawRecord& record, const Tag& tag) {
    if (tag.code == 0) {
      if (record.type == "DIMSTYLE") handleCode_ = 105;
    } else if (tag.code == 100) {
      record.isMarked = true;
      isInFront_ = false;
    } else if (tag.code >= 1000) {
      isInFront_ = false;
    } else if (tag.code == 102) {
      isInGroup_ = !tag.trimmed().empty() && tag.trimmed().front() == '{';
    } else if (isInFront_ && !isInGroup_) {
      constexpr std::uint64_t kMost = std::uint64_t{1} << 60;
      if (tag.code == handleCode_ && record.handle == 0) record.handle = tag.handle() < kMost ? tag.handle() : 0;
      if (tag.code == 330 && record.owner == 0) record.owner = tag.handle() < kMost ? tag.handle() : 0;
    }
  }

  bool isLastLine(std::size_t from) const {
    const std::size_t end = text_.find('\n', from);
    return end == std::string_view::npos || end + 1 >= text_.size();
  }

  static bool valueIsMissing(const Tag& tag) {
    return tag.bytes.find('\n') + 1 == tag.bytes.size() || tag.bytes.find('\n') == std::string_view::npos;
  }

  /// Group codes are never blank: the line is dropped, the record goes on.
  void skipBlankLine(Cut& cut, std::size_t begin, std::size_t here) {
    if (!cut.isCleaned) {
      cut.isCleaned = true;
      cut.clean = text_.substr(begin, here - begin);
    }
    const std::size_t end = text_.find('\n', here);
    position_ = end == std::string_view::npos ? text_.size() : end + 1;
    if (saidBlank_) return;
    saidBlank_ = true;
    const bool isAtEnd = text_.find_first_not_of(" \t\r\n", here) == std::string_view::npos;
    if (!isAtEnd) problems_.add(at(here), 0, "a blank line where a group code should be; skipped");
  }

  /// Goes on at the next record, or header variable.
  void damage(Cut& cut, std::size_t here, bool isBadType, bool hasHead) {
    cut.isDamaged = true;
    damagedAt_ = here;
    const std::string_view line = trimmed(lineAt(text_, here));
    std::string sentence;
    if (line.starts_with(BinaryForm::kDamage)) {
      sentence = "byte " + std::string(line.substr(BinaryForm::kDamage.size())) + " and what follows cannot be read";
    } else {
      const std::size_t codeEnd = text_.find('\n', here);
      const bool hasValue = isBadType && codeEnd != std::string_view::npos;
      sentence =
          isBadType ? "expected the name of a type, found " + shown(hasValue ? trimmed(lineAt(text_, codeEnd + 1)) : "")
                    : "expected a group code, found " + shown(line);
    }
    reason_ = sentence;
    if (!hasHead || isMarker(cut.record.type)) problems_.add(at(here), 0, sentence);
    std::size_t next = text_.find('\n', here);
    while (next != std::string_view::npos && next + 1 < text_.size()) {
      const std::size_t line0 = next + 1;
      const std::size_t lineEnd = text_.find('\n', line0);
      if (lineEnd == std::string_view::npos) break;
      const std::string_view code = text_.substr(line0, lineEnd - line0);
      constexpr std::size_t kLongestCode = 8;
      if (code.size() <= kLongestCode) {
        const std::string_view digits = trimmed(code);
        const bool isZero = digits == "0" && isTypeName(trimmed(lineAt(text_, lineEnd + 1)));
        const bool isVariable = digits == "9" && trimmed(lineAt(text_, lineEnd + 1)).starts_with("$");
        if (isZero || (isVariable && section_ == Section::Header)) {
          position_ = line0;
          return;
        }
      }
      next = lineEnd;
    }
    position_ = text_.size();
  }

  static bool isMarker(std::string_view type) {
    return type == "SECTION" || type == "ENDSEC" || type == "TABLE" || type == "ENDTAB" || type == "BLOCK" ||
           type == "ENDBLK" || type == "EOF" || type == "SEQEND";
  }

  // ---- placing ----

  void place(Cut& cut) {
    RawRecord& record = cut.record;
    const bool isLost = (cut.isDamaged || cut.isCutOff) && !isMarker(record.type);
    if (isLost) {
      problems_.leftOut(record.at, record.type, record.handle,
                        cut.isDamaged && !cut.isCutOff ? reason_ : "cut off by the end of the file");
      return;
    }
    if (record.type == "EOF") {
      endSection(record);
      sawEof_ = true;
    } else if (record.type == "SECTION") {
      beginSection(record);
    } else if (record.type == "ENDSEC") {
      if (section_ == Section::None) problems_.add(record.at, 0, "ENDSEC without SECTION");
      section_ = Section::None;
      table_.reset();
      block_ = nullptr;
      strayTags(withoutHead(record.bytes));
    } else if (section_ == Section::Other) {
      outline_.others.back().records.push_back(record);
    } else if (section_ == Section::Classes) {
      placeClass(record);
    } else if (section_ == Section::Tables) {
      placeInTables(record);
    } else if (section_ == Section::Blocks) {
      placeInBlocks(record);
    } else if (section_ == Section::Entities) {
      placeEntity(record);
    } else if (section_ == Section::Objects) {
      placeObject(record);
    } else {
      placeByType(record);
    }
  }

  static std::string_view withoutHead(std::string_view bytes) {
    Tag tag;
    readTag(bytes, tag);
    return bytes;
  }

  void endSection(const RawRecord& by) {
    if (section_ != Section::None) problems_.add(by.at, 0, "a section is not ended by ENDSEC");
    section_ = Section::None;
    table_.reset();
    block_ = nullptr;
  }

  void beginSection(const RawRecord& record) {
    endSection(record);
    std::string_view rest = withoutHead(record.bytes);
    Tag tag;
    if (!readTag(rest, tag) || tag.code != 2) {
      problems_.add(record.at, 0, "a section has no name; what it holds is taken by its kind");
      return;
    }
    const std::string_view name = tag.trimmed();
    constexpr std::pair<std::string_view, Section> kSections[] = {
        {"HEADER", Section::Header}, {"CLASSES", Section::Classes},   {"TABLES", Section::Tables},
        {"BLOCKS", Section::Blocks}, {"ENTITIES", Section::Entities}, {"OBJECTS", Section::Objects}};
    section_ = Section::Other;
    for (const auto& [known, section] : kSections) {
      if (name == known) section_ = section;
    }
    if (section_ == Section::Header) {
      readVariables(rest);
    } else if (section_ == Section::Other) {
      outline_.others.push_back({name, rest, {}});
    } else if (!rest.empty()) {
      strayTags(rest);
    }
  }

  void readVariables(std::string_view tags) {
    Tag tag;
    while (readTag(tags, tag)) {
      if (tag.code == 9) {
        outline_.variables.push_back({tag.trimmed(), tag.bytes});
      } else if (tag.code != 999 && !outline_.variables.empty()) {
        std::string_view& bytes = outline_.variables.back().bytes;
        // Comments between variables would break the range; tags of one follow each other.
        if (bytes.data() + bytes.size() == tag.bytes.data()) {
          bytes = {bytes.data(), bytes.size() + tag.bytes.size()};
        }
      }
    }
  }

  /// Tags that belong to no record: header variables are taken wherever they stand.
  void strayTags(std::string_view tags) {
    Tag tag;
    std::string_view rest = tags;
    while (readTag(rest, tag) && tag.code == 999) tags = rest;
    if (tags.empty() || tag.code == 999) return;
    if (tag.code == 9 && tag.trimmed().starts_with("$")) {
      if (section_ != Section::Header) {
        problems_.add(tags.data(), 0, "header variables outside the header; they are taken all the same");
      }
      readVariables(tags);
    } else if (section_ != Section::Header) {
      problems_.add(tags.data(), 0, "tags outside a record; skipped");
    }
  }

  void placeClass(const RawRecord& record) {
    if (record.type == "CLASS") {
      outline_.classes.push_back(record);
    } else {
      placeByType(record);
    }
  }

  void placeInTables(const RawRecord& record) {
    if (record.type == "TABLE") {
      if (table_) problems_.add(record.at, 0, "a table is not ended by ENDTAB");
      table_ = tableIndex(trimmed(firstValue(record.bytes, 2).value_or("")));
      if (!table_) {
        problems_.add(record.at, record.handle, "a table without a known name; its records are taken by their kind");
      } else if (!outline_.tables[*table_].head) {
        outline_.tables[*table_].head = record;
      }
    } else if (record.type == "ENDTAB") {
      table_.reset();
    } else {
      placeByType(record);
    }
  }

  void placeInBlocks(const RawRecord& record) {
    if (record.type == "BLOCK") {
      if (block_ != nullptr) problems_.add(record.at, 0, "a block is not ended by ENDBLK");
      outline_.blocks.push_back({record, std::nullopt, {}});
      block_ = &outline_.blocks.back();
    } else if (record.type == "ENDBLK") {
      if (block_ == nullptr) problems_.add(record.at, record.handle, "ENDBLK without BLOCK");
      if (block_ != nullptr) block_->end = record;
      block_ = nullptr;
    } else if (block_ != nullptr) {
      block_->entities.push_back(record);
    } else {
      problems_.leftOut(record.at, record.type, record.handle, "it stands outside a block");
    }
  }

  void placeEntity(const RawRecord& record) {
    if (record.type == "TABLE" || record.type == "ENDTAB" || record.type == "BLOCK" || record.type == "ENDBLK") {
      placeByType(record);
    } else if (block_ != nullptr) {
      block_->entities.push_back(record);
    } else {
      outline_.entities.push_back(record);
    }
  }

  void placeObject(const RawRecord& record) {
    if (isMarker(record.type)) {
      placeByType(record);
    } else {
      outline_.objects.push_back(record);
    }
  }

  /// Records whose section is unknown, or that stand in the wrong one.
  void placeByType(const RawRecord& record) {
    if (record.type == "TABLE" || record.type == "ENDTAB") {
      section_ = Section::Tables;
      placeInTables(record);
      return;
    }
    if (record.type == "BLOCK" || record.type == "ENDBLK") {
      section_ = Section::Blocks;
      placeInBlocks(record);
      return;
    }
    switch (placeOf(record.type)) {
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
      default:
        problems_.leftOut(record.at, record.type, record.handle, "it stands where nothing of its kind can");
    }
  }

  std::string_view text_;
  ProblemLog& problems_;
  Outline outline_;
  std::size_t position_ = 0;
  Section section_ = Section::None;
  std::optional<std::size_t> table_;
  Outline::Block* block_ = nullptr;  // the last of the blocks, while it is open
  bool sawEof_ = false;
  bool saidBlank_ = false;
  std::optional<std::size_t> damagedAt_;
  std::string reason_;
  // Of the record being read.
  int handleCode_ = 5;
  bool isInFront_ = true;
  bool isInGroup_ = false;
};

}  // namespace

Outline outlineOf(std::string_view text, ProblemLog& problems) { return Outliner(text, problems).run(); }

}  // namespace host::dxf
