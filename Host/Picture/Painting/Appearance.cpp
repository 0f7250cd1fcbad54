#include "Picture/Appearance.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "Database/Palette.h"
#include "Hatching/Linetypes.h"
#include "Picture/Sheets/PlotStyles.h"
#include "Text/Text.h"

namespace host::picture {
namespace {

enum SpecialColor { kByBlock = 0, kInk = 7, kByLayer = 256 };
enum SpecialLineweight { kLineweightByLayer = -1, kLineweightByBlock = -2 };
constexpr int kHeaviestLineweight = 1000;

bool isName(std::string_view text, std::string_view upper) {
  return std::ranges::equal(text, upper, [](unsigned char a, unsigned char b) { return std::toupper(a) == b; });
}

/// Tag 440: kind in the highest byte (0 by layer, 1 by block, 2 given), opacity in the lowest.
std::optional<std::uint8_t> givenAlpha(std::int64_t transparency) {
  if ((transparency >> 24 & 0xFF) != 2) return {};
  return static_cast<std::uint8_t>(transparency & 0xFF);
}

/// By the usual video weights, in thousandths.
std::uint8_t lumaOf(std::uint32_t rgb) {
  return static_cast<std::uint8_t>((299 * (rgb >> 16 & 0xFF) + 587 * (rgb >> 8 & 0xFF) + 114 * (rgb & 0xFF) + 500) /
                                   1000);
}

}  // namespace

Appearances::Appearances(const database::DrawingDatabase& db, const PictureOptions& options, bool keepsRoles)
    : db_(db), options_(options), layers_(db), pattern_(text::fromUtf8(options.layers)), keepsRoles_(keepsRoles) {
  const double scale = db.headerReal("$LTSCALE", 40).value_or(1);
  if (std::isfinite(scale) && scale > 0) linetypeScale_ = scale;
}

const Appearances::LayerChoice& Appearances::choice(std::uint32_t layer) {
  const auto [entry, isNew] = choices_.try_emplace(layer);
  if (isNew) {
    const geometry::LayerState& state = layers_.at(layer);
    // A window shows everything; pictures show what is plotted, with and without paper.
    const bool isPlot = !keepsRoles_;
    const bool isNeverPlotted = text::equalFolded(state.name, L"Defpoints");
    const bool isWanted = state.isDrawn() && (options_.layers == "*" || text::matchesWildcard(state.name, pattern_));
    entry->second.frozen = state.frozen;
    entry->second.shown = isWanted && !(isPlot && (!state.plottable || isNeverPlotted));
    entry->second.unplotted = isWanted && !entry->second.shown && !isNeverPlotted;
  }
  return entry->second;
}

std::uint32_t Appearances::effectiveLayer(const database::Slot& entity, const Surroundings& surroundings) {
  return surroundings.layer != 0 && layers_.at(entity.layer).name == L"0" ? surroundings.layer : entity.layer;
}

bool Appearances::isShown(const database::Slot& entity, std::uint32_t effectiveLayer) {
  const LayerChoice& layer = choice(effectiveLayer);
  if (layer.frozen) return false;
  if (std::ranges::find(viewportFrozen_, effectiveLayer) != viewportFrozen_.end()) return false;
  return layer.shown || entity.type == database::DxfType::Insert;
}

const LinePattern* Appearances::dashes(std::string_view linetype) {
  auto entry = linetypes_.find(linetype);
  if (entry == linetypes_.end()) {
    LinePattern pattern;
    if (const auto* record = db_.findRecord(database::DxfType::LineType, db_.codec().decode(linetype))) {
      pattern.dashes = hatching::linetypeDashes(record->tags());
      for (hatching::LinetypeMark& given : hatching::linetypeMarks(record->tags())) {
        LinePattern::Mark mark;
        static_cast<hatching::LinetypeMark&>(mark) = std::move(given);
        mark.contents = db_.codec().decode(mark.text);
        mark.height = mark.scale * fixedHeight(mark.style);
        pattern.marks.push_back(std::move(mark));
      }
    }
    if (!std::ranges::all_of(pattern.dashes, [](double d) { return std::isfinite(d); })) pattern.dashes.clear();
    entry = linetypes_.emplace(std::string(linetype), std::move(pattern)).first;
  }
  return entry->second.dashes.empty() ? nullptr : &entry->second;
}

double Appearances::fixedHeight(std::uint64_t style) const {
  const database::Slot* record = style == 0 ? nullptr : db_.findHandle(style);
  double height = 0;
  if (record != nullptr && record->type == database::DxfType::TextStyle) {
    database::TagCursor tags = record->tags();
    for (database::Tag tag; tags.next(tag);)
      if (tag.code == 40) height = tag.real();
  }
  return height > 0 ? height : 1;
}

void Appearances::setIndexColor(Appearance& appearance, int index) {
  appearance.isInk = index == kInk || index <= 0 || index > 255;
  appearance.index = appearance.isInk ? static_cast<int>(kInk) : index;
  if (!appearance.isInk) appearance.rgb = database::paletteColor(index);
}

Appearance Appearances::resolve(const database::EntityProperties& own, std::uint32_t effectiveLayer,
                                const Surroundings& surroundings) {
  const geometry::LayerState& layer = layers_.at(effectiveLayer);
  const Appearance& block = surroundings.appearance;
  Appearance result;
  const auto setTrueColor = [&](std::int64_t rgb) {
    result.isInk = false;
    result.index = 0;
    result.rgb = static_cast<std::uint32_t>(rgb);
  };
  if (own.trueColor >= 0)
    setTrueColor(own.trueColor);
  else if (own.color == kByBlock) {
    result.isInk = block.isInk;
    result.index = block.index;
    result.rgb = block.rgb;
  } else if (own.color != kByLayer)
    setIndexColor(result, own.color);
  else if (layer.trueColor >= 0)
    setTrueColor(layer.trueColor);
  else
    setIndexColor(result, layer.color);

  const int lineweight = own.lineweight == kLineweightByLayer ? layer.lineweight : own.lineweight;
  if (lineweight >= 0)
    result.lineweightMm = std::min(lineweight, kHeaviestLineweight) / 100.0;
  else
    result.lineweightMm = lineweight == kLineweightByBlock ? block.lineweightMm : Appearance{}.lineweightMm;

  if (isName(own.linetype, "BYBLOCK"))
    result.dashes = block.dashes;
  else if (own.linetype.empty() || isName(own.linetype, "BYLAYER"))
    result.dashes = dashes(layer.linetype);
  else
    result.dashes = dashes(own.linetype);
  if (std::isfinite(own.linetypeScale) && own.linetypeScale > 0) result.linetypeScale = own.linetypeScale;

  const bool isAlphaByBlock = (own.transparency >> 24 & 0xFF) == 1;
  if (const auto alpha = givenAlpha(own.transparency))
    result.alpha = *alpha;
  else if (isAlphaByBlock)
    result.alpha = block.alpha;
  else
    result.alpha = givenAlpha(layer.transparency).value_or(255);
  return result;
}

Color Appearances::background() const {
  const std::uint32_t rgb = options_.background.value_or(0xFFFFFF);
  return {static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8), static_cast<std::uint8_t>(rgb),
          255, keepsRoles_ ? ColorRole::Ground : ColorRole::Fixed};
}

Color Appearances::ofMode(std::uint32_t rgb, std::uint8_t alpha) const {
  Color c{static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8), static_cast<std::uint8_t>(rgb),
          alpha};
  if (options_.colors == ColorMode::Grayscale) c.red = c.green = c.blue = lumaOf(rgb);
  return c;
}

bool Appearances::isOnDark() const {
  const Color b = background();
  return 299 * b.red + 587 * b.green + 114 * b.blue < 128 * 1000;
}

Appearance Appearances::plotted(const Appearance& appearance) const {
  if (options_.plotStyles == nullptr || keepsRoles_ || appearance.index < 1 || appearance.index > 255)
    return appearance;
  const PlotPen& pen = options_.plotStyles->pen(appearance.index);
  Appearance result = appearance;
  if (pen.lineweightMm > 0) result.lineweightMm = pen.lineweightMm;
  if (pen.dashes) {
    result.dashes = pen.dashes->dashes.empty() ? nullptr : &*pen.dashes;
    result.hasPlotDashes = true;
  }
  if (pen.rgb) {
    result.isInk = *pen.rgb == 0;  // black shows on dark backgrounds, too
    result.rgb = *pen.rgb;
  }
  if (pen.screenPercent == 100 && !(pen.isGrey && !result.isInk)) return result;
  std::uint32_t rgb = result.isInk ? 0U : result.rgb;
  if (pen.isGrey) rgb = lumaOf(rgb) * 0x010101U;
  const unsigned screen = static_cast<unsigned>(pen.screenPercent);
  const auto screened = [screen](unsigned c) { return 255 - ((255 - c) * screen + 50) / 100; };
  result.isInk = false;
  result.rgb = screened(rgb >> 16 & 0xFF) << 16 | screened(rgb >> 8 & 0xFF) << 8 | screened(rgb & 0xFF);
  return result;
}

Color Appearances::fillColor(const Appearance& appearance) const {
  const Appearance seen = plotted(appearance);
  if (options_.colors != ColorMode::Monochrome || keepsRoles_ || seen.isInk || seen.rgb == 0) return color(appearance);
  // A third of the way from the ground to ink at most, so that lines stand out.
  const int grey = lumaOf(seen.rgb);
  const auto tone = static_cast<std::uint8_t>(isOnDark() ? grey / 3 : 255 - (255 - grey) / 3);
  return {tone, tone, tone, appearance.alpha};
}

Color Appearances::color(const Appearance& given) const {
  const Appearance appearance = plotted(given);
  if (!appearance.isInk && options_.colors != ColorMode::Monochrome) return ofMode(appearance.rgb, appearance.alpha);
  if (keepsRoles_) return {0, 0, 0, appearance.alpha, ColorRole::Ink};
  return isOnDark() ? Color{255, 255, 255, appearance.alpha} : Color{0, 0, 0, appearance.alpha};
}

Appearance Appearances::withColor(int index, std::int64_t trueColor, const Appearance& otherwise) {
  Appearance own = otherwise;
  if (trueColor >= 0) {
    own.isInk = false;
    own.index = 0;
    own.rgb = static_cast<std::uint32_t>(trueColor & 0xFFFFFF);
  } else if (index > 0 && index < kByLayer) {
    setIndexColor(own, index);
  }
  return own;
}

Color Appearances::color(int index, std::int64_t trueColor, const Appearance& otherwise) const {
  return color(withColor(index, trueColor, otherwise));
}

}  // namespace host::picture
