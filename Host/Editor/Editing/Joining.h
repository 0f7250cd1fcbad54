// Lines, arcs and polylines that meet, as polylines.
#pragma once

#include <vector>

#include "Curves/Plane.h"
#include "Database/DrawingDatabase.h"

namespace host::editor {

struct JoinCounts {
  std::size_t joined = 0;                // entities that became part of a polyline, those that only closed included
  std::size_t polylines = 0;             // what they became
  std::size_t closed = 0;                // of these
  std::size_t open = 0;                  // pieces and polylines whose ends stay free, what was joined included
  std::size_t branches = 0;              // points where more than two ends meet: nothing is joined there
  std::size_t unfit = 0;                 // entities without ends, or not flat in plan: they stay as they are
  std::size_t bridged = 0;               // gaps between ends that did not meet
  std::vector<curves::Point2> openEnds;  // that stayed free, in the order of their pieces
};

/// Ends as near as this meet, drawing units.
inline constexpr double kMeeting = 1e-4;

/// Joins at points where exactly two ends meet, within a ten-thousandth of a unit. A polyline of the chain keeps its
/// handle, layer and data, else a new one has the properties of the first piece; the others are erased, and fills that
/// had them as boundaries are associative no more. What lies on a locked layer stays and is told to the drawing's
/// observer.
/// With a `gap`, free ends that are no farther apart are joined by a straight piece, the nearest first.
JoinCounts joinEntities(const std::vector<database::Slot*>& entities, double gap = 0);

}  // namespace host::editor
