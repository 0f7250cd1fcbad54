// Raster images of drawings, read from their files.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "Database/DrawingDatabase.h"
#include "Picture/Picture.h"

namespace host::picture {

struct RasterImage;

class ImageFiles {
 public:
  ImageFiles(const database::DrawingDatabase& db, const PictureOptions& options) : db_(db), options_(options) {}

  /// Of an image definition; null when its file is not there, cannot be read or is too large. It is looked for as it is
  /// named, from the drawing's folder, and by its bare name in the drawing's folder.
  std::shared_ptr<const RasterImage> load(std::uint64_t definition);
  /// Names of files that could not be shown.
  const std::set<std::string>& missing() const { return missing_; }

 private:
  std::shared_ptr<const RasterImage> read(const std::string& name) const;

  const database::DrawingDatabase& db_;
  const PictureOptions& options_;
  std::map<std::uint64_t, std::shared_ptr<const RasterImage>> images_;
  std::set<std::string> missing_;
};

}  // namespace host::picture
