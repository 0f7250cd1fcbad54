#include "Batch.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <sstream>
#include <string>

#include "Console.h"
#include "Interruption.h"
#include "Outputs.h"
#include "Platform/windows/Worker.h"
#include "Text/Text.h"

namespace tolmex {

using host::RunStatus;
using host::platform::Worker;

namespace {

// Finished results wait, with three files each, until those before them are there.
constexpr std::size_t kMostAhead = 200;
// Ctrl+C reaches the workers too, and they end themselves; one that cannot is ended.
constexpr std::chrono::seconds kPatience{5};
constexpr unsigned kPauseMs = 20;

std::string problem(const BatchTask& task, const std::string& what) {
  using namespace host::text;
  return "tolmex: " + printable(task.drawing + ": " + what, LineFeeds::Spelled) + "\n";
}

/// In the worker: this task alone.
int workAlone(const BatchTask& task, RunStatus crashStatus) {
  nameDrawingInProblems(task.drawing);
  try {
    return task.work();
  } catch (const std::bad_alloc&) {
    return complain(crashStatus, "there is not enough memory");
  } catch (const std::exception& error) {
    return complain(crashStatus, std::string("internal failure: ") + error.what());
  } catch (...) {
    return complain(crashStatus, "internal failure");
  }
}

std::string shownStatus(std::uint32_t status) {
  std::ostringstream text;
  text << "0x" << std::hex << std::uppercase << status;
  return text.str();
}

class Batch {
 public:
  Batch(const std::vector<BatchTask>& tasks, const BatchOptions& options)
      : tasks_(tasks),
        options_(options),
        workers_(tasks.size()),
        begunAt_(tasks.size()),
        interruption_(options.crashStatus),
        bar_(options.showsProgress) {}

  int run(const std::function<void(const BatchTask&, const BatchResult&)>& take) {
    int status = 0;
    for (std::size_t taken = 0; taken < tasks_.size();) {
      startMore(taken);
      if (taken < begun_ && !isRunning(taken)) {
        status = std::max(status, hand(taken++, take));
      } else if (taken >= begun_ && Interruption::isAsked()) {
        status = std::max(status, hand(taken++, take));
      } else {
        wait();
      }
    }
    return status;
  }

 private:
  bool isRunning(std::size_t i) const {
    return workers_[i] != nullptr && workers_[i]->isStarted() && !workers_[i]->ended();
  }

  void startMore(std::size_t taken) {
    int running = 0;
    for (std::size_t i = taken; i < begun_; ++i) running += isRunning(i) ? 1 : 0;
    for (; !Interruption::isAsked() && begun_ < tasks_.size() && running < options_.jobs && begun_ < taken + kMostAhead;
         ++begun_) {
      workers_[begun_] = std::make_unique<Worker>(tasks_[begun_].drawing);
      begunAt_[begun_] = std::chrono::steady_clock::now();
      running += workers_[begun_]->isStarted() ? 1 : 0;
    }
  }

  void wait() {
    const auto ended = static_cast<double>(std::count_if(
        tasks_.begin(), tasks_.begin() + static_cast<std::ptrdiff_t>(begun_),
        [this](const BatchTask& task) { return !isRunning(static_cast<std::size_t>(&task - tasks_.data())); }));
    bar_.show(std::to_string(static_cast<int>(ended)) + " of " + std::to_string(tasks_.size()) + " drawings",
              ended / static_cast<double>(tasks_.size()));
    host::platform::sleepMilliseconds(kPauseMs);
    if (!Interruption::isAsked()) return;
    const auto now = std::chrono::steady_clock::now();
    if (!patienceEnds_) patienceEnds_ = now + kPatience;
    if (now < *patienceEnds_) return;
    for (std::size_t i = 0; i < begun_; ++i) {
      if (isRunning(i)) workers_[i]->end();
    }
  }

  int hand(std::size_t i, const std::function<void(const BatchTask&, const BatchResult&)>& take) {
    const BatchTask& task = tasks_[i];
    BatchResult result;
    result.status = static_cast<int>(options_.crashStatus);
    if (const std::unique_ptr<Worker> worker = std::move(workers_[i]); worker != nullptr && worker->isStarted()) {
      result.out = worker->out();
      result.err = worker->err();
      result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begunAt_[i]).count();
      const std::uint32_t status = worker->ended().value_or(0);
      if (status <= static_cast<std::uint32_t>(RunStatus::OutputFailed)) {
        result.status = static_cast<int>(status);
      } else if (Interruption::isAsked()) {
        result.err += problem(task, "interrupted");
      } else {
        result.err += problem(task, "the work crashed: " + shownStatus(status));
      }
    } else {
      result.err =
          problem(task, Interruption::isAsked() ? "not begun: interrupted" : "not begun: no process could be started");
    }
    ProgressBar::clear();
    take(task, result);
    return result.status;
  }

  const std::vector<BatchTask>& tasks_;
  BatchOptions options_;
  std::vector<std::unique_ptr<Worker>> workers_;  // null before the start and after the result was taken
  std::vector<std::chrono::steady_clock::time_point> begunAt_;
  Interruption interruption_;
  ProgressBar bar_;
  std::size_t begun_ = 0;
  std::optional<std::chrono::steady_clock::time_point> patienceEnds_;
};

}  // namespace

bool isWorker() { return Worker::ownTask().has_value(); }

int workThrough(const std::vector<BatchTask>& tasks, const BatchOptions& options,
                const std::function<void(const BatchTask&, const BatchResult&)>& take) {
  if (const auto own = Worker::ownTask()) {
    const auto found =
        std::find_if(tasks.begin(), tasks.end(), [&](const BatchTask& task) { return task.drawing == *own; });
    if (found != tasks.end()) Worker::leave(workAlone(*found, options.crashStatus));
  }
  return Batch(tasks, options).run(take);
}

}  // namespace tolmex
