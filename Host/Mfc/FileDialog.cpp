#include <algorithm>
#include <array>

#include "afxdlgs.h"

CFileDialog::CFileDialog(BOOL openFileDialog, LPCWSTR defaultExtension, LPCWSTR fileName, DWORD flags, LPCWSTR filter,
                         CWnd* parent)
    : isOpen_(openFileDialog),
      extension_(defaultExtension),
      path_(fileName),
      filter_(filter != nullptr ? filter : L""),
      flags_(flags),
      owner_(parent) {
  std::replace(filter_.begin(), filter_.end(), L'|', L'\0');
}

INT_PTR CFileDialog::DoModal() {
  if (isOpen_ != FALSE) return IDCANCEL;
  std::array<wchar_t, 4096> path{};
  const std::size_t length = std::min(static_cast<std::size_t>(path_.GetLength()), path.size() - 1);
  std::copy_n(path_.GetString(), length, path.data());
  OPENFILENAMEW question{};
  question.lStructSize = sizeof(question);
  question.hwndOwner = owner_ != nullptr ? owner_->GetSafeHwnd() : nullptr;
  filter_ += L'\0';
  question.lpstrFilter = filter_.c_str();
  question.lpstrFile = path.data();
  question.nMaxFile = static_cast<DWORD>(path.size());
  question.Flags = flags_;
  question.lpstrDefExt = extension_.IsEmpty() ? nullptr : extension_.GetString();
  if (GetSaveFileNameW(&question) == FALSE) return IDCANCEL;
  path_ = path.data();
  return IDOK;
}
