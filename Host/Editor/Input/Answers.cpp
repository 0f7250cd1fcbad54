#include "Editor/Answers.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <numbers>
#include <numeric>

#include "Text/Text.h"
#include "Text/WideFormat.h"

namespace host::editor {
namespace {

/// Digits, signs, one point, an exponent: what a number may consist of, so that "nan", "inf" and "5m" are none.
bool looksNumeric(std::string_view text) {
  bool hasDigit = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c >= '0' && c <= '9') {
      hasDigit = true;
    } else if (c == 'e' || c == 'E') {
      if (!hasDigit || i + 1 >= text.size()) return false;
      const std::size_t digits = text[i + 1] == '+' || text[i + 1] == '-' ? i + 2 : i + 1;
      return digits < text.size() && text.find_first_not_of("0123456789", digits) == std::string_view::npos;
    } else if (c == '+' || c == '-') {
      if (i != 0) return false;
    } else if (c != '.' || text.find('.', i + 1) != std::string_view::npos) {
      return false;
    }
  }
  return hasDigit;
}

std::optional<double> parsePlain(std::wstring_view wide) {
  const std::string text = text::toUtf8(wide);
  if (!looksNumeric(text)) return std::nullopt;
  const std::optional<double> value = text::parseReal(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::wstring capitalsOf(std::wstring_view word) {
  std::wstring capitals;
  for (const wchar_t c : word)
    if (std::iswupper(static_cast<wint_t>(c)) || std::iswdigit(static_cast<wint_t>(c))) capitals += c;
  return text::folded(capitals);
}

std::vector<std::wstring> words(std::wstring_view list) {
  std::vector<std::wstring> result;
  std::size_t begin = 0;
  while ((begin = list.find_first_not_of(L' ', begin)) != std::wstring_view::npos) {
    const std::size_t end = std::min(list.find(L' ', begin), list.size());
    result.emplace_back(list.substr(begin, end - begin));
    begin = end;
  }
  return result;
}

/// Edit distance where swapping two neighbours counts as one change.
std::size_t editDistance(std::wstring_view a, std::wstring_view b) {
  std::vector<std::size_t> before, last(b.size() + 1), now(b.size() + 1);
  std::iota(last.begin(), last.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    now[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      now[j] = std::min({last[j] + 1, now[j - 1] + 1, last[j - 1] + (a[i - 1] == b[j - 1] ? 0U : 1U)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) now[j] = std::min(now[j], before[j - 2] + 1);
    }
    before = last;
    std::swap(last, now);
  }
  return last.back();
}

}  // namespace

std::optional<double> parseNumber(std::wstring_view text) {
  const std::size_t slash = text.find(L'/');
  if (slash == std::wstring_view::npos) return parsePlain(text);
  std::wstring_view numerator = text.substr(0, slash);
  double whole = 0;
  double sign = 1;
  if (numerator.starts_with(L'-')) {
    sign = -1;
    numerator.remove_prefix(1);
  }
  if (const std::size_t dash = numerator.find(L'-'); dash != std::wstring_view::npos) {
    const std::optional<std::int64_t> value = parseWhole(numerator.substr(0, dash));
    if (!value || *value < 0) return std::nullopt;
    whole = static_cast<double>(*value);
    numerator = numerator.substr(dash + 1);
  }
  const std::optional<std::int64_t> top = parseWhole(numerator);
  const std::optional<std::int64_t> bottom = parseWhole(text.substr(slash + 1));
  if (!top || !bottom || *top < 0 || *bottom <= 0) return std::nullopt;
  return sign * (whole + static_cast<double>(*top) / static_cast<double>(*bottom));
}

std::optional<std::int64_t> parseWhole(std::wstring_view text) {
  const std::string plain = text::toUtf8(text);
  const std::size_t digits = plain.starts_with('-') || plain.starts_with('+') ? 1 : 0;
  if (plain.size() == digits || plain.size() > 18) return std::nullopt;
  if (plain.find_first_not_of("0123456789", digits) != std::string::npos) return std::nullopt;
  return text::parseInteger(plain);
}

std::optional<AcGePoint3d> parsePoint(std::wstring_view text, const AcGePoint3d& origin) {
  AcGePoint3d from;
  if (text.starts_with(L'@')) {
    from = origin;
    text.remove_prefix(1);
    if (text.empty()) return from;
  } else if (text.starts_with(L'*') || text.starts_with(L'#')) {
    text.remove_prefix(1);
  }
  AcGeVector3d offset;
  if (const std::size_t angle = text.find(L'<'); angle != std::wstring_view::npos) {
    const std::optional<double> distance = parsePlain(text.substr(0, angle));
    const std::optional<double> degrees = parsePlain(text.substr(angle + 1));
    if (!distance || !degrees) return std::nullopt;
    // Quarter turns come out exact: sin and cos of the rounded pi/2 would leave crumbs in the drawing.
    const double turn = std::fmod(*degrees, 360.0);
    const double quarter = turn / 90.0;
    if (quarter == std::floor(quarter)) {
      static constexpr int kCos[] = {1, 0, -1, 0};
      static constexpr int kSin[] = {0, 1, 0, -1};
      const auto index = static_cast<std::size_t>((static_cast<int>(quarter) % 4 + 4) % 4);
      offset = {*distance * kCos[index], *distance * kSin[index], 0};
    } else {
      const double radians = turn * std::numbers::pi / 180.0;
      offset = {*distance * std::cos(radians), *distance * std::sin(radians), 0};
    }
  } else {
    double values[3] = {0, 0, 0};
    int count = 0;
    for (std::size_t begin = 0; begin <= text.size();) {
      const std::size_t end = std::min(text.find(L',', begin), text.size());
      const std::optional<double> value = parsePlain(text.substr(begin, end - begin));
      if (!value || count == 3) return std::nullopt;
      values[count++] = *value;
      begin = end + 1;
    }
    if (count < 2) return std::nullopt;
    offset = {values[0], values[1], values[2]};
  }
  const AcGePoint3d point = from + offset;
  if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z)) return std::nullopt;
  return point;
}

Keywords::Keywords(std::wstring_view list) {
  std::vector<std::wstring> shown = words(list);
  std::vector<std::wstring> global;
  for (std::size_t i = 0; i < shown.size(); ++i) {
    if (!shown[i].starts_with(L'_')) continue;
    global.assign(shown.begin() + static_cast<std::ptrdiff_t>(i), shown.end());
    global.front().erase(0, 1);
    shown.resize(i);
    break;
  }
  for (std::size_t i = 0; i < shown.size(); ++i) {
    Entry entry;
    entry.shown = shown[i];
    entry.global = i < global.size() ? global[i] : shown[i];
    entry.shownFolded = text::folded(entry.shown);
    entry.shownShort = capitalsOf(entry.shown);
    entry.globalFolded = text::folded(entry.global);
    entry.globalShort = capitalsOf(entry.global);
    entries_.push_back(std::move(entry));
  }
}

std::optional<std::wstring> Keywords::match(std::wstring_view answer) const {
  const bool globalOnly = answer.starts_with(L'_');
  if (globalOnly) answer.remove_prefix(1);
  if (answer.empty()) return std::nullopt;
  const std::wstring folded = text::folded(answer);
  // An answer is a keyword when it is an abbreviation, or a beginning of the word that is no shorter than it.
  const auto fits = [&folded](const std::wstring& whole, const std::wstring& abbreviation) {
    if (folded == abbreviation) return true;
    return whole.starts_with(folded) && folded.size() >= abbreviation.size() && !abbreviation.empty() &&
           whole.starts_with(abbreviation);
  };
  for (const Entry& entry : entries_) {
    if (folded == entry.globalFolded || (!globalOnly && folded == entry.shownFolded)) return entry.global;
  }
  for (const Entry& entry : entries_) {
    if (!globalOnly && fits(entry.shownFolded, entry.shownShort)) return entry.global;
    if (fits(entry.globalFolded, entry.globalShort)) return entry.global;
  }
  return std::nullopt;
}

std::wstring Keywords::shown() const {
  std::wstring text;
  for (const Entry& entry : entries_) text += (text.empty() ? L"" : L"/") + entry.shown;
  return text;
}

std::optional<std::uint64_t> parseHandent(std::wstring_view text) {
  if (text.size() < 2 || text.front() != L'(' || text.back() != L')') return std::nullopt;
  text = text.substr(1, text.size() - 2);
  const auto trim = [&text] {
    while (!text.empty() && std::iswspace(static_cast<wint_t>(text.front()))) text.remove_prefix(1);
    while (!text.empty() && std::iswspace(static_cast<wint_t>(text.back()))) text.remove_suffix(1);
  };
  trim();
  constexpr std::wstring_view kName = L"handent";
  if (text.size() < kName.size() || !text::equalFolded(text.substr(0, kName.size()), kName)) return std::nullopt;
  text.remove_prefix(kName.size());
  trim();
  if (text.size() < 3 || text.front() != L'"' || text.back() != L'"') return std::nullopt;
  const std::string digits = text::toUtf8(text.substr(1, text.size() - 2));
  if (digits.empty() || digits.size() > 16) return 0;
  if (digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) return 0;
  return text::parseHandle(digits);
}

std::vector<std::wstring> nearestNames(std::wstring_view name, const std::vector<std::wstring>& known) {
  constexpr std::size_t kLongest = 64;
  if (name.size() > kLongest) return {};
  const std::wstring folded = text::folded(name);
  const std::size_t limit = std::max<std::size_t>(2, folded.size() / 3);
  std::vector<std::pair<std::size_t, std::wstring>> close;
  for (const std::wstring& candidate : known) {
    const std::wstring other = text::folded(candidate);
    if (other.size() > kLongest) continue;
    std::size_t distance = editDistance(folded, other);
    // The beginning of a longer name is near too.
    if (folded.size() >= 3 && other.starts_with(folded)) distance = std::min<std::size_t>(distance, 1);
    if (distance <= limit && distance < std::max(folded.size(), other.size())) close.emplace_back(distance, candidate);
  }
  std::sort(close.begin(), close.end());
  close.erase(std::unique(close.begin(), close.end()), close.end());
  std::vector<std::wstring> names;
  for (std::size_t i = 0; i < close.size() && i < 3; ++i) names.push_back(close[i].second);
  return names;
}

std::wstring shownNumber(double value) {
  std::wstring text = text::formatWide(L"%.6f", value);
  if (text.size() > 30) return text::formatWide(L"%g", value);
  while (text.ends_with(L'0')) text.pop_back();
  if (text.ends_with(L'.')) text.pop_back();
  return text == L"-0" ? L"0" : text;
}

std::wstring shownPoint(const AcGePoint3d& point) {
  return shownNumber(point.x) + L"," + shownNumber(point.y) + L"," + shownNumber(point.z);
}

}  // namespace host::editor
