// What a canvas draws over the picture: lit, selected and highlighted entities, windows, snap marks, words at the
// cursor.
#pragma once

#include <QColor>
#include <QPainter>
#include <QString>
#include <vector>

#include "Geometry/Snaps.h"
#include "Window/Canvas/SceneKeeper.h"
#include "Window/Canvas/ViewFrame.h"

namespace host::window {

enum class Mark { Hover, Selected, Highlight, WindowInside, WindowCrossing, Snap, Preview, Crosshair };

/// Marked entities up to so many have squares on their vertices; more are drawn with the tiles.
constexpr std::size_t kMostSquared = 500;

/// How a mark is drawn: a core with a casing on both sides, so that it shows on every fill.
struct MarkStyle {
  QColor core, casing;
  double width = 2;            // pixels, of the core
  std::vector<double> dashes;  // pixels; empty: solid
  double insideOpacity = 0;    // of areas
};
MarkStyle markStyle(Mark mark, bool isDark);

/// Marks drawn on one frame.
class MarkPainter {
 public:
  MarkPainter(QPainter& painter, const ViewFrame& frame, bool isDark)
      : painter_(painter), frame_(frame), isDark_(isDark) {}

  /// `strength` from 0 to 1: how much of the mark shows. `ofMany`: how many are marked in all, when these are a part.
  void entities(const std::vector<SceneRef>& entities, Mark mark, double strength = 1, std::size_t ofMany = 0);
  void rectangle(QPointF corner, QPointF opposite, Mark mark);
  void snap(QPointF at, geometry::SnapKind kind);
  void crosshair(QPointF at, double gap);
  void pickBox(QPointF at, double aperture);
  /// Outlines of entities where they are going to be: turned about a point (scene coordinates, y down, clockwise) and
  /// moved by a vector; very many as their boxes.
  void ghosts(const std::vector<SceneRef>& entities, Point about, double turnRad, Point moved);
  /// The same of a recording laid out about its own origin, which comes to `at`.
  void ghost(const picture::Recording& recording, Point at);
  /// A thin line of a preview; dotted, or solid as the rubber band is.
  void line(const std::vector<QPointF>& points, bool isClosed, bool isSolid);
  void area(const std::vector<QPointF>& ring);
  /// A text where it is going to be: its base line begins at `at` and is turned counter-clockwise; `height` of capital
  /// letters, pixels.
  void ghostText(QPointF at, double height, double turnRad, const QString& text);
  /// Words beside the cursor, inside of the canvas; `isHead`: the first line is bold.
  void words(QPointF cursor, const QString& text, bool isHead = false);

 private:
  void squares(const std::vector<SceneRef>& entities, const MarkStyle& style);

  QPainter& painter_;
  const ViewFrame& frame_;
  bool isDark_;
};

}  // namespace host::window
