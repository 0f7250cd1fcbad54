// Watching the cursor.
#pragma once

#include "acarray.h"
#include "dbmain.h"

class AcApDocument;
class AcDbCustomOsnapMode;
class AcGeCurve3d;
class AcGiViewportDraw;
class AcEdInputPointMonitor;

/// A cursor position with what lies under it, and what a monitor may add: the packed form that newer SDKs have beside
/// the long one. This host calls the long one alone; the names are declared so that a build for the packed form can be
/// checked.
class AcEdInputPoint {
 public:
  const AcArray<AcDbObjectId>& pickedEntities() const;
};
class AcEdInputPointMonitorResult {
 public:
  void setAppendToTooltipStr(bool append);
  void setAdditionalTooltipString(const ACHAR* text);
};

template <class T>
using AcArrayObjectCopy = AcArray<T, AcArrayObjectCopyReallocator<T>>;

/// Sees every cursor position with what lies under it and may add to the tooltip. Not owned by the manager.
class ADESK_EXPORT AcEdInputPointMonitor : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcEdInputPointMonitor);

 public:
  virtual Acad::ErrorStatus monitorInputPoint(
      bool& appendToTooltipStr, ACHAR*& additionalTooltipString, AcGiViewportDraw* drawContext, AcApDocument* document,
      bool pointComputed, int history, const AcGePoint3d& lastPoint, const AcGePoint3d& rawPoint,
      const AcGePoint3d& grippedPoint, const AcGePoint3d& cartesianSnappedPoint, const AcGePoint3d& osnappedPoint,
      AcDb::OsnapMask osnapMask, const AcArray<AcDbCustomOsnapMode*>& customOsnapModes, AcDb::OsnapMask osnapOverrides,
      const AcArray<AcDbCustomOsnapMode*>& customOsnapOverrides, const AcArray<AcDbObjectId>& apertureEntities,
      const AcArrayObjectCopy<AcDbObjectIdArray>& nestedApertureEntities,
      const AcArray<Adesk::GsMarker>& gsSelectionMark, const AcArray<AcDbObjectId>& keyPointEntities,
      const AcArrayObjectCopy<AcDbObjectIdArray>& nestedKeyPointEntities,
      const AcArray<Adesk::GsMarker>& keyPointGsSelectionMark, const AcArray<AcGeCurve3d*>& alignmentPaths,
      const AcGePoint3d& computedPoint, const ACHAR* tooltipString);
#ifdef TOLMEX_PACKED_INPUT_POINT
  virtual Acad::ErrorStatus monitorInputPoint(const AcEdInputPoint& input, AcEdInputPointMonitorResult& output);
#endif
  virtual bool excludeFromOsnapCalculation() { return false; }
};

class ADESK_EXPORT AcEdInputPointManager : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcEdInputPointManager);

 public:
  virtual Acad::ErrorStatus addPointMonitor(AcEdInputPointMonitor* monitor) = 0;
  virtual Acad::ErrorStatus removePointMonitor(AcEdInputPointMonitor* monitor) = 0;
  virtual Acad::ErrorStatus turnOnForcedPick() = 0;
  virtual Acad::ErrorStatus turnOffForcedPick() = 0;
};
