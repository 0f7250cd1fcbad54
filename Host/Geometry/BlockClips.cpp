#include "Geometry/BlockClips.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"
#include "Geometry/Transform.h"

namespace host::geometry {
namespace {

using curves::Chain;
using database::coordinate;
using database::isUsable;
using database::Slot;
using database::Tag;
using database::TagCursor;

const Slot* extensionDictionary(const Slot& object) {
  TagCursor tags = object.tags();
  bool isInGroup = false;
  for (Tag tag; tags.next(tag) && tag.code < 1000;) {
    if (tag.code == 102) isInGroup = tag.trimmed() == "{ACAD_XDICTIONARY";
    if (isInGroup && tag.code == 360) return object.database().findHandle(tag.handle());
  }
  return nullptr;
}

/// The living object under a key; null when there is none.
const Slot* entryOf(const Slot* dictionary, std::string_view key) {
  if (dictionary == nullptr || dictionary->isErased()) return nullptr;
  TagCursor tags = dictionary->tags();
  bool isNext = false;
  for (Tag tag; tags.next(tag) && tag.code < 1000;) {
    if (tag.code == 3) isNext = tag.trimmed() == key;
    if (!isNext || (tag.code != 350 && tag.code != 360)) continue;
    const Slot* const found = dictionary->database().findHandle(tag.handle());
    return found == nullptr || found->isErased() ? nullptr : found;
  }
  return nullptr;
}

/// The rows of a 4 x 3 matrix, in the order of the tags.
using Matrix = std::array<double, 12>;

Transform transformOf(const Matrix& m) {
  return {{m[0], m[4], m[8]}, {m[1], m[5], m[9]}, {m[2], m[6], m[10]}, {m[3], m[7], m[11]}};
}

/// Nothing when the map has no inverse.
std::optional<Transform> inverted(const Transform& t) {
  const AcGeVector3d yz = t.y.crossProduct(t.z), zx = t.z.crossProduct(t.x), xy = t.x.crossProduct(t.y);
  const double determinant = t.x.dotProduct(yz);
  if (!(std::abs(determinant) > 1e-18) || !std::isfinite(determinant)) return {};
  const double k = 1 / determinant;
  Transform inverse;
  inverse.x = AcGeVector3d(yz.x, zx.x, xy.x) * k;
  inverse.y = AcGeVector3d(yz.y, zx.y, xy.y) * k;
  inverse.z = AcGeVector3d(yz.z, zx.z, xy.z) * k;
  inverse.origin = AcGePoint3d{} - inverse.vector(t.origin.asVector());
  return inverse;
}

struct FilterTags {
  Chain points;  // in the plane of the clip
  bool isOn = true;
  std::vector<double> matrices;  // of the reference as it was, inverted, then from the world to the clip

  explicit FilterTags(const Slot& filter) {
    TagCursor tags = filter.tags();
    bool isOwn = false, isFrontCut = false;
    for (Tag tag; tags.next(tag) && tag.code < 1000;) {
      if (tag.code == 100) isOwn = tag.trimmed() == "AcDbSpatialFilter";
      if (!isOwn) continue;
      switch (tag.code) {
        case 10:
          points.push_back({coordinate(tag), 0, 0});
          break;
        case 20:
          if (!points.empty()) points.back().y = coordinate(tag);
          break;
        case 71:
          isOn = tag.integer() != 0;
          break;
        case 72:
          isFrontCut = tag.integer() != 0;
          break;
        case 40:
          // The distance of a front plane has the code of the matrices and comes before them.
          if (isFrontCut)
            isFrontCut = false;
          else
            matrices.push_back(coordinate(tag));
          break;
        default:
          break;
      }
    }
  }
};

/// The points of an inverted boundary, which newer writers keep beside the filter.
Chain invertedPoints(const Slot& filter) {
  Chain points;
  const Slot* const record = entryOf(extensionDictionary(filter), "ACAD_XREC_ROUNDTRIP");
  if (record == nullptr) return points;
  TagCursor tags = record->tags();
  bool isInside = false;
  for (Tag tag; tags.next(tag) && tag.code < 1000;) {
    if (tag.code == 102) isInside = tag.trimmed() == "ACAD_INVERTEDCLIP_ROUNDTRIP";
    if (isInside && tag.code == 10) points.push_back({coordinate(tag), 0, 0});
    if (isInside && tag.code == 20 && !points.empty()) points.back().y = coordinate(tag);
  }
  return points;
}

double areaOf(const Chain& ring) {
  double twice = 0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const AcGePoint3d &a = ring[i], &b = ring[(i + 1) % ring.size()];
    twice += (a.x - ring[0].x) * (b.y - ring[0].y) - (b.x - ring[0].x) * (a.y - ring[0].y);
  }
  return std::abs(twice / 2);
}

}  // namespace

std::optional<BlockClip> readBlockClip(const Slot& reference) {
  const Slot* const filter = entryOf(entryOf(extensionDictionary(reference), "ACAD_FILTER"), "SPATIAL");
  if (filter == nullptr || reference.database().typeName(*filter) != "SPATIAL_FILTER") return {};
  FilterTags tags(*filter);
  if (!tags.isOn) return {};
  BlockClip clip;
  if (Chain points = invertedPoints(*filter); points.size() >= 2) {
    clip.isInverted = true;
    tags.points = std::move(points);
  }
  clip.isDamaged = true;
  Chain& ring = tags.points;
  // Two points are the corners of a rectangle.
  if (ring.size() == 2) ring = {ring[0], {ring[1].x, ring[0].y, 0}, ring[1], {ring[0].x, ring[1].y, 0}};
  constexpr std::size_t kNumbers = 12;
  Transform toBlock;
  if (tags.matrices.size() >= kNumbers) {
    Matrix m{};
    std::ranges::copy_n(tags.matrices.begin(), kNumbers, m.begin());
    toBlock = transformOf(m);
  }
  if (tags.matrices.size() >= 2 * kNumbers) {
    Matrix m{};
    std::ranges::copy_n(tags.matrices.begin() + kNumbers, kNumbers, m.begin());
    const auto fromClip = inverted(transformOf(m));
    if (!fromClip) return clip;
    toBlock = toBlock.after(*fromClip);
  }
  if (ring.size() < 3) return clip;
  for (AcGePoint3d& p : ring) {
    p = toBlock.point(p);
    if (!isUsable(p)) return clip;
  }
  if (!(areaOf(ring) > 0)) return clip;
  clip.isDamaged = false;
  clip.ring = std::move(ring);
  return clip;
}

}  // namespace host::geometry
