// Basic types of the host interface.
#pragma once

#include <cstddef>
#include <cstdint>

using ACHAR = wchar_t;  // 16 bits on Windows, 32 on Linux: never assume its size

#ifndef ACRX_T
#define ACRX_T(x) L##x
#endif

/// Marks what the embedded host gives to plug-ins; everything else stays hidden.
#ifdef _WIN32  // a library without marks gives all its names
#define ADESK_EXPORT
#else
#define ADESK_EXPORT __attribute__((visibility("default")))
#endif

struct Adesk {
  using Int8 = std::int8_t;
  using Int16 = std::int16_t;
  using Int32 = std::int32_t;
  using Int64 = std::int64_t;
  using UInt8 = std::uint8_t;
  using UInt16 = std::uint16_t;
  using UInt32 = std::uint32_t;
  using UInt64 = std::uint64_t;
  using GsMarker = std::intptr_t;
  using Boolean = bool;
  static constexpr bool kFalse = false;
  static constexpr bool kTrue = true;
};
