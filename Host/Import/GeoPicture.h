// Pictures that say where they lie on the Earth: GeoTIFF, and the corners of others.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "Problems/Problem.h"

namespace host::import {

struct GeoPlace {
  std::string system;  // "EPSG:3879", "GK25"; empty: a GeoTIFF has a place in unknown coordinates
  /// Coordinates in that system of a place in the picture, counted in pixels from its upper left corner:
  /// x = t[0] + t[1] px + t[2] py, y = t[3] + t[4] px + t[5] py.
  std::array<double, 6> transform{};
  std::array<double, 4> shown{};  // the part that shows the drawing: left, top, right, bottom in pixels
};

/// Where the corners of the part that shows the drawing lie.
struct GeoCorners {
  /// Latitudes and longitudes of the system's own datum: lower left, upper left, upper right, lower right.
  std::array<double, 8> degrees{};
  std::string code;        // of the system in its register; empty: it has none
  std::string definition;  // of the system, as readers of geospatial PDF want it: WKT 1 of the ESRI form
};

/// Makes a GeoTIFF of a PNG.
using GeoTiffFunction = void (*)(const std::string& picture, const GeoPlace& place,
                                 std::optional<Result<std::string>>& answer);
/// The place's system must be given.
using GeoCornersFunction = void (*)(const GeoPlace& place, std::optional<Result<GeoCorners>>& answer);
/// The functions that the library exports.
inline constexpr const char* kGeoTiffFunction = "tolmexGeoTiff";
inline constexpr const char* kGeoCornersFunction = "tolmexGeoCorners";

}  // namespace host::import
