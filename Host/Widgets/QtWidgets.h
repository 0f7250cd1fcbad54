// Widgets for every kind of window.
#pragma once

#include <QWidget>
#include <memory>

#include "Win32/WindowObject.h"

namespace host::widgets {

/// Whether the widgets are on a screen; they then outlive the event in which they are destroyed.
enum class Shown { OffScreen, OnScreen };

/// The toolkit's widget of a window; null when there is none.
QWidget* widgetOf(HostWindow* window);

/// The window of the front end, as kMainWindowProperty names it; null when there is none.
QWidget* mainWindow();
/// What a dialog or box stands before: the window that asks, else the dialog that is worked, else the front end's.
QWidget* parentFor(HostWindow* window);

std::unique_ptr<win32::Widget> makeWidget(HostWindow& window, const win32::DialogFont* font, Shown shown);

}  // namespace host::widgets
