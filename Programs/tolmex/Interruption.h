// Ctrl+C: work ends soon, and no file is left half written.
#pragma once

#include "Problems/Problem.h"

namespace tolmex {

/// While one lives, the signals that end programs ask the running script to stop. Work that does not notice is ended
/// with one sentence after `kPatienceMs`. One at a time.
class Interruption {
 public:
  static constexpr long kPatienceMs = 600;
  /// `status` is the exit status of work that has to be ended.
  explicit Interruption(host::RunStatus status);
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  static bool isAsked();
  /// The exit status of interrupted work.
  static host::RunStatus status();

  /// A file is being written: it may be finished first, so that no temporary file stays behind. Not for pipes: nobody
  /// may ever read from them.
  class Writing {
   public:
    Writing();
    ~Writing();
    Writing(const Writing&) = delete;
    Writing& operator=(const Writing&) = delete;
  };
};

}  // namespace tolmex
