// AcDbPolyline, AcDb2dPolyline, AcDb3dPolyline, AcDbPolygonMesh, AcDbPolyFaceMesh, AcDbVertex and its kinds,
// AcDbSequenceEnd, AcDbObjectIterator.
#include "Database/Objects/Polyline.h"

#include <algorithm>
#include <cmath>

#include "Database/Memory.h"
#include "Database/ObjectAccess.h"
#include "Database/UnwrittenTags.h"
#include "dbents.h"
#include "dbpl.h"

using host::database::dataOf;
using host::database::dataToChange;
using host::database::DxfType;
using host::database::LightPolyline;
using host::database::ObjectAxes;
using host::database::OldPolyline;
using host::database::Slot;
using host::database::Tag;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbPolyline, AcDbCurve)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDb2dPolyline, AcDbCurve)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDb3dPolyline, AcDbCurve)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbPolygonMesh, AcDbEntity)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbPolyFaceMesh, AcDbEntity)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbVertex, AcDbEntity)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDb2dVertex, AcDbVertex)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDb3dPolylineVertex, AcDbVertex)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSequenceEnd, AcDbEntity)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObjectIterator, AcRxObject)

namespace host::database {

void LightPolyline::read(TagCursor tags, const text::Codec&) {
  bool inside = false;
  Tag tag;
  while (tags.next(tag)) {
    if (tag.code >= 1000) break;
    if (tag.code == 100) {
      inside = tag.trimmed() == "AcDbPolyline";
      continue;
    }
    if (!inside) continue;
    switch (tag.code) {
      case 70:
        flags = static_cast<int>(tag.integer());
        break;
      case 43:
        constantWidth = tag.real();
        break;
      case 38:
        elevation = tag.real();
        break;
      case 39:
        thickness = tag.real();
        break;
      case 210:
        normal.x = tag.real();
        break;
      case 220:
        normal.y = tag.real();
        break;
      case 230:
        normal.z = tag.real();
        break;
      case 10:
        vertices.push_back({{tag.real(), 0}, 0, -1, -1});
        break;
      default:
        if (vertices.empty()) break;
        if (tag.code == 20) vertices.back().point.y = tag.real();
        if (tag.code == 40) vertices.back().startWidth = tag.real();
        if (tag.code == 41) vertices.back().endWidth = tag.real();
        if (tag.code == 42) vertices.back().bulge = tag.real();
    }
  }
}

void LightPolyline::write(TagWriter& out) const {
  out.raw(100, "AcDbPolyline").integer(90, static_cast<std::int64_t>(vertices.size())).integer(70, flags);
  const bool hasWidths =
      std::any_of(vertices.begin(), vertices.end(), [](const Vertex& v) { return v.startWidth > 0 || v.endWidth > 0; });
  if (!hasWidths) out.real(43, constantWidth);
  if (elevation != 0) out.real(38, elevation);
  if (thickness != 0) out.real(39, thickness);
  for (const Vertex& vertex : vertices) {
    out.point(10, vertex.point.x, vertex.point.y);
    if (hasWidths) {
      out.real(40, vertex.startWidth >= 0 ? vertex.startWidth : constantWidth);
      out.real(41, vertex.endWidth >= 0 ? vertex.endWidth : constantWidth);
    }
    if (vertex.bulge != 0) out.real(42, vertex.bulge);
  }
  if (!(normal == AcGeVector3d::kZAxis)) out.point(210, normal.x, normal.y, normal.z);
}

void OldPolyline::read(TagCursor tags, const text::Codec&) {
  Tag tag;
  bool inside = false;
  while (tags.next(tag)) {
    if (tag.code >= 1000) break;
    if (tag.code == 100) {
      inside = tag.trimmed() != "AcDbEntity";
      continue;
    }
    if (!inside) continue;
    switch (tag.code) {
      case 70:
        flags = static_cast<int>(tag.integer());
        break;
      case 75:
        smoothType = static_cast<int>(tag.integer());
        break;
      case 30:
        elevation = tag.real();
        break;
      case 210:
        normal.x = tag.real();
        break;
      case 220:
        normal.y = tag.real();
        break;
      case 230:
        normal.z = tag.real();
        break;
      default:
        break;
    }
  }
}

void OldPolyline::write(TagWriter& out) const {
  out.raw(100, is3d() ? "AcDb3dPolyline" : "AcDb2dPolyline");
  out.point(10, 0, 0, elevation).integer(70, flags);
  if (smoothType != 0) out.integer(75, smoothType);
  if (!(normal == AcGeVector3d::kZAxis)) out.point(210, normal.x, normal.y, normal.z);
}

namespace {

/// A POLYLINE in space, flat at no height of its own.
class PlainPolyline final : public OwnTags {
 public:
  explicit PlainPolyline(bool isClosed) { polyline_.flags = isClosed ? 9 : 8; }
  void write(TagWriter& out) const override { polyline_.write(out); }

 private:
  OldPolyline polyline_;
};

}  // namespace

const OwnTags* OldPolyline::shelve(DrawingDatabase&) const {
  static const PlainPolyline open(false);
  static const PlainPolyline closed(true);
  const bool isPlain = (flags & ~1) == 8 && smoothType == 0 && elevation == 0 && normal == AcGeVector3d::kZAxis;
  if (!isPlain) return nullptr;
  return (flags & 1) != 0 ? &closed : &open;
}

std::string OldPolyline::vertexTags(std::size_t index, const text::Codec& codec, std::string_view lineEnd) const {
  const Vertex& vertex = vertices[index];
  TagWriter out(codec, lineEnd);
  out.raw(100, "AcDbVertex").raw(100, is3d() ? "AcDb3dPolylineVertex" : "AcDb2dVertex");
  out.point(10, vertex.point.x, vertex.point.y, vertex.point.z);
  if (!is3d()) {
    if (vertex.startWidth > 0 || vertex.endWidth > 0) out.real(40, vertex.startWidth).real(41, vertex.endWidth);
    if (vertex.bulge != 0) out.real(42, vertex.bulge);
  }
  out.integer(70, is3d() ? 32 : 0);
  return out.take();
}

}  // namespace host::database

namespace {

/// Made on first use: entities are constructed by initialisers of other files too.
const host::text::Codec& utf8Codec() {
  static const host::text::Codec codec;
  return codec;
}

template <class T>
AcDbObject* create() {
  return new T;
}

[[maybe_unused]] const bool registered =
    host::database::registerClass({DxfType::LwPolyline, &AcDbPolyline::desc, &create<AcDbPolyline>}) &&
    host::database::registerClass({DxfType::Polyline2d, &AcDb2dPolyline::desc, &create<AcDb2dPolyline>}) &&
    host::database::registerClass({DxfType::Polyline3d, &AcDb3dPolyline::desc, &create<AcDb3dPolyline>}) &&
    host::database::registerClass({DxfType::PolygonMesh, &AcDbPolygonMesh::desc, &create<AcDbPolygonMesh>}) &&
    host::database::registerClass({DxfType::PolyFaceMesh, &AcDbPolyFaceMesh::desc, &create<AcDbPolyFaceMesh>}) &&
    host::database::registerClass({DxfType::Vertex2d, &AcDb2dVertex::desc, &create<AcDb2dVertex>}) &&
    host::database::registerClass({DxfType::Vertex3d, &AcDb3dPolylineVertex::desc, &create<AcDb3dPolylineVertex>}) &&
    host::database::registerClass({DxfType::SeqEnd, &AcDbSequenceEnd::desc, &create<AcDbSequenceEnd>});

/// Vertices of a polyline in a drawing by their ids, of one outside by vertices of their own.
class VertexIterator final : public AcDbObjectIterator {
 public:
  explicit VertexIterator(const AcDbEntity& polyline) {
    if (const Slot* const slot = HostObjectAccess::slot(polyline)) {
      for (Slot* sub = slot->firstSub(); sub != nullptr; sub = sub->nextSub) {
        if (sub->type != DxfType::SeqEnd && !sub->isErased()) slots_.push_back(sub);
      }
      return;
    }
    const OldPolyline& data = dataOf<OldPolyline>(polyline);
    for (const OldPolyline::Vertex& vertex : data.vertices) {
      if (data.is3d()) {
        made_.push_back(std::make_unique<AcDb3dPolylineVertex>(vertex.point));
      } else {
        made_.push_back(std::make_unique<AcDb2dVertex>(vertex.point, vertex.bulge, vertex.startWidth, vertex.endWidth));
      }
    }
  }

  void start() override { position_ = 0; }
  bool done() const override { return position_ >= std::max(slots_.size(), made_.size()); }
  void step() override { ++position_; }
  AcDbObjectId objectId() const override {
    return AcDbObjectId(position_ < slots_.size() ? slots_[position_] : nullptr);
  }
  AcDbEntity* entity() const override { return position_ < made_.size() ? made_[position_].get() : nullptr; }

 private:
  std::vector<Slot*> slots_;
  std::vector<std::unique_ptr<AcDbEntity>> made_;
  std::size_t position_ = 0;
};

double vertexReal(const AcDbObject& vertex, int code) {
  Tag tag;
  return HostObjectAccess::findTag(vertex, "", code, tag) ? tag.real() : 0;
}

int vertexFlags(const AcDbObject& vertex) {
  Tag tag;
  return HostObjectAccess::findTag(vertex, "", 70, tag) ? static_cast<int>(tag.integer()) : 0;
}

template <class V>
Acad::ErrorStatus openVertexOf(const AcDbEntity& polyline, V*& vertex, AcDbObjectId id, AcDb::OpenMode mode,
                               bool openErased) {
  if (!id.isNull() && id.slot()->owner != HostObjectAccess::slot(polyline)) return Acad::eInvalidInput;
  return acdbOpenObject(vertex, id, mode, openErased);
}

}  // namespace

// ---- lightweight ----------------------------------------------------------------------------------------------------

AcDbPolyline::AcDbPolyline() {
  HostObjectAccess::initDetached(*this, "LWPOLYLINE", true);
  auto* const data = new LightPolyline;
  data->changed = true;
  HostObjectAccess::setData(*this, data);
}

AcDbPolyline::AcDbPolyline(unsigned int numVertices) : AcDbPolyline() {
  static_cast<LightPolyline*>(HostObjectAccess::data(*this))->vertices.reserve(std::min(numVertices, 1U << 20));
}

unsigned int AcDbPolyline::numVerts() const {
  return static_cast<unsigned int>(dataOf<LightPolyline>(*this).vertices.size());
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d& point) const {
  const LightPolyline& data = dataOf<LightPolyline>(*this);
  if (index >= data.vertices.size()) return Acad::eInvalidIndex;
  const AcGePoint2d& local = data.vertices[index].point;
  point = ObjectAxes(data.normal).toWorld(local.x, local.y, data.elevation);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d& point) const {
  const LightPolyline& data = dataOf<LightPolyline>(*this);
  if (index >= data.vertices.size()) return Acad::eInvalidIndex;
  point = data.vertices[index].point;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double& bulge) const {
  const LightPolyline& data = dataOf<LightPolyline>(*this);
  if (index >= data.vertices.size()) return Acad::eInvalidIndex;
  bulge = data.vertices[index].bulge;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned int index, double& start, double& end) const {
  const LightPolyline& data = dataOf<LightPolyline>(*this);
  if (index >= data.vertices.size()) return Acad::eInvalidIndex;
  const LightPolyline::Vertex& vertex = data.vertices[index];
  start = vertex.startWidth >= 0 ? vertex.startWidth : data.constantWidth;
  end = vertex.endWidth >= 0 ? vertex.endWidth : data.constantWidth;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
  if (!std::isfinite(bulge)) return Acad::eInvalidInput;
  LightPolyline* const data = dataToChange<LightPolyline>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  if (index >= data->vertices.size()) return Acad::eInvalidIndex;
  data->vertices[index].bulge = bulge;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d& point, double bulge,
                                            double startWidth, double endWidth, Adesk::Int32) {
  if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(bulge)) return Acad::eInvalidInput;
  LightPolyline* const data = dataToChange<LightPolyline>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  if (index > data->vertices.size()) return Acad::eInvalidIndex;
  data->vertices.insert(data->vertices.begin() + index, {point, bulge, startWidth, endWidth});
  return Acad::eOk;
}

bool AcDbPolyline::isClosed() const { return (dataOf<LightPolyline>(*this).flags & 1) != 0; }

Acad::ErrorStatus AcDbPolyline::setClosed(bool closed) {
  LightPolyline* const data = dataToChange<LightPolyline>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->flags = closed ? data->flags | 1 : data->flags & ~1;
  return Acad::eOk;
}

double AcDbPolyline::elevation() const { return dataOf<LightPolyline>(*this).elevation; }

Acad::ErrorStatus AcDbPolyline::setElevation(double elevation) {
  LightPolyline* const data = dataToChange<LightPolyline>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->elevation = elevation;
  return Acad::eOk;
}

AcGeVector3d AcDbPolyline::normal() const { return dataOf<LightPolyline>(*this).normal; }

Acad::ErrorStatus AcDbPolyline::setNormal(const AcGeVector3d& normal) {
  if (!(normal.length() > 0)) return Acad::eInvalidInput;
  LightPolyline* const data = dataToChange<LightPolyline>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->normal = normal.normal();
  return Acad::eOk;
}

// ---- old style ------------------------------------------------------------------------------------------------------

AcDb2dPolyline::AcDb2dPolyline() {
  HostObjectAccess::initDetached(*this, "POLYLINE", true);
  HostObjectAccess::setData(*this, new OldPolyline);
}

AcDb2dPolyline::AcDb2dPolyline(AcDb::Poly2dType type, AcGePoint3dArray& vertices, double elevation,
                               Adesk::Boolean closed, double startWidth, double endWidth, AcGeDoubleArray* bulges)
    : AcDb2dPolyline() {
  auto& data = static_cast<OldPolyline&>(*HostObjectAccess::data(*this));
  data.flags = closed ? 1 : 0;
  data.smoothType = type == AcDb::k2dQuadSplinePoly ? 5 : type == AcDb::k2dCubicSplinePoly ? 6 : 0;
  data.elevation = elevation;
  for (int i = 0; i < vertices.length(); ++i) {
    const double bulge = bulges != nullptr && i < bulges->length() ? bulges->at(i) : 0;
    data.vertices.push_back({{vertices[i].x, vertices[i].y, elevation}, bulge, startWidth, endWidth});
  }
}

AcDb::Poly2dType AcDb2dPolyline::polyType() const {
  const OldPolyline& data = dataOf<OldPolyline>(*this);
  if (data.smoothType == 5) return AcDb::k2dQuadSplinePoly;
  if (data.smoothType == 6) return AcDb::k2dCubicSplinePoly;
  return (data.flags & 2) != 0 ? AcDb::k2dFitCurvePoly : AcDb::k2dSimplePoly;
}

Adesk::Boolean AcDb2dPolyline::isClosed() const { return (dataOf<OldPolyline>(*this).flags & 1) != 0; }
double AcDb2dPolyline::elevation() const { return dataOf<OldPolyline>(*this).elevation; }
AcGeVector3d AcDb2dPolyline::normal() const { return dataOf<OldPolyline>(*this).normal; }
AcDbObjectIterator* AcDb2dPolyline::vertexIterator() const { return new VertexIterator(*this); }

Acad::ErrorStatus AcDb2dPolyline::openVertex(AcDb2dVertex*& vertex, AcDbObjectId id, AcDb::OpenMode mode,
                                             bool openErased) const {
  return openVertexOf(*this, vertex, id, mode, openErased);
}

AcGePoint3d AcDb2dPolyline::vertexPosition(const AcDb2dVertex& vertex) const {
  const OldPolyline& data = dataOf<OldPolyline>(*this);
  const AcGePoint3d local = vertex.position();
  return ObjectAxes(data.normal).toWorld(local.x, local.y, data.elevation);
}

AcDb3dPolyline::AcDb3dPolyline() {
  HostObjectAccess::initDetached(*this, "POLYLINE", true);
  auto* const data = new OldPolyline;
  data->flags = 8;
  HostObjectAccess::setData(*this, data);
}

AcDb3dPolyline::AcDb3dPolyline(AcDb::Poly3dType type, AcGePoint3dArray& vertices, Adesk::Boolean closed)
    : AcDb3dPolyline() {
  auto& data = static_cast<OldPolyline&>(*HostObjectAccess::data(*this));
  data.flags = 8 | (closed ? 1 : 0);
  data.smoothType = type == AcDb::k3dQuadSplinePoly ? 5 : type == AcDb::k3dCubicSplinePoly ? 6 : 0;
  data.vertices.reserve(static_cast<std::size_t>(vertices.length()));
  for (const AcGePoint3d& point : vertices) data.vertices.push_back({point, 0, 0, 0});
}

AcDb::Poly3dType AcDb3dPolyline::polyType() const {
  const int smooth = dataOf<OldPolyline>(*this).smoothType;
  return smooth == 5 ? AcDb::k3dQuadSplinePoly : smooth == 6 ? AcDb::k3dCubicSplinePoly : AcDb::k3dSimplePoly;
}

Adesk::Boolean AcDb3dPolyline::isClosed() const { return (dataOf<OldPolyline>(*this).flags & 1) != 0; }

namespace {

Acad::ErrorStatus setClosedFlag(AcDb3dPolyline& polyline, bool closed) {
  if (!HostObjectAccess::canWrite(polyline)) return Acad::eNotOpenForWrite;
  OldPolyline& data = dataOf<OldPolyline>(polyline);
  data.flags = closed ? data.flags | 1 : data.flags & ~1;
  if (HostObjectAccess::slot(polyline) != nullptr) {
    HostObjectAccess::setTag(polyline, "AcDb3dPolyline", 70, host::database::spelledInteger(70, data.flags));
  }
  return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus AcDb3dPolyline::makeClosed() { return setClosedFlag(*this, true); }
Acad::ErrorStatus AcDb3dPolyline::makeOpen() { return setClosedFlag(*this, false); }
AcDbObjectIterator* AcDb3dPolyline::vertexIterator() const { return new VertexIterator(*this); }

Acad::ErrorStatus AcDb3dPolyline::openVertex(AcDb3dPolylineVertex*& vertex, AcDbObjectId id, AcDb::OpenMode mode,
                                             bool openErased) const {
  return openVertexOf(*this, vertex, id, mode, openErased);
}

AcDbPolygonMesh::AcDbPolygonMesh() { HostObjectAccess::initDetached(*this, "POLYLINE", true); }
AcDbPolyFaceMesh::AcDbPolyFaceMesh() { HostObjectAccess::initDetached(*this, "POLYLINE", true); }

// ---- vertices -------------------------------------------------------------------------------------------------------

AcDb2dVertex::AcDb2dVertex() : AcDb2dVertex(AcGePoint3d()) {}

AcDb2dVertex::AcDb2dVertex(const AcGePoint3d& position, double bulge, double startWidth, double endWidth) {
  OldPolyline one;
  one.vertices.push_back({position, bulge, startWidth, endWidth});
  HostObjectAccess::initDetached(*this, "VERTEX", true, one.vertexTags(0, utf8Codec(), "\n"));
}

AcGePoint3d AcDb2dVertex::position() const {
  return {vertexReal(*this, 10), vertexReal(*this, 20), vertexReal(*this, 30)};
}
double AcDb2dVertex::bulge() const { return vertexReal(*this, 42); }

AcDb::Vertex2dType AcDb2dVertex::vertexType() const {
  const int flags = vertexFlags(*this);
  if ((flags & 16) != 0) return AcDb::k2dSplineCtlVertex;
  if ((flags & 8) != 0) return AcDb::k2dSplineFitVertex;
  return (flags & 1) != 0 ? AcDb::k2dCurveFitVertex : AcDb::k2dVertex;
}

AcDb3dPolylineVertex::AcDb3dPolylineVertex() : AcDb3dPolylineVertex(AcGePoint3d()) {}

AcDb3dPolylineVertex::AcDb3dPolylineVertex(const AcGePoint3d& position) {
  OldPolyline one;
  one.flags = 8;
  one.vertices.push_back({position, 0, 0, 0});
  HostObjectAccess::initDetached(*this, "VERTEX", true, one.vertexTags(0, utf8Codec(), "\n"));
}

AcGePoint3d AcDb3dPolylineVertex::position() const {
  return {vertexReal(*this, 10), vertexReal(*this, 20), vertexReal(*this, 30)};
}

AcDb::Vertex3dType AcDb3dPolylineVertex::vertexType() const {
  const int flags = vertexFlags(*this);
  return (flags & 16) != 0 ? AcDb::k3dControlVertex : (flags & 8) != 0 ? AcDb::k3dFitVertex : AcDb::k3dSimpleVertex;
}

AcDbSequenceEnd::AcDbSequenceEnd() { HostObjectAccess::initDetached(*this, "SEQEND", true); }
