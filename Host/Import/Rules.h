// Rules files, which say what becomes of map features, and the plug-in's table of what can be made.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Problems/Problem.h"

namespace host::import {

enum class Shape { Area, Line, Point };

/// A thing that can be made: where its lines go and what the script says to make it.
struct Element {
  std::string name;
  Shape shape = Shape::Area;
  std::string layer;               // may hold {floors}, {height}, {size}
  std::string title;               // of its part of the script; may hold them too
  std::vector<std::string> lines;  // of the script; may hold {layer} and the values of the layer's name, {points}
  std::vector<std::string> each;   // the same for every ridge: {ridge} and {building} are handles, {height} metres
  int fill = 0;                    // colour of a plain hatch that is drawn at once; 0: none
  int color = 0;                   // colour of the layer; 0: as the host makes it
  bool keepsWhole = false;         // is not clipped at the window's border
  bool mayMerge = true;            // areas of one layer that touch become one
};

/// The element of ridge lines over buildings; a table without it has none.
inline constexpr const char* kRidgeElement = "ridge";

/// The elements in the order of the script: what comes first lies below.
struct ElementTable {
  std::vector<Element> elements;
  std::vector<std::string> before, after;              // lines of the script around them
  std::vector<std::string> beforePoints, afterPoints;  // around those of symbols
  /// Classes of sizes of points: {size} and {button} of the first whose limit is not exceeded.
  struct SizeClass {
    double most = 0;
    std::string size, button;
  };
  std::vector<SizeClass> sizes;
  std::map<std::string, std::string> defaults;  // values by name, such as eaves
  const Element* find(std::string_view name) const;
};
Result<ElementTable> readElements(const std::filesystem::path& file);

struct Rule {
  std::string where;  // conditions, see `holds`
  std::string layer;  // of the source: a pattern; empty: any
  std::string make;   // an element's name; empty: features are left out without a word
  std::vector<std::string> width, floors, height, size, direction;  // ways to values
  bool isPart = false;                                              // of a building whose outline is a feature, too
  std::vector<std::string> bottom;                                  // ways to how far it begins above the ground
  double every = 0;  // of lines that become points: metres from one to the next
};

struct AreaFloors {
  double below = 0;  // square metres; 0: no limit
  double floors = 1;
};

/// Which attributes tell of roofs with ridges. Without `shape` nothing is asked.
struct RoofRules {
  std::string shape;                       // an attribute
  std::string gabled, hipped;              // patterns of its values
  std::vector<std::string> height, angle;  // ways to values: metres over the eaves, degrees
  std::string direction;                   // an attribute: where a slope looks, as "NE" or degrees
  std::string across;                      // a condition: the ridge runs along the shorter side
};

struct Rules {
  std::string name, credit;
  std::string system;                                       // of sources that do not tell; empty: they must
  std::string keyColumn, valueColumn;                       // features that keep one tag as a pair of columns
  double floorHeight = 3.0;                                 // metres: floors = height / floor height
  double shadowDegrees = 45;                                // where shadows fall
  double shadowLength = 3.0;                                // metres for each floor
  std::vector<std::string> floors, height;                  // ways to values, of all buildings
  std::string use;                                          // attributes of `floorsByUse`, divided by |
  std::vector<std::pair<std::string, double>> floorsByUse;  // pattern, floors
  std::vector<AreaFloors> floorsByArea;
  RoofRules roof;
  std::vector<Rule> rules;  // the first that fits is taken
};
Result<Rules> readRules(const std::filesystem::path& file, const ElementTable& elements);

}  // namespace host::import
