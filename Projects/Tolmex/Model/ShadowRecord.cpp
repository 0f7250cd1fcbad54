#include "Tolmex/Model/ShadowRecord.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/Model/Names.h"

namespace OrvLib {
namespace {

namespace keys = shadow_keys;

// Group codes of the items. Any code below kFirstCodeWithoutText holds text.
constexpr short kTextCode = 1;
constexpr short kRealCode = 40;
constexpr short kShortCode = 70;
constexpr short kFirstCodeWithoutText = 10;

// The hatch type is a number in the record.
constexpr std::int16_t kStoredLines = 10;
constexpr std::int16_t kStoredDots = 20;

std::optional<double> numberBehind(std::wstring_view key, const DataItems& items) {
  const auto found = std::find_if(items.begin(), items.end(), [&](const DataItem& item) {
    return item.code < kFirstCodeWithoutText && item.isText(key);
  });
  if (found == items.end() || found + 1 == items.end()) return std::nullopt;
  const std::optional<double> number = (found + 1)->number();
  return number && std::isfinite(*number) ? number : std::nullopt;
}

}  // namespace

bool ShadowRecord::isDots() const { return hatchType == kStoredDots; }

ShadowRecord readShadowRecord(const DataItems& items) {
  return {numberBehind(keys::kAngle, items), numberBehind(keys::kColor, items), numberBehind(keys::kLength, items),
          numberBehind(keys::kScale, items), numberBehind(keys::kHatchType, items)};
}

ShadowSettings settingsOf(const ShadowRecord& record) {
  ShadowSettings settings;
  settings.shadowAngleRad = record.angleRad.value_or(settings.shadowAngleRad);
  if (record.color) settings.shadowColor = toInt(*record.color);
  settings.shadowLengthPerFloor = record.lengthPerFloor.value_or(settings.shadowLengthPerFloor);
  settings.shadowScale = record.scale.value_or(settings.shadowScale);
  if (record.isDots()) settings.shadowHatchType = kShadowDots;
  return settings;
}

DataItems shadowRecordItems(const ShadowSettings& settings) {
  DataItems items;
  const auto add = [&](const wchar_t* key, short code, DataItem::Value value) {
    items.emplace_back(kTextCode, key);
    items.emplace_back(code, std::move(value));
  };
  add(keys::kAngle, kRealCode, settings.shadowAngleRad);
  add(keys::kColor, kShortCode, static_cast<std::int16_t>(settings.shadowColor));
  add(keys::kLength, kRealCode, settings.shadowLengthPerFloor);
  add(keys::kScale, kRealCode, settings.shadowScale);
  add(keys::kHatchType, kShortCode, settings.shadowHatchType == kShadowDots ? kStoredDots : kStoredLines);
  return items;
}

}  // namespace OrvLib
