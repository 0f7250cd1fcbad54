#include <gtest/gtest.h>

#include "Picture/Rendered.h"
#include "Picture/Sheet.h"

namespace tests {
namespace {

using host::geometry::Box;
using host::picture::Sheet;

std::string rectangle(double x1, double y1, double x2, double y2) {
  const auto n = [](double v) { return std::to_string(v); };
  return "90 4|70 1|10 " + n(x1) + "|20 " + n(y1) + "|10 " + n(x2) + "|20 " + n(y1) + "|10 " + n(x2) + "|20 " + n(y2) +
         "|10 " + n(x1) + "|20 " + n(y2);
}

/// A page of 200 x 100 millimetres: the plan at the left, a legend, a field and a scale bar at the right.
class Sheets : public testing::Test {
 protected:
  Sheets() {
    SmallDrawing drawing;
    drawing.entity("LWPOLYLINE", rectangle(10, 10, 110, 90), "8 FRAME|62 1")
        .entity("LINE", "10 10|20 10|11 110|21 10", "8 rim|62 5|370 100")
        .entity("ATTDEF", "10 120|20 80|40 6|1 x|72 5|11 190|21 80|100 AcDbAttributeDefinition|3 ask|2 Title|70 0",
                "8 0|62 3")
        .entity("ATTDEF", "10 120|20 60|40 6|1 default|100 AcDbAttributeDefinition|3 ask|2 SCALE|70 0", "8 0|62 3");
    database = std::make_unique<SmallDatabase>(drawing);
    sheet.drawing = &**database;
    sheet.paper = {0, 0, 200, 100};
    sheet.frame = {10, 10, 110, 90};
    sheet.placeholders = {(*database)->findLayer(L"FRAME")};
    sheet.scaleField = L"SCALE";
    sheet.northLetter = L"P";
    options.sheet = &sheet;
    options.widthPx = 800;  // four pixels for a millimetre
  }
  /// 0xRRGGBB at millimetres of the page.
  static int at(const QImage& image, double x, double y) {
    return static_cast<int>(image.pixel(static_cast<int>(x * 4), static_cast<int>((100 - y) * 4)) & 0xFFFFFF);
  }
  QImage draw(SmallDatabase& plan) const {
    const host::Result<Picture> made = drawPicture(*plan, options, PictureFormat::Png);
    EXPECT_TRUE(made) << made.message();
    told = toldOf(made);
    return QImage::fromData(reinterpret_cast<const uchar*>(made->bytes.data()), static_cast<int>(made->bytes.size()));
  }
  /// Whether something but paper is in the box of the page.
  static bool shows(const QImage& image, const Box& box) {
    for (double x = box.minX; x < box.maxX; x += 0.25)
      for (double y = box.minY; y < box.maxY; y += 0.25)
        if (at(image, x, y) != 0xFFFFFF) return true;
    return false;
  }

  std::unique_ptr<SmallDatabase> database;
  Sheet sheet;
  PictureOptions options;
  mutable std::string told;
};

TEST_F(Sheets, PlanStandsInTheFrameAtAUsualScale) {
  // 48 x 20 m: 1:500 are 96 mm, which fit into 100.
  SmallDatabase plan(SmallDrawing()
                         .entity("LINE", "10 0|20 10|11 48|21 10", "8 0|62 1|370 100")
                         .entity("LINE", "10 0|20 0|11 48|21 0")
                         .entity("LINE", "10 0|20 20|11 48|21 20"));
  QImage image = draw(plan);
  EXPECT_EQ(image.size(), QSize(800, 400));
  EXPECT_EQ(at(image, 60, 50), 0xFF0000);
  EXPECT_EQ(at(image, 13, 50), 0xFF0000);
  EXPECT_EQ(at(image, 11, 50), 0xFFFFFF);
  EXPECT_EQ(at(image, 60, 10), 0x0000FF) << "the template's own lines";
  EXPECT_EQ(at(image, 10, 30), 0xFFFFFF) << "what says where the plan goes is not shown";
  EXPECT_EQ(told, "");
  ASSERT_TRUE(setScale(options, "1:200"));
  image = draw(plan);
  EXPECT_EQ(at(image, 11, 50), 0xFF0000);
  EXPECT_EQ(at(image, 9, 50), 0xFFFFFF) << "nothing of the plan outside of the frame";
  EXPECT_EQ(
      told,
      "At 1:200 the drawing is 240 x 100 mm and does not fit in the sheet's frame of 100 x 80 mm; 1:500 would do.");
}

TEST_F(Sheets, FieldsAreFilledAndNeverStretched) {
  SmallDatabase plan(SmallDrawing().entity("LINE", "10 0|20 10|11 48|21 10", "8 0|62 1"));
  sheet.fields[L"TITLE"] = L"I%%d";
  const QImage narrow = draw(plan);
  EXPECT_TRUE(shows(narrow, {120, 80, 130, 86}));
  EXPECT_FALSE(shows(narrow, {150, 78, 190, 88}));
  sheet.fields[L"TITLE"] = std::wstring(60, L'M');
  const QImage wide = draw(plan);
  EXPECT_TRUE(shows(wide, {184, 80, 190, 86}));
  EXPECT_FALSE(shows(wide, {191, 78, 200, 88})) << "a long text is made narrower";
  EXPECT_TRUE(shows(wide, {120, 60, 140, 66})) << "the scale is filled by itself";
  sheet.fields[L"SCALE"] = L"";
  EXPECT_FALSE(shows(draw(plan), {120, 60, 200, 66}));
  EXPECT_EQ(host::picture::fieldsOf(**database), (std::vector<std::wstring>{L"TITLE", L"SCALE"}));
}

TEST_F(Sheets, LegendShowsTheLooksOfThePlan) {
  SmallDrawing drawing;
  drawing.layer("off", "70 0|62 -1");
  drawing.entity("HATCH", solidBox(0, 0, 8, 8), "8 0|62 3")
      .entity("LINE", "10 0|20 0|11 48|21 0", "8 0|62 1|370 100")
      .entity("HATCH", solidBox(0, 0, 8, 8), "8 off|62 5");
  SmallDatabase plan(drawing);
  std::vector<std::uint64_t> handles;
  for (const auto* slot : plan->modelSpace().entities) handles.push_back(slot->handle);
  sheet.rows = {{L"Grass", L"64 m2", handles.at(0)}, {L"Sea", {}, handles.at(2)}, {L"Fence", L"48 m", handles.at(1)}};
  sheet.legend = Box{120, 20, 190, 50};
  sheet.scaleBar = Box{120, 2, 190, 15};
  QImage image = draw(plan);
  // Rows are six millimetres high, swatches nearly ten wide.
  EXPECT_EQ(at(image, 125, 46), 0x00FF00);
  EXPECT_EQ(at(image, 125, 40.6), 0xFF0000) << "a kind that is not shown has no row";
  EXPECT_TRUE(shows(image, {131, 44, 150, 49}));
  EXPECT_TRUE(shows(image, {170, 44, 190, 49}));
  EXPECT_FALSE(shows(image, {120, 20, 190, 36}));
  EXPECT_TRUE(shows(image, {122, 2, 130, 4})) << "the scale bar";
  EXPECT_EQ(told, "");
  sheet.rows.assign(40, sheet.rows.front());
  draw(plan);
  EXPECT_EQ(told, "The legend has no room for 32 of its rows.");
}

}  // namespace
}  // namespace tests
