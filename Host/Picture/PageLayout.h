// How an area of the drawing is laid on a page.
#pragma once

#include <string>

#include "Geometry/Transform.h"
#include "Picture/BackEnd.h"
#include "Picture/Picture.h"

namespace host::picture {

struct PageLayout {
  std::string note;  // what does not fit on the paper
  Page page;
  geometry::Transform toPicture;  // drawing coordinates to pixels
  double pixelsPerMm = 1;         // of lineweights
  geometry::Box area;             // drawing coordinates the picture shows
};

/// `extents`: box of what is visible, not empty. Without paper and scale the page follows the area's form; with paper
/// the area is centred on it.
Result<PageLayout> layOutPage(const geometry::Box& extents, const PictureOptions& options, PictureFormat format);

/// "(0, 0) - (10, 20.5)".
std::string boxText(const geometry::Box& box);

}  // namespace host::picture
