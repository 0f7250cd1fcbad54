#include "Picture/Formats/PdfLetters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "Picture/Fonts/Shaping.h"

// References: ISO 32000-1, 9.7.4 (CIDFonts), 9.8 (font descriptors), 9.10.3 (ToUnicode), and the OpenType tables that
// 9.9 asks for. Programs that lay recognised text over scanned pages use such fonts.
namespace host::picture::pdf {
namespace {

constexpr int kUnitsPerEm = 1000, kAscent = 900, kDescent = -220;
constexpr const char* kName = "TolmexLetters";

std::vector<char32_t> lettersOf(std::wstring_view text) {
  std::vector<char32_t> letters;
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto letter = static_cast<char32_t>(text[i]);
    const char32_t next = i + 1 < text.size() ? static_cast<char32_t>(text[i + 1]) : 0;
    // Where characters are units of UTF-16.
    if (letter >= 0xD800 && letter < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
      letter = 0x10000 + ((letter - 0xD800) << 10) + (next - 0xDC00);
      ++i;
    }
    const bool isSurrogate = letter >= 0xD800 && letter < 0xE000;
    const bool isControl = letter < 0x20 || (letter >= 0x7F && letter < 0xA0);
    if (!isSurrogate && !isControl && letter <= 0x10FFFF && (letter & 0xFFFE) != 0xFFFE) letters.push_back(letter);
  }
  return letters;
}

/// From the left to the right, as readers want them: they turn letters of Arabic and Hebrew into reading order again.
std::vector<char32_t> asTheyStand(std::wstring_view text) {
  if (!needsShaping(text)) return lettersOf(text);
  std::vector<char32_t> all;
  for (const DirectedRun& run : visualRuns(text)) {
    std::vector<char32_t> letters = lettersOf(text.substr(run.begin, run.end - run.begin));
    if (run.isRightToLeft) std::ranges::reverse(letters);
    all.insert(all.end(), letters.begin(), letters.end());
  }
  return all;
}

/// Numbers of a font file, the highest byte first.
class Table {
 public:
  Table& u16(unsigned value) {
    bytes_ += static_cast<char>(value >> 8 & 0xFF);
    bytes_ += static_cast<char>(value & 0xFF);
    return *this;
  }
  Table& i16(int value) { return u16(static_cast<unsigned>(value)); }
  Table& u32(std::uint32_t value) { return u16(value >> 16).u16(value & 0xFFFF); }
  Table& zeros(int halves) {
    for (int i = 0; i < halves; ++i) u16(0);
    return *this;
  }
  std::string take() { return std::move(bytes_); }

 private:
  std::string bytes_;
};

std::uint32_t checksum(const std::string& bytes) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i)
    sum += static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])) << (24 - 8 * (i % 4));
  return sum;
}

/// A TrueType file of the tables, whose names are in the order of the alphabet.
std::string fontOf(const std::vector<std::pair<std::string, std::string>>& tables) {
  constexpr std::size_t kEntry = 16, kHeader = 12;
  const auto count = static_cast<unsigned>(tables.size());
  unsigned power = 1, log = 0;  // the largest power of two up to the count
  for (; power * 2 <= count; power *= 2) ++log;
  Table header;
  header.u32(0x00010000).u16(count).u16(power * kEntry).u16(log).u16((count - power) * kEntry);
  std::string directory = header.take(), body;
  std::size_t head = 0;
  for (const auto& [name, bytes] : tables) {
    const std::size_t place = kHeader + tables.size() * kEntry + body.size();
    if (name == "head") head = place;
    Table entry;
    entry.u32(checksum(bytes)).u32(static_cast<std::uint32_t>(place)).u32(static_cast<std::uint32_t>(bytes.size()));
    directory += name + entry.take();
    body += bytes;
    body.resize((body.size() + 3) / 4 * 4);
  }
  std::string file = directory + body;
  constexpr std::uint32_t kWhole = 0xB1B0AFBA;
  constexpr std::size_t kAdjustment = 8;
  file.replace(head + kAdjustment, 4, Table().u32(kWhole - checksum(file)).take());
  return file;
}

}  // namespace

std::size_t Letters::font() {
  if (font_ == 0) font_ = objects_.reserve();
  return font_;
}

const Letters::Letter& Letters::letter(char32_t letter) {
  const auto [entry, isNew] = known_.try_emplace(letter);
  constexpr std::size_t kMost = 0xFFFE;
  if (!isNew || letters_.size() >= kMost) return entry->second;
  const auto character = static_cast<wchar_t>(letter);
  const double width = glyphs_.width({&character, 1}, {}) * kCapitalHeight * kUnitsPerEm;
  letters_.push_back(letter);
  widths_.push_back(static_cast<std::uint16_t>(std::clamp(std::round(width), 0.0, 30000.0)));
  entry->second = {static_cast<unsigned>(letters_.size()), widths_.back()};
  return entry->second;
}

Letters::Line Letters::line(std::wstring_view text) {
  Line line;
  unsigned width = 0;
  std::array<char, 16> digits{};
  for (const char32_t each : asTheyStand(text)) {
    const Letter& known = letter(each);
    if (known.code == 0) continue;
    std::snprintf(digits.data(), digits.size(), "%04X", known.code);
    line.codes += digits.data();
    width += known.width;
  }
  line.width = static_cast<double>(width) / kUnitsPerEm;
  return line;
}

/// Glyphs without outlines, as many as there are letters.
std::string Letters::fontFile() const {
  const auto glyphs = static_cast<unsigned>(widths_.size());
  Table head, hhea, maxp, hmtx, loca, glyf;
  head.u32(0x00010000).u32(0x00010000).u32(0).u32(0x5F0F3CF5).u16(0).u16(kUnitsPerEm).zeros(8);
  head.i16(0).i16(kDescent).i16(kUnitsPerEm).i16(kAscent).u16(0).u16(3).i16(2).i16(0).i16(0);
  hhea.u32(0x00010000).i16(kAscent).i16(kDescent).i16(0).u16(*std::ranges::max_element(widths_)).zeros(3);
  hhea.i16(1).zeros(7).u16(glyphs);
  maxp.u32(0x00010000).u16(glyphs).zeros(4).u16(1).zeros(8);
  for (const std::uint16_t width : widths_) hmtx.u16(width).i16(0);
  // The sign of a missing letter is an outline of no contours: some readers want the table not to be empty.
  constexpr unsigned kEmptyGlyphWords = 6;
  glyf.zeros(kEmptyGlyphWords);
  loca.u16(0);
  for (unsigned i = 0; i < glyphs; ++i) loca.u16(kEmptyGlyphWords);
  return fontOf({{"glyf", glyf.take()},
                 {"head", head.take()},
                 {"hhea", hhea.take()},
                 {"hmtx", hmtx.take()},
                 {"loca", loca.take()},
                 {"maxp", maxp.take()}});
}

void Letters::finish() {
  if (font_ == 0) return;
  std::string widths, map;
  for (std::size_t i = 1; i < widths_.size(); ++i) widths += (i > 1 ? " " : "") + std::to_string(widths_[i]);
  std::array<char, 32> code{};
  constexpr std::size_t kMostInBlock = 100;
  for (std::size_t i = 0; i < letters_.size(); ++i) {
    if (i % kMostInBlock == 0) {
      if (i > 0) map += "endbfchar\n";
      map += std::to_string(std::min(kMostInBlock, letters_.size() - i)) + " beginbfchar\n";
    }
    std::snprintf(code.data(), code.size(), "<%04zX> <", i + 1);
    map += code.data();
    addUtf16(map, letters_[i]);
    map += ">\n";
  }
  if (!map.empty()) map += "endbfchar\n";
  const std::size_t toUnicode = objects_.addStream(
      "",
      "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n/CIDSystemInfo <</Registry (Adobe) /Ordering "
      "(UCS) /Supplement 0>> def\n/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n1 begincodespacerange\n"
      "<0000> <FFFF>\nendcodespacerange\n" +
          map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n");
  const std::string file = fontFile();
  const std::size_t program = objects_.addStream("/Length1 " + std::to_string(file.size()), file);
  const std::string name = std::string("/") + kName;
  constexpr int kSymbolic = 4;
  const std::size_t descriptor = objects_.add(
      "<</Type /FontDescriptor /FontName " + name + " /Flags " + std::to_string(kSymbolic) + " /FontBBox [0 " +
      std::to_string(kDescent) + " " + std::to_string(kUnitsPerEm) + " " + std::to_string(kAscent) +
      "] /ItalicAngle 0 /Ascent " + std::to_string(kAscent) + " /Descent " + std::to_string(kDescent) + " /CapHeight " +
      std::to_string(std::lround(kCapitalHeight * kUnitsPerEm)) + " /StemV 80 /FontFile2 " + reference(program) + ">>");
  const std::size_t descendant =
      objects_.add("<</Type /Font /Subtype /CIDFontType2 /BaseFont " + name +
                   " /CIDSystemInfo <</Registry (Adobe) /Ordering (Identity) /Supplement 0>> /FontDescriptor " +
                   reference(descriptor) + " /W [1 [" + widths + "]] /CIDToGIDMap /Identity>>");
  objects_.set(font_, "<</Type /Font /Subtype /Type0 /BaseFont " + name + " /Encoding /Identity-H /DescendantFonts [" +
                          reference(descendant) + "] /ToUnicode " + reference(toUnicode) + ">>");
}

}  // namespace host::picture::pdf
