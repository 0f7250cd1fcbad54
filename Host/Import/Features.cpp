#include "Import/Features.h"

#include <cpl_conv.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <set>
#include <system_error>

#include "Import/BaseMap.h"
#include "Import/Buildings.h"
#include "Import/Systems.h"
#include "Import/Values.h"
#include "Text/Text.h"

namespace host::import {
namespace {

using Geometry = std::unique_ptr<OGRGeometry>;

constexpr double kThin = 0.02;                         // metres: corners nearer to a line than that go
constexpr double kLowestFloor = 2, kHighestFloor = 8;  // metres a floor: outside them data are doubtful
constexpr int kArcSegments = 4;                        // of a quarter of a buffer's round end

/// Calls `take` with every line in a geometry; rings of polygons are lines too.
template <class Take>
void forEachLine(const OGRGeometry& geometry, const Take& take) {
  const OGRwkbGeometryType type = wkbFlatten(geometry.getGeometryType());
  if (type == wkbLineString || type == wkbLinearRing) {
    take(*geometry.toSimpleCurve());
  } else if (type == wkbPolygon) {
    for (const OGRLinearRing* ring : *geometry.toPolygon()) take(*static_cast<const OGRSimpleCurve*>(ring));
  } else if (OGR_GT_IsSubClassOf(type, wkbGeometryCollection) != FALSE) {
    for (const OGRGeometry* part : *geometry.toGeometryCollection()) forEachLine(*part, take);
  }
}

/// To the second decimal: measures of map data are no better.
std::string rounded(double value) { return shown(std::round(value * 100) / 100); }

/// "a"=>"b","c"=>"d": the tags that the reader of OpenStreetMap files keeps together.
std::string tagOf(std::string_view all, std::string_view name) {
  const std::string mark = "\"" + std::string(name) + "\"=>\"";
  const std::size_t at = all.find(mark);
  if (at == std::string_view::npos || (at > 0 && all[at - 1] != ',')) return {};
  std::string value;
  for (std::size_t i = at + mark.size(); i < all.size() && all[i] != '"'; ++i) {
    if (all[i] == '\\' && i + 1 < all.size()) ++i;
    value += all[i];
  }
  return value;
}

/// A source as GDAL's readers can take it: base maps from memory, with one place for each thing; others as they are.
class BaseMapFile {
 public:
  explicit BaseMapFile(const std::filesystem::path& source) : name_(source.string()) {
    std::ifstream stream(source, std::ios::binary);
    constexpr std::size_t kBeginning = 4096;
    text_.resize(kBeginning);
    stream.read(text_.data(), kBeginning);
    text_.resize(static_cast<std::size_t>(stream.gcount()));
    if (!isBaseMap(text_)) return;
    text_.append(std::istreambuf_iterator<char>(stream), {});
    text_ = withOnePlaceEach(text_);
    isInMemory_ = true;
    name_ = "/vsimem/tolmex/" + source.stem().string() + ".gml";
    VSIFCloseL(VSIFileFromMemBuffer(name_.c_str(), reinterpret_cast<GByte*>(text_.data()), text_.size(), FALSE));
  }
  ~BaseMapFile() {
    if (isInMemory_) VSIUnlink(name_.c_str());
  }
  BaseMapFile(const BaseMapFile&) = delete;
  BaseMapFile& operator=(const BaseMapFile&) = delete;
  const char* name() const { return name_.c_str(); }

 private:
  std::string name_, text_;
  bool isInMemory_ = false;
};

class FeatureReader {
 public:
  FeatureReader(const ImportCall& call, const ElementTable& table, const Rules& rules)
      : call_(call), table_(table), rules_(rules) {}

  Result<Features> read() {
    GDALAllRegister();
    CPLSetErrorHandler([](CPLErr, CPLErrorNum, const char*) {});  // what fails is told by the calls that fail
    CPLSetConfigOption("OGR_GEOMETRY_ACCEPT_UNCLOSED_RING", "NO");
    CPLSetConfigOption("OGR_ARC_STEPSIZE", "11.25");
    CPLSetConfigOption("GML_FIELDTYPES", "ALWAYS_STRING");  // codes such as 011 are no numbers
    const std::filesystem::path osm = call_.rules.parent_path() / "osmconf.ini";
    if (std::filesystem::exists(osm)) CPLSetConfigOption("OSM_CONFIG_FILE", osm.c_str());
    if (!call_.system.empty()) {
      Result<OGRSpatialReference> system = systemOfName(call_.system);
      if (!system) return system;
      target_ = std::move(*system);
    }
    for (const std::filesystem::path& source : call_.sources) {
      if (Result<> taken = readSource(source); !taken) return taken;
    }
    sortOut(buildings_, leftOut_, done_);
    for (Building& building : buildings_) {
      batchOf(*building.element, {{"floors", rounded(building.floors)}})
          .areas.push_back({std::move(building.shape), building.roof});
    }
    merge();
    return finished();
  }

 private:
  Problem unreadable(const std::filesystem::path& source, const std::string& why) const {
    return problemOf(Code::DrawingUnreadable, source.string(), why);
  }

  Result<> readSource(const std::filesystem::path& source) {
    // GDAL takes other names, too: of databases, of addresses in the net. Here they are files and folders.
    std::error_code failure;
    if (!std::filesystem::exists(source, failure)) {
      if (!failure) failure = std::make_error_code(std::errc::no_such_file_or_directory);
      return unreadable(source, "cannot be opened: " + failure.message());
    }
    CPLErrorReset();
    const BaseMapFile baseMap(source);
    const char* const kOpenOptions[] = {"WRITE_GFS=NO", nullptr};  // nothing is left beside the source
    const std::unique_ptr<GDALDataset, void (*)(GDALDataset*)> data(
        GDALDataset::Open(baseMap.name(), GDAL_OF_VECTOR | GDAL_OF_READONLY, nullptr, kOpenOptions),
        [](GDALDataset* each) { GDALClose(each); });
    if (data == nullptr) {
      const std::string why = CPLGetLastErrorMsg();
      return unreadable(source, "is no map data that can be read" + (why.empty() ? "" : ": " + why));
    }
    if (data->GetLayerCount() == 0) return unreadable(source, "has no layer");
    OGRLayer* layer = nullptr;
    const std::size_t before = count_;
    data->ResetReading();
    while (OGRFeature* const next = data->GetNextFeature(&layer, nullptr, nullptr, nullptr)) {
      const OGRFeatureUniquePtr feature(next);
      ++count_;
      if (layer_ != layer && !begin(*layer, *feature, source)) return takeProblem();
      take(*feature, layer->GetName());
    }
    layer_ = nullptr;
    sources_.push_back(source.filename().string() + ": " + std::to_string(count_ - before) + " features");
    return {};
  }

  Result<> takeProblem() { return *problem_; }

  /// Another layer of the source: its coordinates.
  bool begin(OGRLayer& layer, const OGRFeature& first, const std::filesystem::path& source) {
    layer_ = &layer;
    axes_.reset();
    transformation_.reset();
    OGRSpatialReference own;
    if (const OGRSpatialReference* const told = layer.GetSpatialRef()) {
      own = *told;
    } else if (!rules_.system.empty()) {
      Result<OGRSpatialReference> system = systemOfName(rules_.system);
      if (!system) {
        problem_ = system.problem();
        return false;
      }
      own = *system;
    } else {
      problem_ = unreadable(source, "does not tell its coordinate system; put it into the rules as \"system\"");
      return false;
    }
    own.AutoIdentifyEPSG();
    own.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    if (!target_) {
      if (own.IsProjected() != 0 && std::abs(own.GetLinearUnits() - 1) < 1e-9) {
        target_ = own;
      } else {
        OGREnvelope around;
        if (first.GetGeometryRef() != nullptr) first.GetGeometryRef()->getEnvelope(&around);
        target_ = systemOfPlace((around.MinX + around.MaxX) / 2, (around.MinY + around.MaxY) / 2);
      }
    }
    own_ = own;
    if (own.IsSame(&*target_) == 0) {
      transformation_.reset(OGRCreateCoordinateTransformation(&own, &*target_));
      if (transformation_ == nullptr) {
        problem_ = unreadable(source, "there is no way from its coordinate system to " + shownSystem(*target_));
        return false;
      }
    }
    return true;
  }

  Attributes attributesOf(const OGRFeature& feature) const {
    return [this, &feature](std::string_view name) -> std::string {
      const auto field = [&feature](const std::string& wanted) -> std::string {
        const int index = feature.GetFieldIndex(wanted.c_str());
        return index >= 0 && feature.IsFieldSetAndNotNull(index) != 0 ? feature.GetFieldAsString(index) : "";
      };
      if (std::string value = field(std::string(name)); !value.empty()) return value;
      if (!rules_.keyColumn.empty() && field(rules_.keyColumn) == name) return field(rules_.valueColumn);
      return tagOf(field("other_tags"), name);
    };
  }

  void take(const OGRFeature& feature, const std::string& layer) {
    const OGRGeometry* const own = feature.GetGeometryRef();
    if (own == nullptr || own->IsEmpty() != FALSE) {
      leftOut_.add("without a shape");
      return;
    }
    const Attributes attributes = attributesOf(feature);
    const auto fits = [&](const Rule& rule) {
      const bool isLayer =
          rule.layer.empty() || text::matchesWildcard(text::fromUtf8(layer), text::fromUtf8(rule.layer));
      return isLayer && holds(rule.where, attributes) && canBecome(*own, rule);
    };
    const auto rule = std::find_if(rules_.rules.begin(), rules_.rules.end(), fits);
    if (rule == rules_.rules.end()) {
      leftOut_.add("that no rule names");
      return;
    }
    if (rule->make.empty()) return leftOut_.add("that the rules leave out");
    Geometry geometry(own->getLinearGeometry());
    geometry->flattenTo2D();
    if (!bringHome(*geometry)) return leftOut_.add("outside the coordinate system");
    make(*rule, *table_.find(rule->make), std::move(geometry), attributes);
  }

  /// A point cannot become an area; a line can where it has a width.
  bool canBecome(const OGRGeometry& geometry, const Rule& rule) const {
    if (rule.make.empty()) return true;
    const int dimension = geometry.getDimension();
    switch (table_.find(rule.make)->shape) {
      case Shape::Area:
        return dimension == 2 || (dimension == 1 && !rule.width.empty());
      case Shape::Line:
        return dimension > 0;
      case Shape::Point:
        return dimension != 1 || rule.every > 0;
    }
    return false;
  }

  bool bringHome(OGRGeometry& geometry) {
    if (!axes_) {
      OGREnvelope around;
      geometry.getEnvelope(&around);
      axes_ = axisFaultOf(own_, around.MinX, around.MinY);
      if (axes_->isSwapped)
        warnings_.insert("northing came before easting in " + shownSystem(own_) + "; they are swapped");
      if (axes_->missingEasting != 0)
        warnings_.insert("eastings lacked the zone's number of " + shownSystem(own_) + "; it is put in front");
    }
    if (axes_->isSwapped) geometry.swapXY();
    if (axes_->missingEasting != 0) {
      struct Shift final : public OGRDefaultGeometryVisitor {
        double by = 0;
        using OGRDefaultGeometryVisitor::visit;
        void visit(OGRPoint* point) override { point->setX(point->getX() + by); }
      } shift;
      shift.by = axes_->missingEasting;
      geometry.accept(&shift);
    }
    return transformation_ == nullptr || geometry.transform(transformation_.get()) == OGRERR_NONE;
  }

  Batch& batchOf(const Element& element, std::map<std::string, std::string> values) {
    const std::string layer = filled(element.layer, values);
    auto& batch = batches_[{&element - table_.elements.data(), layer}];
    batch.element = &element;
    batch.layer = layer;
    batch.values = std::move(values);
    return batch;
  }

  bool isInWindow(const OGRGeometry& geometry) const {
    if (!call_.window) return true;
    OGREnvelope around, window;
    geometry.getEnvelope(&around);
    const auto& [x1, y1, x2, y2] = *call_.window;
    window.MinX = std::min(x1, x2), window.MaxX = std::max(x1, x2);
    window.MinY = std::min(y1, y2), window.MaxY = std::max(y1, y2);
    return window.Intersects(around) != FALSE;
  }

  Geometry clipped(Geometry geometry) const {
    if (!call_.window || geometry == nullptr) return geometry;
    const auto& [x1, y1, x2, y2] = *call_.window;
    OGRLinearRing ring;
    for (const auto& [x, y] : {std::pair(x1, y1), {x2, y1}, {x2, y2}, {x1, y2}, {x1, y1}}) ring.addPoint(x, y);
    OGRPolygon window;
    window.addRing(&ring);
    window.flattenTo2D();
    if (window.Contains(geometry.get()) != FALSE) return geometry;
    return Geometry(geometry->Intersection(&window));
  }

  void make(const Rule& rule, const Element& element, Geometry geometry, const Attributes& attributes) {
    if (!isInWindow(*geometry)) return leftOut_.add("outside the window");
    switch (element.shape) {
      case Shape::Area:
        return makeAreas(rule, element, std::move(geometry), attributes);
      case Shape::Line:
        return makeLines(rule, element, std::move(geometry), attributes);
      case Shape::Point:
        return makePoints(rule, element, *geometry, attributes);
    }
  }

  void makeAreas(const Rule& rule, const Element& element, Geometry geometry, const Attributes& attributes) {
    if (geometry->getDimension() < 2) {
      const std::optional<double> width = valueOf(rule.width, attributes);
      if (!width || !(*width > 0)) return leftOut_.add("lines without a width");
      geometry.reset(geometry->Buffer(*width / 2, kArcSegments));
      if (geometry == nullptr) return leftOut_.add("lines that have no band");
    } else if (geometry->IsValid() == FALSE) {
      geometry.reset(geometry->MakeValid());
      mended_.add("crossed or touched themselves");
      if (geometry == nullptr) return leftOut_.add("that could not be mended");
    }
    if (!element.keepsWhole) geometry = clipped(std::move(geometry));
    if (geometry == nullptr) return leftOut_.add("that could not be clipped");
    std::size_t made = 0, slivers = 0;
    forEachPolygon(*geometry, [&](const OGRPolygon& polygon) {
      if (isSliver(polygon)) {
        ++slivers;
        return;
      }
      if (element.keepsWhole) {
        buildings_.push_back(buildingOf(rule, element, polygon, attributes));
      } else {
        batchOf(element, {}).areas.push_back({std::unique_ptr<OGRPolygon>(polygon.clone()), {}});
      }
      ++made;
    });
    if (made == 0)
      leftOut_.add("smaller than " + rounded(kLeastArea) + " m2 or narrower than " + rounded(kLeastWidth) + " m");
  }

  Building buildingOf(const Rule& rule, const Element& element, const OGRPolygon& polygon,
                      const Attributes& attributes) {
    Building building;
    building.element = &element;
    building.shape.reset(polygon.clone());
    building.isPart = rule.isPart;
    building.roof = roofOf(rules_.roof, attributes);
    if (valueOf(rule.bottom, attributes).value_or(0) > 0)
      doubtful_.add("parts of buildings that begin above the ground; their shadows reach down to it");
    std::optional<double> floors;
    for (const auto* ways : {&rule.floors, &rules_.floors}) {
      for (const std::string& way : *ways) {
        if (!floors) floors = parseFloors(attributes(way));
        if (!floors && !attributes(way).empty())
          warnings_.insert("floors that are no number, as \"" + attributes(way) + "\"");
      }
    }
    std::optional<double> height = valueOf(rule.height, attributes);
    const Attributes withArea = [&](std::string_view name) {
      return name == "area" ? rounded(polygon.get_Area()) : attributes(name);
    };
    if (!height) height = valueOf(rules_.height, withArea);
    if (floors && height && *floors > 0 && (*height / *floors < kLowestFloor || *height / *floors > kHighestFloor))
      doubtful_.add("buildings whose floors would be lower than 2 m or higher than 8 m");
    if (floors) {
      known_.add("floors");
    } else if (height) {
      floors = std::round(*height / rules_.floorHeight);
      known_.add("heights");
    }
    building.hasFloors = floors.has_value();
    if (!floors) {
      const std::wstring use = text::fromUtf8(useOf(attributes));
      for (const auto& [pattern, by] : rules_.floorsByUse) {
        if (!floors && !use.empty() && text::matchesWildcard(use, text::fromUtf8(pattern))) floors = by;
      }
    }
    for (const AreaFloors& by : rules_.floorsByArea) {
      if (!floors && (by.below == 0 || polygon.get_Area() < by.below)) floors = by.floors;
    }
    constexpr double kMost = 200;
    building.floors = std::clamp(std::round(floors.value_or(1)), 1.0, kMost);
    return building;
  }

  /// The first of the attributes that tell what buildings are for.
  std::string useOf(const Attributes& attributes) const {
    for (std::size_t begin = 0; begin < rules_.use.size();) {
      const std::size_t end = std::min(rules_.use.find('|', begin), rules_.use.size());
      if (std::string use = attributes(rules_.use.substr(begin, end - begin)); !use.empty()) return use;
      begin = end + 1;
    }
    return {};
  }

  void makeLines(const Rule& rule, const Element& element, Geometry geometry, const Attributes& attributes) {
    std::map<std::string, std::string> values;
    if (element.layer.find("{height}") != std::string::npos) {
      constexpr double kHighestFence = 10;  // more is a height over the sea
      std::optional<double> height = valueOf(rule.height, attributes);
      if (height && (*height <= 0 || *height > kHighestFence)) height = valueOf({rule.height.back()}, attributes);
      if (!height) return leftOut_.add("fences without a height");
      values["height"] = rounded(*height);
    }
    geometry = clipped(std::move(geometry));
    if (geometry == nullptr) return leftOut_.add("that could not be clipped");
    forEachLine(*geometry, [&](const OGRSimpleCurve& line) {
      const Geometry thin(line.Simplify(kThin));
      const OGRSimpleCurve& kept = thin != nullptr && thin->IsEmpty() == FALSE ? *thin->toSimpleCurve() : line;
      std::vector<curves::Point2> points;
      points.reserve(static_cast<std::size_t>(std::max(kept.getNumPoints(), 0)));
      for (int i = 0; i < kept.getNumPoints(); ++i) points.push_back({kept.getX(i), kept.getY(i)});
      if (points.size() > 1) batchOf(element, values).lines.push_back(std::move(points));
    });
  }

  void makePoints(const Rule& rule, const Element& element, const OGRGeometry& geometry, const Attributes& attributes) {
    std::map<std::string, std::string> values;
    if (const std::optional<double> size = valueOf(rule.size, attributes)) values["size"] = rounded(*size);
    Batch& batch = batchOf(element, sizeClass(element, values));
    const auto add = [&](double x, double y) {
      OGRPoint point(x, y);
      if (isInWindow(point)) batch.points.push_back({x, y});
    };
    if (geometry.getDimension() == 0) {
      OGREnvelope place;
      geometry.getEnvelope(&place);
      return add(place.MinX, place.MinY);
    }
    if (rule.every > 0) {
      forEachLine(geometry, [&](const OGRSimpleCurve& line) {
        for (double along = 0; along <= line.get_Length(); along += rule.every) {
          OGRPoint point;
          line.Value(along, &point);
          add(point.getX(), point.getY());
        }
      });
      return;
    }
    OGRPoint middle;
    if (geometry.Centroid(&middle) == OGRERR_NONE) add(middle.getX(), middle.getY());
  }

  /// Sizes come in classes: the first whose limit the size does not exceed.
  std::map<std::string, std::string> sizeClass(const Element& element,
                                               std::map<std::string, std::string> values) const {
    const std::optional<double> size = parseMeasure(values["size"]);
    values.erase("size");
    if (element.layer.find("{size}") == std::string::npos) return values;
    if (table_.sizes.empty()) return values;
    const auto fits = [&size](const ElementTable::SizeClass& each) { return size.value_or(0) <= each.most; };
    auto found = std::find_if(table_.sizes.begin(), table_.sizes.end(), fits);
    if (found == table_.sizes.end()) --found;
    values["size"] = found->size;
    values["button"] = found->button;
    return values;
  }

  // ---- all together -------------------------------------------------------------------------------------------------

  void merge() {
    for (auto& entry : batches_) {
      Batch& batch = entry.second;
      if (batch.areas.size() > 1 && batch.element->mayMerge) {
        OGRMultiPolygon all;
        for (Area& area : batch.areas) all.addGeometryDirectly(area.shape.release());
        const Geometry whole(all.UnionCascaded());
        batch.areas.clear();
        if (whole != nullptr) {
          forEachPolygon(*whole, [&batch](const OGRPolygon& part) {
            batch.areas.push_back({std::unique_ptr<OGRPolygon>(part.clone()), {}});
          });
        }
      }
      for (Area& area : batch.areas) thin(area.shape);
      std::erase_if(batch.areas, [](const Area& area) { return area.shape == nullptr || isSliver(*area.shape); });
    }
  }

  static void thin(std::unique_ptr<OGRPolygon>& area) {
    const Geometry less(area->SimplifyPreserveTopology(kThin));
    if (less == nullptr || wkbFlatten(less->getGeometryType()) != wkbPolygon || less->IsEmpty() != FALSE) return;
    area.reset(less->toPolygon()->clone());
    for (int hole = area->getNumInteriorRings() - 1; hole >= 0; --hole) {
      if (area->getInteriorRing(hole)->get_Area() < kLeastArea) area->removeRing(hole + 1);
    }
  }

  Result<Features> finished() {
    Features features;
    std::size_t made = 0;
    for (auto& [key, batch] : batches_) {
      made += batch.areas.size() + batch.lines.size() + batch.points.size();
      if (!batch.areas.empty() || !batch.lines.empty() || !batch.points.empty())
        features.batches.push_back(std::move(batch));
    }
    if (made == 0)
      return problemOf(Code::DrawingUnreadable, call_.sources.front().string(),
                       count_ == 0 ? "has no features" : "nothing of it fits the rules" + because());
    features.system = shownSystem(*target_);
    features.report = sources_;
    features.report.push_back("system: " + features.system);
    if (!known_.all().empty()) {
      std::string line = "known of buildings:";
      for (const auto& [what, count] : known_.all()) line += " " + std::to_string(count) + " " + what;
      features.report.push_back(line);
    }
    for (const auto& [what, count] : mended_.all())
      features.report.push_back(std::to_string(count) + " mended: " + what);
    for (const auto& [what, count] : done_.all()) features.report.push_back(std::to_string(count) + " " + what);
    if (!leftOut_.all().empty()) features.report.push_back("left out" + because());
    for (const auto& [what, count] : doubtful_.all()) features.warnings.push_back(std::to_string(count) + " " + what);
    features.warnings.insert(features.warnings.end(), warnings_.begin(), warnings_.end());
    return features;
  }

  /// ": 12 outside the window, 3 that no rule names".
  std::string because() const {
    std::string text;
    for (const auto& [what, count] : leftOut_.all())
      text += (text.empty() ? ": " : ", ") + std::to_string(count) + " " + what;
    return text;
  }

  const ImportCall& call_;
  const ElementTable& table_;
  const Rules& rules_;
  std::optional<OGRSpatialReference> target_;
  OGRSpatialReference own_;
  std::unique_ptr<OGRCoordinateTransformation> transformation_;
  std::optional<AxisFault> axes_;  // of the layer, once a shape was seen
  const OGRLayer* layer_ = nullptr;
  std::optional<Problem> problem_;
  std::map<std::pair<std::ptrdiff_t, std::string>, Batch> batches_;
  std::vector<Building> buildings_;  // until they are sorted out
  std::size_t count_ = 0;
  std::vector<std::string> sources_;
  Tally leftOut_, mended_, known_, doubtful_, done_;
  std::set<std::string> warnings_;
};

}  // namespace

Result<Features> readFeatures(const ImportCall& call, const ElementTable& table, const Rules& rules) {
  return FeatureReader(call, table, rules).read();
}

}  // namespace host::import
