#include "Picture/EntityPainter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"
#include "Picture/Dashes.h"

namespace host::picture {
namespace {

using database::BlockContents;
using database::DxfType;
using database::GeometryTags;
using database::isUsable;
using database::kLargestCoordinate;
using database::Slot;
using geometry::Chain;
using geometry::Transform;

/// Nested arrays and viewports can ask for more than a picture can show; what comes after is left out, and said. What
/// stands in the drawn space itself is drawn however much it is, and lets its references repeat more. Fuzz targets get
/// there soon.
#ifdef TOLMEX_SMALL_LIMITS
constexpr std::size_t kMostRepeats = 2'000;
#else
constexpr std::size_t kMostRepeats = 2'000'000;
#endif
constexpr std::size_t kRepeatsPerEntity = 16;
constexpr std::size_t kPointsPerRepeat = 64;
constexpr std::size_t kMostDashes = 3'000'000;
constexpr double kShortestRoundPx = 1.5;  // of a linetype; finer ones look unbroken

/// What a viewport shows where.
struct ViewportTags {
  Transform toPaper;
  Box frame;
  std::vector<std::uint64_t> frozen;  // handles of layers
  std::uint64_t boundary = 0;         // handle of the entity that cuts it out, 0: its frame
  bool isOn = false;
};

ViewportTags readViewport(const Slot& viewport) {
  ViewportTags view;
  AcGePoint3d center, viewCenter, direction{0, 0, 1}, target;
  double width = 0, height = 0, viewHeight = 0, twistRad = 0;
  std::int64_t status = 1, flags = 0;
  GeometryTags tags(viewport.tags());
  for (database::Tag tag; tags.next(tag);) {
    if (takePoint(tag, 10, center) || takePoint(tag, 12, viewCenter) || takePoint(tag, 16, direction) ||
        takePoint(tag, 17, target) || takeReal(tag, 40, width) || takeReal(tag, 41, height) ||
        takeReal(tag, 45, viewHeight))
      continue;
    switch (tag.code) {
      case 51:
        twistRad = tag.real() * std::numbers::pi / 180;
        break;
      case 68:
        status = tag.integer();
        break;
      case 90:
        flags = tag.integer();
        break;
      case 331:
      case 341:
        view.frozen.push_back(tag.handle());
        break;
      case 340:
        view.boundary = tag.handle();
        break;
      default:
        break;
    }
  }
  if ((flags & geometry::kClippedViewport) == 0) view.boundary = 0;
  view.isOn = status != 0;
  if (!(width > 0) || !(height > 0) || !(viewHeight > 0) || !isUsable(center) || !isUsable(viewCenter) ||
      !isUsable(direction) || !isUsable(target)) {
    view.isOn = false;
    return view;
  }
  view.frame.add(Point{center.x - width / 2, center.y - height / 2});
  view.frame.add(Point{center.x + width / 2, center.y + height / 2});
  // World to the view's axes, turned by the twist, scaled so that the view height fills the viewport.
  const database::ObjectAxes axes(direction.asVector());
  const double c = std::cos(twistRad), s = std::sin(twistRad), scale = height / viewHeight;
  const AcGeVector3d right = (axes.ax * c - axes.ay * s) * scale, up = (axes.ax * s + axes.ay * c) * scale;
  Transform& t = view.toPaper;
  t.x = {right.x, up.x, 0};
  t.y = {right.y, up.y, 0};
  t.z = {right.z, up.z, 0};
  const AcGeVector3d moved = t.vector(target.asVector());
  t.origin = {center.x - viewCenter.x * scale - moved.x, center.y - viewCenter.y * scale - moved.y, 0};
  return view;
}

}  // namespace

EntityPainter::EntityPainter(const database::DrawingDatabase& db, const PictureOptions& options, GlyphSource& glyphs,
                             const View& view, Canvas& canvas)
    : db_(db),
      glyphs_(glyphs),
      view_(view),
      canvas_(canvas),
      appearances_(db, options),
      lineweightFactor_(options.lineweights == LineweightMode::Factor ? options.lineweightFactor : 1),
      lineweightsOff_(options.lineweights == LineweightMode::Off),
      dashScale_(view.toPicture.planScale() * appearances_.globalLinetypeScale()),
      outerScale_(view.toPicture.planScale()),
      pointMode_(static_cast<int>(db.headerInteger("$PDMODE", 70).value_or(0))),
      pointSize_(db.headerReal("$PDSIZE", 40).value_or(0)) {
  canvas_.setClip(view.area);
}

void EntityPainter::paint(const BlockContents& block) {
  const Place place{view_.toPicture, {}};
  const bool isEntered = chain_.enter(&block);
  const std::vector<Slot*>& order = drawOrder(block);
  repeatsLeft_ = std::max(kMostRepeats, kRepeatsPerEntity * order.size());
  for (const Slot* slot : order) paintEntity(*slot, place);
  if (isEntered) chain_.leave();
}

const std::vector<Slot*>& EntityPainter::drawOrder(const BlockContents& block) {
  const auto [entry, isNew] = orders_.try_emplace(&block);
  if (isNew) entry->second = db_.drawOrder(block);
  return entry->second;
}

geometry::CharacterWidth EntityPainter::characterWidth() {
  return [this](wchar_t character, bool bold) { return advance(character, bold); };
}

EntityPainter::Style EntityPainter::styleOf(const Appearance& appearance, const Place& place) const {
  Style style;
  style.appearance = appearance;
  style.pen.color = appearances_.color(appearance);
  const double width = lineweightsOff_ ? 0 : appearance.lineweightMm * lineweightFactor_ * view_.pixelsPerMm;
  style.pen.width = std::max(width, view_.thinnestLine);
  if (appearance.dashes == nullptr || view_.boundsOnly) return style;
  // Dashes grow with the blocks they stand in: by the mean of the scales of a block drawn out of shape.
  const Transform& t = place.toPicture;
  const double blockScale = std::sqrt(t.x.length() * t.y.length()) / outerScale_;
  const double scale = dashScale_ * blockScale * appearance.linetypeScale;
  double round = 0;
  style.dashUnit = scale;
  for (const double dash : appearance.dashes->dashes) {
    style.dashes.push_back(dash * scale);
    round += std::abs(style.dashes.back());
  }
  if (!(round >= kShortestRoundPx) || !std::isfinite(round)) style.dashes.clear();
  return style;
}

void EntityPainter::paintEntity(const Slot& entity, const Place& place) {
  if (isRepeating() && !spendRepeats(1)) return;
  const std::uint32_t layer = appearances_.effectiveLayer(entity, place.surroundings);
  if (!appearances_.isShown(entity, layer)) return;
  const database::EntityProperties own = database::entityProperties(entity);
  if (own.invisible) return;
  const Appearance appearance = appearances_.resolve(own, layer, place.surroundings);
  const bool isReference = geometry::isReference(entity);
  if (isReference && paintReference(entity, place, layer, appearance)) return;
  const Style style = styleOf(appearance, place);
  if (entity.type == DxfType::Hatch) return paintHatch(entity, place, style);
  if (entity.type == DxfType::Viewport) paintViewport(entity);

  const double scale = place.toPicture.planScale();
  const double deviation = view_.deviation > 0 && scale > 0 ? view_.deviation / scale : 0;
  if (isReference || !geometry::hasShape(entity)) return paintOther(entity, place, style, deviation);
  if (entity.type == DxfType::MultiLeader) return paintLeader(entity, place, style, deviation);
  if (const auto text = geometry::layoutText(entity, characterWidth())) return paintText(*text, place, style);
  const geometry::EntityShape shape = geometry::readShape(entity, deviation);
  for (const geometry::Wire& wire : shape.wires) paintWire(wire, place, style);
  for (const AcGePoint3d& p : shape.points) paintPoint(p, place, style);
  for (const geometry::InfiniteLine& line : shape.infinite) paintInfinite(line, place, style);
  if (shape.image) paintImage(*shape.image, place, style);
}

bool EntityPainter::spendRepeats(std::size_t count) {
  cutShort_ = cutShort_ || count > repeatsLeft_;
  if (!cutShort_) repeatsLeft_ -= count;
  return !cutShort_;
}

bool EntityPainter::paintReference(const Slot& entity, const Place& place, std::uint32_t layer, const Appearance& own) {
  const Surroundings inside{layer, own};
  const auto reference = geometry::readReference(entity);
  if (!reference && entity.type != DxfType::Insert) return false;
  if (reference && chain_.enter(reference->block)) {
    // The corner cells bound an array.
    const std::int64_t rowStep = view_.boundsOnly ? std::max<std::int64_t>(reference->rows - 1, 1) : 1;
    const std::int64_t columnStep = view_.boundsOnly ? std::max<std::int64_t>(reference->columns - 1, 1) : 1;
    for (std::int64_t row = 0; row < reference->rows && !cutShort_; row += rowStep)
      for (std::int64_t column = 0; column < reference->columns && !cutShort_; column += columnStep) {
        if (!spendRepeats(1)) break;  // empty cells count, too
        const Place cell{place.toPicture.after(reference->cell(column, row)), inside};
        for (const Slot* inner : drawOrder(*reference->block))
          if (geometry::isDrawnInReference(*inner)) paintEntity(*inner, cell);
      }
    chain_.leave();
  }
  for (const Slot* sub = entity.firstSub(); sub != nullptr; sub = sub->nextSub)
    if (sub->type == DxfType::Attrib && !sub->isErased() && !geometry::isInvisibleAttribute(*sub))
      paintEntity(*sub, {place.toPicture, inside});
  return true;
}

void EntityPainter::paintViewport(const Slot& entity) {
  if (isInViewport_ || &db_.modelSpace() == db_.block(entity.owner) || geometry::isSheetViewport(entity)) return;
  const ViewportTags view = readViewport(entity);
  if (!view.isOn) return;
  const Transform& toPaper = view.toPaper;
  Chain corners = {{view.frame.minX, view.frame.minY, 0},
                   {view.frame.maxX, view.frame.minY, 0},
                   {view.frame.maxX, view.frame.maxY, 0},
                   {view.frame.minX, view.frame.maxY, 0}};
  if (const Slot* boundary = view.boundary != 0 ? db_.findHandle(view.boundary) : nullptr; boundary != nullptr) {
    const geometry::EntityShape shape = geometry::readShape(*boundary, view_.deviation / std::max(outerScale_, 1e-9));
    if (!shape.wires.empty() && shape.wires.front().points.size() > 2) corners = shape.wires.front().points;
  }
  std::vector<Point> ring;
  if (!project(corners, view_.toPicture, ring)) return;
  Box clip;
  for (const Point p : ring) clip.add(p);
  const auto intersected = [](const Box& a, const Box& b) {
    return Box{std::max(a.minX, b.minX), std::max(a.minY, b.minY), std::min(a.maxX, b.maxX), std::min(a.maxY, b.maxY)};
  };
  if (!view_.area.isEmpty()) clip = intersected(clip, view_.area);
  if (clip.isEmpty() || clip.minY > clip.maxY) return;
  std::vector<std::uint32_t> frozen;
  for (const std::uint64_t handle : view.frozen)
    if (const Slot* layer = db_.findHandle(handle); layer != nullptr && layer->type == DxfType::Layer)
      frozen.push_back(db_.findLayer(db_.recordName(*layer)));

  // What one linetype unit measures is that of the paper when $PSLTSCALE says so, else that of the model.
  const double paperDashScale = dashScale_, paperScale = outerScale_;
  outerScale_ = view_.toPicture.after(toPaper).planScale();
  if (db_.headerInteger("$PSLTSCALE", 70).value_or(1) == 0) dashScale_ *= toPaper.planScale();
  const Box paperArea = view_.area;
  view_.area = clip;
  canvas_.setClip(clip);
  canvas_.beginClip(ring);
  appearances_.setViewportFrozen(std::move(frozen));
  isInViewport_ = true;
  const Place place{view_.toPicture.after(toPaper), {}};
  if (chain_.enter(&db_.modelSpace())) {
    for (const Slot* slot : drawOrder(db_.modelSpace())) paintEntity(*slot, place);
    chain_.leave();
  }
  isInViewport_ = false;
  appearances_.setViewportFrozen({});
  view_.area = paperArea;
  canvas_.endClip();
  canvas_.setClip(paperArea);
  dashScale_ = paperDashScale;
  outerScale_ = paperScale;
}

bool EntityPainter::project(const Chain& chain, const Transform& toPicture, std::vector<Point>& out) const {
  out.clear();
  out.reserve(chain.size());
  for (const AcGePoint3d& p : chain) {
    out.push_back(toPicture.plan(p));
    if (!(std::abs(out.back().x) <= kLargestCoordinate && std::abs(out.back().y) <= kLargestCoordinate)) return false;
  }
  return !out.empty();
}

void EntityPainter::strokeLine(const std::vector<Point>& line, bool closed, const Style& style, const Pen& pen) {
  if (style.dashes.empty() || dashPieces_ >= kMostDashes) return canvas_.stroke(line, closed, pen);
  const double reach = pen.width;
  const Box clip{view_.area.minX - reach, view_.area.minY - reach, view_.area.maxX + reach, view_.area.maxY + reach};
  const auto dash = [&](const std::vector<Point>& piece) {
    ++dashPieces_;
    canvas_.stroke(piece, false, pen);
  };
  const std::size_t rest = kMostDashes - dashPieces_;
  if (style.appearance.dashes->marks.empty()) return drawDashes(line, closed, style.dashes, clip, rest, dash);
  drawDashes(line, closed, style.dashes, clip, rest, dash, [&](std::size_t element, Point at, Point along) {
    for (const LinePattern::Mark& mark : style.appearance.dashes->marks)
      if (mark.element == element && ++dashPieces_ < kMostDashes) paintMark(mark, at, along, style.dashUnit, pen);
  });
}

void EntityPainter::fillChains(const std::vector<Chain>& rings, const Transform& toPicture, FillRule rule,
                               Color color) {
  std::vector<std::vector<Point>> projected(rings.size());
  for (std::size_t i = 0; i < rings.size(); ++i)
    if (!project(rings[i], toPicture, projected[i])) projected[i].clear();
  canvas_.fill(projected, rule, color);
}

void EntityPainter::paintWire(const geometry::Wire& wire, const Place& place, const Style& style) {
  if (wire.filled) return fillChains({wire.points}, place.toPicture, FillRule::EvenOdd, style.pen.color);
  std::vector<Point> line;
  if (isRepeating() && !spendRepeats(wire.points.size() / kPointsPerRepeat)) return;
  if (!project(wire.points, place.toPicture, line)) return;
  Pen pen = style.pen;
  if (!wire.outline.empty()) {
    const double width = wire.constantWidth * place.toPicture.planScale();
    if (style.dashes.empty() || wire.constantWidth == 0) {
      // Thinner than a line it still shows as a line.
      if (wire.constantWidth == 0 || width > pen.width)
        fillChains(wire.outline, place.toPicture, FillRule::Nonzero, pen.color);
      if (wire.constantWidth == 0 || width <= pen.width) canvas_.stroke(line, wire.closed, pen);
      return;
    }
    pen.width = std::max(pen.width, width);
    pen.flatEnds = width > style.pen.width;
  }
  if (style.dashes.empty() || wire.corners.empty()) return strokeLine(line, wire.closed, style, pen);
  // Without linetype generation every piece has the pattern for itself.
  if (wire.closed) line.push_back(line.front());
  std::size_t begin = 0;
  const auto piece = [&](std::size_t end) {
    if (end <= begin || end >= line.size()) return;
    scratch_.assign(line.begin() + static_cast<std::ptrdiff_t>(begin),
                    line.begin() + static_cast<std::ptrdiff_t>(end) + 1);
    strokeLine(scratch_, false, style, pen);
    begin = end;
  };
  for (const std::uint32_t corner : wire.corners) piece(corner);
  piece(line.size() - 1);
}

void EntityPainter::paintPoint(const AcGePoint3d& p, const Place& place, const Style& style) {
  constexpr int kCircle = 32, kSquare = 64;
  std::vector<Point> at;
  if (!project({p}, place.toPicture, at)) return;
  const Point c = at[0];
  if (view_.boundsOnly) return canvas_.stroke(at, false, style.pen);
  const double pictureHeight = view_.area.maxY - view_.area.minY;
  double size =
      pointSize_ > 0 ? pointSize_ * place.toPicture.planScale() : pictureHeight * std::min(-pointSize_, 100.0) / 100;
  if (pointSize_ == 0) size = pictureHeight * 0.05;
  const double r = size / 2;
  const Pen& pen = style.pen;
  const auto line = [&](double x1, double y1, double x2, double y2) {
    canvas_.stroke({{c.x + x1 * r, c.y + y1 * r}, {c.x + x2 * r, c.y + y2 * r}}, false, pen);
  };
  switch (pointMode_ & 7) {
    case 0: {
      Pen dot = pen;
      dot.width = std::max(pen.width, 1.5 * view_.thinnestLine);
      canvas_.stroke({c}, false, dot);
      break;
    }
    case 2:
      line(-2, 0, 2, 0);
      line(0, -2, 0, 2);
      break;
    case 3:
      line(-2, -2, 2, 2);
      line(-2, 2, 2, -2);
      break;
    case 4:
      line(0, 0, 0, -1);
      break;
    default:
      break;
  }
  if ((pointMode_ & kCircle) != 0) {
    std::vector<Point> circle;
    constexpr int kSteps = 24;
    for (int i = 0; i < kSteps; ++i) {
      const double t = 2 * std::numbers::pi * i / kSteps;
      circle.push_back({c.x + r * std::cos(t), c.y + r * std::sin(t)});
    }
    canvas_.stroke(circle, true, pen);
  }
  if ((pointMode_ & kSquare) != 0)
    canvas_.stroke({{c.x - r, c.y - r}, {c.x + r, c.y - r}, {c.x + r, c.y + r}, {c.x - r, c.y + r}}, true, pen);
}

void EntityPainter::paintInfinite(const geometry::InfiniteLine& line, const Place& place, const Style& style) {
  const Point base = place.toPicture.plan(line.base);
  const AcGeVector3d d = place.toPicture.vector(line.direction);
  const double length = std::hypot(d.x, d.y);
  if (!std::isfinite(base.x + base.y) || !(length > 0)) return;
  if (view_.boundsOnly) return canvas_.stroke({base}, false, style.pen);
  // From the base as far as the farthest corner of the picture.
  const Box& a = view_.area;
  const double reach = std::max(std::abs(base.x - a.minX), std::abs(base.x - a.maxX)) +
                       std::max(std::abs(base.y - a.minY), std::abs(base.y - a.maxY)) + 10;
  const double f = reach / length;
  const Point start = line.bothWays ? Point{base.x - d.x * f, base.y - d.y * f} : base;
  strokeLine({start, {base.x + d.x * f, base.y + d.y * f}}, false, style, style.pen);
}

void EntityPainter::paintImage(const geometry::ImageFrame& frame, const Place& place, const Style& style) {
  if (frame.isWipeout) return fillChains({frame.ring}, place.toPicture, FillRule::EvenOdd, appearances_.background());
  std::vector<Point> line;
  if (project(frame.ring, place.toPicture, line)) canvas_.stroke(line, true, style.pen);
}

}  // namespace host::picture
