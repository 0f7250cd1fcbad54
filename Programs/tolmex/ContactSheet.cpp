#include "ContactSheet.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <optional>

namespace tolmex {
namespace {

constexpr std::size_t kColumns = 3;
constexpr int kWidth = 600, kGap = 24, kLine = 22, kTitle = 48;  // SVG units

std::string escaped(const std::string& text) {
  std::string all;
  for (const char c : text) {
    if (c == '&') {
      all += "&amp;";
    } else if (c == '<') {
      all += "&lt;";
    } else {
      all += c;
    }
  }
  return all;
}

std::string base64(const std::string& bytes) {
  constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k)
      group = group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    for (std::size_t k = 0; k < 4; ++k) text += i + k > bytes.size() ? '=' : kDigits[group >> (18 - 6 * k) & 63U];
  }
  return text;
}

struct Png {
  std::string bytes;
  double ratio = 1;  // height by width
};

std::optional<Png> readPng(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  Png png{{std::istreambuf_iterator<char>(stream), {}}, 1};
  // Width and height stand at 16 and 20, the first byte first.
  constexpr std::size_t kHeader = 24;
  if (png.bytes.size() < kHeader) return std::nullopt;
  const auto number = [&png](std::size_t at) {
    double value = 0;
    for (std::size_t i = 0; i < 4; ++i) value = value * 256 + static_cast<unsigned char>(png.bytes[at + i]);
    return value;
  };
  if (number(16) <= 0) return std::nullopt;
  png.ratio = number(20) / number(16);
  return png;
}

std::string text(int x, int y, int size, const std::string& words) {
  return "<text x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\" font-size=\"" + std::to_string(size) +
         "\">" + escaped(words) + "</text>\n";
}

}  // namespace

std::string contactSheet(const ContactSheet& sheet) {
  std::vector<std::optional<Png>> pictures;
  double ratio = 0;
  std::size_t lines = 0;
  for (const ContactSheet::Cell& cell : sheet.cells) {
    pictures.push_back(cell.picture.empty() ? std::nullopt : readPng(cell.picture));
    if (pictures.back()) ratio = std::max(ratio, pictures.back()->ratio);
    lines = std::max(lines, cell.lines.size());
  }
  if (ratio == 0) ratio = 0.25;
  const int height = static_cast<int>(kWidth * ratio);
  const int cellHeight = height + kLine * static_cast<int>(lines + 2) + kGap;
  const std::size_t columns = std::min(std::max<std::size_t>(sheet.cells.size(), 1), kColumns);
  const auto rows = static_cast<int>((sheet.cells.size() + columns - 1) / columns);
  const int width = static_cast<int>(columns) * (kWidth + kGap) + kGap;
  const int whole = kTitle + kGap + rows * cellHeight + kLine * static_cast<int>(sheet.notes.size()) + kGap;
  const std::string size = std::to_string(width) + "\" height=\"" + std::to_string(whole);
  std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"" +
                    size + "\" font-family=\"DejaVu Sans, sans-serif\">\n<rect width=\"" + size +
                    "\" fill=\"white\"/>\n" + text(kGap, kTitle, 28, sheet.title);
  for (std::size_t i = 0; i < sheet.cells.size(); ++i) {
    const int x = kGap + static_cast<int>(i % columns) * (kWidth + kGap);
    int y = kTitle + kGap + static_cast<int>(i / columns) * cellHeight;
    const std::string place = "x=\"" + std::to_string(x) + "\" y=\"" + std::to_string(y) + "\" width=\"" +
                              std::to_string(kWidth) + "\" height=\"" + std::to_string(height) + "\"";
    if (pictures[i])
      svg += "<image " + place + " xlink:href=\"data:image/png;base64," + base64(pictures[i]->bytes) + "\"/>\n";
    svg += "<rect " + place + " fill=\"none\" stroke=\"#888\"/>\n";
    y += height + kLine;
    svg += text(x, y, 18, sheet.cells[i].title);
    for (const std::string& line : sheet.cells[i].lines) svg += text(x, y += kLine, 15, line);
  }
  int y = kTitle + kGap + rows * cellHeight;
  for (const std::string& note : sheet.notes) svg += text(kGap, y += kLine, 14, note);
  return svg + "</svg>\n";
}

}  // namespace tolmex
