// The debug log: diagnostic text to any combination of destinations. Other code and other modules use the functions of
// DebugPrint.h; this is what stands behind them.
//
// Texts for standard output, standard error and the log file are written as UTF-8. Where the system is not Windows the
// debugger's output is standard error with the prefix "debugger: ", and the console is the controlling terminal;
// without one that destination fails and nothing else happens.
#pragma once

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace OrvLib {

class DebugLogWindow;

class DebugLog {
 public:
  /// Bits of the mode, in the order in which a message is written.
  enum Destination : std::uint32_t {
    kStandardOutput = 1,
    kStandardError = 2,
    kLogFile = 4,
    kStream = 8,
    kCommandLine = 16,
    kWindow = 32,
    kMessageBox = 64,
    kDebugger = 128,
    kConsole = 256,
  };
  static constexpr int kUnusable = -1000000;  // result of a log file that cannot be opened, of a window not shown
  static constexpr int kFailed = -1;          // result of any other destination that fails

  /// Named after the running program; the log file lies in the folder TEMP names, or in /tmp.
  DebugLog();
  DebugLog(const DebugLog&) = delete;
  DebugLog& operator=(const DebugLog&) = delete;
  /// Ends the log file and takes the window away.
  ~DebugLog();

  /// The logger of this module, made when the module is loaded.
  static DebugLog& instance();

  /// Formats with Microsoft's wide meaning and writes to every destination of the mode. Sum of their results.
  int print(const wchar_t* format, std::va_list arguments) noexcept;
  /// The same with another mode for this message alone.
  int print(std::uint32_t mode, const wchar_t* format, std::va_list arguments) noexcept;

  std::uint32_t mode() const { return mode_; }
  void setMode(std::uint32_t mode) { mode_ = mode; }
  int level() const { return level_; }
  void setLevel(int level) { level_ = level; }
  bool timeStamps() const { return timeStamps_; }
  /// Every message begins with "<day.month.year hour:minute:second.millisecond> ".
  void setTimeStamps(bool on) { timeStamps_ = on; }
  const std::wstring& applicationName() const { return applicationName_; }

  const std::wstring& fileName() const { return fileName_; }
  /// Ends the present file. One of the new name is begun by the next message for it.
  void setFileName(std::wstring name);
  /// Opens the log file now unless it is open; false when that fails.
  bool openFile();

  /// Where kStream writes to, kept by the caller; null for nowhere. Texts are cut to 9998 characters.
  void attachStream(std::wostream* stream) { stream_ = stream; }
  /// What the log window's button "Callback" asks for, to show it beside the log. Unset, the log tells its own state.
  void attachCallback(std::function<std::wstring()> callback) { callback_ = std::move(callback); }
  std::wstring callbackText() const;

  /// Takes the log window away; the next message for it brings a new one. Before the module goes out of memory.
  void closeWindow();

 private:
  struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  int writeEverywhere(const std::wstring& text);
  int writeTo(Destination destination, const std::wstring& text);
  int writeFile(std::wstring_view text);
  int writeConsole(const std::wstring& text);
  int writeWindow(const std::wstring& text);
  void closeFile();

  std::uint32_t mode_ = 0;
  int level_ = 2147483647;  // shown and edited in the settings; messages are printed at any level
  bool timeStamps_ = false;
  bool hasConsole_ = false;
  std::unique_ptr<std::FILE, FileCloser> file_;
  std::wstring fileName_;
  std::wstring applicationName_;
  std::wostream* stream_ = nullptr;
  std::function<std::wstring()> callback_;
  std::unique_ptr<DebugLogWindow> window_;
};

}  // namespace OrvLib
