#include "Geometry/Annotations.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"
#include "Geometry/PolylineShapes.h"

namespace host::geometry {
namespace {

using database::GeometryTags;
using database::isUsable;
using database::Slot;
using database::Tag;

/// Sizes a dimension style gives, in drawing units.
struct StyleSizes {
  double text = 0.18, arrow = 0.18;

  StyleSizes(const database::DrawingDatabase& db, std::string_view style) {
    const double given = dimensionStyleReal(db, style, 40, "$DIMSCALE", 1);
    const double scale = given > 0 ? given : 1;
    text = std::max(dimensionStyleReal(db, style, 140, "$DIMTXT", 0.18), 0.0) * scale;
    arrow = std::max(dimensionStyleReal(db, style, 41, "$DIMASZ", 0.18), 0.0) * scale;
  }
};

Face faceOfDimensionStyle(const database::DrawingDatabase& db, std::string_view style) {
  const Slot* record = style.empty() ? nullptr : db.findRecord(database::DxfType::DimStyle, db.codec().decode(style));
  if (record == nullptr) return {};
  GeometryTags tags(record->tags());
  for (Tag tag; tags.next(tag);) {
    if (tag.code != 340) continue;
    const Slot* const text = db.findHandle(tag.handle());
    return text != nullptr && text->type == database::DxfType::TextStyle ? faceOfStyle(*text) : Face{};
  }
  return {};
}

std::vector<std::wstring> split(const std::wstring& text, const std::wstring& separator) {
  std::vector<std::wstring> parts;
  for (std::size_t at = 0;;) {
    const std::size_t end = text.find(separator, at);
    parts.push_back(text.substr(at, end - at));
    if (end == std::wstring::npos) return parts;
    at = end + separator.size();
  }
}

Wire line(const AcGePoint3d& from, const AcGePoint3d& to) {
  Wire wire;
  wire.points = {from, to};
  return wire;
}

struct DimensionTags {
  AcGePoint3d line, textMiddle, first, second, third, arc;  // 10, 11, 13, 14, 15, 16
  std::string_view style, override;
  int kind = 0;
  double angleRad = 0, measured = -1;
  bool hasText = false;

  explicit DimensionTags(const Slot& entity) {
    GeometryTags tags(entity.tags());
    for (Tag tag; tags.next(tag);) {
      if (tag.code == 11) hasText = true;
      if (takePoint(tag, 10, line) || takePoint(tag, 11, textMiddle) || takePoint(tag, 13, first) ||
          takePoint(tag, 14, second) || takePoint(tag, 15, third) || takePoint(tag, 16, arc))
        continue;
      switch (tag.code) {
        case 1:
          override = tag.value;
          break;
        case 3:
          style = tag.value;
          break;
        case 42:
          measured = coordinate(tag);
          break;
        case 50:
          angleRad = tag.real() * std::numbers::pi / 180;
          break;
        case 70:
          kind = static_cast<int>(tag.integer() & 7);
          break;
        default:
          break;
      }
    }
  }
};

class DimensionDrawer {
 public:
  DimensionDrawer(const DimensionTags& tags, double arrow, double deviation, AnnotationShape& shape)
      : tags_(tags), arrow_(arrow), deviation_(deviation), shape_(shape) {}

  /// The value measured, when the entity does not tell it.
  double draw() {
    enum Kind { kLinear = 0, kAligned = 1, kAngular = 2, kDiameter = 3, kRadius = 4, kThreePoint = 5, kOrdinate = 6 };
    switch (tags_.kind) {
      case kLinear:
        return straight({std::cos(tags_.angleRad), std::sin(tags_.angleRad), 0});
      case kAligned:
        return straight((tags_.second - tags_.first).normal());
      case kAngular:
        return betweenLines();
      case kThreePoint:
        return angle(tags_.third, tags_.first, tags_.second, tags_.line);
      case kDiameter:
        arrowLine(tags_.line, tags_.third, true);
        return tags_.line.distanceTo(tags_.third);
      case kRadius:
        arrowLine(tags_.third, tags_.line, false);
        return tags_.line.distanceTo(tags_.third);
      case kOrdinate:
        shape_.wires.push_back(line(tags_.first, tags_.second));
        return tags_.measured;
      default:
        return tags_.measured;
    }
  }

  /// Of the line or arc that carries the text.
  const AcGePoint3d& middle() const { return middle_; }

 private:
  void head(const AcGePoint3d& tip, const AcGePoint3d& towards) {
    if (arrow_ > 0) shape_.wires.push_back(arrowhead(tip, towards, arrow_));
  }
  void arrowLine(const AcGePoint3d& from, const AcGePoint3d& to, bool bothEnds) {
    shape_.wires.push_back(line(from, to));
    middle_ = from + (to - from) * 0.5;
    if (!(from.distanceTo(to) > 2 * arrow_)) return;
    head(from, to);
    if (bothEnds) head(to, from);
  }

  double straight(const AcGeVector3d& along) {
    if (!(along.length() > 0)) return 0;
    const AcGeVector3d across{-along.y, along.x, 0};
    const auto onLine = [&](const AcGePoint3d& p) { return p + across * (tags_.line - p).dotProduct(across); };
    const AcGePoint3d a = onLine(tags_.first), b = onLine(tags_.second);
    shape_.wires.push_back(line(tags_.first, a));
    shape_.wires.push_back(line(tags_.second, b));
    arrowLine(a, b, true);
    return a.distanceTo(b);
  }

  double betweenLines() {
    const AcGeVector3d u = tags_.second - tags_.first, v = tags_.line - tags_.third, gap = tags_.third - tags_.first;
    const double cross = u.x * v.y - u.y * v.x;
    if (cross == 0) return tags_.measured;
    const AcGePoint3d center = tags_.first + u * ((gap.x * v.y - gap.y * v.x) / cross);
    const auto farther = [&](const AcGePoint3d& a, const AcGePoint3d& b) {
      return a.distanceTo(center) > b.distanceTo(center) ? a : b;
    };
    return angle(center, farther(tags_.first, tags_.second), farther(tags_.line, tags_.third), tags_.arc);
  }

  double angle(const AcGePoint3d& center, const AcGePoint3d& from, const AcGePoint3d& to, const AcGePoint3d& through) {
    const auto direction = [&](const AcGePoint3d& p) { return std::atan2(p.y - center.y, p.x - center.x); };
    const auto turn = [](double a) { return a < 0 ? a + 2 * std::numbers::pi : a; };
    const double radius = center.distanceTo(through);
    if (!(radius > 0)) return tags_.measured;
    double begin = direction(from), sweep = turn(direction(to) - begin);
    if (turn(direction(through) - begin) > sweep) {
      begin = direction(to);
      sweep = 2 * std::numbers::pi - sweep;
    }
    middle_ = center + AcGeVector3d{std::cos(begin + sweep / 2), std::sin(begin + sweep / 2), 0} * radius;
    const curves::EllipseArc<AcGePoint3d> arc{center, {radius, 0, 0}, {0, radius, 0}, begin, sweep};
    Wire wire;
    flatten(arc, deviation_, wire.points);
    const auto at = [&](double t) { return center + AcGeVector3d{std::cos(t), std::sin(t), 0} * radius; };
    shape_.wires.push_back(line(from, at(direction(from))));
    shape_.wires.push_back(line(to, at(direction(to))));
    if (radius * sweep > 2 * arrow_) {
      const double step = arrow_ / radius;
      head(at(begin), at(begin + step));
      head(at(begin + sweep), at(begin + sweep - step));
    }
    shape_.wires.push_back(std::move(wire));
    return sweep;
  }

  const DimensionTags& tags_;
  double arrow_, deviation_;
  AnnotationShape& shape_;
  AcGePoint3d middle_;
};

std::wstring measuredText(const DimensionTags& tags, double value) {
  constexpr int kAngular = 2, kDiameter = 3, kRadius = 4, kThreePoint = 5;
  const bool isAngle = tags.kind == kAngular || tags.kind == kThreePoint;
  if (std::isfinite(tags.measured) && tags.measured >= 0) value = tags.measured;
  if (isAngle) value *= 180 / std::numbers::pi;
  char figure[64];
  std::snprintf(figure, sizeof figure, "%.2f", value);
  std::wstring text = text::fromUtf8(figure);
  if (isAngle) text += L'\u00B0';
  if (tags.kind == kRadius) text.insert(0, 1, L'R');
  if (tags.kind == kDiameter) text.insert(0, 1, L'\u00D8');
  return text;
}

}  // namespace

AnnotationShape readTolerance(const Slot& entity, const TextWidth& width) {
  AnnotationShape shape;
  AcGePoint3d position, direction{1, 0, 0}, normal{0, 0, 1};
  std::string_view style, contents;
  GeometryTags tags(entity.tags());
  for (Tag tag; tags.next(tag);) {
    if (takePoint(tag, 10, position) || takePoint(tag, 11, direction) || takePoint(tag, 210, normal)) continue;
    if (tag.code == 1) contents = tag.value;
    if (tag.code == 3) style = tag.value;
  }
  const auto& db = entity.database();
  const double height = StyleSizes(db, style).text;
  const Face face = faceOfDimensionStyle(db, style);
  if (!isUsable(position) || !isUsable(direction) || !(direction.asVector().length() > 0) || !(height > 0))
    return shape;
  const AcGeVector3d along = direction.asVector().normal();
  const AcGeVector3d up = database::ObjectAxes(normal.asVector()).az.crossProduct(along);
  const double rowHeight = 2 * height;
  double y = 0;
  const auto at = [&](double x, double v) { return position + along * x + up * v; };
  for (const std::wstring& row : split(db.codec().decode(contents), L"\n")) {
    std::vector<std::wstring> cells = split(row, L"%%v");
    while (!cells.empty() && cells.back().find_first_not_of(L' ') == std::wstring::npos) cells.pop_back();
    double x = 0;
    for (const std::wstring& cell : cells) {
      MTextParts parts;
      parts.contents = cell;
      parts.position = at(x + height / 2, y);
      parts.direction = along;
      parts.normal = normal.asVector();
      parts.height = height;
      parts.attachment = 4;
      parts.face = face;
      auto text = layoutMText(parts, width);
      const double inner = text && !text->box.isEmpty() ? text->box.maxX - text->box.minX : 0;
      if (inner == 0) continue;
      const double next = x + inner + height;
      Wire frame;
      frame.points = {at(x, y - rowHeight / 2), at(next, y - rowHeight / 2), at(next, y + rowHeight / 2),
                      at(x, y + rowHeight / 2)};
      frame.closed = true;
      shape.wires.push_back(std::move(frame));
      shape.texts.push_back(std::move(*text));
      x = next;
    }
    if (x > 0) y -= rowHeight;
  }
  return shape;
}

AnnotationShape readDimension(const Slot& entity, double deviation, const TextWidth& width) {
  AnnotationShape shape;
  const DimensionTags tags(entity);
  for (const AcGePoint3d& p : {tags.line, tags.textMiddle, tags.first, tags.second, tags.third, tags.arc})
    if (!isUsable(p)) return shape;
  const auto& db = entity.database();
  const StyleSizes sizes(db, tags.style);
  DimensionDrawer drawer(tags, sizes.arrow, deviation, shape);
  const double value = drawer.draw();
  std::wstring text = db.codec().decode(tags.override);
  const std::wstring measured = measuredText(tags, value);
  if (text.empty()) text = L"<>";
  if (const std::size_t place = text.find(L"<>"); place != std::wstring::npos) text.replace(place, 2, measured);
  MTextParts parts;
  parts.contents = text;
  parts.position = tags.hasText ? tags.textMiddle : drawer.middle();
  parts.height = sizes.text;
  parts.attachment = 5;
  parts.face = faceOfDimensionStyle(db, tags.style);
  if (auto block = layoutMText(parts, width)) shape.texts.push_back(std::move(*block));
  std::erase_if(shape.wires, [](const Wire& w) { return !std::ranges::all_of(w.points, isUsable); });
  return shape;
}

}  // namespace host::geometry
