#include "Window/Frame/Engine.h"

#include <QApplication>
#include <QKeyEvent>
#include <algorithm>
#include <unordered_set>

#include "Window/Commands/Language.h"

namespace host::window {
namespace {

constexpr int kPumpMs = 40;

editor::ApplicationOptions applicationOptions(const DesktopOptions& options, editor::Observer& observer) {
  editor::ApplicationOptions wanted;
  wanted.observer = &observer;
  wanted.supportFolders = options.supportFolders;
  wanted.failureCaptions = options.failureCaptions;
  wanted.problemsOnScreen = false;  // what failed is told by boxes, too
  wanted.dialogsByHand = true;
  return wanted;
}

/// Of the processor: dialogs of the command may wait for their user as long as they like.
qint64 workedMs(std::clock_t since) { return static_cast<qint64>(std::clock() - since) * 1000 / CLOCKS_PER_SEC; }

}  // namespace

Engine::Engine(const DesktopOptions& options)
    : application_(std::make_unique<editor::Application>(applicationOptions(options, *this))) {
  if (options.extend) options.extend(*application_);
  connect(&input_, &WindowInput::answering, this, &Engine::answering);
  connect(&input_, &WindowInput::asked, this, &Engine::questionAsked);
  sincePump_.start();
}

Engine::~Engine() { application_.reset(); }

void Engine::run() {
  // A failure that ends the input of a script ends no window.
  while (!application_->quitRequested()) {
    if (const Result<> result = application_->run(input_); !result) report(result.problem());
    if (!application_->quitRequested()) break;
  }
}

void Engine::setAlive(QWidget* canvas, QWidget* stop) {
  canvas_ = canvas;
  stop_ = stop;
}

// ---- the course of commands -----------------------------------------------------------------------------------------

void Engine::answering(const QString& line, bool isCommand, bool isCancel) {
  if (isCommand) {
    result_ = {};
    result_.command = line.trimmed().section(' ', 0, 0);
    result_.problemsBefore = problems_.size();
    space_ = application_->currentSpace();
    entitiesBefore_ = space_ != nullptr ? space_->entities.size() : 0;
  } else if (!result_.command.isEmpty()) {
    result_.wasCancelled = isCancel;
    if (!isCancel) result_.answers += line;
  }
  if (isWorking_) return;
  isWorking_ = true;
  isInterrupted_ = false;
  workBegan_ = std::clock();
  emit workBegan();
}

void Engine::questionAsked() {
  if (isWorking_) {
    isWorking_ = false;
    if (!result_.command.isEmpty()) emit worked(result_.command, workedMs(workBegan_));
    emit progressShown({}, -1);
  }
  if (input_.isAtRest() && !result_.command.isEmpty()) {
    countMade();
    const CommandResult ended = std::exchange(result_, {});
    highlighted_.clear();
    if (std::exchange(isInterrupted_, false)) emit interrupted();
    emit commandEnded(ended);
  }
  emit asked();
  // What was typed meanwhile answers now; a question that other lines answer leaves it for the next one.
  if (input_.question() == nullptr) return;
  for (std::unique_ptr<QEvent>& key : std::exchange(typedAhead_, {})) {
    if (QWidget* const focus = QApplication::focusWidget()) QCoreApplication::postEvent(focus, key.release());
  }
}

/// New entities stand behind those that the space had before.
void Engine::countMade() {
  if (space_ == nullptr || space_ != application_->currentSpace() || result_.isWhole) return;
  std::unordered_set<const database::Slot*> isNew;
  for (std::size_t i = entitiesBefore_; i < space_->entities.size(); ++i) {
    database::Slot* const entity = space_->entities[i];
    isNew.insert(entity);
    if (!entity->isErased() && !entity->isSubEntity()) result_.made.push_back(entity);
  }
  // Made and erased by one command: nobody has seen it. A command that regenerates tells of an entity more than once.
  const auto keepOthersOnce = [&](std::vector<database::Slot*>& entities) {
    std::unordered_set<const database::Slot*> seen;
    std::erase_if(entities,
                  [&](const database::Slot* entity) { return isNew.contains(entity) || !seen.insert(entity).second; });
  };
  keepOthersOnce(result_.changed);
  keepOthersOnce(result_.erased);
}

void Engine::stop() {
  if (!isWorking_) return;
  isInterrupted_ = true;
  editor::Application::interrupt();
}

// ---- what the session says ------------------------------------------------------------------------------------------

void Engine::print(std::wstring_view text) { emit printed(text); }

void Engine::report(const Problem& problem) {
  problems_.push_back(problem);
  emit problemReported(problem);
}

void Engine::showView(const curves::Box& view) { emit viewWanted(view); }

void Engine::regenerate() { emit viewRegenerated(); }

void Engine::highlight(const std::vector<database::Slot*>& entities) {
  highlighted_ = entities;
  if (!entities.empty()) result_.chosen = entities;
  emit highlightChanged();
}

void Engine::pickfirstChanged(const std::vector<database::Slot*>& entities) {
  if (entities.empty()) emit selectionTaken();
}

void Engine::currentDrawingChanged() {
  highlighted_.clear();
  result_.chosen.clear();
  emit drawingSwitched();
}

void Engine::drawingChanged(const editor::DrawingChange& change) {
  result_.isWhole = result_.isWhole || change.isWhole;
  for (database::Slot* const object : change.objects) {
    if (!object->isEntity() || object->isSubEntity()) continue;
    if (space_ != nullptr && object->owner != space_->record) continue;  // the contents of a block
    (object->isErased() ? result_.erased : result_.changed).push_back(object);
  }
  emit changed(change);
}

// ---- long work ------------------------------------------------------------------------------------------------------

void Engine::showProgress(std::wstring_view label, double fraction) {
  if (fraction >= 0 && sincePump_.elapsed() < kPumpMs) return;
  emit progressShown(toQt(label), fraction);
  pump();
}

void Engine::working() {
  if (sincePump_.elapsed() >= kPumpMs) pump();
}

void Engine::pump() {
  if (!isWorking_ || isPumping_) return;
  isPumping_ = true;
  qApp->installEventFilter(this);
  QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  qApp->removeEventFilter(this);
  isPumping_ = false;
  sincePump_.restart();
}

bool Engine::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
      if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        stop();
      } else if (event->type() == QEvent::KeyPress && watched->isWindowType()) {
        typedAhead_.emplace_back(event->clone());
      }
      return true;
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::Drop:
    case QEvent::DragEnter:
      return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick: {
      const auto* const widget = qobject_cast<const QWidget*>(watched);
      if (widget == nullptr) return false;
      const auto isIn = [widget](const QWidget* whole) {
        return whole != nullptr && (whole == widget || whole->isAncestorOf(widget));
      };
      return !isIn(canvas_) && !isIn(stop_);
    }
    case QEvent::Close:
      if (const auto* const widget = qobject_cast<const QWidget*>(watched); widget != nullptr && widget->isWindow()) {
        event->ignore();
        stop();
        emit closeWanted();
        return true;
      }
      return false;
    default:
      return false;
  }
}

}  // namespace host::window
