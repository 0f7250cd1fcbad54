// SVG whose letters are text.
#include <gmock/gmock.h>

#include <QXmlStreamReader>
#include <tuple>

#include "Picture/Rendered.h"

namespace tests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

PictureOptions realText() {
  PictureOptions options = twentyByTwenty();
  options.hasRealText = true;
  return options;
}

std::string svgOf(const SmallDrawing& drawing, const PictureOptions& options = realText()) {
  SmallDatabase db(drawing);
  const auto made = drawPicture(*db, options, PictureFormat::Svg);
  EXPECT_TRUE(made.ok()) << made.message();
  return made.ok() ? made->bytes : std::string();
}

struct Text {
  std::string text, family, weight, style, space;
  double size = 0, length = 0;
  double m[6] = {};
};

std::vector<Text> textsOf(const SmallDrawing& drawing) {
  const std::string svg = svgOf(drawing);
  QXmlStreamReader reader(QByteArray::fromStdString(svg));
  std::vector<Text> texts;
  while (!reader.atEnd()) {
    if (reader.readNext() != QXmlStreamReader::StartElement || reader.name() != QString("text")) continue;
    const auto attributes = reader.attributes();
    const auto value = [&attributes](const char* name) {
      return attributes.value(QString(name)).toString().toStdString();
    };
    Text text{{}, value("font-family"), value("font-weight"), value("font-style"), value("xml:space")};
    text.size = std::stod(value("font-size"));
    text.length = std::stod(value("textLength"));
    double* const m = text.m;
    EXPECT_EQ(std::sscanf(value("transform").c_str(), "matrix(%lf %lf %lf %lf %lf %lf)", m, m + 1, m + 2, m + 3, m + 4,
                          m + 5),
              6);
    text.text = reader.readElementText().toStdString();
    texts.push_back(text);
  }
  EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
  return texts;
}

SmallDrawing styled() {
  SmallDrawing drawing;
  drawing.layer("0", "70 0|62 7");
  drawing.style("STANDARD", "70 0|40 0|41 1|50 0|3 arial.ttf").style("T", "70 0|40 0|41 1|50 0|3 timesbi.ttf");
  return drawing.style("P", "70 0|40 0|41 1|50 0|3 simplex.shx");
}

TEST(RealText, StandsWhereItsOutlinesWould) {
  SmallDrawing drawing = styled();
  drawing.entity("TEXT", "10 1|20 15|40 2|1 Hill|62 1|41 0.5")
      .entity("TEXT", "10 5|20 2|40 1|1 Up|50 90|7 T")
      .entity("TEXT", "10 19|20 10|40 1|1 Mirror|71 2");
  const std::vector<Text> texts = textsOf(drawing);
  ASSERT_EQ(texts.size(), 3U);
  const auto& [hill, up, mirror] = std::tie(texts[0], texts[1], texts[2]);
  EXPECT_EQ(hill.family, "'Liberation Sans', 'Arial', sans-serif");
  EXPECT_THAT(hill.m, ElementsAre(0.5, 0, 0, 1, 20, 100));
  EXPECT_NEAR(hill.size, 40 / 0.716, 0.01) << "capitals are as high as the text";
  EXPECT_EQ(hill.weight + hill.style, "");
  EXPECT_EQ(up.family, "'Liberation Serif', 'Times New Roman', serif");
  EXPECT_EQ(up.weight + up.style, "bolditalic");
  EXPECT_NEAR(up.m[1], -1, 1e-5);
  EXPECT_NEAR(up.m[2], 1, 1e-5);
  EXPECT_NEAR(mirror.m[0], -1, 1e-5);
  EXPECT_NEAR(mirror.m[4], 380, 1e-3) << "written from there to the left";
  // As long as the outlines.
  SmallDatabase db(drawing);
  const Rendered picture(db, twentyByTwenty(), PictureFormat::Png);
  const double end = (hill.m[4] + hill.length * hill.m[0]) / 20;
  EXPECT_GT(picture.shareUnlike(0xFFFFFF, end - 0.5, 15, end, 17), 0);
  EXPECT_EQ(picture.shareUnlike(0xFFFFFF, end, 15, 20, 17), 0);
}

TEST(RealText, SaysWhatIsWritten) {
  SmallDrawing drawing = styled();
  drawing.entity("TEXT", "10 1|20 15|40 1|1 R&D <b> \"x\"  two")
      .entity("TEXT", "10 1|20 12|40 1|1 one two")
      .entity("TEXT", "10 1|20 9|40 1|1 \\U+05D0 1");
  const std::vector<Text> texts = textsOf(drawing);
  ASSERT_EQ(texts.size(), 3U);
  EXPECT_EQ(texts[0].text, "R&D <b> \"x\"  two");
  EXPECT_EQ(texts[0].space, "preserve");
  EXPECT_EQ(texts[1].space, "");
  EXPECT_EQ(texts[2].text, "א 1") << "as it is read";
  EXPECT_THAT(svgOf(drawing), HasSubstr("unicode-bidi:plaintext"));
}

TEST(RealText, IsWrittenWhereItIsAllOfItsLetters) {
  SmallDrawing drawing = styled();
  drawing.entity("TEXT", "10 1|20 15|40 1|1 whole")
      .entity("TEXT", "10 18|20 12|40 2|1 cut by the edge")
      .entity("TEXT", "10 1|20 9|40 1|1 strokes|7 P")
      .entity("TEXT", "10 1|20 6|40 1|1    ");
  const std::vector<Text> texts = textsOf(drawing);
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_EQ(texts[0].text, "whole");
  const std::string outlines = svgOf(drawing, twentyByTwenty()), svg = svgOf(drawing);
  EXPECT_THAT(outlines, Not(HasSubstr("<text")));
  const auto paths = [](const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = text.find("<path"); at != std::string::npos; at = text.find("<path", at + 1)) ++count;
    return count;
  };
  EXPECT_EQ(paths(svg), paths(outlines) - 1);
}

TEST(RealText, GoesWithSvgAndWebPages) {
  SmallDatabase db(styled().entity("TEXT", "10 1|20 15|40 2|1 Hill"));
  for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Pdf, PictureFormat::Tiff}) {
    const auto made = drawPicture(*db, realText(), format);
    EXPECT_EQ(made.message(), "--real-text writes letters as text, so it goes with SVG and web pages only.");
    EXPECT_EQ(made.problem().status(), host::RunStatus::WrongUsage);
  }
  EXPECT_THAT(drawPicture(*db, realText(), PictureFormat::Html)->bytes, HasSubstr(">Hill</text>"));
}

}  // namespace
}  // namespace tests
