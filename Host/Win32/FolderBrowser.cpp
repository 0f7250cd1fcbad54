// The folder browser: one line of the input is the folder; a user at the screen gets the toolkit's own dialog.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "Editor/DialogInput.h"
#include "Text/FilePath.h"
#include "Text/Text.h"
#include "Win32/WindowObject.h"
#include "shlobj.h"

namespace host::win32 {
namespace {

std::wstring nameOf(const std::wstring& title) { return L"folder question \"" + title + L"\""; }

/// Empty when the question was left without an answer.
std::filesystem::path askByLine(const std::wstring& title) {
  const std::wstring name = nameOf(title);
  for (;;) {
    const editor::Answer answer = editor::nextDialogLine(name);
    if (answer.kind != editor::Answer::Kind::Text) return {};
    std::wstring line = answer.text;
    if (line.size() >= 2 && line.front() == L'"' && line.back() == L'"') line = line.substr(1, line.size() - 2);
    std::filesystem::path folder = editor::findFolder(text::toPath(line));
    if (!folder.empty()) return folder;
    std::wstring refusal = name;
    refusal.append(L": ").append(line).append(L" is no folder");
    if (!editor::refuseDialogLine(refusal)) return {};
  }
}

}  // namespace
}  // namespace host::win32

using namespace host::win32;

LPITEMIDLIST SHBrowseForFolderW(BROWSEINFOW* question) {
  if (question == nullptr) return nullptr;
  const std::wstring title = question->lpszTitle != nullptr ? question->lpszTitle : L"";
  std::wstring folder;
  if (WidgetSystem* const system = host::editor::dialogsAreWorkedByHand() ? widgetSystem() : nullptr) {
    folder = system->askFolder(IsWindow(question->hwndOwner) != FALSE ? question->hwndOwner : nullptr, title);
    if (folder.empty()) {
      host::editor::dialogEscaped(nameOf(title));
    } else {
      host::editor::dialogWorked(nameOf(title), folder);
    }
  } else {
    folder = host::text::fromUtf8(askByLine(title).string());
  }
  if (folder.empty()) return nullptr;
  // The list is the path itself, with its terminator.
  auto* const copy = static_cast<wchar_t*>(std::malloc((folder.size() + 1) * sizeof(wchar_t)));
  if (copy != nullptr) std::copy_n(folder.c_str(), folder.size() + 1, copy);
  return reinterpret_cast<ITEMIDLIST*>(copy);
}

BOOL SHGetPathFromIDListEx(LPCITEMIDLIST list, LPWSTR path, DWORD size, int) {
  if (list == nullptr || path == nullptr) return FALSE;
  const std::wstring_view folder = reinterpret_cast<const wchar_t*>(const_cast<const ITEMIDLIST*>(list));
  if (folder.size() >= size) return FALSE;
  std::copy(folder.begin(), folder.end(), path);
  path[folder.size()] = 0;
  return TRUE;
}

void CoTaskMemFree(volatile void* memory) { std::free(const_cast<void*>(memory)); }
