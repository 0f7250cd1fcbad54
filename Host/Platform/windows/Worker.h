// The program once more, for one of several tasks. Windows has no fork: the new process reads the same command line and
// is told by its environment which task is its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace host::platform {

class Worker {
 public:
  /// Starts this program with its own command line, and with what it has read of its standard input so far, or with
  /// that itself.
  explicit Worker(const std::string& task);
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  bool isStarted() const;
  /// The exit status once it has ended; nothing while it runs.
  std::optional<std::uint32_t> ended() const;
  void end() const;
  /// What it has printed.
  std::string out() const;
  std::string err() const;

  /// The task of this process; nothing in the first one.
  static std::optional<std::string> ownTask();
  /// In a worker: ends the process with nothing left behind.
  [[noreturn]] static void leave(int status);

 private:
  struct Process;
  std::unique_ptr<Process> process_;
};

void sleepMilliseconds(unsigned time);

}  // namespace host::platform
