// What libFuzzer gets beyond the target itself: every second change is one of lines.
#include <algorithm>
#include <array>
#include <cstring>

#include "Mutator.h"
#include "Target.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed) {
  static std::array<std::string, 64> former;
  static std::size_t count = 0;
  fuzz::Mutator mutator(seed);
  std::string text(fuzz::textOf(data, size));
  const std::string& other = former[mutator.below(std::clamp<std::size_t>(count, 1, former.size()))];
  const bool byLines = mutator.below(2) == 0;
  if (byLines) mutator.change(text, other);
  former[count++ % former.size()].assign(reinterpret_cast<const char*>(data), size);
  if (!byLines || text.empty() || text.size() > most) return LLVMFuzzerMutate(data, size, most);
  std::memcpy(data, text.data(), text.size());
  return text.size();
}
