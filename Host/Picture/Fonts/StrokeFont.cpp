#include "Picture/Fonts/StrokeFont.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <numbers>
#include <optional>
#include <vector>

#include "Platform/Library.h"
#include "Platform/System.h"
#include "Text/Text.h"

namespace host::picture {

using geometry::Point;

namespace {

namespace fs = std::filesystem;

constexpr double kCapitalHeight = 9;  // of every file of this format
constexpr double kUsualLetterSpacing = 3, kUsualWordSpacing = 6.75;

std::optional<double> finite(std::string_view text) {
  const auto value = text::parseReal(text);
  constexpr double kFarthest = 1000;
  if (!value || !(std::abs(*value) <= kFarthest)) return std::nullopt;
  return value;
}

/// The part of the text in front of the separator, which is taken away with it.
std::string_view cut(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

/// Adds the arc from the last point to `to`; its bulge is the tangent of a quarter of its angle.
void addArc(std::vector<Point>& line, Point to, double bulge) {
  const Point from = line.back();
  const double angle = 4 * std::atan(bulge), chord = std::hypot(to.x - from.x, to.y - from.y);
  constexpr double kStepRad = std::numbers::pi / 12;
  const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(angle) / kStepRad)));
  if (chord > 0 && pieces > 1) {
    const double height = (1 - bulge * bulge) / (4 * bulge);  // of the centre over the chord, in chords
    const Point center{(from.x + to.x) / 2 - (to.y - from.y) * height, (from.y + to.y) / 2 + (to.x - from.x) * height};
    const double radius = std::hypot(from.x - center.x, from.y - center.y);
    const double begin = std::atan2(from.y - center.y, from.x - center.x);
    for (int i = 1; i < pieces; ++i) {
      const double t = begin + angle * i / pieces;
      line.push_back({center.x + radius * std::cos(t), center.y + radius * std::sin(t)});
    }
  }
  line.push_back(to);
}

/// "x,y;x,y,Abulge;...": the bulge is that of the piece that ends there.
std::vector<Point> parseLine(std::string_view text) {
  std::vector<Point> line;
  while (!text.empty()) {
    std::string_view vertex = cut(text, ';');
    const auto x = finite(cut(vertex, ',')), y = finite(cut(vertex, ','));
    if (!x || !y) return {};
    const Point to{*x / kCapitalHeight, *y / kCapitalHeight};
    const double bulge = vertex.starts_with('A') ? finite(vertex.substr(1)).value_or(0) : 0;
    if (line.empty() || bulge == 0)
      line.push_back(to);
    else
      addArc(line, to, bulge);
  }
  return line;
}

}  // namespace

StrokeFont::StrokeFont(std::string_view text) {
  double letterSpacing = kUsualLetterSpacing, wordSpacing = kUsualWordSpacing;
  Glyph* current = nullptr;
  while (!text.empty()) {
    std::string_view line = cut(text, '\n');
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
    if (line.starts_with('#')) {
      std::string_view key = cut(line, ':');
      while (line.starts_with(' ')) line.remove_prefix(1);
      if (key.ends_with("LetterSpacing")) letterSpacing = finite(line).value_or(letterSpacing);
      if (key.ends_with("WordSpacing")) wordSpacing = finite(line).value_or(wordSpacing);
    } else if (line.starts_with('[')) {
      const std::string code(line.substr(1, line.find(']') - 1));
      char* end = nullptr;
      const unsigned long letter = std::strtoul(code.c_str(), &end, 16);
      constexpr unsigned long kLast = 0x10FFFF;
      current = end == code.c_str() || letter == 0 || letter > kLast ? nullptr : &glyphs_[static_cast<wchar_t>(letter)];
      if (current != nullptr) *current = {};
    } else if (current != nullptr && line.starts_with('C')) {
      const std::string code(line.substr(1));
      const auto other = glyphs_.find(static_cast<wchar_t>(std::strtoul(code.c_str(), nullptr, 16)));
      if (other != glyphs_.end()) {
        const std::vector<std::vector<Point>> lines = other->second.strokes;
        current->strokes.insert(current->strokes.end(), lines.begin(), lines.end());
      }
    } else if (current != nullptr) {
      if (std::vector<Point> points = parseLine(line); !points.empty()) current->strokes.push_back(std::move(points));
    }
  }
  // Some files have one sign for all the letters that they lack.
  constexpr wchar_t kLastAscii = 0x7F;
  constexpr std::size_t kPlaceholders = 3;
  const auto before = [](const Glyph* a, const Glyph* b) {
    const auto less = [](Point p, Point q) { return p.x != q.x ? p.x < q.x : p.y < q.y; };
    return std::ranges::lexicographical_compare(a->strokes, b->strokes, [&](const auto& one, const auto& other) {
      return std::ranges::lexicographical_compare(one, other, less);
    });
  };
  std::map<const Glyph*, std::size_t, decltype(before)> alike(before);
  for (const auto& [letter, glyph] : glyphs_)
    if (letter > kLastAscii) ++alike[&glyph];
  std::vector<wchar_t> placeholders;
  for (const auto& [letter, glyph] : glyphs_)
    if (letter > kLastAscii && !glyph.strokes.empty() && alike[&glyph] >= kPlaceholders) placeholders.push_back(letter);
  alike.clear();
  for (const wchar_t letter : placeholders) glyphs_.erase(letter);
  for (auto& [letter, glyph] : glyphs_) {
    double width = 0;
    for (const auto& stroke : glyph.strokes)
      for (const Point p : stroke) width = std::max(width, p.x);
    glyph.advance = width + letterSpacing / kCapitalHeight;
  }
  Glyph blank;
  blank.advance = wordSpacing / kCapitalHeight;
  glyphs_.insert_or_assign(L' ', blank);
  glyphs_.try_emplace(L'\u00A0', blank);
}

std::unique_ptr<StrokeFont> StrokeFont::find(const std::string& name) {
  constexpr std::uintmax_t kMostBytes = 32U << 20U;
  std::vector<fs::path> folders = platform::strokeFontFolders();
  folders.insert(folders.begin(), platform::fileOf(reinterpret_cast<const void*>(&cut)).parent_path() / "fonts");
  for (const fs::path& folder : folders) {
    const fs::path file = folder / (name + ".lff");
    std::error_code error;
    if (!fs::is_regular_file(file, error) || fs::file_size(file, error) > kMostBytes || error) continue;
    std::ifstream in(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (in.good() || in.eof()) return std::make_unique<StrokeFont>(text);
  }
  return nullptr;
}

const Glyph* StrokeFont::glyph(wchar_t letter) const {
  const auto found = glyphs_.find(letter);
  return found == glyphs_.end() ? nullptr : &found->second;
}

}  // namespace host::picture
