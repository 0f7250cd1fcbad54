// The drop-down list of colours, and the dialog that asks for any of the 256.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Database/Palette.h"
#include "acui.h"
#include "tchar.h"

namespace {

constexpr int kByBlock = 0;
constexpr int kByLayer = 256;
constexpr int kOther = -2;  // the item that asks for a colour
constexpr const wchar_t* kOtherText = L"Select Color...";
constexpr const wchar_t* kStandardNames[] = {L"Red", L"Yellow", L"Green", L"Cyan", L"Blue", L"Magenta", L"White"};
constexpr UINT kIndexEdit = 1001;

/// The colour that an index stands for: "45", by its number.
int indexOf(std::wstring_view text) {
  if (text.empty() || text.size() > 3) return -1;
  int index = 0;
  for (const wchar_t digit : text) {
    if (digit < L'0' || digit > L'9') return -1;
    index = index * 10 + (digit - L'0');
  }
  return index;
}

COLORREF shownColor(int index) {
  const std::uint32_t rgb = host::database::paletteColor(index);
  return RGB(static_cast<BYTE>(rgb >> 16), static_cast<BYTE>(rgb >> 8), static_cast<BYTE>(rgb));
}

void fill(HDC dc, const RECT& area, COLORREF color) {
  const HBRUSH brush = CreateSolidBrush(color);
  FillRect(dc, &area, brush);
  DeleteObject(brush);
}

void frame(HDC dc, const RECT& area, COLORREF color) {
  const HBRUSH brush = CreateSolidBrush(color);
  FrameRect(dc, &area, brush);
  DeleteObject(brush);
}

/// A dialog template built in memory.
class TemplateBuilder {
 public:
  TemplateBuilder(const wchar_t* title, short width, short height) {
    word(1).word(0xFFFF).dword(0).dword(0);
    dword(WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_SETFONT | DS_MODALFRAME);
    countAt_ = bytes_.size();
    word(0).word(0).word(0).word(static_cast<WORD>(width)).word(static_cast<WORD>(height));
    word(0).word(0).text(title);
    word(8).word(400).byte(0).byte(1).text(L"MS Shell Dlg");
  }
  TemplateBuilder& control(WORD windowClass, UINT id, DWORD style, const wchar_t* text, const RECT& rect) {
    while (bytes_.size() % 4 != 0) byte(0);
    dword(0).dword(0).dword(style | WS_CHILD | WS_VISIBLE);
    word(static_cast<WORD>(rect.left)).word(static_cast<WORD>(rect.top));
    word(static_cast<WORD>(rect.right)).word(static_cast<WORD>(rect.bottom));
    dword(id).word(0xFFFF).word(windowClass);
    this->text(text).word(0);
    ++bytes_[countAt_];
    return *this;
  }
  LPCDLGTEMPLATE get() const { return reinterpret_cast<LPCDLGTEMPLATE>(bytes_.data()); }

 private:
  TemplateBuilder& byte(std::uint8_t value) {
    bytes_.push_back(value);
    return *this;
  }
  TemplateBuilder& word(WORD value) { return byte(static_cast<BYTE>(value)).byte(static_cast<BYTE>(value >> 8)); }
  TemplateBuilder& dword(DWORD value) { return word(LOWORD(value)).word(HIWORD(value)); }
  TemplateBuilder& text(const wchar_t* text) {
    for (; *text != 0; ++text) word(static_cast<WORD>(*text));
    return word(0);
  }

  std::vector<std::uint8_t> bytes_;
  std::size_t countAt_ = 0;
};

/// Asks for a colour index from 1 to 255.
class SelectColorDialog : public CDialog {
 public:
  explicit SelectColorDialog(int index) : index_(index) {
    constexpr WORD kButton = 0x80;
    constexpr WORD kEdit = 0x81;
    constexpr WORD kStatic = 0x82;
    template_.control(kStatic, 0xFFFF, SS_LEFT, L"Color index, 1 to 255:", {8, 10, 84, 9})
        .control(kEdit, kIndexEdit, WS_BORDER | WS_TABSTOP | ES_NUMBER | ES_AUTOHSCROLL, L"", {96, 8, 40, 12})
        .control(kButton, IDOK, BS_DEFPUSHBUTTON | WS_TABSTOP, L"OK", {32, 30, 50, 14})
        .control(kButton, IDCANCEL, BS_PUSHBUTTON | WS_TABSTOP, L"Cancel", {86, 30, 50, 14});
    InitModalIndirect(template_.get());
  }
  int index() const { return index_; }

 protected:
  BOOL OnInitDialog() override {
    if (index_ >= 1 && index_ <= 255) SetDlgItemText(kIndexEdit, std::to_wstring(index_).c_str());
    return CDialog::OnInitDialog();
  }
  void OnOK() override {
    CString text;
    GetDlgItem(kIndexEdit)->GetWindowText(text);
    const int index = indexOf(text.Trim().GetString());
    if (index < 1 || index > 255) {
      AfxMessageBox(L"Give a color index from 1 to 255.");
      return;
    }
    index_ = index;
    CDialog::OnOK();
  }

 private:
  TemplateBuilder template_{L"Select Color", 144, 52};
  int index_;
};

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
  // A colour that is asked for by its index and is not in the list yet.
  static const UINT chooseText = RegisterWindowMessageW(L"HostChooseText");
  if (message == chooseText) {
    const int item = AddColorToMRU(indexOf(reinterpret_cast<LPCWSTR>(lParam)));
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
  SelectColorDialog dialog(selectedColor_);
  const bool isChosen = dialog.DoModal() == IDOK;
  SetCurSel(isChosen ? AddColorToMRU(dialog.index()) : FindItemByColorIndex(selectedColor_));
}

void CAcUiColorComboBox::DrawItem(LPDRAWITEMSTRUCT draw) {
  constexpr LONG kMargin = 2;
  constexpr LONG kSwatchWidth = 16;
  const bool isSelected = (draw->itemState & ODS_SELECTED) != 0;
  const bool isDisabled = (draw->itemState & ODS_DISABLED) != 0;
  fill(draw->hDC, draw->rcItem, GetSysColor(isSelected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
  const int item = static_cast<int>(draw->itemID);
  const int index = GetItemColorIndex(item);
  if (index == -1) return;
  RECT area = draw->rcItem;
  area.left += kMargin;
  if (index >= 1 && index <= 255) {
    const RECT swatch = {area.left, area.top + kMargin, area.left + kSwatchWidth, area.bottom - kMargin};
    fill(draw->hDC, swatch, shownColor(index));
    frame(draw->hDC, swatch, RGB(0, 0, 0));
  }
  area.left += kSwatchWidth + 2 * kMargin;
  CString text;
  GetLBText(item, text);
  const int color = isDisabled ? COLOR_GRAYTEXT : isSelected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT;
  SetTextColor(draw->hDC, GetSysColor(color));
  DrawTextW(draw->hDC, text, -1, &area, DT_LEFT | DT_VCENTER | DT_SINGLELINE);
}
