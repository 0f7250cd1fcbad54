#include "Picture/Glyphs.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <numbers>

#include "Geometry/TextLayout.h"
#include "Platform/Library.h"
#include "Platform/System.h"

namespace host::picture {

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

/// Turns the outline calls of the font library into contours.
struct Decomposer {
  Glyph* glyph;
  double scaleX, scaleY;
  Point at;

  Point point(const FT_Vector* v) const {
    return {static_cast<double>(v->x) * scaleX, static_cast<double>(v->y) * scaleY};
  }
  static int moveTo(const FT_Vector* to, void* self) {
    auto& d = *static_cast<Decomposer*>(self);
    d.at = d.point(to);
    d.glyph->contours.push_back({d.at, {}});
    return 0;
  }
  static int lineTo(const FT_Vector* to, void* self) {
    auto& d = *static_cast<Decomposer*>(self);
    d.add({}, d.point(to), true);
    return 0;
  }
  static int conicTo(const FT_Vector* control, const FT_Vector* to, void* self) {
    auto& d = *static_cast<Decomposer*>(self);
    d.add(d.point(control), d.point(to), false);
    return 0;
  }
  static int cubicTo(const FT_Vector* c1, const FT_Vector* c2, const FT_Vector* to, void* self) {
    // TrueType has none; the mean control point comes close.
    auto& d = *static_cast<Decomposer*>(self);
    const Point a = d.point(c1), b = d.point(c2), end = d.point(to);
    d.add({(3 * (a.x + b.x) - d.at.x - end.x) / 4, (3 * (a.y + b.y) - d.at.y - end.y) / 4}, end, false);
    return 0;
  }
  void add(Point control, Point to, bool straight) {
    if (glyph->contours.empty()) return;
    glyph->contours.back().pieces.push_back({control, to, straight});
    at = to;
  }
};

}  // namespace

struct GlyphSource::Face {
  FT_Library library = nullptr;
  FT_Face face = nullptr;
  std::string bytes;

  explicit Face(const char* fileName) {
    // Read here: the font library would take the file's name in the system's own encoding.
    std::ifstream in(fontFile(fileName), std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(in), {});
    if (bytes.empty() || FT_Init_FreeType(&library) != 0) return;
    const auto* const data = reinterpret_cast<const FT_Byte*>(bytes.data());
    if (FT_New_Memory_Face(library, data, static_cast<FT_Long>(bytes.size()), 0, &face) != 0) face = nullptr;
  }
  ~Face() {
    if (face != nullptr) FT_Done_Face(face);
    if (library != nullptr) FT_Done_FreeType(library);
  }
  Face(const Face&) = delete;
  Face& operator=(const Face&) = delete;

  bool has(wchar_t character) const {
    return face != nullptr && FT_Get_Char_Index(face, static_cast<FT_ULong>(character)) != 0;
  }
  bool load(wchar_t character, Glyph& glyph) {
    if (face == nullptr || face->units_per_EM == 0) return false;
    const FT_UInt index = FT_Get_Char_Index(face, static_cast<FT_ULong>(character));
    if (FT_Load_Glyph(face, index, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) != 0) return false;
    const double scale = 1.0 / face->units_per_EM / kCapitalHeight;
    glyph.advance = static_cast<double>(face->glyph->metrics.horiAdvance) * scale * kNarrowing;
    if (face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) return true;
    Decomposer decomposer{&glyph, scale * kNarrowing, scale, {}};
    const FT_Outline_Funcs calls{
        Decomposer::moveTo, Decomposer::lineTo, Decomposer::conicTo, Decomposer::cubicTo, 0, 0};
    FT_Outline_Decompose(&face->glyph->outline, &calls, &decomposer);
    return true;
  }
};

/// The open fonts, which all pictures of the program share: opening them takes longer than a small picture.
struct GlyphSource::Faces {
  std::mutex mutex;  // while a letter is loaded: pictures may be made by several threads
  Face regular{"DejaVuSans.ttf"}, bold{"DejaVuSans-Bold.ttf"};
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

bool GlyphSource::compose(wchar_t character, Glyph& glyph) {
  constexpr wchar_t kPosition = 0x2316, kCircledA = 0x24B6, kCircledZ = 0x24CF;
  constexpr double kPen = 0.09;
  const Point center{0.6, 0.5};
  if (character != kPosition && (character < kCircledA || character > kCircledZ)) return false;
  const bool isPosition = character == kPosition;
  const double radius = isPosition ? 0.33 : 0.55;
  glyph = {};
  if (isPosition) {
    addBox(glyph, center.x - 0.5, center.y - kPen / 2, center.x + 0.5, center.y + kPen / 2);
    addBox(glyph, center.x - kPen / 2, center.y - 0.5, center.x + kPen / 2, center.y + 0.5);
  } else {
    Glyph letter;
    faces_.regular.load(static_cast<wchar_t>(L'A' + (character - kCircledA)), letter);
    constexpr double kSize = 0.6;
    const auto moved = [&](Point p) {
      return Point{center.x + (p.x - letter.advance / 2) * kSize, center.y + (p.y - 0.5) * kSize};
    };
    for (Glyph::Contour& contour : letter.contours) {
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

GlyphSource::Faces& GlyphSource::faces() {
  static Faces faces;
  return faces;
}

GlyphSource::GlyphSource() : faces_(faces()) {}

bool GlyphSource::hasFont() const { return faces_.regular.face != nullptr; }

const Glyph& GlyphSource::glyph(wchar_t character, bool bold) {
  const auto key = static_cast<std::uint64_t>(character) << 1 | (bold ? 1 : 0);
  const auto [entry, isNew] = glyphs_.try_emplace(key);
  Glyph& glyph = entry->second;
  if (!isNew) return glyph;
  const std::lock_guard lock(faces_.mutex);
  if (hasFont() && !faces_.regular.has(character) && compose(character, glyph)) return glyph;
  if (!(bold && faces_.bold.load(character, glyph)) && !faces_.regular.load(character, glyph))
    glyph.advance = geometry::meanCharacterWidth(character, bold);
  return glyph;
}

}  // namespace host::picture
