// Where the sun stands over a plan: what `tolmex sun` loads.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Problems/Problem.h"

namespace host::sun {

/// A time of day by the clock of a time zone.
struct ClockTime {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
};

struct SunCall {
  std::string system;    // of the plan: "EPSG:3879"; empty: `x` and `y` are longitude and latitude in degrees
  double x = 0, y = 0;   // easting and northing
  std::string timeZone;  // "Europe/Helsinki", "UTC"
  std::vector<ClockTime> times;
  double pressureMbar = 1010, temperatureC = 10;  // what bends the light
};

struct SunPosition {
  double longitude = 0, latitude = 0;  // degrees
  double azimuth = 0;                  // degrees clockwise from true north
  double elevation = 0;                // degrees over the horizon, refraction included
  double convergence = 0;              // degrees from true to grid north, positive east of the zone's meridian
  double utcOffsetHours = 0;           // of the zone's clock
  double shadowDirection = 0;          // in the plan: degrees counter-clockwise from grid east
};

/// One answer for each time. Azimuth and elevation by VSOP87 (libnova), good to a hundredth of a degree.
using SunFunction = void (*)(const SunCall& call, std::optional<Result<std::vector<SunPosition>>>& answer);
/// The function that the library exports.
inline constexpr const char* kSunFunction = "tolmexSun";

}  // namespace host::sun
