// Texts, rectangles and colours between windows and the toolkit.
#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QRect>
#include <QString>
#include <string>
#include <string_view>

#include "Win32/Widget.h"

namespace host::widgets {

inline QString toQt(std::wstring_view text) {
  return QString::fromWCharArray(text.data(), static_cast<qsizetype>(text.size()));
}
inline RECT fromQt(const QRect& rect) {
  return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}
inline QRect toQt(const RECT& rect) { return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top}; }

/// The font that stands for a dialog's; the faces of Windows dialogs have one stand-in, at 96 dots per inch.
QFont dialogFont(const win32::DialogFont& font);

/// A painter as windows see it.
class PainterCanvas final : public win32::Canvas {
 public:
  explicit PainterCanvas(QPainter& painter) : painter_(painter) {}
  void fill(const RECT& area, COLORREF color) override { painter_.fillRect(toQt(area), toColor(color)); }
  void frame(const RECT& area, COLORREF color) override {
    painter_.setPen(toColor(color));
    painter_.setBrush(Qt::NoBrush);
    painter_.drawRect(toQt(area).adjusted(0, 0, -1, -1));
  }
  void text(const RECT& area, std::wstring_view text, COLORREF color, bool isCentred) override {
    painter_.setPen(toColor(color));
    painter_.drawText(
        toQt(area), Qt::AlignVCenter | Qt::TextSingleLine | (isCentred ? Qt::AlignHCenter : Qt::AlignLeft), toQt(text));
  }

 private:
  static QColor toColor(COLORREF color) {
    return {static_cast<int>(color & 0xFF), static_cast<int>(color >> 8 & 0xFF), static_cast<int>(color >> 16 & 0xFF)};
  }
  QPainter& painter_;
};

}  // namespace host::widgets
