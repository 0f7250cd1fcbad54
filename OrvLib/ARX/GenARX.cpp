#include "OrvLib/ARX/GenARX.h"

#include <iterator>
#include <memory>
#include <new>

#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/Status.h"
#include "OrvLib/Reports/Failures.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kLinetypeFile = L"acad.lin";

template <class Table>
AcDbObjectId recordId(AcDbDatabase& db, const ACHAR* name) {
  AcDbObjectId id;
  const auto table = Opened<Table>::by([&](Table*& open) { return db.getSymbolTable(open, AcDb::kForRead); });
  if (!table || table->getAt(name, id) != Acad::eOk) return {};
  return id;
}

/// A new layer, open for write; empty when the host refuses the name or the table.
Opened<AcDbLayerTableRecord> makeLayer(AcDbDatabase& db, const ACHAR* name) {
  const auto table =
      Opened<AcDbLayerTable>::by([&](AcDbLayerTable*& open) { return db.getLayerTable(open, AcDb::kForWrite); });
  if (!succeeded(table.status(), name)) return {};
  std::unique_ptr<AcDbLayerTableRecord> layer(new (std::nothrow) AcDbLayerTableRecord);
  if (!layer) throw OrvExpAcad(L"Allocation of layerTableRecord failed");
  Acad::ErrorStatus status = layer->setName(name);
  if (status == Acad::eOk) status = table->add(layer.get());
  if (!succeeded(status, name)) return {};
  return Opened<AcDbLayerTableRecord>(layer.release());
}

// A layer cannot be "by block" or "by layer", though the host's colours can.
std::optional<AcCmColor> colorOfLayer(int colorIndex) {
  AcCmColor color;
  if (colorIndex < 1 || colorIndex > 255) return std::nullopt;
  if (color.setColorIndex(static_cast<Adesk::UInt16>(colorIndex)) != Acad::eOk) return std::nullopt;
  return color;
}

/// Writes only what differs, so that a layer that is right already stays untouched in the drawing file. A true colour
/// that the index stands for differs in nothing.
bool setLayerProperties(AcDbLayerTableRecord& layer, const ACHAR* name, int colorIndex, AcDbObjectId linetype) {
  const std::optional<AcCmColor> color = colorOfLayer(colorIndex);
  const bool setsColor = color && layer.color().colorIndex() != color->colorIndex();
  const bool setsLinetype = !linetype.isNull() && layer.linetypeObjectId() != linetype;
  if (!setsColor && !setsLinetype) return true;
  if (!layer.isWriteEnabled() && !succeeded(layer.upgradeOpen(), name)) return false;
  if (setsColor) layer.setColor(*color);
  return !setsLinetype || succeeded(layer.setLinetypeObjectId(linetype), name);
}

}  // namespace

EnsuredLayer ensureLayer(const ACHAR* name, int colorIndex, const ACHAR* linetype, MakeCurrent makeCurrent,
                         AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr) return EnsuredLayer::Failed;
  const AcDbObjectId linetypeId = findOrLoadLinetype(linetype, db);
  AcDbObjectId layerId = recordId<AcDbLayerTable>(*db, name);
  const bool isNew = layerId.isNull();
  {
    const Opened<AcDbLayerTableRecord> layer =
        isNew ? makeLayer(*db, name) : Opened<AcDbLayerTableRecord>(layerId, AcDb::kForRead);
    if (!layer || !setLayerProperties(*layer, name, colorIndex, linetypeId)) return EnsuredLayer::Failed;
    layerId = layer->objectId();
  }
  if (linetypeId.isNull()) return EnsuredLayer::WithoutLinetype;
  if (makeCurrent == MakeCurrent::Yes && !succeeded(db->setClayer(layerId), name)) return EnsuredLayer::Failed;
  return isNew ? EnsuredLayer::Created : EnsuredLayer::Existed;
}

AcDbObjectId layerMadeIfMissing(const ACHAR* name, AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr) return {};
  const AcDbObjectId existing = recordId<AcDbLayerTable>(*db, name);
  if (!existing.isNull()) return existing;
  const AcDbObjectId linetype = findOrLoadLinetype(kContinuous, db);
  const Opened<AcDbLayerTableRecord> layer = makeLayer(*db, name);
  if (!layer) return {};
  if (!linetype.isNull()) succeeded(layer->setLinetypeObjectId(linetype), name);
  return layer->objectId();
}

AcDbObjectId findLayer(const ACHAR* name, AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  return db != nullptr ? recordId<AcDbLayerTable>(*db, name) : AcDbObjectId();
}

std::optional<int> layerColor(const ACHAR* name, AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr) return std::nullopt;
  const Opened<AcDbLayerTableRecord> layer(recordId<AcDbLayerTable>(*db, name), AcDb::kForRead);
  if (!layer) return std::nullopt;
  return layer->color().colorIndex();
}

bool hasTrueColor(const ACHAR* name, AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr) return false;
  const Opened<AcDbLayerTableRecord> layer(recordId<AcDbLayerTable>(*db, name), AcDb::kForRead);
  return layer && layer->color().isByColor();
}

bool setLayerColor(const ACHAR* name, int colorIndex, AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr || !colorOfLayer(colorIndex)) return false;
  const Opened<AcDbLayerTableRecord> layer(recordId<AcDbLayerTable>(*db, name), AcDb::kForRead);
  return layer && setLayerProperties(*layer, name, colorIndex, {});
}

bool setLayerState(const ACHAR* name, const LayerState& state, AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr) return false;
  const Opened<AcDbLayerTableRecord> layer(recordId<AcDbLayerTable>(*db, name), AcDb::kForRead);
  if (!layer) return false;
  if (layer->isOff() == state.off && layer->isFrozen() == state.frozen && layer->isLocked() == state.locked)
    return true;
  if (!layer->isWriteEnabled() && !succeeded(layer->upgradeOpen(), name)) return false;
  layer->setIsOff(state.off);
  layer->setIsLocked(state.locked);
  return layer->isFrozen() == state.frozen || succeeded(layer->setIsFrozen(state.frozen), name);
}

AcDbObjectId findOrLoadLinetype(const ACHAR* name, AcDbDatabase* database) {
  AcDbDatabase* const db = orWorkingDatabase(database);
  if (db == nullptr) return {};
  const AcDbObjectId present = recordId<AcDbLinetypeTable>(*db, name);
  if (!present.isNull()) return present;
  if (acdbLoadLineTypeFile(name, kLinetypeFile, db) != Acad::eOk) return {};
  return recordId<AcDbLinetypeTable>(*db, name);
}

std::wstring handleText(const AcDbObject& object) {
  AcDbHandle handle;
  object.getAcDbHandle(handle);
  ACHAR text[20] = {};
  return handle.getIntoAsciiBuffer(text, std::size(text)) ? text : L"0";
}

AcDbObjectId objectOfHandle(const std::wstring& text) {
  const AcDbDatabase* const db = orWorkingDatabase(nullptr);
  const AcDbHandle handle(text.c_str());
  AcDbObjectId id;
  if (db == nullptr || handle.isNull() || db->getAcDbObjectId(id, false, handle) != Acad::eOk) return {};
  return id;
}

}  // namespace OrvLib
