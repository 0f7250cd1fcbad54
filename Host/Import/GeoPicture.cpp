#include "Import/GeoPicture.h"

#include <cpl_conv.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <gdal_utils.h>

#include <memory>
#include <vector>

#include "Import/Systems.h"

namespace host::import {
namespace {

Problem failed(const std::string& why) {
  return problemOf(Code::OutputFailed, "the picture could not be given its place: " + why);
}

struct CloseDataset {
  void operator()(GDALDataset* dataset) const { GDALClose(dataset); }
};
using Dataset = std::unique_ptr<GDALDataset, CloseDataset>;

/// A file in memory, gone with the object.
class MemoryFile {
 public:
  explicit MemoryFile(std::string name) : name_(std::move(name)) {}
  MemoryFile(std::string name, const std::string& bytes) : name_(std::move(name)) {
    // The library only reads them.
    auto* const data = reinterpret_cast<GByte*>(const_cast<char*>(bytes.data()));
    VSIFCloseL(VSIFileFromMemBuffer(name_.c_str(), data, bytes.size(), FALSE));
  }
  ~MemoryFile() { VSIUnlink(name_.c_str()); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  const char* name() const { return name_.c_str(); }
  std::string bytes() const {
    vsi_l_offset size = 0;
    const GByte* const data = VSIGetMemFileBuffer(name_.c_str(), &size, FALSE);
    return data == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(data), size);
  }

 private:
  std::string name_;
};

void prepareLibrary() {
  GDALAllRegister();
  CPLSetErrorHandler([](CPLErr, CPLErrorNum, const char*) {});  // what fails is told by the calls that fail
}

/// Whether every pixel of the fourth band is opaque.
bool isOpaque(GDALDataset& picture) {
  if (picture.GetRasterCount() < 4) return true;
  double extremes[2] = {0, 0};
  return picture.GetRasterBand(4)->ComputeRasterMinMax(FALSE, extremes) == CE_None && extremes[0] >= 255;
}

Result<std::string> geoTiff(const std::string& png, const GeoPlace& place) {
  prepareLibrary();
  std::optional<OGRSpatialReference> system;
  if (!place.system.empty()) {
    Result<OGRSpatialReference> named = systemOfName(place.system);
    if (!named) return named.problem();
    system = std::move(*named);
  }
  const MemoryFile from("/vsimem/tolmex/picture.png", png), to("/vsimem/tolmex/picture.tif");
  const Dataset picture(GDALDataset::Open(from.name(), GDAL_OF_RASTER));
  if (picture == nullptr) return failed(CPLGetLastErrorMsg());
  std::vector<std::string> words = {"-of", "VRT"};
  if (isOpaque(*picture) && picture->GetRasterCount() == 4)
    words.insert(words.end(), {"-b", "1", "-b", "2", "-b", "3"});
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const std::unique_ptr<GDALTranslateOptions, void (*)(GDALTranslateOptions*)> options(
      GDALTranslateOptionsNew(arguments.data(), nullptr), GDALTranslateOptionsFree);
  const Dataset placed(GDALDataset::FromHandle(GDALTranslate("", picture.get(), options.get(), nullptr)));
  if (placed == nullptr) return failed(CPLGetLastErrorMsg());
  std::array<double, 6> transform = place.transform;
  placed->SetGeoTransform(transform.data());
  if (system) placed->SetSpatialRef(&*system);
  char compress[] = "COMPRESS=DEFLATE", tiled[] = "TILED=YES", predictor[] = "PREDICTOR=2";
  char* creation[] = {compress, tiled, predictor, nullptr};
  GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("GTiff");
  Dataset tiff(driver != nullptr ? driver->CreateCopy(to.name(), placed.get(), FALSE, creation, nullptr, nullptr)
                                 : nullptr);
  if (tiff == nullptr) return failed(CPLGetLastErrorMsg());
  tiff.reset();
  std::string bytes = to.bytes();
  if (bytes.empty()) return failed(CPLGetLastErrorMsg());
  return bytes;
}

Result<GeoCorners> cornersOf(const GeoPlace& place) {
  prepareLibrary();
  Result<OGRSpatialReference> system = systemOfName(place.system);
  if (!system) return system.problem();
  const std::unique_ptr<OGRSpatialReference> degrees(system->CloneGeogCS());
  if (degrees == nullptr) return failed("its system has no latitudes and longitudes");
  degrees->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  const std::unique_ptr<OGRCoordinateTransformation> toDegrees(
      OGRCreateCoordinateTransformation(&*system, degrees.get()));
  if (toDegrees == nullptr) return failed(CPLGetLastErrorMsg());
  const auto& [left, top, right, bottom] = place.shown;
  const auto& t = place.transform;
  GeoCorners corners;
  std::size_t next = 0;
  for (const auto& [px, py] : {std::pair(left, bottom), {left, top}, {right, top}, {right, bottom}}) {
    double x = t[0] + t[1] * px + t[2] * py, y = t[3] + t[4] * px + t[5] * py;
    if (toDegrees->Transform(1, &x, &y) == FALSE) return failed("it lies outside its system");
    corners.degrees[next++] = y;
    corners.degrees[next++] = x;
  }
  char* text = nullptr;
  const char* const form[] = {"FORMAT=WKT1_ESRI", nullptr};
  system->exportToWkt(&text, form);
  corners.definition = text != nullptr ? text : "";
  CPLFree(text);
  if (const char* const code = system->GetAuthorityCode(nullptr); code != nullptr) corners.code = code;
  return corners;
}

}  // namespace
}  // namespace host::import

extern "C" void tolmexGeoTiff(const std::string& picture, const host::import::GeoPlace& place,
                              std::optional<host::Result<std::string>>& answer) {
  answer.emplace(host::import::geoTiff(picture, place));
}

extern "C" void tolmexGeoCorners(const host::import::GeoPlace& place,
                                 std::optional<host::Result<host::import::GeoCorners>>& answer) {
  answer.emplace(host::import::cornersOf(place));
}
