#include "Console.h"

#include <algorithm>
#include <cstdlib>

#include "Platform/Streams.h"
#include "Text/Text.h"

namespace tolmex {

using host::text::LineFeeds;
using host::text::printable;
namespace platform = host::platform;
using platform::Stream;

namespace {

constexpr std::chrono::milliseconds kFirstShownAfter{400};
constexpr std::chrono::milliseconds kShownEvery{100};
constexpr std::size_t kBarCells = 24;

struct {
  std::string drawing;         // of several: named in every problem
  std::string file, name;      // what a file of ours is called
  FILE* transcript = nullptr;  // null: standard output
  bool barStandsThere = false;
  bool lineIsOpen = false;  // the transcript's last line has no end yet
} console;

std::size_t terminalColumns() {
  const std::size_t columns = platform::terminalColumns(Stream::Err);
  return columns > 0 ? columns : 80;
}

}  // namespace

int complain(host::RunStatus status, const std::string& sentence) {
  ProgressBar::clear();
  // On a terminal a sentence behind a prompt would be read as its answer.
  if (console.lineIsOpen && platform::isTerminal(Stream::Out) && platform::isTerminal(Stream::Err)) {
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
  const std::string line = "tolmex: " + printable(shown, LineFeeds::Spelled) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
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
  static const bool isSeen = platform::isTerminal(Stream::Out);
  if (isSeen) std::fflush(stdout);
}

bool keepStandardOutputForData() {
  if (!platform::redirectOutput()) return false;
  console.transcript = stderr;
  return true;
}

bool writeStandardOutput(std::string_view bytes) { return platform::writeRedirected(bytes); }

ProgressBar::ProgressBar(bool isWanted) { isShown_ = isWanted && platform::isErasable(Stream::Err); }

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
