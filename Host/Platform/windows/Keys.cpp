#include "Platform/windows/Keys.h"

#include <array>
#include <atomic>

#include "Platform/windows/Windows.h"

namespace host::platform {

namespace {

std::atomic<void (*)(bool)> asked = nullptr;
std::atomic<bool> isReading = false;

/// Ends the reading of a line as Ctrl+C among its characters does.
void cancelLine() {
  INPUT_RECORD key{};
  key.EventType = KEY_EVENT;
  key.Event.KeyEvent.bKeyDown = TRUE;
  key.Event.KeyEvent.wRepeatCount = 1;
  key.Event.KeyEvent.wVirtualKeyCode = 'C';
  key.Event.KeyEvent.uChar.UnicodeChar = L'\x03';
  key.Event.KeyEvent.dwControlKeyState = LEFT_CTRL_PRESSED;
  DWORD written = 0;
  ::WriteConsoleInputW(::GetStdHandle(STD_INPUT_HANDLE), &key, 1, &written);
}

BOOL WINAPI handleKey(DWORD event) {
  const auto ask = asked.load();
  if (ask == nullptr) return FALSE;
  const bool waits = event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT;
  if (!waits && isReading) {  // Ctrl+Break comes here, and Ctrl+C where the console does not hand it on
    cancelLine();
    return TRUE;
  }
  ask(waits);
  if (waits) ::Sleep(INFINITE);  // the process is ended while this thread waits, or by itself before
  return TRUE;
}

}  // namespace

void onEndAsked(void (*ask)(bool waits)) {
  const bool isFirst = asked.exchange(ask) == nullptr;
  if (ask != nullptr && isFirst) ::SetConsoleCtrlHandler(handleKey, TRUE);
  if (ask == nullptr) ::SetConsoleCtrlHandler(handleKey, FALSE);
}

LineEnd readConsoleLine(std::string& line, bool endsAtTab) {
  const HANDLE in = ::GetStdHandle(STD_INPUT_HANDLE);
  DWORD former = 0;
  if (::GetConsoleMode(in, &former) == 0) return LineEnd::Gone;
  // Ctrl+C ends the line only.
  ::SetConsoleMode(in, (former | ENABLE_LINE_INPUT | ENABLE_ECHO_INPUT | ENABLE_INSERT_MODE | ENABLE_EXTENDED_FLAGS) &
                           ~static_cast<DWORD>(ENABLE_PROCESSED_INPUT));
  constexpr ULONG kTabMask = 1U << L'\t', kCancelMask = 1U << 3, kEndMask = 1U << 4;
  std::array<wchar_t, 4096> buffer{};
  const std::wstring begun = toWide(line).substr(0, buffer.size() / 2);
  std::copy(begun.begin(), begun.end(), buffer.begin());
  CONSOLE_READCONSOLE_CONTROL control{};
  control.nLength = sizeof(control);
  control.nInitialChars = static_cast<ULONG>(begun.size());
  control.dwCtrlWakeupMask = kCancelMask | kEndMask | (endsAtTab ? kTabMask : 0);
  DWORD count = 0;
  isReading = true;
  const BOOL isRead = ::ReadConsoleW(in, buffer.data(), static_cast<DWORD>(buffer.size()), &count, &control);
  isReading = false;
  ::SetConsoleMode(in, former);
  if (isRead == 0) return LineEnd::Gone;
  std::wstring text(buffer.data(), count);
  LineEnd end = LineEnd::Entered;
  if (const std::size_t key = text.find_first_of(L"\t\x03\x04\x1a"); key != std::wstring::npos) {
    end = text[key] == L'\t' ? LineEnd::Tab : text[key] == L'\x03' ? LineEnd::Cancelled : LineEnd::Gone;
    if (text[key] != L'\t' && key > 0) end = LineEnd::Cancelled;  // Ctrl+D behind something
    text.resize(key);
  }
  while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r')) text.pop_back();
  line = toUtf8(text);
  return end;
}

}  // namespace host::platform
