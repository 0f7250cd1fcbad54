// A picture before it becomes the bytes of a file.
#pragma once

#include "Picture/BackEnd.h"
#include "Picture/DisplayList.h"
#include "Picture/Picture.h"

namespace host::picture {

struct Composition {
  Picture picture;  // without bytes
  DisplayList list;
  Page page;
};

/// Everything that drawPicture does except the writing of the file.
Result<Composition> composePicture(const database::DrawingDatabase& db, const PictureOptions& options,
                                   PictureFormat format);

}  // namespace host::picture
