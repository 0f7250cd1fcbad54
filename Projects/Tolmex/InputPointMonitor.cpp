#include "Tolmex/InputPointMonitor.h"

#include <array>
#include <optional>
#include <string>

#include "OrvLib/ARX/Opened.h"
#include "OrvLib/Reports/Failures.h"
#include "Tolmex/BuildingRecord.h"
#include "Tolmex/EntityTag.h"

namespace OrvLib {
namespace {

// The host copies the text after the call, so it must outlive it.
std::array<ACHAR, 512> tooltipBuffer;

std::optional<std::wstring> tooltipOf(const AcDbEntity& entity) {
  if (const std::optional<Category> category = knownCategory(entity)) return row(*category).tag;
  BuildingRecord<std::wstring> building;
  if (!readBuildingRecord(entity, building)) return std::nullopt;
  return buildingTooltip(building);
}

/// The text of the first entity, null without one. It stays until the next call.
ACHAR* tooltipUnderCursor(const AcArray<AcDbObjectId>& entities) {
  static bool wasTold = false;
  ACHAR* shown = nullptr;
  guardedOnce(wasTold, [&] {
    if (entities.isEmpty()) return;
    const Opened<AcDbEntity> entity(entities.first(), AcDb::kForRead);
    if (!entity) return;
    const std::optional<std::wstring> text = tooltipOf(*entity);
    if (!text) return;
    const std::size_t length = text->copy(tooltipBuffer.data(), tooltipBuffer.size() - 1);
    tooltipBuffer[length] = L'\0';
    shown = tooltipBuffer.data();
  });
  return shown;
}

}  // namespace

InputPointMonitor::InputPointMonitor(bool autoAttach, AcApDocument* document) {
  if (!autoAttach || document == nullptr) return;
  if (document->inputPointManager()->addPointMonitor(this) == Acad::eOk) document_ = document;
}

InputPointMonitor::~InputPointMonitor() {
  if (document_ != nullptr) document_->inputPointManager()->removePointMonitor(this);
}

#ifdef TOLMEX_PACKED_INPUT_POINT

Acad::ErrorStatus InputPointMonitor::monitorInputPoint(const AcEdInputPoint& input,
                                                       AcEdInputPointMonitorResult& output) {
  if (const ACHAR* const text = tooltipUnderCursor(input.pickedEntities())) {
    output.setAppendToTooltipStr(true);
    output.setAdditionalTooltipString(text);
  }
  return Acad::eOk;
}

#else

Acad::ErrorStatus InputPointMonitor::monitorInputPoint(
    bool& appendToTooltipStr, ACHAR*& additionalTooltipString, AcGiViewportDraw*, AcApDocument*, bool, int,
    const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&, AcDb::OsnapMask,
    const AcArray<AcDbCustomOsnapMode*>&, AcDb::OsnapMask, const AcArray<AcDbCustomOsnapMode*>&,
    const AcArray<AcDbObjectId>& apertureEntities, const NestedIds&, const AcArray<Adesk::GsMarker>&,
    const AcArray<AcDbObjectId>&, const NestedIds&, const AcArray<Adesk::GsMarker>&, const AcArray<AcGeCurve3d*>&,
    const AcGePoint3d&, const ACHAR*) {
  if (ACHAR* const text = tooltipUnderCursor(apertureEntities)) {
    appendToTooltipStr = true;
    additionalTooltipString = text;
  }
  return Acad::eOk;
}

#endif

}  // namespace OrvLib
