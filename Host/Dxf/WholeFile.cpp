// Files that appear whole or not at all.
#include <new>

#include "Dxf/DxfFile.h"
#include "Platform/ReplacingFile.h"

namespace host::dxf {

Result<> writeFileWhole(const std::filesystem::path& file, std::string_view bytes) {
  return writeFileWhole(file, [bytes](const GiveBytes& give) { return give(bytes); });
}

namespace {

Result<> writeWhole(const std::filesystem::path& file, const std::function<bool(const GiveBytes&)>& produce) {
  const auto refused = [&](const std::string& why) { return problemOf(Code::OutputFailed, file.string(), why); };
  const auto failed = [&](const std::string& reason) { return refused("cannot be written: " + reason); };
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) return refused("this is a folder");
  // A device or a pipe must not be replaced.
  if (std::filesystem::exists(file, error) && !std::filesystem::is_regular_file(file, error))
    return refused("this is no ordinary file");
  // A link keeps pointing where it did: what it names is replaced.
  std::filesystem::path target = file;
  if (std::filesystem::is_symlink(file, error)) {
    target = std::filesystem::canonical(file, error);
    if (error) return refused("the link leads nowhere");
  }
  // A file that may not be written is not replaced either, though its folder would allow it.
  if (const std::string reason = platform::whyUnwritable(target); !reason.empty()) return failed(reason);
  platform::ReplacingFile temporary(target);
  if (!temporary.isOpen()) return failed(temporary.reason());
  const auto write = [&temporary](std::string_view piece) { return temporary.write(piece); };
  if (!produce(write) || !temporary.flush() || !temporary.commit()) return failed(temporary.reason());
  return {};
}

}  // namespace

Result<> writeFileWhole(const std::filesystem::path& file, const std::function<bool(const GiveBytes&)>& produce) {
  try {
    return writeWhole(file, produce);
  } catch (const std::bad_alloc&) {
    return problemOf(Code::OutputFailed, file.string(), "cannot be written: there is not enough memory");
  }
}

}  // namespace host::dxf
