#include "Geometry/PlainText.h"

#include <cmath>

#include "Geometry/TextLayout.h"

namespace host::geometry {
namespace {

using database::DxfType;

/// The text as it is stored: of one without a height, which is not laid out.
std::wstring storedText(const database::Slot& entity) {
  std::wstring text;
  database::TagCursor tags = entity.tags();
  for (database::Tag tag; tags.next(tag);)
    if (tag.code == 1 || (tag.code == 3 && entity.type == DxfType::MText))
      text += entity.database().codec().decode(tag.value);
  return text;
}

}  // namespace

std::wstring plainText(const database::Slot& entity) {
  if (entity.type != DxfType::Text && entity.type != DxfType::MText && entity.type != DxfType::Attrib &&
      entity.type != DxfType::AttDef)
    return {};
  const auto layout = layoutText(entity, meanTextWidth);
  if (!layout) return storedText(entity);
  std::wstring text;
  const TextRun* last = nullptr;
  for (const TextRun& run : layout->runs) {
    // Runs of a line stand on one base line, but for stacked ones, which are lower than the rest.
    if (last != nullptr && std::abs(run.y - last->y) > last->height)
      text += L'\n';
    else if (last != nullptr && run.x > last->x + last->width + last->height / 4)
      text += L' ';
    text += run.text;
    last = &run;
  }
  return text;
}

}  // namespace host::geometry
