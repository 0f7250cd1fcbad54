// What an operation of the host came to.
#pragma once

#include <string>

namespace host::editor {

/// Also the exit status of programs.
enum class RunStatus { Done = 0, WrongUsage = 1, DrawingUnreadable = 2, ScriptFailed = 3, OutputFailed = 4 };

/// `message` is one sentence in UTF-8 that names the file, line or command; empty when done.
struct Result {
  RunStatus status = RunStatus::Done;
  std::string message;
  explicit operator bool() const { return status == RunStatus::Done; }
};

}  // namespace host::editor
