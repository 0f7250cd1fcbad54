// Choosing entities.
#pragma once

#include <initializer_list>
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

/// Every entity of the drawing on the layer, paper layouts included.
std::vector<AcDbObjectId> selectLayer(const ACHAR* layer);
/// Every entity on one of the layers, in one walk through the drawing.
std::vector<AcDbObjectId> selectLayers(std::initializer_list<const ACHAR*> layers);

/// Whether the object is a lightweight, 2D or 3D polyline; known without opening it.
bool isPolyline(AcDbObjectId id);

}  // namespace OrvLib
