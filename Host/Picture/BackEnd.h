// A display list as the bytes of a file.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Picture/DisplayList.h"
#include "Picture/Picture.h"

namespace host::picture {

struct Page {
  double widthMm = 0, heightMm = 0;
  double widthPx = 0, heightPx = 0;   // picture coordinates; whole numbers for PNG
  std::optional<GeoMeasure> measure;  // formats that have none leave it out
};

/// Why pictures of a format cannot be had here; empty when they can.
std::string_view whyNot(PictureFormat format);

/// A colour by its name or as "#rrggbb", in small letters; nothing for what is none.
std::optional<std::uint32_t> colorOf(const std::string& name);

/// Empty when the format's writer fails (a picture too large for memory).
std::string renderPicture(const DisplayList& list, const Page& page, std::optional<std::uint32_t> background,
                          PictureFormat format);

}  // namespace host::picture
