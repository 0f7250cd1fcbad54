// Lines of a script as actions on a dialog:
//   30206 2.8              the text of an edit ("" empties it), the entry of a list
//   30255                  presses a button, chooses a radio button
//   30300 on               a check box
//   OK                     a button by its caption; a check box too: Roof on; an edit or list by the text before it
//   double-click 30239     a list
//   PICTURE dialog.png     what the dialog looks like now, for documents and tests
//   LIST or ?              prints the controls with their contents in the transcript
//   (an empty line)        the default button, as Enter does; Esc cancels
#include <algorithm>
#include <optional>
#include <utility>

#include "Editor/DecimalComma.h"
#include "Editor/DialogInput.h"
#include "Editor/ScriptInput.h"
#include "Platform/Paths.h"
#include "Text/Text.h"
#include "Win32/DialogValues.h"
#include "Win32/WindowObject.h"

namespace host::win32 {
namespace {

constexpr std::wstring_view kBlanks = L" \t";

std::wstring_view trimmed(std::wstring_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::wstring_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

/// The first word and the rest behind the blanks after it.
std::pair<std::wstring_view, std::wstring_view> splitWord(std::wstring_view line) {
  const std::size_t end = line.find_first_of(kBlanks);
  if (end == std::wstring_view::npos) return {line, {}};
  return {line.substr(0, end), trimmed(line.substr(end))};
}

std::optional<int> asId(std::wstring_view word) {
  if (word.empty() || word.size() > 6) return std::nullopt;
  int id = 0;
  for (const wchar_t digit : word) {
    if (digit < L'0' || digit > L'9') return std::nullopt;
    id = id * 10 + (digit - L'0');
  }
  return id;
}

std::wstring unquoted(std::wstring_view value) {
  if (value.size() < 2 || value.front() != L'"' || value.back() != L'"') return std::wstring(value);
  std::wstring inside;
  for (std::size_t i = 1; i + 1 < value.size(); ++i) {
    inside += value[i];
    if (value[i] == L'"' && value[i + 1] == L'"' && i + 2 < value.size()) ++i;
  }
  return inside;
}

bool isPressed(const HostWindow& control) {
  return control.kind == WindowKind::Button && control.buttonType() != BS_GROUPBOX && !isCheckBox(control);
}

bool canBeWorked(const HostWindow& control) {
  return isPressed(control) || isCheckBox(control) || isList(control) || control.kind == WindowKind::Edit;
}

/// "30211 (edit), 30236 (drop-down list), 1 "OK""
std::wstring knownControls(const HostWindow& dialog) {
  std::wstring all;
  for (const auto& child : dialog.children) {
    if (!canBeWorked(*child) || !child->isVisible()) continue;
    if (!all.empty()) all += L", ";
    all += std::to_wstring(child->id);
    switch (child->kind) {
      case WindowKind::Edit:
        all += L" (edit)";
        break;
      case WindowKind::ComboBox:
        all += L" (drop-down list)";
        break;
      case WindowKind::ListBox:
        all += L" (list)";
        break;
      default:
        all += L" " + inQuotes(captionOf(*child));
    }
  }
  return all;
}

std::wstring items(HostWindow& list) {
  constexpr int kMostShown = 20;
  std::wstring all;
  for (int i = 0; i < std::min(list.widget->count(), kMostShown); ++i)
    all += (i > 0 ? L", " : L"") + inQuotes(list.widget->item(i));
  return list.widget->count() > kMostShown ? all + L", ..." : all;
}

/// "30206": how a script names the control; a button whose number is not its own by its caption.
std::wstring nameOf(HostWindow& control) {
  const bool isOwn = control.id >= 0 && GetDlgItem(control.parent, control.id) == &control;
  return isOwn ? std::to_wstring(control.id) : captionOf(control);
}

/// The dialog whose lines scripts give; null where there is nothing to record.
HostWindow* recordedDialog(HostWindow* dialog) {
  const bool isRecorded = editor::dialogsAreWorkedByHand() && dialog != nullptr && dialog->dialog &&
                          dialog->dialog->isModal && !dialog->dialog->isNotice && !dialog->dialog->hasEnded;
  return isRecorded ? dialog : nullptr;
}

std::wstring dialogName(HostWindow& dialog) { return L"dialog " + inQuotes(textOf(dialog)); }

void record(HostWindow& control, const std::wstring& line, const std::wstring& edited = {}) {
  if (HostWindow* const dialog = recordedDialog(control.parent))
    editor::dialogWorked(dialogName(*dialog), line, edited);
}

/// Why an action cannot be done; empty when it was.
using Refusal = std::wstring;

Refusal choose(HostWindow& list, const std::wstring& text) {
  const bool isCombo = list.kind == WindowKind::ComboBox;
  auto found = static_cast<int>(SendMessageW(&list, isCombo ? CB_FINDSTRINGEXACT : LB_FINDSTRINGEXACT,
                                             static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str())));
  if (found < 0) {
    if (SendMessageW(&list, chooseTextMessage(), 0, reinterpret_cast<LPARAM>(text.c_str())) == FALSE)
      return L"has no entry " + inQuotes(text) + L"; its entries: " + items(list);
    found = list.widget->current();
  }
  list.widget->setCurrent(found);
  widgetChosen(list);
  return {};
}

Refusal setCheck(HostWindow& box, std::wstring_view value) {
  const bool on = text::equalFolded(value, L"on");
  if (!on && !text::equalFolded(value, L"off")) return L"is a check box: give it on or off";
  if (box.widget->isChecked() != on) box.widget->click();
  return {};
}

/// Plug-ins read numbers with a point and would take "2,8" for 2.
std::wstring withoutDecimalComma(const std::wstring& value) {
  const std::optional<std::wstring> pointed = editor::withDecimalPoint(value);
  if (pointed) editor::printDialogLine(value + L" is taken as " + *pointed);
  return pointed.value_or(value);
}

Refusal actOn(HostWindow& control, std::wstring_view value) {
  if (!canBeWorked(control)) return L"is a text, not a control to be worked";
  if (!control.isVisible()) return L"is hidden";
  if (!control.isEnabled()) return L"is disabled";
  if (isCheckBox(control)) return setCheck(control, value);
  if (isPressed(control)) {
    if (!value.empty()) return L"is a button: it takes no value";
    control.widget->click();
    return {};
  }
  if (value.empty())
    return isList(control) ? L"is a list: give an entry" : L"is an edit: give its text, or \"\" for none";
  if (isList(control)) return choose(control, unquoted(value));
  if ((control.style & ES_READONLY) != 0) return L"is read-only";
  SetFocus(&control);
  control.widget->setText(withoutDecimalComma(unquoted(value)));
  return {};
}

Refusal doubleClick(HostWindow& control) {
  if (control.kind != WindowKind::ListBox) return L"is no list";
  if (!control.isEnabled() || !control.isVisible()) return L"is hidden or disabled";
  widgetDoubleClicked(control);
  return {};
}

/// A control named by its caption, and what the line says behind it.
struct Named {
  HostWindow* control = nullptr;
  std::wstring_view value;
};

Named buttonByCaption(HostWindow& dialog, std::wstring_view line) {
  const std::size_t blank = line.find_last_of(kBlanks);
  const std::wstring_view front = trimmed(line.substr(0, blank));  // all of it without a blank
  for (const auto& child : dialog.children) {
    if (!isPressed(*child) && !isCheckBox(*child)) continue;
    const std::wstring caption = captionOf(*child);
    if (text::equalFolded(caption, line)) return {child.get(), {}};
    if (isCheckBox(*child) && text::equalFolded(caption, front)) return {child.get(), line.substr(blank + 1)};
  }
  return {};
}

/// The line's words in the place of the label, however many blanks stand between them; nothing when it begins
/// otherwise.
std::optional<std::wstring_view> behindLabel(std::wstring_view line, std::wstring_view label) {
  while (!label.empty()) {
    const auto [wanted, others] = splitWord(label);
    const auto [word, rest] = splitWord(line);
    // The last word may carry the colon.
    const bool isSame = text::equalFolded(word, wanted) || (others.empty() && word.ends_with(L':') &&
                                                            text::equalFolded(word.substr(0, word.size() - 1), wanted));
    if (!isSame) return std::nullopt;
    label = others;
    line = rest;
  }
  return line;
}

/// An edit or a list by the text in front of it, the longest that fits: labels come before what they name.
Named fieldByLabel(HostWindow& dialog, std::wstring_view line) {
  Named found;
  std::size_t longest = 0;
  for (std::size_t i = 0; i + 1 < dialog.children.size(); ++i) {
    HostWindow& text = *dialog.children[i];
    HostWindow& field = *dialog.children[i + 1];
    const bool isField = isList(field) || field.kind == WindowKind::Edit;
    if (text.kind != WindowKind::Static || !isField) continue;
    const std::wstring label = labelOf(text);
    if (label.size() <= longest) continue;
    if (const std::optional<std::wstring_view> value = behindLabel(line, label)) {
      found = {&field, *value};
      longest = label.size();
    }
  }
  return found;
}

/// "30211 edit "3"", one line per control.
void listControls(HostWindow& dialog) {
  for (const auto& child : dialog.children) {
    std::wstring line = L"  " + std::to_wstring(child->id);
    std::wstring content = inQuotes(textOf(*child));
    switch (child->kind) {
      case WindowKind::Edit:
        line += L" edit ";
        break;
      case WindowKind::ComboBox:
        line += L" drop-down list ";
        break;
      case WindowKind::ListBox:
        line += L" list ";
        content = child->widget->current() < 0 ? L"" : inQuotes(child->widget->item(child->widget->current())) + L" ";
        content += child->widget->count() == 0 ? L"empty" : L"of " + items(*child);
        break;
      case WindowKind::Button:
        line += isCheckBox(*child) ? L" check box " : child->buttonType() == BS_GROUPBOX ? L" group " : L" button ";
        break;
      default:
        line += L" text ";
    }
    line += content;
    if (child->widget->isChecked()) line += L", on";
    if (!child->isVisible()) line += L", hidden";
    if (!child->isEnabled()) line += L", disabled";
    editor::printDialogLine(line);
  }
}

/// PICTURE file.png. False when the script has failed and the dialog must be cancelled.
bool savePicture(HostWindow& dialog, const std::wstring& shown) {
  const std::wstring name = L"dialog " + inQuotes(textOf(dialog)) + L": ";
  const std::filesystem::path file = platform::pathOf(text::toUtf8(shown));
  if (file.extension() != ".png") return editor::refuseDialogLine(name + L"a dialog's picture is a .png file");
  const std::string picture = dialog.widget->picture();
  if (picture.empty()) return editor::refuseDialogLine(name + L"no picture can be made of it");
  return editor::writeDialogFile(name, file, picture);
}

/// The whole sentence, or nothing.
std::wstring refusalOf(HostWindow& dialog, std::wstring_view line) {
  const std::wstring name = L"dialog " + inQuotes(textOf(dialog));
  const auto [word, rest] = splitWord(line);
  if ((text::equalFolded(line, L"LIST") || line == L"?") && buttonByCaption(dialog, line).control == nullptr) {
    editor::printDialogLine(name + L":");
    listControls(dialog);
    return {};
  }
  const bool isDouble = text::equalFolded(word, L"double-click");
  const std::optional<int> id = asId(isDouble ? rest : word);
  Named named;
  if (id) named = {GetDlgItem(&dialog, *id), rest};
  if (!id && !isDouble) named = buttonByCaption(dialog, line);
  if (!id && !isDouble && named.control == nullptr) named = fieldByLabel(dialog, line);
  const auto [control, value] = named;
  if (control == nullptr)
    return name + L" has no control " +
           inQuotes(isDouble ? rest
                    : id     ? word
                             : line) +
           L"; it has " + knownControls(dialog);
  const std::wstring which = name + L": control " + std::to_wstring(control->id) + L" ";
  const Refusal refusal = isDouble ? doubleClick(*control) : actOn(*control, value);
  return refusal.empty() ? L"" : which + refusal;
}

}  // namespace

void recordPressed(HostWindow& button) {
  if (isCheckBox(button)) {
    record(button, nameOf(button) + (button.widget->isChecked() ? L" on" : L" off"));
  } else {
    record(button, nameOf(button));
  }
}

void recordEdited(HostWindow& edit) {
  const std::wstring begin = nameOf(edit) + L" ";
  record(edit, begin + editor::quotedAnswer(edit.widget->text()), begin);
}

void recordChosen(HostWindow& list) {
  const int current = list.widget->current();
  if (current >= 0) record(list, nameOf(list) + L" " + editor::quotedAnswer(list.widget->item(current)));
}

void recordDoubleClicked(HostWindow& list) { record(list, L"double-click " + nameOf(list)); }

void recordEscaped(HostWindow& dialog) {
  if (recordedDialog(&dialog) != nullptr) editor::dialogEscaped(dialogName(dialog));
}

void recordEntered(HostWindow& dialog) {
  if (recordedDialog(&dialog) != nullptr) editor::dialogWorked(dialogName(dialog), {});
}

bool actOnLine(HostWindow& dialog) {
  const editor::Answer answer = editor::nextDialogLine(L"dialog " + inQuotes(textOf(dialog)));
  switch (answer.kind) {
    case editor::Answer::Kind::Text:
      break;
    case editor::Answer::Kind::Enter:
      widgetEntered(dialog);
      return true;
    default:
      if (editor::inputHasStopped()) return false;
      widgetEscaped(dialog);
      return true;
  }
  const std::wstring_view line = trimmed(answer.text);
  if (line.empty()) {
    widgetEntered(dialog);
    return true;
  }
  const auto [word, rest] = splitWord(line);
  if (text::equalFolded(word, L"PICTURE") && !rest.empty()) return savePicture(dialog, unquoted(rest));
  const std::wstring refusal = refusalOf(dialog, line);
  return refusal.empty() || editor::refuseDialogLine(refusal);
}

}  // namespace host::win32
