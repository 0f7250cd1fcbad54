#include "Window/Canvas/Marks.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "Picture/Details.h"

namespace host::window {
namespace {

using picture::DisplayList;

constexpr std::size_t kMostCased = 2000;  // marked entities with a casing
constexpr double kCasing = 1.5;

/// Outlines of entities: lines as they are, fills by their edges, texts by their boxes.
class OutlineDetails final : public picture::Details {
 public:
  explicit OutlineDetails(picture::Canvas& canvas) : canvas_(canvas) {}
  void wire(const picture::DetailWire& wire, const picture::LineStyle&) override {
    if (wire.hasOutline() && wire.width > 3)
      for (const auto& ring : wire.outline) stroke(ring, true);
    else
      stroke(wire.line, wire.closed);
  }
  void fill(const picture::Rings& rings, picture::FillRule, picture::Color) override {
    for (const auto& ring : rings) stroke(ring, true);
    areas.insert(areas.end(), rings.begin(), rings.end());
  }
  void fillGradient(const picture::Rings& rings, const picture::Gradient&) override {
    fill(rings, picture::FillRule::EvenOdd, {});
  }
  void text(const geometry::TextRun& run, const geometry::Transform& frame, const picture::Pen&) override {
    const Box b = picture::runBox(run);
    stroke({frame.plan({b.minX, b.minY, 0}), frame.plan({b.maxX, b.minY, 0}), frame.plan({b.maxX, b.maxY, 0}),
            frame.plan({b.minX, b.maxY, 0})},
           true);
  }
  void point(Point at, const picture::PointMark&, const picture::Pen&) override {
    constexpr double kReach = 4;
    stroke({{at.x - kReach, at.y}, {at.x + kReach, at.y}}, false);
    stroke({{at.x, at.y - kReach}, {at.x, at.y + kReach}}, false);
  }
  void infinite(Point base, Point d, bool bothWays, const picture::LineStyle&) override {
    constexpr double kFar = 1e5;  // pixels
    const double f = (kFar + curves::length(base)) / curves::length(d);
    stroke({bothWays ? base - d * f : base, base + d * f}, false);
  }
  void pattern(const std::vector<hatching::PatternLine>&, const std::vector<curves::Polygon>& loops,
               const geometry::Transform& plane, const picture::Pen&) override {
    for (const curves::Polygon& loop : loops) {
      std::vector<Point>& ring = areas.emplace_back();
      for (const Point p : loop) ring.push_back(plane.plan({p.x, p.y, 0}));
      stroke(ring, true);
    }
  }
  void beginClip(const std::vector<Point>&) override { ++clips_; }
  void endClip() override { --clips_; }
  void setArea(const Box&) override {}

  picture::Rings areas;  // filled ones

 private:
  void stroke(const std::vector<Point>& line, bool closed) {
    if (clips_ == 0 && !line.empty()) canvas_.stroke(line, closed, {});
  }
  picture::Canvas& canvas_;
  int clips_ = 0;
};

QPainterPath pathOf(const DisplayList& list) {
  QPainterPath path;
  for (const picture::DisplayItem& item : list.items)
    for (std::uint32_t i = 0; i < item.ringCount; ++i) {
      const picture::DisplayRing& ring = list.rings[item.firstRing + i];
      const Point* const points = list.points.data() + ring.first;
      path.moveTo(points[0].x, points[0].y);
      for (std::uint32_t k = 1; k < ring.count; ++k) path.lineTo(points[k].x, points[k].y);
      if (ring.closed) path.closeSubpath();
    }
  return path;
}

/// The casing of all lines, then their cores. Line by line: one path of many crossing lines takes many times as long.
void strokeMarked(QPainter& painter, const DisplayList& list, const MarkStyle& style, bool hasCasing) {
  painter.setBrush(Qt::NoBrush);
  QPolygonF line;
  const auto strokeAll = [&] {
    for (const picture::DisplayRing& ring : list.rings) {
      const Point* const points = list.points.data() + ring.first;
      line.clear();
      for (std::uint32_t k = 0; k < ring.count; ++k) line.append(QPointF(points[k].x, points[k].y));
      if (ring.closed && ring.count > 2) line.append(line.front());
      if (line.size() == 1) line.append(line.front() + QPointF(0.01, 0));
      painter.drawPolyline(line);
    }
  };
  if (hasCasing) {
    painter.setPen(QPen(style.casing, style.width + 2 * kCasing, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
    strokeAll();
  }
  QPen pen(style.core, style.width, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin);
  if (!style.dashes.empty()) {
    QList<qreal> dashes;
    for (const double dash : style.dashes) dashes.push_back(dash / style.width);
    pen.setDashPattern(dashes);
  }
  painter.setPen(pen);
  strokeAll();
}

/// Lines of a path that is not cut.
DisplayList listOf(const QPainterPath& path) {
  DisplayList list;
  for (const QPolygonF& polygon : path.toSubpathPolygons()) {
    list.rings.push_back(
        {static_cast<std::uint32_t>(list.points.size()), static_cast<std::uint32_t>(polygon.size()), false});
    for (const QPointF p : polygon) list.points.push_back({p.x(), p.y()});
  }
  return list;
}

}  // namespace

MarkStyle markStyle(Mark mark, bool isDark) {
  const QColor paper(0xFF, 0xFF, 0xFF), night(0x10, 0x14, 0x18);
  const QColor casing = isDark ? night : paper;
  switch (mark) {
    case Mark::Hover:
      return {isDark ? QColor(0xFF, 0xB0, 0x00) : QColor(0xB0, 0x3A, 0x00), casing, 3, {}, 0.10};
    case Mark::Selected:
      return {isDark ? QColor(0x66, 0xB2, 0xFF) : QColor(0x00, 0x57, 0xD8), casing, 2, {8, 4}, 0};
    case Mark::Highlight:
      return {isDark ? QColor(0xFF, 0xD4, 0x00) : QColor(0x10, 0x14, 0x18),
              isDark ? night : QColor(0xFF, 0xD4, 0x00),
              3,
              {10, 3, 2, 3},
              0};
    case Mark::WindowInside:
      return {isDark ? QColor(0x66, 0xB2, 0xFF) : QColor(0x00, 0x57, 0xD8), casing, 1.5, {}, isDark ? 0.15 : 0.12};
    case Mark::WindowCrossing:
      return {isDark ? QColor(0x3D, 0xDC, 0x97) : QColor(0x00, 0x6B, 0x43), casing, 1.5, {6, 4}, isDark ? 0.15 : 0.12};
    case Mark::Snap:
      return {isDark ? QColor(0xFF, 0x7A, 0xE0) : QColor(0xA1, 0x00, 0x7D), casing, 2, {}, 0};
    case Mark::Preview:
      return {isDark ? QColor(0xF0, 0xF2, 0xF4) : QColor(0x10, 0x14, 0x18), casing, 1, {2, 3}, 0.25};
    case Mark::Crosshair:
      return {isDark ? QColor(0xF0, 0xF2, 0xF4) : QColor(0x10, 0x14, 0x18), casing, 1, {}, 0};
  }
  return {};
}

void MarkPainter::entities(const std::vector<SceneRef>& entities, Mark mark, double strength, std::size_t ofMany) {
  if (entities.empty()) return;
  ofMany = std::max(ofMany, entities.size());
  const MarkStyle style = markStyle(mark, isDark_);
  picture::DisplayListCanvas canvas;
  const double reach = style.width + 2 * kCasing;
  canvas.setClip({-reach, -reach, frame_.size.width() + reach, frame_.size.height() + reach});
  OutlineDetails details(canvas);
  const QPointF origin = frame_.originPx();
  picture::Playing how;
  how.pixelsPerUnit = frame_.scale();
  how.shift = {origin.x(), origin.y()};
  picture::Player player(how, details);
  const Box seen = frame_.visible();
  for (const SceneRef entity : entities)
    if (entity && (entity->isEndless || entity->box.intersects(seen)))
      player.play(entity.chunk->recording, entity->firstItem, entity->itemCount);
  const DisplayList lines = canvas.take();
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing, ofMany <= kMostCased);
  painter_.setOpacity(strength);
  if (style.insideOpacity > 0 && !details.areas.empty()) {
    picture::DisplayListCanvas areas;
    areas.setClip({0, 0, frame_.size.width(), frame_.size.height()});
    areas.fill(details.areas, picture::FillRule::EvenOdd, {});
    QColor inside = style.core;
    inside.setAlphaF(static_cast<float>(style.insideOpacity));
    painter_.fillPath(pathOf(areas.take()), inside);
  }
  strokeMarked(painter_, lines, style, ofMany <= kMostCased);
  if (mark == Mark::Selected && ofMany <= kMostSquared) squares(entities, style);
  painter_.restore();
}

void MarkPainter::squares(const std::vector<SceneRef>& entities, const MarkStyle& style) {
  constexpr double kSide = 6;
  constexpr std::size_t kMostSquares = 2000;
  std::size_t drawn = 0;
  painter_.setRenderHint(QPainter::Antialiasing, false);
  painter_.setPen(QPen(style.casing, 1));
  painter_.setBrush(style.core);
  const QRectF canvas(QPointF(-kSide, -kSide),
                      QSizeF(frame_.size.width() + 2 * kSide, frame_.size.height() + 2 * kSide));
  for (const SceneRef entity : entities) {
    if (!entity) continue;
    const picture::Recording& recording = entity.chunk->recording;
    for (std::uint32_t i = 0; i < entity->itemCount; ++i) {
      const auto& item = recording.items[entity->firstItem + i];
      if (item.kind != picture::Recording::Kind::Wire) continue;
      const picture::DisplayRing& ring = recording.rings[item.firstRing];
      constexpr std::uint32_t kCurved = 40;  // more points are those of a curve, or too many to tell apart
      if (ring.count > kCurved) continue;
      for (std::uint32_t k = 0; k < ring.count; ++k) {
        const QPointF at = frame_.toPixel(recording.points[ring.first + k]);
        if (!canvas.contains(at) || ++drawn > kMostSquares) continue;
        painter_.drawRect(QRectF(std::round(at.x()) - kSide / 2, std::round(at.y()) - kSide / 2, kSide, kSide));
      }
    }
  }
}

void MarkPainter::rectangle(QPointF corner, QPointF opposite, Mark mark) {
  const MarkStyle style = markStyle(mark, isDark_);
  const QRectF box = QRectF(corner, opposite).normalized();
  QColor inside = style.core;
  inside.setAlphaF(static_cast<float>(style.insideOpacity));
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing, false);
  painter_.fillRect(box, inside);
  QPainterPath path;
  path.addRect(box);
  strokeMarked(painter_, listOf(path), style, true);
  painter_.restore();
}

void MarkPainter::snap(QPointF at, geometry::SnapKind kind) {
  constexpr double kHalf = 6.5;
  QPainterPath path;
  const auto line = [&](double x1, double y1, double x2, double y2) {
    path.moveTo(at.x() + x1 * kHalf, at.y() + y1 * kHalf);
    path.lineTo(at.x() + x2 * kHalf, at.y() + y2 * kHalf);
  };
  switch (kind) {
    case geometry::SnapKind::End:
      path.addRect(QRectF(at.x() - kHalf, at.y() - kHalf, 2 * kHalf, 2 * kHalf));
      break;
    case geometry::SnapKind::Middle:
      path.addPolygon(QPolygonF({at + QPointF(0, -kHalf), at + QPointF(kHalf, kHalf * 0.8),
                                 at + QPointF(-kHalf, kHalf * 0.8), at + QPointF(0, -kHalf)}));
      break;
    case geometry::SnapKind::Centre:
      path.addEllipse(at, kHalf, kHalf);
      break;
    case geometry::SnapKind::Intersection:
      line(-1, -1, 1, 1);
      line(-1, 1, 1, -1);
      break;
    case geometry::SnapKind::Perpendicular:
      line(-1, -1, -1, 1);
      line(-1, 1, 1, 1);
      line(-1, 0, 0, 0);
      line(0, 0, 0, 1);
      break;
    case geometry::SnapKind::Nearest:
      path.addPolygon(QPolygonF({at + QPointF(-kHalf, -kHalf), at + QPointF(kHalf, -kHalf), at + QPointF(-kHalf, kHalf),
                                 at + QPointF(kHalf, kHalf), at + QPointF(-kHalf, -kHalf)}));
      break;
  }
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing);
  strokeMarked(painter_, listOf(path), markStyle(Mark::Snap, isDark_), true);
  painter_.restore();
}

void MarkPainter::crosshair(QPointF at, double gap) {
  constexpr double kShare = 0.05;
  const double arm = std::max(frame_.size.width(), frame_.size.height()) * kShare;
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing, false);
  painter_.setPen(QPen(markStyle(Mark::Crosshair, isDark_).core, 1));
  for (const QPointF d : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)})
    painter_.drawLine(at + d * gap, at + d * (gap + arm));
  painter_.restore();
}

void MarkPainter::pickBox(QPointF at, double aperture) {
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing, false);
  painter_.setPen(QPen(markStyle(Mark::Crosshair, isDark_).core, 1));
  painter_.setBrush(Qt::NoBrush);
  painter_.drawRect(QRectF(at.x() - aperture, at.y() - aperture, 2 * aperture, 2 * aperture));
  painter_.restore();
}

namespace {

constexpr std::size_t kMostGhosts = 2000;  // drawn as they are; more as boxes

/// Outlines in pixels as they are, to be moved and cut by the caller.
class LineCanvas final : public picture::Canvas {
 public:
  void stroke(const std::vector<Point>& line, bool closed, const picture::Pen&) override {
    lines.push_back({line, closed});
  }
  void fill(const picture::Rings&, picture::FillRule, picture::Color) override {}
  void fillGradient(const picture::Rings&, picture::FillRule, const picture::Gradient&) override {}
  void beginClip(const std::vector<Point>&) override {}
  void endClip() override {}
  void setClip(const Box&) override {}
  std::vector<std::pair<std::vector<Point>, bool>> lines;
};

}  // namespace

void MarkPainter::ghosts(const std::vector<SceneRef>& entities, Point about, double turnRad, Point moved) {
  LineCanvas canvas;
  OutlineDetails details(canvas);
  picture::Playing how;
  how.pixelsPerUnit = frame_.scale();
  how.shift = Point{} - about * frame_.scale();
  picture::Player player(how, details);
  const bool isBoxes = entities.size() > kMostGhosts;
  for (const SceneRef entity : entities) {
    if (!entity || entity->box.isEmpty()) continue;
    if (!isBoxes) {
      player.play(entity.chunk->recording, entity->firstItem, entity->itemCount);
      continue;
    }
    const double s = frame_.scale();
    const Point low = (Point{entity->box.minX, entity->box.minY} - about) * s;
    const Point high = (Point{entity->box.maxX, entity->box.maxY} - about) * s;
    canvas.stroke({low, {high.x, low.y}, high, {low.x, high.y}}, true, {});
  }
  const QPointF to = frame_.toPixel(about + moved);
  const double c = std::cos(turnRad), s = std::sin(turnRad);
  picture::DisplayListCanvas cut;
  cut.setClip({-4, -4, frame_.size.width() + 4, frame_.size.height() + 4});
  for (auto& [line, closed] : canvas.lines) {
    for (Point& p : line) p = {p.x * c - p.y * s + to.x(), p.x * s + p.y * c + to.y()};
    cut.stroke(line, closed, {});
  }
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing, !isBoxes);
  strokeMarked(painter_, cut.take(), markStyle(Mark::Preview, isDark_), entities.size() <= kMostCased);
  painter_.restore();
}

void MarkPainter::ghost(const picture::Recording& recording, Point at) {
  picture::DisplayListCanvas cut;
  cut.setClip({-4, -4, frame_.size.width() + 4, frame_.size.height() + 4});
  OutlineDetails details(cut);
  const QPointF to = frame_.toPixel(at);
  picture::Playing how;
  how.pixelsPerUnit = frame_.scale();
  how.shift = {to.x(), to.y()};
  picture::Player(how, details).play(recording, 0, recording.items.size());
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing);
  strokeMarked(painter_, cut.take(), markStyle(Mark::Preview, isDark_), true);
  painter_.restore();
}

void MarkPainter::line(const std::vector<QPointF>& points, bool isClosed, bool isSolid) {
  if (points.size() < 2) return;
  picture::DisplayListCanvas canvas;
  canvas.setClip({-4, -4, frame_.size.width() + 4, frame_.size.height() + 4});
  std::vector<Point> line;
  line.reserve(points.size());
  for (const QPointF p : points) line.push_back({p.x(), p.y()});
  canvas.stroke(line, isClosed, {});
  MarkStyle style = markStyle(Mark::Preview, isDark_);
  if (isSolid) style.dashes.clear();
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing);
  strokeMarked(painter_, canvas.take(), style, true);
  painter_.restore();
}

void MarkPainter::area(const std::vector<QPointF>& ring) {
  picture::DisplayListCanvas canvas;
  canvas.setClip({-4, -4, frame_.size.width() + 4, frame_.size.height() + 4});
  std::vector<Point> line;
  line.reserve(ring.size());
  for (const QPointF p : ring) line.push_back({p.x(), p.y()});
  canvas.fill({line}, picture::FillRule::EvenOdd, {});
  const MarkStyle style = markStyle(Mark::Preview, isDark_);
  QColor inside = style.core;
  inside.setAlphaF(static_cast<float>(style.insideOpacity));
  painter_.save();
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.fillPath(pathOf(canvas.take()), inside);
  painter_.restore();
}

void MarkPainter::ghostText(QPointF at, double height, double turnRad, const QString& text) {
  constexpr double kLargest = 4000;  // pixels; larger letters are beyond every screen
  if (text.isEmpty() || !(height > 0) || height > kLargest) return;
  constexpr int kDrawnPx = 100;
  constexpr double kDegree = std::numbers::pi / 180;
  QFont font = painter_.font();
  font.setPixelSize(kDrawnPx);
  QPainterPath path;
  path.addText(0, 0, font, text);
  const double scale = height / std::max(1.0, QFontMetricsF(font).capHeight());
  painter_.save();
  painter_.translate(at);
  painter_.rotate(-turnRad / kDegree);
  painter_.scale(scale, scale);
  painter_.setRenderHint(QPainter::Antialiasing);
  QColor inside = markStyle(Mark::Preview, isDark_).core;
  inside.setAlphaF(0.6F);
  painter_.fillPath(path, inside);
  painter_.restore();
}

void MarkPainter::words(QPointF cursor, const QString& text, bool isHead) {
  if (text.isEmpty()) return;
  constexpr double kAway = 16, kPad = 4;
  painter_.save();
  QFont font = painter_.font();
  font.setPointSizeF(9);
  painter_.setFont(font);
  QFont bold = font;
  bold.setBold(true);
  const QString head = isHead ? text.section(u'\n', 0, 0) : QString();
  const QString rest = isHead ? text.section(u'\n', 1) : text;
  const auto sizeOf = [](const QFont& with, const QString& lines) {
    if (lines.isEmpty()) return QSizeF(0, 0);
    return QFontMetricsF(with).boundingRect(QRectF(0, 0, 1000, 1000), Qt::AlignLeft | Qt::TextExpandTabs, lines).size();
  };
  const QSizeF above = sizeOf(bold, head), below = sizeOf(font, rest);
  QRectF box(0, 0, std::max(above.width(), below.width()) + 2 * kPad, above.height() + below.height() + 2 * kPad);
  QPointF at = cursor + QPointF(kAway, kAway);
  if (at.x() + box.width() > frame_.size.width()) at.setX(cursor.x() - kAway - box.width());
  if (at.y() + box.height() > frame_.size.height()) at.setY(cursor.y() - kAway - box.height());
  at = {std::max(at.x(), 0.0), std::max(at.y(), 0.0)};
  box.moveTopLeft(at);
  QColor ground = isDark_ ? QColor(0x2A, 0x2E, 0x34) : QColor(0xFF, 0xFF, 0xFF);
  ground.setAlpha(235);
  painter_.setRenderHint(QPainter::Antialiasing);
  painter_.setPen(QPen(isDark_ ? QColor(0xA3, 0xAB, 0xB5) : QColor(0x57, 0x60, 0x6A), 1));
  painter_.setBrush(ground);
  painter_.drawRoundedRect(box, 3, 3);
  painter_.setPen(isDark_ ? QColor(0xE6, 0xE8, 0xEB) : QColor(0x1B, 0x1F, 0x24));
  const QRectF inside = box.adjusted(kPad, kPad, -kPad, -kPad);
  painter_.drawText(inside.adjusted(0, above.height(), 1, 1), Qt::AlignLeft, rest);
  painter_.setFont(bold);
  painter_.drawText(inside.adjusted(0, 0, 1, 1), Qt::AlignLeft, head);
  painter_.restore();
}

}  // namespace host::window
