// Lines, points, old-style polylines, block references.
#pragma once

#include "acarray.h"
#include "dbmain.h"

class ADESK_EXPORT AcDbLine : public AcDbCurve {
  ACRX_DECLARE_MEMBERS(AcDbLine);

 public:
  AcDbLine();
  AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end);
  AcGePoint3d startPoint() const;
  AcGePoint3d endPoint() const;
  Acad::ErrorStatus setStartPoint(const AcGePoint3d& point);
  Acad::ErrorStatus setEndPoint(const AcGePoint3d& point);
};

class ADESK_EXPORT AcDbPoint : public AcDbEntity {
  ACRX_DECLARE_MEMBERS(AcDbPoint);

 public:
  AcDbPoint();
  explicit AcDbPoint(const AcGePoint3d& position);
  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);
};

/// Walks the vertices of an old-style polyline or the attributes of a reference. The caller deletes it.
class ADESK_EXPORT AcDbObjectIterator : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcDbObjectIterator);

 public:
  virtual void start() = 0;
  virtual bool done() const = 0;
  virtual void step() = 0;
  virtual AcDbObjectId objectId() const = 0;
  /// The vertex of a polyline that is not in a database; null otherwise.
  virtual AcDbEntity* entity() const = 0;
};

class ADESK_EXPORT AcDbVertex : public AcDbEntity {
  ACRX_DECLARE_MEMBERS(AcDbVertex);

 protected:
  AcDbVertex() = default;
};

class ADESK_EXPORT AcDb2dVertex : public AcDbVertex {
  ACRX_DECLARE_MEMBERS(AcDb2dVertex);

 public:
  AcDb2dVertex();
  AcDb2dVertex(const AcGePoint3d& position, double bulge = 0, double startWidth = 0, double endWidth = 0);
  /// In the polyline's object coordinates.
  AcGePoint3d position() const;
  /// Tangent of a quarter of the included angle, positive counter-clockwise.
  double bulge() const;
  AcDb::Vertex2dType vertexType() const;
};

class ADESK_EXPORT AcDb3dPolylineVertex : public AcDbVertex {
  ACRX_DECLARE_MEMBERS(AcDb3dPolylineVertex);

 public:
  AcDb3dPolylineVertex();
  explicit AcDb3dPolylineVertex(const AcGePoint3d& position);
  AcGePoint3d position() const;
  AcDb::Vertex3dType vertexType() const;
};

class ADESK_EXPORT AcDbSequenceEnd : public AcDbEntity {
  ACRX_DECLARE_MEMBERS(AcDbSequenceEnd);

 public:
  AcDbSequenceEnd();
};

class ADESK_EXPORT AcDb2dPolyline : public AcDbCurve {
  ACRX_DECLARE_MEMBERS(AcDb2dPolyline);

 public:
  AcDb2dPolyline();
  AcDb2dPolyline(AcDb::Poly2dType type, AcGePoint3dArray& vertices, double elevation = 0, Adesk::Boolean closed = false,
                 double startWidth = 0, double endWidth = 0, AcGeDoubleArray* bulges = nullptr);
  AcDb::Poly2dType polyType() const;
  Adesk::Boolean isClosed() const;
  double elevation() const;
  AcGeVector3d normal() const;
  AcDbObjectIterator* vertexIterator() const;
  Acad::ErrorStatus openVertex(AcDb2dVertex*& vertex, AcDbObjectId id, AcDb::OpenMode mode,
                               bool openErased = false) const;
  /// World coordinates.
  AcGePoint3d vertexPosition(const AcDb2dVertex& vertex) const;
};

class ADESK_EXPORT AcDb3dPolyline : public AcDbCurve {
  ACRX_DECLARE_MEMBERS(AcDb3dPolyline);

 public:
  AcDb3dPolyline();
  AcDb3dPolyline(AcDb::Poly3dType type, AcGePoint3dArray& vertices, Adesk::Boolean closed = false);
  AcDb::Poly3dType polyType() const;
  Adesk::Boolean isClosed() const;
  Acad::ErrorStatus makeClosed();
  Acad::ErrorStatus makeOpen();
  AcDbObjectIterator* vertexIterator() const;
  Acad::ErrorStatus openVertex(AcDb3dPolylineVertex*& vertex, AcDbObjectId id, AcDb::OpenMode mode,
                               bool openErased = false) const;
};

class ADESK_EXPORT AcDbPolygonMesh : public AcDbEntity {
  ACRX_DECLARE_MEMBERS(AcDbPolygonMesh);

 public:
  AcDbPolygonMesh();
};

class ADESK_EXPORT AcDbPolyFaceMesh : public AcDbEntity {
  ACRX_DECLARE_MEMBERS(AcDbPolyFaceMesh);

 public:
  AcDbPolyFaceMesh();
};

class ADESK_EXPORT AcDbBlockReference : public AcDbEntity {
  ACRX_DECLARE_MEMBERS(AcDbBlockReference);

 public:
  AcDbBlockReference();
  AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId block);
  AcDbObjectId blockTableRecord() const;
  Acad::ErrorStatus setBlockTableRecord(AcDbObjectId block);
  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);
  /// Radians.
  double rotation() const;
  Acad::ErrorStatus setRotation(double radians);
  AcGeScale3d scaleFactors() const;
  Acad::ErrorStatus setScaleFactors(const AcGeScale3d& scale);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
};
