#include "Window/Commands/Icons.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QPainter>
#include <QPixmap>
#include <QRegularExpression>

#include "Platform/Library.h"
#include "Window/Commands/SvgDrawing.h"

namespace host::window {
namespace {

QByteArray coloured(const QString& file, const QColor& text, const QColor& live) {
  QFile in(file);
  if (!in.open(QIODevice::ReadOnly)) return {};
  QString svg = QString::fromUtf8(in.readAll());
  if (live.isValid()) {
    static const QRegularExpression fill("(class=\"live\"[^>]*?fill=\")[^\"]*\"");
    svg.replace(fill, "\\1" + live.name() + "\"");
  }
  return svg.replace("currentColor", text.name()).toUtf8();
}

QPixmap drawn(const SvgDrawing& drawing, int size, qreal scale, qreal opacity) {
  QPixmap pixmap(static_cast<int>(size * scale), static_cast<int>(size * scale));
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setOpacity(opacity);
  drawing.paint(painter, pixmap.rect());
  painter.end();
  pixmap.setDevicePixelRatio(scale);
  return pixmap;
}

}  // namespace

QIcon iconOf(const QString& file, const QColor& text, const QColor& live) {
  if (file.isEmpty()) return {};
  static QHash<QString, QIcon> kept;
  const QString key = file + '|' + text.name() + '|' + (live.isValid() ? live.name() : QString());
  if (const auto found = kept.constFind(key); found != kept.constEnd()) return *found;
  QIcon icon;
  if (const SvgDrawing drawing(coloured(file, text, live)); !drawing.isEmpty()) {
    constexpr qreal kPale = 0.38;
    for (const int size : {16, 24, 48}) {
      for (const qreal scale : {1.0, 2.0}) {
        icon.addPixmap(drawn(drawing, size, scale, 1));
        icon.addPixmap(drawn(drawing, size, scale, kPale), QIcon::Disabled);
      }
    }
  }
  kept.insert(key, icon);
  return icon;
}

QString windowFolder() {
  const std::filesystem::path library = platform::fileOf(reinterpret_cast<const void*>(&windowFolder));
  return QFileInfo(QString::fromStdString(library.string())).absolutePath() + "/window";
}

QIcon hostIcon(const QString& name, const QColor& text) {
  return iconOf(windowFolder() + (name.contains('/') ? "/" : "/icons/") + name + ".svg", text);
}

}  // namespace host::window
