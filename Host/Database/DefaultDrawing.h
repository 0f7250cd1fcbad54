// The drawing that a new database starts from.
#pragma once

#include <string>

#include "Database/DrawingDatabase.h"

namespace host::database {

/// Reads a drawing's text into an empty database; given by the DXF module when it is loaded, so that this module needs
/// not know how files are read.
using TextReader = bool (*)(DrawingDatabase& db, std::string text);
bool setTextReader(TextReader reader);

/// The text of an empty metric drawing AC1027: standard tables, dictionaries and layouts.
std::string defaultDrawingText();
void buildDefaultDrawing(DrawingDatabase& db);

}  // namespace host::database
