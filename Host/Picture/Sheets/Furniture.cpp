// What the painter draws around a plan: labels, areas, swatches of a legend.
#include <algorithm>
#include <cmath>

#include "Picture/EntityPainter.h"

namespace host::picture {

using database::DxfType;
using database::Slot;
using geometry::Transform;

void EntityPainter::setArea(const Box& area) {
  view_.area = area;
  details_.setArea(area);
}

void EntityPainter::paintLabel(const geometry::LineParts& label) {
  const Place place{view_.toPicture, {}};
  if (const auto text = geometry::layoutLine(label, textWidth())) paintText(*text, place, styleOf({}, place));
}

void EntityPainter::paintLine(const geometry::Chain& line, double lineweightMm) {
  const Place place{view_.toPicture, {}};
  Appearance look;
  look.lineweightMm = lineweightMm;
  std::vector<Point> points;
  if (project(line, place.toPicture, points)) strokeLine(points, false, styleOf(look, place));
}

void EntityPainter::paintArea(const geometry::Chain& ring) {
  fillChains({ring}, view_.toPicture, FillRule::EvenOdd, appearances_.color(Appearance{}));
}

void EntityPainter::paintGround(const geometry::Chain& ring) {
  fillChains({ring}, view_.toPicture, FillRule::EvenOdd, appearances_.background());
}

double EntityPainter::labelWidth(const std::wstring& text, double height) { return glyphs_.width(text, {}) * height; }

void EntityPainter::paintSwatch(const Slot& entity, const Box& box) {
  const Transform t = view_.toPicture;  // upright: pixels are units, scaled and moved
  const Place place{t, {}};
  const std::uint32_t layer = appearances_.effectiveLayer(entity, {});
  Style style = styleOf(appearances_.resolve(database::entityProperties(entity), layer, {}), place);
  style.fill = appearances_.fillColor(style.appearance);
  const std::vector<Point> corners = {
      {box.minX, box.minY}, {box.maxX, box.minY}, {box.maxX, box.maxY}, {box.minX, box.maxY}};
  if (entity.type == DxfType::Hatch) {
    paintHatch(entity, place, style, [&corners](const Transform& plane) -> std::vector<curves::Polygon> {
      const double determinant = plane.x.x * plane.y.y - plane.x.y * plane.y.x;
      if (determinant == 0) return {};
      curves::Polygon loop;
      for (const Point p : corners) {
        const double x = p.x - plane.origin.x, y = p.y - plane.origin.y;
        loop.push_back({(x * plane.y.y - y * plane.y.x) / determinant, (y * plane.x.x - x * plane.x.y) / determinant});
      }
      return {loop};
    });
    Style frame = style;
    frame.line.pen.width = view_.thinnestLine;
    frame.line.pen.color = appearances_.color(Appearance{});
    return strokeLine(corners, true, frame);
  }
  if (entity.type == DxfType::LwPolyline || entity.type == DxfType::Line || entity.type == DxfType::Polyline2d) {
    DetailWire wire;
    const double middle = (box.minY + box.maxY) / 2;
    wire.line = {{box.minX, middle}, {box.maxX, middle}};
    const geometry::EntityShape shape = geometry::readShape(entity, 0);
    const double width = shape.wires.empty() ? 0 : shape.wires.front().constantWidth * t.planScale();
    if (width > style.line.pen.width) {
      const double half = std::min(width, box.maxY - box.minY) / 2;
      const std::vector<Point> band = {
          {box.minX, middle - half}, {box.maxX, middle - half}, {box.maxX, middle + half}, {box.minX, middle + half}};
      return details_.fill({band}, FillRule::Nonzero, style.line.pen.color);
    }
    return details_.wire(wire, style.line);
  }
  const Box extents = geometry::entityExtents(entity);
  if (extents.isEmpty()) return;
  const double width = extents.maxX - extents.minX, height = extents.maxY - extents.minY;
  const double scale = std::min((box.maxX - box.minX) / width, (box.maxY - box.minY) / height);
  if (!std::isfinite(scale) || !(scale > 0)) return;
  Transform fitted;
  fitted.x = {scale, 0, 0};
  fitted.y = {0, -scale, 0};
  fitted.z = {0, 0, scale};
  fitted.origin = {(box.minX + box.maxX) / 2 - scale * (extents.minX + extents.maxX) / 2,
                   (box.minY + box.maxY) / 2 + scale * (extents.minY + extents.maxY) / 2, 0};
  view_.toPicture = fitted;
  paintEntity(entity, {fitted, {}});
  view_.toPicture = t;
}

}  // namespace host::picture
