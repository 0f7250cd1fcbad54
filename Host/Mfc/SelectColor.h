// Colours of the index palette: how they are shown, and the dialog that asks for one.
#pragma once

#include <string_view>

#include "windows.h"

namespace host::mfc {

/// The index that a text of digits spells; -1 for other texts.
int colorIndexOf(std::wstring_view text);
COLORREF shownColor(int index);
void fillArea(HDC dc, const RECT& area, COLORREF color);
void frameArea(HDC dc, const RECT& area, COLORREF color);

/// Asks for an index from 1 to 255, by the palette or by number, starting with `index`; -1 when the dialog is
/// cancelled.
int askColorIndex(int index);

}  // namespace host::mfc
