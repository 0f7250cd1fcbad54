#include "Tolmex/ColorSchemeFile.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/Layers.h"
#include "OrvLib/DataStruct/TextFile.h"
#include "Tolmex/Catalogue.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kFileName = L"tolm.ini";

std::optional<std::wstring> findSchemeFile() {
  std::array<ACHAR, 1024> path{};
  const Acad::ErrorStatus status =
      acdbHostApplicationServices()->findFile(path.data(), static_cast<int>(path.size()), kFileName);
  if (status != Acad::eOk) return std::nullopt;
  return path.data();
}

}  // namespace

void takeColorsFromDrawing(CDocData& data) {
  for (const SchemeColor& color : kSchemeColors) {
    if (color.areaLayer == nullptr) continue;
    if (const std::optional<int> present = layerColor(color.areaLayer)) {
      data.colors.*color.field = *present;
      data.colorsFromDrawing = true;
    }
  }
}

void readColorSchemeFile(CDocData& data) {
  if (data.colorsFromDrawing) return;
  const std::optional<std::wstring> path = findSchemeFile();
  if (!path) return;
  if (const auto lines = readLines(*path)) readSchemeLines(*lines, data.colors);
}

void writeColorSchemeFile(const ColorScheme& scheme) {
  const std::wstring path = findSchemeFile().value_or(kFileName);
  if (!writeText(path, schemeText(scheme))) acutPrintf(L"\ntolm.ini:ä ei pystytä kirjoittamaan.\n");
}

void applyAreaColors(const ColorScheme& scheme) {
  for (const SchemeColor& color : kSchemeColors) {
    if (color.areaLayer != nullptr) setLayerColor(color.areaLayer, scheme.*color.field);
  }
}

void ensureElementLayers(const ColorScheme& scheme) {
  for (const LayerRow& layer : kElementLayers) ensureLayer(layer.name, layer.color(scheme), kLinetypeContinuous);
}

void makeElementLayerIfMissing(const ACHAR* name) {
  if (!findLayer(name).isNull()) return;
  const auto* const found = std::find_if(kElementLayers.begin(), kElementLayers.end(),
                                         [&](const LayerRow& layer) { return std::wstring_view(layer.name) == name; });
  if (found != kElementLayers.end()) ensureLayer(name, found->color(currentDocData().colors), kLinetypeContinuous);
}

}  // namespace OrvLib
