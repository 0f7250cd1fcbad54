// Drawings cut short or with bytes changed: read as far as they can be, or refused in one sentence; never a crash, and
// what is saved of them is sound.
#include <gtest/gtest.h>

#include <random>

#include "Database/ChangeEverything.h"
#include "Database/Support.h"

namespace {

using namespace host::database;

/// Reads, opens everything, changes what can be changed, saves.
void exercise(const std::string& text) {
  AcDbDatabase db(false);
  DrawingDatabase& drawing = databaseOf(&db);
  const auto result = host::dxf::readDrawingText(drawing, text, "damaged.dxf");
  if (!result.ok()) {
    EXPECT_EQ(result.message().substr(0, 11), "damaged.dxf") << result.message();
    EXPECT_EQ(result.message().find('\n'), std::string::npos);
    return;
  }
  acdbHostApplicationServices()->setWorkingDatabase(&db);
  drawing.beginUndoStep(L"TEST");
  tests::changeEverything(drawing);
  drawing.endUndoStep();
  const std::string saved = host::dxf::drawingText(drawing);
  AcDbDatabase again(false);
  const auto reread = host::dxf::readDrawingText(databaseOf(&again), saved, "again");
  EXPECT_TRUE(reread.ok()) << reread.message();
  for (const Problem& problem : databaseOf(&again).problems()) ADD_FAILURE() << problem.text;
  drawing.undo();
}

TEST(Damaged, CutShortAnywhere) {
  const std::string whole = tests::probeDrawing("\n");
  for (std::size_t length = 0; length < whole.size(); length += 3) exercise(whole.substr(0, length));
}

TEST(Damaged, LinesLeftOutAndBytesChanged) {
  const std::string whole = tests::probeDrawing("\n");
  std::mt19937 random(7);
  for (int round = 0; round < 1500; ++round) {
    std::string text = whole;
    const std::size_t at = random() % text.size();
    switch (random() % 4) {
      case 0:
        text[at] = static_cast<char>(random() % 256);
        break;
      case 1:
        text.erase(at, random() % 40);
        break;
      case 2:
        text.insert(at, text.substr(random() % text.size(), random() % 60));
        break;
      default: {  // one whole tag twice: handles, owners and markers repeat
        const std::size_t line = text.find('\n', at);
        if (line == std::string::npos) break;
        const std::size_t end = text.find('\n', text.find('\n', line + 1) + 1);
        if (end != std::string::npos) text.insert(line + 1, text.substr(line + 1, end - line));
      }
    }
    exercise(text);
  }
}

}  // namespace
