// What `tolmex info` finds in a drawing.
#pragma once

#include <filesystem>

#include "BuildingInfo.h"
#include "DrawingFacts.h"
#include "Picture/FontsUsed.h"
#include "Tolmex/Model/Catalogue.h"

namespace tolmex {

/// A line of the illustration picture. Lengths in drawing units (metres), areas in their squares.
struct ElementInfo {
  std::uint64_t handle = 0;
  std::string type, layer;            // DXF type and layer name
  std::optional<double> area;         // of a closed line
  double length = 0;                  // of the line
  std::optional<std::uint64_t> fill;  // its hatch, where that is in the drawing
  std::string height;                 // as stored; empty for none
};

struct LayerColor {
  std::string layer;
  int color = 7;
  bool isOff = false;
};

struct DrawingInfo {
  int version = 0;  // 1027
  std::size_t entities = 0, layers = 0;
  std::array<std::vector<ElementInfo>, OrvLib::kCategoryCount> elements;
  std::size_t parkingRows = 0;
  std::vector<BuildingValues> buildings;
  std::optional<ShadowValues> shadows;
  std::vector<LayerColor> colors;                     // of fill layers that are there
  std::vector<host::picture::FontUse> fonts;          // of texts, when asked for
  std::vector<host::database::Problem> fileProblems;  // met while reading
  std::vector<host::database::Problem> problems;      // in what the elements say; the texts name the handles too
};

/// `measures`: areas and lengths are wanted too.
DrawingInfo lookThrough(AcDbDatabase& database, bool measures);

/// A drawing as one JSON object, as docs/info-json.md describes it.
std::string drawingJson(const std::string& file, const DrawingInfo& info, const DrawingFacts& facts);
std::string failedDrawingJson(const std::string& file, int status, const std::string& error, std::string_view code);
/// The document around the drawings' objects.
std::string documentJson(const std::vector<std::string>& drawings);

}  // namespace tolmex
