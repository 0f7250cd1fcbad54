#include "Geometry/GeoLocation.h"

#include <cmath>

namespace host::geometry {
namespace {

using curves::Point2;

constexpr int kGeographic = 3;  // kind of coordinates: latitude and longitude

/// The text between two marks; empty when one of them is missing.
std::string_view between(std::string_view text, std::string_view before, std::string_view behind) {
  const std::size_t begin = text.find(before);
  if (begin == std::string_view::npos) return {};
  text.remove_prefix(begin + before.size());
  const std::size_t end = text.find(behind);
  return end == std::string_view::npos ? std::string_view() : text.substr(0, end);
}

/// What the groups say.
struct GeoTags {
  std::int64_t kind = 0;
  Point2 design, reference, north{0, 1};
  double unit = 1;
  std::string definition;
};

GeoTags read(const database::Slot& object) {
  GeoTags geo;
  database::Tag tag;
  // In the form of 2009 groups 12 and 22 are points of a mesh: only the first pair may be the north direction.
  bool hasNorth = false;
  for (database::TagCursor tags = object.tags(); tags.next(tag) && tag.code != 1001;) {
    switch (tag.code) {
      case 70:
        geo.kind = tag.integer();
        break;
      case 10:
        geo.design.x = tag.real();
        break;
      case 20:
        geo.design.y = tag.real();
        break;
      case 11:
        geo.reference.x = tag.real();
        break;
      case 21:
        geo.reference.y = tag.real();
        break;
      case 40:
        geo.unit = tag.real();
        break;
      case 12:
        if (!hasNorth) geo.north.x = tag.real();
        break;
      case 22:
        if (!hasNorth) geo.north.y = tag.real();
        hasNorth = true;
        break;
      case 301:
      case 303:
        geo.definition += tag.value;
        break;
      default:
        break;
    }
  }
  return geo;
}

bool isDegrees(Point2 point) { return std::abs(point.x) <= 360 && std::abs(point.y) <= 90; }

}  // namespace

std::string systemOfDefinition(std::string_view xml) {
  // Datum and ellipsoid have codes of their own in aliases of their types.
  for (std::size_t at = 0; (at = xml.find("<Alias ", at)) != std::string_view::npos; ++at) {
    const std::string_view alias = between(xml.substr(at), "<Alias ", "</Alias>");
    const std::string_view head = alias.substr(0, alias.find('>'));
    if (between(head, "type=\"", "\"") != "CoordinateSystem" || alias.find("EPSG Code") == std::string_view::npos)
      continue;
    const std::string_view code = between(head, "id=\"", "\"");
    if (!code.empty() && code.find_first_not_of("0123456789") == std::string_view::npos)
      return "EPSG:" + std::string(code);
  }
  return {};
}

std::optional<GeoLocation> geoLocation(const database::DrawingDatabase& drawing) {
  const database::Slot* object = nullptr;
  drawing.forEachSlot([&](const database::Slot& slot) {
    if (object == nullptr && !slot.isErased() && drawing.typeName(slot) == "GEODATA") object = &slot;
  });
  if (object == nullptr) return std::nullopt;
  const GeoTags geo = read(*object);
  GeoLocation location;
  if (geo.kind == kGeographic) return location;
  location.system = systemOfDefinition(geo.definition);
  const double unit = geo.unit > 0 ? geo.unit : 1;
  const double length = std::hypot(geo.north.x, geo.north.y);
  // North of the drawing becomes north of the system.
  const double cosine = length > 0 ? geo.north.y / length : 1, sine = length > 0 ? geo.north.x / length : 0;
  // A reference point in degrees places nothing in a system of metres: the drawing has its coordinates then.
  const bool isPlaced = !(geo.reference.x == 0 && geo.reference.y == 0) && !isDegrees(geo.reference);
  if (!isPlaced) {
    location.x = {unit, 0};
    location.y = {0, unit};
    return location;
  }
  location.x = {unit * cosine, unit * sine};
  location.y = {-unit * sine, unit * cosine};
  const Point2 design = location.place(geo.design);
  location.origin = {geo.reference.x - design.x, geo.reference.y - design.y};
  return location;
}

}  // namespace host::geometry
