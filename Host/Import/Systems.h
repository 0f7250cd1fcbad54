// Coordinate reference systems by the names that people use, and what goes wrong with them.
#pragma once

#include <ogr_spatialref.h>

#include <optional>
#include <string>

#include "Problems/Problem.h"

namespace host::import {

/// "EPSG:3879", "3879", "GK25", "ETRS-GK25", "TM35FIN" or whatever GDAL takes; one whose unit is the metre.
Result<OGRSpatialReference> systemOfName(const std::string& name);

/// The system of plans for a place given in degrees: the Finnish zone GKn nearest to it, elsewhere UTM.
OGRSpatialReference systemOfPlace(double longitude, double latitude);

/// "EPSG:3879 ETRS89 / GK25FIN".
std::string shownSystem(const OGRSpatialReference& system);

/// The zone n of an ETRS-GKn system.
std::optional<int> zoneOf(const OGRSpatialReference& system);

/// What makes coordinates of a Finnish system out of those that a file holds.
struct AxisFault {
  bool isSwapped = false;     // northing came first
  double missingEasting = 0;  // the zone's millions that were left out
  explicit operator bool() const { return isSwapped || missingEasting != 0; }
};
/// Looks at one point of a source: eastings of GKn have 8 digits, northings 7.
AxisFault axisFaultOf(const OGRSpatialReference& system, double x, double y);

}  // namespace host::import
