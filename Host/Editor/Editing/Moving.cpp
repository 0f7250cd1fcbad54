#include "Editor/Editing/Moving.h"

#include <algorithm>
#include <unordered_set>

#include "Database/Editing.h"
#include "Database/ObjectAccess.h"
#include "dbobjptr.h"

namespace host::editor {
namespace {

using database::Slot;

bool moveOne(Slot& slot, const Motion& motion) {
  const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(&slot), AcDb::kForWrite);
  if (entity.openStatus() != Acad::eOk) return false;
  const AcGeVector3d normal = normalOf(slot);
  const std::string tags = movedTags(slot, motion);
  HostObjectAccess::editRecord(*entity).assign(HostObjectAccess::keep(*entity, tags));
  for (Slot* sub = slot.firstSub(); sub != nullptr; sub = sub->nextSub) {
    if (!sub->isErased()) database::rewriteRecord(*sub, movedTags(*sub, motion, normal));
  }
  return true;
}

}  // namespace

std::vector<Slot*> movable(const std::vector<Slot*>& entities) {
  std::vector<Slot*> able;
  for (Slot* const entity : entities) {
    if (entity->isErased()) continue;
    if (const std::string_view why = cannotMove(*entity); !why.empty()) {
      entity->database().tellRefused(*entity, database::WorkObserver::Refusal::Change, why);
    } else {
      able.push_back(entity);
    }
  }
  return able;
}

MoveCounts moveEntities(const std::vector<Slot*>& entities, const Motion& motion) {
  MoveCounts counts;
  std::vector<Slot*> going = movable(entities);
  counts.refused = entities.size() - going.size();
  std::unordered_set<const Slot*> set(going.begin(), going.end());
  const auto goes = [&set](const Slot* boundary) { return boundary != nullptr && set.contains(boundary); };

  // Fills that lie between what goes and what stays.
  std::vector<Slot*> along, torn;
  std::unordered_set<const Slot*> seen;
  for (Slot* const entity : going) {
    for (Slot* const hatch : database::hatchesOf(*entity)) {
      if (!seen.insert(hatch).second || set.contains(hatch)) continue;
      const std::vector<Slot*> boundaries = database::boundariesOf(*hatch);
      (std::all_of(boundaries.begin(), boundaries.end(), goes) ? along : torn).push_back(hatch);
    }
    const std::vector<Slot*> boundaries = database::boundariesOf(*entity);
    if (!std::all_of(boundaries.begin(), boundaries.end(), goes)) torn.push_back(entity);
  }
  for (Slot* const hatch : torn) database::dissociateHatch(*hatch);
  counts.freed = torn.size();
  for (Slot* const entity : going) ++(moveOne(*entity, motion) ? counts.moved : counts.refused);
  for (Slot* const hatch : along) {
    if (moveOne(*hatch, motion)) ++counts.fillsAlong;
  }
  return counts;
}

}  // namespace host::editor
