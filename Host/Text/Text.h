// Wide and UTF-8 text, numbers as drawings spell them, comparison without case.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host::text {

/// UTF-8 to wide. Bytes that are not UTF-8 become U+FFFD.
std::wstring fromUtf8(std::string_view bytes);
/// Wide to UTF-8. Works with 16-bit and 32-bit wide characters; lone surrogates become U+FFFD.
std::string toUtf8(std::wstring_view text);

/// Text that a terminal shows and does not obey: control characters are spelled as drawings spell them ("^[" for Esc,
/// \U+009B beyond ASCII), and so are characters that turn the direction of writing or end a line unseen. Line feeds and
/// tabs stay; a carriage return before a line feed goes.
std::wstring printable(std::wstring_view text);
enum class LineFeeds { Stay, Spelled };
/// The same for UTF-8. Bytes that are not UTF-8 become U+FFFD.
std::string printable(std::string_view bytes, LineFeeds lineFeeds);

/// Lower-case form for comparing names (simple folding, Finnish, Greek and Cyrillic letters included).
std::wstring folded(std::wstring_view text);
bool equalFolded(std::wstring_view a, std::wstring_view b);
/// A hash value that is the same for all texts that are equal folded.
std::size_t foldedHash(std::wstring_view text);

/// The number at the start of the text after blanks, whatever the locale; nothing when there is none.
/// Accepts ".5", "+1.0E+02", "1D3"; gives infinity for 1e999 and NaN for "nan": callers check finiteness.
std::optional<double> parseReal(std::string_view text);
std::optional<std::int64_t> parseInteger(std::string_view text);
/// Hexadecimal handle text; 0 when there is no hexadecimal digit.
std::uint64_t parseHandle(std::string_view text);

/// Room for any number as the functions below spell it.
constexpr std::size_t kLongestNumber = 40;
/// Shortest text that reads back as the same number, always with a "." or an exponent ("1.0", "0.15", "1e+20").
std::string formatReal(double value);
/// The same to `at`, where `kLongestNumber` characters have room; the end of the text.
char* formatReal(double value, char* at);
/// Upper-case hexadecimal without leading zeros.
std::string formatHandle(std::uint64_t handle);
char* formatHandle(std::uint64_t handle, char* at);

/// Name against a pattern of the host: # digit, @ letter, . other, * any, ? one, ~ not, [..] set, [~..] not in set,
/// ',' alternatives, ` takes the next character as it is. Without regard to case.
bool matchesWildcard(std::wstring_view text, std::wstring_view pattern);

}  // namespace host::text
