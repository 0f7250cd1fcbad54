// What commands pass over without a word is told by the host.
#include <memory>

#include "Editor/DialogInput.h"
#include "Support.h"
#include "acedads.h"
#include "acutads.h"
#include "dbents.h"
#include "dbhatch.h"
#include "dbpl.h"
#include "dbsymtb.h"

using host::RunStatus;

namespace {

std::vector<AcDbObjectId> selectedIds(const resbuf* filter = nullptr) {
  std::vector<AcDbObjectId> ids;
  ads_name set{};
  if (acedSSGet(nullptr, nullptr, nullptr, filter, set) != RTNORM) return ids;
  Adesk::Int32 length = 0;
  acedSSLength(set, &length);
  for (Adesk::Int32 i = 0; i < length; ++i) {
    ads_name name{};
    AcDbObjectId id;
    acedSSName(set, i, name);
    if (acdbGetObjectId(id, name) == Acad::eOk) ids.push_back(id);
  }
  acedSSFree(set);
  return ids;
}

void paintPolylines(const std::vector<AcDbObjectId>& ids) {
  for (const AcDbObjectId id : ids) {
    if (!id.objectClass()->isDerivedFrom(AcDbPolyline::desc())) continue;
    AcDbHatch hatch;
    hatch.setPattern(AcDbHatch::kPreDefined, L"SOLID");
    AcDbObjectIdArray boundary;
    boundary.append(id);
    hatch.appendLoop(AcDbHatch::kExternal, boundary);
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
    if (entity->upgradeOpen() == Acad::eOk) entity->setColorIndex(3);
    entity->close();
  }
}

/// PAINT takes polylines, hatches each and colours it, and says nothing, as plug-ins do.
class Skips : public test::Host {
 protected:
  Skips() {
    command(L"PAINT", [] { paintPolylines(selectedIds()); });
    expectDone(
        "LAYER N shut\n\n"
        "PLINE 0,0 10,0 10,10 0,10 C\n"                                                        // 0: a square
        "PLINE 20,0 30,0 30,10\n\n"                                                            // 1: open
        "PLINE 40,0 50,10 50,0 40,10 C\n"                                                      // 2: crosses itself
        "LINE 60,0 61,0\n\n"                                                                   // 3
        "LAYER S shut\n\nPLINE 70,0 80,0 80,10 C\nPLINE 90,0 95,0\n\nLAYER S 0 LO shut\n\n");  // 4, 5: locked
    all = entities();
    EXPECT_EQ(all.size(), 6U);
  }
  std::wstring name(std::size_t i) const {
    return host::text::fromUtf8(std::string(all[i]->database().typeName(*all[i])) + " " +
                                host::text::formatHandle(all[i]->handle));
  }
  /// The lines of the transcript that tell of left-out objects.
  std::wstring told() const {
    std::wstring found;
    for (std::size_t begin = 0, end = 0; begin < transcript.size(); begin = end + 1) {
      end = std::min(transcript.find(L'\n', begin), transcript.size());
      const std::wstring line = transcript.substr(begin, end - begin);
      if (line.find(L" skipped:") != std::wstring::npos || line.find(L" not hatched:") != std::wstring::npos)
        found += (found.empty() ? L"" : L"\n") + line;
    }
    return found;
  }

  std::vector<test::Slot*> all;
};

TEST_F(Skips, AreCountedByReasonInOneLineAtTheEnd) {
  expectDone("PAINT C -1,-1 99,99\n\n");
  EXPECT_EQ(told(), L"3 skipped: 2 on a locked layer (" + name(5) + L", " + name(4) +
                        L"), 1 that PAINT does not take (" + name(3) + L"); 2 not hatched: 1 crossing itself (" +
                        name(2) + L"), 1 not closed (" + name(1) + L")");
  expectDone("PAINT " + handent(*all[0]) + "\n\n");
  EXPECT_EQ(told(), L"") << "nothing was left out, and the command before is forgotten";
  expectDone("ERASE " + handent(*all[0]) + " " + handent(*all[4]) + "\n\n");
  EXPECT_EQ(told(), L"1 skipped: on a locked layer (" + name(4) + L")");
  expectDone("PAINT ALL\n\n");
  EXPECT_TRUE(said(L"2 were on a locked layer."));
  EXPECT_EQ(told().find(L"locked"), std::wstring::npos) << "what was not selected is not skipped";
}

TEST_F(Skips, TheSumHasEachObjectOnce) {
  EXPECT_EQ(app.summary().sentence(), "9 commands; 6 objects made");
  expectDone("PAINT C -1,-1 99,99\n\nPAINT C -1,-1 99,99\n\nERASE " + handent(*all[4]) + "\n\nSELECT 500,500\n\n");
  const host::editor::RunSummary sum = app.summary();
  EXPECT_EQ(sum.sentence(),
            "13 commands; 6 objects made; 3 skipped: 1 of a kind that the command does not take, 2 on a locked layer; "
            "2 not hatched: 1 crossing itself, 1 not closed; 1 pick found nothing");
  // What is undone was not done; what was left out was, also of a drawing that has been closed.
  expectDone("ERASE " + handent(*all[0]) + "\n\n");
  EXPECT_EQ(app.summary().made, 5U);
  expectDone("U\nCLOSE\nYes\n");
  EXPECT_EQ(app.summary().made, 6U);
  EXPECT_EQ(app.summary().skipped, sum.skipped);
  EXPECT_EQ(app.summary().commands, 16U);
}

TEST_F(Skips, ManyObjectsAreNotAllNamed) {
  expectDone("LAYER U shut\n\nLINE 0,50 1,50 2,50 3,50 4,50\n\nPAINT C -1,49 99,51\n\n");
  EXPECT_NE(told().find(L"4 skipped: nothing was selected that PAINT takes (LINE "), std::wstring::npos)
      << told().size();
  EXPECT_TRUE(told().ends_with(L", ...)"));
}

TEST_F(Skips, AreNotGuessedWhenTheUserLeftTheCommand) {
  command(L"ASKSFIRST", [] {
    const std::vector<AcDbObjectId> ids = selectedIds();
    ads_real height = 0;
    if (acedGetReal(L"\nHeight: ", &height) == RTNORM) paintPolylines(ids);
  });
  command(L"SHOWSDIALOG", [] {
    const std::vector<AcDbObjectId> ids = selectedIds();
    host::editor::dialogOpened();
    const bool isOk = host::editor::nextDialogLine(L"dialog \"Roof\"").text == L"OK";
    host::editor::dialogClosed(!isOk);
    if (isOk) paintPolylines(ids);
  });
  const std::string two = handent(*all[0]) + " " + handent(*all[3]);
  expectDone("ASKSFIRST " + two + "\n\n^C\n");
  EXPECT_EQ(told(), L"");
  expectDone("ASKSFIRST " + two + "\n\n5\n");
  EXPECT_EQ(told(), L"1 skipped: that ASKSFIRST does not take (" + name(3) + L")");
  expectDone("SHOWSDIALOG " + two + "\n\nCancel\n");
  EXPECT_EQ(told(), L"");
  expectDone("SHOWSDIALOG " + two + "\n\nOK\n");
  EXPECT_EQ(told(), L"1 skipped: that SHOWSDIALOG does not take (" + name(3) + L")");
}

TEST_F(Skips, FiltersAndTheDrawOrderCount) {
  command(L"FILTERED", [] {
    resbuf* const filter = acutBuildList(RTDXF0, L"LWPOLYLINE", RTNONE);
    paintPolylines(selectedIds(filter));
    acutRelRb(filter);
  });
  expectDone("FILTERED " + handent(*all[0]) + " " + handent(*all[3]) + "\n\n");
  EXPECT_EQ(told(), L"1 skipped: that FILTERED does not take (" + name(3) + L")");
}

TEST_F(Skips, LinesForADialogThatDidNotOpenSayWhy) {
  command(L"ROOFS", [] {
    if (selectedIds().empty()) return;
  });
  expectFailure("ROOFS " + handent(*all[3]) + "\n\n30211 2\nOK\n",
                "plan.scr:3: unknown command \"30211\"; the line is for a dialog, and none is open; ROOFS: 1 skipped: "
                "nothing was selected that ROOFS takes (" +
                    host::text::toUtf8(name(3)) + ")");
  expectFailure("LINE 0,0 1,1\n\nOK\n",
                "plan.scr:3: unknown command \"OK\"; the line is for a dialog, and none is open");
}

TEST_F(Skips, PicksThatFindNothingAreToldToScripts) {
  expectDone("PAINT 5,0 500,500 W 300,300 301,301\n\n");
  EXPECT_EQ(problems,
            (std::vector<std::string>{"plan.scr:1: PAINT: nothing found at 500,500",
                                      "plan.scr:1: PAINT: nothing found in the window from 300,300 to 301,301"}));
  problems.clear();
  command(L"PICKONE", [] {
    ads_name entity{};
    ads_point point{};
    acedEntSel(L"\nPick: ", entity, point);
  });
  expectDone("PICKONE 500,500\nPICKONE 5,0\n");
  EXPECT_EQ(problems, std::vector<std::string>{"plan.scr:1: PICKONE: nothing found at 500,500"});
}

/// The same host, which forgives nothing.
class StrictSkips : public testing::Test {};

TEST_F(StrictSkips, FailTheScript) {
  host::editor::ApplicationOptions options;
  options.isStrict = true;
  host::editor::Application app(options);
  ASSERT_TRUE(app.newDrawing());
  const auto run = [&app](std::string_view script) {
    host::editor::ScriptInput input(script, "plan.scr");
    return app.run(input);
  };
  EXPECT_TRUE(run("LAYER N shut S shut\n\nLINE 0,0 1,1\n\nLAYER S 0 LO shut\n\n"));
  const host::Result<> skipped = run("ERASE L\n\nLINE 5,5 6,6\n\n");
  EXPECT_EQ(skipped.status(), RunStatus::ScriptFailed);
  EXPECT_EQ(skipped.message().find("plan.scr:2: ERASE: 1 skipped: on a locked layer (LINE "), 0U) << skipped.message();
  const host::Result<> missed = run("SELECT 500,500\n\n");
  EXPECT_EQ(missed.message(), "plan.scr:1: SELECT: nothing found at 500,500");
}

}  // namespace
