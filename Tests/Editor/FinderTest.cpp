// Boxes that are kept over commands: picks and windows answer as in the same drawing just opened.
#include <fstream>
#include <random>

#include "OwnFolder.h"
#include "Support.h"

namespace {

class Finding : public test::Host {
 protected:
  int roll(int sides) { return std::uniform_int_distribution<int>(0, sides - 1)(random_); }
  std::string place() { return std::to_string(roll(60)) + "," + std::to_string(roll(60)); }

  std::string change() {
    switch (roll(9)) {
      case 0:
        return "PLINE " + place() + " " + place() + " " + place() + "\n\n";
      case 1:
        return "LINE " + place() + " " + place() + "\n\n";
      case 2:
        return "TEXT " + place() + " 3 0 words\n\n";
      case 3:
        return "MOVE L\n\n0,0 " + place() + "\n";
      case 4:
        return "ROTATE ALL\n\n30,30 " + std::to_string(10 * roll(36)) + "\n";
      case 5:
        return "COPY L\n\n0,0 " + place() + "\n\n";
      case 6:
        return roll(2) == 0 ? "U\n" : "REDO\n";
      case 7:
        return "ERASE L\n\n";
      default:
        return roll(2) == 0 ? "LAYER OFF kerb\n\n" : "LAYER ON kerb S kerb\n\n";
    }
  }
  /// What is found by a window, a crossing one and a pick.
  std::wstring found(const std::string& a, const std::string& b) {
    std::wstring all;
    for (const std::string& how : {"W " + a + " " + b, "C " + a + " " + b, a}) {
      expectDone("LIST " + how + "\n\n");
      all += transcript;
    }
    return all;
  }

  std::mt19937 random_{7};
};

TEST_F(Finding, AnswersAsInADrawingJustOpened) {
  const tests::OwnFolder folder;
  expectDone("LAYER N kerb\n\nLINE 0,0 5,5\n\nPLINE 10,10 20,10 20,20 C\nZOOM W 0,0 60,60\n");
  for (int round = 0; round < 60; ++round) {
    found("0,0", "60,60");
    // A script may find nothing to move: what it did until then counts.
    for (int i = 0; i < 2; ++i) static_cast<void>(run(change()));
    const std::string a = place(), b = std::to_string(61 + roll(9)) + "," + std::to_string(61 + roll(9));
    const std::wstring kept = found(a, b);
    const auto file = folder.path / ("round" + std::to_string(round) + ".dxf");
    std::ofstream(file, std::ios::binary) << host::dxf::drawingText(*app.drawing());
    host::database::DrawingDatabase* const worked = app.drawing();
    ASSERT_TRUE(app.openDrawing(file));
    expectDone("ZOOM W 0,0 60,60\n");
    EXPECT_EQ(host::text::toUtf8(found(a, b)), host::text::toUtf8(kept)) << "round " << round;
    app.closeDrawing();
    ASSERT_TRUE(app.activateDrawing(*worked));
  }
}

}  // namespace
