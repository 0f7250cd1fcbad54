// Microsoft's names of wide-character functions that plug-ins use; the stand-ins have the same meaning.
#pragma once

#include <cstdarg>
#include <cstdio>
#include <cwchar>

#include "adesk.h"

#ifdef _WIN32
// Our own host takes none of the system's: what is formatted and read is the same everywhere. The system's headers have
// declared them already.
#include <cstdlib>
#define _wtof tolmexhost_wtof
#define _wtoi tolmexhost_wtoi
#define _wcsicmp tolmexhost_wcsicmp
#define _wcsnicmp tolmexhost_wcsnicmp
#define _snwprintf tolmexhost_snwprintf
#define _vsnwprintf tolmexhost_vsnwprintf
#define _wfsopen tolmexhost_wfsopen
#define _waccess tolmexhost_waccess
#endif

// The names are Microsoft's. NOLINTBEGIN(bugprone-reserved-identifier)
/// Leading number with "." as decimal mark whatever the locale; 0 without one.
ADESK_EXPORT double _wtof(const ACHAR* text);
/// Leading decimal integer, saturating; 0 without one.
ADESK_EXPORT int _wtoi(const ACHAR* text);
/// Comparison without regard to case.
ADESK_EXPORT int _wcsicmp(const ACHAR* a, const ACHAR* b);
ADESK_EXPORT int _wcsnicmp(const ACHAR* a, const ACHAR* b, std::size_t count);
/// Microsoft's wide formatting (see acutPrintf). At most `size` characters with the terminator, always terminated;
/// answers the number of characters written, or -1 when the text was cut.
ADESK_EXPORT int _snwprintf(ACHAR* buffer, std::size_t size, const ACHAR* format, ...);
ADESK_EXPORT int _vsnwprintf(ACHAR* buffer, std::size_t size, const ACHAR* format, std::va_list arguments);
/// Opens a file by its wide name with sharing allowed; null on failure.
ADESK_EXPORT std::FILE* _wfsopen(const ACHAR* name, const ACHAR* mode, int shareFlag);
/// 0 when the file exists and can be accessed in the mode (0 exists, 2 write, 4 read), -1 otherwise.
ADESK_EXPORT int _waccess(const ACHAR* name, int mode);
// NOLINTEND(bugprone-reserved-identifier)
