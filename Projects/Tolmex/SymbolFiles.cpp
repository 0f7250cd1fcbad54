#include "Tolmex/SymbolFiles.h"

#include <array>
#include <memory>
#include <optional>

#include "OrvLib/ARX/Opened.h"
#include "OrvLib/DataStruct/TextFile.h"
#include "Tolmex/Model/SymbolNames.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kPathFile = L"orvpath.cfg";
constexpr std::size_t kLongestPathFileName = 200;

struct SearchCloser {
  using pointer = HANDLE;
  void operator()(HANDLE search) const { FindClose(search); }
};
using Search = std::unique_ptr<HANDLE, SearchCloser>;

}  // namespace

std::wstring configuredSymbolDirectory() {
  std::array<ACHAR, kLongestPathFileName> path{};
  if (acdbHostApplicationServices()->findFile(path.data(), static_cast<int>(path.size()), kPathFile) != Acad::eOk) {
    return {};
  }
  const std::optional<std::vector<std::wstring>> pathLines = readLines(path.data());
  return pathLines ? symbolDirectoryIn(*pathLines) : std::wstring();
}

std::vector<std::wstring> drawingsIn(const std::wstring& directory) {
  std::vector<std::wstring> names;
  if (directory.empty()) return names;
  WIN32_FIND_DATAW found{};
  const HANDLE first = FindFirstFileW(symbolPath(directory, L"*.dwg").c_str(), &found);
  if (first == INVALID_HANDLE_VALUE) return names;
  const Search search(first);
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) names.emplace_back(found.cFileName);
  } while (FindNextFileW(search.get(), &found) != FALSE);
  return names;
}

std::wstring symbolPath(const std::wstring& directory, const std::wstring& fileName) {
  return directory + L"\\" + fileName;
}

AcDbObjectId insertSymbolBlock(const std::wstring& path, const std::wstring& blockName) {
  AcDbDatabase* const drawing = orWorkingDatabase(nullptr);
  if (drawing == nullptr) return {};
  AcDbDatabase symbol(false, true);
  AcDbObjectId block;
  if (symbol.readDwgFile(path.c_str()) != Acad::eOk) return {};
  if (drawing->insert(block, blockName.c_str(), &symbol, false) != Acad::eOk) return {};
  return block;
}

}  // namespace OrvLib
