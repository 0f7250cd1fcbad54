#include "Dxf/LineEnds.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace host::dxf {

namespace {

constexpr std::string_view kEnds = "\r\n";

/// What the first lines end in when that is no usual end. Values may be empty, so that several ends may stand together:
/// the shortest counts, and all others have to be made of it. Empty when this is not so.
std::string_view oddEnd(std::string_view text) {
  constexpr std::size_t kLinesToSee = 20;
  std::vector<std::string_view> ends;
  for (std::size_t at = 0; ends.size() < kLinesToSee;) {
    const std::size_t begin = text.find_first_of(kEnds, at);
    at = text.find_first_not_of(kEnds, begin);
    if (begin == std::string_view::npos || at == std::string_view::npos) break;
    ends.push_back(text.substr(begin, at - begin));
  }
  const auto isShorter = [](std::string_view a, std::string_view b) { return a.size() < b.size(); };
  const auto shortest = std::min_element(ends.begin(), ends.end(), isShorter);
  if (shortest == ends.end() || *shortest == "\n" || *shortest == "\r\n") return {};
  for (std::string_view end : ends) {
    while (end.starts_with(*shortest)) end.remove_prefix(shortest->size());
    if (!end.empty()) return {};
  }
  return *shortest;
}

void replaceAll(std::string& text, const std::string& from, std::string_view to) {
  std::string out;
  out.reserve(text.size());
  std::size_t position = 0;
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, position)) {
    out.append(text, position, at - position);
    out += to;
    position = at + from.size();
  }
  out.append(text, position, std::string::npos);
  text = std::move(out);
}

}  // namespace

std::string useKnownLineEnds(std::string& text) {
  if (text.find('\n') == std::string::npos) std::replace(text.begin(), text.end(), '\r', '\n');
  const std::string end(oddEnd(text));
  if (end.empty()) return {};
  replaceAll(text, end, end.find("\r\n") != std::string::npos ? "\r\n" : "\n");
  std::string name;
  for (const char c : end) name += std::string(name.empty() ? "" : " ") + (c == '\r' ? "CR" : "LF");
  return name;
}

}  // namespace host::dxf
