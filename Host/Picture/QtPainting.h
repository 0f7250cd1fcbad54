// A display list through Qt's painter.
#pragma once

#include "Picture/DisplayList.h"

class QPainter;

namespace host::picture {

/// Paints the list; `isRaster` lets thin lines be drawn as lines of one pixel.
void paintList(QPainter& painter, const DisplayList& list, bool isRaster);

}  // namespace host::picture
