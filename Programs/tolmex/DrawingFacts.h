// What `tolmex info` tells of any drawing, illustrated or not: where it lies, what it consists of and what it needs.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Geometry/EntityPaths.h"

namespace tolmex {

/// Entities of one kind on a layer.
struct KindCount {
  std::size_t count = 0;
  std::optional<std::size_t> closed;  // of lines that may be
};

/// A layer, with the entities of the model and of the papers.
struct LayerFacts {
  std::string name;
  int color = 7;
  bool isOff = false, isFrozen = false, isLocked = false, isPlotted = true;
  std::map<std::string, KindCount> kinds;  // by DXF type
};

struct TextFacts {
  std::uint64_t handle = 0;
  std::string type, layer, text;  // lines of the text are parted by line feeds
};

struct ImageFacts {
  std::uint64_t handle = 0;
  std::string file;      // as the drawing names it
  bool isThere = false;  // as a file, where pictures look for it
};

struct BlockFacts {
  std::string name, file;    // the latter of an external reference
  std::size_t entities = 0;  // that it consists of
  std::size_t uses = 0;      // references to it, in other blocks too
};

struct LayoutFacts {
  std::string name;
  std::size_t entities = 0;
  double widthMm = 0, heightMm = 0;  // of its paper, as it shows it; 0: none was chosen
};

struct DrawingFacts {
  host::geometry::Box extents;  // of what shows in the model; empty without anything
  std::string unit;             // "metre"; empty: none is told
  double metresPerUnit = 1;
  std::string system;            // "EPSG:3879", or as the drawing names it; empty: not known
  bool isSystemGuessed = false;  // by the coordinates
  std::vector<LayerFacts> layers;
  std::vector<TextFacts> texts;
  std::vector<ImageFacts> images;
  std::vector<BlockFacts> blocks;
  std::vector<LayoutFacts> layouts;
};

/// `folder`: that of the drawing's file, where its images are looked for.
DrawingFacts drawingFacts(const host::database::DrawingDatabase& drawing, const std::string& folder);

}  // namespace tolmex
