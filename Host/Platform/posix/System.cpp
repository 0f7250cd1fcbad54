#include "Platform/System.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <sstream>

namespace host::platform {

namespace {

constexpr int kPatience = 1000;  // milliseconds that a stopped terminal is waited for

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
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
      continue;
    }
    if (errno == EINTR) continue;
    pollfd ready{file, POLLOUT, 0};
    if ((errno != EAGAIN && errno != EWOULDBLOCK) || ::poll(&ready, 1, kPatience) <= 0) return false;
  }
  return true;
}

}  // namespace

std::optional<std::string> environment(const std::string& name) {
  const char* const found = std::getenv(name.c_str());  // NOLINT(concurrency-mt-unsafe): nothing here changes it
  return found != nullptr ? std::optional<std::string>(found) : std::nullopt;
}

std::uint32_t processId() { return static_cast<std::uint32_t>(::getpid()); }

std::string processStart(std::int64_t process) {
  std::ifstream in("/proc/" + std::to_string(process) + "/stat", std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  constexpr int kStart = 19;  // behind the name in brackets, which may hold blanks
  const std::size_t bracket = text.rfind(')');
  if (bracket == std::string::npos) return {};
  std::istringstream fields(text.substr(bracket + 1));
  std::string field;
  for (int i = 0; i <= kStart; ++i) fields >> field;
  return fields ? field : std::string();
}

LocalTime localTime() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  std::tm local{};
  ::localtime_r(&now.tv_sec, &local);
  constexpr long kNanosecondsInMillisecond = 1000000;
  return {
      local.tm_year + 1900, local.tm_mon + 1, local.tm_wday, local.tm_mday,
      local.tm_hour,        local.tm_min,     local.tm_sec,  static_cast<int>(now.tv_nsec / kNanosecondsInMillisecond)};
}

std::optional<SystemVersion> systemVersion() {
  utsname system{};
  if (::uname(&system) != 0) return std::nullopt;
  SystemVersion version;
  version.name = static_cast<const char*>(system.sysname);
  // "6.1.0-21-amd64"
  const std::string_view release = static_cast<const char*>(system.release);
  std::size_t at = 0;
  for (std::uint32_t& number : version.numbers) {
    const auto [end, error] = std::from_chars(release.data() + at, release.data() + release.size(), number);
    at = static_cast<std::size_t>(end - release.data());
    if (error != std::errc() || at >= release.size() || release[at] != '.') break;
    ++at;
  }
  return version;
}

std::filesystem::path stateFolder() {
  if (const auto state = environment("XDG_STATE_HOME"); state && state->starts_with('/'))
    return std::filesystem::path(*state) / "tolmex";
  const auto home = environment("HOME");
  return home && home->starts_with('/') ? std::filesystem::path(*home) / ".local/state/tolmex"
                                        : std::filesystem::path();
}

bool hasDisplay() {
  for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    if (const auto value = environment(name); value && !value->empty()) return true;
  }
  return false;
}

std::vector<std::filesystem::path> fontFolders() {
  std::vector<std::filesystem::path> folders;
  const auto home = environment("HOME");
  if (const auto data = environment("XDG_DATA_HOME"); data && data->starts_with('/')) {
    folders.push_back(std::filesystem::path(*data) / "fonts");
  } else if (home) {
    folders.push_back(std::filesystem::path(*home) / ".local/share/fonts");
  }
  if (home) folders.push_back(std::filesystem::path(*home) / ".fonts");
  std::istringstream shared(environment("XDG_DATA_DIRS").value_or(""));
  for (std::string folder; std::getline(shared, folder, ':');) {
    if (folder.starts_with('/')) folders.push_back(std::filesystem::path(folder) / "fonts");
  }
  folders.emplace_back("/usr/share/fonts");
  folders.emplace_back("/usr/local/share/fonts");
  return folders;
}

std::string fontConfiguration() { return {}; }

std::vector<std::filesystem::path> strokeFontFolders() {
  std::vector<std::filesystem::path> folders;
  for (const std::filesystem::path& folder : fontFolders())
    if (folder.filename() == "fonts") folders.push_back(folder.parent_path() / "librecad/fonts");
  return folders;
}

bool Console::open() {
  handle_ = ::open("/dev/tty", O_WRONLY | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
  return isOpen();
}

void Console::close() {
  if (isOpen()) ::close(static_cast<int>(handle_));
  handle_ = -1;
}

// The terminal belongs to the user and keeps its title.
void Console::setTitle(std::wstring_view) const {}

bool Console::write(std::string_view utf8) const { return writeAll(static_cast<int>(handle_), utf8); }

}  // namespace host::platform
