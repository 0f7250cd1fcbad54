// What texts of drawings say, without the codes of their form.
#pragma once

#include <string>

#include "Database/DrawingDatabase.h"

namespace host::geometry {

/// Of TEXT, MTEXT, ATTRIB and ATTDEF; lines are parted by line feeds. Empty for other entities.
std::wstring plainText(const database::Slot& entity);

}  // namespace host::geometry
