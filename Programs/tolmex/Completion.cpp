#include "Completion.h"

#include <algorithm>
#include <cstdio>
#include <cwctype>
#include <string_view>

#include "Text/Text.h"

namespace tolmex {

namespace {

constexpr std::size_t kListedColumns = 78;

std::string capitals(std::string_view text) {
  std::wstring wide = host::text::fromUtf8(text);
  for (wchar_t& c : wide) c = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c)));
  return host::text::toUtf8(wide);
}

std::string_view commonBeginning(const std::vector<std::string>& names) {
  std::string_view common = names.front();
  for (const std::string& name : names) {
    const auto end = std::mismatch(common.begin(), common.end(), name.begin(), name.end()).first;
    common = common.substr(0, static_cast<std::size_t>(end - common.begin()));
  }
  // Never half of a character.
  std::size_t size = common.size();
  while (size > 0 && size < names.front().size() && (static_cast<unsigned char>(names.front()[size]) & 0xC0U) == 0x80)
    --size;
  return common.substr(0, size);
}

/// Names that begin with what was typed; when none does, those that have it anywhere.
std::vector<std::string> completions(const std::string& typed, const std::vector<std::string>& names) {
  std::vector<std::string> beginning, having;
  for (const std::string& name : names) {
    const std::size_t at = name.find(typed);
    if (at == 0) beginning.push_back(name);
    if (at != std::string::npos) having.push_back(name);
  }
  return beginning.empty() ? having : beginning;
}

}  // namespace

Completion completed(const std::string& typed, const std::vector<std::string>& names) {
  if (typed.find(' ') != std::string::npos) return {};
  const std::size_t begin = std::min(typed.find_first_not_of("'_-."), typed.size());
  const std::string wanted = capitals(typed.substr(begin));
  const std::vector<std::string> found = completions(wanted, names);
  if (found.empty()) return {};
  Completion completion{typed, {}};
  const std::string common(commonBeginning(found));
  // Of names that share no more than their beginning, what was typed may stand farther behind: it stays then.
  if (common.find(wanted) != std::string::npos) completion.line = typed.substr(0, begin) + common;
  const bool isLonger = completion.line.size() > typed.size();
  if (found.size() > 1 && !isLonger) completion.choices = found;
  return completion;
}

void printColumns(const std::vector<std::string>& names) {
  std::size_t width = 0;
  for (const std::string& name : names) width = std::max(width, name.size() + 2);
  const std::size_t perLine = std::max<std::size_t>(1, kListedColumns / width);
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::printf("%s%-*s", i % perLine == 0 ? "\n" : "", static_cast<int>(width), names[i].c_str());
  }
  std::printf("\n");
  std::fflush(stdout);
}

}  // namespace tolmex
