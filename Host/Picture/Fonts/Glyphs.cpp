#include "Picture/Glyphs.h"

#include <cmath>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <numbers>
#include <tuple>

#include "Geometry/TextLayout.h"
#include "Picture/Fonts/FontSearch.h"
#include "Picture/Fonts/FontTable.h"
#include "Picture/Fonts/OutlineFont.h"
#include "Picture/Fonts/Shaping.h"
#include "Picture/Fonts/StrokeFont.h"
#include "Platform/Library.h"
#include "Platform/System.h"
#include "Text/Text.h"

namespace host::picture {

using geometry::Face;
using geometry::Point;

namespace {

constexpr double kCapitalHeight = 1493.0 / 2048;  // of the em, in DejaVu Sans
/// The faces drawings name are narrower; texts keep about the room their makers gave them.
constexpr double kNarrowing = 0.88;

/// Beside the program, then where this system keeps fonts.
std::filesystem::path fontFile(const char* name) {
  static const char* const kFolders[] = {"truetype/dejavu", "dejavu", "TTF", "dejavu-sans-fonts", "truetype", ""};
  std::vector<std::filesystem::path> roots = platform::fontFolders();
  roots.insert(roots.begin(), platform::fileOf(reinterpret_cast<const void*>(&fontFile)).parent_path() / "fonts");
  std::error_code error;
  for (const std::filesystem::path& root : roots)
    for (const char* folder : kFolders) {
      std::filesystem::path path = root / folder / name;
      if (std::filesystem::exists(path, error)) return path;
    }
  return {};
}

std::uint64_t keyOf(Face face) {
  return static_cast<std::uint64_t>(face.font) << 2U | (face.isBold ? 2U : 0U) | (face.isItalic ? 1U : 0U);
}

/// Signs that steer how text is set and show nothing.
bool isInvisible(wchar_t c) {
  return c == 0xAD || (c >= 0x200B && c <= 0x200F) || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2060 && c <= 0x206F) ||
         (c >= 0xFE00 && c <= 0xFE0F) || c == 0xFEFF;
}

}  // namespace

/// The open fonts, which all pictures of the program share: opening them takes longer than a small picture.
struct GlyphSource::Fonts {
  std::mutex mutex;  // while one is used: pictures may be made by several threads
  OutlineFont regular{fontFile("DejaVuSans.ttf"), 0, kCapitalHeight, kNarrowing},
      bold{fontFile("DejaVuSans-Bold.ttf"), 0, kCapitalHeight, kNarrowing};
  std::map<std::uint64_t, Choice> choices;
  std::map<std::tuple<std::filesystem::path, int, double>, std::unique_ptr<OutlineFont>> outlines;
  std::map<std::string, std::unique_ptr<StrokeFont>> strokes;
  std::map<std::pair<char32_t, bool>, OutlineFont*> others;  // that have a letter; null for none

  OutlineFont* outline(const FontFile& file, double capitalHeight) {
    auto& font = outlines[{file.path, file.index, capitalHeight}];
    constexpr std::size_t kMostFonts = 64;  // each is in memory as a whole
    if (font == nullptr && outlines.size() <= kMostFonts)
      font = std::make_unique<OutlineFont>(file.path, file.index, capitalHeight);
    return font != nullptr && font->isOpen() ? font.get() : nullptr;
  }
  const StrokeFont* stroke(const std::string& name) {
    const auto [entry, isNew] = strokes.try_emplace(name);
    if (isNew) entry->second = StrokeFont::find(name);
    return entry->second.get();
  }
  OutlineFont* other(char32_t letter, bool isBold) {
    const auto [entry, isNew] = others.try_emplace({letter, isBold}, nullptr);
    if (!isNew) return entry->second;
    const auto file = findFontWith(letter, isBold);
    OutlineFont* const font = file ? outline(*file, 0) : nullptr;
    return entry->second = font != nullptr && font->has(letter) ? font : nullptr;
  }

  Choice choose(Face face) {
    Choice own;
    own.isSlanted = face.isItalic;
    own.name = "DejaVu Sans";
    own.isBold = face.isBold;
    own.isItalic = face.isItalic;
    own.emHeight = 1 / kCapitalHeight;
    own.narrowing = kNarrowing;
    own.families = {own.name, "sans-serif"};
    if (face.font == 0) return own;
    const StandIns standIns = standInsFor(text::toUtf8(geometry::fontName(face.font)));
    const bool isBold = face.isBold || standIns.isBold, isItalic = face.isItalic || standIns.isItalic;
    own.isSlanted = isItalic;
    for (const std::string& family : standIns.families)
      if (const auto file = findFont(family, isBold, isItalic))
        if (OutlineFont* const font = outline(*file, standIns.capitalHeight)) {
          Choice found{font, {}, isItalic && !file->isItalic, file->family, {file->family}, isBold, isItalic};
          const std::string& named = standIns.families.front();
          if (!text::equalFolded(text::fromUtf8(named), text::fromUtf8(file->family))) found.families.push_back(named);
          found.families.emplace_back(standIns.general);
          found.emHeight = font->emHeight();
          return found;
        }
    for (std::size_t i = 0; i < standIns.strokes.size(); ++i) {
      if (stroke(standIns.strokes[i]) == nullptr) continue;
      own.strokes.assign(standIns.strokes.begin() + static_cast<std::ptrdiff_t>(i), standIns.strokes.end());
      own.name = standIns.strokes[i] + ".lff";
      break;
    }
    return own;
  }
};

namespace {

void addCircle(Glyph& glyph, Point center, double radius, bool clockwise) {
  // Eight quadratic pieces; their control points lie where the tangents meet.
  constexpr int kPieces = 8;
  const double step = 2 * std::numbers::pi / kPieces, reach = radius / std::cos(step / 2);
  const double sign = clockwise ? -1 : 1;
  const auto at = [&](double t, double r) {
    return Point{center.x + r * std::cos(sign * t), center.y + r * std::sin(sign * t)};
  };
  Glyph::Contour contour{at(0, radius), {}};
  for (int i = 0; i < kPieces; ++i)
    contour.pieces.push_back({at((i + 0.5) * step, reach), at((i + 1) * step, radius), false});
  glyph.contours.push_back(std::move(contour));
}

void addBox(Glyph& glyph, double x1, double y1, double x2, double y2) {
  glyph.contours.push_back({{x1, y1}, {{{}, {x2, y1}, true}, {{}, {x2, y2}, true}, {{}, {x1, y2}, true}}});
}

}  // namespace

bool GlyphSource::compose(wchar_t letter, Glyph& glyph) {
  constexpr wchar_t kPosition = 0x2316, kCircledA = 0x24B6, kCircledZ = 0x24CF;
  constexpr double kPen = 0.09;
  const Point center{0.6, 0.5};
  if (letter != kPosition && (letter < kCircledA || letter > kCircledZ)) return false;
  const bool isPosition = letter == kPosition;
  const double radius = isPosition ? 0.33 : 0.55;
  glyph = {};
  if (isPosition) {
    addBox(glyph, center.x - 0.5, center.y - kPen / 2, center.x + 0.5, center.y + kPen / 2);
    addBox(glyph, center.x - kPen / 2, center.y - 0.5, center.x + kPen / 2, center.y + 0.5);
  } else {
    Glyph inner;
    const OutlineFont& font = fonts_.regular;
    font.load(font.indexOf(static_cast<char32_t>(L'A' + (letter - kCircledA))), false, inner);
    constexpr double kSize = 0.6;
    const auto moved = [&](Point p) {
      return Point{center.x + (p.x - inner.advance / 2) * kSize, center.y + (p.y - 0.5) * kSize};
    };
    for (Glyph::Contour& contour : inner.contours) {
      contour.from = moved(contour.from);
      for (Glyph::Piece& piece : contour.pieces) piece = {moved(piece.control), moved(piece.to), piece.straight};
      glyph.contours.push_back(std::move(contour));
    }
  }
  addCircle(glyph, center, radius, false);
  addCircle(glyph, center, radius - kPen, true);
  glyph.advance = 2 * center.x;
  return true;
}

GlyphSource::Fonts& GlyphSource::fonts() {
  static Fonts fonts;
  return fonts;
}

GlyphSource::GlyphSource() : fonts_(fonts()) {}

bool GlyphSource::hasFont() const { return fonts_.regular.isOpen(); }

const GlyphSource::Choice& GlyphSource::choice(Face face) {
  const Choice*& known = choices_[keyOf(face)];
  if (known != nullptr) return *known;
  const std::lock_guard lock(fonts_.mutex);
  const auto [entry, isNew] = fonts_.choices.try_emplace(keyOf(face));
  if (isNew) entry->second = fonts_.choose(face);
  return *(known = &entry->second);
}

const Glyph* GlyphSource::strokedLetter(wchar_t letter, const Choice& chosen) {
  for (const std::string& name : chosen.strokes)
    if (const StrokeFont* const font = fonts_.stroke(name))
      if (const Glyph* const glyph = font->glyph(letter)) return glyph;
  return nullptr;
}

OutlineFont* GlyphSource::fontOf(wchar_t letter, Face face, bool& isSlanted) {
  const Choice& chosen = *choices_.at(keyOf(face));
  isSlanted = chosen.isSlanted;
  const auto c = static_cast<char32_t>(letter);
  if (strokedLetter(letter, chosen) != nullptr) return nullptr;
  if (chosen.outline != nullptr && chosen.outline->has(c)) return chosen.outline;
  isSlanted = face.isItalic;
  if (face.isBold && fonts_.bold.has(c)) return &fonts_.bold;
  if (fonts_.regular.has(c)) return &fonts_.regular;
  Glyph composed;
  return compose(letter, composed) ? nullptr : fonts_.other(c, face.isBold);
}

const Glyph& GlyphSource::loadGlyph(const OutlineFont& font, std::uint32_t index, bool isSlanted) {
  const auto [entry, isNew] =
      glyphs_.try_emplace({&font, static_cast<std::uint64_t>(index) << 1U | (isSlanted ? 1U : 0U)});
  if (isNew) font.load(index, isSlanted, entry->second);
  return entry->second;
}

const Glyph& GlyphSource::loadCharacter(wchar_t letter, Face face) {
  bool isSlanted = false;
  if (const OutlineFont* const font = fontOf(letter, face, isSlanted))
    return loadGlyph(*font, font->indexOf(static_cast<char32_t>(letter)), isSlanted);
  const Choice& chosen = *choices_.at(keyOf(face));
  const Glyph* const stroked = strokedLetter(letter, chosen);
  if (stroked != nullptr && !chosen.isSlanted) return *stroked;
  // Those that are made here belong to no font.
  const std::uint64_t key = keyOf(face) << 32U | static_cast<std::uint32_t>(letter);
  const auto [entry, isNew] = glyphs_.try_emplace({this, key});
  Glyph& glyph = entry->second;
  if (!isNew) return glyph;
  if (stroked != nullptr) {
    constexpr double kSlantRad = 12 * std::numbers::pi / 180;
    glyph = *stroked;
    for (auto& line : glyph.strokes)
      for (Point& p : line) p.x += p.y * std::tan(kSlantRad);
  } else if (isInvisible(letter) || (hasFont() && compose(letter, glyph))) {
    return glyph;
  } else {
    if (hasFont()) missing_.insert(letter);
    const OutlineFont& own = face.isBold && fonts_.bold.isOpen() ? fonts_.bold : fonts_.regular;
    if (!own.load(0, false, glyph)) glyph.advance = geometry::meanTextWidth({&letter, 1}, face);
  }
  return glyph;
}

const Glyph& GlyphSource::character(wchar_t letter, Face face) {
  const Glyph*& known = characters_[keyOf(face) << 32U | static_cast<std::uint32_t>(letter)];
  if (known != nullptr) return *known;
  choice(face);
  const std::lock_guard lock(fonts_.mutex);
  return *(known = &loadCharacter(letter, face));
}

void GlyphSource::shape(std::wstring_view text, Face face, std::vector<PlacedGlyph>& out) {
  choice(face);
  const std::lock_guard lock(fonts_.mutex);
  struct Part {
    DirectedRun run;
    OutlineFont* font = nullptr;
    bool isSlanted = false;
  };
  std::vector<Part> parts;
  for (const DirectedRun& run : visualRuns(text)) {
    parts.clear();
    for (std::size_t i = run.begin; i < run.end; ++i) {
      Part part{{i, i + 1, run.isRightToLeft}};
      part.font = fontOf(text[i], face, part.isSlanted);
      // Blanks, marks and signs go with the letters before them where their font has them.
      Part* const before = parts.empty() ? nullptr : &parts.back();
      const bool mayStay = before != nullptr && before->font != nullptr &&
                           (before->font == part.font || needsShaping(text.substr(i, 1)) || text[i] == L' ');
      if (mayStay && (before->font == part.font || before->font->has(static_cast<char32_t>(text[i]))))
        before->run.end = i + 1;
      else
        parts.push_back(part);
    }
    if (run.isRightToLeft) std::reverse(parts.begin(), parts.end());
    for (const Part& part : parts) {
      if (part.font == nullptr) {
        const Glyph& glyph = loadCharacter(text[part.run.begin], face);
        out.push_back({&glyph, glyph.advance, 0, 0});
        continue;
      }
      for (const ShapedGlyph& shaped : part.font->shape(text, part.run)) {
        const bool isInvisibleGlyph = shaped.index == 0 && isInvisible(text[shaped.letter]);
        if (isInvisibleGlyph) continue;
        out.push_back({&loadGlyph(*part.font, shaped.index, part.isSlanted), shaped.advance, shaped.dx, shaped.dy});
      }
    }
  }
}

void GlyphSource::layOut(std::wstring_view text, Face face, std::vector<PlacedGlyph>& out) {
  out.clear();
  if (hasFont() && needsShaping(text)) {
    if (canShape()) return shape(text, face, out);
    leftUnshaped_ = true;
  }
  for (const wchar_t letter : text) {
    const Glyph& glyph = character(letter, face);
    out.push_back({&glyph, glyph.advance, 0, 0});
  }
}

double GlyphSource::width(std::wstring_view text, Face face) {
  double width = 0;
  if (text.size() > 1 && hasFont() && needsShaping(text)) {
    layOut(text, face, measured_);
    for (const PlacedGlyph& placed : measured_) width += placed.advance;
    return width;
  }
  for (const wchar_t letter : text) width += character(letter, face).advance;
  return width;
}

}  // namespace host::picture
