// Icons: drawn as Qt's own reader of SVG draws them.
#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include "Places.h"
#include "Window/Commands/SvgDrawing.h"

using host::window::SvgDrawing;

namespace {

constexpr int kPixels = 96;

template <typename Draw>
QImage drawn(const Draw& draw) {
  QImage image(kPixels, kPixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  QPainter painter(&image);
  draw(painter, QRectF(0, 0, kPixels, kPixels));
  return image;
}

/// Pixels that are plainly of another shade than Qt's.
int differences(const QByteArray& svg) {
  const SvgDrawing ours(svg);
  QSvgRenderer theirs(svg);
  EXPECT_FALSE(ours.isEmpty());
  const QImage one = drawn([&](QPainter& painter, const QRectF& place) { ours.paint(painter, place); });
  const QImage two = drawn([&](QPainter& painter, const QRectF& place) { theirs.render(&painter, place); });
  int count = 0;
  for (int y = 0; y < kPixels; ++y)
    for (int x = 0; x < kPixels; ++x) count += std::abs(qGray(one.pixel(x, y)) - qGray(two.pixel(x, y))) > 32;
  return count;
}

QByteArray path(const char* data) {
  return QByteArray(
             "<svg xmlns='http://www.w3.org/2000/svg' viewBox='2 0 20 20'><g fill='none' stroke='#202020'>"
             "<path fill-rule='evenodd' fill='#a0a0a0' d='") +
         data + "'/></g></svg>";
}

TEST(Icons, AreDrawnAsQtDrawsThem) {
  int count = 0;
  for (const char* const folder : {"/Host/Window", "/Projects/Tolmex/icons"}) {
    QDirIterator files(QString::fromStdString(kSourceDir) + folder, {"*.svg"}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
      QFile file(files.next());
      ASSERT_TRUE(file.open(QIODevice::ReadOnly));
      EXPECT_LT(differences(file.readAll().replace("currentColor", "#57606A")), 20) << file.fileName().toStdString();
      ++count;
    }
  }
  EXPECT_GT(count, 50);
}

// Numbers that touch, commands that are left out, rings after their end, arcs of every kind.
TEST(Icons, ReadPathsInEveryForm) {
  constexpr const char* kPaths[] = {
      "M4 4 18 4 18,18-0 0z",
      "m4 4 14 0 0 14-14 0zl5 5v5h-5z m6 6h4v4h-4z",
      "M3 10a4 6 30 0112-2 4 6 30 1 0-5.5.5",
      "M4 10A2 2 0 1 1 18 10A9 9 0 0 0 4 10",
      "M3 15C3 5 8 5 8 15S13 25 13 15s3-8 5-2",
      "M4 4H18V18H4ZM8 8h6v6h-6z",
  };
  for (const char* const data : kPaths) EXPECT_LT(differences(path(data)), 20) << data;
  EXPECT_TRUE(SvgDrawing("<svg viewBox='0 0 1 1'><path d='M0 0").isEmpty());
  EXPECT_TRUE(SvgDrawing("").isEmpty());
}

}  // namespace
