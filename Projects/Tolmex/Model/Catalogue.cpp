#include "Tolmex/Model/Catalogue.h"

#include <algorithm>

namespace OrvLib {
namespace {

template <class List>
constexpr bool isFilled(const List& names) {
  return std::all_of(names.begin(), names.end(), [](const wchar_t* name) { return name != nullptr; });
}

constexpr bool everyLayerHasItsPlace() {
  return std::all_of(kElementLayers.begin(), kElementLayers.end(),
                     [](const LayerRow& layer) { return layer.name != nullptr; });
}
static_assert(everyLayerHasItsPlace() && isFilled(kTopLayers), "two layers of the catalogue claim one place");

}  // namespace

std::optional<Category> categoryOfTag(std::wstring_view tag) {
  for (std::size_t i = 0; i < kCategories.size(); ++i) {
    if (tag == kCategories[i].tag) return static_cast<Category>(i);
  }
  return std::nullopt;
}

}  // namespace OrvLib
