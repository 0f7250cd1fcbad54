// Dialogs: made from templates, run until they end.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "Editor/DialogInput.h"
#include "Text/Text.h"
#include "Win32/DialogValues.h"
#include "Win32/Resources.h"
#include "Win32/WindowObject.h"

namespace host::win32 {
namespace {

// A template that a program has built in memory says nowhere how long it is.
constexpr std::size_t kLongestBuiltTemplate = 0x10000;

std::optional<WindowKind> kindOf(const NameOrNumber& windowClass) {
  struct Class {
    std::uint16_t number;
    const wchar_t* name;
    WindowKind kind;
  };
  static constexpr Class kClasses[] = {{kButtonClass, L"Button", WindowKind::Button},
                                       {kEditClass, L"Edit", WindowKind::Edit},
                                       {kStaticClass, L"Static", WindowKind::Static},
                                       {kListBoxClass, L"ListBox", WindowKind::ListBox},
                                       {kComboBoxClass, L"ComboBox", WindowKind::ComboBox}};
  for (const Class& each : kClasses) {
    const auto* const name = std::get_if<std::wstring>(&windowClass);
    if (name != nullptr ? text::equalFolded(*name, each.name) : std::get<std::uint16_t>(windowClass) == each.number)
      return each.kind;
  }
  return std::nullopt;
}

RECT toPixels(const UnitRect& rect, const BaseUnits& units) {
  RECT pixels{};
  pixels.left = MulDiv(rect.x, units.width, 4);
  pixels.top = MulDiv(rect.y, units.height, 8);
  pixels.right = MulDiv(rect.x + rect.width, units.width, 4);
  pixels.bottom = MulDiv(rect.y + rect.height, units.height, 8);
  return pixels;
}

bool makeControls(const DialogTemplate& dialogTemplate, HostWindow& dialog) {
  for (const ControlTemplate& control : dialogTemplate.controls) {
    const std::optional<WindowKind> kind = kindOf(control.windowClass);
    if (!kind) return false;
    NewWindow window;
    window.kind = *kind;
    window.id = control.id;
    window.style = control.style;
    window.exStyle = control.exStyle;
    window.rect = toPixels(control.rect, dialog.dialog->units);
    if (const auto* const text = std::get_if<std::wstring>(&control.title)) window.text = *text;
    window.procedure = controlProcedure;
    HostWindow* const made = createWindow(window, &dialog);
    if (made == nullptr || IsWindow(&dialog) == FALSE) return false;
    if (!made->isEnabled()) made->widget->setEnabled(false);
    made->widget->setVisible(made->isVisible());
    if ((made->style & ES_READONLY) != 0 && *kind == WindowKind::Edit) made->widget->setReadOnly(true);
    if (!made->isOwnerDrawn()) continue;
    MEASUREITEMSTRUCT measure{};
    measure.CtlType = ODT_COMBOBOX;
    measure.CtlID = static_cast<UINT>(made->id);
    measure.itemHeight = static_cast<UINT>(dialog.dialog->units.height);
    SendMessageW(&dialog, WM_MEASUREITEM, static_cast<WPARAM>(made->id), reinterpret_cast<LPARAM>(&measure));
  }
  return true;
}

HostWindow* firstTabStop(const HostWindow& dialog) {
  for (const auto& child : dialog.children) {
    if ((child->style & WS_TABSTOP) != 0 && child->isVisible() && child->isEnabled()) return child.get();
  }
  return nullptr;
}

HostWindow* makeDialog(Bytes bytes, HWND parent, DLGPROC procedure, LPARAM parameter, bool isModal) {
  const std::optional<DialogTemplate> dialogTemplate = readDialogTemplate(bytes);
  WidgetSystem* const system = dialogTemplate ? widgetSystem() : nullptr;
  if (system == nullptr) {
    SetLastError(ERROR_INVALID_DATA);
    return nullptr;
  }
  DialogState state;
  state.procedure = procedure;
  state.units = system->measure(dialogTemplate->font);
  state.isModal = isModal;
  NewWindow window;
  window.kind = WindowKind::Dialog;
  window.style = dialogTemplate->style & ~WS_VISIBLE;
  window.exStyle = dialogTemplate->exStyle;
  window.rect = toPixels(dialogTemplate->rect, state.units);
  window.text = dialogTemplate->title;
  window.procedure = dialogProcedure;
  HostWindow* const dialog =
      createWindow(window, IsWindow(parent) != FALSE ? parent : nullptr, &dialogTemplate->font, state);
  if (dialog == nullptr) return nullptr;
  UnfinishedWindow unfinished(dialog);
  if (!makeControls(*dialogTemplate, *dialog)) {
    SetLastError(ERROR_INVALID_DATA);
    return nullptr;
  }
  HostWindow* const first = firstTabStop(*dialog);
  if (SendMessageW(dialog, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), parameter) != 0 && IsWindow(first) != FALSE)
    SetFocus(first);
  if (IsWindow(dialog) == FALSE) return nullptr;
  const bool show = isModal ? !dialog->dialog->hasEnded : (dialogTemplate->style & WS_VISIBLE) != 0;
  if (show) ShowWindow(dialog, SW_SHOW);
  return unfinished.keep();
}

/// Handles input until the dialog has ended. The end of the input cancels the dialog, and ends it even if its Cancel
/// handler does not.
void runDialog(HostWindow& dialog) {
  while (IsWindow(&dialog) != FALSE && !dialog.dialog->hasEnded) {
    deliverPosted();
    if (IsWindow(&dialog) == FALSE || dialog.dialog->hasEnded) break;
    paintInvalid(dialog);
    if (IsWindow(&dialog) == FALSE || dialog.dialog->hasEnded) break;
    if (editor::dialogsAreWorkedByHand()) {
      widgetSystem()->waitForEvents();
    } else if (!actOnLine(dialog)) {
      SendMessageW(&dialog, WM_COMMAND, IDCANCEL, 0);
      if (IsWindow(&dialog) != FALSE && !dialog.dialog->hasEnded) EndDialog(&dialog, IDCANCEL);
    }
  }
}

bool isText(const HostWindow& control) {
  return control.kind == WindowKind::Static || (control.kind == WindowKind::Edit && (control.style & ES_READONLY) != 0);
}

/// The button of a dialog that only tells something: texts and one button. Null for others.
HostWindow* onlyButton(const HostWindow& dialog) {
  HostWindow* button = nullptr;
  for (const auto& child : dialog.children) {
    if (isText(*child) || !child->isVisible()) continue;
    const bool isPush = child->kind == WindowKind::Button &&
                        (child->buttonType() == BS_PUSHBUTTON || child->buttonType() == BS_DEFPUSHBUTTON);
    if (!isPush || button != nullptr) return nullptr;
    button = child.get();
  }
  return button;
}

/// What it tells goes to the transcript and takes no line, as a box with OK only. False for other dialogs.
bool tellNotice(HostWindow& dialog) {
  HostWindow* const button = onlyButton(dialog);
  if (button == nullptr || !button->isEnabled()) return false;
  std::wstring all;
  for (const auto& child : dialog.children) {
    if (isText(*child) && child->isVisible()) all += (all.empty() ? L"" : L"\n") + textOf(*child);
  }
  editor::showNotice(textOf(dialog), all);
  button->widget->click();
  return true;
}

/// Says in the transcript what has changed in a dialog.
void tellChanges(HostWindow& dialog, const DialogValues& before) {
  const std::wstring changes = before.changes(dialog);
  if (!changes.empty()) editor::printDialogLine(L"dialog " + inQuotes(textOf(dialog)) + L": " + changes);
}

/// Modeless dialogs, as scripts find them.
class ModelessDialogs final : public editor::OpenDialogs {
 public:
  void add(HostWindow& dialog) {
    editor::setOpenDialogs(*this);
    dialogs_.push_back(&dialog);
  }
  std::vector<std::wstring> titles() override {
    std::vector<std::wstring> all;
    for (HostWindow* const each : open()) all.push_back(textOf(*each));
    return all;
  }
  bool act(std::wstring_view title) override {
    for (HostWindow* const each : open()) {
      if (!text::equalFolded(textOf(*each), title)) continue;
      const DialogValues before(*each);
      actOnLine(*each);
      deliverPosted();
      if (IsWindow(each) != FALSE) tellChanges(*each, before);
      return true;
    }
    return false;
  }

 private:
  std::vector<HostWindow*> open() {
    std::erase_if(dialogs_,
                  [](HostWindow* each) { return IsWindow(each) == FALSE || !each->dialog || each->dialog->isModal; });
    std::vector<HostWindow*> visible = dialogs_;
    std::erase_if(visible, [](const HostWindow* each) { return !each->isVisible(); });
    return visible;
  }
  std::vector<HostWindow*> dialogs_;
};

// Never destroyed: plug-ins' globals may reach it after main.
ModelessDialogs& modelessDialogs() {
  static auto& all = *new ModelessDialogs;
  return all;
}

INT_PTR runModal(Bytes bytes, HWND parent, DLGPROC procedure, LPARAM parameter) {
  if (editor::commandIsAbandoned()) return IDCANCEL;
  HostWindow* const dialog = makeDialog(bytes, parent, procedure, parameter, true);
  if (dialog == nullptr) return -1;
  const UnfinishedWindow untilItEnds(dialog);
  dialog->dialog->isNotice = onlyButton(*dialog) != nullptr;
  if (!editor::dialogsAreWorkedByHand() && !dialog->dialog->hasEnded) tellNotice(*dialog);
  if (!dialog->dialog->hasEnded) editor::dialogOpened();
  const DialogValues before(*dialog);
  runDialog(*dialog);
  if (IsWindow(dialog) == FALSE) return -1;
  const INT_PTR result = dialog->dialog->result;
  if (result != IDCANCEL) tellChanges(*dialog, before);
  editor::dialogClosed(result == IDCANCEL);
  DestroyWindow(dialog);
  return result;
}

Bytes builtTemplate(LPCDLGTEMPLATE dialogTemplate) {
  if (dialogTemplate == nullptr) return {};
  return {reinterpret_cast<const std::uint8_t*>(dialogTemplate), readableAt(dialogTemplate, kLongestBuiltTemplate)};
}

}  // namespace

LRESULT CALLBACK dialogProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  window->dialog->messageResult = 0;
  const INT_PTR handled =
      window->dialog->procedure != nullptr ? window->dialog->procedure(window, message, wParam, lParam) : 0;
  if (IsWindow(window) == FALSE) return 0;
  if (message == WM_INITDIALOG) return handled;
  if (handled != 0) return window->dialog->messageResult;
  if (message == WM_CLOSE) {
    const HWND cancel = GetDlgItem(window, IDCANCEL);
    if (cancel == nullptr || cancel->isEnabled())
      SendMessageW(window, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), reinterpret_cast<LPARAM>(cancel));
    return 0;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

HostWindow* defaultButton(HostWindow& dialog) {
  for (const auto& child : dialog.children) {
    if (child->kind == WindowKind::Button && child->buttonType() == BS_DEFPUSHBUTTON) return child.get();
  }
  return nullptr;
}

void widgetClosed(HostWindow& dialog) { widgetEscaped(dialog); }

void widgetEscaped(HostWindow& dialog) {
  recordEscaped(dialog);
  SendMessageW(&dialog, WM_CLOSE, 0, 0);
}

void widgetEntered(HostWindow& dialog) {
  HostWindow* const button = defaultButton(dialog);
  if (button == nullptr) {
    recordEntered(dialog);
    SendMessageW(&dialog, WM_COMMAND, IDOK, 0);
  } else if (button->isEnabled()) {
    button->widget->click();
  }
}

}  // namespace host::win32

using namespace host::win32;

INT_PTR DialogBoxIndirectParamW(HINSTANCE, LPCDLGTEMPLATE dialogTemplate, HWND parent, DLGPROC procedure,
                                LPARAM parameter) {
  return runModal(builtTemplate(dialogTemplate), parent, procedure, parameter);
}

INT_PTR DialogBoxParamW(HINSTANCE module, LPCWSTR name, HWND parent, DLGPROC procedure, LPARAM parameter) {
  const HRSRC resource = FindResourceW(module, name, RT_DIALOG);
  if (resource == nullptr) return -1;
  return DialogBoxIndirectParamW(module, static_cast<LPCDLGTEMPLATE>(LockResource(LoadResource(module, resource))),
                                 parent, procedure, parameter);
}

HWND CreateDialogIndirectParamW(HINSTANCE, LPCDLGTEMPLATE dialogTemplate, HWND parent, DLGPROC procedure,
                                LPARAM parameter) {
  HostWindow* const dialog = makeDialog(builtTemplate(dialogTemplate), parent, procedure, parameter, false);
  if (dialog == nullptr) return nullptr;
  UnfinishedWindow unfinished(dialog);
  modelessDialogs().add(*dialog);
  return unfinished.keep();
}

BOOL EndDialog(HWND dialog, INT_PTR result) {
  if (IsWindow(dialog) == FALSE || !dialog->dialog) return FALSE;
  dialog->dialog->hasEnded = true;
  dialog->dialog->result = result;
  ShowWindow(dialog, SW_HIDE);
  return TRUE;
}

BOOL MapDialogRect(HWND dialog, LPRECT rect) {
  if (rect == nullptr || IsWindow(dialog) == FALSE || !dialog->dialog) return FALSE;
  const BaseUnits& units = dialog->dialog->units;
  rect->left = MulDiv(rect->left, units.width, 4);
  rect->right = MulDiv(rect->right, units.width, 4);
  rect->top = MulDiv(rect->top, units.height, 8);
  rect->bottom = MulDiv(rect->bottom, units.height, 8);
  return TRUE;
}

int MulDiv(int value, int numerator, int denominator) {
  if (denominator == 0) return -1;
  const std::int64_t product = static_cast<std::int64_t>(value) * numerator;
  const std::int64_t half = std::abs(static_cast<std::int64_t>(denominator)) / 2;
  const bool isNegative = (product < 0) != (denominator < 0);
  const std::int64_t magnitude = (std::abs(product) + half) / std::abs(static_cast<std::int64_t>(denominator));
  if (magnitude > std::numeric_limits<int>::max()) return -1;
  return static_cast<int>(isNegative ? -magnitude : magnitude);
}
