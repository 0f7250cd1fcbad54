// Multi-line text: formatting codes, word wrap, attachment.
#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"
#include "Geometry/TextLayout.h"

namespace host::geometry {
namespace {

using database::isUsable;
using database::kLargestCoordinate;

constexpr double kLinePitch = 5.0 / 3;  // from base line to base line, of the height
constexpr double kStackedHeight = 0.7;  // of the height around a fraction
constexpr std::size_t kDeepestBraces = 64, kMostTabs = 64;
constexpr double kTabStep = 4;  // heights, behind the last tab that is set
constexpr double kSmallestFactor = 0.01, kLargestFactor = 100;

struct Format {
  double height = 1;  // absolute
  double widthFactor = 1;
  double obliqueRad = 0;
  double tracking = 1;
  bool gdt = false;  // letters stand for signs of geometric tolerances
  Face face;
  bool underline = false, overline = false, strike = false;
  int color = -1;
  std::int64_t trueColor = -1;

  bool operator==(const Format&) const = default;
};

enum class AtomKind { Word, Space, Tab, Break, Stack };
enum class LineAlign { Attachment, Left, Center, Right };

/// Lengths in drawing units; the indent of the first line counts from the left edge of the others.
struct Paragraph {
  LineAlign align = LineAlign::Attachment;
  double indent = 0, left = 0, right = 0;
  std::vector<double> tabs;  // from the left edge of the text, ascending
};
using ParagraphPointer = std::shared_ptr<const Paragraph>;

/// The smallest thing that goes to one line as a whole.
struct Atom {
  AtomKind kind = AtomKind::Word;
  std::vector<std::pair<std::wstring, Format>> pieces;  // a stack: upper and lower part
  wchar_t stackSign = 0;                                // ^ / or #
  double width = 0;
  double height = 0;
  ParagraphPointer paragraph;  // of a break: of the paragraph before it
};

/// The signs of geometric tolerances in the order of the letters from "a".
wchar_t toleranceSign(wchar_t letter) {
  constexpr std::wstring_view kSigns =
      L"\u2220\u27C2\u23E5\u2313\u25CB\u2225\u232D\u2197\u232F\u2316\u2312\u24C1\u24C2\u2300\u25A1\u24C5q\u25CE\u24C8"
      L"\u2330\u23E4";
  return letter >= L'a' && letter < L'a' + static_cast<wchar_t>(kSigns.size())
             ? kSigns[static_cast<std::size_t>(letter - L'a')]
             : letter;
}

bool isIdeograph(wchar_t c) { return static_cast<unsigned long>(c) >= 0x2E80; }

class Parser {
 public:
  Parser(const MTextParts& parts, const TextWidth& width)
      : text_(parts.contents), height_(parts.height), width_(width) {
    format_.height = parts.height;
    format_.widthFactor = parts.widthFactor;
    format_.obliqueRad = parts.obliqueRad;
    format_.face = parts.face;
  }

  std::vector<Atom> parse() {
    while (at_ < text_.size()) step();
    endWord();
    Atom end{AtomKind::Break, {}, 0, 0, format_.height, paragraph_};
    atoms_.push_back(end);
    return std::move(atoms_);
  }

 private:
  void step() {
    const wchar_t c = text_[at_++];
    if (c == L'\\' && at_ < text_.size())
      code(text_[at_++]);
    else if (c == L'{') {
      if (stack_.size() < kDeepestBraces) stack_.push_back(format_);
    } else if (c == L'}') {
      if (stack_.empty()) return;
      format_ = stack_.back();
      stack_.pop_back();
    } else if (c == L'%' && text_.substr(at_, 1) == L"%")
      percent();
    else if (c == L'\n')
      lineBreak();
    else if (c == L' ')
      space();
    else if (c == L'\t')
      tab();
    else if (c >= 32)
      character(c);
  }

  void percent() {
    const std::wstring_view rest = text_.substr(at_ + 1);
    const wchar_t letter = rest.empty() ? 0 : rest[0];
    const wchar_t sign = letter == L'd' || letter == L'D'   ? L'\u00B0'
                         : letter == L'p' || letter == L'P' ? L'\u00B1'
                         : letter == L'c' || letter == L'C' ? L'\u00D8'
                         : letter == L'%'                   ? L'%'
                                                            : 0;
    const auto isDigit = [](wchar_t c) { return c >= L'0' && c <= L'9'; };
    if (sign != 0) {
      character(sign);
      at_ += 2;
    } else if (rest.size() >= 3 && isDigit(rest[0]) && isDigit(rest[1]) && isDigit(rest[2])) {
      const int number = (rest[0] - L'0') * 100 + (rest[1] - L'0') * 10 + (rest[2] - L'0');
      if (number > 32) character(static_cast<wchar_t>(number));
      at_ += 4;
    } else {
      character(L'%');
    }
  }

  void code(wchar_t letter) {
    switch (letter) {
      case L'\\':
      case L'{':
      case L'}':
        character(letter);
        break;
      case L'~':
        character(L'\u00A0');
        break;
      case L'P':
      case L'X':
      case L'N':
        lineBreak();
        break;
      case L'L':
        format_.underline = true;
        break;
      case L'l':
        format_.underline = false;
        break;
      case L'O':
        format_.overline = true;
        break;
      case L'o':
        format_.overline = false;
        break;
      case L'K':
        format_.strike = true;
        break;
      case L'k':
        format_.strike = false;
        break;
      case L'S':
        stacked(argument());
        break;
      case L'H':
        setFactor(argument(), format_.height, true);
        break;
      case L'W':
        setFactor(argument(), format_.widthFactor, false);
        break;
      case L'T':
        setFactor(argument(), format_.tracking, false);
        break;
      case L'Q': {
        const double degrees = text::parseReal(text::toUtf8(argument())).value_or(0);
        if (std::abs(degrees) <= 85) format_.obliqueRad = degrees * std::numbers::pi / 180;
        break;
      }
      case L'C': {
        const auto index = text::parseInteger(text::toUtf8(argument()));
        if (index && *index >= 0 && *index <= 256) {
          format_.color = *index == 256 ? -1 : static_cast<int>(*index);
          format_.trueColor = -1;
        }
        break;
      }
      case L'c': {
        // Red is in the low byte here, unlike in tags.
        const auto value = text::parseInteger(text::toUtf8(argument()));
        if (value) format_.trueColor = (*value & 0xFF) << 16 | (*value & 0xFF00) | (*value >> 16 & 0xFF);
        break;
      }
      case L'f':
      case L'F': {
        const std::wstring_view font = argument();
        const std::wstring_view name = font.substr(0, font.find_first_of(L"|,"));
        format_.face.font = letter == L'f' ? fontNumber(name) : fontFileNumber(name);
        format_.face.isBold = font.find(L"|b1") != std::wstring_view::npos;
        format_.face.isItalic = font.find(L"|i1") != std::wstring_view::npos;
        format_.gdt = font.size() >= 3 && text::equalFolded(font.substr(0, 3), L"gdt");
        break;
      }
      case L'p':
        paragraph(argument());
        break;
      case L'A':
        argument();
        break;
      default:
        character(letter);
        break;
    }
  }

  std::wstring_view argument() {
    std::size_t end = at_;
    while (end < text_.size() && text_[end] != L';') end += text_[end] == L'\\' ? 2 : 1;
    end = std::min(end, text_.size());
    const std::wstring_view found = text_.substr(at_, end - at_);
    at_ = std::min(end + 1, text_.size());
    return found;
  }

  static void setFactor(std::wstring_view argument, double& value, bool isLength) {
    const bool isRelative = !argument.empty() && (argument.back() == L'x' || argument.back() == L'X');
    const double number = text::parseReal(text::toUtf8(argument)).value_or(0);
    if (!(number > 0) || number > kLargestCoordinate) return;
    if (isRelative && number >= kSmallestFactor && number <= kLargestFactor)
      value *= number;
    else if (!isRelative && (isLength || (number >= kSmallestFactor && number <= kLargestFactor)))
      value = number;
  }

  /// Comma-separated: i, l, r and t lengths in heights of the text (an asterisk is their default), q the alignment.
  void paragraph(std::wstring_view argument) {
    Paragraph changed = *paragraph_;
    bool isTabList = false;
    while (!argument.empty()) {
      const std::size_t comma = std::min(argument.find(L','), argument.size());
      std::wstring_view field = argument.substr(0, comma);
      argument.remove_prefix(std::min(comma + 1, argument.size()));
      while (!field.empty() && field.front() == L'x') field.remove_prefix(1);
      if (field.empty()) continue;
      const wchar_t letter = field.front();
      const bool isNamed = letter >= L'a' && letter <= L'z';
      if (isNamed) field.remove_prefix(1);
      if (letter == L'q') {
        setAlignment(changed, field);
        continue;
      }
      if (isNamed) isTabList = letter == L't';
      if (letter == L't') {
        changed.tabs.clear();
        if (!field.empty() && field.front() >= L'a') field.remove_prefix(1);  // centred and right tabs
      }
      const double length = text::parseReal(text::toUtf8(field)).value_or(0) * height_;
      if (!(std::abs(length) <= kLargestCoordinate)) continue;
      if (letter == L'i')
        changed.indent = length;
      else if (letter == L'l')
        changed.left = std::max(length, 0.0);
      else if (letter == L'r')
        changed.right = std::max(length, 0.0);
      else if (isTabList && length > 0 && changed.tabs.size() < kMostTabs)
        changed.tabs.push_back(length);
    }
    std::ranges::sort(changed.tabs);
    paragraph_ = std::make_shared<const Paragraph>(std::move(changed));
  }

  static void setAlignment(Paragraph& paragraph, std::wstring_view letter) {
    const wchar_t c = letter.empty() ? 0 : letter.front();
    paragraph.align = c == L'l'   ? LineAlign::Left
                      : c == L'c' ? LineAlign::Center
                      : c == L'r' ? LineAlign::Right
                                  : LineAlign::Attachment;
  }

  void stacked(std::wstring_view argument) {
    endWord();
    std::wstring part[2];
    wchar_t sign = 0;
    for (std::size_t i = 0; i < argument.size(); ++i) {
      const wchar_t c = argument[i];
      if (c == L'\\' && i + 1 < argument.size())
        part[sign != 0] += argument[++i];
      else if (sign == 0 && (c == L'^' || c == L'/' || c == L'#'))
        sign = c;
      else if (c >= 32)
        part[sign != 0] += c;
    }
    if (sign == 0) {
      for (const wchar_t c : part[0]) character(c);
      return;
    }
    Atom atom{AtomKind::Stack, {}, sign, 0, format_.height, paragraph_};
    Format small = format_;
    small.height *= kStackedHeight;
    for (const std::wstring& p : part) {
      const std::size_t blanks = std::min(p.find_first_not_of(L' '), p.size());
      atom.pieces.emplace_back(p.substr(blanks), small);
    }
    const double upper = widthOf(atom.pieces[0].first, small), lower = widthOf(atom.pieces[1].first, small);
    atom.width = sign == L'#' ? upper + lower + widthOf(L"/", format_) : std::max(upper, lower);
    atoms_.push_back(std::move(atom));
  }

  double widthOf(std::wstring_view text, const Format& f) const {
    return width_(text, f.face) * f.height * f.widthFactor * f.tracking;
  }

  void character(wchar_t c) {
    if (format_.gdt) c = toleranceSign(c);
    if (isIdeograph(c)) endWord();
    if (word_.pieces.empty() || !(word_.pieces.back().second == format_)) word_.pieces.emplace_back(L"", format_);
    word_.pieces.back().first += c;
    word_.height = std::max(word_.height, format_.height);
    if (isIdeograph(c)) endWord();
  }
  void tab() {
    endWord();
    atoms_.push_back({AtomKind::Tab, {}, 0, 0, format_.height, paragraph_});
  }
  void space() {
    endWord();
    Atom atom{AtomKind::Space, {{L" ", format_}}, 0, 0, format_.height, paragraph_};
    atom.width = widthOf(atom.pieces[0].first, format_);
    atoms_.push_back(std::move(atom));
  }
  void lineBreak() {
    endWord();
    atoms_.push_back({AtomKind::Break, {}, 0, 0, format_.height, paragraph_});
  }
  void endWord() {
    word_.paragraph = paragraph_;
    for (const auto& [text, format] : word_.pieces) word_.width += widthOf(text, format);
    if (!word_.pieces.empty()) atoms_.push_back(std::move(word_));
    word_ = {};
  }

  std::wstring_view text_;
  double height_;
  const TextWidth& width_;
  std::size_t at_ = 0;
  Format format_;
  std::vector<Format> stack_;
  ParagraphPointer paragraph_ = std::make_shared<const Paragraph>();
  Atom word_;
  std::vector<Atom> atoms_;
};

struct Line {
  struct Placed {
    const Atom* atom;
    double x;  // from the left edge of the text
  };
  std::vector<Placed> atoms;
  double start = 0;  // where its first atom stands
  double width = 0;  // from there, without blanks at the end
  double height = 0;
  double right = 0;  // kept free
  LineAlign align = LineAlign::Attachment;
};

double tabStop(const Atom& tab, double x) {
  for (const double stop : tab.paragraph->tabs)
    if (stop > x * (1 + 1e-9)) return stop;
  const double step = kTabStep * tab.height;
  return (std::floor(x / step + 1e-9) + 1) * step;
}

std::vector<Line> wrapped(const std::vector<Atom>& atoms, double referenceWidth) {
  std::vector<Line> lines;
  Line line;
  double x = 0;
  bool isBegun = false, isFirst = true;
  std::size_t paragraphBegin = 0;
  const auto begin = [&](const Paragraph& paragraph) {
    line.start = x = std::max(paragraph.left + (isFirst ? paragraph.indent : 0), 0.0);
    line.right = paragraph.right;
    isBegun = true;
    isFirst = false;
  };
  const auto finish = [&](double emptyHeight) {
    if (line.height == 0) line.height = emptyHeight;
    lines.push_back(std::move(line));
    line = {};
    x = 0;
    isBegun = false;
  };
  for (const Atom& atom : atoms) {
    if (atom.kind == AtomKind::Break) {
      finish(atom.height);
      isFirst = true;
      for (; paragraphBegin < lines.size(); ++paragraphBegin) lines[paragraphBegin].align = atom.paragraph->align;
      continue;
    }
    if (!isBegun) begin(*atom.paragraph);
    if (atom.kind == AtomKind::Tab) {
      x = tabStop(atom, x);
      continue;
    }
    if (atom.kind != AtomKind::Space && referenceWidth > 0 && !line.atoms.empty() &&
        x + atom.width > (referenceWidth - line.right) * (1 + 1e-9) && line.width > 0) {
      finish(atom.height);
      begin(*atom.paragraph);
    }
    line.atoms.push_back({&atom, x});
    x += atom.width;
    if (atom.kind == AtomKind::Space) continue;
    line.width = x - line.start;
    line.height = std::max(line.height, atom.height);
  }
  return lines;
}

class Setter {
 public:
  Setter(TextBlock& block, const TextWidth& width) : block_(block), width_(width) {}

  /// x: of the line's first atom.
  void set(const Line& line, double first, double y) {
    for (const auto& [atom, place] : line.atoms) {
      const double x = first + place - line.start;
      mayJoin_ = std::abs(x - end_) <= 1e-9 * std::abs(end_) + 1e-9 * atom->height;
      end_ = x + atom->width;
      if (atom->kind == AtomKind::Stack)
        stack(*atom, x, y);
      else {
        double at = x;
        for (const auto& [text, format] : atom->pieces) {
          at += run(text, format, at, y, mayJoin_);
          mayJoin_ = true;
        }
      }
    }
  }

 private:
  double run(const std::wstring& text, const Format& format, double x, double y, bool mayJoin) {
    const double advance = width_(text, format.face) * format.height * format.widthFactor * format.tracking;
    if (mayJoin && !block_.runs.empty() && last_ == format && block_.runs.back().y == y) {
      TextRun& before = block_.runs.back();
      before.text += text;
      before.width += advance;
    } else {
      block_.runs.push_back({text, x, y, advance, format.height, format.widthFactor, format.obliqueRad, format.tracking,
                             format.face, format.color, format.trueColor});
    }
    last_ = format;
    const auto rule = [&](bool wanted, double part) {
      if (wanted) rule_({x, y + part * format.height}, {x + advance, y + part * format.height}, format);
    };
    rule(format.underline, -0.2);
    rule(format.overline, 1.2);
    rule(format.strike, 0.45);
    return advance;
  }

  void stack(const Atom& atom, double x, double y) {
    const Format& format = atom.pieces[0].second;
    const double full = atom.height;
    const auto widthOf = [&](std::size_t part) {
      return width_(atom.pieces[part].first, format.face) * format.height * format.widthFactor * format.tracking;
    };
    const double upper = widthOf(0), lower = widthOf(1);
    if (atom.stackSign == L'#') {
      run(atom.pieces[0].first, format, x, y + 0.4 * full, false);
      rule_({x + upper, y - 0.1 * full}, {x + atom.width - lower, y + 1.1 * full}, format);
      run(atom.pieces[1].first, format, x + atom.width - lower, y - 0.1 * full, false);
    } else {
      const bool isFraction = atom.stackSign == L'/';
      const double upperX = isFraction ? x + (atom.width - upper) / 2 : x;
      const double lowerX = isFraction ? x + (atom.width - lower) / 2 : x;
      if (upper > 0) run(atom.pieces[0].first, format, upperX, y + 0.6 * full, false);
      if (lower > 0) run(atom.pieces[1].first, format, lowerX, y - 0.3 * full, false);
      if (isFraction) rule_({x, y + 0.5 * full}, {x + atom.width, y + 0.5 * full}, format);
    }
    last_ = {};
    last_.height = 0;  // nothing joins a fraction
  }

  void rule_(Point from, Point to, const Format& format) {
    block_.rules.push_back({from, to, format.color, format.trueColor});
  }

  TextBlock& block_;
  const TextWidth& width_;
  Format last_;
  double end_ = 0;  // of the atom before
  bool mayJoin_ = false;
};

}  // namespace

std::optional<TextBlock> layoutMText(const MTextParts& parts, const TextWidth& width) {
  if (!isUsable(parts.position) || !(parts.height > 0) || parts.contents.empty()) return {};
  const std::vector<Atom> atoms = Parser(parts, width).parse();
  const std::vector<Line> lines = wrapped(atoms, parts.referenceWidth);
  double widest = 0;
  for (const Line& line : lines)
    if (line.width > 0) widest = std::max(widest, line.start + line.width);
  if (widest == 0) return {};

  // Base lines, the first line's capitals touching y = 0; every column begins at the top again.
  std::vector<double> bases;
  std::vector<std::size_t> columns;
  std::size_t columnOfLine = 0;
  double y = 0, lowest = 0;
  for (const Line& line : lines) {
    const double height = parts.exactSpacing ? parts.height : line.height;
    const bool isFirst = columns.empty() || columns.back() != columnOfLine;
    double next = y - (isFirst ? line.height : kLinePitch * height * parts.lineSpacing);
    // The last height given holds for all columns of one height; of several it is what is left.
    const auto& limits = parts.columnHeights;
    const bool mayBreak = !limits.empty() && (limits.size() == 1 || columnOfLine + 1 < limits.size());
    if (mayBreak && !isFirst && -next > limits[std::min(columnOfLine, limits.size() - 1)] * (1 + 1e-9)) {
      ++columnOfLine;
      next = -line.height;
    }
    y = next;
    lowest = std::min(lowest, y);
    bases.push_back(y);
    columns.push_back(columnOfLine);
  }
  y = lowest;
  const int attachment = std::clamp(parts.attachment, 1, 9);
  const int column = (attachment - 1) % 3, row = (attachment - 1) / 3;
  const double boxWidth = parts.referenceWidth > 0 ? parts.referenceWidth : widest;
  const double columnStep = boxWidth + parts.columnGutter;
  const double left = -(boxWidth + columnStep * static_cast<double>(columnOfLine)) * column / 2;
  const double shift = row == 0 ? 0 : row == 1 ? -y / 2 : -y;

  TextBlock block;
  // The direction need not lie in the text's plane; what counts is its share in it.
  const database::ObjectAxes axes(parts.normal);
  AcGeVector3d along = parts.direction - axes.az * parts.direction.dotProduct(axes.az);
  along = along.length() > 0 ? along.normal() : axes.ax;
  block.frame = {along, axes.az.crossProduct(along), axes.az, parts.position};
  Setter setter(block, width);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Line& line = lines[i];
    double part = column / 2.0;
    if (line.align == LineAlign::Left) part = 0;
    if (line.align == LineAlign::Center) part = 0.5;
    if (line.align == LineAlign::Right) part = 1;
    const double x = left + columnStep * static_cast<double>(columns[i]) + line.start +
                     (boxWidth - line.right - line.start - line.width) * part;
    setter.set(line, x, bases[i] + shift);
    if (line.width == 0) continue;
    block.box.add(Point{x, bases[i] + shift});
    block.box.add(Point{x + line.width, bases[i] + shift + line.height});
  }
  return block;
}

}  // namespace host::geometry
