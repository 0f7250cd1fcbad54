#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <sstream>

#include "Commands.h"
#include "Console.h"
#include "Desktop.h"
#include "Editor/Answers.h"
#include "Platform/Paths.h"
#include "Platform/Streams.h"
#include "Text/Text.h"

namespace tolmex {

using host::RunStatus;
using host::picture::PictureOptions;

namespace {

constexpr int kMostJobs = 256;

constexpr const char* kExitStatus =
    "Exit status: 0 done, 1 wrong usage, 2 a drawing could not be read, 3 the script failed,\n"
    "4 an output could not be written. With several drawings the highest of any.\n"
    "Ctrl+C stops within a second: run ends with 3, picture with 4; old files stay whole.";

constexpr const char* kExamples =
    "Examples:\n"
    "  tolmex run plan.dxf --script yard.scr --out new.dxf --picture new.png\n"
    "  tolmex run plans/*.dxf --script yard.scr --out-dir new --format pdf --jobs 4\n"
    "  tolmex run - --command TLM_VARJO_PAIVITA --out - < plan.dxf > new.dxf\n"
    "  tolmex picture plan.dxf plan.pdf --paper A3 --scale 1:500\n"
    "  tolmex info *.dxf --json\n"
    "  tolmex shell plan.dxf";

constexpr const char* kRunExamples =
    "Examples:\n"
    "  tolmex run plan.dxf --script yard.scr --out new.dxf --picture new.png --picture new.pdf\n"
    "  tolmex run plan.dxf --command TLM_MUOK_ASFALTTI --command ALL --command \"\" --picture new.png\n"
    "  tolmex run plans/*.dxf --script yard.scr --out-dir new --format png --jobs 4\n"
    "  tolmex run plan.dwg --out plan.dxf\n"
    "  tolmex run - --script yard.scr --out - < plan.dxf > new.dxf";

constexpr const char* kShellNotes =
    "HELP lists the commands, Tab completes their names, Up and Down go through the history,\n"
    "Esc or Ctrl+C cancels, an empty line repeats the last command, U takes it back, Ctrl+D or\n"
    "QUIT leaves. While a dialog is open every line is one action on it; LIST prints its controls.";

constexpr const char* kPictureExamples =
    "Examples:\n"
    "  tolmex picture plan.dxf plan.png --width 3000\n"
    "  tolmex picture plan.dxf plan.pdf --paper A3-landscape --scale 1:500\n"
    "  tolmex picture plan.dxf yard.svg --window 0,0,80,60 --layers \"tm?_*\" --background transparent\n"
    "  tolmex picture plans/*.dxf --out-dir pictures --format png --format pdf\n"
    "  tolmex picture plan.dxf plan.pdf --sheet A3-kaava --scale 1:500 --field \"OTSIKKO=Koivukuja 3\"\n"
    "  tolmex picture plan.dxf - --format svg > plan.svg";

constexpr const char* kInfoExamples =
    "Examples:\n"
    "  tolmex info plan.dxf\n"
    "  tolmex info damaged.dxf --repair mended.dxf\n"
    "  tolmex info plans/*.dxf --json --jobs 4 > plans.json";

/// Options that name files: their texts are UTF-8 on every system.
CLI::Option* addFile(CLI::App& call, const std::string& name, std::filesystem::path& file, const char* description) {
  return call.add_option_function<std::string>(
      name, [&file](const std::string& text) { file = host::platform::pathOf(text); }, description);
}
CLI::Option* addFile(CLI::App& call, const std::string& name, std::optional<std::filesystem::path>& file,
                     const char* description) {
  return call.add_option_function<std::string>(
      name, [&file](const std::string& text) { file = host::platform::pathOf(text); }, description);
}
CLI::Option* addFiles(CLI::App& call, const std::string& name, std::vector<std::filesystem::path>& files,
                      const char* description) {
  return call.add_option_function<std::vector<std::string>>(
      name,
      [&files](const std::vector<std::string>& texts) {
        for (const std::string& text : texts) files.push_back(host::platform::pathOf(text));
      },
      description);
}

std::string footer(const char* text) { return std::string(text) + "\n\n" + kExitStatus; }

void addDrawings(CLI::App& call, std::vector<std::filesystem::path>& drawings, const char* description) {
  addFiles(call, "PLAN", drawings, description)->type_name("FILE")->check([](const std::string& name) {
    return name.empty() ? std::string("a file name is empty") : std::string();
  });
}

void addFormats(CLI::App& call, OutputOptions& options) {
  call.add_option_function<std::vector<std::string>>(
          "--format",
          [&options](const std::vector<std::string>& names) {
            for (const std::string& name : names) {
              const auto format = host::picture::formatOfFile("." + name);
              if (!format)
                throw CLI::ValidationError("--format",
                                           "\"" + name + "\" is no picture format; use png, svg, pdf, tif or html");
              if (std::find(options.formats.begin(), options.formats.end(), *format) == options.formats.end())
                options.formats.push_back(*format);
            }
          },
          "format of the pictures in the folder or on standard output; may be given more than once")
      ->type_name("png|svg|pdf|tif|html")
      ->allow_extra_args(false);
}

void addJobs(CLI::App& call, CommonOptions& options) {
  call.add_option_function<std::string>(
          "--jobs",
          [&options](const std::string& text) {
            const auto count = host::editor::parseWhole(host::text::fromUtf8(text));
            if (!count || *count < 1 || *count > kMostJobs)
              throw CLI::ValidationError(
                  "--jobs", "\"" + text + "\" is not a whole number from 1 to " + std::to_string(kMostJobs));
            options.jobs = static_cast<int>(*count);
          },
          "how many drawings are worked on at once [1]")
      ->type_name("N");
}

void addSupport(CLI::App& call, CommonOptions& options) {
  addFiles(call, "--support", options.supportFolders,
           "a folder with tolm.ini, orvpath.cfg, linetype and pattern files; may be given more than once")
      ->type_name("DIR")
      ->allow_extra_args(false)
      ->check([](const std::string& name) {
        std::error_code error;
        const auto status = std::filesystem::status(host::platform::pathOf(name), error);
        if (!std::filesystem::exists(status)) return "Directory does not exist: " + name;
        return std::filesystem::is_directory(status) ? std::string() : "Directory is actually a file: " + name;
      });
}

void addVariables(CLI::App& call, CommonOptions& options) {
  call.add_option("--set", options.variables, "sets a system variable first; may be given more than once")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
}

void addRunOutputs(CLI::App& call, RunOptions& options) {
  addFile(call, "--out", options.out, "where the drawing is saved, - for standard output; without it nothing is saved")
      ->type_name("FILE");
  addFiles(call, "--picture", options.pictures,
           "a picture of the result, .png, .svg, .pdf, .tif or .html; may be given more than once")
      ->type_name("FILE")
      ->allow_extra_args(false);
}

/// The options of the picture module, or only some; its sentences become usage errors.
void addPictureOptions(CLI::App& call, PictureOptions& options, std::initializer_list<std::string_view> only = {}) {
  for (const host::picture::OptionRow& row : host::picture::optionRows()) {
    if (only.size() > 0 && std::ranges::find(only, row.name) == only.end()) continue;
    const std::string name(row.name);
    const auto read = [&options, &row, name](const std::string& value) {
      if (const host::Result<> set = row.read(options, value); !set) throw CLI::ValidationError(name, set.message());
    };
    if (row.form.empty()) {
      call.add_flag_callback(
          name, [read] { read({}); }, std::string(row.description));
    } else if (row.mayRepeat) {
      call.add_option_function<std::vector<std::string>>(
              name, [read](const std::vector<std::string>& values) { std::ranges::for_each(values, read); },
              std::string(row.description))
          ->type_name(std::string(row.form))
          ->allow_extra_args(false);
    } else {
      call.add_option_function<std::string>(name, read, std::string(row.description))->type_name(std::string(row.form));
    }
  }
}

void checkPictureOptions(const PictureOptions& options) {
  if (const host::Result<> fit = host::picture::checkOptions(options); !fit) throw CLI::ValidationError(fit.message());
}

constexpr const char* kQuietText = "do not print what the command line would show";

/// The options that were given, without those that only say how the work is done.
std::string optionsAsGiven(const CLI::App& call) {
  std::string all = TOLMEX_VERSION;
  for (const CLI::Option* option : call.get_options()) {
    const std::string name = option->get_name();
    constexpr std::array kOfTheWork = {"PLAN", "--jobs", "--report", "--resume", "--quiet"};
    if (option->count() == 0 || std::find(kOfTheWork.begin(), kOfTheWork.end(), name) != kOfTheWork.end()) continue;
    all += "\n" + name;
    for (const std::string& value : option->results()) all += "\t" + value;
  }
  return all;
}

void addRun(CLI::App& app, RunOptions& options, int& status) {
  CLI::App* const call = app.add_subcommand("run", "run a script on drawings, save them, draw pictures of them");
  addDrawings(*call, options.drawings, "the drawings, DXF or DWG files; - for standard input");
  addFile(*call, "--script", options.script, "the script: commands and answers, as typed; - for standard input")
      ->type_name("FILE");
  call->add_option("--command", options.commands, "a line of script; may be given more than once, after --script")
      ->type_name("LINE")
      ->allow_extra_args(false);
  addRunOutputs(*call, options);
  addFile(*call, "--out-dir", options.folder, "the folder where drawings are saved under their own names")
      ->type_name("DIR")
      ->excludes("--out");
  addFormats(*call, options);
  addJobs(*call, options);
  addPictureOptions(*call, options.picture);
  addVariables(*call, options);
  addSupport(*call, options);
  call->add_flag(
      "--resume", options.resume,
      "leave drawings whose outputs are there, made by the same script and options from a drawing that has not "
      "changed since");
  call->add_option("--report", options.report, "a line of JSON for each drawing: result, seconds, outputs, messages")
      ->type_name("FILE");
  call->add_flag("--strict", options.strict,
                 "fail, with status 3, when a command skips an object or a pick finds nothing");
  call->add_flag("--quiet", options.quiet, kQuietText);
  call->footer(footer(kRunExamples));
  call->callback([&options, &status, call] {
    if (options.drawings.empty()) throw CLI::RequiredError("PLAN");
    // Without a script the drawing is only converted, or drawn.
    const bool hasOutput = options.out || options.folder || !options.pictures.empty();
    if (options.script.empty() && options.commands.empty() && !hasOutput)
      throw CLI::RequiredError("--script, --command or an output (--out, --out-dir, --picture)");
    checkPictureOptions(options.picture);
    options.asGiven = optionsAsGiven(*call);
    status = runDrawings(options);
  });
}

void addShell(CLI::App& app, RunOptions& options, int& status) {
  CLI::App* const call = app.add_subcommand("shell", "type commands at a terminal");
  addDrawings(*call, options.drawings, "the drawing, a DXF or DWG file; without one a new drawing");
  addRunOutputs(*call, options);
  addVariables(*call, options);
  addSupport(*call, options);
  call->add_flag("--quiet", options.quiet, kQuietText);
  call->footer(footer(kShellNotes));
  call->callback([&] {
    if (options.drawings.size() > 1) throw CLI::ValidationError("PLAN", "shell works on one drawing");
    status = runShell(options);
  });
}

void addPicture(CLI::App& app, PictureCallOptions& options, int& status) {
  CLI::App* const call = app.add_subcommand("picture", "draw pictures of drawings as they are");
  addDrawings(
      *call, options.drawings,
      "the drawing, then OUT, the picture: .png, .svg, .pdf, .tif or .html (- for standard input and output); with "
      "--out-dir drawings only");
  addFile(*call, "--out-dir", options.folder, "the folder where pictures get their drawings' names")->type_name("DIR");
  addFormats(*call, options);
  addJobs(*call, options);
  addPictureOptions(*call, options.picture);
  addVariables(*call, options);
  addSupport(*call, options);
  call->add_flag("--quiet", options.quiet, kQuietText);
  call->footer(footer(kPictureExamples));
  call->callback([&] {
    if (options.drawings.empty()) throw CLI::RequiredError("PLAN");
    if (!options.folder) {
      if (options.drawings.size() < 2) throw CLI::RequiredError("OUT, the name of the picture, or --out-dir DIR");
      if (options.drawings.size() > 2) throw CLI::ValidationError("PLAN", "several drawings need --out-dir DIR");
      options.out = options.drawings.back();
      options.drawings.pop_back();
    }
    checkPictureOptions(options.picture);
    status = pictureDrawings(options);
  });
}

void addInfo(CLI::App& app, InfoOptions& options, int& status) {
  CLI::App* const call = app.add_subcommand("info", "say which elements drawings have and what is wrong with them");
  addDrawings(*call, options.drawings, "the drawings, DXF or DWG files; - for standard input");
  call->add_flag("--json", options.json, "one JSON document for all drawings, described in docs/info-json.md");
  addFile(*call, "--repair", options.repaired, "write a repaired copy of the drawing there; never over the drawing")
      ->type_name("OUT.dxf");
  addJobs(*call, options);
  call->add_flag("--quiet", options.quiet, kQuietText);
  call->footer(footer(kInfoExamples));
  call->callback([&] {
    if (options.drawings.empty()) throw CLI::RequiredError("PLAN");
    status = describeDrawings(options);
  });
}

constexpr const char* kDesktopExamples =
    "Examples:\n"
    "  tolmex desktop\n"
    "  tolmex desktop plan.dxf yard.dxf --language en\n"
    "  tolmex desktop plan.dxf --script yard.scr --geometry 1366x768";

void addDesktop(CLI::App& app, DesktopCallOptions& options, int& status) {
  CLI::App* const call = app.add_subcommand("desktop", "open the window");
  addDrawings(*call, options.drawings, "the drawings, DXF or DWG files; without one the start page");
  addFile(*call, "--script", options.script, "a script that runs in the window's sight first")->type_name("FILE");
  call->add_option("--language", options.language, "language of the window [by the locale]")
      ->type_name("fi|en")
      ->check([](const std::string& name) {
        return name == "fi" || name == "en" ? std::string()
                                            : "\"" + name + "\" is no language of the window; use fi or en";
      });
  call->add_option("--geometry", options.geometry, "size of the window [as it was left]")
      ->type_name("WxH")
      ->check([](const std::string& size) {
        const std::size_t cross = size.find('x');
        const auto isSide = [](const std::string& side) {
          return !side.empty() && side.size() < 6 && side.find_first_not_of("0123456789") == std::string::npos;
        };
        const bool isGood =
            cross != std::string::npos && isSide(size.substr(0, cross)) && isSide(size.substr(cross + 1));
        return isGood ? std::string() : "\"" + size + "\" is no size of a window; give it as 1366x768";
      });
  addVariables(*call, options);
  addSupport(*call, options);
  call->footer(kDesktopExamples);
  call->callback([&] { status = runDesktop(options); });
}

constexpr const char* kImportExamples =
    "Examples:\n"
    "  tolmex import town.geojson plan.dxf --rules osm\n"
    "  tolmex import town.gpkg plan.dxf --rules mtk --crs GK25 --window 25496000,6672000,25497000,6673000\n"
    "  tolmex import town.osm.pbf plan.dxf --rules my.json --illustrate --picture plan.png";

/// Calls `take` with the text of an option, and makes its sentence, if it has one, the usage error.
void addReadOption(CLI::App& call, const std::string& name, const std::function<std::string(const std::string&)>& take,
                   const std::string& form, const std::string& description) {
  call.add_option_function<std::string>(
          name,
          [name, take](const std::string& text) {
            if (const std::string why = take(text); !why.empty()) throw CLI::ValidationError(name, why);
          },
          description)
      ->type_name(form);
}

std::string readWindow(const std::string& text, std::optional<std::array<double, 4>>& window) {
  PictureOptions picture;
  if (const host::Result<> set = host::picture::setWindow(picture, text); !set) return set.message();
  const auto& box = *picture.window;
  window = {box.minX, box.minY, box.maxX, box.maxY};
  return {};
}

std::string readDegrees(const std::string& text, std::optional<double>& degrees) {
  degrees = host::editor::parseNumber(host::text::fromUtf8(text));
  return degrees ? std::string() : "\"" + text + "\" is no number of degrees";
}

void addImport(CLI::App& app, ImportOptions& options, int& status) {
  CLI::App* const call = app.add_subcommand("import", "make a plan from map data, and the script that illustrates it");
  addDrawings(*call, options.drawings,
              "the sources, whatever GDAL reads: GeoJSON, GeoPackage, GML, Shapefile, OSM; then PLAN.dxf, the plan");
  call->add_option("--rules", options.rules, "what becomes of what: osm, mtk, kanta, or a file of your own")
      ->type_name("NAME|FILE")
      ->required();
  call->add_option("--crs", options.system, "coordinate system of the plan: EPSG:3879, GK25, TM35FIN [the source's]")
      ->type_name("NAME");
  addReadOption(
      *call, "--window", [&options](const std::string& text) { return readWindow(text, options.window); },
      "x1,y1,x2,y2", "the part to take, in that system; areas are clipped there, buildings are not");
  addReadOption(
      *call, "--direction", [&options](const std::string& text) { return readDegrees(text, options.shadowDegrees); },
      "DEGREES", "where shadows fall, counter-clockwise from the east [the rules say; 45]");
  call->add_option("--date", options.date, "month of delivery, for {date} in the credits")->type_name("TEXT");
  call->add_option("--symbols", options.symbols, "folder of symbols on the support path; without it none are set")
      ->type_name("DIR");
  call->add_flag("--illustrate", options.illustrate, "run the script at once: the plan comes illustrated");
  call->add_option("--script-out", options.scriptOut, "where the script goes [PLAN.scr; with --illustrate nowhere]")
      ->type_name("FILE");
  call->add_option("--picture", options.pictures, "a picture of the plan; may be given more than once")
      ->type_name("FILE")
      ->allow_extra_args(false);
  addPictureOptions(*call, options.picture, {"--sheet", "--field", "--legend", "--scale"});
  addVariables(*call, options);
  addSupport(*call, options);
  call->add_flag("--quiet", options.quiet, kQuietText);
  call->footer(footer(kImportExamples));
  call->callback([&] {
    if (options.drawings.size() < 2) throw CLI::RequiredError("SOURCE and PLAN.dxf");
    checkPictureOptions(options.picture);
    options.plan = options.drawings.back();
    options.drawings.pop_back();
    status = importPlan(options);
  });
}

constexpr const char* kSunExamples =
    "Examples:\n"
    "  tolmex sun plan.dxf --date 2026-03-20 --times 9,12,15,18 --out-dir study\n"
    "  tolmex sun plan.dxf --date 2026-06-21 --times 8:30,16 --crs EPSG:3879 --out-dir study";

std::vector<std::string> partsOf(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

/// A whole number between two; -1 for others.
int numberIn(const std::string& text, int least, int most) {
  const auto number = host::editor::parseWhole(host::text::fromUtf8(text));
  return number && *number >= least && *number <= most ? static_cast<int>(*number) : -1;
}

std::string readDate(const std::string& text, host::sun::ClockTime& day) {
  const std::vector<std::string> parts = partsOf(text, '-');
  if (parts.size() == 3) {
    day.year = numberIn(parts[0], 1900, 2100);
    day.month = numberIn(parts[1], 1, 12);
    day.day = numberIn(parts[2], 1, 31);
    if (day.year > 0 && day.month > 0 && day.day > 0) return {};
  }
  return "\"" + text + "\" is no date; give it as 2026-03-20";
}

std::string readTimes(const std::string& text, std::vector<host::sun::ClockTime>& times) {
  for (const std::string& each : partsOf(text, ',')) {
    const std::vector<std::string> parts = partsOf(each, ':');
    host::sun::ClockTime time;
    time.hour = parts.empty() || parts.size() > 2 ? -1 : numberIn(parts[0], 0, 23);
    time.minute = parts.size() == 2 ? numberIn(parts[1], 0, 59) : 0;
    if (time.hour < 0 || time.minute < 0) return "\"" + each + "\" is no time; give them as 9,12:30,15";
    const bool isNew = std::none_of(times.begin(), times.end(), [&time](const host::sun::ClockTime& other) {
      return other.hour == time.hour && other.minute == time.minute;
    });
    if (isNew) times.push_back(time);
  }
  return times.empty() ? "there is no time in it" : std::string();
}

std::string readPlace(const std::string& text, std::optional<std::array<double, 2>>& place) {
  const std::vector<std::string> parts = partsOf(text, ',');
  if (parts.size() == 2) {
    const auto latitude = host::editor::parseNumber(host::text::fromUtf8(parts[0]));
    const auto longitude = host::editor::parseNumber(host::text::fromUtf8(parts[1]));
    if (latitude && longitude && std::abs(*latitude) <= 90 && std::abs(*longitude) <= 180) {
      place = {*latitude, *longitude};
      return {};
    }
  }
  return "\"" + text + "\" is no place; give latitude and longitude as 60.17,24.94";
}

void addSun(CLI::App& app, SunOptions& options, int& status) {
  CLI::App* const call = app.add_subcommand("sun", "a shadow study: how shadows fall at times of a day");
  addDrawings(*call, options.drawings, "the plan, with buildings; it stays as it is");
  auto day = std::make_shared<host::sun::ClockTime>();
  addReadOption(
      *call, "--date", [day](const std::string& text) { return readDate(text, *day); }, "YYYY-MM-DD", "the day");
  addReadOption(
      *call, "--times", [&options](const std::string& text) { return readTimes(text, options.times); }, "H,H:MM,...",
      "times of that day by the clock");
  call->get_option("--date")->required();
  call->get_option("--times")->required();
  call->add_option("--time-zone", options.timeZone, "whose clock it is [Europe/Helsinki]")->type_name("NAME");
  call->add_option("--crs", options.system, "coordinate system of the plan, as EPSG:3879 [by its coordinates]")
      ->type_name("NAME");
  addReadOption(
      *call, "--place", [&options](const std::string& text) { return readPlace(text, options.place); }, "LAT,LON",
      "where the plan lies, if its coordinates do not tell; its north is true north");
  call->get_option("--place")->excludes("--crs");
  call->add_option("--out-dir", options.folder, "the folder of the pictures and the sheet of all")
      ->type_name("DIR")
      ->required();
  addPictureOptions(*call, options.picture, {"--width", "--window"});
  addVariables(*call, options);
  addSupport(*call, options);
  call->add_flag("--quiet", options.quiet, kQuietText);
  call->footer(footer(kSunExamples));
  call->callback([&options, &status, day] {
    if (options.drawings.empty()) throw CLI::RequiredError("PLAN");
    if (options.drawings.size() > 1) throw CLI::ValidationError("PLAN", "sun works on one drawing");
    for (host::sun::ClockTime& time : options.times) {
      time.year = day->year;
      time.month = day->month;
      time.day = day->day;
    }
    status = studySun(options);
  });
}

/// The library would say of a misspelt option only that it was not expected.
void checkOptions(const CLI::App& call, const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    if (argument == "--") return;
    const std::string name = argument.substr(0, argument.find('='));
    if (!name.starts_with("--") || call.get_option_no_throw(name) != nullptr) continue;
    std::vector<std::wstring> known;
    for (const CLI::Option* option : call.get_options()) {
      for (const std::string& each : option->get_lnames()) known.push_back(host::text::fromUtf8(each));
    }
    std::string hint;
    for (const std::wstring& candidate : host::editor::nearestNames(host::text::fromUtf8(name.substr(2)), known))
      hint += (hint.empty() ? "; nearest: --" : ", --") + host::text::toUtf8(candidate);
    throw CLI::ValidationError(name, "No such option of " + call.get_name() + hint);
  }
}

/// The library would say of a misspelt call that it is missing.
void checkCall(const CLI::App& app, const std::vector<std::string>& arguments) {
  if (arguments.size() < 2 || arguments[1].starts_with('-')) return;
  const auto calls = app.get_subcommands(nullptr);
  const auto call =
      std::find_if(calls.begin(), calls.end(), [&](const CLI::App* each) { return each->get_name() == arguments[1]; });
  if (call == calls.end())
    throw CLI::ValidationError(arguments[1],
                               "No such call; the calls are run, shell, picture, info, import, sun and desktop");
  checkOptions(**call, {arguments.begin() + 2, arguments.end()});
}

}  // namespace

int runCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app("Illustrates land-use plans: hatched areas, hedges, fences, parking rows, without a CAD program.",
               "tolmex");
  app.allow_windows_style_options(false);  // "/plans/yard.dxf" is a file on every system
  app.set_version_flag("--version", "tolmex " TOLMEX_VERSION);
  app.footer(footer(kExamples));
  app.require_subcommand(1);
  int status = 0;
  RunOptions run, shell;
  PictureCallOptions picture;
  InfoOptions info;
  DesktopCallOptions desktop;
  ImportOptions source;
  SunOptions sun;
  addRun(app, run, status);
  addShell(app, shell, status);
  addPicture(app, picture, status);
  addInfo(app, info, status);
  addImport(app, source, status);
  addSun(app, sun, status);
  addDesktop(app, desktop, status);
  try {
    checkCall(app, arguments);
    // The library takes them from the last to the first.
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    if (!reversed.empty()) reversed.pop_back();
    app.parse(std::move(reversed));
  } catch (const CLI::ParseError& error) {
    // Messages show arguments as they were given, and a shell's pattern gives names of files. Help and version are no
    // errors; everything else is wrong usage, whatever number the library gives it.
    std::ostringstream out, err;
    const int number = app.exit(error, out, err);
    const auto print = [](const std::ostringstream& text, std::FILE* stream) {
      std::fputs(host::text::printable(text.str(), host::text::LineFeeds::Stay).c_str(), stream);
    };
    print(out, stdout);
    print(err, stderr);
    return number == 0 ? 0 : static_cast<int>(RunStatus::WrongUsage);
  }
  if ((std::fflush(stdout) != 0 || std::ferror(stdout) != 0) && !host::platform::readerLeft())
    return std::max(status, complain(RunStatus::OutputFailed, "standard output cannot be written"));
  return status;
}

}  // namespace tolmex
