// The sun's place against published and independently computed values.
#include <gtest/gtest.h>

#include "Sun/Sun.h"

using Answer = std::optional<host::Result<std::vector<host::sun::SunPosition>>>;
extern "C" void tolmexSun(const host::sun::SunCall& call, Answer& answer);

namespace {

using host::sun::ClockTime;
using host::sun::SunCall;
using host::sun::SunPosition;

SunPosition at(const SunCall& call) {
  Answer found;
  tolmexSun(call, found);
  EXPECT_TRUE(*found) << found->message();
  return *found ? (*found)->front() : SunPosition();
}

struct Row {
  ClockTime time;
  const char* zone;
  double longitude, latitude, azimuth, elevation;
  double mbar = 1010, celsius = 10;
};

// Published with the Solar Position Algorithm (NREL TP-560-34302 and spa.c), 2003 to 2015.
constexpr Row kPublished[] = {
    {{2003, 10, 17, 12, 30, 30}, "Etc/GMT+7", -105.1786, 39.742476, 194.340, 39.888, 820, 11},
    {{2010, 6, 15, 9, 30}, "UTC", 15.65, 78.22, 155.483, 34.166, 1000, 10},
    {{2010, 9, 15, 12, 30}, "UTC", 15.65, 78.22, 205.062, 13.722, 1000, 10},
    {{2010, 3, 15, 6, 30}, "UTC", 174.74, -36.840556, 268.277, 1.631, 1000, 10},
};

// Computed with Meeus' short series by the clock of Helsinki, summer time included.
constexpr Row kComputed[] = {
    {{2026, 3, 20, 9}, "Europe/Helsinki", 24.94, 60.17, 124.24, 17.79},
    {{2026, 3, 20, 12}, "Europe/Helsinki", 24.94, 60.17, 172.03, 29.54},
    {{2026, 3, 20, 15}, "Europe/Helsinki", 24.94, 60.17, 222.08, 23.06},
    {{2026, 3, 20, 18}, "Europe/Helsinki", 24.94, 60.17, 264.01, 3.66},
    {{2026, 6, 21, 9}, "Europe/Helsinki", 24.94, 60.17, 98.99, 32.32},
    {{2026, 6, 21, 12}, "Europe/Helsinki", 24.94, 60.17, 149.58, 50.59},
    {{2026, 6, 21, 15}, "Europe/Helsinki", 24.94, 60.17, 215.83, 49.51},
    {{2026, 6, 21, 18}, "Europe/Helsinki", 24.94, 60.17, 264.60, 30.36},
    {{2026, 3, 20, 9}, "Europe/Helsinki", 25.47, 65.01, 125.92, 15.22},
    {{2026, 3, 20, 12}, "Europe/Helsinki", 25.47, 65.01, 172.95, 24.78},
    {{2026, 3, 20, 15}, "Europe/Helsinki", 25.47, 65.01, 221.37, 19.30},
    {{2026, 3, 20, 18}, "Europe/Helsinki", 25.47, 65.01, 264.22, 2.95},
};

template <std::size_t N>
void expectRows(const Row (&rows)[N], double azimuthError, double elevationError) {
  for (const Row& row : rows) {
    const SunPosition sun = at({"", row.longitude, row.latitude, row.zone, {row.time}, row.mbar, row.celsius});
    EXPECT_NEAR(sun.azimuth, row.azimuth, azimuthError)
        << row.time.year << "-" << row.time.month << " " << row.time.hour;
    // Near the horizon the formulas of refraction differ.
    EXPECT_NEAR(sun.elevation, row.elevation, row.elevation < 3 ? 0.05 : elevationError)
        << row.time.year << "-" << row.time.month << " " << row.time.hour;
  }
}

TEST(Sun, StandsWherePublishedValuesSay) { expectRows(kPublished, 0.003, 0.003); }
TEST(Sun, StandsWhereASecondMethodSays) { expectRows(kComputed, 0.02, 0.02); }

TEST(Sun, ShadowsFallByGridNorth) {
  // 60.45 N 22.27 E in two systems: the meridians' convergence turns the direction by it.
  constexpr ClockTime kTime{2026, 3, 20, 15};
  const SunPosition zone = at({"EPSG:3877", 23459867.0, 6703777.0, "Europe/Helsinki", {kTime}});
  EXPECT_NEAR(zone.latitude, 60.45, 0.01);
  EXPECT_NEAR(zone.longitude, 22.27, 0.01);
  EXPECT_NEAR(zone.convergence, -0.635, 0.01);
  EXPECT_NEAR(zone.azimuth, 219.25, 0.05);
  EXPECT_NEAR(zone.elevation, 23.71, 0.02);
  EXPECT_NEAR(zone.shadowDirection, 50.12, 0.05);
  const SunPosition national = at({"EPSG:3067", 239760.0, 6711070.0, "Europe/Helsinki", {kTime}});
  EXPECT_NEAR(national.longitude, 22.27, 0.02);
  EXPECT_NEAR(national.convergence, -4.117, 0.02);
  EXPECT_NEAR(national.shadowDirection, 46.64, 0.05);
}

TEST(Sun, RefusesWhatTheClockOrTheMapLack) {
  const auto why = [](const SunCall& call) {
    Answer refused;
    tolmexSun(call, refused);
    return refused->message();
  };
  EXPECT_NE(why({"", 25, 60, "Europe/Atlantis", {{2026, 1, 1, 12}}}).find("no such time zone"), std::string::npos);
  EXPECT_NE(why({"", 25, 60, "../../etc/passwd", {{2026, 1, 1, 12}}}).find("no such time zone"), std::string::npos);
  EXPECT_NE(why({"", 25, 60, "Europe/Helsinki", {{2026, 3, 29, 3, 30}}}).find("skipped"), std::string::npos);
  EXPECT_NE(why({"EPSG:1", 0, 0, "UTC", {{2026, 1, 1, 12}}}).find("no such coordinate system"), std::string::npos);
}

}  // namespace
