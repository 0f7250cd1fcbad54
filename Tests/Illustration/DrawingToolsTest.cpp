// Parking rows, draw order, line styles, colours, layouts, loading.
#include <cmath>

#include "Illustration/BuildingPlan.h"
#include "Places.h"

namespace {

using namespace tests;

class Tools : public BuildingPlan {
 protected:
  struct Line {
    double x1, y1, x2, y2;
  };
  Line lineOf(const Slot& slot) {
    return {std::stod(value(slot, 10)), std::stod(value(slot, 20)), std::stod(value(slot, 11)),
            std::stod(value(slot, 21))};
  }
  /// A row's stall lines without its base line.
  std::vector<Line> row(const std::string& answers) {
    const std::size_t before = living(DxfType::Line).size();
    run("TLM_PARK_PAIKKA_TEE\n" + answers);
    const auto all = living(DxfType::Line);
    std::vector<Line> lines;
    for (std::size_t i = before + 1; i < all.size(); ++i) lines.push_back(lineOf(*all[i]));
    return lines;
  }
  std::vector<std::wstring> layersByDrawOrder() {
    std::vector<std::wstring> names;
    for (const Slot* const slot : drawing().drawOrder(drawing().modelSpace())) names.push_back(layer(*slot));
    return names;
  }
};

TEST_F(Tools, ParkingRowsStandAtMultiplesOfTheWidth) {
  // An exact multiple leaves its far end open; any remainder gets a last line.
  auto lines = row("0,0\n10,0\n\n\n\n");
  ASSERT_EQ(lines.size(), 4U);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_DOUBLE_EQ(lines[i].x1, 2.5 * static_cast<double>(i));
    EXPECT_NEAR(lines[i].x2, lines[i].x1, 1e-12);
    EXPECT_DOUBLE_EQ(lines[i].y2, 5.0);
  }
  // Places lie to the left of the direction, also when it runs west.
  lines = row("10,20\n0,20\n\n\n\n");
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_DOUBLE_EQ(lines[1].x1, 7.5);
  EXPECT_NEAR(lines[1].y2, 15, 1e-12);
  lines = row("0,0\n0,11\n45\n5\n2\n");  // a remainder gets a last line
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_NEAR(lines[1].x2, -std::sqrt(2.0), 1e-12);
  EXPECT_NEAR(lines[1].y2, 5 + std::sqrt(2.0), 1e-12);
  EXPECT_EQ(row("3,3\n3,3\n\n\n\n").size(), 0U);

  const auto all = groups();
  ASSERT_EQ(all.size(), 4U);
  for (int i = 0; i < 4; ++i) EXPECT_TRUE(all.contains("Parkkipaikka" + std::to_string(i))) << i;
  EXPECT_EQ(members(*all.at("Parkkipaikka0")), 5U);
  EXPECT_EQ(value(*all.at("Parkkipaikka0"), 300), "Pysäköintialueiden viivat");
  for (const Slot* const line : living(DxfType::Line)) {
    EXPECT_EQ(layer(*line), L"tmv_parkki");
    EXPECT_EQ(value(*line, 62), "");
    EXPECT_EQ(value(*line, 102), "{ACAD_REACTORS");
  }
}

TEST_F(Tools, CancelledParkingKeepsWhatIsDone) {
  EXPECT_EQ(run("TLM_PARK_PAIKKA_TEE\n^C\n").find("Osoita parkkipaikan loppupiste"), std::string::npos);
  EXPECT_NE(transcript_.find("Valitse murtoviiva:\n"), std::string::npos);
  run("TLM_PARK_PAIKKA_TEE\n0,0\n\n");
  EXPECT_EQ(living(DxfType::Line).size(), 0U);
  EXPECT_EQ(groups().size(), 0U);
  const char* const cancels[] = {"^C\n", "\n^C\n", "\n\n^C\n"};
  for (const char* const cancel : cancels) run(std::string("TLM_PARK_PAIKKA_TEE\n0,0\n10,0\n") + cancel);
  EXPECT_EQ(living(DxfType::Line).size(), 3U);
  ASSERT_EQ(groups().size(), 3U);
  for (const auto& [name, group] : groups()) EXPECT_EQ(members(*group), 1U) << name;
  // A width that never advances, and one that would never end, are refused with a line.
  for (const char* const width : {"0", "-1", "1e-300"}) {
    EXPECT_NE(run(std::string("TLM_PARK_PAIKKA_TEE\n0,0\n10,0\n\n") + width + "\n\n").find("lev"), std::string::npos);
  }
  EXPECT_EQ(living(DxfType::Line).size(), 6U);
}

TEST_F(Tools, BuildingLayersEndOnTopInTheirOrder) {
  const std::vector<std::wstring> order = {L"tmv_varjo", L"tma_katto_varjo", L"tma_katto", L"tma_katto_aurinko",
                                           L"tmv_katto", L"tmv_rak",         L"tmv_harjav"};
  std::string script = "TLM_MUOK_VARIT_PAALLE\n";
  for (auto name = order.rbegin(); name != order.rend(); ++name) {
    const std::string utf8 = host::text::toUtf8(*name);
    script += "LAYER\nM\n" + utf8 + "\n\nLINE\n0,0\n1,1\n\nLINE\n5,0\n6,1\n\n";
  }
  run(script + "LAYER\nS\n0\n\nPLINE\n0,0\n9,0\n9,9\nC\n");
  run("TLM_MUOK_ASFALTTI\nALL\n\n");
  std::vector<std::wstring> expected = {L"tmv_asf", L"tma_asf"};
  for (const std::wstring& name : order) expected.insert(expected.end(), {name, name});
  EXPECT_EQ(layersByDrawOrder(), expected);
  reopen();
  EXPECT_EQ(layersByDrawOrder(), expected);
}

TEST_F(Tools, FrontAndBackKeepTheOrderOfSelection) {
  run("LINE\n0,0\n1,0\n\nLINE\n0,1\n1,1\n\nLINE\n0,2\n1,2\n\nLINE\n0,3\n1,3\n\nSETVAR\nSORTENTS\n96\n");
  const auto lines = living(DxfType::Line);
  const auto order = [&] {
    std::vector<std::size_t> numbers;
    for (const Slot* const slot : drawing().drawOrder(drawing().modelSpace())) {
      numbers.push_back(static_cast<std::size_t>(std::find(lines.begin(), lines.end(), slot) - lines.begin()));
    }
    return numbers;
  };
  using Order = std::vector<std::size_t>;
  run("TLM_TUO_ETEEN\n" + pick(*lines[2]) + pick(*lines[0]) + "\n");
  EXPECT_EQ(order(), (Order{1, 3, 2, 0}));
  EXPECT_EQ(drawing().headerInteger("$SORTENTS", 280), 127);
  run("TLM_VIE_TAAKSE\n" + pick(*lines[2]) + pick(*lines[0]) + "\n");
  EXPECT_EQ(order(), (Order{0, 2, 1, 3}));  // the last one sent lies lowest
  const std::string before = text();
  run("TLM_TUO_ETEEN\n\n");
  EXPECT_EQ(text(), before);
}

TEST_F(Tools, LineStylesSetTheCurrentLinetypeOnly) {
  run("LINE\n0,0\n1,0\n\n");
  run("TLM_VIIVA_KATKO\n");
  EXPECT_EQ(drawing().headerText("$CELTYPE", 6), L"HIDDEN2");
  EXPECT_EQ(value(*last(DxfType::Line), 6), "");
  run("LINE\n0,0\n1,0\n\n");
  EXPECT_EQ(value(*last(DxfType::Line), 6), "HIDDEN2");
  run("TLM_VIIVA_PISTE\n");
  EXPECT_EQ(drawing().headerText("$CELTYPE", 6), L"DOTS");
  const Slot* const dots = drawing().findRecord(DxfType::LineType, L"dots");
  ASSERT_NE(dots, nullptr);
  EXPECT_EQ(value(*dots, 73), "2");
  run("TLM_VIIVA_JATKUVA\n");
  EXPECT_TRUE(host::text::equalFolded(drawing().headerText("$CELTYPE", 6).value_or(L""), L"CONTINUOUS"));
  // Inside another command the host refuses; the command says so and nothing changes.
  EXPECT_NE(run("LINE\n0,0\n'TLM_VIIVA_KATKO\n1,0\n\n").find("linetype-cmd"), std::string::npos) << transcript_;
}

TEST_F(Tools, AllLayersAreMadeOnceWithTheirColours) {
  run("TLM_MUOK_VARIT_PAALLE\n");
  const std::map<std::wstring, int> colors = {
      {L"tma_asf", 254},       {L"tma_sora", 31},      {L"tma_laatta", 252}, {L"tma_polku", 31},
      {L"tma_aita_kivi", 7},   {L"tma_aita_lauta", 7}, {L"tma_pensas", 92},  {L"tma_metsa", 105},
      {L"tma_nurmi", 70},      {L"tma_varjo", 45},     {L"tma_katto", 250},  {L"tmv_katto", 7},
      {L"tmv_parkki", 7},      {L"tmv_varjo", 7},      {L"tmv_harjav", 7},   {L"tma_katto_aurinko", 7},
      {L"tma_katto_varjo", 7}, {L"tmv_rak", 7},        {L"tmv_metsa", 7}};
  for (const auto& [name, color] : colors) EXPECT_EQ(layerColor(name), color) << host::text::toUtf8(name);
  std::size_t made = 0;
  for (const Slot* const record : drawing().records(DxfType::Layer)) {
    const std::wstring name = drawing().recordName(*record);
    if (name.substr(0, 3) == L"tma" || name.substr(0, 3) == L"tmv") ++made;
    EXPECT_TRUE(host::text::equalFolded(host::text::fromUtf8(value(*record, 6)), L"CONTINUOUS"));
  }
  EXPECT_EQ(made, 27U);
  run("LAYER\nC\n3\ntma_asf\n\nTLM_MUOK_VARIT_PAALLE\n");
  EXPECT_EQ(layerColor(L"tma_asf"), 3);  // prepared once; later changes are the user's
}

TEST_F(Tools, ColoursComeFromTheDrawingThenTheFileThenTheDefaults) {
  iniFile("\nASFALTTI\t3 rest\nasfaltti 4\n  sora   12\nnurmi abc\npihalaatta\nmuu 9\nkattotayttovarjo\t33\n");
  run("TLM_MUOK_VARIT_PAALLE\n");
  EXPECT_EQ(layerColor(L"tma_asf"), 3);  // the first line wins, in whatever case
  EXPECT_EQ(layerColor(L"tma_sora"), 12);
  EXPECT_EQ(layerColor(L"tma_laatta"), 252);  // a key without a value
  EXPECT_EQ(layerColor(L"tma_metsa"), 105);   // no key
  EXPECT_EQ(layerColor(L"tma_varjo"), 33);
  // A drawing with any area layer keeps its own colours, and the file is not asked for the others either.
  application_.closeDrawing();
  ASSERT_TRUE(application_.newDrawing());
  run("LAYER\nN\ntma_metsa\nC\n5\ntma_metsa\n\nTLM_MUOK_VARIT_PAALLE\n");
  EXPECT_EQ(layerColor(L"tma_metsa"), 5);
  EXPECT_EQ(layerColor(L"tma_asf"), 254);
}

TEST_F(Tools, FillsAreSwitchedOffAndOn) {
  run("TLM_MUOK_VARIT_PAALLE\nLAYER\nF\ntma_asf\nLOCK\ntma_sora\n\n");
  run("TLM_MUOK_VARIT_POIS\n");
  EXPECT_EQ(layerColor(L"tma_asf"), -254);
  EXPECT_EQ(layerFlags(L"tma_asf") & 5, 0);  // thawed and unlocked too
  EXPECT_EQ(layerFlags(L"tma_sora") & 5, 0);
  EXPECT_EQ(layerColor(L"tma_katto_varjo"), -7);
  EXPECT_EQ(layerColor(L"tma_katto"), 250);
  EXPECT_EQ(layerColor(L"tma_varjo"), 45);
  EXPECT_EQ(layerColor(L"tmv_asf"), 7);
  const std::string once = text();
  run("TLM_MUOK_VARIT_POIS\n");
  EXPECT_EQ(text(), once);
  run("TLM_MUOK_VARIT_PAALLE\n");
  EXPECT_EQ(layerColor(L"tma_asf"), 254);
}

TEST_F(Tools, TheRoofLayerFollowsTheBackground) {
  run("TLM_MUOK_VARIT_PAALLE\nLAYOUT\nS\nLayout1\n");
  EXPECT_EQ(layerColor(L"tma_katto"), 255);  // paper is white
  run("LAYOUT\nS\nModel\n");
  EXPECT_EQ(layerColor(L"tma_katto"), 250);
  run("LAYER\nC\n30\ntma_katto\n\nLAYOUT\nS\nLayout1\n");
  EXPECT_EQ(layerColor(L"tma_katto"), 30);
}

TEST_F(Tools, AllThirtyCommandsAreThereAndComeBackAfterReloading) {
  const auto count = [&] {
    std::size_t names = 0;
    for (const std::wstring& name : application_.commandNames()) names += name.substr(0, 4) == L"TLM_" ? 1 : 0;
    return names;
  };
  EXPECT_EQ(count(), 31U);  // one command has two names
  EXPECT_TRUE(application_.unloadModule(L"tolmex.arx"));
  EXPECT_EQ(count(), 0U);
  EXPECT_FALSE(tryRun("TLM_MUOK_SORA\n"));
  ASSERT_TRUE(application_.loadModule(std::filesystem::path(kBinDir) / "tolmex.arx"));
  EXPECT_EQ(count(), 31U);
  run("PLINE\n0,0\n9,0\n9,9\nC\nTLM_MUOK_SORA\nALL\n\n");
  EXPECT_EQ(living(DxfType::Hatch, L"tma_sora").size(), 1U);
}

TEST_F(Tools, SeveralDrawingsKeepTheirOwnState) {
  iniFile("asfaltti\t3\n");
  run("TLM_MUOK_VARIT_PAALLE\n");
  iniFile("asfaltti\t4\n");
  ASSERT_TRUE(application_.newDrawing());
  run("TLM_MUOK_VARIT_PAALLE\n");
  EXPECT_EQ(layerColor(L"tma_asf"), 4);
  application_.closeDrawing();
  run("TLM_MUOK_VARIT_PAALLE\n");
  EXPECT_EQ(layerColor(L"tma_asf"), 3);
}

}  // namespace
