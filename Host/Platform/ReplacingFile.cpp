#include "Platform/ReplacingFile.h"

namespace host::platform {

bool ReplacingFile::write(std::string_view piece) {
  constexpr std::size_t kGather = std::size_t{1} << 18;
  if (gathered_.size() + piece.size() > kGather && !flush()) return false;
  if (piece.size() > kGather) return writeBytes(piece);
  gathered_ += piece;
  return true;
}

bool ReplacingFile::flush() {
  const bool ok = writeBytes(gathered_);
  gathered_.clear();
  return ok;
}

}  // namespace host::platform
