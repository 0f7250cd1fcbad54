#include "Picture/Painting/Clipping.h"

namespace host::picture {

using geometry::Box;
using geometry::Point;

bool clipSegment(const Box& box, Point& a, Point& b) {
  double t0 = 0, t1 = 1;
  const double dx = b.x - a.x, dy = b.y - a.y;
  const auto cut = [&](double p, double q) {
    if (p == 0) return q >= 0;
    const double t = q / p;
    if (p < 0) {
      if (t > t1) return false;
      if (t > t0) t0 = t;
    } else {
      if (t < t0) return false;
      if (t < t1) t1 = t;
    }
    return true;
  };
  if (!cut(-dx, a.x - box.minX) || !cut(dx, box.maxX - a.x) || !cut(-dy, a.y - box.minY) || !cut(dy, box.maxY - a.y))
    return false;
  const Point from = a;
  if (t0 > 0) a = {from.x + t0 * dx, from.y + t0 * dy};
  if (t1 < 1) b = {from.x + t1 * dx, from.y + t1 * dy};
  return true;
}

namespace {

/// Keeps the side where inside(p) holds; cross(a, b) is the point where the segment meets the line.
template <class Inside, class Cross>
void cutSide(const std::vector<Point>& in, std::vector<Point>& out, const Inside& inside, const Cross& cross) {
  out.clear();
  if (in.empty()) return;
  Point before = in.back();
  bool wasInside = inside(before);
  for (const Point p : in) {
    const bool isInside = inside(p);
    if (isInside != wasInside) out.push_back(cross(before, p));
    if (isInside) out.push_back(p);
    before = p;
    wasInside = isInside;
  }
}

}  // namespace

void clipPolygon(const Box& box, const std::vector<Point>& ring, std::vector<Point>& out, std::vector<Point>& scratch) {
  const auto atX = [](double x) {
    return [x](Point a, Point b) { return Point{x, a.y + (b.y - a.y) * ((x - a.x) / (b.x - a.x))}; };
  };
  const auto atY = [](double y) {
    return [y](Point a, Point b) { return Point{a.x + (b.x - a.x) * ((y - a.y) / (b.y - a.y)), y}; };
  };
  cutSide(
      ring, scratch, [&](Point p) { return p.x >= box.minX; }, atX(box.minX));
  cutSide(
      scratch, out, [&](Point p) { return p.x <= box.maxX; }, atX(box.maxX));
  cutSide(
      out, scratch, [&](Point p) { return p.y >= box.minY; }, atY(box.minY));
  cutSide(
      scratch, out, [&](Point p) { return p.y <= box.maxY; }, atY(box.maxY));
}

}  // namespace host::picture
