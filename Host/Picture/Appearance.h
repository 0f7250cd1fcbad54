// Colour, linetype, lineweight and transparency of entities: own, by layer, by block.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Geometry/Layers.h"
#include "Hatching/Linetypes.h"
#include "Picture/DisplayList.h"
#include "Picture/Picture.h"

namespace host::picture {

/// A linetype: dashes, and what stands between them.
struct LinePattern {
  struct Mark : hatching::LinetypeMark {
    std::wstring contents;
    double height = 1;
  };
  std::vector<double> dashes;
  std::vector<Mark> marks;
};

/// What an entity is drawn with, before options of the picture apply.
struct Appearance {
  bool isInk = true;      // colour 7: black or white, whichever stands out
  std::uint32_t rgb = 0;  // when not
  std::uint8_t alpha = 255;
  double lineweightMm = 0.25;
  int index = 7;                        // of the palette; 0: a colour of its own, which no pen changes
  const LinePattern* dashes = nullptr;  // null: unbroken; lengths before linetype scales
  bool hasPlotDashes = false;           // the lengths are millimetres of the paper
  double linetypeScale = 1;
};

/// What the content of a block takes from the reference to it.
struct Surroundings {
  std::uint32_t layer = 0;  // stands in for layer "0"; 0 outside blocks
  Appearance appearance;    // of what is "by block"
};

class Appearances {
 public:
  /// `keepsRoles`: ink and background stay what they are, for a background that is chosen later.
  Appearances(const database::DrawingDatabase& db, const PictureOptions& options, bool keepsRoles = false);

  /// Layer that decides, inside blocks.
  std::uint32_t effectiveLayer(const database::Slot& entity, const Surroundings& surroundings);
  /// False on layers that are off (references only when frozen: what they show may lie on other layers), frozen, left
  /// out by the options, or, in pictures, not plotted.
  bool isShown(const database::Slot& entity, std::uint32_t effectiveLayer);
  bool isFrozen(std::uint32_t effectiveLayer) { return choice(effectiveLayer).frozen; }
  /// It would show if its layer were plotted. Not said of the layer that is never plotted.
  bool isUnplotted(std::uint32_t effectiveLayer) { return choice(effectiveLayer).unplotted; }
  Appearance resolve(const database::EntityProperties& own, std::uint32_t effectiveLayer,
                     const Surroundings& surroundings);
  /// Layers hidden in the viewport that is being drawn, as layer indices.
  void setViewportFrozen(std::vector<std::uint32_t> layers) { viewportFrozen_ = std::move(layers); }

  /// As the pen of its colour says it, when the picture is plotted with plot styles.
  Appearance plotted(const Appearance& appearance) const;
  /// The colour after pen and the picture's colour mode.
  Color color(const Appearance& appearance) const;
  /// The same of an area: in a picture of one colour a light tone, unless the area itself is ink.
  Color fillColor(const Appearance& appearance) const;
  Color color(int index, std::int64_t trueColor, const Appearance& otherwise) const;
  /// `otherwise` in another colour, when one of them is given.
  static Appearance withColor(int index, std::int64_t trueColor, const Appearance& otherwise);
  Color background() const;
  double globalLinetypeScale() const { return linetypeScale_; }

 private:
  struct LayerChoice {
    bool shown = true, frozen = false, unplotted = false;
  };
  const LayerChoice& choice(std::uint32_t layer);
  const LinePattern* dashes(std::string_view linetype);
  /// Height a text style gives its texts, 1 when it leaves it to them.
  double fixedHeight(std::uint64_t style) const;
  static void setIndexColor(Appearance& appearance, int index);
  Color ofMode(std::uint32_t rgb, std::uint8_t alpha) const;
  bool isOnDark() const;

  const database::DrawingDatabase& db_;
  const PictureOptions& options_;
  geometry::LayerStates layers_;
  std::unordered_map<std::uint32_t, LayerChoice> choices_;
  std::map<std::string, LinePattern, std::less<>> linetypes_;
  std::vector<std::uint32_t> viewportFrozen_;
  std::wstring pattern_;
  double linetypeScale_ = 1;
  bool keepsRoles_ = false;
};

}  // namespace host::picture
