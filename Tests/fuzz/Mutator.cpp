#include "Mutator.h"

#include <algorithm>
#include <iterator>

namespace fuzz {

namespace {

/// The begin of the line that stands so many lines behind one.
std::size_t behind(const std::string& text, std::size_t at, std::size_t lines) {
  for (; lines > 0 && at < text.size(); --lines) {
    const std::size_t end = text.find('\n', at);
    at = end == std::string::npos ? text.size() : end + 1;
  }
  return at;
}

const char* const kValues[] = {"0",          "-1",          "1",
                               "2147483648", "-2147483649", "4294967295",
                               "nan",        "inf",         "1e308",
                               "-1e308",     "1e-320",      "9999999999999999999",
                               "",           " ",           "FFFFFFFFFFFFFFFF",
                               "*",          "\\U+0000",    "^J",
                               "70",         "330",         "ENDSEC",
                               "SECTION",    "100",         "1001",
                               "INSERT",     "POLYLINE",    "*Model_Space",
                               "65535",      "32768",       "1.7976931348623157e308"};

}  // namespace

/// Begin of a line near a random place.
std::size_t Mutator::line(const std::string& text) {
  const std::size_t at = text.find('\n', below(text.size()));
  return at == std::string::npos ? 0 : at + 1;
}

void Mutator::change(std::string& text, const std::string& other) {
  if (text.empty()) text = "0";
  const std::size_t at = below(text.size());
  switch (random_() % 10) {
    case 0:
      text[at] = static_cast<char>(random_());
      break;
    case 1:
      text[at] = static_cast<char>(text[at] ^ (1U << below(8)));
      break;
    case 2:
      text.erase(at, 1 + below(30));
      break;
    case 3:
      text.resize(at);
      break;
    case 4:
      text.insert(at, text.substr(below(text.size()), below(400)));
      break;
    case 5: {  // another value
      const std::size_t begin = line(text);
      const std::size_t end = std::min(text.find('\n', begin), text.size());
      text.replace(begin, end - begin, kValues[below(std::size(kValues))]);
      break;
    }
    case 6: {  // some lines twice
      const std::size_t begin = line(text);
      text.insert(begin, text.substr(begin, behind(text, begin, 1 + below(40)) - begin));
      break;
    }
    case 7: {  // some lines gone
      const std::size_t begin = line(text);
      text.erase(begin, behind(text, begin, 1 + below(20)) - begin);
      break;
    }
    case 8: {  // a line of one place in another
      const std::size_t from = line(text);
      const std::string taken = text.substr(from, behind(text, from, 1) - from);
      const std::size_t begin = line(text);
      text.replace(begin, behind(text, begin, 1) - begin, taken);
      break;
    }
    default: {  // lines of another file
      const std::string lines = other.substr(below(other.size()), below(600));
      text.insert(line(text), lines);
    }
  }
}

}  // namespace fuzz
