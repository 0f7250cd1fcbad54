// A program that reads from us and writes to us.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host::platform {

/// One process with its standard input and output in our hands; what it prints as errors is thrown away. It is ended
/// with this object, and with this program.
class ChildProcess {
 public:
  using Clock = std::chrono::steady_clock;
  enum class Transfer { Done, Closed, TimedOut };

  ChildProcess();
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// The program is looked up in PATH when it has no folder. `memoryLimit`: bytes of data, as far as the system can.
  /// True when it runs already; false when it cannot be started.
  bool start(const std::filesystem::path& program, const std::vector<std::string>& arguments,
             std::uint64_t memoryLimit);
  void stop();
  /// Its number; -1 when none runs.
  int number() const;

  Transfer send(std::string_view bytes, Clock::time_point deadline) const;
  /// Adds what has come to `buffer`, at least one byte.
  Transfer receive(std::string& buffer, Clock::time_point deadline) const;

 private:
  struct Process;
  std::unique_ptr<Process> process_;
};

}  // namespace host::platform
