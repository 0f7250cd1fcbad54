// The drawing that a new database starts from.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::database {

/// Reads a drawing's text into an empty database; given by the DXF module when it is loaded, so that this module needs
/// not know how files are read.
using TextReader = bool (*)(DrawingDatabase& db, std::string text);
bool setTextReader(TextReader reader);

/// The same for a drawing file.
using FileReader = Result<> (*)(DrawingDatabase& db, const std::filesystem::path& file);
bool setFileReader(FileReader reader);
FileReader fileReader();

/// DXF text made of a DWG drawing.
struct ConvertedDrawing {
  std::string text;
  std::vector<Problem> problems;  // what the text lacks
};
/// Turns the bytes of a DWG drawing into DXF text; `name` is what messages call it. Given by the DWG module.
using DwgConverter = Result<ConvertedDrawing> (*)(std::string_view bytes, const std::string& name);
bool setDwgConverter(DwgConverter converter);
DwgConverter dwgConverter();

/// The text of an empty metric drawing AC1027: standard tables, dictionaries and layouts.
std::string defaultDrawingText();
void buildDefaultDrawing(DrawingDatabase& db);

}  // namespace host::database
