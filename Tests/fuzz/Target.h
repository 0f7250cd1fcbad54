// What a fuzz target gives: the entry that libFuzzer calls, and so does our own driver.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Ends the program when a promise is broken, so that the input is kept.
void require(bool holds, const char* promise, const std::string& detail = {});

}  // namespace fuzz
