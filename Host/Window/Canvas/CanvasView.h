// The canvas: shows a drawing, zooms and pans, and turns pointing into answers. It knows neither commands nor the
// session that runs them: the main window tells it what is asked, and types what it answers into the command line.
#pragma once

#include <QPointF>
#include <QSizeF>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Editor/InputSource.h"
#include "Editor/Observer.h"
#include "Geometry/EntityPaths.h"

namespace host::window {

/// What a canvas may do with clicks and keys now.
enum class CanvasMode {
  Rest,    // no command runs: clicks select
  Asking,  // the running command asks `question`
  Closed,  // a dialog is open, or a question that only the keyboard answers: the view moves, clicks are refused
  Working  // a command works: the last picture stays and moves, nothing is read from the drawing
};

struct CanvasQuestion {
  editor::Wanted wanted = editor::Wanted::Command;
  std::optional<AcGePoint3d> base;      // where the rubber band starts
  std::wstring preview;                 // of the running command, column "preview" of menu.tsv; empty: none
  std::vector<database::Slot*> chosen;  // that the running command has got so far: what ghosts show
  std::optional<double> direction;      // how the arc to the next point leaves the base, radians; nothing: a line
  std::vector<AcGePoint3d> points;      // that it has got so far
  std::vector<double> bulges;           // of the ways to these points; 0: straight
  std::vector<double> numbers;          // the same; NaN: a default that the prompt does not name
};

class CanvasView : public QWidget {
  Q_OBJECT
 public:
  explicit CanvasView(QWidget* parent = nullptr);
  ~CanvasView() override;

  /// Shows a space of a drawing, or nothing; the view that the space had when it was shown last comes back.
  void setDrawing(database::DrawingDatabase* drawing, const database::BlockContents* space);
  /// Forgets what is kept of a drawing that is being closed.
  void forget(const database::DrawingDatabase* drawing);
  /// Forgets all drawings but these.
  void keepOnly(const std::vector<const database::DrawingDatabase*>& drawings);
  /// A large space is laid out on a worker, and is not shown before; this waits for it. Nothing may change or close a
  /// drawing before.
  void finishLayingOut();
  bool isLayingOut() const;
  void drawingChanged(const editor::DrawingChange& change);
  void setMode(CanvasMode mode, const CanvasQuestion& question = {});
  /// What stands in the command line while a number or point is typed: previews follow it.
  void setTypedText(const QString& text);
  /// Selected at rest or so far by the running question.
  void setSelected(const std::vector<database::Slot*>& entities);
  /// What the running command marks besides.
  void setHighlighted(const std::vector<database::Slot*>& entities);
  /// Changed outlines blink once.
  void blink(const std::vector<database::Slot*>& entities);
  /// Words of the tooltip at a point of the plan; lines divided by "\n", the first one bold.
  void setTooltipSource(std::function<std::wstring(const AcGePoint3d&)> source);

  geometry::Box visibleBox() const;  // plan coordinates
  double unitsPerPixel() const;
  /// Where entities lie on the screen, pixels of the canvas; empty for none.
  QRectF placeOf(const std::vector<database::Slot*>& entities) const;
  void zoomToDrawing();  // leaves far strays out; says so by `strayNoticed`
  void zoomToAll();
  void zoomTo(const geometry::Box& box);
  void zoomTo(const std::vector<database::Slot*>& entities, double margin = 0.5);
  void zoomBy(double factor);  // about the middle; above 1: nearer
  void zoomPrevious();
  void askForWindow();  // the next two clicks or a drag are the window to zoom to; Esc leaves
  void askForRectangle(std::function<void(std::optional<geometry::Box>)> then, double widthToHeight = 0);

  void setDarkGround(bool dark);
  void setSnapping(bool on);
  /// Bits of geometry::snapBit.
  void setSnapKinds(std::uint32_t kinds);
  std::uint32_t snapKinds() const;
  void setOrtho(bool on);
  void setKeyboardPointing(bool on);
  bool isSnapping() const;
  bool isOrtho() const;
  bool isKeyboardPointing() const;
  bool isDarkGround() const;
  /// PICKSTYLE: entities of a group are lit and taken together.
  void setGroupsWhole(bool whole);
  /// The next click puts a frame of this size (plan units) that hangs on the cursor; Esc leaves.
  void askForPlace(QSizeF frame, std::function<void(std::optional<geometry::Box>)> then);

  /// Where a click would give a point now: snapped, or at a right angle to the last point. Nothing while the cursor is
  /// elsewhere.
  std::optional<AcGePoint3d> cursorPoint() const;
  /// What a click would take; nothing when there is nothing.
  database::Slot* hovered() const;
  /// Leaves what the canvas itself has begun: a window, a zoom window, a frame. False when there is nothing to leave.
  bool leave();
  /// Keys that mean something to the canvas wherever the focus is: Tab, Ctrl and arrows, those of keyboard pointing.
  /// True when it took the key.
  bool takeKey(QKeyEvent* event);
  /// Whether all that is shown is sharp: nothing is being laid out or painted any more.
  bool isSharp() const;

  QSize sizeHint() const override { return {800, 600}; }
  QSize minimumSizeHint() const override { return {1, 1}; }

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;

 signals:
  /// Lines as a script has them: "10.25,4.5", `(handent "2F")`, "W" and two corners, "" for Enter. Never of the view.
  void answered(const QStringList& lines);
  void cancelled();                                                    // Esc
  void entered();                                                      // right click, Space, Enter on the canvas
  void typed(const QString& text);                                     // letters that belong to the command line
  void selectionEdited(const std::vector<database::Slot*>& entities);  // at rest, the whole new selection
  void eraseWanted();                                                  // Delete at rest
  void doubleClicked(database::Slot* entity);
  void contextMenuWanted(const QPoint& global);
  void refused();  // a click that the question does not take
  void cursorMoved(const AcGePoint3d& at);
  void hoverChanged(database::Slot* entity, int place, int count);  // place from 1 in the order beneath the cursor
  void viewChanged();
  void straysLeftOut(int count);

 private:
  struct State;
  friend struct State;
  std::unique_ptr<State> state_;
};

}  // namespace host::window
