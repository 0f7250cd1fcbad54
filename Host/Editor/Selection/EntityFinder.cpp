#include "Editor/Selection/EntityFinder.h"

#include <algorithm>
#include <unordered_set>

namespace host::editor {
namespace {

using database::DxfType;
using database::Slot;

bool hasEndlessShape(const Slot& entity) { return entity.type == DxfType::XLine || entity.type == DxfType::Ray; }

/// Drawn by the entity's own tags and those of its vertices alone, so that nothing else moves it.
bool drawsItself(const Slot& entity) {
  switch (entity.type) {
    case DxfType::Line:
    case DxfType::Point:
    case DxfType::LwPolyline:
    case DxfType::Polyline2d:
    case DxfType::Polyline3d:
    case DxfType::Circle:
    case DxfType::Arc:
    case DxfType::Ellipse:
    case DxfType::Spline:
    case DxfType::Solid:
    case DxfType::Trace:
    case DxfType::Face3d:
    case DxfType::Hatch:
    case DxfType::XLine:
    case DxfType::Ray:
    case DxfType::Wipeout:
    case DxfType::Image:
      return true;
    default:
      return false;
  }
}

/// What no entity is drawn by: what hangs on objects, names and orders them.
bool isUnseen(const Slot& object) {
  switch (object.type) {
    case DxfType::TableHead:
    case DxfType::AppId:
    case DxfType::Dictionary:
    case DxfType::DictionaryWithDefault:
    case DxfType::Group:
    case DxfType::XRecord:
    case DxfType::SortentsTable:
    case DxfType::Layout:
    case DxfType::Classes:
      return true;
    default:
      return false;
  }
}

geometry::Box boxAround(const std::vector<geometry::Point>& points) {
  geometry::Box box;
  for (const geometry::Point& point : points) box.add(point);
  return box;
}

bool isInside(const geometry::Box& inner, const geometry::Box& outer) {
  return inner.minX >= outer.minX && inner.maxX <= outer.maxX && inner.minY >= outer.minY && inner.maxY <= outer.maxY;
}

bool isHidden(const Slot& entity) {
  database::Tag tag;
  for (database::TagCursor tags = entity.tags(); tags.next(tag);) {
    if (tag.code == 60) return tag.integer() != 0;
    // Common tags end with the entity's own subclass; group 60 stands before it.
    if (tag.code == 100 && tag.trimmed() != "AcDbEntity") return false;
  }
  return false;
}

}  // namespace

void EntityFinder::forget() { *this = EntityFinder(); }

void EntityFinder::refresh(Drawing& drawing) {
  if (drawing_ == &drawing && changeCount_ == drawing.changeCount()) return;
  const bool isOther = drawing_ != &drawing;
  std::optional<std::vector<const Slot*>> changed = drawing.takeChangedSlots();
  if (isOther || !changed) {
    forget();
    drawing_ = &drawing;
  } else {
    follow(drawing, *changed);
  }
  changeCount_ = drawing.changeCount();
}

void EntityFinder::follow(const Drawing& drawing, const std::vector<const Slot*>& changed) {
  orders_.clear();
  std::unordered_set<const Slot*> spaces;
  for (const auto& [name, block] : drawing.layouts()) {
    if (block != nullptr) spaces.insert(block->record);
  }
  bool othersStay = true;
  for (const Slot* slot : changed) {
    if (isUnseen(*slot)) continue;
    if (slot->type == DxfType::Layer) layers_.reset();
    const Slot* entity = slot;
    while (entity != nullptr && entity->isSubEntity()) entity = entity->owner;
    if (entity != nullptr && entity->isEntity() && spaces.contains(entity->owner)) {
      ownBoxes_.erase(entity);
      dependentBoxes_.erase(entity);
    } else {
      othersStay = false;
    }
  }
  if (!othersStay) dependentBoxes_.clear();
}

const geometry::LayerState& EntityFinder::layerState(const Slot& entity) {
  refresh(entity.database());
  if (layers_ == nullptr) layers_ = std::make_unique<geometry::LayerStates>(entity.database());
  return layers_->at(entity.layer);
}

bool EntityFinder::isVisible(const Slot& entity) {
  if (entity.isErased()) return false;
  return layerState(entity).isDrawn() && !isHidden(entity);
}

std::vector<Slot*> EntityFinder::visibleNewestFirst(const Space& space) {
  std::vector<Slot*> found;
  for (auto it = space.entities.rbegin(); it != space.entities.rend(); ++it) {
    if (isVisible(**it)) found.push_back(*it);
  }
  return found;
}

const geometry::Box& EntityFinder::boxOf(const Slot& entity) {
  refresh(entity.database());
  auto& cache = drawsItself(entity) ? ownBoxes_ : dependentBoxes_;
  if (const auto found = cache.find(&entity); found != cache.end()) return found->second;
  return cache.emplace(&entity, geometry::entityExtents(entity)).first->second;
}

const EntityFinder::Order& EntityFinder::order(Drawing& drawing, const Space& space) {
  refresh(drawing);
  if (const auto found = orders_.find(space.record); found != orders_.end()) return found->second;
  Order order;
  order.entities = drawing.drawOrder(space);
  order.boxes.reserve(order.entities.size());
  ownBoxes_.reserve(order.entities.size());
  for (const Slot* entity : order.entities) {
    const geometry::Box& box = boxOf(*entity);
    order.boxes.push_back(box);
    if (box.isEmpty() || hasEndlessShape(*entity) || isInside(box, order.extents)) continue;
    if (isVisible(*entity)) order.extents.add(box);
  }
  return orders_.emplace(space.record, std::move(order)).first->second;
}

geometry::Box EntityFinder::extents(Drawing& drawing, const Space& space) { return order(drawing, space).extents; }

std::vector<Slot*> EntityFinder::at(Drawing& drawing, const Space& space, geometry::Point point, double aperture,
                                    bool all) {
  std::vector<Slot*> found;
  const Order& sorted = order(drawing, space);
  geometry::Box around;
  around.add(geometry::Point{point.x - aperture, point.y - aperture});
  around.add(geometry::Point{point.x + aperture, point.y + aperture});
  for (std::size_t i = sorted.entities.size(); i-- > 0;) {
    Slot* const entity = sorted.entities[i];
    const geometry::Box& box = sorted.boxes[i];
    if ((box.isEmpty() || !box.intersects(around)) && !hasEndlessShape(*entity)) continue;
    if (!isVisible(*entity) || !(geometry::distanceTo(*entity, point, aperture) <= aperture)) continue;
    found.push_back(entity);
    if (!all) break;
  }
  return found;
}

std::vector<Slot*> EntityFinder::inWindow(const Space& space, const std::vector<geometry::Point>& polygon,
                                          geometry::Window kind) {
  std::vector<Slot*> found;
  const geometry::Box window = boxAround(polygon);
  for (auto it = space.entities.rbegin(); it != space.entities.rend(); ++it) {
    const Slot& entity = **it;
    if (!isVisible(entity)) continue;
    if (!hasEndlessShape(entity)) {
      const geometry::Box& box = boxOf(entity);
      if (box.isEmpty()) continue;
      if (kind == geometry::Window::Inside ? !isInside(box, window) : !box.intersects(window)) continue;
    }
    if (geometry::isInWindow(entity, polygon, kind)) found.push_back(*it);
  }
  return found;
}

std::vector<Slot*> EntityFinder::onFence(const Space& space, const std::vector<geometry::Point>& fence) {
  std::vector<Slot*> found;
  const geometry::Box around = boxAround(fence);
  for (auto it = space.entities.rbegin(); it != space.entities.rend(); ++it) {
    const Slot& entity = **it;
    if (!isVisible(entity)) continue;
    if (!hasEndlessShape(entity) && !boxOf(entity).intersects(around)) continue;
    if (geometry::crossesFence(entity, fence)) found.push_back(*it);
  }
  return found;
}

std::vector<Slot*> EntityFinder::withGroups(Slot* entity) {
  // Members carry their group's handle among their reactors.
  std::vector<const Slot*> groups;
  const Drawing& drawing = entity->database();
  database::Tag tag;
  bool inReactors = false;
  for (database::TagCursor tags = entity->tags(); tags.next(tag);) {
    if (tag.code == 102) {
      if (inReactors) break;
      inReactors = tag.trimmed() == "{ACAD_REACTORS";
    } else if (tag.code == 100) {
      break;
    } else if (inReactors && tag.code == 330) {
      const Slot* const reactor = drawing.findHandle(tag.handle());
      if (reactor != nullptr && reactor->type == DxfType::Group && !reactor->isErased()) groups.push_back(reactor);
    }
  }
  std::vector<Slot*> members{entity};
  if (groups.empty()) return members;
  std::unordered_set<const Slot*> known{entity};
  for (const Slot* group : groups) {
    std::vector<Slot*> others;
    bool selectable = false;
    bool isMember = false;
    for (database::TagCursor tags = group->tags(); tags.next(tag);) {
      if (tag.code == 71) selectable = tag.integer() != 0;
      if (tag.code != 340) continue;
      Slot* const member = drawing.findHandle(tag.handle());
      if (member == entity) isMember = true;
      if (member != nullptr && member->owner == entity->owner && isVisible(*member)) others.push_back(member);
    }
    if (!selectable || !isMember) continue;
    for (Slot* member : others) {
      if (known.insert(member).second) members.push_back(member);
    }
  }
  return members;
}

}  // namespace host::editor
