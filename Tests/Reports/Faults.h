// Failures on request: this program stands in for a few functions of the host.
#pragma once

#include <functional>
#include <string>

#include "Faults/Allocations.h"
#include "windows.h"

namespace tests::faults {

/// While set, message boxes are answered by it.
extern std::function<int(const std::wstring& text, const std::wstring& caption, UINT type)> messageBox;
/// acutNewRb answers null.
extern bool newRbFails;

}  // namespace tests::faults
