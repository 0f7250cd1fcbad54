#include "Picture/BackEnd.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>

#include "Picture/Formats/HtmlWriter.h"
#include "Picture/Formats/PdfWriter.h"
#include "Picture/Formats/PixelRows.h"
#include "Picture/Formats/SvgWriter.h"
#include "Picture/Images/RasterImage.h"
#include "Picture/QtPainting.h"

namespace host::picture {
namespace {

/// Lines up to this many pixels go to the painter's fast way for lines of one pixel.
constexpr double kThinLinePx = 1.05;

QColor qColor(Color c) { return {c.red, c.green, c.blue, c.alpha}; }
QColor qColor(std::uint32_t rgb) { return QColor::fromRgb(rgb | 0xFF000000U); }

QBrush qBrush(const Gradient& gradient) {
  QLinearGradient linear(0, 0, 1, 0);
  QRadialGradient radial(0, 0, 1);
  QGradient& chosen = gradient.isRadial ? static_cast<QGradient&>(radial) : linear;
  for (const Gradient::Stop& stop : gradient.stops) chosen.setColorAt(stop.offset, qColor(stop.color));
  QBrush brush(chosen);
  brush.setTransform(QTransform(gradient.axisX.x, gradient.axisX.y, gradient.axisY.x, gradient.axisY.y,
                                gradient.origin.x, gradient.origin.y));
  return brush;
}

/// Draws the image inside the path.
void paintImage(QPainter& painter, const QPainterPath& path, const Texture& texture, int alpha, bool isRaster) {
  const double width = std::hypot(texture.across.x, texture.across.y);
  const double height = std::hypot(texture.down.x, texture.down.y);
  QImage pixels = *texture.image->pixels;
  if (pixels.isNull() || !(width > 0) || !(height > 0)) return;
  // Made much smaller by the painter, an image would be a sample of its pixels.
  const QSize room(std::max(1, static_cast<int>(std::ceil(width))), std::max(1, static_cast<int>(std::ceil(height))));
  if (isRaster && (room.width() * 2 < pixels.width() || room.height() * 2 < pixels.height()))
    pixels = pixels.scaled(std::min(room.width(), pixels.width()), std::min(room.height(), pixels.height()),
                           Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  painter.save();
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.setClipPath(path, Qt::IntersectClip);
  painter.setOpacity(alpha / 255.0);
  painter.setTransform(
      QTransform(texture.across.x / pixels.width(), texture.across.y / pixels.width(), texture.down.x / pixels.height(),
                 texture.down.y / pixels.height(), texture.origin.x, texture.origin.y),
      true);
  painter.drawImage(0, 0, pixels);
  painter.restore();
}

bool isDot(const DisplayList& list, const DisplayRing& ring) {
  const Point& first = list.points[ring.first];
  return ring.count == 1 ||
         (ring.count == 2 && first.x == list.points[ring.first + 1].x && first.y == list.points[ring.first + 1].y);
}

void addToPath(const DisplayList& list, const DisplayRing& ring, QPainterPath& path) {
  const Point* points = list.points.data() + ring.first;
  path.moveTo(points[0].x, points[0].y);
  for (std::uint32_t i = 1; i < ring.count; ++i) path.lineTo(points[i].x, points[i].y);
  if (ring.closed) path.closeSubpath();
}

std::string toString(const QByteArray& bytes) { return {bytes.constData(), static_cast<std::size_t>(bytes.size())}; }

std::string renderPng(const DisplayList& list, const Page& page, std::optional<std::uint32_t> background) {
  const QSize size(static_cast<int>(page.widthPx), static_cast<int>(page.heightPx));
  QImage image(size, background ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
  if (image.isNull()) return {};
  image.fill(background ? qColor(*background) : QColor(Qt::transparent));
  const int dotsPerMetre = static_cast<int>(std::lround(page.widthPx / page.widthMm * 1000));
  image.setDotsPerMeterX(dotsPerMetre);
  image.setDotsPerMeterY(dotsPerMetre);
  {
    QPainter painter(&image);
    paintList(painter, list, true);
  }
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QImageWriter writer(&buffer, "png");
  constexpr int kQuickCompression = 20;  // of 100; line drawings hardly grow, and it takes half the time
  writer.setCompression(kQuickCompression);
  if (!writer.write(image)) return {};
  return toString(bytes);
}

/// Colours that each pixel of a JPEG has (its frame header, ITU T.81 B.2.2); 0 for what is none.
int jpegComponents(std::string_view file) {
  const auto byte = [&file](std::size_t at) { return static_cast<unsigned char>(file[at]); };
  constexpr std::size_t kFrameHeader = 10;
  for (std::size_t at = 2; at + kFrameHeader <= file.size() && byte(at) == 0xFF;) {
    const int marker = byte(at + 1);
    if (marker == 0xFF) {
      ++at;
      continue;
    }
    const bool isFrame = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
    if (isFrame) return byte(at + 9);
    at += 2 + (byte(at + 2) << 8 | byte(at + 3));
  }
  return 0;
}

}  // namespace

PixelRows pixelRows(const RasterImage& image) {
  PixelRows rows;
  rows.width = image.width;
  rows.height = image.height;
  const int components = image.isJpeg ? jpegComponents(image.file) : 0;
  if (components == 1 || components == 3) {
    rows.jpeg = image.file;
    rows.isJpegGrey = components == 1;
    return rows;
  }
  const QImage pixels = image.pixels->convertToFormat(QImage::Format_ARGB32);
  const bool hasAlpha = image.pixels->hasAlphaChannel();
  for (int y = 0; y < pixels.height(); ++y) {
    const auto* const line = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
    for (int x = 0; x < pixels.width(); ++x) {
      for (const int channel : {qRed(line[x]), qGreen(line[x]), qBlue(line[x])}) rows.rgb += static_cast<char>(channel);
      if (hasAlpha) rows.alpha += static_cast<char>(qAlpha(line[x]));
    }
  }
  return rows;
}

std::string compressed(const std::string& bytes) {
  constexpr qsizetype kLengthBytes = 4;  // before the stream itself
  const QByteArray made = qCompress(reinterpret_cast<const uchar*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
  return toString(made.mid(kLengthBytes));
}

void paintList(QPainter& painter, const DisplayList& list, bool isRaster) {
  painter.setRenderHint(QPainter::Antialiasing);
  QPainterPath path, dots;
  for (const DisplayItem& item : list.items) {
    path.clear();
    dots.clear();
    if (item.kind == ItemKind::EndClip) {
      painter.restore();
      continue;
    }
    const bool isStroke = item.kind == ItemKind::Stroke || item.kind == ItemKind::FlatStroke;
    for (std::uint32_t i = 0; i < item.ringCount; ++i) {
      const DisplayRing& ring = list.rings[item.firstRing + i];
      if (isStroke && isDot(list, ring)) {
        const Point& c = list.points[ring.first];
        dots.addEllipse(QPointF(c.x, c.y), item.width / 2, item.width / 2);
      } else {
        addToPath(list, ring, path);
      }
    }
    if (item.kind == ItemKind::BeginClip) {
      painter.save();
      painter.setClipPath(path, Qt::IntersectClip);
      continue;
    }
    const QColor color = qColor(item.color);
    if (isStroke) {
      const bool isThin = isRaster && item.width <= kThinLinePx;
      const bool isFlat = item.kind == ItemKind::FlatStroke;
      QPen pen(color, isThin ? 1.0 : item.width, Qt::SolidLine, isFlat ? Qt::FlatCap : Qt::RoundCap,
               isFlat ? Qt::MiterJoin : Qt::RoundJoin);
      pen.setCosmetic(isThin);
      if (!path.isEmpty()) {
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(path);
      }
      path.swap(dots);
    } else {
      path.setFillRule(item.kind == ItemKind::FillNonzero ? Qt::WindingFill : Qt::OddEvenFill);
    }
    if (path.isEmpty()) continue;
    if (item.texture != DisplayItem::kPlain) {
      paintImage(painter, path, list.textures[item.texture], item.color.alpha, isRaster);
      continue;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(item.gradient == DisplayItem::kPlain ? QBrush(color) : qBrush(list.gradients[item.gradient]));
    painter.drawPath(path);
  }
}

std::string_view whyNot(PictureFormat) { return {}; }

std::optional<std::uint32_t> colorOf(const std::string& name) {
  const QString asked = QString::fromStdString(name);
  if (!QColor::isValidColor(asked)) return std::nullopt;
  return QColor(asked).rgb() & 0xFFFFFF;
}

std::string renderPicture(const DisplayList& list, const Page& page, std::optional<std::uint32_t> background,
                          PictureFormat format) {
  switch (format) {
    case PictureFormat::Png:
    case PictureFormat::Tiff:
      return renderPng(list, page, background);
    case PictureFormat::Svg:
      return writeSvg(list, page, background);
    case PictureFormat::Pdf:
      return writePdf(std::array{PdfPage{&list, page, list.notes.page}}, background);
    case PictureFormat::Html:
      return writeHtml(list, page, background);
  }
  return {};
}

}  // namespace host::picture
