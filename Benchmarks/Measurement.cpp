#include "Measurement.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>

namespace benchmarks {

namespace {

/// What a child tells; small enough to go through a pipe in one piece.
struct Report {
  double seconds = 0;
  double userSeconds = 0;
  std::size_t peakBytes = 0;
  std::array<char, 256> failure{};
};

rusage usedBy(int who) {
  rusage used{};
  ::getrusage(who, &used);
  return used;
}

std::size_t peakBytes() {
  std::size_t own = 0;
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) own = std::stoul(line.substr(6)) * 1024;
  }
  // A step that only starts a program is measured by the program.
  const auto started = static_cast<std::size_t>(usedBy(RUSAGE_CHILDREN).ru_maxrss) * 1024;
  return started > 0 ? started : own;
}

double userTime() {
  double seconds = 0;
  for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    const rusage used = usedBy(who);
    seconds += static_cast<double>(used.ru_utime.tv_sec) + static_cast<double>(used.ru_utime.tv_usec) / 1e6;
  }
  return seconds;
}

Report runStep(const std::function<void(Clock&)>& step) {
  Report report;
  try {
    Clock clock;
    step(clock);
    report.seconds = clock.seconds();
    report.userSeconds = clock.userSeconds();
    report.peakBytes = peakBytes();
  } catch (const std::exception& error) {
    std::strncpy(report.failure.data(), error.what(), report.failure.size() - 1);
  }
  return report;
}

Report runInChild(const std::function<void(Clock&)>& step) {
  Report report;
  std::array<int, 2> ends{};
  std::fflush(nullptr);
  if (::pipe(ends.data()) != 0) return report;
  const pid_t child = ::fork();
  if (child == 0) {
    report = runStep(step);
    const bool told = ::write(ends[1], &report, sizeof report) == sizeof report;
    ::_exit(told ? 0 : 1);
  }
  ::close(ends[1]);
  if (child < 0 || ::read(ends[0], &report, sizeof report) != sizeof report) {
    std::strcpy(report.failure.data(), "the process ended early");
  }
  ::close(ends[0]);
  if (child > 0) ::waitpid(child, nullptr, 0);
  return report;
}

}  // namespace

void Clock::time(const std::function<void()>& work) {
  const double userBegin = userTime();
  const auto begin = std::chrono::steady_clock::now();
  work();
  seconds_ += std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  userSeconds_ += userTime() - userBegin;
}

Measurement measure(int tries, const std::function<void(Clock&)>& step) {
  Measurement best;
  for (int i = 0; i < tries; ++i) {
    const Report report = runInChild(step);
    if (report.failure.front() != 0) {
      best.failure = report.failure.data();
      return best;
    }
    best.seconds = i == 0 ? report.seconds : std::min(best.seconds, report.seconds);
    best.userSeconds = i == 0 ? report.userSeconds : std::min(best.userSeconds, report.userSeconds);
    best.peakBytes = std::max(best.peakBytes, report.peakBytes);
  }
  return best;
}

}  // namespace benchmarks
