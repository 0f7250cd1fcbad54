#include "Database/Store/DrawingLife.h"

#include <mutex>
#include <set>

namespace host::database {

namespace {

/// Numbers of the drawings that live; workers may have drawings of their own.
struct Lives {
  std::mutex mutex;
  std::set<std::uint64_t> numbers;
  std::uint64_t latest = 0;
};
Lives& lives() {
  static Lives* const all = new Lives;  // outlives drawings that end with the program
  return *all;
}

}  // namespace

DrawingLife::DrawingLife() {
  const std::lock_guard lock(lives().mutex);
  number_ = ++lives().latest;
  lives().numbers.insert(number_);
}

DrawingLife::~DrawingLife() {
  const std::lock_guard lock(lives().mutex);
  lives().numbers.erase(number_);
}

bool DrawingLife::isLiving(std::uint64_t number) {
  const std::lock_guard lock(lives().mutex);
  return lives().numbers.count(number) > 0;
}

}  // namespace host::database
