#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageReader>

#include "Picture/Images/RasterImage.h"

namespace host::picture {
namespace {

/// Megabytes of one image's pixels: an orthophoto of 16,000 pixels square.
constexpr int kMostMegabytes = 1024;

/// Shades of the usual video weights; ones of "monochrome" are lighter, so that lines stand out.
void makeGrey(QImage& image, bool isLight) {
  image = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
  for (int y = 0; y < image.height(); ++y) {
    auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < image.width(); ++x) {
      int grey = (299 * qRed(line[x]) + 587 * qGreen(line[x]) + 114 * qBlue(line[x]) + 500) / 1000;
      if (isLight) grey = 255 - (255 - grey) / 3;
      line[x] = qRgba(grey, grey, grey, qAlpha(line[x]));
    }
  }
}

}  // namespace

std::shared_ptr<const RasterImage> decodeImage(std::string bytes, ColorMode colors) {
  QByteArray read = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QBuffer buffer(&read);
  QImageReader::setAllocationLimit(kMostMegabytes);
  QImageReader reader(&buffer);
  reader.setAutoTransform(true);
  const QByteArray format = reader.format();
  QImage pixels;
  if (!reader.read(&pixels)) return nullptr;
  auto image = std::make_shared<RasterImage>();
  const bool isTurned = reader.transformation() != QImageIOHandler::TransformationNone;
  if (colors != ColorMode::AsDrawn) {
    makeGrey(pixels, colors == ColorMode::Monochrome);
  } else if (!isTurned && (format == "png" || format == "jpeg")) {
    image->file = std::move(bytes);
    image->isJpeg = format == "jpeg";
  }
  image->width = pixels.width();
  image->height = pixels.height();
  image->pixels = std::make_shared<const QImage>(std::move(pixels));
  return image;
}

std::string fileOf(const RasterImage& image) {
  if (!image.file.empty()) return image.file;
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.pixels->save(&buffer, "PNG");
  return bytes.toStdString();
}

}  // namespace host::picture
