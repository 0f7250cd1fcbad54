// Lightweight polylines.
#pragma once

#include "dbmain.h"

class ADESK_EXPORT AcDbPolyline : public AcDbCurve {
  ACRX_DECLARE_MEMBERS(AcDbPolyline);

 public:
  AcDbPolyline();
  explicit AcDbPolyline(unsigned int numVertices);

  unsigned int numVerts() const;
  /// World coordinates; eInvalidIndex.
  Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint3d& point) const;
  /// Object coordinates of the polyline's plane; eInvalidIndex.
  Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint2d& point) const;
  /// Of the segment that starts at the vertex: tangent of a quarter of the included angle, positive counter-clockwise.
  Acad::ErrorStatus getBulgeAt(unsigned int index, double& bulge) const;
  Acad::ErrorStatus setBulgeAt(unsigned int index, double bulge);
  Acad::ErrorStatus getWidthsAt(unsigned int index, double& start, double& end) const;
  /// Inserts before `index`; negative widths mean the constant width or 0.
  Acad::ErrorStatus addVertexAt(unsigned int index, const AcGePoint2d& point, double bulge = 0, double startWidth = -1,
                                double endWidth = -1, Adesk::Int32 vertexIdentifier = 0);
  bool isClosed() const;
  Acad::ErrorStatus setClosed(bool closed);
  double elevation() const;
  Acad::ErrorStatus setElevation(double elevation);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
};
