// Commands that turn polylines into buildings and ridge lines.
#pragma once

namespace OrvLib {

/// Lets the user select polylines and makes them buildings, or edits the one building that is selected.
void makeBuildings();

/// Lets the user select polylines and makes them ridge lines. A building among them keeps its record.
void makeRidgeLines();

}  // namespace OrvLib
