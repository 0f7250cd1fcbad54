#include "Picture/PlotSettings.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Text/Text.h"

namespace host::picture {
namespace {

using database::Slot;
using geometry::Box;
using geometry::Point;

/// What the plot settings hold before they are turned (DXF reference, PLOTSETTINGS and LAYOUT).
struct Tags {
  std::wstring layout, styleSheet;
  std::array<double, 4> margins{};  // left, bottom, right, top of the upright paper
  double width = 0, height = 0, originX = 0, originY = 0;
  double numerator = 1, denominator = 1;
  std::int64_t flags = 0, units = 1, rotation = 0, area = 5, standardScale = 16;
  Point windowLow, windowHigh, limitsLow, limitsHigh;

  Tags(const Slot& slot, const text::Codec& codec) {
    bool isLayoutPart = false;
    database::TagCursor tags = slot.tags();
    for (database::Tag tag; tags.next(tag);) {
      if (tag.code == 100)
        isLayoutPart = tag.trimmed() == "AcDbLayout";
      else if (isLayoutPart)
        takeLayout(tag, codec);
      else
        takePlot(tag, codec);
    }
  }

 private:
  void takeLayout(const database::Tag& tag, const text::Codec& codec) {
    switch (tag.code) {
      case 1:
        layout = codec.decode(tag.value);
        break;
      case 10:
        limitsLow.x = tag.real();
        break;
      case 20:
        limitsLow.y = tag.real();
        break;
      case 11:
        limitsHigh.x = tag.real();
        break;
      case 21:
        limitsHigh.y = tag.real();
        break;
      default:
        break;
    }
  }

  void takePlot(const database::Tag& tag, const text::Codec& codec) {
    if (tag.code == 7) styleSheet = codec.decode(tag.value);
    struct Real {
      int code;
      double* value;
    };
    const std::array<Real, 14> reals{{{40, &margins[0]},
                                      {41, &margins[1]},
                                      {42, &margins[2]},
                                      {43, &margins[3]},
                                      {44, &width},
                                      {45, &height},
                                      {46, &originX},
                                      {47, &originY},
                                      {48, &windowLow.x},
                                      {49, &windowLow.y},
                                      {140, &windowHigh.x},
                                      {141, &windowHigh.y},
                                      {142, &numerator},
                                      {143, &denominator}}};
    for (const Real& real : reals)
      if (real.code == tag.code) *real.value = tag.real();
    struct Integer {
      int code;
      std::int64_t* value;
    };
    const std::array<Integer, 5> integers{
        {{70, &flags}, {72, &units}, {73, &rotation}, {74, &area}, {75, &standardScale}}};
    for (const Integer& integer : integers)
      if (integer.code == tag.code) *integer.value = tag.integer();
  }
};

PlotSettings settingsOf(const Tags& tags) {
  constexpr std::int64_t kCentred = 4, kStandardScale = 16, kUsesStyles = 32;
  constexpr double kInch = 25.4;
  PlotSettings settings;
  settings.millimetres = tags.units == 0 ? kInch : 1;
  // Turned by quarters: what the layout shows below lies at the paper's left, its left at the paper's top.
  const auto turn = static_cast<std::size_t>(((tags.rotation % 4) + 4) % 4);
  const auto margin = [&](std::size_t side) { return tags.margins[side % 4]; };
  settings.leftMm = margin(4 - turn);
  settings.bottomMm = margin(5 - turn);
  settings.rightMm = margin(6 - turn);
  settings.topMm = margin(7 - turn);
  settings.paperWidthMm = turn % 2 == 0 ? tags.width : tags.height;
  settings.paperHeightMm = turn % 2 == 0 ? tags.height : tags.width;
  settings.originXMm = tags.originX;
  settings.originYMm = tags.originY;
  if (tags.numerator > 0 && tags.denominator > 0)
    settings.mmPerUnit = tags.numerator / tags.denominator * settings.millimetres;
  settings.isCentred = (tags.flags & kCentred) != 0;
  settings.window.add(tags.windowLow);
  settings.window.add(tags.windowHigh);
  settings.limits.add(tags.limitsLow);
  settings.limits.add(tags.limitsHigh);
  switch (tags.area) {
    case 1:
      settings.area = PlotSettings::Area::Extents;
      break;
    case 2:
      settings.area = PlotSettings::Area::Limits;
      break;
    case 4:
      settings.area = PlotSettings::Area::Window;
      break;
    default:  // 5: the layout; what the screen showed and named views are not asked for here
      break;
  }
  if ((tags.flags & kUsesStyles) != 0) settings.styleSheet = text::toUtf8(tags.styleSheet);
  settings.isFitted = (tags.flags & kStandardScale) != 0 && tags.standardScale == 0;
  return settings;
}

}  // namespace

std::optional<PlotSettings> plotSettings(const database::DrawingDatabase& db, const std::wstring& layout) {
  std::optional<PlotSettings> found;
  db.forEachSlot([&](const Slot& slot) {
    if (slot.type != database::DxfType::Layout || slot.isErased()) return;
    const Tags tags(slot, db.codec());
    if (text::equalFolded(tags.layout, layout)) found = settingsOf(tags);
  });
  return found;
}

std::optional<PaperPlace> paperPlace(const PlotSettings& s, const Box& extents) {
  if (!(s.paperWidthMm > 0) || !(s.paperHeightMm > 0)) return std::nullopt;
  PaperPlace place;
  place.mmPerUnit = s.mmPerUnit;
  const double roomX = s.paperWidthMm - s.leftMm - s.rightMm, roomY = s.paperHeightMm - s.bottomMm - s.topMm;
  // The corner of what is plotted, in units of the layout: it comes to lie on the corner of the printable area.
  Point corner;
  double centreX = 0, centreY = 0;
  if (s.area != PlotSettings::Area::Paper) {
    const Box area = s.area == PlotSettings::Area::Window   ? s.window
                     : s.area == PlotSettings::Area::Limits ? s.limits
                                                            : extents;
    const double width = area.maxX - area.minX, height = area.maxY - area.minY;
    if (area.isEmpty() || !(width > 0) || !(height > 0)) return std::nullopt;
    if (s.isFitted) place.mmPerUnit = std::min(roomX / width, roomY / height);
    if (s.isCentred) {
      centreX = (roomX - width * place.mmPerUnit) / 2;
      centreY = (roomY - height * place.mmPerUnit) / 2;
    }
    corner = {area.minX, area.minY};
    if (s.area == PlotSettings::Area::Window) place.window = area;
  }
  if (!(place.mmPerUnit > 0) || !std::isfinite(place.mmPerUnit)) return std::nullopt;
  const double originX = s.isCentred ? centreX : s.originXMm, originY = s.isCentred ? centreY : s.originYMm;
  const double k = place.mmPerUnit;
  place.paper.minX = corner.x - (s.leftMm + originX) / k;
  place.paper.minY = corner.y - (s.bottomMm + originY) / k;
  place.paper.maxX = place.paper.minX + s.paperWidthMm / k;
  place.paper.maxY = place.paper.minY + s.paperHeightMm / k;
  return place;
}

}  // namespace host::picture
