#include "Editor/Editing/Motion.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"

namespace host::editor {

using database::coordinate;
using database::DxfType;
using database::ObjectAxes;
using database::Slot;
using database::Tag;

Motion Motion::shift(const AcGeVector3d& by) {
  Motion motion;
  motion.shift_ = by;
  return motion;
}

Motion Motion::turn(const AcGePoint3d& about, double degrees) {
  Motion motion;
  motion.about_ = about;
  motion.degrees_ = std::fmod(degrees, 360.0);
  // Sine and cosine of the rounded pi/2 would leave crumbs in the drawing.
  const double quarter = motion.degrees_ / 90;
  if (quarter == std::floor(quarter)) {
    static constexpr int kCos[] = {1, 0, -1, 0};
    static constexpr int kSin[] = {0, 1, 0, -1};
    const auto index = static_cast<std::size_t>((static_cast<int>(quarter) % 4 + 4) % 4);
    motion.cos_ = kCos[index];
    motion.sin_ = kSin[index];
  } else {
    const double radians = motion.degrees_ * std::numbers::pi / 180;
    motion.cos_ = std::cos(radians);
    motion.sin_ = std::sin(radians);
  }
  return motion;
}

AcGeVector3d Motion::operator()(const AcGeVector3d& direction) const {
  if (!turns()) return direction;
  return {direction.x * cos_ - direction.y * sin_, direction.x * sin_ + direction.y * cos_, direction.z};
}

AcGePoint3d Motion::operator()(const AcGePoint3d& point) const {
  return turns() ? about_ + (*this)(point - about_) + shift_ : point + shift_;
}

namespace {

enum class What {
  World,      // a point
  Flat,       // a point in object coordinates, the third of which may be the elevation
  Direction,  // a vector
  Normal,     // the extrusion direction
  Angle,      // degrees, in object coordinates
  Elevation,  // a number: height above the plane through the origin
};

struct Rule {
  int code;
  What what;
  bool isOnce = false;  // later tags of the code mean something else
};

// What the codes of each kind mean, from the DXF reference.
constexpr Rule kEnds[] = {{10, What::World}, {11, What::World}, {210, What::Normal}};
constexpr Rule kPoint[] = {{10, What::World}, {50, What::Angle}, {210, What::Normal}};
constexpr Rule kLight[] = {{10, What::Flat}, {38, What::Elevation}, {210, What::Normal}};
constexpr Rule kOldPolyline[] = {{30, What::Elevation}, {210, What::Normal}};
constexpr Rule kVertex2d[] = {{10, What::Flat}, {50, What::Angle}};
constexpr Rule kVertex[] = {{10, What::World}};
constexpr Rule kArc[] = {{10, What::Flat}, {50, What::Angle}, {51, What::Angle}, {210, What::Normal}};
constexpr Rule kEllipse[] = {{10, What::World}, {11, What::Direction}, {210, What::Normal}};
constexpr Rule kSpline[] = {
    {10, What::World}, {11, What::World}, {12, What::Direction}, {13, What::Direction}, {210, What::Normal}};
constexpr Rule kText[] = {{10, What::Flat}, {11, What::Flat}, {50, What::Angle}, {210, What::Normal}};
constexpr Rule kMText[] = {{10, What::World}, {11, What::Direction}, {50, What::Angle}, {210, What::Normal}};
constexpr Rule kMTextColumns[] = {{10, What::Direction}, {11, What::World}};  // in the object embedded in a text
constexpr Rule kSolid[] = {{10, What::Flat}, {11, What::Flat}, {12, What::Flat}, {13, What::Flat}, {210, What::Normal}};
constexpr Rule kFace[] = {{10, What::World}, {11, What::World}, {12, What::World}, {13, What::World}};
constexpr Rule kInsert[] = {{10, What::Flat}, {50, What::Angle}, {210, What::Normal}};
constexpr Rule kDimension[] = {{10, What::World}, {11, What::Flat}, {13, What::World}, {14, What::World},
                               {15, What::World}, {16, What::Flat}, {50, What::Angle}, {210, What::Normal}};
constexpr Rule kLeader[] = {
    {10, What::World}, {210, What::Normal}, {211, What::Direction}, {212, What::Direction}, {213, What::Direction}};
constexpr Rule kMultiline[] = {
    {10, What::World}, {11, What::World}, {12, What::Direction}, {13, What::Direction}, {210, What::Normal}};
constexpr Rule kImage[] = {{10, What::World}, {11, What::Direction}, {12, What::Direction}};
constexpr Rule kRay[] = {{10, What::World}, {11, What::Direction}};
constexpr Rule kTolerance[] = {{10, What::World}, {11, What::Direction}, {210, What::Normal}};
constexpr Rule kTable[] = {{10, What::World, true}, {11, What::Direction, true}, {210, What::Normal, true}};
constexpr Rule kExtendedData[] = {{1011, What::World}, {1012, What::Direction}, {1013, What::Direction}};

bool isNamed(const Slot& entity, std::initializer_list<std::string_view> names) {
  if (entity.type < DxfType::FirstOther) return false;
  const std::string_view own = entity.database().typeName(entity);
  return std::ranges::find(names, own) != names.end();
}

bool isDimension(const Slot& entity) {
  return entity.type == DxfType::Dimension || isNamed(entity, {"ARC_DIMENSION", "LARGE_RADIAL_DIMENSION"});
}

std::span<const Rule> rulesOf(const Slot& entity) {
  switch (entity.type) {
    case DxfType::Line:
      return kEnds;
    case DxfType::Point:
      return kPoint;
    case DxfType::LwPolyline:
      return kLight;
    case DxfType::Polyline2d:
      return kOldPolyline;
    case DxfType::Vertex2d:
      return kVertex2d;
    case DxfType::Vertex3d:
    case DxfType::VertexOther:
    case DxfType::Mesh:
    case DxfType::Viewport:
      return kVertex;
    case DxfType::Circle:
    case DxfType::Arc:
      return kArc;
    case DxfType::Ellipse:
      return kEllipse;
    case DxfType::Spline:
      return kSpline;
    case DxfType::Text:
    case DxfType::Attrib:
    case DxfType::AttDef:
      return kText;
    case DxfType::MText:
      return kMText;
    case DxfType::Solid:
    case DxfType::Trace:
      return kSolid;
    case DxfType::Face3d:
      return kFace;
    case DxfType::Insert:
    case DxfType::Shape:
      return kInsert;
    case DxfType::Dimension:
      return kDimension;
    case DxfType::Leader:
      return kLeader;
    case DxfType::MLine:
      return kMultiline;
    case DxfType::Image:
    case DxfType::Wipeout:
      return kImage;
    case DxfType::XLine:
    case DxfType::Ray:
      return kRay;
    case DxfType::Tolerance:
      return kTolerance;
    case DxfType::Table:
      return kTable;
    default:
      if (isDimension(entity)) return kDimension;
      if (isNamed(entity, {"HELIX"})) return kSpline;
      return {};
  }
}

/// Where a tag that says how far something is turned goes when it is missing: behind the point of this code; 0:
/// nowhere.
int placeOfAngle(const Slot& entity) {
  switch (entity.type) {
    case DxfType::Text:
    case DxfType::Attrib:
    case DxfType::AttDef:
    case DxfType::MText:
    case DxfType::Insert:
    case DxfType::Shape:
      return 10;
    default:
      return 0;
  }
}

/// A face of a mesh is a vertex without a place.
bool isFaceRecord(const Slot& vertex) {
  constexpr std::int64_t kFaceOrMesh = 128, kMesh = 64;
  Tag tag;
  for (database::TagCursor tags = vertex.tags(); tags.next(tag) && tag.code < 1000;) {
    if (tag.code == 70) return (tag.integer() & kFaceOrMesh) != 0 && (tag.integer() & kMesh) == 0;
  }
  return false;
}

/// The tags of one record while they are changed.
class TagMover {
 public:
  TagMover(const Slot& entity, const Motion& motion, const AcGeVector3d& normal)
      : entity_(entity),
        motion_(motion),
        before_(normal),
        after_(motion(before_.az)),
        out_(entity.database().tagWriter()) {
    Tag tag;
    for (database::TagCursor cursor = entity.tags(); cursor.next(tag);) tags_.push_back(tag);
    spelled_.resize(tags_.size());
    // Elevations stand before or behind the points that they hold for.
    if (entity.type == DxfType::LwPolyline) {
      for (const Tag& each : tags_) {
        if (each.code == 38) elevation_ = coordinate(each);
      }
    }
  }

  std::string moved() {
    if (entity_.type == DxfType::Hatch) {
      moveHatch();
    } else if (entity_.type == DxfType::MultiLeader) {
      moveMultiLeader();
    } else if (!(entity_.type == DxfType::VertexOther && isFaceRecord(entity_))) {
      moveByRules();
    }
    for (std::size_t i = dataBegin(); i < tags_.size(); ++i) applyRule(kExtendedData, i);
    for (std::size_t i = 0; i < tags_.size(); ++i) {
      out_.bytes(spelled_[i] ? std::string_view(*spelled_[i]) : tags_[i].bytes);
    }
    return out_.take();
  }

 private:
  std::size_t dataBegin() const {
    std::size_t i = 0;
    while (i < tags_.size() && tags_[i].code < 1000) ++i;
    return i;
  }

  // ---- values ----

  void spell(std::size_t at, double value) {
    if (!std::isfinite(value) || value == coordinate(tags_[at])) return;
    spelled_[at] = entity_.database().tagWriter().real(tags_[at].code, value).take();
  }

  /// The tag of a code next to another one; nothing when it is missing.
  std::optional<std::size_t> beside(std::size_t at, int code) const {
    for (std::size_t i = at + 1; i < std::min(at + 4, tags_.size()); ++i) {
      if (tags_[i].code == code) return i;
      if (tags_[i].code == tags_[at].code) break;
    }
    return std::nullopt;
  }

  struct Places {
    std::size_t x = 0;
    std::optional<std::size_t> y, z;
  };
  Places placesOf(std::size_t at, int step = 10) const {
    const int code = tags_[at].code;
    return {at, beside(at, code + step), step == 10 ? beside(at, code + 20) : std::nullopt};
  }
  AcGePoint3d pointAt(const Places& places, double height = 0) const {
    return {coordinate(tags_[places.x]), places.y ? coordinate(tags_[*places.y]) : 0,
            places.z ? coordinate(tags_[*places.z]) : height};
  }
  void spell(const Places& places, const AcGePoint3d& point) {
    spell(places.x, point.x);
    if (places.y) spell(*places.y, point.y);
    if (places.z) spell(*places.z, point.z);
  }

  AcGePoint3d flatMoved(const AcGePoint3d& point) const {
    if (before_.isWorld()) return motion_(point);
    return after_.fromWorld(motion_(before_.toWorld(point.x, point.y, point.z)));
  }
  AcGeVector3d flatTurned(const AcGeVector3d& direction) const {
    if (before_.isWorld()) return motion_(direction);
    const AcGeVector3d world = motion_(before_.ax * direction.x + before_.ay * direction.y + before_.az * direction.z);
    return {world.dotProduct(after_.ax), world.dotProduct(after_.ay), world.dotProduct(after_.az)};
  }
  double angleMoved(double degrees) const {
    if (!motion_.turns()) return degrees;
    double turned = degrees + motion_.degrees();
    if (!before_.isWorld()) {
      const double radians = degrees * std::numbers::pi / 180;
      const AcGeVector3d direction = flatTurned({std::cos(radians), std::sin(radians), 0});
      turned = std::atan2(direction.y, direction.x) * 180 / std::numbers::pi;
    }
    turned = std::fmod(turned, 360.0);
    return turned < 0 ? turned + 360 : turned;
  }

  void apply(What what, std::size_t at) {
    switch (what) {
      case What::World:
        spell(placesOf(at), motion_(pointAt(placesOf(at))));
        break;
      case What::Flat:
        spell(placesOf(at), flatMoved(pointAt(placesOf(at), elevation_)));
        break;
      case What::Direction:
      case What::Normal:
        spell(placesOf(at), AcGePoint3d() + motion_(pointAt(placesOf(at)).asVector()));
        break;
      case What::Angle:
        spell(at, angleMoved(coordinate(tags_[at])));
        break;
      case What::Elevation:
        spell(at, flatMoved({0, 0, coordinate(tags_[at])}).z);
        break;
    }
  }

  bool applyRule(std::span<const Rule> rules, std::size_t at) {
    for (const Rule& rule : rules) {
      if (rule.code != tags_[at].code) continue;
      if (rule.isOnce && std::exchange(met_[rule.code % 256], true)) return false;
      apply(rule.what, at);
      return true;
    }
    return false;
  }

  // ---- kinds ----

  void moveByRules() {
    std::span<const Rule> rules = rulesOf(entity_);
    bool inGroup = false, hasAngle = false, hasElevation = false;
    std::optional<std::size_t> angleBehind, firstPoint;
    const int place = placeOfAngle(entity_);
    bool isEmbedded = false;
    for (std::size_t i = 0; i < dataBegin(); ++i) {
      const Tag& tag = tags_[i];
      if (tag.code == 102) inGroup = tag.trimmed() != "}";
      if (inGroup) continue;
      if (tag.code == 101) {
        isEmbedded = true;
        rules = entity_.type == DxfType::MText ? std::span<const Rule>(kMTextColumns) : std::span<const Rule>(kRay);
      }
      if (!isEmbedded) {
        hasAngle = hasAngle || tag.code == 50 || (tag.code == 11 && entity_.type == DxfType::MText);
        hasElevation = hasElevation || tag.code == 38;
        if (tag.code == 10 && !firstPoint) firstPoint = i;
        if (place != 0 && tag.code == place && !angleBehind) {
          const Places places = placesOf(i);
          angleBehind = places.z.value_or(places.y.value_or(i));
        }
      }
      if (isDimension(entity_) && tag.code == 12 && !isEmbedded) {
        moveCopyPlace(i);
      } else {
        applyRule(rules, i);
      }
    }
    if (motion_.turns() && !hasAngle && angleBehind) addBehind(*angleBehind, 50, angleMoved(0));
    if (isDimension(entity_)) finishDimension();
    if (entity_.type == DxfType::LwPolyline && !hasElevation && firstPoint) {
      const double height = flatMoved({0, 0, 0}).z;
      if (height != 0) addBefore(*firstPoint, 38, height);
    }
  }

  void addBehind(std::size_t at, int code, double value) {
    if (!spelled_[at]) spelled_[at] = tags_[at].bytes;
    *spelled_[at] += entity_.database().tagWriter().real(code, value).str();
  }
  void addBefore(std::size_t at, int code, double value) {
    std::string tag = entity_.database().tagWriter().real(code, value).take();
    spelled_[at] = tag.append(spelled_[at] ? std::string_view(*spelled_[at]) : tags_[at].bytes);
  }

  /// A dimension's block is drawn in world coordinates, moved by this vector.
  void moveCopyPlace(std::size_t at) {
    hasCopyPlace_ = true;
    if (!motion_.turns()) spell(placesOf(at), motion_(pointAt(placesOf(at))));
  }

  /// What is turned loses its block: it is drawn anew from its points.
  void finishDimension() {
    constexpr int kKinds = 7, kLinear = 0;
    std::optional<std::size_t> behind, name, lastPoint;
    bool isDimensionPart = false, hasAngle = false, isLinear = false;
    for (std::size_t i = 0; i < dataBegin(); ++i) {
      const Tag& tag = tags_[i];
      if (tag.code == 100) isDimensionPart = tag.trimmed() == "AcDbDimension";
      if (tag.code == 2 && !name && isDimensionPart) name = i;
      if (tag.code == 70 && isDimensionPart) isLinear = (tag.integer() & kKinds) == kLinear;
      if (tag.code == 50) hasAngle = true;
      if (tag.code == 10 && !behind) behind = placesOf(i).z.value_or(i);
      if (tag.code == 14) lastPoint = placesOf(i).z.value_or(i);
    }
    if (motion_.turns()) {
      if (name) spelled_[*name].emplace();
      if (isLinear && !hasAngle && lastPoint) addBehind(*lastPoint, 50, angleMoved(0));
    } else if (!hasCopyPlace_ && behind) {
      const AcGePoint3d place = motion_(AcGePoint3d());
      addBehind(*behind, 12, place.x);
      addBehind(*behind, 22, place.y);
      addBehind(*behind, 32, place.z);
    }
  }

  void moveHatch() {
    enum class Part { Front, Head, Loops, Pattern, Seeds } part = Part::Front;
    bool isPolyline = false;
    int edge = 0;
    constexpr int kArcEdge = 2, kEllipseEdge = 3;
    constexpr int kPolylineBit = 2;
    std::optional<std::size_t> height;
    for (std::size_t i = 0; i < dataBegin(); ++i) {
      const Tag& tag = tags_[i];
      if (part == Part::Front) {
        if (tag.code == 100 && tag.trimmed() == "AcDbHatch") part = Part::Head;
        continue;
      }
      if (part == Part::Head) {
        if (tag.code == 30 && !height) {
          height = i;
          elevation_ = coordinate(tag);
        }
        if (tag.code == 210) apply(What::Normal, i);
        if (tag.code == 91) part = Part::Loops;
        continue;
      }
      if (tag.code == 75) part = Part::Pattern;
      if (tag.code == 98) part = Part::Seeds;
      if (part == Part::Loops) {
        if (tag.code == 92) isPolyline = (tag.integer() & kPolylineBit) != 0;
        if (tag.code == 72 && !isPolyline) edge = static_cast<int>(tag.integer());
        if (isPolyline) edge = 0;
        const bool isVector = edge == kEllipseEdge ? tag.code == 11 : tag.code == 12 || tag.code == 13;
        if (isVector) {
          turnPlane(placesOf(i));
        } else if (tag.code == 10 || tag.code == 11) {
          movePlane(placesOf(i));
        } else if (edge == kArcEdge && (tag.code == 50 || tag.code == 51)) {
          moveEdgeAngle(i);
        }
      } else if (part == Part::Seeds && tag.code == 10) {
        movePlane(placesOf(i));
      } else if (tag.code == 52 || tag.code == 53) {
        apply(What::Angle, i);
      } else if (part == Part::Pattern && tag.code == 43) {
        movePlane(placesOf(i, 1));
      } else if (part == Part::Pattern && tag.code == 45) {
        turnPlane(placesOf(i, 1));
      } else if (tag.code == 460) {
        spell(i, tag.real() + motion_.degrees() * std::numbers::pi / 180);
      }
    }
    if (height) spell(*height, flatMoved({0, 0, elevation_}).z);
  }

  void movePlane(const Places& places) { spell(places, flatMoved(pointAt(places, elevation_))); }
  void turnPlane(const Places& places) { spell(places, AcGePoint3d() + flatTurned(pointAt(places).asVector())); }

  /// Clockwise arcs of hatches count their angles clockwise.
  void moveEdgeAngle(std::size_t at) {
    if (!motion_.turns()) return;
    bool isClockwise = false;
    for (std::size_t i = at + 1; i < tags_.size() && tags_[i].code != 72 && tags_[i].code != 97; ++i) {
      if (tags_[i].code != 73) continue;
      isClockwise = tags_[i].integer() == 0;
      break;
    }
    const double angle = coordinate(tags_[at]);
    // Both ends move by the same amount: what runs over a full turn goes on doing so.
    const double turn = angleMoved(0);
    spell(at, isClockwise ? angle - turn : angle + turn);
  }

  void moveMultiLeader() {
    enum class Part { Entity, Context, Leader, Line } part = Part::Entity;
    const double radians = motion_.degrees() * std::numbers::pi / 180;
    for (std::size_t i = 0; i < dataBegin(); ++i) {
      const Tag& tag = tags_[i];
      const bool opens = tag.trimmed().ends_with("{");
      switch (part) {
        case Part::Entity:
          if (tag.code == 300 && opens) part = Part::Context;
          break;
        case Part::Context:
          if (tag.code == 301) part = Part::Entity;
          if (tag.code == 302 && opens) part = Part::Leader;
          if (tag.code == 10 || tag.code == 12 || tag.code == 15 || tag.code == 110) apply(What::World, i);
          if (tag.code == 11 || tag.code == 13 || tag.code == 14 || tag.code == 111 || tag.code == 112)
            apply(What::Direction, i);
          if (tag.code == 42 || tag.code == 46) spell(i, tag.real() + radians);
          if (tag.code == 47) i = moveMatrix(i);
          break;
        case Part::Leader:
          if (tag.code == 303) part = Part::Context;
          if (tag.code == 304 && opens) part = Part::Line;
          if (tag.code == 10 || tag.code == 12 || tag.code == 13) apply(What::World, i);
          if (tag.code == 11) apply(What::Direction, i);
          break;
        case Part::Line:
          if (tag.code == 305) part = Part::Leader;
          if (tag.code == 10 || tag.code == 11 || tag.code == 12) apply(What::World, i);
          break;
      }
    }
  }

  /// Four rows of four; the last column is where the block stands. The last of its tags.
  std::size_t moveMatrix(std::size_t at) {
    constexpr std::size_t kSide = 4, kCells = kSide * kSide;
    if (at + kCells > tags_.size() || tags_[at + kCells - 1].code != 47) return at;
    const auto cell = [&](std::size_t row, std::size_t column) { return at + row * kSide + column; };
    for (std::size_t column = 0; column < kSide; ++column) {
      const AcGePoint3d former{coordinate(tags_[cell(0, column)]), coordinate(tags_[cell(1, column)]),
                               coordinate(tags_[cell(2, column)])};
      const bool isPlace = column + 1 == kSide;
      const AcGePoint3d now = isPlace ? motion_(former) : AcGePoint3d() + motion_(former.asVector());
      spell(cell(0, column), now.x);
      spell(cell(1, column), now.y);
      spell(cell(2, column), now.z);
    }
    return at + kCells - 1;
  }

  const Slot& entity_;
  const Motion& motion_;
  ObjectAxes before_, after_;
  database::TagWriter out_;
  std::vector<Tag> tags_;
  std::vector<std::optional<std::string>> spelled_;  // in place of the tag, empty when it goes
  double elevation_ = 0;
  bool hasCopyPlace_ = false;
  bool met_[256] = {};
};

}  // namespace

std::string_view cannotMove(const Slot& entity) {
  switch (entity.type) {
    case DxfType::Region:
    case DxfType::Solid3d:
    case DxfType::Body:
      return "its solid model cannot be moved";
    case DxfType::Proxy:
      return "a proxy cannot be moved";
    case DxfType::Hatch:
    case DxfType::MultiLeader:
    case DxfType::Polyline3d:
    case DxfType::PolygonMesh:
    case DxfType::PolyFaceMesh:
      return {};
    default:
      return rulesOf(entity).empty() ? "of a kind that cannot be moved" : std::string_view();
  }
}

AcGeVector3d normalOf(const Slot& entity) {
  AcGePoint3d normal{0, 0, 1};
  database::GeometryTags tags(entity.tags());
  for (Tag tag; tags.next(tag);) takePoint(tag, 210, normal);
  const bool isGiven = database::isUsable(normal) && normal.asVector().length() > 0;
  return isGiven ? normal.asVector() : AcGeVector3d::kZAxis;
}

std::string movedTags(const Slot& entity, const Motion& motion, const AcGeVector3d& normal) {
  const bool isVertex = entity.type == DxfType::Vertex2d;
  return TagMover(entity, motion, isVertex ? normal : normalOf(entity)).moved();
}

}  // namespace host::editor
