// How an area of the drawing is laid on a page.
#pragma once

#include <optional>
#include <string>

#include "Geometry/Transform.h"
#include "Picture/BackEnd.h"
#include "Picture/Picture.h"
#include "Picture/PlotSettings.h"

namespace host::picture {

struct PageLayout {
  std::string note;  // what does not fit on the paper
  Page page;
  geometry::Transform toPicture;  // drawing coordinates to pixels
  double pixelsPerMm = 1;         // of lineweights
  geometry::Box area;             // drawing coordinates the picture shows
  // On a sheet.
  std::optional<geometry::Box> frame;  // pixels that the plan is drawn to
  double mmPerUnit = 0;                // of the drawing
};

/// A lone point or a level line still needs an area around it.
geometry::Box withSize(const geometry::Box& box);
/// Figures short enough to read: at most `decimals` places, no zeros at the end.
std::string figure(double value, int decimals);

/// `extents`: box of what is visible, not empty. Without paper and scale the page follows the area's form; with paper
/// the area is centred on it.
Result<PageLayout> layOutPage(const geometry::Box& extents, const PictureOptions& options, PictureFormat format);

/// A layout on its own paper, at the scale of its plot settings.
Result<PageLayout> layOutPaper(const PaperPlace& place, const PictureOptions& options, PictureFormat format);

/// "(0, 0) - (10, 20.5)".
std::string boxText(const geometry::Box& box);

}  // namespace host::picture
