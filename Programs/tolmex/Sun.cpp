// `tolmex sun`: how shadows fall at times of a day, a picture each and a sheet of all.
#include "Sun/Sun.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <numbers>

#include "Commands.h"
#include "Console.h"
#include "ContactSheet.h"
#include "DrawingInfo.h"
#include "Editor/ScriptInput.h"
#include "GeoReference.h"
#include "Geometry/EntityPaths.h"
#include "Inputs.h"
#include "Interruption.h"
#include "LateLibrary.h"
#include "Outputs.h"
#include "PlanSession.h"
#include "Text/Text.h"
#include "Text/WideFormat.h"
#include "dbapserv.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Result;
using host::RunStatus;
using host::geometry::Box;
using host::sun::SunPosition;

namespace {

constexpr const char* kLibrary = "tolmexsun";
constexpr double kLeastElevation = 3;  // degrees: lower suns make shadows longer than plans
constexpr double kUsualFloorHeight = 3.0;
constexpr double kMargin = 0.05;  // of the pictures, of the plan's size

double tangent(double degrees) { return std::tan(degrees * std::numbers::pi / 180); }

std::string fixed(double value, int decimals) {
  return host::text::toUtf8(host::text::formatWide(L"%.*f", decimals, value));
}

/// Finnish: a comma, as on sheets.
std::string shown(double value, int decimals) {
  std::string text = fixed(value, decimals);
  std::replace(text.begin(), text.end(), '.', ',');
  return text;
}

std::string clockText(const host::sun::ClockTime& time) {
  return host::text::toUtf8(host::text::formatWide(L"%02d:%02d", time.hour, time.minute));
}

/// What the study needs to know of the plan.
struct Plan {
  Box extents;
  std::string system;  // as the drawing tells it
  double floorHeight = kUsualFloorHeight;
  std::size_t otherFloorHeights = 0;  // buildings whose floors are not so high
  bool hasBuildings = false;
  std::map<double, std::vector<std::uint64_t>> fences;  // by height
};

Plan lookAt(AcDbDatabase& database) {
  const DrawingInfo info = lookThrough(database, false);
  Plan plan;
  plan.extents = host::geometry::blockExtents(database.hostDatabase(), database.hostDatabase().modelSpace());
  plan.system = systemOfDrawing(database.hostDatabase());
  plan.hasBuildings = !info.buildings.empty();
  std::map<double, std::size_t> heights;
  for (const BuildingValues& building : info.buildings) {
    const auto height = host::text::parseReal(building.floorHeight);
    if (height && *height > 0) ++heights[*height];
  }
  const auto most = std::max_element(heights.begin(), heights.end(),
                                     [](const auto& a, const auto& b) { return a.second < b.second; });
  if (most != heights.end()) plan.floorHeight = most->first;
  for (const auto& [height, count] : heights) plan.otherFloorHeights += height != plan.floorHeight ? count : 0;
  for (const auto category : {OrvLib::Category::BoardFence, OrvLib::Category::StoneFence}) {
    for (const ElementInfo& fence : info.elements[static_cast<std::size_t>(category)]) {
      const auto height = host::text::parseReal(fence.height);
      if (height && *height > 0) plan.fences[*height].push_back(fence.handle);
    }
  }
  return plan;
}

/// What users would type: courtyards' seams, fences, the dialog, whose OK draws all shadows anew.
std::string scriptOf(const Plan& plan, const SunPosition& sun) {
  const double reach = 1 / tangent(sun.elevation);
  const std::string direction = fixed(sun.shadowDirection, 4);
  std::string script;
  if (plan.hasBuildings) script += "SEAM\nKIND Rakennus\n\n" + direction + "\n";
  for (const auto& [height, fences] : plan.fences) {
    script += "TLM_ASETA_KORKEUS\n";
    for (const std::uint64_t handle : fences) script += "(handent \"" + host::text::formatHandle(handle) + "\")\n";
    script += "\n" + fixed(height * reach, 4) + "\n";
  }
  return script + "TLM_VARJO_OMINAISUUDET\n30216 " + direction + "\n30217 " + fixed(plan.floorHeight * reach, 4) +
         "\nOK\n";
}

class Study {
 public:
  Study(const SunOptions& options, host::sun::SunFunction whereIsTheSun)
      : options_(options), whereIsTheSun_(whereIsTheSun) {}

  int make() {
    Result<Plan> plan = readPlan();
    if (!plan) return sayUnopened(plan.problem());
    Result<std::vector<SunPosition>> suns = lookUp(*plan);
    if (!suns) return complain(suns.problem());
    if (plan->otherFloorHeights > 0)
      complain(RunStatus::Done, std::to_string(plan->otherFloorHeights) + " buildings have other floor heights than " +
                                    fixed(plan->floorHeight, 2) + " m; their shadows are those of " +
                                    fixed(plan->floorHeight, 2) + " m a floor");
    for (std::size_t i = 0; i < suns->size(); ++i) {
      if (Interruption::isAsked()) return sayInterrupted();
      const RunStatus status = makeOne(*plan, options_.times[i], (*suns)[i]);
      if (status != RunStatus::Done) return static_cast<int>(status);
    }
    sheet_.title = options_.drawings.front().stem().string();
    sheet_.notes.push_back("Auringon paikka: " + shown(std::abs((*suns)[0].latitude), 4) + "° " +
                           ((*suns)[0].latitude < 0 ? "S" : "N") + ", " + shown(std::abs((*suns)[0].longitude), 4) +
                           "° " + ((*suns)[0].longitude < 0 ? "W" : "E") + ". Kellonajat: " + options_.timeZone + ".");
    sheet_.notes.push_back("Varjon pituus on " + shown(plan->floorHeight, 1) +
                           " m kerrosta kohti / tan(korkeus); suunta karttapohjoisen mukaan, napaluvun korjaus " +
                           shown((*suns)[0].convergence, 3) + "°.");
    const Result<> written = writeOutput(options_.folder / (stem() + ".svg"), contactSheet(sheet_));
    return written ? 0 : complain(written.problem());
  }

  /// Names of all files that the study writes.
  static std::vector<fs::path> files(const SunOptions& options) {
    std::vector<fs::path> all;
    const Study study(options, nullptr);
    for (const host::sun::ClockTime& time : options.times) all.push_back(study.pictureOf(time));
    all.push_back(options.folder / (study.stem() + ".svg"));
    return all;
  }

 private:
  std::string stem() const {
    const host::sun::ClockTime& day = options_.times.front();
    return options_.drawings.front().stem().string() +
           host::text::toUtf8(host::text::formatWide(L"-%04d-%02d-%02d", day.year, day.month, day.day));
  }
  fs::path pictureOf(const host::sun::ClockTime& time) const {
    return options_.folder /
           (stem() + host::text::toUtf8(host::text::formatWide(L"-%02d%02d.png", time.hour, time.minute)));
  }

  static int sayInterrupted() {
    complain(RunStatus::ScriptFailed, "interrupted");
    return static_cast<int>(RunStatus::ScriptFailed);
  }

  RunOptions runOptions() const {
    RunOptions run;
    static_cast<CommonOptions&>(run) = options_;
    return run;
  }

  Result<Plan> readPlan() {
    const RunOptions run = runOptions();
    ProblemPrinter screen;
    host::editor::ApplicationOptions settings;
    settings.observer = &screen;
    PlanSession session(run, settings);
    if (const Result<> opened = session.open(options_.drawings.front()); !opened) return opened;
    Plan plan = lookAt(*acdbHostApplicationServices()->workingDatabase());
    if (plan.extents.isEmpty())
      return host::problemOf(host::Code::PictureEmpty, options_.drawings.front().string(), "nothing is drawn in it");
    return plan;
  }

  Result<std::vector<SunPosition>> lookUp(const Plan& plan) const {
    host::sun::SunCall call;
    call.times = options_.times;
    call.timeZone = options_.timeZone;
    call.system = options_.system;
    call.x = (plan.extents.minX + plan.extents.maxX) / 2;
    call.y = (plan.extents.minY + plan.extents.maxY) / 2;
    if (options_.place) {
      call.system.clear();
      call.y = options_.place->at(0);
      call.x = options_.place->at(1);
    } else if (call.system.empty()) {
      call.system = !plan.system.empty() ? plan.system : systemByCoordinates(plan.extents);
      if (call.system.empty())
        return host::problemOf(
            host::Code::WrongUsage,
            "the plan's coordinates do not tell where it lies; give --crs EPSG:3879 or --place 60.17,24.94");
    }
    std::optional<Result<std::vector<SunPosition>>> answer;
    whereIsTheSun_(call, answer);
    return *answer;
  }

  RunStatus makeOne(const Plan& plan, const host::sun::ClockTime& time, const SunPosition& sun) {
    ContactSheet::Cell cell;
    cell.title = "klo " + clockText(time);
    cell.lines.push_back("aurinko: suunta " + shown(sun.azimuth, 1) + "°, korkeus " + shown(sun.elevation, 1) + "°");
    if (sun.elevation < kLeastElevation) {
      complain(RunStatus::Done, clockText(time) + ": the sun is " + fixed(sun.elevation, 2) +
                                    " degrees high; below 3 degrees no shadows are drawn");
      cell.lines.emplace_back("alle 3°: varjoja ei piirretä");
      sheet_.cells.push_back(cell);
      return RunStatus::Done;
    }
    const double length = plan.floorHeight / tangent(sun.elevation);
    cell.lines.push_back("varjo: suunta " + shown(sun.shadowDirection, 1) + "°, " + shown(length, 2) +
                         " m kerrosta kohti");
    if (!options_.quiet)
      printLine(clockText(time) + ": azimuth " + fixed(sun.azimuth, 2) + ", elevation " + fixed(sun.elevation, 2) +
                ", convergence " + fixed(sun.convergence, 3) + "; shadows fall to " + fixed(sun.shadowDirection, 2) +
                ", " + fixed(length, 2) + " m a floor");
    const fs::path file = pictureOf(time);
    const RunStatus status = draw(plan, sun, file);
    if (status != RunStatus::Done) return status;
    cell.picture = file;
    sheet_.cells.push_back(cell);
    return RunStatus::Done;
  }

  /// In a session of its own, which is not saved: the plan stays as it was.
  RunStatus draw(const Plan& plan, const SunPosition& sun, const fs::path& file) const {
    const RunOptions run = runOptions();
    ProblemPrinter screen;
    host::editor::ApplicationOptions settings;
    settings.observer = &screen;
    PlanSession session(run, settings);
    if (const Result<> opened = session.open(options_.drawings.front()); !opened)
      return static_cast<RunStatus>(sayUnopened(opened.problem()));
    host::editor::ScriptInput script(scriptOf(plan, sun), "sun");
    if (const Result<> done = session.application().run(script); !done)
      return static_cast<RunStatus>(complain(done.problem()));
    host::picture::PictureOptions picture = options_.picture;
    if (!picture.window) {
      const double margin =
          kMargin * std::max(plan.extents.maxX - plan.extents.minX, plan.extents.maxY - plan.extents.minY);
      Box window = plan.extents;
      window.minX -= margin, window.maxX += margin, window.minY -= margin, window.maxY += margin;
      picture.window = window;
    }
    const Result<> written = writePicture(*session.application().drawing(), picture,
                                          {file, host::picture::PictureFormat::Png}, options_.supportFolders);
    return written ? RunStatus::Done : static_cast<RunStatus>(complain(written.problem()));
  }

  const SunOptions& options_;
  host::sun::SunFunction whereIsTheSun_;
  ContactSheet sheet_;
};

}  // namespace

int studySun(const SunOptions& options) {
  if (const Result<> fit = checkVariables(options.variables); !fit) return complain(fit.problem());
  if (const Result<> made = prepareOutputs(options.drawings, Study::files(options), options.folder); !made)
    return complain(made.problem());
  const Result<void*> function = functionOfLibrary(kLibrary, host::sun::kSunFunction, "sun",
                                                   "libnova and PROJ (Debian's libnova-dev, libproj-dev)");
  if (!function) return complain(function.problem());
  const Interruption interruption(RunStatus::ScriptFailed);
  return Study(options, reinterpret_cast<host::sun::SunFunction>(*function)).make();
}

}  // namespace tolmex
