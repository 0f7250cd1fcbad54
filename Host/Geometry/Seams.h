// Areas with holes as single rings: each hole is tied to the outer ring by a seam, two points there and back.
#pragma once

#include <vector>

#include "Curves/Plane.h"

namespace host::geometry {

struct HoledArea {
  curves::Polygon outer;
  std::vector<curves::Polygon> holes;
};

/// One ring around the area, the outer boundary counter-clockwise, the holes clockwise. Each hole's seam starts at its
/// corner that lies farthest in `direction`, not zero, and runs that way to the next boundary; so all seams are
/// parallel to it. Bounds the same area by the even-odd rule. Points that were given keep their bits.
curves::Polygon joinHoles(const HoledArea& area, curves::Point2 direction);

/// The area of such a ring: pieces that two equal points in both directions enclose are holes. The foot of a seam goes
/// when it lies within a millionth of a unit of the straight line between its neighbours. A ring without seams is its
/// own outer ring.
HoledArea splitSeams(const curves::Polygon& ring);

/// Twice the area, positive counter-clockwise; computed near the ring, since coordinates may be millions.
double signedArea(const curves::Polygon& ring);

}  // namespace host::geometry
