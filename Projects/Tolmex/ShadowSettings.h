// How shadows fall in one drawing, and how that is kept in the drawing.
#pragma once

#include <string>

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

/// Takes the settings stored in the working database into the current document's data when they are others than those
/// seen there last. Ones that are not stored are the defaults.
void readShadowSettings();
/// Stores the current document's settings in the working database, replacing what was stored; a failure is told on the
/// command line.
void writeShadowSettings();

}  // namespace OrvLib
