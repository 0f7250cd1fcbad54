// Commands that turn polylines into elements of the illustration picture.
#pragma once

#include "Tolmex/CommandRow.h"
#include "Tolmex/Model/Catalogue.h"

namespace OrvLib {

/// Makes each polyline an element of the category: on its outline layer, tagged, and with a fill when the category has
/// a pattern and the polyline can be filled. What it was before is replaced.
void makeElements(const SelectedIds& polylines, Category category);

/// Makes each polyline a ridge line. A building among them keeps its record.
void makeRidgeLines(const SelectedIds& polylines);

}  // namespace OrvLib
