// What the controls of a dialog are called and what they hold.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "Win32/WindowObject.h"

namespace host::win32 {

std::wstring inQuotes(std::wstring_view text);
/// A caption without the mark of its shortcut letter.
std::wstring captionOf(HostWindow& control);
/// "Pituus  m / kerros:" as "Pituus m / kerros".
std::wstring labelOf(HostWindow& text);
bool isCheckBox(const HostWindow& control);
bool isList(const HostWindow& control);

/// What a dialog holds at one time, to be compared with what it holds later.
class DialogValues {
 public:
  explicit DialogValues(const HostWindow& dialog);
  /// "Kerrosmäärä 1 -> 2, Harjakatto off -> on": what has changed since, in the order of the controls. Controls go by
  /// the text in front of them, by their caption, or by their number. Empty when all is as it was.
  std::wstring changes(const HostWindow& dialog) const;

 private:
  std::map<const HostWindow*, std::wstring> values_;
};

}  // namespace host::win32
