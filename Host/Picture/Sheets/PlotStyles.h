// Colour-dependent plot styles: which pen plots which colour of the palette (.ctb files).
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "Database/DrawingDatabase.h"
#include "Picture/Appearance.h"
#include "Picture/Picture.h"

namespace host::picture {

struct PlotPen {
  std::optional<std::uint32_t> rgb;  // 0xRRGGBB; nothing: the colour of what is drawn
  bool isGrey = false;
  int screenPercent = 100;            // 0 leaves nothing of the colour
  double lineweightMm = 0;            // 0: that of what is drawn
  std::optional<LinePattern> dashes;  // millimetres; without dashes: unbroken; nothing: that of what is drawn
};

class PlotStyles {
 public:
  /// Pens 1 to 255.
  const PlotPen& pen(int index) const { return pens_[static_cast<std::size_t>(index)]; }

  /// From the bytes of a .ctb file; a sentence about it when they are none, are cut off or too large.
  static Result<PlotStyles> read(std::string_view bytes);

 private:
  void parse(std::string_view text);

  static constexpr std::size_t kPens = 256;
  std::array<PlotPen, kPens> pens_;
};

/// The styles of the layout's style sheet, from the drawing's folder or the support folders, whatever the case of the
/// file's name; nothing when it names none. `note` tells of one that is not there or cannot be read; of the usual table
/// without any changes it says nothing.
std::optional<PlotStyles> findPlotStyles(const std::string& styleSheet, const PictureOptions& options,
                                         std::string& note);

}  // namespace host::picture
