// Plans from map data: what `tolmex import` loads and runs.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Problems/Problem.h"
#include "dbmain.h"

namespace host::import {

struct ImportCall {
  std::vector<std::filesystem::path> sources;  // anything that GDAL reads
  std::filesystem::path rules;                 // a file of rules
  std::filesystem::path elements;              // the plug-in's table of what can be made
  std::string system;                          // "EPSG:3879", "GK25", "TM35FIN"; empty: the source's own, or by place
  std::optional<std::array<double, 4>>
      window;                           // x1, y1, x2, y2 in that system: areas are clipped, buildings kept whole
  std::string date;                     // for {date} of the credits; as given
  std::string symbols;                  // folder of symbols as the script names it; empty: no symbols are set
  std::optional<double> shadowDegrees;  // where shadows fall; without it as the rules say
};

/// What was imported: the script that illustrates it, the lines to be shown, what was strange about the data.
struct Imported {
  std::string script;
  std::vector<std::string> report;
  std::vector<std::string> warnings;
  std::string system;               // "EPSG:3879 ETRS89 / GK25FIN"
  std::string credit;               // lines divided by "\n"
  std::array<double, 4> extents{};  // of all that was made
};

/// Fills an empty drawing.
using ImportFunction = void (*)(const ImportCall& call, AcDbDatabase& drawing, std::optional<Result<Imported>>& answer);
/// The function that the library exports.
inline constexpr const char* kImportFunction = "tolmexImport";

}  // namespace host::import
