// A picture as a web page of its own.
#pragma once

#include <optional>
#include <string>

#include "Picture/BackEnd.h"

namespace host::picture {

/// One file that needs no other: the picture as SVG with switches for its layers, what entities are, a legend and a
/// scale bar, in Finnish and English. Without notes in the list it is the picture alone.
std::string writeHtml(const DisplayList& list, const Page& page, std::optional<std::uint32_t> background);

}  // namespace host::picture
