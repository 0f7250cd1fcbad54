// The four ways in which the system puts entities into a drawing, always into model space and on a layer that is made
// when it is missing (layerMadeIfMissing), and the one in which it takes them out. A null database means the working
// one.
#pragma once

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/GeomEnts/Line.h"
#include "OrvLib/GeomStructs/PolyLine.h"

namespace OrvLib {

inline constexpr int kColorByLayer = 256;
/// No colour given; the host refuses it, and the new entity takes the drawing's current colour.
inline constexpr int kNoColor = 65535;

/// Keeps the model space open for write while it lives, which spares the makers opening it for every entity. To be held
/// for a run of entities only: no other code can open the model space meanwhile. Where it cannot be opened, the makers
/// open it for each entity and print the failure.
class OpenModelSpace {
 public:
  /// A null database means the working one.
  explicit OpenModelSpace(AcDbDatabase* db = nullptr);
  OpenModelSpace(const OpenModelSpace&) = delete;
  OpenModelSpace& operator=(const OpenModelSpace&) = delete;
  ~OpenModelSpace();

 private:
  bool isMine_ = false;
};

/// A predefined pattern of the host.
struct HatchPattern {
  const ACHAR* name = L"SOLID";
  double angleRad = 0;
  double scale = 1;
};

/// A non-associative hatch with `boundary` as its one outer loop. The boundary must not be open for write.
/// Null id, and nothing made, when the boundary is none (isBoundary) or the host cannot fill it: an open or
/// self-crossing course, an unknown pattern, too dense a pattern.
AcDbObjectId makeHatch(AcDbObjectId boundary, int colorIndex, const ACHAR* layer, const HatchPattern& pattern,
                       AcDbDatabase* db = nullptr);

/// The same with a ring of straight edges through the points in plan as its outer loop.
AcDbObjectId makeHatch(const PolyLine& ring, int colorIndex, const ACHAR* layer, const HatchPattern& pattern,
                       AcDbDatabase* db = nullptr);

/// A line. A null layer leaves it on the drawing's current one. Null id when the host refuses it. Throws OrvExpAcad
/// when it cannot be allocated.
AcDbObjectId makeLine(const Line& line, int colorIndex, const ACHAR* layer, AcDbDatabase* db = nullptr);

/// A closed 3D polyline of the simple kind through the points. Null id when the host refuses it. Throws OrvExpAcad when
/// it cannot be allocated.
AcDbObjectId makeClosed3dPolyline(const PolyLine& points, int colorIndex, const ACHAR* layer,
                                  AcDbDatabase* db = nullptr);

/// A reference to a block at a point, upright, in its own size. Null id when the host refuses it. Throws OrvExpAcad
/// when it cannot be allocated.
AcDbObjectId makeBlockReference(AcDbObjectId block, const Point3d& position, const ACHAR* layer,
                                AcDbDatabase* db = nullptr);

/// False when the entity cannot be opened for write: it is erased already, open elsewhere, or on a locked layer.
bool eraseEntity(AcDbObjectId id);

}  // namespace OrvLib
