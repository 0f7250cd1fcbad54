// How a layout wants to be plotted: its paper, turned as the layout shows it.
#pragma once

#include <optional>
#include <string>

#include "Database/DrawingDatabase.h"
#include "Geometry/EntityPaths.h"

namespace host::picture {

/// Plot settings of a LAYOUT object.
struct PlotSettings {
  enum class Area { Paper, Extents, Limits, Window };
  double paperWidthMm = 0, paperHeightMm = 0;  // as the layout shows it, turned already; 0: no paper was chosen
  double leftMm = 0, bottomMm = 0, rightMm = 0, topMm = 0;  // the rim that printers leave white, turned as well
  double originXMm = 0, originYMm = 0;                      // of what is plotted, from the corner of the printable area
  double mmPerUnit = 1;                                     // on the paper, of a unit of the layout
  double millimetres = 1;                                   // of the unit that paper is measured with
  bool isFitted = false;                                    // as large as the printable area allows
  bool isCentred = false;
  Area area = Area::Paper;
  geometry::Box window, limits;  // units of the layout
  std::string styleSheet;        // of plot styles, UTF-8; empty: none, or not to be used
};

/// Of the layout of that name (without regard to case); nothing where the drawing has no such object.
std::optional<PlotSettings> plotSettings(const database::DrawingDatabase& db, const std::wstring& layout);

/// Where a layout lies on its paper.
struct PaperPlace {
  geometry::Box paper;  // in units of the layout
  double mmPerUnit = 1;
  std::optional<geometry::Box> window;  // nothing outside is plotted
};

/// `extents`: of what is visible. Nothing without a paper, or when the settings do not give a size.
std::optional<PaperPlace> paperPlace(const PlotSettings& settings, const geometry::Box& extents);

}  // namespace host::picture
