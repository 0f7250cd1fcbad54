#include "Picture/Images.h"

#include <filesystem>
#include <fstream>

#include "Picture/ImagePlaces.h"
#include "Picture/Images/RasterImage.h"
#include "Text/Text.h"

namespace host::picture {

namespace fs = std::filesystem;

std::shared_ptr<const RasterImage> ImageFiles::read(const std::string& name) const {
  std::error_code error;
  for (const fs::path& place : imagePlaces(name, options_.drawingFolder)) {
    if (!fs::is_regular_file(place, error)) continue;
    std::string bytes(fs::file_size(place, error), '\0');
    if (!std::ifstream(place, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
      continue;
    if (auto image = decodeImage(std::move(bytes), options_.colors)) return image;
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
