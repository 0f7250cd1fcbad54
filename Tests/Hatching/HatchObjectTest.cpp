#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <numbers>

#include "Database/Support.h"
#include "Places.h"
#include "dbents.h"
#include "dbhatch.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"

namespace {

constexpr double kPi = std::numbers::pi;

/// A metric drawing; pattern and linetype files are found in the shipped folder.
class HatchObjects : public testing::Test {
 protected:
  HatchObjects() : before_(std::filesystem::current_path()) {
    std::filesystem::current_path(std::filesystem::path(kSourceDir) / "Host/Hatching/support");
    drawing_->setMeasurement(AcDb::kMetric);
  }
  ~HatchObjects() override { std::filesystem::current_path(before_); }

  AcDbObjectId add(AcDbEntity* entity) {
    AcDbBlockTable* blocks = nullptr;
    AcDbBlockTableRecord* space = nullptr;
    EXPECT_EQ(drawing_->getBlockTable(blocks, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite), Acad::eOk);
    blocks->close();
    AcDbObjectId id;
    EXPECT_EQ(space->appendAcDbEntity(id, entity), Acad::eOk);
    space->close();
    entity->close();
    return id;
  }

  AcDbObjectId polyline(const std::vector<std::array<double, 3>>& vertices, bool closed = true,
                        const AcGeVector3d& normal = AcGeVector3d::kZAxis) {
    auto* const made = new AcDbPolyline;
    for (const auto& v : vertices) made->addVertexAt(made->numVerts(), {v[0], v[1]}, v[2]);
    made->setClosed(closed);
    made->setNormal(normal);
    made->setElevation(7);
    return add(made);
  }
  AcDbObjectId line(AcGePoint3d from, AcGePoint3d to) { return add(new AcDbLine(from, to)); }

  static AcDbObjectIdArray ids(std::initializer_list<AcDbObjectId> list) {
    AcDbObjectIdArray array;
    for (const AcDbObjectId id : list) array.append(id);
    return array;
  }

  /// What appendLoop says about a boundary.
  static Acad::ErrorStatus judge(std::initializer_list<AcDbObjectId> boundary) {
    AcDbHatch hatch;
    const Acad::ErrorStatus status = hatch.appendLoop(AcDbHatch::kExternal, ids(boundary));
    EXPECT_EQ(hatch.numLoops(), status == Acad::eOk ? 1 : 0);
    return status;
  }

  /// The way plug-ins make one.
  AcDbObjectId hatch(AcDbObjectId boundary, const ACHAR* pattern, double angle, double scale) {
    auto* const made = new AcDbHatch;
    EXPECT_EQ(made->setPatternAngle(angle), Acad::eOk);
    EXPECT_EQ(made->setPatternScale(scale), Acad::eOk);
    EXPECT_EQ(made->setPattern(AcDbHatch::kPreDefined, pattern), Acad::eOk);
    EXPECT_EQ(made->appendLoop(AcDbHatch::kExternal, ids({boundary})), Acad::eOk);
    EXPECT_EQ(made->evaluateHatch(), Acad::eOk);
    return add(made);
  }

  /// The hatch's own tags as "code value code value ...", numbers without blanks.
  std::string ownTags(AcDbObjectId id) {
    std::string words;
    host::database::TagCursor cursor = id.slot()->tags();
    host::database::Tag tag;
    bool isInside = false;
    while (cursor.next(tag)) {
      if (tag.code == 100) isInside = tag.trimmed() == "AcDbHatch";
      if (isInside) words += (words.empty() ? "" : " ") + std::to_string(tag.code) + " " + std::string(tag.trimmed());
    }
    return words;
  }

  tests::OpenDrawing drawing_;

 private:
  std::filesystem::path before_;
};

TEST_F(HatchObjects, RecordsHoldTheGroupsInTheirOrder) {
  const AcDbObjectId square = polyline({{0, 0, 0}, {10, 0, 1}, {10, 10, 0}, {0, 10, 0}});
  EXPECT_EQ(
      ownTags(hatch(square, L"dots", kPi / 2, 2)),
      "100 AcDbHatch 10 0.0 20 0.0 30 0.0 210 0.0 220 0.0 230 1.0 2 DOTS 70 0 71 0 91 1 "
      "92 3 72 1 73 1 93 4 10 0.0 20 0.0 42 0.0 10 10.0 20 0.0 42 1.0 10 10.0 20 10.0 42 0.0 10 0.0 20 10.0 42 0.0 "
      "97 0 75 0 76 1 52 90.0 41 2.0 77 0 78 1 53 90.0 43 0.0 44 0.0 45 -3.175 46 1.5875 79 2 49 0.0 49 -3.175 "
      "98 1 10 0.0 20 0.0");
  const std::string solid = ownTags(hatch(square, L"Solid", 0, 1));
  EXPECT_NE(solid.find("2 SOLID 70 1 71 0"), std::string::npos);
  EXPECT_NE(solid.find("97 0 75 0 76 1 98 1 10 0.0 20 0.0"), std::string::npos);
}

TEST_F(HatchObjects, PatternsFollowAngleScaleAndMeasurement) {
  AcDbHatch hatch;
  AcGeDoubleArray dashes;
  double angle = 0, baseX = 0, baseY = 0, offsetX = 0, offsetY = 0;
  const auto spacing = [&](int index) {
    EXPECT_EQ(hatch.getPatternDefinitionAt(index, angle, baseX, baseY, offsetX, offsetY, dashes), Acad::eOk);
    return std::hypot(offsetX, offsetY);
  };
  EXPECT_EQ(hatch.setPatternScale(0), Acad::eInvalidInput);
  EXPECT_EQ(hatch.setPatternScale(NAN), Acad::eInvalidInput);
  EXPECT_EQ(hatch.setPatternScale(0.3), Acad::eOk);
  EXPECT_EQ(hatch.setPatternAngle(7), Acad::eOk);
  EXPECT_EQ(hatch.setPattern(AcDbHatch::kPreDefined, L"Net"), Acad::eOk);
  EXPECT_STREQ(hatch.patternName(), L"NET");
  EXPECT_EQ(hatch.patternAngle(), 7);  // as given
  ASSERT_EQ(hatch.numPatternDefinitions(), 2);
  EXPECT_NEAR(spacing(1), 0.9525, 1e-12);
  EXPECT_NEAR(angle, 7 + kPi / 2, 1e-12);
  EXPECT_EQ(hatch.setPatternScale(1), Acad::eOk);
  EXPECT_NEAR(spacing(0), 0.9525, 1e-12);  // until the pattern is set again
  EXPECT_EQ(hatch.setPattern(AcDbHatch::kPreDefined, L"no such pattern"), Acad::eInvalidInput);
  EXPECT_STREQ(hatch.patternName(), L"NET");
  drawing_->setMeasurement(AcDb::kEnglish);
  EXPECT_EQ(hatch.setPattern(AcDbHatch::kPreDefined, L"NET"), Acad::eOk);
  EXPECT_NEAR(spacing(0), 0.125, 1e-12);
  EXPECT_EQ(hatch.getPatternDefinitionAt(2, angle, baseX, baseY, offsetX, offsetY, dashes), Acad::eInvalidIndex);
}

TEST_F(HatchObjects, BoundariesThatCloseAreTakenOthersRefused) {
  const std::vector<std::array<double, 3>> square{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
  const AcDbObjectId closed = polyline(square);
  EXPECT_EQ(judge({closed}), Acad::eOk);
  EXPECT_EQ(judge({polyline(square, false)}), Acad::eInvalidInput);
  EXPECT_EQ(judge({polyline({{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}})}), Acad::eInvalidInput);
  EXPECT_EQ(judge({polyline({{0, 0, 0}, {10, 0, 0}, {20, 0, 0}})}), Acad::eInvalidInput);
  EXPECT_EQ(judge({closed, closed}), Acad::eInvalidInput);
  EXPECT_EQ(judge({}), Acad::eInvalidInput);
  EXPECT_EQ(judge({AcDbObjectId::kNull}), Acad::eNullObjectId);
  EXPECT_EQ(judge({add(new AcDbPoint({1, 2, 3}))}), Acad::eInvalidInput);

  const AcDbObjectId bottom = line({0, 0, 1}, {10, 0, 2});
  const AcDbObjectId side = line({5, 8, 0}, {10, 0, 0});  // runs the other way
  const AcDbObjectId back = line({5, 8, 9}, {0, 0, 0});
  EXPECT_EQ(judge({bottom}), Acad::eInvalidInput);
  EXPECT_EQ(judge({bottom, side}), Acad::eInvalidInput);
  EXPECT_EQ(judge({bottom, side, back}), Acad::eOk);
  EXPECT_EQ(judge({bottom, back, side}), Acad::eOk);

  AcGePoint3dArray roof;
  for (const AcGePoint3d& p : {AcGePoint3d{0, 0, 3}, {8, 0, 5}, {8, 6, 5}, {0, 6, 3}}) roof.append(p);
  EXPECT_EQ(judge({add(new AcDb3dPolyline(AcDb::k3dSimplePoly, roof, true))}), Acad::eOk);
  EXPECT_EQ(judge({add(new AcDb2dPolyline(AcDb::k2dSimplePoly, roof, 2, true))}), Acad::eOk);

  AcDbEntity* open = nullptr;
  ASSERT_EQ(acdbOpenAcDbEntity(open, closed, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(judge({closed}), Acad::eWasOpenForWrite);
  open->close();
  EXPECT_EQ(judge({closed}), Acad::eOk);
}

TEST_F(HatchObjects, MirroredBoundariesKeepTheirArcsOnTheRightSide) {
  const AcDbObjectId mirrored = polyline({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}}, true, {0, 0, -1});
  const std::string tags = ownTags(hatch(mirrored, L"SOLID", 0, 1));
  EXPECT_NE(tags.find("93 3 10 0.0 20 0.0 42 -1.0 10 -10.0 20 0.0 42 "), std::string::npos) << tags;
}

TEST_F(HatchObjects, EvaluationRefusesWhatCannotBeFilled) {
  AcDbHatch hatch;
  AcGePoint2dArray square;
  for (const AcGePoint2d& p : {AcGePoint2d{0, 0}, {30, 0}, {30, 30}, {0, 30}}) square.append(p);
  EXPECT_EQ(hatch.evaluateHatch(), Acad::eInvalidInput);
  ASSERT_EQ(hatch.appendLoop(AcDbHatch::kDefault, square, {}), Acad::eOk);
  EXPECT_EQ(hatch.evaluateHatch(), Acad::eInvalidInput);  // no pattern yet
  ASSERT_EQ(hatch.setPattern(AcDbHatch::kPreDefined, L"LINE"), Acad::eOk);
  EXPECT_EQ(hatch.evaluateHatch(), Acad::eOk);
  hatch.setPatternScale(1e-7);
  ASSERT_EQ(hatch.setPattern(AcDbHatch::kPreDefined, L"LINE"), Acad::eOk);
  EXPECT_EQ(hatch.evaluateHatch(), Acad::eHatchTooDense);
  AcGeDoubleArray bulges;
  bulges.append(1);
  EXPECT_EQ(hatch.appendLoop(AcDbHatch::kDefault, square, bulges), Acad::eInvalidInput);
  EXPECT_EQ(hatch.numLoops(), 1);
}

TEST_F(HatchObjects, AssociativeOnesNameTheirSources) {
  const AcDbObjectId square = polyline({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
  AcDbHatch loose;
  loose.setAssociative(true);
  EXPECT_EQ(loose.appendLoop(AcDbHatch::kExternal, ids({square})), Acad::eNotInDatabase);

  const AcDbObjectId id = add(new AcDbHatch);
  {
    const AcDbObjectPointer<AcDbHatch> hatch(id, AcDb::kForWrite);
    hatch->setAssociative(true);
    EXPECT_EQ(hatch->setPattern(AcDbHatch::kPreDefined, L"SOLID"), Acad::eOk);
    EXPECT_EQ(hatch->appendLoop(AcDbHatch::kExternal, ids({square})), Acad::eOk);
  }
  std::wstring handle(17, 0);
  ASSERT_TRUE(square.handle().getIntoAsciiBuffer(handle.data(), handle.size()));
  EXPECT_NE(ownTags(id).find("97 1 330 " + std::string(handle.begin(), handle.begin() + handle.find(L'\0')) + " 75"),
            std::string::npos);
  const AcDbObjectPointer<AcDbPolyline> source(square, AcDb::kForRead);
  EXPECT_TRUE(source->hasPersistentReactor(id));
}

TEST_F(HatchObjects, SettersKeepWhatAForeignWriterPutThere) {
  const std::string before =
      "100 AcDbHatch 10 0.0 20 0.0 30 2.50 210 0.0 220 0.0 230 1.0 2 SOLID 70 1 71 0 91 1 92 1 93 2 "
      "72 1 10 -5.000 20 0 11 5 21 0 72 2 10 0 20 0 40 5 50 0 51 180 73 1 97 0 75 1 76 1 47 0.25 98 1 10 1 20 2 "
      "450 1 451 0 460 0.0 461 0.0 452 0 462 0.0 453 2 463 0.0 63 5 421 255 463 1.0 63 2 421 16776960 470 LINEAR";
  const AcDbObjectId id = add(new AcDbHatch);
  std::string text = drawing_.text();
  const std::size_t begin = text.find("AcDbHatch") + 10;
  std::string own = before.substr(14) + "\n";
  std::replace(own.begin(), own.end(), ' ', '\n');
  text.replace(text.find_first_not_of("\r\n", begin), text.find("ENDSEC", begin) - 4 - begin, own);
  tests::OpenDrawing reopened(text);
  const AcDbObjectId again = reopened.id(static_cast<Adesk::UInt64>(id.handle()));
  {
    const AcDbObjectPointer<AcDbHatch> hatch(again, AcDb::kForWrite);
    ASSERT_EQ(hatch.openStatus(), Acad::eOk);
    EXPECT_EQ(hatch->numLoops(), 1);
    EXPECT_EQ(hatch->hatchStyle(), AcDbHatch::kOuter);
    EXPECT_EQ(hatch->setElevation(4), Acad::eOk);
    EXPECT_EQ(hatch->evaluateHatch(), Acad::eOk);
  }
  std::string expected = before;
  expected.replace(expected.find("2.50"), 4, "4.0");
  expected.replace(expected.find("10 1 20 2"), 9, "10 1.0 20 2.0");
  EXPECT_EQ(ownTags(again), expected);
}

TEST_F(HatchObjects, LinetypesAreLoadedFromFiles) {
  AcDbDatabase* const db = drawing_.facade();
  EXPECT_EQ(acdbLoadLineTypeFile(L"hidden2", L"acad.lin", db), Acad::eOk);
  EXPECT_EQ(acdbLoadLineTypeFile(L"HIDDEN2", L"acadiso.lin", db), Acad::eDuplicateRecordName);
  EXPECT_EQ(acdbLoadLineTypeFile(L"NoSuch", L"acad.lin", db), Acad::eUndefinedLineType);
  EXPECT_EQ(acdbLoadLineTypeFile(L"DOT", L"no-such-file.lin", db), Acad::eFileNotFound);
  EXPECT_EQ(acdbLoadLineTypeFile(L"*", L"acad.lin", db), Acad::eOk);
  AcDbLinetypeTable* table = nullptr;
  ASSERT_EQ(db->getLinetypeTable(table), Acad::eOk);
  for (const ACHAR* name : {L"DOTS", L"PHANTOMX2", L"DASHED"}) EXPECT_TRUE(table->has(name)) << name;
  AcDbLinetypeTableRecord* hidden = nullptr;
  ASSERT_EQ(table->getAt(L"Hidden2", hidden, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(hidden->numDashes(), 2);
  EXPECT_EQ(hidden->dashLengthAt(0), 0.125);
  EXPECT_EQ(hidden->dashLengthAt(1), -0.0625);
  EXPECT_EQ(hidden->patternLength(), 0.1875);
  hidden->close();
  table->close();
}

}  // namespace
