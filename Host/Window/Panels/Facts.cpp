#include "Window/Panels/Facts.h"

#include <QCoreApplication>
#include <cmath>

#include "Curves/Plane.h"
#include "Database/Palette.h"
#include "Database/TagValues.h"
#include "Geometry/Layers.h"
#include "Text/Text.h"
#include "Window/Commands/Language.h"
#include "Window/Frame/Feedback.h"

namespace host::window {
namespace {

constexpr double kDeviation = 1e-4;  // of arcs flattened for their length and area, drawing units

QString say(const char* text) { return QCoreApplication::translate("Facts", text); }

double lengthOf(const geometry::Path& path) {
  double length = 0;
  for (std::size_t i = 1; i < path.points.size(); ++i) length += curves::distance(path.points[i - 1], path.points[i]);
  if (path.closed && path.points.size() > 2) length += curves::distance(path.points.back(), path.points.front());
  return length;
}

double areaOf(const curves::Polygon& ring) {
  double twice = 0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    // About the first point, so that far coordinates keep their digits.
    const curves::Point2 a = ring[i] - ring[0], b = ring[(i + 1) % ring.size()] - ring[0];
    twice += cross(a, b);
  }
  return std::abs(twice) / 2;
}

/// Rings inside others are holes, rings in holes are islands.
double areaOf(const std::vector<geometry::Path>& paths) {
  double area = 0;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (paths[i].points.size() < 3) continue;
    int depth = 0;
    for (std::size_t j = 0; j < paths.size(); ++j) {
      if (j != i && paths[j].points.size() > 2 && curves::isInsideRing(paths[j].points, paths[i].points.front()))
        ++depth;
    }
    area += (depth % 2 == 0 ? 1 : -1) * areaOf(paths[i].points);
  }
  return area;
}

QString colourWord(const database::EntityProperties& properties) {
  if (properties.trueColor >= 0) return QColor::fromRgb(static_cast<QRgb>(properties.trueColor)).name().toUpper();
  if (properties.color == 256) return say(QT_TRANSLATE_NOOP("Facts", "by layer"));
  if (properties.color == 0) return say(QT_TRANSLATE_NOOP("Facts", "by block"));
  return QString::number(properties.color);
}

QString weightWord(int weight) {
  if (weight == -1) return say(QT_TRANSLATE_NOOP("Facts", "by layer"));
  if (weight == -2) return say(QT_TRANSLATE_NOOP("Facts", "by block"));
  if (weight < 0) return say(QT_TRANSLATE_NOOP("Facts", "default"));
  return QString::number(weight / 100.0, 'f', 2) + " mm";
}

}  // namespace

EntityFacts factsOf(const database::Slot& entity) {
  using database::DxfType;
  const database::DrawingDatabase& drawing = entity.database();
  EntityFacts facts;
  facts.kind = kindOf(entity);
  facts.layer = toQt(drawing.layerName(entity.layer));
  facts.handle = toQt(text::formatHandle(entity.handle));
  const database::EntityProperties properties = database::entityProperties(entity);
  facts.colour = colourWord(properties);
  facts.linetype = properties.linetype.empty() ? say(QT_TRANSLATE_NOOP("Facts", "by layer"))
                                               : toQt(drawing.codec().decode(properties.linetype));
  facts.lineweight = weightWord(properties.lineweight);

  const bool isText = entity.type == DxfType::Text || entity.type == DxfType::MText;
  const bool isSymbol = entity.type == DxfType::Insert;
  if (isText || isSymbol) {
    database::Tag tag;
    AcGePoint3d point;
    for (database::GeometryTags tags(entity.tags()); tags.next(tag);) {
      takePoint(tag, 10, point);
      if (tag.code == (isSymbol ? 2 : 1)) facts.content = toQt(drawing.codec().decode(tag.value));
      if (tag.code == 50) facts.angle = tag.real();
    }
    facts.at = geometry::Point{point.x, point.y};
    return facts;
  }
  const std::vector<geometry::Path> paths = geometry::entityPaths(entity, kDeviation);
  if (paths.empty()) return facts;
  if (entity.type == DxfType::Hatch) {
    facts.area = areaOf(paths);
    return facts;
  }
  if (paths.size() != 1) return facts;
  const geometry::Path& path = paths.front();
  facts.length = lengthOf(path);
  const bool isLine = entity.type == DxfType::LwPolyline || entity.type == DxfType::Polyline2d;
  if (path.closed || isLine) facts.isClosed = path.closed;
  if (path.closed) facts.area = areaOf(path.points);
  if (isLine) {
    int count = 0;
    database::Tag tag;
    for (database::GeometryTags tags(entity.tags()); tags.next(tag);) {
      if (tag.code == 10) ++count;
    }
    if (entity.type == DxfType::LwPolyline) facts.points = count;
  }
  return facts;
}

std::optional<geometry::Point> pointOn(const database::Slot& entity) {
  for (const geometry::Path& path : geometry::entityPaths(entity, 1e-2)) {
    if (path.points.empty()) continue;
    if (path.points.size() == 1) return path.points.front();
    return (path.points[0] + path.points[1]) * 0.5;
  }
  return std::nullopt;
}

std::vector<database::Slot*> livingEntities(const database::BlockContents& space) {
  std::vector<database::Slot*> living;
  living.reserve(space.entities.size());
  for (database::Slot* const entity : space.entities) {
    if (!entity->isErased() && !entity->isSubEntity()) living.push_back(entity);
  }
  return living;
}

QColor colourOfLayer(const database::DrawingDatabase& drawing, const QString& layer) {
  const std::uint32_t index = drawing.findLayer(fromQt(layer));
  if (index == 0 || drawing.layerRecord(index) == nullptr) return {};
  geometry::LayerStates states(drawing);
  const geometry::LayerState& state = states.at(index);
  const std::uint32_t rgb =
      state.trueColor >= 0 ? static_cast<std::uint32_t>(state.trueColor) : database::paletteColor(state.color);
  return QColor::fromRgb(rgb);
}

QString metres(double value) { return QString::number(value, 'f', 2) + " m"; }
QString squareMetres(double value) { return QString::number(value, 'f', 2) + QStringLiteral(" m²"); }

QString quotedAnswer(const QString& answer) {
  if (!answer.contains(' ') && !answer.contains('"') && !answer.startsWith('(')) return answer;
  return '"' + QString(answer).replace("\"", "\"\"") + '"';
}

QString patternOf(const QString& name) {
  QString pattern;
  for (const QChar c : name) {
    if (QStringLiteral("#@.*?~[],`").contains(c)) pattern += '`';
    pattern += c;
  }
  return pattern;
}

QString handentOf(const database::Slot& entity) {
  return "(handent \"" + toQt(text::formatHandle(entity.handle)) + "\")";
}

}  // namespace host::window
