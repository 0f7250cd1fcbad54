// Shadows of buildings and fences in the drawing.
#include <cmath>

#include "Illustration/BuildingPlan.h"

namespace {

using namespace tests;

class Shadows : public BuildingPlan {
 protected:
  double real(const Slot& slot, int code) { return std::stod(value(slot, code)); }
  /// The rightmost point that a shadow reaches.
  double reach() {
    double right = -1e9;
    for (const Slot* const hatch : living(DxfType::Hatch, L"tmv_varjo")) {
      for (const auto& point : corners(*hatch)) right = std::max(right, point.first);
    }
    return right;
  }
};

TEST_F(Shadows, ABuildingCastsOneHatchForEachEdge) {
  store({{rectangle(0, 0, 10, 10), building("2")}});
  run("TLM_VARJO_PAIVITA\n");
  const auto shadows = living(DxfType::Hatch, L"tmv_varjo");
  ASSERT_EQ(shadows.size(), 4U);
  for (const Slot* const hatch : shadows) {
    EXPECT_EQ(value(*hatch, 2), "LINE");
    EXPECT_DOUBLE_EQ(real(*hatch, 52), 45);
    EXPECT_DOUBLE_EQ(real(*hatch, 41), 0.15);
    EXPECT_EQ(value(*hatch, 62), "");
    EXPECT_EQ(value(*hatch, 71), "0");
  }
  const auto roofs = living(DxfType::Hatch, L"tma_katto");
  ASSERT_EQ(roofs.size(), 1U);
  EXPECT_EQ(value(*roofs.front(), 2), "SOLID");
  EXPECT_EQ(value(*roofs.front(), 62), "");

  // The boundaries stay, out of sight.
  const auto boundaries = living(DxfType::Polyline3d, L"tmv_varjo_reunaviiva");
  ASSERT_EQ(boundaries.size(), 4U);
  EXPECT_EQ(value(*boundaries.front(), 62), "34");
  EXPECT_EQ(layerColor(L"tmv_varjo_reunaviiva"), -7);
  const auto all = groups();
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all.begin()->first, "Varjo0");
  EXPECT_EQ(value(*all.begin()->second, 300), "Rakennuksien varjon hatch");
  EXPECT_EQ(members(*all.begin()->second), 4U);
}

TEST_F(Shadows, EveryUpdateStartsAnew) {
  const std::string house = rectangle(0, 0, 10, 10);
  const std::string ridge = course("0,5\n10,5\n");
  run("TLM_MUOK_HARJAVIIVA\n" + pickHandle(ridge) + "\n");
  store({{house, building("2", ridge)}, {rectangle(50, 0, 10, 10), building("1")}});
  run("TLM_VARJO_PAIVITA\n");
  EXPECT_EQ(shadowCount(), 10U);
  EXPECT_EQ(roofCount(), 2U);
  run("TLM_VARJO_PAIVITA\n");
  reopen();
  run("TLM_VARJO_PAIVITA\n");
  EXPECT_EQ(shadowCount(), 10U);
  EXPECT_EQ(roofCount(), 2U);
  const auto all = groups();
  ASSERT_EQ(all.size(), 6U);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(all.count("Varjo" + std::to_string(i)), 1U) << i;
  // From below: shadows, roofs, buildings, ridges; what is hidden does not matter.
  std::vector<std::wstring> order;
  for (const Slot* const entity : drawing().drawOrder(drawing().modelSpace())) {
    if (layer(*entity) != L"tmv_varjo_reunaviiva" && (order.empty() || order.back() != layer(*entity))) {
      order.push_back(layer(*entity));
    }
  }
  const std::vector<std::wstring> expected = {L"0", L"tmv_varjo", L"tma_katto", L"tmv_harjav"};
  EXPECT_EQ(order, expected);

  run("TLM_VARJO_POISTA\n");
  EXPECT_EQ(shadowCount(), 0U);
  EXPECT_EQ(roofCount(), 0U);
  run("U\n");
  EXPECT_EQ(shadowCount(), 10U);
}

TEST_F(Shadows, AnInterruptedUpdateLeavesThePlanAsItWas) {
  std::map<std::string, Items> records;
  for (int i = 0; i < 20; ++i) records[rectangle(20 * i, 0, 10, 10)] = building("2");
  store(records);
  const std::string before = text();
  const auto interruptAt = [this](double most) {
    whenAtWork_ = [most](double fraction) {
      if (fraction >= most) host::editor::Application::interrupt();
    };
    const host::Result<> result = tryRun("TLM_VARJO_PAIVITA\n");
    EXPECT_EQ(result.problem().code, host::Code::Interrupted) << result.message();
    EXPECT_NE(transcript_.find("TLM_VARJO_PAIVITA was interrupted; the drawing is as it was."), std::string::npos);
    EXPECT_EQ(transcript_.find("failed"), std::string::npos) << transcript_;
    whenAtWork_ = nullptr;
  };
  for (const double most : {0.0, 0.5, 0.9}) {
    interruptAt(most);
    EXPECT_TRUE(text() == before) << most;
  }
  run("TLM_VARJO_PAIVITA\n");
  EXPECT_EQ(living(DxfType::Hatch, L"tmv_varjo").size(), 4 * records.size());
  // What an update had erased comes back too; the seed of handles stays where the work has brought it.
  const auto withoutSeed = [this] {
    std::string all = text();
    const std::size_t seed = all.find("$HANDSEED");
    return all.erase(seed, all.find("  9", seed) - seed);
  };
  const std::string shaded = withoutSeed();
  interruptAt(0.5);
  EXPECT_EQ(living(DxfType::Hatch, L"tmv_varjo").size(), 4 * records.size());
  EXPECT_TRUE(withoutSeed() == shaded);
  run("U\n");
  EXPECT_TRUE(text() == before);
}

TEST_F(Shadows, SettingsStoredInTheDrawingCount) {
  store({{rectangle(0, 0, 10, 10), building("2")}});
  storeSettings(settings("0.0", "20", "4.0"));
  run("TLM_VARJO_PAIVITA\n");
  // Two edges run along the shadow: their quadrilaterals have no area, and only their boundaries are there.
  ASSERT_EQ(shadowCount(), 2U);
  EXPECT_EQ(living(DxfType::Polyline3d).size(), 4U);
  EXPECT_DOUBLE_EQ(reach(), 18);
  const Slot& hatch = *living(DxfType::Hatch, L"tmv_varjo").front();
  EXPECT_EQ(value(hatch, 2), "DOTS");
  EXPECT_DOUBLE_EQ(real(hatch, 41), 0.3);
}

TEST_F(Shadows, DamagedSettingsKeepWhatTheyCan) {
  const std::string house = rectangle(0, 0, 10, 10);
  store({{house, building("2")}});
  // Pairs in any order, a key in the wrong case, a text for a number, a key at the very end.
  storeSettings(
      "  1\nSHADOWHATCHTYPE\n 70\n    11\n  1\nshadowanglerad\n 40\n1.0\n  1\nSHADOWLENGTHPERFLOOR\n  1\nlong\n"
      "  1\nSHADOWSCALE\n 40\n0.5\n  1\nSHADOWANGLERAD\n");
  run("TLM_VARJO_PAIVITA\n");
  ASSERT_EQ(shadowCount(), 4U);
  const Slot& hatch = *living(DxfType::Hatch, L"tmv_varjo").front();
  EXPECT_EQ(value(hatch, 2), "LINE");
  EXPECT_DOUBLE_EQ(real(hatch, 52), 45);
  EXPECT_DOUBLE_EQ(real(hatch, 41), 0.5);
  EXPECT_NEAR(reach(), 10 + 6 * std::sqrt(0.5), 1e-9);
}

TEST_F(Shadows, RidgesThatAreGoneMakeFlatRoofs) {
  const std::string house = rectangle(0, 0, 10, 10);
  const std::string ridge = course("0,5\n10,5\n");
  run("TLM_MUOK_HARJAVIIVA\n" + pickHandle(ridge) + "\n");
  store({{house, building("2", ridge)}});
  storeSettings(settings("0.0", "10", "4.0"));
  run("TLM_VARJO_PAIVITA\n");
  EXPECT_NEAR(reach(), 10 + 8 + 2.0 / 3 * 4, 1e-9);
  run("TLM_MUOK_PENSAS\n" + pickHandle(ridge) + "\nTLM_VARJO_PAIVITA\n");
  EXPECT_DOUBLE_EQ(reach(), 18);
  run("TLM_MUOK_HARJAVIIVA\n" + pickHandle(ridge) + "\nTLM_VARJO_PAIVITA\n");
  EXPECT_NEAR(reach(), 10 + 8 + 2.0 / 3 * 4, 1e-9);
  run("ERASE\n" + pickHandle(ridge) + "\nTLM_VARJO_PAIVITA\n");
  EXPECT_DOUBLE_EQ(reach(), 18);
  EXPECT_EQ(shadowCount(), 2U);
}

TEST_F(Shadows, FencesCastTheirHeight) {
  const std::string fence = course("0,0\n10,0\n");
  const std::string wall = course("0,20\n10,20\n");
  const std::string hedge = course("0,40\n10,40\n");
  run("TLM_MUOK_AITA_LAUTA\n" + pickHandle(fence) + "\nTLM_MUOK_AITA_KIVI\n" + pickHandle(wall) +
      "\nTLM_MUOK_PENSAS\n" + pickHandle(hedge) + "\n");
  EXPECT_NE(run("TLM_ASETA_KORKEUS\n" + pickHandle(fence) + "\n2.25\n")
                .find("Valitse lauta-aita tai kivimuuri, jonka korkeutta muutetaaan:\n"),
            std::string::npos);
  EXPECT_EQ(xdata(slot(fence), "kaava_tolmex"),
            "1001 kaava_tolmex|1000 TOLM_VERSION|1000 1|1000 ENTITYTYPE|1000 Lauta-aita|1000 HEIGHT|1000 2.25|1000 "
            "HATCH_HANDLE|1005 " +
                fence);
  run("TLM_VARJO_PAIVITA\n");
  ASSERT_EQ(shadowCount(), 1U);
  const auto [x, y] = corners(*living(DxfType::Hatch, L"tmv_varjo").front())[1];
  EXPECT_NEAR(x, 2.25 * std::sqrt(0.5), 1e-9);
  EXPECT_NEAR(y, 2.25 * std::sqrt(0.5), 1e-9);
  EXPECT_EQ(living(DxfType::Polyline3d).size(), 0U);
  ASSERT_EQ(groups().size(), 1U);
  EXPECT_EQ(value(*groups().at("Varjo0"), 300), "Aidan varjon hatch");

  // One alert for the hedge among the others, which are set; heights have a sign.
  const std::string shown =
      run("TLM_ASETA_KORKEUS\n" + pickHandle(hedge) + pickHandle(wall) + pickHandle(fence) + "\n-1\n");
  const std::size_t alert = shown.find("Ainoastaan lauta-aidalle tai kivimuurille voi asettaa korkeuden.");
  ASSERT_NE(alert, std::string::npos) << shown;
  EXPECT_EQ(shown.find("Ainoastaan", alert + 1), std::string::npos);
  EXPECT_EQ(tagValue(slot(hedge), "HEIGHT"), "0");
  EXPECT_EQ(tagValue(slot(wall), "HEIGHT"), "-1");
  run("TLM_VARJO_PAIVITA\n");
  ASSERT_EQ(shadowCount(), 2U);
  EXPECT_LT(corners(*living(DxfType::Hatch, L"tmv_varjo").front())[1].first, 0);
  // Height 0 is none; a lone hedge is refused before any question.
  run("TLM_ASETA_KORKEUS\n" + pickHandle(wall) + pickHandle(fence) + "\n0\nTLM_VARJO_PAIVITA\n");
  EXPECT_EQ(shadowCount(), 0U);
  EXPECT_EQ(run("TLM_ASETA_KORKEUS\n" + pickHandle(hedge) + "\n").find("Anna korkeus"), std::string::npos);
  // A fence that named itself becomes another element like any other.
  run("TLM_MUOK_PENSAS\n" + pickHandle(fence) + "\n");
  EXPECT_EQ(tagValue(slot(fence), "ENTITYTYPE"), "Pensas");
  EXPECT_FALSE(slot(fence).isErased());
}

TEST_F(Shadows, CancelledHeightsChangeNothing) {
  const std::string fence = course("0,0\n10,0\n");
  run("TLM_MUOK_AITA_LAUTA\n" + pickHandle(fence) + "\n");
  const std::string before = text();
  run("TLM_ASETA_KORKEUS\n" + pickHandle(fence) + "\n^C\nTLM_ASETA_KORKEUS\n" + pickHandle(fence) +
      "\n\nTLM_ASETA_KORKEUS\n\n");
  EXPECT_EQ(text(), before);
}

TEST_F(Shadows, LayersAreEmptiedWhateverLiesThere) {
  run("TLM_MUOK_VARIT_PAALLE\nLAYER\nS\ntmv_varjo\n\nLINE\n0,0\n1,0\n\nLAYER\nS\ntma_katto\n\nLINE\n0,0\n1,0\n\n"
      "LAYER\nS\n0\n\n");
  // No polyline: emptied, and that is all.
  run("TLM_VARJO_PAIVITA\n");
  EXPECT_EQ(living(DxfType::Line).size(), 0U);
  EXPECT_EQ(text().find("SORTENTSTABLE\n  5"), std::string::npos);
  // Entities of a locked layer stay, as anywhere else.
  run("LAYER\nS\ntmv_varjo\n\nLINE\n0,0\n1,0\n\nLAYER\nS\n0\nLOCK\ntmv_varjo\n\nTLM_VARJO_POISTA\n");
  EXPECT_EQ(living(DxfType::Line).size(), 1U);
}

TEST_F(Shadows, BuildingsOnALockedLayerCastNone) {
  run("LAYER\nM\nlukko\n\n");
  const std::string locked = rectangle(0, 0, 10, 10);
  run("LAYER\nS\n0\n\n");
  store({{locked, building()}, {rectangle(50, 0, 10, 10), building()}});
  run("LAYER\nLOCK\nlukko\n\nTLM_VARJO_PAIVITA\n");
  EXPECT_EQ(shadowCount(), 4U);
  EXPECT_EQ(roofCount(), 1U);
}

TEST_F(Shadows, OnlyCompleteRecordsCast) {
  std::map<std::string, Items> records;
  int x = 0;
  Items loud = building();
  loud.front().second = "BUILDING";
  records[rectangle(x += 20, 0, 10, 10)] = loud;  // the type's case does not matter
  Items odd = building();
  odd[4].second = "kaksi";  // reads as no floors: a roof and no shadow
  records[rectangle(x += 20, 0, 10, 10)] = odd;
  for (const char* const key : {"_ENTITYTYPE", "baseheight", "eavesWidth", "floorheight", "nrfloors", "roofheight",
                                "tolm_bld_shadowcolor", "tolm_bld_suncolor"}) {
    records[rectangle(x += 20, 0, 10, 10)] = without(building(), key);
  }
  store(records);
  run("TLM_VARJO_PAIVITA\n");
  EXPECT_EQ(roofCount(), 2U);
  EXPECT_EQ(shadowCount(), 4U);
}

TEST_F(Shadows, ADamagedNumberCostsOnlyItsBuilding) {
  store({{rectangle(0, 0, 10, 10), building("1e308")},
         {rectangle(20, 0, 10, 10), building("1e9")},
         {rectangle(40, 0, 10, 10), building("-1")}});
  run("TLM_VARJO_PAIVITA\n");
  EXPECT_EQ(roofCount(), 3U);
  EXPECT_GE(shadowCount(), 4U);
  reopen();
}

TEST_F(Shadows, WhatMakesThemOtherThanWantedIsTold) {
  // Half circles of 100 km: no 130 000 pieces, but the edges between their ends.
  run("PLINE\n0,0\nA\nS\n100000,-100000\n200000,0\nCL\n");
  const std::string round = handle(*last(DxfType::LwPolyline));
  run("PLINE\n0,-9\nA\nS\n10000,-10009\n20000,-9\n\n");
  const std::string fence = handle(*last(DxfType::LwPolyline));
  run("TLM_MUOK_AITA_KIVI\n" + pickHandle(fence) + "\nTLM_ASETA_KORKEUS\n" + pickHandle(fence) + "\n2\n");
  store({{round, building("2")}, {rectangle(0, 0, 10, 10), building("2")}});
  storeSettings(settings("0.5", "10", "4.0"));
  const std::string shown = run("TLM_VARJO_PAIVITA\n");
  const std::string told = " kaaret ovat liian pitkiä jaettaviksi: varjo seuraa niiden jänteitä.\n";
  std::size_t count = 0;
  for (std::size_t at = 0; (at = shown.find(told, at)) != std::string::npos; ++at) ++count;
  EXPECT_EQ(count, 2U) << shown;
  EXPECT_NE(shown.find("\nKohteen " + round + told), std::string::npos);
  EXPECT_NE(shown.find("\nKohteen " + fence + told), std::string::npos);
  EXPECT_EQ(shown.find("ei voitu piirtää"), std::string::npos);
  // Shadows that a locked layer keeps lie under the new ones.
  const std::string kept = std::to_string(shadowCount());
  EXPECT_NE(run("LAYER\nLOCK\ntmv_varjo\n\nTLM_VARJO_POISTA\n")
                .find("\nVanhoista varjoista ja kattotäytöistä jäi poistamatta " + kept + ".\n"),
            std::string::npos)
      << transcript_;
}

TEST_F(Shadows, APolylineThatIsNotReadWholeCastsNone) {
  std::string mixed = oldPolyline(50, {"10 0|20 0|42 0|", "10 10|20 0|70 32|", "10 20|20 0|"});
  mixed.replace(mixed.find("AcDb2dVertex", mixed.find("\n52\n")), 12, "AcDb3dPolylineVertex");
  openText(plainDrawing(mixed));
  run("TLM_MUOK_SORA\n" + pickHandle(rectangle(90, 0, 5, 5)) + "\n");
  store({{"50", building()}, {rectangle(0, 50, 10, 10), building()}});
  EXPECT_NE(run("TLM_VARJO_PAIVITA\n").find("2D PolyLine conversion to PolyLine failed!/50\n"), std::string::npos)
      << transcript_;
  EXPECT_EQ(shadowCount(), 4U);
}

}  // namespace
