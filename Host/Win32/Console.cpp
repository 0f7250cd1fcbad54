// The debugger's output and the console.
#include <cstdio>
#include <string>

#include "Platform/System.h"
#include "Text/Text.h"
#include "windows.h"

namespace {

host::platform::Console& console() {
  static host::platform::Console only;
  return only;
}

BOOL refused(DWORD error) {
  SetLastError(error);
  return FALSE;
}

}  // namespace

void OutputDebugStringW(LPCWSTR text) {
  static bool atLineStart = true;
  std::string shown;
  for (const char each : host::text::toUtf8(text != nullptr ? text : L"")) {
    if (atLineStart) shown += "debugger: ";
    atLineStart = each == '\n';
    shown += each;
  }
  std::fwrite(shown.data(), 1, shown.size(), stderr);
  std::fflush(stderr);
}

BOOL AllocConsole() {
  if (console().isOpen()) return refused(ERROR_ACCESS_DENIED);
  return console().open() ? TRUE : refused(ERROR_GEN_FAILURE);
}

BOOL FreeConsole() {
  if (!console().isOpen()) return refused(ERROR_INVALID_PARAMETER);
  console().close();
  return TRUE;
}

BOOL SetConsoleTitleW(LPCWSTR title) {
  if (!console().isOpen()) return refused(ERROR_INVALID_HANDLE);
  console().setTitle(title != nullptr ? title : L"");
  return TRUE;
}

HANDLE GetStdHandle(DWORD which) {
  return which == STD_OUTPUT_HANDLE && console().isOpen() ? static_cast<HANDLE>(&console()) : nullptr;
}

BOOL WriteConsoleW(HANDLE handle, const void* text, DWORD count, DWORD* written, LPVOID) {
  if (written != nullptr) *written = 0;
  if (handle != &console() || !console().isOpen() || text == nullptr) return refused(ERROR_INVALID_HANDLE);
  if (!console().write(host::text::toUtf8({static_cast<LPCWSTR>(text), count}))) return refused(ERROR_GEN_FAILURE);
  if (written != nullptr) *written = count;
  return TRUE;
}
