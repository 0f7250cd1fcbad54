#include "Picture/FontsUsed.h"

#include <map>
#include <set>

#include "Geometry/TextLayout.h"
#include "Picture/Glyphs.h"
#include "Text/Text.h"

namespace host::picture {

std::vector<FontUse> fontsUsed(const database::DrawingDatabase& db) {
  std::map<std::string, FontUse> uses;
  GlyphSource glyphs;
  db.forEachSlot([&](const database::Slot& slot) {
    if (slot.isErased()) return;
    const auto block = geometry::layoutText(slot, geometry::meanTextWidth);
    if (!block) return;
    std::set<std::uint16_t> fonts;
    for (const geometry::TextRun& run : block->runs) {
      if (!fonts.insert(run.face.font).second) continue;
      const std::string name = text::toUtf8(geometry::fontName(run.face.font));
      FontUse& use = uses[name];
      if (use.texts++ == 0) use = {name, glyphs.choice({run.face.font}).name, 1};
    }
  });
  std::vector<FontUse> sorted;
  sorted.reserve(uses.size());
  for (auto& [name, use] : uses) sorted.push_back(std::move(use));
  return sorted;
}

}  // namespace host::picture
