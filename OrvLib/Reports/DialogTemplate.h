// Dialog templates built at run time.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// Position and size in dialog units: a quarter of the font's average width, an eighth of its height.
struct UnitRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// Grows by controls; it must live as long as the dialog is being made. The font is Lucida Console.
class DialogTemplate {
 public:
  /// `style` beside that of every dialog with a caption, such as WS_THICKFRAME.
  DialogTemplate(std::wstring_view title, int width, int height, DWORD style = DS_MODALFRAME);

  DialogTemplate& button(int id, std::wstring_view caption, const UnitRect& rect, DWORD type = BS_PUSHBUTTON);
  DialogTemplate& checkBox(int id, std::wstring_view caption, const UnitRect& rect);
  DialogTemplate& label(std::wstring_view text, const UnitRect& rect);
  DialogTemplate& edit(int id, const UnitRect& rect, DWORD style = ES_AUTOHSCROLL);

  LPCDLGTEMPLATE get() const { return reinterpret_cast<LPCDLGTEMPLATE>(bytes_.data()); }

 private:
  void control(WORD windowClass, int id, DWORD style, std::wstring_view text, const UnitRect& rect);
  void word(std::uint32_t value);
  void doubleWord(DWORD value);
  void text(std::wstring_view text);
  void place(const UnitRect& rect);

  std::vector<std::uint8_t> bytes_;
};

}  // namespace OrvLib
