// The question for a file: one line of the input, or the toolkit's dialog.
#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>

#include "Editor/DialogInput.h"
#include "Platform/Paths.h"
#include "Text/Text.h"
#include "Win32/WindowObject.h"
#include "commdlg.h"

namespace host::win32 {
namespace {

std::wstring unquoted(std::wstring text) {
  const std::size_t begin = text.find_first_not_of(L" \t");
  if (begin == std::wstring::npos) return {};
  text = text.substr(begin, text.find_last_not_of(L" \t") - begin + 1);
  const bool isQuoted = text.size() >= 2 && text.front() == L'"' && text.back() == L'"';
  return isQuoted ? text.substr(1, text.size() - 2) : text;
}

std::wstring nameOf(const FileQuestion& question) { return L"file question \"" + question.title + L"\""; }

/// Empty when the question was cancelled.
std::wstring askLine(const FileQuestion& question) {
  const std::wstring name = nameOf(question);
  for (;;) {
    const editor::Answer answer = editor::nextDialogLine(name);
    if (answer.kind != editor::Answer::Kind::Text) return {};
    std::wstring path = unquoted(answer.text);
    std::error_code error;
    if (!path.empty() && !std::filesystem::is_directory(platform::pathOf(text::toUtf8(path)), error)) return path;
    std::wstring sentence = name;
    sentence.append(L": \"").append(path).append(L"\" is no name of a file");
    if (!editor::refuseDialogLine(sentence)) return {};
  }
}

FileQuestion questionOf(const OPENFILENAMEW& asked) {
  FileQuestion question;
  question.title = asked.lpstrTitle != nullptr ? asked.lpstrTitle : L"Save As";
  question.name = asked.lpstrFile;
  question.asksBeforeOverwriting = (asked.Flags & OFN_OVERWRITEPROMPT) != 0;
  for (LPCWSTR each = asked.lpstrFilter; each != nullptr && *each != 0;) {
    const std::wstring_view text = each;
    const std::wstring_view patterns = each + text.size() + 1;
    question.filters.emplace_back(text, patterns);
    each = patterns.data() + patterns.size() + 1;
  }
  return question;
}

std::wstring withExtension(const std::wstring& path, LPCWSTR extension) {
  if (extension == nullptr || *extension == 0) return path;
  const std::size_t name = path.find_last_of(L'/') + 1;
  if (path.find(L'.', name) != std::wstring::npos) return path;
  return path + (*extension == L'.' ? L"" : L".") + extension;
}

}  // namespace
}  // namespace host::win32

using namespace host::win32;

BOOL GetSaveFileNameW(OPENFILENAMEW* question) {
  if (question == nullptr || question->lStructSize != sizeof(*question) || question->lpstrFile == nullptr ||
      question->nMaxFile == 0) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const FileQuestion asked = questionOf(*question);
  std::wstring path;
  if (host::editor::dialogsAreWorkedByHand()) {
    WidgetSystem* const system = widgetSystem();
    HostWindow* const owner = IsWindow(question->hwndOwner) != FALSE ? question->hwndOwner : nullptr;
    if (system != nullptr) path = system->askFile(owner, asked);
    if (path.empty()) {
      host::editor::dialogEscaped(nameOf(asked));
    } else {
      host::editor::dialogWorked(nameOf(asked), path);
    }
  } else {
    path = askLine(asked);
  }
  if (path.empty()) return FALSE;
  path = withExtension(path, question->lpstrDefExt);
  if (path.size() >= question->nMaxFile) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  std::copy(path.begin(), path.end(), question->lpstrFile);
  question->lpstrFile[path.size()] = 0;
  return TRUE;
}
