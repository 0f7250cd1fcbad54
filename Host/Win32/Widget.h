// What stands behind a window on the screen. The widgets themselves live in a library of their own, loaded when the
// first dialog is made.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Win32/DialogTemplate.h"
#include "windows.h"

namespace host::win32 {

/// Average width and height of a dialog font in pixels: four horizontal and eight vertical dialog units.
struct BaseUnits {
  int width = 0;
  int height = 0;
};

/// Where a top-level window stands among the others.
enum class Stacking { Usual, Topmost, Bottom };

/// A question for a file to be written.
struct FileQuestion {
  std::wstring title;
  std::wstring name;                                           // to begin with
  std::vector<std::pair<std::wstring, std::wstring>> filters;  // text, patterns separated by ";"
  bool asksBeforeOverwriting = false;
};

/// A surface that a window is painted on; pixels, colours as COLORREF.
class Canvas {
 public:
  virtual ~Canvas() = default;
  virtual void fill(const RECT& area, COLORREF color) = 0;
  virtual void frame(const RECT& area, COLORREF color) = 0;
  /// One line, centred vertically.
  virtual void text(const RECT& area, std::wstring_view text, COLORREF color, bool isCentred) = 0;
};

/// The part of a widget that windows use. Texts, items, check marks and selections live in the widget. What a kind of
/// widget has not does nothing.
class Widget {
 public:
  virtual ~Widget() = default;

  virtual void setRect(const RECT&) {}
  virtual void setVisible(bool) {}
  virtual void setEnabled(bool) {}
  virtual void setFocus() {}
  virtual void setStacking(Stacking) {}
  virtual void repaint() {}
  /// Lets the window paint itself now, seen or not: ends in widgetPainted.
  virtual void paintNow() {}
  virtual std::wstring text() const { return {}; }
  virtual void setText(std::wstring_view) {}

  // ---- texts and pictures ----
  /// A picture over the whole widget, rows of 0xAARRGGBB from the top; null takes it away.
  virtual void setPicture(int, int, const std::uint32_t*) {}

  // ---- buttons ----
  virtual bool isChecked() const { return false; }
  virtual void setChecked(bool) {}
  /// As the user does; reports itself.
  virtual void click() {}

  // ---- edits ----
  virtual void setReadOnly(bool) {}
  /// Holds a number: a comma that the user types becomes a point.
  virtual void setNumeric() {}
  /// -1 as the end selects to the end.
  virtual void select(int, int) {}
  virtual void replaceSelection(std::wstring_view) {}
  virtual void scrollToCaret() {}
  /// A key the user presses; the edit refuses what its style forbids.
  virtual void type(wchar_t) {}

  // ---- lists; indices count from 0, -1 is none ----
  virtual int count() const { return 0; }
  virtual std::wstring item(int) const { return {}; }
  virtual void insertItem(int, std::wstring_view) {}
  virtual void removeItem(int) {}
  virtual void clear() {}
  virtual int current() const { return -1; }
  virtual void setCurrent(int) {}

  // ---- dialogs ----
  /// The bytes of a PNG of the dialog as it looks now; empty when it cannot be drawn.
  virtual std::string picture() { return {}; }
};

class WidgetSystem {
 public:
  virtual ~WidgetSystem() = default;
  virtual BaseUnits measure(const DialogFont& font) = 0;
  /// A widget for the window, by its kind and style, in the widget of its parent. A dialog's font holds for its
  /// controls.
  virtual std::unique_ptr<Widget> make(HostWindow& window, const DialogFont* font) = 0;
  /// Handles what the user does until something has happened.
  virtual void waitForEvents() = 0;
  /// A folder chosen by hand; empty when none was.
  virtual std::wstring askFolder(HostWindow* parent, std::wstring_view title) = 0;
  /// A message box worked by hand; one of the Windows answers.
  virtual int messageBox(HostWindow* parent, std::wstring_view text, std::wstring_view caption, UINT type) = 0;
  /// A question for a file worked by hand; empty when it was cancelled.
  virtual std::wstring askFile(HostWindow* parent, const FileQuestion& question) = 0;
};

/// The system of this process. Without a display, or when a script works the dialogs, they exist off-screen.
/// Null when its library cannot be loaded; that is reported once.
WidgetSystem* widgetSystem();

/// The function that the widgets' library exports.
using MakeWidgetSystem = WidgetSystem* (*)(bool onScreen);
inline constexpr const char* kMakeWidgetSystem = "tolmexMakeWidgetSystem";

// By these properties of the toolkit's application object a front end that has a window of its own tells of it; dialogs
// and boxes stand before the window then.
inline constexpr const char* kMainWindowProperty = "hostMainWindow";  // a QObject*: the top-level widget
inline constexpr const char* kDialogPlaceProperty =
    "hostDialogPlace";  // a QRect on the screen; dialogs first open at its right

// ---- what widgets report --------------------------------------------------------------------------------------------
void widgetClicked(HostWindow& button);
void widgetTextChanged(HostWindow& edit);
/// Of an edit: the user has changed the text; before `widgetTextChanged`.
void widgetEdited(HostWindow& edit);
void widgetChosen(HostWindow& list);
/// The left button went down on a text or a picture; pixels inside it.
void widgetPressed(HostWindow& window, int x, int y);
void widgetDoubleClicked(HostWindow& list);
/// The close box, Esc, Enter on a dialog.
void widgetClosed(HostWindow& dialog);
void widgetEscaped(HostWindow& dialog);
void widgetEntered(HostWindow& dialog);
/// The user has resized it; pixels.
void widgetResized(HostWindow& dialog, int width, int height);
/// Paints the window itself, over what the widget has painted.
void widgetPainted(HostWindow& window, Canvas& canvas);
/// Lets the owner paint one item; `state` from the ODS_ bits.
void widgetPaintsItem(HostWindow& list, Canvas& canvas, const RECT& area, int item, UINT state);

}  // namespace host::win32
