// Drawing files in and out.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::dxf {

/// Reads a drawing into an empty database: DXF of any version as text or binary, or DWG AC1014 to AC1032; its first
/// bytes tell which, whatever the file's name. A drawing before 2000 becomes one of 2000; a damaged one is read as far
/// as it can be; the database's problems tell. Fails, and leaves the database empty, only when nothing could be read.
Result<> readDrawing(database::DrawingDatabase& db, const std::filesystem::path& file);
/// The same from text already in memory; `name` is what messages call it.
Result<> readDrawingText(database::DrawingDatabase& db, std::string text, const std::string& name);
/// Whether a file begins as DWG drawings do.
bool isDwg(std::string_view bytes);
/// A repaired copy of a drawing, and what was wrong.
struct RepairedDrawing {
  std::string bytes;
  std::vector<Problem> problems;
};
/// Well-formed drawings are looked through too.
Result<RepairedDrawing> repairDrawing(const std::filesystem::path& file);
/// The drawing as it would be saved; a binary one as binary.
std::string drawingText(database::DrawingDatabase& db);
/// Writes to a temporary file beside the target, flushes it and renames it over the target; a failure leaves the old
/// file whole. Untouched records keep their bytes.
Result<> saveDrawing(database::DrawingDatabase& db, const std::filesystem::path& file);
/// Any bytes the same way (pictures).
Result<> writeFileWhole(const std::filesystem::path& file, std::string_view bytes);
/// The same for bytes that come piece by piece: `produce` calls its argument with each and stops when that answers
/// false, which it then answers itself.
using GiveBytes = std::function<bool(std::string_view)>;
Result<> writeFileWhole(const std::filesystem::path& file, const std::function<bool(const GiveBytes&)>& produce);

}  // namespace host::dxf
