// Copies entities within their own drawing: the tags stay as they are, but for the handles among them.
#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "Database/Editing.h"
#include "Database/Insertion.h"
#include "Database/ObjectAccess.h"
#include "Database/Objects/Ownership.h"
#include "Database/Store/Parts.h"

namespace host::database {

namespace {

constexpr std::string_view kReactors = "{ACAD_REACTORS";
constexpr std::string_view kExtension = "{ACAD_XDICTIONARY";
constexpr int kSourceCount = 97;  // of a hatch's loop, before its sources' handles
constexpr int kSource = 330;

bool isAssociative(const Slot& hatch) {
  bool isInside = false;
  Tag tag;
  for (TagCursor tags = hatch.tags(); tags.next(tag) && tag.code < 1000;) {
    if (tag.code == 100) isInside = tag.trimmed() == "AcDbHatch";
    if (isInside && tag.code == 71) return tag.integer() != 0;
  }
  return false;
}

/// The records of a hatch without its sources; false when it has none.
bool withoutSources(const Slot& hatch, std::string& bytes) {
  TagWriter out = hatch.database().tagWriter();
  bool isInside = false, isList = false, hasAny = false;
  Tag tag;
  for (TagCursor tags = hatch.tags(); tags.next(tag);) {
    if (tag.code == 100) isInside = tag.trimmed() == "AcDbHatch";
    if (isInside && isList && tag.code == kSource) continue;
    isList = isInside && tag.code == kSourceCount;
    if (isInside && (tag.code == kSourceCount || tag.code == 71) && tag.integer() != 0) {
      hasAny = true;
      out.integer(tag.code, 0);
    } else {
      out.bytes(tag.bytes);
    }
  }
  bytes = out.take();
  return hasAny;
}

/// The record without one of its persistent reactors; the group goes with the last of them.
std::string withoutReactor(const Slot& slot, std::uint64_t reactor) {
  TagWriter out = slot.database().tagWriter();
  TagWriter group = slot.database().tagWriter();
  bool isInside = false;
  int kept = 0;
  Tag tag;
  for (TagCursor tags = slot.tags(); tags.next(tag);) {
    if (tag.code == 102 && tag.trimmed() == kReactors) isInside = true;
    if (!isInside) {
      out.bytes(tag.bytes);
      continue;
    }
    const bool isEnd = tag.code == 102 && tag.trimmed() == "}";
    if (tag.code == 330 && tag.handle() == reactor) continue;
    if (tag.code == 330) ++kept;
    group.bytes(tag.bytes);
    if (!isEnd) continue;
    isInside = false;
    if (kept > 0) out.bytes(group.str());
    group.clear();
    kept = 0;
  }
  return out.take();
}

class Copier {
 public:
  explicit Copier(DrawingDatabase& db) : db_(db), parts_(db.parts()) {}

  std::vector<Slot*> copy(const std::vector<Slot*>& originals) {
    if (originals.empty()) return {};
    Slot* const record = originals.front()->owner;
    std::vector<Slot*>& entities = parts_.blocks.contents(record).entities;
    const std::unordered_set<const Slot*> wanted(originals.begin(), originals.end());
    for (Slot* const entity : db_.drawOrder(parts_.blocks.contents(record))) {
      if (!wanted.contains(entity)) continue;
      Slot* const copy = copyEntity(*entity, *record, 0);
      Slot** link = &copy->madeSub;
      for (const Slot* sub = entity->firstSub(); sub != nullptr; sub = sub->nextSub) {
        if (sub->isErased()) continue;
        *link = copyEntity(*sub, *copy, kSubEntity);
        link = &(*link)->nextSub;
      }
      made_.push_back(copy);
    }
    copyGroups(wanted);
    for (const Work& work : works_) {
      if (work.from->type == DxfType::Hatch && losesSource(*work.from)) dissociated_.insert(work.from);
    }
    for (const Work& work : works_) write(work);
    makeRoomFor(entities);
    entities.insert(entities.end(), made_.begin(), made_.end());
    return std::move(made_);
  }

 private:
  struct Work {
    const Slot* from;
    Slot* to;
  };

  void makeRoomFor(std::vector<Slot*>& entities) const { entities.reserve(entities.size() + made_.size()); }

  Slot* make(const Slot& from, Slot& owner, std::uint16_t flags) {
    const DxfType type = isDictionary(from) ? DxfType::Dictionary : from.type;
    Slot* const copy = parts_.editor.make(type, &owner, flags);
    copied_[&from] = copy;
    works_.push_back({&from, copy});
    return copy;
  }

  Slot* copyEntity(const Slot& from, Slot& owner, std::uint16_t flags) {
    Slot* const copy = make(from, owner, static_cast<std::uint16_t>(kEntity | flags | (from.flags & kPaper)));
    copy->layer = from.layer;
    copyExtension(from, *copy);
    return copy;
  }

  /// The extension dictionary with what hangs on it.
  void copyExtension(const Slot& from, Slot& to) {
    const Slot* const extension = extensionDictionary(from);
    if (extension == nullptr || copied_.contains(extension)) return;
    std::vector<std::pair<const Slot*, Slot*>> owners{{extension, make(*extension, to, 0)}};
    for (std::size_t i = 0; i < owners.size(); ++i) {
      const auto [owner, copy] = owners[i];
      for (const Slot* const object : ownedObjects(*owner)) {
        if (!copied_.contains(object) && canHangOn(db_.typeName(*object), db_.version()))
          owners.emplace_back(object, make(*object, *copy, 0));
      }
    }
  }

  void copyGroups(const std::unordered_set<const Slot*>& wanted) {
    Slot* const root = db_.rootDictionary();
    Slot* const groups = root != nullptr ? parts_.dictionaries.contents(*root).find(L"ACAD_GROUP") : nullptr;
    if (groups == nullptr || groups->isErased()) return;
    std::vector<const Slot*> whole;
    for (const DictionaryContents::Entry& entry : parts_.dictionaries.contents(*groups).entries) {
      if (entry.object != nullptr && entry.object->type == DxfType::Group && !entry.object->isErased() &&
          isWithin(*entry.object, wanted))
        whole.push_back(entry.object);
    }
    std::uint64_t number = 1;
    for (const Slot* const group : whole) {
      std::wstring name;
      do {
        name = L"*A" + std::to_wstring(number++);
      } while (parts_.dictionaries.contents(*groups).find(name) != nullptr);
      Slot* const copy = make(*group, *groups, 0);
      copyExtension(*group, *copy);
      parts_.dictionaries.add(*groups, name, *copy);
    }
  }

  bool isWithin(const Slot& group, const std::unordered_set<const Slot*>& wanted) const {
    bool hasAny = false;
    Tag tag;
    for (TagCursor tags = group.tags(); tags.next(tag) && tag.code < 1000;) {
      if (tag.code != 340) continue;
      const Slot* const member = db_.findHandle(tag.handle());
      if (member == nullptr || member->isErased()) continue;
      if (!wanted.contains(member)) return false;
      hasAny = true;
    }
    return hasAny;
  }

  bool losesSource(const Slot& hatch) const {
    const std::vector<Slot*> sources = boundariesOf(hatch);
    return std::any_of(sources.begin(), sources.end(), [this](const Slot* each) { return !copied_.contains(each); });
  }

  /// The copy of what a handle names; null when that is not copied.
  const Slot* copyOf(std::uint64_t handle) const {
    const auto found = copied_.find(db_.findHandle(handle));
    return found != copied_.end() ? found->second : nullptr;
  }

  void writeDictionary(const Work& work) {
    TagWriter out = db_.tagWriter();
    out.raw(0, "DICTIONARY").handle(5, work.to->handle).handle(330, work.to->owner->handle);
    parts_.editor.set(*work.to, out.raw(100, "AcDbDictionary").integer(280, 1).integer(281, 1).take());
    for (const DictionaryContents::Entry& entry : parts_.dictionaries.contents(*work.from).entries) {
      const auto found = copied_.find(entry.object);
      if (entry.object != nullptr && found != copied_.end())
        parts_.dictionaries.add(*work.to, entry.key, *found->second);
    }
  }

  void write(const Work& work) {
    if (isDictionary(*work.to)) {
      writeDictionary(work);
      return;
    }
    std::string freed;
    const bool isFreed = dissociated_.contains(work.from) && withoutSources(*work.from, freed);
    const std::string bytes = translated(work, isFreed ? TagCursor(std::string_view(freed)) : work.from->tags());
    parts_.editor.set(*work.to, bytes);
    work.to->flags = static_cast<std::uint16_t>(work.to->flags | (work.from->flags & kHasXData));
  }

  std::string translated(const Work& work, TagCursor tags) {
    TagWriter out = db_.tagWriter();
    std::string_view group, subclass;
    std::string pending;  // a group's beginning, written with its first member
    bool isBegun = false;
    Tag tag;
    while (tags.next(tag)) {
      if (tag.code == 100) subclass = tag.trimmed();
      if (tag.code == 102 && subclass.empty()) {
        const bool isEnd = tag.trimmed() == "}";
        if (!isEnd) {
          group = tag.trimmed();
          pending = tag.bytes;
          isBegun = false;
        } else {
          if (isBegun || (group != kReactors && group != kExtension)) out.bytes(pending).bytes(tag.bytes);
          group = {};
          pending.clear();
        }
        continue;
      }
      if (!group.empty()) {
        const Slot* const copy = holdsHandle(tag.code) ? copyOf(tag.handle()) : nullptr;
        const bool isOurs = group == kReactors || group == kExtension;
        if (copy == nullptr && isOurs) continue;
        if (copy != nullptr && group == kReactors && isFreedFrom(tag.handle())) continue;
        TagWriter member = db_.tagWriter();
        pending += copy != nullptr ? member.handle(tag.code, copy->handle).str() : std::string(tag.bytes);
        isBegun = true;
        continue;
      }
      writeTag(work, subclass, tag, out);
    }
    return out.take();
  }

  bool isFreedFrom(std::uint64_t hatch) const { return dissociated_.contains(db_.findHandle(hatch)); }

  void writeTag(const Work& work, std::string_view subclass, const Tag& tag, TagWriter& out) {
    const bool isFront = subclass.empty();
    if (isFront && (tag.code == 5 || tag.code == 105)) {
      out.handle(tag.code, work.to->handle);
    } else if (isFront && tag.code == 330) {
      out.handle(330, work.to->owner->handle);
    } else if (work.to->type == DxfType::Group && subclass == "AcDbGroup" && tag.code == 70) {
      out.integer(70, 1);
    } else if (work.to->type == DxfType::Viewport && subclass == "AcDbViewport" && tag.code == 69) {
      out.integer(69, nextViewport(work));
    } else {
      const bool isReference = holdsHandle(tag.code) && tag.handle() != 0;
      const Slot* const copy = isReference ? copyOf(tag.handle()) : nullptr;
      if (copy != nullptr) {
        out.handle(tag.code, copy->handle);
      } else if (!isReference || tag.code != 360) {  // what an object owns belongs to the original alone
        out.bytes(tag.bytes);
      }
    }
  }

  /// Viewports of a layout are numbered.
  std::int64_t nextViewport(const Work& work) {
    if (viewport_ == 0) {
      viewport_ = 1;
      for (const Slot* const entity : parts_.blocks.contents(work.to->owner).entities) {
        Tag tag;
        if (entity->type != DxfType::Viewport || entity->isErased()) continue;
        for (TagCursor tags = entity->tags(); tags.next(tag) && tag.code < 1000;) {
          if (tag.code == 69) viewport_ = std::max(viewport_, tag.integer());
        }
      }
    }
    return ++viewport_;
  }

  DrawingDatabase& db_;
  DrawingDatabase::Parts& parts_;
  std::vector<Slot*> made_;
  std::vector<Work> works_;
  std::unordered_map<const Slot*, Slot*> copied_;
  std::unordered_set<const Slot*> dissociated_;
  std::int64_t viewport_ = 0;  // the highest number; 0 when it is not known yet
};

}  // namespace

std::vector<Slot*> copyEntities(DrawingDatabase& db, const std::vector<Slot*>& originals) {
  Attempt attempt(db);
  std::vector<Slot*> copies = Copier(db).copy(originals);
  attempt.keep();
  return copies;
}

void rewriteRecord(Slot& slot, std::string_view tags) { slot.database().parts().editor.set(slot, tags); }

std::vector<Slot*> boundariesOf(const Slot& hatch) {
  std::vector<Slot*> sources;
  if (hatch.type != DxfType::Hatch || !isAssociative(hatch)) return sources;
  bool isInside = false, isList = false;
  Tag tag;
  for (TagCursor tags = hatch.tags(); tags.next(tag) && tag.code < 1000;) {
    if (tag.code == 100) isInside = tag.trimmed() == "AcDbHatch";
    if (isInside && isList && tag.code == kSource) {
      Slot* const source = hatch.database().findHandle(tag.handle());
      sources.push_back(source != nullptr && !source->isErased() ? source : nullptr);
      continue;
    }
    isList = isInside && tag.code == kSourceCount;
  }
  return sources;
}

std::vector<Slot*> hatchesOf(const Slot& boundary) {
  std::vector<Slot*> hatches;
  bool isInside = false;
  Tag tag;
  for (TagCursor tags = boundary.tags(); tags.next(tag) && tag.code != 100;) {
    if (tag.code == 102) isInside = tag.trimmed() == kReactors;
    if (!isInside || tag.code != 330) continue;
    Slot* const hatch = boundary.database().findHandle(tag.handle());
    if (hatch != nullptr && !hatch->isErased() && hatch->owner == boundary.owner && !boundariesOf(*hatch).empty())
      hatches.push_back(hatch);
  }
  return hatches;
}

void dissociateHatch(Slot& hatch) {
  const std::vector<Slot*> sources = boundariesOf(hatch);
  std::string bytes;
  if (!withoutSources(hatch, bytes)) return;
  rewriteRecord(hatch, bytes);
  for (Slot* const source : sources) {
    if (source != nullptr) rewriteRecord(*source, withoutReactor(*source, hatch.handle));
  }
}

}  // namespace host::database
