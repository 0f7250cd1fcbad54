// What the program says: problems, the transcript, and how far long work has come.
#pragma once

#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>

#include "Problems/Problem.h"

namespace tolmex {

/// Prints one sentence to standard error and answers the status. Names in it may hold anything: it is made printable.
int complain(host::RunStatus status, const std::string& sentence);
/// The same with a problem; answers its exit status. What is only told ends with status 0.
int complain(const host::Problem& problem);
/// From now on sentences that do not begin with this drawing's name are given it: one of several is worked on.
void nameDrawingInProblems(std::string drawing);
/// Sentences that name `file` say `name` in its place.
void showFileAs(std::string file, std::string name);

/// A line of results to standard output, made printable.
void printLine(const std::string& line);

/// Text of the command line: to standard output, or to standard error when standard output carries a file.
void printTranscript(std::wstring_view text);

/// From now on standard output carries a file: whatever this program or a plug-in prints there goes to standard error.
/// False when there is no standard output.
bool keepStandardOutputForData();
/// Bytes of that file; false when they cannot be written.
bool writeStandardOutput(std::string_view bytes);

/// A bar on standard error, if that is a terminal; work that is done at once shows none.
class ProgressBar {
 public:
  explicit ProgressBar(bool isWanted = true);
  ~ProgressBar() { clear(); }
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// `fraction` from 0 to 1.
  void show(std::string_view label, double fraction);
  /// Takes it from the screen; the next `show` brings it back. Whatever prints calls it first.
  static void clear();

 private:
  using Clock = std::chrono::steady_clock;
  bool isShown_;
  Clock::time_point begin_ = Clock::now();
  Clock::time_point last_{};
};

/// A plug-in's progress meter as such a bar; a negative fraction takes it away.
void showMeter(ProgressBar& bar, std::wstring_view label, double fraction);

}  // namespace tolmex
