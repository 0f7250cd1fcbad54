// The drop-down list of colours.
#include <cstdint>
#include <string>

#include "Mfc/SelectColor.h"
#include "acui.h"

using host::mfc::askColorIndex;
using host::mfc::colorIndexOf;
using host::mfc::fillArea;
using host::mfc::frameArea;
using host::mfc::shownColor;

namespace {

constexpr int kByBlock = 0;
constexpr int kByLayer = 256;
constexpr int kOther = -2;  // the item that asks for a colour
constexpr const wchar_t* kOtherText = L"Select Color...";
constexpr const wchar_t* kStandardNames[] = {L"Red", L"Yellow", L"Green", L"Cyan", L"Blue", L"Magenta", L"White"};

}  // namespace

void CAcUiColorComboBox::PreSubclassWindow() {
  CAcUiMRUComboBox::PreSubclassWindow();
  if (GetCount() > 0) return;
  if (GetUseByLayer() != FALSE) insertColor(-1, L"ByLayer", kByLayer);
  if (GetUseByBlock() != FALSE) insertColor(-1, L"ByBlock", kByBlock);
  int index = 1;
  for (const wchar_t* const name : kStandardNames) insertColor(-1, name, index++);
  insertColor(-1, kOtherText, kOther);
}

int CAcUiColorComboBox::insertColor(int at, LPCWSTR text, int colorIndex) {
  const int item = InsertString(at, text);
  if (item >= 0) SetItemData(item, static_cast<DWORD_PTR>(static_cast<std::intptr_t>(colorIndex)));
  return item;
}

int CAcUiColorComboBox::GetItemColorIndex(int item) {
  if (item < 0 || item >= GetCount()) return -1;
  return static_cast<int>(static_cast<std::intptr_t>(GetItemData(item)));
}

int CAcUiColorComboBox::FindItemByColorIndex(int colorIndex) {
  for (int item = 0; item < GetCount(); ++item) {
    if (GetItemColorIndex(item) == colorIndex) return item;
  }
  return -1;
}

int CAcUiColorComboBox::GetCurrentItemColorIndex() {
  const int index = GetItemColorIndex(GetCurSel());
  return index == kOther ? selectedColor_ : index;
}

int CAcUiColorComboBox::AddColorToMRU(int colorIndex) {
  if (colorIndex < 0) return -1;
  if (const int item = FindItemByColorIndex(colorIndex); item >= 0) return item;
  if (colorIndex < 1 || colorIndex > 255) return -1;
  // The colours used recently stand between the standard ones and the last item.
  return insertColor(GetCount() - 1, std::to_wstring(colorIndex).c_str(), colorIndex);
}

LRESULT CAcUiColorComboBox::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  // A caller selects a colour by its index, and the list lacks that colour so far.
  static const UINT chooseText = RegisterWindowMessageW(L"HostChooseText");
  if (message == chooseText) {
    const int item = AddColorToMRU(colorIndexOf(reinterpret_cast<LPCWSTR>(lParam)));
    if (item < 0) return FALSE;
    SetCurSel(item);
    return TRUE;
  }
  const LRESULT result = CAcUiMRUComboBox::WindowProc(message, wParam, lParam);
  if (message == CB_SETCURSEL && GetItemColorIndex(GetCurSel()) != kOther)
    selectedColor_ = GetItemColorIndex(GetCurSel());
  return result;
}

BOOL CAcUiColorComboBox::OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
  if (message == WM_COMMAND && HIWORD(wParam) == CBN_SELCHANGE) {
    const int chosen = GetItemColorIndex(GetCurSel());
    if (chosen == kOther) {
      askForColor();
    } else {
      selectedColor_ = chosen;
    }
  }
  return CAcUiMRUComboBox::OnChildNotify(message, wParam, lParam, result);
}

void CAcUiColorComboBox::askForColor() {
  const int chosen = askColorIndex(selectedColor_);
  SetCurSel(chosen > 0 ? AddColorToMRU(chosen) : FindItemByColorIndex(selectedColor_));
}

void CAcUiColorComboBox::DrawItem(LPDRAWITEMSTRUCT draw) {
  constexpr LONG kMargin = 2;
  constexpr LONG kSwatchWidth = 16;
  const bool isSelected = (draw->itemState & ODS_SELECTED) != 0;
  const bool isDisabled = (draw->itemState & ODS_DISABLED) != 0;
  fillArea(draw->hDC, draw->rcItem, GetSysColor(isSelected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  const int item = static_cast<int>(draw->itemID);
  const int index = GetItemColorIndex(item);
  if (index == -1) return;
  RECT area = draw->rcItem;
  area.left += kMargin;
  if (index >= 1 && index <= 255) {
    const RECT swatch = {area.left, area.top + kMargin, area.left + kSwatchWidth, area.bottom - kMargin};
    fillArea(draw->hDC, swatch, shownColor(index));
    frameArea(draw->hDC, swatch, RGB(0, 0, 0));
  }
  area.left += kSwatchWidth + 2 * kMargin;
  CString text;
  GetLBText(item, text);
  const int color = isDisabled ? COLOR_GRAYTEXT : isSelected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT;
  SetTextColor(draw->hDC, GetSysColor(color));
  DrawTextW(draw->hDC, text, -1, &area, DT_LEFT | DT_VCENTER | DT_SINGLELINE);
}
