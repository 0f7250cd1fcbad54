#include "OrvLib/GeomStructs/PolyLine.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace OrvLib {

PolyLine::PolyLine(Point3dArray points, bool closed) : points_(std::move(points)), closed_(closed) {}

void PolyLine::insertAt(std::size_t index, const Point3d& point) {
  points_.insert(std::next(points_.begin(), static_cast<std::ptrdiff_t>(std::min(index, points_.size()))), point);
}

void PolyLine::removeAt(std::size_t index) {
  if (index < points_.size()) points_.erase(std::next(points_.begin(), static_cast<std::ptrdiff_t>(index)));
}

void PolyLine::removeDuplicates() {
  const auto isRepeated = [](const Point3d& a, const Point3d& b) {
    return std::abs(a.x - b.x) < kDuplicateTolerance && std::abs(a.y - b.y) < kDuplicateTolerance;
  };
  points_.erase(std::unique(points_.begin(), points_.end(), isRepeated), points_.end());
}

void PolyLine::close() {
  if (!points_.empty() && !points_.back().isEqualTo(points_.front())) {
    const Point3d first = points_.front();
    points_.push_back(first);
  }
}

void PolyLine::translate(const Point3d& vector) {
  for (Point3d& point : points_) point = point + vector;
}

PolyLine PolyLine::translated(const Point3d& vector) const {
  PolyLine moved = *this;
  moved.translate(vector);
  return moved;
}

std::size_t PolyLine::segmentCount() const {
  if (points_.size() < 2) return 0;
  return closed_ ? points_.size() : points_.size() - 1;
}

Line PolyLine::segment(std::size_t index) const { return {points_[index], points_[(index + 1) % points_.size()]}; }

}  // namespace OrvLib
