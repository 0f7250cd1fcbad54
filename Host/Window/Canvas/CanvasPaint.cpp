// The canvas's picture with its marks.
#include <QPaintEvent>
#include <QPainter>

#include "Window/Canvas/CanvasState.h"

namespace host::window {
namespace {

QColor qColor(picture::Color c) { return {c.red, c.green, c.blue, c.alpha}; }

}  // namespace

void CanvasView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  state_->paint(painter);
}

void CanvasView::State::paint(QPainter& painter) {
  painter.fillRect(view.rect(), qColor(groundColors(isDark).ground));
  if (shown != nullptr) {
    isSharp = tiles.paint(painter, frame);
    requestTiles();
    paintMarks(painter);
  }
  if (layingOut == nullptr) return;
  const auto& space = layingOut->space != nullptr ? *layingOut->space : *shown;
  const QString words = CanvasView::tr("Drawing %1 things…").arg(space.space->entities.size());
  constexpr int kMargin = 6;
  QRect label = painter.fontMetrics().boundingRect(words).adjusted(-kMargin, -kMargin, kMargin, kMargin);
  label.moveCenter(view.rect().center());
  painter.fillRect(label, qColor(groundColors(isDark).ground));
  painter.setPen(isDark ? QColor(0xA3, 0xAB, 0xB5) : QColor(0x57, 0x60, 0x6A));
  painter.drawText(label, Qt::AlignCenter, words);
}

std::vector<SceneRef> CanvasView::State::refs(const std::vector<database::Slot*>& entities) const {
  std::vector<SceneRef> found;
  if (shown == nullptr) return found;
  found.reserve(entities.size());
  for (const database::Slot* entity : entities)
    if (const SceneRef ref = shown->keeper->find(entity)) found.push_back(ref);
  return found;
}

void CanvasView::State::paintMarks(QPainter& painter) {
  MarkPainter marks(painter, frame, isDark);
  if (selectedInTiles == nullptr) marks.entities(refs(selected), Mark::Selected);
  marks.entities(refs(highlighted), Mark::Highlight);
  if (!blinking.empty()) marks.entities(refs(blinking), Mark::Hover, blinkStrength);
  if (mayPoint() && !rubber && task == Task::None && hovered() != nullptr)
    marks.entities(refs(taken(hovered())), Mark::Hover);
  if (mode == CanvasMode::Asking) previews.paint(marks, frame, previewInput());
  if (isInside) paintPointer(marks);
}

void CanvasView::State::paintPointer(MarkPainter& marks) {
  QString words = hint();
  if (task == Task::Place) {
    const Point at = planAt(cursor);
    const Point half{taskFrame.width() / 2, taskFrame.height() / 2};
    marks.rectangle(pixelOf(at - half), pixelOf(at + half), Mark::WindowInside);
  } else if (rubber) {
    const QPointF corner = pixelOf(rubber->corner);
    const QPointF opposite = pixelOf(oppositeCorner(cursor));
    const bool isCrossing = rubber->what == Rubber::For::Selecting && opposite.x() < corner.x();
    marks.rectangle(corner, opposite, isCrossing ? Mark::WindowCrossing : Mark::WindowInside);
  }
  const bool isBusy = mode == CanvasMode::Closed || mode == CanvasMode::Working;
  const bool isAsked = mode == CanvasMode::Asking;
  const bool takesNothing = isAsked && !asksPoint() && !picksOne() && !picksMany();
  if (!hasTaskOrRubber() && (isBusy || takesNothing || panFrom)) return marks.words(cursor, words);
  QPointF at = cursor;
  if (asksPoint() && task == Task::None) {
    if (!snaps.empty()) {
      at = pixelOf(snaps[snapPlace].at);
      marks.snap(at, snaps[snapPlace].kind);
    } else {
      at = pixelOf(cursorPlan());
    }
  }
  if (!picksOne() && !(isAsked && picksMany())) marks.crosshair(at, kPickAperturePx);
  if (!asksPoint() && task == Task::None) marks.pickBox(cursor, kPickAperturePx);
  const bool isTooltip = words.isEmpty();
  marks.words(cursor, isTooltip ? tooltip : words, isTooltip);
}

PreviewInput CanvasView::State::previewInput() const {
  PreviewInput input{question, typedText, {}, shown->drawing, shown->keeper.get()};
  if (isInside) input.cursor = cursorPlan();
  return input;
}

/// Words at the cursor while something is going on.
QString CanvasView::State::hint() const {
  if (rubber && rubber->what == Rubber::For::Selecting) {
    const bool isCrossing = pixelOf(oppositeCorner(cursor)).x() < pixelOf(rubber->corner).x();
    QString text =
        isCrossing ? CanvasView::tr("%n hit", nullptr, inside) : CanvasView::tr("%n inside", nullptr, inside);
    if (locked > 0) text += u'\n' + CanvasView::tr("%n locked", nullptr, locked);
    return text;
  }
  if (!mayPoint() || task != Task::None) return {};
  if (mode == CanvasMode::Asking && !picksOne() && !picksMany()) return previews.words(previewInput());
  if (place > 0 && order.size() > 1) {
    return QString::number(place + 1) + u'/' + QString::number(order.size()) + QStringLiteral(" · ") +
           wordsOf(hovered());
  }
  return {};
}

}  // namespace host::window
