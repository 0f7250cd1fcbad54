#include "Import/Buildings.h"

#include <algorithm>
#include <utility>

namespace host::import {
namespace {

using Geometry = std::unique_ptr<OGRGeometry>;

constexpr double kMostOfIt = 0.9;  // of an area: the rest is the carelessness of its drawing

OGREnvelope boxOf(const OGRGeometry& geometry) {
  OGREnvelope box;
  geometry.getEnvelope(&box);
  return box;
}

/// Calls `meet` with the numbers of all pairs whose boxes touch, each pair once.
template <class Meet>
void forEachPair(const std::vector<Building>& buildings, const Meet& meet) {
  struct Entry {
    OGREnvelope box;
    std::size_t number;
  };
  std::vector<Entry> all;
  for (std::size_t i = 0; i < buildings.size(); ++i) {
    if (buildings[i].shape != nullptr) all.push_back({boxOf(*buildings[i].shape), i});
  }
  std::stable_sort(all.begin(), all.end(), [](const Entry& a, const Entry& b) { return a.box.MinX < b.box.MinX; });
  std::vector<const Entry*> active;
  for (const Entry& entry : all) {
    std::erase_if(active, [&entry](const Entry* each) { return each->box.MaxX < entry.box.MinX; });
    for (const Entry* const other : active) {
      if (other->box.Intersects(entry.box) != FALSE) meet(*other, entry);
    }
    active.push_back(&entry);
  }
}

double areaOf(const OGRGeometry& geometry) {
  double sum = 0;
  forEachPolygon(geometry, [&sum](const OGRPolygon& polygon) { sum += polygon.get_Area(); });
  return sum;
}

/// `shape` without `taken`, as buildings of the same kind; slivers go. Keeps the shape when they cannot be parted.
std::vector<std::unique_ptr<OGRPolygon>> without(const OGRPolygon& shape, const OGRGeometry& taken) {
  std::vector<std::unique_ptr<OGRPolygon>> rest;
  const Geometry difference(shape.Difference(&taken));
  if (difference == nullptr) {
    rest.emplace_back(shape.clone());
    return rest;
  }
  forEachPolygon(*difference, [&rest](const OGRPolygon& polygon) {
    if (!isSliver(polygon)) rest.emplace_back(polygon.clone());
  });
  return rest;
}

class Sorting {
 public:
  Sorting(std::vector<Building>& buildings, Tally& leftOut, Tally& done)
      : buildings_(buildings), leftOut_(leftOut), done_(done) {}

  void run() {
    partOutlines();
    dropInner();
    for (Building& each : more_) buildings_.push_back(std::move(each));
    std::erase_if(buildings_, [](const Building& each) { return each.shape == nullptr; });
  }

 private:
  /// The parts of each outline; a part belongs to the first outline that has most of it.
  void partOutlines() {
    std::vector<std::vector<std::size_t>> parts(buildings_.size());
    std::vector<bool> isFound(buildings_.size(), false);
    forEachPair(buildings_, [&](const auto& a, const auto& b) {
      if (buildings_[a.number].isPart == buildings_[b.number].isPart) return;
      const auto& [part, outline] = buildings_[a.number].isPart ? std::pair(a, b) : std::pair(b, a);
      if (isFound[part.number]) return;
      const OGRPolygon& shape = *buildings_[part.number].shape;
      const Geometry common(shape.Intersection(buildings_[outline.number].shape.get()));
      if (common == nullptr || areaOf(*common) < kMostOfIt * shape.get_Area()) return;
      isFound[part.number] = true;
      parts[outline.number].push_back(part.number);
    });
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (!parts[i].empty()) partOutline(buildings_[i], parts[i]);
    }
  }

  void partOutline(Building& outline, std::vector<std::size_t>& parts) {
    std::erase_if(parts, [this](std::size_t i) {
      if (buildings_[i].hasFloors) return false;
      buildings_[i].shape.reset();
      leftOut_.add("parts of buildings without floors of their own");
      return true;
    });
    if (parts.empty()) return;
    std::stable_sort(parts.begin(), parts.end(),
                     [this](std::size_t a, std::size_t b) { return buildings_[a].floors > buildings_[b].floors; });
    Geometry taken;
    for (const std::size_t i : parts) {
      const Geometry whole(buildings_[i].shape->clone());
      if (taken != nullptr) keep(buildings_[i], without(*buildings_[i].shape, *taken));
      taken.reset(taken == nullptr ? whole->clone() : taken->Union(whole.get()));
      if (taken == nullptr) return;  // the library has told why; the outline stays
    }
    done_.add("buildings drawn by their parts");
    std::vector<std::unique_ptr<OGRPolygon>> rest = without(*outline.shape, *taken);
    double area = 0;
    for (const auto& each : rest) area += each->get_Area();
    if (area < (1 - kMostOfIt) * outline.shape->get_Area()) rest.clear();
    keep(outline, std::move(rest));
  }

  /// The building in the places that are left to it; a roof that was cut has no ridge of its own.
  void keep(Building& building, std::vector<std::unique_ptr<OGRPolygon>> places) {
    const bool isCut = places.size() != 1 || places.front()->get_Area() < kMostOfIt * building.shape->get_Area();
    if (isCut) building.roof.reset();
    building.shape.reset();
    for (auto& place : places) {
      if (building.shape == nullptr) {
        building.shape = std::move(place);
      } else {
        more_.push_back({std::move(place), building.element, building.floors, building.hasFloors, building.isPart, {}});
      }
    }
  }

  void dropInner() {
    forEachPair(buildings_, [this](const auto& a, const auto& b) {
      const auto& [outer, inner] = a.box.Contains(b.box) != FALSE ? std::pair(a, b) : std::pair(b, a);
      auto& outerShape = buildings_[outer.number].shape;
      auto& innerShape = buildings_[inner.number].shape;
      if (outerShape == nullptr || innerShape == nullptr || outer.box.Contains(inner.box) == FALSE) return;
      if (outerShape->Contains(innerShape.get()) == FALSE) return;
      innerShape.reset();
      leftOut_.add("buildings that lie in another");
    });
  }

  std::vector<Building>& buildings_;
  std::vector<Building> more_;  // what parts leave of others besides the first piece
  Tally& leftOut_;
  Tally& done_;
};

}  // namespace

bool isSliver(const OGRPolygon& polygon) {
  double outline = 0;
  for (const OGRLinearRing* ring : polygon) outline += ring->get_Length();
  const double area = polygon.get_Area();
  return area < kLeastArea || area / (outline / 2) < kLeastWidth;
}

void sortOut(std::vector<Building>& buildings, Tally& leftOut, Tally& done) { Sorting(buildings, leftOut, done).run(); }

}  // namespace host::import
