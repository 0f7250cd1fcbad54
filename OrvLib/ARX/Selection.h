// Choosing entities. All throw OrvExpAcad when the host does not give what it says it has selected.
#pragma once

#include <vector>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// Lets the user select any number of entities, or takes those selected before the command. In selection order;
/// empty after Esc or an empty answer.
std::vector<AcDbObjectId> selectByUser();

/// The same, keeping lightweight, 2D and 3D polylines only.
std::vector<AcDbObjectId> selectPolylinesByUser();

/// Every lightweight, 2D and 3D polyline of the drawing, paper layouts included.
std::vector<AcDbObjectId> selectAllPolylines();

/// The same, keeping those with extended data of the application: a drawing has many polylines that nobody tagged.
std::vector<AcDbObjectId> selectTaggedPolylines(const ACHAR* application);

/// Every entity of the drawing on one of the layers, paper layouts included.
std::vector<AcDbObjectId> selectLayers(const std::vector<const ACHAR*>& layers);

/// Whether the object is a lightweight, 2D or 3D polyline; known without opening it.
bool isPolyline(AcDbObjectId id);

}  // namespace OrvLib
