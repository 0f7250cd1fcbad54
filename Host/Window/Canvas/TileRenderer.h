// Pictures of parts of a scene, painted on threads of their own.
//
// Tiles stand on a grid whose corner is the scene's origin, one grid for each zoom. Nothing here touches the drawing: a
// scene never changes, and it lives as long as somebody paints from it.
#pragma once

#include <QImage>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_set>
#include <vector>

#include "Window/Canvas/Scene.h"

namespace host::window {

/// A zoom: steps of a two-thousandth of the natural logarithm of pixels a unit, so that it can be met again exactly.
struct Zoom {
  int step = 0;
  static Zoom nearest(double pixelsPerUnit);
  double pixelsPerUnit() const;  // logical ones
  bool operator==(const Zoom&) const = default;
};

constexpr int kTilePx = 256;  // device pixels

struct TileKey {
  Zoom zoom;
  std::int64_t x = 0, y = 0;  // columns and rows, y down
  bool operator==(const TileKey&) const = default;
};

/// What tiles look like apart from the scene.
struct TileLook {
  double devicePixelRatio = 1;
  bool isDark = false;
  double canvasHeightPx = 0;  // logical; of which some marks of points are a share
  /// Selected entities, when they are too many to be drawn anew with every frame; null: none.
  std::shared_ptr<const std::unordered_set<const database::Slot*>> selected;
  bool operator==(const TileLook&) const = default;
};

struct GroundColors {
  picture::Color ground, ink;
};
GroundColors groundColors(bool isDark);

/// One tile; a null image when `isUnwanted` says so meanwhile.
QImage paintTile(const Scene& scene, const TileKey& key, const TileLook& look,
                 const std::function<bool()>& isUnwanted = {});

class TileRenderer {
 public:
  struct Job {
    TileKey key;
    std::shared_ptr<const Scene> scene;
    TileLook look;
    std::uint64_t version = 0;  // handed back with the tile
  };
  /// `done` is called on one of the threads, for each tile that was not taken back.
  explicit TileRenderer(std::function<void(const Job&, QImage)> done);
  /// Waits for the tiles being painted, which stop soon.
  ~TileRenderer();
  TileRenderer(const TileRenderer&) = delete;
  TileRenderer& operator=(const TileRenderer&) = delete;

  /// What is wanted from now on, first ones first; what was wanted before and is not among it is taken back.
  void request(std::vector<Job> jobs);
  /// Whether nothing is wanted and nothing is being painted.
  bool isIdle() const;

 private:
  void work();

  std::function<void(const Job&, QImage)> done_;
  mutable std::mutex mutex_;
  std::condition_variable wake_;
  std::vector<Job> wanted_;  // last first
  struct Running {
    TileKey key;
    std::uint64_t version = 0;
    std::shared_ptr<std::atomic<bool>> isUnwanted;
  };
  std::vector<Running> running_;
  bool isStopping_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace host::window
