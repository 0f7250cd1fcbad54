// Values of tags as geometry needs them: what is not a usable number must show, not read as zero.
#pragma once

#include <cmath>
#include <limits>

#include "Database/Record.h"
#include "Text/Text.h"
#include "gepnt3d.h"

namespace host::database {

/// Larger figures are no places in a drawing: "unset" extents are 1e20, damaged ones anything.
constexpr double kLargestCoordinate = 1e15;

/// NaN when the value is not a number a drawing can hold.
inline double coordinate(const Tag& tag) {
  const auto value = text::parseReal(tag.value);
  if (!value || !(std::abs(*value) <= kLargestCoordinate)) return std::numeric_limits<double>::quiet_NaN();
  return *value;
}
inline bool isUsable(const AcGePoint3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

/// Takes the tag when it is the x, y or z of the point with code `base`.
inline bool takePoint(const Tag& tag, int base, AcGePoint3d& p) {
  if (tag.code == base)
    p.x = coordinate(tag);
  else if (tag.code == base + 10)
    p.y = coordinate(tag);
  else if (tag.code == base + 20)
    p.z = coordinate(tag);
  else
    return false;
  return true;
}

/// Takes the tag when it is the number with that code.
inline bool takeReal(const Tag& tag, int code, double& value) {
  if (tag.code != code) return false;
  value = coordinate(tag);
  return true;
}

/// Tags of an entity's own geometry: up to its extended data, and up to an object embedded in it, whose codes mean
/// other things.
class GeometryTags {
 public:
  explicit GeometryTags(TagCursor tags) : tags_(tags) {}
  bool next(Tag& tag) {
    while (tags_.next(tag)) {
      if (tag.code == 101 || tag.code >= 1000) return false;
      if (tag.code == 102) {  // reactors and dictionaries
        inGroup_ = tag.trimmed().substr(0, 1) == "{";
        continue;
      }
      if (!inGroup_) return true;
    }
    return false;
  }

 private:
  TagCursor tags_;
  bool inGroup_ = false;
};

}  // namespace host::database
