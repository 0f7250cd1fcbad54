#include "WideFormat.h"

#include <cstdint>
#include <cstdio>
#include <cwchar>

#include "Platform/PlainNumbers.h"
#include "Text.h"

namespace host::text {
namespace {

// Widths and precisions beyond this come from broken arguments, not from layouts.
constexpr int kLargestField = 0x10000;

enum class Size { Default, Char, Short, Long, Wide, Bits32, Bits64, Pointer, LongDouble };

struct Field {
  bool left = false;
  bool plus = false;
  bool blank = false;
  bool alternate = false;
  bool zeros = false;
  int width = 0;
  int precision = -1;  // none given
  Size size = Size::Default;
};

class Formatter {
 public:
  Formatter(const wchar_t* format, std::va_list arguments) : at_(format) { va_copy(arguments_, arguments); }
  ~Formatter() { va_end(arguments_); }
  Formatter(const Formatter&) = delete;
  Formatter& operator=(const Formatter&) = delete;

  std::wstring run() {
    while (*at_ != 0) {
      const wchar_t* start = at_;
      while (*at_ != 0 && *at_ != L'%') ++at_;
      out_.append(start, at_);
      if (*at_ != 0) conversion();
    }
    return std::move(out_);
  }

 private:
  void conversion() {
    const wchar_t* start = at_++;
    Field field;
    readFlags(field);
    readWidthAndPrecision(field);
    readSize(field);
    if (*at_ == 0) {
      out_.append(start, at_);
      return;
    }
    const wchar_t type = *at_++;
    switch (type) {
      case L'd':
      case L'i':
        number(field, L"jd", signedArgument(field));
        break;
      case L'u':
      case L'o':
      case L'x':
      case L'X': {
        const wchar_t conversion[] = {L'j', type, 0};
        number(field, conversion, unsignedArgument(field));
        break;
      }
      case L'e':
      case L'E':
      case L'f':
      case L'F':
      case L'g':
      case L'G':
      case L'a':
      case L'A': {
        const wchar_t conversion[] = {type, 0};
        number(field, conversion,
               field.size == Size::LongDouble ? static_cast<double>(va_arg(arguments_, long double))
                                              : va_arg(arguments_, double));
        break;
      }
      case L'c':
      case L'C':
        character(field, isNarrow(field, type == L'C'));
        break;
      case L's':
      case L'S':
        string(field, isNarrow(field, type == L'S'));
        break;
      case L'p': {
        wchar_t digits[2 * sizeof(void*) + 1];
        std::swprintf(digits, sizeof digits / sizeof *digits, L"%0*jX", static_cast<int>(2 * sizeof(void*)),
                      static_cast<std::uintmax_t>(reinterpret_cast<std::uintptr_t>(va_arg(arguments_, void*))));
        padded(field, digits);
        break;
      }
      case L'n':
        // Writing through a pointer that a format names is how format strings are attacked.
        static_cast<void>(va_arg(arguments_, void*));
        break;
      case L'%':
        out_ += L'%';
        break;
      default:
        out_.append(start, at_);
    }
  }

  void readFlags(Field& field) {
    for (;; ++at_) {
      switch (*at_) {
        case L'-':
          field.left = true;
          break;
        case L'+':
          field.plus = true;
          break;
        case L' ':
          field.blank = true;
          break;
        case L'#':
          field.alternate = true;
          break;
        case L'0':
          field.zeros = true;
          break;
        default:
          return;
      }
    }
  }

  int boundedNumber() {
    int value = 0;
    for (; *at_ >= L'0' && *at_ <= L'9'; ++at_)
      if (value < kLargestField) value = value * 10 + static_cast<int>(*at_ - L'0');
    return value;
  }

  void readWidthAndPrecision(Field& field) {
    if (*at_ == L'*') {
      ++at_;
      std::int64_t width = va_arg(arguments_, int);
      if (width < 0) field.left = true;
      width = width < 0 ? -width : width;
      field.width = static_cast<int>(width < kLargestField ? width : kLargestField);
    } else {
      field.width = boundedNumber();
    }
    if (*at_ == L'.') {
      ++at_;
      if (*at_ == L'*') {
        ++at_;
        field.precision = va_arg(arguments_, int);
      } else {
        field.precision = boundedNumber();
      }
    }
    if (field.width > kLargestField) field.width = kLargestField;
    if (field.precision > kLargestField) field.precision = kLargestField;
  }

  void readSize(Field& field) {
    struct Prefix {
      const wchar_t* text;
      Size size;
    };
    // Longer prefixes first. "l" is 32 bits, as on Windows.
    constexpr Prefix kPrefixes[] = {{L"I64", Size::Bits64}, {L"I32", Size::Bits32}, {L"ll", Size::Bits64},
                                    {L"hh", Size::Char},    {L"I", Size::Pointer},  {L"l", Size::Long},
                                    {L"h", Size::Short},    {L"w", Size::Wide},     {L"j", Size::Bits64},
                                    {L"z", Size::Pointer},  {L"t", Size::Pointer},  {L"L", Size::LongDouble}};
    for (const Prefix& prefix : kPrefixes) {
      const std::size_t length = std::wcslen(prefix.text);
      if (std::wcsncmp(at_, prefix.text, length) != 0) continue;
      field.size = prefix.size;
      at_ += length;
      return;
    }
  }

  static bool isNarrow(const Field& field, bool capital) {
    if (field.size == Size::Short || field.size == Size::Char) return true;
    if (field.size == Size::Long || field.size == Size::Wide || field.size == Size::Bits64) return false;
    return capital;
  }

  std::intmax_t signedArgument(const Field& field) {
    if (field.size == Size::Bits64) return va_arg(arguments_, std::int64_t);
    if (field.size == Size::Pointer) return va_arg(arguments_, std::ptrdiff_t);
    const std::int32_t value = va_arg(arguments_, std::int32_t);
    if (field.size == Size::Short) return static_cast<std::int16_t>(value);
    return field.size == Size::Char ? static_cast<std::int8_t>(value) : value;
  }

  std::uintmax_t unsignedArgument(const Field& field) {
    if (field.size == Size::Bits64) return va_arg(arguments_, std::uint64_t);
    if (field.size == Size::Pointer) return va_arg(arguments_, std::size_t);
    const std::uint32_t value = va_arg(arguments_, std::uint32_t);
    if (field.size == Size::Short) return static_cast<std::uint16_t>(value);
    return field.size == Size::Char ? static_cast<std::uint8_t>(value) : value;
  }

  /// The C library formats the number; `conversion` is its size prefix and type.
  template <class Number>
  void number(const Field& field, const wchar_t* conversion, Number value) {
    std::string narrow = "%";
    if (field.left) narrow += '-';
    if (field.plus) narrow += '+';
    if (field.blank) narrow += ' ';
    if (field.alternate) narrow += '#';
    if (field.zeros) narrow += '0';
    narrow += "*.*";
    for (const wchar_t* c = conversion; *c != 0; ++c) narrow += static_cast<char>(*c);
    const platform::PlainNumbers plain;
    char shortText[128];
    const int length = std::snprintf(shortText, sizeof shortText, narrow.c_str(), field.width, field.precision, value);
    if (length < 0) return;
    if (static_cast<std::size_t>(length) < sizeof shortText) {
      out_.append(shortText, shortText + length);
      return;
    }
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::snprintf(text.data(), text.size(), narrow.c_str(), field.width, field.precision, value);
    out_.append(text.begin(), text.end() - 1);
  }

  void character(const Field& field, bool narrow) {
    const auto value = va_arg(arguments_, unsigned);
    const auto shown = static_cast<wchar_t>(narrow ? value & 0xFFU : value);
    padded(field, std::wstring_view(&shown, 1));
  }

  void string(const Field& field, bool narrow) {
    std::wstring converted;
    std::wstring_view text = L"(null)";
    const auto limit = field.precision < 0 ? std::wstring_view::npos : static_cast<std::size_t>(field.precision);
    if (narrow) {
      if (const auto* bytes = va_arg(arguments_, const char*)) {
        // A precision means that the text need not be terminated, so no byte beyond it is touched.
        converted = fromUtf8({bytes, lengthUpTo(bytes, limit)});
        text = converted;
      }
    } else if (const auto* wide = va_arg(arguments_, const wchar_t*)) {
      text = {wide, lengthUpTo(wide, limit)};
    }
    padded(field, text.substr(0, limit));
  }

  template <class Character>
  static std::size_t lengthUpTo(const Character* text, std::size_t limit) {
    std::size_t length = 0;
    while (length < limit && text[length] != 0) ++length;
    return length;
  }

  void padded(const Field& field, std::wstring_view text) {
    const auto width = static_cast<std::size_t>(field.width);
    const std::size_t padding = width > text.size() ? width - text.size() : 0;
    if (!field.left) out_.append(padding, L' ');
    out_ += text;
    if (field.left) out_.append(padding, L' ');
  }

  const wchar_t* at_;
  std::va_list arguments_;
  std::wstring out_;
};

}  // namespace

std::wstring formatWide(const wchar_t* format, std::va_list arguments) {
  return format == nullptr ? std::wstring() : Formatter(format, arguments).run();
}

std::wstring formatWide(const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  // Through the class: on some platforms va_list is a pointer and would pick this overload again.
  std::wstring text = format == nullptr ? std::wstring() : Formatter(format, arguments).run();
  va_end(arguments);
  return text;
}

}  // namespace host::text
