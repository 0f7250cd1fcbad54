#include "Batch.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>
#include <memory>
#include <new>
#include <optional>

#include "Commands.h"
#include "Console.h"
#include "Interruption.h"
#include "Outputs.h"
#include "Text/Text.h"
#include "posix/Signals.h"

namespace tolmex {

using host::RunStatus;

namespace {

// Finished results wait, with two open files each, until those before them are there.
constexpr std::size_t kMostAhead = 200;
// Workers end themselves when interrupted; one that cannot is ended.
constexpr std::chrono::seconds kPatience{5};

/// What a worker prints to one stream: a file without a name, in memory.
class Caught {
 public:
  Caught() : file_(::memfd_create("output", MFD_CLOEXEC)) {}
  ~Caught() {
    if (file_ >= 0) ::close(file_);
  }
  Caught(const Caught&) = delete;
  Caught& operator=(const Caught&) = delete;

  bool isOpen() const { return file_ >= 0; }
  bool takesThePlaceOf(int stream) const { return ::dup2(file_, stream) == stream; }
  std::string text() const {
    std::string all;
    const off_t size = ::lseek(file_, 0, SEEK_END);
    all.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    std::size_t have = 0;
    while (have < all.size()) {
      const ssize_t count = ::pread(file_, all.data() + have, all.size() - have, static_cast<off_t>(have));
      if (count <= 0) break;
      have += static_cast<std::size_t>(count);
    }
    all.resize(have);
    return all;
  }

 private:
  int file_;
};

struct Worker {
  pid_t process = -1;  // -1: not running
  Caught out, err;
  std::optional<int> ended;  // as waitpid tells it
  std::chrono::steady_clock::time_point begun = std::chrono::steady_clock::now();
  double seconds = 0;
};

std::string problem(const BatchTask& task, const std::string& what) {
  using namespace host::text;
  return "tolmex: " + printable(task.drawing + ": " + what, LineFeeds::Spelled) + "\n";
}

/// In the worker; does not come back.
[[noreturn]] void workAlone(const BatchTask& task, const Worker& worker, const sigset_t& mask, RunStatus crashStatus) {
  int status = static_cast<int>(crashStatus);
  ::sigprocmask(SIG_SETMASK, &mask, nullptr);
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (worker.out.takesThePlaceOf(STDOUT_FILENO) && worker.err.takesThePlaceOf(STDERR_FILENO)) {
    nameDrawingInProblems(task.drawing);
    try {
      status = task.work();
    } catch (const std::bad_alloc&) {
      complain(crashStatus, "there is not enough memory");
    } catch (const std::exception& error) {
      complain(crashStatus, std::string("internal failure: ") + error.what());
    } catch (...) {
      complain(crashStatus, "internal failure");
    }
  }
  std::fflush(stdout);
  std::fflush(stderr);
  ::_exit(status);
}

class Batch {
 public:
  Batch(const std::vector<BatchTask>& tasks, const BatchOptions& options)
      : tasks_(tasks), options_(options), workers_(tasks.size()), bar_(options.showsProgress) {
    ::sigemptyset(&signals_);
    ::sigaddset(&signals_, SIGCHLD);
    ::sigemptyset(&ending_);
    for (const int signal : kEndingSignals) {
      struct sigaction action {};
      if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) ::sigaddset(&ending_, signal);
    }
    ::sigorset(&signals_, &signals_, &ending_);
    ::sigprocmask(SIG_BLOCK, &signals_, &mask_);
  }
  ~Batch() { ::sigprocmask(SIG_SETMASK, &mask_, nullptr); }
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  int run(const std::function<void(const BatchTask&, const BatchResult&)>& take) {
    int status = 0;
    std::size_t taken = 0;
    while (taken < tasks_.size()) {
      startMore(taken);
      for (; taken < begun_ && isFinished(taken); ++taken) status = std::max(status, hand(taken, take));
      if (isInterrupted_ && running_ == 0 && taken == begun_) {
        for (; taken < tasks_.size(); ++taken) status = std::max(status, hand(taken, take));
        break;
      }
      if (running_ > 0) wait();
    }
    return status;
  }

 private:
  bool isFinished(std::size_t i) const { return workers_[i] == nullptr || workers_[i]->process < 0; }

  void startMore(std::size_t taken) {
    while (!isInterrupted_ && begun_ < tasks_.size() && running_ < options_.jobs && begun_ < taken + kMostAhead) {
      const std::size_t i = begun_++;
      auto worker = std::make_unique<Worker>();
      if (!worker->out.isOpen() || !worker->err.isOpen()) continue;
      std::fflush(stdout);
      std::fflush(stderr);
      const pid_t process = ::fork();
      if (process == 0) workAlone(tasks_[i], *worker, mask_, options_.crashStatus);
      if (process < 0) continue;
      worker->process = process;
      workers_[i] = std::move(worker);
      ++running_;
    }
  }

  void wait() {
    bar_.show(std::to_string(ended_) + " of " + std::to_string(tasks_.size()) + " drawings",
              static_cast<double>(ended_) / static_cast<double>(tasks_.size()));
    const timespec time{0, 200'000'000};
    const int signal = ::sigtimedwait(&signals_, nullptr, &time);
    if (signal > 0 && ::sigismember(&ending_, signal) == 1) {
      interrupt();
    } else if (isInterrupted_ && std::chrono::steady_clock::now() > patienceEnds_) {
      endWorkers(SIGKILL);
    }
    for (std::size_t i = 0; i < begun_; ++i) {
      Worker* const worker = workers_[i].get();
      int status = 0;
      if (worker == nullptr || worker->process < 0 || ::waitpid(worker->process, &status, WNOHANG) != worker->process)
        continue;
      worker->ended = status;
      worker->seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - worker->begun).count();
      worker->process = -1;
      --running_;
      ++ended_;
    }
  }

  void interrupt() {
    if (!isInterrupted_) patienceEnds_ = std::chrono::steady_clock::now() + kPatience;
    isInterrupted_ = true;
    endWorkers(SIGTERM);
  }

  void endWorkers(int signal) const {
    for (const auto& worker : workers_) {
      if (worker != nullptr && worker->process > 0) ::kill(worker->process, signal);
    }
  }

  int hand(std::size_t i, const std::function<void(const BatchTask&, const BatchResult&)>& take) {
    const BatchTask& task = tasks_[i];
    BatchResult result;
    result.status = static_cast<int>(options_.crashStatus);
    if (const std::unique_ptr<Worker> worker = std::move(workers_[i])) {
      result.out = worker->out.text();
      result.err = worker->err.text();
      result.seconds = worker->seconds;
      const int ended = worker->ended.value_or(0);
      if (WIFEXITED(ended)) {
        result.status = WEXITSTATUS(ended);
      } else if (isInterrupted_) {
        result.err += problem(task, "interrupted");
      } else {
        result.err += problem(task, std::string("the work crashed: ") + ::strsignal(WTERMSIG(ended)));
      }
      // A sanitizer or the like ends programs with numbers of its own.
      if (result.status > static_cast<int>(RunStatus::OutputFailed)) {
        result.err += problem(task, "the work ended with status " + std::to_string(result.status));
        result.status = static_cast<int>(options_.crashStatus);
      }
    } else {
      result.err = problem(task, isInterrupted_ ? "not begun: interrupted" : "not begun: no process could be started");
    }
    ProgressBar::clear();
    giveOut(task, result, take);
    return result.status;
  }

  /// Nobody may read what is printed: signals are heard meanwhile, and work that ends with this process is given up.
  void giveOut(const BatchTask& task, const BatchResult& result,
               const std::function<void(const BatchTask&, const BatchResult&)>& take) {
    const Interruption interruption(options_.crashStatus);
    ::sigprocmask(SIG_UNBLOCK, &ending_, nullptr);
    take(task, result);
    ::sigprocmask(SIG_BLOCK, &ending_, nullptr);
    if (Interruption::isAsked()) interrupt();
  }

  const std::vector<BatchTask>& tasks_;
  BatchOptions options_;
  std::vector<std::unique_ptr<Worker>> workers_;  // null before the start and after the result was taken
  ProgressBar bar_;
  sigset_t signals_{}, ending_{}, mask_{};  // awaited, those that end programs, the former mask
  std::size_t begun_ = 0, ended_ = 0;
  int running_ = 0;
  bool isInterrupted_ = false;
  std::chrono::steady_clock::time_point patienceEnds_;
};

}  // namespace

bool isWorker() { return false; }  // it is forked in the middle of the work

int workThrough(const std::vector<BatchTask>& tasks, const BatchOptions& options,
                const std::function<void(const BatchTask&, const BatchResult&)>& take) {
  return Batch(tasks, options).run(take);
}

}  // namespace tolmex
