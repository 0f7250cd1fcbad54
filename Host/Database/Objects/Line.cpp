// AcDbLine, AcDbPoint, AcDbRegion, AcDbBlockReference: classes that live directly on their tags.
#include <cmath>

#include "Database/ObjectAccess.h"
#include "Text/Text.h"
#include "dbents.h"
#include "dbregion.h"

using host::database::DxfType;
using host::database::Tag;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbLine, AcDbCurve)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbPoint, AcDbEntity)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbRegion, AcDbEntity)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbBlockReference, AcDbEntity)

namespace {

constexpr double kPi = 3.14159265358979323846;

/// Made on first use: entities are constructed by initialisers of other files too.
const host::text::Codec& utf8Codec() {
  static const host::text::Codec codec;
  return codec;
}

std::string pointTags(std::string_view subclass, const AcGePoint3d& point) {
  return TagWriter(utf8Codec()).raw(100, subclass).point(10, point.x, point.y, point.z).take();
}

double realAt(const AcDbObject& object, std::string_view subclass, int code, double missing) {
  Tag tag;
  return HostObjectAccess::findTag(object, subclass, code, tag) ? tag.real() : missing;
}

AcGePoint3d pointAt(const AcDbObject& object, std::string_view subclass, int code) {
  return {realAt(object, subclass, code, 0), realAt(object, subclass, code + 10, 0),
          realAt(object, subclass, code + 20, 0)};
}

void setReal(AcDbObject& object, std::string_view subclass, int code, double value) {
  HostObjectAccess::setTag(object, subclass, code, host::text::formatReal(value));
}

Acad::ErrorStatus setPoint(AcDbObject& object, std::string_view subclass, int code, const AcGePoint3d& point) {
  if (!HostObjectAccess::canWrite(object)) return Acad::eNotOpenForWrite;
  setReal(object, subclass, code, point.x);
  setReal(object, subclass, code + 10, point.y);
  setReal(object, subclass, code + 20, point.z);
  return Acad::eOk;
}

template <class T>
AcDbObject* create() {
  return new T;
}

[[maybe_unused]] const bool registered =
    host::database::registerClass({DxfType::Line, &AcDbLine::desc, &create<AcDbLine>}) &&
    host::database::registerClass({DxfType::Point, &AcDbPoint::desc, &create<AcDbPoint>}) &&
    host::database::registerClass({DxfType::Region, &AcDbRegion::desc, &create<AcDbRegion>}) &&
    host::database::registerClass({DxfType::Insert, &AcDbBlockReference::desc, &create<AcDbBlockReference>});

}  // namespace

// ---- lines ----------------------------------------------------------------------------------------------------------

AcDbLine::AcDbLine() : AcDbLine(AcGePoint3d(), AcGePoint3d()) {}

AcDbLine::AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) {
  HostObjectAccess::initDetached(
      *this, "LINE", true, pointTags("AcDbLine", start) + TagWriter(utf8Codec()).point(11, end.x, end.y, end.z).take());
}

AcGePoint3d AcDbLine::startPoint() const { return pointAt(*this, "AcDbLine", 10); }
AcGePoint3d AcDbLine::endPoint() const { return pointAt(*this, "AcDbLine", 11); }
Acad::ErrorStatus AcDbLine::setStartPoint(const AcGePoint3d& point) { return setPoint(*this, "AcDbLine", 10, point); }
Acad::ErrorStatus AcDbLine::setEndPoint(const AcGePoint3d& point) { return setPoint(*this, "AcDbLine", 11, point); }

// ---- points and regions ---------------------------------------------------------------------------------------------

AcDbPoint::AcDbPoint() : AcDbPoint(AcGePoint3d()) {}

AcDbPoint::AcDbPoint(const AcGePoint3d& position) {
  HostObjectAccess::initDetached(*this, "POINT", true, pointTags("AcDbPoint", position));
}

AcGePoint3d AcDbPoint::position() const { return pointAt(*this, "AcDbPoint", 10); }
Acad::ErrorStatus AcDbPoint::setPosition(const AcGePoint3d& point) { return setPoint(*this, "AcDbPoint", 10, point); }

AcDbRegion::AcDbRegion() {
  HostObjectAccess::initDetached(*this, "REGION", true, TagWriter(utf8Codec()).raw(100, "AcDbModelerGeometry").take());
}

// ---- block references -----------------------------------------------------------------------------------------------

namespace {
constexpr std::string_view kReference = "AcDbBlockReference";
}

AcDbBlockReference::AcDbBlockReference() : AcDbBlockReference(AcGePoint3d(), AcDbObjectId::kNull) {}

AcDbBlockReference::AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId block) {
  HostObjectAccess::initDetached(
      *this, "INSERT", true,
      TagWriter(utf8Codec()).raw(100, kReference).raw(2, "").point(10, position.x, position.y, position.z).take());
  if (!block.isNull()) setBlockTableRecord(block);
}

AcDbObjectId AcDbBlockReference::blockTableRecord() const {
  Tag tag;
  if (!HostObjectAccess::findTag(*this, kReference, 2, tag) || tag.value.empty()) return AcDbObjectId::kNull;
  host::database::DrawingDatabase* const db = HostObjectAccess::database(*this);
  if (db == nullptr) return AcDbObjectId::kNull;
  return AcDbObjectId(db->findRecord(DxfType::BlockRecord, HostObjectAccess::codec(*this).decode(tag.value)));
}

Acad::ErrorStatus AcDbBlockReference::setBlockTableRecord(AcDbObjectId block) {
  if (block.isNull()) return Acad::eNullObjectId;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (block.slot()->type != DxfType::BlockRecord) return Acad::eWrongObjectType;
  HostObjectAccess::setTag(*this, kReference, 2,
                           HostObjectAccess::codec(*this).encode(block.slot()->database().recordName(*block.slot())));
  return Acad::eOk;
}

AcGeVector3d AcDbBlockReference::normal() const {
  return {realAt(*this, kReference, 210, 0), realAt(*this, kReference, 220, 0), realAt(*this, kReference, 230, 1)};
}

Acad::ErrorStatus AcDbBlockReference::setNormal(const AcGeVector3d& normal) {
  if (normal.length() == 0 || !std::isfinite(normal.length())) return Acad::eInvalidInput;
  return setPoint(*this, kReference, 210, {normal.x, normal.y, normal.z});
}

AcGePoint3d AcDbBlockReference::position() const {
  const AcGePoint3d local = pointAt(*this, kReference, 10);
  return host::database::ObjectAxes(normal()).toWorld(local.x, local.y, local.z);
}

Acad::ErrorStatus AcDbBlockReference::setPosition(const AcGePoint3d& position) {
  return setPoint(*this, kReference, 10, host::database::ObjectAxes(normal()).fromWorld(position));
}

double AcDbBlockReference::rotation() const { return realAt(*this, kReference, 50, 0) / 180 * kPi; }

Acad::ErrorStatus AcDbBlockReference::setRotation(double radians) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (!std::isfinite(radians)) return Acad::eInvalidInput;
  setReal(*this, kReference, 50, radians / kPi * 180);
  return Acad::eOk;
}

AcGeScale3d AcDbBlockReference::scaleFactors() const {
  return {realAt(*this, kReference, 41, 1), realAt(*this, kReference, 42, 1), realAt(*this, kReference, 43, 1)};
}

Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeScale3d& scale) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  setReal(*this, kReference, 41, scale.sx);
  setReal(*this, kReference, 42, scale.sy);
  setReal(*this, kReference, 43, scale.sz);
  return Acad::eOk;
}

// ---- object coordinates ---------------------------------------------------------------------------------------------

namespace host::database {

ObjectAxes::ObjectAxes(const AcGeVector3d& normal) {
  const double length = normal.length();
  if (!(length > 0) || !std::isfinite(length)) return;
  az = normal * (1 / length);
  // The arbitrary-axis rule of the DXF reference: near the world Z axis Y is the helper, otherwise Z.
  constexpr double kLimit = 1.0 / 64;
  ax = (std::fabs(az.x) < kLimit && std::fabs(az.y) < kLimit ? AcGeVector3d::kYAxis : AcGeVector3d::kZAxis)
           .crossProduct(az)
           .normal();
  ay = az.crossProduct(ax).normal();
}

AcGePoint3d ObjectAxes::toWorld(double x, double y, double z) const { return AcGePoint3d() + ax * x + ay * y + az * z; }

AcGePoint3d ObjectAxes::fromWorld(const AcGePoint3d& world) const {
  const AcGeVector3d v = world.asVector();
  return {v.dotProduct(ax), v.dotProduct(ay), v.dotProduct(az)};
}

}  // namespace host::database
