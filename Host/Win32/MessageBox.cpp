// Message boxes: their text goes to the transcript, their answer is one line of the input.
#include <algorithm>
#include <array>
#include <string>

#include "Editor/DialogInput.h"
#include "Text/Text.h"
#include "Win32/WindowObject.h"

namespace host::win32 {
namespace {

struct Answer {
  int id;
  const wchar_t* caption;
};
constexpr Answer kOk{IDOK, L"OK"};
constexpr Answer kCancel{IDCANCEL, L"Cancel"};
constexpr Answer kYes{IDYES, L"Yes"};
constexpr Answer kNo{IDNO, L"No"};
constexpr Answer kRetry{IDRETRY, L"Retry"};
constexpr Answer kNone{0, nullptr};

struct Box {
  std::array<Answer, 3> buttons;  // unused ones at the end
  int escape;                     // what Esc answers; 0: the box cannot be left so
  int abandoned;                  // the answer that does least, given when the input has ended
};
/// By button type.
constexpr std::array<Box, 7> kBoxes{{
    {{kOk, kNone, kNone}, IDOK, IDOK},
    {{kOk, kCancel, kNone}, IDCANCEL, IDCANCEL},
    {{Answer{IDABORT, L"Abort"}, kRetry, Answer{IDIGNORE, L"Ignore"}}, 0, IDABORT},
    {{kYes, kNo, kCancel}, IDCANCEL, IDCANCEL},
    {{kYes, kNo, kNone}, 0, IDNO},
    {{kRetry, kCancel, kNone}, IDCANCEL, IDCANCEL},
    {{kCancel, Answer{IDTRYAGAIN, L"Try Again"}, Answer{IDCONTINUE, L"Continue"}}, IDCANCEL, IDCANCEL},
}};

std::wstring captions(const Box& box) {
  std::wstring all;
  for (const Answer& button : box.buttons) {
    if (button.caption != nullptr) all += (all.empty() ? L"" : L", ") + std::wstring(button.caption);
  }
  return all;
}

int idOfCaption(const Box& box, std::wstring_view caption) {
  for (const Answer& button : box.buttons) {
    if (button.caption != nullptr && text::equalFolded(button.caption, caption)) return button.id;
  }
  return 0;
}

std::wstring_view trimmed(std::wstring_view line) {
  while (!line.empty() && (line.front() == L' ' || line.front() == L'\t')) line.remove_prefix(1);
  while (!line.empty() && (line.back() == L' ' || line.back() == L'\t')) line.remove_suffix(1);
  return line;
}

std::wstring nameOf(std::wstring_view caption) { return L"message box \"" + std::wstring(caption) + L"\""; }

/// The user's answer as a script gives it.
void recordAnswer(const Box& box, std::wstring_view caption, int answer) {
  for (const Answer& button : box.buttons) {
    if (button.caption != nullptr && button.id == answer) editor::dialogWorked(nameOf(caption), button.caption);
  }
}

int askBox(const Box& box, std::wstring_view caption, std::size_t defaultButton) {
  const std::wstring name = nameOf(caption);
  for (;;) {
    const editor::Answer answer = editor::nextDialogLine(name + L" [" + captions(box) + L"]");
    std::wstring refusal;
    if (answer.kind == editor::Answer::Kind::Enter) return box.buttons[defaultButton].id;
    if (answer.kind == editor::Answer::Kind::Text) {
      const std::wstring_view line = trimmed(answer.text);
      if (const int id = idOfCaption(box, line); id != 0) return id;
      refusal = name + L" has no button \"" + std::wstring(line) + L"\"; it has " + captions(box);
    } else {
      if (editor::inputHasStopped()) return box.abandoned;
      if (box.escape != 0) return box.escape;
      refusal = name + L" cannot be left with Esc; it has " + captions(box);
    }
    if (!editor::refuseDialogLine(refusal)) return box.abandoned;
  }
}

}  // namespace
}  // namespace host::win32

using namespace host::win32;

int MessageBoxW(HWND parent, LPCWSTR text, LPCWSTR caption, UINT type) {
  const UINT kind = type & MB_TYPEMASK;
  if (kind >= kBoxes.size()) {
    SetLastError(ERROR_INVALID_MSGBOX_STYLE);
    return 0;
  }
  const std::wstring_view shownText = text != nullptr ? std::wstring_view(text) : std::wstring_view();
  const std::wstring_view shownCaption = caption != nullptr ? std::wstring_view(caption) : L"Error";
  const Box& box = kBoxes[kind];
  if (host::editor::commandIsAbandoned()) return box.abandoned;
  host::editor::showNotice(shownCaption, shownText);
  if (host::editor::dialogsAreWorkedByHand()) {
    if (WidgetSystem* const system = widgetSystem()) {
      const int answer =
          system->messageBox(IsWindow(parent) != FALSE ? parent : nullptr, shownText, shownCaption, type);
      if (kind != MB_OK) recordAnswer(box, shownCaption, answer);
      return answer;
    }
  }
  if (kind == MB_OK) return IDOK;
  const std::size_t wanted = (type & MB_DEFBUTTON3) != 0 ? 2 : (type & MB_DEFBUTTON2) != 0 ? 1 : 0;
  const bool exists = box.buttons[wanted].caption != nullptr;
  return askBox(box, shownCaption, exists ? wanted : 0);
}
