// SVG text of a display list.
#pragma once

#include <optional>
#include <string>

#include "Picture/BackEnd.h"

namespace host::picture {

/// Paths in hundredths of a pixel, grouped by their look; the page is as large as it is on paper.
std::string writeSvg(const DisplayList& list, const Page& page, std::optional<std::uint32_t> background);

}  // namespace host::picture
