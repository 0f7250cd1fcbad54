// What a front end is asked and told while it drives the host.
#include <algorithm>
#include <stdexcept>

#include "Support.h"
#include "adscodes.h"

using host::editor::Answer;
using host::editor::Application;
using host::editor::Question;
using host::editor::Wanted;

namespace {

/// A front end that keeps what it was told, and answers from a list while it keeps the questions.
class Window final : public host::editor::Observer, public host::editor::InputSource {
 public:
  using Slot = host::database::Slot;
  struct Asked {
    Wanted wanted;
    std::wstring prompt, keywords, defaultAnswer;
    bool hasBase, takesEnter;
  };

  void report(const host::Problem& problem) override { problems.push_back(problem); }
  void highlight(const std::vector<Slot*>& entities) override { highlighted.push_back(entities.size()); }
  void pickfirstChanged(const std::vector<Slot*>& entities) override { pickfirst.push_back(entities.size()); }
  void currentDrawingChanged() override { ++drawingSwitches; }
  void drawingChanged(const host::editor::DrawingChange& change) override { changes.push_back(change); }
  bool wantsChanges() const override { return true; }

  Answer next(const Question& question) override {
    asked.push_back({question.wanted, std::wstring(question.prompt),
                     question.keywords != nullptr ? question.keywords->shown() : std::wstring(),
                     std::wstring(question.defaultAnswer()), question.base.has_value(), question.takesEnter});
    Answer answer;
    if (next_ < answers.size()) answer = answers[next_++];
    return answer;
  }
  bool isInteractive() const override { return true; }

  /// A point where the text is one, Enter where it is empty.
  void type(std::initializer_list<const wchar_t*> texts) {
    for (const wchar_t* const text : texts) {
      Answer answer;
      answer.text = text;
      answer.kind = answer.text.empty() ? Answer::Kind::Enter : Answer::Kind::Text;
      if (std::swscanf(text, L"%lf,%lf", &answer.point.x, &answer.point.y) == 2) answer.kind = Answer::Kind::Point;
      answers.push_back(std::move(answer));
    }
  }

  std::vector<Answer> answers;
  std::vector<Asked> asked;
  std::vector<host::Problem> problems;
  std::vector<std::size_t> highlighted, pickfirst;
  std::vector<host::editor::DrawingChange> changes;
  int drawingSwitches = 0;

 private:
  std::size_t next_ = 0;
};

class FrontEnd : public testing::Test {
 protected:
  FrontEnd() : app(options()) { EXPECT_TRUE(app.newDrawing()); }
  ~FrontEnd() override { acedRegCmds->removeGroup(L"TEST"); }

  std::vector<host::database::Slot*> entities() const { return app.currentSpace()->entities; }

 private:
  host::editor::ApplicationOptions options() {
    host::editor::ApplicationOptions result;
    result.observer = &window;
    return result;
  }

 protected:
  Window window;
  Application app;
};

TEST_F(FrontEnd, HearsWhatEachQuestionWants) {
  window.type({L"LINE", L"0,0", L"5,0", L"", L"LTSCALE", L"2", L"ERASE", L"ALL", L""});
  ASSERT_TRUE(app.run(window));
  ASSERT_EQ(window.asked.size(), 10U);
  EXPECT_EQ(window.asked[0].wanted, Wanted::Command);
  EXPECT_EQ(window.asked[1].wanted, Wanted::Point);
  EXPECT_FALSE(window.asked[1].hasBase);
  EXPECT_EQ(window.asked[2].wanted, Wanted::Point);
  EXPECT_TRUE(window.asked[2].hasBase);
  EXPECT_NE(window.asked[2].keywords.find(L"Undo"), std::wstring::npos) << window.asked[2].keywords.size();
  EXPECT_EQ(window.asked[5].defaultAnswer, L"1");
  EXPECT_EQ(window.asked[7].wanted, Wanted::Entities);
  EXPECT_NE(window.asked[7].keywords.find(L"WPolygon"), std::wstring::npos);
  EXPECT_EQ(app.drawing()->headerReal("$LTSCALE", 40), 2.0);
}

TEST_F(FrontEnd, SeesSelectionsGrowAndGo) {
  window.type({L"LINE", L"0,0", L"5,0", L"5,5", L"", L"SELECT", L"2,0", L"ALL", L""});
  ASSERT_TRUE(app.run(window));
  EXPECT_EQ(window.highlighted, (std::vector<std::size_t>{1, 2, 0}));
  app.setPickfirst({entities().front()});
  window.type({L"LINE", L""});
  ASSERT_TRUE(app.run(window));
  EXPECT_EQ(window.pickfirst, (std::vector<std::size_t>{1, 0}));
}

TEST_F(FrontEnd, HearsWhichObjectsACommandChanged) {
  EXPECT_EQ(window.drawingSwitches, 1);
  window.type({L"LINE", L"0,0", L"5,0", L""});
  ASSERT_TRUE(app.run(window));
  ASSERT_EQ(window.changes.size(), 1U);
  host::database::Slot* const line = entities().front();
  const auto has = [line](const host::editor::DrawingChange& change) {
    return std::find(change.objects.begin(), change.objects.end(), line) != change.objects.end();
  };
  EXPECT_TRUE(has(window.changes[0]));
  EXPECT_FALSE(window.changes[0].isWhole);
  // Looking at an object changes nothing; a command that changes nothing is not heard of.
  window.type({L"LIST", L"ALL", L""});
  ASSERT_TRUE(app.run(window));
  EXPECT_EQ(window.changes.size(), 1U);
  window.type({L"ERASE", L"ALL", L"", L"U"});
  ASSERT_TRUE(app.run(window));
  ASSERT_EQ(window.changes.size(), 3U);
  EXPECT_TRUE(has(window.changes[1]));
  EXPECT_FALSE(window.changes[1].isWhole);
  EXPECT_TRUE(window.changes[2].isWhole);
}

TEST_F(FrontEnd, GetsProblemsWithTheirCodes) {
  window.type({L"LINX"});
  ASSERT_TRUE(app.run(window));
  ASSERT_EQ(window.problems.size(), 1U);
  EXPECT_EQ(host::nameOf(window.problems[0].code), "command-unknown");
  EXPECT_EQ(window.problems[0].status(), host::RunStatus::ScriptFailed);
  const host::Result<> refused = app.loadModule("nowhere.arx");
  ASSERT_FALSE(refused);
  EXPECT_EQ(host::nameOf(refused.problem().code), "module-refused");
  EXPECT_EQ(refused.problem().file, "nowhere.arx");
  EXPECT_EQ(refused.message(), "nowhere.arx: no such module");
}

/// Throws whatever the host tells it.
class Thrower final : public AcEditorReactor, public AcApDocManagerReactor {
 public:
  Thrower() {
    acedEditor->addReactor(this);
    acDocManager->addReactor(this);
  }
  ~Thrower() override {
    acDocManager->removeReactor(this);
    acedEditor->removeReactor(this);
  }
  void commandWillStart(const ACHAR*) override { throw std::runtime_error("not ready"); }
  void commandEnded(const ACHAR*) override { throw 1; }
  void documentCreated(AcApDocument*) override { throw std::runtime_error("no room"); }
};

TEST_F(FrontEnd, ReactorsThatThrowStopNothing) {
  {
    const Thrower thrower;
    window.type({L"LINE", L"0,0", L"5,0", L""});
    ASSERT_TRUE(app.run(window));
    ASSERT_TRUE(app.newDrawing());
  }
  std::vector<std::string> told;
  for (const host::Problem& problem : window.problems) {
    EXPECT_EQ(problem.code, host::Code::PlugInFailed);
    told.push_back(problem.text);
  }
  EXPECT_EQ(told,
            (std::vector<std::string>{"failed when the host called it: not ready", "failed when the host called it",
                                      "failed when the host called it: no room"}));
  app.closeDrawing();
  EXPECT_EQ(entities().size(), 1U);
}

// What a function answers that drops another's value.
TEST(Results, OneWithoutAValueIsOkWhenTheOtherWas) {
  const host::Result<int> made = 3;
  const host::Result<int> failed = host::problemOf(host::Code::CommandFailed, "no room");
  EXPECT_TRUE(host::Result<>(made).ok());
  EXPECT_EQ(host::Result<>(failed).message(), "no room");
}

}  // namespace

namespace {

/// Wants the work to end when it is half done.
class Impatient final : public host::editor::Observer {
 public:
  void print(std::wstring_view text) override { transcript += text; }
  void showProgress(std::wstring_view, double fraction) override {
    if (fraction > 0.5) Application::interrupt();
  }
  std::wstring transcript;
};

int swallowed = 0;

/// Erases everything, as a plug-in that goes on whatever is thrown at it, and then reports.
void eraseEverything() {
  acedSetStatusBarProgressMeter(L"Erasing", 0, 100);
  const host::database::DrawingDatabase& drawing = acdbCurDwg()->hostDatabase();
  int step = 0;
  for (host::database::Slot* slot : drawing.modelSpace().entities) {
    try {
      AcDbEntity* entity = nullptr;
      if (acdbOpenObject(entity, AcDbObjectId(slot), AcDb::kForWrite) != Acad::eOk) continue;
      entity->erase();
      entity->close();
      acedSetStatusBarProgressMeterPos(step++);
    } catch (...) {
      ++swallowed;
    }
  }
  acedRestoreStatusBar();
}

TEST(Interruption, LeavesTheCommandAndTheDrawingAsItWas) {
  Impatient front;
  host::editor::ApplicationOptions options;
  options.observer = &front;
  Application app(options);
  ASSERT_TRUE(app.newDrawing());
  acedRegCmds->addCommand(L"TEST", L"ERASEALL", L"ERASEALL", ACRX_CMD_MODAL, eraseEverything);
  std::string script;
  for (int i = 0; i < 100; ++i) script += "LINE " + std::to_string(i) + ",0 " + std::to_string(i) + ",5\n\n";
  host::editor::ScriptInput lines(script, "lines.scr");
  ASSERT_TRUE(app.run(lines));
  app.drawing()->setUnmodified();
  const std::string before = host::dxf::drawingText(*app.drawing());
  swallowed = 0;
  host::editor::ScriptInput erases("ERASEALL\nLINE 0,0 9,9\n\n", "erase.scr");
  const host::Result<> result = app.run(erases);
  EXPECT_EQ(result.problem().code, host::Code::Interrupted) << result.message();
  EXPECT_NE(front.transcript.find(L"ERASEALL was interrupted; the drawing is as it was."), std::wstring::npos);
  EXPECT_GT(swallowed, 1);  // every further object is refused
  EXPECT_TRUE(host::dxf::drawingText(*app.drawing()) == before);
  EXPECT_FALSE(app.drawing()->isModified());
  EXPECT_EQ(app.undoNames().size(), 20U);
  EXPECT_TRUE(app.redoNames().empty());
  acedRegCmds->removeGroup(L"TEST");
}

}  // namespace
