// The element commands on every kind of polyline, again and again.
#include "Illustration/BuildingPlan.h"

namespace {

using namespace tests;

class Elements : public BuildingPlan {
 protected:
  /// A closed square with its lower left corner at x, 0.
  std::string square(int x) {
    const std::string a = std::to_string(x), b = std::to_string(x + 10);
    return "PLINE\n" + a + ",0\n" + b + ",0\n" + b + ",10\n" + a + ",10\nC\n";
  }
};

struct Row {
  const char* command;
  const char* tag;
  const wchar_t* fillLayer;
  const wchar_t* outlineLayer;
  const char* pattern;
};
constexpr Row kRows[] = {
    {"TLM_MUOK_ASFALTTI", "Asfaltti", L"tma_asf", L"tmv_asf", "SOLID"},
    {"_TLM_MUOK_NURMIKKO", "Nurmialue", L"tma_nurmi", L"tmv_nurmi", "SOLID"},
    {"tlm_muok_nurmkko", "Nurmialue", L"tma_nurmi", L"tmv_nurmi", "SOLID"},
    {"TLM_MUOK_NURMIKKO", "Nurmialue", L"tma_nurmi", L"tmv_nurmi", "SOLID"},
    {"TLM_MUOK_SORA", "Sora-alue", L"tma_sora", L"tmv_sora", "SOLID"},
    {"TLM_MUOK_METSA", "Metsä", L"tma_metsa", L"tmv_metsa", "SOLID"},
    {"TLM_MUOK_PENSAS", "Pensas", L"tma_pensas", L"tmv_pensas", "SOLID"},
    {"TLM_MUOK_PIHALAATTA", "Pihalaatta", L"tma_laatta", L"tmv_laatta", "NET"},
    {"TLM_MUOK_POLKU", "Polku", L"tma_polku", L"tmv_polku", "SOLID"},
    {"TLM_MUOK_AITA_LAUTA", "Lauta-aita", nullptr, L"tmv_aita_lauta", nullptr},
    {"TLM_MUOK_AITA_KIVI", "Kiviaita", nullptr, L"tmv_aita_kivi", nullptr},
};

TEST_F(Elements, EveryCommandMakesItsElement) {
  run(square(0));
  Slot* const outline = last(DxfType::LwPolyline);
  for (const Row& row : kRows) {
    run(std::string(row.command) + "\n" + pick(*outline) + "\n");
    EXPECT_EQ(layer(*outline), row.outlineLayer) << row.command;
    run("SELECT\nKIND\n\"" + std::string(row.tag) + "\"\n\n");
    EXPECT_TRUE(said("1 found")) << row.tag << transcript_;
    // However often it is made something else, an outline has one fill, or none.
    const auto fills = living(DxfType::Hatch);
    ASSERT_EQ(fills.size(), row.pattern != nullptr ? 1U : 0U) << row.command;
    std::string fillHandle = "0";
    if (row.pattern != nullptr) {
      const Slot& fill = *fills.front();
      EXPECT_EQ(layer(fill), row.fillLayer);
      EXPECT_EQ(value(fill, 2), row.pattern);
      EXPECT_EQ(value(fill, 62), "");  // by layer
      EXPECT_EQ(value(fill, 71), "0");
      EXPECT_EQ(value(fill, 92), "3");
      fillHandle = handle(fill);
    }
    EXPECT_EQ(xdata(*outline, "kaava_tolmex"), "1001 kaava_tolmex|1000 TOLM_VERSION|1000 1|1000 ENTITYTYPE|1000 " +
                                                   std::string(row.tag) +
                                                   "|1000 HEIGHT|1000 0|1000 HATCH_HANDLE|1005 " + fillHandle);
  }
}

TEST_F(Elements, PavingIsAGridOfAlmostAMetre) {
  run(square(0) + "TLM_MUOK_PIHALAATTA\nALL\n\n");
  const Slot& fill = *last(DxfType::Hatch);
  EXPECT_EQ(value(fill, 41), "0.3");
  EXPECT_EQ(value(fill, 78), "2");
  EXPECT_NEAR(std::stod(value(fill, 46)), 0.9525, 1e-12);  // 3.175 mm of the metric pattern at scale 0.3
}

TEST_F(Elements, WhatCannotBeFilledStillBecomesAnElement) {
  run("PLINE\n0,0\n10,0\n10,10\n\n"                // open
      "PLINE\n20,0\n30,10\n30,0\n20,10\nC\n"       // crosses itself
      "PLINE\n40,0\n50,0\n60,0\nC\n"               // no area
      "PLINE\n70,0\n80,0\n80,10\n70,10\n70,0\n\n"  // a ring that only its points close
      "PLINE\n90,0\nA\nS\n95,-5\n100,0\nCL\n");    // two half circles
  run("TLM_MUOK_PENSAS\nALL\n\n");
  const auto outlines = living(DxfType::LwPolyline, L"tmv_pensas");
  ASSERT_EQ(outlines.size(), 5U);
  EXPECT_EQ(living(DxfType::Hatch).size(), 2U);
  EXPECT_EQ(tagValue(*outlines[0], "HATCH_HANDLE"), "0");
  EXPECT_EQ(tagValue(*outlines[1], "HATCH_HANDLE"), "0");
  EXPECT_EQ(tagValue(*outlines[2], "HATCH_HANDLE"), "0");
  EXPECT_NE(tagValue(*outlines[3], "HATCH_HANDLE"), "0");
  const Slot* const round = drawing().findHandle(host::text::parseHandle(tagValue(*outlines[4], "HATCH_HANDLE")));
  ASSERT_NE(round, nullptr);
  EXPECT_EQ(value(*round, 72), "1");  // arcs are kept as bulges
  EXPECT_NEAR(std::stod(value(*round, 42)), 1, 1e-12);
  EXPECT_EQ(transcript_.find("Error"), std::string::npos);
}

TEST_F(Elements, OtherEntitiesAreLeftAlone) {
  run("LINE\n0,0\n5,5\n\n" + square(0));
  const std::string before = text();
  run("TLM_MUOK_SORA\n" + pick(*last(DxfType::Line)) + "\n");
  EXPECT_EQ(living(DxfType::Hatch).size(), 0U);
  EXPECT_EQ(layer(*last(DxfType::Line)), L"0");
  // A line among polylines is dropped without a word, the polyline is made.
  run("TLM_MUOK_SORA\nALL\n\n");
  EXPECT_EQ(living(DxfType::Hatch).size(), 1U);
}

TEST_F(Elements, OldStylePolylinesBecomeElements) {
  openText(plainDrawing(oldPolyline(50, {"10 0|20 0|42 1|", "10 10|20 0|42 1|"}) +
                        oldPolyline(60, {"10 0|20 0|30 7|", "10 9|20 0|30 7|", "10 9|20 9|30 8|"})));
  run("TLM_MUOK_METSA\nALL\n\n");
  EXPECT_EQ(living(DxfType::Hatch, L"tma_metsa").size(), 2U);
  EXPECT_EQ(living(DxfType::Polyline2d, L"tmv_metsa").size(), 1U);
  EXPECT_EQ(living(DxfType::Polyline3d, L"tmv_metsa").size(), 1U);
  EXPECT_EQ(layer(*drawing().findHandle(0x62)), L"tmv_metsa");  // vertices go along
  // The drawing had no tables, no block records, no objects: all is made, and it reads again.
  reopen();
  EXPECT_EQ(living(DxfType::Hatch, L"tma_metsa").size(), 2U);
  EXPECT_EQ(tagValue(*living(DxfType::Polyline2d).front(), "ENTITYTYPE"), "Metsä");
}

TEST_F(Elements, RemovedDataLeavesTheFillToItself) {
  run(square(0) + "TLM_MUOK_ASFALTTI\nALL\n\n");
  Slot* const outline = last(DxfType::LwPolyline);
  run("TLM_POISTA_TIEDOT\n" + pick(*outline) + "\n");
  EXPECT_EQ(xdata(*outline, "kaava_tolmex"), "");
  EXPECT_EQ(layer(*outline), L"tmv_asf");
  EXPECT_EQ(living(DxfType::Hatch).size(), 1U);
  run("TLM_MUOK_ASFALTTI\n" + pick(*outline) + "\n");
  EXPECT_EQ(living(DxfType::Hatch).size(), 2U);  // the old fill is no longer known
}

TEST_F(Elements, BuildingsAndTheirRecordsGoWithTheTag) {
  run(square(0));
  store({{handle(*last(DxfType::LwPolyline)), building("2")}});
  EXPECT_NE(run("HOVER\n0,5\n").find("Rakennus (2 kerrosta): harjaviivaa ei määritelty."), std::string::npos)
      << transcript_;
  run("TLM_MUOK_AITA_KIVI\n" + pick(*last(DxfType::LwPolyline)) + "\n");
  EXPECT_EQ(xdata(*last(DxfType::LwPolyline), "ORV_VR"), "");
  EXPECT_EQ(tagValue(*last(DxfType::LwPolyline), "ENTITYTYPE"), "Kiviaita");
}

TEST_F(Elements, TheCursorTooltipNamesTheElement) {
  run(square(0) + "TLM_MUOK_PIHALAATTA\nALL\n\n" + square(50));
  EXPECT_NE(run("HOVER\n0,5\n").find("Pihalaatta"), std::string::npos);
  EXPECT_EQ(run("HOVER\n50,5\n").find("Rakennus"), std::string::npos);
}

TEST_F(Elements, APolylineOnALockedLayerIsSkipped) {
  run(square(0) + "LAYER\nN\nlukko\nLOCK\nlukko\n\n");
  run("LAYER\nS\nlukko\n\n" + square(20) + "LAYER\nS\n0\n\n");
  run("TLM_MUOK_POLKU\n(handent \"" + handle(*living(DxfType::LwPolyline, L"lukko").front()) + "\")\n(handent \"" +
      handle(*living(DxfType::LwPolyline, L"0").front()) + "\")\n\n");
  EXPECT_EQ(living(DxfType::LwPolyline, L"lukko").size(), 1U);
  EXPECT_EQ(living(DxfType::LwPolyline, L"tmv_polku").size(), 1U);
  EXPECT_EQ(living(DxfType::Hatch).size(), 1U);  // no fill without an owner
}

TEST_F(Elements, OneUndoTakesBackTheWholeCommand) {
  run(square(0) + square(20));
  // Handles that were given out once are not given out again, so the seed stays where it got to.
  const auto textButSeed = [&] {
    std::string all = text();
    const std::size_t seed = all.find("$HANDSEED");
    return all.erase(seed, all.find("  9\n", seed) - seed);
  };
  const std::string before = textButSeed();
  run("TLM_MUOK_ASFALTTI\nALL\n\n");
  const std::string after = textButSeed();
  EXPECT_NE(before, after);
  run("U\n");
  EXPECT_TRUE(textButSeed() == before);
  run("REDO\n");
  EXPECT_TRUE(textButSeed() == after);
}

TEST_F(Elements, ALockThatCannotBeHadChangesNothing) {
  run(square(0) + "TLM_MUOK_VARIT_PAALLE\n");
  const std::string before = text();
  application_.refuseLocks(true);
  EXPECT_NE(run("TLM_MUOK_SORA\n").find("Unable to lock document for modification."), std::string::npos);
  EXPECT_NE(run("TLM_PARK_PAIKKA_TEE\n").find("Unable to lock document for modification."), std::string::npos);
  application_.refuseLocks(false);
  EXPECT_EQ(text(), before);
}

TEST_F(Elements, NothingSelectedOnlyEndsTheCommand) {
  run(square(0) + "TLM_MUOK_SORA\n\n");
  EXPECT_EQ(living(DxfType::Hatch).size(), 0U);
  run("TLM_MUOK_SORA\n^C\n");
  EXPECT_EQ(living(DxfType::Hatch).size(), 0U);
  EXPECT_FALSE(tryRun("TLM_MUOK_SORA\n"));  // answers run out
}

TEST_F(Elements, UndoingTheFirstCommandLeavesNothingAndTheNextHasItsColours) {
  run(square(0));
  const std::string former = text();
  const std::string grass = "TLM_MUOK_NURMIKKO\n" + pick(*last(DxfType::LwPolyline)) + "\n";
  run("TLM_TUO_ETEEN\nL\n\n");
  EXPECT_NE(text().find("SORTENTSTABLE"), std::string::npos);
  run("U");
  EXPECT_EQ(text().find("SORTENTSTABLE"), std::string::npos);
  run(grass);
  run("U");
  const std::string undone = text();  // but for the next free handle
  EXPECT_EQ(undone.substr(undone.find("ENDSEC")), former.substr(former.find("ENDSEC")));

  // The element layers were made by the first command and went with it.
  EXPECT_EQ(layerColor(L"tma_nurmi"), -1);
  run(grass);
  EXPECT_EQ(layerColor(L"tma_nurmi"), 70);
  run("U\nTLM_MUOK_RAKENNUS\nALL\n\n30211 1\n30206 3\n30207 0\n30208 0\nOK\nTLM_VARJO_PAIVITA\n");
  EXPECT_EQ(layerColor(L"tma_katto"), 250);
}

TEST_F(Elements, CommandsMakeTheLayersThatAnUndoneFirstCommandTookAway) {
  run(square(0));
  for (const Row& row : kRows) {
    reopen();
    run("TLM_TUO_ETEEN\nL\n\nU\n");
    ASSERT_EQ(layerColor(row.outlineLayer), -1) << row.command;
    run(std::string(row.command) + "\n" + pick(*last(DxfType::LwPolyline)) + "\n");
    EXPECT_EQ(layer(*last(DxfType::LwPolyline)), row.outlineLayer) << row.command;
    EXPECT_EQ(transcript_.find("failed"), std::string::npos) << transcript_;
    run("U\n");
  }
  reopen();
  run("TLM_TUO_ETEEN\nL\n\nU\nTLM_MUOK_HARJAVIIVA\nL\n\n");
  EXPECT_EQ(layer(*last(DxfType::LwPolyline)), L"tmv_harjav");
  run("U\nTLM_MUOK_RAKENNUS\nL\n\n30211 1\n30206 3\n30207 0\n30208 0\nOK\n");
  EXPECT_EQ(layer(*last(DxfType::LwPolyline)), L"tmv_rak");
}

TEST_F(Elements, ATrueColourOfAnAreaLayerIsKept) {
  run(square(0) + "TLM_MUOK_ASFALTTI\nALL\n\n");
  std::string changed = text();
  const std::size_t name = changed.find("\n  2\ntma_asf\n");
  const std::size_t color = changed.find("\n 62\n", name) + 1;
  const std::size_t end = changed.find('\n', color + 4) + 1;
  changed.replace(color, end - color, " 62\n    30\n420\n  16744202\n");  // orange with some blue
  openText(changed);
  run("TLM_VARJO_PAIVITA\nTLM_MUOK_VARIT\nLIST\nOK\n");
  const Slot* const layer = drawing().findRecord(DxfType::Layer, L"tma_asf");
  EXPECT_EQ(value(*layer, 420), "16744202");
  EXPECT_NE(transcript_.find("30223 drop-down list \"" + std::to_string(layerColor(L"tma_asf")) + "\""),
            std::string::npos)
      << transcript_;
  // Another colour, chosen, takes its place.
  run("TLM_MUOK_VARIT\n30223 3\nOK\n");
  EXPECT_EQ(value(*layer, 420), "");
  EXPECT_EQ(layerColor(L"tma_asf"), 3);
}

}  // namespace
