// Drawings for tests.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Dxf/DxfFile.h"
#include "OwnFolder.h"
#include "Places.h"
#include "dbapserv.h"

namespace tests {

/// The folder of real drawings beside the checkout, or empty. TOLMEX_DRAWINGS names another place.
inline std::filesystem::path realDrawingFolder() {
  if (const char* const given = std::getenv("TOLMEX_DRAWINGS")) return given;
  const std::filesystem::path beside = std::filesystem::path(kSourceDir) / ".." / "shared" / "drawings";
  return std::filesystem::is_directory(beside) ? beside : std::filesystem::path();
}

/// A drawing in memory that is the working database as long as it lives.
class OpenDrawing {
 public:
  OpenDrawing() : db_(true) { acdbHostApplicationServices()->setWorkingDatabase(&db_); }
  explicit OpenDrawing(const std::string& text) : db_(false) {
    const auto result = host::dxf::readDrawingText(database(), text, "test.dxf");
    if (!result.ok()) throw std::runtime_error(result.message());
    acdbHostApplicationServices()->setWorkingDatabase(&db_);
  }
  AcDbDatabase* operator->() { return &db_; }
  AcDbDatabase* facade() { return &db_; }
  host::database::DrawingDatabase& database() { return host::database::databaseOf(&db_); }
  std::string text() { return host::dxf::drawingText(database()); }
  AcDbObjectId id(std::uint64_t handle) { return AcDbObjectId(database().findHandle(handle)); }
  std::wstring decoded(const std::string& bytes) { return database().codec().decode(bytes); }

 private:
  AcDbDatabase db_;
};

struct Difference {
  std::vector<std::string> removed, added;
};

/// Lines that stand in one text only, by longest common subsequence of the middle part.
inline Difference lineDifference(const std::string& before, const std::string& after) {
  const auto lines = [](const std::string& text) {
    std::vector<std::string> all;
    std::stringstream in(text);
    for (std::string line; std::getline(in, line);) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      all.push_back(line);
    }
    return all;
  };
  std::vector<std::string> a = lines(before), b = lines(after);
  while (!a.empty() && !b.empty() && a.back() == b.back()) {
    a.pop_back();
    b.pop_back();
  }
  std::size_t common = 0;
  while (common < a.size() && common < b.size() && a[common] == b[common]) ++common;
  a.erase(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(common));
  b.erase(b.begin(), b.begin() + static_cast<std::ptrdiff_t>(common));
  std::vector<std::vector<int>> length(a.size() + 1, std::vector<int>(b.size() + 1));
  for (std::size_t i = a.size(); i-- > 0;) {
    for (std::size_t j = b.size(); j-- > 0;) {
      length[i][j] = a[i] == b[j] ? length[i + 1][j + 1] + 1 : std::max(length[i + 1][j], length[i][j + 1]);
    }
  }
  Difference difference;
  std::size_t i = 0, j = 0;
  while (i < a.size() || j < b.size()) {
    if (i < a.size() && j < b.size() && a[i] == b[j]) {
      ++i;
      ++j;
    } else if (j == b.size() || (i < a.size() && length[i + 1][j] >= length[i][j + 1])) {
      difference.removed.push_back(a[i++]);
    } else {
      difference.added.push_back(b[j++]);
    }
  }
  return difference;
}

/// A drawing AC1018 in code page 1252 with what strangers' files hold: comments, odd number spellings, blanks, unknown
/// entities and objects, extended data of every kind, a group, an extension dictionary with an xrecord, a sort table.
std::string probeDrawing(const std::string& lineEnd);

}  // namespace tests
