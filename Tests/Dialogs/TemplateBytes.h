// Dialog templates made byte by byte.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "windows.h"

namespace tests {

enum class TemplateForm { Extended, Old };

class TemplateBytes {
 public:
  explicit TemplateBytes(const std::wstring& title, TemplateForm form = TemplateForm::Extended) : form_(form) {
    const DWORD style = WS_POPUP | WS_CAPTION | DS_SETFONT;
    if (isExtended()) word(1).word(0xFFFF).dword(0).dword(0).dword(style);
    if (!isExtended()) dword(style).dword(0);
    countAt_ = bytes_.size();
    word(0).word(0).word(0).word(200).word(120);  // count, place, size
    word(0).word(0).text(title).word(8);          // menu, class, title, point size
    if (isExtended()) word(400).byte(0).byte(1);
    text(L"MS Shell Dlg");
  }

  TemplateBytes& control(WORD windowClass, int id, DWORD style, const std::wstring& title = {}) {
    while (bytes_.size() % 4 != 0) byte(0);
    style |= WS_CHILD | WS_VISIBLE;
    if (isExtended()) dword(0).dword(0).dword(style);
    if (!isExtended()) dword(style).dword(0);
    word(10).word(20).word(60).word(12);
    isExtended() ? dword(static_cast<DWORD>(id)) : word(static_cast<WORD>(id));
    word(0xFFFF).word(windowClass).text(title).word(0);
    ++bytes_[countAt_];
    return *this;
  }
  TemplateBytes& button(int id, DWORD style, const std::wstring& title) { return control(0x80, id, style, title); }
  TemplateBytes& edit(int id, DWORD style = 0) { return control(0x81, id, style); }

  std::vector<std::uint8_t>& bytes() { return bytes_; }
  std::size_t countAt() const { return countAt_; }
  LPCDLGTEMPLATE get() const { return reinterpret_cast<LPCDLGTEMPLATE>(bytes_.data()); }

  TemplateBytes& byte(unsigned value) {
    bytes_.push_back(static_cast<std::uint8_t>(value));
    return *this;
  }
  TemplateBytes& word(unsigned value) { return byte(value & 0xFF).byte(value >> 8 & 0xFF); }
  TemplateBytes& dword(DWORD value) { return word(value & 0xFFFF).word(value >> 16); }
  TemplateBytes& text(const std::wstring& text) {
    for (const wchar_t c : text) word(static_cast<unsigned>(c));
    return word(0);
  }

 private:
  bool isExtended() const { return form_ == TemplateForm::Extended; }

  TemplateForm form_;
  std::vector<std::uint8_t> bytes_;
  std::size_t countAt_ = 0;
};

}  // namespace tests
