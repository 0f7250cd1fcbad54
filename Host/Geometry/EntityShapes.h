// Line work of one entity in the coordinates of the block it stands in: the common ground of picks and pictures.
#pragma once

#include <optional>
#include <vector>

#include "Curves/Curve.h"
#include "Database/DrawingDatabase.h"
#include "Geometry/Transform.h"

namespace host::geometry {

using curves::Chain;

/// A connected piece, curves flattened.
struct Wire {
  Chain points;
  bool closed = false;
  bool filled = false;
  /// Points where a linetype starts anew; empty when it runs through, as along a curve.
  std::vector<std::uint32_t> corners;
  /// A polyline with width: rings to fill by the nonzero rule in place of the line. `constantWidth` is its width when
  /// that is the same all along, or 0.
  std::vector<Chain> outline;
  double constantWidth = 0;
};

/// XLINE (both ways) or RAY.
struct InfiniteLine {
  AcGePoint3d base;
  AcGeVector3d direction;
  bool bothWays = false;
};

/// An image or wipeout: its clipped frame.
struct ImageFrame {
  Chain ring;
  bool isWipeout = false;
  // Of an image: the whole of it, without clip.
  AcGePoint3d topLeft;
  AcGeVector3d across, down;     // along its sides
  std::uint64_t definition = 0;  // handle of what names its file
  int fadePercent = 0;
};

struct EntityShape {
  std::vector<Wire> wires;
  std::vector<AcGePoint3d> points;  // POINT
  std::vector<InfiniteLine> infinite;
  std::optional<ImageFrame> image;
};

/// Lines, curves, polylines, faces, meshes, leaders, multilines, viewports' frames. Empty for texts, references,
/// hatches and for what has no drawn shape. Pieces with coordinates that are not finite are left out. `deviation` as in
/// Curves/Curve.h.
EntityShape readShape(const database::Slot& entity, double deviation);

/// False for kinds whose drawn shape is not in their own data, or in none this host can read.
bool hasShape(const database::Slot& entity);

/// Flag (tag 90) of a VIEWPORT that another entity cuts out: it has no frame of its own.
constexpr std::int64_t kClippedViewport = 0x10000;

/// True for the VIEWPORT that is the view of a layout's sheet itself and no window in it.
bool isSheetViewport(const database::Slot& viewport);

}  // namespace host::geometry
