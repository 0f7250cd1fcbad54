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

}  // namespace
