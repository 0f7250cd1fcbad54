// The standard streams of a program, the terminal behind them, and Ctrl+C.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::platform {

enum class Stream { In, Out, Err };

/// Once, before anything is printed: closed streams are kept apart from files, writing to a reader that left fails with
/// a reason, bytes are bytes, and a console shows UTF-8.
void prepareStreams();
/// The arguments of the program in UTF-8, its name first.
std::vector<std::string> programArguments(int count, char** arguments);

bool isTerminal(Stream stream);
/// Characters in a line of the terminal behind a stream; 0 when that is none.
std::size_t terminalColumns(Stream stream);
/// Whether the terminal obeys "\r" and "\x1b[K".
bool isErasable(Stream stream);
/// The reader of standard output has closed the pipe.
bool readerLeft();
/// Prints a short sentence to standard error from where little is allowed; nothing where nobody reads what is printed
/// there.
void sayFromHandler(std::string_view sentence);
/// A line of a stream without its line feed; nothing at its end.
std::optional<std::string> readLine(std::FILE* stream);

/// Where standard output led, while what is printed goes to standard error. False when there is no standard output.
bool redirectOutput();
/// Bytes to where standard output led before; false when they cannot be written.
bool writeRedirected(std::string_view bytes);

/// A file that is read from its beginning to its end.
class InputFile {
 public:
  /// Nothing named: standard input.
  explicit InputFile(const std::optional<std::filesystem::path>& name);
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  enum class Kind { Unknown, Ordinary, Folder, Device };  // a device never ends; the null device and terminals do
  Kind kind() const { return kind_; }
  /// Why the last call failed, or the opening.
  const std::string& fault() const { return fault_; }
  /// Bytes read, 0 at the end; nothing on failure.
  std::optional<std::size_t> read(char* buffer, std::size_t size);

 private:
  std::intptr_t file_ = -1;
  Kind kind_ = Kind::Unknown;
  std::string fault_;
};

/// The name stands for standard input where a file's identity is asked for; empty where the system has none such.
std::filesystem::path standardInputName();

/// Bytes that are kept until the program ends and can be opened like a file.
class KeptFile {
 public:
  KeptFile();
  bool isOpen() const { return file_ >= 0; }
  bool write(std::string_view bytes);
  /// Why the last call failed, or the making.
  const std::string& fault() const { return fault_; }
  const std::filesystem::path& path() const { return path_; }
  /// Takes it away before the program ends.
  void drop();

 private:
  int file_ = -1;
  std::filesystem::path path_;
  std::string fault_;
};

}  // namespace host::platform
