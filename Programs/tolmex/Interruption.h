// Ctrl+C: work ends soon, and no file is left half written.
#pragma once

#include "Editor/Result.h"

namespace tolmex {

/// While one lives, SIGINT and SIGTERM ask the running script to stop. Work that does not notice is ended with
/// one sentence after `kPatienceMs`. One at a time.
class Interruption {
 public:
  static constexpr long kPatienceMs = 600;

  /// `status` is the exit status of work that has to be ended.
  explicit Interruption(host::editor::RunStatus status);
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  static bool isAsked();

  /// A file is being written: it may be finished first, so that no temporary file stays behind.
  class Writing {
   public:
    Writing();
    ~Writing();
    Writing(const Writing&) = delete;
    Writing& operator=(const Writing&) = delete;
  };
};

}  // namespace tolmex
