#include "Import/Values.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "Text/Text.h"

namespace host::import {
namespace {

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front())) != 0) text.remove_prefix(1);
  while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())) != 0) text.remove_suffix(1);
  return text;
}

/// A number at the beginning, and how many characters it takes.
std::optional<std::pair<double, std::size_t>> leadingNumber(std::string_view text) {
  std::string plain;
  std::size_t size = 0;
  for (; size < text.size(); ++size) {
    const char c = text[size];
    const bool isSign = size == 0 && (c == '-' || c == '+');
    const bool isPoint = (c == '.' || c == ',') && plain.find('.') == std::string::npos;
    if (!isSign && !isPoint && std::isdigit(static_cast<unsigned char>(c)) == 0) break;
    plain += isPoint ? '.' : c;
  }
  const std::optional<double> value = text::parseReal(plain);
  if (!value || !std::isfinite(*value) || plain.find_first_of("0123456789") == std::string::npos) return std::nullopt;
  return std::pair(*value, size);
}

/// "XIV", up to 39.
std::optional<std::pair<double, std::size_t>> leadingRoman(std::string_view text) {
  const auto valueOfLetter = [](char c) {
    switch (std::toupper(static_cast<unsigned char>(c))) {
      case 'I':
        return 1;
      case 'V':
        return 5;
      case 'X':
        return 10;
      default:
        return 0;
    }
  };
  int sum = 0;
  std::size_t size = 0;
  for (; size < text.size() && valueOfLetter(text[size]) > 0; ++size) {
    const int value = valueOfLetter(text[size]);
    const int next = size + 1 < text.size() ? valueOfLetter(text[size + 1]) : 0;
    sum += next > value ? -value : value;
  }
  const bool isWord = size < text.size() && std::isalpha(static_cast<unsigned char>(text[size])) != 0;
  if (size == 0 || isWord || sum <= 0) return std::nullopt;
  return std::pair(static_cast<double>(sum), size);
}

bool startsWithPart(std::string_view text) {
  return text.size() >= 3 && std::isdigit(static_cast<unsigned char>(text[0])) != 0 && text[1] == '/' &&
         std::isdigit(static_cast<unsigned char>(text[2])) != 0;
}

std::optional<double> valueOfWay(std::string_view way, const Attributes& attributes) {
  // Operators stand between blanks: names of attributes may hold all other characters.
  for (const std::string_view op : {" - ", " * ", " / "}) {
    const std::size_t at = way.rfind(op);
    if (at == std::string_view::npos) continue;
    const std::optional<double> a = valueOfWay(trimmed(way.substr(0, at)), attributes);
    std::optional<double> b = valueOfWay(trimmed(way.substr(at + op.size())), attributes);
    if (op == " - " && !b) b = 0;
    if (!a || !b) return std::nullopt;
    if (op == " - ") return *a - *b;
    if (op == " * ") return *a * *b;
    return *b != 0 ? std::optional(*a / *b) : std::nullopt;
  }
  if (const auto number = leadingNumber(way); number && number->second == way.size()) return number->first;
  return parseMeasure(attributes(way));
}

}  // namespace

std::optional<double> parseMeasure(std::string_view text) {
  text = trimmed(text);
  const auto number = leadingNumber(text);
  if (!number) return std::nullopt;
  constexpr double kFoot = 0.3048;
  const std::string_view unit = trimmed(text.substr(number->second));
  return unit.starts_with('\'') || unit.starts_with("ft") ? number->first * kFoot : number->first;
}

std::optional<double> parseFloors(std::string_view text) {
  text = trimmed(text);
  const auto leading = [](std::string_view rest) {
    const auto number = leadingNumber(rest);
    return number ? number : leadingRoman(rest);
  };
  auto first = leading(text);
  if (!first || first->first < 0) return std::nullopt;
  if (startsWithPart(text)) return 1;
  double floors = std::ceil(first->first - 1e-9);
  std::string_view rest = trimmed(text.substr(first->second));
  constexpr std::string_view kDash = "\xE2\x80\x93";  // an en dash
  const bool isRange = rest.starts_with('-') || rest.starts_with(kDash);
  if (isRange) {
    rest = trimmed(rest.substr(rest.starts_with('-') ? 1 : kDash.size()));
    if (const auto end = leading(rest)) return std::ceil(end->first - 1e-9);
    return floors;
  }
  if (rest.starts_with("u ") || rest.starts_with("k ")) rest = trimmed(rest.substr(2));
  return startsWithPart(rest) ? floors + 1 : floors;
}

std::optional<double> valueOf(const std::vector<std::string>& ways, const Attributes& attributes) {
  for (const std::string& way : ways) {
    if (const std::optional<double> value = valueOfWay(way, attributes)) return value;
  }
  return std::nullopt;
}

bool holds(std::string_view condition, const Attributes& attributes) {
  while (!(condition = trimmed(condition)).empty()) {
    const std::string_view term = condition.substr(0, condition.find(' '));
    condition.remove_prefix(term.size());
    const std::size_t at = term.find_first_of("=<>!");
    if (at == std::string_view::npos) {
      if (attributes(term).empty()) return false;
      continue;
    }
    const bool isNot = term[at] == '!';
    const std::string value = attributes(term.substr(0, at));
    const std::string_view wanted = term.substr(at + (isNot ? 2 : 1));
    if (term[at] == '<' || term[at] == '>') {
      const std::optional<double> a = parseMeasure(value), b = parseMeasure(wanted);
      if (!a || !b || (term[at] == '<' ? *a >= *b : *a <= *b)) return false;
      continue;
    }
    // "name=" asks for a missing or empty one.
    const bool matches = wanted.empty()
                             ? value.empty()
                             : !value.empty() && text::matchesWildcard(text::fromUtf8(value), text::fromUtf8(wanted));
    if (matches == isNot) return false;
  }
  return true;
}

std::string shown(double value) {
  const std::string text = text::formatReal(value);
  return text.ends_with(".0") ? text.substr(0, text.size() - 2) : text;
}

std::string filled(std::string text, const std::map<std::string, std::string>& values) {
  for (const auto& [name, value] : values) {
    const std::string mark = "{" + name + "}";
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += value.size())
      text.replace(at, mark.size(), value);
  }
  return text;
}

}  // namespace host::import
