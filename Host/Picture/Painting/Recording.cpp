#include "Picture/Recording.h"

#include <algorithm>
#include <cmath>

namespace host::picture {
namespace {

using geometry::Transform;

/// Points closer together than this many pixels are drawn as one.
constexpr double kTellApartPx = 0.2;
constexpr std::uint32_t kFewPoints = 5;

std::uint32_t indexOf(std::size_t size) { return static_cast<std::uint32_t>(size); }

}  // namespace

Box runBox(const geometry::TextRun& run) {
  constexpr double kBelow = 0.35, kAbove = 1.25;
  const double lean = std::abs(std::tan(run.obliqueRad)) * run.height * kAbove;
  Box box;
  box.add(Point{run.x - lean, run.y - kBelow * run.height});
  box.add(Point{run.x + run.width + lean, run.y + kAbove * run.height});
  return box;
}

void Recording::append(const Recording& other, std::size_t first, std::size_t count) {
  for (std::size_t i = first; i < first + count; ++i) {
    Item item = other.items[i];
    const std::uint32_t from = item.firstRing;
    item.firstRing = indexOf(rings.size());
    for (std::uint32_t r = 0; r < item.ringCount; ++r) {
      DisplayRing ring = other.rings[from + r];
      const auto begin = other.points.begin() + ring.first;
      ring.first = indexOf(points.size());
      points.insert(points.end(), begin, begin + ring.count);
      rings.push_back(ring);
    }
    const auto take = [&item](auto& to, const auto& source) {
      to.push_back(source[item.more]);
      item.more = indexOf(to.size() - 1);
    };
    if (item.more != kNone) switch (item.kind) {
        case Kind::Wire:
        case Kind::Infinite:
          take(lines, other.lines);
          break;
        case Kind::Gradient:
          take(gradients, other.gradients);
          break;
        case Kind::Text:
          take(texts, other.texts);
          break;
        case Kind::Mark:
          take(marks, other.marks);
          break;
        case Kind::Pattern:
          take(patterns, other.patterns);
          break;
        default:
          break;
      }
    items.push_back(item);
  }
}

Transform Player::placed(const Transform& t) const {
  const double s = how_.pixelsPerUnit;
  return {t.x * s, t.y * s, t.z * s, {t.origin.x * s + how_.shift.x, t.origin.y * s + how_.shift.y, 0}};
}

Color Player::colorOf(Color color) const {
  if (color.role == ColorRole::Fixed) return color;
  const Color& chosen = color.role == ColorRole::Ink ? how_.ink : how_.ground;
  return {chosen.red, chosen.green, chosen.blue, color.alpha};
}

void Player::place(const Recording& recording, const DisplayRing& ring, bool isThinned, std::vector<Point>& out) const {
  out.clear();
  const Point* const points = recording.points.data() + ring.first;
  isThinned = isThinned && ring.count > kFewPoints;
  for (std::uint32_t i = 0; i < ring.count; ++i) {
    const Point p = placed(points[i]);
    if (isThinned && i > 0 && i + 1 < ring.count && std::abs(p.x - out.back().x) < kTellApartPx &&
        std::abs(p.y - out.back().y) < kTellApartPx)
      continue;
    out.push_back(p);
  }
}

void Player::playWire(const Recording& recording, const Recording::Item& item, const Pen& pen) {
  const Recording::Line* const more = item.more == Recording::kNone ? nullptr : &recording.lines[item.more];
  const bool isDashed = more != nullptr && more->pattern != nullptr;
  const DisplayRing& line = recording.rings[item.firstRing];
  place(recording, line, !isDashed, wire_.line);
  wire_.closed = line.closed;
  wire_.outline.resize(item.ringCount - 1);
  for (std::uint32_t i = 1; i < item.ringCount; ++i)
    place(recording, recording.rings[item.firstRing + i], true, wire_.outline[i - 1]);
  wire_.corners.clear();
  if (more == nullptr) return to_.wire(wire_, {pen, nullptr, 0});
  if (isDashed) wire_.corners = more->corners;
  wire_.width = more->width * how_.pixelsPerUnit;
  to_.wire(wire_, {pen, more->pattern.get(), more->dashUnit * how_.pixelsPerUnit});
}

void Player::play(const Recording& recording, std::size_t first, std::size_t count) {
  using Kind = Recording::Kind;
  for (std::size_t i = first; i < first + count; ++i) {
    const Recording::Item& item = recording.items[i];
    const Pen pen{colorOf(item.color), std::max(static_cast<double>(item.width) * how_.pixelsPerMm, how_.thinnestLine),
                  false};
    const auto placeAll = [&] {
      rings_.resize(item.ringCount);
      for (std::uint32_t r = 0; r < item.ringCount; ++r)
        place(recording, recording.rings[item.firstRing + r], true, rings_[r]);
    };
    switch (item.kind) {
      case Kind::Wire:
        playWire(recording, item, pen);
        break;
      case Kind::FillEvenOdd:
      case Kind::FillNonzero:
        placeAll();
        to_.fill(rings_, item.kind == Kind::FillEvenOdd ? FillRule::EvenOdd : FillRule::Nonzero, pen.color);
        break;
      case Kind::Gradient: {
        placeAll();
        Gradient gradient = recording.gradients[item.more];
        gradient.origin = placed(gradient.origin);
        gradient.axisX = gradient.axisX * how_.pixelsPerUnit;
        gradient.axisY = gradient.axisY * how_.pixelsPerUnit;
        for (Gradient::Stop& stop : gradient.stops) stop.color = colorOf(stop.color);
        to_.fillGradient(rings_, gradient);
        break;
      }
      case Kind::Text: {
        const Recording::Text& text = recording.texts[item.more];
        to_.text(text.run, placed(text.frame), pen);
        break;
      }
      case Kind::Mark: {
        PointMark mark = recording.marks[item.more];
        mark.size *= how_.pixelsPerUnit;
        to_.point(placed(recording.points[recording.rings[item.firstRing].first]), mark, pen);
        break;
      }
      case Kind::Infinite: {
        const DisplayRing& ring = recording.rings[item.firstRing];
        const Point* const p = recording.points.data() + ring.first;
        LineStyle style{pen, nullptr, 0};
        if (item.more != Recording::kNone) {
          const Recording::Line& more = recording.lines[item.more];
          style.pattern = more.pattern.get();
          style.dashUnit = more.dashUnit * how_.pixelsPerUnit;
        }
        to_.infinite(placed(p[0]), p[1], ring.closed, style);
        break;
      }
      case Kind::Pattern: {
        const Recording::Pattern& pattern = recording.patterns[item.more];
        to_.pattern(*pattern.families, pattern.loops, placed(pattern.plane), pen);
        break;
      }
      case Kind::BeginClip:
        placeAll();
        to_.beginClip(rings_.front());
        break;
      case Kind::EndClip:
        to_.endClip();
        break;
      case Kind::Area: {
        Box area = how_.area;
        if (item.ringCount > 0) {
          placeAll();
          const Point low = rings_.front()[0], high = rings_.front()[1];
          area = {std::max(area.minX, low.x), std::max(area.minY, low.y), std::min(area.maxX, high.x),
                  std::min(area.maxY, high.y)};
        }
        to_.setArea(area);
        break;
      }
    }
  }
}

void Recorder::begin(Recording& recording) {
  to_ = &recording;
  box_ = {};
  hasEndless_ = false;
  clips_ = 0;
}

Recording::Item& Recorder::add(Recording::Kind kind, Color color, double width) {
  return to_->items.emplace_back(
      Recording::Item{kind, color, static_cast<float>(width), indexOf(to_->rings.size()), 0, Recording::kNone});
}

void Recorder::addRing(const std::vector<Point>& points, bool closed) {
  to_->rings.push_back({indexOf(to_->points.size()), indexOf(points.size()), closed});
  to_->points.insert(to_->points.end(), points.begin(), points.end());
  ++to_->items.back().ringCount;
  if (clips_ == 0)
    for (const Point p : points) box_.add(p);
}

std::shared_ptr<const LinePattern> Recorder::kept(const LinePattern* pattern) {
  if (pattern == nullptr) return nullptr;
  auto& known = patterns_[pattern];
  if (known == nullptr) known = std::make_shared<const LinePattern>(*pattern);
  return known;
}

void Recorder::wire(const DetailWire& wire, const LineStyle& style) {
  if (wire.line.empty()) return;
  Recording::Item& item = add(Recording::Kind::Wire, style.pen.color, style.pen.width);
  if (style.pattern != nullptr || wire.hasOutline()) {
    item.more = indexOf(to_->lines.size());
    to_->lines.push_back({kept(style.pattern), style.dashUnit, wire.hasOutline() ? wire.width : 0,
                          style.pattern != nullptr ? wire.corners : std::vector<std::uint32_t>()});
  }
  addRing(wire.line, wire.closed);
  for (const auto& ring : wire.outline) addRing(ring, true);
}

void Recorder::fill(const Rings& rings, FillRule rule, Color color) {
  add(rule == FillRule::EvenOdd ? Recording::Kind::FillEvenOdd : Recording::Kind::FillNonzero, color);
  for (const auto& ring : rings)
    if (!ring.empty()) addRing(ring, true);
}

void Recorder::fillGradient(const Rings& rings, const Gradient& gradient) {
  add(Recording::Kind::Gradient, gradient.stops.front().color).more = indexOf(to_->gradients.size());
  to_->gradients.push_back(gradient);
  for (const auto& ring : rings)
    if (!ring.empty()) addRing(ring, true);
}

void Recorder::text(const geometry::TextRun& run, const Transform& frame, const Pen& pen) {
  add(Recording::Kind::Text, pen.color, pen.width).more = indexOf(to_->texts.size());
  to_->texts.push_back({run, frame});
  if (clips_ > 0) return;
  const Box box = runBox(run);
  for (const Point p :
       {Point{box.minX, box.minY}, Point{box.maxX, box.minY}, Point{box.maxX, box.maxY}, Point{box.minX, box.maxY}})
    box_.add(frame.plan({p.x, p.y, 0}));
}

void Recorder::point(Point at, const PointMark& mark, const Pen& pen) {
  add(Recording::Kind::Mark, pen.color, pen.width).more = indexOf(to_->marks.size());
  to_->marks.push_back(mark);
  addRing({at}, false);
  if (clips_ > 0) return;
  const double reach = mark.mode == 0 ? 0 : mark.size * 2;
  box_.add(Point{at.x - reach, at.y - reach});
  box_.add(Point{at.x + reach, at.y + reach});
  hasEndless_ = hasEndless_ || ((mark.mode & ~1) != 0 && mark.share > 0);  // as large as the view says
}

void Recorder::infinite(Point base, Point direction, bool bothWays, const LineStyle& style) {
  Recording::Item& item = add(Recording::Kind::Infinite, style.pen.color, style.pen.width);
  if (style.pattern != nullptr) {
    item.more = indexOf(to_->lines.size());
    to_->lines.push_back({kept(style.pattern), style.dashUnit, 0, {}});
  }
  ++item.ringCount;
  to_->rings.push_back({indexOf(to_->points.size()), 2, bothWays});
  to_->points.push_back(base);
  to_->points.push_back(direction);
  if (clips_ > 0) return;
  box_.add(base);
  hasEndless_ = true;
}

void Recorder::pattern(const std::vector<hatching::PatternLine>& families, const std::vector<curves::Polygon>& loops,
                       const Transform& plane, const Pen& pen) {
  add(Recording::Kind::Pattern, pen.color, pen.width).more = indexOf(to_->patterns.size());
  if (families_ == nullptr || *families_ != families)
    families_ = std::make_shared<const std::vector<hatching::PatternLine>>(families);
  to_->patterns.push_back({families_, loops, plane});
  if (clips_ > 0) return;
  for (const curves::Polygon& loop : loops)
    for (const Point p : loop) {
      const Point q = plane.plan({p.x, p.y, 0});
      if (isFinite(q)) box_.add(q);
    }
}

void Recorder::beginClip(const std::vector<Point>& ring) {
  add(Recording::Kind::BeginClip, {});
  addRing(ring, true);
  ++clips_;
}

void Recorder::endClip() {
  add(Recording::Kind::EndClip, {});
  --clips_;
}

void Recorder::setArea(const Box& area) {
  add(Recording::Kind::Area, {});
  if (area.isEmpty()) return;
  ++to_->items.back().ringCount;
  to_->rings.push_back({indexOf(to_->points.size()), 2, false});
  to_->points.push_back({area.minX, area.minY});
  to_->points.push_back({area.maxX, area.maxY});
}

}  // namespace host::picture
