// Rasters of lines down the slope of a roof face.
#pragma once

#include "Tolmex/CommandRow.h"

namespace OrvLib {

// Scales of the raster's pattern: it is twice as dense in the shade.
inline constexpr double kSunlitRaster = 0.65;
inline constexpr double kShadedRaster = 0.325;

/// Asks for the corners of one of the building's roof faces, lays the raster over the face and, when the user agrees,
/// fills it with the building's colour of that side. `Nothing` for an entity that is no building and when the user does
/// not give every corner.
///
/// `pointCount`: 3 for a hip, eaves first, or 4 for a face between ridge, which comes first, and eaves.
/// `isShaded`: whether the face is on the side away from the sun.
Outcome makeRoofRaster(AcDbObjectId building, double rasterScale, int pointCount, bool isShaded);

}  // namespace OrvLib
