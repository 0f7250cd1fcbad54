// Small pictures for windows that show drawing files.
#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <algorithm>

#include "Picture/Picture.h"
#include "Preview/Pixels.h"
#include "adesk.h"

namespace host::picture {
namespace {

using preview::Canvas;
using preview::Pixels;

constexpr int kProbeWidthPx = 16;

/// The smallest area of the canvas's form around an area of the drawing.
geometry::Box withFormOf(const geometry::Box& area, const Canvas& canvas) {
  const double width = area.maxX - area.minX;
  const double height = area.maxY - area.minY;
  const double unitsPerPx = std::max(width / canvas.width, height / canvas.height);
  const double growX = (unitsPerPx * canvas.width - width) / 2;
  const double growY = (unitsPerPx * canvas.height - height) / 2;
  return {area.minX - growX, area.minY - growY, area.maxX + growX, area.maxY + growY};
}

/// The image in the middle of the canvas, made smaller when it does not fit.
bool place(QImage image, const Canvas& canvas, Pixels& pixels) {
  if (image.isNull()) return false;
  if (image.width() > canvas.width || image.height() > canvas.height)
    image = image.scaled(canvas.width, canvas.height, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  pixels.width = canvas.width;
  pixels.height = canvas.height;
  pixels.argb.assign(static_cast<std::size_t>(canvas.width) * static_cast<std::size_t>(canvas.height),
                     canvas.background | 0xFF000000U);
  QImage shown(reinterpret_cast<uchar*>(pixels.argb.data()), canvas.width, canvas.height, QImage::Format_RGB32);
  QPainter painter(&shown);
  painter.drawImage((canvas.width - image.width()) / 2, (canvas.height - image.height()) / 2, image);
  return true;
}

bool decode(std::string_view file, const Canvas& canvas, Pixels& pixels) {
  QImage image;
  const auto bytes = QByteArray::fromRawData(file.data(), static_cast<qsizetype>(file.size()));
  return image.loadFromData(bytes) && place(std::move(image), canvas, pixels);
}

bool draw(const database::DrawingDatabase& drawing, const Canvas& canvas, Pixels& pixels) {
  PictureOptions options;
  options.background = canvas.background;
  // What the drawing covers shows in a picture of it; the form of that one does not matter.
  options.widthPx = kProbeWidthPx;
  const Result<Picture> probe = drawPicture(drawing, options, PictureFormat::Png);
  if (!probe) return false;
  options.widthPx = canvas.width;
  options.window = withFormOf(probe->drawn, canvas);
  const Result<Picture> picture = drawPicture(drawing, options, PictureFormat::Png);
  return picture && decode(picture->bytes, canvas, pixels);
}

}  // namespace
}  // namespace host::picture

extern "C" ADESK_EXPORT bool tolmexDrawPreview(const host::database::DrawingDatabase& drawing,
                                               const host::preview::Canvas& canvas, host::preview::Pixels& pixels) {
  return host::picture::draw(drawing, canvas, pixels);
}

extern "C" ADESK_EXPORT bool tolmexDecodePreview(std::string_view file, const host::preview::Canvas& canvas,
                                                 host::preview::Pixels& pixels) {
  return host::picture::decode(file, canvas, pixels);
}
