// What `info` and LIST tell of any drawing, and handles in pictures.
#include <nlohmann/json.hpp>

#include "Support.h"

using namespace tests;
using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;

namespace {

class InfoFacts : public Program {
 protected:
  json told(const fs::path& drawing) const {
    const Outcome made = call({"info", drawing, "--json"});
    EXPECT_EQ(made.status, 0) << made.err;
    return json::parse(made.out)["drawings"][0];
  }
  /// The entry of a list whose key has the value.
  static json entry(const json& list, const char* key, const std::string& value) {
    for (const json& each : list)
      if (each[key] == value) return each;
    return nullptr;
  }
};

TEST_F(InfoFacts, TellsWhereADrawingLiesAndWhatItConsistsOf) {
  const Outcome plain = call({"info", "plan.dxf"});
  ASSERT_EQ(plain.status, 0) << plain.err;
  for (const char* const line :
       {"\nextents (25496200, 6672384.5) - (25496346.2, 6672517.215)\n", "\nunits metre\n",
        "\ncoordinate system EPSG:3879, by the coordinates\n", "\n  TONTTI: 6 LINE\n", "\n  37",
        ": TEXT on TEKSTI: Koivukatu\n", ": MTEXT on TEKSTI: Ak IV 24 as.\n",
        "  PUU_LEHTI: 10 entities, used 20 times\n", "\n  Layout1: 0 entities, paper 420 x 297 mm\n"})
    EXPECT_THAT(plain.out, HasSubstr(line));
  const json drawing = told("plan.dxf");
  EXPECT_EQ(drawing["entities"], 144) << "what there was stays";
  EXPECT_EQ(drawing["extents"]["min"][0], 25496200);
  EXPECT_EQ(drawing["drawingUnits"], json::parse(R"({"name": "metre", "metres": 1})"));
  EXPECT_EQ(drawing["coordinateSystem"], json::parse(R"({"name": "EPSG:3879", "guessed": true})"));
  EXPECT_EQ(entry(drawing["texts"], "text", "Ak IV\n24 as.")["type"], "MTEXT");
  EXPECT_EQ(entry(drawing["layouts"], "name", "Layout1")["paper"], json::parse(R"({"width": 420, "height": 297})"));
}

/// A drawing of another kind: inches, closed and open lines, an image that is not there, an external reference.
TEST_F(InfoFacts, TellsWhatIsStrangeAboutADrawing) {
  std::string drawing = read("plan.dxf");
  const auto insert = [&drawing](const std::string& before, const std::string& text, std::size_t from = 0) {
    const std::size_t at = drawing.find(before, from);
    ASSERT_NE(at, std::string::npos) << before;
    drawing.insert(at, text);
  };
  const auto polyline = [](const std::string& handle, int flag, const std::string& last) {
    return "0\nLWPOLYLINE\n5\n" + handle + "\n100\nAcDbEntity\n8\nodd\n100\nAcDbPolyline\n90\n3\n70\n" +
           std::to_string(flag) + "\n10\n0\n20\n0\n10\n5\n20\n0\n" + last;
  };
  insert("0\nENDSEC\n",
         polyline("A001", 1, "10\n5\n20\n5\n") + polyline("A002", 0, "10\n5\n20\n5\n") +
             polyline("A003", 0, "10\n0\n20\n0\n"),
         drawing.find("2\nENTITIES\n"));
  insert("0\nENDSEC\n", "0\nIMAGEDEF\n5\nA010\n330\nC\n100\nAcDbRasterImageDef\n90\n0\n1\nC:\\kuvat\\orto.png\n",
         drawing.find("2\nOBJECTS\n"));
  write("odd.dxf", drawing);
  const json odd = told("odd.dxf");
  EXPECT_EQ(entry(odd["layerList"], "name", "odd")["kinds"],
            json::parse(R"([{"kind": "LWPOLYLINE", "count": 3, "closed": 2}])"));
  EXPECT_EQ(odd["images"], json::parse(R"([{"handle": "A010", "file": "C:\\kuvat\\orto.png", "found": false}])"));
  write("orto.png", "");
  EXPECT_EQ(told("odd.dxf")["images"][0]["found"], true);
  EXPECT_THAT(call({"info", "odd.dxf"}).out, HasSubstr("\n  odd: 3 LWPOLYLINE (2 closed)\n"));
}

TEST_F(InfoFacts, ListTellsTextsAndHandlesOfEverything) {
  Arguments arguments{"run", "plan.dxf", "--support", kExamples};
  for (const char* const line : {"TLM_MUOK_ASFALTTI", "(handent \"220\")", "", "LIST", "ALL", ""}) {
    arguments.emplace_back("--command");
    arguments.emplace_back(line);
  }
  const Outcome listed = call(arguments);
  EXPECT_EQ(listed.status, 0) << listed.err;
  EXPECT_THAT(listed.out, HasSubstr("    text \"Ak IV\"\n    text \"24 as.\"\n"));
  EXPECT_THAT(listed.out, HasSubstr("    block \"PUU_LEHTI\" at "));
  EXPECT_THAT(listed.out,
              ContainsRegex("Handle = 220\n(    at [^\n]*\n)+    closed [^\n]*\n    refers to [0-9A-F]+\n"));
}

TEST_F(InfoFacts, PicturesShowHandlesAtOutlines) {
  ASSERT_EQ(call({"picture", "plan.dxf", "a.svg"}).status, 0);
  const Outcome made = call({"picture", "plan.dxf", "b.svg", "--handles", "NOSUCH", "--handles", "TONTTI"});
  EXPECT_EQ(made.status, 0) << made.err;
  const std::string without = read("a.svg"), with = read("b.svg");
  // Six lines of lots, a ground in white for each.
  const auto count = [](const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
    return found;
  };
  EXPECT_EQ(count(with, "<g fill=\"#ffffff\" fill-rule=\"evenodd\">") -
                count(without, "<g fill=\"#ffffff\" fill-rule=\"evenodd\">"),
            6U);
  EXPECT_EQ(call({"picture", "plan.dxf", "c.svg", "--handles", ""}).status, 1);
}

}  // namespace
