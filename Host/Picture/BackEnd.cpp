#include "Picture/BackEnd.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QPainterPath>
#include <QPdfWriter>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "Picture/PaperSizes.h"
#include "Picture/QtPainting.h"
#include "Picture/RasterImage.h"
#include "Picture/SvgWriter.h"

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

/// Puts other bytes in the place of `count` bytes of a PDF, and moves the offsets of its table of objects with them.
std::string withChange(std::string pdf, std::size_t begin, std::size_t count, const std::string& replacement) {
  const std::size_t table = pdf.rfind("\nxref\n");
  const std::size_t pointer = pdf.rfind("startxref\n");
  if (table == std::string::npos || pointer == std::string::npos) return pdf;
  const auto moved = [&](std::size_t offset) { return offset > begin ? offset - count + replacement.size() : offset; };
  const std::size_t trailer = pdf.find("trailer", table);
  std::size_t at = pdf.find('\n', table + 6) + 1;  // after "xref" and "0 count"
  constexpr std::size_t kEntryBytes = 20, kDigits = 10;
  for (; at + kEntryBytes <= trailer; at += kEntryBytes) {
    const std::size_t offset = std::strtoull(pdf.substr(at, kDigits).c_str(), nullptr, 10);
    char text[kDigits + 1];
    std::snprintf(text, sizeof text, "%010llu", static_cast<unsigned long long>(moved(offset)));
    pdf.replace(at, kDigits, text);
  }
  const std::size_t digits = pointer + 10;
  const std::size_t last = pdf.find('\n', digits);
  pdf.replace(digits, last - digits, std::to_string(moved(std::strtoull(pdf.c_str() + digits, nullptr, 10))));
  pdf.replace(begin, count, replacement);
  return pdf;
}

/// Without the date of making, which would differ from one time to the next.
std::string withoutDate(std::string pdf) {
  const std::size_t begin = pdf.find("/CreationDate");
  const std::size_t end = begin == std::string::npos ? begin : pdf.find('\n', begin);
  if (end == std::string::npos) return pdf;
  return withChange(std::move(pdf), begin, end + 1 - begin, {});
}

/// The writer rounds pages to whole points and draws from their upper edge down; the page gets its true size there.
std::string withTruePage(std::string pdf, const Page& page) {
  constexpr double kPointsPerMm = 72 / kMmPerInch;
  const std::size_t begin = pdf.find("/MediaBox [");
  const std::size_t end = begin == std::string::npos ? begin : pdf.find(']', begin);
  if (end == std::string::npos) return pdf;
  double left = 0, bottom = 0, right = 0, top = 0;
  if (std::sscanf(pdf.c_str() + begin, "/MediaBox [%lf %lf %lf %lf", &left, &bottom, &right, &top) != 4) return pdf;
  char box[128];
  std::snprintf(box, sizeof box, "/MediaBox [0 %.4f %.4f %.4f", top - page.heightMm * kPointsPerMm,
                page.widthMm * kPointsPerMm, top);
  return withChange(std::move(pdf), begin, end - begin, box);
}

std::string renderPdf(const DisplayList& list, const Page& page, std::optional<std::uint32_t> background) {
  constexpr int kDotsPerInch = 2400;  // of the writer's whole-number coordinates
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  {
    QPdfWriter writer(&buffer);
    writer.setTitle(QStringLiteral("Drawing"));
    writer.setPageSize(
        QPageSize(QSizeF(page.widthMm, page.heightMm), QPageSize::Millimeter, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer.setResolution(kDotsPerInch);
    QPainter painter;
    if (!painter.begin(&writer)) return {};
    const double scale = kDotsPerInch / kMmPerInch * page.widthMm / page.widthPx;
    painter.scale(scale, scale);
    if (background) painter.fillRect(QRectF(0, 0, page.widthPx, page.heightPx), qColor(*background));
    paintList(painter, list, false);
  }
  return withTruePage(withoutDate(toString(bytes)), page);
}

}  // namespace

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
      return renderPdf(list, page, background);
  }
  return {};
}

}  // namespace host::picture
