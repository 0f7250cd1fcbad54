// What a window handle points to.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Win32/Widget.h"
#include "windows.h"

namespace host::win32 {

enum class WindowKind { Dialog, Button, Edit, Static, ListBox, ComboBox };

/// What a window has besides if it is a dialog.
struct DialogState {
  DLGPROC procedure = nullptr;
  LONG_PTR messageResult = 0;
  LONG_PTR user = 0;
  BaseUnits units;
  bool isModal = false;
  bool isNotice = false;  // texts and one button: scripts give it no line
  bool hasEnded = false;
  INT_PTR result = 0;
};

}  // namespace host::win32

/// Owns its children; controls of a dialog in the template's order.
struct HostWindow {
  host::win32::WindowKind kind = host::win32::WindowKind::Static;
  int id = 0;
  DWORD style = 0;
  DWORD exStyle = 0;
  RECT rect{};  // pixels, in the parent
  HostWindow* parent = nullptr;
  WNDPROC procedure = nullptr;
  LONG_PTR userData = 0;
  std::vector<LPARAM> itemData;  // of lists, beside the items
  HostDeviceContext* painting = nullptr;
  bool isInvalid = false;  // to be painted before the next input
  std::optional<host::win32::DialogState> dialog;
  std::unique_ptr<host::win32::Widget> widget;
  std::vector<std::unique_ptr<HostWindow>> children;  // gone before their parent's widget

  bool isVisible() const { return (style & WS_VISIBLE) != 0; }
  bool isEnabled() const { return (style & WS_DISABLED) == 0; }
  DWORD buttonType() const { return style & BS_TYPEMASK; }
  bool isOwnerDrawn() const { return kind == host::win32::WindowKind::ComboBox && (style & CBS_OWNERDRAWFIXED) != 0; }
};

namespace host::win32 {

struct NewWindow {
  WindowKind kind = WindowKind::Static;
  int id = 0;
  DWORD style = 0;
  DWORD exStyle = 0;
  RECT rect{};
  std::wstring text;
  WNDPROC procedure = nullptr;
};

/// Destroys a window on every way out, but for one on which it is kept.
class UnfinishedWindow {
 public:
  explicit UnfinishedWindow(HostWindow* window) : window_(window) {}
  UnfinishedWindow(const UnfinishedWindow&) = delete;
  UnfinishedWindow& operator=(const UnfinishedWindow&) = delete;
  ~UnfinishedWindow();
  HostWindow* keep() { return std::exchange(window_, nullptr); }

 private:
  HostWindow* window_;
};

/// Makes a window with its widget and tells hooks and the window itself (WM_CREATE). Null when there are no widgets or
/// the window refuses.
HostWindow* createWindow(const NewWindow& window, HostWindow* parent, const DialogFont* font = nullptr,
                         std::optional<DialogState> dialog = std::nullopt);
/// Parts all windows from their widgets, when the process ends; the windows live on.
void dropWidgets();
/// Delivers what PostMessageW has left.
void deliverPosted();
/// Has the window and those in it painted that are invalid and can be seen.
void paintInvalid(HostWindow& window);
/// Whether a window is painting itself. Controls that are enabled or disabled meanwhile change their looks afterwards:
/// what would have to be painted anew in between would never end.
bool isPainting();
void changeLooksLater(HostWindow& control);
/// Tells the parent about a control.
void notifyParent(HostWindow& control, WORD code);
std::wstring textOf(HostWindow& window);

/// Window procedures of controls and dialogs.
LRESULT CALLBACK controlProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK dialogProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// The control that Enter presses: the default button, or null.
HostWindow* defaultButton(HostWindow& dialog);

/// Sent to a list that has no item of a text that was asked for: lParam is the text. A control that knows what is meant
/// chooses the item and answers TRUE. Windows itself never sends it.
UINT chooseTextMessage();
inline constexpr LPCWSTR kChooseTextMessage = L"HostChooseText";

/// Record what the user did at the screen as the line by which a script does it.
void recordPressed(HostWindow& button);
void recordEdited(HostWindow& edit);
void recordChosen(HostWindow& list);
void recordDoubleClicked(HostWindow& list);
void recordEscaped(HostWindow& dialog);
void recordEntered(HostWindow& dialog);

/// Takes one line of the input as an action on the dialog. False when no more lines will come.
bool actOnLine(HostWindow& dialog);

}  // namespace host::win32
