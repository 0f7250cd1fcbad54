#include "Import/Systems.h"

#include <algorithm>
#include <cmath>

#include "Text/Text.h"

namespace host::import {
namespace {

constexpr int kFirstZone = 19, kLastZone = 31;
constexpr int kZoneCode = 3854;  // EPSG of GKn less n
constexpr int kTm35Fin = 3067;

OGRSpatialReference systemOfCode(int code) {
  OGRSpatialReference system;
  system.importFromEPSG(code);
  system.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  return system;
}

bool isNorthing(double value) { return value > 6.5e6 && value < 7.9e6; }

}  // namespace

Result<OGRSpatialReference> systemOfName(const std::string& name) {
  const std::string folded = text::toUtf8(text::folded(text::fromUtf8(name)));
  const auto refused = [&name](const std::string& why) {
    return problemOf(Code::WrongUsage, "--crs " + name + ": " + why + "; give it as EPSG:3879, GK25 or TM35FIN");
  };
  if (folded == "tm35fin" || folded == "etrs-tm35fin") return systemOfCode(kTm35Fin);
  const std::size_t gk = folded.starts_with("etrs-gk") ? 7 : folded.starts_with("gk") ? 2 : 0;
  if (gk > 0 && folded.size() == gk + 2) {
    const auto zone = text::parseInteger(folded.substr(gk));
    if (!zone || *zone < kFirstZone || *zone > kLastZone) return refused("the zones are GK19 to GK31");
    return systemOfCode(kZoneCode + static_cast<int>(*zone));
  }
  const bool isCode = !folded.empty() && folded.find_first_not_of("0123456789") == std::string::npos;
  OGRSpatialReference system;
  if (system.SetFromUserInput(isCode ? ("EPSG:" + name).c_str() : name.c_str()) != OGRERR_NONE)
    return refused("no such coordinate system");
  if (!system.IsProjected() || std::abs(system.GetLinearUnits() - 1) > 1e-9)
    return refused("its unit is not the metre");
  system.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  return system;
}

OGRSpatialReference systemOfPlace(double longitude, double latitude) {
  const bool isFinland = longitude > 19 && longitude < 32 && latitude > 59 && latitude < 71;
  if (isFinland)
    return systemOfCode(kZoneCode + std::clamp(static_cast<int>(std::lround(longitude)), kFirstZone, kLastZone));
  constexpr int kUtmNorth = 32600, kUtmSouth = 32700;
  const int zone = std::clamp(static_cast<int>(std::floor((longitude + 180) / 6)) + 1, 1, 60);
  return systemOfCode((latitude < 0 ? kUtmSouth : kUtmNorth) + zone);
}

std::string shownSystem(const OGRSpatialReference& system) {
  const char* const code = system.GetAuthorityCode(nullptr);
  const char* const name = system.GetName();
  return (code != nullptr ? std::string("EPSG:") + code + " " : std::string()) + (name != nullptr ? name : "");
}

std::optional<int> zoneOf(const OGRSpatialReference& system) {
  const char* const code = system.GetAuthorityCode(nullptr);
  const auto number = code != nullptr ? text::parseInteger(code) : std::nullopt;
  if (!number || *number < kZoneCode + kFirstZone || *number > kZoneCode + kLastZone) return std::nullopt;
  return static_cast<int>(*number) - kZoneCode;
}

AxisFault axisFaultOf(const OGRSpatialReference& system, double x, double y) {
  const std::optional<int> zone = zoneOf(system);
  const char* const code = system.GetAuthorityCode(nullptr);
  const bool isTm = code != nullptr && std::string(code) == std::to_string(kTm35Fin);
  if (!zone && !isTm) return {};
  AxisFault fault;
  fault.isSwapped = isNorthing(x) && !isNorthing(y);
  const double easting = fault.isSwapped ? y : x;
  const bool lacksZone = zone && easting > 2e5 && easting < 8e5;
  if (lacksZone) fault.missingEasting = *zone * 1e6;
  return fault;
}

}  // namespace host::import
