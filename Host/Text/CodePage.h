// One- and two-byte code pages as tables.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host::text {

/// One code page; immutable once made, so any number of threads may share it. All its characters are in the BMP.
class CodePage {
 public:
  /// The code page of this name ("CP1252", "MACINTOSH", "ISO-8859-2"), made on first use and kept; every system has
  /// the same. A name that has no table gives Latin-1.
  static std::shared_ptr<const CodePage> get(const std::string& name);
  explicit CodePage(const std::string& name);

  /// Decodes one character at `position` and moves past it. U+FFFD for a byte or pair without meaning; an ASCII byte
  /// after a broken lead byte is left for the next call.
  char32_t next(std::string_view bytes, std::size_t& position) const;
  /// Appends the bytes of a character; false when the page has none.
  bool append(std::string& out, char32_t codePoint) const;

 private:
  bool isLead(unsigned char byte) const { return singles_[byte] == 0 && byte != 0; }
  void add(std::uint16_t code, char16_t character);

  std::array<char16_t, 256> singles_{};  // 0: not a character of its own
  std::vector<char16_t> pairs_;          // by 256 * (lead - 0x80) + trail; empty in one-byte pages
  std::vector<std::uint16_t> codes_;     // by character; 0: none
};

}  // namespace host::text
