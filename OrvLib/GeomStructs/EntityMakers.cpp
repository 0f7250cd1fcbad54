#include "OrvLib/GeomStructs/EntityMakers.h"

#include <memory>
#include <new>
#include <utility>

#include "OrvLib/ARX/EntityGeometry.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/Status.h"
#include "OrvLib/Reports/Failures.h"

namespace OrvLib {
namespace {

/// The model space that an OpenModelSpace holds, and its database.
struct HeldModelSpace {
  AcDbDatabase* db = nullptr;
  Opened<AcDbBlockTableRecord> space;
};
HeldModelSpace& heldModelSpace() {
  static HeldModelSpace held;
  return held;
}

Opened<AcDbBlockTable> openBlocks(AcDbDatabase& db) {
  return Opened<AcDbBlockTable>::by([&](AcDbBlockTable*& open) { return db.getBlockTable(open, AcDb::kForRead); });
}

Opened<AcDbBlockTableRecord> openModelSpace(const AcDbBlockTable& blocks) {
  return Opened<AcDbBlockTableRecord>::by(
      [&](AcDbBlockTableRecord*& open) { return blocks.getAt(ACDB_MODEL_SPACE, open, AcDb::kForWrite); });
}

AcDbObjectId append(std::unique_ptr<AcDbEntity> entity, const Opened<AcDbBlockTableRecord>& space) {
  AcDbObjectId id;
  if (!succeeded(space ? space->appendAcDbEntity(id, entity.get()) : space.status())) return {};
  entity.release()->close();
  return id;
}

/// Appends to model space. On failure nothing is left of the entity.
AcDbObjectId appendToModelSpace(std::unique_ptr<AcDbEntity> entity, AcDbDatabase& db) {
  if (const HeldModelSpace& held = heldModelSpace(); held.db == &db) return append(std::move(entity), held.space);
  const auto blocks = openBlocks(db);
  if (!succeeded(blocks.status())) return {};
  return append(std::move(entity), openModelSpace(*blocks));
}

// The colour's status is ignored on purpose: a colour the host refuses means "none given".
bool setColorAndLayer(AcDbEntity& entity, int colorIndex, const ACHAR* layer, AcDbDatabase& db) {
  entity.setColorIndex(static_cast<Adesk::UInt16>(colorIndex));
  if (layer == nullptr) return true;
  const AcDbObjectId layerId = layerMadeIfMissing(layer, &db);
  return !layerId.isNull() && succeeded(entity.setLayer(layerId), layer);
}

bool setPattern(AcDbHatch& hatch, const HatchPattern& pattern) {
  // The host computes the pattern's lines from the angle and scale that are there when the name is set.
  return hatch.setPatternAngle(pattern.angleRad) == Acad::eOk && hatch.setPatternScale(pattern.scale) == Acad::eOk &&
         hatch.setPattern(AcDbHatch::kPreDefined, pattern.name) == Acad::eOk;
}

/// A hatch whose loop `appendLoop` gives.
template <class AppendLoop>
AcDbObjectId makeHatchIn(AcDbDatabase& db, int colorIndex, const ACHAR* layer, const HatchPattern& pattern,
                         const AppendLoop& appendLoop) {
  auto hatch = std::make_unique<AcDbHatch>();
  const bool isPlain = succeeded(hatch->setNormal(AcGeVector3d::kZAxis)) && succeeded(hatch->setElevation(0)) &&
                       succeeded(hatch->setAssociative(false));
  // What cannot be filled is no failure: callers ask for whatever the user has drawn.
  if (!isPlain || !setColorAndLayer(*hatch, colorIndex, layer, db) || !setPattern(*hatch, pattern) ||
      appendLoop(*hatch) != Acad::eOk || hatch->evaluateHatch() != Acad::eOk) {
    return {};
  }
  return appendToModelSpace(std::move(hatch), db);
}

bool canBound(AcDbObjectId id) {
  const Opened<AcDbEntity> boundary(id, AcDb::kForRead);
  return boundary && isBoundary(*boundary);
}

}  // namespace

OpenModelSpace::OpenModelSpace(AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  HeldModelSpace& held = heldModelSpace();
  if (db == nullptr || held.db != nullptr) return;
  const auto blocks = openBlocks(*db);
  if (blocks) held.space = openModelSpace(*blocks);
  isMine_ = static_cast<bool>(held.space);
  if (isMine_) held.db = db;
}

OpenModelSpace::~OpenModelSpace() {
  if (isMine_) heldModelSpace() = {};
}

AcDbObjectId makeHatch(AcDbObjectId boundary, int colorIndex, const ACHAR* layer, const HatchPattern& pattern,
                       AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr || !canBound(boundary)) return {};
  AcDbObjectIdArray loop;
  loop.append(boundary);
  return makeHatchIn(*db, colorIndex, layer, pattern,
                     [&](AcDbHatch& hatch) { return hatch.appendLoop(AcDbHatch::kExternal, loop); });
}

AcDbObjectId makeHatch(const PolyLine& ring, int colorIndex, const ACHAR* layer, const HatchPattern& pattern,
                       AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr) return {};
  // A polyline loop that ends where it began: what every host takes, whether it closes loops itself or not.
  AcGePoint2dArray vertices;
  AcGeDoubleArray bulges;
  vertices.setPhysicalLength(static_cast<int>(ring.size()) + 1);
  bulges.setPhysicalLength(static_cast<int>(ring.size()) + 1);
  const auto append = [&](const Point3d& point) {
    vertices.append(AcGePoint2d(point.x, point.y));
    bulges.append(0);
  };
  for (const Point3d& point : ring.points()) append(point);
  if (ring.size() > 0) append(ring.points().front());
  constexpr Adesk::Int32 kLoop = AcDbHatch::kExternal | AcDbHatch::kPolyline;
  return makeHatchIn(*db, colorIndex, layer, pattern,
                     [&](AcDbHatch& hatch) { return hatch.appendLoop(kLoop, vertices, bulges); });
}

AcDbObjectId makeLine(const Line& line, int colorIndex, const ACHAR* layer, AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr) return {};
  std::unique_ptr<AcDbLine> entity(new (std::nothrow) AcDbLine(toHost(line.start), toHost(line.end)));
  if (!entity) throw OrvExpAcad(L"Allocation of AcDbLine failed");
  if (!setColorAndLayer(*entity, colorIndex, layer, *db)) return {};
  return appendToModelSpace(std::move(entity), *db);
}

AcDbObjectId makeClosed3dPolyline(const PolyLine& points, int colorIndex, const ACHAR* layer, AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr) return {};
  AcGePoint3dArray vertices;
  vertices.setPhysicalLength(static_cast<int>(points.size()));
  for (const Point3d& point : points.points()) vertices.append(toHost(point));
  std::unique_ptr<AcDb3dPolyline> entity(new (std::nothrow) AcDb3dPolyline(AcDb::k3dSimplePoly, vertices, true));
  if (!entity) throw OrvExpAcad(L"Initialization of AcDb3dPolyLine failed");
  if (!setColorAndLayer(*entity, colorIndex, layer, *db)) return {};
  return appendToModelSpace(std::move(entity), *db);
}

AcDbObjectId makeBlockReference(AcDbObjectId block, const Point3d& position, const ACHAR* layer,
                                AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr) return {};
  std::unique_ptr<AcDbBlockReference> reference(new (std::nothrow) AcDbBlockReference);
  if (!reference) throw OrvExpAcad(L"Allocation of AcDbBlockReference failed");
  const AcDbObjectId layerId = layerMadeIfMissing(layer, db);
  if (layerId.isNull() || !succeeded(reference->setBlockTableRecord(block)) ||
      !succeeded(reference->setPosition(toHost(position))) || !succeeded(reference->setRotation(0)) ||
      !succeeded(reference->setNormal(AcGeVector3d::kZAxis)) || !succeeded(reference->setLayer(layerId), layer)) {
    return {};
  }
  return appendToModelSpace(std::move(reference), *db);
}

bool eraseEntity(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
  return entity && entity->erase() == Acad::eOk;
}

}  // namespace OrvLib
