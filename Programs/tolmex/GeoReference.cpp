#include "GeoReference.h"

#include <cmath>

#include "Geometry/GeoLocation.h"
#include "Import/GeoPicture.h"
#include "LateLibrary.h"

namespace tolmex {

using host::Result;
using host::geometry::Box;
using host::geometry::GeoLocation;
using host::picture::GeoMeasure;
using host::picture::Picture;
using host::picture::PictureOptions;

namespace {

/// The picture's pixels in the system.
host::import::GeoPlace placeOf(const Picture& picture, const GeoLocation& location, const std::string& system) {
  const double step = picture.unitsPerPixel;
  const host::curves::Point2 corner = location.place({picture.upperLeft.x, picture.upperLeft.y});
  host::import::GeoPlace place;
  place.system = system;
  place.transform = {corner.x, step * location.x.x, -step * location.y.x,
                     corner.y, step * location.x.y, -step * location.y.y};
  const Box& drawn = picture.drawn;
  place.shown = {(drawn.minX - picture.upperLeft.x) / step, (picture.upperLeft.y - drawn.maxY) / step,
                 (drawn.maxX - picture.upperLeft.x) / step, (picture.upperLeft.y - drawn.minY) / step};
  return place;
}

}  // namespace

std::string systemByCoordinates(const Box& extents) {
  const double east = (extents.minX + extents.maxX) / 2, north = (extents.minY + extents.maxY) / 2;
  if (north < 6.5e6 || north > 7.9e6) return {};
  constexpr int kZoneCode = 3854;
  const int zone = static_cast<int>(std::floor(east / 1e6));
  if (zone >= 19 && zone <= 31) return "EPSG:" + std::to_string(kZoneCode + zone);
  return east > 5e4 && east < 8e5 ? "EPSG:3067" : std::string();
}

std::string systemOfDrawing(const host::database::DrawingDatabase& drawing) {
  const std::optional<GeoLocation> location = host::geometry::geoLocation(drawing);
  return location && location->isPlain() ? location->system : std::string();
}

namespace {

/// How coordinates of the drawing become those of the options' system, or of the drawing's own one; without a system
/// where neither is known. A problem where nothing but the model has a place.
Result<GeoLocation> locationOf(const PictureOptions& options, const host::database::DrawingDatabase& drawing) {
  const bool isModel = options.layout == PictureOptions{}.layout;
  if (!isModel && !options.system.empty())
    return host::problemOf(host::Code::WrongUsage,
                           "--crs: only the model has a place on the Earth, not layout \"" + options.layout + "\"");
  // Coordinates of another system than the drawing's own are those of the plan itself.
  GeoLocation location =
      isModel && options.system.empty() ? host::geometry::geoLocation(drawing).value_or(GeoLocation{}) : GeoLocation{};
  if (!options.system.empty()) location.system = options.system;
  return location;
}

template <class Function>
Result<Function> functionOfImport(const char* name, const char* call) {
  const Result<void*> function = functionOfLibrary("tolmeximport", name, call, "GDAL (Debian's libgdal-dev)");
  if (!function) return function.problem();
  return reinterpret_cast<Function>(*function);
}

}  // namespace

Result<> makeTiff(Picture& picture, const PictureOptions& options, const host::database::DrawingDatabase& drawing) {
  const Result<GeoLocation> location = locationOf(options, drawing);
  if (!location) return location.problem();
  std::string system = location->system;
  if (system.empty() && options.layout == PictureOptions{}.layout) system = systemByCoordinates(picture.drawn);
  const auto function =
      functionOfImport<host::import::GeoTiffFunction>(host::import::kGeoTiffFunction, "a picture in TIFF");
  if (!function) return function.problem();
  std::optional<Result<std::string>> answer;
  (*function)(picture.bytes, placeOf(picture, *location, system), answer);
  if (!*answer) return answer->problem();
  picture.bytes = std::move(**answer);
  if (system.empty() && !picture.remark)
    picture.remark = host::problemOf(host::Code::PictureNote,
                                     "The TIFF has a place but no coordinate system: neither --crs nor the drawing "
                                     "tells it.");
  return {};
}

Result<std::optional<GeoMeasure>> measureOf(const Picture& picture, const PictureOptions& options,
                                            const host::database::DrawingDatabase& drawing) {
  std::optional<GeoMeasure> measure;
  const Result<GeoLocation> location = locationOf(options, drawing);
  if (!location) return location.problem();
  if (location->system.empty()) return measure;
  const auto function = functionOfImport<host::import::GeoCornersFunction>(host::import::kGeoCornersFunction, "--crs");
  // A drawing's own place is told where that can be done.
  if (!function && options.system.empty()) return measure;
  if (!function) return function.problem();
  const host::import::GeoPlace place = placeOf(picture, *location, location->system);
  std::optional<Result<host::import::GeoCorners>> answer;
  (*function)(place, answer);
  if (!*answer) return answer->problem();
  const auto& [left, top, right, bottom] = place.shown;
  host::import::GeoCorners& corners = **answer;
  measure =
      GeoMeasure{{left, top, right, bottom}, corners.degrees, std::move(corners.code), std::move(corners.definition)};
  return measure;
}

}  // namespace tolmex
