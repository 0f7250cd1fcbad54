// What lies under the cursor or in a window, in the order in which clicks take it. Read from the scene, so it answers
// at once, also right after a command.
#pragma once

#include <vector>

#include "Window/Canvas/SceneKeeper.h"

namespace host::window {

/// What a click is for.
enum class PickFor {
  One,   // a question for one entity: on a fill its outline
  Many,  // selections: on a fill the fill itself, then its outline
  Rest   // the same; and of what lies in a larger outline, such as a shadow on a lawn, the fill before that outline
};

/// Entities at a point (scene coordinates), those first that a click takes first:
/// lines within the aperture, nearest first, also those that lie beneath others; on a fill the smallest closed outline
/// around the point; fills, upper first; larger outlines. Where nothing is filled outlines are not taken by their
/// inside.
std::vector<database::Slot*> pointAt(const SceneKeeper& keeper, Point at, double aperture, PickFor what);

/// Closed outlines around the point, smallest first.
std::vector<database::Slot*> outlinesAround(const SceneKeeper& keeper, Point at);

/// Distance from a point to the nearest line of an entity, at most `within`; the nearest point of it when asked for.
double distanceToLines(SceneRef entity, Point at, double within, Point* nearest = nullptr);

/// What an answer "W" or "C" with the corners (plan coordinates) selects. Reads the drawing.
std::vector<database::Slot*> inWindow(const SceneKeeper& keeper, Point corner, Point opposite, geometry::Window kind);

/// The entity with the living members of its selectable groups.
std::vector<database::Slot*> withGroups(database::Slot* entity);
std::vector<database::Slot*> withGroups(const std::vector<database::Slot*>& entities);

}  // namespace host::window
