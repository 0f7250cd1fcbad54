// A display list as the bytes of a file.
#pragma once

#include <optional>
#include <string>

#include "Picture/DisplayList.h"
#include "Picture/Picture.h"

namespace host::picture {

struct Page {
  double widthMm = 0, heightMm = 0;
  double widthPx = 0, heightPx = 0;  // picture coordinates; whole numbers for PNG
};

/// Empty when the format's writer fails (a picture too large for memory).
std::string renderPicture(const DisplayList& list, const Page& page, std::optional<std::uint32_t> background,
                          PictureFormat format);

}  // namespace host::picture
