#include "Platform/PlainNumbers.h"

namespace host::platform {

// Nothing in the process leaves the locale "C", which has the point.
PlainNumbers::PlainNumbers() : previous_(nullptr) {}
PlainNumbers::~PlainNumbers() = default;

}  // namespace host::platform
