// Entities of the current space by other means than pointing at them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Database/Slot.h"
#include "Geometry/EntityPaths.h"
#include "gepnt3d.h"

namespace host::editor {

class Session;

/// Half the side of the pick box in drawing units; never 0.
double pickAperture(Session& session);
/// What a screen would show: the view set by ZOOM, or the extents; a unit square in an empty drawing.
geometry::Box currentView(Session& session);
/// Living entities of the current space that are not on frozen or locked layers, newest first. `locked`: how many are
/// on thawed layers that are locked.
std::vector<database::Slot*> selectAll(Session& session, std::size_t* locked = nullptr);
class SelectionFilter;
/// Living entities of all spaces that the filter lets through, newest first in each.
std::vector<database::Slot*> wholeDrawing(const database::DrawingDatabase& drawing, const SelectionFilter& filter);
/// "2 were on a locked layer." in the transcript; nothing for none.
void tellLocked(Session& session, std::size_t count);
/// The newest visible entity of the current space, or null.
database::Slot* lastEntity(Session& session);
/// A living top-level entity of any space by its handle, or null.
database::Slot* entityByHandle(Session& session, std::uint64_t handle);
std::wstring noSuchEntity(std::uint64_t handle);
/// Living members of a group by its name; nothing when there is no such group.
std::optional<std::vector<database::Slot*>> groupMembers(const database::DrawingDatabase& drawing,
                                                         std::wstring_view name);
/// What the input-point monitors of the current document say there, lines separated by "\n".
std::wstring tooltipAt(Session& session, const AcGePoint3d& point);

}  // namespace host::editor
