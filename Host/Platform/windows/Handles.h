// What the system hands out, closed by itself; processes with their streams.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Platform/windows/Windows.h"

namespace host::platform {

class Handle {
 public:
  Handle() = default;
  explicit Handle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle() { reset(); }

  void reset() {
    if (handle_ != nullptr) ::CloseHandle(std::exchange(handle_, nullptr));
  }
  HANDLE get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  HANDLE handle_ = nullptr;
};

struct StartedProcess {
  Handle process;
  Handle job;  // ends the process when it is closed
  DWORD number = 0;
};

/// Starts a program with these standard streams, which are the only handles it inherits. Its process is empty when it
/// cannot be started.
StartedProcess startProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments, HANDLE in,
                            HANDLE out, HANDLE err, std::uint64_t memoryLimit);

/// "NUL", or a file, to be inherited.
Handle openInherited(const std::filesystem::path& file, bool writes);

}  // namespace host::platform
