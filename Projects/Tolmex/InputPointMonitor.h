// The element's name in the cursor tooltip.
#pragma once

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

using NestedIds = AcArray<AcDbObjectIdArray, AcArrayObjectCopyReallocator<AcDbObjectIdArray>>;

/// Watches the cursor over one document for as long as the document's record lives.
class InputPointMonitor : public AcEdInputPointMonitor {
 public:
  /// Attaches itself when asked to and a document is given; otherwise it holds none.
  InputPointMonitor(bool autoAttach, AcApDocument* document);
  ~InputPointMonitor() override;

  /// Adds the category of the element or the data of the building under the cursor to the tooltip. The host calls one
  /// of two forms; a build against an SDK without the long one says so at `override` and wants the definition.
#ifdef TOLMEX_PACKED_INPUT_POINT
  Acad::ErrorStatus monitorInputPoint(const AcEdInputPoint& input, AcEdInputPointMonitorResult& output) override;
#else
  Acad::ErrorStatus monitorInputPoint(
      bool& appendToTooltipStr, ACHAR*& additionalTooltipString, AcGiViewportDraw* drawContext, AcApDocument* document,
      bool pointComputed, int history, const AcGePoint3d& lastPoint, const AcGePoint3d& rawPoint,
      const AcGePoint3d& grippedPoint, const AcGePoint3d& cartesianSnappedPoint, const AcGePoint3d& osnappedPoint,
      AcDb::OsnapMask osnapMask, const AcArray<AcDbCustomOsnapMode*>& customOsnapModes, AcDb::OsnapMask osnapOverrides,
      const AcArray<AcDbCustomOsnapMode*>& customOsnapOverrides, const AcArray<AcDbObjectId>& apertureEntities,
      const NestedIds& nestedApertureEntities, const AcArray<Adesk::GsMarker>& gsSelectionMark,
      const AcArray<AcDbObjectId>& keyPointEntities, const NestedIds& nestedKeyPointEntities,
      const AcArray<Adesk::GsMarker>& keyPointGsSelectionMark, const AcArray<AcGeCurve3d*>& alignmentPaths,
      const AcGePoint3d& computedPoint, const ACHAR* tooltipString) override;
#endif

 private:
  AcApDocument* document_ = nullptr;
};

}  // namespace OrvLib
