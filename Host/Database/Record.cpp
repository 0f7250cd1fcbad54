#include "Database/Record.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "Database/UnwrittenTags.h"
#include "Text/Text.h"

namespace host::database {

namespace {

std::string_view trimmedView(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

/// One line without its end; `text` moves past it.
std::string_view takeLine(std::string_view& text) {
  const char* const begin = text.data();
  const void* const found = std::memchr(begin, '\n', text.size());
  if (found == nullptr) {
    const std::string_view line = text;
    text.remove_prefix(text.size());
    return line;
  }
  const std::size_t length = static_cast<std::size_t>(static_cast<const char*>(found) - begin);
  text.remove_prefix(length + 1);
  return {begin, length > 0 && begin[length - 1] == '\r' ? length - 1 : length};
}

}  // namespace

std::string_view Tag::trimmed() const { return trimmedView(value); }

double Tag::real() const {
  const std::optional<double> number = text::parseReal(value);
  return number && std::isfinite(*number) ? *number : 0;
}

std::int64_t Tag::integer() const { return text::parseInteger(value).value_or(0); }

std::uint64_t Tag::handle() const { return text::parseHandle(trimmed()); }

int parseGroupCode(std::string_view line) {
  constexpr std::size_t kMostDigits = 6;
  const char* at = line.data();
  const char* const end = at + line.size();
  while (at < end && (*at == ' ' || *at == '\t')) ++at;
  const bool isNegative = at < end && *at == '-';
  if (isNegative) ++at;
  const char* const digits = at;
  int code = 0;
  while (at < end && *at >= '0' && *at <= '9' && static_cast<std::size_t>(at - digits) < kMostDigits) {
    code = code * 10 + (*at++ - '0');
  }
  if (at == digits) return kBadCode;
  while (at < end && (*at == ' ' || *at == '\t')) ++at;
  if (at != end) return kBadCode;
  return isNegative ? -code : code;
}

namespace {

/// Takes a line of blanks and up to four digits, as nearly all group codes are; false, with nothing taken, for others.
bool takePlainCode(std::string_view& text, int& code) {
  constexpr std::size_t kMostDigits = 4;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at < end && *at == ' ') ++at;
  const char* const digits = at;
  int value = 0;
  while (at < end && *at >= '0' && *at <= '9' && static_cast<std::size_t>(at - digits) < kMostDigits) {
    value = value * 10 + (*at++ - '0');
  }
  if (at == digits) return false;
  if (at < end && *at == '\r') ++at;
  if (at == end || *at != '\n') return false;
  code = value;
  text.remove_prefix(static_cast<std::size_t>(at + 1 - text.data()));
  return true;
}

}  // namespace

bool readTag(std::string_view& text, Tag& tag) {
  if (text.empty()) return false;
  const char* const begin = text.data();
  if (!takePlainCode(text, tag.code)) tag.code = parseGroupCode(takeLine(text));
  tag.value = takeLine(text);
  tag.bytes = {begin, static_cast<std::size_t>(text.data() - begin)};
  return true;
}

bool TagCursor::next(Tag& tag) {
  while (current_.empty()) {
    if (next_ == end_) return false;
    current_ = *next_++;
  }
  return readTag(current_, tag);
}

std::span<const std::string_view> Record::pieces() const {
  if (const auto* const single = std::get_if<std::string_view>(&content_)) return {single, 1};
  if (const auto* const unwritten = std::get_if<UnwrittenTags*>(&content_)) return {&(*unwritten)->text(), 1};
  if (const auto* const several = std::get_if<std::shared_ptr<Pieces>>(&content_)) return **several;
  return {};
}

UnwrittenTags* Record::unwritten() const {
  const auto* const unwritten = std::get_if<UnwrittenTags*>(&content_);
  return unwritten != nullptr && !(*unwritten)->isWritten() ? *unwritten : nullptr;
}

std::size_t Record::size() const {
  std::size_t total = 0;
  for (const std::string_view piece : pieces()) total += piece.size();
  return total;
}

std::string Record::bytes() const {
  std::string all;
  all.reserve(size());
  for (const std::string_view piece : pieces()) all += piece;
  return all;
}

std::size_t Record::count() const {
  std::size_t number = 0;
  Tag tag;
  for (TagCursor cursor = tags(); cursor.next(tag);) ++number;
  return number;
}

Record::Pieces& Record::ownPieces() {
  auto* several = std::get_if<std::shared_ptr<Pieces>>(&content_);
  if (several == nullptr || several->use_count() > 1) {
    const std::span<const std::string_view> now = pieces();
    several = &content_.emplace<std::shared_ptr<Pieces>>(std::make_shared<Pieces>(now.begin(), now.end()));
  }
  return **several;
}

void Record::append(std::string_view bytes) {
  if (bytes.empty()) return;
  if (std::holds_alternative<std::monostate>(content_)) {
    content_ = bytes;
  } else {
    ownPieces().push_back(bytes);
  }
}

void Record::replace(std::size_t index, std::size_t count, std::string_view bytes) {
  const std::span<const std::string_view> pieces = this->pieces();
  Pieces result;
  result.reserve(pieces.size() + 2);
  std::size_t number = 0;
  std::size_t position = 0;
  std::string_view tail;  // of the piece in which the replaced tags end
  for (; position < pieces.size() && tail.empty(); ++position) {
    const std::string_view piece = pieces[position];
    std::string_view rest = piece;
    std::size_t head = 0;
    Tag tag;
    while (readTag(rest, tag)) {
      if (number >= index + count) {
        tail = piece.substr(static_cast<std::size_t>(tag.bytes.data() - piece.data()));
        break;
      }
      if (number < index) head = static_cast<std::size_t>(rest.data() - piece.data());
      ++number;
    }
    if (head > 0) result.push_back(piece.substr(0, head));
  }
  if (!bytes.empty()) result.push_back(bytes);
  if (!tail.empty()) result.push_back(tail);
  result.insert(result.end(), pieces.begin() + static_cast<std::ptrdiff_t>(position), pieces.end());
  if (result.size() == 1) {
    content_ = result.front();
  } else {
    content_ = std::make_shared<Pieces>(std::move(result));
  }
}

namespace {

constexpr std::size_t kLongestCode = 11;

/// The code as DXF writers align it: three characters at least.
char* spellCode(int code, char* at) {
  constexpr int kFirstOfFour = 1000;
  if (code < 0 || code >= kFirstOfFour) {
    if (code < 0 && code > -10) *at++ = ' ';
    return std::to_chars(at, at + kLongestCode, code).ptr;
  }
  const auto digit = [code](int divisor) {
    return code >= divisor || divisor == 1 ? static_cast<char>('0' + code / divisor % 10) : ' ';
  };
  for (const int divisor : {100, 10, 1}) *at++ = digit(divisor);
  return at;
}

char* endLine(std::string_view lineEnd, char* at) {
  for (const char c : lineEnd) *at++ = c;
  return at;
}

/// The number as `spelledInteger` spells it, to where `kLongestNumber` characters have room.
char* spellInteger(int code, std::int64_t value, char* at) {
  char digits[host::text::kLongestNumber];
  const char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  const bool isLong =
      (code >= 90 && code <= 99) || (code >= 420 && code <= 429) || (code >= 440 && code <= 459) || code == 1071;
  for (std::ptrdiff_t width = end - digits; width < (isLong ? 9 : 6); ++width) *at++ = ' ';
  return std::copy(static_cast<const char*>(digits), end, at);
}

}  // namespace

TagWriter& TagWriter::raw(int code, std::string_view value) {
  char line[kLongestCode + 1 + kLongestLineEnd];
  char* const end = endLine(lineEnd_, spellCode(code, line));
  out_.append(line, end);
  out_ += value;
  out_ += lineEnd_;
  return *this;
}

// Most of a drawing is numbers: each is put together on the stack and copied once.
template <class Spell>
TagWriter& TagWriter::number(int code, Spell spell) {
  char tag[kLongestCode + 1 + host::text::kLongestNumber + 2 * kLongestLineEnd];
  char* const end = endLine(lineEnd_, spell(endLine(lineEnd_, spellCode(code, tag))));
  out_.append(tag, end);
  return *this;
}

TagWriter& TagWriter::text(int code, std::wstring_view value) { return raw(code, codec_->encode(value)); }

TagWriter& TagWriter::real(int code, double value) {
  return number(code, [value](char* at) { return host::text::formatReal(value, at); });
}

std::string spelledInteger(int code, std::int64_t value) {
  char buffer[host::text::kLongestNumber];
  return {buffer, spellInteger(code, value, buffer)};
}

TagWriter& TagWriter::integer(int code, std::int64_t value) {
  return number(code, [code, value](char* at) { return spellInteger(code, value, at); });
}

TagWriter& TagWriter::handle(int code, std::uint64_t value) {
  return number(code, [value](char* at) { return host::text::formatHandle(value, at); });
}

TagWriter& TagWriter::point(int code, double x, double y, double z) {
  return real(code, x).real(code + 10, y).real(code + 20, z);
}

TagWriter& TagWriter::point(int code, double x, double y) { return real(code, x).real(code + 10, y); }

TagWriter& TagWriter::bytes(std::string_view tags) {
  out_ += tags;
  return *this;
}

namespace {

enum class Extent { Front, Whole };

RecordLayout layout(const Record& record, Extent extent) {
  RecordLayout found;
  std::size_t index = 0;
  bool inGroup = false;
  Tag tag;
  for (TagCursor cursor = record.tags(); cursor.next(tag); ++index) {
    if (tag.code >= 1000 && found.xdata == RecordLayout::npos) {
      found.xdata = index;
      inGroup = false;
    }
    if (found.xdata != RecordLayout::npos) continue;
    if (tag.code == 102) {
      const std::string_view value = tag.trimmed();
      if (!value.empty() && value.front() == '{') {
        inGroup = true;
        if (value == "{ACAD_REACTORS" && found.reactorsBegin == RecordLayout::npos) found.reactorsBegin = index;
        if (value == "{ACAD_XDICTIONARY" && found.dictionaryBegin == RecordLayout::npos) found.dictionaryBegin = index;
      } else {
        inGroup = false;
        if (found.reactorsBegin != RecordLayout::npos && found.reactorsEnd == RecordLayout::npos) {
          found.reactorsEnd = index + 1;
        } else if (found.dictionaryBegin != RecordLayout::npos && found.dictionaryEnd == RecordLayout::npos) {
          found.dictionaryEnd = index + 1;
        }
      }
      continue;
    }
    if (inGroup) continue;
    if (tag.code == 100 && extent == Extent::Front) break;
    if (tag.code == 100) {
      if (found.firstSubclass == RecordLayout::npos) {
        found.firstSubclass = index;
      } else if (found.secondSubclass == RecordLayout::npos) {
        found.secondSubclass = index;
      }
    } else if (found.firstSubclass == RecordLayout::npos) {
      if ((tag.code == 5 || tag.code == 105) && found.handle == RecordLayout::npos) found.handle = index;
      if (tag.code == 330 && found.owner == RecordLayout::npos) found.owner = index;
    }
  }
  found.end = index;
  if (found.xdata == RecordLayout::npos && extent == Extent::Whole) found.xdata = index;
  return found;
}

}  // namespace

RecordLayout layoutOf(const Record& record) { return layout(record, Extent::Whole); }

RecordLayout frontOf(const Record& record) { return layout(record, Extent::Front); }

}  // namespace host::database
