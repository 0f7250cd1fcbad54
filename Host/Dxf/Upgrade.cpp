#include "Dxf/Upgrade.h"

#include <algorithm>
#include <array>
#include <string>

namespace host::dxf {

using database::readTag;
using database::Tag;
using database::TagWriter;

namespace {

/// A class of an entity with the codes that stand behind its marker; without codes, whatever is left.
struct Part {
  std::string_view marker;
  std::array<int, 6> codes{};
};
struct EntityForm {
  std::string_view type;
  std::string_view newType;  // empty: the same
  std::array<Part, 3> parts;
};

constexpr EntityForm kForms[] = {
    {"LINE", "", {{{"AcDbLine"}}}},
    {"3DLINE", "LINE", {{{"AcDbLine"}}}},
    {"POINT", "", {{{"AcDbPoint"}}}},
    {"CIRCLE", "", {{{"AcDbCircle"}}}},
    {"ARC", "", {{{"AcDbCircle"}, {"AcDbArc", {50, 51}}}}},
    {"TRACE", "", {{{"AcDbTrace"}}}},
    {"SOLID", "", {{{"AcDbTrace"}}}},
    {"3DFACE", "", {{{"AcDbFace"}}}},
    {"TEXT", "", {{{"AcDbText"}, {"AcDbText", {73}}}}},
    {"ATTRIB", "", {{{"AcDbText"}, {"AcDbAttribute", {2, 70, 73, 74}}}}},
    {"ATTDEF", "", {{{"AcDbText"}, {"AcDbAttributeDefinition", {3, 2, 70, 73, 74}}}}},
    {"SHAPE", "", {{{"AcDbShape"}}}},
    {"INSERT", "", {{{"AcDbBlockReference"}}}},
    {"VIEWPORT", "", {{{"AcDbViewport"}}}},
    {"LWPOLYLINE", "", {{{"AcDbPolyline"}}}},
    {"ELLIPSE", "", {{{"AcDbEllipse"}}}},
    {"SPLINE", "", {{{"AcDbSpline"}}}},
    {"MTEXT", "", {{{"AcDbMText"}}}},
    {"HATCH", "", {{{"AcDbHatch"}}}},
    {"XLINE", "", {{{"AcDbXline"}}}},
    {"RAY", "", {{{"AcDbRay"}}}},
    {"LEADER", "", {{{"AcDbLeader"}}}},
    {"TOLERANCE", "", {{{"AcDbFcf"}}}},
    {"IMAGE", "", {{{"AcDbRasterImage"}}}},
    {"ENDBLK", "", {{{"AcDbBlockEnd"}}}},
    {"SEQEND", "", {}},
};

/// Dimensions by kind (tag 70, lowest three bits).
constexpr EntityForm kDimensionForms[] = {
    {"DIMENSION", "", {{{"AcDbDimension"}, {"AcDbAlignedDimension", {12, 13, 14, 50, 52}}, {"AcDbRotatedDimension"}}}},
    {"DIMENSION", "", {{{"AcDbDimension"}, {"AcDbAlignedDimension", {12, 13, 14, 50, 52}}}}},
    {"DIMENSION", "", {{{"AcDbDimension"}, {"AcDb2LineAngularDimension", {13, 14, 15, 16}}}}},
    {"DIMENSION", "", {{{"AcDbDimension"}, {"AcDbDiametricDimension", {15, 40}}}}},
    {"DIMENSION", "", {{{"AcDbDimension"}, {"AcDbRadialDimension", {15, 40}}}}},
    {"DIMENSION", "", {{{"AcDbDimension"}, {"AcDb3PointAngularDimension", {13, 14, 15, 16}}}}},
    {"DIMENSION", "", {{{"AcDbDimension"}, {"AcDbOrdinateDimension", {13, 14}}}}},
    {"DIMENSION", "", {{{"AcDbDimension"}}}},
};

constexpr std::array<std::string_view, 9> kTableRecordMarkers = {
    "AcDbViewportTableRecord",  "AcDbLinetypeTableRecord", "AcDbLayerTableRecord",
    "AcDbTextStyleTableRecord", "AcDbViewTableRecord",     "AcDbUCSTableRecord",
    "AcDbRegAppTableRecord",    "AcDbDimStyleTableRecord", "AcDbBlockTableRecord"};

constexpr int kCommonCodes[] = {67, 410, 8, 6, 62, 370, 48, 60};

bool isCommon(int code) {
  return std::find(std::begin(kCommonCodes), std::end(kCommonCodes), code) != std::end(kCommonCodes);
}

/// 10, 20 and 30 are one point: the first of the three names it.
int pointCode(int code) { return code >= 20 && code <= 39 ? 10 + code % 10 : code; }

std::int64_t integerOf(const RawRecord& record, int code) {
  const auto value = firstValue(record.bytes, code);
  Tag tag;
  tag.value = value.value_or("");
  return tag.integer();
}

/// A record's tags by where they go.
struct Sorted {
  std::vector<Tag> common, own, extended;
  bool hasLayer = false;
};

Sorted sorted(const RawRecord& record) {
  Sorted all;
  std::string_view rest = record.bytes;
  Tag tag;
  readTag(rest, tag);
  bool isInGroup = false;
  while (readTag(rest, tag)) {
    if (tag.code >= 1000) {
      all.extended.push_back(tag);
    } else if (tag.code == 102) {
      isInGroup = !tag.trimmed().empty() && tag.trimmed().front() == '{';
    } else if (isInGroup || tag.code == 100 || tag.code == 999 || tag.code == 5 || tag.code == 105 || tag.code == 330) {
      continue;
    } else if (isCommon(tag.code)) {
      all.hasLayer = all.hasLayer || tag.code == 8;
      all.common.push_back(tag);
    } else {
      all.own.push_back(tag);
    }
  }
  return all;
}

void writeHead(TagWriter& out, std::string_view type, Place2000 place, const Sorted& tags) {
  out.raw(0, type).handle(5, place.handle).handle(330, place.owner).raw(100, "AcDbEntity");
  if (!tags.hasLayer) out.raw(8, "0");
  for (const int code : kCommonCodes) {
    for (const Tag& tag : tags.common) {
      if (tag.code == code) out.bytes(tag.bytes);
    }
  }
}

const EntityForm* formOf(const RawRecord& record) {
  if (record.type == "DIMENSION") {
    constexpr std::int64_t kKindBits = 7;
    return &kDimensionForms[integerOf(record, 70) & kKindBits];
  }
  const auto* const found = std::find_if(std::begin(kForms), std::end(kForms),
                                         [&](const EntityForm& form) { return form.type == record.type; });
  return found != std::end(kForms) ? found : nullptr;
}

EntityForm vertexForm(std::int64_t flags, int polylineFlags) {
  constexpr int kFace = 128;
  constexpr int kMeshVertex = 64;
  constexpr int kMesh = 16;
  constexpr int kFlag3d = 32;
  constexpr int kPolyline3d = 8;
  if ((flags & kFace) != 0 && (flags & kMeshVertex) == 0) return {"VERTEX", "", {{{"AcDbFaceRecord"}}}};
  std::string_view own = "AcDb2dVertex";
  if ((polylineFlags & kMesh) != 0) {
    own = "AcDbPolygonMeshVertex";
  } else if ((flags & kMeshVertex) != 0) {
    own = "AcDbPolyFaceMeshVertex";
  } else if ((flags & kFlag3d) != 0 || (polylineFlags & kPolyline3d) != 0) {
    own = "AcDb3dPolylineVertex";
  }
  return {"VERTEX", "", {{{"AcDbVertex", {-1}}, {own}}}};
}

EntityForm polylineForm(std::int64_t flags) {
  constexpr int kPolyFace = 64;
  constexpr int kMesh = 16;
  constexpr int k3d = 8;
  std::string_view own = "AcDb2dPolyline";
  if ((flags & kPolyFace) != 0) {
    own = "AcDbPolyFaceMesh";
  } else if ((flags & kMesh) != 0) {
    own = "AcDbPolygonMesh";
  } else if ((flags & k3d) != 0) {
    own = "AcDb3dPolyline";
  }
  return {"POLYLINE", "", {{{own}}}};
}

bool isNamedBy(const Part& part, int code) {
  return std::find(part.codes.begin(), part.codes.end(), code) != part.codes.end();
}

/// Writes tags, with the elevation of old drawings (38) as the third coordinate that points then lacked.
void writeTags(TagWriter& out, const std::vector<const Tag*>& tags, std::optional<double> elevation) {
  for (std::size_t i = 0; i < tags.size(); ++i) {
    const Tag& tag = *tags[i];
    if (tag.code == 38 && elevation) continue;
    out.bytes(tag.bytes);
    const bool isY = tag.code >= 20 && tag.code <= 23;
    if (elevation && isY && (i + 1 == tags.size() || tags[i + 1]->code != tag.code + 10)) {
      out.real(tag.code + 10, *elevation);
    }
  }
}

void writeParts(TagWriter& out, const EntityForm* form, const Sorted& tags, std::optional<double> elevation) {
  if (form == nullptr) {
    std::vector<const Tag*> all;
    for (const Tag& tag : tags.own) all.push_back(&tag);
    writeTags(out, all, elevation);
    return;
  }
  // The first part that names no codes takes what no other part names.
  const Part* rest = nullptr;
  for (const Part& part : form->parts) {
    if (!part.marker.empty() && part.codes[0] == 0 && rest == nullptr) rest = &part;
  }
  for (const Part& part : form->parts) {
    if (part.marker.empty()) continue;
    out.raw(100, part.marker);
    std::vector<const Tag*> own;
    for (const Tag& tag : tags.own) {
      const int code = pointCode(tag.code);
      const bool isOfAnother = std::any_of(form->parts.begin(), form->parts.end(), [&](const Part& other) {
        return !other.marker.empty() && isNamedBy(other, code);
      });
      if (&part == rest ? !isOfAnother : isNamedBy(part, code)) own.push_back(&tag);
    }
    writeTags(out, own, elevation);
  }
}

}  // namespace

void upgradeEntity(TagWriter& out, const RawRecord& record, Place2000 place, int polylineFlags) {
  const Sorted tags = sorted(record);
  EntityForm made;
  const EntityForm* form = formOf(record);
  if (record.type == "VERTEX") {
    made = vertexForm(integerOf(record, 70), polylineFlags);
    form = &made;
  } else if (record.type == "POLYLINE") {
    made = polylineForm(integerOf(record, 70));
    form = &made;
  }
  const bool isRenamed = form != nullptr && !form->newType.empty();
  writeHead(out, isRenamed ? form->newType : record.type, place, tags);
  std::optional<double> elevation;
  if (record.type != "LWPOLYLINE" && record.type != "HATCH") {
    for (const Tag& tag : tags.own) {
      if (tag.code == 38) elevation = tag.real();
    }
  }
  const bool needsStyle = record.type == "DIMENSION" && !firstValue(record.bytes, 3);
  writeParts(out, form, tags, elevation);
  if (needsStyle) out.raw(3, "Standard");
  for (const Tag& tag : tags.extended) out.bytes(tag.bytes);
}

void upgradeBlock(TagWriter& out, const RawRecord& record, Place2000 place, std::string_view name) {
  const Sorted tags = sorted(record);
  writeHead(out, "BLOCK", place, tags);
  out.raw(100, "AcDbBlockBegin").raw(2, name).integer(70, integerOf(record, 70));
  double point[3] = {};
  std::string_view path;
  std::string_view description;
  for (const Tag& tag : tags.own) {
    if (tag.code == 10 || tag.code == 20 || tag.code == 30) point[tag.code / 10 - 1] = tag.real();
    if (tag.code == 1) path = tag.value;
    if (tag.code == 4) description = tag.value;
  }
  out.point(10, point[0], point[1], point[2]).raw(3, name).raw(1, path);
  if (!description.empty()) out.raw(4, description);
  for (const Tag& tag : tags.extended) out.bytes(tag.bytes);
}

void upgradeTableRecord(TagWriter& out, const RawRecord& record, Place2000 place, std::size_t table) {
  const bool isDimStyle = kTableNames[table] == "DIMSTYLE";
  const bool isLinetype = kTableNames[table] == "LTYPE";
  out.raw(0, record.type).handle(isDimStyle ? 105 : 5, place.handle).handle(330, place.owner);
  out.raw(100, "AcDbSymbolTableRecord").raw(100, kTableRecordMarkers[table]);
  out.raw(2, firstValue(record.bytes, 2).value_or("")).integer(70, integerOf(record, 70));
  std::string_view rest = record.bytes;
  Tag tag;
  readTag(rest, tag);
  bool isInGroup = false;
  while (readTag(rest, tag)) {
    if (tag.code == 102) isInGroup = tag.trimmed().starts_with("{");
    if (isInGroup || tag.code == 102 || tag.code == 2 || tag.code == 70 || tag.code == 100 || tag.code == 105 ||
        tag.code == 330 || tag.code == 999) {
      continue;
    }
    // Under 5, 6 and 7 old dimension styles name the blocks of arrows; now they hold handles under other codes.
    if (tag.code == 5 || (isDimStyle && (tag.code == 6 || tag.code == 7))) continue;
    out.bytes(tag.bytes);
    if (isLinetype && tag.code == 49) {
      std::string_view next = rest;
      Tag following;
      if (!readTag(next, following) || following.code != 74) out.integer(74, 0);
    }
  }
}

bool isLightweight(const RawRecord& polyline) {
  constexpr std::int64_t kOthers = 2 | 4 | 8 | 16 | 64;
  return (integerOf(polyline, 70) & kOthers) == 0 && integerOf(polyline, 75) == 0;
}

void writeLightweight(TagWriter& out, const RawRecord& polyline, const std::vector<RawRecord*>& vertices,
                      Place2000 place) {
  struct Vertex {
    double x = 0, y = 0, startWidth = 0, endWidth = 0, bulge = 0;
  };
  Sorted tags = sorted(polyline);
  std::vector<Tag> own;
  double elevation = 0;
  double startWidth = 0;
  double endWidth = 0;
  for (const Tag& tag : tags.own) {
    if (tag.code == 30 || (tag.code == 38 && elevation == 0)) elevation = tag.real();
    if (tag.code == 40) startWidth = tag.real();
    if (tag.code == 41) endWidth = tag.real();
    if (tag.code == 39 || (tag.code >= 210 && tag.code <= 230)) own.push_back(tag);
  }
  std::vector<Vertex> points;
  bool hasOneWidth = startWidth == endWidth;
  for (const RawRecord* const record : vertices) {
    Vertex vertex{0, 0, startWidth, endWidth, 0};
    for (const Tag& tag : sorted(*record).own) {
      if (tag.code == 10) vertex.x = tag.real();
      if (tag.code == 20) vertex.y = tag.real();
      if (tag.code == 40) vertex.startWidth = tag.real();
      if (tag.code == 41) vertex.endWidth = tag.real();
      if (tag.code == 42) vertex.bulge = tag.real();
    }
    hasOneWidth = hasOneWidth && vertex.startWidth == startWidth && vertex.endWidth == startWidth;
    points.push_back(vertex);
  }
  constexpr std::int64_t kKept = 1 | 128;
  writeHead(out, "LWPOLYLINE", place, tags);
  out.raw(100, "AcDbPolyline").integer(90, static_cast<std::int64_t>(points.size()));
  out.integer(70, integerOf(polyline, 70) & kKept);
  if (hasOneWidth) out.real(43, startWidth);
  if (elevation != 0) out.real(38, elevation);
  for (const Tag& tag : own) {
    if (tag.code == 39) out.bytes(tag.bytes);
  }
  for (const Vertex& vertex : points) {
    out.point(10, vertex.x, vertex.y);
    if (!hasOneWidth) out.real(40, vertex.startWidth).real(41, vertex.endWidth);
    if (vertex.bulge != 0) out.real(42, vertex.bulge);
  }
  for (const Tag& tag : own) {
    if (tag.code != 39) out.bytes(tag.bytes);
  }
  for (const Tag& tag : tags.extended) out.bytes(tag.bytes);
}

}  // namespace host::dxf
