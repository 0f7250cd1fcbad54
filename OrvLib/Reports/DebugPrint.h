// The debug log of the process, as other modules use it too: they find these functions by name in the loaded module.
// Formats have Microsoft's wide meaning (%s takes a wide string); no line break is added. Nothing is thrown.
#pragma once

#include "OrvLib/ARX/Export.h"

/// Prints to every destination of the mode (DebugLog::Destination). Sum of the results of the destinations: characters
/// written, or a negative number for one that failed. 0 when the mode is 0.
ORV_EXPORT int DebugPrint(const wchar_t* format, ...);
/// The same to the destinations of `mode`, for this message alone.
ORV_EXPORT int DebugPrintM(unsigned int mode, const wchar_t* format, ...);
ORV_EXPORT void DebugPrintAddMode(unsigned int bits);
ORV_EXPORT void DebugPrintRemoveMode(unsigned int bits);
ORV_EXPORT void DebugPrintSetMode(unsigned int mode);
/// Ends the present log file; one of the new name is begun by the next message for it.
ORV_EXPORT void DebugPrintSetLogFileName(const wchar_t* name);
