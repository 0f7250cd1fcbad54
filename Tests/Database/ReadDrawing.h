// Drawings written out in tests, and what reading makes of them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "Database/Support.h"

namespace tests {

/// Text of tags given as "0 LINE | 8 0 | ".
inline std::string tags(std::string_view bars) {
  std::string text;
  for (std::size_t end = bars.find(" | "); end != std::string_view::npos; end = bars.find(" | ")) {
    const std::string_view tag = bars.substr(0, end);
    bars.remove_prefix(end + 3);
    const std::size_t blank = tag.find(' ');
    text += std::string(tag.substr(0, blank)) + "\n" + std::string(tag.substr(blank + 1)) + "\n";
  }
  return text;
}

inline std::string section(const char* name, std::string_view bars) {
  return tags("0 SECTION | 2 " + std::string(name) + " | ") + tags(bars) + tags("0 ENDSEC | ");
}

inline const std::string kR12Header = section("HEADER", "9 $ACADVER | 1 AC1009 | ");
inline const std::string kEnd = tags("0 EOF | ");

/// A drawing read from bytes, with what was said of it.
class ReadDrawing {
 public:
  explicit ReadDrawing(const std::string& bytes) : db_(false) {
    result = host::dxf::readDrawingText(drawing(), bytes, "plan.dxf");
    EXPECT_TRUE(result.ok()) << result.message();
  }
  host::database::DrawingDatabase& drawing() { return host::database::databaseOf(&db_); }
  std::string saved() { return host::dxf::drawingText(drawing()); }
  std::vector<std::string> said() {
    std::vector<std::string> all;
    for (host::Problem problem : drawing().problems()) {
      problem.file = "plan.dxf";
      all.push_back(problem.sentence());
    }
    return all;
  }
  /// Types of the entities in model space.
  std::vector<std::string> types() {
    std::vector<std::string> all;
    for (const host::database::Slot* const slot : drawing().modelSpace().entities)
      all.emplace_back(drawing().typeName(*slot));
    return all;
  }
  const host::database::Slot& entity(std::size_t index) { return *drawing().modelSpace().entities.at(index); }
  std::string bytesOf(std::size_t index) { return std::string(entity(index).fileBytes()); }

  host::Result<> result;

 private:
  AcDbDatabase db_;
};

inline std::string withLineEnds(const std::string& text, const std::string& end) {
  std::string out;
  for (const char c : text) out += c == '\n' ? end : std::string(1, c);
  return out;
}

inline void replaceOnce(std::string& text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  ASSERT_NE(at, std::string::npos) << from;
  text.replace(at, from.size(), to);
}

/// Binary form of a text: an encoder of its own, so that the reader is not tested with itself.
std::string binaryOf(std::string_view text, bool wideCodes);
std::string withoutComments(std::string text);

}  // namespace tests
