#include "Hatching/SelfCrossing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <span>

#include "Curves/Bulges.h"

namespace host::hatching {

namespace {

// Only thousands of pieces on top of each other need more looks: a tangle, which counts as crossing.
constexpr std::size_t kMostLooks = 10'000'000;
constexpr std::size_t kMostLooksPerPiece = 500;
constexpr std::size_t kFew = 16;  // straight pieces that are all compared with each other

struct Piece {
  Point2 from, to;
  bool isArc = false;
  curves::Arc arc;  // meaningful when isArc
};

/// A rectangle in any direction around some pieces.
struct Box {
  Point2 centre, axis;                     // axis: unit length
  double alongHalf = -1, acrossHalf = -1;  // negative: empty

  bool isApartAlong(Point2 direction, const Box& other) const {
    const auto reach = [direction](const Box& box) {
      return box.alongHalf * std::abs(dot(box.axis, direction)) + box.acrossHalf * std::abs(cross(box.axis, direction));
    };
    return std::abs(dot(other.centre - centre, direction)) > reach(*this) + reach(other);
  }
  bool meets(const Box& other) const {
    if (alongHalf < 0 || other.alongHalf < 0) return false;
    return !isApartAlong(axis, other) && !isApartAlong(left(axis), other) && !isApartAlong(other.axis, other) &&
           !isApartAlong(left(other.axis), other);
  }
};

/// Box around a run of pieces, in the direction of the longest: long pieces side by side are told apart whichever way
/// they run, which upright boxes would not do.
Box boxAround(std::span<const Piece> pieces) {
  Box box;
  double longest = -1;
  for (const Piece& piece : pieces) {
    const double chord = distance(piece.from, piece.to);
    if (chord <= longest) continue;
    longest = chord;
    box.axis = chord > 0 ? (piece.to - piece.from) * (1 / chord) : Point2{1, 0};
  }
  Point2 low{INFINITY, INFINITY};  // along and across the axis
  Point2 high{-INFINITY, -INFINITY};
  const auto add = [&](Point2 p, double margin = 0) {
    const Point2 q{dot(p, box.axis), cross(box.axis, p)};
    low = {std::min(low.x, q.x - margin), std::min(low.y, q.y - margin)};
    high = {std::max(high.x, q.x + margin), std::max(high.y, q.y + margin)};
  };
  for (const Piece& piece : pieces) {
    add(piece.from);
    add(piece.to);
    if (!piece.isArc) continue;
    if (std::abs(piece.arc.sweep) > std::numbers::pi) {
      add(piece.arc.centre, piece.arc.radius);
    } else {
      // An arc of at most half a turn lies in the rectangle over its chord.
      const Point2 rise = piece.arc.at(0.5) - (piece.from + piece.to) * 0.5;
      add(piece.from + rise);
      add(piece.to + rise);
    }
  }
  box.centre = box.axis * ((low.x + high.x) / 2) + left(box.axis) * ((low.y + high.y) / 2);
  box.alongHalf = (high.x - low.x) / 2;
  box.acrossHalf = (high.y - low.y) / 2;
  return box;
}

/// Decides for two pieces, with the tolerance of the whole question.
class CrossingTest {
 public:
  explicit CrossingTest(double tolerance) : tolerance_(tolerance) {}

  bool operator()(const Piece& a, const Piece& b) const {
    if (!a.isArc && !b.isArc) return straightCross(a, b);
    // Where the pieces share an end, their other common point is its mirror image: exact where solving for both would
    // find the shared one again a little off.
    int shared = 0;
    Point2 end;
    for (const Point2 p : {a.from, a.to}) {
      for (const Point2 q : {b.from, b.to}) {
        if (distance(p, q) <= tolerance_) {
          ++shared;
          end = p;
        }
      }
    }
    if (shared >= 2) return false;  // circles and lines meet at most twice
    if (!a.isArc) return arcCrossesLine(b, a, shared == 1, end);
    if (!b.isArc) return arcCrossesLine(a, b, shared == 1, end);
    return arcsCross(a, b, shared == 1, end);
  }

 private:
  bool straightCross(const Piece& a, const Piece& b) const {
    return areOnBothSides(a, b.from, b.to) && areOnBothSides(b, a.from, a.to);
  }

  bool areOnBothSides(const Piece& line, Point2 p, Point2 q) const {
    const Point2 direction = line.to - line.from;
    const double reach = tolerance_ * length(direction);
    const double ofP = cross(direction, p - line.from);
    const double ofQ = cross(direction, q - line.from);
    return (ofP > reach && ofQ < -reach) || (ofP < -reach && ofQ > reach);
  }

  bool isInside(const Piece& piece, Point2 p) const {
    if (distance(p, piece.from) <= tolerance_ || distance(p, piece.to) <= tolerance_) return false;
    if (!piece.isArc) {
      const Point2 direction = piece.to - piece.from;
      const double along = dot(direction, p - piece.from);
      return along > 0 && along < dot(direction, direction);
    }
    double turn = std::atan2(p.y - piece.arc.centre.y, p.x - piece.arc.centre.x) - piece.arc.startAngle;
    if (piece.arc.sweep < 0) turn = -turn;
    turn = std::remainder(turn, 2 * std::numbers::pi);
    if (turn < 0) turn += 2 * std::numbers::pi;
    return turn > 0 && turn < std::abs(piece.arc.sweep);
  }

  bool isInsideBoth(const Piece& a, const Piece& b, Point2 p) const { return isInside(a, p) && isInside(b, p); }

  bool arcCrossesLine(const Piece& arc, const Piece& line, bool shareEnd, Point2 end) const {
    const Point2 u = (line.to - line.from) * (1 / length(line.to - line.from));
    const Point2 toCentre = arc.arc.centre - line.from;
    const double aside = std::abs(cross(u, toCentre));
    if (arc.arc.radius - aside <= tolerance_) return false;  // apart, or touching
    if (shareEnd) return isInsideBoth(arc, line, end + u * (2 * dot(arc.arc.centre - end, u)));
    const Point2 foot = line.from + u * dot(toCentre, u);
    const Point2 half = u * std::sqrt((arc.arc.radius - aside) * (arc.arc.radius + aside));
    return isInsideBoth(arc, line, foot + half) || isInsideBoth(arc, line, foot - half);
  }

  bool arcsCross(const Piece& a, const Piece& b, bool shareEnd, Point2 end) const {
    const Point2 between = b.arc.centre - a.arc.centre;
    const double apart = length(between);
    const double ra = a.arc.radius;
    const double rb = b.arc.radius;
    if (ra + rb - apart <= tolerance_ || apart - std::abs(ra - rb) <= tolerance_) return false;
    const Point2 u = between * (1 / apart);
    if (shareEnd) return isInsideBoth(a, b, end - left(u) * (2 * dot(end - a.arc.centre, left(u))));
    const double along = (apart + (ra - rb) * (ra + rb) / apart) / 2;
    const Point2 foot = a.arc.centre + u * along;
    const Point2 half = left(u) * std::sqrt(std::max((ra - along) * (ra + along), 0.0));
    return isInsideBoth(a, b, foot + half) || isInsideBoth(a, b, foot - half);
  }

  double tolerance_;
};

/// The pieces in the order of the loop under a binary tree: neighbours along a loop lie near each other, so runs of
/// them have small boxes, and two runs apart are settled by one look.
class PieceTree {
 public:
  explicit PieceTree(const std::vector<Piece>& pieces) : pieces_(pieces) {
    while (leaves_ < pieces.size()) leaves_ *= 2;
    boxes_.resize(2 * leaves_);
    std::size_t run = leaves_;
    for (std::size_t level = 1; level <= leaves_; level *= 2, run /= 2) {
      for (std::size_t i = 0; i * run < pieces.size(); ++i) {
        const std::size_t count = std::min(run, pieces.size() - i * run);
        boxes_[level + i] = boxAround(std::span(pieces).subspan(i * run, count));
      }
    }
  }

  bool crosses(const CrossingTest& test) {
    looks_ = 0;
    return crossesWithin(1, test);
  }

 private:
  bool isLeaf(std::size_t node) const { return node >= leaves_; }

  bool crossesWithin(std::size_t node, const CrossingTest& test) {
    if (isLeaf(node)) return false;
    return crossesWithin(2 * node, test) || crossesWithin(2 * node + 1, test) ||
           crossesBetween(2 * node, 2 * node + 1, test);
  }

  /// Nodes of one level.
  bool crossesBetween(std::size_t a, std::size_t b, const CrossingTest& test) {
    if (++looks_ > kMostLooks + kMostLooksPerPiece * pieces_.size()) return true;
    if (!boxes_[a].meets(boxes_[b])) return false;
    if (isLeaf(a)) return test(pieces_[a - leaves_], pieces_[b - leaves_]);
    for (const std::size_t p : {2 * a, 2 * a + 1}) {
      for (const std::size_t q : {2 * b, 2 * b + 1}) {
        if (crossesBetween(p, q, test)) return true;
      }
    }
    return false;
  }

  const std::vector<Piece>& pieces_;
  std::size_t looks_ = 0;
  std::size_t leaves_ = 1;
  std::vector<Box> boxes_;
};

}  // namespace

namespace {

/// The same as comparing all straight pieces with each other, for a handful of them. Pieces that share an end never
/// cross: the shared end lies on both of their lines, to the last digit.
bool fewStraightCross(const Loop& loop, double tolerance) {
  const std::size_t n = loop.size();
  const auto at = [&](std::size_t i) { return loop[i < n ? i : 0].point(); };
  std::array<Point2, kFew> direction{};
  for (std::size_t i = 0; i < n; ++i) direction[i] = at(i + 1) - at(i);
  const auto areOnBothSides = [&](std::size_t line, std::size_t piece) {
    const double ofP = cross(direction[line], at(piece) - at(line));
    const double ofQ = cross(direction[line], at(piece + 1) - at(line));
    if (!(ofP > 0 && ofQ < 0) && !(ofP < 0 && ofQ > 0)) return false;
    return std::min(std::abs(ofP), std::abs(ofQ)) > tolerance * length(direction[line]);
  };
  for (std::size_t a = 0; a < n; ++a) {
    for (std::size_t b = a + 2; b < (a == 0 ? n - 1 : n); ++b) {
      if (areOnBothSides(a, b) && areOnBothSides(b, a)) return true;
    }
  }
  return false;
}

}  // namespace

bool crossesItself(const Loop& loop, double tolerance) {
  // A handful of straight pieces is compared sooner than sorted.
  if (loop.size() <= kFew &&
      std::all_of(loop.begin(), loop.end(), [](const LoopVertex& vertex) { return vertex.bulge == 0; })) {
    return fewStraightCross(loop, tolerance);
  }
  // Arcs that rise less than this are taken as straight: their circles are too large to compute with.
  const double leastRise = 10 * tolerance;
  std::vector<Piece> pieces;
  pieces.reserve(loop.size());
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const LoopVertex& next = loop[i + 1 < loop.size() ? i + 1 : 0];
    Piece piece;
    piece.from = loop[i].point();
    piece.to = next.point();
    piece.isArc = distance(piece.from, piece.to) * std::abs(loop[i].bulge) / 2 > leastRise;
    if (piece.isArc) piece.arc = curves::arcOf(piece.from, piece.to, loop[i].bulge);
    pieces.push_back(piece);
  }
  return PieceTree(pieces).crosses(CrossingTest(tolerance));
}

}  // namespace host::hatching
