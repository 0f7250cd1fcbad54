#include "Preview/FilePreview.h"

#include <fstream>
#include <iterator>
#include <list>

#include "Platform/Library.h"
#include "Preview/Thumbnail.h"
#include "Text/Text.h"
#include "dbmain.h"

namespace host::preview {
namespace {

constexpr std::size_t kKept = 32;
/// Files beyond this are not searched for a picture of their own.
constexpr std::uintmax_t kLargestSearched = std::uintmax_t{256} << 20;

struct Painter {
  DrawPreview draw = nullptr;
  DecodePreview decode = nullptr;
  std::string problem;
};

Painter loadPainter() {
  std::filesystem::path file;
  std::string reason = "it lacks them";
  Painter painter;
  if (void* const library =
          platform::openBeside(reinterpret_cast<const void*>(&previewOf), "tolmexpicture", file, reason)) {
    painter.draw = reinterpret_cast<DrawPreview>(platform::symbolOf(library, kDrawPreview));
    painter.decode = reinterpret_cast<DecodePreview>(platform::symbolOf(library, kDecodePreview));
  }
  if (painter.draw == nullptr || painter.decode == nullptr)
    painter.problem = file.string() + ": previews cannot be drawn: " + reason;
  return painter;
}

// The library stays for good, as toolkits should.
const Painter& painter() {
  static const Painter loaded = loadPainter();
  return loaded;
}

/// The sentence that reading has left in the drawing.
std::string whyUnread(const AcDbDatabase& db, const std::filesystem::path& file) {
  const auto& problems = db.hostDatabase().problems();
  return problems.empty() ? file.string() + ": this is no drawing that can be read" : problems.back().text;
}

std::string thumbnailOf(const std::filesystem::path& file) {
  std::error_code error;
  if (std::filesystem::file_size(file, error) > kLargestSearched || error) return {};
  std::ifstream in(file, std::ios::binary);
  return storedThumbnail(std::string{std::istreambuf_iterator<char>(in), {}});
}

FilePreview made(const std::filesystem::path& file, const Canvas& canvas) {
  const auto because = [](std::string why) { return problemOf(Code::FilePassedOver, std::move(why)); };
  if (!painter().problem.empty()) return {{}, because(painter().problem)};
  FilePreview preview;
  Pixels pixels;
  {
    AcDbDatabase db(false, true);
    if (db.readDwgFile(text::fromUtf8(file.string()).c_str()) != Acad::eOk) {
      preview.problem = because(whyUnread(db, file));
    } else if (painter().draw(db.hostDatabase(), canvas, pixels)) {
      return {std::move(pixels), {}};
    } else {
      preview.problem = because(file.string() + ": the drawing shows nothing");
    }
  }
  const std::string thumbnail = thumbnailOf(file);
  if (!thumbnail.empty() && painter().decode(thumbnail, canvas, pixels)) preview.pixels = std::move(pixels);
  return preview;
}

struct Kept {
  std::filesystem::path file;
  std::filesystem::file_time_type changed;
  std::uintmax_t size = 0;
  Canvas canvas;
  FilePreview preview;
};

}  // namespace

const FilePreview& previewOf(const std::filesystem::path& file, const Canvas& canvas) {
  static auto& kept = *new std::list<Kept>;  // the latest first
  Kept wanted{file, {}, 0, canvas, {}};
  std::error_code error;
  wanted.changed = std::filesystem::last_write_time(file, error);
  wanted.size = std::filesystem::file_size(file, error);
  for (auto it = kept.begin(); it != kept.end(); ++it) {
    if (it->file != wanted.file || it->changed != wanted.changed || it->size != wanted.size || it->canvas != canvas)
      continue;
    kept.splice(kept.begin(), kept, it);
    return kept.front().preview;
  }
  wanted.preview = made(file, canvas);
  kept.push_front(std::move(wanted));
  if (kept.size() > kKept) kept.pop_back();
  return kept.front().preview;
}

}  // namespace host::preview
