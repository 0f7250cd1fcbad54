// The canvas has large plans laid out by a worker: when they are opened, and when much of them has changed.
#include <QThreadPool>
#include <QTimer>
#include <limits>
#include <new>
#include <utility>

#include "Window/Canvas/CanvasState.h"
#include "Window/Canvas/CanvasView.h"

namespace host::window {
namespace {

constexpr Box kEverywhere{-1e16, -1e16, 1e16, 1e16};

}  // namespace

/// The worker has the space until it is done. It begins when the loop of events runs again: whoever opens a drawing is
/// through with it then.
void CanvasView::State::layOut(std::unique_ptr<SpaceView> space) {
  show(nullptr);
  layingOut = std::make_shared<LayingOut>();
  layingOut->space = std::move(space);
  beginLayingOutSoon();
}

/// The picture stays as it was until the worker has done, and can be moved; nothing is pointed at meanwhile.
void CanvasView::State::layOutAnew() {
  pending = {};
  isOutOfDate = true;
  order.clear();
  place = 0;
  layingOut = std::make_shared<LayingOut>();
  layingOut->former = shown->keeper.get();
  beginLayingOutSoon();
  view.update();
}

void CanvasView::State::beginLayingOutSoon() {
  QTimer::singleShot(0, &view, [this] {
    if (mode != CanvasMode::Working) beginLayingOut();
  });
}

void CanvasView::State::followChanges() {
  const bool hasChanges = pending.isWhole || !pending.objects.empty();
  if (shown == nullptr || (!hasChanges && (!isOutOfDate || layingOut != nullptr))) return;
  if (layingOut != nullptr) leaveLayingOut();
  // Who answers a question wants to point, so that the window waits.
  if (mode == CanvasMode::Rest && isOutOfDate) return layOutAnew();
  const editor::DrawingChange change = std::exchange(pending, {});
  if (isOutOfDate) {
    const std::atomic<bool> isUnwanted = false;
    shown->keeper = std::make_unique<SceneKeeper>(*shown->keeper, isUnwanted);
    isOutOfDate = false;
    return sceneChanged({kEverywhere});
  }
  const std::size_t most = mode == CanvasMode::Rest ? kMostAtOnce : std::numeric_limits<std::size_t>::max();
  if (const std::optional<std::vector<Box>> parts = shown->keeper->update(change, most))
    sceneChanged(*parts);
  else
    layOutAnew();
}

void CanvasView::State::beginLayingOut() {
  if (layingOut == nullptr || layingOut->hasBegun) return;
  layingOut->hasBegun = true;
  // What the drawing looks up when it is first asked for is looked up here.
  (void)(layingOut->former != nullptr ? *shown : *layingOut->space).drawing->layouts();
  QThreadPool::globalInstance()->start([job = layingOut, target = &view] {
    try {
      if (job->former == nullptr)
        job->made = std::make_unique<SceneKeeper>(*job->space->drawing, *job->space->space);
      else if (!job->isUnwanted)
        job->made = std::make_unique<SceneKeeper>(*job->former, job->isUnwanted);
    } catch (const std::bad_alloc&) {
      job->made = nullptr;
    }
    QMetaObject::invokeMethod(
        target,
        [target, job] {
          if (target->state_->layingOut == job) target->state_->endLayingOut();
        },
        Qt::QueuedConnection);
    job->done.release();  // after the last use of the canvas, which waits for this before it goes
  });
}

void CanvasView::State::endLayingOut() {
  if (layingOut == nullptr) return;
  beginLayingOut();
  layingOut->done.acquire();
  const std::shared_ptr<LayingOut> job = std::exchange(layingOut, nullptr);
  if (job->made == nullptr) return;  // memory has ended: nothing is shown, or the former picture
  if (job->former != nullptr) {
    shown->keeper = std::move(job->made);
    isOutOfDate = false;
    return sceneChanged({kEverywhere});
  }
  job->space->keeper = std::move(job->made);
  job->space->changeCount = job->space->drawing->changeCount();
  spaces.push_back(std::move(job->space));
  show(spaces.back().get());
}

void CanvasView::State::leaveLayingOut() {
  const std::shared_ptr<LayingOut> job = std::exchange(layingOut, nullptr);
  job->isUnwanted = true;
  if (job->hasBegun) job->done.acquire();
}

void CanvasView::finishLayingOut() {
  State& s = *state_;
  if (s.layingOut == nullptr) return;
  if (s.layingOut->former != nullptr)
    s.leaveLayingOut();
  else
    s.endLayingOut();
}

bool CanvasView::isLayingOut() const { return state_->layingOut != nullptr; }

}  // namespace host::window
