// Text helpers without a host: words, lines, numbers, decoding of text files.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace OrvLib {

/// The words of a line, separated by white space of any kind (blank, tab, no-break space and so on).
std::vector<std::wstring_view> words(std::wstring_view line);

/// The lines of a text without their ends (LF, CR LF or CR). A final line end starts no further line.
std::vector<std::wstring> lines(std::wstring_view text);

/// The text with the letters A to Z, Å, Ä and Ö in lower case.
std::wstring lowerCase(std::wstring_view text);
wchar_t lowerCase(wchar_t letter);

/// The decimal number that the text begins with, after white space, "." as the decimal mark whatever the locale.
/// 0 without one and for a number outside the range of double.
double leadingNumber(std::wstring_view text);

/// The number nearest to `value` that an int holds, fractions cut; 0 for NaN.
int toInt(double value);

/// As printf's "%g": at most six significant digits, "." as the decimal mark whatever the locale.
std::wstring formatNumber(double value);

/// Text of a file's bytes: UTF-8 or UTF-16 with a byte order mark, UTF-8 without, and bytes that are not UTF-8 as
/// Latin-1. Damaged sequences become U+FFFD.
std::wstring decodeText(std::string_view bytes);

/// The text as UTF-8 without a byte order mark.
std::string encodeUtf8(std::wstring_view text);

}  // namespace OrvLib
