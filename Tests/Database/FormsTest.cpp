// Drawings in other forms than text of 2000 and later: binary, older, with parts missing, damaged.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "Database/ReadDrawing.h"
#include "dbents.h"
#include "dbpl.h"

namespace {

using namespace host::database;
using namespace tests;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

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

TEST(OddDrawings, LineEndsOfEveryKindAreTakenForOne) {
  const std::string sound = tests::probeDrawing("\n");
  const std::vector<std::pair<std::string, std::string>> ends = {
      {"\r\r\n", "CR CR LF"}, {"\n\n", "LF LF"}, {"\n\r", "LF CR"}, {"\r\n\r\n", "CR LF CR LF"}, {"\r", ""}};
  for (const auto& [end, name] : ends) {
    ReadDrawing drawing(withLineEnds(sound, end));
    EXPECT_THAT(drawing.said().at(0), HasSubstr(name.empty() ? "was missing" : "every line ends in " + name));
    EXPECT_EQ(drawing.types().size(), 5U) << name;
    EXPECT_THAT(std::string(withLineEnds(drawing.saved(), "")), HasSubstr("text with blanks")) << name;
    EXPECT_THAT(drawing.saved(),
                HasSubstr("1001" + std::string(end.find("\r\n") != std::string::npos ? "\r" : "") + "\nVIERAS"));
    EXPECT_THAT(ReadDrawing(drawing.saved()).said(), ElementsAre());
    EXPECT_EQ(drawing.drawing().findHandle(0x54)->owner, drawing.drawing().findHandle(0x53));
  }
  // Tabs in front of group codes are blanks like others.
  std::string tabs = withLineEnds(sound, "\n");
  replaceOnce(tabs, "\n 11\n1\n", "\n\t11\n1\n");
  replaceOnce(tabs, "\n1001\n", "\n\t1001\n");
  ReadDrawing drawing(tabs);
  EXPECT_THAT(drawing.said(), ElementsAre());
  EXPECT_EQ(drawing.saved(), tabs);
  EXPECT_TRUE((drawing.entity(1).flags & kHasXData) != 0);
}

TEST(OddDrawings, AMarkOfUtf8DecidesOnTheEncodingAndStays) {
  std::string text = "\xEF\xBB\xBF" + tests::probeDrawing("\n");
  for (std::size_t at = text.find('\xe4'); at != std::string::npos; at = text.find('\xe4', at + 2)) {
    text.replace(at, 1, "\xc3\xa4");
  }
  ReadDrawing drawing(text);
  EXPECT_THAT(drawing.said(), ElementsAre());
  EXPECT_EQ(drawing.saved(), text);
  EXPECT_NE(drawing.drawing().findRecord(DxfType::Layer, L"metsä"), nullptr);
  replaceOnce(text, "  0\nEOF\n", "");
  ReadDrawing damaged(text);
  EXPECT_EQ(damaged.said().size(), 3U) << testing::PrintToString(damaged.said());  // dictionaries that it lacks
  EXPECT_NE(damaged.drawing().findRecord(DxfType::Layer, L"metsä"), nullptr);
  EXPECT_THAT(damaged.saved(), StartsWith("\xEF\xBB\xBF"));
  EXPECT_THAT(ReadDrawing(damaged.saved()).said(), ElementsAre());
}

TEST(DamagedDrawings, RecordsAmongOthersGoToTheirOwn) {
  std::string text = tests::probeDrawing("\n");
  const auto cut = [&](const std::string& head) {
    const std::size_t at = text.find("  0\n" + head);
    std::string record = text.substr(at, text.find("\n  0\n", at) + 1 - at);
    text.erase(at, record.size());
    return record;
  };
  std::string among;
  for (const char* const head : {"XRECORD\n", "DICTIONARY\n  5\n60", "LAYER\n  5\n11", "LTYPE\n",
                                 "BLOCK_RECORD\n  5\n1B", "GROUP\n", "SORTENTSTABLE\n", "CLASS\n"}) {
    among += cut(head);
  }
  const std::string line = cut("LINE\n");
  replaceOnce(text, "  0\nSTRANGE\n", among + "  0\nSTRANGE\n");
  replaceOnce(text, "  0\nSTRANGEOBJECT\n", line + "  0\nSTRANGEOBJECT\n");
  ReadDrawing drawing(text);
  EXPECT_THAT(drawing.said(), testing::Contains(HasSubstr("62: \"XRECORD\" stood in the section ENTITIES")));
  EXPECT_EQ(drawing.types(), (std::vector<std::string>{"LWPOLYLINE", "LWPOLYLINE", "STRANGE", "POLYLINE", "LINE"}));
  for (const std::uint64_t handle : {0x62, 0x60, 0x11, 0x16, 0x1B, 0x70, 0x61}) {
    Slot* const slot = drawing.drawing().findHandle(handle);
    ASSERT_NE(slot, nullptr) << handle;
    EXPECT_FALSE(slot->isEntity()) << handle;
    AcDbEntity* entity = nullptr;
    EXPECT_EQ(acdbOpenAcDbEntity(entity, AcDbObjectId(slot), AcDb::kForRead), Acad::eNotAnEntity) << handle;
  }
  EXPECT_EQ(drawing.drawing().drawOrder(drawing.drawing().modelSpace()).at(0)->handle, 0x52U);
  EXPECT_NE(drawing.drawing().findRecord(DxfType::Layer, L"vanha"), nullptr);
  EXPECT_THAT(ReadDrawing(drawing.saved()).said(), ElementsAre());
}

TEST(DamagedDrawings, ExtendedDataInFrontOfARecordMoveBehindIt) {
  std::string text = tests::probeDrawing("\n");
  replaceOnce(text, "LINE\n  5\n58\n", "LINE\n1001\nVIERAS\n1000\nx\n  5\n58\n");
  ReadDrawing drawing(text);
  EXPECT_THAT(drawing.said(), testing::Contains(HasSubstr("58: extended data stood in front")));
  EXPECT_EQ(drawing.entity(4).handle, 0x58U);
  EXPECT_THAT(drawing.bytesOf(4), StartsWith("  0\nLINE\n  5\n58\n330\n1F\n"));
  EXPECT_THAT(drawing.bytesOf(4), testing::EndsWith(" 31\n0\n1001\nVIERAS\n1000\nx\n"));
}

// The tolerant scan does not know all that the strict pass refuses: such records go one by one.
TEST(DamagedDrawings, WhatCannotBeReadAllTheSameIsLeftOut) {
  std::string text = tests::probeDrawing("\n");
  replaceOnce(text, "  0\nSTRANGEOBJECT\n", "  0\nHEADER\n  5\n80\n330\nC\n  0\nSTRANGEOBJECT\n");
  replaceOnce(text, "  0\nSTRANGE\n", "  0\nCLASSES\n  5\n81\n330\n1F\n100\nAcDbEntity\n  8\n0\n  0\nSTRANGE\n");
  ReadDrawing drawing(text);
  EXPECT_THAT(drawing.said(), testing::Contains(HasSubstr("HEADER left out: ")));
  EXPECT_THAT(drawing.said(), testing::Contains("plan.dxf: left out in all: 2 (CLASSES 1, HEADER 1)"));
  EXPECT_EQ(drawing.types().size(), 5U);
  EXPECT_EQ(drawing.drawing().findHandle(0x71)->owner, drawing.drawing().rootDictionary());
}

TEST(DamagedDrawings, AnEarlyEndLosesNothing) {
  const std::string sound = withoutComments(tests::probeDrawing("\n"));
  for (const char* const before : {"  0\nSECTION\n  2\nENTITIES\n", "  0\nSECTION\n  2\nOBJECTS\n", "  0\nSTRANGE\n"}) {
    std::string text = sound;
    replaceOnce(text, before, "  0\nEOF\n" + std::string(before));
    ReadDrawing drawing(binaryOf(text, true));
    EXPECT_THAT(drawing.said(), testing::Contains(HasSubstr("left out in all: 1 (EOF 1)")));
    EXPECT_EQ(drawing.types().size(), 5U);
    EXPECT_NE(drawing.drawing().findHandle(0x71), nullptr);
  }
  // What follows a drawing's end and is none of it stays where it is.
  for (const std::string rest : {"\x1a", "greetings\n0\n", "  0\nEOF\n", "  0\nSECTION\n  2\nHEADER\n  0\nENDSEC\n"}) {
    ReadDrawing drawing(sound + rest);
    EXPECT_THAT(drawing.said(), ElementsAre());
    EXPECT_EQ(drawing.saved(), sound + rest);
  }
}

TEST(DamagedDrawings, WhatGoesIsCountedAndWhatCanStayStays) {
  std::string text = tests::probeDrawing("\n");
  const std::string front = "330\n1F\n100\nAcDbEntity\n  8\n0\n100\n";
  const auto insert = [&](const std::string& handle, const std::string& block, const std::string& announced) {
    return "  0\nINSERT\n  5\n" + handle + "0\n" + front + "AcDbBlockReference\n" + announced + "  2\n" + block +
           "\n 10\n0\n 20\n0\n  0\nATTRIB\n  5\n" + handle + "1\n" + front +
           "AcDbText\n 10\n0\n 20\n0\n  1\nx\n100\nAcDbAttribute\n  2\nA\n 70\n0\n  0\nSEQEND\n  5\n" + handle +
           "2\n330\n1F\n100\nAcDbEntity\n  8\n0\n";
  };
  replaceOnce(text, "  0\nLINE\n", insert("8", "NONE", " 66\n1\n") + insert("9", "*Paper_Space", "") + "  0\nLINE\n");
  replaceOnce(text, "  0\nVERTEX\n  5\n56\n",
              "  0\nSEQEND\n  5\n99\n330\n53\n100\nAcDbEntity\n  8\n0\n  0\nVERTEX\n  5\n56\n");
  replaceOnce(text, "  9\n$CLAYER\n", "  9\n$INSBASE\n 10\n1.0\n999\nwhy\n 20\n2.0\n 30\n3.0\n  9\n$CLAYER\n");
  replaceOnce(text, "  9\n$MEASUREMENT\n", "  9\n$CLAYER\n  8\nvanha\n  9\n$MEASUREMENT\n");
  ReadDrawing drawing(text);
  EXPECT_THAT(drawing.said(),
              testing::Contains("plan.dxf: left out in all: 4 ($CLAYER 1, ATTRIB 1, INSERT 1, SEQEND 1)"));
  EXPECT_EQ(drawing.drawing().headerReal("$INSBASE", 30), 3.0);
  int parts = 0;
  for (const Slot* sub = drawing.drawing().findHandle(0x53)->firstSub(); sub != nullptr; sub = sub->nextSub) ++parts;
  EXPECT_EQ(parts, 4);
  const Slot* const reference = drawing.drawing().findHandle(0x90);
  ASSERT_NE(reference, nullptr);
  ASSERT_NE(reference->firstSub(), nullptr);
  EXPECT_EQ(reference->firstSub()->handle, 0x91U);
  EXPECT_THAT(ReadDrawing(drawing.saved()).said(), ElementsAre());
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
