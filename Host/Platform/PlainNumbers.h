// The decimal mark of the C library's functions.
#pragma once

namespace host::platform {

/// Makes the calling thread use "." as decimal mark for its lifetime.
class PlainNumbers {
 public:
  PlainNumbers();
  ~PlainNumbers();
  PlainNumbers(const PlainNumbers&) = delete;
  PlainNumbers& operator=(const PlainNumbers&) = delete;

 private:
  void* previous_;
};

}  // namespace host::platform
