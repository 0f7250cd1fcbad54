// Blocks and entities, with the parts of polylines and references.
#include <algorithm>
#include <cmath>

#include "Dxf/Fields.h"
#include "Dxf/Rebuilder.h"
#include "Dxf/Upgrade.h"
#include "Text/Text.h"

namespace host::dxf {

void Rebuilder::writeBlock(std::string& out, Outline::Block& block) {
  const std::uint64_t owner = block.begin.owner;
  RawRecord begin = block.begin;
  if (begin.isMarked()) {
    emit(out, begin, owner, Kind::Entity);
  } else {
    TagWriter tags = writer();
    upgradeBlock(tags, begin, {begin.handle, owner}, blockName(begin));
    out += tags.str();
  }
  writeEntityList(out, block.entities, [&](const RawRecord&) { return owner; });
  if (block.end) {
    emit(out, *block.end, owner, Kind::Entity);
  } else {
    TagWriter tags = writer();
    tags.raw(0, "ENDBLK").handle(5, newHandle()).handle(330, owner).raw(100, "AcDbEntity").raw(8, "0");
    out += tags.raw(100, "AcDbBlockEnd").str();
  }
}

void Rebuilder::writeBasicBlock(std::string& out, const Outline::Block& block) {
  const std::uint64_t owner = basicHandle(block.begin.owner);
  for (RawRecord record : {block.begin, *block.end}) {
    record.handle = basicHandle(record.handle);
    handles_.insert(record.handle);
    emitBasic(out, record, owner);
  }
}

void Rebuilder::writeEntities(std::string& out) {
  writeEntityList(out, outline_.entities, [&](const RawRecord& record) {
    if (record.owner == model_ || record.owner == paper_) return record.owner;
    Tag tag;
    tag.value = firstValue(record.bytes, 67).value_or("");
    return tag.integer() != 0 ? paper_ : model_;
  });
}

int Rebuilder::flagsOf(const RawRecord& record) {
  Tag tag;
  tag.value = firstValue(record.bytes, 70).value_or("");
  return static_cast<int>(tag.integer() & 0xFFFF);
}

std::uint64_t Rebuilder::partOwner(const RawRecord& part, const RawRecord& whole, std::uint64_t owner) {
  return part.owner == owner && part.isMarked() ? owner : whole.handle;
}

std::string Rebuilder::whyNot(const RawRecord& record) const {
  if (record.type != "INSERT") return {};
  if (cut_.contains(record.handle)) return "its block contains itself";
  const std::string_view name = trimmed(nameOf(record));
  if (name.empty()) return "it names no block";
  return blockNames_.contains(folded(name)) ? "" : "its block " + shownName(name) + " is not in the drawing";
}

void Rebuilder::cutBlockCycles() {
  struct Reference {
    std::size_t block;
    std::uint64_t insert;
  };
  std::unordered_map<std::wstring, std::size_t> index;
  for (std::size_t i = 0; i < outline_.blocks.size(); ++i)
    index.emplace(folded(blockName(outline_.blocks[i].begin)), i);
  std::vector<std::vector<Reference>> references(outline_.blocks.size());
  for (std::size_t i = 0; i < outline_.blocks.size(); ++i) {
    for (const RawRecord& record : outline_.blocks[i].entities) {
      if (record.type != "INSERT") continue;
      const auto found = index.find(folded(nameOf(record)));
      if (found != index.end()) references[i].push_back({found->second, record.handle});
    }
  }
  enum class State : char { New, Open, Done };
  std::vector<State> states(references.size(), State::New);
  std::vector<std::pair<std::size_t, std::size_t>> path;  // block, next reference
  for (std::size_t start = 0; start < references.size(); ++start) {
    if (states[start] != State::New) continue;
    path.emplace_back(start, 0);
    states[start] = State::Open;
    while (!path.empty()) {
      auto& [block, next] = path.back();
      if (next == references[block].size()) {
        states[block] = State::Done;
        path.pop_back();
        continue;
      }
      const Reference reference = references[block][next++];
      if (states[reference.block] == State::Open) cut_.insert(reference.insert);
      if (states[reference.block] != State::New) continue;
      states[reference.block] = State::Open;
      path.emplace_back(reference.block, 0);
    }
  }
}

/// A reference's tags with the one that says that attributes follow.
std::string Rebuilder::withAttributesAnnounced(std::string_view bytes) const {
  TagWriter tags = writer();
  bool isSaid = false;
  Tag tag;
  while (readTag(bytes, tag)) {
    if (tag.code == 66) continue;
    if (tag.code == 2 && !std::exchange(isSaid, true)) tags.integer(66, 1);
    tags.bytes(tag.bytes);
  }
  return tags.take();
}

Rebuilder::Parts Rebuilder::takeParts(std::vector<RawRecord>& records, std::size_t& next) {
  RawRecord& whole = records[next - 1];
  const bool isPolyline = whole.type == "POLYLINE";
  const std::string_view type = isPolyline ? "VERTEX" : "ATTRIB";
  const auto isType = [&](std::size_t index, std::string_view wanted) {
    return index < records.size() && records[index].type == wanted;
  };
  Parts parts;
  Tag announced;
  announced.value = firstValue(whole.bytes, 66).value_or("");
  parts.areAnnounced = isPolyline || announced.integer() != 0;
  if (!parts.areAnnounced && isType(next, type)) {
    parts.areAnnounced = true;
    whole.bytes = keep(withAttributesAnnounced(whole.bytes));
    problems_.add(Code::RecordMended, whole.at, whole.handle,
                  "it did not say that it has attributes; they were given back to it");
  }
  if (!parts.areAnnounced) return parts;
  for (;; ++next) {
    if (isType(next, type)) {
      parts.records.push_back(&records[next]);
    } else if (isType(next, "SEQEND") && isType(next + 1, type)) {
      problems_.leftOut(records[next].at, "SEQEND", records[next].handle, "what it ends goes on behind it");
    } else {
      break;
    }
  }
  if (isType(next, "SEQEND")) parts.end = &records[next++];
  return parts;
}

void Rebuilder::writeEntityList(std::string& out, std::vector<RawRecord>& records, const OwnerOf& ownerOf) {
  for (std::size_t i = 0; i < records.size();) {
    RawRecord& record = records[i++];
    if (isPart(record.type)) {
      problems_.leftOut(record.at, record.type, record.handle, "it belongs to no polyline or reference");
      continue;
    }
    const bool isPolyline = record.type == "POLYLINE";
    const Parts parts = isPolyline || record.type == "INSERT" ? takeParts(records, i) : Parts();
    if (const std::string why = whyNot(record); !why.empty()) {
      problems_.leftOut(record.at, record.type, record.handle, why);
      for (const RawRecord* const part : parts.records) {
        problems_.leftOut(part->at, part->type, part->handle, "its reference was left out");
      }
      continue;
    }
    const std::uint64_t owner = ownerOf(record);
    const bool isLight = isPolyline && isOld_ && isLightweight(record);
    if (isPolyline && parts.records.empty()) {
      problems_.leftOut(record.at, record.type, record.handle, "it has no vertices");
      continue;
    }
    if (isLight) {
      TagWriter tags = writer();
      writeLightweight(tags, record, parts.records, {record.handle, owner});
      out += tags.str();
      continue;
    }
    emit(out, record, owner, Kind::Entity);
    const int flags = isPolyline ? flagsOf(record) : 0;
    for (RawRecord* const part : parts.records) {
      emit(out, *part, partOwner(*part, record, owner), Kind::Entity, flags);
    }
    if (parts.end != nullptr) {
      emit(out, *parts.end, partOwner(*parts.end, record, owner), Kind::Entity);
    } else if (parts.areAnnounced) {
      if (!isOld_)
        problems_.add(Code::RecordMended, record.at, record.handle, "it is not ended by SEQEND; one was added");
      TagWriter tags = writer();
      tags.raw(0, "SEQEND").handle(5, newHandle()).handle(330, record.handle).raw(100, "AcDbEntity");
      out += tags.raw(8, trimmed(firstValue(record.bytes, 8).value_or("0"))).str();
    }
  }
}

}  // namespace host::dxf
