#include "Mfc/SelectColor.h"

#include <cstdint>
#include <string>
#include <vector>

#include "Database/Palette.h"
#include "Win32/WindowObject.h"
#include "afxwin.h"

namespace host::mfc {
namespace {

constexpr UINT kIndexEdit = 1001;
constexpr UINT kPalette = 1002;

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

// The palette: 24 hues with ten tones each (10 to 249), below them the nine standard colours and the six greys.
constexpr int kColumns = 24;
constexpr int kTones = 10;
constexpr int kRows = kTones + 2;  // one is a gap
constexpr int kFirstHue = 10;
constexpr int kFirstGrey = 250;
constexpr int kGreys = 6;

/// The colour at a place of the palette; 0 for none.
int indexAt(int column, int row) {
  if (column < 0 || column >= kColumns || row < 0) return 0;
  if (row < kTones) return kFirstHue + kTones * column + row;
  if (row != kRows - 1) return 0;
  if (column < kFirstHue - 1) return column + 1;
  const int grey = column - (kColumns - kGreys);
  return grey >= 0 ? kFirstGrey + grey : 0;
}

class PaletteView : public CStatic {
 public:
  /// The edit that shows the index of the colour that is pressed.
  CWnd* indexEdit = nullptr;

 protected:
  afx_msg void OnPaint() {
    CPaintDC dc(this);
    for (int row = 0; row < kRows; ++row) {
      for (int column = 0; column < kColumns; ++column) {
        const int index = indexAt(column, row);
        if (index == 0) continue;
        const RECT area = cell(column, row);
        fillArea(dc.GetSafeHdc(), area, shownColor(index));
        frameArea(dc.GetSafeHdc(), area, RGB(128, 128, 128));
      }
    }
  }
  afx_msg LRESULT onPress(WPARAM, LPARAM place) {
    for (int row = 0; row < kRows; ++row) {
      for (int column = 0; column < kColumns; ++column) {
        const RECT area = cell(column, row);
        const bool isHere =
            LOWORD(static_cast<WPARAM>(place)) >= area.left && LOWORD(static_cast<WPARAM>(place)) < area.right &&
            HIWORD(static_cast<WPARAM>(place)) >= area.top && HIWORD(static_cast<WPARAM>(place)) < area.bottom;
        if (!isHere || indexAt(column, row) == 0) continue;
        indexEdit->SetWindowText(std::to_wstring(indexAt(column, row)).c_str());
        win32::widgetEdited(*indexEdit->GetSafeHwnd());
      }
    }
    return 0;
  }
  DECLARE_MESSAGE_MAP()

 private:
  RECT cell(int column, int row) const {
    RECT all{};
    GetClientRect(&all);
    return {all.right * column / kColumns, all.bottom * row / kRows, all.right * (column + 1) / kColumns,
            all.bottom * (row + 1) / kRows};
  }
};

BEGIN_MESSAGE_MAP(PaletteView, CStatic)
ON_WM_PAINT()
ON_MESSAGE(WM_LBUTTONDOWN, &PaletteView::onPress)
END_MESSAGE_MAP()

class SelectColorDialog : public CDialog {
 public:
  explicit SelectColorDialog(int index) : index_(index) {
    constexpr WORD kButton = 0x80;
    constexpr WORD kEdit = 0x81;
    constexpr WORD kStatic = 0x82;
    template_.control(kStatic, kPalette, SS_LEFT, L"", {8, 8, 216, 100})
        .control(kStatic, 0xFFFF, SS_LEFT, L"Color index, 1 to 255:", {8, 118, 84, 9})
        .control(kEdit, kIndexEdit, WS_BORDER | WS_TABSTOP | ES_NUMBER | ES_AUTOHSCROLL, L"", {96, 116, 40, 12})
        .control(kButton, IDOK, BS_DEFPUSHBUTTON | WS_TABSTOP, L"OK", {120, 138, 50, 14})
        .control(kButton, IDCANCEL, BS_PUSHBUTTON | WS_TABSTOP, L"Cancel", {174, 138, 50, 14});
    InitModalIndirect(template_.get());
  }
  int index() const { return index_; }

 protected:
  void DoDataExchange(CDataExchange* exchange) override {
    CDialog::DoDataExchange(exchange);
    DDX_Control(exchange, kPalette, palette_);
    DDX_Control(exchange, kIndexEdit, edit_);
  }
  BOOL OnInitDialog() override {
    palette_.indexEdit = &edit_;
    const BOOL result = CDialog::OnInitDialog();
    if (index_ >= 1 && index_ <= 255) edit_.SetWindowText(std::to_wstring(index_).c_str());
    return result;
  }
  void OnOK() override {
    CString text;
    edit_.GetWindowText(text);
    const int index = colorIndexOf(text.Trim().GetString());
    if (index < 1 || index > 255) {
      AfxMessageBox(L"Give a color index from 1 to 255.");
      return;
    }
    index_ = index;
    CDialog::OnOK();
  }

 private:
  TemplateBuilder template_{L"Select Color", 232, 160};
  PaletteView palette_;
  CEdit edit_;
  int index_;
};

}  // namespace

int colorIndexOf(std::wstring_view text) {
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

void fillArea(HDC dc, const RECT& area, COLORREF color) {
  const HBRUSH brush = CreateSolidBrush(color);
  FillRect(dc, &area, brush);
  DeleteObject(brush);
}

void frameArea(HDC dc, const RECT& area, COLORREF color) {
  const HBRUSH brush = CreateSolidBrush(color);
  FrameRect(dc, &area, brush);
  DeleteObject(brush);
}

int askColorIndex(int index) {
  SelectColorDialog dialog(index);
  return dialog.DoModal() == IDOK ? dialog.index() : -1;
}

}  // namespace host::mfc
