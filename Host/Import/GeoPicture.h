// Pictures that say where they lie on the Earth: GeoTIFF, and PDF with a measure.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "Problems/Problem.h"

namespace host::import {

struct GeoPlace {
  std::string system;  // "EPSG:3879", "GK25"; empty: a GeoTIFF has a place in unknown coordinates, a PDF none
  /// Coordinates in that system of a place in the picture, counted in pixels from its upper left corner:
  /// x = t[0] + t[1] px + t[2] py, y = t[3] + t[4] px + t[5] py.
  std::array<double, 6> transform{};
  std::array<double, 4> shown{};  // the part that shows the drawing: left, top, right, bottom in pixels
};

/// Makes a GeoTIFF of a PNG, or gives the first page of a PDF its place; 96 pixels of a PDF are an inch.
using GeoreferenceFunction = void (*)(const std::string& picture, const GeoPlace& place,
                                      std::optional<Result<std::string>>& answer);
/// The functions that the library exports.
inline constexpr const char* kGeoTiffFunction = "tolmexGeoTiff";
inline constexpr const char* kGeoPdfFunction = "tolmexGeoPdf";

}  // namespace host::import
