#include "Hatching/HatchRecord.h"

#include <utility>

#include "Database/Palette.h"
#include "Hatching/HatchContent.h"

namespace host::hatching {

HatchRecord readHatchRecord(database::TagCursor tags, double deviation) {
  HatchContent content = parseHatch(tags, RawLoops::Drop);
  HatchRecord record;
  record.solid = content.isSolid;
  record.style = content.style;
  record.elevation = content.elevation;
  record.normal = content.normal;
  record.gradient = content.isGradient;
  record.gradientColors = std::move(content.gradientColors);
  record.gradientForm = std::move(content.gradientForm);
  if (record.gradientColors.empty())
    for (const int index : record.gradientForm.colorIndices)
      if (index > 0 && index < 256) record.gradientColors.push_back(database::paletteColor(index));
  if (!content.isSolid) record.pattern = std::move(content.pattern);
  for (const HatchLoop& loop : content.loops) {
    Polygon polygon = flatten(loop, deviation);
    if (polygon.empty()) continue;
    record.loops.push_back(std::move(polygon));
    record.loopTypes.push_back(loop.type);
  }
  return record;
}

}  // namespace host::hatching
