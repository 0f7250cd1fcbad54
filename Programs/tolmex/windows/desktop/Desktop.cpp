// Starts the window without a console beside it: for the start menu, for drawings dropped on its icon and "Open with".
#include <shlwapi.h>
#include <windows.h>

#include <string>

namespace {

std::wstring folderOfThisProgram() {
  std::wstring name(MAX_PATH, 0);
  for (;;) {
    const DWORD length = ::GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    if (length < name.size()) return name.substr(0, name.find_last_of(L'\\', length) + 1);
    name.resize(name.size() * 2);
  }
}

std::wstring wideOf(const std::string& utf8) {
  const int size = ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), 0);
  ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), wide.data(), size);
  return wide;
}

void say(const std::wstring& text) { ::MessageBoxW(nullptr, text.c_str(), L"Tolmex", MB_OK | MB_ICONERROR); }

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  // The arguments as they were written, quotes and all.
  const std::wstring program = folderOfThisProgram() + L"tolmex.exe";
  std::wstring command = L"\"" + program + L"\" desktop " + ::PathGetArgsW(::GetCommandLineW());
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  HANDLE reading = nullptr, writing = nullptr;
  ::CreatePipe(&reading, &writing, &inherited, 0);
  ::SetHandleInformation(reading, HANDLE_FLAG_INHERIT, 0);
  const HANDLE nothing = ::CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                       &inherited, OPEN_EXISTING, 0, nullptr);
  STARTUPINFOW how{};
  how.cb = sizeof(how);
  how.dwFlags = STARTF_USESTDHANDLES;
  how.hStdInput = how.hStdOutput = nothing;
  how.hStdError = writing;
  PROCESS_INFORMATION started{};
  if (::CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr, nullptr,
                       &how, &started) == 0) {
    say(program + L": tolmex.exe cannot be started");
    return 1;
  }
  ::AllowSetForegroundWindow(started.dwProcessId);
  ::CloseHandle(writing);
  std::string told;  // what it says of its faults
  char part[4096];
  for (DWORD count = 0; ::ReadFile(reading, part, sizeof part, &count, nullptr) != 0 && count > 0;)
    told.append(part, count);
  ::WaitForSingleObject(started.hProcess, INFINITE);
  DWORD status = 0;
  ::GetExitCodeProcess(started.hProcess, &status);
  if (status != 0) say(told.empty() ? L"Tolmex ended by itself." : wideOf(told));
  return static_cast<int>(status);
}
