#include "Geometry/Layers.h"

#include <cstdlib>

namespace host::geometry {

const LayerState& LayerStates::at(std::uint32_t layerIndex) {
  if (layerIndex >= states_.size()) states_.resize(layerIndex + 1);
  auto& state = states_[layerIndex];
  if (state == nullptr) state = std::make_unique<LayerState>(read(layerIndex));
  return *state;
}

LayerState LayerStates::read(std::uint32_t layerIndex) const {
  LayerState state;
  if (layerIndex == 0) return state;
  state.name = db_.layerName(layerIndex);
  const database::Slot* record = db_.layerRecord(layerIndex);
  if (record == nullptr || record->isErased()) return state;
  database::TagCursor tags = record->tags();
  bool isTransparency = false;
  for (database::Tag tag; tags.next(tag);) {
    switch (tag.code) {
      case 6:
        state.linetype = tag.trimmed();
        break;
      case 62: {
        const auto color = tag.integer();
        state.off = color < 0;
        state.color = static_cast<int>(std::llabs(color) & 0xFF);
        break;
      }
      case 70:
        state.frozen = (tag.integer() & 1) != 0;
        state.locked = (tag.integer() & 4) != 0;
        break;
      case 290:
        state.plottable = tag.integer() != 0;
        break;
      case 370:
        state.lineweight = static_cast<int>(tag.integer());
        break;
      case 420:
        state.trueColor = tag.integer() & 0xFFFFFF;
        break;
      case 1001:
        isTransparency = tag.trimmed() == "AcCmTransparency";
        break;
      case 1071:
        if (isTransparency) state.transparency = tag.integer();
        break;
      default:
        break;
    }
  }
  return state;
}

}  // namespace host::geometry
