#include "Window/Frame/Conversation.h"

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <cmath>

#include "Curves/Bulges.h"
#include "Editor/Answers.h"
#include "Geometry/Layers.h"
#include "Window/Commands/Language.h"
#include "Window/Input/HostPhrases.h"
#include "Window/Input/Prompt.h"
#include "Window/Panels/Facts.h"

namespace host::window {
namespace {

using editor::Wanted;

constexpr std::size_t kMostPreselected = 2000;
constexpr int kFewLines = 2;  // of a paste that needs no question

const QStringList& notRepeated() {
  static const QStringList names = {"U",          "UNDO",   "REDO",   "ZOOM",       "REGEN", "QSAVE",
                                    "SAVEAS",     "OPEN",   "NEW",    "QUIT",       "CLOSE", "PICTURE",
                                    "SAVESCRIPT", "SCRIPT", "SELECT", "SCREENSHOT", "HELP"};
  return names;
}

Conversation::State stateOf(Wanted wanted) {
  switch (wanted) {
    case Wanted::Command:
      return Conversation::State::Rest;
    case Wanted::Point:
      return Conversation::State::Point;
    case Wanted::Entity:
      return Conversation::State::Entity;
    case Wanted::Entities:
      return Conversation::State::Selection;
    case Wanted::Number:
      return Conversation::State::Number;
    case Wanted::Dialog:
      return Conversation::State::Dialog;
    default:
      return Conversation::State::Text;
  }
}

}  // namespace

Conversation::Conversation(Engine& engine, const CommandTables& tables, CanvasView& canvas, CommandLine& line,
                           HistoryView& history)
    : engine_(engine), tables_(tables), canvas_(canvas), line_(line), history_(history) {
  connect(&engine_, &Engine::asked, this, &Conversation::asked);
  connect(&engine_, &Engine::commandEnded, this, &Conversation::ended);
  connect(&engine_, &Engine::workBegan, this, [this] {
    setState(State::Working);
    canvas_.setMode(CanvasMode::Working);
    line_.setClosed({});
  });
  connect(&engine_, &Engine::printed, &history_, [this](std::wstring_view text) {
    history_.print(text);
    if (text.find(L"on a locked layer") != std::wstring_view::npos) tellLocked();
  });
  connect(&engine_, &Engine::highlightChanged, this, [this] { canvas_.setSelected(engine_.highlighted()); });
  connect(&engine_, &Engine::drawingSwitched, this, [this] {
    selection_.clear();
    canvas_.setSelected({});
    emit selectionChanged();
  });

  connect(&line_, &CommandLine::submitted, this, &Conversation::submitted);
  connect(&line_, &CommandLine::enterPressed, this, &Conversation::enter);
  connect(&line_, &CommandLine::escapePressed, this, &Conversation::escape);
  connect(&line_, &CommandLine::linesPasted, this, &Conversation::paste);
  connect(&line_, &CommandLine::typedChanged, &canvas_, &CanvasView::setTypedText);

  connect(&canvas_, &CanvasView::answered, this, &Conversation::canvasAnswered);
  connect(&canvas_, &CanvasView::cancelled, this, [this] {
    if (!line_.escape()) escape();
  });
  connect(&canvas_, &CanvasView::entered, this, [this] {
    // What has been typed is the answer that a click ends.
    if (line_.typed().trimmed().isEmpty()) {
      enter();
    } else {
      const QString typed = line_.typed();
      line_.clearTyped();
      submitted(typed);
    }
  });
  connect(&canvas_, &CanvasView::typed, &line_, &CommandLine::insert);
  connect(&canvas_, &CanvasView::refused, this, [this] {
    if (state_ == State::Entity || state_ == State::Selection) {
      history_.tell(tr("There is nothing here."), HistoryView::Kind::Note);
    } else {
      line_.blink();
    }
  });
  connect(&canvas_, &CanvasView::cursorMoved, this, [this](const AcGePoint3d& at) { cursor_ = at; });
  connect(&canvas_, &CanvasView::selectionEdited, this, [this](const std::vector<database::Slot*>& entities) {
    if (state_ != State::Rest) return;
    select(entities);
  });
  qApp->installEventFilter(this);
}

// ---- what is asked --------------------------------------------------------------------------------------------------

void Conversation::setState(State state) {
  const bool isNew = state_ != state;
  state_ = state;
  if (isNew) emit stateChanged();
  emit hintChanged();
}

void Conversation::asked() {
  const editor::Question* const question = engine_.input().question();
  if (question == nullptr) return;
  if (question->wanted == Wanted::Command) {
    running_.clear();
    points_.clear();
    bulges_.clear();
    numbers_.clear();
    if (whenFree_) {
      const auto then = std::exchange(whenFree_, nullptr);
      // The loop of the question has to run first: what follows may ask the user.
      QTimer::singleShot(0, this, then);
    }
  } else if (whenFree_) {
    engine_.input().cancelToRest();
    return;
  }
  if (answerWithSelection(*question)) return;
  showQuestion(*question);
}

bool Conversation::answerWithSelection(const editor::Question& question) {
  if (!hasPreselection_ || question.wanted == Wanted::Command) return false;
  hasPreselection_ = false;
  std::vector<database::Slot*> entities = std::exchange(preselected_, {});
  std::erase_if(entities, [](const database::Slot* entity) { return entity->isErased(); });
  if (entities.empty()) return false;
  if (question.wanted == Wanted::Entity) {
    if (entities.size() != 1) return false;
    engine_.input().answer({handentOf(*entities.front())});
    return true;
  }
  if (question.wanted != Wanted::Entities) return false;
  QStringList lines;
  for (const database::Slot* const entity : entities) lines += handentOf(*entity);
  engine_.input().answer(lines + QStringList(QString()));
  return true;
}

/// The same question again, after a line was typed and a refusal was told.
bool Conversation::isRefusedAgain(const editor::Question& question) {
  return !lastTyped_.isEmpty() && !history_.refusal().isEmpty() && question.wanted == lastWanted_ &&
         toQt(question.prompt) == lastPrompt_;
}

void Conversation::showQuestion(const editor::Question& question) {
  const State state = stateOf(question.wanted);
  base_ = question.base;
  direction_ = question.direction;
  // Where a command went back to a point, those behind it are gone.
  if (base_) {
    const auto last = std::find(points_.rbegin(), points_.rend(), *base_);
    if (last != points_.rend()) points_.resize(static_cast<std::size_t>(points_.rend() - last));
    bulges_.resize(points_.size());
  }
  QString prompt = hostPhrase(toQt(question.prompt)).text.trimmed();
  // Plug-ins say what they want before the host asks for it; the last such line stays in sight.
  if (state == State::Selection || state == State::Entity) {
    if (history_.lastLine().endsWith(':') && !history_.lastLine().contains("(handent")) lead_ = history_.lastLine();
    if (!lead_.isEmpty()) prompt = lead_ + "  " + prompt;
  } else {
    lead_.clear();
  }
  QString suffix;
  if (state == State::Selection && !engine_.highlighted().empty())
    suffix = tr("%1 selected").arg(engine_.highlighted().size());
  if (state == State::Rest && !repeated_.isEmpty()) suffix = tr("Enter repeats %1").arg(tables_.title(repeated_));
  line_.ask(prompt, question.wanted, question.form, suffix);
  const bool isRefused = isRefusedAgain(question);
  if (isRefused && question.wanted != Wanted::Command) {
    const QString example = exampleOf(question.wanted);
    line_.refuse(lastTyped_, example.isEmpty() ? history_.refusal() : example);
  }
  lastTyped_.clear();
  lastPrompt_ = toQt(question.prompt);
  lastWanted_ = question.wanted;
  history_.forgetRefusal();
  if (state == State::Rest) {
    canvas_.setSelected(selection_);
    canvas_.setMode(CanvasMode::Rest);
  } else {
    canvas_.setMode(state == State::Dialog ? CanvasMode::Closed : CanvasMode::Asking, canvasQuestion(question));
  }
  setState(state);
  // Dialogs that are done for go when the loop runs; only then it is seen which wait behind the question.
  QTimer::singleShot(0, this, [this] { emit hintChanged(); });
}

CanvasQuestion Conversation::canvasQuestion(const editor::Question& question) const {
  CanvasQuestion asked;
  asked.wanted = question.wanted;
  asked.base = question.base;
  if (const MenuRow* const row = tables_.find(engine_.command())) asked.preview = fromQt(row->preview);
  asked.chosen = engine_.result().chosen;
  asked.direction = question.direction;
  asked.points = points_;
  asked.bulges = bulges_;
  asked.numbers = numbers_;
  return asked;
}

void Conversation::ended(const CommandResult& result) {
  const QString name =
      tables_.find(result.command) != nullptr ? tables_.find(result.command)->commandName() : result.command.toUpper();
  if (!notRepeated().contains(name) && !name.startsWith('(') && !result.command.startsWith('\''))
    repeated_ = result.command;
  hasPreselection_ = false;
  preselected_.clear();
  std::erase_if(selection_, [](const database::Slot* entity) { return entity->isErased(); });
  // SELECT leaves what it found selected; other commands leave nothing.
  select(name == "SELECT" && !result.wasCancelled ? result.chosen : std::vector<database::Slot*>());
  emit commandEnded(result);
  hadDialog_ = false;
}

// ---- answers --------------------------------------------------------------------------------------------------------

/// Points and numbers that the running command has got: previews are drawn of them.
void Conversation::noteAnswer(const QString& line) {
  if (state_ == State::Number) {
    const QString shown = line.trimmed().isEmpty() ? defaultOf(lastPrompt_) : line;
    const std::optional<double> number = editor::parseNumber(fromQt(shown));
    if (number || line.trimmed().isEmpty()) numbers_.push_back(number.value_or(std::nan("")));
  }
  if (state_ != State::Point) return;
  const AcGePoint3d origin = base_.value_or(points_.empty() ? AcGePoint3d() : points_.back());
  const auto point = editor::parsePoint(fromQt(line), origin);
  if (!point) return;
  const auto bulge = direction_ && base_ ? curves::tangentBulge({base_->x, base_->y}, *direction_, {point->x, point->y})
                                         : std::nullopt;
  points_.push_back(*point);
  bulges_.push_back(bulge.value_or(0));
}

/// The session leaves out what lies on locked layers when it is asked to, and only counts it.
void Conversation::noteLocked(const QString& line) {
  lockedLayers_.clear();
  const database::DrawingDatabase* const drawing = engine_.drawing();
  const auto handle = editor::parseHandent(fromQt(line));
  if (drawing == nullptr || !handle) return;
  const database::Slot* const entity = drawing->findHandle(*handle);
  if (entity == nullptr || entity->isErased()) return;
  if (geometry::LayerStates(*drawing).at(entity->layer).locked)
    lockedLayers_ += toQt(drawing->layerName(entity->layer));
}

void Conversation::tellLocked() {
  for (const QString& layer : std::exchange(lockedLayers_, {})) emit lockedPicked(layer);
}

void Conversation::submitted(const QString& typed) {
  const editor::Question* const question = engine_.input().question();
  if (question == nullptr) return;
  QString line = typed;
  lastTyped_ = typed;
  if (question->wanted == Wanted::Command) {
    hasPreselection_ = !selection_.empty();
    preselected_ = selection_;
  }
  if (question->wanted == Wanted::Point && question->base && !question->takesNumber) {
    if (const auto distance = typedDistance(line, *question->base, canvas_.cursorPoint().value_or(cursor_),
                                            !canvas_.cursorPoint() && canvas_.isOrtho()))
      line = *distance;
  }
  noteAnswer(line);
  engine_.input().answer({line});
}

void Conversation::canvasAnswered(const QStringList& lines) {
  const editor::Question* const question = engine_.input().question();
  if (question == nullptr || question->wanted == Wanted::Command) return;
  for (const QString& line : lines) noteAnswer(line);
  if (lines.size() == 1) noteLocked(lines.front());
  line_.clearTyped();
  engine_.input().answer(lines);
}

void Conversation::answer(const QStringList& lines) {
  if (engine_.input().question() == nullptr) return;
  lastTyped_.clear();
  engine_.input().answer(lines);
}

void Conversation::enter() {
  const editor::Question* const question = engine_.input().question();
  if (question == nullptr) return;
  lastTyped_.clear();
  if (question->wanted != Wanted::Command) {
    noteAnswer({});
    engine_.input().answer({QString()});
  } else if (!repeated_.isEmpty()) {
    hasPreselection_ = !selection_.empty();
    preselected_ = selection_;
    engine_.input().answer({repeated_});
  }
}

void Conversation::escape() {
  if (canvas_.leave()) return;
  if (state_ == State::Working) {
    engine_.stop();
    return;
  }
  const editor::Question* const question = engine_.input().question();
  if (question == nullptr) return;
  lastTyped_.clear();
  if (question->wanted != Wanted::Command) {
    engine_.input().cancel();
  } else {
    select({});
    line_.focusLine();
  }
}

void Conversation::run(const MenuRow& row) { runLines(row.lines()); }

void Conversation::runLines(const QStringList& lines) {
  const editor::Question* const question = engine_.input().question();
  if (question == nullptr || state_ == State::Dialog) return;
  lastTyped_.clear();
  hasPreselection_ = question->wanted == Wanted::Command && !selection_.empty();
  preselected_ = hasPreselection_ ? selection_ : std::vector<database::Slot*>();
  if (!line_.typed().isEmpty()) line_.clearTyped();
  // So many would take long as answers one by one.
  if (preselected_.size() > kMostPreselected) {
    engine_.application().setPickfirst(preselected_);
    hasPreselection_ = false;
  }
  if (question->wanted == Wanted::Command) {
    engine_.input().answer(lines);
  } else {
    engine_.input().cancelToRest(lines);
  }
}

void Conversation::paste(const QStringList& lines) {
  if (engine_.input().question() == nullptr) return;
  if (lines.size() > kFewLines) {
    QMessageBox box(QMessageBox::Question, tr("Tolmex"), tr("Run %1 lines?").arg(lines.size()), QMessageBox::NoButton,
                    line_.window());
    QPushButton* const run = box.addButton(tr("Run"), QMessageBox::AcceptRole);
    box.addButton(tr("Cancel"), QMessageBox::RejectRole);
    box.exec();
    if (box.clickedButton() != run || engine_.input().question() == nullptr) return;
  }
  engine_.input().answer(lines);
}

void Conversation::comeToRest(std::function<void()> whenFree) {
  if (engine_.input().isAtRest()) {
    whenFree();
    return;
  }
  whenFree_ = std::move(whenFree);
  if (engine_.isWorking()) engine_.stop();
  if (engine_.input().question() != nullptr) engine_.input().cancelToRest();
  // A dialog of a plug-in that stands in front is left by its Cancel.
  if (QWidget* const modal = QApplication::activeModalWidget()) modal->close();
}

void Conversation::select(const std::vector<database::Slot*>& entities) {
  if (selection_ == entities) return;
  selection_ = entities;
  if (state_ == State::Rest || engine_.input().isAtRest()) canvas_.setSelected(selection_);
  emit selectionChanged();
}

// ---- dialogs of plug-ins --------------------------------------------------------------------------------------------

bool Conversation::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show || event->type() == QEvent::Hide) {
    auto* const dialog = qobject_cast<QDialog*>(watched);
    // Those of the window itself come while a question waits.
    if (dialog != nullptr && dialog->isWindow() && event->type() == QEvent::Show && !engine_.isWaiting()) {
      if (std::ranges::find(dialogs_, dialog) == dialogs_.end()) {
        dialogs_.emplace_back(dialog);
        if (qobject_cast<QMessageBox*>(dialog) == nullptr) place(*dialog);
      }
      hadDialog_ = true;
      setState(State::Dialog);
      canvas_.setMode(CanvasMode::Closed);
      line_.setClosed(tr("%1 is open").arg(dialog->windowTitle()));
    }
    if (dialog != nullptr && event->type() == QEvent::Hide && std::ranges::find(dialogs_, dialog) != dialogs_.end())
      places_[dialog->windowTitle()] = dialog->pos();
    if (dialog != nullptr && event->type() == QEvent::Hide && state_ == State::Dialog && !engine_.isWaiting()) {
      setState(State::Working);
      canvas_.setMode(CanvasMode::Working);
    }
    if (dialog != nullptr && whenFree_ && event->type() == QEvent::Show && !engine_.isWaiting())
      QTimer::singleShot(0, dialog, &QWidget::close);
  }
  return QObject::eventFilter(watched, event);
}

/// Where it was left, or at the canvas's edge away from what the command has got, which stays in sight.
void Conversation::place(QDialog& dialog) {
  constexpr int kAway = 24;
  if (const auto left = places_.constFind(dialog.windowTitle()); left != places_.constEnd()) {
    dialog.move(*left);
    return;
  }
  const QRectF chosen = canvas_.placeOf(engine_.result().chosen);
  if (chosen.isEmpty() || dialog.width() + 2 * kAway > canvas_.width()) return;
  const bool isAtRight = chosen.center().x() < canvas_.width() / 2.0;
  const int x = isAtRight ? canvas_.width() - dialog.width() - kAway : kAway;
  const int y = std::max(kAway, (canvas_.height() - dialog.height()) / 3);
  dialog.move(canvas_.mapToGlobal(QPoint(x, y)));
}

QString Conversation::waitingDialog() const {
  if (!engine_.isWaiting() || engine_.input().isAtRest()) return {};
  for (const QPointer<QWidget>& dialog : dialogs_) {
    if (dialog != nullptr && !dialog->isVisible()) return dialog->windowTitle();
  }
  return {};
}

// ---- the status bar -------------------------------------------------------------------------------------------------

QString Conversation::hint() const {
  QStringList parts;
  const editor::Question* const question = engine_.input().question();
  const QString byDefault = question != nullptr ? defaultOf(toQt(question->prompt)) : QString();
  switch (state_) {
    case State::Rest:
      parts = {tr("Left: pick"), tr("drag: window")};
      if (!repeated_.isEmpty()) parts += tr("right: repeat %1").arg(tables_.title(repeated_));
      break;
    case State::Point:
      parts += tr("Left: point");
      if (base_) parts += tr("number: distance");
      if (!byDefault.isEmpty()) parts += tr("right: %1").arg(byDefault);
      parts += tr("Esc: cancel");
      break;
    case State::Entity:
      parts = {tr("Left: pick"), tr("Tab: next below"), tr("Esc: nothing")};
      break;
    case State::Selection:
      parts = {tr("Left: add"), tr("Shift: remove"), tr("right: done"), tr("Esc: cancel")};
      break;
    case State::Number:
      parts += tr("Type a number");
      if (!byDefault.isEmpty()) parts += tr("right: %1").arg(byDefault);
      parts += tr("Esc: cancel");
      break;
    case State::Text:
      parts = {tr("Click a choice or type"), tr("Esc: cancel")};
      break;
    case State::Dialog:
      if (const QWidget* const modal = QApplication::activeModalWidget())
        return tr("%1 is open").arg(modal->windowTitle());
      for (const QPointer<QWidget>& dialog : dialogs_) {
        if (dialog != nullptr && dialog->isVisible()) return tr("%1 is open").arg(dialog->windowTitle());
      }
      return {};
    case State::Working:
      return {};
  }
  if (!waitingDialog().isEmpty() && !parts.isEmpty()) parts.back() = tr("Esc: answers the prompt");
  return parts.join(QStringLiteral(" · "));
}

}  // namespace host::window
