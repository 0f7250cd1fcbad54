#pragma once

#include <cstdint>

namespace host::database {

/// A number for as long as a drawing lives, never given again: tells whoever points into the drawing that it is gone.
class DrawingLife {
 public:
  DrawingLife();
  DrawingLife(const DrawingLife&) = delete;
  DrawingLife& operator=(const DrawingLife&) = delete;
  ~DrawingLife();
  std::uint64_t number() const { return number_; }
  static bool isLiving(std::uint64_t number);

 private:
  std::uint64_t number_;
};

}  // namespace host::database
