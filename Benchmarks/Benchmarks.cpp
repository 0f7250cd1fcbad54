// Measures reading, saving, an area command and a picture on the plans given, smallest first, and prints one table.
//
//   tolmex_benchmarks [--tries N] [PLAN.dxf...] [--shadows PLAN.dxf...]
//
// Times are the shortest of N tries. Each stands beside a limit measured in the same run: a bare scan of the same bytes
// (reading, commands, pictures: whoever works on a drawing has to look at it once) or a bare flushed copy of them
// (saving). Memory is the peak of the whole process, as a multiple of the file. The plans behind --shadows, whose
// buildings carry records, are for a table of their own: updates of their shadows.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Dxf/DxfFile.h"
#include "Editor/Application.h"
#include "Editor/ScriptInput.h"
#include "Limits.h"
#include "Measurement.h"
#include "Picture/Picture.h"
#include "Shadows.h"

namespace {

namespace fs = std::filesystem;
using benchmarks::Clock;
using benchmarks::Measurement;

template <class Outcome>
void require(const Outcome& outcome) {
  if (!outcome.ok) throw std::runtime_error(outcome.message);
}
void require(const host::editor::Result& result) {
  if (!result) throw std::runtime_error(result.message);
}

fs::path scratchFile(const fs::path& plan) { return plan.parent_path() / (plan.stem().string() + ".scratch.dxf"); }

void readPlan(Clock& clock, const fs::path& plan) {
  AcDbDatabase database(false);
  clock.time([&] { require(host::dxf::readDrawing(host::database::databaseOf(&database), plan)); });
}

void saveUntouched(Clock& clock, const fs::path& plan) {
  AcDbDatabase database(false);
  host::database::DrawingDatabase& drawing = host::database::databaseOf(&database);
  require(host::dxf::readDrawing(drawing, plan));
  const fs::path target = scratchFile(plan);
  clock.time([&] { require(host::dxf::saveDrawing(drawing, target)); });
  fs::remove(target);
}

/// Tags every polyline of the plan, moves it to its layer and fills it.
void makeAreas(Clock& clock, const fs::path& plan) {
  host::editor::Application application;
  require(application.openDrawing(plan));
  require(application.loadModule(fs::path(TOLMEX_BIN_DIR) / "tolmex.arx"));
  host::editor::ScriptInput script("TLM_MUOK_ASFALTTI\nALL\n\n", "benchmark");
  clock.time([&] { require(application.run(script)); });
}

void drawPicture(Clock& clock, const fs::path& plan) {
  AcDbDatabase database(false);
  host::database::DrawingDatabase& drawing = host::database::databaseOf(&database);
  require(host::dxf::readDrawing(drawing, plan));
  clock.time([&] { require(host::picture::drawPicture(drawing, {}, host::picture::PictureFormat::Png)); });
}

struct Step {
  const char* name;
  void (*run)(Clock&, const fs::path&);
  bool writes;  // its limit is the copy
};
constexpr Step kSteps[] = {
    {"read", readPlan, false},
    {"save untouched", saveUntouched, true},
    {"area command on all", makeAreas, false},
    {"picture, PNG", drawPicture, false},
};

int measurePlans(const std::vector<fs::path>& plans, int tries) {
  int failures = 0;
  std::vector<double> before(std::size(kSteps), 0);
  double bytesBefore = 0;
  std::printf("%-20s %9s  %-20s %10s %10s %8s %8s %8s\n", "plan", "MB", "step", "time ms", "limit ms", "ratio",
              "memory", "growth");
  for (const fs::path& plan : plans) {
    const auto bytes = static_cast<double>(fs::file_size(plan));
    const Measurement scan = benchmarks::measure(tries, [&](Clock& clock) { benchmarks::scanFile(clock, plan); });
    const Measurement copy =
        benchmarks::measure(tries, [&](Clock& clock) { benchmarks::copyFile(clock, plan, scratchFile(plan)); });
    for (std::size_t i = 0; i < std::size(kSteps); ++i) {
      const Step& step = kSteps[i];
      const Measurement& limit = step.writes ? copy : scan;
      const Measurement done = benchmarks::measure(tries, [&](Clock& clock) { step.run(clock, plan); });
      std::printf("%-20s %9.2f  %-20s ", plan.stem().c_str(), bytes / 1e6, step.name);
      if (const std::string& failure = done.failure.empty() ? limit.failure : done.failure; !failure.empty()) {
        std::printf("failed: %s\n", failure.c_str());
        before[i] = 0;
        ++failures;
        continue;
      }
      std::printf("%10.2f %10.2f %8.2f %7.2fx", done.seconds * 1e3, limit.seconds * 1e3, done.seconds / limit.seconds,
                  static_cast<double>(done.peakBytes) / bytes);
      // Time against size: 1 is linear.
      if (before[i] > 0) std::printf(" %8.2f", done.seconds / before[i] / (bytes / bytesBefore));
      std::printf("\n");
      std::fflush(stdout);
      before[i] = done.seconds;
    }
    bytesBefore = bytes;
  }
  std::printf(
      "\nratio: time / limit; limit: bare scan of the same bytes, for saving a bare flushed copy of them\n"
      "memory: peak of the process / file; growth: time against file size since the plan before, 1 is linear\n");
  return failures == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  int tries = 3;
  std::vector<fs::path> plans;
  std::vector<fs::path> shadowPlans;
  bool areShadows = false;
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--tries" && i + 1 < argc) {
      tries = std::atoi(argv[++i]);
    } else if (std::string_view(argv[i]) == "--shadows") {
      areShadows = true;
    } else {
      (areShadows ? shadowPlans : plans).emplace_back(argv[i]);
    }
  }
  if ((plans.empty() && shadowPlans.empty()) || tries < 1) {
    std::fprintf(stderr, "usage: tolmex_benchmarks [--tries N] [PLAN.dxf...] [--shadows PLAN.dxf...]\n");
    return 1;
  }
  try {
    const int status = plans.empty() ? 0 : measurePlans(plans, tries);
    const int shadowStatus = shadowPlans.empty() ? 0 : benchmarks::measureShadows(shadowPlans, tries);
    return status == 0 && shadowStatus == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tolmex_benchmarks: %s\n", error.what());
    return 2;
  }
}
