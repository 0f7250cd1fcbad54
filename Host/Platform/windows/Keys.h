// Keys and lines of the console.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace host::platform {

/// Calls a function in a thread of its own when the user presses Ctrl+C, closes the console window or leaves; null ends
/// that, and the process is ended again as it would be. `waits`: the system gives the process no more time when the
/// function comes back.
void onEndAsked(void (*ask)(bool waits));

enum class LineEnd { Entered, Tab, Cancelled, Gone };
/// A line edited by the console's own means, with its history. `line`: what stands there already, and then what was
/// typed, UTF-8. Tab ends it when it is asked for.
LineEnd readConsoleLine(std::string& line, bool endsAtTab);

}  // namespace host::platform
