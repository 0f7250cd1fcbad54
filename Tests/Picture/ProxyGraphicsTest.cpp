// Entities of unknown kinds, drawn by the metafile their application left.
#include <bit>

#include "Picture/Rendered.h"

namespace tests {
namespace {

/// Writes the metafile of tags 310.
class Metafile {
 public:
  Metafile& whole(std::uint32_t value) {
    for (unsigned i = 0; i < 4; ++i) body_ += static_cast<char>(value >> (8 * i) & 0xFF);
    return *this;
  }
  Metafile& reals(std::initializer_list<double> values) {
    for (const double value : values) {
      const auto bits = std::bit_cast<std::uint64_t>(value);
      whole(static_cast<std::uint32_t>(bits)).whole(static_cast<std::uint32_t>(bits >> 32));
    }
    return *this;
  }
  Metafile& bytes(const std::string& value) {
    body_ += value;
    return *this;
  }
  /// Ends a record of this kind with what was written since the last one.
  Metafile& record(std::uint32_t kind) {
    std::string body;
    body.swap(body_);
    const auto size = static_cast<std::uint32_t>(body.size() + 8);
    whole(size).whole(kind);
    records_ += body_ + body;
    body_.clear();
    ++count_;
    return *this;
  }
  std::string tags(std::size_t keep = std::string::npos) const {
    Metafile head;
    head.whole(static_cast<std::uint32_t>(records_.size() + 8)).whole(count_);
    const std::string file = (head.body_ + records_).substr(0, keep);
    std::string text = "160 " + std::to_string(file.size());
    for (std::size_t i = 0; i < file.size(); ++i) {
      if (i % 100 == 0) text += "|310 ";
      char hex[3];
      std::snprintf(hex, sizeof hex, "%02X", static_cast<unsigned>(static_cast<unsigned char>(file[i])));
      text += hex;
    }
    return text;
  }

 private:
  std::string body_, records_;
  std::uint32_t count_ = 0;
};

Metafile sample() {
  Metafile file;
  file.whole(1).record(20);           // fill what is closed
  file.whole(0xC2FF0000).record(22);  // red
  file.whole(4).reals({1, 1, 0, 5, 1, 0, 5, 5, 0, 1, 5, 0}).record(7);
  file.whole(2).record(20);
  file.whole(0xC3000005).record(22);  // blue of the palette
  file.reals({10, 3, 0, 2, 0, 0, 1}).record(2);
  // An arc from the right over the top to the left; shifted by a matrix.
  file.reals({1, 0, 0, 5, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}).record(29);
  file.whole(200).record(23);
  file.reals({10, 2, 0, 3, 0, 0, 1, 1, 0, 0, 3.14159265358979}).whole(0).record(4);
  file.record(31);
  file.whole(0xC0000000).record(22);  // the entity's colour again
  file.whole(2).reals({1, 8, 0, 19, 8, 0}).record(6);
  // A shell of one face, and a text without closing zero.
  file.whole(1).record(20);
  file.whole(3)
      .reals({1, 11, 0, 5, 11, 0, 1, 15, 0})
      .whole(4)
      .whole(3)
      .whole(0)
      .whole(1)
      .whole(2)
      .whole(0)
      .whole(0)
      .record(9);
  file.reals({8, 11, 0, 0, 0, 1, 1, 0, 0, 4, 1, 0}).bytes("IIII").record(10);
  file.whole(7).record(999);
  return file;
}

TEST(ProxyGraphics, ShowsEntitiesOfUnknownKinds) {
  for (const char* type : {"ACAD_PROXY_ENTITY", "SOMETHING_OF_OURS", "MULTILEADER"}) {
    SmallDrawing drawing;
    drawing.entity(type, "290 0", "8 0|62 3|370 200|" + sample().tags());
    SmallDatabase db(drawing);
    const Rendered picture(db, twentyByTwenty(), PictureFormat::Png);
    EXPECT_EQ(picture.at(3, 3), 0xFF0000) << type;
    EXPECT_EQ(picture.at(12, 3), 0x0000FF) << "circle";
    EXPECT_EQ(picture.at(10, 3), 0xFFFFFF) << "not filled";
    EXPECT_EQ(picture.at(15, 5), 0x0000FF) << "arc, moved";
    EXPECT_EQ(picture.at(10, 8), 0x00FF00) << "line in the entity's colour";
    EXPECT_EQ(picture.at(2, 12), 0x00FF00) << "face";
    EXPECT_EQ(picture.at(4.5, 14.5), 0xFFFFFF);
    EXPECT_GT(picture.shareUnlike(0xFFFFFF, 8, 11, 12, 15), 0.1) << "text";
  }
}

TEST(ProxyGraphics, CutOffAnywhereItEnds) {
  const std::size_t whole = sample().tags().size() / 2;
  for (std::size_t keep = 0; keep < whole; keep += 7) {
    SmallDrawing drawing;
    drawing.entity("LINE", "10 0|20 0|11 20|21 20").entity("ACAD_PROXY_ENTITY", "290 0", "8 0|" + sample().tags(keep));
    SmallDatabase db(drawing);
    EXPECT_TRUE(drawPicture(*db, twentyByTwenty(), PictureFormat::Svg).ok());
  }
}

TEST(ProxyGraphics, WhatHasNoneIsCountedOnce) {
  SmallDrawing drawing;
  drawing.block("solids").entity("3DSOLID", "70 1|1 abc", "8 0").entity("3DSOLID", "70 1|1 abc", "8 0");
  drawing.model()
      .entity("LINE", "10 0|20 0|11 20|21 20")
      .entity("INSERT", "2 solids|10 0|20 0", "8 0")
      .entity("REGION", "70 1|1 abc", "8 0")
      .entity("REGION", "70 1|1 abc", "8 0|60 1");
  SmallDatabase db(drawing);
  EXPECT_EQ(toldOf(drawPicture(*db, twentyByTwenty(), PictureFormat::Png)),
            "Left out, having no picture of their own: 2 3DSOLID, 1 REGION.");
}

}  // namespace
}  // namespace tests
