// Pictures that know where on the Earth they lie.
#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <map>

#include "Support.h"

namespace {

using namespace tests;
using testing::HasSubstr;

/// The tags of a little-endian TIFF's first image.
class Tiff {
 public:
  explicit Tiff(std::string bytes) : bytes_(std::move(bytes)) {
    if (!bytes_.starts_with(std::string_view("II*\0", 4))) return;
    const auto directory = at<std::uint32_t>(4);
    for (std::uint16_t i = 0; i < at<std::uint16_t>(directory); ++i) {
      const std::size_t entry = directory + 2 + std::size_t{i} * 12;
      tags_[at<std::uint16_t>(entry)] = entry;
    }
  }
  std::vector<double> doubles(std::uint16_t tag) const { return values<double>(tag); }
  std::vector<std::uint16_t> shorts(std::uint16_t tag) const { return values<std::uint16_t>(tag); }
  /// The number of a key of the coordinate system; 0 for a missing one.
  int geoKey(std::uint16_t key) const {
    const std::vector<std::uint16_t> keys = shorts(34735);
    for (std::size_t i = 4; i + 3 < keys.size(); i += 4) {
      if (keys[i] == key) return keys[i + 3];
    }
    return 0;
  }

 private:
  template <class T>
  T at(std::size_t place) const {
    T value{};
    if (place + sizeof value <= bytes_.size()) std::memcpy(&value, bytes_.data() + place, sizeof value);
    return value;
  }
  template <class T>
  std::vector<T> values(std::uint16_t tag) const {
    std::vector<T> all;
    const auto entry = tags_.find(tag);
    if (entry == tags_.end()) return all;
    const auto count = at<std::uint32_t>(entry->second + 4);
    const std::size_t place = count * sizeof(T) <= 4 ? entry->second + 8 : at<std::uint32_t>(entry->second + 8);
    for (std::uint32_t i = 0; i < count; ++i) all.push_back(at<T>(place + i * sizeof(T)));
    return all;
  }

  std::string bytes_;
  std::map<std::uint16_t, std::size_t> tags_;  // places of the entries
};

constexpr std::uint16_t kPixelScale = 33550, kTiePoint = 33922, kSamples = 277;
const fs::path kLocal = fs::path(kSourceDir) / "docs/guide/tontti.dxf";  // begins at 0, 0
constexpr std::uint16_t kProjected = 3072;                               // key of the coordinate system's code

class GeoPictures : public Program {
 protected:
  void SetUp() override {
    if (!fs::exists(fs::path(kBinDir) / "libtolmeximport.so")) GTEST_SKIP() << "this build is without GDAL";
  }
  Tiff tiff(const fs::path& name) const { return Tiff(read(name)); }
  /// The plan with a place: kind of coordinates, design point, reference point, metres of a unit, EPSG code.
  void locate(const std::string& name, int kind, double reference, const std::string& unit, const std::string& code) {
    std::string drawing = read("plan.dxf");
    const std::string end = "0\nENDSEC\n0\nEOF\n";
    const std::size_t at = drawing.rfind(end);
    ASSERT_NE(at, std::string::npos);
    const std::string place = reference == 0 ? "0.0" : std::to_string(reference);
    drawing.insert(at, "  0\nGEODATA\n  5\nFFFF1\n330\n0\n100\nAcDbGeoData\n 90\n2\n 70\n" + std::to_string(kind) +
                           "\n 10\n25496200.0\n 20\n6672400.0\n 30\n0.0\n 11\n" + place + "\n 21\n" + place +
                           "\n 31\n0.0\n 40\n" + unit +
                           "\n 12\n0.0\n 22\n1.0\n303\n<Alias id=\"6258\" type=\"Datum\"><Namespace>EPSG Code"
                           "</Namespace></Alias>^J<Alias id=\"" +
                           code +
                           "\"\n301\n type=\"CoordinateSystem\">"
                           "<ObjectId>GK</ObjectId><Namespace>EPSG Code</Namespace></Alias>\n 93\n0\n 96\n0\n");
    write(name, drawing);
  }
};

TEST_F(GeoPictures, TiffsLieWhereTheirDrawingDoes) {
  const Outcome made = call({"picture", "plan.dxf", "a.tif", "--crs", "GK25", "--window",
                             "25496200,6672380,25496400,6672480", "--width", "400"});
  EXPECT_EQ(made, (Outcome{0, "", ""}));
  const Tiff opaque = tiff("a.tif");
  EXPECT_EQ(opaque.geoKey(kProjected), 3879);
  EXPECT_THAT(opaque.doubles(kPixelScale), testing::ElementsAre(0.5, 0.5, 0));
  EXPECT_THAT(opaque.doubles(kTiePoint), testing::ElementsAre(0, 0, 0, 25496200, 6672480, 0));
  EXPECT_THAT(opaque.shorts(kSamples), testing::ElementsAre(3));
  // Without a system it has a place all the same, which is said; the ground may show through.
  const Outcome plain = call({"picture", kLocal, "b.tiff", "--background", "transparent"});
  EXPECT_EQ(plain.status, 0);
  EXPECT_THAT(plain.err, HasSubstr("b.tiff: The TIFF has a place but no coordinate system"));
  EXPECT_EQ(tiff("b.tiff").geoKey(kProjected), 0);
  EXPECT_THAT(tiff("b.tiff").shorts(kSamples), testing::ElementsAre(4));
  const Outcome wrong = call({"picture", "plan.dxf", "c.tif", "--crs", "EPSG:99"});
  EXPECT_EQ(wrong.status, 1);
  EXPECT_THAT(wrong.err, HasSubstr("c.tif: "));
  EXPECT_FALSE(fs::exists(folder / "c.tif"));
}

TEST_F(GeoPictures, TheDrawingsOwnPlaceCounts) {
  const Arguments window = {"--window", "25496200,6672450,25496300,6672500", "--width", "100"};
  const auto made = [&](Arguments more) {
    Arguments arguments = {"picture", "geo.dxf", "a.tif"};
    arguments.insert(arguments.end(), window.begin(), window.end());
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome outcome = call(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return tiff("a.tif");
  };
  locate("geo.dxf", 2, 0, "1.0", "3880");  // a projected grid: coordinates are those of the system
  EXPECT_EQ(made({}).geoKey(kProjected), 3880);
  EXPECT_THAT(made({}).doubles(kTiePoint), testing::ElementsAre(0, 0, 0, 25496200, 6672500, 0));
  EXPECT_EQ(made({"--crs", "3879"}).geoKey(kProjected), 3879) << "what the caller says counts";
  locate("geo.dxf", 1, 500000, "0.5",
         "3880");  // a local grid: what is drawn at 25496200, 6672400 lies at 500000, 500000
  EXPECT_THAT(made({}).doubles(kPixelScale), testing::ElementsAre(0.5, 0.5, 0));
  EXPECT_THAT(made({}).doubles(kTiePoint), testing::ElementsAre(0, 0, 0, 500000, 500050, 0));
  locate("geo.dxf", 3, 60, "1.0", "4258");  // degrees place nothing
  EXPECT_EQ(made({}).geoKey(kProjected), 3879) << "by the coordinates";
}

TEST_F(GeoPictures, PdfsHaveAMeasureAndStayVectors) {
  // Of one name: it is the title.
  fs::copy_file(plan, folder / "geo.dxf");
  ASSERT_EQ(call({"picture", "geo.dxf", "plain.pdf", "--paper", "A3", "--scale", "1:500"}).status, 0);
  locate("geo.dxf", 2, 0, "1.0", "3879");
  ASSERT_EQ(call({"picture", "geo.dxf", "a.pdf", "--paper", "A3", "--scale", "1:500"}).status, 0);
  const std::string plain = read("plain.pdf"), placed = read("a.pdf");
  EXPECT_EQ(plain.find("/GPTS"), std::string::npos);
  EXPECT_THAT(placed, HasSubstr("/EPSG 3879"));
  // Nothing but the page's own entry is new.
  const std::size_t viewport = placed.find(" /VP ["), end = placed.find(">>\nendobj", viewport);
  ASSERT_NE(viewport, std::string::npos);
  const std::string entry = placed.substr(viewport, end - viewport);
  EXPECT_THAT(entry, HasSubstr("/Subtype /GEO"));
  const auto objectsOf = [](const std::string& pdf) { return pdf.substr(0, pdf.rfind("\nxref\n")); };
  EXPECT_EQ(objectsOf(placed.substr(0, viewport) + placed.substr(end)), objectsOf(plain)) << "the page stays as it is";
  // The table leads to the page.
  const auto number = [&](std::size_t place) { return std::stoul(placed.substr(place)); };
  const std::size_t table = number(placed.rfind("startxref\n") + 10);
  EXPECT_EQ(placed.substr(table, 5), "xref\n");
  const std::size_t page = number(placed.find("/Kids [") + 7);
  const std::size_t object = number(placed.find('\n', table + 5) + 1 + 20 * page);
  EXPECT_TRUE(placed.substr(object).starts_with(std::to_string(page) + " 0 obj"));
  EXPECT_GT(viewport, object);
  EXPECT_EQ(placed.find("endobj", object), end + 3);
  // Asked for by name.
  const Outcome asked = call({"picture", "plan.dxf", "b.pdf", "--crs", "GK25"});
  EXPECT_EQ(asked.status, 0) << asked.err;
  EXPECT_THAT(read("b.pdf"), HasSubstr("/EPSG 3879"));
}

TEST_F(GeoPictures, ImportedPlansTellTheirSystem) {
  write("town.geojson",
        R"({"type":"FeatureCollection","crs":{"type":"name","properties":{"name":"urn:ogc:def:crs:EPSG::3879"}},)"
        R"("features":[{"type":"Feature","properties":{"building":"yes"},"geometry":{"type":"Polygon","coordinates":)"
        "[[[25496000,6672000],[25496020,6672000],[25496020,6672010],[25496000,6672010],[25496000,6672000]]]}}]}");
  const Outcome made = call(
      {"import", "town.geojson", "new.dxf", "--rules", "osm", "--picture", "a.tif", "--picture", "a.pdf", "--quiet"});
  EXPECT_EQ(made.status, 0) << made.err;
  EXPECT_EQ(tiff("a.tif").geoKey(kProjected), 3879);
  const std::string pdf = read("a.pdf");
  const std::size_t corners = pdf.find("/GPTS [");
  ASSERT_NE(corners, std::string::npos);
  // The lower left corner, a margin away from 60.160887 N 24.927965 E.
  double latitude = 0, longitude = 0;
  ASSERT_EQ(std::sscanf(pdf.c_str() + corners, "/GPTS [%lf %lf", &latitude, &longitude), 2);
  EXPECT_NEAR(latitude, 60.160887, 5e-5);
  EXPECT_NEAR(longitude, 24.927965, 5e-5);
  // Later calls know the system by the coordinates.
  ASSERT_EQ(call({"picture", "new.dxf", "b.tif"}).status, 0);
  EXPECT_EQ(tiff("b.tif").geoKey(kProjected), 3879);
}

}  // namespace
