#include "Geometry/TextLayout.h"

#include <algorithm>
#include <numbers>

#include "Database/ObjectAccess.h"
#include "Geometry/TagValues.h"

namespace host::geometry {
namespace {

using database::DxfType;
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
  int horizontal = 0, vertical = 0, generation = 0;
  std::wstring text;
};

SingleLine readSingleLine(const Slot& slot) {
  SingleLine line;
  const bool isAttribute = slot.type == DxfType::Attrib || slot.type == DxfType::AttDef;
  const int verticalCode = isAttribute ? 74 : 73;
  const int textCode = slot.type == DxfType::AttDef ? 2 : 1;
  AcGePoint3d normal{0, 0, 1};
  std::string_view text;
  GeometryTags tags(slot.tags());
  for (Tag tag; tags.next(tag);) {
    if (takePoint(tag, 10, line.first) || takePoint(tag, 11, line.second) || takePoint(tag, 210, normal)) continue;
    if (tag.code == textCode)
      text = tag.value;
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

std::optional<TextBlock> layoutSingleLine(const Slot& slot, const CharacterWidth& width) {
  SingleLine line = readSingleLine(slot);
  const PlainText plain = withoutPercentCodes(line.text);
  line.height = usable(line.height, 0);
  if (plain.text.find_first_not_of(L' ') == std::wstring::npos || line.height == 0 || !isUsable(line.first)) return {};
  line.widthFactor = usable(line.widthFactor, 1);
  std::vector<double> starts{0};  // of each character, and the end
  for (const wchar_t c : plain.text) starts.push_back(starts.back() + width(c, false) * line.height * line.widthFactor);

  const bool isJustified = line.horizontal != 0 || line.vertical != 0;
  const bool isSpread = (line.horizontal == 3 || line.horizontal == 5) && isUsable(line.second);
  AcGePoint3d anchor = isJustified && !isSpread ? line.second : line.first;
  if (!isUsable(anchor)) anchor = line.first;
  double alongFactor = 1, heightFactor = 1;
  if (isSpread) {
    const AcGeVector3d span = line.second - line.first;
    const double length = std::hypot(span.x, span.y);
    if (length > 0 && starts.back() > 0) {
      line.rotationRad = std::atan2(span.y, span.x);
      alongFactor = length / starts.back();
      heightFactor = line.horizontal == 3 ? alongFactor : 1;  // "aligned" keeps the form, "fit" the height
    }
  }
  const double total = starts.back() * alongFactor;
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

  TextRun run;
  run.text = plain.text;
  run.x = left;
  run.y = base;
  run.width = total;
  run.height = height;
  run.widthFactor = line.widthFactor * alongFactor / heightFactor;
  run.obliqueRad = std::clamp(line.obliqueRad, -kSteepestOblique, kSteepestOblique);
  for (const PlainText::Range& rule : plain.rules)
    block.rules.push_back({{left + starts[rule.begin] * alongFactor, base + rule.y * height},
                           {left + starts[rule.end] * alongFactor, base + rule.y * height}});
  block.box.add(Point{left, base});
  block.box.add(Point{left + total, base + height});
  block.runs.push_back(std::move(run));
  return block;
}

std::optional<TextBlock> layoutMTextEntity(const Slot& slot, const CharacterWidth& width) {
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
  const auto& db = slot.database();
  if (const Slot* record = style.empty() ? nullptr : db.findRecord(DxfType::TextStyle, db.codec().decode(style))) {
    GeometryTags styleTags(record->tags());
    for (Tag tag; styleTags.next(tag);) {
      if (tag.code == 41) parts.widthFactor = usable(coordinate(tag), 1);
      if (tag.code == 50) parts.obliqueRad = tag.real() * kRadiansPerDegree;
    }
  }
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

double meanCharacterWidth(wchar_t character, bool bold) {
  constexpr double kMean = 0.78, kNarrow = 0.4, kFullWidth = 1.35;
  if (character == L' ' || character == L'i' || character == L'l' || character == L'.' || character == L',')
    return kNarrow;
  if (static_cast<unsigned long>(character) >= 0x1100) return kFullWidth;
  return bold ? kMean * 1.1 : kMean;
}

std::optional<TextBlock> layoutText(const Slot& entity, const CharacterWidth& width) {
  switch (entity.type) {
    case DxfType::Text:
    case DxfType::Attrib:
    case DxfType::AttDef:
      return layoutSingleLine(entity, width);
    case DxfType::MText:
      return layoutMTextEntity(entity, width);
    default:
      return {};
  }
}

}  // namespace host::geometry
