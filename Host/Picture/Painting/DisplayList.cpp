#include "Picture/DisplayList.h"

#include <algorithm>
#include <cmath>

#include "Picture/Painting/Clipping.h"

namespace host::picture {

void BoundsCanvas::add(Point p) {
  if (!clip_.isEmpty()) p = {std::clamp(p.x, clip_.minX, clip_.maxX), std::clamp(p.y, clip_.minY, clip_.maxY)};
  box_.add(p);
}
void BoundsCanvas::stroke(const std::vector<Point>& line, bool, const Pen&) {
  for (const Point p : line) add(p);
}
void BoundsCanvas::fill(const std::vector<std::vector<Point>>& rings, FillRule, Color) {
  for (const auto& ring : rings)
    for (const Point p : ring) add(p);
}
void BoundsCanvas::setClip(const Box& clip) { clip_ = clip; }

void DisplayListCanvas::addItem(const DisplayItem& item) {
  if (origin_ != lastOrigin_) list_.notes.runs.push_back({list_.items.size(), origin_});
  lastOrigin_ = origin_;
  list_.items.push_back(item);
}

void DisplayListCanvas::addRing(const std::vector<Point>& points, bool closed) {
  list_.rings.push_back(
      {static_cast<std::uint32_t>(list_.points.size()), static_cast<std::uint32_t>(points.size()), closed});
  list_.points.insert(list_.points.end(), points.begin(), points.end());
  ++list_.items.back().ringCount;
}

void DisplayListCanvas::beginStroke(const Pen& pen) {
  const ItemKind kind = pen.flatEnds ? ItemKind::FlatStroke : ItemKind::Stroke;
  // Lines of one pen in a row become one item; not when overlaps of a transparent pen would show.
  if (!list_.items.empty() && origin_ == lastOrigin_) {
    const DisplayItem& last = list_.items.back();
    if (last.kind == kind && last.color == pen.color && last.width == pen.width && pen.color.alpha == 255) return;
  }
  addItem({kind, pen.color, pen.width, static_cast<std::uint32_t>(list_.rings.size()), 0});
}

void DisplayListCanvas::stroke(const std::vector<Point>& line, bool closed, const Pen& pen) {
  if (line.empty()) return;
  Box clip = clip_;
  const double reach = pen.width / 2 + 1;
  clip = {clip.minX - reach, clip.minY - reach, clip.maxX + reach, clip.maxY + reach};
  Box box;
  for (const Point p : line) box.add(p);
  if (!box.intersects(clip)) return;
  if (clip.contains({box.minX, box.minY}) && clip.contains({box.maxX, box.maxY})) {
    beginStroke(pen);
    addRing(line, closed);
    return;
  }
  isTextCut_ = true;
  // Pieces inside, each as one open line.
  scratch_.clear();
  const auto finish = [&] {
    if (scratch_.size() > 1) {
      beginStroke(pen);
      addRing(scratch_, false);
    }
    scratch_.clear();
  };
  const std::size_t pieces = line.size() - (closed ? 0 : 1);
  for (std::size_t i = 0; i < pieces; ++i) {
    Point a = line[i], b = line[(i + 1) % line.size()];
    const Point end = b;
    if (!clipSegment(clip, a, b)) {
      finish();
      continue;
    }
    if (scratch_.empty() || scratch_.back().x != a.x || scratch_.back().y != a.y) {
      finish();
      scratch_.push_back(a);
    }
    scratch_.push_back(b);
    if (b.x != end.x || b.y != end.y) finish();
  }
  finish();
}

void DisplayListCanvas::fill(const std::vector<std::vector<Point>>& rings, FillRule rule, Color color) {
  constexpr double kEdge = 1;  // beyond the clip, so that antialiasing does not fade at the border
  const Box clip{clip_.minX - kEdge, clip_.minY - kEdge, clip_.maxX + kEdge, clip_.maxY + kEdge};
  bool isBegun = false;
  for (const auto& ring : rings) {
    if (ring.size() < 3) continue;
    Box box;
    for (const Point p : ring) box.add(p);
    if (!box.intersects(clip)) {
      isTextCut_ = true;
      continue;
    }
    const std::vector<Point>* points = &ring;
    if (!clip.contains({box.minX, box.minY}) || !clip.contains({box.maxX, box.maxY})) {
      isTextCut_ = true;
      clipPolygon(clip, ring, scratch_, scratch2_);
      if (scratch_.size() < 3) continue;
      points = &scratch_;
    }
    if (!isBegun) {
      const ItemKind kind = rule == FillRule::EvenOdd ? ItemKind::FillEvenOdd : ItemKind::FillNonzero;
      addItem({kind, color, 0, static_cast<std::uint32_t>(list_.rings.size()), 0});
      isBegun = true;
    }
    addRing(*points, true);
  }
}

void DisplayListCanvas::beginClip(const std::vector<Point>& ring) {
  addItem({ItemKind::BeginClip, {}, 0, static_cast<std::uint32_t>(list_.rings.size()), 0});
  addRing(ring, true);
  if (keepsTexts_) clips_.push_back(ring);
}

void DisplayListCanvas::endClip() {
  if (keepsTexts_) clips_.pop_back();
  if (list_.items.back().kind == ItemKind::BeginClip) {
    list_.items.pop_back();  // nothing shows inside
    return;
  }
  addItem({ItemKind::EndClip, {}, 0, static_cast<std::uint32_t>(list_.rings.size()), 0});
}

void DisplayListCanvas::beginText() {
  textPoints_ = list_.points.size();
  isTextCut_ = false;
}

void DisplayListCanvas::endText(const Lettering& lettering) {
  if (!keepsTexts_) return;
  // Text of which no letter shows would be found where nothing is seen.
  const auto shows = [this](Point p) {
    return std::ranges::all_of(clips_, [p](const curves::Polygon& ring) { return curves::isInsideRing(ring, p); });
  };
  if (std::none_of(list_.points.begin() + static_cast<std::ptrdiff_t>(textPoints_), list_.points.end(), shows)) return;
  DisplayText text;
  text.firstLetter = static_cast<std::uint32_t>(list_.letters.size());
  text.letterCount = static_cast<std::uint32_t>(lettering.text.size());
  list_.letters += lettering.text;
  text.item = static_cast<std::uint32_t>(list_.items.size() - 1);
  text.isTheItem = !lettering.hasStrokes && !isTextCut_;
  text.face = lettering.face;
  text.origin = lettering.origin;
  text.along = lettering.along;
  text.up = lettering.up;
  list_.texts.push_back(text);
}

void DisplayListCanvas::fillGradient(const std::vector<std::vector<Point>>& rings, FillRule rule,
                                     const Gradient& gradient) {
  const std::size_t before = list_.items.size();
  fill(rings, rule, gradient.stops.front().color);
  if (list_.items.size() == before) return;
  list_.items.back().gradient = static_cast<std::uint32_t>(list_.gradients.size());
  list_.gradients.push_back(gradient);
}

void DisplayListCanvas::fillImage(const std::vector<std::vector<Point>>& rings, const Texture& texture,
                                  std::uint8_t alpha) {
  const std::size_t before = list_.items.size();
  fill(rings, FillRule::EvenOdd, {255, 255, 255, alpha});
  if (list_.items.size() == before) return;
  list_.items.back().texture = static_cast<std::uint32_t>(list_.textures.size());
  list_.textures.push_back(texture);
}

}  // namespace host::picture
