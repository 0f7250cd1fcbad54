// Window objects, messages, and the calls on them.
#include <algorithm>
#include <deque>
#include <map>
#include <unordered_set>

#include "Text/Text.h"
#include "Win32/WindowObject.h"

struct HostHook {
  HOOKPROC procedure;
};

namespace host::win32 {
namespace {

struct Posted {
  HostWindow* window;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
};

/// All windows. Handles come from plug-ins and may be stale, so they are looked up before they are used.
struct Desktop {
  std::unordered_set<const HostWindow*> alive;
  std::vector<std::unique_ptr<HostWindow>> topLevel;
  std::vector<std::unique_ptr<HostWindow>> dead;  // destroyed inside a message; freed when all have returned
  std::deque<Posted> posted;
  std::vector<std::unique_ptr<HostHook>> hooks;
  std::map<std::wstring, UINT> messages;
  HostWindow* focus = nullptr;
  int depth = 0;  // of messages being handled
};

// Never destroyed: plug-ins' globals may reach it after main.
Desktop& desktop() {
  static auto& all = *new Desktop;
  return all;
}

bool isAlive(const HostWindow* window) {
  if (window != nullptr && desktop().alive.count(window) != 0) return true;
  SetLastError(ERROR_INVALID_WINDOW_HANDLE);
  return false;
}

/// Needs no memory: `createWindow` has made room for every window there is.
void bury(std::unique_ptr<HostWindow> window) noexcept {
  desktop().dead.push_back(std::move(window));
  if (desktop().depth == 0) desktop().dead.clear();
}

std::unique_ptr<HostWindow> takenFromOwner(HostWindow& window) {
  auto& siblings = window.parent != nullptr && !window.dialog ? window.parent->children : desktop().topLevel;
  const auto found =
      std::find_if(siblings.begin(), siblings.end(), [&](const auto& other) { return other.get() == &window; });
  if (found == siblings.end()) return nullptr;
  std::unique_ptr<HostWindow> taken = std::move(*found);
  siblings.erase(found);
  return taken;
}

/// The window and those in it are no windows any more.
void forget(HostWindow& window) noexcept {
  for (const auto& child : window.children) forget(*child);
  if (desktop().focus == &window) desktop().focus = nullptr;
  std::erase_if(desktop().posted, [&](const Posted& message) { return message.window == &window; });
  desktop().alive.erase(&window);
}

/// Sends the messages of destruction to the window and those in it, parents first.
void tellOfEnd(HostWindow& window) {
  SendMessageW(&window, WM_DESTROY, 0, 0);
  for (const auto& child : window.children) tellOfEnd(*child);
  SendMessageW(&window, WM_NCDESTROY, 0, 0);
  forget(window);
}

void tellOfSize(HostWindow& window) {
  constexpr LONG kMost = 0xFFFF;
  const auto width = static_cast<WORD>(std::clamp<LONG>(window.rect.right - window.rect.left, 0, kMost));
  const auto height = static_cast<WORD>(std::clamp<LONG>(window.rect.bottom - window.rect.top, 0, kMost));
  SendMessageW(&window, WM_SIZE, 0, MAKELPARAM(width, height));
}

struct Depth {
  Depth() { ++desktop().depth; }
  Depth(const Depth&) = delete;
  Depth& operator=(const Depth&) = delete;
  ~Depth() {
    if (--desktop().depth == 0) desktop().dead.clear();
  }
};

}  // namespace

HostWindow* createWindow(const NewWindow& window, HostWindow* parent, const DialogFont* font,
                         std::optional<DialogState> dialog) {
  WidgetSystem* const system = widgetSystem();
  if (system == nullptr) return nullptr;
  auto owned = std::make_unique<HostWindow>();
  HostWindow& made = *owned;
  made.kind = window.kind;
  made.id = window.id;
  made.style = window.style;
  made.exStyle = window.exStyle;
  made.rect = window.rect;
  made.parent = parent;
  made.procedure = window.procedure;
  made.dialog = dialog;
  made.widget = system->make(made, font);
  made.widget->setText(window.text);
  made.widget->setRect(made.rect);
  desktop().dead.reserve(desktop().alive.size() + 1);
  auto& siblings = parent != nullptr && !made.dialog ? parent->children : desktop().topLevel;
  siblings.push_back(std::move(owned));
  try {
    desktop().alive.insert(&made);
  } catch (...) {
    siblings.pop_back();
    throw;
  }
  UnfinishedWindow unfinished(&made);

  const Depth depth;
  if (!desktop().hooks.empty()) {
    desktop().hooks.back()->procedure(HCBT_CREATEWND, reinterpret_cast<WPARAM>(&made), 0);
  }
  CREATESTRUCTW create{};
  create.hwndParent = parent;
  create.x = made.rect.left;
  create.y = made.rect.top;
  create.cx = made.rect.right - made.rect.left;
  create.cy = made.rect.bottom - made.rect.top;
  create.style = static_cast<LONG>(made.style);
  create.dwExStyle = made.exStyle;
  create.lpszName = window.text.c_str();
  if (SendMessageW(&made, WM_CREATE, 0, reinterpret_cast<LPARAM>(&create)) == -1) return nullptr;
  return isAlive(&made) ? unfinished.keep() : nullptr;
}

UnfinishedWindow::~UnfinishedWindow() {
  if (window_ == nullptr || IsWindow(window_) == FALSE) return;
  try {
    DestroyWindow(window_);
  } catch (...) {  // NOLINT(bugprone-empty-catch): the window is gone; the procedure that was to be told has failed
  }
}

void dropWidgets() {
  // A widget's destructor may need globals of the toolkit that have gone already.
  static auto& abandoned = *new std::vector<std::unique_ptr<Widget>>;
  const auto drop = [](const auto& self, HostWindow& window) -> void {
    for (const auto& child : window.children) self(self, *child);
    abandoned.push_back(std::exchange(window.widget, std::make_unique<Widget>()));
  };
  for (const auto& window : desktop().topLevel) drop(drop, *window);
}

void deliverPosted() {
  // What the handlers post in turn waits for the next time, so that this ends.
  for (std::size_t count = desktop().posted.size(); count > 0 && !desktop().posted.empty(); --count) {
    const Posted message = desktop().posted.front();
    desktop().posted.pop_front();
    SendMessageW(message.window, message.message, message.wParam, message.lParam);
  }
}

void notifyParent(HostWindow& control, WORD code) {
  // A widget reports its first text before its window is one.
  if (control.parent == nullptr || desktop().alive.count(&control) == 0) return;
  SendMessageW(control.parent, WM_COMMAND, MAKEWPARAM(static_cast<WORD>(control.id), code),
               reinterpret_cast<LPARAM>(&control));
}

std::wstring textOf(HostWindow& window) {
  const int length = GetWindowTextLengthW(&window);
  std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(&window, text.data(), length + 1)));
  return text;
}

void widgetResized(HostWindow& dialog, int width, int height) {
  const RECT& rect = dialog.rect;
  if (!isAlive(&dialog) || (rect.right - rect.left == width && rect.bottom - rect.top == height)) return;
  dialog.rect = {rect.left, rect.top, rect.left + width, rect.top + height};
  tellOfSize(dialog);
}

UINT chooseTextMessage() {
  static const UINT message = RegisterWindowMessageW(kChooseTextMessage);
  return message;
}

}  // namespace host::win32

using namespace host::win32;

BOOL IsWindow(HWND window) { return window != nullptr && desktop().alive.count(window) != 0 ? TRUE : FALSE; }

LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (!isAlive(window)) return 0;
  const Depth depth;
  return window->procedure(window, message, wParam, lParam);
}

BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (!isAlive(window)) return FALSE;
  desktop().posted.push_back({window, message, wParam, lParam});
  return TRUE;
}

LRESULT SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam) {
  return SendMessageW(GetDlgItem(dialog, id), message, wParam, lParam);
}

LRESULT CallWindowProcW(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return procedure != nullptr ? procedure(window, message, wParam, lParam) : 0;
}

LONG_PTR GetWindowLongPtrW(HWND window, int index) {
  if (!isAlive(window)) return 0;
  switch (index) {
    case GWLP_WNDPROC:
      return reinterpret_cast<LONG_PTR>(window->procedure);
    case GWL_STYLE:
      return static_cast<LONG>(window->style);
    case GWL_EXSTYLE:
      return static_cast<LONG>(window->exStyle);
    case GWLP_USERDATA:
      return window->userData;
    case GWLP_ID:
      return window->id;
    default:
      break;
  }
  if (!window->dialog) return 0;
  if (index == DWLP_MSGRESULT) return window->dialog->messageResult;
  if (index == DWLP_DLGPROC) return reinterpret_cast<LONG_PTR>(window->dialog->procedure);
  return index == DWLP_USER ? window->dialog->user : 0;
}

LONG_PTR SetWindowLongPtrW(HWND window, int index, LONG_PTR value) {
  if (!isAlive(window)) return 0;
  const LONG_PTR former = GetWindowLongPtrW(window, index);
  if (index == GWLP_WNDPROC) window->procedure = reinterpret_cast<WNDPROC>(value);
  if (index == GWLP_USERDATA) window->userData = value;
  if (index == GWLP_ID) window->id = static_cast<int>(value);
  if (window->dialog && index == DWLP_MSGRESULT) window->dialog->messageResult = value;
  if (window->dialog && index == DWLP_DLGPROC) window->dialog->procedure = reinterpret_cast<DLGPROC>(value);
  if (window->dialog && index == DWLP_USER) window->dialog->user = value;
  return former;
}

BOOL DestroyWindow(HWND window) {
  if (!isAlive(window)) return FALSE;
  const Depth depth;
  // The procedure that is sent the messages of destruction may destroy a window again.
  struct Grave {
    std::unique_ptr<HostWindow> window;
    ~Grave() {
      if (window == nullptr) return;
      forget(*window);
      bury(std::move(window));
    }
  } grave{takenFromOwner(*window)};
  if (grave.window == nullptr) return FALSE;
  tellOfEnd(*grave.window);
  grave.window->widget->setVisible(false);
  return TRUE;
}

HWND GetParent(HWND window) { return isAlive(window) ? window->parent : nullptr; }

HWND GetDlgItem(HWND dialog, int id) {
  if (!isAlive(dialog)) return nullptr;
  for (const auto& child : dialog->children) {
    if (child->id == id) return child.get();
  }
  return nullptr;
}

int GetDlgCtrlID(HWND window) { return isAlive(window) ? window->id : 0; }

BOOL SetWindowTextW(HWND window, LPCWSTR text) {
  if (!isAlive(window)) return FALSE;
  SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
  return TRUE;
}

int GetWindowTextW(HWND window, LPWSTR text, int size) {
  if (text == nullptr || size <= 0) return 0;
  text[0] = 0;
  return static_cast<int>(SendMessageW(window, WM_GETTEXT, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(text)));
}

int GetWindowTextLengthW(HWND window) { return static_cast<int>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)); }

BOOL EnableWindow(HWND window, BOOL enable) {
  if (!isAlive(window)) return FALSE;
  const bool wasDisabled = !window->isEnabled();
  window->style = enable != FALSE ? window->style & ~WS_DISABLED : window->style | WS_DISABLED;
  if (isPainting()) {
    changeLooksLater(*window);
  } else {
    window->widget->setEnabled(enable != FALSE);
  }
  if (wasDisabled == (enable != FALSE)) SendMessageW(window, WM_ENABLE, static_cast<WPARAM>(enable), 0);
  return wasDisabled ? TRUE : FALSE;
}

BOOL IsWindowEnabled(HWND window) { return isAlive(window) && window->isEnabled() ? TRUE : FALSE; }

BOOL ShowWindow(HWND window, int command) {
  if (!isAlive(window)) return FALSE;
  const bool wasVisible = window->isVisible();
  const bool show = command != SW_HIDE;
  window->style = show ? window->style | WS_VISIBLE : window->style & ~WS_VISIBLE;
  if (wasVisible != show) SendMessageW(window, WM_SHOWWINDOW, show ? TRUE : FALSE, 0);
  window->widget->setVisible(show);
  if (show && !wasVisible) InvalidateRect(window, nullptr, TRUE);
  return wasVisible ? TRUE : FALSE;
}

BOOL IsWindowVisible(HWND window) {
  if (!isAlive(window)) return FALSE;
  for (const HostWindow* each = window; each != nullptr; each = each->dialog ? nullptr : each->parent) {
    if (!each->isVisible()) return FALSE;
  }
  return TRUE;
}

HWND SetFocus(HWND window) {
  HostWindow* const former = desktop().focus;
  if (window != nullptr && !isAlive(window)) return nullptr;
  if (window == former) return former;
  desktop().focus = window;
  if (former != nullptr) SendMessageW(former, WM_KILLFOCUS, reinterpret_cast<WPARAM>(window), 0);
  if (window == nullptr) return former;
  window->widget->setFocus();
  SendMessageW(window, WM_SETFOCUS, reinterpret_cast<WPARAM>(former), 0);
  return former;
}

HWND GetFocus() { return desktop().focus; }

BOOL InvalidateRect(HWND window, LPCRECT, BOOL erase) {
  if (!isAlive(window)) return FALSE;
  window->isInvalid = true;
  if (erase != FALSE) window->widget->setPicture(0, 0, nullptr);
  window->widget->repaint();
  for (const auto& child : window->children) InvalidateRect(child.get(), nullptr, erase);
  return TRUE;
}

BOOL UpdateWindow(HWND window) {
  if (!isAlive(window)) return FALSE;
  paintInvalid(*window);
  return TRUE;
}

BOOL GetClientRect(HWND window, LPRECT out) {
  if (out == nullptr || !isAlive(window)) return FALSE;
  *out = {0, 0, window->rect.right - window->rect.left, window->rect.bottom - window->rect.top};
  return TRUE;
}

BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL) {
  if (!isAlive(window)) return FALSE;
  const RECT former = window->rect;
  window->rect = {x, y, x + std::max(width, 0), y + std::max(height, 0)};
  window->widget->setRect(window->rect);
  if (former.right - former.left != width || former.bottom - former.top != height) tellOfSize(*window);
  return TRUE;
}

BOOL SetWindowPos(HWND window, HWND after, int x, int y, int width, int height, UINT flags) {
  if (!isAlive(window)) return FALSE;
  if ((flags & SWP_NOZORDER) == 0)
    window->widget->setStacking(after == HWND_TOPMOST  ? Stacking::Topmost
                                : after == HWND_BOTTOM ? Stacking::Bottom
                                                       : Stacking::Usual);
  const RECT& rect = window->rect;
  const bool keepsPlace = (flags & SWP_NOMOVE) != 0;
  const bool keepsSize = (flags & SWP_NOSIZE) != 0;
  if (keepsPlace && keepsSize) return TRUE;
  return MoveWindow(window, keepsPlace ? rect.left : x, keepsPlace ? rect.top : y,
                    keepsSize ? rect.right - rect.left : width, keepsSize ? rect.bottom - rect.top : height, TRUE);
}

HWND GetActiveWindow() {
  HostWindow* window = desktop().focus;
  while (window != nullptr && !window->dialog) window = window->parent;
  return window;
}

UINT RegisterWindowMessageW(LPCWSTR name) {
  constexpr UINT kFirstRegistered = 0xC000;
  auto& messages = desktop().messages;
  const auto next = static_cast<UINT>(kFirstRegistered + messages.size());
  return messages.emplace(host::text::folded(name), next).first->second;
}

HHOOK SetWindowsHookExW(int kind, HOOKPROC procedure, HINSTANCE, DWORD) {
  if (kind != WH_CBT || procedure == nullptr) return nullptr;
  desktop().hooks.push_back(std::make_unique<HostHook>(HostHook{procedure}));
  return desktop().hooks.back().get();
}

BOOL UnhookWindowsHookEx(HHOOK hook) {
  return std::erase_if(desktop().hooks, [hook](const auto& each) { return each.get() == hook; }) > 0 ? TRUE : FALSE;
}

LRESULT CallNextHookEx(HHOOK hook, int code, WPARAM wParam, LPARAM lParam) {
  auto& hooks = desktop().hooks;
  const auto found = std::find_if(hooks.begin(), hooks.end(), [hook](const auto& each) { return each.get() == hook; });
  if (found == hooks.end() || found == hooks.begin()) return 0;
  return (*std::prev(found))->procedure(code, wParam, lParam);
}
