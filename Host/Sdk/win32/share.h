// How a file may be shared with others while it is open.
#pragma once

inline constexpr int _SH_DENYNO = 0x40;  // NOLINT(bugprone-reserved-identifier): Microsoft's name
