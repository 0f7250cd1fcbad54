#include "GeoReference.h"

#include <cmath>

#include "Geometry/GeoLocation.h"
#include "Import/GeoPicture.h"
#include "LateLibrary.h"

namespace tolmex {

using host::Result;
using host::geometry::Box;
using host::geometry::GeoLocation;
using host::picture::Picture;
using host::picture::PictureFormat;
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

Result<> giveItsPlace(Picture& picture, PictureFormat format, const PictureOptions& options,
                      const host::database::DrawingDatabase& drawing) {
  const bool isTiff = format == PictureFormat::Tiff;
  if (!isTiff && format != PictureFormat::Pdf) return {};
  const bool isModel = options.layout == PictureOptions{}.layout;
  if (!isModel && !options.system.empty())
    return host::problemOf(host::Code::WrongUsage,
                           "--crs: only the model has a place on the Earth, not layout \"" + options.layout + "\"");
  // Coordinates of another system than the drawing's own are those of the plan itself.
  GeoLocation location = isModel ? host::geometry::geoLocation(drawing).value_or(GeoLocation{}) : GeoLocation{};
  if (!options.system.empty()) {
    location = {};
    location.system = options.system;
  }
  std::string system = location.system;
  if (system.empty() && isTiff && isModel) system = systemByCoordinates(picture.drawn);
  if (system.empty() && !isTiff) return {};
  const Result<void*> function =
      functionOfLibrary("tolmeximport", isTiff ? host::import::kGeoTiffFunction : host::import::kGeoPdfFunction,
                        isTiff ? "a picture in TIFF" : "--crs", "GDAL (Debian's libgdal-dev)");
  if (!function) return !isTiff && options.system.empty() ? Result<>() : function.problem();
  std::optional<Result<std::string>> answer;
  reinterpret_cast<host::import::GeoreferenceFunction> (*function)(picture.bytes, placeOf(picture, location, system),
                                                                   answer);
  if (!*answer) return answer->problem();
  picture.bytes = std::move(**answer);
  if (system.empty() && !picture.remark)
    picture.remark = host::problemOf(host::Code::PictureNote,
                                     "The TIFF has a place but no coordinate system: neither --crs nor the drawing "
                                     "tells it.");
  return {};
}

}  // namespace tolmex
