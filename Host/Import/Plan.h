// What was read, as entities of a drawing and as the script that illustrates them.
#pragma once

#include "Import/Features.h"

namespace host::import {

/// Adds layers and entities to an empty drawing; areas with holes become rings whose seams are parallel to `shadow`.
/// Answers the box around all of them.
curves::Box drawFeatures(const Features& features, double shadowDegrees, AcDbDatabase& drawing);

struct ScriptValues {
  double shadowDegrees = 45, shadowLength = 3;
  std::string symbols;  // empty: points are left out
  std::string head;     // the first comment
};
/// Points are left out, and counted in the features' warnings, where there are no symbols.
std::string scriptOf(Features& features, const ElementTable& table, const ScriptValues& values);

}  // namespace host::import
