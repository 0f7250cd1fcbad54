#include "Inputs.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <functional>

#include "Console.h"
#include "Editor/ScriptText.h"
#include "Outputs.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Code;
using host::Problem;
using host::problemOf;
using host::Result;

namespace {

std::string cannotBeRead(int fault) { return std::string("cannot be read: ") + std::strerror(fault); }

/// A file that is read from its beginning to its end.
class Stream {
 public:
  /// Problems are of this kind; `whose` begins their texts ("the script ").
  Stream(const fs::path& name, Code code, std::string whose)
      : file_(isStandardStream(name) ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)),
        name_(shownName(name)),
        code_(code),
        whose_(std::move(whose)) {
    isKnown_ = file_ >= 0 && ::fstat(file_, &status_) == 0;
    fault_ = errno;
  }
  ~Stream() {
    if (file_ > STDIN_FILENO) ::close(file_);
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  Problem problem(std::string why) const { return problemOf(code_, name_, std::move(why)); }

  /// Whether it could be opened and can be what is wanted ("a drawing"): devices never end.
  Result<> check(const std::string& wanted) const {
    if (!isKnown_) return problem(whose_ + cannotBeRead(fault_));
    if (S_ISDIR(status_.st_mode)) return problem("this is a folder, not " + wanted);
    const bool isNull = S_ISCHR(status_.st_mode) && status_.st_rdev == makedev(1, 3);
    const bool isDevice = (S_ISCHR(status_.st_mode) && !isNull && ::isatty(file_) == 0) || S_ISBLK(status_.st_mode);
    if (isDevice) return problem("this is a device, not " + wanted);
    return {};
  }

  /// `take` is given the bytes piece by piece and may refuse them.
  Result<> read(std::size_t most, const std::function<bool(std::string_view)>& take) const {
    std::array<char, 1 << 16> buffer{};
    std::size_t size = 0;
    for (;;) {
      const ssize_t count = ::read(file_, buffer.data(), buffer.size());
      if (count < 0 && errno == EINTR) continue;
      if (count == 0) return {};
      const bool isTaken = count > 0 && take({buffer.data(), static_cast<std::size_t>(count)});
      if (!isTaken) return problem(whose_ + cannotBeRead(errno));
      size += static_cast<std::size_t>(count);
      if (size > most) return problem(whose_ + "is longer than " + std::to_string(most >> 20) + " MB");
    }
  }

 private:
  int file_;
  std::string name_;
  Code code_;
  std::string whose_;
  bool isKnown_ = false;
  int fault_ = 0;
  struct stat status_ {};
};

/// What a pipe may bring: it has to stay in memory, beside what is made of it.
std::size_t mostOfPipe() {
  constexpr std::size_t kMost = std::size_t{4} << 30;
  const long pages = ::sysconf(_SC_PHYS_PAGES), pageSize = ::sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) return kMost;
  return std::min(kMost, static_cast<std::size_t>(pages) * static_cast<std::size_t>(pageSize) / 2);
}

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

Result<fs::path> readableFile(const fs::path& name) {
  std::error_code error;
  // Files are read where they are, and the reader reports what cannot be opened.
  if (!isStandardStream(name)) {
    const fs::file_status status = fs::status(name, error);
    if (!fs::is_fifo(status) && !fs::is_character_file(status) && !fs::is_block_file(status)) return name;
  }
  const Stream stream(name, Code::DrawingUnreadable, "");
  if (const Result<> fit = stream.check("a drawing"); !fit) return fit;
  // Kept open until the program ends, so that a path leads to it.
  const int copy = ::memfd_create("drawing", MFD_CLOEXEC);
  if (copy < 0) return stream.problem(cannotBeRead(errno));
  const Result<> read = stream.read(mostOfPipe(), [copy](std::string_view bytes) { return writeAll(copy, bytes); });
  if (!read) {
    ::close(copy);
    return read;
  }
  std::string path = "/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(copy);
  showFileAs(path, shownName(name));
  return fs::path(path);
}

Result<std::string> readScript(const fs::path& name) {
  const Stream stream(name, Code::ScriptUnreadable, "the script ");
  if (const Result<> fit = stream.check("a script"); !fit) return fit;
  std::string bytes;
  const Result<> read = stream.read(host::editor::kLargestScript, [&bytes](std::string_view piece) {
    bytes += piece;
    return true;
  });
  if (!read) return read;
  Result<host::editor::ScriptText> script = host::editor::scriptText(std::move(bytes), shownName(name));
  if (!script) return script;
  if (script->remark) complain(*script->remark);
  return std::move(script->utf8);
}

}  // namespace tolmex
