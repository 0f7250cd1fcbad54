// Windows' basic types and macros, with Windows' values and meanings; strings are wide throughout. The folder stands
// for the system's own headers where the system is not Windows.
#pragma once

#include <cstdint>

#ifdef _WIN32  // toolkits declare handles as the system does
#define HostWindow HWND__
#define HostDeviceContext HDC__
#define HostBrush HBRUSH__
#define HostModule HINSTANCE__
#endif

// ---- types ----------------------------------------------------------------------------------------------------------
struct HostWindow;
struct HostDeviceContext;
struct HostBrush;
struct HostHook;
struct HostModule;

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using LONG = std::int32_t;
using COLORREF = std::uint32_t;  // 0x00BBGGRR
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using DWORD_PTR = std::uintptr_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using LPWSTR = wchar_t*;
using LPCWSTR = const wchar_t*;
using LPVOID = void*;
using HANDLE = void*;
using HWND = HostWindow*;
using HDC = HostDeviceContext*;
using HBRUSH = HostBrush*;
using HHOOK = HostHook*;
using HGDIOBJ = void*;
using HMENU = void*;
using HINSTANCE = HostModule*;  // where the loader put a module
using HMODULE = HINSTANCE;
using HRSRC = void*;
using HGLOBAL = void*;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;
#define CALLBACK
#define WINAPI

struct POINT {
  LONG x;
  LONG y;
};
struct SIZE {
  LONG cx;
  LONG cy;
};
struct RECT {
  LONG left;
  LONG top;
  LONG right;
  LONG bottom;
};
using LPRECT = RECT*;
using LPCRECT = const RECT*;

// The macros that Windows has kept since its beginnings: what uses such a name as its own does not compile there
// either.
#define near
#define far
#ifndef NOMINMAX
#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))
#endif
