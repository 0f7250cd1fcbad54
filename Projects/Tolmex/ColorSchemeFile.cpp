#include "Tolmex/ColorSchemeFile.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Status.h"
#include "OrvLib/DataStruct/TextFile.h"
#include "Tolmex/Model/Catalogue.h"

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

AreaColors areaColorsInDrawing() {
  AreaColors colors;
  std::transform(kSchemeColors.begin(), kSchemeColors.end(), colors.begin(), [](const SchemeColor& color) {
    return color.areaLayer != nullptr ? layerColor(color.areaLayer) : std::nullopt;
  });
  return colors;
}

}  // namespace

void takeColorsFromDrawing(CDocData& data) {
  followAreaColors(data);
  data.colorsFromDrawing = std::any_of(data.seenAreaColors.begin(), data.seenAreaColors.end(),
                                       [](const std::optional<int>& color) { return color.has_value(); });
}

void followAreaColors(CDocData& data) {
  const AreaColors present = areaColorsInDrawing();
  for (std::size_t i = 0; i < present.size(); ++i) {
    int ColorScheme::*const field = kSchemeColors[i].field;
    if (present[i] != data.seenAreaColors[i]) data.colors.*field = present[i].value_or(data.preparedColors.*field);
  }
  data.seenAreaColors = present;
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

void applyAreaColors(CDocData& data) {
  for (const LayerRow& layer : kElementLayers) elementLayer(layer.name);
  for (const SchemeColor& color : kSchemeColors) {
    if (color.areaLayer != nullptr) setLayerColor(color.areaLayer, data.colors.*color.field);
  }
  data.seenAreaColors = areaColorsInDrawing();
}

void ensureElementLayers(CDocData& data) {
  for (const LayerRow& layer : kElementLayers) ensureLayer(layer.name, layer.color(data.colors), kContinuous);
  data.seenAreaColors = areaColorsInDrawing();
}

const ACHAR* elementLayer(const ACHAR* name) {
  if (!findLayer(name).isNull()) return name;
  const auto* const found = std::find_if(kElementLayers.begin(), kElementLayers.end(),
                                         [&](const LayerRow& layer) { return std::wstring_view(layer.name) == name; });
  if (found != kElementLayers.end()) ensureLayer(name, found->color(currentDocData().colors), kContinuous);
  return name;
}

bool putOnElementLayer(AcDbEntity& entity, const ACHAR* name) {
  return succeeded(entity.setLayer(elementLayer(name)), name);
}

}  // namespace OrvLib
