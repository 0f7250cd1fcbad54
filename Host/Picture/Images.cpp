#include "Picture/Images.h"

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QImageReader>
#include <algorithm>
#include <filesystem>

#include "Picture/RasterImage.h"
#include "Text/Text.h"

namespace host::picture {
namespace {

namespace fs = std::filesystem;

/// Megabytes of one image's pixels: an orthophoto of 16,000 pixels square.
constexpr int kMostMegabytes = 1024;

std::vector<fs::path> placesOf(std::string name, const std::string& folder) {
  std::ranges::replace(name, '\\', '/');
  const bool hasDrive = name.size() > 2 && name[1] == ':';
  std::vector<fs::path> places;
  if (!hasDrive) places.push_back(fs::path(folder) / name);
  places.push_back(fs::path(folder) / fs::path(name).filename());
  return places;
}

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

std::shared_ptr<const RasterImage> ImageFiles::read(const std::string& name) const {
  std::error_code error;
  for (const fs::path& place : placesOf(name, options_.drawingFolder)) {
    if (!fs::is_regular_file(place, error)) continue;
    QFile file(QString::fromStdString(place.string()));
    if (!file.open(QIODevice::ReadOnly)) continue;
    QByteArray bytes = file.readAll();
    QBuffer buffer(&bytes);
    QImageReader::setAllocationLimit(kMostMegabytes);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    auto image = std::make_shared<RasterImage>();
    const QByteArray format = reader.format();
    if (!reader.read(&image->pixels)) continue;
    const bool isTurned = reader.transformation() != QImageIOHandler::TransformationNone;
    if (options_.colors != ColorMode::AsDrawn) {
      makeGrey(image->pixels, options_.colors == ColorMode::Monochrome);
    } else if (!isTurned && (format == "png" || format == "jpeg")) {
      image->file.assign(bytes.constData(), static_cast<std::size_t>(bytes.size()));
      image->isJpeg = format == "jpeg";
    }
    return image;
  }
  return nullptr;
}

std::shared_ptr<const RasterImage> ImageFiles::load(std::uint64_t definition) {
  const auto [entry, isNew] = images_.try_emplace(definition);
  if (!isNew) return entry->second;
  const database::Slot* const slot = definition == 0 ? nullptr : db_.findHandle(definition);
  std::string name;
  if (slot != nullptr) {
    database::TagCursor tags = slot->tags();
    for (database::Tag tag; tags.next(tag);)
      if (tag.code == 1 && name.empty()) name = text::toUtf8(db_.codec().decode(tag.value));
  }
  if (!name.empty()) entry->second = read(name);
  if (entry->second == nullptr) missing_.insert(name.empty() ? "an image without a file" : name);
  return entry->second;
}

}  // namespace host::picture
