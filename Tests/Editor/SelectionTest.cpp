// Picks, windows, filters, groups, sets.
#include <algorithm>

#include "Database/Store/Parts.h"
#include "Support.h"
#include "acedads.h"
#include "acutads.h"
#include "dbdict.h"
#include "dbgroup.h"
#include "dbpl.h"
#include "dbsymtb.h"

namespace {

class Selections : public test::Host {
 protected:
  Selections() {
    // 0: long line, 1: closed square, 2: short line far off, 3: line on a frozen, 4: on an off, 5: on a locked layer.
    expectDone(
        "LAYER N cold,dark,shut C 3 shut\n\n"
        "LINE 0,0 100,0\n\n"
        "PLINE 10,10 20,10 20,20 10,20 C\n"
        "LINE 80,80 81,80\n\n"
        "LAYER S cold\n\nLINE 30,30 31,30\n\n"
        "LAYER S dark\n\nLINE 40,40 41,40\n\n"
        "LAYER S shut\n\nLINE 50,50 51,50\n\n"
        "LAYER S 0 F cold OFF dark LO shut\n\n");
    all = entities();
    EXPECT_EQ(all.size(), 6U);
  }

  /// Indices in `all` of the members of a set made by acedSSGet; the set is freed.
  static std::string membersOf(int result, const ads_name set) {
    if (result != RTNORM) return result == RTERROR ? "none" : result == RTCAN ? "esc" : "other";
    Adesk::Int32 length = 0;
    EXPECT_EQ(acedSSLength(set, &length), RTNORM);
    std::string text;
    for (Adesk::Int32 i = 0; i < length; ++i) {
      ads_name name{};
      AcDbObjectId id;
      EXPECT_EQ(acedSSName(set, i, name), RTNORM);
      acdbGetObjectId(id, name);
      const auto place = std::find(all.begin(), all.end(), id.slot());
      text += (text.empty() ? "" : " ") + std::to_string(place - all.begin());
    }
    EXPECT_EQ(acedSSFree(set), RTNORM);
    EXPECT_EQ(acedSSFree(set), RTERROR);
    return text;
  }
  static std::string get(const wchar_t* mode, const resbuf* filter = nullptr, const void* p1 = nullptr,
                         const void* p2 = nullptr) {
    ads_name set{};
    const int result = acedSSGet(mode, p1, p2, filter, set);
    return membersOf(result, set);
  }
  static std::string filtered(resbuf* filter) {
    std::string members = get(L"X", filter);
    acutRelRb(filter);
    return members;
  }
  /// What a plug-in's selection with the answers holds.
  std::string asked(const std::string& answers, const wchar_t* modeText = nullptr, int flags = ACRX_CMD_MODAL) {
    static std::string members;
    static const wchar_t* mode;
    members = "?";
    mode = modeText;
    acedRegCmds->removeGroup(L"TEST");
    command(
        L"PICKS", [] { members = get(mode); }, flags);
    last = run("PICKS " + answers);
    return members;
  }

  static inline std::vector<test::Slot*> all;
  host::Result<> last;
};

TEST_F(Selections, FiltersReadValuesWhereTheirCodesKeepThem) {
  host::database::RecordEditor& editor = app.drawing()->parts().editor;
  editor.setTag(*all[0], "AcDbEntity", 160, "8589934593");  // 2^33 + 1
  editor.setTag(*all[1], "AcDbEntity", 160, "1");
  EXPECT_EQ(filtered(acutBuildList(160, Adesk::Int64{8589934593}, RTNONE)), "0");
  EXPECT_EQ(filtered(acutBuildList(-4, L">", 160, Adesk::Int64{0}, RTNONE)), "1 0");
  ads_name owner{};
  acdbGetAdsName(owner, AcDbObjectId(all[2]->owner));
  EXPECT_EQ(filtered(acutBuildList(330, owner, 62, 256, RTNONE)), "5 4 3 2 1 0");
  acdbGetAdsName(owner, AcDbObjectId(all[2]));
  EXPECT_EQ(filtered(acutBuildList(330, owner, RTNONE)), "none");
}

TEST_F(Selections, WholeDrawingNewestFirst) {
  EXPECT_EQ(get(L"X"), "5 4 3 2 1 0");
  expectDone("ERASE L\n\n");  // the newest that can be seen is on the locked layer: it stays
  EXPECT_EQ(get(L"X"), "5 4 3 2 1 0");
  expectDone("ERASE " + handent(*all[2]) + "\n\n");
  EXPECT_EQ(get(L"X"), "5 4 3 1 0");
  EXPECT_EQ(app.openSelectionSets(), 0U);
}

TEST_F(Selections, Filters) {
  EXPECT_EQ(filtered(acutBuildList(RTDXF0, L"LWPOLYLINE,POLYLINE", RTNONE)), "1");
  EXPECT_EQ(filtered(acutBuildList(RTDXF0, L"line", 8, L"0", RTNONE)), "2 0");
  EXPECT_EQ(filtered(acutBuildList(8, L"*ar?", RTNONE)), "4");
  EXPECT_EQ(filtered(acutBuildList(8, L"~0", RTNONE)), "5 4 3");
  EXPECT_EQ(filtered(acutBuildList(62, 256, -4, L"<OR", 8, L"cold", 8, L"dark", -4, L"OR>", RTNONE)), "4 3");
  EXPECT_EQ(filtered(acutBuildList(-4, L"<NOT", RTDXF0, L"LINE", -4, L"NOT>", RTNONE)), "1");
  EXPECT_EQ(filtered(acutBuildList(-4, L"<xor", 8, L"0", RTDXF0, L"LINE", -4, L"xor>", RTNONE)), "5 4 3 1");
  EXPECT_EQ(filtered(acutBuildList(-4, L"!=", 62, 256, RTNONE)), "none");
  EXPECT_EQ(filtered(acutBuildList(-4, L"&", 70, 1, RTNONE)), "1");
  EXPECT_EQ(filtered(acutBuildList(410, L"Model", 67, 0, RTDXF0, L"LWPOLYLINE", RTNONE)), "1");
  EXPECT_EQ(filtered(acutBuildList(6, L"BYLAYER", 8, L"shut", RTNONE)), "5");
  const ads_point low{35, 35, 0};
  EXPECT_EQ(filtered(acutBuildList(-4, L">=,>=,*", 10, low, RTDXF0, L"LINE", RTNONE)), "5 4 2");
  // Operators that do not pair up are no filter.
  EXPECT_EQ(filtered(acutBuildList(-4, L"<OR", 8, L"0", RTNONE)), "none");
  EXPECT_EQ(filtered(acutBuildList(-4, L"<NOT", 8, L"0", 8, L"1", -4, L"NOT>", RTNONE)), "none");
}

TEST_F(Selections, FilterExpressionsAnswerTheQuestion) {
  EXPECT_EQ(asked(R"((ssget "X" '((0 . "LWPOLYLINE") (70 . 1))))"
                  "\n\n"),
            "1");
  EXPECT_TRUE(said(L"1 found\n")) << host::text::toUtf8(transcript);
  EXPECT_EQ(asked(R"((ssget "_X" '((-4 . "<OR") (8 . "co*") (-4 . "<AND") (8 . "0") (-4 . "<NOT") (0 . "LINE"))"),
            "esc");
  EXPECT_NE(last.message().find("a \")\" is missing"), std::string::npos) << last.message();
  EXPECT_EQ(asked(R"((ssget "X" '((-4 . "<OR") (8 . "co*") (-4 . "<AND") (8 . "0") (-4 . "<NOT") (0 . "LINE") )"
                  R"((-4 . "NOT>") (-4 . "AND>") (-4 . "OR>"))))"
                  "\n\n"),
            "3 1");
  EXPECT_EQ(asked(R"((ssget "X" (list (cons 0 "LINE") '(-4 . ">=,>=,*") (list 10 35 35))))"
                  "\n\n"),
            "5 4 2");
  // A leaves out what is on frozen layers.
  EXPECT_EQ(asked(R"((ssget "A" '((0 . "LINE"))))"
                  "\n\n"),
            "5 4 2 0");
  EXPECT_TRUE(said(L"4 found, 1 on a locked layer")) << host::text::toUtf8(transcript);
  EXPECT_EQ(asked(R"((ssget "A"))"
                  "\nR "
                  R"((ssget "A" '((8 . "0"))))"
                  "\n\n"),
            "5 4");
  // Without an entity: the script is told.
  EXPECT_EQ(asked(R"((ssget "X" '((8 . "nowhere"))))"
                  "\n\n"),
            "none");
  EXPECT_NE(problems.back().find("nothing found by (ssget"), std::string::npos) << problems.back();
}

TEST_F(Selections, RefusesFilterExpressionsThatSayNothing) {
  const auto why = [this](const std::string& expression) {
    asked(expression + "\n\n");
    return last.message();
  };
  EXPECT_NE(why(R"((ssget "W"))").find("the method \"W\" is not supported"), std::string::npos);
  EXPECT_NE(why(R"((ssget "X" '((x . "0"))))").find("\"x\" is no group code"), std::string::npos);
  EXPECT_NE(why(R"((ssget "X" '((8 . 0))))").find("group 8 needs a text in quotation marks"), std::string::npos);
  EXPECT_NE(why(R"((ssget "X" '((62 . "red"))))").find("group 62 needs a number"), std::string::npos);
  EXPECT_NE(why(R"((ssget "X" '((62 . 70000))))").find("group 62 needs a whole number"), std::string::npos);
  EXPECT_NE(why(R"((ssget "X" '((-4 . "<OR") (8 . "0"))))").find("do not pair up"), std::string::npos);
  EXPECT_NE(why(R"((ssget "X" '((8))))").find("group 8 has no value"), std::string::npos);
  EXPECT_NE(why(R"((ssget "X" '((8 . "0")) '()))").find("one filter list"), std::string::npos);
}

TEST_F(Selections, LayersAndLikesByName) {
  EXPECT_EQ(asked("LAYER s*\n\n"), "5");
  EXPECT_TRUE(said(L"1 found, 1 on a locked layer")) << host::text::toUtf8(transcript);
  EXPECT_EQ(asked("lay 0,dark\n\n"), "4 2 1 0");
  EXPECT_EQ(asked("SAME " + handent(*all[2]) + "\n\n"), "2 0");
  expectDone("PLINE 1,1 2,2 3,1\n\n");
  EXPECT_EQ(asked("LAYER \"0\"\n\n").size(), std::string("x 2 1 0").size());
  EXPECT_TRUE(said(L"4 found, 1 not closed\n")) << host::text::toUtf8(transcript);
  asked("KIND house\n\n");
  EXPECT_NE(last.message().find("no plug-in has kinds of objects"), std::string::npos) << last.message();
}

TEST_F(Selections, FilterByExtendedData) {
  AcDbRegAppTable* table = nullptr;
  ASSERT_EQ(acdbCurDwg()->getRegAppTable(table, AcDb::kForWrite), Acad::eOk);
  auto* record = new AcDbRegAppTableRecord;
  record->setName(L"tagger");
  ASSERT_EQ(table->add(record), Acad::eOk);
  record->close();
  table->close();
  AcDbEntity* entity = nullptr;
  ASSERT_EQ(acdbOpenAcDbEntity(entity, AcDbObjectId(all[1]), AcDb::kForWrite), Acad::eOk);
  resbuf* const data = acutBuildList(1001, L"tagger", 1000, L"x", RTNONE);
  EXPECT_EQ(entity->setXData(data), Acad::eOk);
  acutRelRb(data);
  entity->close();
  EXPECT_EQ(filtered(acutBuildList(-3, 1001, L"tagger", RTNONE)), "1");
  EXPECT_EQ(filtered(acutBuildList(-3, 1001, L"other", RTNONE)), "none");
  EXPECT_EQ(asked(R"((ssget "X" '((-3 ("TAGGER")))))"
                  "\n\n"),
            "1");
  EXPECT_EQ(asked(R"((ssget "X" '((-3 ("tagger" (1000 . "x"))))))"
                  "\n\n"),
            "1");
  EXPECT_EQ(asked(R"((ssget "X" '((-3 ("tagger" (1000 . "x") (1000 . "x"))))))"
                  "\n\n"),
            "none");
}

TEST_F(Selections, PicksWindowsAndFences) {
  EXPECT_EQ(asked("50,0\n\n"), "0");
  EXPECT_EQ(asked("50,0.2 10,15\n\n"), "0 1");  // 0.2 is within the pick box of a drawing 100 wide
  EXPECT_EQ(asked("50,3\n\n"), "none");
  EXPECT_TRUE(said(L"0 found"));
  EXPECT_EQ(asked("W 5,5 90,90\n\n"), "5 2 1");
  EXPECT_TRUE(said(L"3 found"));
  EXPECT_EQ(asked("C 15,-5 16,12\n\n"), "1 0");
  EXPECT_EQ(asked("W 15,-5 16,12\n\n"), "none");
  EXPECT_EQ(asked("WP 0,5 30,5 30,30 0,30\n\n\n"), "1");
  EXPECT_EQ(asked("CP 12,12 30,12 30,15\n\n\n"), "1");
  EXPECT_EQ(asked("F 15,-1 15,15\n\n\n"), "1 0");
  EXPECT_EQ(asked("WP 0,0 1,1\n\n\n"), "esc");
  EXPECT_EQ(last.status(), host::RunStatus::ScriptFailed);
}

TEST_F(Selections, ListsOfEntities) {
  EXPECT_EQ(asked("ALL\n\n"), "4 2 1 0");  // not those on frozen or locked layers
  EXPECT_EQ(asked("L\n\n"), "5");
  EXPECT_EQ(asked(handent(*all[2]) + " " + handent(*all[0]) + "\n\n"), "2 0");
  EXPECT_EQ(asked("ALL R 50,0 A 50,0 50,0\n\n"), "4 2 1 0");
  EXPECT_TRUE(said(L"1 found, 1 removed, 3 total"));
  EXPECT_TRUE(said(L"1 found (1 duplicate), 4 total"));
  EXPECT_EQ(asked("ALL U\n\n"), "none");
  EXPECT_EQ(asked("ALL ^C\n"), "esc");
  expectDone("SELECT 50,0\n\n");
  EXPECT_EQ(asked("P\n\n"), "0");
  EXPECT_EQ(get(L"P"), "0");
  EXPECT_EQ(asked("10,15\n", L":S"), "1");
  EXPECT_EQ(asked("C 0,40 100,60\n\n", L"_:L"), "none");
  EXPECT_TRUE(said(L"1 was on a locked layer."));
}

TEST_F(Selections, ModesOfCode) {
  const ads_point a{5, 5, 0}, b{90, 90, 0};
  EXPECT_EQ(get(L"W", nullptr, a, b), "5 2 1");
  EXPECT_EQ(get(L"_W:L", nullptr, a, b), "2 1");
  EXPECT_EQ(get(L"A"), "4 2 1 0");
  EXPECT_EQ(get(L"L"), "5");
  EXPECT_EQ(get(L"W"), "none");
  EXPECT_EQ(get(L"Q"), "none");
  const ads_point onLine{50, 0, 0};
  EXPECT_EQ(get(nullptr, nullptr, onLine), "0");
  resbuf* const polygon = acutBuildList(RTPOINT, a, RTPOINT, b, RTPOINT, onLine, RTNONE);
  EXPECT_EQ(get(L"F", nullptr, polygon), "5 2 1 0");
  acutRelRb(polygon);
}

TEST_F(Selections, SetBeforeTheCommand) {
  app.setPickfirst({all[0], all[2]});
  EXPECT_EQ(asked("", nullptr, ACRX_CMD_USEPICKSET), "0 2");
  EXPECT_TRUE(app.pickfirst().empty());
  app.setPickfirst({all[0], all[2]});
  EXPECT_EQ(asked("10,15\n\n"), "1");  // a command that does not take it
  EXPECT_TRUE(app.pickfirst().empty());
  ASSERT_TRUE(app.setVariable(L"PICKFIRST", L"0"));
  app.setPickfirst({all[0]});
  EXPECT_EQ(asked("10,15\n\n", nullptr, ACRX_CMD_USEPICKSET), "1");
}

TEST_F(Selections, GroupsComeWhole) {
  AcDbDictionary* groups = nullptr;
  ASSERT_EQ(acdbCurDwg()->getGroupDictionary(groups, AcDb::kForWrite), Acad::eOk);
  auto* group = new AcDbGroup(L"pair");
  AcDbObjectId id;
  ASSERT_EQ(groups->setAt(L"Pair", group, id), Acad::eOk);
  group->append(AcDbObjectId(all[0]));
  group->append(AcDbObjectId(all[2]));
  group->close();
  groups->close();
  EXPECT_EQ(asked("50,0\n\n"), "0 2");
  EXPECT_EQ(asked("G Pair\n\n"), "0 2");
  ASSERT_TRUE(app.setVariable(L"PICKSTYLE", L"0"));
  EXPECT_EQ(asked("50,0\n\n"), "0");
}

TEST_F(Selections, PickingOneEntity) {
  static std::vector<int> results;
  static std::vector<double> errors;
  results.clear();
  errors.clear();
  command(L"PICKONE", [] {
    for (int i = 0; i < 4; ++i) {
      ads_name entity{};
      ads_point point{};
      results.push_back(acedEntSel(L"\nPick: ", entity, point));
      resbuf value{};
      acedGetVar(L"ERRNO", &value);
      errors.push_back(value.resval.rint);
    }
  });
  expectDone("PICKONE 50,0 70,70\n\n" + handent(*all[5]) + "\n");
  EXPECT_EQ(results, (std::vector<int>{RTNORM, RTERROR, RTERROR, RTNORM}));
  EXPECT_EQ(errors, (std::vector<double>{0, 7, 52, 0}));
  results.clear();
  expectDone("PICKONE 30,30 40,40 50,50 ^C\n");  // frozen, off, locked
  EXPECT_EQ(results, (std::vector<int>{RTERROR, RTERROR, RTNORM, RTCAN}));
}

TEST_F(Selections, TheTopmostIsPicked) {
  expectDone("LINE 0,0 100,0\n\n");
  test::Slot* const upper = entities().back();
  all.push_back(upper);
  EXPECT_EQ(asked("50,0\n\n"), "6");
  EXPECT_EQ(asked("50,0\n\n", L":E"), "6 0");
  // A closer look makes the pick box smaller.
  expectDone("ZOOM W 49,-1 51,1\n");
  EXPECT_EQ(asked("50,0.2\n\n"), "none");
}

TEST_F(Selections, SetsCanBeEditedAndAreLimited) {
  ads_name set{}, entity{};
  host::editor::Application& host = app;
  ASSERT_EQ(acedSSAdd(nullptr, nullptr, set), RTNORM);
  ads_name name{};
  acdbGetAdsName(name, AcDbObjectId(all[0]));
  ads_name_set(name, entity);
  EXPECT_EQ(acedSSAdd(entity, set, set), RTNORM);
  EXPECT_EQ(acedSSAdd(entity, set, set), RTNORM);
  Adesk::Int32 length = 0;
  acedSSLength(set, &length);
  EXPECT_EQ(length, 1);
  EXPECT_EQ(acedSSMemb(entity, set), RTNORM);
  EXPECT_EQ(acedSSDel(entity, set), RTNORM);
  EXPECT_EQ(acedSSMemb(entity, set), RTERROR);
  acedSSFree(set);
  std::vector<std::array<Adesk::Int64, 2>> sets;
  for (;;) {
    ads_name next{};
    if (acedSSGet(L"X", nullptr, nullptr, nullptr, next) != RTNORM) break;
    sets.push_back({next[0], next[1]});
    ASSERT_LE(sets.size(), 200U);
  }
  EXPECT_EQ(sets.size(), 128U);
  for (auto& made : sets) EXPECT_EQ(acedSSFree(made.data()), RTNORM);
  EXPECT_EQ(host.openSelectionSets(), 0U);
}

}  // namespace
