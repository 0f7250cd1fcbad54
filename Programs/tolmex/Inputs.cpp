#include "Inputs.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

#include "Console.h"
#include "Editor/ScriptText.h"
#include "Outputs.h"
#include "Platform/Memory.h"
#include "Platform/Streams.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Code;
using host::Problem;
using host::problemOf;
using host::Result;

namespace {

std::string cannotBeRead(const std::string& fault) { return "cannot be read: " + fault; }

/// A file that is read from its beginning to its end.
class Stream {
 public:
  /// Problems are of this kind; `whose` begins their texts ("the script ").
  Stream(const fs::path& name, Code code, std::string whose)
      : file_(isStandardStream(name) ? std::nullopt : std::optional(name)),
        name_(shownName(name)),
        code_(code),
        whose_(std::move(whose)) {}

  Problem problem(std::string why) const { return problemOf(code_, name_, std::move(why)); }

  /// Whether it could be opened and can be what is wanted ("a drawing"): devices never end.
  Result<> check(const std::string& wanted) const {
    using Kind = host::platform::InputFile::Kind;
    if (file_.kind() == Kind::Unknown) return problem(whose_ + cannotBeRead(file_.fault()));
    if (file_.kind() == Kind::Folder) return problem("this is a folder, not " + wanted);
    if (file_.kind() == Kind::Device) return problem("this is a device, not " + wanted);
    return {};
  }

  /// `take` is given the bytes piece by piece and answers why it refuses them, or nothing.
  Result<> read(std::size_t most, const std::function<std::string(std::string_view)>& take) {
    std::array<char, 1 << 16> buffer{};
    std::size_t size = 0;
    for (;;) {
      const std::optional<std::size_t> count = file_.read(buffer.data(), buffer.size());
      if (!count) return problem(whose_ + cannotBeRead(file_.fault()));
      if (*count == 0) return {};
      if (const std::string refusal = take({buffer.data(), *count}); !refusal.empty())
        return problem(whose_ + cannotBeRead(refusal));
      size += *count;
      if (size > most) return problem(whose_ + "is longer than " + std::to_string(most >> 20) + " MB");
    }
  }

 private:
  host::platform::InputFile file_;
  std::string name_;
  Code code_;
  std::string whose_;
};

/// What a pipe may bring: it has to stay in memory, beside what is made of it.
std::size_t mostOfPipe() {
  constexpr std::size_t kMost = std::size_t{4} << 30;
  const std::uint64_t memory = host::platform::memoryFacts().total;
  return memory == 0 ? kMost : std::min(kMost, static_cast<std::size_t>(memory / 2));
}

}  // namespace

Result<fs::path> readableFile(const fs::path& name) {
  std::error_code error;
  // Files are read where they are, and the reader reports what cannot be opened.
  if (!isStandardStream(name)) {
    const fs::file_status status = fs::status(name, error);
    if (!fs::is_fifo(status) && !fs::is_character_file(status) && !fs::is_block_file(status)) return name;
  }
  Stream stream(name, Code::DrawingUnreadable, "");
  if (const Result<> fit = stream.check("a drawing"); !fit) return fit;
  // Kept until the program ends, so that a path leads to it.
  host::platform::KeptFile copy;
  if (!copy.isOpen()) return stream.problem(cannotBeRead(copy.fault()));
  const Result<> read = stream.read(
      mostOfPipe(), [&copy](std::string_view bytes) { return copy.write(bytes) ? std::string() : copy.fault(); });
  if (!read) {
    copy.drop();
    return read;
  }
  showFileAs(copy.path().string(), shownName(name));
  return copy.path();
}

Result<std::string> readScript(const fs::path& name) {
  Stream stream(name, Code::ScriptUnreadable, "the script ");
  if (const Result<> fit = stream.check("a script"); !fit) return fit;
  std::string bytes;
  const Result<> read = stream.read(host::editor::kLargestScript, [&bytes](std::string_view piece) {
    bytes += piece;
    return std::string();
  });
  if (!read) return read;
  Result<host::editor::ScriptText> script = host::editor::scriptText(std::move(bytes), shownName(name));
  if (!script) return script;
  if (script->remark) complain(*script->remark);
  return std::move(script->utf8);
}

}  // namespace tolmex
