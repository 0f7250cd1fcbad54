// What a drawing says of its things, in figures and words for the panels.
#pragma once

#include <QColor>
#include <QString>
#include <optional>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Geometry/EntityPaths.h"

namespace host::window {

struct EntityFacts {
  QString kind, layer, colour, linetype, lineweight, content, handle;
  std::optional<double> length, area;  // drawing units
  std::optional<bool> isClosed;
  std::optional<int> points;
  std::optional<double> angle;  // degrees, of symbols and texts
  std::optional<geometry::Point> at;
};

EntityFacts factsOf(const database::Slot& entity);
/// A point on the entity where it is likely alone: the middle of its first piece.
std::optional<geometry::Point> pointOn(const database::Slot& entity);
/// Living entities of a space, bottom first.
std::vector<database::Slot*> livingEntities(const database::BlockContents& space);
/// Colour in which a layer is drawn.
QColor colourOfLayer(const database::DrawingDatabase& drawing, const QString& layer);
/// "12.50 m", "1408.00 m²".
QString metres(double value);
QString squareMetres(double value);
/// A name as one answer of a command that takes patterns: what patterns mean something by is taken as it is, and quotes
/// keep blanks together.
QString patternOf(const QString& name);
QString quotedAnswer(const QString& answer);
QString handentOf(const database::Slot& entity);

}  // namespace host::window
