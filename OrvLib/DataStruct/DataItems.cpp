#include "OrvLib/DataStruct/DataItems.h"

#include <algorithm>

#include "OrvLib/DataStruct/Text.h"

namespace OrvLib {
namespace {

std::optional<std::wstring> valueText(const DataItem& item) {
  if (item.code == kXDataControl) return std::nullopt;
  if (item.text() != nullptr) return *item.text();
  if (const auto* const real = std::get_if<double>(&item.value)) return formatNumber(*real);
  if (const auto* const small = std::get_if<std::int16_t>(&item.value)) return std::to_wstring(*small);
  if (const auto* const large = std::get_if<std::int32_t>(&item.value)) return std::to_wstring(*large);
  return std::nullopt;
}

}  // namespace

std::optional<double> DataItem::number() const {
  if (const auto* const real = std::get_if<double>(&value)) return *real;
  if (const auto* const small = std::get_if<std::int16_t>(&value)) return *small;
  if (const auto* const large = std::get_if<std::int32_t>(&value)) return *large;
  return std::nullopt;
}

std::optional<std::wstring> valueOfKey(const DataItems& items, std::wstring_view application, std::wstring_view key) {
  if (items.empty() || !items.front().isText(application)) return std::nullopt;
  auto found = std::find_if(items.begin(), items.end(),
                            [&](const DataItem& item) { return item.code == kXDataText && item.isText(key); });
  if (found == items.end()) return std::nullopt;
  const auto value = std::find_if(
      found + 1, items.end(), [](const DataItem& item) { return item.code != kXDataControl || !item.isText(L"}"); });
  return value != items.end() ? valueText(*value) : std::nullopt;
}

}  // namespace OrvLib
