// DXF type names and the classes behind them.
#include <array>
#include <unordered_map>

#include "Database/Memory.h"
#include "Database/ObjectAccess.h"
#include "Database/Store/Names.h"
#include "dbents.h"

namespace host::database {

namespace {

// In the order of DxfType.
constexpr std::array<std::string_view, static_cast<std::size_t>(DxfType::FirstOther)> kNames = {
    "",         "LINE",         "POINT",         "LWPOLYLINE", "POLYLINE",   "POLYLINE",   "POLYLINE",
    "POLYLINE", "VERTEX",       "VERTEX",        "VERTEX",     "SEQEND",     "INSERT",     "ATTRIB",
    "ATTDEF",   "CIRCLE",       "ARC",           "ELLIPSE",    "SPLINE",     "TEXT",       "MTEXT",
    "SOLID",    "TRACE",        "3DFACE",        "HATCH",      "REGION",     "DIMENSION",  "LEADER",
    "XLINE",    "RAY",          "VIEWPORT",      "IMAGE",      "WIPEOUT",    "MLINE",      "MULTILEADER",
    "3DSOLID",  "BODY",         "SHAPE",         "TOLERANCE",  "ACAD_TABLE", "MESH",       "ACAD_PROXY_ENTITY",
    "BLOCK",    "ENDBLK",       "TABLE",         "LAYER",      "LTYPE",      "STYLE",      "DIMSTYLE",
    "APPID",    "BLOCK_RECORD", "VPORT",         "VIEW",       "UCS",        "DICTIONARY", "ACDBDICTIONARYWDFLT",
    "GROUP",    "XRECORD",      "SORTENTSTABLE", "LAYOUT",     "HEADER",     "CLASSES"};
static_assert(!kNames.back().empty());

using FixedTypes = std::unordered_map<std::string_view, DxfType>;

const FixedTypes& fixedTypes() {
  static const FixedTypes types = [] {
    FixedTypes made;
    for (std::size_t i = 1; i < kNames.size(); ++i) made.emplace(kNames[i], static_cast<DxfType>(i));
    // A plain name stands for the commonest kind; the loader tells the others apart by their flags.
    made["POLYLINE"] = DxfType::Polyline2d;
    made["VERTEX"] = DxfType::Vertex2d;
    made.emplace("MLEADER", DxfType::MultiLeader);
    return made;
  }();
  return types;
}

struct Registry {
  std::array<ClassEntry, static_cast<std::size_t>(DxfType::FirstOther)> entries;
};

Registry& registry() {
  static Registry instance;
  return instance;
}

}  // namespace

std::string_view fixedTypeName(DxfType type) {
  const auto index = static_cast<std::size_t>(type);
  return index < kNames.size() ? kNames[index] : std::string_view();
}

bool isTableRecord(DxfType type) { return type >= DxfType::Layer && type <= DxfType::Ucs; }

bool registerClass(const ClassEntry& entry) {
  registry().entries[static_cast<std::size_t>(entry.type)] = entry;
  return true;
}

const ClassEntry* classEntry(DxfType type) {
  const auto index = static_cast<std::size_t>(type);
  if (index >= kNames.size()) return nullptr;
  const ClassEntry& entry = registry().entries[index];
  return entry.create != nullptr ? &entry : nullptr;
}

AcRxClass* classOf(DxfType type, bool isEntity) {
  if (const ClassEntry* const entry = classEntry(type)) return entry->description();
  return isEntity ? AcDbProxyEntity::desc() : AcDbProxyObject::desc();
}

DxfType typeOfClass(const AcRxClass* description) {
  // Commands make many objects of one or two classes.
  thread_local std::array<std::pair<const AcRxClass*, DxfType>, 2> latest{};
  for (const auto& [known, type] : latest) {
    if (known == description && type != DxfType::Unknown) return type;
  }
  for (const ClassEntry& entry : registry().entries) {
    if (entry.description == nullptr || entry.description() != description) continue;
    latest[1] = latest[0];
    latest[0] = {description, entry.type};
    return entry.type;
  }
  return DxfType::Unknown;
}

DxfType TypeNames::enter(std::string_view name) {
  const FixedTypes& fixed = fixedTypes();
  if (const auto found = fixed.find(name); found != fixed.end()) return found->second;
  if (const auto found = index_.find(name); found != index_.end()) return found->second;
  constexpr std::size_t kMost = 60000;  // a 16-bit index; more kinds than that are not a drawing
  if (others_.size() >= kMost) return DxfType::Unknown;
  const auto type = static_cast<DxfType>(static_cast<std::size_t>(DxfType::FirstOther) + others_.size());
  makeRoom(others_);
  std::string own(name);
  index_.emplace(own, type);
  others_.push_back(std::move(own));
  return type;
}

std::string_view TypeNames::name(DxfType type) const {
  if (type < DxfType::FirstOther) return fixedTypeName(type);
  const std::size_t index = static_cast<std::size_t>(type) - static_cast<std::size_t>(DxfType::FirstOther);
  return index < others_.size() ? std::string_view(others_[index]) : std::string_view();
}

}  // namespace host::database
