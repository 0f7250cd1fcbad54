// Ridge lines of roofs that map data describe in words.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "Curves/Plane.h"
#include "Import/Rules.h"
#include "Import/Values.h"

namespace host::import {

/// A roof with a ridge.
struct Roof {
  enum class Form { Gabled, Hipped };
  Form form = Form::Gabled;
  std::optional<double> height;         // of the ridge over the eaves, metres
  double slopeDegrees = 27;             // gives the height where that is not told
  std::optional<double> facingDegrees;  // where a slope looks, clockwise from north
  bool isAcross = false;                // the ridge runs along the shorter side
};

/// What a feature says of its roof; nothing for one without a ridge.
std::optional<Roof> roofOf(const RoofRules& rules, const Attributes& attributes);

struct Ridge {
  curves::Point2 begin, end;
  double height = 0;  // metres over the eaves, rounded to 0.1
};
/// The ridge over an outline (a ring, its first point not repeated): along the middle of the smallest rectangle around
/// it, on the longer axis unless the roof says otherwise, as far as it lies over the outline. The ends of a hipped roof
/// are half of the width inside. Nothing where the middle does not lie over the outline.
std::optional<Ridge> ridgeOver(const curves::Polygon& outline, const Roof& roof);

}  // namespace host::import
