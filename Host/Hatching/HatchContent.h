// The tags of a hatch, taken apart.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Curves/Curve.h"
#include "Database/Record.h"
#include "Hatching/Loops.h"
#include "Hatching/PatternFill.h"
#include "gepnt3d.h"

namespace host::hatching {

/// One piece of a loop that is given by edges.
struct HatchEdge {
  enum class Kind { Line = 1, Arc = 2, Ellipse = 3, Spline = 4 };
  Kind kind = Kind::Line;
  Point2 first, second;               // line: ends; arc: centre; ellipse: centre, end of the major axis from there
  double size = 0;                    // arc: radius; ellipse: minor to major
  double startDeg = 0, endDeg = 360;  // clockwise ones count clockwise from +X (the major axis)
  bool isCounterClockwise = true;
  curves::Spline<Point2> spline;
};

struct HatchLoop {
  static constexpr int kPolylineBit = 2;
  int type = 0;                        // tag 92
  bool isDamaged = false;              // fewer parts than promised, or numbers that are not finite
  std::vector<LoopVertex> vertices;    // of a polyline loop
  std::vector<HatchEdge> edges;        // of an edge loop
  std::vector<std::uint64_t> sources;  // handles
  std::string raw;  // its tags as some writer wrote them, without tag 92 and sources; empty for our own

  bool isPolyline() const { return (type & kPolylineBit) != 0; }
};

/// How a gradient's colours run across the area.
struct GradientForm {
  std::string name = "LINEAR";  // upper case: LINEAR, CYLINDER, SPHERICAL, HEMISPHERICAL, CURVED, INV... of these
  double angleRad = 0;
  double shift = 0;               // 0 centred ... 1 moved up and left
  bool isOneColor = false;        // from the first colour to its tint
  double tint = 0;                // 0 black ... 1 white, of one-colour gradients
  std::vector<int> colorIndices;  // of the palette; true colours come before them
};

struct HatchContent {
  double elevation = 0;
  AcGeVector3d normal{0, 0, 1};
  std::string name;  // in the drawing's encoding
  bool isSolid = false;
  bool isAssociative = false;
  int style = 0;
  int type = 1;
  double angleRad = 0;
  double scale = 1;
  bool isDouble = false;
  std::vector<HatchLoop> loops;
  std::vector<PatternLine> pattern;
  std::optional<double> pixelSize;
  std::vector<Point2> seeds;
  std::string tail;  // the other tags of the hatch as they stand: gradient, what newer writers add
  bool isGradient = false;
  std::vector<std::uint32_t> gradientColors;  // 0xRRGGBB
  GradientForm gradientForm;
};

enum class RawLoops { Drop, Keep };

/// Reads any writer's hatch. Counts are only held against what follows.
HatchContent parseHatch(database::TagCursor tags, RawLoops rawLoops);

/// The loop as a polygon in the hatch's plane; empty for a damaged one and for fewer than three points. Edges that run
/// against their neighbours are turned round.
Polygon flatten(const HatchLoop& loop, double deviation);

}  // namespace host::hatching
