// Where the lines of a row of parking places run.
#pragma once

#include <optional>
#include <vector>

#include "OrvLib/GeomEnts/Line.h"

namespace OrvLib {

/// A row of places along a base line; drawing units.
struct ParkingRow {
  static constexpr double kDefaultAngleDegrees = 90;
  static constexpr double kDefaultWidth = 2.5;
  static constexpr double kDefaultLength = 5;
  static constexpr int kMostPlaces = 100000;

  Line baseLine;
  double angleDegrees = kDefaultAngleDegrees;  // of the places, counter-clockwise from the base line's direction
  double width = kDefaultWidth;                // of one place along the base line
  double length = kDefaultLength;              // of the stall lines

  bool hasUsableWidth() const { return width > 0; }
  /// Whether the row has at most kMostPlaces places; false for numbers that are not finite.
  bool hasUsableCount() const;
};

/// One line per place, at the distances 0, w, 2 w … below the base line's length: a row that the places fill exactly
/// stays open at its far end. The row must have a usable width and count.
std::vector<Line> stallLines(const ParkingRow& row);

}  // namespace OrvLib
