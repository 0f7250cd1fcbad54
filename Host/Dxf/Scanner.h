// Steps over the tags of a drawing's text.
#pragma once

#include <cstring>
#include <string_view>

namespace host::dxf {

inline constexpr int kBadCode = -9999;  // a group code that is not a number

/// One tag in the text.
struct Token {
  int code = 0;
  std::string_view codeText;
  std::string_view value;  // without line end
  std::size_t offset = 0;  // of the code line
  std::size_t end = 0;     // behind the value line

  std::string_view trimmed() const {
    std::string_view text = value;
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    return text;
  }
  int integer() const {
    const std::string_view text = trimmed();
    int number = 0;
    bool negative = false;
    for (std::size_t i = 0; i < text.size() && i < 10; ++i) {
      if (i == 0 && (text[i] == '-' || text[i] == '+')) {
        negative = text[i] == '-';
      } else if (text[i] >= '0' && text[i] <= '9') {
        number = number * 10 % 1000000000 + (text[i] - '0');
      } else {
        break;
      }
    }
    return negative ? -number : number;
  }
};

class Scanner {
 public:
  Scanner() = default;
  explicit Scanner(std::string_view text) : text_(text) {}

  std::size_t offset() const { return position_; }

  /// The tag at the position, without moving; false at the end of the text.
  bool peek(Token& token) const {
    if (position_ >= text_.size()) return false;
    std::size_t at = position_;
    token.offset = at;
    token.codeText = line(at);
    token.code = parseCode(token.codeText);
    token.value = line(at);
    if (token.code == 0) token.value = token.trimmed();
    token.end = at;
    return true;
  }
  void take(const Token& token) { position_ = token.end; }
  bool next(Token& token) {
    if (!peek(token)) return false;
    take(token);
    return true;
  }

  /// Moves in front of the next tag 0; true when a tag of extended data was passed. Values are not looked at.
  bool skipRecord() {
    bool sawXData = false;
    const char* const end = text_.data() + text_.size();
    const char* at = text_.data() + position_;
    while (at < end) {
      const char* const begin = at;
      const auto* codeEnd = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
      if (codeEnd == nullptr) {
        at = end;
        break;
      }
      while (at < codeEnd && *at == ' ') ++at;
      const std::size_t length = static_cast<std::size_t>(codeEnd - at);
      if (*at == '0' && (length == 1 || parseCode({begin, static_cast<std::size_t>(codeEnd - begin)}) == 0)) {
        at = begin;
        break;
      }
      // Extended data have four-digit codes, all of them 10xx.
      if (length >= 4 && at[0] == '1' && at[1] == '0' && at[2] >= '0' && at[2] <= '9' && at[3] >= '0' && at[3] <= '9') {
        sawXData = true;
      }
      const auto* valueEnd =
          static_cast<const char*>(std::memchr(codeEnd + 1, '\n', static_cast<std::size_t>(end - codeEnd - 1)));
      at = valueEnd == nullptr ? end : valueEnd + 1;
    }
    position_ = static_cast<std::size_t>(at - text_.data());
    return sawXData;
  }

  /// Number of the line at an offset, from 1. For messages: counts from the beginning.
  std::size_t lineAt(std::size_t at) const {
    std::size_t number = 1;
    const std::size_t limit = at < text_.size() ? at : text_.size();
    for (std::size_t i = 0; i < limit; ++i) number += text_[i] == '\n' ? 1 : 0;
    return number;
  }

 private:
  std::string_view line(std::size_t& at) const {
    if (at >= text_.size()) return {};
    const char* const begin = text_.data() + at;
    const auto* const end = static_cast<const char*>(std::memchr(begin, '\n', text_.size() - at));
    if (end == nullptr) {
      const std::string_view rest = text_.substr(at);
      at = text_.size();
      return rest;
    }
    std::size_t length = static_cast<std::size_t>(end - begin);
    at += length + 1;
    if (length > 0 && begin[length - 1] == '\r') --length;
    return {begin, length};
  }

  static int parseCode(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    bool negative = false;
    if (i < text.size() && text[i] == '-') {
      negative = true;
      ++i;
    }
    const std::size_t digits = i;
    int code = 0;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9' && i - digits < 6) code = code * 10 + (text[i++] - '0');
    if (i == digits) return kBadCode;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\r')) ++i;
    if (i != text.size()) return kBadCode;
    return negative ? -code : code;
  }

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace host::dxf
