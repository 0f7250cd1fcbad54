#include "Platform/Streams.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "Platform/windows/Kept.h"
#include "Platform/windows/Windows.h"

namespace host::platform {

namespace {

int redirected = -1;  // where standard output led
UINT formerOutputPage = 0;

int numberOf(Stream stream) { return static_cast<int>(stream); }

HANDLE handleOf(Stream stream) {
  constexpr DWORD kWhich[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
  return ::GetStdHandle(kWhich[numberOf(stream)]);
}

bool isConsole(HANDLE handle) {
  DWORD mode = 0;
  return ::GetConsoleMode(handle, &mode) != 0;
}

void restorePage() { ::SetConsoleOutputCP(formerOutputPage); }

/// Files that are taken away when the program ends.
std::vector<std::wstring>& keptFiles() {
  static auto& files = *new std::vector<std::wstring>;
  return files;
}

std::string& readInput() {
  static auto& bytes = *new std::string;
  return bytes;
}

}  // namespace

const std::string& inputSoFar() { return readInput(); }

void dropKeptFiles() {
  for (const std::wstring& file : keptFiles()) ::DeleteFileW(file.c_str());
}

void prepareStreams() {
  for (const int stream : {0, 1, 2}) ::_setmode(stream, _O_BINARY);
  const bool outIsConsole = isConsole(handleOf(Stream::Out)), errIsConsole = isConsole(handleOf(Stream::Err));
  if (!outIsConsole && !errIsConsole) return;
  // The window shows one code page; programs after this one expect theirs.
  formerOutputPage = ::GetConsoleOutputCP();
  ::SetConsoleOutputCP(CP_UTF8);
  std::atexit(restorePage);
  // Characters of several bytes have to come in one piece.
  constexpr std::size_t kBuffer = std::size_t{1} << 15;
  if (outIsConsole) std::setvbuf(stdout, nullptr, _IOFBF, kBuffer);
  for (const Stream stream : {Stream::Out, Stream::Err}) {
    DWORD mode = 0;
    if (::GetConsoleMode(handleOf(stream), &mode) != 0)
      ::SetConsoleMode(handleOf(stream), mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  }
}

std::vector<std::string> programArguments(int, char**) {
  int count = 0;
  wchar_t** const words = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 0; i < count; ++i) arguments.push_back(toUtf8(words[i]));
  ::LocalFree(words);
  return arguments;
}

bool isTerminal(Stream stream) { return isConsole(handleOf(stream)); }

std::size_t terminalColumns(Stream stream) {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (::GetConsoleScreenBufferInfo(handleOf(stream), &info) == 0) return 0;
  return static_cast<std::size_t>(std::max(info.srWindow.Right - info.srWindow.Left + 1, 0));
}

bool isErasable(Stream stream) {
  DWORD mode = 0;
  return ::GetConsoleMode(handleOf(stream), &mode) != 0 && (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

bool readerLeft() {
  const HANDLE out = handleOf(Stream::Out);
  DWORD written = 0;
  return ::GetFileType(out) == FILE_TYPE_PIPE && ::WriteFile(out, "", 0, &written, nullptr) == 0;
}

void sayFromHandler(std::string_view sentence) {
  DWORD written = 0;
  ::WriteFile(handleOf(Stream::Err), sentence.data(), static_cast<DWORD>(sentence.size()), &written, nullptr);
}

std::optional<std::string> readLine(std::FILE* stream) {
  std::string line;
  for (;;) {
    const int c = std::fgetc(stream);
    if (c == EOF && line.empty()) return std::nullopt;
    if (c == EOF || c == '\n') return line;
    line += static_cast<char>(c);
  }
}

bool redirectOutput() {
  std::fflush(stdout);
  redirected = ::_dup(1);
  if (redirected < 0 || ::_dup2(2, 1) != 0) return false;
  ::_setmode(redirected, _O_BINARY);
  return true;
}

bool writeRedirected(std::string_view bytes) {
  constexpr std::size_t kMost = std::size_t{1} << 20;
  while (!bytes.empty()) {
    const int written = ::_write(redirected, bytes.data(), static_cast<unsigned>(std::min(bytes.size(), kMost)));
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

InputFile::InputFile(const std::optional<std::filesystem::path>& name) {
  HANDLE file = handleOf(Stream::In);
  if (name) {
    const DWORD attributes = ::GetFileAttributesW(systemPath(*name).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
      kind_ = Kind::Folder;
      return;
    }
    file = ::CreateFileW(systemPath(*name).c_str(), GENERIC_READ,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING, 0, nullptr);
  }
  if (file == nullptr || file == INVALID_HANDLE_VALUE) {
    fault_ = reasonOf(name ? ::GetLastError() : ERROR_INVALID_HANDLE);
    return;
  }
  file_ = reinterpret_cast<std::intptr_t>(file);
  // Consoles and NUL are both devices that end; others are rare and do not.
  kind_ = Kind::Ordinary;
}

InputFile::~InputFile() {
  const HANDLE file = reinterpret_cast<HANDLE>(file_);
  if (file_ != -1 && file != handleOf(Stream::In)) ::CloseHandle(file);
}

std::optional<std::size_t> InputFile::read(char* buffer, std::size_t size) {
  DWORD count = 0;
  if (::ReadFile(reinterpret_cast<HANDLE>(file_), buffer, static_cast<DWORD>(size), &count, nullptr) != 0) {
    if (reinterpret_cast<HANDLE>(file_) == handleOf(Stream::In)) readInput().append(buffer, count);
    return count;
  }
  const DWORD error = ::GetLastError();
  if (error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF) return 0;
  fault_ = reasonOf(error);
  return std::nullopt;
}

std::filesystem::path standardInputName() { return {}; }

// A temporary file that goes when the program ends.
KeptFile::KeptFile() {
  wchar_t folder[MAX_PATH + 1] = {}, name[MAX_PATH + 1] = {};
  if (::GetTempPathW(MAX_PATH + 1, folder) == 0 || ::GetTempFileNameW(folder, L"tlm", 0, name) == 0) {
    fault_ = reasonOf(::GetLastError());
    return;
  }
  if (keptFiles().empty()) std::atexit(dropKeptFiles);
  keptFiles().emplace_back(name);
  path_ = name;
  file_ = ::_wopen(name, _O_WRONLY | _O_BINARY | _O_NOINHERIT | _O_TRUNC);
  if (file_ < 0) fault_ = std::strerror(errno);
}

bool KeptFile::write(std::string_view bytes) {
  constexpr std::size_t kMost = std::size_t{1} << 20;
  while (!bytes.empty()) {
    const int written = ::_write(file_, bytes.data(), static_cast<unsigned>(std::min(bytes.size(), kMost)));
    if (written <= 0) {
      fault_ = std::strerror(errno);
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

void KeptFile::drop() {
  if (isOpen()) ::_close(file_);
  file_ = -1;
  ::DeleteFileW(path_.wstring().c_str());
}

}  // namespace host::platform
