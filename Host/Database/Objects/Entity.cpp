// AcDbEntity, AcDbProxyEntity, AcDbCurve, AcCmColor: what all entities share.
#include <optional>
#include <string>

#include "Database/ObjectAccess.h"
#include "Database/Palette.h"
#include "Database/Store/Parts.h"
#include "Text/Text.h"
#include "acutmem.h"
#include "dbapserv.h"
#include "dbents.h"
#include "dbmain.h"
#include "dbsymtb.h"

using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Slot;
using host::database::Tag;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbEntity, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbProxyEntity, AcDbEntity)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbCurve, AcDbEntity)

namespace {

constexpr std::string_view kCommon = "AcDbEntity";

/// Where an entity's common values stand: in their own subclass, but anywhere with writers that misplace them.
std::string_view commonPart(const AcDbObject& entity) {
  Tag tag;
  const bool isMisplaced = HostObjectAccess::slot(entity) != nullptr &&
                           !HostObjectAccess::findTag(entity, kCommon, 8, tag) &&
                           HostObjectAccess::findTag(entity, "", 8, tag);
  return isMisplaced ? std::string_view() : kCommon;
}

constexpr std::uint16_t kColorNone = AcCmEntityColor::kACInone;
constexpr std::uint16_t kColorByLayer = AcCmEntityColor::kACIbyLayer;

/// Database that names of a detached entity are looked up in: that of the drawing being worked on.
DrawingDatabase* databaseFor(const AcDbObject& object) {
  if (DrawingDatabase* const own = HostObjectAccess::database(object)) return own;
  AcDbDatabase* const working = acdbHostApplicationServices()->workingDatabase();
  return working != nullptr ? &working->hostDatabase() : nullptr;
}

/// The name of a record in the encoding of the entity's own record.
std::string nameFor(const AcDbObject& entity, const Slot& record) {
  return HostObjectAccess::codec(entity).encode(record.database().recordName(record));
}

/// Which of the properties that entities have in common were given to one outside any database.
struct CommonTags {
  bool layer = false, linetype = false, weight = false, linetypeScale = false;
  std::optional<std::int64_t> color;
};

CommonTags commonTags(const AcDbEntity& entity) {
  CommonTags has;
  bool inside = false;
  Tag tag;
  for (host::database::TagCursor cursor = HostObjectAccess::tags(entity); cursor.next(tag);) {
    if (tag.code == 100) {
      if (inside) break;
      inside = tag.trimmed() == kCommon;
    }
    if (!inside) continue;
    if (tag.code == 8) has.layer = true;
    if (tag.code == 6) has.linetype = true;
    if (tag.code == 62) has.color = tag.integer();
    if (tag.code == 370) has.weight = true;
    if (tag.code == 48) has.linetypeScale = true;
  }
  return has;
}

constexpr int kLayerCode = 8;
constexpr int kLinetypeCode = 6;

/// Sets the name of a layer or linetype on an entity and, when asked, on its vertices.
void setName(AcDbEntity& entity, int code, const std::string& name, bool doSubents) {
  Slot* const slot = HostObjectAccess::slot(entity);
  const bool isLayer = slot != nullptr && code == kLayerCode;
  const std::uint32_t layer = isLayer ? slot->database().parts().layers.enter(name) : 0;
  HostObjectAccess::setTag(entity, commonPart(entity), code, name);
  if (slot == nullptr) return;
  if (isLayer) slot->layer = layer;
  if (!doSubents || slot->type == DxfType::Insert) return;
  for (Slot* sub = slot->firstSub(); sub != nullptr; sub = sub->nextSub) {
    if (!sub->isErased()) slot->database().parts().editor.setTag(*sub, kCommon, code, name);
    if (isLayer) sub->layer = layer;
  }
}

}  // namespace

AcDbObjectId AcDbEntity::layerId() const {
  DrawingDatabase* const db = databaseFor(*this);
  if (db == nullptr) return AcDbObjectId::kNull;
  if (slot_ != nullptr) return AcDbObjectId(db->layerRecord(slot_->layer));
  Tag tag;
  if (!HostObjectAccess::findTag(*this, commonPart(*this), 8, tag)) return AcDbObjectId::kNull;
  return AcDbObjectId(db->findRecord(DxfType::Layer, HostObjectAccess::codec(*this).decode(tag.value)));
}

ACHAR* AcDbEntity::layer() const {
  std::wstring name;
  if (slot_ != nullptr) {
    name = slot_->database().layerName(slot_->layer);
  } else if (Tag tag; HostObjectAccess::findTag(*this, commonPart(*this), 8, tag)) {
    name = HostObjectAccess::codec(*this).decode(tag.value);
  }
  ACHAR* copy = nullptr;
  acutNewString(name.c_str(), copy);
  return copy;
}

Acad::ErrorStatus AcDbEntity::setLayer(const ACHAR* name, Adesk::Boolean doSubents, bool allowHidden) {
  if (name == nullptr) return Acad::eInvalidInput;
  DrawingDatabase* const db = databaseFor(*this);
  if (db == nullptr) return Acad::eNoDatabase;
  Slot* const record = db->findRecord(DxfType::Layer, name);
  if (record == nullptr) {
    const host::database::SymbolTable* const table = db->parts().tables.find(DxfType::Layer);
    const bool wasErased = table != nullptr && table->byName.count(std::wstring_view(name)) > 0;
    return wasErased ? Acad::eDeletedEntry : Acad::eKeyNotFound;
  }
  return setLayer(AcDbObjectId(record), doSubents, allowHidden);
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId layer, Adesk::Boolean doSubents, bool) {
  if (layer.isNull()) return Acad::eNullObjectId;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  Slot& record = *layer.slot();
  if (record.type != DxfType::Layer) return Acad::eWrongObjectType;
  if (record.isErased()) return Acad::eDeletedEntry;
  // The host opens the layer for read to look at it.
  if (record.live != nullptr && record.live->writer) return Acad::eWasOpenForWrite;
  if (slot_ != nullptr && &record.database() != &slot_->database()) return Acad::eWrongObjectType;
  if (host::database::EntityDraft* const draft = HostObjectAccess::draft(*this)) {
    if (draft->layer == nullptr) draft->isColorFirst = draft->color >= 0;
    draft->layer = &record;
    draft->drawing = record.database().parts().life.number();
    return Acad::eOk;
  }
  setName(*this, kLayerCode, nameFor(*this, record), doSubents);
  return Acad::eOk;
}

Adesk::UInt16 AcDbEntity::colorIndex() const {
  Tag tag;
  if (HostObjectAccess::findTag(*this, commonPart(*this), 62, tag)) return static_cast<Adesk::UInt16>(tag.integer());
  return slot_ != nullptr ? kColorByLayer : kColorNone;
}

Acad::ErrorStatus AcDbEntity::setColorIndex(Adesk::UInt16 index, Adesk::Boolean) {
  AcCmColor value;
  if (value.setColorIndex(index) != Acad::eOk) return Acad::eBadColorIndex;
  return setColor(value);
}

AcCmColor AcDbEntity::color() const {
  AcCmColor value;
  Tag tag;
  if (HostObjectAccess::findTag(*this, commonPart(*this), 420, tag)) {
    const std::int64_t rgb = tag.integer();
    value.setRGB(static_cast<Adesk::UInt8>(rgb >> 16), static_cast<Adesk::UInt8>(rgb >> 8),
                 static_cast<Adesk::UInt8>(rgb));
  } else if (HostObjectAccess::findTag(*this, commonPart(*this), 62, tag)) {
    value.setColorIndex(static_cast<Adesk::UInt16>(tag.integer()));
  }
  return value;
}

Acad::ErrorStatus AcDbEntity::setColor(const AcCmColor& color, bool, AcDbDatabase*) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (host::database::EntityDraft* const draft = HostObjectAccess::draft(*this);
      draft != nullptr && !color.isByColor()) {
    draft->color = color.colorIndex();
    return Acad::eOk;
  }
  HostObjectAccess::removeTag(*this, commonPart(*this), 430);
  if (color.isByColor()) {
    HostObjectAccess::setTag(*this, commonPart(*this), 420,
                             std::to_string((color.red() << 16) | (color.green() << 8) | color.blue()));
  } else {
    HostObjectAccess::removeTag(*this, commonPart(*this), 420);
  }
  // In a drawing an entity without the tag is by layer; a detached one has not been given a colour yet.
  if (slot_ != nullptr && color.isByLayer()) {
    HostObjectAccess::removeTag(*this, commonPart(*this), 62);
  } else {
    HostObjectAccess::setTag(*this, commonPart(*this), 62, host::database::spelledInteger(62, color.colorIndex()));
  }
  return Acad::eOk;
}

AcDbObjectId AcDbEntity::linetypeId() const {
  DrawingDatabase* const db = databaseFor(*this);
  if (db == nullptr) return AcDbObjectId::kNull;
  Tag tag;
  if (HostObjectAccess::findTag(*this, commonPart(*this), 6, tag)) {
    return AcDbObjectId(db->findRecord(DxfType::LineType, HostObjectAccess::codec(*this).decode(tag.value)));
  }
  return slot_ != nullptr ? AcDbObjectId(db->findRecord(DxfType::LineType, L"ByLayer")) : AcDbObjectId::kNull;
}

Acad::ErrorStatus AcDbEntity::setLinetype(const ACHAR* name, Adesk::Boolean doSubents) {
  DrawingDatabase* const db = databaseFor(*this);
  if (db == nullptr) return Acad::eNoDatabase;
  Slot* const record = name != nullptr ? db->findRecord(DxfType::LineType, name) : nullptr;
  return record != nullptr ? setLinetype(AcDbObjectId(record), doSubents) : Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbEntity::setLinetype(AcDbObjectId linetype, Adesk::Boolean doSubents) {
  if (linetype.isNull()) return Acad::eNullObjectId;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (linetype.slot()->type != DxfType::LineType) return Acad::eWrongObjectType;
  if (linetype.isErased()) return Acad::eDeletedEntry;
  setName(*this, kLinetypeCode, nameFor(*this, *linetype.slot()), doSubents);
  return Acad::eOk;
}

void AcDbEntity::setDatabaseDefaults(AcDbDatabase* db) {
  if (slot_ != nullptr) return;  // a resident entity has got its own long ago
  if (db == nullptr) db = acdbHostApplicationServices()->workingDatabase();
  if (db == nullptr) return;
  const DrawingDatabase& drawing = db->hostDatabase();
  const auto setText = [&](int code, const std::wstring& value) {
    HostObjectAccess::setTag(*this, commonPart(*this), code, HostObjectAccess::codec(*this).encode(value));
  };
  const CommonTags has = commonTags(*this);
  if (!has.layer) setText(8, drawing.headerText("$CLAYER", 8).value_or(L"0"));
  if (!has.linetype) {
    const std::wstring linetype = drawing.headerText("$CELTYPE", 6).value_or(L"ByLayer");
    if (!host::text::equalFolded(linetype, L"ByLayer")) setText(6, linetype);
  }
  if (!has.color) {
    const std::int64_t color = drawing.headerInteger("$CECOLOR", 62).value_or(kColorByLayer);
    if (color != kColorByLayer) setText(62, std::to_wstring(color));
  } else if (*has.color == kColorByLayer) {
    HostObjectAccess::removeTag(*this, kCommon, 62);  // by layer is what no tag means from now on
  }
  if (!has.weight) {
    const std::int64_t weight = drawing.headerInteger("$CELWEIGHT", 370).value_or(-1);
    if (weight != -1) setText(370, std::to_wstring(weight));
  }
  if (!has.linetypeScale) {
    const double scale = drawing.headerReal("$CELTSCALE", 40).value_or(1.0);
    if (scale != 1.0 && scale > 0) setText(48, host::text::fromUtf8(host::text::formatReal(scale)));
  }
}

Acad::ErrorStatus AcDbEntity::highlight() const { return isReadEnabled() ? Acad::eOk : Acad::eNotOpenForRead; }
Acad::ErrorStatus AcDbEntity::unhighlight() const { return highlight(); }

// ---- colours --------------------------------------------------------------------------------------------------------

Acad::ErrorStatus AcCmColor::setColorIndex(Adesk::UInt16 index) {
  if (index > AcCmEntityColor::kACIbyLayer) return Acad::eBadColorIndex;
  index_ = index;
  hasRgb_ = false;
  rgb_ = 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcCmColor::setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
  hasRgb_ = true;
  rgb_ = static_cast<Adesk::UInt32>((red << 16) | (green << 8) | blue);
  index_ = static_cast<Adesk::UInt16>(host::database::nearestColorIndex(rgb_));
  return Acad::eOk;
}
