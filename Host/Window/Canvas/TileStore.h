// The tiles that a canvas has, and those that it wants. Lives on the window's thread.
#pragma once

#include <QImage>
#include <QPainter>
#include <unordered_map>
#include <vector>

#include "Window/Canvas/ViewFrame.h"

namespace host::window {

class TileStore {
 public:
  /// Another scene: tiles that show one of the parts (scene coordinates) are painted anew; nothing given: all.
  void setScene(std::shared_ptr<const Scene> scene, const std::vector<Box>* changed);
  void setLook(const TileLook& look);

  /// Paints what there is: sharp tiles, elsewhere those of other zooms stretched. True when all of it is sharp.
  bool paint(QPainter& painter, const ViewFrame& frame);
  /// What is missing for the frame, nearest to its middle first, and a border around it.
  std::vector<TileRenderer::Job> missing(const ViewFrame& frame) const;
  void take(const TileRenderer::Job& job, QImage image);

 private:
  struct Tile {
    QImage image;
    std::uint64_t staleSince = 0;  // the version that made it so; 0: it is as it should be
  };
  struct HashOf {
    std::size_t operator()(const TileKey& key) const {
      const auto mixed = static_cast<std::uint64_t>(key.x) * 0x9E3779B97F4A7C15U ^
                         static_cast<std::uint64_t>(key.y) * 0xC2B2AE3D27D4EB4FU ^
                         static_cast<std::uint64_t>(key.zoom.step) * 0x165667B19E3779F9U;
      return static_cast<std::size_t>(mixed ^ mixed >> 31);
    }
  };
  struct Range {
    std::int64_t fromX, toX, fromY, toY;
  };
  Range visible(const ViewFrame& frame) const;
  void makeStale(const std::vector<Box>& changed);
  QRectF place(const TileKey& key, const ViewFrame& frame) const;
  void paintOthers(QPainter& painter, const ViewFrame& frame) const;
  void dropOld(const Range& range);

  std::shared_ptr<const Scene> scene_;
  TileLook look_;
  std::unordered_map<TileKey, Tile, HashOf> tiles_;
  std::vector<Zoom> recent_;  // zooms shown, last one last
  std::uint64_t version_ = 1;
};

}  // namespace host::window
