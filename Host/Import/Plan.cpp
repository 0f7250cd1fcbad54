#include "Import/Plan.h"

#include <cmath>
#include <numbers>

#include "Database/DrawingDatabase.h"
#include "Geometry/Seams.h"
#include "Import/Values.h"
#include "Text/Text.h"
#include "dbents.h"
#include "dbhatch.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"

namespace host::import {
namespace {

using curves::Point2;
using curves::Polygon;

Polygon pointsOf(const OGRLinearRing& ring) {
  Polygon points;
  for (int i = 0; i + 1 < ring.getNumPoints(); ++i) points.push_back({ring.getX(i), ring.getY(i)});
  return points;
}

geometry::HoledArea areaOf(const OGRPolygon& polygon) {
  geometry::HoledArea area;
  for (const OGRLinearRing* ring : polygon) {
    (area.outer.empty() ? area.outer : area.holes.emplace_back()) = pointsOf(*ring);
  }
  return area;
}

class PlanDrawing {
 public:
  explicit PlanDrawing(AcDbDatabase& drawing)
      : drawing_(drawing), space_(AcDbObjectId(drawing.hostDatabase().modelSpace().record), AcDb::kForWrite) {}

  void addLayer(const std::string& name, int color) {
    const AcDbObjectPointer<AcDbLayerTable> table(drawing_.layerTableId(), AcDb::kForWrite);
    layer_ = text::fromUtf8(name);
    if (table.openStatus() != Acad::eOk || table->has(layer_.c_str())) return;
    auto record = std::make_unique<AcDbLayerTableRecord>();
    record->setName(layer_.c_str());
    if (color > 0) {
      AcCmColor own;
      own.setColorIndex(static_cast<Adesk::UInt16>(color));
      record->setColor(own);
    }
    if (table->add(record.get()) == Acad::eOk) record.release()->close();
  }

  /// Answers its handle.
  std::uint64_t addPolyline(const Polygon& points, bool isClosed) {
    auto line = std::make_unique<AcDbPolyline>();
    for (unsigned i = 0; i < points.size(); ++i) line->addVertexAt(i, AcGePoint2d(points[i].x, points[i].y));
    line->setClosed(isClosed);
    for (const Point2 point : points) box_.add(point);
    return add(std::move(line));
  }

  void addFill(const OGRPolygon& polygon) {
    auto fill = std::make_unique<AcDbHatch>();
    fill->setPattern(AcDbHatch::kPreDefined, L"SOLID");
    bool isWhole = true;
    for (const OGRLinearRing* ring : polygon) {
      AcGePoint2dArray vertices;
      for (const Point2 point : pointsOf(*ring)) vertices.append(AcGePoint2d(point.x, point.y));
      isWhole = isWhole && fill->appendLoop(AcDbHatch::kDefault, vertices, AcGeDoubleArray()) == Acad::eOk;
    }
    if (isWhole && fill->evaluateHatch() == Acad::eOk) add(std::move(fill));
  }

  void addPoint(Point2 at) {
    add(std::make_unique<AcDbPoint>(AcGePoint3d(at.x, at.y, 0)));
    box_.add(at);
  }

  const curves::Box& box() const { return box_; }

 private:
  template <class Entity>
  std::uint64_t add(std::unique_ptr<Entity> entity) {
    entity->setLayer(layer_.c_str());
    AcDbObjectId id;
    if (space_->appendAcDbEntity(id, entity.get()) != Acad::eOk) return 0;
    entity.release()->close();
    return id.handle();
  }

  AcDbDatabase& drawing_;
  const AcDbObjectPointer<AcDbBlockTableRecord> space_;
  std::wstring layer_;
  curves::Box box_;
};

using Values = std::map<std::string, std::string>;

void addLines(std::string& script, const std::vector<std::string>& lines, const Values& values) {
  for (const std::string& line : lines) script += filled(line, values) + "\n";
}

/// "Asfaltti (12)".
std::string titleOf(const Batch& batch, const Values& values, std::size_t count) {
  return filled(batch.element->title, values) + " (" + std::to_string(count) + ")";
}

Values valuesOf(const Batch& batch, Values values) {
  for (const auto& [name, value] : batch.values) values[name] = value;
  values["layer"] = batch.layer;
  return values;
}

/// Ridges become elements together, then each building gets its own.
void addRidges(std::string& script, const ElementTable& table, const std::vector<DrawnRidge>& ridges,
               const Values& values) {
  const Element* const element = table.find(kRidgeElement);
  if (element == nullptr || ridges.empty()) return;
  Values own = values;
  own["layer"] = element->layer;
  script += "; " + filled(element->title, own) + " (" + std::to_string(ridges.size()) + ")\n";
  addLines(script, element->lines, own);
  for (const DrawnRidge& ridge : ridges) {
    own["ridge"] = text::formatHandle(ridge.line);
    own["building"] = text::formatHandle(ridge.building);
    own["height"] = shown(ridge.height);
    addLines(script, element->each, own);
  }
}

}  // namespace

DrawnPlan drawFeatures(const Features& features, double shadowDegrees, const Element* ridge, AcDbDatabase& drawing) {
  const double angle = shadowDegrees * std::numbers::pi / 180;
  const Point2 sunward{-std::cos(angle), -std::sin(angle)};
  PlanDrawing plan(drawing);
  std::vector<std::pair<Ridge, std::uint64_t>> ridges;
  for (const Batch& batch : features.batches) {
    plan.addLayer(batch.layer, batch.element->color);
    for (const Area& area : batch.areas) {
      if (batch.element->fill > 0) plan.addFill(*area.shape);
      const geometry::HoledArea rings = areaOf(*area.shape);
      if (batch.element->fill == 0) {
        const std::uint64_t outline = plan.addPolyline(geometry::joinHoles(rings, sunward), true);
        // Over a courtyard there is no one ridge.
        if (!area.roof || !rings.holes.empty() || ridge == nullptr) continue;
        if (const auto over = ridgeOver(rings.outer, *area.roof)) ridges.emplace_back(*over, outline);
        continue;
      }
      plan.addPolyline(rings.outer, true);
      for (const Polygon& hole : rings.holes) plan.addPolyline(hole, true);
    }
    for (const auto& line : batch.lines) {
      const bool isRing = line.size() > 3 && line.front().x == line.back().x && line.front().y == line.back().y;
      plan.addPolyline(isRing ? Polygon(line.begin(), line.end() - 1) : line, isRing);
    }
    for (const Point2 point : batch.points) plan.addPoint(point);
  }
  DrawnPlan drawn;
  if (!ridges.empty()) plan.addLayer(ridge->layer, ridge->color);
  for (const auto& [over, outline] : ridges)
    drawn.ridges.push_back({plan.addPolyline({over.begin, over.end}, false), outline, over.height});
  drawn.box = plan.box();
  return drawn;
}

std::string scriptOf(Features& features, const ElementTable& table, const ScriptValues& given) {
  Values all = table.defaults;
  all["direction"] = shown(given.shadowDegrees);
  all["length"] = shown(given.shadowLength);
  all["symbols"] = given.symbols;
  std::string script = given.head;
  addLines(script, table.before, all);
  for (const Batch& batch : features.batches) {
    if (batch.element->lines.empty() || batch.element->shape == Shape::Point) continue;
    const Values values = valuesOf(batch, all);
    script += "; " + titleOf(batch, values, batch.areas.size() + batch.lines.size()) + "\n";
    addLines(script, batch.element->lines, values);
  }
  addRidges(script, table, given.ridges, all);
  std::size_t left = 0;
  bool isFirst = true;
  for (const Batch& batch : features.batches) {
    if (batch.points.empty() || batch.element->lines.empty()) continue;
    if (given.symbols.empty()) {
      left += batch.points.size();
      continue;
    }
    if (std::exchange(isFirst, false)) addLines(script, table.beforePoints, all);
    const Values values = valuesOf(batch, all);
    script += "; " + titleOf(batch, values, batch.points.size()) + "\n";
    for (const std::string& line : batch.element->lines) {
      if (line != "{points}") {
        script += filled(line, values) + "\n";
        continue;
      }
      for (const Point2 point : batch.points) script += shown(point.x) + "," + shown(point.y) + "\n";
    }
  }
  if (!isFirst) addLines(script, table.afterPoints, all);
  if (left > 0)
    features.warnings.push_back(std::to_string(left) +
                                " trees and other symbols are points only: give --symbols FOLDER");
  addLines(script, table.after, all);
  return script;
}

}  // namespace host::import
