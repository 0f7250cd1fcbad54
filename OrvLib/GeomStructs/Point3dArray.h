// Rows of points.
#pragma once

#include "OrvLib/DataStruct/Array.h"
#include "OrvLib/GeomStructs/Point3d.h"

namespace OrvLib {

using Point3dArray = Array<Point3d>;

}  // namespace OrvLib
