// Drawings in other forms than text of 2000 and later: binary, older, with parts missing, damaged.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "Database/Support.h"
#include "Dxf/Binary.h"
#include "dbents.h"
#include "dbpl.h"

namespace {

using namespace host::database;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

/// Text of tags given as "0 LINE | 8 0 | ".
std::string tags(std::string_view bars) {
  std::string text;
  for (std::size_t end = bars.find(" | "); end != std::string_view::npos; end = bars.find(" | ")) {
    const std::string_view tag = bars.substr(0, end);
    bars.remove_prefix(end + 3);
    const std::size_t blank = tag.find(' ');
    text += std::string(tag.substr(0, blank)) + "\n" + std::string(tag.substr(blank + 1)) + "\n";
  }
  return text;
}

std::string section(const char* name, std::string_view bars) {
  return tags("0 SECTION | 2 " + std::string(name) + " | ") + tags(bars) + tags("0 ENDSEC | ");
}

const std::string kR12Header = section("HEADER", "9 $ACADVER | 1 AC1009 | ");
const std::string kEnd = tags("0 EOF | ");

/// A drawing read from bytes, with what was said of it.
class ReadDrawing {
 public:
  explicit ReadDrawing(const std::string& bytes) : db_(false) {
    result = host::dxf::readDrawingText(drawing(), bytes, "plan.dxf");
    EXPECT_TRUE(result.ok) << result.message;
  }
  DrawingDatabase& drawing() { return databaseOf(&db_); }
  std::string saved() { return host::dxf::drawingText(drawing()); }
  std::vector<std::string> said() {
    std::vector<std::string> all;
    for (const Problem& problem : drawing().problems()) all.push_back(host::dxf::problemSentence("plan.dxf", problem));
    return all;
  }
  /// Types of the entities in model space.
  std::vector<std::string> types() {
    std::vector<std::string> all;
    for (const Slot* const slot : drawing().modelSpace().entities) all.emplace_back(drawing().typeName(*slot));
    return all;
  }
  const Slot& entity(std::size_t index) { return *drawing().modelSpace().entities.at(index); }
  std::string bytesOf(std::size_t index) { return std::string(entity(index).fileBytes()); }

  host::dxf::FileResult result;

 private:
  AcDbDatabase db_;
};

/// Binary form of a text: an encoder of its own, so that the reader is not tested with itself.
std::string binaryOf(std::string_view text, bool wideCodes) {
  std::string out("AutoCAD Binary DXF\r\n\x1a\0", 22);
  const auto number = [&](const void* value, std::size_t size) { out.append(static_cast<const char*>(value), size); };
  Tag tag;
  while (readTag(text, tag)) {
    const int code = tag.code;
    const auto wide = static_cast<std::int16_t>(code);
    if (wideCodes) {
      number(&wide, 2);
    } else if (code < 255) {
      out += static_cast<char>(code);
    } else {
      out += '\xff';
      number(&wide, 2);
    }
    const double real = tag.real();
    const std::int64_t integer = tag.integer();
    const bool isReal = (code >= 10 && code < 60) || (code >= 110 && code < 150) || (code >= 210 && code < 240) ||
                        (code >= 1010 && code < 1060);
    if (isReal) {
      number(&real, 8);
    } else if ((code >= 60 && code < 80) || (code >= 270 && code < 290) || code == 370 || code == 1070) {
      number(&integer, 2);
    } else if ((code >= 90 && code < 100) || code == 420 || code == 1071) {
      number(&integer, 4);
    } else if (code == 290) {
      number(&integer, 1);
    } else if (code == 310 || code == 1004) {
      out += static_cast<char>(tag.value.size() / 2);
      for (std::size_t i = 0; i < tag.value.size(); i += 2) {
        out += static_cast<char>(std::stoi(std::string(tag.value.substr(i, 2)), nullptr, 16));
      }
    } else {
      out += tag.value;
      out += '\0';
    }
  }
  return out;
}

std::string withoutComments(std::string text) {
  for (std::size_t at = text.find("999\n"); at != std::string::npos; at = text.find("999\n")) {
    text.erase(at, text.find('\n', at + 4) + 1 - at);
  }
  return text;
}

TEST(BinaryDrawings, OnlyTheChangedRecordIsSpelledAnew) {
  const std::string binary = binaryOf(withoutComments(tests::probeDrawing("\n")), true);
  ReadDrawing drawing(binary);
  EXPECT_THAT(drawing.said(), ElementsAre());
  EXPECT_EQ(drawing.saved(), binary);
  AcDbEntity* entity = nullptr;
  ASSERT_EQ(acdbOpenAcDbEntity(entity, AcDbObjectId(drawing.drawing().findHandle(0x51)), AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(entity->setLayer(ACRX_T("lukittu")), Acad::eOk);
  entity->close();
  // The name of the layer, two letters longer, is the one difference.
  std::string expected = binary;
  const std::string from("\x08\0vanha\0\x06", 9);
  const std::size_t at = expected.find(from);
  ASSERT_NE(at, std::string::npos);
  expected.replace(at + 2, 5, "lukittu");
  EXPECT_EQ(drawing.saved(), expected);
}

TEST(BinaryDrawings, OddValuesKeepTheirBytes) {
  std::string binary = binaryOf(withoutComments(tests::probeDrawing("\n")), true) + "rest behind the end";
  const std::uint64_t payload = 0x7ff8dead0000beefULL;
  const double marker = 2.5;  // xdata 1040 of the probe
  char bytes[8];
  std::memcpy(bytes, &marker, 8);
  const std::size_t at = binary.find(std::string(bytes, 8));
  ASSERT_NE(at, std::string::npos);
  std::memcpy(binary.data() + at, &payload, 8);
  const std::size_t text = binary.find("  text with blanks");
  ASSERT_NE(text, std::string::npos);
  binary[text + 6] = '\n';
  binary[20] = '\x9a';  // of the mark that the file begins with
  ReadDrawing drawing(binary);
  EXPECT_EQ(drawing.saved(), binary);
}

TEST(BinaryDrawings, OldOnesHaveShortCodesAndAreSavedWithWideOnes) {
  const std::string text =
      kR12Header +
      section("ENTITIES", "0 LINE | 8 tie | 62 3 | 10 0.0 | 20 0.1 | 11 5.0 | 21 1e10 | 1001 OMA | 1071 7 | ") + kEnd;
  ReadDrawing drawing(binaryOf(text, false));
  EXPECT_EQ(drawing.types(), std::vector<std::string>{"LINE"});
  EXPECT_THAT(drawing.said(), ElementsAre(HasSubstr("AC1009 (R12); it was upgraded to AC1015")));
  const std::string saved = drawing.saved();
  EXPECT_EQ(saved.substr(22, 4), std::string("\0\0SE", 4));
  ReadDrawing again(saved);
  EXPECT_THAT(again.said(), ElementsAre());
  EXPECT_EQ(again.saved(), saved);
  EXPECT_THAT(again.bytesOf(0), HasSubstr("\n20\n0.1\n"));
  EXPECT_THAT(again.bytesOf(0), HasSubstr("1071\n7\n"));
}

TEST(BinaryDrawings, DamageIsNamedByItsByteAndCostsOneRecord) {
  std::string binary = binaryOf(withoutComments(tests::probeDrawing("\n")), true);
  const std::size_t at = binary.find(std::string("AcDbStrange\0\1", 13)) - 2;
  binary[at] = '\xff';
  binary[at + 1] = '\x7f';
  ReadDrawing drawing(binary);
  EXPECT_THAT(drawing.said(), testing::Contains("plan.dxf: 52: STRANGE left out: byte " + std::to_string(at) +
                                                " and what follows cannot be read"));
  EXPECT_EQ(drawing.types().size(), 4U);
  EXPECT_THAT(drawing.saved(), StartsWith("AutoCAD Binary DXF"));
  ReadDrawing again(drawing.saved());
  EXPECT_THAT(again.said(), ElementsAre());
}

TEST(OlderDrawings, PolylinesBecomeLightweightUnlessCurvedOr3d) {
  const std::string vertices =
      "0 VERTEX | 8 piha | 10 0.0 | 20 0.0 | 42 0.5 | 0 VERTEX | 8 piha | 10 9.0 | 20 0.0 | 40 0.7 | 41 0.2 | "
      "0 VERTEX | 8 piha | 10 9.0 | 20 9.0 | 0 SEQEND | 8 piha | ";
  ReadDrawing drawing(kR12Header +
                      section("ENTITIES",
                              "0 POLYLINE | 8 piha | 62 5 | 66 1 | 10 0.0 | 20 0.0 | 30 2.5 | 39 1.5 | 70 129 | "
                              "40 0.3 | 41 0.3 | 1001 OMA | 1000 arvo | " +
                                  vertices + "0 POLYLINE | 8 piha | 66 1 | 70 8 | " + vertices +
                                  "0 POLYLINE | 8 piha | 66 1 | 70 4 | 75 6 | " + vertices) +
                      kEnd);
  EXPECT_EQ(drawing.types(), (std::vector<std::string>{"LWPOLYLINE", "POLYLINE", "POLYLINE"}));
  const std::string own = drawing.bytesOf(0);
  EXPECT_EQ(own.substr(own.find("100\nAcDbEntity")),
            "100\nAcDbEntity\n8\npiha\n62\n5\n100\nAcDbPolyline\n"
            " 90\n        3\n 70\n   129\n 38\n2.5\n39\n1.5\n"
            " 10\n0.0\n 20\n0.0\n 40\n0.3\n 41\n0.3\n 42\n0.5\n"
            " 10\n9.0\n 20\n0.0\n 40\n0.7\n 41\n0.2\n 10\n9.0\n 20\n9.0\n 40\n0.3\n 41\n0.3\n"
            "1001\nOMA\n1000\narvo\n")
      << own;
  EXPECT_EQ(drawing.entity(1).type, DxfType::Polyline3d);
  EXPECT_EQ(drawing.entity(2).type, DxfType::Polyline2d);
  ASSERT_NE(drawing.entity(1).firstSub(), nullptr);
  EXPECT_THAT(std::string(drawing.entity(1).firstSub()->fileBytes()), HasSubstr("AcDb3dPolylineVertex"));
  EXPECT_EQ(drawing.entity(1).firstSub()->owner, &drawing.entity(1));
  EXPECT_NE(drawing.drawing().findRecord(DxfType::Layer, L"PIHA"), nullptr);
  EXPECT_NE(drawing.drawing().findRecord(DxfType::AppId, L"oma"), nullptr);
  EXPECT_EQ(drawing.drawing().layouts().size(), 2U);
}

TEST(OlderDrawings, TablesBlocksAndEntitiesGetTheFormOf2000) {
  ReadDrawing drawing(
      section("HEADER",
              "9 $ACADVER | 1 AC1009 | 9 $GRIDMODE | 70 0 | 9 $CLAYER | 8 TIE | 9 $DWGCODEPAGE | 3 dos850 | ") +
      section(
          "TABLES",
          "0 TABLE | 2 LTYPE | 70 1 | 0 LTYPE | 2 KATKO | 70 0 | 3 - - | 72 65 | 73 2 | 40 1.0 | 49 0.5 | 49 -0.5 | "
          "0 ENDTAB | 0 TABLE | 2 LAYER | 70 1 | 0 LAYER | 2 TIE | 70 4 | 62 3 | 6 KATKO | 0 ENDTAB | "
          "0 TABLE | 2 DIMSTYLE | 70 1 | 0 DIMSTYLE | 2 OMA | 70 0 | 5 NUOLI | 6 | 40 2.0 | 0 ENDTAB | ") +
      section("BLOCKS",
              "0 BLOCK | 8 0 | 2 $MODEL_SPACE | 70 0 | 10 0.0 | 20 0.0 | 30 0.0 | 0 ENDBLK | 8 0 | "
              "0 BLOCK | 8 0 | 2 PUU | 70 2 | 10 1.0 | 20 2.0 | 0 ARC | 8 0 | 10 0.0 | 20 0.0 | 40 1.0 | 50 0.0 | 51 "
              "90.0 | "
              "0 ENDBLK | ") +
      section("ENTITIES",
              "0 INSERT | 8 TIE | 66 1 | 2 PUU | 10 4.0 | 20 4.0 | 0 ATTRIB | 8 TIE | 10 4.0 | 20 4.0 | 40 1.0 | "
              "1 koivu | 2 LAJI | 70 0 | 0 SEQEND | 8 TIE | 0 3DLINE | 8 TIE | 38 7.0 | 10 0.0 | 20 0.0 | 11 1.0 | 21 "
              "1.0 | "
              "0 DIMENSION | 8 TIE | 2 *D0 | 10 0.0 | 20 0.0 | 70 1 | 13 1.0 | 23 1.0 | 14 2.0 | 24 1.0 | ") +
      kEnd);
  EXPECT_EQ(drawing.types(), (std::vector<std::string>{"INSERT", "LINE", "DIMENSION"}));
  EXPECT_EQ(drawing.said().size(), 1U) << testing::PrintToString(drawing.said());
  EXPECT_THAT(drawing.bytesOf(1), HasSubstr(" 30\n7.0\n"));
  EXPECT_THAT(drawing.bytesOf(2), HasSubstr("AcDbAlignedDimension\n13\n"));
  EXPECT_THAT(std::string(drawing.entity(0).firstSub()->fileBytes()), HasSubstr("AcDbAttribute\n2\nLAJI\n"));
  const BlockContents* const tree = drawing.drawing().findBlock(L"puu");
  ASSERT_NE(tree, nullptr);
  EXPECT_THAT(std::string(tree->entities.at(0)->fileBytes()), HasSubstr("AcDbArc\n50\n"));
  const std::string saved = drawing.saved();
  EXPECT_THAT(saved, HasSubstr("49\n0.5\n 74\n     0\n49\n"));
  EXPECT_THAT(saved, Not(HasSubstr("$GRIDMODE")));
  EXPECT_THAT(saved, Not(HasSubstr("NUOLI")));
  EXPECT_THAT(saved, HasSubstr("$DWGCODEPAGE\n3\ndos850\n"));
  EXPECT_EQ(drawing.drawing().modelSpace().begin->owner, drawing.drawing().modelSpace().record);
}

TEST(OlderDrawings, HandlesStayAndNewOnesComeBehindThem) {
  ReadDrawing drawing(kR12Header +
                      section("ENTITIES",
                              "0 LINE | 5 A1 | 8 0 | 10 0 | 20 0 | 11 1 | 21 1 | "
                              "0 LINE | 8 0 | 10 0 | 20 0 | 11 1 | 21 1 | ") +
                      kEnd);
  EXPECT_EQ(drawing.entity(0).handle, 0xA1U);
  EXPECT_GT(drawing.entity(1).handle, 0xA1U);
}

TEST(OddDrawings, VersionIsFoundWhenTheHeaderLies) {
  const std::string old = section("ENTITIES", "0 LINE | 8 0 | 10 0 | 20 0 | 11 1 | 21 1 | ") + kEnd;
  const auto header = [](const std::string& version) { return section("HEADER", "9 $ACADVER | 1 " + version + " | "); };
  EXPECT_THAT(ReadDrawing(old).said().at(0), HasSubstr("names no version"));
  EXPECT_THAT(ReadDrawing(header("MC0.0") + old).said().at(0), HasSubstr("unknown version \"MC0.0\""));
  for (const std::string& text : {old, header("MC0.0") + old, header("AC1015") + old, header("AC1032") + old,
                                  "\xEF\xBB\xBF" + header("AC1009") + old, "\n\n" + header("AC1009") + old}) {
    ReadDrawing drawing(text);
    EXPECT_EQ(drawing.types(), std::vector<std::string>{"LINE"}) << text;
    EXPECT_THAT(drawing.bytesOf(0), HasSubstr("100\nAcDbEntity\n")) << text;
    EXPECT_THAT(ReadDrawing(drawing.saved()).said(), ElementsAre());
  }
  EXPECT_EQ(ReadDrawing(header("AC1032") + old).drawing().version(), DrawingVersion::V2018);
  // Old Macintosh line ends.
  std::string returns = header("AC1009") + old;
  std::replace(returns.begin(), returns.end(), '\n', '\r');
  EXPECT_EQ(ReadDrawing(returns).types().size(), 1U);
}

TEST(DamagedDrawings, EachProblemNamesItsLineAndHandleAndTheLossIsCounted) {
  std::string text = tests::probeDrawing("\r\n");
  const auto lineOf = [&](std::size_t at) {
    return 1 + std::count(text.begin(), text.begin() + static_cast<long>(at), '\n');
  };
  const std::size_t strange = text.find("310\r\n00FF");
  text.replace(strange, 3, "boo");  // STRANGE 52
  const std::size_t line = text.find(" 11\r\n1\r\n", strange);
  text.replace(line + 5, 1, "nan");  // LINE 58
  const std::size_t lost = text.find("350\r\n71", line);
  text.replace(lost + 5, 2, "7F");  // entry STRANGE_DATA of the root
  text.erase(text.rfind("  0\r\nEOF"));
  ReadDrawing drawing(text);
  const auto place = [&](std::size_t at, const std::string& rest) {
    return "plan.dxf:" + std::to_string(lineOf(at)) + ": " + rest;
  };
  const std::size_t head = text.rfind("  0\r\nSTRANGE", strange);
  EXPECT_THAT(drawing.said(), testing::IsSupersetOf({
                                  place(head, "52: STRANGE left out: expected a group code, found \"boo\""),
                                  place(line, "58: LINE: group 11 holds no number but \"nan\"; 0 is taken"),
                                  place(text.size(), "the file ends in the middle (EOF is missing)"),
                                  std::string("plan.dxf: left out in all: 1 (STRANGE 1)"),
                              }));
  EXPECT_THAT(drawing.said(),
              testing::Contains(HasSubstr("STRANGE_DATA\" names an object that is not in the drawing")));
  EXPECT_EQ(drawing.types().size(), 4U);
  // The rest of the drawing keeps its bytes.
  EXPECT_THAT(drawing.saved(), HasSubstr("1010\r\n1.0\r\n1020\r\n2.0\r\n"));
}

TEST(DamagedDrawings, CirclesAndRepeatedHandlesAreMended) {
  const std::string block =
      "0 BLOCK | 8 0 | 2 A | 70 0 | 10 0 | 20 0 | 0 INSERT | 8 0 | 2 B | 10 0 | 20 0 | 0 ENDBLK | ";
  const std::string other =
      "0 BLOCK | 8 0 | 2 B | 70 0 | 10 0 | 20 0 | 0 INSERT | 8 0 | 2 A | 10 0 | 20 0 | 0 ENDBLK | ";
  ReadDrawing circle(
      kR12Header + section("BLOCKS", block + other) +
      section("ENTITIES", "0 INSERT | 8 0 | 2 A | 10 0 | 20 0 | 0 INSERT | 8 0 | 2 NONE | 10 0 | 20 0 | ") + kEnd);
  EXPECT_EQ(circle.types(), std::vector<std::string>{"INSERT"});
  EXPECT_THAT(circle.said(), testing::Contains(HasSubstr("INSERT left out: its block contains itself")));
  EXPECT_THAT(circle.said(), testing::Contains(HasSubstr("its block \"NONE\" is not in the drawing")));

  std::string twice = tests::probeDrawing("\n");
  twice.replace(twice.find("  5\n58\n") + 4, 2, "50");
  twice.replace(twice.find("330\nC\n", twice.find("STRANGEOBJECT")) + 4, 1, "71");  // owns itself
  ReadDrawing mended(twice);
  EXPECT_THAT(mended.said(), testing::Contains(HasSubstr("50: the handle is used twice; this LINE gets another")));
  EXPECT_THAT(mended.said(), testing::Contains(HasSubstr("71: owners go in a circle")));
  EXPECT_EQ(mended.types().size(), 5U);
  EXPECT_NE(mended.entity(4).handle, 0x50U);
  EXPECT_EQ(mended.drawing().findHandle(0x50), &mended.entity(0));
}

TEST(DamagedDrawings, HostileFilesTakeTimeInProportion) {
  std::string lines(10 << 20, 'x');  // one line of 10 MB as code, as value, and nothing but line ends
  EXPECT_THAT(
      ReadDrawing(kR12Header + section("ENTITIES", "0 LINE | 8 0 | 10 0 | 20 0 | 11 1 | 21 1 | ") + lines).said(),
      testing::Contains(HasSubstr("found \"xxxx")));
  EXPECT_EQ(
      ReadDrawing(kR12Header + tags("0 SECTION | 2 ENTITIES | 0 LINE | ") + "8\n" + lines + "\n" + kEnd).types().size(),
      1U);
  EXPECT_EQ(ReadDrawing(kR12Header + std::string(10 << 20, '\n') + kEnd).types().size(), 0U);
  // Blocks inside blocks, deeper than any stack.
  std::string nested;
  constexpr int kDepth = 8000;
  for (int i = 0; i < kDepth; ++i) {
    nested +=
        tags("0 BLOCK | 2 B" + std::to_string(i) + " | 0 INSERT | 2 B" + std::to_string(i + 1) + " | 0 ENDBLK | ");
  }
  ReadDrawing deep(kR12Header + tags("0 SECTION | 2 BLOCKS | ") + nested + tags("0 ENDSEC | ") + kEnd);
  EXPECT_EQ(deep.drawing().records(DxfType::BlockRecord).size(), std::size_t{kDepth} + 2);
  // Every handle the same, every layer another.
  std::string many;
  for (int i = 0; i < 20000; ++i) {
    many += "0\nPOINT\n5\nA\n8\nL" + std::to_string(i) + "\n10\n0\n20\n0\n";
  }
  ReadDrawing crowd(kR12Header + tags("0 SECTION | 2 ENTITIES | ") + many + tags("0 ENDSEC | ") + kEnd);
  EXPECT_EQ(crowd.types().size(), 20000U);
  EXPECT_LE(crowd.said().size(), 210U);
  EXPECT_EQ(crowd.drawing().records(DxfType::Layer).size(), 20001U);
}

}  // namespace
