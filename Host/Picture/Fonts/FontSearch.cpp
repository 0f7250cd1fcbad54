#include "Picture/Fonts/FontSearch.h"

#include <fontconfig/fontconfig.h>

#include <memory>
#include <string_view>

#include "Platform/Files.h"
#include "Platform/System.h"

namespace host::picture {
namespace {

struct PatternEnd {
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
using Pattern = std::unique_ptr<FcPattern, PatternEnd>;

const FcChar8* bytesOf(const std::string& text) { return reinterpret_cast<const FcChar8*>(text.c_str()); }
std::string textOf(const FcChar8* bytes) { return bytes == nullptr ? "" : reinterpret_cast<const char*>(bytes); }

Pattern outlines(bool isBold, bool isItalic) {
  Pattern pattern(FcPatternCreate());
  FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
  FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
  FcPatternAddBool(pattern.get(), FC_COLOR, FcFalse);
  FcPatternAddInteger(pattern.get(), FC_WEIGHT, isBold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
  FcPatternAddInteger(pattern.get(), FC_SLANT, isItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
  FcPatternAddInteger(pattern.get(), FC_WIDTH, FC_WIDTH_NORMAL);
  FcPatternAddString(pattern.get(), FC_FONTFORMAT, bytesOf("TrueType"));
  return pattern;
}

/// Where the system brings no configuration, ours takes its place before the first search.
void configure() {
  const std::string configuration = platform::fontConfiguration();
  if (configuration.empty()) return;
  FcConfig* const config = FcConfigCreate();
  FcConfigParseAndLoadFromMemory(config, bytesOf(configuration), FcFalse);
  FcConfigSetCurrent(config);  // which searches the folders and keeps it
  FcConfigDestroy(config);
}

Pattern bestMatch(const Pattern& pattern) {
  [[maybe_unused]] static const bool isConfigured = (configure(), true);
  FcDefaultSubstitute(pattern.get());
  FcResult result = FcResultNoMatch;
  return Pattern(FcFontMatch(nullptr, pattern.get(), &result));
}

std::optional<FontFile> fileOf(const Pattern& match) {
  FcChar8* text = nullptr;
  FontFile font;
  // Others cannot be shaped, or have no outlines.
  if (FcPatternGetString(match.get(), FC_FONTFORMAT, 0, &text) != FcResultMatch) return std::nullopt;
  if (const std::string format = textOf(text); format != "TrueType" && format != "CFF") return std::nullopt;
  if (FcPatternGetString(match.get(), FC_FILE, 0, &text) != FcResultMatch) return std::nullopt;
  font.path = platform::pathOfSystemText(textOf(text));
  if (FcPatternGetString(match.get(), FC_FAMILY, 0, &text) == FcResultMatch) font.family = textOf(text);
  FcPatternGetInteger(match.get(), FC_INDEX, 0, &font.index);
  int weight = FC_WEIGHT_REGULAR, slant = FC_SLANT_ROMAN;
  FcPatternGetInteger(match.get(), FC_WEIGHT, 0, &weight);
  FcPatternGetInteger(match.get(), FC_SLANT, 0, &slant);
  font.isBold = weight >= FC_WEIGHT_DEMIBOLD;
  font.isItalic = slant != FC_SLANT_ROMAN;
  return font;
}

}  // namespace

std::optional<FontFile> findFont(const std::string& family, bool isBold, bool isItalic) {
  const Pattern pattern = outlines(isBold, isItalic);
  FcPatternAddString(pattern.get(), FC_FAMILY, bytesOf(family));
  const Pattern match = bestMatch(pattern);
  if (match == nullptr) return std::nullopt;
  // The nearest one may be of another family.
  FcChar8* name = nullptr;
  for (int i = 0; FcPatternGetString(match.get(), FC_FAMILY, i, &name) == FcResultMatch; ++i)
    if (FcStrCmpIgnoreCase(name, bytesOf(family)) == 0) return fileOf(match);
  return std::nullopt;
}

std::optional<FontFile> findFontWith(char32_t letter, bool isBold) {
  const Pattern pattern = outlines(isBold, false);
  FcCharSet* const letters = FcCharSetCreate();
  FcCharSetAddChar(letters, letter);
  FcPatternAddCharSet(pattern.get(), FC_CHARSET, letters);
  FcCharSetDestroy(letters);
  const Pattern match = bestMatch(pattern);
  FcCharSet* covered = nullptr;
  if (match == nullptr || FcPatternGetCharSet(match.get(), FC_CHARSET, 0, &covered) != FcResultMatch ||
      FcCharSetHasChar(covered, letter) == FcFalse)
    return std::nullopt;
  return fileOf(match);
}

}  // namespace host::picture
