#include <algorithm>
#include <array>
#include <cmath>
#include <cwctype>

#include "Database/ObjectAccess.h"
#include "Hatching/Boundary.h"
#include "Hatching/HatchData.h"
#include "Hatching/Patterns.h"
#include "Text/Text.h"
#include "dbapserv.h"
#include "dbhatch.h"
#include "dbobjptr.h"

namespace {

using host::database::dataOf;
using host::database::dataToChange;
using host::hatching::HatchData;
using host::hatching::HatchLoop;
using host::hatching::Loop;
using host::hatching::LoopFault;
using host::hatching::LoopVertex;
using host::hatching::Pattern;
using host::hatching::PatternLine;
using host::hatching::Polygon;

constexpr std::size_t kMostPieces = 1'000'000;  // pattern lines and dashes of one hatch
constexpr double kDensityDetail = 1e-4;         // deviation of arcs while counting, of the loop's size

const HatchData& dataOf(const AcDbHatch& hatch) { return dataOf<HatchData>(hatch); }

constexpr host::database::LaterTags kGradient[] = {
    {"AcDbHatch", 450, 470, host::database::DrawingVersion::V2004},
    {"AcDbHatch", 63, 63, host::database::DrawingVersion::V2004},
};
constexpr host::database::CountedHandles kBoundaryObjects{97, 330};

const bool registered =
    host::database::registerClass({host::database::DxfType::Hatch, &AcDbHatch::desc,
                                   []() -> AcDbObject* { return new AcDbHatch; }, kGradient, kBoundaryObjects});

bool isMetric(const AcDbHatch& hatch) {
  const AcDbDatabase* db = hatch.database();
  if (db == nullptr && acdbHostApplicationServices() != nullptr) db = acdbHostApplicationServices()->workingDatabase();
  return db == nullptr || db->measurement() == AcDb::kMetric;
}

/// A user-defined pattern: one family of unbroken lines a unit apart.
Pattern parallelLines() {
  PatternLine line;
  line.offsetY = 1;
  return {"_USER", {}, {line}};
}

std::optional<Pattern> patternFor(const AcDbHatch& hatch, AcDbHatch::HatchPatternType type, const ACHAR* name) {
  switch (type) {
    case AcDbHatch::kUserDefined:
      return parallelLines();
    case AcDbHatch::kPreDefined:
      return host::hatching::findPattern(name, isMetric(hatch));
    case AcDbHatch::kCustomDefined:
      return host::hatching::findCustomPattern(name);
  }
  return std::nullopt;
}

std::wstring capitals(std::wstring_view name) {
  std::wstring upper(name);
  for (wchar_t& c : upper) c = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(c)));
  return upper;
}

/// What setting a pattern comes to.
struct PatternChoice {
  std::wstring name;  // capitals
  std::vector<PatternLine> lines;
  bool isSolid = false;
};

/// The choice for a hatch with the angle and scale that it has; null when the pattern is unknown, or nothing is left of
/// it at that scale. A command sets one pattern on hatch after hatch: the latest choices are remembered as long as
/// names find the same patterns.
const PatternChoice* choosePattern(const AcDbHatch& hatch, AcDbHatch::HatchPatternType type, const ACHAR* name) {
  struct Remembered {
    std::uint64_t memory = 0;
    AcDbHatch::HatchPatternType type = AcDbHatch::kPreDefined;
    std::wstring name;
    bool isMetric = false;
    double angleRad = 0, scale = 0;
    PatternChoice choice;
  };
  thread_local std::array<Remembered, 2> latest;
  const HatchData& data = dataOf(hatch);
  const double angleRad = data.content.angleRad;
  const double scale = data.content.scale;
  const std::uint64_t memory = host::hatching::patternMemoryNumber();
  const bool metric = isMetric(hatch);
  for (const Remembered& r : latest) {
    if (memory != 0 && r.memory == memory && r.type == type && r.isMetric == metric && r.angleRad == angleRad &&
        r.scale == scale && r.name == name) {
      return &r.choice;
    }
  }
  const std::optional<Pattern> pattern = patternFor(hatch, type, name);
  if (!pattern) return nullptr;
  std::vector<PatternLine> lines = scaledPattern(*pattern, angleRad, scale);
  if (lines.empty() && !pattern->families.empty()) return nullptr;
  std::swap(latest[0], latest[1]);
  latest[0] = {
      memory, type, name, metric, angleRad, scale, {capitals(name), std::move(lines), pattern->families.empty()}};
  return &latest[0].choice;
}

HatchLoop polylineLoop(Adesk::Int32 type, Loop loop) {
  HatchLoop made;
  made.type = type | AcDbHatch::kPolyline;
  made.vertices = std::move(loop);
  return made;
}

/// Makes every source tell the hatch of its changes. Those that cannot be written to leave the hatch as it was.
Acad::ErrorStatus linkSources(const AcDbObjectIdArray& sources, AcDbObjectId hatch) {
  for (const AcDbObjectId id : sources) {
    const AcDbObjectPointer<AcDbEntity> source(id, AcDb::kForWrite);
    if (source.openStatus() != Acad::eOk) return source.openStatus();
    if (source->hasPersistentReactor(hatch)) continue;
    const Acad::ErrorStatus status = source->addPersistentReactor(hatch);
    if (status != Acad::eOk) return status;
  }
  return Acad::eOk;
}

double sizeOf(const Polygon& polygon) {
  double size = 0;
  for (const auto& p : polygon) {
    size = std::max({size, std::abs(p.x - polygon.front().x), std::abs(p.y - polygon.front().y)});
  }
  return size;
}

}  // namespace

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbHatch, AcDbEntity)

AcDbHatch::AcDbHatch() {
  HostObjectAccess::initDetached(*this, "HATCH", true);
  if (detached_ != nullptr) HostObjectAccess::setData(*this, new HatchData);  // its own tags come from there
}

AcGeVector3d AcDbHatch::normal() const { return dataOf(*this).content.normal; }

Acad::ErrorStatus AcDbHatch::setNormal(const AcGeVector3d& normal) {
  const double size = normal.length();
  if (!std::isfinite(size) || size == 0) return Acad::eInvalidInput;
  HatchData* const data = dataToChange<HatchData>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->content.normal = size == 1 ? normal : normal.normal();
  return Acad::eOk;
}

double AcDbHatch::elevation() const { return dataOf(*this).content.elevation; }

Acad::ErrorStatus AcDbHatch::setElevation(double elevation) {
  if (!std::isfinite(elevation)) return Acad::eInvalidInput;
  HatchData* const data = dataToChange<HatchData>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->content.elevation = elevation;
  return Acad::eOk;
}

bool AcDbHatch::associative() const { return dataOf(*this).content.isAssociative; }

Acad::ErrorStatus AcDbHatch::setAssociative(bool associative) {
  HatchData* const data = dataToChange<HatchData>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->content.isAssociative = associative;
  if (!associative) {
    for (HatchLoop& loop : data->content.loops) loop.sources.clear();
  }
  return Acad::eOk;
}

AcDbHatch::HatchStyle AcDbHatch::hatchStyle() const {
  const int style = dataOf(*this).content.style;
  return style == kOuter || style == kIgnore ? static_cast<HatchStyle>(style) : kNormal;
}

Acad::ErrorStatus AcDbHatch::setHatchStyle(HatchStyle style) {
  HatchData* const data = dataToChange<HatchData>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->content.style = style;
  return Acad::eOk;
}

const ACHAR* AcDbHatch::patternName() const { return dataOf(*this).name.c_str(); }

AcDbHatch::HatchPatternType AcDbHatch::patternType() const {
  const int type = dataOf(*this).content.type;
  return type == kUserDefined || type == kCustomDefined ? static_cast<HatchPatternType>(type) : kPreDefined;
}

bool AcDbHatch::isSolidFill() const { return dataOf(*this).content.isSolid; }

double AcDbHatch::patternAngle() const { return dataOf(*this).content.angleRad; }

Acad::ErrorStatus AcDbHatch::setPatternAngle(double radians) {
  if (!std::isfinite(radians)) return Acad::eInvalidInput;
  HatchData* const data = dataToChange<HatchData>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->content.angleRad = radians;
  return Acad::eOk;
}

double AcDbHatch::patternScale() const { return dataOf(*this).content.scale; }

Acad::ErrorStatus AcDbHatch::setPatternScale(double scale) {
  if (!std::isfinite(scale) || scale <= 0) return Acad::eInvalidInput;
  HatchData* const data = dataToChange<HatchData>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->content.scale = scale;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPattern(HatchPatternType type, const ACHAR* name) {
  if (name == nullptr || *name == 0) return Acad::eInvalidInput;
  const PatternChoice* const choice = choosePattern(*this, type, name);
  if (choice == nullptr) return Acad::eInvalidInput;
  HatchData* const data = dataToChange<HatchData>(*this);
  if (data == nullptr) return Acad::eNotOpenForWrite;
  data->name = choice->name;
  data->content.type = type;
  data->content.isSolid = choice->isSolid;
  data->content.pattern = choice->lines;
  if (data->content.isGradient) {
    data->content.isGradient = false;  // a pattern takes the gradient's place
    data->content.gradientColors.clear();
    data->content.tail.clear();
  }
  return Acad::eOk;
}

int AcDbHatch::numPatternDefinitions() const { return static_cast<int>(dataOf(*this).content.pattern.size()); }

Acad::ErrorStatus AcDbHatch::getPatternDefinitionAt(int index, double& angle, double& baseX, double& baseY,
                                                    double& offsetX, double& offsetY, AcGeDoubleArray& dashes) const {
  if (index < 0 || index >= numPatternDefinitions()) return Acad::eInvalidIndex;
  const PatternLine& line = dataOf(*this).content.pattern[static_cast<std::size_t>(index)];
  angle = line.angleRad;
  baseX = line.baseX;
  baseY = line.baseY;
  offsetX = line.offsetX;
  offsetY = line.offsetY;
  dashes.removeAll();
  for (const double dash : line.dashes) dashes.append(dash);
  return Acad::eOk;
}

int AcDbHatch::numLoops() const { return static_cast<int>(dataOf(*this).content.loops.size()); }

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 loopType, const AcDbObjectIdArray& boundaries) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (associative() && objectId().isNull()) return Acad::eNotInDatabase;
  Loop loop;
  const Acad::ErrorStatus status = host::hatching::boundaryLoop(boundaries, normal(), loop);
  if (status != Acad::eOk) return status;
  HatchLoop made = polylineLoop(loopType, std::move(loop));
  if (associative()) {
    const Acad::ErrorStatus linked = linkSources(boundaries, objectId());
    if (linked != Acad::eOk) return linked;
    for (const AcDbObjectId id : boundaries) made.sources.push_back(static_cast<Adesk::UInt64>(id.handle()));
  }
  HatchData& data = *dataToChange<HatchData>(*this);
  data.content.loops.push_back(std::move(made));
  data.boundary = boundaries[0].slot();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 loopType, const AcGePoint2dArray& vertices,
                                        const AcGeDoubleArray& bulges) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (!bulges.isEmpty() && bulges.length() != vertices.length()) return Acad::eInvalidInput;
  std::vector<LoopVertex> points;
  points.reserve(static_cast<std::size_t>(vertices.length()));
  for (int i = 0; i < vertices.length(); ++i) {
    points.push_back({vertices[i].x, vertices[i].y, bulges.isEmpty() ? 0 : bulges[i]});
  }
  Loop loop;
  if (host::hatching::makeLoop(points, true, loop) != LoopFault::None) return Acad::eInvalidInput;
  dataToChange<HatchData>(*this)->content.loops.push_back(polylineLoop(loopType, std::move(loop)));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::evaluateHatch(bool /*underestimateNumLines*/) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  const HatchData& data = dataOf(*this);
  if (data.content.loops.empty() || !data.hasPattern()) return Acad::eInvalidInput;
  if (data.content.isSolid) return Acad::eOk;
  const HatchLoop& first = data.content.loops.front();
  const bool isPlain = data.content.loops.size() == 1 && first.isPolyline() && !first.isDamaged &&
                       std::all_of(first.vertices.begin(), first.vertices.end(),
                                   [](const LoopVertex& vertex) { return vertex.bulge == 0; });
  if (isPlain && host::hatching::fillsEasily(data.content.pattern, first.vertices, kMostPieces)) return Acad::eOk;
  std::vector<Polygon> area;
  for (const HatchLoop& loop : data.content.loops) {
    const Polygon rough = flatten(loop, INFINITY);
    if (!rough.empty()) area.push_back(flatten(loop, sizeOf(rough) * kDensityDetail));
  }
  switch (host::hatching::fillPattern(data.content.pattern, area, kMostPieces, [](const auto&) {})) {
    case host::hatching::FillOutcome::TooDense:
      if (data.boundary != nullptr)
        data.boundary->database().tellRefused(*data.boundary, host::database::WorkObserver::Refusal::Use,
                                              "too large for so dense a pattern");
      return Acad::eHatchTooDense;
    case host::hatching::FillOutcome::Degenerate:
      return Acad::eInvalidInput;
    case host::hatching::FillOutcome::Done:
      break;
  }
  return Acad::eOk;
}
