#include "Platform/Streams.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace host::platform {

namespace {

int redirected = -1;  // where standard output led

int numberOf(Stream stream) { return static_cast<int>(stream); }

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {  // the parent process may have made it so
      pollfd ready{file, POLLOUT, 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

}  // namespace

void prepareStreams() {
  // Closed standard streams: the next files opened would take their numbers, and what is printed would go into them.
  // The device in their place is opened so that using it fails as the closed stream did.
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
  // Writing then fails with a reason that can be told: a file beyond the limit, a reader of standard output that left.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
}

std::vector<std::string> programArguments(int count, char** arguments) { return {arguments, arguments + count}; }

bool isTerminal(Stream stream) { return ::isatty(numberOf(stream)) == 1; }

std::size_t terminalColumns(Stream stream) {
  winsize size{};
  return ::ioctl(numberOf(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool isErasable(Stream stream) {
  const char* const terminal = std::getenv("TERM");
  return isTerminal(stream) && terminal != nullptr && std::string_view(terminal) != "dumb";
}

bool readerLeft() {
  pollfd out{STDOUT_FILENO, 0, 0};
  return ::poll(&out, 1, 0) == 1 && (out.revents & POLLERR) != 0;
}

void sayFromHandler(std::string_view sentence) {
  pollfd ready{STDERR_FILENO, POLLOUT, 0};
  if (::poll(&ready, 1, 0) != 1 || (ready.revents & POLLOUT) == 0) return;
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, sentence.data(), sentence.size());
}

std::optional<std::string> readLine(std::FILE* stream) {
  char* buffer = nullptr;
  std::size_t size = 0;
  const ssize_t count = ::getline(&buffer, &size, stream);
  std::optional<std::string> line;
  if (count >= 0) line.emplace(buffer, static_cast<std::size_t>(count));
  std::free(buffer);
  if (line && line->ends_with('\n')) line->pop_back();
  return line;
}

bool redirectOutput() {
  std::fflush(stdout);
  redirected = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  return redirected >= 0 && ::dup2(STDERR_FILENO, STDOUT_FILENO) >= 0;
}

bool writeRedirected(std::string_view bytes) { return writeAll(redirected, bytes); }

InputFile::InputFile(const std::optional<std::filesystem::path>& name)
    : file_(name ? ::open(name->c_str(), O_RDONLY | O_CLOEXEC) : STDIN_FILENO) {
  struct stat status {};
  if (file_ < 0 || ::fstat(static_cast<int>(file_), &status) != 0) {
    fault_ = std::strerror(errno);
    return;
  }
  const bool isNull = S_ISCHR(status.st_mode) && status.st_rdev == makedev(1, 3);
  const bool isDevice =
      (S_ISCHR(status.st_mode) && !isNull && ::isatty(static_cast<int>(file_)) == 0) || S_ISBLK(status.st_mode);
  kind_ = S_ISDIR(status.st_mode) ? Kind::Folder : isDevice ? Kind::Device : Kind::Ordinary;
}

InputFile::~InputFile() {
  if (file_ > STDIN_FILENO) ::close(static_cast<int>(file_));
}

std::optional<std::size_t> InputFile::read(char* buffer, std::size_t size) {
  for (;;) {
    const ssize_t count = ::read(static_cast<int>(file_), buffer, size);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno == EINTR) continue;
    fault_ = std::strerror(errno);
    return std::nullopt;
  }
}

std::filesystem::path standardInputName() { return "/dev/stdin"; }

// In memory, without a name of its own: a path leads to the open file.
KeptFile::KeptFile() : file_(::memfd_create("drawing", MFD_CLOEXEC)) {
  if (isOpen()) {
    path_ = "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(file_);
  } else {
    fault_ = std::strerror(errno);
  }
}

bool KeptFile::write(std::string_view bytes) {
  if (writeAll(file_, bytes)) return true;
  fault_ = std::strerror(errno);
  return false;
}

void KeptFile::drop() {
  if (isOpen()) ::close(file_);
  file_ = -1;
}

}  // namespace host::platform
