// Map features read, reprojected and sorted by what is to be made of them.
#pragma once

#include <ogrsf_frmts.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Curves/Plane.h"
#include "Import/Import.h"
#include "Import/Ridges.h"
#include "Import/Rules.h"

namespace host::import {

struct Area {
  std::unique_ptr<OGRPolygon> shape;
  std::optional<Roof> roof;  // of buildings
};

/// What is made in one go: one layer of the plan, one part of the script.
struct Batch {
  const Element* element = nullptr;
  std::map<std::string, std::string> values;  // by name, as in {floors}
  std::string layer;
  std::vector<Area> areas;
  std::vector<std::vector<curves::Point2>> lines;
  std::vector<curves::Point2> points;
};

struct Features {
  std::vector<Batch> batches;  // in the order of the script
  std::vector<std::string> report, warnings;
  std::string system;  // "EPSG:3879 ETRS89 / GK25FIN"
};

/// Reads all sources. Geometries come valid, thinned and clipped, areas of a layer that touch as one.
Result<Features> readFeatures(const ImportCall& call, const ElementTable& table, const Rules& rules);

}  // namespace host::import
