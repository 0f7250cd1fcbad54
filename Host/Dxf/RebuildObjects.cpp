// The dictionaries: a root, what it has to hold, owners.
#include <algorithm>
#include <cmath>

#include "Dxf/Fields.h"
#include "Dxf/Rebuilder.h"
#include "Dxf/Upgrade.h"
#include "Text/Text.h"

namespace host::dxf {

bool Rebuilder::isDictionary(const RawRecord& record) {
  return record.type == "DICTIONARY" || record.type == "ACDBDICTIONARYWDFLT";
}

void Rebuilder::findRoot() {
  for (RawRecord& record : outline_.objects) {
    if (record.type != "DICTIONARY") continue;
    if (root_ == nullptr || (root_->owner != 0 && record.owner == 0)) root_ = &record;
  }
  std::unordered_set<std::wstring> entries;
  if (root_ != nullptr) {
    basicHandles_[basic_.objects.front().handle] = root_->handle;
    Tag tag;
    for (std::string_view rest = root_->bytes; readTag(rest, tag) && tag.code < 1000;) {
      if (tag.code == 3) entries.insert(folded(tag.value));
    }
  }
  // What the root lacks comes from the basic drawing, with what it holds.
  std::unordered_set<std::uint64_t> wanted;
  Tag tag;
  std::string_view key;
  for (std::string_view rest = basic_.objects.front().bytes; readTag(rest, tag);) {
    if (tag.code == 3) key = tag.value;
    if (tag.code != 350 || entries.contains(folded(key))) continue;
    wanted.insert(tag.handle());
    missingEntries_.emplace_back(key, basicHandle(tag.handle()));
    if (root_ != nullptr && !isOld_) {
      problems_.add(Code::ObjectAdded, root_->at, root_->handle,
                    "the dictionary " + std::string(key) + " was missing; it was added");
    }
  }
  for (std::size_t i = 0; i < basic_.objects.size(); ++i) {
    RawRecord& record = basic_.objects[i];
    const bool isRoot = i == 0;
    if (isRoot ? root_ != nullptr : !wanted.contains(record.handle) && !wanted.contains(record.owner)) continue;
    if (record.type == "LAYOUT") {
      const std::uint64_t block = basicHandle(lastHandle(record, 330));
      layouts_[block] = basicHandle(record.handle);
    }
    handles_.insert(basicHandle(record.handle));
    basicObjects_.push_back(&record);
  }
  if (root_ == nullptr) rootHandle_ = basicHandle(basic_.objects.front().handle);
  if (root_ != nullptr) rootHandle_ = root_->handle;
}

std::uint64_t Rebuilder::lastHandle(const RawRecord& record, int code) {
  std::uint64_t handle = 0;
  Tag tag;
  for (std::string_view rest = record.bytes; readTag(rest, tag);) {
    if (tag.code == code) handle = tag.handle();
  }
  return handle;
}

void Rebuilder::settleOwners() {
  std::unordered_map<std::uint64_t, std::uint64_t> listed;
  std::unordered_map<std::uint64_t, RawRecord*> byHandle;
  for (RawRecord& record : outline_.objects) {
    byHandle.emplace(record.handle, &record);
    if (!isDictionary(record)) continue;
    Tag tag;
    for (std::string_view rest = record.bytes; readTag(rest, tag) && tag.code < 1000;) {
      if (tag.code == 350 || tag.code == 360) listed.try_emplace(resolved(tag), record.handle);
    }
  }
  const auto mend = [&](RawRecord& record, const char* why) {
    const auto found = listed.find(record.handle);
    const bool isListed = found != listed.end() && found->second != record.handle && found->second != record.owner;
    record.owner = isListed ? found->second : rootHandle_;
    if (!isOld_) problems_.add(Code::OwnerMended, record.at, record.handle, why);
  };
  for (RawRecord& record : outline_.objects) {
    if (&record == root_) {
      record.owner = 0;
    } else if (record.owner == 0 || !handles_.contains(record.owner)) {
      mend(record, record.owner == 0 ? "the object had no owner; it got one"
                                     : "the owner of the object is not in the drawing; it got another");
    }
  }
  std::unordered_map<std::uint64_t, std::size_t> seen;  // handle -> walk in which it was passed
  for (std::size_t walk = 0; walk < outline_.objects.size(); ++walk) {
    RawRecord* at = &outline_.objects[walk];
    while (at != nullptr && at != root_) {
      const auto [place, isNew] = seen.try_emplace(at->handle, walk);
      if (!isNew) {
        if (place->second == walk) {
          at->owner = rootHandle_;
          problems_.add(Code::OwnerMended, at->at, at->handle,
                        "owners go in a circle; the object now belongs to the root");
        }
        break;
      }
      const auto next = byHandle.find(at->owner);
      at = next != byHandle.end() ? next->second : nullptr;
    }
  }
}

void Rebuilder::writeObjects(std::string& out) {
  if (root_ == nullptr) {
    for (const RawRecord* const record : basicObjects_) emitBasicObject(out, *record);
  } else {
    emit(out, *root_, 0, Kind::Object);
  }
  for (RawRecord& record : outline_.objects) {
    if (&record != root_) emit(out, record, record.owner, Kind::Object);
  }
  if (root_ != nullptr) {
    for (const RawRecord* const record : basicObjects_) emitBasicObject(out, *record);
  }
}

void Rebuilder::emitBasicObject(std::string& out, const RawRecord& record) {
  RawRecord copy = record;
  copy.handle = basicHandle(record.handle);
  emitBasic(out, copy, basicHandle(record.owner));
}

void Rebuilder::writeMissingEntries(TagWriter& tags) const {
  for (const auto& [key, handle] : missingEntries_) tags.raw(3, key).handle(350, handle);
}

}  // namespace host::dxf
