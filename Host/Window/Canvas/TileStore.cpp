#include "Window/Canvas/TileStore.h"

#include <algorithm>
#include <cmath>

namespace host::window {
namespace {

constexpr std::size_t kMostTiles = 600;  // 256 KB each
constexpr std::size_t kOtherZooms = 3;   // stretched under what is missing
constexpr double kFarthestTile = 1e15;   // of an odd drawing looked at from next to it
constexpr int kMostTilesAcross = 64;     // of a canvas; more are no canvas

}  // namespace

void TileStore::setScene(std::shared_ptr<const Scene> scene, const std::vector<Box>* changed) {
  ++version_;
  const bool isOther = scene_ == nullptr || scene == nullptr || changed == nullptr;
  scene_ = std::move(scene);
  if (isOther) {
    tiles_.clear();
    recent_.clear();
    return;
  }
  if (!changed->empty()) makeStale(*changed);
}

/// What shows one of the parts is painted anew.
void TileStore::makeStale(const std::vector<Box>& changed) {
  ++version_;
  const double heaviest = scene_ != nullptr ? scene_->heaviestMm : 0;
  const Zoom shown = recent_.empty() ? Zoom{} : recent_.back();
  for (auto entry = tiles_.begin(); entry != tiles_.end();) {
    auto& [key, tile] = *entry;
    const double scale = key.zoom.pixelsPerUnit() * look_.devicePixelRatio;
    const double reach = (heaviest * 2 * look_.devicePixelRatio + 4) / scale;  // half of a pen at 96 dots an inch
    const double side = kTilePx / scale;
    const Box box{static_cast<double>(key.x) * side - reach, static_cast<double>(key.y) * side - reach,
                  static_cast<double>(key.x + 1) * side + reach, static_cast<double>(key.y + 1) * side + reach};
    const bool isChanged = std::ranges::any_of(changed, [&](const Box& part) { return part.intersects(box); });
    if (isChanged) tile.staleSince = version_;
    // Of other zooms there is no hurry to have a new one.
    entry = isChanged && !(key.zoom == shown) ? tiles_.erase(entry) : std::next(entry);
  }
}

void TileStore::setLook(const TileLook& look) {
  if (look == look_) return;
  const bool isSame = look.devicePixelRatio == look_.devicePixelRatio && look.isDark == look_.isDark;
  const bool isSelected = look.selected != look_.selected;
  look_ = look;
  if (!isSame) {
    ++version_;
    tiles_.clear();
    recent_.clear();
  } else if (isSelected) {
    makeStale({{-1e300, -1e300, 1e300, 1e300}});
  }
  // The canvas's height matters to few marks only: what there is stays until it is painted anew.
}

TileStore::Range TileStore::visible(const ViewFrame& frame) const {
  const double ratio = frame.devicePixelRatio;
  const QPointF origin = frame.originPx() * ratio;
  const auto tile = [](double px) {
    return static_cast<std::int64_t>(std::clamp(std::floor(px / kTilePx), -kFarthestTile, kFarthestTile));
  };
  Range range{tile(-origin.x()), tile(frame.size.width() * ratio - origin.x() - 1), tile(-origin.y()),
              tile(frame.size.height() * ratio - origin.y() - 1)};
  range.toX = std::min(range.toX, range.fromX + kMostTilesAcross);
  range.toY = std::min(range.toY, range.fromY + kMostTilesAcross);
  return range;
}

QRectF TileStore::place(const TileKey& key, const ViewFrame& frame) const {
  const double ratio = frame.devicePixelRatio;
  const double stretch = frame.scale() / key.zoom.pixelsPerUnit();
  const double side = kTilePx / ratio * stretch;
  const QPointF origin = frame.originPx();
  return {static_cast<double>(key.x) * side + origin.x(), static_cast<double>(key.y) * side + origin.y(), side, side};
}

void TileStore::paintOthers(QPainter& painter, const ViewFrame& frame) const {
  const QRectF canvas(QPointF(0, 0), frame.size);
  std::size_t painted = 0;
  std::vector<Zoom> zooms;
  for (auto zoom = recent_.rbegin(); zoom != recent_.rend() && painted < kOtherZooms; ++zoom) {
    if (*zoom == frame.zoom) continue;
    zooms.push_back(*zoom);
    ++painted;
  }
  std::ranges::sort(zooms, [](Zoom a, Zoom b) { return a.step < b.step; });  // the finest on top
  painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
  for (const Zoom zoom : zooms)
    for (const auto& [key, tile] : tiles_) {
      if (!(key.zoom == zoom) || tile.image.isNull()) continue;
      const QRectF target = place(key, frame);
      const QRectF shown = target & canvas;
      if (shown.width() < 0.01 || shown.height() < 0.01) continue;
      const double back = tile.image.width() / target.width();
      // Neighbours meet on whole pixels: no seams.
      const QRect aligned(
          QPoint(static_cast<int>(std::floor(shown.left())), static_cast<int>(std::floor(shown.top()))),
          QPoint(static_cast<int>(std::ceil(shown.right())) - 1, static_cast<int>(std::ceil(shown.bottom())) - 1));
      const QRectF source((aligned.left() - target.left()) * back, (aligned.top() - target.top()) * back,
                          aligned.width() * back, aligned.height() * back);
      painter.drawImage(QRectF(aligned), tile.image, source);
    }
}

bool TileStore::paint(QPainter& painter, const ViewFrame& frame) {
  if (recent_.empty() || !(recent_.back() == frame.zoom)) {
    std::erase(recent_, frame.zoom);
    recent_.push_back(frame.zoom);
  }
  if (scene_ == nullptr) return true;
  const Range range = visible(frame);
  dropOld(range);
  bool isSharp = true, isWhole = true;
  const auto each = [&](const auto& visit) {
    for (std::int64_t y = range.fromY; y <= range.toY; ++y)
      for (std::int64_t x = range.fromX; x <= range.toX; ++x) visit(TileKey{frame.zoom, x, y});
  };
  each([&](const TileKey& key) {
    const auto found = tiles_.find(key);
    if (found == tiles_.end() || found->second.image.isNull()) isWhole = isSharp = false;
    if (found != tiles_.end() && found->second.staleSince != 0) isSharp = false;
  });
  if (!isWhole) paintOthers(painter, frame);
  each([&](const TileKey& key) {
    const auto found = tiles_.find(key);
    if (found != tiles_.end() && !found->second.image.isNull())
      painter.drawImage(place(key, frame).topLeft(), found->second.image);
  });
  return isSharp;
}

std::vector<TileRenderer::Job> TileStore::missing(const ViewFrame& frame) const {
  if (scene_ == nullptr) return {};
  const Range range = visible(frame);
  const double middleX = static_cast<double>(range.fromX + range.toX) / 2;
  const double middleY = static_cast<double>(range.fromY + range.toY) / 2;
  std::vector<std::pair<double, TileRenderer::Job>> wanted;
  for (std::int64_t y = range.fromY - 1; y <= range.toY + 1; ++y)
    for (std::int64_t x = range.fromX - 1; x <= range.toX + 1; ++x) {
      const TileKey key{frame.zoom, x, y};
      const auto found = tiles_.find(key);
      if (found != tiles_.end() && !found->second.image.isNull() && found->second.staleSince == 0) continue;
      const bool isBorder = x < range.fromX || x > range.toX || y < range.fromY || y > range.toY;
      constexpr double kLater = 1e6;
      const double distance =
          std::hypot(static_cast<double>(x) - middleX, static_cast<double>(y) - middleY) + (isBorder ? kLater : 0);
      wanted.emplace_back(distance, TileRenderer::Job{key, scene_, look_, version_});
    }
  std::ranges::sort(wanted, [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<TileRenderer::Job> jobs;
  jobs.reserve(wanted.size());
  for (auto& [distance, job] : wanted) jobs.push_back(std::move(job));
  return jobs;
}

void TileStore::take(const TileRenderer::Job& job, QImage image) {
  if (scene_ == nullptr || !(job.look == look_)) return;
  const bool isOldScene = job.version < version_;
  Tile& tile = tiles_[job.key];
  if (isOldScene) {
    // Painted from a scene that has changed meanwhile: good only where that did not change since.
    if (tile.image.isNull() && tile.staleSince == 0) tile.staleSince = version_;
    if (!tile.image.isNull()) return;
  } else {
    tile.staleSince = 0;
  }
  tile.image = std::move(image);
}

void TileStore::dropOld(const Range& range) {
  while (tiles_.size() > kMostTiles && recent_.size() > 1) {
    std::erase_if(tiles_, [zoom = recent_.front()](const auto& entry) { return entry.first.zoom == zoom; });
    recent_.erase(recent_.begin());
  }
  if (tiles_.size() <= kMostTiles) return;
  constexpr std::int64_t kNear = 3;
  std::erase_if(tiles_, [&](const auto& entry) {
    const TileKey& key = entry.first;
    return key.x < range.fromX - kNear || key.x > range.toX + kNear || key.y < range.fromY - kNear ||
           key.y > range.toY + kNear;
  });
}

}  // namespace host::window
