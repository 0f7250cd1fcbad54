// The first illustration, by mouse; and what undo leaves.
#include "Support.h"

using namespace tests;

namespace {

class ByMouse : public WindowTest {};

/// What a script makes of the same drawing.
std::string byScript(const std::filesystem::path& drawing, const std::string& script) {
  const std::filesystem::path out = drawing.parent_path() / "script.dxf", file = drawing.parent_path() / "steps.scr";
  std::ofstream(file) << script;
  const std::string call = std::string(kBinDir) + "/tolmex run '" + drawing.string() + "' --script '" + file.string() +
                           "' --support '" + kSourceDir + "/examples' --quiet --out '" + out.string() + "' 2>/dev/null";
  EXPECT_EQ(std::system(call.c_str()), 0);
  return contentOf(out);
}

TEST_F(ByMouse, AreasFenceAndParkingRowAreWhatAScriptMakes) {
  const auto plan = copy("docs/guide/tontti.dxf");
  std::string made, undone, redone;
  const std::string opened = contentOf(plan);
  work({plan}, [&] {
    menu("TLM_MUOK_METSA");
    EXPECT_TRUE(get<bool>([this] { return window->line().findChild<QLabel*>()->text().contains("Valitse"); }));
    click(10, 41);  // the forest's north edge
    EXPECT_NE(told().indexOf("1 löytyi"), -1) << told().toStdString();
    rightClick();
    EXPECT_NE(told().indexOf(QString::fromUtf8("Metsä: muuttui 1, syntyi 1")), -1) << told().toStdString();
    menu("TLM_MUOK_NURMIKKO");
    type("(handent \"101\")");
    enter();
    menu("TLM_MUOK_AITA_LAUTA");
    type("(handent \"121\")");
    rightClick();
    menu("TLM_ASETA_KORKEUS");
    type("(handent \"121\")");
    rightClick();
    type("1,8");
    menu("TLM_PARK_PAIKKA_TEE");
    type("43,10");
    type("33,10");
    rightClick();
    rightClick();
    rightClick();
    EXPECT_EQ(get<Conversation::State>([this] { return window->talk().state(); }), Conversation::State::Rest);
    made = drawingText();
    EXPECT_TRUE(isModified());
    const std::size_t steps = get<std::size_t>([this] { return engine->application().undoNames(20).size(); });
    EXPECT_EQ(steps, 5U);
    for (std::size_t i = 0; i < steps; ++i) menu("U");
    undone = drawingText();
    EXPECT_FALSE(isModified());
    for (std::size_t i = 0; i < steps; ++i) menu("REDO");
    redone = drawingText();
  });
  EXPECT_TRUE(undone == opened);
  EXPECT_TRUE(redone == made);
  EXPECT_TRUE(made == byScript(plan,
                               "TLM_MUOK_METSA\n(handent \"108\")\n\nTLM_MUOK_NURMIKKO\n(handent \"101\")\n\n"
                               "TLM_MUOK_AITA_LAUTA\n(handent \"121\")\n\nTLM_ASETA_KORKEUS\n(handent \"121\")\n\n1.8\n"
                               "TLM_PARK_PAIKKA_TEE\n43,10\n33,10\n\n\n\n"));
}

TEST_F(ByMouse, WrongTargetChangesNothingAndIsTold) {
  const auto plan = copy("docs/guide/tontti.dxf");
  const std::string opened = contentOf(plan);
  work({plan}, [&] {
    const auto view = get<host::geometry::Box>([this] { return window->canvas().visibleBox(); });
    menu("TLM_MUOK_NURMIKKO");
    type("(handent \"151\")");  // a tree
    rightClick();
    EXPECT_NE(told().indexOf(QString::fromUtf8("Mikään ei muuttunut: valittuna 1 ympyrä.")), -1)
        << told().toStdString();
    menu("TLM_MUOK_ASFALTTI");
    type("(handent \"102\")");
    rightClick();
    // The first command has added its layers even so.
    while (get<std::size_t>([this] { return engine->application().undoNames(1).size(); }) > 0) menu("U");
    EXPECT_FALSE(isModified());
    EXPECT_FALSE(get<bool>([this] { return window->isWindowModified(); }));
    EXPECT_TRUE(drawingText() == opened);
    const auto now = get<host::geometry::Box>([this] { return window->canvas().visibleBox(); });
    EXPECT_EQ(view.minX, now.minX);
    EXPECT_EQ(view.maxY, now.maxY);
  });
}

TEST_F(ByMouse, WhatIsSelectedAnswersTheCommand) {
  const auto plan = copy("docs/guide/tontti.dxf");
  work({plan}, [&] {
    ui([this] { window->talk().select({entity(0x101), entity(0x151)}); });
    menu("TLM_MUOK_NURMIKKO");
    EXPECT_NE(told().indexOf(QString::fromUtf8("ennallaan 1 (ympyrä)")), -1) << told().toStdString();
    EXPECT_EQ(get<Conversation::State>([this] { return window->talk().state(); }), Conversation::State::Rest);
    // Enter repeats, without a selection it asks.
    enter();
    EXPECT_EQ(get<Conversation::State>([this] { return window->talk().state(); }), Conversation::State::Selection);
    escape();
    EXPECT_EQ(get<Conversation::State>([this] { return window->talk().state(); }), Conversation::State::Rest);
  });
}

}  // namespace
