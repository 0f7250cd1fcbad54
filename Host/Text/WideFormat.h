// The one formatter behind acutPrintf and all later wide formatting.
#pragma once

#include <cstdarg>
#include <string>

namespace host::text {

/// Formats with Microsoft's wide meaning: %s, %ls and %ws take a wide string, %S and %hs a narrow one (UTF-8), %c and
/// %lc a wide character, %ld and %lu 32-bit integers, %I64d and %lld 64-bit ones, %p pointers, * widths and precisions.
/// A null string prints as "(null)". An unknown conversion is copied as it stands. "%n" writes nothing.
std::wstring formatWide(const wchar_t* format, std::va_list arguments);
std::wstring formatWide(const wchar_t* format, ...);

}  // namespace host::text
