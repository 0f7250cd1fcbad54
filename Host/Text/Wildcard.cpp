#include "Characters.h"
#include "Text.h"

namespace host::text {
namespace {

constexpr std::size_t kNone = std::wstring_view::npos;

/// Position of the bracket that ends the set opened at `open`, or kNone: then the bracket stands for itself.
/// A bracket directly after the opening one belongs to the set.
std::size_t setEnd(std::wstring_view pattern, std::size_t open) {
  std::size_t i = open + 1;
  if (i < pattern.size() && pattern[i] == L'~') ++i;
  if (i < pattern.size() && pattern[i] == L']') ++i;
  for (; i < pattern.size(); ++i) {
    if (pattern[i] == L'`' && i + 1 < pattern.size())
      ++i;
    else if (pattern[i] == L']')
      return i;
  }
  return kNone;
}

/// `set` is what stands between the brackets.
bool isInSet(wchar_t folded, std::wstring_view set) {
  const bool negated = !set.empty() && set.front() == L'~';
  if (negated) set.remove_prefix(1);
  std::size_t i = 0;
  const auto member = [&] {
    if (set[i] == L'`' && i + 1 < set.size()) ++i;
    return foldedCharacter(set[i++]);
  };
  bool found = false;
  while (i < set.size() && !found) {
    const wchar_t low = member();
    if (i + 1 < set.size() && set[i] == L'-') {
      ++i;
      const wchar_t high = member();
      found = low <= folded && folded <= high;
    } else {
      found = folded == low;
    }
  }
  return found != negated;
}

/// Whether one character matches the pattern item at `position`; `next` becomes the position after the item.
bool matchesItem(wchar_t character, std::wstring_view pattern, std::size_t position, std::size_t& next) {
  next = position + 1;
  switch (pattern[position]) {
    case L'#':
      return isDigit(character);
    case L'@':
      return isLetter(character);
    case L'.':
      return !isLetter(character) && !isDigit(character);
    case L'?':
      return true;
    case L'[': {
      const std::size_t end = setEnd(pattern, position);
      if (end == kNone) break;
      next = end + 1;
      return isInSet(foldedCharacter(character), pattern.substr(position + 1, end - position - 1));
    }
    case L'`':
      if (next == pattern.size()) break;
      ++next;
      return foldedCharacter(character) == foldedCharacter(pattern[position + 1]);
    default:
      break;
  }
  return foldedCharacter(character) == foldedCharacter(pattern[position]);
}

/// One alternative without '~' and ','. Only the last '*' is ever tried again, which bounds the work by the product
/// of both lengths.
bool matchesAlternative(std::wstring_view text, std::wstring_view pattern) {
  std::size_t t = 0;
  std::size_t p = 0;
  std::size_t starPattern = kNone;
  std::size_t starText = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == L'*') {
      starPattern = ++p;
      starText = t;
      continue;
    }
    std::size_t next = 0;
    if (p < pattern.size() && matchesItem(text[t], pattern, p, next)) {
      ++t;
      p = next;
    } else if (starPattern != kNone) {
      p = starPattern;
      t = ++starText;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == L'*') ++p;
  return p == pattern.size();
}

/// End of the alternative that begins at `start`: the next ',' that is neither escaped nor inside a set.
std::size_t alternativeEnd(std::wstring_view pattern, std::size_t start) {
  bool setsClose = true;
  for (std::size_t i = start; i < pattern.size(); ++i) {
    if (pattern[i] == L'`') {
      ++i;
    } else if (pattern[i] == L'[' && setsClose) {
      const std::size_t end = setEnd(pattern, i);
      // Without an end here no later set has one either: looking again would cost quadratic time.
      if (end == kNone)
        setsClose = false;
      else
        i = end;
    } else if (pattern[i] == L',') {
      return i;
    }
  }
  return pattern.size();
}

}  // namespace

bool matchesWildcard(std::wstring_view text, std::wstring_view pattern) {
  for (std::size_t start = 0;;) {
    const std::size_t end = alternativeEnd(pattern, start);
    std::wstring_view alternative = pattern.substr(start, end - start);
    const bool negated = !alternative.empty() && alternative.front() == L'~';
    if (negated) alternative.remove_prefix(1);
    if (matchesAlternative(text, alternative) != negated) return true;
    if (end == pattern.size()) return false;
    start = end + 1;
  }
}

}  // namespace host::text
