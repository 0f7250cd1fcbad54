// Handles written at the outlines of a plan: scripts name entities by them.
#pragma once

#include <string>

#include "Picture/EntityPainter.h"
#include "Picture/PageLayout.h"

namespace host::picture {

/// Writes the handle of every line that shows, on layers whose names match the pattern (UTF-8), at the middle of its
/// longest piece, on a ground of its own.
void labelHandles(const database::DrawingDatabase& db, const database::BlockContents& block, const std::string& layers,
                  const PageLayout& layout, EntityPainter& painter);

}  // namespace host::picture
