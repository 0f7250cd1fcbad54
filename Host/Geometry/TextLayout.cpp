#include "Geometry/TextLayout.h"

#include <algorithm>
#include <numbers>

#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"

namespace host::geometry {
namespace {

using database::DxfType;
using database::GeometryTags;
using database::isUsable;
using database::Slot;
using database::Tag;

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
constexpr double kDescent = 0.3;  // of the height, below the base line
constexpr double kSteepestOblique = 85 * kRadiansPerDegree;

double usable(double value, double otherwise) { return std::isfinite(value) && value > 0 ? value : otherwise; }

struct SingleLine {
  AcGePoint3d first, second;
  AcGeVector3d normal{0, 0, 1};
  double height = 0, rotationRad = 0, widthFactor = 1, obliqueRad = 0;
  int horizontal = 0, vertical = 0, generation = 0, attributeFlags = 0;
  std::string_view style;
  std::wstring text;
};

/// What a text style tells beyond what every text repeats.
struct StyleTags {
  bool isVertical = false;
  Face face;
  double widthFactor = 1, obliqueRad = 0;

  StyleTags(const database::DrawingDatabase& db, std::string_view name) {
    constexpr int kVertical = 4;
    // Texts leave out the name of the usual style.
    const Slot* record = db.findRecord(DxfType::TextStyle, name.empty() ? L"Standard" : db.codec().decode(name));
    if (record == nullptr) return;
    face = faceOfStyle(*record);
    database::TagCursor tags = record->tags();
    for (Tag tag; tags.next(tag);) {
      if (tag.code == 70) isVertical = (tag.integer() & kVertical) != 0;
      if (tag.code == 41) widthFactor = usable(coordinate(tag), 1);
      if (tag.code == 50) obliqueRad = tag.real() * kRadiansPerDegree;
    }
  }
};

SingleLine readSingleLine(const Slot& slot) {
  SingleLine line;
  const bool isAttribute = slot.type == DxfType::Attrib || slot.type == DxfType::AttDef;
  const int verticalCode = isAttribute ? 74 : 73;
  std::string_view tagName;
  AcGePoint3d normal{0, 0, 1};
  std::string_view text;
  GeometryTags tags(slot.tags());
  for (Tag tag; tags.next(tag);) {
    if (takePoint(tag, 10, line.first) || takePoint(tag, 11, line.second) || takePoint(tag, 210, normal)) continue;
    if (tag.code == 1)
      text = tag.value;
    else if (tag.code == 2)
      tagName = tag.value;
    else if (tag.code == 7)
      line.style = tag.value;
    else if (tag.code == 70)
      line.attributeFlags = static_cast<int>(tag.integer());
    else if (tag.code == 40)
      line.height = coordinate(tag);
    else if (tag.code == 41)
      line.widthFactor = coordinate(tag);
    else if (tag.code == 50)
      line.rotationRad = tag.real() * kRadiansPerDegree;
    else if (tag.code == 51)
      line.obliqueRad = tag.real() * kRadiansPerDegree;
    else if (tag.code == 71)
      line.generation = static_cast<int>(tag.integer());
    else if (tag.code == 72)
      line.horizontal = static_cast<int>(tag.integer());
    else if (tag.code == verticalCode)
      line.vertical = static_cast<int>(tag.integer());
  }
  // A definition stands for what is filled in later, unless its value is the same everywhere.
  constexpr int kConstant = 2;
  if (slot.type == DxfType::AttDef && (line.attributeFlags & kConstant) == 0) text = tagName;
  line.text = slot.database().codec().decode(text);
  line.normal = normal.asVector();
  return line;
}

/// Replaces %% codes; underlined and overlined stretches come back as character ranges.
struct PlainText {
  std::wstring text;
  struct Range {
    std::size_t begin, end;
    double y;  // of the height
  };
  std::vector<Range> rules;
};

PlainText withoutPercentCodes(std::wstring_view coded) {
  PlainText plain;
  struct Switch {
    wchar_t letter;
    double y;
    std::size_t since = std::wstring::npos;
  } switches[] = {{L'u', -0.2}, {L'o', 1.2}, {L'k', 0.45}};
  const auto isDigit = [](wchar_t c) { return c >= L'0' && c <= L'9'; };
  for (std::size_t i = 0; i < coded.size(); ++i) {
    const wchar_t c = coded[i];
    if (c == L'%' && coded.substr(i, 2) == L"%%" && i + 2 < coded.size()) {
      const wchar_t code = coded[i + 2] >= L'A' && coded[i + 2] <= L'Z' ? coded[i + 2] + 32 : coded[i + 2];
      Switch* const found = std::ranges::find(switches, code, &Switch::letter);
      const bool isNumber = isDigit(code) && i + 4 < coded.size() && isDigit(coded[i + 3]) && isDigit(coded[i + 4]);
      const std::wstring_view signs = L"dpc%";
      if (found == std::end(switches) && !isNumber && signs.find(code) == std::wstring_view::npos) {
        plain.text += c;
        continue;
      }
      i += 2;
      if (code == L'd')
        plain.text += L'\u00B0';
      else if (code == L'p')
        plain.text += L'\u00B1';
      else if (code == L'c')
        plain.text += L'\u00D8';
      else if (code == L'%')
        plain.text += L'%';
      else if (isNumber) {
        const int number = (code - L'0') * 100 + (coded[i + 1] - L'0') * 10 + (coded[i + 2] - L'0');
        if (number >= 32) plain.text += static_cast<wchar_t>(number);
        i += 2;
      } else if (found->since == std::wstring::npos) {
        found->since = plain.text.size();
      } else {
        plain.rules.push_back({found->since, plain.text.size(), found->y});
        found->since = std::wstring::npos;
      }
      continue;
    }
    if (c >= 32)
      plain.text += c;
    else if (c == L'\t')
      plain.text += L' ';
  }
  for (const Switch& s : switches)
    if (s.since != std::wstring::npos) plain.rules.push_back({s.since, plain.text.size(), s.y});
  return plain;
}

/// Where characters of a text begin, as shares of its width; for the lines below and above some of them.
std::vector<double> characterStarts(const PlainText& plain, Face face, const TextWidth& width) {
  std::vector<double> starts{0};
  if (plain.rules.empty()) return starts;
  for (const wchar_t c : plain.text) starts.push_back(starts.back() + width({&c, 1}, face));
  const double whole = starts.back();
  if (whole > 0)
    for (double& start : starts) start /= whole;
  return starts;
}

/// One letter below the other, each centred on the line down from the place of the text.
void setVertically(TextBlock& block, const std::wstring& text, const SingleLine& line, Face face,
                   const TextWidth& width) {
  constexpr double kPitch = 1.5;  // of the height
  double share = 0;               // of the column above the place
  if (line.vertical == 1 || line.horizontal == 2) share = 1;
  if (line.vertical == 2 || line.horizontal == 1 || line.horizontal == 4) share = 0.5;
  const double column = (static_cast<double>(text.size()) * kPitch - (kPitch - 1)) * line.height;
  double y = share * column - line.height;
  for (const wchar_t c : text) {
    TextRun run;
    run.text = c;
    run.face = face;
    run.width = width(run.text, face) * line.height * line.widthFactor;
    run.x = -run.width / 2;
    run.y = y;
    run.height = line.height;
    run.widthFactor = line.widthFactor;
    run.obliqueRad = std::clamp(line.obliqueRad, -kSteepestOblique, kSteepestOblique);
    block.box.add(Point{run.x, y});
    block.box.add(Point{run.x + run.width, y + line.height});
    block.runs.push_back(std::move(run));
    y -= kPitch * line.height;
  }
}

std::optional<TextBlock> layoutSingleLine(const Slot& slot, const TextWidth& width, const std::wstring* contents) {
  SingleLine line = readSingleLine(slot);
  const PlainText plain = contents != nullptr ? PlainText{*contents, {}} : withoutPercentCodes(line.text);
  const StyleTags style(slot.database(), line.style);
  line.height = usable(line.height, 0);
  if (plain.text.find_first_not_of(L' ') == std::wstring::npos || line.height == 0 || !isUsable(line.first)) return {};
  line.widthFactor = usable(line.widthFactor, 1);
  const double unspread = width(plain.text, style.face) * line.height * line.widthFactor;

  const bool isJustified = line.horizontal != 0 || line.vertical != 0;
  const bool isSpread = (line.horizontal == 3 || line.horizontal == 5) && isUsable(line.second);
  AcGePoint3d anchor = isJustified && !isSpread ? line.second : line.first;
  if (!isUsable(anchor)) anchor = line.first;
  double alongFactor = 1, heightFactor = 1;
  if (isSpread) {
    const AcGeVector3d span = line.second - line.first;
    const double length = std::hypot(span.x, span.y);
    if (length > 0 && unspread > 0) {
      line.rotationRad = std::atan2(span.y, span.x);
      alongFactor = length / unspread;
      if (contents != nullptr) alongFactor = std::min(alongFactor, 1.0);
      heightFactor = line.horizontal == 3 ? alongFactor : 1;  // "aligned" keeps the form, "fit" the height
    }
  }
  const double total = unspread * alongFactor;
  const double height = line.height * heightFactor;
  double left = 0, base = 0;
  if (line.horizontal == 1 || line.horizontal == 4) left = -total / 2;
  if (line.horizontal == 2) left = -total;
  if (line.horizontal == 4 || line.vertical == 2)
    base = -height / 2;
  else if (line.vertical == 3)
    base = -height;
  else if (line.vertical == 1)
    base = kDescent * height;

  TextBlock block;
  const database::ObjectAxes axes(line.normal);
  const double c = std::cos(line.rotationRad), s = std::sin(line.rotationRad);
  block.frame.x = axes.ax * c + axes.ay * s;
  block.frame.y = axes.ay * c - axes.ax * s;
  block.frame.z = axes.az;
  block.frame.origin = axes.toWorld(anchor.x, anchor.y, anchor.z);
  if ((line.generation & 2) != 0) block.frame.x = -block.frame.x;
  if ((line.generation & 4) != 0) block.frame.y = -block.frame.y;

  if (style.isVertical) {
    setVertically(block, plain.text, line, style.face, width);
    return block;
  }
  TextRun run;
  run.text = plain.text;
  run.x = left;
  run.y = base;
  run.width = total;
  run.height = height;
  run.face = style.face;
  run.widthFactor = line.widthFactor * alongFactor / heightFactor;
  run.obliqueRad = std::clamp(line.obliqueRad, -kSteepestOblique, kSteepestOblique);
  const std::vector<double> starts = characterStarts(plain, style.face, width);
  for (const PlainText::Range& rule : plain.rules)
    block.rules.push_back({{left + starts[rule.begin] * total, base + rule.y * height},
                           {left + starts[rule.end] * total, base + rule.y * height}});
  block.box.add(Point{left, base});
  block.box.add(Point{left + total, base + height});
  block.runs.push_back(std::move(run));
  return block;
}

/// Columns stand in an object embedded behind the text's own tags: 71 kind (0 none, 1 of one height, 2 of their own),
/// 72 count, 44 width, 45 gutter, 73 heights follow their content, 46 heights.
void readColumns(const Slot& slot, MTextParts& parts) {
  constexpr int kNoColumns = 0;
  bool isEmbedded = false;
  std::int64_t kind = kNoColumns, count = 0;
  double width = 0, gutter = 0, definedHeight = 0;
  std::vector<double> heights;
  database::TagCursor tags = slot.tags();
  for (Tag tag; tags.next(tag) && tag.code < 1000;) {
    if (tag.code == 101) isEmbedded = true;
    if (!isEmbedded) continue;
    switch (tag.code) {
      case 41:
        definedHeight = usable(coordinate(tag), 0);
        break;
      case 44:
        width = usable(coordinate(tag), 0);
        break;
      case 45:
        gutter = usable(coordinate(tag), 0);
        break;
      case 46:
        heights.push_back(usable(coordinate(tag), 0));
        break;
      case 71:
        kind = tag.integer();
        break;
      case 72:
        count = tag.integer();
        break;
      default:
        break;
    }
  }
  if (kind == kNoColumns || count < 2 || width == 0) return;
  if (heights.empty()) heights.push_back(definedHeight);
  if (std::ranges::any_of(heights.begin(), heights.end() - 1, [](double h) { return h <= 0; })) return;
  // The last column takes what is left.
  if (heights.size() == 1 && heights[0] <= 0) return;
  parts.referenceWidth = width;
  parts.columnGutter = gutter;
  parts.columnHeights = std::move(heights);
}

std::optional<TextBlock> layoutMTextEntity(const Slot& slot, const TextWidth& width) {
  MTextParts parts;
  AcGePoint3d direction, normal{0, 0, 1};
  std::string contents, last;
  double height = 0, maskScale = 1.5;
  int maskFlags = 0, maskColor = -1;
  std::int64_t maskTrueColor = -1;
  std::string_view style;
  GeometryTags tags(slot.tags());
  for (Tag tag; tags.next(tag);) {
    if (takePoint(tag, 10, parts.position) || takePoint(tag, 210, normal)) continue;
    if (takePoint(tag, 11, direction)) continue;
    switch (tag.code) {
      case 1:
        last = tag.value;
        break;
      case 3:
        contents += tag.value;
        break;
      case 7:
        style = tag.value;
        break;
      case 40:
        height = coordinate(tag);
        break;
      case 41:
        parts.referenceWidth = usable(coordinate(tag), 0);
        break;
      case 44:
        parts.lineSpacing = std::clamp(usable(coordinate(tag), 1), 0.25, 4.0);
        break;
      case 45:
        maskScale = std::clamp(usable(coordinate(tag), 1.5), 1.0, 5.0);
        break;
      case 50:
        direction = {std::cos(tag.real() * kRadiansPerDegree), std::sin(tag.real() * kRadiansPerDegree), 0};
        break;
      case 63:
        maskColor = static_cast<int>(tag.integer());
        break;
      case 71:
        parts.attachment = static_cast<int>(tag.integer());
        break;
      case 73:
        parts.exactSpacing = tag.integer() == 2;
        break;
      case 90:
        maskFlags = static_cast<int>(tag.integer());
        break;
      case 421:
        maskTrueColor = tag.integer() & 0xFFFFFF;
        break;
      default:
        break;
    }
  }
  // Chunks of 250 bytes may cut a character in two: decode them together.
  parts.contents = slot.database().codec().decode(contents + last);
  parts.height = height;
  parts.normal = normal.asVector();
  if (isUsable(direction) && direction.asVector().length() > 0) parts.direction = direction.asVector();
  const StyleTags styleTags(slot.database(), style);
  parts.widthFactor = styleTags.widthFactor;
  parts.obliqueRad = styleTags.obliqueRad;
  parts.face = styleTags.face;
  readColumns(slot, parts);
  auto block = layoutMText(parts, width);
  if (block && (maskFlags & 3) != 0) {
    const double border = (maskScale - 1) * height;
    block->masked = true;
    block->mask = block->box;
    block->mask.add(Point{block->box.minX - border, block->box.minY - border});
    block->mask.add(Point{block->box.maxX + border, block->box.maxY + border});
    if ((maskFlags & 2) == 0) {
      block->maskColor = maskColor;
      block->maskTrueColor = maskTrueColor;
    }
  }
  return block;
}

}  // namespace

std::optional<TextBlock> layoutLine(const LineParts& parts, const TextWidth& width) {
  const PlainText plain = parts.isRaw ? PlainText{parts.text, {}} : withoutPercentCodes(parts.text);
  const double height = usable(parts.height, 0);
  if (plain.text.find_first_not_of(L' ') == std::wstring::npos || height == 0 || !isUsable(parts.position)) return {};
  const auto isGiven = [](const AcGeVector3d& v) { return std::isfinite(v.x + v.y + v.z) && v.length() > 0; };
  TextRun run;
  run.text = plain.text;
  run.height = height;
  run.widthFactor = usable(parts.widthFactor, 1);
  run.tracking = usable(parts.tracking, 1);
  run.face = parts.face;
  if (std::isfinite(parts.obliqueRad))
    run.obliqueRad = std::clamp(parts.obliqueRad, -kSteepestOblique, kSteepestOblique);
  run.width = width(run.text, run.face) * height * run.widthFactor * run.tracking;

  TextBlock block;
  const database::ObjectAxes axes(isGiven(parts.normal) ? parts.normal : AcGeVector3d::kZAxis);
  const AcGeVector3d along = isGiven(parts.direction) ? parts.direction.normal() : axes.ax;
  block.frame = {along, axes.az.crossProduct(along), axes.az, parts.position};
  if (parts.isBackwards) block.frame.x = -block.frame.x;
  if (parts.isUpsideDown) block.frame.y = -block.frame.y;
  const auto rule = [&](double from, double to, double y) {
    block.rules.push_back({{from, y * height}, {to, y * height}});
  };
  const std::vector<double> starts = characterStarts(plain, parts.face, width);
  for (const PlainText::Range& range : plain.rules)
    rule(starts[range.begin] * run.width, starts[range.end] * run.width, range.y);
  if (parts.isUnderlined) rule(0, run.width, -0.2);
  block.box.add(Point{0, 0});
  block.box.add(Point{run.width, height});
  block.runs.push_back(std::move(run));
  return block;
}

double meanTextWidth(std::wstring_view text, Face face) {
  constexpr double kMean = 0.78, kNarrow = 0.4, kFullWidth = 1.35, kBold = 1.1;
  double width = 0;
  for (const wchar_t c : text) {
    if (c == L' ' || c == L'i' || c == L'l' || c == L'.' || c == L',')
      width += kNarrow;
    else if (static_cast<unsigned long>(c) >= 0x1100)
      width += kFullWidth;
    else
      width += face.isBold ? kMean * kBold : kMean;
  }
  return width;
}

std::optional<TextBlock> layoutText(const Slot& entity, const TextWidth& width, const std::wstring* contents) {
  switch (entity.type) {
    case DxfType::Text:
    case DxfType::Attrib:
    case DxfType::AttDef:
      return layoutSingleLine(entity, width, contents);
    case DxfType::MText:
      return layoutMTextEntity(entity, width);
    default:
      return {};
  }
}

}  // namespace host::geometry
