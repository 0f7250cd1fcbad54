// Where entities can show, told from their tags alone: what a picture of a small window need not lay out.
#pragma once

#include <optional>
#include <unordered_map>

#include "Database/DrawingDatabase.h"
#include "Geometry/EntityPaths.h"

namespace host::picture {

class EntityBounds {
 public:
  explicit EntityBounds(const database::DrawingDatabase& db);

  /// False when nothing of the entity, its pen apart, can show in the box (plan coordinates). Only what is cheap to
  /// tell is told: true for everything else.
  bool mayShowIn(const database::Slot& entity, const geometry::Box& box);

 private:
  /// Of all that a block shows, its own coordinates; nothing when that is not cheap to tell.
  const std::optional<geometry::Box>& blockBox(const database::BlockContents& block);
  bool mayReferenceShowIn(const database::Slot& entity, const geometry::Box& box);

  std::unordered_map<const database::BlockContents*, std::optional<geometry::Box>> blocks_;
  bool hasMarks_ = false;  // linetypes with texts or shapes, which stand beside their lines
};

}  // namespace host::picture
