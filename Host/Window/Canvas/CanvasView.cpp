#include "Window/Canvas/CanvasView.h"

#include <QResizeEvent>
#include <QStyle>
#include <algorithm>
#include <charconv>
#include <cmath>

#include "Window/Canvas/CanvasState.h"
#include "Window/Canvas/Strays.h"

namespace host::window {
namespace {

constexpr int kRefineMs = 25;
constexpr int kBlinkMs = 400;
constexpr int kWaitCursorMs = 300;
constexpr std::size_t kMostPrevious = 50;
constexpr double kCoarsestCurvePx = 0.12;

constexpr std::size_t kMostPointsAFrame = 4000;  // of selected entities drawn with each frame

std::size_t pointsOf(const std::vector<SceneRef>& entities) {
  std::size_t points = 0;
  for (const SceneRef entity : entities)
    for (std::uint32_t i = 0; i < entity->itemCount; ++i) {
      const auto& item = entity.chunk->recording.items[entity->firstItem + i];
      for (std::uint32_t r = 0; r < item.ringCount; ++r)
        points += entity.chunk->recording.rings[item.firstRing + r].count;
    }
  return points;
}

}  // namespace

QString numberText(double value) {
  if (value == 0) value = 0;  // no "-0"
  char digits[400];
  const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed).ptr;
  return QString::fromLatin1(digits, end - digits);
}

QString pointText(Point plan) { return numberText(plan.x) + u',' + numberText(plan.y); }

// ---- state: the view
// -------------------------------------------------------------------------------------------------

CanvasView::State::State(CanvasView& canvas) : view(canvas) {
  renderer = std::make_unique<TileRenderer>([target = &view](const TileRenderer::Job& job, const QImage& image) {
    // Queued events of a canvas go with it, and the renderer stops before the canvas does.
    QMetaObject::invokeMethod(
        target, [target, job, image] { target->state_->takeTile(job, image); }, Qt::QueuedConnection);
  });
  refineTimer.setSingleShot(true);
  QObject::connect(&refineTimer, &QTimer::timeout, &view, [this] {
    if (mode != CanvasMode::Working) refineCurves();
  });
  tooltipTimer.setSingleShot(true);
  QObject::connect(&tooltipTimer, &QTimer::timeout, &view, [this] {
    tooltip = isInside && mayPoint() && !rubber ? tooltipText() : QString();
    view.update();
  });
  countTimer.setSingleShot(true);
  QObject::connect(&countTimer, &QTimer::timeout, &view, [this] {
    if (!rubber || !mayPoint()) return;
    countWindow();
    view.update();
  });
  workingTimer.setSingleShot(true);
  QObject::connect(&workingTimer, &QTimer::timeout, &view, [this] { updateCursorShape(); });
  QObject::connect(&blinkTimer, &QTimer::timeout, &view, [this] {
    constexpr double kStep = 0.1;
    blinkStrength -= kStep;
    if (blinkStrength <= 0) {
      blinkTimer.stop();
      blinking.clear();
    }
    view.update();
  });
}

CanvasView::State::~State() { renderer.reset(); }

TileLook CanvasView::State::look() const {
  return {view.devicePixelRatioF(), isDark, frame.size.height(), selectedInTiles};
}

void CanvasView::State::select(std::vector<database::Slot*> entities) {
  selected = std::move(entities);
  selectedSet = {selected.begin(), selected.end()};
  selectedInTiles.reset();
  if (selected.size() > kMostSquared || pointsOf(refs(selected)) > kMostPointsAFrame)
    selectedInTiles = std::make_shared<const std::unordered_set<const database::Slot*>>(selectedSet);
  isSharp = false;
  tiles.setLook(look());
  view.update();
}

void CanvasView::State::show(SpaceView* space) {
  if (shown != nullptr && shown != space) {
    shown->zoom = frame.zoom;
    shown->centre = scene()->toPlan(frame.centre);
  }
  shown = space;
  pending = {};
  isOutOfDate = false;
  order.clear();
  snaps.clear();
  snapLines.clear();
  rubber.reset();
  tooltip.clear();
  if (shown == nullptr) {
    tiles.setScene(nullptr, nullptr);
    renderer->request({});
    view.update();
    return;
  }
  tiles.setScene(shown->keeper->scene(), nullptr);
  if (shown->hasView) {
    frame.zoom = shown->zoom;
    frame.centre = scene()->toScene(shown->centre);
    viewMoved();
  } else {
    shown->hasView = true;
    view.zoomToDrawing();
    shown->previous.clear();
  }
}

/// The drawing has changed; the picture follows part by part.
void CanvasView::State::sceneChanged(const std::vector<Box>& parts) {
  shown->changeCount = shown->drawing->changeCount();
  snapLines.clear();
  tiles.setScene(shown->keeper->scene(), &parts);
  isSharp = false;
  const auto isGone = [this](const database::Slot* slot) { return !shown->keeper->find(slot); };
  if (std::ranges::any_of(selected, isGone)) {
    std::vector<database::Slot*> left = selected;
    std::erase_if(left, isGone);
    select(std::move(left));
  }
  std::erase_if(highlighted, isGone);
  std::erase_if(blinking, isGone);
  order.clear();
  place = 0;
  refineCurves();
  if (isInside && mayPoint()) pointerMoved(cursor, modifiersHeld);
  view.update();
}

void CanvasView::State::viewMoved() {
  if (!(snapZoom == frame.zoom)) snapLines.clear();  // curves were as fine as they looked
  snapZoom = frame.zoom;
  frame.size = view.size();
  frame.devicePixelRatio = view.devicePixelRatioF();
  isSharp = false;
  refineTimer.start(kRefineMs);
  view.update();
  emit view.viewChanged();
}

void CanvasView::State::remember() {
  if (shown == nullptr) return;
  const Point centre = scene()->toPlan(frame.centre);
  auto& previous = shown->previous;
  if (!previous.empty() && previous.back().first == frame.zoom && previous.back().second.x == centre.x &&
      previous.back().second.y == centre.y)
    return;
  previous.emplace_back(frame.zoom, centre);
  if (previous.size() > kMostPrevious) previous.erase(previous.begin());
}

void CanvasView::State::zoomAbout(QPointF pixel, double factor) {
  if (shown == nullptr) return;
  // Turns of the wheel that follow each other are one step back.
  constexpr qint64 kSameMs = 800;
  if (!sinceRemembered.isValid() || sinceRemembered.elapsed() > kSameMs) remember();
  sinceRemembered.start();
  frame.zoomAbout(pixel, factor);
  viewMoved();
}

void CanvasView::State::panBy(QPointF pixels) {
  if (shown == nullptr) return;
  frame.moveBy(pixels);
  viewMoved();
}

void CanvasView::State::showBox(const Box& plan, double margin) {
  if (shown == nullptr || plan.isEmpty()) return;
  remember();
  frame.size = view.size();
  frame.show(scene()->toScene(plan), margin);
  viewMoved();
}

/// Lays what is seen from near out anew where its curves would show corners.
void CanvasView::State::refineCurves() {
  if (shown == nullptr || layingOut != nullptr || isOutOfDate) return;
  const std::vector<Box> changed = shown->keeper->refine(frame.visible(), kCoarsestCurvePx / frame.scale());
  if (changed.empty()) return;
  isSharp = false;
  tiles.setScene(shown->keeper->scene(), &changed);
  view.update();
}

void CanvasView::State::requestTiles() {
  if (shown == nullptr || frame.size.isEmpty()) return renderer->request({});
  renderer->request(tiles.missing(frame));
}

void CanvasView::State::takeTile(const TileRenderer::Job& job, const QImage& image) {
  tiles.take(job, image);
  view.update();
}

// ---- drawing and space
// -----------------------------------------------------------------------------------------------

CanvasView::CanvasView(QWidget* parent) : QWidget(parent), state_(std::make_unique<State>(*this)) {
  setMouseTracking(true);
  setFocusPolicy(Qt::ClickFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAttribute(Qt::WA_AcceptTouchEvents, false);
  setAccessibleName(tr("Drawing"));
  state_->updateCursorShape();
}

CanvasView::~CanvasView() { finishLayingOut(); }

void CanvasView::setDrawing(database::DrawingDatabase* drawing, const database::BlockContents* space) {
  State& s = *state_;
  s.select({});
  s.highlighted.clear();
  s.blinking.clear();
  if (s.layingOut != nullptr) {
    const State::SpaceView& worked = s.layingOut->space != nullptr ? *s.layingOut->space : *s.shown;
    if (worked.drawing == drawing && worked.space == space) return;
    finishLayingOut();
  }
  if (drawing == nullptr || space == nullptr) return s.show(nullptr);
  State::SpaceView* found = nullptr;
  for (const auto& known : s.spaces)
    if (known->drawing == drawing && known->space == space) found = known.get();
  if (found == nullptr) {
    auto made = std::make_unique<State::SpaceView>();
    made->drawing = drawing;
    made->space = space;
    if (space->entities.size() > State::kMostAtOnce) return s.layOut(std::move(made));
    made->keeper = std::make_unique<SceneKeeper>(*drawing, *space);
    made->changeCount = drawing->changeCount();
    found = made.get();
    s.spaces.push_back(std::move(made));
  } else if (found->changeCount != drawing->changeCount()) {
    s.show(found);
    s.pending.isWhole = true;
    s.followChanges();
    return;
  }
  s.show(found);
}

void CanvasView::keepOnly(const std::vector<const database::DrawingDatabase*>& drawings) {
  State& s = *state_;
  std::vector<const database::DrawingDatabase*> gone;
  for (const auto& space : s.spaces)
    if (std::ranges::find(drawings, space->drawing) == drawings.end()) gone.push_back(space->drawing);
  for (const database::DrawingDatabase* const drawing : gone) forget(drawing);
}

void CanvasView::forget(const database::DrawingDatabase* drawing) {
  State& s = *state_;
  if (s.shown != nullptr && s.shown->drawing == drawing) setDrawing(nullptr, nullptr);
  std::erase_if(s.spaces, [drawing](const auto& space) { return space->drawing == drawing; });
}

void CanvasView::drawingChanged(const editor::DrawingChange& change) {
  State& s = *state_;
  if (s.shown == nullptr) return;
  s.pending.isWhole = s.pending.isWhole || change.isWhole;
  s.pending.objects.insert(s.pending.objects.end(), change.objects.begin(), change.objects.end());
  if (s.mode != CanvasMode::Working) s.followChanges();
}

void CanvasView::setMode(CanvasMode mode, const CanvasQuestion& question) {
  State& s = *state_;
  const bool isOther = mode != s.mode || question.wanted != s.question.wanted;
  s.mode = mode;
  s.question = question;
  if (isOther && s.rubber && s.rubber->what == State::Rubber::For::Selecting) s.rubber.reset();
  s.snaps.clear();
  s.snapPlace = 0;
  s.tooltip.clear();
  if (mode == CanvasMode::Working) {
    s.workingTimer.start(kWaitCursorMs);
  } else {
    s.followChanges();
    s.beginLayingOut();
    s.workingTimer.stop();
    if (!s.refineTimer.isActive()) s.refineTimer.start(kRefineMs);
  }
  if (s.mayPoint() && s.isInside)
    s.pointerMoved(s.cursor, s.modifiersHeld);
  else
    s.updateHover(true);
  s.updateCursorShape();
  update();
}

void CanvasView::setTypedText(const QString& text) {
  if (text == state_->typedText) return;
  state_->typedText = text;
  update();
}

void CanvasView::setSelected(const std::vector<database::Slot*>& entities) {
  if (entities != state_->selected) state_->select(entities);
}

void CanvasView::setHighlighted(const std::vector<database::Slot*>& entities) {
  state_->highlighted = entities;
  update();
}

void CanvasView::blink(const std::vector<database::Slot*>& entities) {
  if (style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) <= 0) return;  // less motion is wished
  constexpr std::size_t kMostBlinking = 2000;  // more keep frames waiting, and nobody looks for them
  if (entities.size() > kMostBlinking) return;
  state_->blinking = entities;
  state_->blinkStrength = 1;
  state_->blinkTimer.start(kBlinkMs / 10);
  update();
}

void CanvasView::setTooltipSource(std::function<std::wstring(const AcGePoint3d&)> source) {
  state_->tooltipSource = std::move(source);
}

// ---- the view
// --------------------------------------------------------------------------------------------------------

geometry::Box CanvasView::visibleBox() const {
  const Scene* scene = state_->scene();
  return scene == nullptr ? geometry::Box{} : scene->toPlan(state_->frame.visible());
}

QRectF CanvasView::placeOf(const std::vector<database::Slot*>& entities) const {
  Box box;
  for (const SceneRef entity : state_->refs(entities))
    if (entity) box.add(entity->box);
  if (box.isEmpty()) return {};
  const QPointF corner = state_->frame.toPixel({box.minX, box.minY}),
                other = state_->frame.toPixel({box.maxX, box.maxY});
  return QRectF(corner, other).normalized();
}

double CanvasView::unitsPerPixel() const { return 1 / state_->frame.scale(); }

void CanvasView::zoomToDrawing() {
  State& s = *state_;
  if (s.shown == nullptr) return;
  const Strays strays = withoutStrays(*s.scene());
  Box box = strays.extents;
  if (box.isEmpty()) box = {-10, -10, 10, 10};
  s.showBox(s.scene()->toPlan(box), 0.04);
  if (strays.left > 0) emit straysLeftOut(static_cast<int>(strays.left));
}

void CanvasView::zoomToAll() {
  if (const Scene* scene = state_->scene(); scene != nullptr) state_->showBox(scene->toPlan(scene->extents), 0.04);
}

void CanvasView::zoomTo(const geometry::Box& box) { state_->showBox(box, 0); }

void CanvasView::zoomTo(const std::vector<database::Slot*>& entities, double margin) {
  const Scene* scene = state_->scene();
  if (scene == nullptr) return;
  Box box;
  for (const SceneRef entity : state_->refs(entities))
    if (entity) box.add(entity->box);
  if (box.isEmpty()) return;
  const double side = std::max(box.maxX - box.minX, box.maxY - box.minY) * margin;
  box = {box.minX - side, box.minY - side, box.maxX + side, box.maxY + side};
  state_->showBox(scene->toPlan(box), 0);
}

void CanvasView::zoomBy(double factor) { state_->zoomAbout(QPointF(width() / 2.0, height() / 2.0), factor); }

void CanvasView::zoomPrevious() {
  State& s = *state_;
  if (s.shown == nullptr || s.shown->previous.empty()) return;
  const auto [zoom, centre] = s.shown->previous.back();
  s.shown->previous.pop_back();
  s.frame.zoom = zoom;
  s.frame.centre = s.scene()->toScene(centre);
  s.viewMoved();
}

void CanvasView::askForWindow() {
  leave();
  state_->task = State::Task::ZoomWindow;
  state_->updateCursorShape();
  update();
}

void CanvasView::askForRectangle(std::function<void(std::optional<geometry::Box>)> then, double widthToHeight) {
  leave();
  state_->task = State::Task::Rectangle;
  state_->taskRatio = widthToHeight;
  state_->taskDone = std::move(then);
  state_->updateCursorShape();
}

void CanvasView::askForPlace(QSizeF frame, std::function<void(std::optional<geometry::Box>)> then) {
  leave();
  state_->task = State::Task::Place;
  state_->taskFrame = frame;
  state_->taskDone = std::move(then);
  state_->updateCursorShape();
}

// ---- settings
// --------------------------------------------------------------------------------------------------------

void CanvasView::setDarkGround(bool dark) {
  state_->isDark = dark;
  state_->isSharp = false;
  state_->tiles.setLook(state_->look());
  update();
}
void CanvasView::setSnapping(bool on) {
  state_->isSnapping = on;
  if (state_->isInside) state_->pointerMoved(state_->cursor, state_->modifiersHeld);
}
void CanvasView::setSnapKinds(std::uint32_t kinds) {
  state_->snapKinds = kinds;
  if (state_->isInside) state_->pointerMoved(state_->cursor, state_->modifiersHeld);
}
void CanvasView::setOrtho(bool on) {
  state_->isOrtho = on;
  update();
}
void CanvasView::setKeyboardPointing(bool on) {
  State& s = *state_;
  s.isKeyboardPointing = on;
  if (on && !s.isInside) s.pointerMoved(QPointF(width() / 2.0, height() / 2.0), {});
  update();
}
void CanvasView::setGroupsWhole(bool whole) { state_->groupsWhole = whole; }
bool CanvasView::isSnapping() const { return state_->isSnapping; }
bool CanvasView::isOrtho() const { return state_->isOrtho; }
bool CanvasView::isKeyboardPointing() const { return state_->isKeyboardPointing; }
bool CanvasView::isDarkGround() const { return state_->isDark; }
database::Slot* CanvasView::hovered() const { return state_->hovered(); }
bool CanvasView::isSharp() const {
  return state_->isSharp && !state_->refineTimer.isActive() && state_->layingOut == nullptr && !state_->isOutOfDate;
}
std::uint32_t CanvasView::snapKinds() const { return state_->snapKinds; }

std::optional<AcGePoint3d> CanvasView::cursorPoint() const {
  if (state_->shown == nullptr || !state_->isInside) return std::nullopt;
  const Point p = state_->cursorPlan();
  return AcGePoint3d{p.x, p.y, 0};
}

bool CanvasView::leave() {
  State& s = *state_;
  if (!s.hasTaskOrRubber()) return false;
  s.rubber.reset();
  if (s.task != State::Task::None) s.endTask(std::nullopt);
  s.updateCursorShape();
  update();
  return true;
}

void CanvasView::resizeEvent(QResizeEvent* event) {
  State& s = *state_;
  if (s.frame.size == QSizeF(event->size()) && s.frame.devicePixelRatio == devicePixelRatioF()) return;
  // The middle stays in the middle.
  s.frame.size = event->size();
  s.frame.devicePixelRatio = devicePixelRatioF();
  s.tiles.setLook(s.look());
  if (s.shown != nullptr) s.viewMoved();
}

void CanvasView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  state_->frame.devicePixelRatio = devicePixelRatioF();
  state_->tiles.setLook(state_->look());
}

}  // namespace host::window
