#include "OrvLib/ARX/DrawOrder.h"

#include <algorithm>
#include <memory>

#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Selector.h"
#include "OrvLib/ARX/Status.h"

// No header of the SDK declares it.
extern "C" int ads_regen(void);

namespace OrvLib {
namespace {

constexpr const ACHAR* kSortentsKey = L"ACAD_SORTENTS";
constexpr const ACHAR* kSortentsVariable = L"SORTENTS";
constexpr short kEverythingSorted = 127;

/// The extension dictionary of the block, open for read; made when missing.
Opened<AcDbDictionary> extensionDictionaryOf(AcDbObjectId blockId) {
  const Opened<AcDbBlockTableRecord> block(blockId, AcDb::kForRead);
  if (!block) return {};
  if (block->extensionDictionary().isNull() &&
      (!makeWritable(*block) || block->createExtensionDictionary() != Acad::eOk)) {
    return {};
  }
  return Opened<AcDbDictionary>(block->extensionDictionary(), AcDb::kForRead);
}

}  // namespace

void honorDrawOrder() {
  if (acdbHostApplicationServices()->workingDatabase() == nullptr) return;
  resbuf variable{};
  if (acedGetVar(kSortentsVariable, &variable) != RTNORM) return printFailed(kSortentsVariable);
  const short value = variable.resval.rint;
  if ((value & kEverythingSorted) == kEverythingSorted) return;
  variable.restype = RTSHORT;
  variable.resval.rint = static_cast<short>(value | kEverythingSorted);
  if (acedSetVar(kSortentsVariable, &variable) != RTNORM) printFailed(kSortentsVariable);
}

Opened<AcDbSortentsTable> sortTableOf(const AcDbEntity& entity) {
  const AcDbObjectId blockId = entity.ownerId();
  const Opened<AcDbDictionary> dictionary = extensionDictionaryOf(blockId);
  if (!dictionary) return {};
  auto present = Opened<AcDbSortentsTable>::by(
      [&](AcDbSortentsTable*& open) { return dictionary->getAt(kSortentsKey, open, AcDb::kForWrite); });
  if (!present) {
    if (present.status() != Acad::eKeyNotFound || !makeWritable(*dictionary)) return present;
    auto table = std::make_unique<AcDbSortentsTable>();
    AcDbObjectId id;
    if (dictionary->setAt(kSortentsKey, table.get(), id) != Acad::eOk) return {};
    present = Opened<AcDbSortentsTable>(table.release());
  }
  // Also of a table whose making was broken off before.
  if (present->blockId().isNull() && !succeeded(present->setBlockId(blockId))) return {};
  return present;
}

bool DrawOrder::moveToTop(AcDbObjectId entity) { return move(entity, End::Top); }

bool DrawOrder::moveToBottom(AcDbObjectId entity) { return move(entity, End::Bottom); }

bool DrawOrder::move(AcDbObjectId id, End end) {
  if (!honored_) honorDrawOrder();
  honored_ = true;
  AcDbObjectIdArray one;
  one.append(id);
  const auto isMoved = [&] {
    return table_ && (end == End::Top ? table_->moveToTop(one) : table_->moveToBottom(one)) == Acad::eOk;
  };
  // A table refuses entities of other blocks, so success needs no look at the entity.
  if (isMoved()) return true;
  const Opened<AcDbEntity> entity(id, AcDb::kForRead);
  if (!entity || (table_ && entity->ownerId() == block_)) return false;
  table_.close();
  table_ = sortTableOf(*entity);
  block_ = entity->ownerId();
  return isMoved();
}

void bringLayersToTop(const std::vector<const ACHAR*>& layers) {
  std::vector<AcDbObjectId> layerIds(layers.size());
  std::transform(layers.begin(), layers.end(), layerIds.begin(), [](const ACHAR* name) { return findLayer(name); });
  std::vector<std::vector<AcDbObjectId>> entities(layers.size());
  for (const AcDbObjectId id : Selector::entities().onLayers(layers)) {
    const Opened<AcDbEntity> entity(id, AcDb::kForRead);
    if (!entity) continue;
    const auto layer = std::find(layerIds.begin(), layerIds.end(), entity->layerId());
    if (layer != layerIds.end()) entities[static_cast<std::size_t>(layer - layerIds.begin())].push_back(id);
  }
  DrawOrder order;
  for (const std::vector<AcDbObjectId>& onLayer : entities) {
    static_cast<void>(
        std::all_of(onLayer.begin(), onLayer.end(), [&](AcDbObjectId id) { return order.moveToTop(id); }));
  }
}

void regenerate() { ads_regen(); }

}  // namespace OrvLib
