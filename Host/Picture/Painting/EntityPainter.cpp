#include "Picture/EntityPainter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"
#include "Geometry/BlockClips.h"
#include "Picture/Painting/Bounds.h"

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
/// stands in the drawn space itself is drawn however much it is, and lets its references repeat more: a plan may have a
/// hundred thousand trees of a hundred lines. The bounds keep files that ask for much with few bytes to some gigabytes.
/// Fuzz targets get there soon.
#ifdef TOLMEX_SMALL_LIMITS
constexpr std::size_t kFewestRepeats = 100, kMostRepeats = 100;
#else
constexpr std::size_t kFewestRepeats = 2'000'000, kMostRepeats = 20'000'000;
#endif
constexpr std::size_t kRepeatsPerReference = 1'000, kRepeatsPerEntity = 16;
constexpr std::size_t kPointsPerEntity = 1'000, kFewestPoints = 16 * kFewestRepeats;

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
  constexpr std::int64_t kSwitchedOff = 0x20000;
  view.isOn = status != 0 && (flags & kSwitchedOff) == 0;
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
    : EntityPainter(db, options, glyphs, view, std::make_optional<PaintedDetails>(view, glyphs, canvas), nullptr) {}

EntityPainter::EntityPainter(const database::DrawingDatabase& db, const PictureOptions& options, GlyphSource& glyphs,
                             const View& view, Details& details)
    : EntityPainter(db, options, glyphs, view, std::nullopt, &details) {}

EntityPainter::EntityPainter(const database::DrawingDatabase& db, const PictureOptions& options, GlyphSource& glyphs,
                             const View& view, std::optional<PaintedDetails> painted, Details* details)
    : db_(db),
      glyphs_(glyphs),
      view_(view),
      painted_(std::move(painted)),
      details_(details != nullptr ? *details : *painted_),
      appearances_(db, options, view.keepsRoles),
      images_(db, options),
      lineweightFactor_(options.lineweights == LineweightMode::Factor ? options.lineweightFactor : 1),
      lineweightsOff_(options.lineweights == LineweightMode::Off),
      dashScale_(view.toPicture.planScale() * appearances_.globalLinetypeScale()),
      outerScale_(view.toPicture.planScale()) {
  constexpr double kWholePercent = 100, kUsualShare = 0.05;
  pointMark_.mode = static_cast<int>(db.headerInteger("$PDMODE", 70).value_or(0));
  const double size = db.headerReal("$PDSIZE", 40).value_or(0);
  if (size > 0)
    pointMark_.size = size;
  else
    pointMark_.share = size == 0 ? kUsualShare : std::min(-size, kWholePercent) / kWholePercent;
}

void EntityPainter::begin(const BlockContents& block) {
  chain_.enter(&block);
  std::size_t entities = block.entities.size();
  if (&block != &db_.modelSpace()) entities += db_.modelSpace().entities.size();  // viewports repeat the model
  repeatsLeft_ =
      std::max(std::clamp(kRepeatsPerReference * entities, kFewestRepeats, kMostRepeats), kRepeatsPerEntity * entities);
  pointsLeft_ = std::max(kFewestPoints, kPointsPerEntity * entities);
}

void EntityPainter::paint(const BlockContents& block) {
  const std::vector<Slot*>& order = drawOrder(block);
  begin(block);
  for (const Slot* slot : order) paintOne(*slot);
  chain_.leave();
}

void EntityPainter::paintInArea(const BlockContents& block) {
  constexpr double kHeaviestPenMm = 10, kEdgePx = 4;
  const double reach = kHeaviestPenMm * lineweightFactor_ * view_.pixelsPerMm + view_.thinnestLine + kEdgePx;
  const Transform& t = view_.toPicture;  // upright: pixels are units, scaled and moved
  const Box& a = view_.area;
  Box area;
  area.add(Point{(a.minX - reach - t.origin.x) / t.x.x, (a.minY - reach - t.origin.y) / t.y.y});
  area.add(Point{(a.maxX + reach - t.origin.x) / t.x.x, (a.maxY + reach - t.origin.y) / t.y.y});
  EntityBounds bounds(db_);
  const std::vector<Slot*>& order = drawOrder(block);
  begin(block);
  for (const Slot* slot : order)
    if (bounds.mayShowIn(*slot, area)) paintOne(*slot);
  chain_.leave();
}

const std::vector<Slot*>& EntityPainter::drawOrder(const BlockContents& block) {
  const auto [entry, isNew] = orders_.try_emplace(&block);
  if (isNew) entry->second = db_.drawOrder(block);
  return entry->second;
}

geometry::TextWidth EntityPainter::textWidth() {
  return [this](std::wstring_view text, geometry::Face face) { return glyphs_.width(text, face); };
}

EntityPainter::Style EntityPainter::styleOf(const Appearance& appearance, const Place& place) const {
  const Appearance plotted = appearances_.plotted(appearance);
  Style style;
  style.appearance = appearance;
  style.line.pen.color = style.fill = appearances_.color(appearance);
  const double width = lineweightsOff_ ? 0 : plotted.lineweightMm * lineweightFactor_ * view_.pixelsPerMm;
  style.line.pen.width = std::max(width, view_.thinnestLine);
  if (plotted.dashes == nullptr || view_.boundsOnly) return style;
  style.line.pattern = plotted.dashes;
  if (plotted.hasPlotDashes) {
    style.line.dashUnit = view_.pixelsPerMm;
    return style;
  }
  // Dashes grow with the blocks they stand in: by the mean of the scales of a block drawn out of shape.
  const Transform& t = place.toPicture;
  const double blockScale = std::sqrt(t.x.length() * t.y.length()) / outerScale_;
  style.line.dashUnit = dashScale_ * blockScale * appearance.linetypeScale;
  return style;
}

void EntityPainter::paintEntity(const Slot& entity, const Place& place) {
  if (!spend(repeatsLeft_, 1)) return;
  if (chain_.depth() <= (isInViewport_ ? 2U : 1U)) outermost_ = entity.handle;
  const std::uint32_t layer = appearances_.effectiveLayer(entity, place.surroundings);
  if (!appearances_.isShown(entity, layer)) {
    if (!isRepeating() && appearances_.isUnplotted(layer)) ++unplotted_[layer];
    // Of a viewport only the frame lies on its layer, unless that is frozen.
    if (entity.type == DxfType::Viewport && !appearances_.isFrozen(layer)) paintViewport(entity);
    return;
  }
  const database::EntityProperties own = database::entityProperties(entity);
  if (own.invisible) return;
  const Appearance appearance = appearances_.resolve(own, layer, place.surroundings);
  const bool isReference = geometry::isReference(entity);
  if (isReference && paintReference(entity, place, layer, appearance)) return;
  Style style = styleOf(appearance, place);
  const bool isArea = entity.type == DxfType::Hatch || entity.type == DxfType::Solid || entity.type == DxfType::Trace;
  // Arrowheads go with their lines.
  if (isArea && !isInDimension_) style.fill = appearances_.fillColor(appearance);
  if (entity.type == DxfType::Viewport) paintViewport(entity);
  if (enter_) enter_(layer, outermost_);
  if (entity.type == DxfType::Hatch) return paintHatch(entity, place, style);

  const double scale = place.toPicture.planScale();
  const double deviation = view_.deviation > 0 && scale > 0 ? view_.deviation / scale : 0;
  if (isReference || !geometry::hasShape(entity)) return paintOther(entity, place, style, deviation);
  if (entity.type == DxfType::MultiLeader) return paintLeader(entity, place, style, deviation);
  const bool isAttribute = entity.type == DxfType::Attrib || entity.type == DxfType::AttDef;
  const std::wstring* const contents = isAttribute && attributeText_ ? attributeText_(entity) : nullptr;
  if (const auto text = geometry::layoutText(entity, textWidth(), contents)) return paintText(*text, place, style);
  const geometry::EntityShape shape = geometry::readShape(entity, deviation);
  for (const geometry::Wire& wire : shape.wires) paintWire(wire, place, style);
  for (const AcGePoint3d& p : shape.points) paintPoint(p, place, style);
  for (const geometry::InfiniteLine& line : shape.infinite) paintInfinite(line, place, style);
  if (shape.image) paintImage(*shape.image, place, style);
}

bool EntityPainter::spend(std::size_t& left, std::size_t count) {
  if (!isRepeating()) return true;
  cutShort_ = cutShort_ || count > left;
  if (!cutShort_) left -= count;
  return !cutShort_;
}

bool EntityPainter::paintReference(const Slot& entity, const Place& place, std::uint32_t layer, const Appearance& own) {
  const Surroundings inside{layer, own};
  const auto reference = geometry::readReference(entity);
  if (!reference && entity.type != DxfType::Insert) return false;
  if (reference && chain_.enter(reference->block)) {
    const bool wasInDimension = isInDimension_;
    isInDimension_ = isInDimension_ || geometry::isDimension(entity);
    const auto clip = entity.type == DxfType::Insert ? geometry::readBlockClip(entity) : std::nullopt;
    std::vector<Point> ring;
    const bool isCut = clip && !clip->isDamaged && project(clip->ring, place.toPicture.after(reference->first), ring);
    if (clip && !isCut) damagedClips_.insert(&entity);
    Box outerArea;
    if (!isCut) {
      paintContent(*reference, place, inside);
    } else if (beginClip(ring, clip->isInverted, outerArea)) {
      paintContent(*reference, place, inside);
      endClip(outerArea);
      constexpr std::int64_t kPlotted = 1;
      if (db_.headerInteger("$XCLIPFRAME", 280).value_or(2) == kPlotted) strokeLine(ring, true, styleOf(own, place));
    }
    isInDimension_ = wasInDimension;
    chain_.leave();
  }
  for (const Slot* sub = entity.firstSub(); sub != nullptr; sub = sub->nextSub)
    if (sub->type == DxfType::Attrib && !sub->isErased() && !geometry::isInvisibleAttribute(*sub))
      paintEntity(*sub, {place.toPicture, inside});
  return true;
}

void EntityPainter::paintContent(const geometry::BlockReference& reference, const Place& place,
                                 const Surroundings& inside) {
  // The corner cells bound an array.
  const std::int64_t rowStep = view_.boundsOnly ? std::max<std::int64_t>(reference.rows - 1, 1) : 1;
  const std::int64_t columnStep = view_.boundsOnly ? std::max<std::int64_t>(reference.columns - 1, 1) : 1;
  for (std::int64_t row = 0; row < reference.rows && !cutShort_; row += rowStep)
    for (std::int64_t column = 0; column < reference.columns && !cutShort_; column += columnStep) {
      if (!spend(repeatsLeft_, 1)) break;  // empty cells count, too
      const Place cell{place.toPicture.after(reference.cell(column, row)), inside};
      for (const Slot* inner : drawOrder(*reference.block))
        if (geometry::isDrawnInReference(*inner)) paintEntity(*inner, cell);
    }
}

bool EntityPainter::beginClip(std::vector<Point> ring, bool isInverted, Box& outerArea) {
  Box area;
  for (const Point p : ring) area.add(p);
  if (isInverted) {
    // A frame around all there may be, joined to the ring, which runs the other way round in it: both fill rules leave
    // the inside out.
    constexpr double kBeyond = 1e6;
    Box frame = area;
    if (!view_.area.isEmpty()) {
      frame.add(Point{view_.area.minX, view_.area.minY});
      frame.add(Point{view_.area.maxX, view_.area.maxY});
    }
    const double border = view_.area.isEmpty() ? kBeyond * (1 + frame.maxX - frame.minX + frame.maxY - frame.minY) : 10;
    frame = {frame.minX - border, frame.minY - border, frame.maxX + border, frame.maxY + border};
    double twice = 0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const Point &a = ring[i], &b = ring[(i + 1) % ring.size()];
      twice += (a.x - ring[0].x) * (b.y - ring[0].y) - (b.x - ring[0].x) * (a.y - ring[0].y);
    }
    if (twice > 0) std::ranges::reverse(ring);
    ring.push_back(ring.front());
    const Point corner{frame.minX, frame.minY};
    ring.insert(ring.end(),
                {corner, {frame.maxX, frame.minY}, {frame.maxX, frame.maxY}, {frame.minX, frame.maxY}, corner});
    area = view_.area;
  } else if (!view_.area.isEmpty()) {
    const Box& a = view_.area;
    area = {std::max(a.minX, area.minX), std::max(a.minY, area.minY), std::min(a.maxX, area.maxX),
            std::min(a.maxY, area.maxY)};
    if (area.isEmpty() || area.minY > area.maxY) return false;
  }
  outerArea = view_.area;
  view_.area = area;
  details_.setArea(area);
  details_.beginClip(ring);
  return true;
}

void EntityPainter::endClip(const Box& outerArea) {
  view_.area = outerArea;
  details_.endClip();
  details_.setArea(outerArea);
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
  Box paperArea;
  if (!beginClip(std::move(ring), false, paperArea)) return;
  std::vector<std::uint32_t> frozen;
  for (const std::uint64_t handle : view.frozen)
    if (const Slot* layer = db_.findHandle(handle); layer != nullptr && layer->type == DxfType::Layer)
      frozen.push_back(db_.findLayer(db_.recordName(*layer)));

  // What one linetype unit measures is that of the paper when $PSLTSCALE says so, else that of the model.
  const double paperDashScale = dashScale_, paperScale = outerScale_;
  outerScale_ = view_.toPicture.after(toPaper).planScale();
  if (db_.headerInteger("$PSLTSCALE", 70).value_or(1) == 0) dashScale_ *= toPaper.planScale();
  appearances_.setViewportFrozen(std::move(frozen));
  isInViewport_ = true;
  const Place place{view_.toPicture.after(toPaper), {}};
  if (chain_.enter(&db_.modelSpace())) {
    for (const Slot* slot : drawOrder(db_.modelSpace())) paintEntity(*slot, place);
    chain_.leave();
  }
  isInViewport_ = false;
  appearances_.setViewportFrozen({});
  endClip(paperArea);
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

void EntityPainter::fillChains(const std::vector<Chain>& rings, const Transform& toPicture, FillRule rule,
                               Color color) {
  Rings projected(rings.size());
  for (std::size_t i = 0; i < rings.size(); ++i)
    if (!project(rings[i], toPicture, projected[i])) projected[i].clear();
  details_.fill(projected, rule, color);
}

void EntityPainter::strokeLine(const std::vector<Point>& line, bool closed, const Style& style) {
  wire_ = {};
  wire_.line = line;
  wire_.closed = closed;
  details_.wire(wire_, {style.line.pen, nullptr, 0});
}

void EntityPainter::paintWire(const geometry::Wire& wire, const Place& place, const Style& style) {
  if (!spend(pointsLeft_, wire.points.size())) return;
  if (wire.filled) return fillChains({wire.points}, place.toPicture, FillRule::EvenOdd, style.fill);
  if (!project(wire.points, place.toPicture, wire_.line)) return;
  wire_.closed = wire.closed;
  wire_.corners = wire.corners;
  wire_.width = wire.constantWidth == 0 ? 0 : wire.constantWidth * place.toPicture.planScale();
  wire_.outline.resize(wire.outline.size());
  for (std::size_t i = 0; i < wire.outline.size(); ++i)
    if (!project(wire.outline[i], place.toPicture, wire_.outline[i])) wire_.outline[i].clear();
  details_.wire(wire_, style.line);
}

void EntityPainter::paintPoint(const AcGePoint3d& p, const Place& place, const Style& style) {
  std::vector<Point> at;
  if (!project({p}, place.toPicture, at)) return;
  PointMark mark = pointMark_;
  mark.size *= place.toPicture.planScale();
  details_.point(at[0], mark, style.line.pen);
}

void EntityPainter::paintInfinite(const geometry::InfiniteLine& line, const Place& place, const Style& style) {
  const Point base = place.toPicture.plan(line.base);
  const AcGeVector3d d = place.toPicture.vector(line.direction);
  if (!std::isfinite(base.x + base.y) || !(std::hypot(d.x, d.y) > 0)) return;
  details_.infinite(base, {d.x, d.y}, line.bothWays, style.line);
}

bool EntityPainter::hasWipeoutFrames() {
  if (!hasWipeoutFrames_) {
    constexpr std::int64_t kPlotted = 1;  // 0: not shown, 2: shown, but not plotted
    hasWipeoutFrames_ = false;
    db_.forEachSlot([this](const Slot& slot) {
      if (slot.type < DxfType::FirstOther || slot.isErased() || db_.typeName(slot) != "WIPEOUTVARIABLES") return;
      database::TagCursor tags = slot.tags();
      for (database::Tag tag; tags.next(tag);)
        if (tag.code == 70) hasWipeoutFrames_ = tag.integer() == kPlotted;
    });
  }
  return *hasWipeoutFrames_;
}

void EntityPainter::paintImage(const geometry::ImageFrame& frame, const Place& place, const Style& style) {
  std::vector<Point> line;
  if (!project(frame.ring, place.toPicture, line)) return;
  if (frame.isWipeout) {
    details_.fill({line}, FillRule::EvenOdd, appearances_.background());
    if (hasWipeoutFrames()) strokeLine(line, true, style);
    return;
  }
  if (painted_ && !view_.boundsOnly)
    if (auto image = images_.load(frame.definition)) {
      const Transform& t = place.toPicture;
      const auto side = [&t](const AcGeVector3d& v) {
        const AcGeVector3d moved = t.vector(v);
        return Point{moved.x, moved.y};
      };
      const double opacity = style.appearance.alpha * (100 - frame.fadePercent) / 100.0;
      return painted_->image({line}, {std::move(image), t.plan(frame.topLeft), side(frame.across), side(frame.down)},
                             static_cast<std::uint8_t>(std::lround(opacity)));
    }
  strokeLine(line, true, style);
}

}  // namespace host::picture
