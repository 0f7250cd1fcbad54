#include "Picture/Sheets/PlotStyles.h"

#include <ft2build.h>
#include FT_GZIP_H
#include FT_SYSTEM_H

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Platform/Paths.h"
#include "Text/Text.h"

namespace host::picture {
namespace {

namespace fs = std::filesystem;

/// The file begins with its kind in plain text and three counts of four bytes each; what follows is compressed.
constexpr std::string_view kMark = "PIAFILEVERSION_2.0,CTBVER1,compress";
constexpr std::size_t kHeaderBytes = 60;
/// A table of 255 pens takes 100 kilobytes.
constexpr std::size_t kMostBytes = 4U << 20U;
constexpr std::uintmax_t kMostFileBytes = 4U << 20U;

/// Linetypes of pens by number: dashes of twice the length, long, medium and short ones, and dots, each with a gap
/// behind it.
constexpr std::array<std::string_view, 31> kPenLinetypes = {
    "",   "M", ".",  "M.", "S",   "M",    "L", "M",  "L",   "D",  "LM",  "MSS", "LS",   "L..",  "L.",   "M.S.",
    ". ", "M", "M ", "L.", "L..", "L...", ".", "LS", "LSS", "M.", "MM.", "M..", "MM..", "M...", "MM..."};

LinePattern penPattern(std::string_view letters) {
  constexpr double kDoubleMm = 12, kLongMm = 6, kMediumMm = 3, kShortMm = 1.5, kGapMm = 1.5;
  LinePattern pattern;
  for (const char letter : letters) {
    if (letter == ' ' && !pattern.dashes.empty()) {
      pattern.dashes.back() -= 2 * kGapMm;  // a wider gap
      continue;
    }
    pattern.dashes.push_back(letter == 'D'   ? kDoubleMm
                             : letter == 'L' ? kLongMm
                             : letter == 'M' ? kMediumMm
                             : letter == 'S' ? kShortMm
                                             : 0);
    pattern.dashes.push_back(-kGapMm);
  }
  return pattern;
}

struct FreeTypeMemory {
  FT_MemoryRec_ record{
      nullptr, [](FT_Memory, long size) { return std::malloc(static_cast<std::size_t>(size)); },
      [](FT_Memory, void* block) { std::free(block); },
      [](FT_Memory, long, long size, void* block) { return std::realloc(block, static_cast<std::size_t>(size)); }};
};

/// Whole numbers as the file spells them; nothing for anything else.
std::optional<std::int64_t> wholeNumber(std::string_view text) { return text::parseInteger(text); }

std::optional<std::string> fileBytes(const fs::path& file) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(file, error);
  if (error || size > kMostFileBytes) return std::nullopt;
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  return std::string{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// The file of that name in the folder; in another case when there is none just so.
std::optional<fs::path> fileIn(const fs::path& folder, const fs::path& name) {
  std::error_code error;
  if (fs::is_regular_file(folder / name, error)) return folder / name;
  std::optional<fs::path> found;
  const std::wstring wanted = text::fromUtf8(name.string());
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code notFile;
    if (!entry->is_regular_file(notFile) || (found && entry->path() > *found)) continue;
    if (text::equalFolded(text::fromUtf8(entry->path().filename().string()), wanted)) found = entry->path();
  }
  return found;
}

}  // namespace

Result<PlotStyles> PlotStyles::read(std::string_view bytes) {
  const auto refusal = [](const char* why) { return problemOf(Code::PictureNote, why); };
  if (!bytes.starts_with(kMark)) return refusal("it is no table of colour-dependent plot styles");
  if (bytes.size() <= kHeaderBytes) return refusal("it is cut off");
  bytes.remove_prefix(kHeaderBytes);
  std::string content(kMostBytes, '\0');
  FT_ULong size = kMostBytes;
  FreeTypeMemory memory;
  const FT_Error failed =
      FT_Gzip_Uncompress(&memory.record, reinterpret_cast<FT_Byte*>(content.data()), &size,
                         reinterpret_cast<const FT_Byte*>(bytes.data()), static_cast<FT_ULong>(bytes.size()));
  if (failed == FT_Err_Array_Too_Large) return refusal("it is cut off, or its content is larger than 4 megabytes");
  if (failed != 0) return refusal("it is damaged");
  content.resize(size);
  PlotStyles styles;
  styles.parse(content);
  return styles;
}

/// Lines of the form key=value (texts with a quotation mark in front), and key{ ... } around them. Pens count from 0.
void PlotStyles::parse(std::string_view text) {
  std::vector<std::string_view> path;
  std::array<std::int64_t, kPens> weights{};  // rows of the table of lineweights
  std::vector<double> lineweights;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\0'; };
    while (!line.empty() && isBlank(line.front())) line.remove_prefix(1);
    while (!line.empty() && isBlank(line.back())) line.remove_suffix(1);
    const std::size_t equals = line.find('=');
    if (line == "}") {
      if (!path.empty()) path.pop_back();
      continue;
    }
    if (equals == std::string_view::npos) {
      constexpr std::size_t kDeepest = 16;
      if (line.ends_with('{') && path.size() < kDeepest) path.push_back(line.substr(0, line.size() - 1));
      continue;
    }
    const std::string_view key = line.substr(0, equals), value = line.substr(equals + 1);
    if (path.size() == 1 && path[0] == "custom_lineweight_table") {
      const auto row = wholeNumber(key);
      const double millimetres = text::parseReal(value).value_or(0);
      constexpr double kWidestMm = 25;
      if (!row || *row < 0 || *row >= static_cast<std::int64_t>(kPens) ||
          !(millimetres >= 0 && millimetres < kWidestMm))
        continue;
      lineweights.resize(std::max(lineweights.size(), static_cast<std::size_t>(*row) + 1));
      lineweights[static_cast<std::size_t>(*row)] = millimetres;
    }
    if (path.size() != 2 || path[0] != "plot_style") continue;
    const auto index = wholeNumber(path[1]);
    const auto number = wholeNumber(value);
    if (!index || *index < 0 || *index + 1 >= static_cast<std::int64_t>(kPens) || !number) continue;
    PlotPen& pen = pens_[static_cast<std::size_t>(*index) + 1];
    // Of a colour that users made themselves "color" is the nearest of the palette.
    if (key == "color" || key == "mode_color") {
      constexpr std::int64_t kOwn = 0xC3, kTrue = 0xC2;
      const std::int64_t kind = *number >> 24 & 0xFF;
      if (*number != -1 && (kind == kOwn || kind == kTrue) && (key == "mode_color" || !pen.rgb))
        pen.rgb = static_cast<std::uint32_t>(*number & 0xFFFFFF);
    } else if (key == "color_policy") {
      constexpr std::int64_t kGrey = 2;
      pen.isGrey = (*number & kGrey) != 0;
    } else if (key == "screen") {
      pen.screenPercent = static_cast<int>(std::clamp<std::int64_t>(*number, 0, 100));
    } else if (key == "lineweight") {
      weights[static_cast<std::size_t>(*index) + 1] = *number;
    } else if (key == "linetype" && *number >= 0 && *number < static_cast<std::int64_t>(kPenLinetypes.size())) {
      pen.dashes = penPattern(kPenLinetypes[static_cast<std::size_t>(*number)]);
    }
  }
  // 0 is the lineweight of what is drawn; the rows count from 1.
  for (std::size_t i = 0; i < kPens; ++i)
    if (weights[i] > 0 && weights[i] <= static_cast<std::int64_t>(lineweights.size()))
      pens_[i].lineweightMm = lineweights[static_cast<std::size_t>(weights[i] - 1)];
}

std::optional<PlotStyles> findPlotStyles(const std::string& styleSheet, const PictureOptions& options,
                                         std::string& note) {
  std::string name = styleSheet;
  std::ranges::replace(name, '\\', '/');
  name.erase(0, name.rfind('/') + 1);
  const std::wstring folded = text::fromUtf8(name);
  const auto endsIn = [&folded](std::wstring_view end) {
    return folded.size() > end.size() &&
           text::equalFolded(std::wstring_view(folded).substr(folded.size() - end.size()), end);
  };
  if (!endsIn(L".ctb")) {
    if (endsIn(L".stb")) note = "Named plot styles are not used: " + name + ".";
    return std::nullopt;
  }
  std::vector<fs::path> folders = {options.drawingFolder.empty() ? "." : platform::pathOf(options.drawingFolder)};
  folders.insert(folders.end(), options.supportFolders.begin(), options.supportFolders.end());
  for (const fs::path& folder : folders) {
    const auto file = fileIn(folder, platform::pathOf(name));
    if (!file) continue;
    const auto bytes = fileBytes(*file);
    Result<PlotStyles> styles =
        bytes ? PlotStyles::read(*bytes) : problemOf(Code::PictureNote, "it cannot be read or is too large");
    if (styles) return std::move(styles.value());
    note = "The plot styles of " + file->string() + " are not used: " + styles.problem().sentence() + ".";
    return std::nullopt;
  }
  // Every new drawing names this one; it changes nothing.
  if (!text::equalFolded(folded, L"acad.ctb"))
    note = "The plot styles " + name + " were not found; colours and lineweights are the drawing's own.";
  return std::nullopt;
}

}  // namespace host::picture
