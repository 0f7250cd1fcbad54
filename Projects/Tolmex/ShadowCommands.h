// Making all shadows of a drawing anew, and removing them.
#pragma once

namespace OrvLib {

/// Erases all shadows and roof fills of the drawing and makes them again from its fences and buildings.
void updateShadows();
/// Erases all shadows and roof fills.
void removeShadows();
/// Brings the list of buildings up to date and shows the shadow settings.
void editShadowSettings();

}  // namespace OrvLib
