// What the system says about itself and the program.
#pragma once

#include <string>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// Path of the running program, at most 1024 characters; empty when it is not known.
std::wstring programFile();
/// Empty when the variable is not set.
std::wstring environmentVariable(const wchar_t* name);
/// "Windows 10.0.19045", "Linux 6.1.0".
std::wstring systemVersion();

enum class TimeText { Seconds, Milliseconds };
/// Local time as "15.11.2026 04:10:48" or "15.11.2026 04:10:48.250".
std::wstring timeText(TimeText precision);

/// The machine's memory and the text of a system error, in several lines. Throws std::bad_alloc only.
std::wstring memorySummary(DWORD systemError);

/// Formats with Microsoft's wide meaning, whatever the length of the result.
std::wstring formatText(const wchar_t* format, std::va_list arguments);
std::wstring formatText(const wchar_t* format, ...);

}  // namespace OrvLib
