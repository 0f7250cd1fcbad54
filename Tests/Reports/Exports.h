// The debug log's functions as other modules find them, and processes that use them.
#pragma once

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include "OwnFolder.h"
#include "Places.h"

namespace tests {

namespace fs = std::filesystem;
inline const fs::path kModule = fs::path(kBinDir) / "tolmex.arx";

/// Loads the module, which may be in memory already.
class Exports {
 public:
  Exports() : library(dlopen(kModule.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (library == nullptr) return;
    find(print, "DebugPrint");
    find(printTo, "DebugPrintM");
    find(add, "DebugPrintAddMode");
    find(remove, "DebugPrintRemoveMode");
    find(set, "DebugPrintSetMode");
    find(setFile, "DebugPrintSetLogFileName");
  }
  Exports(const Exports&) = delete;
  Exports& operator=(const Exports&) = delete;
  ~Exports() { unload(); }
  void unload() {
    if (library != nullptr) dlclose(library);
    library = nullptr;
  }

  void* library;
  int (*print)(const wchar_t*, ...) = nullptr;
  int (*printTo)(unsigned, const wchar_t*, ...) = nullptr;
  void (*add)(unsigned) = nullptr;
  void (*remove)(unsigned) = nullptr;
  void (*set)(unsigned) = nullptr;
  void (*setFile)(const wchar_t*) = nullptr;

 private:
  template <class Function>
  void find(Function& function, const char* name) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    EXPECT_NE(function, nullptr) << name;
  }
};

/// A folder of the test's own.
class InFolder : public testing::Test {
 protected:
  struct Outcome {
    int status = -1;  // 128 + N when signal N ended it
    std::string out, err;

    bool operator==(const Outcome&) const = default;
    friend void PrintTo(const Outcome& outcome, std::ostream* stream) {
      *stream << "status " << outcome.status << "\nout: " << outcome.out << "\nerr: " << outcome.err;
    }
  };
  /// Runs the body in a process of its own; what it answers is the exit status.
  Outcome inProcess(const std::function<int()>& body) const {
    const pid_t child = start(body);
    return finish(child);
  }
  pid_t start(const std::function<int()>& body) const {
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child != 0) return child;
    for (const auto& [name, target] : {std::pair("out", STDOUT_FILENO), std::pair("err", STDERR_FILENO)}) {
      const int file = ::open((folder / name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      if (file < 0 || ::dup2(file, target) < 0) ::_exit(120);
    }
    ::setsid();  // no terminal
    const int status = body();
    std::fflush(nullptr);
    ::_exit(status);
  }
  Outcome finish(pid_t child) const {
    int status = 0;
    ::waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), fileText(folder / "out"),
            fileText(folder / "err")};
  }
  /// Waits for it; false after ten seconds.
  static bool eventually(const std::function<bool()>& isSo) {
    for (int i = 0; i < 1000; ++i) {
      if (isSo()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }

  const OwnFolder own;
  const fs::path& folder = own.path;
};

}  // namespace tests
