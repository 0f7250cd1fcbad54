#include "Dxf/Binary.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <optional>

#include "Dxf/Fields.h"
#include "Text/Text.h"

namespace host::dxf {

namespace {

constexpr std::string_view kHead("AutoCAD Binary DXF\r\n\x1a\0", 22);
constexpr unsigned char kWideCodeFollows = 255;  // in the form with codes of one byte

/// Reads numbers in the byte order of the format.
class Bytes {
 public:
  Bytes(std::string_view bytes, std::size_t position) : bytes_(bytes), position_(position) {}

  std::size_t position() const { return position_; }
  void moveTo(std::size_t position) { position_ = position; }
  bool atEnd() const { return position_ >= bytes_.size(); }

  std::optional<std::uint64_t> number(std::size_t size) {
    if (bytes_.size() - position_ < size) return std::nullopt;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
      value |= std::uint64_t{static_cast<unsigned char>(bytes_[position_ + i])} << (8 * i);
    }
    position_ += size;
    return value;
  }
  std::optional<std::int64_t> integer(std::size_t size) {
    const auto value = number(size);
    if (!value) return std::nullopt;
    const unsigned shift = 64 - 8 * static_cast<unsigned>(size);
    return static_cast<std::int64_t>(*value << shift) >> shift;
  }
  std::optional<std::string_view> text() {
    const std::size_t end = bytes_.find('\0', position_);
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view value = bytes_.substr(position_, end - position_);
    position_ = end + 1;
    return value;
  }
  std::optional<std::string_view> chunk() {
    const auto size = number(1);
    if (!size || bytes_.size() - position_ < *size) return std::nullopt;
    const std::string_view value = bytes_.substr(position_, *size);
    position_ += *size;
    return value;
  }

 private:
  std::string_view bytes_;
  std::size_t position_;
};

void appendNumber(std::string& out, std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) out += static_cast<char>(value >> (8 * i));
}

constexpr std::size_t sizeOf(Field field) {
  switch (field) {
    case Field::Int16:
      return 2;
    case Field::Int32:
      return 4;
    case Field::Byte:
      return 1;
    default:
      return 8;
  }
}

/// Line ends inside a value as drawings in text spell them.
void appendOneLine(std::string& out, std::string_view value) {
  for (const char c : value) {
    if (c == '\n' || c == '\r') {
      out += '^';
      out += static_cast<char>(c + '@');
    } else {
      out += c;
    }
  }
}

void appendHex(std::string& out, std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    out += kDigits[byte >> 4U];
    out += kDigits[byte & 15U];
  }
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::string bytesOfHex(std::string_view digits) {
  constexpr std::size_t kMost = 255;  // the length is one byte
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size() && bytes.size() < kMost; i += 2) {
    const int high = hexDigit(digits[i]);
    const int low = hexDigit(digits[i + 1]);
    if (high < 0 || low < 0) break;
    bytes += static_cast<char>(high * 16 + low);
  }
  return bytes;
}

/// The value of a field as text; false when it cannot be read.
bool appendValue(std::string& out, Bytes& bytes, Field field) {
  switch (field) {
    case Field::Text: {
      const auto value = bytes.text();
      if (value) appendOneLine(out, *value);
      return value.has_value();
    }
    case Field::Chunk: {
      const auto value = bytes.chunk();
      if (value) appendHex(out, *value);
      return value.has_value();
    }
    case Field::Real: {
      const auto value = bytes.number(sizeof(double));
      if (value) out += text::formatReal(std::bit_cast<double>(*value));
      return value.has_value();
    }
    default: {
      const auto value = bytes.integer(sizeOf(field));
      char buffer[24];
      if (value) out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, *value).ptr);
      return value.has_value();
    }
  }
}

bool isTypeLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_'; }

/// Whether a tag 0 that names a type stands at the offset; a drawing's end does not count.
bool isRecordAt(std::string_view bytes, std::size_t at, bool wideCodes) {
  Bytes in(bytes, at);
  if (in.number(wideCodes ? 2 : 1).value_or(1) != 0) return false;
  const std::string_view type = in.text().value_or("");
  return !type.empty() && type != "EOF" && std::all_of(type.begin(), type.end(), isTypeLetter);
}

/// Offset of the next tag 0 that names a type, for going on behind bytes that cannot be read.
std::size_t nextRecord(std::string_view bytes, std::size_t from, bool wideCodes) {
  const std::size_t zeros = wideCodes ? 2 : 1;
  constexpr std::size_t kShortest = 3;
  constexpr std::size_t kLongest = 64;
  for (std::size_t at = bytes.find('\0', from); at != std::string_view::npos; at = bytes.find('\0', at + 1)) {
    if (zeros == 2 && (at + 1 >= bytes.size() || bytes[at + 1] != '\0')) continue;
    std::size_t end = at + zeros;
    while (end < bytes.size() && end - at < kLongest && isTypeLetter(bytes[end])) ++end;
    if (end - at >= zeros + kShortest && end < bytes.size() && bytes[end] == '\0') return at;
  }
  return bytes.size();
}

}  // namespace

bool isBinary(std::string_view bytes) { return bytes.starts_with(kHead.substr(0, 18)); }

void BinaryForm::useForNewText(bool wasUpgraded) {
  kept_.clear();
  tail_.clear();
  wideCodes_ = wideCodes_ || wasUpgraded;
}

std::string BinaryForm::textOf(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size() + bytes.size() / 2);
  head_ = bytes.substr(0, kHead.size());
  Bytes in(bytes, std::min(kHead.size(), bytes.size()));
  if (bytes.size() > kHead.size() + 1) {
    const auto first = static_cast<unsigned char>(bytes[kHead.size()]);
    wideCodes_ = first != kWideCodeFollows && (first != 0 || bytes[kHead.size() + 1] == '\0');
  }
  std::string again;
  while (!in.atEnd()) {
    const std::size_t begin = in.position();
    const std::size_t at = out.size();
    auto code = in.integer(wideCodes_ ? 2 : 1);
    if (!wideCodes_ && code) {
      *code &= 0xFF;
      if (*code == kWideCodeFollows) code = in.integer(2);
    }
    bool isRead = code && isGroupCode(static_cast<int>(*code));
    std::size_t valueAt = 0;
    if (isRead) {
      out += std::to_string(*code);
      out += '\n';
      valueAt = out.size();
      isRead = appendValue(out, in, fieldOf(static_cast<int>(*code)));
      out += '\n';
    }
    if (!isRead) {
      out.resize(at);
      out += kDamage;
      out += std::to_string(begin);
      out += "\n\n";
      in.moveTo(nextRecord(bytes, begin + 1, wideCodes_));
      continue;
    }
    const std::string_view value = std::string_view(out).substr(valueAt, out.size() - 1 - valueAt);
    again.clear();
    spellTag(again, static_cast<int>(*code), value);
    const std::string_view original = bytes.substr(begin, in.position() - begin);
    if (again != original) kept_.emplace(at, original);
    if (*code == 0 && value == "EOF" && !isRecordAt(bytes, in.position(), wideCodes_)) {
      tail_ = bytes.substr(in.position());
      break;
    }
  }
  return out;
}

void BinaryForm::spellTag(std::string& out, int code, std::string_view value) const {
  if (wideCodes_) {
    appendNumber(out, static_cast<std::uint64_t>(code), 2);
  } else if (code >= 0 && code < kWideCodeFollows) {
    out += static_cast<char>(code);
  } else {
    out += static_cast<char>(kWideCodeFollows);
    appendNumber(out, static_cast<std::uint64_t>(code), 2);
  }
  switch (const Field field = fieldOf(code)) {
    case Field::Text:
      out += value;
      out += '\0';
      break;
    case Field::Chunk: {
      const std::string bytes = bytesOfHex(value);
      out += static_cast<char>(bytes.size());
      out += bytes;
      break;
    }
    case Field::Real:
      appendNumber(out, std::bit_cast<std::uint64_t>(text::parseReal(value).value_or(0)), sizeof(double));
      break;
    default:
      appendNumber(out, static_cast<std::uint64_t>(text::parseInteger(value).value_or(0)), sizeOf(field));
  }
}

void BinaryForm::spell(std::string_view piece, std::string_view text, std::string& out) const {
  const std::less<> before;
  const bool isOfFile = !before(piece.data(), text.data()) && before(piece.data(), text.data() + text.size());
  std::string_view rest = piece;
  database::Tag tag;
  while (database::readTag(rest, tag)) {
    if (isOfFile && !kept_.empty()) {
      const auto kept = kept_.find(static_cast<std::size_t>(tag.bytes.data() - text.data()));
      if (kept != kept_.end()) {
        out += kept->second;
        continue;
      }
    }
    if (tag.code != database::kBadCode) spellTag(out, tag.code, tag.code == 0 ? tag.trimmed() : tag.value);
  }
}

}  // namespace host::dxf
