// Boxes by place: what lies near a point or in a window, without looking at everything.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <unordered_map>
#include <vector>

#include "Curves/Plane.h"

namespace host::window {

/// A grid for each power of two; a box stands in one cell of the grid whose cells are some times larger than itself,
/// that of its lower left corner, so entering and removing cost the same however many there are.
template <class Value>
class BoxIndex {
 public:
  using Box = curves::Box;

  /// `finest`: boxes smaller than this share a grid, drawing units.
  explicit BoxIndex(double finest = 1e-3) : finestLevel_(levelOf(finest)) {}

  /// An empty one with the same grids.
  BoxIndex withoutBoxes() const {
    BoxIndex other;
    other.finestLevel_ = finestLevel_;
    return other;
  }

  void insert(const Box& box, const Value& value) {
    if (!isUsable(box)) return;
    const int level = levelOf(box);
    levels_[level][cellOf(level, box.minX, box.minY)].push_back({box, value});
    ++count_;
  }
  void remove(const Box& box, const Value& value) {
    if (!isUsable(box)) return;
    const int level = levelOf(box);
    const auto grid = levels_.find(level);
    if (grid == levels_.end()) return;
    const auto cell = grid->second.find(cellOf(level, box.minX, box.minY));
    if (cell == grid->second.end()) return;
    for (Entry& entry : cell->second)
      if (entry.value == value) {
        entry = cell->second.back();
        cell->second.pop_back();
        --count_;
        break;
      }
    if (cell->second.empty()) grid->second.erase(cell);
  }
  /// Calls visit(value, box) for each box that shares a point with the given one.
  template <class Visit>
  void query(const Box& box, const Visit& visit) const {
    if (!isUsable(box)) return;
    for (const auto& [level, grid] : levels_) {
      const double size = std::ldexp(1.0, level);
      const double fromX = std::floor(box.minX / size) - 1, toX = std::floor(box.maxX / size);
      const double fromY = std::floor(box.minY / size) - 1, toY = std::floor(box.maxY / size);
      // Cells so far away cannot be counted one by one.
      const bool isFar = std::max({-fromX, toX, -fromY, toY}) >= kFarthestCell ||
                         std::min({-fromX, toX, -fromY, toY}) <= -kFarthestCell;
      if (isFar || (toX - fromX + 1) * (toY - fromY + 1) >= static_cast<double>(grid.size())) {
        for (const auto& [cell, entries] : grid) visitCell(entries, box, visit);
        continue;
      }
      for (double y = fromY; y <= toY; ++y)
        for (double x = fromX; x <= toX; ++x) {
          const auto found = grid.find({static_cast<std::int64_t>(x), static_cast<std::int64_t>(y)});
          if (found != grid.end()) visitCell(found->second, box, visit);
        }
    }
  }
  std::size_t size() const { return count_; }

 private:
  struct Entry {
    Box box;
    Value value;
  };
  struct Cell {
    std::int64_t x = 0, y = 0;
    bool operator==(const Cell&) const = default;
  };
  struct HashOf {
    std::size_t operator()(const Cell& c) const {
      const auto mixed = static_cast<std::uint64_t>(c.x) * 0x9E3779B97F4A7C15U ^
                         (static_cast<std::uint64_t>(c.y) + 0x7F4A7C15U) * 0xC2B2AE3D27D4EB4FU;
      return static_cast<std::size_t>(mixed ^ mixed >> 29);
    }
  };
  using Grid = std::unordered_map<Cell, std::vector<Entry>, HashOf>;

  static constexpr double kFarthestCell = 4e15;  // whole numbers up to here are told apart

  static bool isUsable(const Box& box) {
    constexpr double kFarthest = 1e15;
    return !box.isEmpty() && box.minX >= -kFarthest && box.minY >= -kFarthest && box.maxX <= kFarthest &&
           box.maxY <= kFarthest;
  }
  int levelOf(const Box& box) const {
    constexpr int kLarger = 2;  // few cells with some boxes each
    return std::max(finestLevel_, levelOf(std::max(box.maxX - box.minX, box.maxY - box.minY)) + kLarger);
  }
  static int levelOf(double size) { return size > 0 ? static_cast<int>(std::ceil(std::log2(size))) : -40; }
  static Cell cellOf(int level, double x, double y) {
    const double size = std::ldexp(1.0, level);
    const auto number = [size](double v) {
      return static_cast<std::int64_t>(std::clamp(std::floor(v / size), -kFarthestCell, kFarthestCell));
    };
    return {number(x), number(y)};
  }
  template <class Visit>
  static void visitCell(const std::vector<Entry>& entries, const Box& box, const Visit& visit) {
    for (const Entry& entry : entries)
      if (entry.box.intersects(box)) visit(entry.value, entry.box);
  }

  int finestLevel_;
  std::map<int, Grid> levels_;
  std::size_t count_ = 0;
};

}  // namespace host::window
