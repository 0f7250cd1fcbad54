// Finding entities on the screen that is not there: picks, windows, fences, layers' states, groups.
//
// The pick aperture is PICKBOX pixels of a notional screen 1000 pixels wide that shows the current view, or the extents
// of the space before any ZOOM: ZOOM in to pick more finely, as at a screen.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Geometry/EntityPaths.h"
#include "Geometry/Layers.h"

namespace host::editor {

/// Answers about one drawing at a time. What it knows is kept over commands; of what they change it forgets what the
/// change may have moved.
class EntityFinder {
 public:
  using Slot = database::Slot;
  using Drawing = database::DrawingDatabase;
  using Space = database::BlockContents;

  static constexpr double kScreenPixels = 1000;

  /// Drops what is known, when a drawing is closed.
  void forget();

  const geometry::LayerState& layerState(const Slot& entity);
  /// On a layer that is on and thawed, and not hidden by itself.
  bool isVisible(const Slot& entity);
  /// Living entities of the space that are visible, newest first.
  std::vector<Slot*> visibleNewestFirst(const Space& space);
  /// Box around the visible entities.
  geometry::Box extents(Drawing& drawing, const Space& space);

  /// Visible entities within `aperture` of the point, topmost first; only the first one unless `all`.
  std::vector<Slot*> at(Drawing& drawing, const Space& space, geometry::Point point, double aperture, bool all);
  /// Visible entities inside the polygon, or touching it; newest first.
  std::vector<Slot*> inWindow(const Space& space, const std::vector<geometry::Point>& polygon, geometry::Window kind);
  /// Visible entities that the open line crosses; newest first.
  std::vector<Slot*> onFence(const Space& space, const std::vector<geometry::Point>& fence);
  /// The entity with the living members of its selectable groups; the entity alone when it is in none.
  std::vector<Slot*> withGroups(Slot* entity);

 private:
  void refresh(Drawing& drawing);
  void follow(const Drawing& drawing, const std::vector<const Slot*>& changed);
  const geometry::Box& boxOf(const Slot& entity);
  /// Entities of a space in draw order, with their boxes.
  struct Order {
    std::vector<Slot*> entities;  // bottom first
    std::vector<geometry::Box> boxes;
    geometry::Box extents;  // of the visible ones
  };
  const Order& order(Drawing& drawing, const Space& space);

  const Drawing* drawing_ = nullptr;
  std::uint64_t changeCount_ = 0;
  std::unique_ptr<geometry::LayerStates> layers_;
  std::unordered_map<const Slot*, Order> orders_;                  // by block record
  std::unordered_map<const Slot*, geometry::Box> ownBoxes_;        // of entities that are drawn by their own tags alone
  std::unordered_map<const Slot*, geometry::Box> dependentBoxes_;  // of the others
};

}  // namespace host::editor
