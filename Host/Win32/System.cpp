// The system around the process, under its Windows names.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>

#include "Text/Text.h"
#include "windows.h"

namespace {

DWORD copyCut(std::wstring_view text, LPWSTR out, DWORD size) {
  const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size) - 1);
  std::copy_n(text.data(), count, out);
  out[count] = 0;
  return static_cast<DWORD>(count);
}

/// A small file of the kernel's, without allocating: the failure report reads it when memory is out.
class KernelFile {
 public:
  explicit KernelFile(const char* name) {
    const int file = open(name, O_RDONLY | O_CLOEXEC);
    if (file < 0) return;
    while (size_ < bytes_.size()) {
      const ssize_t count = read(file, bytes_.data() + size_, bytes_.size() - size_);
      if (count <= 0) break;
      size_ += static_cast<std::size_t>(count);
    }
    close(file);
  }
  /// The number behind "Name:" of lines as "MemTotal:  16384 kB", in bytes; 0 when there is none.
  std::uint64_t bytesOf(std::string_view name) const {
    const std::string_view all(bytes_.data(), size_);
    for (std::size_t at = 0; at < all.size(); at = std::min(all.find('\n', at), all.size() - 1) + 1) {
      std::string_view line = all.substr(at);
      if (!line.starts_with(name)) continue;
      line.remove_prefix(name.size());
      line.remove_prefix(std::min(line.find_first_not_of(": \t"), line.size()));
      std::uint64_t kilobytes = 0;
      std::from_chars(line.data(), line.data() + line.size(), kilobytes);
      return kilobytes * 1024;
    }
    return 0;
  }

 private:
  std::array<char, 8192> bytes_;
  std::size_t size_ = 0;
};

/// Where nothing limits it, as much as programs of this machine can address.
std::uint64_t addressSpace() {
  constexpr std::uint64_t kAddressable = std::uint64_t{1} << 47;
  rlimit limit{};
  if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return kAddressable;
  return std::min<std::uint64_t>(limit.rlim_cur, kAddressable);
}

struct ErrorText {
  DWORD code;
  const wchar_t* text;
};
// The errors that calls here set.
constexpr ErrorText kErrorTexts[] = {
    {ERROR_SUCCESS, L"The operation completed successfully."},
    {ERROR_ACCESS_DENIED, L"Access is denied."},
    {ERROR_INVALID_HANDLE, L"The handle is invalid."},
    {ERROR_NOT_ENOUGH_MEMORY, L"Not enough memory resources are available to process this command."},
    {ERROR_INVALID_DATA, L"The data is invalid."},
    {ERROR_GEN_FAILURE, L"A device attached to the system is not functioning."},
    {ERROR_INVALID_PARAMETER, L"The parameter is incorrect."},
    {ERROR_INSUFFICIENT_BUFFER, L"The data area passed to a system call is too small."},
    {ERROR_MOD_NOT_FOUND, L"The specified module could not be found."},
    {ERROR_ENVVAR_NOT_FOUND, L"The system could not find the environment option that was entered."},
    {ERROR_INVALID_WINDOW_HANDLE, L"Invalid window handle."},
    {ERROR_INVALID_MSGBOX_STYLE, L"Invalid message box style."},
    {ERROR_RESOURCE_TYPE_NOT_FOUND, L"The specified resource type cannot be found in the image file."},
    {ERROR_RESOURCE_NAME_NOT_FOUND, L"The specified resource name cannot be found in the image file."},
};

DWORD refused(DWORD error) {
  SetLastError(error);
  return 0;
}

}  // namespace

// ---- the process ----------------------------------------------------------------------------------------------------

DWORD GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size) {
  if (path == nullptr || size == 0) return refused(ERROR_INVALID_PARAMETER);
  std::string file;
  if (module == nullptr) {
    std::array<char, 4096> link;
    const ssize_t length = readlink("/proc/self/exe", link.data(), link.size());
    if (length > 0) file.assign(link.data(), static_cast<std::size_t>(length));
  } else {
    Dl_info info{};
    if (dladdr(module, &info) != 0 && info.dli_fbase == module && info.dli_fname != nullptr) file = info.dli_fname;
  }
  if (file.empty()) return refused(ERROR_MOD_NOT_FOUND);
  const std::wstring wide = host::text::fromUtf8(file);
  const DWORD copied = copyCut(wide, path, size);
  if (copied == wide.size()) return copied;
  SetLastError(ERROR_INSUFFICIENT_BUFFER);
  return size;
}

DWORD GetCurrentProcessId() { return static_cast<DWORD>(getpid()); }

DWORD GetEnvironmentVariableW(LPCWSTR name, LPWSTR value, DWORD size) {
  const char* const found = name != nullptr ? std::getenv(host::text::toUtf8(name).c_str()) : nullptr;
  if (found == nullptr) return refused(ERROR_ENVVAR_NOT_FOUND);
  const std::wstring text = host::text::fromUtf8(found);
  if (value == nullptr || text.size() >= size) return static_cast<DWORD>(text.size()) + 1;
  SetLastError(ERROR_SUCCESS);  // an empty one answers 0 as well
  return copyCut(text, value, size);
}

void GetLocalTime(SYSTEMTIME* time) {
  if (time == nullptr) return;
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  std::tm local{};
  localtime_r(&now.tv_sec, &local);
  constexpr long kNanosecondsInMillisecond = 1000000;
  *time = {static_cast<WORD>(local.tm_year + 1900), static_cast<WORD>(local.tm_mon + 1),
           static_cast<WORD>(local.tm_wday),        static_cast<WORD>(local.tm_mday),
           static_cast<WORD>(local.tm_hour),        static_cast<WORD>(local.tm_min),
           static_cast<WORD>(local.tm_sec),         static_cast<WORD>(now.tv_nsec / kNanosecondsInMillisecond)};
}

BOOL GetVersionExW(OSVERSIONINFOW* version) {
  utsname system{};
  if (version == nullptr || version->dwOSVersionInfoSize != sizeof(*version) || uname(&system) != 0) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  // "6.1.0-21-amd64"
  std::array<DWORD, 3> numbers{};
  const std::string_view release = system.release;
  std::size_t at = 0;
  for (DWORD& number : numbers) {
    const auto [end, error] = std::from_chars(release.data() + at, release.data() + release.size(), number);
    at = static_cast<std::size_t>(end - release.data());
    if (error != std::errc() || at >= release.size() || release[at] != '.') break;
    ++at;
  }
  version->dwMajorVersion = numbers[0];
  version->dwMinorVersion = numbers[1];
  version->dwBuildNumber = numbers[2];
  version->dwPlatformId = VER_PLATFORM_HOST;
  copyCut(host::text::fromUtf8(system.sysname), version->szCSDVersion,
          static_cast<DWORD>(std::size(version->szCSDVersion)));
  return TRUE;
}

// ---- memory ---------------------------------------------------------------------------------------------------------

BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* status) {
  if (status == nullptr || status->dwLength != sizeof(*status)) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const KernelFile memory("/proc/meminfo");
  std::uint64_t total = memory.bytesOf("MemTotal");
  std::uint64_t available = memory.bytesOf("MemAvailable");
  std::uint64_t swap = memory.bytesOf("SwapTotal");
  std::uint64_t freeSwap = memory.bytesOf("SwapFree");
  struct sysinfo info {};
  if (total == 0 && sysinfo(&info) == 0) {
    total = std::uint64_t{info.totalram} * info.mem_unit;
    available = std::uint64_t{info.freeram} * info.mem_unit;
    swap = std::uint64_t{info.totalswap} * info.mem_unit;
    freeSwap = std::uint64_t{info.freeswap} * info.mem_unit;
  }
  const std::uint64_t space = addressSpace();
  const std::uint64_t used = KernelFile("/proc/self/status").bytesOf("VmSize");
  status->dwMemoryLoad = total > 0 ? static_cast<DWORD>((total - std::min(available, total)) * 100 / total) : 0;
  status->ullTotalPhys = total;
  status->ullAvailPhys = available;
  status->ullTotalPageFile = total + swap;
  status->ullAvailPageFile = available + freeSwap;
  status->ullTotalVirtual = space;
  status->ullAvailVirtual = space - std::min(used, space);
  status->ullAvailExtendedVirtual = 0;
  return TRUE;
}

// ---- error texts ----------------------------------------------------------------------------------------------------

DWORD FormatMessageW(DWORD flags, const void*, DWORD message, DWORD, LPWSTR buffer, DWORD size, void*) {
  if (flags != (FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS) || buffer == nullptr)
    return refused(ERROR_INVALID_PARAMETER);
  constexpr std::wstring_view kLineEnd = L"\r\n";
  for (const ErrorText& each : kErrorTexts) {
    if (each.code != message) continue;
    const std::wstring_view text = each.text;
    if (text.size() + kLineEnd.size() >= size) return refused(ERROR_INSUFFICIENT_BUFFER);
    std::copy(kLineEnd.begin(), kLineEnd.end(), std::copy(text.begin(), text.end(), buffer));
    buffer[text.size() + kLineEnd.size()] = 0;
    return static_cast<DWORD>(text.size() + kLineEnd.size());
  }
  return refused(ERROR_RESOURCE_NAME_NOT_FOUND);
}
