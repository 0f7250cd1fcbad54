// Colours of entities and layers.
#pragma once

#include "acadstrc.h"
#include "adesk.h"

struct AcCmEntityColor {
  enum ACIcolorMethod { kACIbyBlock = 0, kACIforeground = 7, kACIbyLayer = 256, kACInone = 257 };
};

/// A colour index (0 by block, 1 to 255, 256 by layer) or a true colour.
class ADESK_EXPORT AcCmColor {
 public:
  Adesk::UInt16 colorIndex() const { return index_; }
  /// eBadColorIndex above 256; the colour then stays.
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 index);
  /// The index becomes that of the nearest palette colour.
  Acad::ErrorStatus setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);
  bool isByColor() const { return hasRgb_; }
  bool isByLayer() const { return !hasRgb_ && index_ == AcCmEntityColor::kACIbyLayer; }
  bool isByBlock() const { return !hasRgb_ && index_ == AcCmEntityColor::kACIbyBlock; }
  Adesk::UInt8 red() const { return static_cast<Adesk::UInt8>(rgb_ >> 16); }
  Adesk::UInt8 green() const { return static_cast<Adesk::UInt8>(rgb_ >> 8); }
  Adesk::UInt8 blue() const { return static_cast<Adesk::UInt8>(rgb_); }
  bool operator==(const AcCmColor& other) const {
    return index_ == other.index_ && hasRgb_ == other.hasRgb_ && rgb_ == other.rgb_;
  }

 private:
  Adesk::UInt16 index_ = AcCmEntityColor::kACIbyLayer;
  bool hasRgb_ = false;
  Adesk::UInt32 rgb_ = 0;
};
