// DWG drawings in: bytes of the file to DXF text.
//
// The work is done by a helper process (the folder "dwg-reader" beside the library, or where TOLMEX_DWG_READER says),
// one for all drawings of this program, started when the first one comes.
#pragma once

#include <string>
#include <string_view>

#include "Database/DefaultDrawing.h"
#include "Dwg/ReaderProcess.h"

namespace host::dwg {

/// The settings this program uses.
ReaderSettings defaultSettings();

/// Converts one drawing AC1014 to AC1032; AC1014 comes out as AC1015, whose structure it has. Every failure is one
/// sentence that names the file.
Result<database::ConvertedDrawing> convert(ReaderProcess& reader, std::string_view bytes, const std::string& name);

}  // namespace host::dwg
