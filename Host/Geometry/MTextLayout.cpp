// Multi-line text: formatting codes, word wrap, attachment.
#include <algorithm>
#include <numbers>

#include "Database/ObjectAccess.h"
#include "Geometry/TagValues.h"
#include "Geometry/TextLayout.h"

namespace host::geometry {
namespace {

constexpr double kLinePitch = 5.0 / 3;  // from base line to base line, of the height
constexpr double kStackedHeight = 0.7;  // of the height around a fraction
constexpr std::size_t kDeepestBraces = 64;
constexpr double kSmallestFactor = 0.01, kLargestFactor = 100;

struct Format {
  double height = 1;  // absolute
  double widthFactor = 1;
  double obliqueRad = 0;
  double tracking = 1;
  bool bold = false, underline = false, overline = false, strike = false;
  int color = -1;
  std::int64_t trueColor = -1;

  bool operator==(const Format&) const = default;
};

enum class AtomKind { Word, Space, Break, Stack };
enum class LineAlign { Attachment, Left, Center, Right };

/// The smallest thing that goes to one line as a whole.
struct Atom {
  AtomKind kind = AtomKind::Word;
  std::vector<std::pair<std::wstring, Format>> pieces;  // a stack: upper and lower part
  wchar_t stackSign = 0;                                // ^ / or #
  double width = 0;
  double height = 0;
  LineAlign align = LineAlign::Attachment;  // of a break: of the paragraph before it
};

bool isIdeograph(wchar_t c) { return static_cast<unsigned long>(c) >= 0x2E80; }

class Parser {
 public:
  Parser(const MTextParts& parts, const CharacterWidth& width) : text_(parts.contents), width_(width) {
    format_.height = parts.height;
    format_.widthFactor = parts.widthFactor;
    format_.obliqueRad = parts.obliqueRad;
    format_.bold = parts.bold;
  }

  std::vector<Atom> parse() {
    while (at_ < text_.size()) step();
    endWord();
    Atom end{AtomKind::Break, {}, 0, 0, format_.height, align_};
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
    else if (c == L' ' || c == L'\t')
      space(c == L'\t' ? 4 : 1);
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
        format_.bold = font.find(L"|b1") != std::wstring_view::npos;
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

  void paragraph(std::wstring_view argument) {
    const std::size_t q = argument.find(L'q');
    if (q == std::wstring_view::npos || q + 1 >= argument.size()) return;
    switch (argument[q + 1]) {
      case L'l':
        align_ = LineAlign::Left;
        break;
      case L'c':
        align_ = LineAlign::Center;
        break;
      case L'r':
        align_ = LineAlign::Right;
        break;
      default:
        align_ = LineAlign::Attachment;
        break;
    }
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
    Atom atom{AtomKind::Stack, {}, sign, 0, format_.height, align_};
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
    double total = 0;
    for (const wchar_t c : text) total += width_(c, f.bold) * f.height * f.widthFactor * f.tracking;
    return total;
  }

  void character(wchar_t c) {
    if (isIdeograph(c)) endWord();
    if (word_.pieces.empty() || !(word_.pieces.back().second == format_)) word_.pieces.emplace_back(L"", format_);
    word_.pieces.back().first += c;
    word_.width += widthOf({&c, 1}, format_);
    word_.height = std::max(word_.height, format_.height);
    if (isIdeograph(c)) endWord();
  }
  void space(int count) {
    endWord();
    Atom atom{AtomKind::Space, {{std::wstring(static_cast<std::size_t>(count), L' '), format_}}, 0, 0, format_.height,
              align_};
    atom.width = widthOf(atom.pieces[0].first, format_);
    atoms_.push_back(std::move(atom));
  }
  void lineBreak() {
    endWord();
    atoms_.push_back({AtomKind::Break, {}, 0, 0, format_.height, align_});
  }
  void endWord() {
    if (!word_.pieces.empty()) atoms_.push_back(std::move(word_));
    word_ = {};
  }

  std::wstring_view text_;
  const CharacterWidth& width_;
  std::size_t at_ = 0;
  Format format_;
  std::vector<Format> stack_;
  LineAlign align_ = LineAlign::Attachment;
  Atom word_;
  std::vector<Atom> atoms_;
};

struct Line {
  std::vector<const Atom*> atoms;
  double width = 0;  // without blanks at the end
  double height = 0;
  LineAlign align = LineAlign::Attachment;
};

std::vector<Line> wrapped(const std::vector<Atom>& atoms, double referenceWidth) {
  std::vector<Line> lines;
  Line line;
  double x = 0;
  std::size_t paragraphBegin = 0;
  const auto finish = [&](double emptyHeight) {
    if (line.height == 0) line.height = emptyHeight;
    lines.push_back(std::move(line));
    line = {};
    x = 0;
  };
  for (const Atom& atom : atoms) {
    if (atom.kind == AtomKind::Break) {
      finish(atom.height);
      for (; paragraphBegin < lines.size(); ++paragraphBegin) lines[paragraphBegin].align = atom.align;
      continue;
    }
    if (atom.kind != AtomKind::Space && referenceWidth > 0 && !line.atoms.empty() &&
        x + atom.width > referenceWidth * (1 + 1e-9) && line.width > 0)
      finish(atom.height);
    line.atoms.push_back(&atom);
    x += atom.width;
    if (atom.kind == AtomKind::Space) continue;
    line.width = x;
    line.height = std::max(line.height, atom.height);
  }
  return lines;
}

class Setter {
 public:
  Setter(TextBlock& block, const CharacterWidth& width) : block_(block), width_(width) {}

  void set(const Line& line, double x, double y) {
    for (const Atom* atom : line.atoms) {
      if (atom->kind == AtomKind::Stack)
        stack(*atom, x, y);
      else {
        double at = x;
        for (const auto& [text, format] : atom->pieces) at += run(text, format, at, y, true);
      }
      x += atom->width;
    }
  }

 private:
  double run(const std::wstring& text, const Format& format, double x, double y, bool mayJoin) {
    double advance = 0;
    for (const wchar_t c : text)
      advance += width_(c, format.bold) * format.height * format.widthFactor * format.tracking;
    if (mayJoin && !block_.runs.empty() && last_ == format && block_.runs.back().y == y) {
      TextRun& before = block_.runs.back();
      before.text += text;
      before.width += advance;
    } else {
      block_.runs.push_back({text, x, y, advance, format.height, format.widthFactor, format.obliqueRad, format.tracking,
                             format.bold, format.color, format.trueColor});
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
      double total = 0;
      for (const wchar_t c : atom.pieces[part].first)
        total += width_(c, format.bold) * format.height * format.widthFactor * format.tracking;
      return total;
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
  const CharacterWidth& width_;
  Format last_;
};

}  // namespace

std::optional<TextBlock> layoutMText(const MTextParts& parts, const CharacterWidth& width) {
  if (!isUsable(parts.position) || !(parts.height > 0) || parts.contents.empty()) return {};
  const std::vector<Atom> atoms = Parser(parts, width).parse();
  const std::vector<Line> lines = wrapped(atoms, parts.referenceWidth);
  double widest = 0;
  for (const Line& line : lines) widest = std::max(widest, line.width);
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
    const double x = left + columnStep * static_cast<double>(columns[i]) + (boxWidth - line.width) * part;
    setter.set(line, x, bases[i] + shift);
    if (line.width == 0) continue;
    block.box.add(Point{x, bases[i] + shift});
    block.box.add(Point{x + line.width, bases[i] + shift + line.height});
  }
  return block;
}

}  // namespace host::geometry
