#include "Editor/ScriptText.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>

#include "Text/CodePage.h"
#include "Text/Text.h"

namespace host::editor {
namespace {

constexpr wchar_t kReplacement = 0xFFFD;
constexpr std::string_view kSave = "; save the script as UTF-8";

std::size_t lineAt(std::string_view text, std::size_t position) {
  return 1 +
         static_cast<std::size_t>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position), '\n'));
}

/// Text of UTF-16 behind its byte order mark; nothing when it is damaged, `line` tells where.
std::optional<std::string> fromUtf16(std::string_view bytes, bool bigEndian, std::size_t& line) {
  std::string utf8;
  line = 1;
  const auto unit = [&](std::size_t i) {
    const auto first = static_cast<unsigned char>(bytes[i]), second = static_cast<unsigned char>(bytes[i + 1]);
    return bigEndian ? first << 8 | second : second << 8 | first;
  };
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    int code = unit(i);
    if (code >= 0xD800 && code < 0xE000) {
      const int low = code < 0xDC00 && i + 3 < bytes.size() ? unit(i + 2) : 0;
      if (low < 0xDC00 || low >= 0xE000) return std::nullopt;
      code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
      i += 2;
    }
    line += code == '\n' ? 1 : 0;
    utf8 += text::toUtf8(std::wstring(1, static_cast<wchar_t>(code)));
  }
  if (bytes.size() % 2 != 0) return std::nullopt;
  return utf8;
}

/// What the bytes beyond ASCII are.
struct HighBytes {
  std::size_t characters = 0;        // in UTF-8
  std::optional<std::size_t> first;  // that belongs to none
};

HighBytes highBytes(std::string_view bytes) {
  HighBytes found;
  for (std::size_t i = 0; i < bytes.size();) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    if (lead < 0x80) {
      ++i;
      continue;
    }
    // The bytes that may belong together; whether they do, the decoder tells.
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    const std::string_view sequence = bytes.substr(i, length);
    if (sequence.size() == length && text::toUtf8(text::fromUtf8(sequence)) == sequence) {
      ++found.characters;
      i += length;
    } else {
      if (!found.first) found.first = i;
      ++i;
    }
  }
  return found;
}

}  // namespace

Result<ScriptText> scriptText(std::string bytes, const std::string& name) {
  const auto refused = [&name](std::size_t at, std::string_view clause) {
    return Problem{Code::ScriptUnreadable, name, at, 0, std::string(clause) + std::string(kSave)};
  };
  ScriptText result;
  std::size_t line = 0;
  const bool isBig = bytes.starts_with("\xFE\xFF");
  if (isBig || bytes.starts_with("\xFF\xFE")) {
    std::optional<std::string> decoded = fromUtf16(std::string_view(bytes).substr(2), isBig, line);
    if (!decoded) return refused(line, "the text is damaged UTF-16");
    bytes = std::move(*decoded);
  } else if (bytes.starts_with("\xEF\xBB\xBF")) {
    bytes.erase(0, 3);
  }
  if (const std::size_t nul = bytes.find('\0'); nul != std::string::npos)
    return refused(lineAt(bytes, nul), "a NUL character stands there; this is no text in UTF-8");
  const HighBytes high = highBytes(bytes);
  if (!high.first) {
    result.utf8 = std::move(bytes);
    return result;
  }
  line = lineAt(bytes, *high.first);
  if (high.characters > 0) return refused(line, "this is not UTF-8, though other places of the text are");
  const std::shared_ptr<const text::CodePage> page = text::CodePage::get("CP1252");
  std::wstring decoded;
  for (std::size_t position = 0; position < bytes.size();) {
    const std::size_t at = position;
    const auto c = static_cast<wchar_t>(page->next(bytes, position));
    // The page has no characters there; the decoder answers control characters.
    if (c == kReplacement || (c >= 0x80 && c < 0xA0))
      return refused(lineAt(bytes, at), "this is neither UTF-8 nor Windows-1252");
    decoded += c;
  }
  result.utf8 = text::toUtf8(decoded);
  result.remark = Problem{Code::EncodingGuessed, name, line, 0, "this is not UTF-8; it is read as Windows-1252"};
  return result;
}

}  // namespace host::editor
