// The command that lays parking places along a line.
#pragma once

namespace OrvLib {

/// Asks for the row's ends, angle, width and length and draws it as one group.
void makeParkingPlaces();

}  // namespace OrvLib
