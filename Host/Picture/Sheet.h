// Sheets: a template drawing around the picture of a plan, with fields, legend, scale bar and north arrow.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Picture/DisplayList.h"
#include "Picture/EntityPainter.h"
#include "Picture/PageLayout.h"

namespace host::picture {

/// A template made ready. Its coordinates are millimetres on the paper.
struct Sheet {
  const database::DrawingDatabase* drawing = nullptr;
  Box paper, frame;  // frame: where the plan goes
  std::optional<Box> legend, scaleBar, northArrow;
  std::vector<std::uint32_t> placeholders;      // layers that say where things go and are not shown
  std::map<std::wstring, std::wstring> fields;  // tags of attributes in capitals, and their texts
  std::wstring scaleField;                      // filled with the scale unless it has a text
  std::wstring northLetter;
  std::vector<LegendRow> rows;
};

/// Tags, in capitals, of the attributes that the template's own space and its references have.
std::vector<std::wstring> fieldsOf(const database::DrawingDatabase& drawing);

/// The plan in the sheet's frame, at the scale of the options or the largest usual one that fits.
Result<PageLayout> layOutSheet(const Box& extents, const PictureOptions& options, PictureFormat format);

/// Everything around the plan, which `plan` has painted with the layout. Answers what the user should know.
std::string paintSheet(const PictureOptions& options, const PageLayout& layout, const View& view, GlyphSource& glyphs,
                       Canvas& canvas, const database::DrawingDatabase& drawing, EntityPainter& plan);

}  // namespace host::picture
