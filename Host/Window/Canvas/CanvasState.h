// What a canvas keeps, and how it works: private to CanvasView*.cpp.
#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QTimer>
#include <semaphore>
#include <unordered_map>
#include <unordered_set>

#include "Geometry/Snaps.h"
#include "Window/Canvas/CanvasView.h"
#include "Window/Canvas/Marks.h"
#include "Window/Canvas/Pointing.h"
#include "Window/Canvas/Previews.h"
#include "Window/Canvas/SceneKeeper.h"
#include "Window/Canvas/TileRenderer.h"
#include "Window/Canvas/TileStore.h"
#include "Window/Canvas/ViewFrame.h"

namespace host::window {

constexpr double kPickAperturePx = 5;
constexpr double kSnapAperturePx = 10;
constexpr double kSnapAdvantagePx = 6;
constexpr double kDragPx = 6;

struct CanvasView::State {
  explicit State(CanvasView& canvas);
  ~State();

  /// A space of an open drawing as it was looked at last.
  struct SpaceView {
    database::DrawingDatabase* drawing = nullptr;
    const database::BlockContents* space = nullptr;
    std::unique_ptr<SceneKeeper> keeper;
    std::uint64_t changeCount = 0;
    bool hasView = false;
    Zoom zoom;
    Point centre;  // plan coordinates
    std::vector<std::pair<Zoom, Point>> previous;
  };
  /// A rectangle being drawn, by dragging or by two clicks.
  struct Rubber {
    enum class For { Selecting, Zooming, Rectangle } what = For::Selecting;
    Point corner;        // plan coordinates
    bool isHeld = true;  // the button is down since the first corner
    QPointF pressed;     // pixels
  };
  /// What the next clicks are for instead of answers.
  enum class Task { None, ZoomWindow, Rectangle, Place };

  /// Entities that are laid out before the next frame; more would keep the window waiting.
  static constexpr std::size_t kMostAtOnce = 10'000;
  /// A space that a worker lays out: one that is not shown yet, or the one shown, after much of it has changed.
  struct LayingOut {
    std::unique_ptr<SpaceView> space;
    const SceneKeeper* former = nullptr;  // of the space shown; its scene stays in sight meanwhile
    std::unique_ptr<SceneKeeper> made;
    bool hasBegun = false;
    std::atomic<bool> isUnwanted = false;
    std::binary_semaphore done{0};
  };
  void layOut(std::unique_ptr<SpaceView> space);
  void layOutAnew();
  void beginLayingOutSoon();
  void beginLayingOut();
  void endLayingOut();
  /// Gives up laying out anew; it is to be done again.
  void leaveLayingOut();
  /// Shows what has changed since the last time.
  void followChanges();

  // view
  const Scene* scene() const { return shown != nullptr ? shown->keeper->scene().get() : nullptr; }
  void show(SpaceView* space);
  void sceneChanged(const std::vector<Box>& parts);
  void viewMoved();
  void remember();  // the present view, for going back
  void zoomAbout(QPointF pixel, double factor);
  void panBy(QPointF pixels);
  void showBox(const Box& plan, double margin);
  void refineCurves();
  void requestTiles();
  void takeTile(const TileRenderer::Job& job, const QImage& image);
  TileLook look() const;
  void select(std::vector<database::Slot*> entities);

  // pointing
  bool mayPoint() const {
    return shown != nullptr && layingOut == nullptr && (mode == CanvasMode::Rest || mode == CanvasMode::Asking);
  }
  bool picksOne() const { return mode == CanvasMode::Asking && question.wanted == editor::Wanted::Entity; }
  bool picksMany() const {
    return mode == CanvasMode::Rest || (mode == CanvasMode::Asking && question.wanted == editor::Wanted::Entities);
  }
  bool asksPoint() const { return mode == CanvasMode::Asking && question.wanted == editor::Wanted::Point; }
  Point planAt(QPointF pixel) const;
  QPointF pixelOf(Point plan) const;
  void pointerMoved(QPointF at, Qt::KeyboardModifiers modifiers);
  void pressed(QPointF at, Qt::KeyboardModifiers modifiers);
  void released(QPointF at, Qt::KeyboardModifiers modifiers);
  void updateHover(bool isNew);
  void updateSnaps(Qt::KeyboardModifiers modifiers);
  void clearPointer();
  bool cycle(int step);
  database::Slot* hovered() const { return order.empty() ? nullptr : order[place]; }
  std::vector<database::Slot*> taken(database::Slot* entity) const;
  Point cursorPlan() const;
  Point roundedPoint(QPointF pixel) const;
  void pick(Qt::KeyboardModifiers modifiers);
  void selectWindow(Point corner, Point opposite, bool isCrossing, Qt::KeyboardModifiers modifiers);
  void changeSelection(const std::vector<database::Slot*>& entities, bool isRemoving);
  void finishRubber(QPointF at, Qt::KeyboardModifiers modifiers);
  Point oppositeCorner(QPointF at) const;
  void updateCounts();
  void countWindow();
  void endTask(const std::optional<geometry::Box>& box);
  bool hasTaskOrRubber() const { return task != Task::None || rubber.has_value(); }

  // painting
  void paint(QPainter& painter);
  void paintMarks(QPainter& painter);
  void paintPointer(MarkPainter& marks);
  QString hint() const;
  PreviewInput previewInput() const;
  std::vector<SceneRef> refs(const std::vector<database::Slot*>& entities) const;
  QString tooltipText() const;
  QString wordsOf(database::Slot* entity) const;
  void updateCursorShape();

  CanvasView& view;
  std::vector<std::unique_ptr<SpaceView>> spaces;
  std::shared_ptr<LayingOut> layingOut;
  editor::DrawingChange pending;  // of the space shown
  bool isOutOfDate = false;       // as a whole: its keeper is of use for painting alone
  SpaceView* shown = nullptr;
  ViewFrame frame;  // centre in scene coordinates
  TileStore tiles;
  mutable Previews previews;
  bool isSharp = false;
  QElapsedTimer sinceRemembered;
  QTimer refineTimer, tooltipTimer, blinkTimer, workingTimer, countTimer;
  qint64 countMs = 0;  // that the last count of a window took

  CanvasMode mode = CanvasMode::Rest;
  CanvasQuestion question;
  QString typedText;
  std::vector<database::Slot*> selected, highlighted, blinking;
  std::unordered_set<const database::Slot*> selectedSet;
  std::shared_ptr<const std::unordered_set<const database::Slot*>> selectedInTiles;  // when they are many
  std::function<std::wstring(const AcGePoint3d&)> tooltipSource;

  bool isInside = false;  // the pointer is
  QPointF cursor;
  Qt::KeyboardModifiers modifiersHeld;
  std::vector<database::Slot*> order;  // at the cursor, what a click takes first
  std::size_t place = 0;
  QPointF orderAt;
  std::vector<geometry::Snap> snaps;
  std::size_t snapPlace = 0;
  std::unordered_map<const database::Slot*, std::vector<geometry::SnapLine>> snapLines;
  Zoom snapZoom;
  std::optional<Rubber> rubber;
  int inside = 0, locked = 0;  // that the window holds
  Task task = Task::None;
  double taskRatio = 0;
  QSizeF taskFrame;
  std::function<void(std::optional<geometry::Box>)> taskDone;
  std::optional<QPointF> panFrom;
  bool isSpaceHeld = false, wasSpacePanned = false;
  std::optional<QPointF> rightPressed;
  QElapsedTimer rightHeld;
  QString tooltip;
  double blinkStrength = 0;

  std::uint32_t snapKinds = geometry::kUsualSnaps;
  bool isDark = false, isSnapping = true, isOrtho = false, isKeyboardPointing = false, groupsWhole = true;
  std::unique_ptr<TileRenderer> renderer;  // last: it stops before the rest goes
};

/// Shortest digits that read back as the same number, without an exponent.
QString numberText(double value);
/// "10.25,4.5".
QString pointText(Point plan);

}  // namespace host::window
