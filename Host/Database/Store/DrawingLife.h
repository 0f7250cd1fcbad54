#pragma once

#include <cstdint>

namespace host::database {

/// A number that a drawing has until it is destroyed and that no other gets: by it a pointer into the drawing is known
/// to be stale.
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
