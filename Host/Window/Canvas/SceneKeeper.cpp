#include "Window/Canvas/SceneKeeper.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "Geometry/Layers.h"
#include "Picture/EntityPainter.h"

namespace host::window {
namespace {

using database::DxfType;
using database::Slot;

constexpr std::size_t kChunkEntities = 256;
constexpr std::size_t kSmallChunk = 128;  // smaller ones are joined with what comes next to them
/// Of the extents' diagonal: at first sight curves are as fine as a view of some thousand pixels shows.
constexpr double kFirstDeviation = 1.0 / 50'000;
constexpr double kFinerBy = 8;
constexpr std::size_t kMostParts = 64;  // that are told apart when something changes
constexpr Box kEverywhere{-1e16, -1e16, 1e16, 1e16};

std::uint64_t mixed(std::uint64_t hash, std::uint64_t value) {
  hash = (hash ^ value) * 0x9E3779B97F4A7C15U;
  return hash ^ hash >> 32;
}
std::uint64_t addressOf(const void* p) { return std::bit_cast<std::uint64_t>(p); }

/// Of a record as it stands. Pieces of records never change their bytes, so their addresses tell.
std::uint64_t fingerprintOf(const Slot& slot) {
  std::uint64_t hash = mixed(slot.layer + 1, slot.isErased() ? 1 : 0);
  if ((slot.flags & (database::kNew | database::kChanged)) == 0) {
    hash = mixed(hash, addressOf(slot.begin));
  } else {
    const database::Record record = slot.record();
    for (const std::string_view piece : record.pieces())
      hash = mixed(mixed(hash, addressOf(piece.data())), piece.size());
  }
  if (slot.unmadeVertices() != nullptr) return mixed(hash, addressOf(slot.unmadeVertices()));
  if (slot.hasSubs())
    for (const Slot* sub = slot.firstSub(); sub != nullptr; sub = sub->nextSub) hash = mixed(hash, fingerprintOf(*sub));
  return hash;
}

/// Looks the same however finely it is laid out.
bool isStraight(const Slot& entity) {
  switch (entity.type) {
    case DxfType::Line:
    case DxfType::Point:
    case DxfType::Text:
    case DxfType::MText:
    case DxfType::Solid:
    case DxfType::Trace:
    case DxfType::Face3d:
    case DxfType::XLine:
    case DxfType::Ray:
      return true;
    default:
      return false;
  }
}

}  // namespace

std::size_t Scene::entityCount() const {
  std::size_t count = 0;
  for (const auto& chunk : chunks) count += chunk->entities.size();
  return count;
}

/// Lays entities out into chunks.
struct SceneKeeper::Composer {
  Composer(SceneKeeper& keeper, double curveDeviation)
      : keeper_(keeper),
        layers_(keeper.drawing_),
        deviation_(curveDeviation),
        painter_(keeper.drawing_, options_, keeper.glyphs_, viewOf(keeper, curveDeviation), recorder_) {
    painter_.begin(keeper.space_);
  }
  static picture::View viewOf(const SceneKeeper& keeper, double deviation) {
    picture::View view;
    view.toPicture.y = {0, -1, 0};
    view.toPicture.origin = {-keeper.origin_.x, keeper.origin_.y, 0};
    view.deviation = deviation;
    view.thinnestLine = 0;
    view.keepsRoles = true;
    return view;
  }

  void compose(Slot* slot, SceneChunk& chunk) {
    picture::Recording& recording = chunk.recording;
    SceneEntity entity;
    entity.slot = slot;
    entity.layer = slot->layer;
    entity.firstItem = static_cast<std::uint32_t>(recording.items.size());
    recorder_.begin(recording);
    painter_.paintOne(*slot);
    entity.itemCount = static_cast<std::uint32_t>(recording.items.size()) - entity.firstItem;
    entity.box = recorder_.box();
    entity.isEndless = recorder_.hasEndless();
    entity.deviation = isStraight(*slot) ? 0 : static_cast<float>(deviation_);
    entity.fingerprint = fingerprintOf(*slot);
    if (entity.itemCount > 0) {
      const geometry::LayerState& layer = layers_.at(slot->layer);
      entity.isPickable = layer.isDrawn() && !database::entityProperties(*slot).invisible;
      entity.isLocked = layer.locked;
    }
    chunk.entities.push_back(entity);
  }

 private:
  SceneKeeper& keeper_;
  picture::PictureOptions options_;
  geometry::LayerStates layers_;
  double deviation_;
  picture::Recorder recorder_;
  picture::EntityPainter painter_;
};

namespace {

void finish(SceneChunk& chunk) {
  for (const SceneEntity& entity : chunk.entities) {
    chunk.box.add(entity.box);
    chunk.hasEndless = chunk.hasEndless || entity.isEndless;
  }
  for (const picture::Recording::Item& item : chunk.recording.items)
    chunk.heaviestMm = std::max(chunk.heaviestMm, static_cast<double>(item.width));
}

void copyEntity(const SceneChunk& from, std::uint32_t index, SceneChunk& to) {
  SceneEntity entity = from.entities[index];
  const std::uint32_t first = entity.firstItem;
  entity.firstItem = static_cast<std::uint32_t>(to.recording.items.size());
  to.recording.append(from.recording, first, entity.itemCount);
  to.entities.push_back(entity);
}

}  // namespace

SceneKeeper::SceneKeeper(database::DrawingDatabase& drawing, const database::BlockContents& space)
    : drawing_(drawing), space_(space) {
  chooseOriginAndDeviation();
  begin();
}

SceneKeeper::SceneKeeper(const SceneKeeper& former, const std::atomic<bool>& isUnwanted)
    : drawing_(former.drawing_),
      space_(former.space_),
      index_(former.index_.withoutBoxes()),
      origin_(former.origin_),
      deviation_(former.deviation_),
      isUnwanted_(&isUnwanted) {
  begin();
  isUnwanted_ = nullptr;
}

void SceneKeeper::begin() {
  styles_ = readStyles();
  blocks_ = blockRecords();
  const std::vector<Slot*> order = drawing_.drawOrder(space_);
  places_.reserve(order.size());
  rebuild(order, {});
}

SceneKeeper::~SceneKeeper() = default;

void SceneKeeper::chooseOriginAndDeviation() {
  constexpr std::size_t kSample = 1000;
  const auto& entities = space_.entities;
  const std::size_t step = entities.size() / kSample + 1;
  Box box;
  for (std::size_t i = 0; i < entities.size(); i += step)
    if (!entities[i]->isErased()) box.add(geometry::entityExtents(*entities[i]));
  if (box.isEmpty()) box = {0, 0, 0, 0};
  origin_ = {std::round((box.minX + box.maxX) / 2), std::round((box.minY + box.maxY) / 2)};
  const double diagonal = std::hypot(box.maxX - box.minX, box.maxY - box.minY);
  deviation_ = diagonal > 0 ? diagonal * kFirstDeviation : kFirstDeviation;
  index_ = BoxIndex<const Slot*>(diagonal > 0 ? diagonal / 1024 : 1e-3);
}

SceneKeeper::Styles SceneKeeper::readStyles() const {
  Styles styles;
  const auto figure = [&](const char* name, int code) {
    styles.general = mixed(styles.general, std::bit_cast<std::uint64_t>(drawing_.headerReal(name, code).value_or(0)));
  };
  figure("$LTSCALE", 40);
  figure("$PDSIZE", 40);
  styles.general = mixed(styles.general, static_cast<std::uint64_t>(drawing_.headerInteger("$PDMODE", 70).value_or(0)));
  styles.general =
      mixed(styles.general, static_cast<std::uint64_t>(drawing_.headerInteger("$PSLTSCALE", 70).value_or(1)));
  // A new record is of no use to what was there before.
  for (const DxfType type : {DxfType::LineType, DxfType::TextStyle, DxfType::DimStyle})
    for (const Slot* record : drawing_.records(type))
      if ((record->flags & database::kNew) == 0) styles.general = mixed(styles.general, fingerprintOf(*record));
  for (const Slot* record : drawing_.records(DxfType::Layer))
    styles.layers[drawing_.findLayer(drawing_.recordName(*record))] = fingerprintOf(*record);
  constexpr std::uint16_t kTouched = database::kNew | database::kChanged | database::kErased;
  drawing_.forEachSlot([&](const Slot& slot) {
    if ((slot.flags & kTouched) == 0 || !slot.isEntity() || slot.owner == space_.record) return;
    if (slot.isSubEntity() && slot.owner != nullptr && slot.owner->owner == space_.record) return;
    styles.elsewhere ^= mixed(addressOf(&slot), fingerprintOf(slot));
  });
  return styles;
}

std::unordered_set<const Slot*> SceneKeeper::blockRecords() const {
  const auto& records = drawing_.records(DxfType::BlockRecord);
  return {records.begin(), records.end()};
}

bool SceneKeeper::dependsOnOthers(const Slot& entity) const {
  switch (entity.type) {
    case DxfType::Insert:
    case DxfType::Dimension:
    case DxfType::Leader:
    case DxfType::MultiLeader:
    case DxfType::Table:
    case DxfType::Viewport:
      return true;
    default:
      return false;
  }
}

SceneRef SceneKeeper::find(const Slot* entity) const {
  const auto found = places_.find(entity);
  return found == places_.end() ? SceneRef{} : SceneRef{found->second.chunk.get(), found->second.index};
}

std::uint64_t SceneKeeper::heightOf(SceneRef entity) const {
  const auto found = chunkOrder_.find(entity.chunk);
  return (found == chunkOrder_.end() ? 0 : std::uint64_t{found->second} << 32) | entity.index;
}

/// Entities that look different because of other records than their own.
void SceneKeeper::addOlder(const Styles& now, Anew& anew) const {
  const bool isAll = now.general != styles_.general;
  const bool isDependent = isAll || now.elsewhere != styles_.elsewhere || now.layers != styles_.layers;
  if (!isDependent) return;
  std::unordered_set<std::uint32_t> layers;
  for (const auto& [layer, fingerprint] : now.layers) {
    const auto before = styles_.layers.find(layer);
    if (before == styles_.layers.end() || before->second != fingerprint) layers.insert(layer);
  }
  for (const auto& [layer, fingerprint] : styles_.layers)
    if (!now.layers.contains(layer)) layers.insert(layer);
  for (const auto& chunk : scene_->chunks)
    for (const SceneEntity& entity : chunk->entities)
      if (isAll || layers.contains(entity.layer) || dependsOnOthers(*entity.slot))
        anew.emplace(entity.slot, std::min<double>(deviation_, entity.deviation > 0 ? entity.deviation : deviation_));
}

std::optional<std::vector<Box>> SceneKeeper::update(const editor::DrawingChange& change, std::size_t most) {
  Anew anew;
  // As finely as it was laid out before.
  const auto add = [&](const Slot* slot, SceneRef before) {
    const bool isFiner = before && before->deviation > 0 && static_cast<double>(before->deviation) < deviation_;
    anew.emplace(slot, isFiner ? static_cast<double>(before->deviation) : deviation_);
  };
  const std::vector<Slot*> order = drawing_.drawOrder(space_);
  bool isElsewhere = false, isStyle = change.isWhole;
  for (const Slot* object : change.objects) {
    switch (object->type) {
      case DxfType::Layer:
      case DxfType::LineType:
      case DxfType::TextStyle:
      case DxfType::DimStyle:
      case DxfType::Header:
        isStyle = true;
        break;
      default:
        break;
    }
    while (object->isSubEntity() && object->owner != nullptr && object->owner->isEntity()) object = object->owner;
    if (object->owner == space_.record)
      add(object, find(object));
    else if (object->isEntity() && blocks_.contains(object->owner))
      isElsewhere = true;
  }
  if (change.isWhole) {
    std::uint64_t highest = 0;
    for (const Slot* slot : order) {
      const SceneRef entity = find(slot);
      const std::uint64_t height = entity ? heightOf(entity) : 0;
      // What stands above its former upper neighbours was moved, or these were: looked at anew, too.
      if (!entity || entity->fingerprint != fingerprintOf(*slot) || height < highest) add(slot, entity);
      highest = std::max(highest, height);
    }
  }
  Styles now = isStyle ? readStyles() : styles_;
  if (isElsewhere && !isStyle) now.elsewhere = mixed(now.elsewhere, 1);
  addOlder(now, anew);
  styles_ = std::move(now);
  if (isElsewhere && !isStyle) styles_.elsewhere = readStyles().elsewhere;
  blocks_ = blockRecords();
  if (anew.size() > most) return std::nullopt;
  return rebuild(order, anew);
}

std::vector<Box> SceneKeeper::refine(const Box& visible, double deviation) {
  if (deviation >= deviation_) return {};  // as fine as that from the start
  Anew anew;
  query(visible, [&](SceneRef entity) {
    if (static_cast<double>(entity->deviation) > deviation) anew.emplace(entity->slot, deviation / kFinerBy);
  });
  if (anew.empty()) return {};
  std::vector<Slot*> order;
  order.reserve(places_.size());
  for (const auto& chunk : scene_->chunks)
    for (const SceneEntity& entity : chunk->entities) order.push_back(entity.slot);
  return rebuild(order, anew);
}

/// Makes the scene of the entities in their order: what is in `anew` or unknown is laid out, the rest is kept.
std::vector<Box> SceneKeeper::rebuild(const std::vector<Slot*>& order, const Anew& anew) {
  std::vector<Box> changed;
  const auto note = [&](const SceneEntity& entity) {
    if (entity.itemCount == 0) return;
    changed.push_back(entity.isEndless ? kEverywhere : entity.box);
  };
  auto scene = std::make_shared<Scene>();
  scene->origin = origin_;
  std::vector<std::shared_ptr<SceneChunk>> made;  // those of `scene->chunks` that are new
  std::shared_ptr<SceneChunk> open;
  const auto close = [&] {
    if (open == nullptr) return;
    finish(*open);
    scene->chunks.push_back(open);
    made.push_back(std::move(open));
    open = nullptr;
  };
  const auto room = [&]() -> SceneChunk& {
    if (open != nullptr && open->entities.size() >= kChunkEntities) close();
    if (open == nullptr) open = std::make_shared<SceneChunk>();
    return *open;
  };
  std::unordered_map<double, std::unique_ptr<Composer>> composers;
  const auto compose = [&](Slot* slot, double deviation, const SceneEntity* before) {
    auto& composer = composers[deviation];
    if (composer == nullptr) composer = std::make_unique<Composer>(*this, deviation);
    SceneChunk& chunk = room();
    const std::size_t points = chunk.recording.points.size();
    composer->compose(slot, chunk);
    SceneEntity& entity = chunk.entities.back();
    if (before == nullptr || before->deviation == 0 || before->fingerprint != entity.fingerprint) return;
    // Laid out more finely, and no point more: there are no curves.
    std::size_t had = 0;
    const SceneRef old = find(slot);
    for (std::uint32_t i = 0; i < old->itemCount; ++i) {
      const picture::Recording::Item& item = old.chunk->recording.items[old->firstItem + i];
      for (std::uint32_t r = 0; r < item.ringCount; ++r) had += old.chunk->recording.rings[item.firstRing + r].count;
    }
    if (chunk.recording.points.size() - points == had && chunk.recording.patterns.empty()) entity.deviation = 0;
  };
  const auto isKept = [&](const Slot* slot) { return anew.empty() || !anew.contains(slot); };

  std::unordered_set<const SceneChunk*> kept;
  for (std::size_t i = 0; i < order.size();) {
    Slot* const slot = order[i];
    const auto place = places_.find(slot);
    if (isUnwanted_ != nullptr && isUnwanted_->load(std::memory_order_relaxed)) return {};
    if (place == places_.end()) {
      compose(slot, deviation_, nullptr);
      ++i;
      continue;
    }
    const std::shared_ptr<const SceneChunk>& chunk = place->second.chunk;
    const std::size_t count = chunk->entities.size();
    bool isWhole = place->second.index == 0 && count >= kSmallChunk && i + count <= order.size();
    for (std::size_t k = 0; isWhole && k < count; ++k)
      isWhole = chunk->entities[k].slot == order[i + k] && isKept(order[i + k]);
    if (isWhole && (open == nullptr || open->entities.size() >= kSmallChunk || count >= kChunkEntities)) {
      close();
      scene->chunks.push_back(chunk);
      kept.insert(chunk.get());
      i += count;
      continue;
    }
    if (const auto again = anew.find(slot); again != anew.end()) {
      note(chunk->entities[place->second.index]);
      compose(slot, again->second, &chunk->entities[place->second.index]);
    } else {
      copyEntity(*chunk, place->second.index, room());
    }
    ++i;
  }
  close();

  // Entities of chunks that are gone leave the index, unless they stand in another chunk now.
  std::unordered_set<const Slot*> living;
  for (const auto& chunk : made)
    for (const SceneEntity& entity : chunk->entities) living.insert(entity.slot);
  bool hadEndless = false;
  if (scene_ != nullptr)
    for (const auto& chunk : scene_->chunks) {
      if (kept.contains(chunk.get())) continue;
      for (const SceneEntity& entity : chunk->entities) {
        const bool isLiving = living.contains(entity.slot);
        if (!isLiving) {
          note(entity);
          places_.erase(entity.slot);
        }
        hadEndless = hadEndless || entity.isEndless;
        if (entity.itemCount > 0 && (!isLiving || anew.contains(entity.slot))) index_.remove(entity.box, entity.slot);
      }
    }
  if (hadEndless)
    std::erase_if(endless_, [&](const Slot* slot) { return !places_.contains(slot) || living.contains(slot); });
  for (const auto& chunk : made)
    for (std::uint32_t i = 0; i < chunk->entities.size(); ++i) {
      const SceneEntity& entity = chunk->entities[i];
      const auto [place, isNew] = places_.insert_or_assign(entity.slot, Place{chunk, i});
      if (entity.itemCount > 0 && (isNew || anew.contains(entity.slot))) {
        index_.insert(entity.box, entity.slot);
        note(entity);
      }
      if (entity.isEndless) endless_.push_back(entity.slot);
    }
  chunkOrder_.clear();
  for (std::uint32_t i = 0; i < scene->chunks.size(); ++i) {
    const SceneChunk& chunk = *scene->chunks[i];
    chunkOrder_[&chunk] = i;
    scene->heaviestMm = std::max(scene->heaviestMm, chunk.heaviestMm);
    if (!chunk.hasEndless) {
      scene->extents.add(chunk.box);
      continue;
    }
    for (const SceneEntity& entity : chunk.entities)
      if (!entity.isEndless) scene->extents.add(entity.box);
  }
  scene_ = std::move(scene);
  if (changed.size() > kMostParts) {
    Box all;
    for (const Box& box : changed) all.add(box);
    changed = {all};
  }
  return changed;
}

}  // namespace host::window
