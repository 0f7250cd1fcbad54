#include "Hatching/DefinitionFile.h"

#include <cmath>

#include "Text/Text.h"

namespace host::hatching {

namespace {

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\x1a";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// The whole field is one finite number.
std::optional<double> numberIn(std::string_view field) {
  field = trimmed(field);
  if (field.empty() || field.find_first_not_of("+-.0123456789eE") != std::string_view::npos) return std::nullopt;
  const std::optional<double> number = text::parseReal(field);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

/// Takes a "[...]" at the start of the text away; a "]" in quotes does not end it. False when it has no end.
bool skipBracket(std::string_view& text) {
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '"') quoted = !quoted;
    if (text[i] == ']' && !quoted) {
      text.remove_prefix(i + 1);
      return true;
    }
  }
  return false;
}

}  // namespace

void readDefinitionFile(std::string_view text,
                        const std::function<std::string(std::string_view name, std::string_view description)>& header,
                        const std::function<std::string(std::string_view line)>& body, std::vector<Problem>& problems) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = text.find('\n');
    const std::string_view line = trimmed(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.empty() || line.front() == ';') continue;
    std::string problem;
    if (line.front() == '*') {
      const std::size_t comma = line.find(',');
      const std::string_view name = trimmed(line.substr(1, comma == std::string_view::npos ? comma : comma - 1));
      problem = header(name, comma == std::string_view::npos ? std::string_view() : trimmed(line.substr(comma + 1)));
    } else {
      problem = body(line);
    }
    if (!problem.empty()) problems.push_back({Code::LineSkipped, {}, number, 0, std::move(problem)});
  }
}

std::optional<std::vector<double>> parseNumbers(std::string_view line) {
  std::vector<double> numbers;
  for (;;) {
    line = trimmed(line);
    if (line.empty() || line.front() == ';') return numbers;
    if (line.front() == '[') {
      if (!skipBracket(line)) return std::nullopt;
      line = trimmed(line);
      if (!line.empty() && line.front() != ',' && line.front() != ';') return std::nullopt;
    } else {
      const std::size_t end = line.find_first_of(",;");
      const std::optional<double> number = numberIn(line.substr(0, end));
      if (!number) return std::nullopt;
      numbers.push_back(*number);
      line.remove_prefix(end == std::string_view::npos ? line.size() : end);
    }
    if (!line.empty() && line.front() == ',') line.remove_prefix(1);
  }
}

}  // namespace host::hatching
