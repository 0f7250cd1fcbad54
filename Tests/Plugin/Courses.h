// Courses of polylines as texts, and walked the other way.
#pragma once

#include <charconv>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

#include "OrvLib/GeomStructs/PolyArc.h"

namespace OrvLib {

inline void appendNumber(std::string& text, double value) {
  char digits[32];
  text.append(std::begin(digits), std::to_chars(std::begin(digits), std::end(digits), value).ptr);
}

inline bool takeNumber(std::string_view& text, double& value) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
  return true;
}

inline bool takeText(std::string_view& text, std::string_view expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(expected.size());
  return true;
}

/// "x,y[,z][ b=bulge]; …", " closed" at the end. Numbers read back exactly.
inline std::string textOf(const PolyArc& course) {
  std::string text;
  for (const ArcVertex& vertex : course.vertices()) {
    if (!text.empty()) text += "; ";
    appendNumber(text, vertex.point.x);
    text += ',';
    appendNumber(text, vertex.point.y);
    if (vertex.point.z != 0) {
      text += ',';
      appendNumber(text, vertex.point.z);
    }
    if (vertex.bulge != 0) {
      text += " b=";
      appendNumber(text, vertex.bulge);
    }
  }
  if (course.isClosed()) text += " closed";
  return text;
}

/// Reads that form; an empty course when it is not one.
inline PolyArc courseOf(std::string_view text) {
  PolyArc read;
  while (!text.empty()) {
    ArcVertex vertex;
    if (!takeNumber(text, vertex.point.x) || !takeText(text, ",") || !takeNumber(text, vertex.point.y)) return {};
    if (takeText(text, ",") && !takeNumber(text, vertex.point.z)) return {};
    if (takeText(text, " b=") && !takeNumber(text, vertex.bulge)) return {};
    read.append(vertex);
    if (text == " closed") {
      read.setClosed(true);
      return read;
    }
    if (!text.empty() && (!takeText(text, "; ") || text.empty())) return {};
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
