#include "OrvLib/Reports/DebugLog.h"

#include <array>
#include <ostream>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/DataStruct/Text.h"
#include "OrvLib/Reports/DebugLogWindow.h"
#include "OrvLib/Reports/DebugPrint.h"
#include "OrvLib/Reports/System.h"

namespace OrvLib {
namespace {

constexpr std::size_t kBuffer = 9999;         // characters with the terminator
constexpr std::size_t kFileBuffer = 0x10000;  // bytes; what fits is written at once, so that messages do not mix
constexpr std::wstring_view kRule = L"--------------------------------------------------\n";

std::wstring nameOfProgram() {
  std::wstring name = programFile();
  const std::size_t slash = name.find_last_of(L"\\/");
  if (slash != std::wstring::npos) name.erase(0, slash + 1);
  const std::size_t ending = name.rfind(L".exe");
  if (ending != std::wstring::npos) name.erase(ending, 4);
  return name.empty() ? L"OrvLib-app" : name;
}

std::wstring defaultFileName(const std::wstring& application) {
  std::wstring folder = environmentVariable(L"TEMP");
  if (folder.empty()) folder = L"/tmp";
  std::wstring time = timeText(TimeText::Seconds);
  for (wchar_t& each : time) {
    if (each == L' ') each = L'_';
    if (each == L':') each = L'.';
  }
  return folder + L"/DEBUG_LOG-" + application + L"-" + time + L".log";
}

int writeBytes(std::FILE* file, std::wstring_view text) {
  const std::string bytes = encodeUtf8(text);
  const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  if (std::fflush(file) == 0 && isWritten) return static_cast<int>(text.size());
  std::clearerr(file);
  return DebugLog::kFailed;
}

std::wstring cutToBuffer(const std::wstring& text) { return text.substr(0, kBuffer - 1); }

/// Changed as long as it lives.
class ModeForOneMessage {
 public:
  ModeForOneMessage(DebugLog& log, std::uint32_t mode) : log_(log), former_(log.mode()) { log.setMode(mode); }
  ModeForOneMessage(const ModeForOneMessage&) = delete;
  ModeForOneMessage& operator=(const ModeForOneMessage&) = delete;
  ~ModeForOneMessage() { log_.setMode(former_); }

 private:
  DebugLog& log_;
  std::uint32_t former_;
};

DebugLog logger;

}  // namespace

DebugLog& DebugLog::instance() { return logger; }

DebugLog::DebugLog() : applicationName_(nameOfProgram()) { fileName_ = defaultFileName(applicationName_); }

DebugLog::~DebugLog() {
  closeWindow();
  try {
    closeFile();
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory the file ends without its footer
  }
  if (hasConsole_) FreeConsole();
}

int DebugLog::print(const wchar_t* format, std::va_list arguments) noexcept {
  if (mode_ == 0 || format == nullptr) return 0;
  try {
    const std::wstring text = formatText(format, arguments);
    const int stamp = timeStamps_ ? writeEverywhere(L"<" + timeText(TimeText::Milliseconds) + L"> ") : 0;
    return stamp + writeEverywhere(text);
  } catch (...) {
    return kFailed;
  }
}

int DebugLog::print(std::uint32_t mode, const wchar_t* format, std::va_list arguments) noexcept {
  const ModeForOneMessage changed(*this, mode);
  return print(format, arguments);
}

int DebugLog::writeEverywhere(const std::wstring& text) {
  int total = 0;
  for (const Destination each :
       {kStandardOutput, kStandardError, kLogFile, kStream, kCommandLine, kWindow, kMessageBox, kDebugger, kConsole}) {
    if ((mode_ & each) != 0) total += writeTo(each, text);
  }
  return total;
}

int DebugLog::writeTo(Destination destination, const std::wstring& text) {
  switch (destination) {
    case kStandardOutput:
      return writeBytes(stdout, text);
    case kStandardError:
      return writeBytes(stderr, text);
    case kLogFile:
      return openFile() ? writeFile(text) : kUnusable;
    case kStream: {
      if (stream_ == nullptr) return 0;
      const std::wstring cut = cutToBuffer(text);
      *stream_ << cut;
      return stream_->good() ? static_cast<int>(cut.size()) : kFailed;
    }
    case kCommandLine: {
      const std::wstring cut = cutToBuffer(text);
      return acutPrintf(L"%s", cut.c_str()) == RTNORM ? static_cast<int>(cut.size()) : kFailed;
    }
    case kWindow:
      return writeWindow(text);
    case kMessageBox: {
      const std::wstring title = formatText(L"%s DEBUG LOG", applicationName_.c_str());
      return MessageBoxW(nullptr, text.c_str(), title.c_str(), MB_TASKMODAL) != 0 ? static_cast<int>(text.size())
                                                                                  : kFailed;
    }
    case kDebugger: {
      const std::wstring cut = cutToBuffer(text);
      OutputDebugStringW(cut.c_str());
      return static_cast<int>(cut.size());
    }
    case kConsole:
      return writeConsole(text);
  }
  return 0;
}

int DebugLog::writeConsole(const std::wstring& text) {
  if (!hasConsole_) {
    // The process may have one already, which will do.
    hasConsole_ = AllocConsole() != FALSE;
    if (hasConsole_) SetConsoleTitleW(L"debug");
  }
  const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD written = 0;
  const bool isWritten = console != nullptr && WriteConsoleW(console, text.data(), static_cast<DWORD>(text.size()),
                                                             &written, nullptr) != FALSE;
  return isWritten ? static_cast<int>(written) : kFailed;
}

// ---- log file -------------------------------------------------------------------------------------------------------

bool DebugLog::openFile() {
  if (file_) return true;
  if (fileName_.empty()) return false;
  file_.reset(_wfsopen(fileName_.c_str(), L"a+", _SH_DENYNO));
  if (!file_) return false;
  std::setvbuf(file_.get(), nullptr, _IOFBF, kFileBuffer);
  std::wstring header(kRule);
  header += formatText(L"---- %s debug log\n", applicationName_.c_str());
  header +=
      formatText(L"---- executable: %s (PID %i)\n", programFile().c_str(), static_cast<int>(GetCurrentProcessId()));
  header += formatText(L"---- system: %s\n", systemVersion().c_str());
  header += formatText(L"---- ran at %s\n", timeText(TimeText::Milliseconds).c_str());
  header += kRule;
  writeFile(header + L"\n");
  return true;
}

int DebugLog::writeFile(std::wstring_view text) { return writeBytes(file_.get(), text); }

void DebugLog::closeFile() {
  if (!file_) return;
  if (!fileName_.empty()) {
    std::wstring footer(kRule);
    footer += L"---- End of debug session\n";
    footer += formatText(L"---- execution finished at %s\n", timeText(TimeText::Milliseconds).c_str());
    footer += kRule;
    writeFile(footer + L"\n");
  }
  file_.reset();
}

void DebugLog::setFileName(std::wstring name) {
  closeFile();
  fileName_ = std::move(name);
}

// ---- log window -----------------------------------------------------------------------------------------------------

int DebugLog::writeWindow(const std::wstring& text) {
  if (!window_) window_ = std::make_unique<DebugLogWindow>(*this);
  return window_->append(text);
}

void DebugLog::closeWindow() {
  if (window_) window_->close();
  window_.reset();
}

std::wstring DebugLog::callbackText() const {
  if (callback_) return callback_();
  return formatText(L"mode %u\nlevel %i\ntime stamps %s\nlog file %s\n(%s)\n\n", mode_, level_,
                    timeStamps_ ? L"on" : L"off", fileName_.c_str(), file_ ? L"open" : L"not open") +
         memorySummary(GetLastError());
}

}  // namespace OrvLib

// ---- what other modules call ----------------------------------------------------------------------------------------

int DebugPrint(const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int result = OrvLib::DebugLog::instance().print(format, arguments);
  va_end(arguments);
  return result;
}

int DebugPrintM(unsigned int mode, const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int result = OrvLib::DebugLog::instance().print(mode, format, arguments);
  va_end(arguments);
  return result;
}

void DebugPrintAddMode(unsigned int bits) {
  OrvLib::DebugLog& log = OrvLib::DebugLog::instance();
  log.setMode(log.mode() | bits);
}

void DebugPrintRemoveMode(unsigned int bits) {
  OrvLib::DebugLog& log = OrvLib::DebugLog::instance();
  log.setMode(log.mode() & ~bits);
}

void DebugPrintSetMode(unsigned int mode) { OrvLib::DebugLog::instance().setMode(mode); }

void DebugPrintSetLogFileName(const wchar_t* name) {
  try {
    OrvLib::DebugLog::instance().setFileName(name != nullptr ? name : L"");
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory the log stays where it is
  }
}
