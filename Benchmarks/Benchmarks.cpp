// Measures reading, saving, an area command, a picture, a shadow update and the whole program on plans of growing size,
// and prints one table.
//
//   tolmex_benchmarks [--tries N] [--page PAGE.md] [PLAN.dxf...] [--shadows PLAN.dxf...]
//   tolmex_benchmarks [--tries N] --canvas PLAN.dxf...
//
// --page writes the table as a page of Markdown too.
//
// Times are the shortest of N tries. Each stands beside a limit measured in the same run: what no program that does the
// same work can be faster than. Memory is the peak of the whole process, as a multiple of the file. The buildings of
// the plans behind --shadows carry records. --canvas measures what the window's canvas does with the plans. Without
// other plans they get a table of their own, which judges the first and the third of several updates.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "Canvas.h"
#include "Dxf/DxfFile.h"
#include "Editor/Application.h"
#include "Editor/ScriptInput.h"
#include "Limits.h"
#include "Measurement.h"
#include "Picture/Composition.h"
#include "Shadows.h"

namespace {

namespace fs = std::filesystem;
using benchmarks::Clock;
using benchmarks::Measurement;

void require(const host::Result<>& result) {
  if (!result) throw std::runtime_error(result.message());
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

/// The plan's text without the handles of its entities, as some programs write drawings.
std::string withoutHandles(const fs::path& plan) {
  std::string text = benchmarks::readBytes(plan);
  const std::size_t begin = text.find("\nENTITIES\n");
  const std::size_t end = text.find("\nOBJECTS\n", begin);
  if (end == std::string::npos) throw std::runtime_error(plan.string() + ": no entities were found in it");
  std::string without = text.substr(0, begin);
  std::string_view rest = std::string_view(text).substr(begin + 1, end - begin);
  rest.remove_prefix(rest.find('\n') + 1);
  without += text.substr(begin, end - begin - rest.size() + 1);
  host::database::Tag tag;
  bool isFront = false;
  while (host::database::readTag(rest, tag)) {
    if (tag.code == 0 || tag.code == 100) isFront = tag.code == 0;
    if (!isFront || tag.code != 5) without += tag.bytes;
  }
  return without + text.substr(end + 1);
}

/// Everything gets its handle when one value of the header has changed.
void saveWithoutHandles(Clock& clock, const fs::path& plan) {
  AcDbDatabase database(false);
  host::database::DrawingDatabase& drawing = host::database::databaseOf(&database);
  require(host::dxf::readDrawingText(drawing, withoutHandles(plan), plan));
  drawing.setHeaderReal("$LTSCALE", 40, 2);
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

/// Times the whole program, started anew, its output thrown away.
void runProgram(Clock& clock, std::vector<std::string> line) {
  line.insert(line.begin(), fs::path(TOLMEX_BIN_DIR) / "tolmex");
  std::vector<char*> arguments;
  for (std::string& word : line) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  int status = -1;
  clock.time([&] {
    pid_t child = 0;
    if (::posix_spawn(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0) {
      ::waitpid(child, &status, 0);
    }
  });
  ::posix_spawn_file_actions_destroy(&actions);
  if (status != 0) throw std::runtime_error(line[0] + " " + line[1] + " failed on " + line[2]);
}

void openByProgram(Clock& clock, const fs::path& plan) {
  runProgram(clock, {"run", plan, "--quiet", "--command", "REGEN"});
}
void drawByProgram(Clock& clock, const fs::path& plan) {
  const fs::path picture = plan.parent_path() / (plan.stem().string() + ".scratch.png");
  runProgram(clock, {"picture", plan, picture});
  fs::remove(picture);
}

// Limits.
void copyPlan(Clock& clock, const fs::path& plan) { benchmarks::copyFile(clock, plan, scratchFile(plan)); }
void rasterizePlan(Clock& clock, const fs::path& plan) {
  AcDbDatabase database(false);
  host::database::DrawingDatabase& drawing = host::database::databaseOf(&database);
  require(host::dxf::readDrawing(drawing, plan));
  const auto picture = host::picture::composePicture(drawing, {}, host::picture::PictureFormat::Png);
  if (!picture) throw std::runtime_error(picture.message());
  benchmarks::rasterize(clock, *picture);
}

/// The plan with all shadows drawn, by the program; made when there is none newer than plan and program.
fs::path shadowedPlan(const fs::path& plan) {
  const fs::path result = plan.parent_path() / (plan.stem().string() + ".shadowed.dxf");
  const fs::path program = fs::path(TOLMEX_BIN_DIR) / "tolmex";
  const bool isNew = fs::exists(result) && fs::last_write_time(result) > fs::last_write_time(plan) &&
                     fs::last_write_time(result) > fs::last_write_time(program);
  if (!isNew) {
    Clock unused;
    runProgram(unused, {"run", plan, "--quiet", "--command", "TLM_VARJO_PAIVITA", "--out", result});
  }
  return result;
}
void copyShadowed(Clock& clock, const fs::path& plan) {
  benchmarks::copyFile(clock, shadowedPlan(plan), scratchFile(plan));
}

/// Draws all shadows anew and saves the drawing.
void saveShadows(Clock& clock, const fs::path& plan) {
  host::editor::Application application;
  require(application.openDrawing(plan));
  require(application.loadModule(fs::path(TOLMEX_BIN_DIR) / "tolmex.arx"));
  host::editor::ScriptInput script("TLM_VARJO_PAIVITA\n", "benchmark");
  const fs::path target = scratchFile(plan);
  clock.time([&] {
    require(application.run(script));
    require(application.saveDrawing(target));
  });
  fs::remove(target);
}

void updateOnce(Clock& clock, const fs::path& plan) { benchmarks::updateShadows(clock, plan, 1); }

using StepFunction = void (*)(Clock&, const fs::path&);

struct Step {
  const char* name;
  StepFunction run;
  StepFunction limit;                             // null: an aim for the whole program instead
  double mostGrowth = 0;                          // judged; 0: not
  fs::path (*result)(const fs::path&) = nullptr;  // the file whose size memory is a multiple of; null: the plan
};
/// For ten times as much a step may take twenty times as long: one that compares all with all takes a hundred times.
constexpr double kNearlyLinear = 2;
constexpr Step kSteps[] = {
    {"read", readPlan, benchmarks::scanFile},
    {"save untouched", saveUntouched, copyPlan},
    {"save, no handles", saveWithoutHandles, copyPlan, kNearlyLinear},
    {"area command on all", makeAreas, benchmarks::scanFile},
    {"picture, PNG", drawPicture, rasterizePlan},
    {"program: open", openByProgram, nullptr},
    {"program: PNG", drawByProgram, nullptr},
};
constexpr Step kShadowSteps[] = {
    {"shadow update", updateOnce, readPlan},
    {"shadows, saved", saveShadows, copyShadowed, 0, shadowedPlan},
};

/// What the whole program should take at most for a plan, told by the number of buildings in its name.
double aimedSeconds(const Step& step, const fs::path& plan) {
  const std::string name = plan.stem();
  const bool isOpening = step.run == openByProgram;
  if (name.ends_with("-1000")) return isOpening ? 0.015 : 0.2;
  if (name.ends_with("-10000") && !isOpening) return 1;
  return 0;
}

/// A cell of the page, "12.3" or nothing.
std::string cell(double value, const char* format) {
  std::array<char, 32> text{};
  if (value > 0) std::snprintf(text.data(), text.size(), format, value);
  return text.data();
}

/// One line of the table for each plan and step, with what the step cost on the plan before.
class Table {
 public:
  explicit Table(int tries) : tries_(tries) {
    std::printf("%-17s %7s  %-20s %9s %9s %9s %7s %8s %7s\n", "plan", "MB", "step", "time ms", "user ms", "limit ms",
                "ratio", "memory", "growth");
  }

  void measure(const Step& step, const fs::path& plan) {
    const auto bytes = static_cast<double>(fs::file_size(plan));
    const auto weighed = step.result != nullptr ? static_cast<double>(fs::file_size(step.result(plan))) : bytes;
    std::printf("%-17s %7.2f  %-20s ", plan.stem().c_str(), bytes / 1e6, step.name);
    std::fflush(stdout);
    Measurement limit;
    if (step.limit != nullptr) {
      limit = benchmarks::measure(tries_, [&](Clock& clock) { step.limit(clock, plan); });
    } else {
      limit.seconds = aimedSeconds(step, plan);
    }
    const Measurement done = benchmarks::measure(tries_, [&](Clock& clock) { step.run(clock, plan); });
    const Cost before = std::exchange(before_[step.name], {});
    if (const std::string& failure = done.failure.empty() ? limit.failure : done.failure; !failure.empty()) {
      std::printf("failed: %s\n", failure.c_str());
      ++failures_;
      return;
    }
    std::printf("%9.2f %9.2f ", done.seconds * 1e3, done.userSeconds * 1e3);
    if (limit.seconds > 0) {
      std::printf("%9.2f %7.2f", limit.seconds * 1e3, done.seconds / limit.seconds);
    } else {
      std::printf("%9s %7s", "", "");
    }
    const double memory = static_cast<double>(done.peakBytes) / weighed;
    std::printf(" %7.2fx", memory);
    double growth = 0;
    if (before.seconds > 0) {
      growth = done.userSeconds / before.seconds / (bytes / before.bytes);
      const bool isAbove = step.mostGrowth > 0 && growth > step.mostGrowth;
      std::printf(" %7.2f%s", growth, isAbove ? "!" : "");
      failures_ += isAbove ? 1 : 0;
    }
    std::printf("\n");
    std::fflush(stdout);
    page_ += "| " + plan.stem().string() + " | " + cell(bytes / 1e6, "%.2f") + " | " + step.name + " | " +
             cell(done.seconds * 1e3, "%.1f") + " | " + cell(limit.seconds * 1e3, "%.1f") + " | " +
             cell(limit.seconds > 0 ? done.seconds / limit.seconds : 0, "%.2f") + " | " + cell(memory, "%.2f") + " | " +
             cell(growth, "%.2f") + " |\n";
    // User time is counted in ticks of some milliseconds: too short ones say nothing about growth.
    constexpr double kLeastToCompare = 0.02;
    if (done.userSeconds >= kLeastToCompare) before_[step.name] = {done.userSeconds, bytes};
  }

  int failures() const { return failures_; }
  const std::string& page() const { return page_; }

 private:
  struct Cost {
    double seconds = 0, bytes = 0;
  };
  int tries_;
  int failures_ = 0;
  std::string page_;  // the lines as rows of a Markdown table
  std::map<std::string, Cost> before_;
};

constexpr const char* kExplanation =
    "ratio: time / limit. limits: read and area command, a bare scan of the same bytes that parses every number;\n"
    "saving, a bare flushed copy of the plan, with shadows of the result; picture, the rasteriser alone on the same\n"
    "outlines; shadow update, reading the plan; program, the time aimed at\n"
    "memory: peak of the process / file, with saved shadows / result; growth: user time against file size since the\n"
    "plan before, 1 is linear, with a ! where that is above a limit\n";

void writePage(const fs::path& file, const Table& table, int tries) {
  std::ofstream page(file);
  page << "# What it costs\n\n"
       << "Made by `tools/benchmark.sh --page`: the shortest of " << tries << " tries on "
       << std::thread::hardware_concurrency()
       << " cores. `plan-N` is a town plan of N buildings, `buildings-N` one whose buildings carry records, with a\n"
          "fence on every fifth plot. Each time stands beside a limit measured in the same run.\n\n"
       << "| plan | MB | step | ours, ms | limit, ms | ratio | memory | growth |\n"
          "|---|---:|---|---:|---:|---:|---:|---:|\n"
       << table.page() << "\n"
       << kExplanation;
  if (!page.flush()) throw std::runtime_error(file.string() + ": cannot be written");
}

/// `shadowPlans` are the same sizes as `plans`; those that are missing leave their lines out. An empty page is none.
int measurePlans(const std::vector<fs::path>& plans, const std::vector<fs::path>& shadowPlans, int tries,
                 const fs::path& page) {
  Table table(tries);
  for (std::size_t i = 0; i < plans.size(); ++i) {
    for (const Step& step : kSteps) table.measure(step, plans[i]);
    if (i >= shadowPlans.size()) continue;
    for (const Step& step : kShadowSteps) table.measure(step, shadowPlans[i]);
  }
  std::printf("\n%s", kExplanation);
  if (!page.empty()) writePage(page, table, tries);
  return table.failures() == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  int tries = 3;
  std::vector<fs::path> plans;
  std::vector<fs::path> shadowPlans;
  fs::path page;
  bool areShadows = false, isCanvas = false;
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]) == "--tries" && i + 1 < argc) {
      tries = std::atoi(argv[++i]);
    } else if (std::string_view(argv[i]) == "--page" && i + 1 < argc) {
      page = argv[++i];
    } else if (std::string_view(argv[i]) == "--canvas") {
      isCanvas = true;
    } else if (std::string_view(argv[i]) == "--shadows") {
      areShadows = true;
    } else {
      (areShadows ? shadowPlans : plans).emplace_back(argv[i]);
    }
  }
  if ((plans.empty() && shadowPlans.empty()) || tries < 1) {
    std::fprintf(stderr,
                 "usage: tolmex_benchmarks [--tries N] [--page PAGE.md] [PLAN.dxf...] [--shadows PLAN.dxf...]\n"
                 "       tolmex_benchmarks [--tries N] --canvas PLAN.dxf...\n");
    return 1;
  }
  try {
    if (isCanvas) return benchmarks::measureCanvas(plans, tries) == 0 ? 0 : 1;
    if (!plans.empty()) return measurePlans(plans, shadowPlans, tries, page);
    return benchmarks::measureShadows(shadowPlans, tries) == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tolmex_benchmarks: %s\n", error.what());
    return 2;
  }
}
