// Making all shadows of a drawing anew, and removing them.
#pragma once

namespace OrvLib {

/// Erases all shadows and roof fills of the drawing and makes them again from its fences and buildings. Finishes the
/// display itself, before the progress meter goes, unless the drawing has no polyline.
void updateShadows();
/// Erases all shadows and roof fills; the display is left to be finished.
void removeShadows();
/// Brings the list of buildings up to date and lets the user edit the shadow settings, with which all shadows are then
/// made anew.
void editShadowSettings();

}  // namespace OrvLib
