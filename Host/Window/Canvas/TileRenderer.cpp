#include "Window/Canvas/TileRenderer.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "Picture/Details.h"
#include "Picture/QtPainting.h"
#include "Window/Canvas/Marks.h"

namespace host::window {
namespace {

constexpr double kStepsPerE = 2000;
constexpr double kPixelsPerMm = 96 / 25.4;  // as pictures have them
constexpr double kBarsBelowPx = 1.3;
constexpr double kDeviationPx = 0.1;  // of letters; curves come with the scene

/// What is smaller shows as a speck: of a town seen whole nobody can tell more, and it is painted many times as fast.
constexpr double kSpeckPx = 1.5;

QColor qColor(picture::Color c) { return {c.red, c.green, c.blue, c.alpha}; }

/// Whole pixels that the box touches.
picture::Rings speckOf(const Box& box, double scale, Point shift) {
  const double left = std::floor(box.minX * scale + shift.x), top = std::floor(box.minY * scale + shift.y);
  const double right = std::max(left + 1, std::floor(box.maxX * scale + shift.x));
  const double bottom = std::max(top + 1, std::floor(box.maxY * scale + shift.y));
  return {{{left, top}, {right, top}, {right, bottom}, {left, bottom}}};
}

}  // namespace

Zoom Zoom::nearest(double pixelsPerUnit) {
  constexpr double kFarthest = 60;  // e^60: beyond what coordinates can tell
  return {static_cast<int>(std::lround(std::clamp(std::log(pixelsPerUnit), -kFarthest, kFarthest) * kStepsPerE))};
}

double Zoom::pixelsPerUnit() const { return std::exp(step / kStepsPerE); }

GroundColors groundColors(bool isDark) {
  if (isDark) return {{0x1E, 0x22, 0x27, 255}, {255, 255, 255, 255}};
  return {{255, 255, 255, 255}, {0, 0, 0, 255}};
}

QImage paintTile(const Scene& scene, const TileKey& key, const TileLook& look,
                 const std::function<bool()>& isUnwanted) {
  const double ratio = look.devicePixelRatio;
  const double scale = key.zoom.pixelsPerUnit() * ratio;
  const Box area{0, 0, kTilePx, kTilePx};
  const Point shift{-static_cast<double>(key.x) * kTilePx, -static_cast<double>(key.y) * kTilePx};

  picture::View view;
  view.pixelsPerMm = kPixelsPerMm * ratio;
  view.deviation = kDeviationPx;
  view.thinnestLine = ratio;
  view.barsBelow = kBarsBelowPx;
  view.area = area;
  thread_local picture::GlyphSource glyphs;  // keeps its letters from tile to tile
  picture::DisplayListCanvas canvas;
  picture::PaintedDetails details(view, glyphs, canvas);
  Box whole = area;
  if (!scene.extents.isEmpty()) {
    whole.add(Point{scene.extents.minX * scale + shift.x, scene.extents.minY * scale + shift.y});
    whole.add(Point{scene.extents.maxX * scale + shift.x, scene.extents.maxY * scale + shift.y});
  }
  details.setWhole(whole, look.canvasHeightPx * ratio);

  const GroundColors colors = groundColors(look.isDark);
  picture::Player player({scale, shift, view.pixelsPerMm, view.thinnestLine, area, colors.ink, colors.ground}, details);
  const double reach = (scene.heaviestMm * view.pixelsPerMm / 2 + 3 * ratio) / scale;
  const Box seen{-shift.x / scale - reach, -shift.y / scale - reach, (kTilePx - shift.x) / scale + reach,
                 (kTilePx - shift.y) / scale + reach};
  const double speck = kSpeckPx * ratio / scale;
  for (const auto& chunk : scene.chunks) {
    if (isUnwanted && isUnwanted()) return {};
    if (!chunk->hasEndless && !chunk->box.intersects(seen)) continue;
    for (const SceneEntity& entity : chunk->entities) {
      if (!entity.isEndless && !entity.box.intersects(seen)) continue;
      if (!entity.isEndless && std::max(entity.box.maxX - entity.box.minX, entity.box.maxY - entity.box.minY) < speck)
        canvas.fill(speckOf(entity.box, scale, shift), picture::FillRule::EvenOdd,
                    player.colorOf(chunk->recording.items[entity.firstItem].color));
      else
        player.play(chunk->recording, entity.firstItem, entity.itemCount);
    }
  }

  QImage image(kTilePx, kTilePx, QImage::Format_RGB32);
  if (image.isNull()) return image;
  image.fill(qColor(colors.ground));
  {
    QPainter painter(&image);
    picture::paintList(painter, canvas.take(), true);
  }
  image.setDevicePixelRatio(ratio);
  if (look.selected == nullptr) return image;
  std::vector<SceneRef> selected;
  for (const auto& chunk : scene.chunks) {
    if (!chunk->hasEndless && !chunk->box.intersects(seen)) continue;
    for (std::uint32_t i = 0; i < chunk->entities.size(); ++i) {
      const SceneEntity& entity = chunk->entities[i];
      if ((entity.isEndless || entity.box.intersects(seen)) && look.selected->contains(entity.slot))
        selected.push_back({chunk.get(), i});
    }
  }
  if (isUnwanted && isUnwanted()) return {};
  ViewFrame frame;
  frame.zoom = key.zoom;
  frame.devicePixelRatio = ratio;
  frame.size = QSizeF(kTilePx / ratio, kTilePx / ratio);
  frame.centre = {(kTilePx / 2.0 - shift.x) / scale, (kTilePx / 2.0 - shift.y) / scale};
  QPainter painter(&image);
  MarkPainter(painter, frame, look.isDark).entities(selected, Mark::Selected, 1, look.selected->size());
  return image;
}

TileRenderer::TileRenderer(std::function<void(const Job&, QImage)> done) : done_(std::move(done)) {
  // One processor is left to the window.
  const unsigned count = std::clamp(std::thread::hardware_concurrency(), 2U, 5U) - 1;
  for (unsigned i = 0; i < count; ++i) threads_.emplace_back([this] { work(); });
}

TileRenderer::~TileRenderer() {
  {
    const std::lock_guard lock(mutex_);
    isStopping_ = true;
    wanted_.clear();
    for (const Running& running : running_) *running.isUnwanted = true;
  }
  wake_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void TileRenderer::request(std::vector<Job> jobs) {
  {
    const std::lock_guard lock(mutex_);
    for (const Running& running : running_) {
      const auto same = std::ranges::find_if(
          jobs, [&](const Job& job) { return job.key == running.key && job.version == running.version; });
      if (same == jobs.end())
        *running.isUnwanted = true;
      else if (!*running.isUnwanted)
        jobs.erase(same);
    }
    wanted_ = std::move(jobs);
    std::ranges::reverse(wanted_);
  }
  wake_.notify_all();
}

bool TileRenderer::isIdle() const {
  const std::lock_guard lock(mutex_);
  return wanted_.empty() && running_.empty();
}

void TileRenderer::work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    wake_.wait(lock, [this] { return isStopping_ || !wanted_.empty(); });
    if (isStopping_) return;
    const Job job = std::move(wanted_.back());
    wanted_.pop_back();
    const auto isUnwanted = std::make_shared<std::atomic<bool>>(false);
    running_.push_back({job.key, job.version, isUnwanted});
    lock.unlock();
    QImage image;
    try {
      image = paintTile(*job.scene, job.key, job.look, [&] { return isUnwanted->load(); });
    } catch (const std::bad_alloc&) {
      image = {};  // the place keeps its stretched image; the next request tries again
    }
    if (!image.isNull() && !*isUnwanted) done_(job, std::move(image));
    lock.lock();
    std::erase_if(running_, [&](const Running& running) { return running.isUnwanted == isUnwanted; });
  }
}

}  // namespace host::window
