// The objects of a PDF and what their bodies are written with.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace host::picture::pdf {

/// At most so many decimals, no zeros at the end.
void addNumber(std::string& out, double value, int decimals = 3);
std::string numbers(std::initializer_list<double> values, int decimals = 3);

/// Digits of a letter's UTF-16, four for each unit.
void addUtf16(std::string& out, char32_t letter);
/// Text as a string of UTF-16 with its mark, in hexadecimal.
std::string textString(std::string_view utf8);

/// Bytes as a string.
std::string literal(std::string_view bytes);

std::string reference(std::size_t object);

/// The numbered objects of a file, and the file made of them.
class Objects {
 public:
  /// A number for an object that is given later.
  std::size_t reserve();
  void set(std::size_t object, std::string body) { bodies_[object - 1] = std::move(body); }
  std::size_t add(std::string body);
  /// `entries`: of the stream's dictionary, without length and filter.
  std::size_t addStream(const std::string& entries, const std::string& bytes);
  std::size_t addRaw(const std::string& entries, const std::string& bytes);

  std::string file(std::size_t catalogue, std::size_t information) const;

 private:
  std::vector<std::string> bodies_;
};

}  // namespace host::picture::pdf
