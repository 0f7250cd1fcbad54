// Where a drawing lies on the Earth, by its GEODATA object.
#pragma once

#include <optional>
#include <string>

#include "Curves/Plane.h"
#include "Database/DrawingDatabase.h"

namespace host::geometry {

struct GeoLocation {
  std::string system;  // "EPSG:3879"; empty where the definition names no code, or the location is in degrees
  /// A point of the drawing in that system: `x` and `y` are what one unit along the drawing's axes is there.
  curves::Point2 origin, x{1, 0}, y{0, 1};
  curves::Point2 place(curves::Point2 p) const {
    return {origin.x + p.x * x.x + p.y * y.x, origin.y + p.x * x.y + p.y * y.y};
  }
  /// Coordinates of the drawing are those of the system.
  bool isPlain() const { return origin.x == 0 && origin.y == 0 && x.x == 1 && x.y == 0 && y.x == 0 && y.y == 1; }
};

/// Nothing for a drawing without such an object. Groups as in the DXF reference of 2010 and later: 70 the kind of
/// coordinates, 10 the design point, 11 the reference point, 40 metres of a unit, 12 the north direction, 301 and 303
/// the coordinate system's definition as XML.
std::optional<GeoLocation> geoLocation(const database::DrawingDatabase& drawing);

/// The EPSG code in such a definition; empty when it names none for the coordinate system itself.
std::string systemOfDefinition(std::string_view xml);

}  // namespace host::geometry
