#include "Tolmex/Catalogue.h"

namespace OrvLib {

std::optional<Category> categoryOfTag(std::wstring_view tag) {
  for (std::size_t i = 0; i < kCategories.size(); ++i) {
    if (tag == kCategories[i].tag) return static_cast<Category>(i);
  }
  return std::nullopt;
}

}  // namespace OrvLib
