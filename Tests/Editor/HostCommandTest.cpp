// The host's own commands and system variables, seen in the drawing they leave.
#include <cmath>

#include "Support.h"
#include "acedads.h"
#include "acutmem.h"
#include "dbpl.h"

namespace {

class Commands : public test::Host {
 protected:
  std::string saved() { return host::dxf::drawingText(*app.drawing()); }
  static std::vector<double> reals(const test::Slot& slot, int code) {
    std::vector<double> numbers;
    host::database::Tag tag;
    for (host::database::TagCursor tags = slot.tags(); tags.next(tag);) {
      if (tag.code == code) numbers.push_back(tag.real());
    }
    return numbers;
  }
  static std::vector<double> bulgesOf(test::Slot& slot) {
    std::vector<double> bulges;
    AcDbPolyline* polyline = nullptr;
    if (acdbOpenObject(polyline, AcDbObjectId(&slot)) != Acad::eOk) return bulges;
    bulges.resize(polyline->numVerts());
    for (unsigned i = 0; i < polyline->numVerts(); ++i) polyline->getBulgeAt(i, bulges[i]);
    polyline->close();
    return bulges;
  }
  bool hasLayer(const wchar_t* name) const { return app.drawing()->findRecord(DxfTypeLayer, name) != nullptr; }
  std::vector<std::string> layerValues(const wchar_t* name, int code) const {
    const test::Slot* const record = app.drawing()->findRecord(DxfTypeLayer, name);
    return record != nullptr ? values(*record, code) : std::vector<std::string>{"no layer"};
  }
  static constexpr auto DxfTypeLayer = test::DxfType::Layer;
};

TEST_F(Commands, LineClosesAndUndoes) {
  expectDone("LINE 0,0 @4,0 @0,3 C\n");
  ASSERT_EQ(entities().size(), 3U);
  EXPECT_EQ(reals(*entities()[2], 10), std::vector<double>{4});
  EXPECT_EQ(reals(*entities()[2], 11), std::vector<double>{0});
  expectDone("LINE 0,0 1,0 2,0 U U 0,9\n\n");
  ASSERT_EQ(entities().size(), 4U);
  EXPECT_EQ(reals(*entities()[3], 21), std::vector<double>{9});
  expectDone("LINE\n\n@1,0\n\n");  // Enter starts at the last point
  EXPECT_EQ(reals(*entities()[4], 10), std::vector<double>{0});
  EXPECT_EQ(reals(*entities()[4], 20), std::vector<double>{9});
  expectFailure("LINE 0,0 1,0 C\n", "Invalid point");
}

TEST_F(Commands, UndoTakesBackWhatChangedSomethingAndSaysWhat) {
  const std::string empty = saved();
  expectDone("LINE 0,0 4,0\n\nLIST L\n\nLINE ^C\nSETVAR LTSCALE 1\nU\n");
  EXPECT_TRUE(said(L"\nCommand: U\nLINE\n"));
  EXPECT_EQ(saved(), empty);
  expectDone("U\n");
  EXPECT_TRUE(said(L"Everything has been undone"));
  expectDone("REDO\n");
  EXPECT_EQ(entities().size(), 1U);
}

TEST_F(Commands, PolylineOfLinesAndTangentArcs) {
  // A stadium: the arc leaves east from (10,0) and turns to west; then a line and the closing arc.
  expectDone("PLINE 0,0 10,0 A 10,4 L 0,4 A CL\n");
  ASSERT_EQ(entities().size(), 1U);
  test::Slot& stadium = *entities()[0];
  EXPECT_EQ(values(stadium, 70), std::vector<std::string>{"1"});
  EXPECT_EQ(reals(stadium, 10), (std::vector<double>{0, 10, 10, 0}));
  const std::vector<double> bulges = bulgesOf(stadium);
  ASSERT_EQ(bulges.size(), 4U);
  EXPECT_EQ(bulges[0], 0);
  EXPECT_NEAR(bulges[1], 1, 1e-12);
  EXPECT_EQ(bulges[2], 0);
  EXPECT_NEAR(bulges[3], 1, 1e-12);

  // A second arc goes on where the first one points; then points, a centre, a direction, an angle.
  expectDone("PLINE 0,0 A 2,0 4,0\n\n");  // an arc that would leave straight along its chord is straight
  EXPECT_EQ(reals(*entities()[1], 10), (std::vector<double>{0, 2, 4}));
  expectDone("PLINE 0,0 A S 1,1 2,0 4,0\n\n");
  const std::vector<double> wave = bulgesOf(*entities()[2]);
  ASSERT_GE(wave.size(), 2U);
  EXPECT_NEAR(wave[0], -1, 1e-12);
  EXPECT_NEAR(wave[1], 1, 1e-12);
  expectDone("PLINE 1,0 A CE 0,0 0,5 D @0,1 -1,2 A 90 -2,2\n\n");
  const std::vector<double> mixed = bulgesOf(*entities()[3]);
  ASSERT_GE(mixed.size(), 3U);
  EXPECT_NEAR(mixed[0], std::tan(std::acos(-1.0) / 8), 1e-12);
  EXPECT_NEAR(reals(*entities()[3], 20)[1], 1, 1e-12);
  EXPECT_NEAR(mixed[1], std::tan(std::acos(-1.0) / 8), 1e-12);
  EXPECT_NEAR(mixed[2], std::tan(std::acos(-1.0) / 8), 1e-12);
}

TEST_F(Commands, PolylineWidthsUndoAndTooFewPoints) {
  expectDone("PLINE 0,0 W 0.5 1 4,0 8,0 U 9,0\n\nPLINE 3,3\n\n");
  ASSERT_EQ(entities().size(), 1U);
  EXPECT_EQ(reals(*entities()[0], 10), (std::vector<double>{0, 4, 9}));
  EXPECT_EQ(reals(*entities()[0], 40)[0], 0.5);
  EXPECT_EQ(reals(*entities()[0], 41)[0], 1);
}

TEST_F(Commands, LayersByTheirOptions) {
  expectDone(
      "LAYER N walls,doors N \"my layer\" C red walls LT Continuous doors S walls F doors LO walls OFF \"my layer\"\n\n"
      "LINE 0,0 1,1\n\n");
  EXPECT_EQ(layerOf(*entities()[0]), L"walls");
  EXPECT_EQ(layerValues(L"WALLS", 62), std::vector<std::string>{"1"});
  EXPECT_EQ(std::stoi(layerValues(L"walls", 70)[0]) & 5, 4);
  EXPECT_EQ(std::stoi(layerValues(L"doors", 70)[0]) & 5, 1);
  EXPECT_EQ(layerValues(L"my layer", 62), std::vector<std::string>{"-7"});
  EXPECT_EQ(app.drawing()->headerText("$CLAYER", 8), L"walls");
  expectDone("LAYER T * U * ON * M roofs\n\n");
  EXPECT_EQ(std::stoi(layerValues(L"doors", 70)[0]) & 5, 0);
  EXPECT_EQ(layerValues(L"my layer", 62), std::vector<std::string>{"7"});
  EXPECT_EQ(app.drawing()->headerText("$CLAYER", 8), L"roofs");
}

TEST_F(Commands, LayerRefusals) {
  expectFailure("LAYER S nowhere\n\n", "plan.scr:1: LAYER: CLAYER: cannot find layer \"nowhere\".");
  expectFailure("LAYER F 0\n\n", "Cannot freeze layer \"0\"");
  expectFailure("LAYER ON none*\n\n", "No matching layer names");
  expectFailure("LAYER C 256 0\n\n", "Requires a color");
  expectFailure("LAYER N a<b\n\n", "cannot be a layer name");
  expectFailure("LAYER LT dashes-of-nobody 0\n\n", "Cannot find linetype \"dashes-of-nobody\".");
  expectFailure("LINETYPE S dashes-of-nobody\n\n", "Cannot find linetype");
}

TEST_F(Commands, LinetypesComeFromTheirFileOnce) {
  expectDone("LINETYPE S hidden2\n\nLINE 0,0 1,1\n\n");
  EXPECT_EQ(app.drawing()->headerText("$CELTYPE", 6), L"HIDDEN2");
  EXPECT_EQ(values(*entities()[0], 6), std::vector<std::string>{"HIDDEN2"});
  expectDone("LINETYPE L HIDDEN2\n\n\n");
  EXPECT_TRUE(said(L"already loaded"));
}

TEST_F(Commands, UndoAndRedoWholeCommands) {
  const std::string before = saved();
  expectDone("LAYER N x S x\n\nPLINE 0,0 1,0 1,1 C\nERASE L\n\n");
  EXPECT_EQ(entities().size(), 0U);
  const std::string after = saved();
  expectDone("U\n");
  EXPECT_TRUE(said(L"ERASE"));
  EXPECT_EQ(entities().size(), 1U);
  expectDone("UNDO 2\n");
  EXPECT_EQ(entities().size(), 0U);
  EXPECT_FALSE(hasLayer(L"x"));
  EXPECT_EQ(app.drawing()->headerText("$CLAYER", 8), L"0");
  expectDone("U\n");
  EXPECT_TRUE(said(L"Everything has been undone"));
  expectDone("REDO\nREDO\nREDO\nREDO\n");
  EXPECT_TRUE(said(L"Nothing to redo"));
  EXPECT_TRUE(hasLayer(L"x"));
  EXPECT_EQ(saved(), after);
  EXPECT_NE(before, after);
}

TEST_F(Commands, EraseLeavesLockedLayers) {
  expectDone(
      "LINE 0,0 1,1\n\nLAYER N shut S shut\n\nLINE 0,5 1,6\n\nLAYER LO shut\n\n"
      "ERASE W -1,-1 9,9\n\n");
  EXPECT_TRUE(said(L"1 skipped: on a locked layer (LINE "));
  ASSERT_EQ(entities().size(), 1U);
  EXPECT_EQ(layerOf(*entities()[0]), L"shut");
}

TEST_F(Commands, ListTellsGeometry) {
  expectDone("PLINE 0,0 4,0 4,3 C\nLINE 0,0 3,4\n\nLIST ALL\n\n");
  EXPECT_TRUE(said(L"closed  length 12  area 6")) << host::text::toUtf8(transcript);
  EXPECT_TRUE(said(L"from 0,0,0 to 3,4,0  length 5"));
}

TEST_F(Commands, ZoomChangesTheViewOnly) {
  expectDone("LINE 0,0 40,30\n\n");
  const std::string before = saved();
  const auto size = [this] {
    expectDone("SETVAR VIEWSIZE\n");
    return transcript;
  };
  EXPECT_NE(size().find(L"VIEWSIZE = 30"), std::wstring::npos);
  expectDone("ZOOM 2x\n");
  EXPECT_NE(size().find(L"VIEWSIZE = 15"), std::wstring::npos);
  expectDone("ZOOM C 5,5 10\nZOOM P\n");
  EXPECT_NE(size().find(L"VIEWSIZE = 15"), std::wstring::npos);
  expectDone("ZOOM E\n");
  EXPECT_NE(size().find(L"VIEWSIZE = 30"), std::wstring::npos);
  expectFailure("ZOOM 0\n", "Requires a scale factor");
  EXPECT_EQ(saved(), before);
}

TEST_F(Commands, VariablesHaveTypesAndHomes) {
  expectDone("SETVAR LTSCALE 0.5\nCLAYER 0\nCECOLOR 3\nINSUNITS 4\nSETVAR SORTENTS 96\nLINE 0,0 1,1\n\n");
  EXPECT_EQ(values(*entities()[0], 62), std::vector<std::string>{"3"});
  EXPECT_EQ(app.drawing()->headerInteger("$INSUNITS", 70), 4);
  EXPECT_EQ(app.drawing()->headerInteger("$SORTENTS", 280), 96);
  expectFailure("CELTYPE dashes-of-nobody\n", "CELTYPE linetype \"dashes-of-nobody\" is not loaded");
  expectFailure("SETVAR LTSCALE 0\n", "LTSCALE needs a number above 0");
  expectFailure("SETVAR LTSCAL 1\n", "Unknown variable name \"LTSCAL\"; nearest: LTSCALE");
  expectFailure("MEASUREMENT 7\n", "MEASUREMENT needs a number from 0 to 1");
  expectFailure("MEASUREMENT 0.5\n", "needs a whole number");

  resbuf value{};
  ASSERT_EQ(acedGetVar(L"clayer", &value), RTNORM);
  EXPECT_EQ(value.restype, RTSTR);
  EXPECT_STREQ(value.resval.rstring, L"0");
  EXPECT_EQ(acedSetVar(L"CLAYER", &value), RTNORM);
  EXPECT_EQ(acedSetVar(L"SORTENTS", &value), RTERROR);  // another type
  EXPECT_EQ(acedSetVar(L"DWGNAME", &value), RTERROR);   // read-only
  acutDelString(value.resval.rstring);
  value = {};
  value.restype = RTSHORT;
  value.resval.rint = 127;
  EXPECT_EQ(acedSetVar(L"SORTENTS", &value), RTNORM);
  value.resval.rint = 128;
  EXPECT_EQ(acedSetVar(L"SORTENTS", &value), RTERROR);
  EXPECT_EQ(acedGetVar(L"NOSUCHVARIABLE", &value), RTERROR);
  ASSERT_EQ(acedGetVar(L"LASTPOINT", &value), RTNORM);
  EXPECT_EQ(value.restype, RT3DPOINT);
  EXPECT_EQ(value.resval.rpoint[0], 1);
  ASSERT_EQ(acedGetVar(L"LTSCALE", &value), RTNORM);
  EXPECT_EQ(value.restype, RTREAL);
  EXPECT_EQ(value.resval.rreal, 0.5);

  EXPECT_NE(app.setVariable(L"PICKBOXX", L"1").message().find("nearest: PICKBOX"), std::string::npos);
  EXPECT_EQ(app.setVariable(L"PICKBOX", L"x").message(), "PICKBOX: needs a whole number");
}

TEST_F(Commands, EveryVariableCanBeShown) {
  expectDone("SETVAR ?\n");
  for (const wchar_t* part : {L"\nACADVER  \"", L"\nCTAB  \"Model\"", L"\nUCSXDIR  1,0,0", L"\nTILEMODE  1"})
    EXPECT_TRUE(said(part)) << host::text::toUtf8(part);
  app.closeDrawing();
  resbuf value{};
  EXPECT_EQ(acedGetVar(L"CLAYER", &value), RTNORM);  // no drawing: an empty text
  acutDelString(value.resval.rstring);
}

TEST_F(Commands, ProgramsAddTheirOwn) {
  const auto stamp = [](host::editor::Prompter& prompter) {
    const auto name = prompter.text(L"Enter stamp: ");
    if (name && name.value == L"bad") prompter.fail(host::Code::OutputFailed, L"the stamp is worn");
    if (name) prompter.line(L"Stamped " + name.value);
  };
  app.addCommand(L"STAMP", ACRX_CMD_TRANSPARENT, stamp, L"stamps the drawing");
  expectDone("STAMP in two words\n");
  EXPECT_TRUE(said(L"Stamped in two words"));
  const host::Result<> result = run("STAMP bad\n");
  EXPECT_EQ(result.status(), host::RunStatus::OutputFailed);
  EXPECT_EQ(result.message(), "plan.scr:1: the stamp is worn");
}

TEST_F(Commands, HelpTellsOfAllCommands) {
  const auto stamp = [](host::editor::Prompter&) {};
  app.addCommand(L"STAMP", 0, stamp, L"stamps the drawing");
  command(L"MODULES_OWN", [] {});
  expectDone("HELP\n");
  for (const wchar_t* part : {L"\n  STAMP       stamps the drawing\n", L"\n  ERASE       erases objects\n",
                              L"\nCommands of TEST:\n  MODULES_OWN\n", L"LIST prints its controls"})
    EXPECT_TRUE(said(part)) << host::text::toUtf8(part) << host::text::toUtf8(transcript);
  const std::wstring help = transcript;
  // In the midst of a command, and without a drawing.
  expectDone("LINE 0,0 '? 1,1\n\n");
  EXPECT_TRUE(said(L"stamps the drawing"));
  EXPECT_EQ(entities().size(), 1U);
  app.closeDrawing();
  expectDone("?\n");
  EXPECT_EQ(transcript.substr(transcript.find(L'\n')), help.substr(help.find(L'\n')));
}

}  // namespace
