#pragma once

#include <array>
#include <csignal>

namespace tolmex {

/// The signals that end programs: Ctrl+C, `kill`, and the terminal that goes away. One that was ignored when the
/// program was started stays so.
inline constexpr std::array kEndingSignals = {SIGINT, SIGTERM, SIGHUP};

}  // namespace tolmex
