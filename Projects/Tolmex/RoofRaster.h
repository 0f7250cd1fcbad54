// Rasters of lines down the slope of a roof face.
#pragma once

namespace OrvLib {

struct RoofFace {
  int pointCount;      // 3: a hip, eaves first; 4: between ridge, which comes first, and eaves
  bool isShaded;       // on the side away from the sun: twice as dense a raster, the building's shadow colour
  double rasterScale;  // of the hatch pattern
};

namespace roofs {
inline constexpr double kSunScale = 0.65;
inline constexpr double kShadeScale = 0.325;
inline constexpr RoofFace kFourShade{4, true, kShadeScale};
inline constexpr RoofFace kThreeShade{3, true, kShadeScale};
inline constexpr RoofFace kFourSun{4, false, kSunScale};
inline constexpr RoofFace kThreeSun{3, false, kSunScale};
}  // namespace roofs

/// Lets the user pick a building and the corners of one of its roof faces, lays the raster over the face and, when the
/// user agrees, fills it with the building's colour of that side.
void makeRoofRaster(const RoofFace& face);

}  // namespace OrvLib
