// Which coordinate system a plan has, and pictures that say where on the Earth they lie.
#pragma once

#include <optional>
#include <string>

#include "Geometry/EntityPaths.h"
#include "Picture/Picture.h"

namespace tolmex {

/// ETRS-GKn by the millions of eastings, TM35FIN by their six digits; empty for other coordinates.
std::string systemByCoordinates(const host::geometry::Box& extents);

/// The system that the drawing itself tells, in its GEODATA, where its coordinates are those of the system; else empty.
std::string systemOfDrawing(const host::database::DrawingDatabase& drawing);

/// Makes the TIFF of a picture that was drawn as PNG.
host::Result<> makeTiff(host::picture::Picture& picture, const host::picture::PictureOptions& options,
                        const host::database::DrawingDatabase& drawing);

/// The place of a PDF, where a system was asked for or the drawing tells it.
host::Result<std::optional<host::picture::GeoMeasure>> measureOf(const host::picture::Picture& picture,
                                                                 const host::picture::PictureOptions& options,
                                                                 const host::database::DrawingDatabase& drawing);

}  // namespace tolmex
