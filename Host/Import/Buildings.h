// Buildings among one another: outlines and their parts, buildings within buildings.
#pragma once

#include <ogr_geometry.h>

#include <memory>
#include <optional>
#include <vector>

#include "Import/Ridges.h"
#include "Import/Rules.h"
#include "Import/Tally.h"

namespace host::import {

/// The least of an area that is worth drawing: 2 square metres, 0.3 metres wide on an average.
inline constexpr double kLeastArea = 2;
inline constexpr double kLeastWidth = 0.3;
bool isSliver(const OGRPolygon& polygon);

/// Calls `take` with every polygon in a geometry.
template <class Take>
void forEachPolygon(const OGRGeometry& geometry, const Take& take) {
  const OGRwkbGeometryType type = wkbFlatten(geometry.getGeometryType());
  if (type == wkbPolygon) {
    take(*geometry.toPolygon());
  } else if (OGR_GT_IsSubClassOf(type, wkbGeometryCollection) != FALSE) {
    for (const OGRGeometry* part : *geometry.toGeometryCollection()) forEachPolygon(*part, take);
  }
}

struct Building {
  std::unique_ptr<OGRPolygon> shape;
  const Element* element = nullptr;
  double floors = 1;
  bool hasFloors = false;  // floors or a height were told, not guessed
  bool isPart = false;     // of an outline that is a building, too
  std::optional<Roof> roof;
};

/// Leaves every place of the ground to one building, for two would cast two shadows:
/// - parts with floors of their own take their places from the outline they lie in; what is left of it is drawn with
///   its own floors when it is a tenth of it or more. Of parts over one another the highest counts. Parts without
///   floors say nothing that the outline does not, and go.
/// - of buildings that lie in others the outer ones stay.
/// `leftOut` and `done` hear how many.
void sortOut(std::vector<Building>& buildings, Tally& leftOut, Tally& done);

}  // namespace host::import
