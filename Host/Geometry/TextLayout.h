// Texts of drawings laid out: which characters stand where, for painters and for boxes.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Geometry/Transform.h"
#include "Geometry/Typefaces.h"

namespace host::geometry {

/// Advance of a text of height 1 (height of capitals) and width factor 1.
using TextWidth = std::function<double(std::wstring_view text, Face face)>;
/// A mean width, for boxes where no font is at hand.
double meanTextWidth(std::wstring_view text, Face face);

/// Characters of one form in a row. Text coordinates: x along the line, y up, capitals `height` tall above y.
struct TextRun {
  std::wstring text;
  double x = 0, y = 0;  // start on the base line
  double width = 0;
  double height = 0;
  double widthFactor = 1;
  double obliqueRad = 0;
  double tracking = 1;  // factor of the advance
  Face face;
  int color = -1;               // colour index, -1 the entity's
  std::int64_t trueColor = -1;  // 0xRRGGBB, or -1
};

/// A line that belongs to a text: underline, fraction bar.
struct TextRule {
  Point from, to;
  int color = -1;
  std::int64_t trueColor = -1;
};

struct TextBlock {
  Transform frame;  // text coordinates to those of the block the entity stands in
  std::vector<TextRun> runs;
  std::vector<TextRule> rules;
  Box box;              // text coordinates
  bool masked = false;  // a filled box behind the text
  Box mask;
  int maskColor = -1;  // -1: the background
  std::int64_t maskTrueColor = -1;
};

/// Lays out TEXT, MTEXT, ATTRIB or ATTDEF (its tag name). Nothing for other entities, an empty text, or a text without
/// a usable place or height.
/// `contents`: shown in place of an attribute's own text, as it is; in a fitted one it is made narrower where it is too
/// long, but never wider.
std::optional<TextBlock> layoutText(const database::Slot& entity, const TextWidth& width,
                                    const std::wstring* contents = nullptr);

/// One line from its base point, for what carries a text inside.
struct LineParts {
  std::wstring text;
  AcGePoint3d position;
  AcGeVector3d direction{1, 0, 0}, normal{0, 0, 1};
  double height = 0, widthFactor = 1, obliqueRad = 0, tracking = 1;
  bool isRaw = false;  // %% stands for itself
  bool isBackwards = false, isUpsideDown = false, isUnderlined = false;
  Face face;
};
std::optional<TextBlock> layoutLine(const LineParts& parts, const TextWidth& width);

/// Multi-line text from its parts, for entities that carry one inside.
struct MTextParts {
  std::wstring contents;
  AcGePoint3d position;
  AcGeVector3d direction{1, 0, 0}, normal{0, 0, 1};
  double height = 0;
  double referenceWidth = 0;  // 0: no wrapping
  int attachment = 1;         // 1 top left ... 9 bottom right
  double lineSpacing = 1;
  bool exactSpacing = false;
  double widthFactor = 1;
  double obliqueRad = 0;
  Face face;
  /// Columns side by side: lines go on in the next one where a column's height is used up. Of one height the last
  /// counts for all that follow; empty: no columns.
  std::vector<double> columnHeights;
  double columnGutter = 0;
};
std::optional<TextBlock> layoutMText(const MTextParts& parts, const TextWidth& width);

}  // namespace host::geometry
