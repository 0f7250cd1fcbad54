// Hatches.
#pragma once

#include "acarray.h"
#include "dbmain.h"
#include "gepnt2dar.h"

/// A planar area filled with a pattern. The plane is given by normal and elevation; boundary points are taken into it.
class ADESK_EXPORT AcDbHatch : public AcDbEntity {
  ACRX_DECLARE_MEMBERS(AcDbHatch);

 public:
  enum HatchPatternType { kUserDefined = 0, kPreDefined = 1, kCustomDefined = 2 };
  enum HatchStyle { kNormal = 0, kOuter = 1, kIgnore = 2 };
  enum HatchLoopType {
    kDefault = 0,
    kExternal = 1,
    kPolyline = 2,
    kDerived = 4,
    kTextbox = 8,
    kOutermost = 0x10,
    kNotClosed = 0x20,
    kSelfIntersecting = 0x40,
    kTextIsland = 0x80,
    kDuplicate = 0x100,
    kIsAnnotative = 0x200
  };

  AcDbHatch();

  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
  double elevation() const;
  Acad::ErrorStatus setElevation(double elevation);
  bool associative() const;
  Acad::ErrorStatus setAssociative(bool associative);
  HatchStyle hatchStyle() const;
  Acad::ErrorStatus setHatchStyle(HatchStyle style);

  const ACHAR* patternName() const;
  HatchPatternType patternType() const;
  bool isSolidFill() const;
  /// Radians.
  double patternAngle() const;
  Acad::ErrorStatus setPatternAngle(double radians);
  double patternScale() const;
  /// eInvalidInput unless greater than 0 and finite.
  Acad::ErrorStatus setPatternScale(double scale);
  /// Takes the pattern's lines with the angle and scale set before. eInvalidInput for an unknown name.
  Acad::ErrorStatus setPattern(HatchPatternType type, const ACHAR* name);
  int numPatternDefinitions() const;
  /// Scaled and rotated: angle in radians, base point, offset, dashes (negative: gaps). eInvalidIndex.
  Acad::ErrorStatus getPatternDefinitionAt(int index, double& angle, double& baseX, double& baseY, double& offsetX,
                                           double& offsetY, AcGeDoubleArray& dashes) const;

  int numLoops() const;
  /// One loop from the boundary of existing entities, which must not be open for write. eInvalidInput for an open,
  /// self-crossing or zero-area boundary, for fewer than three points and for numbers that are not finite.
  Acad::ErrorStatus appendLoop(Adesk::Int32 loopType, const AcDbObjectIdArray& boundaries);
  /// One polyline loop in the hatch's plane; bulges empty or one per vertex. Status as above.
  Acad::ErrorStatus appendLoop(Adesk::Int32 loopType, const AcGePoint2dArray& vertices, const AcGeDoubleArray& bulges);
  /// eInvalidInput without a loop or pattern; eHatchTooDense above a million pattern lines or dashes.
  Acad::ErrorStatus evaluateHatch(bool underestimateNumLines = false);
};
