#include "Tolmex/Fences.h"

#include <optional>
#include <string>

#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/Status.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/EntityTag.h"

namespace OrvLib {
namespace {

void alertThatOnlyFencesHaveHeights() {
  acedAlert(
      L"\nAinoastaan lauta-aidalle tai kivimuurille voi asettaa korkeuden.\n(rakennuksen harjan korkeus asetetaan "
      L"valitsemalla Muokkaa->Rakennus->Aseta harjaviiva");
}

bool isFenceId(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id, AcDb::kForRead);
  return entity && isFence(*entity);
}

}  // namespace

bool isFence(const AcDbEntity& entity) {
  const std::optional<Category> category = knownCategory(entity);
  return category == Category::BoardFence || category == Category::StoneFence;
}

bool setFenceHeight(double height, AcDbEntity& fence) {
  if (!isFence(fence)) {
    alertThatOnlyFencesHaveHeights();
    return false;
  }
  const std::wstring handle = handleText(fence);
  if (!fence.isWriteEnabled() && !succeeded(fence.upgradeOpen(), handle.c_str())) return false;
  const bool isWritten = replaceTag(fence, readCategory(fence).value_or(L""), formatNumber(height), handle);
  if (!isWritten) printFailed(kHeightKey, handle.c_str());
  return isWritten;
}

void setHeights(const SelectedIds& polylines) {
  if (polylines.empty()) return;
  if (polylines.size() == 1 && !isFenceId(polylines.front())) {
    alertThatOnlyFencesHaveHeights();
    return;
  }
  ads_real height = 0;
  if (acedGetReal(L"Anna korkeus:", &height) != RTNORM) return;
  for (const AcDbObjectId id : polylines) {
    const Opened<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity) setFenceHeight(height, *entity);
  }
}

}  // namespace OrvLib
