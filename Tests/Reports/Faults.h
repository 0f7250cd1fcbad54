// Failures on request: this program stands in for a few functions of the system and the host.
#pragma once

#include <functional>
#include <string>

#include "windows.h"

namespace tests::faults {

enum class Lasting { One, AllFromThere };
/// The n-th allocation, from 1, that code of the module asks for fails, or that and all later ones; those of the host
/// do not count. Until `off`.
void failAllocation(const char* moduleFile, int n, Lasting lasting);
/// Allocations asked for since; more than n: the n-th has failed.
int off();

/// While set, message boxes are answered by it.
extern std::function<int(const std::wstring& text, const std::wstring& caption, UINT type)> messageBox;
/// acutNewRb answers null.
extern bool newRbFails;

}  // namespace tests::faults
