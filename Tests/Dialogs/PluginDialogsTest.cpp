// The plug-in's dialogs, worked by scripts on a plan.
#include "Illustration/BuildingPlan.h"

namespace {

using namespace tests;

class PluginDialogs : public BuildingPlan {
 protected:
  void expectShown(const std::vector<std::string>& controls) {
    for (const std::string& control : controls) EXPECT_TRUE(said(control + "\n")) << control << "\n" << transcript_;
  }
  Slot* polyline(int x) {
    const std::string at = std::to_string(x);
    run("PLINE\n" + at + ",0\n" + at + ",10\n" + std::to_string(x + 4) + ",10\n\n");
    return last(DxfType::LwPolyline);
  }
  Slot* ridgeLine(int x) {
    Slot* const line = polyline(x);
    run("TLM_MUOK_HARJAVIIVA\n" + pick(*line) + "\n");
    return line;
  }
};

// ---- colours --------------------------------------------------------------------------------------------------------

TEST_F(PluginDialogs, ColorsOfTheSchemeAreShownAndGoToTheAreaLayers) {
  iniFile("asfaltti 3\nmetsa 45\nkattotayttovarjo 33\n");
  run("TLM_MUOK_VARIT\n"
      "LIST\n"
      "30224 7\n"            // a standard colour by its index
      "30226 yellow\n"       // by its name, case ignored
      "30228 105\n"          // any other
      "30229 1\n30229 45\n"  // back to one that is in the list
      "30232 20\n"
      "OK\n");
  EXPECT_TRUE(said("30223 drop-down list \"Green\"")) << transcript_;
  EXPECT_TRUE(said("30224 drop-down list \"31\""));
  EXPECT_TRUE(said("30229 drop-down list \"45\""));
  EXPECT_TRUE(said("30232 drop-down list \"33\""));
  EXPECT_TRUE(said("30233 drop-down list \"42\""));
  EXPECT_EQ(layerColor(L"tma_asf"), 3);
  EXPECT_EQ(layerColor(L"tma_sora"), 7);
  EXPECT_EQ(layerColor(L"tma_polku"), 2);
  EXPECT_EQ(layerColor(L"tma_pensas"), 105);
  EXPECT_EQ(layerColor(L"tma_metsa"), 45);
  EXPECT_EQ(layerColor(L"tma_katto_varjo"), 7);  // roof fills are coloured one by one
  run("TLM_MUOK_VARIT\nLIST\nCancel\n");
  EXPECT_TRUE(said("30224 drop-down list \"White\""));
  EXPECT_TRUE(said("30232 drop-down list \"20\""));
}

TEST_F(PluginDialogs, CancelledColorsStay) {
  run("TLM_VARJO_PAIVITA\n");  // makes the layers, which a first command that is cancelled does not leave
  run("TLM_MUOK_VARIT\n30223 1\n30232 1\n^C\n");
  EXPECT_EQ(layerColor(L"tma_asf"), 254);
  run("TLM_MUOK_VARIT\nLIST\nCancel\n");
  EXPECT_TRUE(said("30223 drop-down list \"254\"") && said("30232 drop-down list \"45\"")) << transcript_;
}

TEST_F(PluginDialogs, AnyColorIsAskedFor) {
  run("TLM_MUOK_VARIT\n"
      "30223 \"Select Color...\"\n1001 300\nOK\n1001 77\nOK\n"
      "30224 Select Color...\nCancel\n"
      "LIST\nOK\n");
  EXPECT_TRUE(said("[tolmex] Give a color index from 1 to 255."));
  EXPECT_TRUE(said("30223 drop-down list \"77\"") && said("30224 drop-down list \"31\"")) << transcript_;
  EXPECT_EQ(layerColor(L"tma_asf"), 77);
  expectFailure("TLM_MUOK_VARIT\n30223 256x\n", "test.scr:2");
  expectFailure("TLM_MUOK_VARIT\n30223 999\n", "control 30223 has no entry \"999\"; its entries: \"Red\"");
  // A layer has a colour of its own.
  expectFailure("TLM_MUOK_VARIT\n30223 ByLayer\n", "has no entry \"ByLayer\"");
  expectFailure("TLM_MUOK_VARIT\n30233 ByBlock\n", "has no entry \"ByBlock\"");
}

TEST_F(PluginDialogs, UndoneColorsAreForgotten) {
  iniFile("asfaltti 3\n");
  // With the first command the layers go too.
  run("TLM_MUOK_VARIT\n30223 5\nOK\nU\nTLM_MUOK_VARIT\nLIST\nOK\n");
  EXPECT_TRUE(said("30223 drop-down list \"Green\"")) << transcript_;
  EXPECT_EQ(layerColor(L"tma_asf"), 3);  // made anew
  run("TLM_MUOK_VARIT\n30223 6\nOK\nTLM_MUOK_VARIT\n30223 5\nOK\nU\nTLM_MUOK_VARIT\nLIST\nCancel\n");
  EXPECT_TRUE(said("30223 drop-down list \"Magenta\"")) << transcript_;
}

TEST_F(PluginDialogs, TheSchemeIsSavedWhereItWasFound) {
  iniFile("asfaltti 3\nnurmi 999\nvieras 5\n");
  run("TLM_MUOK_VARIT\n30224 5\nTallenna tiedostoon\n30225 6\nCancel\n");
  // A colour that no box can show is kept.
  EXPECT_EQ(fileText(folder_ / "support" / "tolm.ini"),
            "asfaltti\t3\nnurmi\t999\nsora\t5\npihalaatta\t252\npolku\t31\npensasviiva\t92\nmetsa\t105\n"
            "kattotayttovarjo\t45\nkattotayttoaurinko\t42\n");
  EXPECT_EQ(layerColor(L"tma_sora"), 5);
  EXPECT_EQ(layerColor(L"tma_laatta"), 252);
}

TEST_F(PluginDialogs, ASchemeWithoutAFileGoesToTheCurrentFolder) {
  const auto former = std::filesystem::current_path();
  std::filesystem::current_path(folder_);
  run("TLM_MUOK_VARIT\n30268\nOK\n");
  std::filesystem::current_path(former);
  EXPECT_TRUE(std::filesystem::exists(folder_ / "tolm.ini"));
}

// ---- buildings ------------------------------------------------------------------------------------------------------

TEST_F(PluginDialogs, ABuildingNeedsItsFourNumbers) {
  const std::string building = "TLM_MUOK_RAKENNUS\n" + pick(*polyline(0)) + "\n";
  run(building +
      "LIST\nOK\n"
      "30211 3\nOK\n"
      "30206 2;8\nOK\n"
      "30206 2.8\n30207 0.5\n30208 \" \"\nOK\n"
      "30237 77\n30208 -0.4\nOK\n");
  EXPECT_TRUE(said("30211 edit \"\"\n"));
  EXPECT_TRUE(said("30236 drop-down list \"42\"") && said("30237 drop-down list \"45\""));
  EXPECT_TRUE(said("270 text \"Ei määritelty harjaviivaa.\"\n"));
  const std::size_t floors = transcript_.find("[tolmex] Kirjoita kerroksien lukumäärä.\n");
  const std::size_t height = transcript_.find("[tolmex] Kirjoita kerroskorkeus.\n", floors);
  const std::size_t again = transcript_.find("[tolmex] Kirjoita kerroskorkeus.\n", height + 1);
  EXPECT_NE(transcript_.find("[tolmex] Kirjoita sokkelikorkeus.\n", again), std::string::npos) << transcript_;
  // The next new building starts from what was accepted, in another drawing too.
  openText(text());
  run("TLM_MUOK_RAKENNUS\n" + pick(*polyline(50)) + "\nLIST\nCancel\n");
  expectShown({R"(30211 edit "3")", R"(30206 edit "2.8")", R"(30207 edit "0.5")", R"(30208 edit "-0.4")"});
  EXPECT_TRUE(said("30237 drop-down list \"77\""));
}

TEST_F(PluginDialogs, FieldsGoByTheTextBeforeThem) {
  run("TLM_VARJO_OMINAISUUDET\nSuunta asteina 20\nPituus m / kerros: 4,5\nvarjon täyttö Piste\nLIST\nOK\n");
  EXPECT_TRUE(said("30216 edit \"20\"")) << transcript_;
  EXPECT_TRUE(said("4,5 is taken as 4.5"));
  EXPECT_TRUE(said("30217 edit \"4.5\""));
  EXPECT_TRUE(said("30203 drop-down list \"Piste\""));
  run("TLM_VARJO_OMINAISUUDET\nLIST\nCancel\n");
  EXPECT_TRUE(said("30217 edit \"4.5\"")) << transcript_;
  expectFailure("TLM_VARJO_OMINAISUUDET\nSuunta 20\n", "has no control \"Suunta 20\"");
  expectFailure("TLM_VARJO_OMINAISUUDET\nSuunta asteina\n", "is an edit: give its text");
}

TEST_F(PluginDialogs, ARidgeLineIsPicked) {
  Slot* const outline = polyline(0);
  Slot* const ridge = ridgeLine(20);
  Slot* const plain = polyline(40);
  const std::string building = "TLM_MUOK_RAKENNUS\n" + pick(*outline) + "\n";
  const auto status = [&](const std::string& lines) {
    run(building + lines + "LIST\nCancel\n");
    const std::size_t begin = transcript_.find("270 text \"") + 10;
    return transcript_.substr(begin, transcript_.find('"', begin) - begin);
  };
  EXPECT_EQ(status("269\n" + pick(*ridge) + "\n"), "Harjaviiva määritetty (2.5 m).");
  EXPECT_EQ(status("269\n" + pick(*ridge) + "0\n"), "Harjaviiva määritetty (0 m).");
  EXPECT_EQ(status("Aseta harjaviiva\n" + pick(*ridge) + "1.25\n"), "Harjaviiva määritetty (1.25 m).");
  EXPECT_EQ(status("269\n" + pick(*ridge) + "3\n269\n^C\n"), "Ei määritelty harjaviivaa.");
  EXPECT_EQ(status("269\n" + pick(*ridge) + "^C\n"), "Ei määritelty harjaviivaa.");
  EXPECT_EQ(status("269\n" + pick(*plain)), "Ei määritelty harjaviivaa.");
  // The input may end while the dialog is hidden.
  expectFailure(building + "269\n", "TLM_MUOK_RAKENNUS waited for an answer");
}

TEST_F(PluginDialogs, ABuildingShowsItsRecordAsStored) {
  const std::string outline = handle(*polyline(0));
  store({{outline,
          {{"_ENTITYTYPE", "building"},
           {"baseheight", "0.40"},
           {"floorheight", "2.80"},
           {"nrfloors", "3"},
           {"eavesWidth", "0.5"},
           {"roofheight", "1.75"},
           {"tolm_bld_shadowcolor", "12"},
           {"tolm_bld_suncolor", "13"},
           {"tolm_roofline_handle", handle(*ridgeLine(20))}}}});
  run("TLM_MUOK_RAKENNUS\n" + pickHandle(outline) + "\nLIST\nCancel\n");
  expectShown({R"(30211 edit "3")", R"(30206 edit "2.80")", R"(30207 edit "0.5")", R"(30208 edit "0.40")",
               R"(270 text "Harjaviiva määritetty (1.75 m).")"});
  EXPECT_TRUE(said("30236 drop-down list \"13\"") && said("30237 drop-down list \"12\""));
}

TEST_F(PluginDialogs, SeveralBuildingsHaveNoRidgeLine) {
  run("TLM_MUOK_RAKENNUS\n" + pick(*polyline(0)) + pick(*polyline(20)) + "\nLIST\nCancel\n");
  EXPECT_TRUE(said("269 button \"Aseta harjaviiva\", hidden\n"));
  EXPECT_TRUE(said("270 text \"Ei määritelty harjaviivaa.\", hidden\n"));
  expectFailure("TLM_MUOK_RAKENNUS\nALL\n\n269\n", "control 269 is hidden");
}

// ---- shadows --------------------------------------------------------------------------------------------------------

TEST_F(PluginDialogs, ShadowSettingsAreTakenByOkOnly) {
  run("TLM_VARJO_PAIVITA\n");
  const std::string open = "TLM_VARJO_OMINAISUUDET\n";
  run(open + "LIST\n30216 90\n30222 5\n30203 Piste\nCancel\n" + open + "LIST\nCancel\n");
  for (const char* const line : {"30216 edit \"45\"\n", "30217 edit \"3\"\n", "30218 edit \"0.15\"\n",
                                 "30222 drop-down list \"White\"\n", "30203 drop-down list \"Viiva\"\n"}) {
    EXPECT_NE(transcript_.find(line), transcript_.rfind(line)) << line << transcript_;
  }
  EXPECT_EQ(layerColor(L"tmv_varjo"), 7);
  run(open + "30216 90\n30217 -2.5\n30218 0.123456789\n30222 5\n30203 piste\nOK\n" + open + "LIST\nCancel\n");
  expectShown({R"(30216 edit "90")", R"(30217 edit "-2.5")", R"(30218 edit "0.123457")",
               R"(30222 drop-down list "Blue")", R"(30203 drop-down list "Piste")"});
  EXPECT_EQ(layerColor(L"tmv_varjo"), 5);
  expectFailure(open + "30222 ByLayer\n", "has no entry \"ByLayer\"; its entries: \"Red\"");
}

TEST_F(PluginDialogs, UndoneShadowSettingsAreForgotten) {
  const std::string open = "TLM_VARJO_OMINAISUUDET\n";
  run("TLM_MUOK_VARIT_PAALLE\n" + open + "30216 90\n30222 5\n30203 Piste\nOK\nU\n" + open + "LIST\nCancel\n");
  expectShown({R"(30216 edit "45")", R"(30222 drop-down list "White")", R"(30203 drop-down list "Viiva")"});
  run(open + "30216 90\nOK\n" + open + "30216 10\nOK\nU\n" + open + "LIST\nCancel\n");
  EXPECT_TRUE(said("30216 edit \"90\"\n")) << transcript_;
}

TEST_F(PluginDialogs, TheShadowLayerHasItsColorAlsoWhenItWasUndone) {
  run("TLM_MUOK_VARIT_PAALLE\nU\n"
      "PLINE\n0,0\n9,0\n9,9\n0,9\nC\n");
  const std::string fence = pick(*last(DxfType::LwPolyline)) + "\n";
  run("TLM_MUOK_AITA_LAUTA\n" + fence + "TLM_ASETA_KORKEUS\n" + fence + "2\nTLM_VARJO_OMINAISUUDET\n30222 5\nOK\n");
  EXPECT_EQ(layerColor(L"tmv_varjo"), 5);
}

TEST_F(PluginDialogs, AScaleThatDrawsNoShadowsIsTold) {
  run("TLM_VARJO_OMINAISUUDET\n30218 0\nOK\n");
  EXPECT_FALSE(said("ei voitu piirtää"));  // nothing casts any
  run("PLINE\n0,0\n9,0\n9,9\n0,9\nC\n");
  const std::string fence = pick(*last(DxfType::LwPolyline)) + "\n";
  run("TLM_MUOK_AITA_LAUTA\n" + fence + "TLM_ASETA_KORKEUS\n" + fence + "2\nTLM_VARJO_PAIVITA\n");
  EXPECT_TRUE(said("\nVarjoja ei voitu piirtää varjon viivojen skaalalla 0.\n")) << transcript_;
  run("TLM_VARJO_OMINAISUUDET\n30218 0.2\nOK\n");
  EXPECT_FALSE(said("ei voitu piirtää"));
  // A height that a locked fence does not take is told as well.
  run("LAYER\nLOCK\ntmv_aita_lauta\n\nTLM_ASETA_KORKEUS\n" + fence + "3\n");
  EXPECT_TRUE(said("failed Tolmex/Fences.cpp:")) << transcript_;
}

TEST_F(PluginDialogs, ShadowFieldsAreCheckedInOrder) {
  run("TLM_VARJO_OMINAISUUDET\n"
      "30216 \"\"\n30217 \"\"\n30218 \"\"\nOK\n"
      "30216 45d\nOK\n"
      "30216 10\nOK\n"
      "30217 1\nOK\n"
      "30218 x\nOK\nCancel\n"
      "TLM_VARJO_OMINAISUUDET\nLIST\nCancel\n");
  std::size_t at = 0;
  for (const char* const message :
       {"suunta asteina.", "suunta asteina.", "pituus.", "skaala.", "skaala.", "30216 edit \"45\"\n"}) {
    at = transcript_.find(message, at);
    ASSERT_NE(at, std::string::npos) << message << transcript_;
    ++at;
  }
}

TEST_F(PluginDialogs, APlugInWithoutDialogsOpenCanBeUnloaded) {
  run("TLM_MUOK_VARIT\nCancel\nARX\nUnload\ntolmex\n");
  expectFailure("TLM_MUOK_VARIT\n", "TLM_MUOK_VARIT");
}

}  // namespace
