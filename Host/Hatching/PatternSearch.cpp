#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include "Hatching/Patterns.h"
#include "Hatching/SupportFiles.h"
#include "Text/Text.h"

namespace host::hatching {

namespace {

std::optional<Pattern> searchIn(const std::wstring& fileName, std::wstring_view name) {
  static DefinitionFiles<Pattern> files(parsePatternFile);
  const std::optional<std::filesystem::path> path = findSupportFile(fileName, nullptr, true);
  const auto patterns = path ? files.read(*path) : nullptr;
  if (patterns == nullptr) return std::nullopt;
  const auto found = std::find_if(patterns->begin(), patterns->end(), [&](const Pattern& pattern) {
    return text::equalFolded(text::fromUtf8(pattern.name), name);
  });
  return found == patterns->end() ? std::nullopt : std::optional(*found);
}

/// What was found, or not, since the outermost PatternMemory began.
struct Memory {
  std::mutex mutex;
  int depth = 0;
  std::uint64_t number = 0;  // of outermost PatternMemories
  std::map<std::pair<std::wstring, std::wstring>, std::optional<Pattern>> found;
};

Memory& memory() {
  static Memory memory;
  return memory;
}

std::optional<Pattern> findIn(const std::wstring& fileName, std::wstring_view name) {
  const std::lock_guard lock(memory().mutex);
  if (memory().depth == 0) return searchIn(fileName, name);
  const std::pair<std::wstring, std::wstring> key(fileName, name);
  const auto known = memory().found.find(key);
  return known != memory().found.end() ? known->second
                                       : memory().found.emplace(key, searchIn(fileName, name)).first->second;
}

}  // namespace

PatternMemory::PatternMemory() {
  const std::lock_guard lock(memory().mutex);
  if (memory().depth++ == 0) ++memory().number;
}

PatternMemory::~PatternMemory() {
  const std::lock_guard lock(memory().mutex);
  if (--memory().depth == 0) memory().found.clear();
}

std::uint64_t patternMemoryNumber() {
  const std::lock_guard lock(memory().mutex);
  return memory().depth > 0 ? memory().number : 0;
}

std::optional<Pattern> findPattern(std::wstring_view name, bool metric) {
  if (text::equalFolded(name, L"SOLID")) return Pattern{"SOLID", {}, {}};
  return findIn(metric ? L"acadiso.pat" : L"acad.pat", name);
}

std::optional<Pattern> findCustomPattern(std::wstring_view name) {
  // A name is a file name here: nothing that leads into another folder.
  if (name.empty() || name.find_first_of(L"/\\:") != std::wstring_view::npos) return std::nullopt;
  return findIn(std::wstring(name) + L".pat", name);
}

}  // namespace host::hatching
