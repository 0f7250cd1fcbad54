#include "Window/Canvas/Pointing.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_set>

namespace host::window {
namespace {

using database::DxfType;
using database::Slot;
using Kind = picture::Recording::Kind;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// How an entity lies to a point.
struct Touch {
  double lineDistance = kInfinity;
  Point nearest;                  // on the line
  bool isFilled = false;          // the point is inside its fill
  double areaAround = kInfinity;  // of its smallest closed line around the point
};

Point nearestOnSegment(Point p, Point a, Point b) {
  const Point d = b - a;
  const double square = dot(d, d);
  const double t = square > 0 ? std::clamp(dot(p - a, d) / square, 0.0, 1.0) : 0;
  return a + d * t;
}

/// Looks at the items of one entity from one point.
class Toucher {
 public:
  Toucher(Point at, double within) : at_(at), within_(within) {}

  Touch touch(SceneRef entity) {
    touch_ = {};
    isHatch_ = entity->slot->type == DxfType::Hatch;
    const picture::Recording& recording = entity.chunk->recording;
    int clips = 0;
    for (std::uint32_t i = 0; i < entity->itemCount; ++i) {
      const auto& item = recording.items[entity->firstItem + i];
      if (item.kind == Kind::BeginClip) ++clips;
      if (item.kind == Kind::EndClip) --clips;
      if (clips == 0) touchItem(recording, item);
    }
    return touch_;
  }

 private:
  void touchItem(const picture::Recording& recording, const picture::Recording::Item& item) {
    switch (item.kind) {
      case Kind::Wire:
        touchLine(recording, recording.rings[item.firstRing]);
        for (std::uint32_t r = 1; r < item.ringCount; ++r)
          if (isInside(recording, recording.rings[item.firstRing + r])) offer(0, at_);
        break;
      case Kind::FillEvenOdd:
      case Kind::FillNonzero:
      case Kind::Gradient: {
        bool isFilled = false;
        for (std::uint32_t r = 0; r < item.ringCount; ++r) {
          const auto& ring = recording.rings[item.firstRing + r];
          if (isInside(recording, ring)) isFilled = !isFilled;
          // The edge of a hatch is that of the outline under it; other filled shapes have no outline but their own.
          if (!isHatch_) touchSegments(recording, ring);
        }
        touch_.isFilled = touch_.isFilled || isFilled;
        break;
      }
      case Kind::Text: {
        const auto& text = recording.texts[item.more];
        const Box box = picture::runBox(text.run);
        ring_.clear();
        for (const Point p : {Point{box.minX, box.minY}, Point{box.maxX, box.minY}, Point{box.maxX, box.maxY},
                              Point{box.minX, box.maxY}})
          ring_.push_back(text.frame.plan({p.x, p.y, 0}));
        if (curves::isInsideRing(ring_, at_)) offer(0, at_);
        break;
      }
      case Kind::Mark:
        offer(curves::distance(at_, recording.points[recording.rings[item.firstRing].first]),
              recording.points[recording.rings[item.firstRing].first]);
        break;
      case Kind::Infinite: {
        const auto& ring = recording.rings[item.firstRing];
        const Point base = recording.points[ring.first], d = recording.points[ring.first + 1];
        double t = dot(at_ - base, d) / dot(d, d);
        if (!ring.closed) t = std::max(t, 0.0);  // a ray
        const Point on = base + d * t;
        offer(curves::distance(at_, on), on);
        break;
      }
      case Kind::Pattern: {
        const auto& pattern = recording.patterns[item.more];
        bool isFilled = false;
        for (const curves::Polygon& loop : pattern.loops) {
          ring_.clear();
          for (const Point p : loop) ring_.push_back(pattern.plane.plan({p.x, p.y, 0}));
          if (!ring_.empty() && curves::isInsideRing(ring_, at_)) isFilled = !isFilled;
        }
        touch_.isFilled = touch_.isFilled || isFilled;
        break;
      }
      default:
        break;
    }
  }

  void offer(double distance, Point on) {
    if (!(distance < touch_.lineDistance)) return;
    touch_.lineDistance = distance;
    touch_.nearest = on;
  }

  bool isInside(const picture::Recording& recording, const picture::DisplayRing& ring) {
    const Point* const points = recording.points.data() + ring.first;
    bool inside = false;
    for (std::uint32_t i = 0, j = ring.count - 1; i < ring.count; j = i++)
      if ((points[i].y > at_.y) != (points[j].y > at_.y) &&
          at_.x < points[i].x + (points[j].x - points[i].x) * ((at_.y - points[i].y) / (points[j].y - points[i].y)))
        inside = !inside;
    return inside;
  }

  void touchSegments(const picture::Recording& recording, const picture::DisplayRing& ring) {
    const Point* const points = recording.points.data() + ring.first;
    const auto segment = [&](Point a, Point b) {
      if (std::min(a.x, b.x) > at_.x + within_ || std::max(a.x, b.x) < at_.x - within_ ||
          std::min(a.y, b.y) > at_.y + within_ || std::max(a.y, b.y) < at_.y - within_)
        return;
      const Point on = nearestOnSegment(at_, a, b);
      offer(curves::distance(at_, on), on);
    };
    if (ring.count == 1) segment(points[0], points[0]);
    for (std::uint32_t i = 0; i + 1 < ring.count; ++i) segment(points[i], points[i + 1]);
    if (ring.closed && ring.count > 2) segment(points[ring.count - 1], points[0]);
  }

  void touchLine(const picture::Recording& recording, const picture::DisplayRing& ring) {
    touchSegments(recording, ring);
    const Point* const points = recording.points.data() + ring.first;
    const bool isClosed =
        ring.count > 2 && (ring.closed || curves::distance(points[0], points[ring.count - 1]) < kJoined);
    if (!isClosed || !isInside(recording, ring)) return;
    double area = 0;
    for (std::uint32_t i = 0, j = ring.count - 1; i < ring.count; j = i++)
      area += cross(points[j] - at_, points[i] - at_);
    touch_.areaAround = std::min(touch_.areaAround, std::abs(area) / 2);
  }

  static constexpr double kJoined = 1e-9;  // ends that coincide close a line

  Point at_;
  double within_;
  bool isHatch_ = false;
  Touch touch_;
  curves::Polygon ring_;
};

struct Candidate {
  SceneRef entity;
  Touch touch;
  std::uint64_t height = 0;
};

std::vector<Candidate> candidatesAt(const SceneKeeper& keeper, Point at, double aperture) {
  std::vector<Candidate> found;
  Toucher toucher(at, aperture);
  keeper.query({at.x - aperture, at.y - aperture, at.x + aperture, at.y + aperture}, [&](SceneRef entity) {
    if (!entity->isPickable) return;
    const Touch touch = toucher.touch(entity);
    if (touch.lineDistance <= aperture || touch.isFilled || touch.areaAround < kInfinity)
      found.push_back({entity, touch, keeper.heightOf(entity)});
  });
  return found;
}

bool sameBox(const Box& a, const Box& b) {
  const double slack = 1e-6 * (a.maxX - a.minX + a.maxY - a.minY);
  return std::abs(a.minX - b.minX) <= slack && std::abs(a.minY - b.minY) <= slack &&
         std::abs(a.maxX - b.maxX) <= slack && std::abs(a.maxY - b.maxY) <= slack;
}

}  // namespace

std::vector<Slot*> pointAt(const SceneKeeper& keeper, Point at, double aperture, PickFor what) {
  std::vector<Candidate> lines, fills, outlines;
  for (const Candidate& candidate : candidatesAt(keeper, at, aperture)) {
    if (candidate.touch.lineDistance <= aperture) lines.push_back(candidate);
    if (candidate.touch.isFilled) fills.push_back(candidate);
    if (candidate.touch.areaAround < kInfinity) outlines.push_back(candidate);
  }
  // Lines that lie upon each other differ by rounding only: the upper one comes first.
  const double step = aperture / 10;
  std::ranges::sort(lines, [step](const Candidate& a, const Candidate& b) {
    const double da = std::floor(a.touch.lineDistance / step), db = std::floor(b.touch.lineDistance / step);
    return da != db ? da < db : a.height > b.height;
  });
  std::ranges::sort(fills, [](const Candidate& a, const Candidate& b) { return a.height > b.height; });
  std::ranges::sort(outlines, [](const Candidate& a, const Candidate& b) {
    return a.touch.areaAround != b.touch.areaAround ? a.touch.areaAround < b.touch.areaAround : a.height > b.height;
  });

  std::vector<Slot*> order;
  const auto take = [&order](const Candidate& candidate) {
    if (std::ranges::find(order, candidate.entity->slot) == order.end()) order.push_back(candidate.entity->slot);
  };
  for (const Candidate& line : lines) take(line);
  if (fills.empty()) return order;
  if (!outlines.empty()) {
    const Box &upper = fills.front().entity->box, &around = outlines.front().entity->box;
    const bool isWithin = upper.minX >= around.minX && upper.minY >= around.minY && upper.maxX <= around.maxX &&
                          upper.maxY <= around.maxY && !sameBox(upper, around);
    if (what == PickFor::Rest && isWithin) take(fills.front());
    if (what != PickFor::One)
      for (const Candidate& fill : fills)
        if (sameBox(fill.entity->box, outlines.front().entity->box)) {
          take(fill);
          break;
        }
    take(outlines.front());
  }
  for (const Candidate& fill : fills) take(fill);
  for (const Candidate& outline : outlines) take(outline);
  return order;
}

std::vector<Slot*> outlinesAround(const SceneKeeper& keeper, Point at) {
  std::vector<Candidate> around = candidatesAt(keeper, at, 0);
  std::erase_if(around, [](const Candidate& c) { return !(c.touch.areaAround < kInfinity); });
  std::ranges::sort(around,
                    [](const Candidate& a, const Candidate& b) { return a.touch.areaAround < b.touch.areaAround; });
  std::vector<Slot*> slots;
  slots.reserve(around.size());
  for (const Candidate& candidate : around) slots.push_back(candidate.entity->slot);
  return slots;
}

double distanceToLines(SceneRef entity, Point at, double within, Point* nearest) {
  const Touch touch = Toucher(at, within).touch(entity);
  if (nearest != nullptr) *nearest = touch.nearest;
  return touch.lineDistance;
}

std::vector<Slot*> inWindow(const SceneKeeper& keeper, Point corner, Point opposite, geometry::Window kind) {
  Box plan;
  plan.add(corner);
  plan.add(opposite);
  const Box window = keeper.scene()->toScene(plan);
  std::vector<Slot*> found;
  keeper.query(window, [&](SceneRef entity) {
    if (!entity->isPickable) return;
    const Box& box = entity->box;
    const bool isBoxInside =
        box.minX > window.minX && box.minY > window.minY && box.maxX < window.maxX && box.maxY < window.maxY;
    bool isTaken = false;
    switch (entity->slot->type) {
      case DxfType::Line:
      case DxfType::LwPolyline:
      case DxfType::Circle:
      case DxfType::Arc:
      case DxfType::Hatch:
      case DxfType::Solid:
        isTaken = isBoxInside || ((kind == geometry::Window::Crossing || entity->isEndless) &&
                                  geometry::isInWindow(*entity->slot, {corner, opposite}, kind));
        break;
      default: {
        // The host measures texts by mean widths of letters: what lies well inside does so by any measure.
        const double slackX = box.maxX - box.minX, slackY = box.maxY - box.minY, slack = std::max(slackX, slackY);
        const bool isWellInside = !entity->isEndless && box.minX - slack > window.minX &&
                                  box.minY - slack > window.minY && box.maxX + slack < window.maxX &&
                                  box.maxY + slack < window.maxY;
        isTaken = isWellInside || geometry::isInWindow(*entity->slot, {corner, opposite}, kind);
        break;
      }
    }
    if (isTaken) found.push_back(entity->slot);
  });
  return found;
}

std::vector<Slot*> withGroups(Slot* entity) {
  // Members carry their group's handle among their reactors.
  std::vector<Slot*> members{entity};
  const database::DrawingDatabase& drawing = entity->database();
  std::vector<const Slot*> groups;
  bool isInReactors = false;
  database::TagCursor tags = entity->tags();
  for (database::Tag tag; tags.next(tag);) {
    if (tag.code == 102) {
      if (isInReactors) break;
      isInReactors = tag.trimmed() == "{ACAD_REACTORS";
    } else if (tag.code == 100) {
      break;
    } else if (isInReactors && tag.code == 330) {
      const Slot* const group = drawing.findHandle(tag.handle());
      if (group != nullptr && group->type == DxfType::Group && !group->isErased()) groups.push_back(group);
    }
  }
  std::unordered_set<const Slot*> known{entity};
  for (const Slot* group : groups) {
    std::vector<Slot*> others;
    bool isSelectable = false, isMember = false;
    database::TagCursor entries = group->tags();
    for (database::Tag tag; entries.next(tag);) {
      if (tag.code == 71) isSelectable = tag.integer() != 0;
      if (tag.code != 340) continue;
      Slot* const member = drawing.findHandle(tag.handle());
      isMember = isMember || member == entity;
      if (member != nullptr && member->owner == entity->owner && !member->isErased()) others.push_back(member);
    }
    if (!isSelectable || !isMember) continue;
    for (Slot* member : others)
      if (known.insert(member).second) members.push_back(member);
  }
  return members;
}

std::vector<Slot*> withGroups(const std::vector<Slot*>& entities) {
  std::vector<Slot*> all;
  std::unordered_set<const Slot*> known;
  for (Slot* entity : entities) {
    if (known.contains(entity)) continue;
    for (Slot* member : withGroups(entity))
      if (known.insert(member).second) all.push_back(member);
  }
  return all;
}

}  // namespace host::window
