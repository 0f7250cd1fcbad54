// A well-formed drawing from whatever an outline holds.
#pragma once

#include <string>
#include <string_view>

#include "Dxf/Outline.h"
#include "Dxf/Problems.h"

namespace host::dxf {

struct Rebuilt {
  std::string text;
  bool wasUpgraded = false;  // from a version before 2000
};

/// The text of a drawing AC1015 or later with every section, table, handle, owner and subclass marker that drawings
/// need; a drawing of an older version becomes one of 2000. Records that are sound keep their bytes. What had to be
/// changed is said, except what the older version never had.
Rebuilt rebuild(Outline outline, std::string_view lineEnd, ProblemLog& problems);

}  // namespace host::dxf
