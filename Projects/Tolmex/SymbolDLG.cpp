#include "Tolmex/SymbolDLG.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/ParentWindow.h"
#include "OrvLib/ARX/Resources.h"
#include "OrvLib/GeomStructs/EntityMakers.h"
#include "OrvLib/Reports/Failures.h"
#include "Tolmex/Model/SymbolNames.h"
#include "Tolmex/Resource.h"
#include "Tolmex/SymbolFiles.h"

namespace OrvLib {
namespace {

constexpr std::size_t kLongestPath = 1024;
// In the order of the sizes.
constexpr std::array<int, 4> kSizeButtons{IDC_SYMBOL_NO_SIZE, IDC_SYMBOL_SMALL, IDC_SYMBOL_MEDIUM, IDC_SYMBOL_LARGE};

/// The pointer type is Windows' own, which carries a qualifier on some systems.
struct IdListFree {
  using pointer = LPITEMIDLIST;
  void operator()(LPITEMIDLIST list) const { CoTaskMemFree(list); }
};

/// Asks for a folder; empty when the user gives none.
std::wstring askSymbolDirectory(HWND parent) {
  BROWSEINFOW question{};
  question.hwndOwner = parent;
  question.lpszTitle = L"Valitse symbolihakemisto";
  question.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
  const std::unique_ptr<ITEMIDLIST, IdListFree> picked(SHBrowseForFolderW(&question));
  std::array<wchar_t, kLongestPath> path{};
  if (!picked || SHGetPathFromIDListEx(picked.get(), path.data(), static_cast<DWORD>(path.size()), 0) == FALSE)
    return {};
  return path.data();
}

class SymbolDLG : public CAcUiDialog {
 public:
  SymbolDLG(std::wstring directory, CWnd* parent, HINSTANCE resources)
      : CAcUiDialog(IDD_SYMBOL, parent, resources), directory_(std::move(directory)) {}

  const std::optional<std::wstring>& leftDirectory() const { return leftDirectory_; }

 protected:
  void DoDataExchange(CDataExchange* exchange) override {
    CAcUiDialog::DoDataExchange(exchange);
    DDX_Control(exchange, IDC_SYMBOL_LIST, list_);
    DDX_Control(exchange, IDC_SYMBOL_PREVIEW, preview_);
    DDX_Control(exchange, IDC_SYMBOL_DIRECTORY, directoryEdit_);
    DDX_Control(exchange, IDC_INSERT_SYMBOL, insertButton_);
    for (std::size_t size = 0; size < sizeButtons_.size(); ++size)
      DDX_Control(exchange, kSizeButtons[size], sizeButtons_[size]);
  }

  BOOL OnInitDialog() override {
    const BOOL result = CAcUiDialog::OnInitDialog();
    guarded([this] {
      sizeButtons_.front().SetCheck(static_cast<int>(BST_CHECKED));
      showDirectory();
    });
    return result;
  }

  afx_msg void OnPaint() {
    const CPaintDC dc(this);
    guarded([this] {
      insertButton_.EnableWindow(FALSE);
      if (selectedFile_.empty()) return;
      if (acdbDisplayPreviewFromDwg(symbolPath(directory_, selectedFile_).c_str(), &preview_)) {
        insertButton_.EnableWindow(TRUE);
      }
    });
  }

  void OnOK() override {
    guarded([this] { leftDirectory_ = directory_; });
    EndDialog(IDOK);
  }

  afx_msg void onSize() {
    for (std::size_t size = 0; size < sizeButtons_.size(); ++size) {
      if (sizeButtons_[size].GetCheck() != 0) variant_.size = static_cast<int>(size);
    }
    guarded([this] { fillList(); });
  }
  afx_msg void onShadow() {
    variant_.shadow = !variant_.shadow;
    guarded([this] { fillList(); });
  }
  afx_msg void onFill() {
    variant_.fill = !variant_.fill;
    guarded([this] { fillList(); });
  }

  afx_msg void onSelect() {
    guarded([this] {
      const int index = list_.GetCurSel();
      if (index < 0 || static_cast<std::size_t>(index) >= matchingFiles_.size()) return;
      selectedFile_ = matchingFiles_[static_cast<std::size_t>(index)];
      CString text;
      list_.GetText(index, text);
      selectedBase_ = text.GetString();
      Invalidate();
    });
  }

  afx_msg void onBrowse() {
    guarded([this] {
      const std::wstring picked = askSymbolDirectory(m_hWnd);
      if (picked.empty()) return;
      directory_ = picked;
      showDirectory();
    });
  }

  afx_msg void onInsert() {
    guarded([this] { insertSelected(); });
  }
  afx_msg void onDoubleClick() {
    guarded([this] {
      // The first of the two clicks may have chosen a symbol that has not been painted yet.
      UpdateWindow();
      if (insertButton_.IsWindowEnabled() != FALSE) insertSelected();
    });
  }

  DECLARE_MESSAGE_MAP()

 private:
  void showDirectory() {
    directoryEdit_.SetWindowText(directory_.c_str());
    allFiles_ = drawingsIn(directory_);
    fillList();
  }

  void fillList() {
    selectedFile_.clear();
    selectedBase_.clear();
    list_.ResetContent();
    matchingFiles_ = symbolFiles(allFiles_, variant_);
    for (const std::wstring& file : matchingFiles_) list_.AddString(baseName(file, variant_).c_str());
    Invalidate();
  }

  void insertSelected() {
    if (selectedFile_.empty()) return;
    const AcDbObjectId block =
        insertSymbolBlock(symbolPath(directory_, selectedFile_), selectedBase_ + variant_.fileTail());
    if (block.isNull()) return;
    const std::wstring layer = symbolLayer(selectedBase_, variant_);
    BeginEditorCommand();
    ads_point point{};
    int answer = RTNORM;
    while ((answer = acedGetPoint(nullptr, L"\nAnna uusi insertointipiste [Esc - lopetus / Enter - paluu]:", point)) ==
           RTNORM) {
      makeBlockReference(block, {point[0], point[1], point[2]}, layer.c_str());
    }
    if (answer == RTCAN) {
      leftDirectory_ = directory_;
      CancelEditorCommand();
    } else {
      CompleteEditorCommand();
    }
  }

  std::wstring directory_;
  std::optional<std::wstring> leftDirectory_;
  SymbolVariant variant_;
  std::vector<std::wstring> allFiles_;
  std::vector<std::wstring> matchingFiles_;  // as the list shows them
  std::wstring selectedFile_;
  std::wstring selectedBase_;
  CListBox list_;
  CStatic preview_;
  CEdit directoryEdit_;
  CButton insertButton_;
  std::array<CButton, kSizeButtons.size()> sizeButtons_;
};

BEGIN_MESSAGE_MAP(SymbolDLG, CAcUiDialog)
ON_WM_PAINT()
ON_BN_CLICKED(IDC_SYMBOL_NO_SIZE, &SymbolDLG::onSize)
ON_BN_CLICKED(IDC_SYMBOL_SMALL, &SymbolDLG::onSize)
ON_BN_CLICKED(IDC_SYMBOL_MEDIUM, &SymbolDLG::onSize)
ON_BN_CLICKED(IDC_SYMBOL_LARGE, &SymbolDLG::onSize)
ON_BN_CLICKED(IDC_SYMBOL_SHADOW, &SymbolDLG::onShadow)
ON_BN_CLICKED(IDC_SYMBOL_FILL, &SymbolDLG::onFill)
ON_LBN_SELCHANGE(IDC_SYMBOL_LIST, &SymbolDLG::onSelect)
ON_LBN_DBLCLK(IDC_SYMBOL_LIST, &SymbolDLG::onDoubleClick)
ON_BN_CLICKED(IDC_BROWSE_SYMBOLS, &SymbolDLG::onBrowse)
ON_BN_CLICKED(IDC_INSERT_SYMBOL, &SymbolDLG::onInsert)
END_MESSAGE_MAP()

}  // namespace

std::optional<std::wstring> showSymbols(const std::wstring& directory) {
  const OwnResources resources;
  SymbolDLG dialog(directory, parentWindow(), moduleInstance());
  dialog.DoModal();
  return dialog.leftDirectory();
}

}  // namespace OrvLib
