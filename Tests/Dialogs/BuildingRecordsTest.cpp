// Buildings made and edited through the real dialog: what is stored, and what stays when nothing is.
#include "Illustration/BuildingPlan.h"
#include "windows.h"

namespace {

using namespace tests;

class BuildingRecords : public BuildingPlan {
 protected:
  static std::string open(const std::string& handles) { return "TLM_MUOK_RAKENNUS\n" + handles + "\n"; }
  static std::string numbers(const std::string& floors, const std::string& floorHeight, const std::string& eaves,
                             const std::string& base) {
    return "30211 " + floors + "\n30206 " + floorHeight + "\n30207 " + eaves + "\n30208 " + base + "\n";
  }
  std::string record(const std::string& handle) { return xdata(slot(handle), "ORV_VR"); }
  std::string ridgeLine(const std::string& points) {
    std::string ridge = course(points);
    run("TLM_MUOK_HARJAVIIVA\n" + pickHandle(ridge) + "\n");
    return ridge;
  }

  using Texts = std::vector<std::string>;
  /// The stored items; the last two are there with a ridge line.
  static std::string items(const std::string& base, const std::string& eaves, const std::string& floorHeight,
                           const std::string& floors, const std::string& roof, const std::string& shadow = "45",
                           const std::string& sun = "42", const std::string& ridge = {}) {
    std::string all = "1001 ORV_VR";
    for (const std::string& text : Texts{"_ENTITYTYPE",
                                         "building",
                                         "rooflinelayer",
                                         "tmv_harjav",
                                         "baseheight",
                                         base,
                                         "eavesWidth",
                                         eaves,
                                         "floorheight",
                                         floorHeight,
                                         "nrfloors",
                                         floors,
                                         "roofmaterial",
                                         "Surf_MetalPlate",
                                         "basematerial",
                                         "Surf_Concrete",
                                         "texwidth",
                                         "16",
                                         "basematerial",
                                         "Surf_Concrete",
                                         "materials",
                                         "mat_rakennus",
                                         "roofheight",
                                         roof,
                                         "TOLM_VERSION",
                                         "1",
                                         "tolm_bld_shadowcolor",
                                         shadow,
                                         "tolm_bld_suncolor",
                                         sun}) {
      all += "|1000 " + text;
    }
    return ridge.empty() ? all : all + "|1000 tolm_roofline_handle|1005 " + ridge;
  }
};

TEST_F(BuildingRecords, AConversionStoresThirtyThreeItemsInOrder) {
  const std::string house = rectangle(0, 0, 16, 9);
  const std::string ridge = ridgeLine("0,4.5\n16,4.5\n");
  run(open(pickHandle(house)) + numbers("2.9", "2.80", ".5", "1234567.8") + "30236 13\n30237 12\n269\n" +
      pickHandle(ridge) + "2.25\nOK\n");
  const std::string stored = record(house);
  EXPECT_EQ(stored, items("1.23457e+06", "0.5", "2.8", "2", "2.25", "12", "13", ridge));
  EXPECT_EQ(std::count(stored.begin(), stored.end(), '|') + 1, 33);
  EXPECT_EQ(layer(slot(house)), L"tmv_rak");
  // Back with one step.
  run("U\n");
  EXPECT_EQ(record(house), "");
  EXPECT_EQ(layer(slot(house)), L"0");
  // Without a ridge line the last two are missing and the ridge has no height, even if it was asked for.
  run(open(pickHandle(house)) + numbers("-2", "3", "0", "0") + "269\n" + pickHandle(ridge) + "7\n269\n^C\nOK\n");
  EXPECT_EQ(record(house), items("0", "0", "3", "-2", "0", "12", "13"));
}

TEST_F(BuildingRecords, ASavedBuildingIsEditedWhereItWasLeft) {
  const std::string house = rectangle(0, 0, 16, 9);
  const std::string other = rectangle(40, 0, 5, 5);
  const std::string ridge = ridgeLine("0,4.5\n16,4.5\n");
  run(open(pickHandle(house)) + numbers("2", "3", "0.5", "0.4") + "269\n" + pickHandle(ridge) + "\nOK\n");
  const std::string made = items("0.4", "0.5", "3", "2", "2.5", "45", "42", ridge);
  EXPECT_EQ(record(house), made);
  EXPECT_FALSE(said("Rakennukselle"));  // said of edited buildings only
  reopen();
  EXPECT_EQ(record(house), made);
  run(open(pickHandle(house)) + "OK\n");
  EXPECT_TRUE(said("Rakennukselle tehdään harjakatto.\n"));
  EXPECT_EQ(record(house), made);

  // A ridge as high as the eaves is one, a sunken one is stored too but called flat; Esc takes the link away.
  run(open(pickHandle(house)) + "269\n" + pickHandle(ridge) + "0\nOK\n");
  EXPECT_TRUE(said("Rakennukselle tehdään harjakatto.\n"));
  EXPECT_EQ(record(house), items("0.4", "0.5", "3", "2", "0", "45", "42", ridge));
  run(open(pickHandle(house)) + "269\n" + pickHandle(ridge) + "-1\nOK\n");
  EXPECT_TRUE(said("Rakennukselle ei saatu harjaviivaa, tehdään tasakatto.\n"));
  EXPECT_EQ(record(house), items("0.4", "0.5", "3", "2", "-1", "45", "42", ridge));
  run(open(pickHandle(house)) + "269\n^C\n30237 7\nOK\n");
  EXPECT_TRUE(said("Rakennukselle ei saatu harjaviivaa, tehdään tasakatto.\n"));
  EXPECT_EQ(record(house), items("0.4", "0.5", "3", "2", "-1", "7", "42"));

  // A ridge line that is gone: its handle stays in the record until the building is edited.
  run(open(pickHandle(house)) + "269\n" + pickHandle(ridge) + "2\nOK\nERASE\n" + pickHandle(ridge) + "\n");
  reopen();
  EXPECT_NE(record(house).find("1005 " + ridge), std::string::npos);
  run(open(pickHandle(house)) + "LIST\nOK\n");
  EXPECT_TRUE(said("270 text \"Ei määritelty harjaviivaa.\""));
  EXPECT_EQ(record(house).find("tolm_roofline_handle"), std::string::npos);
  EXPECT_EQ(record(other), "");
}

TEST_F(BuildingRecords, SeveralGetTheSameNumbersAndElementsNone) {
  const std::string first = rectangle(0, 0, 5, 5);
  const std::string forest = rectangle(10, 0, 5, 5);
  const std::string second = rectangle(20, 0, 5, 5);
  run("TLM_MUOK_METSA\n" + pickHandle(forest) + "\n");
  const std::string before = xdata(slot(forest), "kaava_tolmex");
  run(open(pickHandle(first) + pickHandle(forest) + pickHandle(second)) + numbers("3", "2.8", "0.5", "0.4") + "OK\n");
  EXPECT_TRUE(said("[tolmex] Muunnos Metsä -> rakennus ei ole mahdollinen\n")) << transcript_;
  EXPECT_EQ(xdata(slot(forest), "kaava_tolmex"), before);
  EXPECT_EQ(record(forest), "");
  EXPECT_EQ(layer(slot(forest)), L"tmv_metsa");
  for (const std::string& handle : {first, second}) {
    EXPECT_EQ(record(handle), items("0.4", "0.5", "2.8", "3", "0"));
    EXPECT_EQ(layer(slot(handle)), L"tmv_rak");
  }
  // Together they are made anew, and one of them is still one building.
  run(open(pickHandle(first) + pickHandle(second)) + "30211 1\nOK\nTLM_VARJO_PAIVITA\n");
  EXPECT_EQ(record(first), items("0.4", "0.5", "2.8", "1", "0"));
  EXPECT_EQ(roofCount(), 2U);
}

TEST_F(BuildingRecords, NothingHappensWithoutOk) {
  const std::string house = rectangle(0, 0, 16, 9);
  store({{house, building("2")}});
  run("TLM_MUOK_VARIT_PAALLE\n");
  const std::string before = text();
  run(open(pickHandle(house)) + "30211 9\n30237 77\nCancel\n");
  run(open(pickHandle(house)) + "30237 77\n30206 \"\"\nOK\nCancel\n");
  EXPECT_TRUE(said("[tolmex] Kirjoita kerroskorkeus.\n"));
  EXPECT_EQ(text(), before);
  // The numbers accepted last are those of the next new building, not what was refused.
  run(open(pickHandle(rectangle(40, 0, 5, 5))) + "LIST\nCancel\n");
  EXPECT_TRUE(said("30211 edit \"\"\n") && said("30237 drop-down list \"45\""));
}

TEST_F(BuildingRecords, ALockedBuildingStaysAsItIsAndTheUserIsTold) {
  run("LAYER\nM\nlukko\n\n");
  const std::string house = rectangle(0, 0, 16, 9);
  run("LAYER\nS\n0\n\n");
  store({{house, building("2")}});
  const std::string before = record(house);
  run("LAYER\nLOCK\nlukko\n\n");
  run(open(pickHandle(house)) + "30211 9\nOK\n");
  EXPECT_TRUE(said("[tolmex] writing xdata failed\n")) << transcript_;
  EXPECT_EQ(record(house), before);
  EXPECT_EQ(layer(slot(house)), L"lukko");
}

TEST_F(BuildingRecords, TheCursorGoesToTheRefusedField) {
  std::vector<int> focus;
  whenShown_ = [&] {
    if (transcript_.ends_with("\":\n")) focus.push_back(GetDlgCtrlID(GetFocus()));
  };
  run(open(pickHandle(rectangle(0, 0, 5, 5))) + "30208 1\nOK\nLIST\n30211 2\n30206 x\nOK\nLIST\nCancel\n" +
      "TLM_VARJO_OMINAISUUDET\n30218 -\n30216 4\nOK\nLIST\nCancel\n");
  whenShown_ = nullptr;
  EXPECT_EQ(focus, (std::vector<int>{30211, 30206, 30218})) << transcript_;
}

TEST_F(BuildingRecords, RecordsOfOtherVersionsAreTakenAsFarAsTheyGo) {
  const std::string partial = rectangle(0, 0, 5, 5);
  const std::string newer = rectangle(10, 0, 5, 5);
  const std::string colorless = rectangle(20, 0, 5, 5);
  Items unknown = building("3");
  unknown.front().second = "Building";
  unknown.insert(unknown.begin() + 1, {"wallmaterial", "brick"});
  unknown.emplace_back("nrfloors", "7");  // the first of two counts
  store({{partial, without(building("2"), "roofheight")},
         {newer, unknown},
         {colorless, without(building(), "tolm_bld_suncolor")}});
  // One without all numbers is a building that shows none of them.
  run(open(pickHandle(partial)) + "LIST\nOK\n" + numbers("1", "3", "0", "0") + "OK\n");
  EXPECT_TRUE(said("30211 edit \"\"\n") && said("30237 drop-down list \"45\"")) << transcript_;
  EXPECT_TRUE(said("Kirjoita kerroksien lukumäärä.") && said("tehdään tasakatto"));
  EXPECT_EQ(record(partial), items("0", "0", "3", "1", "0"));
  run(open(pickHandle(newer)) + "LIST\nOK\n");
  EXPECT_TRUE(said("30211 edit \"3\"\n"));
  EXPECT_EQ(record(newer), items("0.4", "0.5", "3", "3", "2"));
  // One without its colours is none: it is made one.
  run(open(pickHandle(colorless)) + "LIST\nOK\n");
  EXPECT_FALSE(said("Rakennukselle"));
  EXPECT_EQ(record(colorless), items("0.4", "0.5", "3", "3", "0"));
}

TEST_F(BuildingRecords, OldPolylinesGoToTheLayerWithTheirVertices) {
  openText(plainDrawing(oldPolyline(50, {"10 0|20 0|42 0|", "10 20|20 0|", "10 20|20 9|"})));
  run(open(pickHandle("50")) + numbers("1", "3", "0", "0") + "OK\n");
  EXPECT_EQ(record("50"), items("0", "0", "3", "1", "0"));
  for (const char* const part : {"50", "51", "52", "53"}) EXPECT_EQ(layer(slot(part)), L"tmv_rak") << part;
}

// ---- shadow settings ------------------------------------------------------------------------------------------------

class StoredShadowSettings : public BuildingRecords {
 protected:
  /// "1 SHADOWANGLERAD|40 …" of every living record of settings.
  std::vector<std::string> records() {
    std::vector<std::string> found;
    drawing().forEachSlot([&](Slot& object) {
      if (object.isErased() || drawing().typeName(object) != "XRECORD") return;
      std::string all;
      bool inside = false;
      Tag tag;
      for (TagCursor cursor = object.tags(); cursor.next(tag);) {
        if (inside && tag.code < 280)
          all += (all.empty() ? "" : "|") + std::to_string(tag.code) + " " + std::string(tag.trimmed());
        inside = inside || (tag.code == 100 && tag.value == "AcDbXrecord");
      }
      if (all.find("SHADOW") != std::string::npos) found.push_back(all);
    });
    return found;
  }
  bool hasDictionary() { return text().find("\norv_tolmex\n") != std::string::npos; }
};

TEST_F(StoredShadowSettings, AreOneRecordOfTenItemsHoweverOftenConfirmed) {
  store({{rectangle(0, 0, 10, 10), building("2")}});
  const std::string shadows = "TLM_VARJO_OMINAISUUDET\n";
  run(shadows + "30216 90\nCancel\n" + shadows + "30216 90\n30218 \"\"\nOK\n^C\nTLM_VARJO_PAIVITA\n");
  EXPECT_TRUE(said("[tolmex] Kirjoita varjon skaala.\n"));
  EXPECT_FALSE(hasDictionary());
  EXPECT_EQ(value(*living(DxfType::Hatch, L"tmv_varjo").front(), 52), "45.0");
  run(shadows + "30216 90\n30217 2.5\n30218 0.3\n30222 5\n30203 Piste\nOK\n");
  ASSERT_EQ(records().size(), 1U);
  EXPECT_EQ(shadowCount(), 2U);  // OK draws them
  run(shadows + "30216 180\n30203 Viiva\nOK\n");
  reopen();
  const auto stored = records();
  ASSERT_EQ(stored.size(), 1U);
  EXPECT_EQ(stored.front(),
            "1 SHADOWANGLERAD|40 3.141592653589793|1 SHADOWCOLOR|70 5|1 SHADOWLENGTHPERFLOOR|40 2.5|1 SHADOWSCALE|40 "
            "0.3|1 SHADOWHATCHTYPE|70 10");
  EXPECT_EQ(layerColor(L"tmv_varjo"), 5);
  EXPECT_EQ(groups().size(), 3U);
  run(shadows + "LIST\nCancel\n");
  EXPECT_TRUE(said("30216 edit \"180\"\n") && said("30203 drop-down list \"Viiva\"\n")) << transcript_;
  // One step takes back the shadows, the layer's colour and the record.
  const int color = layerColor(L"tmv_varjo");
  run(shadows + "30222 6\n30217 1\nOK\n");
  EXPECT_EQ(layerColor(L"tmv_varjo"), 6);
  run("U\n");
  EXPECT_EQ(records(), stored);
  EXPECT_EQ(layerColor(L"tmv_varjo"), color);
}

}  // namespace
