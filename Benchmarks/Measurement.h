// Time and memory of one step, each try in a process of its own.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace benchmarks {

/// Given to a step: what runs inside `time` is measured.
class Clock {
 public:
  void time(const std::function<void()>& work);
  double seconds() const { return seconds_; }
  /// The same as processor time without the system's share: a busy machine does not lengthen it much.
  double userSeconds() const { return userSeconds_; }

 private:
  double seconds_ = 0;
  double userSeconds_ = 0;
};

struct Measurement {
  double seconds = 0;         // shortest try
  double userSeconds = 0;     // shortest try
  std::size_t peakBytes = 0;  // largest resident size of any try, preparation included
  std::string failure;        // of the first try that failed; the rest then does not hold
};

/// Runs the step `tries` times in forked children, so that nothing that one leaves behind helps or weighs on another.
/// A step that fails throws.
Measurement measure(int tries, const std::function<void(Clock&)>& step);

}  // namespace benchmarks
