// The record of shadow settings in a drawing, read without a host: by the plug-in and by whoever looks at drawings.
#pragma once

#include <optional>

struct resbuf;

namespace OrvLib {

/// What the record holds; nothing for a key that is missing or has something else than a finite number behind it.
struct ShadowRecord {
  std::optional<double> angleRad;        // plan direction, counter-clockwise from +X
  std::optional<double> color;           // index
  std::optional<double> lengthPerFloor;  // drawing units
  std::optional<double> scale;           // of the hatch pattern
  std::optional<double> hatchType;       // shadow_keys::kStoredDots for dots, lines else
};

/// Reads the record's chain, in which every key is a text item and its value the next one: a real or an integer,
/// whatever code it is stored under. The order of the keys does not matter, their case does, and the first of two
/// counts.
ShadowRecord readShadowRecord(const resbuf* chain);

}  // namespace OrvLib
