// The debugger's output and the console.
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <string>
#include <string_view>

#include "Text/Text.h"
#include "windows.h"

namespace {

constexpr int kPatience = 1000;  // milliseconds that a stopped terminal is waited for

int& consoleFile() {
  static int file = -1;
  return file;
}

/// A program in the background that writes to its terminal would be stopped by this signal, if the user wants it so.
class WithoutTerminalStop {
 public:
  WithoutTerminalStop() {
    sigset_t stop;
    sigemptyset(&stop);
    sigaddset(&stop, SIGTTOU);
    pthread_sigmask(SIG_BLOCK, &stop, &former_);
  }
  WithoutTerminalStop(const WithoutTerminalStop&) = delete;
  WithoutTerminalStop& operator=(const WithoutTerminalStop&) = delete;
  ~WithoutTerminalStop() { pthread_sigmask(SIG_SETMASK, &former_, nullptr); }

 private:
  sigset_t former_{};
};

bool writeAll(int file, std::string_view bytes) {
  const WithoutTerminalStop guard;
  while (!bytes.empty()) {
    const ssize_t count = write(file, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
      continue;
    }
    if (errno == EINTR) continue;
    pollfd ready{file, POLLOUT, 0};
    if ((errno != EAGAIN && errno != EWOULDBLOCK) || poll(&ready, 1, kPatience) <= 0) return false;
  }
  return true;
}

BOOL refused(DWORD error) {
  SetLastError(error);
  return FALSE;
}

}  // namespace

void OutputDebugStringW(LPCWSTR text) {
  static bool atLineStart = true;
  std::string shown;
  for (const char each : host::text::toUtf8(text != nullptr ? text : L"")) {
    if (atLineStart) shown += "debugger: ";
    atLineStart = each == '\n';
    shown += each;
  }
  std::fwrite(shown.data(), 1, shown.size(), stderr);
  std::fflush(stderr);
}

BOOL AllocConsole() {
  if (consoleFile() >= 0) return refused(ERROR_ACCESS_DENIED);
  consoleFile() = open("/dev/tty", O_WRONLY | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
  return consoleFile() >= 0 ? TRUE : refused(ERROR_GEN_FAILURE);
}

BOOL FreeConsole() {
  if (consoleFile() < 0) return refused(ERROR_INVALID_PARAMETER);
  close(consoleFile());
  consoleFile() = -1;
  return TRUE;
}

BOOL SetConsoleTitleW(LPCWSTR) { return consoleFile() >= 0 ? TRUE : refused(ERROR_INVALID_HANDLE); }

HANDLE GetStdHandle(DWORD which) {
  return which == STD_OUTPUT_HANDLE && consoleFile() >= 0 ? static_cast<HANDLE>(&consoleFile()) : nullptr;
}

BOOL WriteConsoleW(HANDLE console, const void* text, DWORD count, DWORD* written, LPVOID) {
  if (written != nullptr) *written = 0;
  if (console != &consoleFile() || consoleFile() < 0 || text == nullptr) return refused(ERROR_INVALID_HANDLE);
  if (!writeAll(consoleFile(), host::text::toUtf8({static_cast<LPCWSTR>(text), count})))
    return refused(ERROR_GEN_FAILURE);
  if (written != nullptr) *written = count;
  return TRUE;
}
