// Buildings and ridge lines, as far as they need no dialog.
#include "Illustration/BuildingPlan.h"

namespace {

using namespace tests;

class Buildings : public BuildingPlan {};

TEST_F(Buildings, TheTooltipTellsFloorsAndRidge) {
  const std::string flat = rectangle(0, 0, 10, 10);
  const std::string ridged = rectangle(50, 0, 10, 10);
  const std::string damaged = rectangle(100, 0, 10, 10);
  store({{flat, building("2")}, {ridged, building("2.50", flat)}, {damaged, without(building(), "roofheight")}});
  EXPECT_NE(run("HOVER\n0,5\n").find("Rakennus (2 kerrosta): harjaviivaa ei määritelty."), std::string::npos);
  // The link counts, dead or alive; the height is shown as it is stored.
  EXPECT_NE(run("HOVER\n50,5\n").find("Rakennus (2.5 kerrosta): harjaviiva määritelty (2 m)."), std::string::npos);
  EXPECT_EQ(run("HOVER\n100,5\n").find("Rakennus"), std::string::npos);
}

TEST_F(Buildings, RidgeLinesAreTaggedAndLoseTheirFill) {
  const std::string outline = rectangle(0, 0, 10, 10);
  run("TLM_MUOK_NURMIKKO\n" + pickHandle(outline) + "\n");
  EXPECT_EQ(living(DxfType::Hatch).size(), 1U);
  EXPECT_NE(run("TLM_MUOK_HARJAVIIVA\n" + pickHandle(outline) + "\n").find("Valitse muokattava harjaviiva:\n"),
            std::string::npos);
  EXPECT_EQ(living(DxfType::Hatch).size(), 0U);
  EXPECT_EQ(layer(slot(outline)), L"tmv_harjav");
  EXPECT_EQ(xdata(slot(outline), "kaava_tolmex"),
            "1001 kaava_tolmex|1000 TOLM_VERSION|1000 1|1000 ENTITYTYPE|1000 Harjaviiva|1000 HEIGHT|1000 0|1000 "
            "HATCH_HANDLE|1005 0");
}

TEST_F(Buildings, ABuildingThatBecomesARidgeLineIsBoth) {
  const std::string outline = rectangle(0, 0, 10, 10);
  store({{outline, building()}});
  const std::string record = xdata(slot(outline), "ORV_VR");
  run("TLM_MUOK_HARJAVIIVA\n" + pickHandle(outline) + "\n");
  EXPECT_EQ(xdata(slot(outline), "ORV_VR"), record);
  EXPECT_EQ(tagValue(slot(outline), "ENTITYTYPE"), "Harjaviiva");
}

TEST_F(Buildings, AnElementIsNeverMadeABuilding) {
  const std::string outline = rectangle(0, 0, 10, 10);
  run("TLM_MUOK_METSA\n" + pickHandle(outline) + "\n");
  const std::string before = text();
  EXPECT_NE(
      run("TLM_MUOK_RAKENNUS\n" + pickHandle(outline) + "\n").find("Muunnos metsä -> rakennus ei ole mahdollinen."),
      std::string::npos)
      << transcript_;
  EXPECT_EQ(text(), before);
  run("TLM_MUOK_RAKENNUS\n\n");
  EXPECT_EQ(text(), before);
}

TEST_F(Buildings, OldStylePolylinesCount) {
  openText(
      "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1015\n  9\n$MEASUREMENT\n 70\n1\n  0\nENDSEC\n  0\nSECTION\n"
      "  2\nENTITIES\n"
      "  0\nPOLYLINE\n  5\n50\n100\nAcDbEntity\n  8\n0\n100\nAcDb2dPolyline\n 66\n1\n 10\n0\n 20\n0\n 30\n0\n 70\n1\n"
      "  0\nVERTEX\n  5\n51\n100\nAcDbEntity\n  8\n0\n100\nAcDbVertex\n100\nAcDb2dVertex\n 10\n0\n 20\n0\n 42\n1\n"
      "  0\nVERTEX\n  5\n52\n100\nAcDbEntity\n  8\n0\n100\nAcDbVertex\n100\nAcDb2dVertex\n 10\n20\n 20\n0\n 42\n1\n"
      "  0\nSEQEND\n  5\n53\n100\nAcDbEntity\n  8\n0\n"
      "  0\nPOLYLINE\n  5\n60\n100\nAcDbEntity\n  8\n0\n100\nAcDb3dPolyline\n 66\n1\n 10\n0\n 20\n0\n 30\n0\n 70\n9\n"
      "  0\nVERTEX\n  5\n61\n100\nAcDbEntity\n  8\n0\n100\nAcDbVertex\n100\nAcDb3dPolylineVertex\n 10\n0\n 20\n0\n"
      " 30\n7\n 70\n32\n"
      "  0\nVERTEX\n  5\n62\n100\nAcDbEntity\n  8\n0\n100\nAcDbVertex\n100\nAcDb3dPolylineVertex\n 10\n9\n 20\n0\n"
      " 30\n7\n 70\n32\n"
      "  0\nVERTEX\n  5\n63\n100\nAcDbEntity\n  8\n0\n100\nAcDbVertex\n100\nAcDb3dPolylineVertex\n 10\n9\n 20\n9\n"
      " 30\n7\n 70\n32\n"
      "  0\nSEQEND\n  5\n64\n100\nAcDbEntity\n  8\n0\n  0\nENDSEC\n  0\nEOF\n");
  run("TLM_MUOK_SORA\n" + pickHandle(rectangle(90, 0, 5, 5)) + "\n");
  store({{"50", building()}, {"60", building()}});
  run("TLM_VARJO_PAIVITA\n");
  // A circle of two half circles in six pieces each, and a triangle whose slope runs along the shadow.
  EXPECT_EQ(shadowCount(), 12U + 2U);
  EXPECT_EQ(roofCount(), 2U);
}

}  // namespace
