// What users answer at a screen, saved as a script: run without a screen on the same drawing it gives the same bytes.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#include "OwnFolder.h"
#include "Support.h"
#include "acedads.h"
#include "adscodes.h"

using host::editor::Answer;
using host::editor::Application;
using host::editor::Question;
using host::editor::Wanted;

namespace {

constexpr double kEast = 25496000, kNorth = 6672000;

Answer typed(std::wstring text) {
  Answer answer;
  answer.kind = text.empty() ? Answer::Kind::Enter : Answer::Kind::Text;
  answer.text = std::move(text);
  return answer;
}

/// Somebody at a screen who tries everything: points, windows, picks, words, nonsense, Esc, views, pick-first.
class RestlessUser final : public host::editor::InputSource, public host::editor::Observer {
 public:
  explicit RestlessUser(unsigned seed) : random_(seed) {}

  Application* app = nullptr;
  int commandsLeft = 60;
  std::filesystem::path script;

  bool isInteractive() const override { return true; }

  Answer next(const Question& question) override {
    ++asked_;
    if (asked_ > 4000) return {};
    switch (question.wanted) {
      case Wanted::Command:
        return nextCommand();
      case Wanted::Number:
        return oneOf({L"2.5", L"45", L"-3", L"1/2", L"many", L"0", L"", L"90"});
      case Wanted::Text:
        if (question.form == host::editor::AnswerForm::Text && isSaving_) return typed(text(script));
        return oneOf({L"kerb", L"two words", L"; half", L"\"quoted\"", L"nowhere", L"", L"", L"ä ö"});
      case Wanted::Keyword:
        return keyword(question);
      case Wanted::Point:
        return nextPoint(question);
      case Wanted::Entity:
        return nextPick();
      case Wanted::Entities:
        return nextSelection();
      case Wanted::Dialog:
        break;
    }
    return escape();
  }

 private:
  static std::wstring text(const std::filesystem::path& path) { return host::text::fromUtf8(path.string()); }
  int roll(int sides) { return std::uniform_int_distribution<int>(0, sides - 1)(random_); }
  double coordinate(double from) { return from + std::uniform_real_distribution<double>(-20, 20)(random_); }
  Answer oneOf(const std::vector<std::wstring>& words) {
    if (roll(12) == 0) return escape();
    return typed(words[static_cast<std::size_t>(roll(static_cast<int>(words.size())))]);
  }
  static Answer escape() {
    Answer answer;
    answer.kind = Answer::Kind::Cancel;
    return answer;
  }
  Answer somewhere() {
    Answer answer;
    answer.kind = Answer::Kind::Point;
    answer.point = {coordinate(kEast), coordinate(kNorth), 0};
    return answer;
  }
  std::vector<test::Slot*> living() const {
    std::vector<test::Slot*> all;
    for (test::Slot* slot : app->currentSpace()->entities) {
      if (!slot->isErased()) all.push_back(slot);
    }
    return all;
  }
  test::Slot* someone() {
    const std::vector<test::Slot*> all = living();
    return all.empty() ? nullptr : all[static_cast<std::size_t>(roll(static_cast<int>(all.size())))];
  }
  /// A place on an entity's first point.
  Answer onSomeone() {
    const test::Slot* const slot = someone();
    if (slot == nullptr) return somewhere();
    Answer answer;
    answer.kind = Answer::Kind::Point;
    host::database::Tag tag;
    for (host::database::TagCursor tags = slot->tags(); tags.next(tag);) {
      if (tag.code == 10) answer.point.x = tag.real();
      if (tag.code == 20) {
        answer.point.y = tag.real();
        break;
      }
    }
    return answer;
  }
  Answer keyword(const Question& question) {
    if (question.keywords == nullptr || roll(6) == 0) return oneOf({L"", L"perhaps"});
    std::vector<std::wstring> words;
    std::wistringstream shown(question.keywords->shown());
    for (std::wstring word; std::getline(shown, word, L'/');) words.push_back(word);
    return oneOf(words);
  }

  Answer nextCommand() {
    if (isSaving_) return {};
    if (commandsLeft-- <= 0) {
      isSaving_ = true;
      return typed(L"SAVESCRIPT");
    }
    if (roll(4) == 0) {
      const double x = coordinate(kEast), y = coordinate(kNorth);
      host::curves::Box view;
      view.add(host::curves::Point2{x, y});
      view.add(host::curves::Point2{x + 1 + roll(100), y + 1 + roll(50)});
      app->setView(view, 100 + roll(2000));
    }
    if (roll(5) == 0) {
      std::vector<test::Slot*> picked;
      for (test::Slot* slot : living()) {
        if (roll(3) == 0) picked.push_back(slot);
      }
      app->setPickfirst(picked);
    }
    static const std::vector<std::wstring> kCommands = {
        L"LINE",  L"LINE", L"PLINE",   L"PLINE",  L"MOVE",  L"COPY",     L"COPY",   L"ROTATE",
        L"ERASE", L"JOIN", L"CHPROP",  L"TEXT",   L"LAYER", L"SELECT",   L"ZOOM",   L"U",
        L"U",     L"UNDO", L"REDO",    L"MREDO",  L"LIST",  L"DIST",     L"NOSUCH", L"",
        L"",      L"AREA", L"LTSCALE", L"SETVAR", L"PICK1", L"PICKMANY", L"BAIL"};
    return oneOf(kCommands);
  }

  Answer nextPoint(const Question& question) {
    switch (roll(9)) {
      case 0:
        return keyword(question);
      case 1:
        return typed(L"@3.25,-1.5");
      case 2:
        return typed(L"@5<30");
      case 3:
        return typed(L"here");
      case 4:
        return typed(L"");
      case 5:
        return onSomeone();
      case 6:
        return question.takesNumber ? typed(L"30") : roll(3) == 0 ? typed(L"'ZOOM") : somewhere();
      default:
        return somewhere();
    }
  }

  Answer nextPick() {
    switch (roll(6)) {
      case 0:
        return somewhere();
      case 1:
        return typed(L"L");
      case 2:
        return escape();
      case 3:
        return typed(L"");
      default:
        return onSomeone();
    }
  }

  Answer nextSelection() {
    switch (roll(14)) {
      case 0:
        return somewhere();
      case 1:
        return typed(L"ALL");
      case 2:
        return typed(L"W");
      case 3:
        return typed(L"C");
      case 4:
        return typed(L"P");
      case 5:
        return typed(L"R");
      case 6:
        return typed(L"U");
      case 7:
        return typed(L"SA");
      case 8:
        return typed(L"what");
      case 9: {
        const test::Slot* const slot = someone();
        if (slot == nullptr) return typed(L"");
        return typed(L"(handent \"" + host::text::fromUtf8(host::text::formatHandle(slot->handle)) + L"\")");
      }
      case 10:
        return onSomeone();
      case 11:
        return roll(3) == 0 ? escape() : typed(L"L");
      default:
        return typed(L"");
    }
  }

  std::mt19937 random_;
  bool isSaving_ = false;
  int asked_ = 0;
};

void raise(ads_name entity) {
  AcDbObjectId id;
  AcDbEntity* opened = nullptr;
  if (acdbGetObjectId(id, entity) != Acad::eOk || acdbOpenObject(opened, id, AcDb::kForWrite) != Acad::eOk) return;
  opened->setColorIndex(static_cast<Adesk::UInt16>(opened->colorIndex() % 7 + 1));
  opened->close();
}

/// As a plug-in's: picks one entity and asks for a number.
void pickOne() {
  ads_name entity = {0, 0};
  ads_point at = {0, 0, 0};
  if (acedEntSel(L"\nPick: ", entity, at) != RTNORM) return;
  ads_real height = 0;
  if (acedGetReal(L"\nHeight [2.5]: ", &height) == RTCAN) return;
  raise(entity);
}

void pickMany() {
  ads_name set = {0, 0};
  if (acedSSGet(nullptr, nullptr, nullptr, nullptr, set) != RTNORM) return;
  Adesk::Int32 length = 0;
  acedSSLength(set, &length);
  for (Adesk::Int32 i = 0; i < length; ++i) {
    ads_name entity = {0, 0};
    acedSSName(set, i, entity);
    raise(entity);
  }
  acedSSFree(set);
}

/// Asks on after Esc.
void bail() {
  ads_point point = {0, 0, 0};
  for (int i = 0; i < 3; ++i) acedGetPoint(nullptr, L"\nPoint: ", point);
}

class Recorded : public testing::TestWithParam<unsigned> {
 protected:
  /// The drawing that a session or a script leaves.
  std::string resultOf(const std::function<void(Application&)>& work, RestlessUser* user = nullptr) {
    host::editor::ApplicationOptions options;
    options.observer = user;
    Application app(options);
    acedRegCmds->addCommand(L"TEST", L"PICK1", L"PICK1", ACRX_CMD_MODAL, pickOne);
    acedRegCmds->addCommand(L"TEST", L"PICKMANY", L"PICKMANY", ACRX_CMD_USEPICKSET, pickMany);
    acedRegCmds->addCommand(L"TEST", L"BAIL", L"BAIL", ACRX_CMD_MODAL, bail);
    EXPECT_TRUE(app.openDrawing(plan()));
    work(app);
    const std::string text = host::dxf::drawingText(*app.drawing());
    acedRegCmds->removeGroup(L"TEST");
    return text;
  }
  std::filesystem::path plan() const { return folder_.path / "plan.dxf"; }
  std::filesystem::path script() const { return folder_.path / "done.scr"; }

  void SetUp() override {
    Application app;
    ASSERT_TRUE(app.newDrawing());
    host::editor::ScriptInput input(
        "LAYER N kerb,wall\n\nPLINE 25496000,6672000 @8,0 @0,8 C\nLINE 25496010,6672010 @5,0 @0,5\n\n"
        "TEXT 25495990,6671990 2 0 note\n\n",
        "begin.scr");
    ASSERT_TRUE(app.run(input));
    ASSERT_TRUE(app.saveDrawing(plan()));
  }

 private:
  tests::OwnFolder folder_;
};

TEST_P(Recorded, SessionsGiveTheSameBytesAgain) {
  RestlessUser user(GetParam());
  user.script = script();
  const std::string byHand = resultOf(
      [&user](Application& app) {
        user.app = &app;
        EXPECT_TRUE(app.run(user));
      },
      &user);
  std::ifstream file(script(), std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  ASSERT_FALSE(text.empty());
  const std::string byScript = resultOf([&text](Application& app) {
    host::editor::ScriptInput input(text, "done.scr");
    const host::Result<> done = app.run(input);
    EXPECT_TRUE(done) << done.message();
  });
  EXPECT_TRUE(byScript == byHand) << text;
}

/// TOLMEX_SESSIONS=600 tries many more than the suite has time for.
unsigned sessionCount() {
  constexpr unsigned kUsual = 30;
  const char* const wanted = std::getenv("TOLMEX_SESSIONS");
  return wanted != nullptr ? static_cast<unsigned>(std::strtoul(wanted, nullptr, 10)) : kUsual;
}

INSTANTIATE_TEST_SUITE_P(Sessions, Recorded, testing::Range(1U, sessionCount() + 1));

}  // namespace
