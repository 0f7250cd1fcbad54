#include "Geometry/WideOutline.h"

#include <algorithm>
#include <cmath>

namespace host::geometry {
namespace {

struct Offset {
  AcGePoint3d left, right;
};

AcGeVector3d leftNormal(const AcGePoint3d& from, const AcGePoint3d& to) {
  const AcGeVector3d d = (to - from).normal();
  return {-d.y, d.x, 0};
}

/// Offsets at a corner between two pieces of the same width.
Offset mitre(const AcGePoint3d& p, const AcGeVector3d& before, const AcGeVector3d& after, double width) {
  constexpr double kMitreLimit = 4;  // longer tips are cut, as at a turn back
  const AcGeVector3d sum = before + after;
  const double lengthSquared = sum.dotProduct(sum);
  AcGeVector3d v = after;
  if (lengthSquared > 4 / (kMitreLimit * kMitreLimit)) v = sum * (2 / lengthSquared);
  v = v * (width / 2);
  return {p + v, p - v};
}

}  // namespace

std::vector<Chain> wideOutline(const Chain& given, bool closed, const std::vector<double>& givenWidths) {
  // Pieces without length have no direction; leave them out with their widths.
  Chain points;
  std::vector<double> widths;
  const std::size_t pieces = given.size() < 2 ? 0 : given.size() - (closed ? 0 : 1);
  for (std::size_t i = 0; i < pieces && 2 * i + 1 < givenWidths.size(); ++i) {
    const AcGePoint3d& from = given[i];
    const AcGePoint3d& to = given[(i + 1) % given.size()];
    if (std::hypot(to.x - from.x, to.y - from.y) == 0) continue;
    points.push_back(from);
    widths.push_back(givenWidths[2 * i]);
    widths.push_back(givenWidths[2 * i + 1]);
  }
  const std::size_t count = points.size();
  if (count == 0) return {};
  closed = closed && count > 2;
  if (!closed) points.push_back(given[pieces % given.size()]);

  std::vector<AcGeVector3d> normals(count);
  for (std::size_t i = 0; i < count; ++i) normals[i] = leftNormal(points[i], points[(i + 1) % points.size()]);
  const auto joins = [&](std::size_t before, std::size_t after) {
    const double a = widths[2 * before + 1], b = widths[2 * after];
    return a == b && a > 0;
  };
  std::vector<Chain> rings;
  std::size_t begin = 0;
  if (closed)
    while (begin < count && joins((begin + count - 1) % count, begin)) ++begin;
  if (closed && begin == count) {
    Chain left, right;
    for (std::size_t i = 0; i < count; ++i) {
      const Offset o = mitre(points[i], normals[(i + count - 1) % count], normals[i], widths[2 * i]);
      left.push_back(o.left);
      right.push_back(o.right);
    }
    std::reverse(right.begin(), right.end());
    return {left, right};
  }
  Chain left, right;
  for (std::size_t k = 0; k < count; ++k) {
    const std::size_t i = (begin + k) % count;
    const AcGePoint3d& to = points[(i + 1) % points.size()];
    if (left.empty()) {
      const AcGeVector3d v = normals[i] * (widths[2 * i] / 2);
      left.push_back(points[i] + v);
      right.push_back(points[i] - v);
    }
    const std::size_t next = (i + 1) % count;
    if (k + 1 < count && joins(i, next)) {
      const Offset o = mitre(to, normals[i], normals[next], widths[2 * next]);
      left.push_back(o.left);
      right.push_back(o.right);
      continue;
    }
    const AcGeVector3d v = normals[i] * (widths[2 * i + 1] / 2);
    left.push_back(to + v);
    right.push_back(to - v);
    left.insert(left.end(), right.rbegin(), right.rend());
    if (widths[2 * i] > 0 || widths[2 * i + 1] > 0) rings.push_back(left);
    left.clear();
    right.clear();
  }
  return rings;
}

}  // namespace host::geometry
