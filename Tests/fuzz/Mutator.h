// Changes of texts whose meaning goes by lines, as that of drawings, scripts and definition files does.
#pragma once

#include <cstddef>
#include <random>
#include <string>

namespace fuzz {

class Mutator {
 public:
  explicit Mutator(std::uint64_t seed) : random_(seed) {}

  /// One change: of a byte, a value, some lines; or lines of `other`, which may be the text itself.
  void change(std::string& text, const std::string& other);
  /// A random number below `end`; 0 when there is none.
  std::size_t below(std::size_t end) { return end == 0 ? 0 : random_() % end; }

 private:
  std::size_t line(const std::string& text);

  std::mt19937_64 random_;
};

}  // namespace fuzz
