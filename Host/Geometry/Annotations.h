// Annotations drawn from their own figures: tolerance frames, dimensions that lost their block.
#pragma once

#include <vector>

#include "Geometry/EntityShapes.h"
#include "Geometry/TextLayout.h"

namespace host::geometry {

struct AnnotationShape {
  std::vector<Wire> wires;
  std::vector<TextBlock> texts;
};

/// The frame of a TOLERANCE: one row of cells for each line of its text.
AnnotationShape readTolerance(const database::Slot& entity, const TextWidth& width);

/// What a dimension measures, for one without a block: extension lines, dimension line or arc with its arrowheads,
/// text.
AnnotationShape readDimension(const database::Slot& entity, double deviation, const TextWidth& width);

}  // namespace host::geometry
