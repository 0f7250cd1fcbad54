#include "Console.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "Text/Text.h"

namespace tolmex {

using host::text::LineFeeds;
using host::text::printable;

namespace {

constexpr std::chrono::milliseconds kFirstShownAfter{400};
constexpr std::chrono::milliseconds kShownEvery{100};
constexpr std::size_t kBarCells = 24;

struct {
  std::string drawing;         // of several: named in every problem
  std::string file, name;      // what a file of ours is called
  FILE* transcript = nullptr;  // null: standard output
  int data = -1;               // where standard output led, once it carries a file
  bool barStandsThere = false;
  bool lineIsOpen = false;  // the transcript's last line has no end yet
} console;

std::size_t terminalColumns() {
  winsize size{};
  return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

}  // namespace

int complain(host::RunStatus status, const std::string& sentence) {
  ProgressBar::clear();
  // On a terminal a sentence behind a prompt would be read as its answer.
  if (console.lineIsOpen && ::isatty(STDOUT_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1) {
    std::fputc('\n', stdout);
    console.lineIsOpen = false;
  }
  std::fflush(stdout);
  std::string shown = sentence;
  for (std::size_t at = 0; !console.file.empty() && (at = shown.find(console.file, at)) != std::string::npos;) {
    shown.replace(at, console.file.size(), console.name);
    at += console.name.size();
  }
  const std::string& drawing = console.drawing;
  if (!drawing.empty() &&
      !(shown.starts_with(drawing) && shown.size() > drawing.size() && shown[drawing.size()] == ':'))
    shown.insert(0, drawing + ": ");
  std::fprintf(stderr, "tolmex: %s\n", printable(shown, LineFeeds::Spelled).c_str());
  return static_cast<int>(status);
}

int complain(const host::Problem& problem) { return complain(problem.status(), problem.sentence()); }

void printLine(const std::string& line) { std::printf("%s\n", printable(line, LineFeeds::Spelled).c_str()); }

void nameDrawingInProblems(std::string drawing) { console.drawing = std::move(drawing); }

void showFileAs(std::string file, std::string name) {
  console.file = std::move(file);
  console.name = std::move(name);
}

void printTranscript(std::wstring_view text) {
  ProgressBar::clear();
  const std::string bytes = host::text::toUtf8(text);
  std::fwrite(bytes.data(), 1, bytes.size(), console.transcript != nullptr ? console.transcript : stdout);
  if (!bytes.empty()) console.lineIsOpen = bytes.back() != '\n';
}

bool keepStandardOutputForData() {
  std::fflush(stdout);
  console.data = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (console.data < 0 || ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0) return false;
  console.transcript = stderr;
  return true;
}

bool writeStandardOutput(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(console.data, bytes.data(), bytes.size());
    if (written > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {  // the parent process may have made it so
      pollfd ready{console.data, POLLOUT, 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

ProgressBar::ProgressBar(bool isWanted) {
  const char* const terminal = std::getenv("TERM");
  isShown_ = isWanted && ::isatty(STDERR_FILENO) == 1 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

void ProgressBar::show(std::string_view label, double fraction) {
  const auto now = Clock::now();
  if (!isShown_ || now - begin_ < kFirstShownAfter || now - last_ < kShownEvery) return;
  last_ = now;
  fraction = std::clamp(fraction, 0.0, 1.0);
  const auto filled = static_cast<std::size_t>(fraction * kBarCells);
  std::string bar = "[" + std::string(filled, '#') + std::string(kBarCells - filled, '.') + "] ";
  const std::string percent = std::to_string(static_cast<int>(fraction * 100));
  bar += std::string(3 - std::min<std::size_t>(percent.size(), 3), ' ') + percent + " % ";
  // Cut where the line would wrap: a bar of two lines cannot be taken back.
  const std::size_t room = terminalColumns() - std::min(terminalColumns(), bar.size() + 1);
  const std::wstring text = host::text::fromUtf8(printable(label, LineFeeds::Spelled));
  bar += host::text::toUtf8(std::wstring_view(text).substr(0, room));
  std::fflush(stdout);
  std::fprintf(stderr, "\r\x1b[K%s", bar.c_str());
  console.barStandsThere = true;
}

void ProgressBar::clear() {
  if (!console.barStandsThere) return;
  std::fprintf(stderr, "\r\x1b[K");
  console.barStandsThere = false;
}

void showMeter(ProgressBar& bar, std::wstring_view label, double fraction) {
  if (fraction < 0) {
    ProgressBar::clear();
  } else {
    bar.show(host::text::toUtf8(label), fraction);
  }
}

}  // namespace tolmex
