#include "Geometry/EntityPaths.h"

#include <algorithm>
#include <unordered_map>

#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"
#include "Geometry/EntityShapes.h"
#include "Geometry/HatchArea.h"
#include "Geometry/Layers.h"
#include "Geometry/MultiLeaders.h"
#include "Geometry/References.h"
#include "Geometry/TextLayout.h"

namespace host::geometry {
namespace {

using curves::Chain;
using database::DxfType;
using database::kLargestCoordinate;
using database::Slot;

/// Nested arrays can ask for more copies than any machine holds; what comes after this many entities is left out.
constexpr std::size_t kMostEntities = 1'000'000;

enum class Cells { All, Corners };  // of arrays: the corner cells bound the whole array

class PathCollector {
 public:
  PathCollector(double deviation, Cells cells, LayerStates* layers)
      : deviation_(deviation), cells_(cells), layers_(layers) {}

  /// `inherited` is the layer that content on layer "0" takes on.
  void collect(const Slot& entity, const Transform& placement, std::uint32_t inheritedLayer) {
    if (++entities_ > kMostEntities) return;
    const double scale = placement.planScale();
    const double deviation = deviation_ > 0 && scale > 0 ? deviation_ / scale : 0;
    if (isReference(entity)) {
      collectReference(entity, placement, inheritedLayer);
    } else if (entity.type == DxfType::Hatch) {
      collectHatch(entity, placement, deviation);
    } else if (entity.type == DxfType::MultiLeader) {
      const MultiLeaderShape leader = readMultiLeader(entity, deviation, meanTextWidth);
      for (const Wire& wire : leader.wires) addWire(wire, placement);
      if (leader.text) addText(*leader.text, placement);
    } else if (const auto text = layoutText(entity, meanTextWidth)) {
      addText(*text, placement);
    } else {
      const EntityShape shape = readShape(entity, deviation);
      for (const Wire& wire : shape.wires) addWire(wire, placement);
      for (const AcGePoint3d& p : shape.points) addChain({p}, false, false, 0, placement);
      for (const InfiniteLine& line : shape.infinite) addInfinite(line, placement);
      if (shape.image) addChain(shape.image->ring, true, shape.image->isWipeout, ++area_, placement);
    }
  }

  std::vector<Path> take() { return std::move(paths_); }
  std::size_t entities() const { return entities_; }

 private:
  void collectReference(const Slot& entity, const Transform& placement, std::uint32_t inheritedLayer) {
    const std::uint32_t layer = effectiveLayer(entity, inheritedLayer);
    for (const Slot* sub = entity.firstSub(); sub != nullptr; sub = sub->nextSub)
      if (sub->type == DxfType::Attrib && !sub->isErased() && !isInvisibleAttribute(*sub) && isShown(*sub, layer))
        collect(*sub, placement, layer);
    const auto reference = readReference(entity);
    if (!reference || !chain_.enter(reference->block)) return;
    const std::int64_t columnStep = cells_ == Cells::Corners ? std::max<std::int64_t>(reference->columns - 1, 1) : 1;
    const std::int64_t rowStep = cells_ == Cells::Corners ? std::max<std::int64_t>(reference->rows - 1, 1) : 1;
    for (std::int64_t row = 0; row < reference->rows && entities_ <= kMostEntities; row += rowStep)
      for (std::int64_t column = 0; column < reference->columns && entities_ <= kMostEntities; column += columnStep) {
        ++entities_;  // empty cells count, too
        const Transform cell = placement.after(reference->cell(column, row));
        for (const Slot* inner : reference->block->entities)
          if (isDrawnInReference(*inner) && isShown(*inner, layer)) collect(*inner, cell, layer);
      }
    chain_.leave();
  }

  std::uint32_t effectiveLayer(const Slot& slot, std::uint32_t inheritedLayer) {
    if (layers_ == nullptr || inheritedLayer == 0) return slot.layer;
    return layers_->at(slot.layer).name == L"0" ? inheritedLayer : slot.layer;
  }

  bool isShown(const Slot& slot, std::uint32_t inheritedLayer) {
    if (layers_ == nullptr) return true;
    const LayerState& state = layers_->at(effectiveLayer(slot, inheritedLayer));
    // A reference on a layer that is off still shows what lies on other layers.
    if (state.frozen || (state.off && slot.type != DxfType::Insert)) return false;
    return !database::entityProperties(slot).invisible;
  }

  void addChain(const Chain& chain, bool closed, bool filled, std::uint32_t area, const Transform& placement) {
    Path path{{}, closed, filled, area};
    path.points.reserve(chain.size());
    for (const AcGePoint3d& p : chain) {
      path.points.push_back(placement.plan(p));
      const Point& q = path.points.back();
      if (!(std::abs(q.x) <= kLargestCoordinate && std::abs(q.y) <= kLargestCoordinate)) return;
    }
    if (!path.points.empty()) paths_.push_back(std::move(path));
  }

  void addWire(const Wire& wire, const Transform& placement) {
    addChain(wire.points, wire.closed, wire.filled, wire.filled ? ++area_ : 0, placement);
    if (wire.outline.empty()) return;
    ++area_;
    for (const Chain& ring : wire.outline) addChain(ring, true, true, area_, placement);
  }

  void addText(const TextBlock& text, const Transform& placement) {
    if (text.box.isEmpty()) return;
    const Box& b = text.box;
    const Transform frame = placement.after(text.frame);
    addChain({{b.minX, b.minY, 0}, {b.maxX, b.minY, 0}, {b.maxX, b.maxY, 0}, {b.minX, b.maxY, 0}}, true, true, ++area_,
             frame);
  }

  void addHatchLoops(const std::vector<curves::Polygon>& loops, bool filled, const Transform& plane) {
    ++area_;
    for (const curves::Polygon& loop : loops) {
      Chain chain;
      for (const Point p : loop) chain.push_back({p.x, p.y, 0});
      addChain(chain, true, filled, filled ? area_ : 0, plane);
    }
  }

  void collectHatch(const Slot& entity, const Transform& placement, double deviation) {
    const auto hatch = readHatch(entity, deviation);
    const database::ObjectAxes axes(hatch.normal);
    const Transform plane = placement.after({axes.ax, axes.ay, axes.az, AcGePoint3d{} + axes.az * hatch.elevation});
    if (hatch.solid || hatch.gradient)
      addHatchLoops(filledLoops(hatch), true, plane);
    else
      addHatchLoops(hatch.loops, false, plane);
  }

  void addInfinite(const InfiniteLine& line, const Transform& placement) {
    // Long enough to cross any plan, short enough to keep its direction in doubles.
    constexpr double kReach = 1e8;
    Chain chain{line.base, line.base + line.direction * kReach};
    if (line.bothWays) chain.insert(chain.begin(), line.base - line.direction * kReach);
    if (cells_ == Cells::Corners) chain = {line.base};
    addChain(chain, false, false, 0, placement);
  }

  double deviation_;
  Cells cells_;
  LayerStates* layers_;
  std::vector<Path> paths_;
  ReferenceChain chain_;
  std::uint32_t area_ = 0;
  std::size_t entities_ = 0;
};

Box boxOf(const std::vector<Path>& paths) {
  Box box;
  for (const Path& path : paths)
    for (const Point p : path.points) box.add(p);
  return box;
}

}  // namespace

std::vector<Path> entityPaths(const Slot& entity, double deviation) {
  PathCollector collector(deviation, Cells::All, nullptr);
  collector.collect(entity, {}, 0);
  return collector.take();
}

Box entityExtents(const Slot& entity) {
  PathCollector collector(0, Cells::Corners, nullptr);
  collector.collect(entity, {}, 0);
  return boxOf(collector.take());
}

Box blockExtents(const database::DrawingDatabase& db, const database::BlockContents& block) {
  LayerStates layers(db);
  Box box;
  std::size_t entities = 0;
  for (const Slot* slot : block.entities) {
    if (slot->isErased() || database::entityProperties(*slot).invisible) continue;
    const LayerState& layer = layers.at(slot->layer);
    if (layer.frozen || (layer.off && slot->type != DxfType::Insert)) continue;
    PathCollector collector(0, Cells::Corners, &layers);
    collector.collect(*slot, {}, 0);
    box.add(boxOf(collector.take()));
    entities += collector.entities();
    if (entities > kMostEntities) break;
  }
  return box;
}

}  // namespace host::geometry
