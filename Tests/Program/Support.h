// The built program, called as users call it.
#pragma once

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "Places.h"

namespace tests {

namespace fs = std::filesystem;
using Arguments = std::vector<std::string>;

inline const fs::path kExamples = fs::path(kSourceDir) / "examples";
inline const fs::path kPlan = kExamples / "kortteli.dxf";

struct Outcome {
  int status = -1;  // exit status; 128 + N when signal N ended it
  std::string out, err;

  bool operator==(const Outcome&) const = default;
  friend void PrintTo(const Outcome& outcome, std::ostream* stream) {
    *stream << "status " << outcome.status << "\nout: " << outcome.out << "\nerr: " << outcome.err;
  }
};

/// What surrounds a call.
struct Surroundings {
  fs::path folder = {};                // current folder; empty: the test's own
  rlim_t largestFile = RLIM_INFINITY;  // bytes
  fs::path standardOut = {};           // empty: caught
  fs::path standardIn = {};            // from the test's folder; empty: nothing
  const char* program = nullptr;       // null: the program under test
  Arguments variables = {};            // NAME=VALUE of the environment
};

/// Whether a process handles Ctrl+C itself by now, sleeping while it waits when that is asked for; also once it has
/// ended.
inline bool takesInterrupts(pid_t process, bool mustSleep = false) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  bool sleeps = false;
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("State:")) sleeps = line.find("S (") != std::string::npos;
    if (line.starts_with("SigCgt:"))
      return (sleeps || !mustSleep) && (std::stoull(line.substr(7), nullptr, 16) >> (SIGINT - 1) & 1U) != 0;
  }
  return !mustSleep;
}

class Program : public testing::Test {
 protected:
  Program() {
    std::string name = (fs::temp_directory_path() / "tolmex-program-XXXXXX").string();
    folder = ::mkdtemp(name.data());
    plan = folder / "plan.dxf";
    fs::copy_file(kPlan, plan);
  }
  ~Program() override { fs::remove_all(folder); }

  void write(const fs::path& name, std::string_view text) const {
    std::ofstream(folder / name, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
  }
  std::string read(const fs::path& name) const {
    std::ifstream in(folder / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  /// Names in the folder, hidden ones too: what a failure left behind.
  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(folder)) found.push_back(entry.path().filename().string());
    std::sort(found.begin(), found.end());
    return found;
  }

  pid_t start(const Arguments& arguments, const Surroundings& surroundings = {}) const {
    const pid_t child = ::fork();
    if (child != 0) return child;
    const std::string program =
        surroundings.program != nullptr ? surroundings.program : std::string(kBinDir) + "/tolmex";
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const auto redirect = [](const fs::path& file, int target) {
      const int opened = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      if (opened < 0 || ::dup2(opened, target) < 0) ::_exit(120);
    };
    redirect(surroundings.standardOut.empty() ? catchFile("out") : surroundings.standardOut, STDOUT_FILENO);
    redirect(catchFile("err"), STDERR_FILENO);
    const fs::path in = surroundings.standardIn.empty() ? "/dev/null" : folder / surroundings.standardIn;
    const int opened = ::open(in.c_str(), O_RDONLY);
    if (opened < 0 || ::dup2(opened, STDIN_FILENO) < 0) ::_exit(123);
    if (::chdir((surroundings.folder.empty() ? folder : surroundings.folder).c_str()) != 0) ::_exit(121);
    std::signal(SIGINT, SIG_DFL);
    const rlimit limit{surroundings.largestFile, RLIM_INFINITY};
    if (surroundings.largestFile != RLIM_INFINITY && ::setrlimit(RLIMIT_FSIZE, &limit) != 0) ::_exit(122);
    // Nothing of a desktop, a language or a home may be needed.
    std::vector<std::string> environment = surroundings.variables;  // of a variable twice the first counts
    environment.emplace_back("PATH=/usr/bin:/bin");
    for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS"}) {
      if (const char* value = std::getenv(name)) environment.push_back(std::string(name) + "=" + value);
    }
    std::vector<char*> envp;
    for (std::string& variable : environment) envp.push_back(variable.data());
    envp.push_back(nullptr);
    ::execve(program.c_str(), argv.data(), envp.data());
    ::_exit(127);
  }

  Outcome finish(pid_t child) const {
    Outcome outcome;
    int status = 0;
    ::waitpid(child, &status, 0);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    outcome.out = readAndRemove(catchFile("out"));
    outcome.err = readAndRemove(catchFile("err"));
    return outcome;
  }

  Outcome call(const Arguments& arguments, const Surroundings& surroundings = {}) const {
    return finish(start(arguments, surroundings));
  }

  /// `run` on the plan with lines of script; answers what the arguments behind them lead to.
  Outcome runLines(const Arguments& lines, const Arguments& more = {}) const {
    Arguments arguments{"run", "plan.dxf"};
    for (const std::string& line : lines) {
      arguments.emplace_back("--command");
      arguments.push_back(line);
    }
    arguments.insert(arguments.end(), more.begin(), more.end());
    return call(arguments);
  }

  fs::path folder;  // of the test; removed at its end
  fs::path plan;    // a copy of the example plan, "plan.dxf"

  /// Beside the folder, so that the folder holds only what the program leaves.
  fs::path catchFile(const char* what) const { return folder.string() + "." + what; }

 private:
  static std::string readAndRemove(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    fs::remove(file);
    return text;
  }
};

}  // namespace tests
