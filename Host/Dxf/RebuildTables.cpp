// Tables and blocks: what the drawing has, what it lacks, and the names that entities use.
#include <algorithm>
#include <cmath>

#include "Dxf/Fields.h"
#include "Dxf/Rebuilder.h"
#include "Dxf/Upgrade.h"
#include "Text/Text.h"

namespace host::dxf {

void Rebuilder::matchTables() {
  for (std::size_t i = 0; i < kTableNames.size(); ++i) {
    Outline::Table& own = outline_.tables[i];
    Outline::Table& basic = basic_.tables[i];
    if (!own.head) {
      own.head = basic.head;
      own.head->isOwn = false;
      own.head->owner = 0;
      own.head->handle = basicHandle(basic.head->handle);
      handles_.insert(own.head->handle);
    } else {
      basicHandles_[basic.head->handle] = own.head->handle;
    }
    std::unordered_map<std::wstring, std::uint64_t> names;
    for (const RawRecord& record : own.records) names.try_emplace(folded(nameOf(record)), record.handle);
    for (RawRecord record : basic.records) {
      const auto [found, isMissing] = names.try_emplace(folded(nameOf(record)), basicHandle(record.handle));
      if (!isMissing) {
        basicHandles_[record.handle] = found->second;
        continue;
      }
      record.isOwn = false;
      record.handle = found->second;
      handles_.insert(record.handle);
      own.records.push_back(record);
    }
    for (const auto& [name, handle] : names) names_[i].insert(name);
  }
}

std::string_view Rebuilder::blockName(const RawRecord& begin) const {
  const std::string_view name = trimmed(nameOf(begin));
  if (isOld_ && text::equalFolded(codec_.decode(name), L"$MODEL_SPACE")) return "*Model_Space";
  if (isOld_ && text::equalFolded(codec_.decode(name), L"$PAPER_SPACE")) return "*Paper_Space";
  return name;
}

void Rebuilder::matchBlocks() {
  std::unordered_set<std::wstring> taken;
  std::vector<Outline::Block> kept;
  kept.reserve(outline_.blocks.size());
  std::vector<RawRecord>& records = outline_.tables[kBlockRecords].records;
  std::unordered_map<std::wstring, std::uint64_t> byName;
  for (const RawRecord& record : records) byName.try_emplace(folded(nameOf(record)), record.handle);
  for (Outline::Block& block : outline_.blocks) {
    const std::string_view name = blockName(block.begin);
    const std::wstring key = folded(name);
    if (name.empty() || !taken.insert(key).second) {
      problems_.leftOut(block.begin.at, "BLOCK", block.begin.handle,
                        name.empty() ? "it has no name" : "another block has the name " + shownName(name));
      for (const RawRecord& record : block.entities) {
        problems_.leftOut(record.at, record.type, record.handle, "its block was left out");
      }
      continue;
    }
    const auto found = byName.find(key);
    std::uint64_t recordHandle = found != byName.end() ? found->second : 0;
    if (recordHandle == 0) {
      recordHandle = newHandle();
      byName.emplace(key, recordHandle);
      if (!isOld_)
        problems_.add(Code::ObjectAdded, block.begin.at, block.begin.handle,
                      "the block had no block record; it got one");
      addRecord(kBlockRecords, name, recordHandle);
    }
    block.begin.owner = recordHandle;
    kept.push_back(std::move(block));
  }
  outline_.blocks = std::move(kept);
  // Records without a block: the spaces come from the basic drawing, others are made empty.
  std::vector<Outline::Block> basic;
  for (Outline::Block& block : basic_.blocks) {
    if (!taken.contains(folded(nameOf(block.begin)))) {
      taken.insert(folded(nameOf(block.begin)));
      basic.push_back(std::move(block));
    }
  }
  basic_.blocks = std::move(basic);
  for (const RawRecord& record : records) {
    if (!taken.insert(folded(nameOf(record))).second) continue;
    Outline::Block block;
    block.begin.type = "BLOCK";
    block.begin.bytes = keep(writer().raw(0, "BLOCK").raw(8, "0").raw(2, nameOf(record)).str());
    block.begin.handle = newHandle();
    block.begin.owner = record.handle;
    problems_.add(Code::ObjectAdded, record.at, record.handle, "the block record had no block; an empty one was added");
    outline_.blocks.push_back(std::move(block));
  }
  model_ = byName[L"*model_space"];
  paper_ = byName[L"*paper_space"];
  for (const auto& [name, handle] : byName) blockNames_.emplace(name, handle);
}

std::string_view Rebuilder::keep(std::string bytes) {
  outline_.mended.push_back(std::move(bytes));
  return outline_.mended.back();
}

void Rebuilder::addRecord(std::size_t table, std::string_view name, std::uint64_t handle) {
  TagWriter out = writer();
  out.raw(0, kTableNames[table]).raw(2, name).integer(70, 0);
  if (table == kLayers) out.integer(62, 7).raw(6, "Continuous");
  if (table == kLinetypes) out.raw(3, "").integer(72, 65).integer(73, 0).real(40, 0);
  if (table == kStyles) {
    out.real(40, 0).real(41, 1).real(50, 0).integer(71, 0).real(42, 2.5).raw(3, "txt").raw(4, "");
  }
  RawRecord record;
  record.type = kTableNames[table];
  record.bytes = keep(out.take());
  record.handle = handle;
  outline_.tables[table].records.push_back(record);
}

void Rebuilder::addMissingNames() {
  forEachRecord([&](const RawRecord& record, Kind kind) { useNames(record, kind); });
  for (const auto& [table, raw] : usedInOrder_) {
    const std::wstring key = folded(raw.name);
    if (key.empty() || names_[table].contains(key)) continue;
    names_[table].insert(key);
    if (!isOld_) {
      problems_.add(
          Code::ObjectAdded, raw.at, raw.handle,
          std::string(kTableNames[table]) + " " + shownName(raw.name) + " is used but was not defined; it was added");
    }
    addRecord(table, raw.name, newHandle());
  }
}

void Rebuilder::use(std::size_t table, std::string_view raw, const RawRecord& by) {
  constexpr std::size_t kLongest = 255;
  const std::string_view name = trimmed(raw);
  if (name.empty() || name.size() > kLongest) return;
  if (used_[table].insert(name).second) usedInOrder_.push_back({table, {name, by.at, by.handle}});
}

void Rebuilder::writeTables(std::string& out) {
  for (std::size_t i = 0; i < kTableNames.size(); ++i) {
    Outline::Table& table = outline_.tables[i];
    RawRecord& head = *table.head;
    if (head.isOwn && head.isMarked()) {
      emit(out, head, 0, Kind::TableRecord);
    } else {
      TagWriter tags = writer();
      tags.raw(0, "TABLE").raw(2, kTableNames[i]).handle(5, head.handle).handle(330, 0);
      tags.raw(100, "AcDbSymbolTable").integer(70, static_cast<std::int64_t>(table.records.size()));
      if (i == kDimStyles) tags.raw(100, "AcDbDimStyleTable").integer(71, 0);
      out += tags.str();
    }
    for (RawRecord& record : table.records) {
      if (!record.isOwn) {
        emitBasic(out, record, head.handle);
      } else if (record.isMarked()) {
        emit(out, record, head.handle, Kind::TableRecord);
      } else {
        TagWriter tags = writer();
        upgradeTableRecord(tags, record, {record.handle, head.handle}, i);
        if (i == kBlockRecords && !firstValue(record.bytes, 340)) tags.handle(340, layoutOf(record.handle));
        out += tags.str();
      }
    }
    out += writer().raw(0, "ENDTAB").str();
  }
  for (Outline::Table& table : outline_.otherTables) {
    emit(out, *table.head, 0, Kind::TableRecord);
    for (RawRecord& record : table.records) emit(out, record, table.head->handle, Kind::TableRecord);
    out += writer().raw(0, "ENDTAB").str();
  }
}

std::uint64_t Rebuilder::layoutOf(std::uint64_t blockRecord) const {
  const auto found = layouts_.find(blockRecord);
  return found != layouts_.end() ? found->second : 0;
}

void Rebuilder::useNames(const RawRecord& record, Kind kind) {
  const std::string_view type = record.type;
  const bool isText = type == "TEXT" || type == "ATTRIB" || type == "ATTDEF" || type == "MTEXT";
  const bool hasStyle = type == "DIMENSION" || type == "LEADER" || type == "TOLERANCE";
  const bool isEntity = kind == Kind::Entity;
  Tag tag;
  for (std::string_view rest = record.bytes; readTag(rest, tag);) {
    if (tag.code == 8 && isEntity) use(kLayers, tag.value, record);
    if (tag.code == 6 && (isEntity || type == "LAYER")) use(kLinetypes, tag.value, record);
    if (tag.code == 7 && isText) use(kStyles, tag.value, record);
    if (tag.code == 3 && hasStyle) use(kDimStyles, tag.value, record);
    if (tag.code == 1001) use(kAppIds, tag.value, record);
  }
}

}  // namespace host::dxf
