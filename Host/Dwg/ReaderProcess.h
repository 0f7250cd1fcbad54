// The helper process that reads DWG drawings.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/ChildProcess.h"

namespace host::dwg {

struct ReaderSettings {
  std::filesystem::path program = "node";              // looked up in PATH when it has no folder
  std::filesystem::path script;                        // reader.mjs
  std::chrono::milliseconds timeLimit{60000};          // for one drawing
  std::uint64_t memoryLimit = std::uint64_t{4} << 30;  // bytes of data; each drawing sets one GB aside
  std::size_t longestAnswer = std::size_t{1} << 30;    // bytes of DXF text
};

/// A process that takes drawings one after the other. A drawing that makes it crash, hang or grow too large costs that
/// drawing only: the next one gets a new process.
class ReaderProcess {
 public:
  explicit ReaderProcess(ReaderSettings settings) : settings_(std::move(settings)) {}

  enum class Outcome { Ok, Damaged, ReaderMissing, ProgramMissing, TooSlow, Crashed };
  /// `answer` becomes the DXF text, or for Damaged a clause saying why.
  Outcome convert(std::string_view dwg, std::string& answer);
  /// The number of the process that runs; -1 without one.
  int process() const { return process_.number(); }

 private:
  bool start();
  platform::ChildProcess::Transfer exchange(std::string_view dwg, std::string& status, std::string& answer) const;

  ReaderSettings settings_;
  platform::ChildProcess process_;
};

}  // namespace host::dwg
