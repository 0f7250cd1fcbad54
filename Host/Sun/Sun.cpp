#include "Sun/Sun.h"

#include <libnova/dynamical_time.h>
#include <libnova/precession.h>
#include <libnova/refraction.h>
#include <libnova/sidereal_time.h>
#include <libnova/solar.h>
#include <libnova/transform.h>
#include <proj.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <numbers>
#include <optional>

namespace host::sun {
namespace {

constexpr double kDegree = std::numbers::pi / 180;

double wrapped(double degrees) {
  degrees = std::fmod(degrees, 360);
  return degrees < 0 ? degrees + 360 : degrees;
}

/// The process's time zone while times are read; the former one comes back.
class TimeZone {
 public:
  explicit TimeZone(const std::string& name) {
    if (const char* const former = std::getenv("TZ")) former_ = former;
    ::setenv("TZ", name.c_str(), 1);
    ::tzset();
  }
  ~TimeZone() {
    if (former_) {
      ::setenv("TZ", former_->c_str(), 1);
    } else {
      ::unsetenv("TZ");
    }
    ::tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

  /// The C library takes unknown names for Greenwich.
  static bool isKnown(const std::string& name) {
    std::error_code error;
    const bool isName = !name.empty() && name.front() != '/' && name.find("..") == std::string::npos;
    return isName && (name == "UTC" ||
                      std::filesystem::is_regular_file(std::filesystem::path("/usr/share/zoneinfo") / name, error));
  }

 private:
  std::optional<std::string> former_;
};

struct Instant {
  std::time_t utc = 0;
  double offsetHours = 0;
};

/// Nothing for a time that the clock jumps over, or a date that the calendar lacks.
std::optional<Instant> instantOf(const ClockTime& time) {
  std::tm local{};
  local.tm_year = time.year - 1900;
  local.tm_mon = time.month - 1;
  local.tm_mday = time.day;
  local.tm_hour = time.hour;
  local.tm_min = time.minute;
  local.tm_sec = time.second;
  local.tm_isdst = -1;
  const std::tm asked = local;
  Instant instant{std::mktime(&local), 0};
  if (local.tm_mday != asked.tm_mday || local.tm_mon != asked.tm_mon || local.tm_hour != asked.tm_hour ||
      local.tm_min != asked.tm_min)
    return std::nullopt;
  instant.offsetHours = static_cast<double>(local.tm_gmtoff) / 3600;
  return instant;
}

/// Longitude, latitude and the convergence of meridians of a point of the plan.
Result<SunPosition> placeOf(const SunCall& call) {
  SunPosition place;
  if (call.system.empty()) {
    place.longitude = call.x;
    place.latitude = call.y;
    return place;
  }
  const auto refused = [&call] {
    return problemOf(Code::WrongUsage, "--crs " + call.system + ": no such coordinate system; give it as EPSG:3879");
  };
  const std::unique_ptr<PJ_CONTEXT, decltype(&proj_context_destroy)> context(proj_context_create(),
                                                                             proj_context_destroy);
  proj_log_level(context.get(), PJ_LOG_NONE);
  const auto own = [](PJ* made) { return std::unique_ptr<PJ, decltype(&proj_destroy)>(made, proj_destroy); };
  const auto raw = own(proj_create_crs_to_crs(context.get(), "EPSG:4258", call.system.c_str(), nullptr));
  if (raw == nullptr) return refused();
  const auto way = own(proj_normalize_for_visualization(context.get(), raw.get()));  // east before north
  if (way == nullptr) return refused();
  const PJ_COORD degrees = proj_trans(way.get(), PJ_INV, proj_coord(call.x, call.y, 0, 0));
  place.longitude = degrees.lp.lam;
  place.latitude = degrees.lp.phi;
  // True north in the plan, by a step along the meridian.
  constexpr double kStep = 1e-4;
  const PJ_COORD north = proj_trans(way.get(), PJ_FWD, proj_coord(place.longitude, place.latitude + kStep, 0, 0));
  place.convergence = -std::atan2(north.xy.x - call.x, north.xy.y - call.y) / kDegree;
  if (!std::isfinite(place.longitude) || std::abs(place.latitude) > 90 || !std::isfinite(place.convergence))
    return refused();
  return place;
}

/// The sun over the place at a Julian day of universal time.
void lookUp(double day, const SunCall& call, SunPosition& position) {
  const double dynamical = ln_get_jde(day);
  // The library's sun stands in the equinox of 2000, while its sidereal time runs in that of date, and where it is,
  // not where it is seen: light takes 499 seconds.
  constexpr double kLightDays = 499.005 / 86400;
  ln_equ_posn then{}, sun{};
  ln_get_solar_equ_coords(dynamical - kLightDays, &then);
  ln_get_equ_prec(&then, dynamical, &sun);
  ln_lnlat_posn observer{position.longitude, position.latitude};
  ln_hrz_posn seen{};
  ln_get_hrz_from_equ_sidereal_time(&sun, &observer, ln_get_apparent_sidereal_time(day), &seen);
  position.azimuth = wrapped(seen.az + 180);  // the library's is 0 in the south
  constexpr double kParallax = 8.794 / 3600;
  const double alt = seen.alt - kParallax * std::cos(seen.alt * kDegree);
  position.elevation = alt + (alt > -1 ? ln_get_refraction_adj(alt, call.pressureMbar, call.temperatureC) : 0);
}

Result<std::vector<SunPosition>> positions(const SunCall& call) {
  if (!TimeZone::isKnown(call.timeZone))
    return problemOf(Code::WrongUsage,
                     "--time-zone " + call.timeZone + ": no such time zone; give it as Europe/Helsinki");
  const Result<SunPosition> place = placeOf(call);
  if (!place) return place;
  const TimeZone zone(call.timeZone);
  std::vector<SunPosition> all;
  for (const ClockTime& time : call.times) {
    const std::optional<Instant> instant = instantOf(time);
    if (!instant) return problemOf(Code::WrongUsage, "a time is skipped by the clock, or its date is none");
    constexpr double kUnixEpoch = 2440587.5, kSecondsOfDay = 86400;
    SunPosition position = *place;
    lookUp(kUnixEpoch + static_cast<double>(instant->utc) / kSecondsOfDay, call, position);
    position.utcOffsetHours = instant->offsetHours;
    position.shadowDirection = wrapped(270 - (position.azimuth - position.convergence));
    all.push_back(position);
  }
  return all;
}

}  // namespace
}  // namespace host::sun

extern "C" void tolmexSun(const host::sun::SunCall& call,
                          std::optional<host::Result<std::vector<host::sun::SunPosition>>>& answer) {
  answer.emplace(host::sun::positions(call));
}
