// Small pictures of drawing files.
#pragma once

#include <filesystem>
#include <string>

#include "Preview/Pixels.h"

namespace host::preview {

struct FilePreview {
  bool ok = false;
  Pixels pixels;
  std::string message;  // why the drawing could not be drawn, in one sentence; empty when it was
};

/// The picture of what the file draws, or the one it keeps of itself when it cannot be drawn. Pictures made lately are
/// kept as long as the file does not change. The library that draws is loaded with the first one.
const FilePreview& previewOf(const std::filesystem::path& file, const Canvas& canvas);

}  // namespace host::preview
