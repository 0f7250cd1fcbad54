// SVG text of a display list.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Picture/BackEnd.h"

namespace host::picture {

/// Where SVG text goes.
struct SvgPlace {
  bool isInPage = false;  // an element of a web page, in the place of a file
  std::string_view ids;   // what its own names begin with; the parts of a page need different ones
};

/// Paths in hundredths of a pixel, grouped by their look; the page is as large as it is on paper. Where the list has
/// notes, groups around these are named after layers, and groups in them have titles and descriptions of entities.
/// Texts of the list stand in place of the outlines that are theirs alone.
std::string writeSvg(const DisplayList& list, const Page& page, std::optional<std::uint32_t> background,
                     const SvgPlace& place = {});

/// Text as it may stand in attributes and between tags of XML and HTML; characters that XML does not know are left out.
std::string markupText(std::string_view utf8);

}  // namespace host::picture
