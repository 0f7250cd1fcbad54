#include "Picture/Formats/PdfWriter.h"

#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

#include "Picture/Formats/PdfLetters.h"
#include "Picture/Formats/PdfObjects.h"
#include "Picture/Formats/PixelRows.h"
#include "Picture/PaperSizes.h"

// References: ISO 32000-1, 7.5 (file structure), 8.4 and 8.5 (graphics state, paths), 8.7.4 (shadings), 8.9.5 (images),
// 8.11 (optional content), 9.3 (text state), 12.3.3 (outlines).
namespace host::picture {
namespace {

using pdf::addNumber;
using pdf::numbers;
using pdf::Objects;
using pdf::reference;

constexpr double kPointsPerMm = 72 / kMmPerInch;
constexpr double kStretchSteps = 1e4;  // of the usual width

/// Layers by their names, over all pages.
class Layers {
 public:
  explicit Layers(Objects& objects) : objects_(objects) {}

  std::size_t group(const std::string& name) {
    const auto [entry, isNew] = groups_.try_emplace(name, 0);
    if (isNew) entry->second = objects_.add("<</Type /OCG /Name " + pdf::textString(name) + ">>");
    return entry->second;
  }
  /// Entry of the catalogue; empty without layers.
  std::string properties() const {
    if (groups_.empty()) return {};
    std::string all;
    for (const auto& [name, object] : groups_) all += (all.empty() ? "" : " ") + reference(object);
    return " /OCProperties <</OCGs [" + all + "] /D <</BaseState /ON /Order [" + all + "]>>>>";
  }

 private:
  Objects& objects_;
  std::map<std::string, std::size_t> groups_;  // by name, as readers list them
};

/// The content of one page and the resources it names.
class PageContent {
 public:
  PageContent(Objects& objects, Layers& layers, pdf::Letters& letters, const PdfPage& page)
      : objects_(objects), layers_(layers), letters_(letters), page_(page), list_(*page.list) {}

  std::string write(std::optional<std::uint32_t> background) {
    const double scale = kPointsPerMm * page_.page.widthMm / page_.page.widthPx;
    out_ = numbers({scale, 0, 0, -scale, 0, page_.page.heightMm * kPointsPerMm}, 9) + " cm\n";
    if (background) {
      setColor({static_cast<std::uint8_t>(*background >> 16), static_cast<std::uint8_t>(*background >> 8),
                static_cast<std::uint8_t>(*background), 255},
               fill_, "rg");
      out_ += "0 0 " + numbers({page_.page.widthPx, page_.page.heightPx}) + " re f\n";
    }
    if (!list_.texts.empty()) {
      constexpr const char* kUnseen = " 1 Tf 3 Tr\n";
      out_ += "/" + resource("Font", "T", letters_.font()) + kUnseen;
    }
    std::size_t run = 0, text = 0;
    std::uint32_t layer = 0;
    for (std::size_t i = 0; i < list_.items.size(); ++i) {
      for (; run < list_.notes.runs.size() && list_.notes.runs[run].firstItem <= i; ++run)
        layer = list_.notes.runs[run].origin.layer;
      const DisplayItem& item = list_.items[i];
      const bool isEdge = item.kind == ItemKind::BeginClip || item.kind == ItemKind::EndClip;
      // Layers are told within clips, never across their edges.
      enterLayer(isEdge ? 0 : layer);
      paint(item);
      for (; text < list_.texts.size() && list_.texts[text].item == i; ++text) write(list_.texts[text]);
    }
    enterLayer(0);
    return std::move(out_);
  }

  std::string resources() const {
    std::string out = "<<";
    for (const auto& [kind, names] : resources_) {
      out += "/" + kind + " <<";
      for (const auto& [name, object] : names) out += "/" + name + " " + reference(object) + " ";
      out += ">> ";
    }
    return out + ">>";
  }

 private:
  struct Paint {
    Color color;
    bool isSet = false;
  };
  struct State {
    Paint fill, stroke;
    double width = -1;
    int alpha = 255;
    int isFlat = -1;
    double stretch = 1;
  };

  void enterLayer(std::uint32_t layer) {
    if (layer == layer_) return;
    if (layer_ != 0) out_ += "EMC\n";
    layer_ = layer;
    if (layer == 0) return;
    const auto name = list_.notes.layers.find(layer);
    const std::size_t group = layers_.group(name != list_.notes.layers.end() ? name->second : std::string());
    out_ += "/OC /" + resource("Properties", "L", group) + " BDC\n";
  }

  /// The name by which the page calls an object.
  std::string resource(const std::string& kind, const std::string& prefix, std::size_t object) {
    std::string name = prefix + std::to_string(object);
    resources_[kind][name] = object;
    return name;
  }

  void setColor(const Color& color, Paint& paint, const char* operation) {
    setAlpha(color.alpha);
    Color opaque = color;
    opaque.alpha = 255;
    if (paint.isSet && paint.color == opaque) return;
    paint = {opaque, true};
    out_ += numbers({color.red / 255.0, color.green / 255.0, color.blue / 255.0}, 4) + " " + operation + "\n";
  }
  void setAlpha(int alpha) {
    if (alpha == alpha_) return;
    alpha_ = alpha;
    const auto [entry, isNew] = alphas_.try_emplace(alpha, 0);
    if (isNew) {
      const std::string value = numbers({alpha / 255.0}, 4);
      entry->second = objects_.add("<</ca " + value + " /CA " + value + ">>");
    }
    out_ += "/" + resource("ExtGState", "A", entry->second) + " gs\n";
  }
  void setPen(const DisplayItem& item) {
    setColor(item.color, stroke_, "RG");
    if (item.width != width_) out_ += numbers({width_ = item.width}, 4) + " w\n";
    const int isFlat = item.kind == ItemKind::FlatStroke ? 1 : 0;
    if (isFlat == isFlat_) return;
    isFlat_ = isFlat;
    out_ += isFlat != 0 ? "0 J 0 j\n" : "1 J 1 j\n";
  }

  void point(Point p, const char* operation) {
    addNumber(out_, p.x);
    out_ += ' ';
    addNumber(out_, p.y);
    out_ += operation;
  }
  void ring(const DisplayRing& ring) {
    const Point* const points = list_.points.data() + ring.first;
    point(points[0], " m\n");
    for (std::uint32_t i = 1; i < ring.count; ++i) point(points[i], " l\n");
    if (ring.closed) out_ += "h\n";
  }
  void rings(const DisplayItem& item) {
    for (std::uint32_t i = 0; i < item.ringCount; ++i) ring(list_.rings[item.firstRing + i]);
  }
  /// Four curves; the length of their handles is the usual one.
  void circle(Point c, double radius) {
    constexpr double kHandle = 0.5522847498;
    const double h = radius * kHandle;
    point({c.x + radius, c.y}, " m\n");
    const auto quarter = [&](double x, double y) {  // from the direction (x, y) to the left
      point({c.x + x * radius - y * h, c.y + y * radius + x * h}, " ");
      point({c.x - y * radius + x * h, c.y + x * radius + y * h}, " ");
      point({c.x - y * radius, c.y + x * radius}, " c\n");
    };
    quarter(1, 0);
    quarter(0, 1);
    quarter(-1, 0);
    quarter(0, -1);
    out_ += "h\n";
  }
  bool isDot(const DisplayRing& ring) const {
    const Point* const points = list_.points.data() + ring.first;
    return ring.count == 1 || (ring.count == 2 && points[0].x == points[1].x && points[0].y == points[1].y);
  }

  void save() {
    saved_.push_back({fill_, stroke_, width_, alpha_, isFlat_, stretch_});
    out_ += "q\n";
  }
  void restore() {
    out_ += "Q\n";
    const State& state = saved_.back();
    fill_ = state.fill;
    stroke_ = state.stroke;
    width_ = state.width;
    alpha_ = state.alpha;
    isFlat_ = state.isFlat;
    stretch_ = state.stretch;
    saved_.pop_back();
  }

  /// What the letters say that were painted last, over them.
  void write(const DisplayText& text) {
    Point origin = text.origin, along = text.along;
    // Of mirrored letters it runs the other way, so that readers find no mirror writing.
    if (cross(along, text.up) > 0) {
      origin = origin + along;
      along = -along;
    }
    const pdf::Letters::Line line =
        letters_.line(std::wstring_view(list_.letters).substr(text.firstLetter, text.letterCount));
    const double size = length(text.up) / pdf::Letters::kCapitalHeight;
    const double stretch = std::round(length(along) / (line.width * size) * kStretchSteps) / kStretchSteps;
    // Nor letters on end or on each other, which have no direction, nor any that would become points.
    constexpr double kLeastSize = 1e-3;
    if (line.codes.empty() || !(size >= kLeastSize) || !std::isfinite(stretch) || !(stretch > 0) || !isFinite(origin))
      return;
    out_ += "BT\n";
    if (stretch != stretch_) out_ += numbers({100 * (stretch_ = stretch)}, 2) + " Tz\n";
    const Point right = along * (size / length(along)), up = text.up * (1 / pdf::Letters::kCapitalHeight);
    out_ += numbers({right.x, right.y, up.x, up.y}, 4) + " " + numbers({origin.x, origin.y}, 2) + " Tm\n<" +
            line.codes + "> Tj\nET\n";
  }

  void paint(const DisplayItem& item) {
    if (item.kind == ItemKind::EndClip) return restore();
    if (item.kind == ItemKind::BeginClip) {
      save();
      rings(item);
      out_ += "W* n\n";
      return;
    }
    if (item.kind == ItemKind::Stroke || item.kind == ItemKind::FlatStroke) return paintStrokes(item);
    const bool isEvenOdd = item.kind == ItemKind::FillEvenOdd;
    if (item.texture != DisplayItem::kPlain || item.gradient != DisplayItem::kPlain) {
      save();
      rings(item);
      out_ += isEvenOdd ? "W* n\n" : "W n\n";
      if (item.texture != DisplayItem::kPlain)
        paintImage(list_.textures[item.texture], item.color.alpha);
      else
        paintGradient(list_.gradients[item.gradient]);
      return restore();
    }
    setColor(item.color, fill_, "rg");
    rings(item);
    out_ += isEvenOdd ? "f*\n" : "f\n";
  }

  /// Readers differ in what they show of lines without length: those are dots here.
  void paintStrokes(const DisplayItem& item) {
    bool hasLine = false, hasDot = false;
    for (std::uint32_t i = 0; i < item.ringCount; ++i) {
      const DisplayRing& each = list_.rings[item.firstRing + i];
      if (isDot(each)) {
        hasDot = true;
        continue;
      }
      if (!hasLine) setPen(item);
      hasLine = true;
      ring(each);
    }
    if (hasLine) out_ += "S\n";
    if (!hasDot) return;
    setColor(item.color, fill_, "rg");
    for (std::uint32_t i = 0; i < item.ringCount; ++i)
      if (const DisplayRing& each = list_.rings[item.firstRing + i]; isDot(each))
        circle(list_.points[each.first], item.width / 2);
    out_ += "f\n";
  }

  void paintGradient(const Gradient& gradient) {
    const auto colors = [](const Color& c) { return numbers({c.red / 255.0, c.green / 255.0, c.blue / 255.0}, 4); };
    std::string functions, bounds, encode;
    const std::vector<Gradient::Stop>& stops = gradient.stops;
    for (std::size_t i = 0; i + 1 < stops.size(); ++i) {
      functions += "<</FunctionType 2 /Domain [0 1] /N 1 /C0 [" + colors(stops[i].color) + "] /C1 [" +
                   colors(stops[i + 1].color) + "]>> ";
      if (i > 0) bounds += numbers({stops[i].offset}, 6) + " ";
      encode += "0 1 ";
    }
    const std::size_t shading = objects_.add(
        std::string("<</ShadingType ") + (gradient.isRadial ? "3" : "2") + " /ColorSpace /DeviceRGB /Coords [" +
        (gradient.isRadial ? "0 0 0 0 0 1" : "0 0 1 0") + "] /Extend [true true] /Function <</FunctionType 3 " +
        "/Domain [0 1] /Functions [" + functions + "] /Bounds [" + bounds + "] /Encode [" + encode + "]>>>>");
    setAlpha(stops.front().color.alpha);
    out_ += numbers({gradient.axisX.x, gradient.axisX.y, gradient.axisY.x, gradient.axisY.y, gradient.origin.x,
                     gradient.origin.y},
                    6) +
            " cm\n/" + resource("Shading", "S", shading) + " sh\n";
  }

  void paintImage(const Texture& texture, int alpha) {
    const auto [entry, isNew] = images_.try_emplace(texture.image.get(), 0);
    if (isNew) entry->second = addImage(*texture.image);
    if (entry->second == 0) return;
    setAlpha(alpha);
    // The unit square with its upper edge at 1.
    out_ += numbers({texture.across.x, texture.across.y, -texture.down.x, -texture.down.y,
                     texture.origin.x + texture.down.x, texture.origin.y + texture.down.y},
                    6) +
            " cm\n/" + resource("XObject", "I", entry->second) + " Do\n";
  }

  /// 0 for an image without pixels.
  std::size_t addImage(const RasterImage& image) {
    const PixelRows rows = pixelRows(image);
    if (rows.width <= 0 || rows.height <= 0) return 0;
    const std::string size = " /Type /XObject /Subtype /Image /Width " + std::to_string(rows.width) + " /Height " +
                             std::to_string(rows.height) + " /BitsPerComponent 8 /Interpolate true /ColorSpace ";
    if (!rows.jpeg.empty())
      return objects_.addRaw(size + (rows.isJpegGrey ? "/DeviceGray" : "/DeviceRGB") + " /Filter /DCTDecode",
                             rows.jpeg);
    std::string mask;
    if (!rows.alpha.empty()) mask = " /SMask " + reference(objects_.addStream(size + "/DeviceGray", rows.alpha));
    return objects_.addStream(size + "/DeviceRGB" + mask, rows.rgb);
  }

  Objects& objects_;
  Layers& layers_;
  pdf::Letters& letters_;
  const PdfPage& page_;
  const DisplayList& list_;
  std::string out_;
  std::map<std::string, std::map<std::string, std::size_t>> resources_;
  std::map<int, std::size_t> alphas_;
  std::map<const RasterImage*, std::size_t> images_;
  std::uint32_t layer_ = 0;
  Paint fill_, stroke_;
  double width_ = -1;
  int alpha_ = 255;
  int isFlat_ = -1;     // not told yet
  double stretch_ = 1;  // of texts along their lines
  std::vector<State> saved_;
};

/// The measure of the part of a page that shows the drawing: ISO 32000-1 12.9 with the geospatial entries of ISO
/// 32000-2 12.10.
std::string viewport(const Page& page) {
  const GeoMeasure& measure = *page.measure;
  const double scale = kPointsPerMm * page.widthMm / page.widthPx, top = kPointsPerMm * page.heightMm;
  const geometry::Box& part = measure.part;
  std::string corners;
  for (const double degrees : measure.corners) {
    if (!corners.empty()) corners += ' ';
    addNumber(corners, degrees, 10);
  }
  // Corners of the part itself, in the order of those on the Earth.
  constexpr const char* kCorners = "[0 0 0 1 1 1 1 0]";
  return std::string(" /VP [<</Type /Viewport /Name (Layers) /BBox [") +
         numbers({part.minX * scale, top - part.maxY * scale, part.maxX * scale, top - part.minY * scale}, 4) +
         "] /Measure <</Type /Measure /Subtype /GEO /Bounds " + kCorners + " /GPTS [" + corners + "] /LPTS " +
         kCorners + " /GCS <</Type /PROJCS " + (measure.code.empty() ? "" : "/EPSG " + measure.code + " ") + "/WKT " +
         pdf::literal(measure.definition) + ">>>>>>]";
}

}  // namespace

std::string writePdf(std::span<const PdfPage> pages, std::optional<std::uint32_t> background) {
  Objects objects;
  Layers layers(objects);
  pdf::Letters letters(objects);
  const std::size_t catalogue = objects.reserve(), information = objects.reserve(), tree = objects.reserve();
  const std::size_t outlines = objects.reserve();
  std::string kids;
  std::vector<std::size_t> leaves;
  for (const PdfPage& page : pages) {
    PageContent content(objects, layers, letters, page);
    const std::size_t stream = objects.addStream("", content.write(background));
    leaves.push_back(objects.add("<</Type /Page /Parent " + reference(tree) + " /MediaBox [0 0 " +
                                 numbers({page.page.widthMm * kPointsPerMm, page.page.heightMm * kPointsPerMm}, 4) +
                                 "] /Resources " + content.resources() + " /Contents " + reference(stream) +
                                 (page.page.measure ? viewport(page.page) : "") + ">>"));
    kids += (kids.empty() ? "" : " ") + reference(leaves.back());
  }
  letters.finish();
  // Bookmarks stand one behind the other.
  std::vector<std::size_t> marks;
  for (std::size_t i = 0; i < pages.size(); ++i) marks.push_back(objects.reserve());
  for (std::size_t i = 0; i < pages.size(); ++i)
    objects.set(marks[i], "<</Title " + pdf::textString(pages[i].name) + " /Parent " + reference(outlines) +
                              (i > 0 ? " /Prev " + reference(marks[i - 1]) : "") +
                              (i + 1 < pages.size() ? " /Next " + reference(marks[i + 1]) : "") + " /Dest [" +
                              reference(leaves[i]) + " /Fit]>>");
  objects.set(outlines, "<</Type /Outlines /First " + reference(marks.front()) + " /Last " + reference(marks.back()) +
                            " /Count " + std::to_string(marks.size()) + ">>");
  objects.set(tree, "<</Type /Pages /Kids [" + kids + "] /Count " + std::to_string(pages.size()) + ">>");
  objects.set(information, "<</Title " + pdf::textString(pages.front().list->notes.title) + " /Producer " +
                               pdf::textString("tolmex") + ">>");
  objects.set(catalogue, "<</Type /Catalog /Pages " + reference(tree) + " /Outlines " + reference(outlines) +
                             (pages.size() > 1 ? " /PageMode /UseOutlines" : "") +
                             " /ViewerPreferences <</DisplayDocTitle true /PrintScaling /None>>" + layers.properties() +
                             ">>");
  return objects.file(catalogue, information);
}

}  // namespace host::picture
