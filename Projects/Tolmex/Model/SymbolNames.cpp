#include "Tolmex/Model/SymbolNames.h"

#include <algorithm>

#include "OrvLib/DataStruct/Ordering.h"
#include "OrvLib/DataStruct/Text.h"

namespace OrvLib {
namespace {

constexpr const wchar_t* kDrawingEnding = L".dwg";
constexpr const wchar_t* kDirectoryKey = L"KAAVA";
constexpr const wchar_t* kSymbolFolder = L"tmsym";
constexpr std::size_t kShortestValue = 3;

/// The value of a line that is an entry; empty when it has none.
std::wstring_view entryValue(const std::vector<std::wstring_view>& lineWords) {
  std::wstring_view value;
  for (std::size_t i = 1; i < lineWords.size(); ++i) {
    if (lineWords[i].size() >= kShortestValue && lineWords[i].size() >= value.size()) value = lineWords[i];
  }
  return value;
}

}  // namespace

std::wstring SymbolVariant::fileTail() const {
  return L"_" + std::to_wstring(size) + (shadow ? L"v" : L"") + (fill ? L"t" : L"") + kDrawingEnding;
}

std::wstring symbolLayer(std::wstring_view baseName, const SymbolVariant& variant) {
  return std::wstring(baseName) + L"_" + std::to_wstring(variant.size);
}

std::vector<std::wstring> symbolFiles(const std::vector<std::wstring>& names, const SymbolVariant& variant) {
  const std::wstring tail = variant.fileTail();
  std::vector<std::wstring> files;
  for (const std::wstring& name : names) {
    if (name.size() < tail.size()) continue;
    const std::wstring_view end = std::wstring_view(name).substr(name.size() - tail.size());
    if (equalsIgnoringCase(end, tail)) files.push_back(name);
  }
  return files;
}

std::wstring baseName(std::wstring_view fileName, const SymbolVariant& variant) {
  return std::wstring(fileName.substr(0, fileName.size() - std::min(fileName.size(), variant.fileTail().size())));
}

std::wstring symbolDirectoryIn(const std::vector<std::wstring>& pathLines) {
  std::wstring directory;
  for (const std::wstring& line : pathLines) {
    const std::vector<std::wstring_view> lineWords = words(line);
    if (lineWords.size() < 2 || !equalsIgnoringCase(lineWords.front(), kDirectoryKey)) continue;
    directory = entryValue(lineWords);
  }
  if (directory.empty()) return {};
  std::replace(directory.begin(), directory.end(), L'/', L'\\');
  return directory + kSymbolFolder;
}

}  // namespace OrvLib
