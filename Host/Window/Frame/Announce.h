// What a screen reader says.
#pragma once

#include <QAccessible>
#include <QWidget>

namespace host::window {

/// The widget's description becomes the text, and readers are told of it.
inline void announce(QWidget& widget, const QString& text) {
  if (widget.accessibleDescription() == text) return;
  widget.setAccessibleDescription(text);
  if (!QAccessible::isActive()) return;
  QAccessibleEvent event(&widget, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

}  // namespace host::window
