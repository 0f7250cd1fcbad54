// Plans from map data. Builds without GDAL say so instead.
#include <gmock/gmock.h>

#include "Support.h"

namespace {

using namespace tests;
using testing::HasSubstr;
using testing::Not;

class Import : public Program {
 protected:
  void SetUp() override {
    if (!fs::exists(fs::path(kBinDir) / "libtolmeximport.so")) GTEST_SKIP() << "this build is without GDAL";
  }
  /// A collection in GK25 of the features, whose coordinates count from 25496000, 6672000.
  static std::string collection(const std::vector<std::string>& features, const std::string& system = "3879") {
    std::string all;
    for (const std::string& feature : features) all += (all.empty() ? "" : ",\n") + feature;
    return R"({"type":"FeatureCollection","crs":{"type":"name","properties":{"name":"urn:ogc:def:crs:EPSG::)" + system +
           R"("}},"features":[)" + all + "]}";
  }
  using Ring = std::vector<std::pair<double, double>>;
  static std::string points(const Ring& ring, bool isClosed = true) {
    std::string all;
    for (std::size_t i = 0; i < ring.size() + (isClosed ? 1 : 0); ++i) {
      const auto& [x, y] = ring[i % ring.size()];
      all += (all.empty() ? "[" : ",[") + std::to_string(25496000 + x) + "," + std::to_string(6672000 + y) + "]";
    }
    return "[" + all + "]";
  }
  static std::string feature(const std::string& tags, const std::string& type, const std::string& coordinates) {
    return R"({"type":"Feature","properties":{)" + tags + R"(},"geometry":{"type":")" + type + R"(","coordinates":)" +
           coordinates + "}}";
  }
  static std::string area(const std::string& tags, const Ring& outer, const Ring& hole = {}) {
    return feature(tags, "Polygon", "[" + points(outer) + (hole.empty() ? "" : "," + points(hole)) + "]");
  }
  static Ring box(double x, double y, double w, double h) { return {{x, y}, {x + w, y}, {x + w, y + h}, {x, y + h}}; }
};

TEST_F(Import, MakesAPlanAndTheScriptThatIllustratesIt) {
  write("town.geojson",
        collection({
            area(R"("building":"apartments","building:levels":"IV")", box(0, 0, 40, 40), box(15, 15, 10, 10)),
            area(R"("building":"house","height":"7,2 m")", box(60, 0, 10, 10)),
            area(R"("building":"shed")", box(80, 0, 5, 5)),
            area(R"("building":"shed")", box(3, 3, 5, 5)),                         // in the first one
            area(R"("building":"yes")", {{90, 0}, {95, 0.001}, {93, 0}}),          // a sliver
            area(R"("landuse":"grass")", {{0, 50}, {20, 70}, {20, 50}, {0, 70}}),  // crosses itself
            feature(R"("highway":"residential","width":"5")", "LineString", points({{0, 90}, {100, 90}}, false)),
            feature(R"("highway":"service")", "LineString", points({{50, 90}, {50, 120}}, false)),
            feature(R"("barrier":"fence")", "LineString", points({{0, 130}, {30, 130}}, false)),
            feature(R"("natural":"tree","height":"20")", "Point", "[25496070,6672060]"),
            feature(R"("shop":"kiosk")", "Point", "[25496070,6672065]"),
        }));
  const Outcome made = call({"import", "town.geojson", "new.dxf", "--rules", "osm", "--date", "11/2026"});
  EXPECT_EQ(made.status, 0) << made.err;
  EXPECT_THAT(made.out, HasSubstr("EPSG:3879"));
  EXPECT_THAT(made.out, HasSubstr("1 mended"));
  EXPECT_THAT(made.out,
              HasSubstr("1 smaller than 2 m2 or narrower than 0.3 m, 1 that no rule names, 1 buildings that lie"));
  EXPECT_THAT(made.err, HasSubstr("--symbols"));
  const std::string script = read("new.scr");
  EXPECT_THAT(script, HasSubstr("OpenStreetMap contributors, ODbL 1.0 11/2026"));
  EXPECT_THAT(script, HasSubstr("TLM_MUOK_RAKENNUS\nLAYER TUONTI_RAKENNUS_4\n\n30211 4\n"));
  EXPECT_THAT(script, HasSubstr("LAYER TUONTI_RAKENNUS_2\n"));
  EXPECT_THAT(script, HasSubstr("; Asfaltti (1)\n"));  // two roads that meet are one
  EXPECT_LT(std::count(script.begin(), script.end(), '\n'), 70);

  // The script runs on the plan, and in one go it comes to the same.
  EXPECT_EQ(call({"run", "new.dxf", "--script", "new.scr", "--out", "done.dxf", "--quiet"}).status, 0);
  const Outcome once = call(
      {"import", "town.geojson", "once.dxf", "--rules", "osm", "--illustrate", "--quiet", "--picture", "once.png"});
  EXPECT_EQ(once.status, 0) << once.err;
  for (const char* const file : {"done.dxf", "once.dxf"}) {
    const std::string info = call({"info", file}).out;
    EXPECT_THAT(info, HasSubstr("buildings 3\n")) << file;
    EXPECT_THAT(info, HasSubstr("height 1.2")) << file;
    EXPECT_THAT(info, HasSubstr("Asfaltti          1, 1 with a fill")) << file;
    EXPECT_THAT(info, HasSubstr("problems 0")) << file;
  }
  EXPECT_FALSE(fs::exists(folder / "once.scr"));
  EXPECT_THAT(read("once.dxf"), HasSubstr("OpenStreetMap contributors"));
}

TEST_F(Import, ReadsAnyCoordinatesAndSaysWhatWasWrongWithThem) {
  // Degrees go to the zone of their place.
  write("degrees.geojson",
        R"({"type":"Feature","properties":{"building":"yes"},"geometry":{"type":"Polygon","coordinates":)"
        "[[[24.93,60.17],[24.931,60.17],[24.931,60.1705],[24.93,60.1705],[24.93,60.17]]]}}");
  EXPECT_THAT(call({"import", "degrees.geojson", "a.dxf", "--rules", "osm"}).out,
              HasSubstr("EPSG:3879 ETRS89 / GK25FIN"));
  EXPECT_THAT(call({"import", "degrees.geojson", "b.dxf", "--rules", "osm", "--crs", "TM35FIN"}).out,
              HasSubstr("EPSG:3067"));
  EXPECT_THAT(call({"import", "degrees.geojson", "b.dxf", "--rules", "osm", "--crs", "GK33"}).err,
              HasSubstr("GK19 to GK31"));
  EXPECT_THAT(call({"import", "degrees.geojson", "b.dxf", "--rules", "osm", "--crs", "EPSG:4326"}).err,
              HasSubstr("its unit is not the metre"));
  // Northing first, and the zone left out.
  const std::string swapped = R"("geometry":{"type":"Polygon","coordinates":[[[6672000,496000],[6672000,496020],)"
                              R"([6672020,496020],[6672000,496000]]]}})";
  write("swapped.geojson", collection({R"({"type":"Feature","properties":{"building":"yes"},)" + swapped}));
  const Outcome mended = call({"import", "swapped.geojson", "c.dxf", "--rules", "osm"});
  EXPECT_EQ(mended.status, 0) << mended.err;
  EXPECT_THAT(mended.err, HasSubstr("northing came before easting"));
  EXPECT_THAT(mended.err, HasSubstr("zone's number"));
  EXPECT_THAT(read("c.dxf"), HasSubstr("25496020"));
}

TEST_F(Import, ClipsAreasAtTheWindowAndKeepsBuildingsWhole) {
  write("town.geojson",
        collection({area(R"("building":"yes")", box(-10, 0, 20, 20)), area(R"("building":"yes")", box(300, 0, 9, 9)),
                    area(R"("landuse":"grass")", box(-50, 30, 100, 20))}));
  const Outcome made =
      call({"import", "town.geojson", "new.dxf", "--rules", "osm", "--window", "25496000,6672000,25496100,6672100"});
  EXPECT_EQ(made.status, 0) << made.err;
  EXPECT_THAT(made.out, HasSubstr("1 outside the window"));
  const std::string clipped = read("new.dxf");
  EXPECT_THAT(clipped, HasSubstr("25495990"));
  EXPECT_THAT(clipped, Not(HasSubstr("25495950")));
}

TEST_F(Import, RefusesRulesThatNobodyReads) {
  write("town.geojson", collection({area(R"("building":"yes")", box(0, 0, 20, 20))}));
  write("own.json", R"({"rules": [{"where": "building=*", "makes": "building"}]})");
  const auto refusal = [this](const std::string& rules) {
    const Outcome refused = call({"import", "town.geojson", "new.dxf", "--rules", rules});
    EXPECT_EQ(refused.status, 1) << refused.err;
    EXPECT_FALSE(fs::exists(folder / "new.dxf"));
    return refused.err;
  };
  EXPECT_THAT(refusal("own.json"), HasSubstr("own.json: a rule has no \"makes\""));
  write("own.json", R"({"rules": [{"where": "building=*", "make": "house"}]})");
  EXPECT_THAT(refusal("own.json"), HasSubstr("nothing is made by the name \"house\"; there are water"));
  write("own.json", "{");
  EXPECT_THAT(refusal("own.json"), HasSubstr("own.json"));
  EXPECT_THAT(refusal("oms"), HasSubstr("shipped rules are kanta, mtk, osm, rekisteri"));
}

TEST_F(Import, ReadsFilesOnly) {
  write("empty.gpkg", "");
  for (const auto& [source, why] : {std::pair{"nowhere.geojson", "cannot be opened: No such file or directory"},
                                    {"/vsicurl/http://localhost:9/t.geojson", "cannot be opened: No such file"},
                                    {"MEM:", "cannot be opened: No such file"},
                                    {"empty.gpkg", "is no map data that can be read"}}) {
    const Outcome refused = call({"import", source, "new.dxf", "--rules", "osm"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.err, testing::StartsWith(std::string("tolmex: ") + source + ": " + why));
  }
  EXPECT_FALSE(fs::exists(folder / "new.dxf"));
}

TEST_F(Import, RegistersTellFloorsInManyWays) {
  write("town.geojson",
        collection({area(R"("i_kerrlkm":"1 1/2")", box(0, 0, 20, 20)),
                    area(R"("KERROSLUKU":"II-VI")", box(30, 0, 20, 20)), area(R"("TILAVUUS":3600)", box(60, 0, 20, 20)),
                    area(R"("KAYTTOTARKOITUS":"039")", box(90, 0, 20, 20)), area(R"("x":"")", box(120, 0, 8, 8))}));
  const Outcome made = call({"import", "town.geojson", "new.dxf", "--rules", "rekisteri"});
  EXPECT_EQ(made.status, 0) << made.err;
  EXPECT_THAT(
      made.out,
      HasSubstr(
          "TUONTI_RAKENNUS_1 1, TUONTI_RAKENNUS_2 1, TUONTI_RAKENNUS_3 1, TUONTI_RAKENNUS_5 1, TUONTI_RAKENNUS_6 1"));
}

TEST_F(Import, PartsTakeThePlacesOfTheirOutlines) {
  const std::string three = R"("building":"yes","building:levels":"3")";
  write("town.geojson",
        collection({area(three, box(0, 0, 40, 20)),  // half of it has parts
                    area(R"("building:part":"yes","building:levels":"8")", box(0, 0, 10, 20)),
                    area(R"("building:part":"yes","building:levels":"2","building:min_level":"1")", box(10, 0, 10, 20)),
                    area(R"("building:part":"yes")", box(20, 0, 20, 20)),  // says nothing
                    area(three, box(100, 0, 40, 20)),                      // all of it is a part
                    area(R"("building:part":"yes","building:levels":"2")", box(100, 0, 40, 20)),
                    area(R"("building:part":"yes","building:levels":"6")", box(110, 5, 10, 10)),   // above the other
                    area(R"("building:part":"yes","building:levels":"4")", box(200, 0, 9, 9))}));  // without outline
  const Outcome made = call({"import", "town.geojson", "new.dxf", "--rules", "osm"});
  EXPECT_EQ(made.status, 0) << made.err;
  EXPECT_THAT(made.out, HasSubstr("2 buildings drawn by their parts"));
  EXPECT_THAT(made.out, HasSubstr("left out: 1 parts of buildings without floors of their own"));
  EXPECT_THAT(made.out, HasSubstr("TUONTI_RAKENNUS_2 2, TUONTI_RAKENNUS_3 1, TUONTI_RAKENNUS_4 1, TUONTI_RAKENNUS_6 1, "
                                  "TUONTI_RAKENNUS_8 1\n"));
  EXPECT_THAT(made.err, HasSubstr("1 parts of buildings that begin above the ground"));
}

TEST_F(Import, RoofsGetRidgesAlongTheLongerAxis) {
  const std::string house = R"("building":"house","roof:shape":)";
  write("town.geojson",
        collection({area(house + R"("gabled","roof:height":"2")", box(0, 0, 10, 16)),
                    area(house + R"("hipped")", box(30, 0, 16, 10)),
                    area(house + R"("gabled","roof:orientation":"across")", box(60, 0, 16, 10)),
                    area(house + R"("gabled","roof:direction":"N")", box(90, 0, 10, 16)),
                    area(house + R"("gabled")", box(120, 0, 30, 30), box(130, 10, 10, 10)),  // around a courtyard
                    area(house + R"("flat")", box(160, 0, 10, 16))}));
  const Outcome made = call(
      {"import", "town.geojson", "new.dxf", "--rules", "osm", "--illustrate", "--quiet", "--script-out", "new.scr"});
  EXPECT_EQ(made.status, 0) << made.err;
  const std::string info = call({"info", "new.dxf"}).out;
  EXPECT_THAT(info, HasSubstr("Harjaviiva        4\nbuildings 6\n"));
  EXPECT_THAT(info, HasSubstr("at 2,"));    // as told
  EXPECT_THAT(info, HasSubstr("at 2.5,"));  // 5 m * tan 27 degrees
  EXPECT_THAT(info, HasSubstr("at 4.1,"));  // across: 8 m
  // Ends of the ridges, each point of which the file has on lines of its own.
  const std::string drawing = read("new.dxf");
  const auto point = [](double x, double y) {
    const auto text = [](double value) {
      std::string all = std::to_string(value);
      while (all.ends_with('0')) all.pop_back();
      return all + (all.ends_with('.') ? "0" : "");
    };
    return " 10\n" + text(25496000 + x) + "\n 20\n" + text(6672000 + y) + "\n";
  };
  EXPECT_THAT(drawing, HasSubstr(point(5, 0) + point(5, 16)));
  EXPECT_THAT(drawing, HasSubstr(point(35, 5) + point(41, 5)));
  EXPECT_THAT(drawing, HasSubstr(point(68, 0) + point(68, 10)));
  EXPECT_THAT(drawing, HasSubstr(point(100, 8) + point(90, 8)));
}

TEST_F(Import, ReadsTheTopographicDatabaseAndBaseMaps) {
  ASSERT_EQ(std::system(("/usr/bin/python3 \"" + (fs::path(kSourceDir) / "Tests/Program/make_map_data.py").string() +
                         "\" \"" + folder.string() + "\"")
                            .c_str()),
            0);
  const Outcome mtk = call({"import", "mtk.gpkg", "mtk.dxf", "--rules", "mtk", "--date", "11/2026", "--illustrate"});
  EXPECT_EQ(mtk.status, 0) << mtk.err;
  EXPECT_THAT(mtk.out, HasSubstr("left out: 2 that the rules leave out, 1 that no rule names\n"));
  EXPECT_THAT(mtk.out,
              HasSubstr("made: TUONTI_VESI 2, TUONTI_PELTO 1, TUONTI_NURMI 1, TUONTI_SORA 1, TUONTI_ASFALTTI 1, "
                        "TUONTI_POLKU 1, TUONTI_PENSAS 1, TUONTI_OJA 1, TUONTI_LAUTA_AITA_1.2 1, TUONTI_RAKENNUS_1 1, "
                        "TUONTI_RAKENNUS_2 2, TUONTI_RAKENNUS_3 1, TUONTI_RAKENNUS_4 1, "
                        "TUONTI_LEHTIPUU_keskikokoiset 1\n"));
  EXPECT_THAT(mtk.out, Not(HasSubstr(" skipped: ")));
  EXPECT_THAT(mtk.out, Not(HasSubstr(" not hatched: ")));
  EXPECT_THAT(read("mtk.dxf"), HasSubstr("Maastotietokannan 11/2026"));
  // Whichever place of a thing comes last, its area is what counts; "039" is no number; a height of 23 m is one over
  // the sea.
  const Outcome base = call({"import", "kanta.gml", "kanta.dxf", "--rules", "kanta", "--illustrate"});
  EXPECT_EQ(base.status, 0) << base.err;
  EXPECT_THAT(base.out, HasSubstr("EPSG:3879"));
  EXPECT_THAT(base.out, HasSubstr("made: TUONTI_METSA 1, TUONTI_NURMI 1, TUONTI_SORA 2, TUONTI_ASFALTTI 1, "
                                  "TUONTI_LAUTA_AITA_1.2 1, TUONTI_KIVIAITA_0.8 1, TUONTI_RAKENNUS_1 1, "
                                  "TUONTI_RAKENNUS_2 2, TUONTI_RAKENNUS_5 1, TUONTI_LEHTIPUU_keskikokoiset 1, "
                                  "TUONTI_HAVUPUU_keskikokoiset 6\n"));
  EXPECT_THAT(base.out, Not(HasSubstr(" not hatched: ")));
  EXPECT_FALSE(fs::exists(folder / "kanta.gfs")) << "nothing is left beside the source";
}

}  // namespace
