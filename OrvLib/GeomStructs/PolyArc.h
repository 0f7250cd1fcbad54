// Polylines with arcs.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "OrvLib/GeomStructs/PolyLine.h"

namespace OrvLib {

/// A vertex and the bulge of the segment that starts there: the tangent of a quarter of the arc's included angle,
/// positive counter-clockwise seen from above, 0 for a straight segment.
struct ArcVertex {
  Point3d point;
  double bulge = 0;

  constexpr bool operator==(const ArcVertex&) const = default;
};

/// Vertices in order with a closed flag; the last vertex's bulge counts only when closed.
class PolyArc {
 public:
  /// A segment counts as an arc from this magnitude of its bulge on.
  static constexpr double kSmallestBulge = 0.0001;
  /// The most pieces that all arcs of a course are cut into: a damaged number must not fill the memory. The arcs of a
  /// course that would give more keep their ends only (hasTooManyPieces).
  static constexpr int kMostPieces = 50'000;

  PolyArc() = default;
  explicit PolyArc(std::vector<ArcVertex> vertices, bool closed = false);

  const std::vector<ArcVertex>& vertices() const& { return vertices_; }
  std::vector<ArcVertex> vertices() && { return std::move(vertices_); }
  std::size_t size() const { return vertices_.size(); }
  bool isEmpty() const { return vertices_.empty(); }
  bool isClosed() const { return closed_; }
  void append(const ArcVertex& vertex) { vertices_.push_back(vertex); }
  void setClosed(bool closed) { closed_ = closed; }

  /// Number of segments: one per vertex when closed, one less when open.
  std::size_t segmentCount() const;
  bool firstSegmentIsArc() const;

  /// The course as straight pieces, every segment from its first to its last point, joints therefore twice. An arc
  /// gives its ends and, counter-clockwise from the end where it begins in that direction, a point at every further
  /// step of `chordArcLength` units of arc length as long as more than a whole step remains beyond the point. Heights
  /// run linearly along the arc. A `chordArcLength` that is not positive gives the ends only.
  /// Guarantee: the points of the course walked the other way are the same points backwards.
  PolyLine approximated(double chordArcLength) const;
  /// Whether the arcs would give more than kMostPieces pieces of this length, so that `approximated` gives their ends
  /// only.
  bool hasTooManyPieces(double chordArcLength) const;

  bool operator==(const PolyArc&) const = default;

 private:
  std::vector<ArcVertex> vertices_;
  bool closed_ = false;
};

}  // namespace OrvLib
