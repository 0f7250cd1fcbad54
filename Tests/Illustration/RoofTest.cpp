// Rasters and fills of roof faces.
#include <cmath>

#include "Illustration/BuildingPlan.h"

namespace {

using namespace tests;

class Roof : public BuildingPlan {
 protected:
  void SetUp() override {
    house_ = rectangle(0, 0, 16, 9);
    store({{house_, building()}});
    run("TLM_MUOK_VARIT_PAALLE\n");
  }
  /// Angle of the raster that the corners get, in degrees.
  double rasterAngle(const std::string& corners) {
    run("TLM_KATTO_RAST_TEE_4_AURINKO\n" + pickHandle(house_) + corners + "No\n");
    const auto rasters = living(DxfType::Hatch, L"tmv_katto");
    return rasters.empty() ? NAN : std::stod(value(*rasters.back(), 52));
  }

  std::string house_;
};

TEST_F(Roof, EveryCommandDrawsItsSide) {
  struct Row {
    const char* command;
    bool isHip;
    const wchar_t* fillLayer;
    const char* scale;
    const char* color;
  };
  constexpr Row kRows[] = {{"TLM_KATTO_RAST_TEE_4_VARJO", false, L"tma_katto_varjo", "0.325", "45"},
                           {"TLM_KATTO_RAST_TEE_3_VARJO", true, L"tma_katto_varjo", "0.325", "45"},
                           {"TLM_KATTO_RAST_TEE_4_AURINKO", false, L"tma_katto_aurinko", "0.65", "42"},
                           {"TLM_KATTO_RAST_TEE_3_AURINKO", true, L"tma_katto_aurinko", "0.65", "42"}};
  for (const Row& row : kRows) {
    const std::string corners = row.isHip ? "0,0\n16,0\n8,4.5\n" : "0,4.5\n16,4.5\n16,0\n0,0\n";
    const std::string shown = run(std::string(row.command) + "\n" + pickHandle(house_) + corners + "Yes\n");
    EXPECT_NE(shown.find(row.isHip ? "Valitse ensin rakennuksen ulkoreunan pisteet ja lopuksi kolmas piste"
                                   : "Valitse ensin harjaviivan pisteet ja lopuksi muut pisteet"),
              std::string::npos);
    const auto rasters = living(DxfType::Hatch, L"tmv_katto");
    const auto fills = living(DxfType::Hatch, row.fillLayer);
    ASSERT_EQ(rasters.size(), 1U) << row.command;
    ASSERT_EQ(fills.size(), 1U) << row.command;
    EXPECT_EQ(value(*rasters[0], 2), "LINE");
    EXPECT_EQ(value(*rasters[0], 41), row.scale);
    EXPECT_EQ(value(*rasters[0], 62), "");
    EXPECT_DOUBLE_EQ(std::stod(value(*rasters[0], 52)), 90);
    EXPECT_EQ(value(*fills[0], 2), "SOLID");
    EXPECT_EQ(std::stoi(value(*fills[0], 62)), std::stoi(row.color));
    EXPECT_EQ(value(*rasters[0], 91), "1");
    EXPECT_EQ(std::stoi(value(*rasters[0], 93)), row.isHip ? 3 : 4);
    EXPECT_EQ(living(DxfType::Polyline3d, L"0").size(), 0U);  // the boundary goes
    // Neither an update nor a removal of shadows touches them.
    run("TLM_VARJO_PAIVITA\nTLM_VARJO_POISTA\n");
    EXPECT_EQ(living(DxfType::Hatch).size(), 2U);
    run("ERASE\n(handent \"" + handle(*rasters[0]) + "\")\n(handent \"" + handle(*fills[0]) + "\")\n\n");
  }
}

TEST_F(Roof, WithoutAFillThereIsTheRasterOnly) {
  const std::size_t before = drawing().modelSpace().entities.size();
  run("TLM_KATTO_RAST_TEE_3_VARJO\n" + pickHandle(house_) + "0,0\n16,0\n8,4.5\nNo\n");
  std::size_t living = 0;
  for (const Slot* const entity : drawing().modelSpace().entities) living += entity->isErased() ? 0 : 1;
  EXPECT_EQ(living, before + 1);
}

TEST_F(Roof, LinesRunDownTheSlope) {
  EXPECT_DOUBLE_EQ(rasterAngle("16,0\n16,9\n8,9\n8,0\n"), 180);
  EXPECT_DOUBLE_EQ(rasterAngle("16,9\n16,0\n8,0\n8,9\n"), 0);  // the other way round: the same lines
  EXPECT_NEAR(rasterAngle("0,0\n5,5\n0,10\n-5,5\n"), 135, 1e-12);
  // Without a direction the angle is a full turn and a quarter, a hair less.
  EXPECT_NEAR(std::fmod(rasterAngle("0,0\n0,0\n5,5\n0,5\n"), 360), 90, 1e-9);
}

TEST_F(Roof, WhatCannotBeDoneLeavesNothing) {
  const std::string other = rectangle(50, 0, 5, 5);
  const std::string before = text();
  EXPECT_NE(run("TLM_KATTO_RAST_TEE_3_VARJO\n" + pickHandle(other)).find("Ei valittu rakennusta."), std::string::npos);
  run("TLM_KATTO_RAST_TEE_3_VARJO\n^C\nTLM_KATTO_RAST_TEE_3_VARJO\n-90,-90\n");
  run("TLM_KATTO_RAST_TEE_4_VARJO\n" + pickHandle(house_) + "0,0\n1,0\n1,1\n^C\n");
  run("TLM_KATTO_RAST_TEE_4_VARJO\n" + pickHandle(house_) + "0,0\n\n");
  EXPECT_EQ(text(), before);
  // A face without area is passed over, whatever the user answers.
  run("TLM_KATTO_RAST_TEE_3_VARJO\n" + pickHandle(house_) + "0,0\n8,0\n16,0\nYes\n");
  EXPECT_EQ(living(DxfType::Hatch).size(), 0U);
  EXPECT_EQ(living(DxfType::Polyline3d).size(), 0U);
}

}  // namespace
