#include "Picture/Fonts/Shaping.h"

#include <fribidi/fribidi.h>
#include <harfbuzz/hb-ot.h>
#include <harfbuzz/hb.h>

#include <algorithm>
#include <limits>

namespace host::picture {
namespace {

/// Scripts that join or stack letters, and marks.
struct Range {
  std::uint32_t first, last;
};
constexpr Range kShaped[] = {{0x0300, 0x036F}, {0x0590, 0x109F},   {0x1700, 0x18AF},  {0x1900, 0x1CFF},
                             {0x1DC0, 0x1DFF}, {0x200C, 0x200F},   {0x202A, 0x202E},  {0x2066, 0x2069},
                             {0x20D0, 0x20FF}, {0xA800, 0xABFF},   {0xFB1D, 0xFDFF},  {0xFE20, 0xFE2F},
                             {0xFE70, 0xFEFF}, {0x10800, 0x11FFF}, {0x1E800, 0x1EFFF}};

std::vector<FriBidiChar> charactersOf(std::wstring_view text) { return {text.begin(), text.end()}; }

}  // namespace

bool needsShaping(std::wstring_view text) {
  return std::ranges::any_of(text, [](wchar_t c) {
    if (static_cast<std::uint32_t>(c) < kShaped[0].first) return false;
    return std::ranges::any_of(kShaped, [c](const Range& r) {
      return static_cast<std::uint32_t>(c) >= r.first && static_cast<std::uint32_t>(c) <= r.last;
    });
  });
}

bool canShape() { return true; }

std::vector<DirectedRun> visualRuns(std::wstring_view text) {
  const std::vector<FriBidiChar> characters = charactersOf(text);
  const auto count =
      static_cast<FriBidiStrIndex>(std::min<std::size_t>(text.size(), std::numeric_limits<int>::max() / 2));
  std::vector<FriBidiCharType> types(text.size());
  std::vector<FriBidiBracketType> brackets(text.size());
  std::vector<FriBidiLevel> levels(text.size());
  fribidi_get_bidi_types(characters.data(), count, types.data());
  fribidi_get_bracket_types(characters.data(), count, types.data(), brackets.data());
  FriBidiParType direction = FRIBIDI_PAR_ON;
  if (text.empty() ||
      fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), count, &direction, levels.data()) == 0)
    return {{0, text.size(), false}};
  // Rule L2: runs of the highest level are turned round first, then those of the next one together with them.
  std::vector<DirectedRun> runs;
  std::vector<FriBidiLevel> runLevels;
  FriBidiLevel highest = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (runs.empty() || runLevels.back() != levels[i]) {
      runs.push_back({i, i, (levels[i] & 1) != 0});
      runLevels.push_back(levels[i]);
      highest = std::max(highest, levels[i]);
    }
    runs.back().end = i + 1;
  }
  for (FriBidiLevel level = highest; level > 0; --level)
    for (std::size_t begin = 0; begin < runs.size();) {
      std::size_t end = begin;
      while (end < runs.size() && runLevels[end] >= level) ++end;
      std::reverse(runs.begin() + static_cast<std::ptrdiff_t>(begin), runs.begin() + static_cast<std::ptrdiff_t>(end));
      std::reverse(runLevels.begin() + static_cast<std::ptrdiff_t>(begin),
                   runLevels.begin() + static_cast<std::ptrdiff_t>(end));
      begin = end + 1;
    }
  return runs;
}

struct Shaper::Font {
  hb_font_t* font = nullptr;
  hb_buffer_t* buffer = nullptr;
};

Shaper::Shaper(std::string_view bytes, int index) : font_(std::make_unique<Font>()) {
  hb_blob_t* const blob =
      hb_blob_create(bytes.data(), static_cast<unsigned>(bytes.size()), HB_MEMORY_MODE_READONLY, nullptr, nullptr);
  hb_face_t* const face = hb_face_create(blob, static_cast<unsigned>(index));
  hb_blob_destroy(blob);
  font_->font = hb_font_create(face);
  hb_face_destroy(face);
  font_->buffer = hb_buffer_create();
}

Shaper::~Shaper() {
  hb_font_destroy(font_->font);
  hb_buffer_destroy(font_->buffer);
}

std::vector<ShapedGlyph> Shaper::shape(std::wstring_view text, const DirectedRun& run) const {
  hb_unicode_funcs_t* const unicode = hb_unicode_funcs_get_default();
  const auto scriptOf = [&](std::size_t i) {
    const hb_script_t script = hb_unicode_script(unicode, static_cast<hb_codepoint_t>(text[i]));
    return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED ? HB_SCRIPT_INVALID : script;
  };
  // Pieces of one script; what belongs to none goes with what stands before it.
  struct Piece {
    std::size_t begin, end;
    hb_script_t script;
  };
  std::vector<Piece> pieces;
  for (std::size_t i = run.begin; i < run.end; ++i) {
    const hb_script_t script = scriptOf(i);
    if (pieces.empty() ||
        (script != HB_SCRIPT_INVALID && pieces.back().script != HB_SCRIPT_INVALID && script != pieces.back().script))
      pieces.push_back({i, i, script});
    if (pieces.back().script == HB_SCRIPT_INVALID) pieces.back().script = script;
    pieces.back().end = i + 1;
  }
  if (run.isRightToLeft) std::ranges::reverse(pieces);
  std::vector<std::uint32_t> letters;
  std::vector<ShapedGlyph> shaped;
  for (const Piece& piece : pieces) {
    letters.assign(text.begin() + static_cast<std::ptrdiff_t>(piece.begin),
                   text.begin() + static_cast<std::ptrdiff_t>(piece.end));
    hb_buffer_reset(font_->buffer);
    hb_buffer_add_utf32(font_->buffer, letters.data(), static_cast<int>(letters.size()), 0,
                        static_cast<int>(letters.size()));
    hb_buffer_set_direction(font_->buffer, run.isRightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_script(font_->buffer, piece.script == HB_SCRIPT_INVALID ? HB_SCRIPT_COMMON : piece.script);
    hb_buffer_set_language(font_->buffer, hb_language_from_string("und", -1));
    hb_shape(font_->font, font_->buffer, nullptr, 0);
    unsigned count = 0;
    const hb_glyph_info_t* const infos = hb_buffer_get_glyph_infos(font_->buffer, &count);
    const hb_glyph_position_t* const places = hb_buffer_get_glyph_positions(font_->buffer, &count);
    for (unsigned i = 0; i < count; ++i)
      shaped.push_back({infos[i].codepoint, static_cast<std::uint32_t>(piece.begin) + infos[i].cluster,
                        static_cast<double>(places[i].x_advance), static_cast<double>(places[i].x_offset),
                        static_cast<double>(places[i].y_offset)});
  }
  return shaped;
}

}  // namespace host::picture
