#include "Shadows.h"

#include <cstdio>
#include <stdexcept>
#include <string>

#include "Dxf/DxfFile.h"
#include "Editor/Application.h"
#include "Editor/ScriptInput.h"
#include "Measurement.h"

namespace benchmarks {

namespace {

namespace fs = std::filesystem;

// The limits of the table. Ratios are of user time: what the system takes for handing out pages depends on whatever
// else the machine does.
constexpr double kMostGrowth = 1.1;    // of the time for one building, since the plan before: 11 for ten times as many
constexpr double kMostForThird = 1.2;  // of the time of the first update
constexpr double kMostKilobytes = 24;  // for one building, file and all
constexpr double kMostAgainstRead = 40;  // times the reading of the same drawing
// User time is counted in ticks of some milliseconds: with fewer buildings the times are too short to judge by.
constexpr double kFewestToJudge = 10000;

template <class Outcome>
void require(const Outcome& outcome) {
  if (!outcome) throw std::runtime_error(outcome.message());
}

/// Buildings are the entities of such a plan that have extended data.
std::size_t countBuildings(const fs::path& plan) {
  AcDbDatabase database(false);
  host::database::DrawingDatabase& drawing = host::database::databaseOf(&database);
  if (const auto read = host::dxf::readDrawing(drawing, plan); !read.ok()) throw std::runtime_error(read.message());
  std::size_t count = 0;
  drawing.forEachSlot([&count](const host::database::Slot& slot) {
    count += slot.isEntity() && (slot.flags & host::database::kHasXData) != 0 ? 1U : 0U;
  });
  return count;
}

void readPlan(Clock& clock, const fs::path& plan) {
  AcDbDatabase database(false);
  clock.time([&] {
    const auto read = host::dxf::readDrawing(host::database::databaseOf(&database), plan);
    if (!read.ok()) throw std::runtime_error(read.message());
  });
}

struct Costs {
  double buildings = 0;
  Measurement read, first, third;
};

Costs measurePlan(const fs::path& plan, int tries) {
  Costs costs;
  costs.buildings = static_cast<double>(countBuildings(plan));
  if (costs.buildings == 0) throw std::runtime_error(plan.string() + ": no entity has extended data");
  costs.read = measure(tries, [&](Clock& clock) { readPlan(clock, plan); });
  costs.first = measure(tries, [&](Clock& clock) { updateShadows(clock, plan, 1); });
  costs.third = measure(tries, [&](Clock& clock) { updateShadows(clock, plan, 3); });
  for (const Measurement* const step : {&costs.read, &costs.first, &costs.third}) {
    if (!step->failure.empty()) throw std::runtime_error(step->failure);
  }
  return costs;
}

/// A ratio with a sign of its own when it is above its limit and to be judged; the answer is whether it is.
int printRatio(double ratio, double limit, bool isJudged) {
  const bool isAbove = isJudged && ratio > limit;
  std::printf(" %8.2f%s", ratio, isAbove ? "!" : " ");
  return isAbove ? 1 : 0;
}

}  // namespace

void updateShadows(Clock& clock, const fs::path& plan, int updates) {
  host::editor::Application application;
  require(application.openDrawing(plan));
  require(application.loadModule(fs::path(TOLMEX_BIN_DIR) / "tolmex.arx"));
  const auto update = [&application] {
    host::editor::ScriptInput script("TLM_VARJO_PAIVITA\n", "benchmark");
    require(application.run(script));
  };
  for (int i = 1; i < updates; ++i) update();
  clock.time(update);
}

int measureShadows(const std::vector<fs::path>& plans, int tries) {
  int failures = 0;
  double before = 0;  // seconds for one building
  std::printf("\n%-20s %9s %10s %10s %10s %10s %9s %9s %9s %9s\n", "shadows of", "buildings", "read ms", "first ms",
              "third ms", "elapsed ms", "KB each ", "to read ", "third ", "growth ");
  for (const fs::path& plan : plans) {
    std::printf("%-20s ", plan.stem().c_str());
    std::fflush(stdout);
    try {
      const Costs costs = measurePlan(plan, tries);
      const double first = costs.first.userSeconds;
      std::printf("%9.0f %10.2f %10.2f %10.2f %10.2f", costs.buildings, costs.read.userSeconds * 1e3, first * 1e3,
                  costs.third.userSeconds * 1e3, costs.first.seconds * 1e3);
      const bool isJudged = costs.buildings >= kFewestToJudge;
      failures +=
          printRatio(static_cast<double>(costs.first.peakBytes) / 1e3 / costs.buildings, kMostKilobytes, isJudged);
      failures += printRatio(first / costs.read.userSeconds, kMostAgainstRead, isJudged);
      failures += printRatio(costs.third.userSeconds / first, kMostForThird, isJudged);
      if (before > 0) failures += printRatio(first / costs.buildings / before, kMostGrowth, isJudged);
      std::printf("\n");
      before = isJudged ? first / costs.buildings : 0;
    } catch (const std::exception& error) {
      std::printf("failed: %s\n", error.what());
      before = 0;
      ++failures;
    }
    std::fflush(stdout);
  }
  std::printf(
      "\nread, first, third: user time of reading and of the first and third update in one session\n"
      "elapsed: of the first update\n"
      "KB each: peak of the process at the first update / buildings, limit %.0f; to read: first / read, limit %.0f\n"
      "third: third / first, limit %.1f; growth: first for each building since the plan before, limit %.1f\n"
      "a ratio above its limit has a !; plans of fewer than %.0f buildings are not judged\n",
      kMostKilobytes, kMostAgainstRead, kMostForThird, kMostGrowth, kFewestToJudge);
  return failures;
}

}  // namespace benchmarks
