// The small picture that a drawing file may keep of itself.
#pragma once

#include <string>
#include <string_view>

namespace host::preview {

/// The picture in the bytes of a DWG or DXF file, as a BMP or PNG file; empty when there is none. DWG: the image
/// section that the address at byte 13 points to; DXF: the section THUMBNAILIMAGE.
std::string storedThumbnail(std::string_view drawing);

}  // namespace host::preview
