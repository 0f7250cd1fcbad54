#include <gtest/gtest.h>

#include "Geometry/SmallDrawing.h"
#include "Geometry/Snaps.h"

namespace {

using namespace host::geometry;
using tests::SmallDatabase;
using tests::SmallDrawing;

std::string shown(const std::vector<Snap>& snaps) {
  static const char* const kNames[] = {"end", "middle", "centre", "crossing", "foot", "near"};
  std::string text;
  for (const Snap& snap : snaps) {
    char part[64];
    std::snprintf(part, sizeof part, "%s %.6g,%.6g ", kNames[static_cast<int>(snap.kind)], snap.at.x, snap.at.y);
    text += part;
  }
  return text;
}

/// Snaps of all entities of a drawing at a point.
std::string snapsOf(SmallDrawing& drawing, Point cursor, double reach, std::uint32_t kinds = kUsualSnaps,
                    std::optional<Point> base = {}) {
  SmallDatabase db(drawing);
  std::vector<SnapLine> lines;
  for (const host::database::Slot* slot : db->modelSpace().entities)
    for (SnapLine& line : snapLines(*slot, 0.001)) lines.push_back(std::move(line));
  return shown(findSnaps(lines, cursor, reach, reach * 0.6, kinds, base));
}

TEST(Snaps, KindsOfLinesAndCurves) {
  SmallDrawing lines;
  lines.entity("LINE", "10 0|20 0|11 10|21 0").entity("LINE", "10 7|20 -2|11 7|21 2");
  EXPECT_EQ(snapsOf(lines, {0.2, 0.1}, 1), "end 0,0 ");
  EXPECT_EQ(snapsOf(lines, {5.2, 0.1}, 1), "middle 5,0 ");
  // The second line's middle is the crossing, too: one place, the better kind.
  EXPECT_EQ(snapsOf(lines, {7.1, 0.1}, 1), "middle 7,0 ");
  EXPECT_EQ(snapsOf(lines, {2, 3}, 1), "");
  const auto extra = snapBit(SnapKind::Nearest) | snapBit(SnapKind::Perpendicular);
  EXPECT_EQ(snapsOf(lines, {2, 0.5}, 1, extra), "near 2,0 ");
  EXPECT_EQ(snapsOf(lines, {2, 0.5}, 1, extra, Point{2.4, 5}), "foot 2.4,0 near 2,0 ");

  SmallDrawing curves;
  curves.entity("CIRCLE", "10 0|20 0|30 0|40 5").entity("ARC", "10 20|20 0|30 0|40 5|50 0|51 90");
  EXPECT_EQ(snapsOf(curves, {0.3, 0}, 1), "centre 0,0 ");
  EXPECT_EQ(snapsOf(curves, {5, 0.1}, 1), "") << "a circle has no ends, whatever its chords";
  EXPECT_EQ(snapsOf(curves, {25.1, 0}, 1), "end 25,0 ");
  EXPECT_EQ(snapsOf(curves, {23.5, 3.5}, 1), "middle 23.5355,3.53553 ");
}

TEST(Snaps, PiecesOfPolylines) {
  // A half circle from (0,0) over (5,-5) to (10,0), then straight back.
  SmallDrawing drawing;
  drawing.entity("LWPOLYLINE", "90 2|70 1|10 0|20 0|42 1|10 10|20 0");
  EXPECT_EQ(snapsOf(drawing, {5, -4.8}, 1), "middle 5,-5 ");
  EXPECT_EQ(snapsOf(drawing, {5, 0.2}, 1), "middle 5,0 ");
  EXPECT_EQ(snapsOf(drawing, {9.8, 0}, 1), "end 10,0 ");
  EXPECT_EQ(snapsOf(drawing, {1.4644, -3.5355}, 0.5), "") << "chords of an arc have no ends";
}

TEST(Snaps, BlocksGiveTheirContentAndPlaceFillsNothing) {
  SmallDrawing drawing;
  drawing.block("flag").entity("LINE", "10 1|20 0|11 3|21 0").model();
  drawing.entity("INSERT", "2 flag|10 10|20 10|50 90");
  drawing.entity("SOLID", "10 0|20 0|11 1|21 0|12 0|22 1|13 1|23 1");
  EXPECT_EQ(snapsOf(drawing, {10, 10.2}, 0.5), "end 10,10 ");
  EXPECT_EQ(snapsOf(drawing, {10, 13.1}, 0.5), "end 10,13 ");
  EXPECT_EQ(snapsOf(drawing, {0, 0}, 0.5), "");
}

TEST(Snaps, ALowerKindWinsOnlyWhenMuchNearer) {
  SmallDrawing drawing;
  drawing.entity("LINE", "10 0|20 0|11 10|21 0");
  // Middle at 5, end at 10; the cursor between them.
  EXPECT_EQ(snapsOf(drawing, {7.2, 0}, 4), "end 10,0 middle 5,0 ");
  EXPECT_EQ(snapsOf(drawing, {6.1, 0}, 4), "middle 5,0 end 10,0 ");
}

TEST(Snaps, OrthoAndCrossings) {
  EXPECT_EQ(orthoPoint({1, 1}, {5, 2}).y, 1);
  EXPECT_EQ(orthoPoint({1, 1}, {2, -5}).x, 1);
  EXPECT_FALSE(intersection({0, 0}, {1, 0}, {0, 1}, {1, 1}));
  EXPECT_FALSE(intersection({0, 0}, {1, 0}, {2, -1}, {2, 1}));
  const auto at = intersection({25496000, 6672000}, {25496010, 6672010}, {25496000, 6672010}, {25496010, 6672000});
  ASSERT_TRUE(at);
  EXPECT_NEAR(at->x, 25496005, 1e-6);
}

}  // namespace
