// Courses of polylines from texts, and walked the other way.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "OrvLib/GeomStructs/PolyArc.h"

namespace OrvLib {

/// Reads "x,y[,z][ b=bulge]; …", " closed" at the end.
inline PolyArc courseOf(const std::string& text) {
  PolyArc read;
  read.setClosed(text.ends_with(" closed"));
  std::istringstream vertices(text);
  for (std::string one; std::getline(vertices, one, ';');) {
    ArcVertex vertex;
    const std::size_t bulge = one.find("b=");
    std::sscanf(one.c_str(), "%lf,%lf,%lf", &vertex.point.x, &vertex.point.y, &vertex.point.z);
    if (bulge != std::string::npos) vertex.bulge = std::strtod(one.c_str() + bulge + 2, nullptr);
    read.append(vertex);
  }
  return read;
}

inline PolyArc reversed(const PolyArc& course) {
  PolyArc back;
  back.setClosed(course.isClosed());
  const std::size_t n = course.size();
  for (std::size_t i = 0; i < n; ++i) {
    // Going back, the segment that starts at a vertex is the one that ended there.
    const std::size_t at = n - 1 - i;
    back.append({course.vertices()[at].point, -course.vertices()[(at + n - 1) % n].bulge});
  }
  return back;
}

}  // namespace OrvLib
