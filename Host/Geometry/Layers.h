// Layer records as pictures and extents use them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::geometry {

struct LayerState {
  std::wstring name;
  std::string_view linetype;      // in the drawing's encoding; empty: none given
  int color = 7;                  // colour index, never negative
  std::int64_t trueColor = -1;    // 0xRRGGBB, or -1
  int lineweight = -3;            // hundredths of a millimetre, -3 default
  std::int64_t transparency = 0;  // as tag 440
  bool off = false, frozen = false, locked = false, plottable = true;
  bool isDrawn() const { return !off && !frozen; }
};

/// Reads each layer once. An index without a record answers the defaults.
class LayerStates {
 public:
  explicit LayerStates(const database::DrawingDatabase& db) : db_(db) {}
  const LayerState& at(std::uint32_t layerIndex);

 private:
  LayerState read(std::uint32_t layerIndex) const;

  const database::DrawingDatabase& db_;
  std::vector<std::unique_ptr<LayerState>> states_;
};

}  // namespace host::geometry
