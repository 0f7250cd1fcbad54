// The boundary of a hatch from entities of the drawing.
#pragma once

#include "Hatching/Loops.h"
#include "dbmain.h"

namespace host::hatching {

/// One closed loop in the plane of the normal: a closed polyline of any kind, circle, ellipse or spline, or several
/// lines, arcs and open curves that join end to end. Heights over the plane are dropped. Arcs stay arcs where their
/// plane is parallel; ellipses and splines become chords. eInvalidInput when the entities do not make one valid loop or
/// are of another kind, which the drawing's observer hears of; the opener's status when one cannot be opened for
/// read.
Acad::ErrorStatus boundaryLoop(const AcDbObjectIdArray& boundaries, const AcGeVector3d& normal, Loop& loop);

}  // namespace host::hatching
