#include "Picture/Formats/PdfObjects.h"

#include <array>
#include <cstdio>

#include "Picture/Formats/PixelRows.h"
#include "Text/Text.h"

namespace host::picture::pdf {

void addNumber(std::string& out, double value, int decimals) {
  std::array<char, 64> text{};
  int length = std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
  while (text[static_cast<std::size_t>(length - 1)] == '0') --length;
  if (text[static_cast<std::size_t>(length - 1)] == '.') --length;
  std::string_view figures(text.data(), static_cast<std::size_t>(length));
  if (figures == "-0") figures = "0";
  out += figures;
}

std::string numbers(std::initializer_list<double> values, int decimals) {
  std::string out;
  for (const double value : values) {
    if (!out.empty()) out += ' ';
    addNumber(out, value, decimals);
  }
  return out;
}

void addUtf16(std::string& out, char32_t letter) {
  std::array<char, 16> digits{};
  const auto unit = [&](char32_t value) {
    std::snprintf(digits.data(), digits.size(), "%04X", static_cast<unsigned>(value));
    out += digits.data();
  };
  if (letter < 0x10000) return unit(letter);
  unit(0xD800 + ((letter - 0x10000) >> 10));
  unit(0xDC00 + ((letter - 0x10000) & 0x3FF));
}

std::string textString(std::string_view utf8) {
  std::string out = "<FEFF";
  for (const wchar_t c : text::fromUtf8(utf8)) addUtf16(out, static_cast<char32_t>(c));
  return out + ">";
}

std::string literal(std::string_view bytes) {
  std::string out = "(";
  for (const char c : bytes) {
    if (c == '(' || c == ')' || c == '\\') out += '\\';
    out += c;
  }
  return out + ")";
}

std::string reference(std::size_t object) { return std::to_string(object) + " 0 R"; }

std::size_t Objects::reserve() {
  bodies_.emplace_back();
  return bodies_.size();
}

std::size_t Objects::add(std::string body) {
  const std::size_t object = reserve();
  set(object, std::move(body));
  return object;
}

std::size_t Objects::addStream(const std::string& entries, const std::string& bytes) {
  const std::string small = compressed(bytes);
  const bool isSmaller = !small.empty() && small.size() < bytes.size();
  return addRaw(entries + (isSmaller ? " /Filter /FlateDecode" : ""), isSmaller ? small : bytes);
}

std::size_t Objects::addRaw(const std::string& entries, const std::string& bytes) {
  return add("<<" + entries + " /Length " + std::to_string(bytes.size()) + ">>\nstream\n" + bytes + "\nendstream");
}

std::string Objects::file(std::size_t catalogue, std::size_t information) const {
  // The bytes of the second line tell programs that move files that this is no text.
  std::string out = "%PDF-1.5\n%\xE2\xE3\xCF\xD3\n";
  std::vector<std::size_t> places;
  for (const std::string& body : bodies_) {
    places.push_back(out.size());
    out += std::to_string(places.size()) + " 0 obj\n" + body + "\nendobj\n";
  }
  const std::size_t table = out.size();
  const std::string count = std::to_string(bodies_.size() + 1);
  out += "xref\n0 " + count + "\n0000000000 65535 f \n";
  std::array<char, 32> entry{};
  for (const std::size_t place : places) {
    std::snprintf(entry.data(), entry.size(), "%010zu 00000 n \n", place);
    out += entry.data();
  }
  return out + "trailer\n<</Size " + count + " /Root " + reference(catalogue) + " /Info " + reference(information) +
         ">>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n";
}

}  // namespace host::picture::pdf
