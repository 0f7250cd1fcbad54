#include "Tolmex/Reactors.h"

#include <optional>
#include <string_view>

#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/Reports/Failures.h"
#include "Tolmex/DocData.h"
#include "Tolmex/DocumentLock.h"
#include "Tolmex/Model/Names.h"

namespace OrvLib {
namespace {

// The two colours that the roof fill layer has until the user gives it another one.
constexpr int kRoofOnLight = 255;
constexpr int kRoofOnBlack = 250;

void adaptRoofLayer(bool isBlackBackground) {
  if (hasTrueColor(layers::kRoofFill)) return;
  const std::optional<int> color = layerColor(layers::kRoofFill);
  const int wanted = isBlackBackground ? kRoofOnBlack : kRoofOnLight;
  if ((color == kRoofOnLight || color == kRoofOnBlack) && color != wanted) setLayerColor(layers::kRoofFill, wanted);
}

}  // namespace

DocDataReactor::DocDataReactor(bool autoAttach, AcApDocument* document) {
  if (!autoAttach || document == nullptr) return;
  if (document->database()->addReactor(this) == Acad::eOk) document_ = document;
}

DocDataReactor::~DocDataReactor() {
  if (document_ != nullptr) document_->database()->removeReactor(this);
}

asdkeditorReactor::asdkeditorReactor(bool autoAttach) {
  AcEditor* const editor = autoAttach ? acedEditor : nullptr;
  if (editor == nullptr) return;
  editor->addReactor(this);
  isAttached_ = true;
}

asdkeditorReactor::~asdkeditorReactor() {
  AcEditor* const editor = isAttached_ ? acedEditor : nullptr;
  if (editor != nullptr) editor->removeReactor(this);
}

void asdkeditorReactor::layoutSwitched(const ACHAR* newLayoutName) {
  guarded([&] {
    AcColorSettings colors{};
    if (acedGetCurrentColors(&colors) == FALSE) return printFailed(newLayoutName);
    const bool isModel = newLayoutName != nullptr && std::wstring_view(newLayoutName) == L"Model";
    CDocData& data = currentDocData();
    data.backgroundColor = isModel ? colors.dwGfxModelBkColor : colors.dwGfxLayoutBkColor;
    // Outside commands the host has not locked the document.
    const DocumentLock lock;
    if (lock) adaptRoofLayer(data.backgroundColor == 0);
  });
}

}  // namespace OrvLib
