#include "Platform/windows/Handles.h"

#include <array>

namespace host::platform {

namespace {

/// An argument as programs take their command line apart: quoted, backslashes doubled before a quote.
void appendArgument(std::wstring& line, const std::wstring& argument) {
  if (!line.empty()) line += L' ';
  line += L'"';
  std::size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'"') line.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    line += c;
  }
  line.append(backslashes, L'\\');
  line += L'"';
}

/// The program's file, found as the system finds programs; as it is when it is not found.
std::wstring foundProgram(const std::filesystem::path& program) {
  if (program.has_parent_path()) return systemPath(program);
  std::array<wchar_t, 32768> found{};
  const DWORD length = ::SearchPathW(nullptr, program.wstring().c_str(), L".exe", static_cast<DWORD>(found.size()),
                                     found.data(), nullptr);
  return length > 0 && length < found.size() ? std::wstring(found.data(), length) : std::wstring();
}

class Attributes {
 public:
  explicit Attributes(std::array<HANDLE, 3>& inherited) {
    SIZE_T size = 0;
    ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    memory_.resize(size);
    if (::InitializeProcThreadAttributeList(list(), 1, 0, &size) == 0) {
      memory_.clear();
    } else {
      ::UpdateProcThreadAttribute(list(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, inherited.data(),
                                  inherited.size() * sizeof(HANDLE), nullptr, nullptr);
    }
  }
  ~Attributes() {
    if (!memory_.empty()) ::DeleteProcThreadAttributeList(list());
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  LPPROC_THREAD_ATTRIBUTE_LIST list() { return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_.data()); }

 private:
  std::vector<char> memory_;
};

}  // namespace

StartedProcess startProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments, HANDLE in,
                            HANDLE out, HANDLE err, std::uint64_t memoryLimit) {
  const std::wstring file = foundProgram(program);
  if (file.empty()) return {};
  std::wstring line;
  appendArgument(line, file);
  for (const std::string& argument : arguments) appendArgument(line, toWide(argument));

  std::array<HANDLE, 3> inherited{in, out, err};
  for (const HANDLE handle : inherited) ::SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
  Attributes attributes(inherited);
  STARTUPINFOEXW start{};
  start.StartupInfo.cb = sizeof(start);
  start.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
  start.StartupInfo.hStdInput = in;
  start.StartupInfo.hStdOutput = out;
  start.StartupInfo.hStdError = err;
  start.lpAttributeList = attributes.list();
  PROCESS_INFORMATION made{};
  constexpr DWORD kFlags = CREATE_SUSPENDED | EXTENDED_STARTUPINFO_PRESENT;
  const BOOL isMade = ::CreateProcessW(file.c_str(), line.data(), nullptr, nullptr, TRUE, kFlags, nullptr, nullptr,
                                       &start.StartupInfo, &made);
  for (const HANDLE handle : inherited) ::SetHandleInformation(handle, HANDLE_FLAG_INHERIT, 0);
  if (isMade == 0) return {};

  StartedProcess started{Handle(made.hProcess), Handle(::CreateJobObjectW(nullptr, nullptr)), made.dwProcessId};
  const Handle thread(made.hThread);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  if (memoryLimit > 0) {
    limits.BasicLimitInformation.LimitFlags |= JOB_OBJECT_LIMIT_PROCESS_MEMORY;
    limits.ProcessMemoryLimit = memoryLimit;
  }
  // A job cannot always be had, for instance inside another one of an older system: the work goes on without.
  if (started.job) {
    ::SetInformationJobObject(started.job.get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    ::AssignProcessToJobObject(started.job.get(), made.hProcess);
  }
  ::ResumeThread(made.hThread);
  return started;
}

Handle openInherited(const std::filesystem::path& file, bool writes) {
  SECURITY_ATTRIBUTES security{sizeof(security), nullptr, TRUE};
  const std::wstring name = file == "NUL" ? L"NUL" : systemPath(file);
  return Handle(::CreateFileW(name.c_str(), writes ? GENERIC_WRITE : GENERIC_READ,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &security, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace host::platform
