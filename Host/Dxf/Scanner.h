// Steps over the tags of a drawing's text.
#pragma once

#include <algorithm>
#include <cstring>
#include <string_view>

#include "Database/Record.h"

namespace host::dxf {

/// A tag and where it stands.
struct Token : database::Tag {
  std::size_t offset = 0;  // of the code line

  /// The code line, for messages.
  std::string_view codeText() const { return bytes.substr(0, std::min(bytes.find('\n'), bytes.size())); }
};

class Scanner {
 public:
  Scanner() = default;
  explicit Scanner(std::string_view text, std::size_t position = 0) : text_(text), position_(position) {}

  std::size_t offset() const { return position_; }

  /// The tag at the position, without moving; false at the end of the text. Type names (code 0) lose their blanks.
  bool peek(Token& token) const {
    std::string_view rest = text_.substr(position_);
    token.offset = position_;
    if (!database::readTag(rest, token)) return false;
    if (token.code == 0) token.value = token.trimmed();
    return true;
  }
  void take(const Token& token) { position_ = token.offset + token.bytes.size(); }
  bool next(Token& token) {
    if (!peek(token)) return false;
    take(token);
    return true;
  }

  /// Moves in front of the next tag 0; true when a tag of extended data was passed. Values are not looked at, and codes
  /// just enough to see that they are numbers; it stops at one that is not.
  bool skipRecord() {
    bool sawXData = false;
    const char* const end = text_.data() + text_.size();
    const char* at = text_.data() + position_;
    while (at < end) {
      const auto* const codeEnd = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
      if (codeEnd == nullptr) {
        at = end;
        break;
      }
      std::string_view code(at, static_cast<std::size_t>(codeEnd - at));
      if (!code.empty() && code.back() == '\r') code.remove_suffix(1);
      while (!code.empty() && (code.front() == ' ' || code.front() == '\t')) code.remove_prefix(1);
      if (code.empty() || !startsNumber(code.front())) {
        sawBadCode_ = true;
        break;
      }
      if (code.front() == '0' && database::parseGroupCode(code) == 0) break;
      // Extended data have four-digit codes, all of them 10xx.
      sawXData = sawXData || (code.size() >= 4 && code.front() == '1' && database::parseGroupCode(code) >= 1000);
      const auto* const valueEnd =
          static_cast<const char*>(std::memchr(codeEnd + 1, '\n', static_cast<std::size_t>(end - codeEnd - 1)));
      at = valueEnd == nullptr ? end : valueEnd + 1;
    }
    position_ = static_cast<std::size_t>(at - text_.data());
    return sawXData;
  }

  /// Whether skipRecord has met what is no group code.
  bool sawBadCode() const { return sawBadCode_; }

  /// Number of the line at an offset, from 1. For messages: counts from the beginning.
  std::size_t lineAt(std::size_t at) const {
    const std::string_view before = text_.substr(0, std::min(at, text_.size()));
    return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  }

 private:
  static bool startsNumber(char c) { return (c >= '0' && c <= '9') || c == '-'; }

  std::string_view text_;
  std::size_t position_ = 0;
  bool sawBadCode_ = false;
};

}  // namespace host::dxf
