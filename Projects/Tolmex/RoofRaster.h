// Rasters of lines down the slope of a roof face.
#pragma once

namespace OrvLib {

// Scales of the raster's pattern: it is twice as dense in the shade.
inline constexpr double kSunlitRaster = 0.65;
inline constexpr double kShadedRaster = 0.325;

/// Lets the user pick a building and the corners of one of its roof faces, lays the raster over the face and, when the
/// user agrees, fills it with the building's colour of that side.
///
/// `pointCount`: 3 for a hip, eaves first, or 4 for a face between ridge, which comes first, and eaves.
/// `isShaded`: whether the face is on the side away from the sun.
void makeRoofRaster(double rasterScale, int pointCount, bool isShaded);

}  // namespace OrvLib
