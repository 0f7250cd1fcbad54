#include "Import/GeoPicture.h"

#include <cpl_conv.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>
#include <gdal_utils.h>

#include <cstdio>
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

std::string numbers(const std::vector<double>& values, int decimals) {
  std::string text;
  char figure[64];
  for (const double value : values) {
    std::snprintf(figure, sizeof figure, "%.*f", decimals, value);
    text += (text.empty() ? "" : " ") + std::string(figure);
  }
  return text;
}

std::string pdfString(const std::string& text) {
  std::string out = "(";
  for (const char c : text) {
    if (c == '(' || c == ')' || c == '\\') out += '\\';
    out += c;
  }
  return out + ")";
}

/// The first page of a PDF whose objects and table of places are plain text.
struct PdfPage {
  int object = 0;
  std::string dictionary;  // "<< ... >>"
  double left = 0, bottom = 0, right = 0, top = 0;
  std::string trailer;  // its entries
  std::size_t table = 0;
};

/// Number of an object that begins at "12 0 obj" right before `end`.
int objectNumber(const std::string& pdf, std::size_t marker) {
  const std::size_t line = pdf.rfind('\n', marker);
  return std::atoi(pdf.c_str() + (line == std::string::npos ? 0 : line + 1));
}

std::optional<PdfPage> firstPage(const std::string& pdf) {
  PdfPage page;
  for (std::size_t at = 0; (at = pdf.find("/Type /Page", at)) != std::string::npos; ++at) {
    if (pdf[at + 11] == 's') continue;
    const std::size_t marker = pdf.rfind(" 0 obj", at), begin = pdf.rfind("<<", at), end = pdf.find("endobj", at);
    if (marker == std::string::npos || begin == std::string::npos || begin < marker || end == std::string::npos)
      return std::nullopt;
    page.object = objectNumber(pdf, marker);
    page.dictionary = pdf.substr(begin, pdf.rfind(">>", end) + 2 - begin);
    break;
  }
  const std::size_t box = page.dictionary.find("/MediaBox");
  if (page.object <= 0 || box == std::string::npos ||
      std::sscanf(page.dictionary.c_str() + box, "/MediaBox [%lf %lf %lf %lf", &page.left, &page.bottom, &page.right,
                  &page.top) != 4)
    return std::nullopt;
  const std::size_t trailer = pdf.rfind("trailer"), start = pdf.rfind("startxref");
  if (trailer == std::string::npos || start == std::string::npos || start < trailer) return std::nullopt;
  const std::size_t begin = pdf.find("<<", trailer), end = pdf.rfind(">>", start);
  if (begin == std::string::npos || end == std::string::npos || end < begin) return std::nullopt;
  page.trailer = pdf.substr(begin + 2, end - begin - 2);
  page.table = static_cast<std::size_t>(std::atoll(pdf.c_str() + start + 9));
  return page;
}

/// The measure of the part of the page that shows the drawing: ISO 32000-1 12.9 with the geospatial entries of ISO
/// 32000-2 12.10. Corners are given in latitude and longitude of the system's own datum.
Result<std::string> viewport(const GeoPlace& place, const PdfPage& page) {
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
  std::vector<double> corners;  // lower left, upper left, upper right, lower right
  for (const auto& [px, py] : {std::pair(left, bottom), {left, top}, {right, top}, {right, bottom}}) {
    double x = t[0] + t[1] * px + t[2] * py, y = t[3] + t[4] * px + t[5] * py;
    if (toDegrees->Transform(1, &x, &y) == FALSE) return failed("it lies outside its system");
    corners.insert(corners.end(), {y, x});
  }
  constexpr double kPointsPerPixel = 72.0 / 96;
  const std::vector<double> box = {page.left + left * kPointsPerPixel, page.top - bottom * kPointsPerPixel,
                                   page.left + right * kPointsPerPixel, page.top - top * kPointsPerPixel};
  char* text = nullptr;
  const char* const form[] = {"FORMAT=WKT1_ESRI", nullptr};
  system->exportToWkt(&text, form);
  const std::string definition = text != nullptr ? text : "";
  CPLFree(text);
  const char* const code = system->GetAuthorityCode(nullptr);
  return "/VP [<</Type /Viewport /Name (Layers) /BBox [" + numbers(box, 4) +
         "] /Measure <</Type /Measure /Subtype /GEO /Bounds [0 0 0 1 1 1 1 0] /GPTS [" + numbers(corners, 10) +
         "] /LPTS [0 0 0 1 1 1 1 0] /GCS <</Type /PROJCS " +
         (code != nullptr ? "/EPSG " + std::string(code) + " " : std::string()) + "/WKT " + pdfString(definition) +
         ">>>>>>]";
}

/// Adds a later version of the page to the file (ISO 32000-1 7.5.6): what stands there stays as it is.
Result<std::string> geoPdf(const std::string& pdf, const GeoPlace& place) {
  prepareLibrary();
  const std::optional<PdfPage> page = firstPage(pdf);
  if (!page) return failed("its page was not found");
  Result<std::string> measure = viewport(place, *page);
  if (!measure) return measure;
  std::string bytes = pdf;
  if (bytes.back() != '\n') bytes += '\n';
  const std::size_t object = bytes.size();
  bytes += std::to_string(page->object) + " 0 obj\n" + page->dictionary.substr(0, page->dictionary.size() - 2) + "\n" +
           *measure + ">>\nendobj\n";
  const std::size_t table = bytes.size();
  char entry[32];
  std::snprintf(entry, sizeof entry, "%010zu 00000 n \n", object);
  return bytes + "xref\n" + std::to_string(page->object) + " 1\n" + entry + "trailer\n<<" + page->trailer + " /Prev " +
         std::to_string(page->table) + ">>\nstartxref\n" + std::to_string(table) + "\n%%EOF\n";
}

}  // namespace
}  // namespace host::import

extern "C" void tolmexGeoTiff(const std::string& picture, const host::import::GeoPlace& place,
                              std::optional<host::Result<std::string>>& answer) {
  answer.emplace(host::import::geoTiff(picture, place));
}

extern "C" void tolmexGeoPdf(const std::string& picture, const host::import::GeoPlace& place,
                             std::optional<host::Result<std::string>>& answer) {
  answer.emplace(host::import::geoPdf(picture, place));
}
