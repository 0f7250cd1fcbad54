#include "Picture/Fonts/OutlineFont.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

#include <cmath>
#include <fstream>
#include <iterator>
#include <numbers>

namespace host::picture {

using geometry::Point;

namespace {

/// Turns the outline calls of the font library into contours.
struct Decomposer {
  Glyph* glyph;
  double scaleX, scaleY, slant;
  Point at;

  Point point(const FT_Vector* v) const {
    const double y = static_cast<double>(v->y) * scaleY;
    return {static_cast<double>(v->x) * scaleX + y * slant, y};
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
    // In halves: of each the mean control point comes close.
    auto& d = *static_cast<Decomposer*>(self);
    const Point from = d.at, a = d.point(c1), b = d.point(c2), end = d.point(to);
    const auto middle = [](Point p, Point q) { return Point{(p.x + q.x) / 2, (p.y + q.y) / 2}; };
    const Point ab = middle(a, b), fa = middle(from, a), be = middle(b, end);
    const Point left = middle(fa, ab), right = middle(ab, be), half = middle(left, right);
    const auto add = [&d](Point p, Point q, Point r, Point s) {
      d.add({(3 * (q.x + r.x) - p.x - s.x) / 4, (3 * (q.y + r.y) - p.y - s.y) / 4}, s, false);
    };
    add(from, fa, left, half);
    add(half, right, be, end);
    return 0;
  }
  void add(Point control, Point to, bool straight) {
    if (glyph->contours.empty()) return;
    glyph->contours.back().pieces.push_back({control, to, straight});
    at = to;
  }
};

/// Of the em: as the font says it, else as high as its H.
double capitalHeightOf(FT_Face face) {
  constexpr double kUsual = 0.7;
  constexpr unsigned kFirstVersionWithIt = 2, kNone = 0xFFFF;
  const double em = face->units_per_EM;
  const auto* const os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
  double height = 0;
  if (os2 != nullptr && os2->version >= kFirstVersionWithIt && os2->version != kNone) height = os2->sCapHeight;
  if (!(height > 0) && FT_Load_Char(face, 'H', FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) == 0)
    height = static_cast<double>(face->glyph->metrics.horiBearingY);
  constexpr double kLeast = 0.2, kMost = 2;
  return height > kLeast * em && height < kMost * em ? height / em : kUsual;
}

}  // namespace

struct OutlineFont::Opened {
  FT_Library library = nullptr;
  FT_Face face = nullptr;
  std::string bytes;

  ~Opened() {
    if (face != nullptr) FT_Done_Face(face);
    if (library != nullptr) FT_Done_FreeType(library);
  }
};

OutlineFont::OutlineFont(const std::filesystem::path& file, int index, double capitalHeight, double narrowing)
    : opened_(std::make_unique<Opened>()), narrowing_(narrowing), index_(index) {
  // Read here: the font library would take the file's name in the system's own encoding.
  std::ifstream in(file, std::ios::binary);
  opened_->bytes.assign(std::istreambuf_iterator<char>(in), {});
  if (opened_->bytes.empty() || FT_Init_FreeType(&opened_->library) != 0) return;
  const auto* const data = reinterpret_cast<const FT_Byte*>(opened_->bytes.data());
  FT_Face& face = opened_->face;
  if (FT_New_Memory_Face(opened_->library, data, static_cast<FT_Long>(opened_->bytes.size()), index, &face) != 0)
    face = nullptr;
  if (face == nullptr) return;
  if (face->units_per_EM == 0) {
    FT_Done_Face(face);
    face = nullptr;
    return;
  }
  capitalHeight_ = capitalHeight > 0 ? capitalHeight : capitalHeightOf(face);
}

OutlineFont::~OutlineFont() = default;

bool OutlineFont::isOpen() const { return opened_->face != nullptr; }

std::uint32_t OutlineFont::indexOf(char32_t letter) const {
  return isOpen() ? FT_Get_Char_Index(opened_->face, static_cast<FT_ULong>(letter)) : 0;
}

bool OutlineFont::load(std::uint32_t index, bool isSlanted, Glyph& glyph) const {
  const FT_Face face = opened_->face;
  if (face == nullptr || FT_Load_Glyph(face, index, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP) != 0) return false;
  const double scale = 1.0 / face->units_per_EM / capitalHeight_;
  glyph.advance = static_cast<double>(face->glyph->metrics.horiAdvance) * scale * narrowing_;
  if (face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) return true;
  constexpr double kSlantRad = 12 * std::numbers::pi / 180;
  Decomposer decomposer{&glyph, scale * narrowing_, scale, isSlanted ? std::tan(kSlantRad) : 0, {}};
  const FT_Outline_Funcs calls{Decomposer::moveTo, Decomposer::lineTo, Decomposer::conicTo, Decomposer::cubicTo, 0, 0};
  FT_Outline_Decompose(&face->glyph->outline, &calls, &decomposer);
  return true;
}

std::vector<ShapedGlyph> OutlineFont::shape(std::wstring_view text, const DirectedRun& run) {
  if (!isOpen()) return {};
  if (shaper_ == nullptr) shaper_ = std::make_unique<Shaper>(opened_->bytes, index_);
  std::vector<ShapedGlyph> shaped = shaper_->shape(text, run);
  const double scale = 1.0 / opened_->face->units_per_EM / capitalHeight_;
  for (ShapedGlyph& glyph : shaped) {
    glyph.advance *= scale * narrowing_;
    glyph.dx *= scale * narrowing_;
    glyph.dy *= scale;
  }
  return shaped;
}

}  // namespace host::picture
