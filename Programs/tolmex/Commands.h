// The program's calls: what the command line asks for, and carrying it out.
#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Picture/Picture.h"
#include "Problems/Problem.h"
#include "Sun/Sun.h"

namespace tolmex {

/// What several calls take.
struct CommonOptions {
  std::vector<std::filesystem::path> drawings;  // "-": standard input
  std::vector<std::filesystem::path> supportFolders;
  std::vector<std::string> variables;  // NAME=VALUE
  bool quiet = false;
  int jobs = 1;  // drawings worked on at once
};

/// Where results go. With a folder every drawing gives files of its own name there.
struct OutputOptions {
  std::optional<std::filesystem::path> folder;
  std::vector<host::picture::PictureFormat> formats;  // of pictures in the folder or on standard output
};

struct RunOptions : CommonOptions, OutputOptions {
  std::filesystem::path script;       // empty: only `commands`; "-": standard input
  std::vector<std::string> commands;  // script lines given inline, after the script
  bool resume = false;                // drawings whose outputs are there as this call would make them are left
  std::string asGiven;                // the options that change outputs, as the command line has them
  std::optional<std::filesystem::path> report;  // a line of JSON for each drawing
  bool strict = false;                          // what commands skip, or picks do not find, fails the script
  std::optional<std::filesystem::path> out;
  std::vector<std::filesystem::path> pictures;
  host::picture::PictureOptions picture;  // of those; Model stands for the layout that is current then
};

struct PictureCallOptions : CommonOptions, OutputOptions {
  std::filesystem::path out;  // used without a folder
  host::picture::PictureOptions picture;
};

struct InfoOptions : CommonOptions {
  bool json = false;
  std::filesystem::path repaired;  // where a repaired copy is written; empty: nowhere
};

struct ImportOptions : CommonOptions {  // `drawings` are the sources
  std::filesystem::path plan;           // the drawing that is made
  std::string rules;                    // a name of shipped rules, or a file
  std::string system, date, symbols;
  std::optional<std::array<double, 4>> window;
  std::optional<double> shadowDegrees;
  bool illustrate = false;
  std::optional<std::filesystem::path> scriptOut;
  std::vector<std::filesystem::path> pictures;
  host::picture::PictureOptions picture;  // of those; a sheet gets the credits and the coordinate system
};

struct SunOptions : CommonOptions {  // `drawings` is the plan
  std::vector<host::sun::ClockTime> times;
  std::string timeZone = "Europe/Helsinki";
  std::string system;                          // of the plan; empty: by its coordinates
  std::optional<std::array<double, 2>> place;  // latitude, longitude in degrees, in the place of a system
  std::filesystem::path folder;
  host::picture::PictureOptions picture;
};

/// Each answers the exit status; problems have then been printed to standard error.
int runDrawings(const RunOptions& options);
/// Commands typed at a terminal, or read from a pipe; the first drawing only, a new one without any.
int runShell(const RunOptions& options);
int pictureDrawings(const PictureCallOptions& options);
int describeDrawings(const InfoOptions& options);
int importPlan(const ImportOptions& options);
int studySun(const SunOptions& options);

/// One picture to be made: "-" is standard output.
struct PictureFile {
  std::filesystem::path file;
  host::picture::PictureFormat format;
};
/// The picture of this name; the formats tell that of standard output (PNG without any). Refuses names without an
/// ending that names a format, and those that contradict the formats.
host::Result<PictureFile> pictureFile(const std::filesystem::path& file,
                                      const std::vector<host::picture::PictureFormat>& formats);
/// The same pictures, when the options go with their formats and this program can make them.
host::Result<std::vector<PictureFile>> fitting(std::vector<PictureFile> pictures,
                                               const host::picture::PictureOptions& options);
/// "out/plan.png" for "plans/plan.dxf".
std::filesystem::path outputIn(const std::filesystem::path& folder, const std::filesystem::path& drawing,
                               std::string_view ending);
std::string_view endingOf(host::picture::PictureFormat format);

/// Refuses the first that is not NAME=VALUE.
host::Result<> checkVariables(const std::vector<std::string>& variables);

/// Draws one file; a remark on the picture is printed. Sheets and texts of legends are looked for in the folders, too.
host::Result<> writePicture(const host::database::DrawingDatabase& drawing, host::picture::PictureOptions options,
                            const PictureFile& picture, const std::vector<std::filesystem::path>& folders);

struct BatchResult;
/// Hears of a result, with the place of its drawing among all; answers what its line says besides.
using TakeResult = std::function<std::string(std::size_t, const BatchResult&)>;
/// A job of its own for every drawing; several end with a line each. One drawing is worked on right here unless it
/// `wantsWorker`.
int forEachDrawing(const CommonOptions& options, host::RunStatus crashStatus,
                   const std::function<int(std::size_t)>& work, const TakeResult& take = {}, bool wantsWorker = false);

}  // namespace tolmex
