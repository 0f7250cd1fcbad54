// What pointing at the canvas and its keys do.
#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QWheelEvent>
#include <cmath>

#include "Text/Text.h"
#include "Window/Canvas/CanvasState.h"

namespace host::window {
namespace {

using database::Slot;

constexpr int kTooltipRestMs = 500;
constexpr double kWheelNotch = 120, kZoomNotch = 1.25, kFineNotch = 1.05;
constexpr double kSamePlacePx = 5;
constexpr double kSmallestSnapDeviationPx = 0.5;
constexpr int kHeldMs = 500;  // of the right button: a menu instead of Enter

QString handleText(const Slot& entity) {
  return QStringLiteral("(handent \"%1\")").arg(QString::fromStdString(text::formatHandle(entity.handle)));
}

}  // namespace

// ---- where the pointer is
// --------------------------------------------------------------------------------------------

Point CanvasView::State::planAt(QPointF pixel) const { return scene()->toPlan(frame.toScene(pixel)); }
QPointF CanvasView::State::pixelOf(Point plan) const { return frame.toPixel(scene()->toScene(plan)); }

/// A place of the cursor has no more digits than the view can tell apart.
Point CanvasView::State::roundedPoint(QPointF pixel) const {
  const Point p = planAt(pixel);
  const double exponent = std::floor(std::log10(0.2 / frame.scale()));
  if (exponent >= 0) {
    const double step = std::pow(10, exponent);
    return {std::round(p.x / step) * step, std::round(p.y / step) * step};
  }
  const double parts = std::pow(10, std::min(-exponent, 12.0));
  const auto rounded = [parts](double v) {
    const double whole = std::round(v * parts);
    return std::abs(whole) < 9e15 ? whole / parts : v;
  };
  return {rounded(p.x), rounded(p.y)};
}

Point CanvasView::State::cursorPlan() const {
  if (asksPoint() && !snaps.empty()) return snaps[snapPlace].at;
  const Point p = roundedPoint(cursor);
  const bool isHeld = (modifiersHeld & Qt::ShiftModifier) != 0;
  if (asksPoint() && question.base && isOrtho != isHeld)
    return geometry::orthoPoint({question.base->x, question.base->y}, p);
  return p;
}

void CanvasView::State::pointerMoved(QPointF at, Qt::KeyboardModifiers modifiers) {
  if (shown == nullptr) return;
  constexpr double kTooltipGonePx = 5;
  const QPointF moved = at - cursor;
  const bool isElsewhere = std::hypot(moved.x(), moved.y()) > 0 || !isInside;
  cursor = at;
  isInside = true;
  modifiersHeld = modifiers;
  const QPointF away = at - orderAt;
  const bool isFar = std::hypot(away.x(), away.y()) > kSamePlacePx;
  if (!tooltip.isEmpty() && std::hypot(away.x(), away.y()) > kTooltipGonePx) tooltip.clear();
  if (isElsewhere && mayPoint()) tooltipTimer.start(kTooltipRestMs);
  if (rubber)
    updateCounts();
  else
    updateHover(isFar);
  updateSnaps(modifiers);
  const Point plan = mayPoint() ? cursorPlan() : planAt(at);
  emit view.cursorMoved({plan.x, plan.y, 0});
  view.update();
}

/// What a click would take. A place reached with Tab is kept until the cursor has moved on.
void CanvasView::State::updateHover(bool isNew) {
  const Slot* const before = hovered();
  const std::size_t placeBefore = place, countBefore = order.size();
  if (!mayPoint() || !isInside || hasTaskOrRubber() || panFrom || !(picksOne() || picksMany())) {
    order.clear();
    place = 0;
  } else if (isNew || place == 0) {
    if (isNew) orderAt = cursor;
    order = pointAt(*shown->keeper, frame.toScene(cursor), kPickAperturePx / frame.scale(),
                    picksOne()                 ? PickFor::One
                    : mode == CanvasMode::Rest ? PickFor::Rest
                                               : PickFor::Many);
    place = 0;
  }
  if (before != hovered() || placeBefore != place || countBefore != order.size())
    emit view.hoverChanged(hovered(), order.empty() ? 0 : static_cast<int>(place) + 1, static_cast<int>(order.size()));
}

void CanvasView::State::updateSnaps(Qt::KeyboardModifiers modifiers) {
  snaps.clear();
  snapPlace = 0;
  if (!asksPoint() || !mayPoint() || !isInside || !isSnapping || task != Task::None) return;
  if ((modifiers & Qt::ControlModifier) != 0) return;
  const double reach = kSnapAperturePx / frame.scale();
  const Point at = frame.toScene(cursor);
  std::vector<geometry::SnapLine> lines;
  constexpr std::size_t kMostLines = 4000;
  shown->keeper->query({at.x - reach, at.y - reach, at.x + reach, at.y + reach}, [&](SceneRef entity) {
    if (!entity->isPickable || lines.size() > kMostLines) return;
    const auto [known, isNew] = snapLines.try_emplace(entity->slot);
    if (isNew) known->second = geometry::snapLines(*entity->slot, kSmallestSnapDeviationPx / frame.scale());
    lines.insert(lines.end(), known->second.begin(), known->second.end());
  });
  std::optional<Point> base;
  if (question.base) base = Point{question.base->x, question.base->y};
  snaps = geometry::findSnaps(lines, planAt(cursor), reach, kSnapAdvantagePx / frame.scale(), snapKinds, base);
}

void CanvasView::State::clearPointer() {
  isInside = false;
  tooltip.clear();
  tooltipTimer.stop();
  snaps.clear();
  updateHover(true);
  view.update();
}

/// To the next or former of what lies at the cursor.
bool CanvasView::State::cycle(int step) {
  if (asksPoint() && !snaps.empty()) {
    const std::size_t count = snaps.size();
    snapPlace = (snapPlace + count + static_cast<std::size_t>(step + static_cast<int>(count))) % count;
    view.update();
    const Point plan = cursorPlan();
    emit view.cursorMoved({plan.x, plan.y, 0});
    return true;
  }
  if (order.empty()) return false;
  const auto count = static_cast<int>(order.size());
  place = static_cast<std::size_t>((static_cast<int>(place) + step + count) % count);
  tooltip.clear();
  emit view.hoverChanged(hovered(), static_cast<int>(place) + 1, count);
  view.update();
  return true;
}

std::vector<Slot*> CanvasView::State::taken(Slot* entity) const {
  if (entity == nullptr) return {};
  return groupsWhole && picksMany() ? withGroups(entity) : std::vector<Slot*>{entity};
}

// ---- clicks
// ----------------------------------------------------------------------------------------------------------

void CanvasView::State::changeSelection(const std::vector<Slot*>& entities, bool isRemoving) {
  std::vector<Slot*> next = selected;
  if (isRemoving) {
    const std::unordered_set<const Slot*> gone(entities.begin(), entities.end());
    std::erase_if(next, [&](const Slot* slot) { return gone.contains(slot); });
  } else {
    for (Slot* entity : entities)
      if (selectedSet.insert(entity).second) next.push_back(entity);
  }
  select(next);
  emit view.selectionEdited(next);
}

void CanvasView::State::pick(Qt::KeyboardModifiers modifiers) {
  Slot* const entity = hovered();
  if (entity == nullptr) {
    emit view.refused();
    return;
  }
  const bool isRemoving = (modifiers & Qt::ShiftModifier) != 0;
  if (mode == CanvasMode::Rest)
    changeSelection(taken(entity), isRemoving);
  else if (picksMany() && isRemoving)
    emit view.answered({QStringLiteral("R"), handleText(*entity), QStringLiteral("A")});
  else
    emit view.answered({handleText(*entity)});
}

void CanvasView::State::selectWindow(Point corner, Point opposite, bool isCrossing, Qt::KeyboardModifiers modifiers) {
  const bool isRemoving = (modifiers & Qt::ShiftModifier) != 0;
  if (mode == CanvasMode::Rest) {
    std::vector<Slot*> found =
        inWindow(*shown->keeper, corner, opposite, isCrossing ? geometry::Window::Crossing : geometry::Window::Inside);
    if (groupsWhole) found = withGroups(found);
    if (!found.empty()) changeSelection(found, isRemoving);
    return;
  }
  QStringList lines{isCrossing ? QStringLiteral("C") : QStringLiteral("W"), pointText(corner), pointText(opposite)};
  if (isRemoving) {
    lines.prepend(QStringLiteral("R"));
    lines.append(QStringLiteral("A"));
  }
  emit view.answered(lines);
}

Point CanvasView::State::oppositeCorner(QPointF at) const {
  Point opposite = roundedPoint(at);
  if (!rubber || rubber->what != Rubber::For::Rectangle || !(taskRatio > 0)) return opposite;
  // The wider of both sides counts; the other follows.
  const Point d = opposite - rubber->corner;
  const double width = std::max(std::abs(d.x), std::abs(d.y) * taskRatio), height = width / taskRatio;
  return rubber->corner + Point{std::copysign(width, d.x), std::copysign(height, d.y)};
}

/// Counts at once, or, where that takes longer than a frame, as soon as the pointer rests a little.
void CanvasView::State::updateCounts() {
  constexpr qint64 kFrameMs = 8;
  constexpr int kLaterMs = 40;
  if (countMs <= kFrameMs)
    countWindow();
  else if (!countTimer.isActive())
    countTimer.start(kLaterMs + static_cast<int>(countMs));
}

void CanvasView::State::countWindow() {
  QElapsedTimer taken;
  taken.start();
  inside = locked = 0;
  if (!rubber || rubber->what != Rubber::For::Selecting || !mayPoint()) return;
  const Point opposite = oppositeCorner(cursor);
  const bool isCrossing = opposite.x < rubber->corner.x;
  for (const Slot* slot : inWindow(*shown->keeper, rubber->corner, opposite,
                                   isCrossing ? geometry::Window::Crossing : geometry::Window::Inside)) {
    ++inside;
    if (const SceneRef entity = shown->keeper->find(slot); entity && entity->isLocked) ++locked;
  }
  countMs = taken.elapsed();
}

void CanvasView::State::endTask(const std::optional<Box>& box) {
  task = Task::None;
  rubber.reset();
  const auto done = std::move(taskDone);
  taskDone = nullptr;
  updateCursorShape();
  view.update();
  if (done) done(box);
}

void CanvasView::State::finishRubber(QPointF at, Qt::KeyboardModifiers modifiers) {
  const Rubber ended = *rubber;
  const Point opposite = oppositeCorner(at);
  Box box;
  box.add(ended.corner);
  box.add(opposite);
  rubber.reset();
  if (ended.what == Rubber::For::Selecting) {
    if (mayPoint()) selectWindow(ended.corner, opposite, opposite.x < ended.corner.x, modifiers);
  } else {
    if (ended.what == Rubber::For::Zooming && box.maxX > box.minX && box.maxY > box.minY) showBox(box, 0);
    endTask(box);
  }
  if (isInside) pointerMoved(at, modifiers);
}

void CanvasView::State::pressed(QPointF at, Qt::KeyboardModifiers modifiers) {
  if (shown == nullptr) return;
  pointerMoved(at, modifiers);
  tooltip.clear();
  tooltipTimer.stop();
  if (rubber) {  // the second click of two
    finishRubber(at, modifiers);
    return;
  }
  if (task == Task::Place) {
    const Point middle = roundedPoint(at);
    endTask(Box{middle.x - taskFrame.width() / 2, middle.y - taskFrame.height() / 2, middle.x + taskFrame.width() / 2,
                middle.y + taskFrame.height() / 2});
    return;
  }
  if (task != Task::None) {
    rubber =
        Rubber{task == Task::ZoomWindow ? Rubber::For::Zooming : Rubber::For::Rectangle, roundedPoint(at), true, at};
    return;
  }
  if (!mayPoint()) {
    emit view.refused();
    return;
  }
  if (asksPoint()) {
    emit view.answered({pointText(cursorPlan())});
    return;
  }
  if (picksOne()) return pick(modifiers);
  if (!picksMany()) {
    emit view.refused();
    return;
  }
  // A press is a click until the pointer has moved: then it is the first corner of a window.
  rubber = Rubber{Rubber::For::Selecting, roundedPoint(at), true, at};
  inside = locked = 0;
  countMs = 0;
}

void CanvasView::State::released(QPointF at, Qt::KeyboardModifiers modifiers) {
  if (!rubber || !rubber->isHeld) return;
  rubber->isHeld = false;
  const QPointF moved = at - rubber->pressed;
  if (std::hypot(moved.x(), moved.y()) >= kDragPx) return finishRubber(at, modifiers);
  if (rubber->what != Rubber::For::Selecting) return;
  const Rubber begun = *rubber;
  rubber.reset();
  updateHover(false);
  if (hovered() != nullptr)
    pick(modifiers);
  else if (mayPoint() && picksMany())
    rubber = begun;  // on nothing: the first of two corners
  view.update();
}

// ---- events
// ----------------------------------------------------------------------------------------------------------

void CanvasView::State::updateCursorShape() {
  Qt::CursorShape shape = Qt::BlankCursor;  // the crosshair is painted
  if (panFrom)
    shape = Qt::ClosedHandCursor;
  else if (isSpaceHeld)
    shape = Qt::OpenHandCursor;
  else if (mode == CanvasMode::Working && !workingTimer.isActive())
    shape = Qt::WaitCursor;
  else if (task != Task::None)
    shape = Qt::BlankCursor;
  else if (mode == CanvasMode::Closed || mode == CanvasMode::Working ||
           (mode == CanvasMode::Asking && !asksPoint() && !picksOne() && !picksMany()))
    shape = Qt::ArrowCursor;
  view.setCursor(shape);
}

void CanvasView::wheelEvent(QWheelEvent* event) {
  State& s = *state_;
  // Two fingers on a touchpad come as pixels; a wheel turns by angles.
  const bool isTouchpad =
      event->hasPixelDelta() ||
      (event->pointingDevice() != nullptr && event->pointingDevice()->type() == QInputDevice::DeviceType::TouchPad);
  if (isTouchpad && !event->pixelDelta().isNull() && (event->modifiers() & Qt::ControlModifier) == 0) {
    s.panBy(event->pixelDelta());
  } else {
    const double notches =
        (event->angleDelta().y() != 0 ? event->angleDelta().y() : event->angleDelta().x()) / kWheelNotch;
    const double notch = (event->modifiers() & Qt::ControlModifier) != 0 ? kFineNotch : kZoomNotch;
    if (notches != 0) s.zoomAbout(event->position(), std::pow(notch, notches));
  }
  if (s.isInside) s.pointerMoved(event->position(), event->modifiers());
  event->accept();
}

bool CanvasView::event(QEvent* event) {
  if (event->type() == QEvent::NativeGesture) {
    const auto* gesture = static_cast<QNativeGestureEvent*>(event);
    if (gesture->gestureType() == Qt::ZoomNativeGesture) {
      state_->zoomAbout(gesture->position(), std::max(0.1, 1 + gesture->value()));
      return true;
    }
    if (gesture->gestureType() == Qt::PanNativeGesture) {
      state_->panBy(gesture->delta());
      return true;
    }
  }
  // Tab goes through what lies at the cursor; it does not leave the canvas while there is anything.
  if (event->type() == QEvent::KeyPress && takeKey(static_cast<QKeyEvent*>(event))) return true;
  return QWidget::event(event);
}

void CanvasView::mousePressEvent(QMouseEvent* event) {
  State& s = *state_;
  const QPointF at = event->position();
  s.tooltip.clear();
  s.tooltipTimer.stop();
  if (event->button() == Qt::MiddleButton || (event->button() == Qt::LeftButton && s.isSpaceHeld)) {
    if (s.shown != nullptr) s.remember();
    s.panFrom = at;
    s.wasSpacePanned = s.isSpaceHeld;
    s.updateCursorShape();
  } else if (event->button() == Qt::LeftButton) {
    s.pressed(at, event->modifiers());
  } else if (event->button() == Qt::RightButton) {
    s.rightPressed = at;
    s.rightHeld.start();
  }
  update();
}

void CanvasView::mouseMoveEvent(QMouseEvent* event) {
  State& s = *state_;
  if (s.panFrom) {
    s.panBy(event->position() - *s.panFrom);
    s.panFrom = event->position();
  }
  s.pointerMoved(event->position(), event->modifiers());
}

void CanvasView::mouseReleaseEvent(QMouseEvent* event) {
  State& s = *state_;
  if (s.panFrom && (event->button() == Qt::MiddleButton || event->button() == Qt::LeftButton)) {
    s.panFrom.reset();
    s.updateCursorShape();
    s.pointerMoved(event->position(), event->modifiers());
  } else if (event->button() == Qt::LeftButton) {
    s.released(event->position(), event->modifiers());
  } else if (event->button() == Qt::RightButton && s.rightPressed) {
    s.rightPressed.reset();
    if (leave()) return;
    if (s.rightHeld.elapsed() >= kHeldMs)
      emit contextMenuWanted(event->globalPosition().toPoint());
    else if (s.mode == CanvasMode::Rest || s.mode == CanvasMode::Asking)
      emit entered();
  }
}

void CanvasView::mouseDoubleClickEvent(QMouseEvent* event) {
  State& s = *state_;
  if (event->button() == Qt::MiddleButton) {
    s.panFrom.reset();
    s.updateCursorShape();
    return zoomToDrawing();
  }
  if (event->button() == Qt::LeftButton && s.mode == CanvasMode::Rest && !s.hasTaskOrRubber() &&
      s.hovered() != nullptr) {
    emit doubleClicked(s.hovered());
    return;
  }
  mousePressEvent(event);
}

void CanvasView::leaveEvent(QEvent*) {
  if (!state_->isKeyboardPointing) state_->clearPointer();
}

bool CanvasView::takeKey(QKeyEvent* event) {
  State& s = *state_;
  const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
  QPointF way;
  switch (event->key()) {
    case Qt::Key_Left:
      way = {-1, 0};
      break;
    case Qt::Key_Right:
      way = {1, 0};
      break;
    case Qt::Key_Up:
      way = {0, -1};
      break;
    case Qt::Key_Down:
      way = {0, 1};
      break;
    case Qt::Key_Tab:
      return modifiers == Qt::NoModifier && s.isInside && s.mayPoint() && s.cycle(1);
    case Qt::Key_Backtab:
      return s.isInside && s.mayPoint() && s.cycle(-1);
    case Qt::Key_Escape:
      return leave();
    case Qt::Key_Insert:
      if (!s.isKeyboardPointing || !s.isInside) return false;
      s.pressed(s.cursor, modifiers);
      s.released(s.cursor, modifiers);
      return true;
    default:
      return false;
  }
  if (s.isKeyboardPointing) {
    const double step = (modifiers & Qt::ControlModifier) != 0 ? 50 : (modifiers & Qt::ShiftModifier) != 0 ? 1 : 10;
    QPointF to = s.isInside ? s.cursor + way * step : QPointF(width() / 2.0, height() / 2.0);
    to = {std::clamp(to.x(), 0.0, width() - 1.0), std::clamp(to.y(), 0.0, height() - 1.0)};
    s.pointerMoved(to, {});
    return true;
  }
  if (modifiers != Qt::ControlModifier) return false;
  constexpr double kShare = 0.1;
  s.panBy({-way.x() * width() * kShare, -way.y() * height() * kShare});
  return true;
}

void CanvasView::keyPressEvent(QKeyEvent* event) {
  State& s = *state_;
  s.tooltip.clear();
  if (event->key() == Qt::Key_Shift || event->key() == Qt::Key_Control) {
    if (s.isInside)
      s.pointerMoved(s.cursor,
                     event->modifiers() | (event->key() == Qt::Key_Shift ? Qt::ShiftModifier : Qt::ControlModifier));
    return QWidget::keyPressEvent(event);
  }
  switch (event->key()) {
    case Qt::Key_Escape:
      emit cancelled();
      return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      emit entered();
      return;
    case Qt::Key_Space:
      if (!event->isAutoRepeat()) {
        s.isSpaceHeld = true;
        s.wasSpacePanned = false;
        s.updateCursorShape();
      }
      return;
    case Qt::Key_Delete:
      if (s.mode == CanvasMode::Rest) {
        emit eraseWanted();
        return;
      }
      break;
    case Qt::Key_F3:
      setSnapping(!s.isSnapping);
      return;
    case Qt::Key_F8:
      setOrtho(!s.isOrtho);
      return;
    case Qt::Key_F9:
      setKeyboardPointing(!s.isKeyboardPointing);
      return;
    default:
      break;
  }
  const QString letters = event->text();
  const bool isCommand = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
  if (!letters.isEmpty() && letters.at(0).isPrint() && !isCommand) {
    emit typed(letters);
    return;
  }
  QWidget::keyPressEvent(event);
}

void CanvasView::keyReleaseEvent(QKeyEvent* event) {
  State& s = *state_;
  if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) {
    // Space alone is Enter; held, it moves the view.
    const bool wasPanned = s.wasSpacePanned;
    s.isSpaceHeld = s.wasSpacePanned = false;
    s.updateCursorShape();
    if (!wasPanned) emit entered();
    return;
  }
  if ((event->key() == Qt::Key_Shift || event->key() == Qt::Key_Control) && s.isInside)
    s.pointerMoved(s.cursor,
                   event->modifiers() & ~(event->key() == Qt::Key_Shift ? Qt::ShiftModifier : Qt::ControlModifier));
  QWidget::keyReleaseEvent(event);
}

}  // namespace host::window
