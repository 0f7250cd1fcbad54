// Drawing files in and out.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::dxf {

/// What reading or saving came to. `message` is one sentence in UTF-8 naming the file (and line), empty when ok.
struct FileResult {
  bool ok = true;
  std::string message;
};

/// Reads an ASCII drawing AC1015 to AC1032, or a DWG drawing AC1014 to AC1032, into an empty database; its first bytes
/// tell which, whatever the file's name. On failure the database stays empty.
FileResult readDrawing(database::DrawingDatabase& db, const std::filesystem::path& file);
/// The same from text already in memory; `name` is what messages call it.
FileResult readDrawingText(database::DrawingDatabase& db, std::string text, const std::string& name);
/// Whether a file begins as DWG drawings do.
bool isDwg(std::string_view bytes);
/// The drawing as it would be saved.
std::string drawingText(database::DrawingDatabase& db);
/// Writes to a temporary file beside the target, flushes it and renames it over the target; a failure leaves the old
/// file whole. Untouched records keep their bytes.
FileResult saveDrawing(database::DrawingDatabase& db, const std::filesystem::path& file);
/// Any bytes the same way (pictures).
FileResult writeFileWhole(const std::filesystem::path& file, std::string_view bytes);
/// The same for bytes that come piece by piece: `produce` calls its argument with each and stops when that answers
/// false, which it then answers itself.
using GiveBytes = std::function<bool(std::string_view)>;
FileResult writeFileWhole(const std::filesystem::path& file, const std::function<bool(const GiveBytes&)>& produce);

}  // namespace host::dxf
