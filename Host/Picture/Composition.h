// A picture before it becomes the bytes of a file.
#pragma once

#include "Picture/BackEnd.h"
#include "Picture/DisplayList.h"
#include "Picture/Picture.h"

namespace host::picture {

struct Composition {
  PictureResult result;  // without bytes; not ok when there is nothing to show
  DisplayList list;
  Page page;
};

/// Everything that drawPicture does except the writing of the file.
Composition composePicture(const database::DrawingDatabase& db, const PictureOptions& options, PictureFormat format);

}  // namespace host::picture
