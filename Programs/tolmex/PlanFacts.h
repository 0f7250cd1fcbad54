// What a plan shows, in words and figures: rows of legends, notes of its elements.
#pragma once

#include <vector>

#include "Picture/Picture.h"

namespace tolmex {

/// A row for each kind of thing that the plan shows, in the order of legends.
std::vector<host::picture::LegendRow> legendRows(const host::database::DrawingDatabase& plan, double metresPerUnit);

/// The rows, and of each element, its fill, building and symbol what the cursor's tooltip says and its measures; no
/// title.
host::picture::PlanFacts planFacts(const host::database::DrawingDatabase& plan, double metresPerUnit);

}  // namespace tolmex
