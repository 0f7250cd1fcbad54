#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

#include "Text.h"

namespace host::text {
namespace {

bool isDecimal(char c) { return c >= '0' && c <= '9'; }

std::string_view withoutLeadingBlanks(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t\r\n\v\f");
  return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

/// std::from_chars answers "out of range" for both ends; the decimal exponent of the first digit tells which.
double outOfRange(std::string_view digits) {
  long long magnitude = 0;
  bool fraction = false;
  bool significant = false;
  std::size_t i = 0;
  for (; i < digits.size() && (isDecimal(digits[i]) || (digits[i] == '.' && !fraction)); ++i) {
    if (digits[i] == '.') {
      fraction = true;
    } else if (significant || digits[i] != '0') {
      significant = true;
      if (!fraction) ++magnitude;
    } else if (fraction) {
      --magnitude;
    }
  }
  int exponent = 0;
  if (i < digits.size() && (digits[i] == 'e' || digits[i] == 'E')) {
    const bool negative = i + 1 < digits.size() && digits[i + 1] == '-';
    const char* first = digits.data() + i + 1;
    if (*first == '+' || *first == '-') ++first;
    if (std::from_chars(first, digits.data() + digits.size(), exponent).ec == std::errc::result_out_of_range)
      exponent = std::numeric_limits<int>::max();
    if (negative) exponent = -exponent;
  }
  return magnitude + exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
}

/// The unsigned number at the start; `text` has no sign and no blanks before it.
std::optional<double> parseMagnitude(std::string_view text) {
  double value = 0.0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range)
    return outOfRange(text.substr(0, static_cast<std::size_t>(stop - text.data())));
  return value;
}

/// How Microsoft's older run-time library wrote numbers that are none: 1.#INF, 1.#QNAN, 1.#IND.
std::optional<double> parseOldMicrosoftSpecial(std::string_view text) {
  if (text.substr(0, 3) != "1.#") return std::nullopt;
  return text.substr(3, 3) == "INF" ? std::numeric_limits<double>::infinity()
                                    : std::numeric_limits<double>::quiet_NaN();
}

/// A plain decimal number as drawings have them by the million: a sign, digits, a point, digits. Nothing for any other
/// and for those that need more than one rounding: a whole number and a power of ten that are exact give an exact or
/// correctly rounded quotient.
std::optional<double> parsePlain(std::string_view text) {
  constexpr std::uint64_t kMostExact = std::uint64_t{1} << 53;
  constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8, 1e9,
                                1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};
  constexpr std::size_t kMostDigits = std::size(kPowers) - 1;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at < end && *at == ' ') ++at;
  const bool isNegative = at < end && *at == '-';
  if (isNegative) ++at;
  if (static_cast<std::size_t>(end - at) > kMostDigits + 1) return std::nullopt;
  std::uint64_t digits = 0;
  const char* const first = at;
  while (at < end && isDecimal(*at)) digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
  if (at == first) return std::nullopt;
  std::size_t decimals = 0;
  if (at < end && *at == '.') {
    const char* const point = at++;
    while (at < end && isDecimal(*at)) digits = digits * 10 + static_cast<std::uint64_t>(*at++ - '0');
    decimals = static_cast<std::size_t>(at - point - 1);
  }
  if (at != end || digits > kMostExact) return std::nullopt;
  const double value = decimals == 0 ? static_cast<double>(digits) : static_cast<double>(digits) / kPowers[decimals];
  return isNegative ? -value : value;
}

}  // namespace

std::optional<double> parseReal(std::string_view text) {
  if (const std::optional<double> plain = parsePlain(text)) return plain;
  text = withoutLeadingBlanks(text);
  if (text.empty()) return std::nullopt;
  const bool negative = text.front() == '-';
  if (negative || text.front() == '+') text.remove_prefix(1);
  // A second sign is no number, though from_chars would take a minus.
  if (text.empty() || text.front() == '-') return std::nullopt;

  std::optional<double> magnitude = parseOldMicrosoftSpecial(text);
  if (!magnitude) {
    const std::size_t mark = text.find_first_not_of("0123456789.");
    const bool fortran = mark != std::string_view::npos && mark > 0 && (text[mark] == 'D' || text[mark] == 'd');
    if (fortran) {
      std::string copy(text.substr(0, text.find_first_not_of("0123456789+-", mark + 1)));
      copy[mark] = 'e';
      magnitude = parseMagnitude(copy);
    } else {
      magnitude = parseMagnitude(text);
    }
  }
  if (magnitude && negative) return -*magnitude;
  return magnitude;
}

std::optional<std::int64_t> parseInteger(std::string_view text) {
  text = withoutLeadingBlanks(text);
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return std::nullopt;
  }
  std::int64_t value = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range)
    return text.front() == '-' ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
  return value;
}

std::uint64_t parseHandle(std::string_view text) {
  text = withoutLeadingBlanks(text);
  std::uint64_t value = 0;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  return error == std::errc() ? value : 0;
}

char* formatReal(double value, char* at) {
  constexpr double kLargestPlain = 1e16;
  constexpr double kSmallestPlain = 1e-5;
  const double size = std::fabs(value);
  const bool plain = size == 0.0 || (size >= kSmallestPlain && size < kLargestPlain);
  const auto [end, error] = plain ? std::to_chars(at, at + kLongestNumber - 2, value, std::chars_format::fixed)
                                  : std::to_chars(at, at + kLongestNumber - 2, value);
  if (std::any_of(at, end, [](char c) { return c == '.' || c == 'e' || c == 'n'; })) return end;
  end[0] = '.';
  end[1] = '0';
  return end + 2;
}

std::string formatReal(double value) {
  char buffer[kLongestNumber];
  return {buffer, formatReal(value, buffer)};
}

char* formatHandle(std::uint64_t handle, char* at) {
  char* const end = std::to_chars(at, at + kLongestNumber, handle, 16).ptr;
  std::transform(at, end, at, [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  return end;
}

std::string formatHandle(std::uint64_t handle) {
  char buffer[kLongestNumber];
  return {buffer, formatHandle(handle, buffer)};
}

}  // namespace host::text
