// Small pictures of drawing files.
#pragma once

#include <filesystem>
#include <optional>

#include "Preview/Pixels.h"
#include "Problems/Problem.h"

namespace host::preview {

struct FilePreview {
  std::optional<Pixels> pixels;    // nothing when there is no picture at all
  std::optional<Problem> problem;  // why the drawing could not be drawn; the pixels are then those that it keeps
};

/// The picture of what the file draws, or the one it keeps of itself when it cannot be drawn. Pictures made lately are
/// kept as long as the file does not change. The library that draws is loaded with the first one.
const FilePreview& previewOf(const std::filesystem::path& file, const Canvas& canvas);

}  // namespace host::preview
