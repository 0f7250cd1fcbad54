// Icons of our own: SVG drawn in the text colour, with parts that take the colour of a layer.
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

namespace host::window {

/// The icon of an SVG file at 16 and 24 pixels, sharp at 100 and 200 %. `live` is the colour that parts of class "live"
/// take; an invalid one leaves them their own fill. An empty icon for a file that is not there.
QIcon iconOf(const QString& file, const QColor& text, const QColor& live = {});
/// Of the window's own folder, by name.
QIcon hostIcon(const QString& name, const QColor& text);
/// Where the window's own table and icons lie.
QString windowFolder();

}  // namespace host::window
