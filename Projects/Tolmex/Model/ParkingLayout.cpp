#include "Tolmex/Model/ParkingLayout.h"

#include <cmath>
#include <numbers>

namespace OrvLib {

bool ParkingRow::hasUsableCount() const { return baseLine.length() / width <= kMostPlaces; }

std::vector<Line> stallLines(const ParkingRow& row) {
  const double direction = row.baseLine.planAngle();
  const double placeAngle = direction + row.angleDegrees / 360 * 2 * std::numbers::pi;
  const Point3d along{std::cos(direction), std::sin(direction), 0};
  const double rowLength = row.baseLine.length();
  std::vector<Line> lines;
  // Added up rather than multiplied: the rounding decides whether a row counts as exactly filled.
  for (double distance = 0; rowLength > distance; distance += row.width) {
    lines.push_back(Line::fromAngle(row.baseLine.start + along * distance, placeAngle, row.length));
  }
  return lines;
}

}  // namespace OrvLib
