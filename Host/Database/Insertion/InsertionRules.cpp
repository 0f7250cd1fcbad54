// What tags mean to one that copies records between drawings: names, handles, and which versions know them.
#include <algorithm>

#include "Database/Insertion.h"
#include "Database/ObjectAccess.h"

namespace host::database {

namespace {

struct EntityRule {
  std::string_view typeName;
  DrawingVersion since;
};
/// Entities that came with a later version than 2000.
constexpr EntityRule kEntities[] = {
    {"ACAD_TABLE", DrawingVersion::V2004},
    {"ARC_DIMENSION", DrawingVersion::V2004},
    {"LARGE_RADIAL_DIMENSION", DrawingVersion::V2004},
    {"MULTILEADER", DrawingVersion::V2007},
    {"HELIX", DrawingVersion::V2007},
    {"LIGHT", DrawingVersion::V2007},
    {"SURFACE", DrawingVersion::V2007},
    {"PLANESURFACE", DrawingVersion::V2007},
    {"EXTRUDEDSURFACE", DrawingVersion::V2007},
    {"REVOLVEDSURFACE", DrawingVersion::V2007},
    {"LOFTEDSURFACE", DrawingVersion::V2007},
    {"SWEPTSURFACE", DrawingVersion::V2007},
    {"SECTION", DrawingVersion::V2007},
    {"MESH", DrawingVersion::V2010},
    {"GEOPOSITIONMARKER", DrawingVersion::V2013},
};

constexpr std::string_view kModelled[] = {
    "3DSOLID",         "BODY",          "REGION",          "SURFACE",     "PLANESURFACE",
    "EXTRUDEDSURFACE", "LOFTEDSURFACE", "REVOLVEDSURFACE", "SWEPTSURFACE"};

/// Of types without a class that tells its own (see ClassEntry).
struct TagRule {
  DxfType type;  // Unknown: every type
  LaterTags tags;
};
constexpr TagRule kTags[] = {
    {DxfType::Unknown, {"AcDbEntity", 420, 449, DrawingVersion::V2004}},  // true colour, its name, transparency
    {DxfType::Unknown, {"AcDbEntity", 284, 284, DrawingVersion::V2007}},  // shadow mode
    {DxfType::Unknown, {"AcDbEntity", 347, 348, DrawingVersion::V2007}},  // material, visual style
    {DxfType::Layer, {"AcDbLayerTableRecord", 420, 449, DrawingVersion::V2004}},
    {DxfType::Layer, {"AcDbLayerTableRecord", 347, 348, DrawingVersion::V2007}},
    {DxfType::MText, {"AcDbMText", 45, 45, DrawingVersion::V2004}},  // background
    {DxfType::MText, {"AcDbMText", 63, 63, DrawingVersion::V2004}},
    {DxfType::MText, {"AcDbMText", 90, 90, DrawingVersion::V2004}},
    {DxfType::MText, {"AcDbMText", 420, 449, DrawingVersion::V2004}},
    {DxfType::Dimension, {"AcDbDimension", 280, 280, DrawingVersion::V2010}},
    {DxfType::Attrib, {"AcDbAttribute", 280, 280, DrawingVersion::V2007}},
    {DxfType::AttDef, {"AcDbAttributeDefinition", 280, 280, DrawingVersion::V2007}},
};

}  // namespace

std::string_view cannotCarry(std::string_view typeName, DrawingVersion from, DrawingVersion to) {
  if (typeName == "ACAD_PROXY_ENTITY") return "a proxy belongs to its own drawing";
  if (typeName == "VIEWPORT") return "a viewport belongs to a layout";
  if (typeName == "OLE2FRAME" || typeName == "OLEFRAME") return "an embedded document belongs to its own drawing";
  for (const std::string_view modelled : kModelled) {
    // From 2013 on the modeller's data are binary and stand in a section of their own.
    const bool differs = from >= DrawingVersion::V2013 || to >= DrawingVersion::V2013;
    if (typeName == modelled && differs) return "its solid model cannot be carried over";
  }
  for (const EntityRule& rule : kEntities) {
    if (rule.typeName == typeName && to < rule.since) return "the drawing's version does not have it";
  }
  return {};
}

bool canHangOn(std::string_view typeName, DrawingVersion version) {
  if (typeName == "DICTIONARY" || typeName == "XRECORD") return true;
  // Draw order is taken over as the order of the entities; networks of associations reach through the whole drawing.
  for (const std::string_view bound : {"SORTENTSTABLE", "ACDBASSOC", "ACSH_", "ACDBDICTIONARYWDFLT"}) {
    if (typeName.starts_with(bound)) return false;
  }
  return version >= DrawingVersion::V2004;
}

bool isKnownTag(DxfType type, std::string_view subclass, int code, DrawingVersion version) {
  const auto cameLater = [&](const LaterTags& tags) {
    return version < tags.since && code >= tags.first && code <= tags.last && tags.subclass == subclass;
  };
  for (const TagRule& rule : kTags) {
    if ((rule.type == DxfType::Unknown || rule.type == type) && cameLater(rule.tags)) return false;
  }
  const ClassEntry* const entry = classEntry(type);
  return entry == nullptr || std::none_of(entry->laterTags.begin(), entry->laterTags.end(), cameLater);
}

DxfType namedBy(DxfType recordType, std::string_view subclass, int code) {
  if (code == 1001) return DxfType::AppId;
  if (code == 1003) return DxfType::Layer;
  if (code > 1000) return DxfType::Unknown;
  // Not every writer puts the tags of all entities behind their marker, or writes markers at all.
  const bool isKnownEntity = recordType > DxfType::Unknown && recordType < DxfType::Block;
  const bool isAnywhere = isKnownEntity || (subclass.empty() && recordType != DxfType::XRecord);
  if (isAnywhere || subclass == "AcDbEntity" || subclass == "AcDbLayerTableRecord" || subclass == "AcDbMlineStyle") {
    if (code == 6) return DxfType::LineType;
    if (code == 8) return DxfType::Layer;
  }
  if (subclass == "AcDbEntity") return DxfType::Unknown;
  // Kinds of dimensions and tables that have no type of their own here are known by their subclass.
  if (subclass == "AcDbDimension" || (recordType == DxfType::Dimension && subclass.empty())) {
    return code == 2 ? DxfType::BlockRecord : code == 3 ? DxfType::DimStyle : DxfType::Unknown;
  }
  if (subclass == "AcDbBlockReference" || (recordType == DxfType::Insert && subclass.empty())) {
    return code == 2 ? DxfType::BlockRecord : DxfType::Unknown;
  }
  switch (recordType) {
    case DxfType::Text:
    case DxfType::MText:
    case DxfType::Attrib:
    case DxfType::AttDef:
      return code == 7 ? DxfType::TextStyle : DxfType::Unknown;
    case DxfType::Leader:
    case DxfType::Tolerance:
      return code == 3 ? DxfType::DimStyle : DxfType::Unknown;
    case DxfType::Insert:  // several at once have a subclass of their own
      return code == 2 ? DxfType::BlockRecord : DxfType::Unknown;
    case DxfType::Table:
      return code == 7 && subclass == "AcDbTable" ? DxfType::TextStyle : DxfType::Unknown;
    default:
      return DxfType::Unknown;
  }
}

bool holdsHandle(int code) {
  return (code >= 330 && code <= 369) || (code >= 390 && code <= 399) || code == 480 || code == 481 || code == 1005;
}

}  // namespace host::database
