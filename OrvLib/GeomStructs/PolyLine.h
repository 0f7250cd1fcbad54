// An ordered row of points.
#pragma once

#include <cstddef>
#include <utility>

#include "OrvLib/GeomEnts/Line.h"
#include "OrvLib/GeomStructs/Point3dArray.h"

namespace OrvLib {

/// Points in order with a closed flag. Closed means that a segment runs from the last point back to the first; the
/// points themselves need not repeat the first one. Indices out of range are a fault of the caller unless said
/// otherwise.
class PolyLine {
 public:
  PolyLine() = default;
  explicit PolyLine(Point3dArray points, bool closed = false);

  const Point3dArray& points() const& { return points_; }
  Point3dArray points() && { return std::move(points_); }
  std::size_t size() const { return points_.size(); }
  bool isEmpty() const { return points_.empty(); }
  const Point3d& operator[](std::size_t index) const { return points_[index]; }

  bool isClosed() const { return closed_; }
  void setClosed(bool closed) { closed_ = closed; }

  void append(const Point3d& point) { points_.push_back(point); }
  /// An index past the end appends.
  void insertAt(std::size_t index, const Point3d& point);
  /// An index past the end changes nothing.
  void removeAt(std::size_t index);
  /// Removes points that repeat their predecessor within kDuplicateTolerance in plan; heights are not compared.
  void removeDuplicates();
  /// Appends a copy of the first point when the last one differs from it (kPointTolerance).
  void close();
  void translate(const Point3d& vector);
  PolyLine translated(const Point3d& vector) const;

  /// Number of segments: one per point when closed, one less when open.
  std::size_t segmentCount() const;
  /// From point `index` to the next, wrapping to point 0.
  Line segment(std::size_t index) const;

  bool operator==(const PolyLine&) const = default;

 private:
  Point3dArray points_;
  bool closed_ = false;
};

}  // namespace OrvLib
