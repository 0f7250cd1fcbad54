// What was read, as entities of a drawing and as the script that illustrates them.
#pragma once

#include <cstdint>

#include "Import/Features.h"

namespace host::import {

/// A ridge line that was drawn: handles of the line and of its building, metres over the eaves.
struct DrawnRidge {
  std::uint64_t line = 0, building = 0;
  double height = 0;
};
struct DrawnPlan {
  curves::Box box;  // around all
  std::vector<DrawnRidge> ridges;
};
/// Adds layers and entities to an empty drawing; areas with holes become rings whose seams are parallel to `shadow`.
/// `ridge` is the element of ridge lines, null for none.
DrawnPlan drawFeatures(const Features& features, double shadowDegrees, const Element* ridge, AcDbDatabase& drawing);

struct ScriptValues {
  double shadowDegrees = 45, shadowLength = 3;
  std::string symbols;  // empty: points are left out
  std::string head;     // the first comment
  std::vector<DrawnRidge> ridges;
};
/// Points are left out, and counted in the features' warnings, where there are no symbols.
std::string scriptOf(Features& features, const ElementTable& table, const ScriptValues& values);

}  // namespace host::import
