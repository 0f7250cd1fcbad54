#include "Dxf/Cutter.h"

#include <algorithm>
#include <charconv>

#include "Dxf/Binary.h"
#include "Dxf/Fields.h"

namespace host::dxf {

using database::kBadCode;
using database::readTag;
using database::Tag;

std::string_view trimmed(std::string_view line) {
  while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
  while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r')) line.remove_suffix(1);
  return line;
}

std::uint64_t handleIn(std::string_view value) {
  const std::string_view digits = trimmed(value);
  std::uint64_t handle = 0;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), handle, 16);
  return error == std::errc() && stop == digits.data() + digits.size() ? handle : 0;
}

std::optional<std::string_view> firstValue(std::string_view bytes, int code) {
  Tag tag;
  while (readTag(bytes, tag) && tag.code < 1000) {
    if (tag.code == code) return tag.value;
  }
  return std::nullopt;
}

std::optional<Section> sectionOf(std::string_view name) {
  for (const auto& [known, section] : kSections) {
    if (name == known) return section;
  }
  return std::nullopt;
}

bool isMarker(std::string_view type) {
  return type == "SECTION" || type == "ENDSEC" || type == "TABLE" || type == "ENDTAB" || type == "BLOCK" ||
         type == "ENDBLK" || type == "EOF" || type == "SEQEND";
}

namespace {

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

/// The next line from `from` on that can begin a record, or a variable of the header; the end when there is none.
std::size_t nextHead(std::string_view text, std::size_t from, bool isInHeader) {
  while (from < text.size()) {
    const std::size_t end = text.find('\n', from);
    if (end == std::string_view::npos) break;
    constexpr std::size_t kLongestCode = 8;
    if (end - from <= kLongestCode) {
      const std::string_view code = trimmed(text.substr(from, end - from));
      if (code == "0" && isTypeName(trimmed(lineAt(text, end + 1)))) return from;
      if (isInHeader && code == "9" && trimmed(lineAt(text, end + 1)).starts_with("$")) return from;
    }
    from = end + 1;
  }
  return text.size();
}

/// What stands between a marker and the next record.
struct Following {
  int firstCode = 0;  // 0: no tags
  bool hasHandle = false, hasLayer = false, hasName = false;
  std::string_view name;       // the value of the first tag 2
  bool hasGeometry = false;    // values that only drawn things have
  bool hasOwnMark = false;     // the subclass marker that only the marker has
  bool hasOtherMarks = false;  // what others have; variables of the header
  std::string_view nextType;   // empty when the text cannot be read up to the next record
};

Following followingOf(std::string_view marker, std::string_view rest) {
  Following found;
  Tag tag;
  while (readTag(rest, tag) && tag.code != kBadCode && isGroupCode(tag.code)) {
    if (tag.code == 999) continue;
    if (tag.code == 0) {
      if (isTypeName(tag.trimmed())) found.nextType = tag.trimmed();
      break;
    }
    if (found.firstCode == 0) found.firstCode = tag.code;
    if (tag.code == 2 && !found.hasName) found.name = tag.trimmed();
    found.hasHandle = found.hasHandle || tag.code == 5;
    found.hasLayer = found.hasLayer || tag.code == 8;
    found.hasName = found.hasName || tag.code == 2;
    found.hasGeometry = found.hasGeometry || (tag.code >= 10 && tag.code < 60);
    if (tag.code == 9) found.hasOtherMarks = true;
    if (tag.code != 100) continue;
    const std::string_view mark = tag.trimmed();
    const bool isOwn = marker == "TABLE"   ? mark == "AcDbSymbolTable" || mark == "AcDbDimStyleTable"
                       : marker == "BLOCK" ? mark == "AcDbBlockBegin"
                                           : mark == "AcDbBlockEnd";
    const bool isCommon = marker != "TABLE" && mark == "AcDbEntity";
    found.hasOwnMark = found.hasOwnMark || isOwn;
    found.hasOtherMarks = found.hasOtherMarks || (!isOwn && !isCommon);
  }
  return found;
}

/// What is known of the record in which a marker may stand.
struct Surroundings {
  std::string_view type;
  Section section = Section::None;
  int markers = 0;  // subclass markers so far
  bool hasHandle = false;
};

/// Whether a marker stands in the middle of a record: then tags follow that are not the marker's own.
bool isInside(const Surroundings& around, std::string_view marker, std::string_view rest) {
  if (!isMarker(marker) || marker == "SEQEND") return false;
  if (around.type == "ENDSEC" || around.type == "ENDTAB" || around.type == "EOF") return false;  // these have no tags
  const Following tags = followingOf(marker, rest);
  if (tags.firstCode == 0 || tags.nextType.empty()) return false;
  if (tags.firstCode == 9 && around.type != "SECTION") return false;  // variables of a header that lost its beginning
  const auto nextIs = [&](std::initializer_list<std::string_view> types) {
    return std::find(types.begin(), types.end(), tags.nextType) != types.end();
  };
  if (marker == "SECTION") return tags.firstCode != 2;
  const bool isGuess = around.section == Section::None;
  if (marker == "ENDTAB") {
    return (!isGuess && around.section != Section::Tables) || !nextIs({"TABLE", "ENDSEC", "SECTION", "EOF"});
  }
  // The name of a section behind the end of another: only SECTION is missing.
  if (marker == "ENDSEC" || marker == "EOF") return !sectionOf(tags.name) && !nextIs({"SECTION", "EOF"});

  const bool isTable = marker == "TABLE";
  if (around.type == marker && around.markers < (isTable ? 1 : 2)) return true;
  if (tags.hasOwnMark || tags.hasOtherMarks) return !tags.hasOwnMark;
  if (around.type == "ENDBLK" && marker == "BLOCK" && around.markers != 1) return false;  // the end is whole
  const Section home = isTable ? Section::Tables : Section::Blocks;
  if (!isGuess && around.section != home) return true;
  if (isTable) return !tableIndex(tags.name);
  if (around.hasHandle && tags.hasHandle) return false;
  if (marker == "BLOCK") return !tags.hasName || !(tags.hasLayer || tags.hasHandle);
  if (tags.hasGeometry) return around.type != "ENDBLK";
  return !nextIs({"BLOCK", "ENDSEC", "SECTION", "EOF", "TABLE", "ENDTAB"});
}

}  // namespace

bool goesOnBehindEof(std::string_view rest, bool hadHeader) {
  for (std::size_t at = nextHead(rest, 0, false); at < rest.size();) {
    std::string_view tags = rest.substr(at);
    Tag tag;
    readTag(tags, tag);
    if (tag.trimmed() != "EOF") {
      const bool isSection = tag.trimmed() == "SECTION";
      return !(hadHeader && isSection && readTag(tags, tag) && tag.code == 2 && tag.trimmed() == "HEADER");
    }
    at = nextHead(rest, rest.size() - tags.size(), false);
  }
  return false;
}

Cutter::Cutter(std::string_view text, Outline& outline, ProblemLog& problems)
    : text_(text), outline_(outline), problems_(problems) {
  outline_.isUtf8 = text_.starts_with(kUtf8Mark);
  if (outline_.isUtf8) position_ = kUtf8Mark.size();
}

std::string_view Cutter::nextType() const {
  Tag tag;
  for (std::string_view text = rest(); readTag(text, tag);) {
    if (tag.code == 0) return isTypeName(tag.trimmed()) ? tag.trimmed() : std::string_view();
    if (tag.code != 999) break;
  }
  return {};
}

bool Cutter::next(Cut& cut) {
  if (isAtEnd()) return false;
  cut = {};
  RawRecord& record = cut.record;
  present_ = {};
  present_.begin = position_;
  std::optional<std::size_t> damagedAt;
  bool hasTags = false;
  while (!isAtEnd()) {
    std::string_view rest = text_.substr(position_);
    Tag tag;
    readTag(rest, tag);
    const std::size_t here = position_;
    if (tag.code == kBadCode && trimmed(lineAt(text_, here)).empty()) {
      skipBlankLine(here);
      continue;
    }
    const bool isBadType = tag.code == 0 && !isTypeName(tag.trimmed());
    if (tag.code == kBadCode || !isGroupCode(tag.code) || isBadType) {
      if (isLastLine(here) && present_.hasHead) present_.isCutOff = true;
      damagedAt = here;
      damage(here, isBadType);
      if (!present_.hasHead || isMarker(record.type)) problems_.add(Code::FileMalformed, at(here), 0, reason_);
      break;
    }
    if (tag.code == 0 && hasTags) {
      const bool canGoOn = present_.hasHead && (record.type != "SECTION" || present_.isHeader);
      if (!canGoOn || !isInside({record.type, section_, present_.markers, record.handle != 0}, tag.trimmed(), rest))
        break;
      problems_.leftOut(at(here), tag.trimmed(), 0, "it stands inside another record");
      cleanUpTo(here);
      position_ = here + tag.bytes.size();
      continue;
    }
    hasTags = true;
    if (tag.code == 0) {
      present_.hasHead = true;
      record.type = tag.trimmed();
      record.at = at(here);
    }
    if (rest.empty() && tag.bytes.back() != '\n' && !(tag.code == 0 && tag.value == "EOF")) present_.isCutOff = true;
    const bool hasValue = tag.bytes.find('\n') + 1 < tag.bytes.size() && tag.bytes.find('\n') != std::string_view::npos;
    if (rest.empty() && !hasValue) present_.isCutOff = true;
    if (present_.clean) *present_.clean += tag.bytes;
    position_ = here + tag.bytes.size();
    noteTag(record, tag);
  }
  const std::size_t end = std::min(position_, damagedAt.value_or(position_));
  record.bytes = text_.substr(present_.begin, end - present_.begin);
  if (present_.clean) {
    outline_.mended.push_back(std::move(*present_.clean));
    record.bytes = outline_.mended.back();
  }
  if (present_.isXDataEarly || !present_.lateHandle.empty()) rearrange(record);
  if (isAtEnd() && present_.hasHead && present_.isCutOff) {
    cut.loss = "cut off by the end of the file";
  } else if (present_.isDamaged) {
    cut.loss = reason_;
  }
  return true;
}

void Cutter::noteTag(RawRecord& record, const Tag& tag) {
  if (tag.code == 0) {
    if (record.type == "DIMSTYLE") present_.handleCode = 105;
  } else if (record.type == "SECTION") {
    if (tag.code == 2 && tag.trimmed() == "HEADER") present_.isHeader = true;
  } else if (tag.code == 100) {
    ++present_.markers;
    if (present_.isInFront) {
      const std::string_view mark = tag.trimmed();
      record.mark = mark == "AcDbEntity"              ? Mark::Entity
                    : mark == "AcDbSymbolTableRecord" ? Mark::TableRecord
                                                      : Mark::Other;
      present_.isXDataEarly = present_.hasXData;
    }
    present_.isInFront = false;
  } else if (tag.code >= 1000) {
    present_.hasXData = true;
  } else if (tag.code == 102) {
    present_.isInGroup = tag.trimmed().starts_with("{");
  } else if (!present_.isInGroup) {
    noteHandle(record, tag);
  }
}

void Cutter::noteHandle(RawRecord& record, const Tag& tag) {
  if (!present_.isInFront) {
    // Some write an entity's handle behind its first marker.
    if (tag.code == 5 && record.handle == 0 && present_.markers == 1 && record.mark == Mark::Entity) {
      record.handle = handleIn(tag.value);
      present_.lateHandle = tag.bytes;
    }
    return;
  }
  if (tag.code == present_.handleCode) {
    if (record.handle != 0)
      problems_.add(Code::HandleMended, tag.bytes.data(), record.handle, "the object has two handles; the last counts");
    if (const std::uint64_t handle = handleIn(tag.value); handle != 0) {
      record.handle = handle;
    } else {
      outline_.oddHandles[record.at].handle = tag.trimmed();
    }
  } else if (tag.code == 330 && record.owner == 0) {
    record.owner = handleIn(tag.value);
    if (record.owner == 0 && tag.trimmed() != "0") outline_.oddHandles[record.at].owner = tag.trimmed();
  }
}

/// Puts the handle of an entity in front of its markers and the extended data behind everything else.
void Cutter::rearrange(RawRecord& record) {
  std::string head;
  std::string own;
  std::string extended;
  Tag tag;
  for (std::string_view rest = record.bytes; readTag(rest, tag);) {
    const bool isHandle = !present_.lateHandle.empty() && tag.code == 5 && tag.bytes == present_.lateHandle;
    if (isHandle) present_.lateHandle = {};
    std::string& place = tag.code == 0 || isHandle ? head : tag.code >= 1000 ? extended : own;
    place += tag.bytes;
    if (!place.ends_with('\n')) place += '\n';
  }
  if (present_.isXDataEarly) {
    problems_.add(Code::RecordMended, record.at, record.handle,
                  "extended data stood in front of the object's own; they were moved behind");
  }
  outline_.mended.push_back(head + own + extended);
  record.bytes = outline_.mended.back();
}

bool Cutter::isLastLine(std::size_t from) const {
  const std::size_t end = text_.find('\n', from);
  return end == std::string_view::npos || end + 1 >= text_.size();
}

/// From here on the record's tags are gathered, for some of what follows in the text does not belong to it.
void Cutter::cleanUpTo(std::size_t here) {
  if (!present_.clean) present_.clean = text_.substr(present_.begin, here - present_.begin);
}

/// Group codes are never blank: the line is dropped, the record goes on.
void Cutter::skipBlankLine(std::size_t here) {
  cleanUpTo(here);
  const std::size_t end = text_.find('\n', here);
  position_ = end == std::string_view::npos ? text_.size() : end + 1;
  if (saidBlank_) return;
  saidBlank_ = true;
  const bool isAtEnd = text_.find_first_not_of(" \t\r\n", here) == std::string_view::npos;
  if (!isAtEnd) problems_.add(Code::LineSkipped, at(here), 0, "a blank line where a group code should be; skipped");
}

/// Says why the line cannot be read, and goes on at the next record, or header variable.
void Cutter::damage(std::size_t here, bool isBadType) {
  present_.isDamaged = true;
  const std::string_view line = trimmed(lineAt(text_, here));
  const std::size_t codeEnd = text_.find('\n', here);
  if (line.starts_with(BinaryForm::kDamage)) {
    reason_ = "byte " + std::string(line.substr(BinaryForm::kDamage.size())) + " and what follows cannot be read";
  } else if (isBadType) {
    const bool hasValue = codeEnd != std::string_view::npos;
    reason_ = "expected the name of a type, found " + shown(hasValue ? trimmed(lineAt(text_, codeEnd + 1)) : "");
  } else {
    reason_ = "expected a group code, found " + shown(line);
  }
  position_ = codeEnd == std::string_view::npos
                  ? text_.size()
                  : nextHead(text_, codeEnd + 1, section_ == Section::Header || present_.isHeader);
}

}  // namespace host::dxf
