#include "OrvLib/Reports/DialogTemplate.h"

namespace OrvLib {
namespace {

constexpr WORD kButtonClass = 0x80;
constexpr WORD kEditClass = 0x81;
constexpr WORD kStaticClass = 0x82;
constexpr WORD kNumberMark = 0xFFFF;  // a class by its number follows
constexpr WORD kPointSize = 9;
constexpr WORD kNormalWeight = 400;
constexpr WORD kDefaultCharacterSet = 1;
constexpr std::size_t kCountAt = 16;  // of the controls, in the extended form
constexpr int kNoId = 0xFFFF;

}  // namespace

// The extended form: version, mark, help id, styles, count, place, menu, class, title, font.
DialogTemplate::DialogTemplate(std::wstring_view title, int width, int height, DWORD style) {
  word(1);
  word(kNumberMark);
  doubleWord(0);
  doubleWord(0);
  doubleWord(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_SETFONT | style);
  word(0);
  place({0, 0, width, height});
  word(0);
  word(0);
  text(title);
  word(kPointSize);
  word(kNormalWeight);
  word(kDefaultCharacterSet << 8);  // the low byte: not italic
  text(L"Lucida Console");
}

DialogTemplate& DialogTemplate::button(int id, std::wstring_view caption, const UnitRect& rect, DWORD type) {
  control(kButtonClass, id, type | WS_TABSTOP, caption, rect);
  return *this;
}

DialogTemplate& DialogTemplate::checkBox(int id, std::wstring_view caption, const UnitRect& rect) {
  return button(id, caption, rect, BS_AUTOCHECKBOX);
}

DialogTemplate& DialogTemplate::label(std::wstring_view text, const UnitRect& rect) {
  control(kStaticClass, kNoId, SS_LEFT | SS_NOPREFIX, text, rect);
  return *this;
}

DialogTemplate& DialogTemplate::edit(int id, const UnitRect& rect, DWORD style) {
  control(kEditClass, id, style | WS_BORDER | WS_TABSTOP, {}, rect);
  return *this;
}

void DialogTemplate::control(WORD windowClass, int id, DWORD style, std::wstring_view text, const UnitRect& rect) {
  while (bytes_.size() % 4 != 0) bytes_.push_back(0);
  doubleWord(0);
  doubleWord(0);
  doubleWord(style | WS_CHILD | WS_VISIBLE);
  place(rect);
  doubleWord(static_cast<DWORD>(id));
  word(kNumberMark);
  word(windowClass);
  this->text(text);
  word(0);
  ++bytes_[kCountAt];
}

void DialogTemplate::word(std::uint32_t value) {
  bytes_.push_back(static_cast<std::uint8_t>(value));
  bytes_.push_back(static_cast<std::uint8_t>(value >> 8));
}

void DialogTemplate::doubleWord(DWORD value) {
  word(value);
  word(value >> 16);
}

void DialogTemplate::text(std::wstring_view text) {
  constexpr std::uint32_t kBeyondOneWord = 0x10000;
  for (const wchar_t each : text) {
    const std::uint32_t character = std::char_traits<wchar_t>::to_int_type(each);
    if (character < kBeyondOneWord) {
      word(character);
    } else {  // wide characters of 32 bits
      word(0xD800 + ((character - kBeyondOneWord) >> 10));
      word(0xDC00 + ((character - kBeyondOneWord) & 0x3FF));
    }
  }
  word(0);
}

void DialogTemplate::place(const UnitRect& rect) {
  for (const int each : {rect.x, rect.y, rect.width, rect.height}) word(static_cast<std::uint32_t>(each));
}

}  // namespace OrvLib
