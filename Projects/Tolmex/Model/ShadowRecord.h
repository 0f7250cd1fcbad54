// How shadows fall in one drawing, and the record that the drawing keeps of it.
#pragma once

#include <optional>
#include <string>

#include "OrvLib/DataStruct/DataItems.h"

namespace OrvLib {

inline constexpr const wchar_t* kShadowLines = L"LINE";
inline constexpr const wchar_t* kShadowDots = L"DOTS";

struct ShadowSettings {
  double shadowAngleRad = 0.7853981633974483;  // plan direction in which shadows fall, counter-clockwise from +X
  int shadowColor = 7;                         // of the shadow layer
  double shadowLengthPerFloor = 3.0;           // drawing units that one floor casts
  double shadowScale = 0.15;                   // of the hatch pattern
  std::wstring shadowHatchType = kShadowLines;

  bool operator==(const ShadowSettings&) const = default;
};

/// What the record holds; nothing for a key that is missing or has something else than a finite number behind it.
struct ShadowRecord {
  std::optional<double> angleRad;        // plan direction, counter-clockwise from +X
  std::optional<double> color;           // index
  std::optional<double> lengthPerFloor;  // drawing units
  std::optional<double> scale;           // of the hatch pattern
  std::optional<double> hatchType;       // a number for each pattern: isDots

  bool isDots() const;
};

/// Reads the record's items, in which every key is a text and its value the next item: a real or an integer, whatever
/// code it is stored under. The order of the keys does not matter, their case does, and the first of two counts.
ShadowRecord readShadowRecord(const DataItems& items);

/// The settings that a record gives; the defaults for what it lacks.
ShadowSettings settingsOf(const ShadowRecord& record);

/// The items that settings are stored as.
DataItems shadowRecordItems(const ShadowSettings& settings);

}  // namespace OrvLib
