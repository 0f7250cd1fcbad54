// How objects made outside become part of a drawing.
#include "Database/Objects/Adoption.h"

#include <algorithm>

#include "Database/ObjectAccess.h"
#include "Database/Objects/Polyline.h"
#include "Database/ResbufTypes.h"
#include "Database/Store/Parts.h"
#include "dbents.h"

namespace host::database {

namespace {

/// Tags from one encoding in another; text values only are touched.
void recode(TagCursor tags, const text::Codec& from, TagWriter& out) {
  Tag tag;
  while (tags.next(tag)) {
    const ValueKind kind = valueKind(tag.code);
    if (kind == ValueKind::Text && std::any_of(tag.value.begin(), tag.value.end(), [](char c) { return c < 0; })) {
      out.text(tag.code, from.decode(tag.value));
    } else {
      out.raw(tag.code, tag.value);
    }
  }
}

}  // namespace

void setNewRecord(Slot& slot, std::string_view bytes) {
  slot.database().parts().editor.set(slot, bytes);
  if (bytes.find("1001") != std::string_view::npos) slot.flags |= kHasXData;  // or looks as if it had
}

std::string ownTags(const AcDbObject& object, DrawingDatabase& db, bool isEntity) {
  std::string_view common;  // in front of the object's own subclass marker
  std::string_view own;
  const std::string all = HostObjectAccess::detachedBytes(object);
  std::string_view rest = all;
  Tag tag;
  readTag(rest, tag);                // "0 <type>"
  if (isEntity) readTag(rest, tag);  // "100 AcDbEntity"
  common = rest;
  while (readTag(rest, tag)) {
    if (tag.code != 100) continue;
    own = common.substr(static_cast<std::size_t>(tag.bytes.data() - common.data()));
    common = common.substr(0, common.size() - own.size());
    break;
  }
  TagWriter out = db.tagWriter();
  recode(TagCursor(common), HostObjectAccess::codec(object), out);
  // Parsed data tell the object's own part when they differ from its tags, or when it never had any.
  const ObjectData* const data = HostObjectAccess::data(object);
  if (data != nullptr && (data->changed || own.empty())) {
    data->write(out);
  } else {
    recode(TagCursor(own), HostObjectAccess::codec(object), out);
  }
  return out.take();
}

namespace {

/// Makes the vertices and the end of an old-style polyline as objects of their own.
void addVertices(Slot& polyline, const OldPolyline& data, const std::string& common) {
  DrawingDatabase& db = polyline.database();
  DrawingDatabase::Parts& parts = db.parts();
  Slot** link = &polyline.madeSub;
  const auto add = [&](DxfType type, std::string_view name, const std::string& own) {
    Slot* const sub = parts.editor.make(type, &polyline, kEntity | kSubEntity);
    sub->layer = polyline.layer;
    TagWriter out = db.tagWriter();
    out.raw(0, name)
        .handle(5, sub->handle)
        .handle(330, polyline.handle)
        .raw(100, "AcDbEntity")
        .bytes(common)
        .bytes(own);
    parts.editor.set(*sub, out.take());
    *link = sub;
    link = &sub->nextSub;
  };
  for (std::size_t i = 0; i < data.vertices.size(); ++i) {
    add(data.is3d() ? DxfType::Vertex3d : DxfType::Vertex2d, "VERTEX", data.vertexTags(i, db.codec(), db.lineEnd()));
  }
  add(DxfType::SeqEnd, "SEQEND", {});
}

/// Layer, colour and linetype of an entity by its draft; null when they cannot be shared. Whether or not the entity
/// keeps its draft, its values stay what they are.
const SharedTags* sharedTagsOf(AcDbEntity& entity, DrawingDatabase& db) {
  const EntityDraft* const draft = HostObjectAccess::draft(entity);
  DrawingDatabase::Parts& parts = db.parts();
  if (draft == nullptr || (draft->layer != nullptr && draft->drawing != parts.life.number())) return nullptr;
  const SharedTagsIndex::Key key{draft->layer, draft->color, draft->isColorFirst};
  if (const SharedTags* const known = parts.sharedTags.find(key)) return known;
  entity.setDatabaseDefaults(db.facade());
  const std::string all = ownTags(entity, db, true);
  std::string_view rest = all;
  std::uint32_t layer = 0;
  Tag tag;
  std::string_view common = all;
  while (readTag(rest, tag)) {
    if (tag.code == 8) layer = parts.layers.enter(tag.value);
    if (tag.code != 100) continue;
    common = common.substr(0, static_cast<std::size_t>(tag.bytes.data() - all.data()));
    break;
  }
  const auto* const made = parts.memory.make<SharedTags>(SharedTags{parts.memory.keep(common), layer});
  parts.sharedTags.enter(key, made);
  return made;
}

/// Keeps the points of a polyline for vertices that are made when asked for.
const UnmadeVertices* unmadeVertices(const OldPolyline& data, const SharedTags& common, Arena& arena) {
  AcGePoint3d* const points = arena.makeArray<AcGePoint3d>(data.vertices.size());
  std::transform(data.vertices.begin(), data.vertices.end(), points,
                 [](const OldPolyline::Vertex& vertex) { return vertex.point; });
  return arena.make<UnmadeVertices>(UnmadeVertices{&common, points, static_cast<std::uint32_t>(data.vertices.size())});
}

/// Appends an entity of which nothing needs to be spelled yet. False when this is not one.
bool appendUnwritten(Slot& blockRecord, AcDbEntity& entity) {
  DrawingDatabase& db = blockRecord.database();
  DrawingDatabase::Parts& parts = db.parts();
  ObjectData* const data = HostObjectAccess::data(entity);
  if (data == nullptr || &blockRecord == parts.blocks.paperSpace() || HostObjectAccess::draft(entity) == nullptr) {
    return false;
  }
  const DxfType type = typeOfClass(entity.isA());
  const OwnTags* const own = type != DxfType::Unknown ? data->shelve(db) : nullptr;
  const SharedTags* const common = own != nullptr ? sharedTagsOf(entity, db) : nullptr;
  if (common == nullptr) return false;
  std::vector<Slot*>& entities = parts.blocks.contents(&blockRecord).entities;
  makeRoom(entities);
  NewSlots made(parts.slots);
  Slot* const slot = parts.editor.make(type, &blockRecord, kEntity);
  slot->layer = common->layer;
  if (type == DxfType::Polyline3d) {
    slot->unmade = unmadeVertices(static_cast<const OldPolyline&>(*data), *common, parts.memory);
    slot->flags |= kUnmade;
    parts.handles.take(slot->unmade->handles());
  }
  parts.objects.prepareAdoption(*slot);
  slot->live->record = Record(*parts.memory.make<UnwrittenTags>(*slot, *common, *own));
  made.keep();
  parts.objects.adopt(entity, *slot);
  slot->live->modified = true;
  data->changed = false;
  entities.push_back(slot);
  return true;
}

}  // namespace

Acad::ErrorStatus appendEntity(Slot& blockRecord, AcDbEntity& entity) {
  if (HostObjectAccess::slot(entity) != nullptr) return Acad::eAlreadyInDb;
  if (appendUnwritten(blockRecord, entity)) return Acad::eOk;
  DrawingDatabase& db = blockRecord.database();
  DrawingDatabase::Parts& parts = db.parts();
  entity.setDatabaseDefaults(db.facade());
  DxfType type = typeOfClass(entity.isA());
  if (type == DxfType::Unknown && entity.isA() == AcDbProxyEntity::desc()) {
    // Of a type without a class here; its tags say which.
    Tag tag;
    if (HostObjectAccess::tags(entity).next(tag) && tag.code == 0) type = parts.types.enter(tag.trimmed());
  }
  if (type == DxfType::Unknown) return Acad::eWrongObjectType;

  std::vector<Slot*>& entities = parts.blocks.contents(&blockRecord).entities;
  makeRoom(entities);
  NewSlots made(parts.slots);
  Slot* const slot = parts.editor.make(type, &blockRecord, kEntity);
  TagWriter head = db.tagWriter();
  head.raw(0, db.typeName(type)).handle(5, slot->handle).handle(330, blockRecord.handle).raw(100, "AcDbEntity");
  if (&blockRecord == parts.blocks.paperSpace()) {
    head.integer(67, 1);
    slot->flags |= kPaper;
    for (const auto& [name, block] : db.layouts()) {
      if (block->record == &blockRecord) head.text(410, name);
    }
  }
  // Layer, colour and linetype are the vertices' too.
  const std::string own = ownTags(entity, db, true);
  std::string common;
  Tag tag;
  for (TagCursor cursor{std::string_view(own)}; cursor.next(tag) && tag.code != 100;) {
    common += tag.bytes;
    if (tag.code == 8) slot->layer = parts.layers.enter(tag.value);
  }
  setNewRecord(*slot, head.bytes(own).str());
  if (type == DxfType::Polyline2d || type == DxfType::Polyline3d) {
    addVertices(*slot, static_cast<const OldPolyline&>(*HostObjectAccess::data(entity)), common);
  }
  parts.objects.prepareAdoption(*slot);
  made.keep();
  parts.objects.adopt(entity, *slot);
  if (ObjectData* const data = HostObjectAccess::data(entity)) data->changed = false;
  entities.push_back(slot);
  return Acad::eOk;
}

void beginBlock(Slot& blockRecord, std::wstring_view name) {
  DrawingDatabase& db = blockRecord.database();
  DrawingDatabase::Parts& parts = db.parts();
  parts.blocks.makeRoom();
  const auto add = [&](DxfType type) {
    Slot* const slot = parts.editor.make(type, &blockRecord, kEntity | kSubEntity);
    TagWriter out = db.tagWriter();
    out.raw(0, fixedTypeName(type)).handle(5, slot->handle).handle(330, blockRecord.handle).raw(100, "AcDbEntity");
    out.raw(8, "0").raw(100, type == DxfType::Block ? "AcDbBlockBegin" : "AcDbBlockEnd");
    if (type == DxfType::Block) out.text(2, name).integer(70, 0).point(10, 0, 0, 0).text(3, name).raw(1, "");
    slot->layer = parts.layers.enter("0");
    parts.editor.set(*slot, out.take());
    return slot;
  };
  Slot* const begin = add(DxfType::Block);
  Slot* const end = add(DxfType::EndBlk);
  parts.blocks.contents(&blockRecord) = {&blockRecord, begin, end, {}};
  parts.blocks.enter(&blockRecord);
}

}  // namespace host::database
