// Copies a block from one drawing into another.
//
// Whatever is needed gets its slot in the target at once and its tags later, from a queue: references can then point
// forwards, and neither cycles nor deep nesting cost anything.
#include "Database/Insertion.h"

#include <algorithm>
#include <deque>

#include "Database/Objects/Adoption.h"
#include "Database/Objects/Ownership.h"
#include "Database/ResbufTypes.h"
#include "Database/Store/Parts.h"
#include "Database/Store/TagEdits.h"
#include "Text/Text.h"

namespace host::database {

namespace {

/// Dictionaries of the root whose entries drawings share by name.
constexpr std::wstring_view kSharedDictionaries[] = {L"ACAD_MLINESTYLE",  L"ACAD_MLEADERSTYLE", L"ACAD_TABLESTYLE",
                                                     L"ACAD_IMAGE_DICT",  L"ACAD_MATERIAL",     L"ACAD_PLOTSTYLENAME",
                                                     L"ACAD_VISUALSTYLE", L"ACAD_SCALELIST"};

bool isBlockName(std::wstring_view name) {
  constexpr std::wstring_view kForbidden = L"<>/\\\":;?*|,=`";
  return !name.empty() && name.size() <= 255 && std::none_of(name.begin(), name.end(), [&](wchar_t c) {
    return c < L' ' || kForbidden.find(c) != std::wstring_view::npos;
  });
}

/// Folded names of the blocks that the entities of a block show.
std::vector<std::wstring> shownBlocks(const DrawingDatabase& db, const Slot& blockRecord) {
  std::vector<std::wstring> names;
  const BlockContents* const block = db.block(&blockRecord);
  if (block == nullptr) return names;
  for (const Slot* const entity : block->entities) {
    if (entity->isErased() ||
        (entity->type != DxfType::Insert && entity->type != DxfType::Dimension && entity->type != DxfType::Table))
      continue;
    Tag tag;
    std::string_view subclass;
    for (TagCursor cursor = entity->tags(); cursor.next(tag) && tag.code < 1000;) {
      if (tag.code == 100) subclass = tag.trimmed();
      if (namedBy(entity->type, subclass, tag.code) != DxfType::BlockRecord) continue;
      names.push_back(text::folded(db.codec().decode(tag.value)));
      break;
    }
  }
  return names;
}

/// Whether the new block would show itself: by its own contents, or by a block of the target that keeps its meaning.
bool wouldShowItself(const DrawingDatabase& target, std::wstring_view name, const DrawingDatabase& source,
                     const Slot& sourceBlock) {
  const std::wstring self = text::folded(name);
  struct Shown {
    std::wstring name;
    bool inTarget;  // shown by a block of the target
  };
  std::vector<Shown> waiting;
  const auto add = [&](const DrawingDatabase& db, const Slot& blockRecord) {
    for (std::wstring& shown : shownBlocks(db, blockRecord)) waiting.push_back({std::move(shown), &db == &target});
  };
  std::unordered_set<const Slot*> seen;
  add(source, sourceBlock);
  while (!waiting.empty()) {
    const Shown next = std::move(waiting.back());
    waiting.pop_back();
    if (next.name == self) return true;
    const bool isOwn = !next.inTarget && next.name.starts_with(L'*');
    const Slot* record = isOwn ? nullptr : target.findRecord(DxfType::BlockRecord, next.name);
    if (record == nullptr && !next.inTarget) record = source.findRecord(DxfType::BlockRecord, next.name);
    if (record != nullptr && seen.insert(record).second) add(record->database(), *record);
  }
  return false;
}

class Inserter {
 public:
  Inserter(DrawingDatabase& target, DrawingDatabase& source)
      : target_(target), parts_(target.parts()), source_(source) {
    findSharedObjects();
  }

  Slot& insert(std::wstring_view name, const Slot& sourceBlock) {
    Slot* record = target_.findRecord(DxfType::BlockRecord, name);
    if (record == nullptr) {
      record = makeBlock(name, sourceBlock);
    } else {
      for (Slot* const entity : parts_.blocks.contents(record).entities) {
        if (entity->isErased()) continue;
        eraseExtension(*entity);
        eraseSlot(*entity, true);
      }
      setBlockBegin(*record, name, sourceBlock);
    }
    copied_[&sourceBlock] = record;
    copyContents(sourceBlock, *record);
    while (!waiting_.empty() || !blocksWaiting_.empty()) {
      if (!waiting_.empty()) {
        const Work work = waiting_.front();
        waiting_.pop_front();
        write(work);
      } else {
        const auto [from, block] = blocksWaiting_.front();
        blocksWaiting_.pop_front();
        copyContents(*from, *block);
      }
    }
    return *record;
  }

 private:
  /// A slot of the target whose tags are still to be made from one of the source.
  struct Work {
    const Slot* from;
    Slot* to;
    std::uint64_t owner;
  };

  // ---- what is named ----

  void findSharedObjects() {
    Slot* const root = source_.rootDictionary();
    if (root == nullptr) return;
    for (const std::wstring_view key : kSharedDictionaries) {
      const Slot* const shared = source_.parts().dictionaries.contents(*root).find(key);
      if (shared == nullptr || shared->isErased() || !isDictionary(*shared)) continue;
      for (const DictionaryContents::Entry& entry : source_.parts().dictionaries.contents(*shared).entries) {
        if (entry.object != nullptr && !entry.object->isErased()) shared_[entry.object] = {key, entry.key};
      }
    }
  }

  DxfType targetType(const Slot& from) {
    return from.type < DxfType::FirstOther ? from.type : parts_.types.enter(source_.typeName(from));
  }

  /// The target's object for one of the source, brought along when it can be; null when it stays behind.
  Slot* mapped(const Slot* from) {
    if (from == nullptr || from->isErased()) return nullptr;
    if (const auto found = copied_.find(from); found != copied_.end()) return found->second;
    if (from->type == DxfType::BlockRecord) return importBlock(*from);
    if (from->type >= DxfType::Layer && from->type <= DxfType::AppId) return importRecord(*from);
    if (const auto found = shared_.find(from); found != shared_.end()) {
      return importShared(*from, found->second.first, found->second.second);
    }
    return nullptr;
  }

  /// The target's record for a name in a tag of the source; null when neither drawing has one.
  Slot* named(DxfType type, const std::wstring& name) {
    if (type == DxfType::BlockRecord) return mapped(source_.findRecord(type, name));
    if (Slot* const own = target_.findRecord(type, name)) return own;
    if (const Slot* const from = source_.findRecord(type, name)) return mapped(from);
    // Drawings may use layers and applications that they do not declare.
    if (type == DxfType::Layer || type == DxfType::AppId) return makePlainRecord(type, name);
    return nullptr;
  }

  Slot* newRecord(DxfType type, const std::wstring& name) {
    SymbolTable& table = parts_.tables.obtain(type);
    parts_.editor.touch(*table.head);
    Slot* const record = parts_.editor.make(type, table.head, 0);
    table.records.push_back(record);
    table.byName[name] = record;
    return record;
  }

  Slot* importRecord(const Slot& from) {
    const std::wstring name = source_.recordName(from);
    Slot* record = target_.findRecord(from.type, name);
    if (record == nullptr) {
      record = newRecord(from.type, name);
      waiting_.push_back({&from, record, parts_.tables.obtain(from.type).head->handle});
    }
    return copied_[&from] = record;
  }

  Slot* makePlainRecord(DxfType type, const std::wstring& name) {
    Slot* const record = newRecord(type, name);
    TagWriter out = target_.tagWriter();
    out.raw(0, fixedTypeName(type)).handle(5, record->handle).handle(330, record->owner->handle);
    out.raw(100, "AcDbSymbolTableRecord");
    out.raw(100, type == DxfType::Layer ? "AcDbLayerTableRecord" : "AcDbRegAppTableRecord");
    out.text(2, name).integer(70, 0);
    if (type == DxfType::Layer) out.integer(62, 7).raw(6, "Continuous");
    parts_.editor.set(*record, out.take());
    if (type == DxfType::Layer) parts_.layers.bind(record);
    return record;
  }

  Slot* importShared(const Slot& from, std::wstring_view dictionaryKey, const std::wstring& key) {
    Slot* const dictionary = parts_.dictionaries.obtain(*parts_.dictionaries.obtainRoot(), dictionaryKey);
    if (dictionary == nullptr) return copied_[&from] = nullptr;
    Slot* const own = parts_.dictionaries.contents(*dictionary).find(key);
    if (own != nullptr && !own->isErased()) return copied_[&from] = own;
    Slot* const object = parts_.editor.make(targetType(from), dictionary, 0);
    parts_.dictionaries.add(*dictionary, key, *object);
    waiting_.push_back({&from, object, dictionary->handle});
    return copied_[&from] = object;
  }

  // ---- blocks ----

  Slot* importBlock(const Slot& from) {
    std::wstring name = source_.recordName(from);
    if (name.empty() || from.owner == nullptr || source_.block(&from) == nullptr ||
        source_.block(&from)->begin == nullptr || isSpace(from, name)) {
      return copied_[&from] = nullptr;
    }
    if (name.front() == L'*') {
      const std::wstring kind = name.substr(0, 2);
      std::uint64_t& number = anonymous_[kind];
      do {
        name = kind + std::to_wstring(number++);
      } while (target_.findRecord(DxfType::BlockRecord, name) != nullptr);
    } else if (Slot* const own = target_.findRecord(DxfType::BlockRecord, name)) {
      return copied_[&from] = own;
    }
    Slot* const record = makeBlock(name, from);
    copied_[&from] = record;
    blocksWaiting_.emplace_back(&from, record);
    return record;
  }

  bool isSpace(const Slot& from, const std::wstring& name) const {
    const std::wstring folded = text::folded(name);
    return &from == source_.parts().blocks.modelSpace() || folded.starts_with(L"*model_space") ||
           folded.starts_with(L"*paper_space");
  }

  Slot* makeBlock(std::wstring_view name, const Slot& from) {
    Slot* const record = newRecord(DxfType::BlockRecord, std::wstring(name));
    TagWriter out = target_.tagWriter();
    out.raw(0, "BLOCK_RECORD").handle(5, record->handle).handle(330, record->owner->handle);
    out.raw(100, "AcDbSymbolTableRecord").raw(100, "AcDbBlockTableRecord").text(2, name).handle(340, 0);
    if (target_.version() >= DrawingVersion::V2007) {
      const bool isDrawing = &from == source_.parts().blocks.modelSpace();
      const auto of = [&](int code, std::int64_t otherwise) {
        Tag tag;
        return !isDrawing && findTagIn(from.tags(), "AcDbBlockTableRecord", code, tag) ? tag.integer() : otherwise;
      };
      out.integer(70, of(70, source_.headerInteger("$INSUNITS", 70).value_or(0)));
      out.integer(280, of(280, 1)).integer(281, of(281, 0));
    }
    parts_.editor.set(*record, out.take());
    beginBlock(*record, name);
    setBlockBegin(*record, name, from);
    return record;
  }

  /// Base point and flags of a block as the source has them.
  void setBlockBegin(Slot& record, std::wstring_view name, const Slot& from) {
    Slot* const begin = parts_.blocks.contents(&record).begin;
    if (begin == nullptr) return;
    double base[3] = {};
    const BlockContents* const block = source_.block(&from);
    const bool isDrawing = &from == source_.parts().blocks.modelSpace();
    for (int axis = 0; axis < 3; ++axis) {
      const int code = 10 + 10 * axis;
      Tag tag;
      if (isDrawing) {
        base[axis] = source_.headerReal("$INSBASE", code).value_or(0);
      } else if (block != nullptr && block->begin != nullptr &&
                 findTagIn(block->begin->tags(), "AcDbBlockBegin", code, tag)) {
        base[axis] = tag.real();
      }
    }
    int flags = name.front() == L'*' ? 1 : 0;
    for (const Slot* const entity : block != nullptr ? block->entities : std::vector<Slot*>()) {
      if (entity->type == DxfType::AttDef && !entity->isErased()) flags |= 2;
    }
    TagWriter out = target_.tagWriter();
    out.raw(0, "BLOCK").handle(5, begin->handle).handle(330, record.handle).raw(100, "AcDbEntity").raw(8, "0");
    out.raw(100, "AcDbBlockBegin").text(2, name).integer(70, flags).point(10, base[0], base[1], base[2]);
    out.text(3, name).raw(1, "");
    begin->layer = parts_.layers.enter("0");
    parts_.editor.set(*begin, out.take());
  }

  void copyContents(const Slot& from, Slot& record) {
    const BlockContents* const block = source_.block(&from);
    if (block == nullptr) return;
    std::vector<Slot*>& entities = parts_.blocks.contents(&record).entities;
    for (const Slot* const entity : source_.drawOrder(*block)) {
      if (const std::string_view why = whyLeftOut(*entity); !why.empty()) {
        leftOut(*entity, why);
        continue;
      }
      Slot* const copy = copyEntity(*entity, record, 0);
      entities.push_back(copy);
      Slot** link = &copy->madeSub;
      for (const Slot* sub = entity->firstSub(); sub != nullptr; sub = sub->nextSub) {
        if (sub->isErased()) continue;
        *link = copyEntity(*sub, *copy, kSubEntity);
        link = &(*link)->nextSub;
      }
    }
    copyExtension(from, record);
    setRecordData(record, from);
  }

  /// Extended data and extension dictionary of a block record as the source has them.
  void setRecordData(Slot& record, const Slot& from) {
    const Slot* const former = extensionDictionary(record);
    const auto extension = copied_.find(extensionDictionary(from));
    const bool hasExtension = extension != copied_.end() && extension->second != nullptr;
    TagWriter out = target_.tagWriter();
    const std::string bytes = record.record().bytes();
    bool inGroup = false;
    Tag tag;
    for (TagCursor cursor{std::string_view(bytes)}; cursor.next(tag) && tag.code < 1000;) {
      if (tag.code == 102 && tag.trimmed() == "{ACAD_XDICTIONARY") inGroup = true;
      if (!inGroup) out.bytes(tag.bytes);
      if (tag.code == 102 && tag.trimmed() == "}") inGroup = false;
      if (tag.code != 5 || !hasExtension) continue;
      out.raw(102, "{ACAD_XDICTIONARY").handle(360, extension->second->handle).raw(102, "}");
    }
    if (former != nullptr) eraseExtension(record);
    for (TagCursor cursor = from.tags(); cursor.next(tag);) {
      if (tag.code >= 1000) translate(from, record, "AcDbBlockTableRecord", tag, out);
    }
    parts_.editor.set(record, out.take());
    record.flags |= kHasXData;
  }

  /// The extension dictionary with what hangs on it, as far as another drawing can use it.
  void copyExtension(const Slot& from, Slot& to) {
    const Slot* const extension = extensionDictionary(from);
    if (extension == nullptr || copied_.count(extension) != 0 || isEmptyFor(target_.version(), *extension)) return;
    std::vector<std::pair<const Slot*, Slot*>> owners;
    const auto copyObject = [&](const Slot& object, Slot& owner) {
      Slot* const copy = parts_.editor.make(targetType(object), &owner, 0);
      copied_[&object] = copy;
      waiting_.push_back({&object, copy, owner.handle});
      owners.emplace_back(&object, copy);
    };
    copyObject(*extension, to);
    for (std::size_t i = 0; i < owners.size(); ++i) {
      const auto [owner, copy] = owners[i];
      for (const Slot* const object : ownedObjects(*owner)) {
        if (copied_.count(object) == 0 && canHangOn(source_.typeName(*object), target_.version()))
          copyObject(*object, *copy);
      }
    }
  }

  bool isEmptyFor(DrawingVersion version, const Slot& dictionary) const {
    const std::vector<Slot*> objects = ownedObjects(dictionary);
    return std::none_of(objects.begin(), objects.end(),
                        [&](const Slot* object) { return canHangOn(source_.typeName(*object), version); });
  }

  std::string_view whyLeftOut(const Slot& entity) {
    const std::string_view why = cannotCarry(source_.typeName(entity), source_.version(), target_.version());
    if (!why.empty() || entity.type != DxfType::Insert) return why;
    Tag tag;
    std::string_view subclass;
    for (TagCursor cursor = entity.tags(); cursor.next(tag) && tag.code < 1000;) {
      if (tag.code == 100) subclass = tag.trimmed();
      if (namedBy(entity.type, subclass, tag.code) != DxfType::BlockRecord) continue;
      const bool isThere = named(DxfType::BlockRecord, source_.codec().decode(tag.value)) != nullptr;
      return isThere ? "" : "the drawing it comes from does not hold its block";
    }
    return "it names no block";
  }

  void leftOut(const Slot& entity, std::string_view why) {
    parts_.file.problems.push_back(problemOf(
        Code::ObjectNotInserted, source_.parts().file.name + ": " + std::string(source_.typeName(entity)) + " " +
                                     text::formatHandle(entity.handle) + " was not inserted: " + std::string(why)));
  }

  Slot* copyEntity(const Slot& from, Slot& owner, std::uint16_t flags) {
    Slot* const copy = parts_.editor.make(targetType(from), &owner, static_cast<std::uint16_t>(kEntity | flags));
    copied_[&from] = copy;
    waiting_.push_back({&from, copy, owner.handle});
    copyExtension(from, *copy);
    return copy;
  }

  // ---- tags ----

  void write(const Work& work) {
    if (work.to->type == DxfType::Dictionary) {
      writeDictionary(work);
      return;
    }
    parts_.editor.set(*work.to, translated(work));
    work.to->flags |= kHasXData;
    if (work.to->type == DxfType::Layer) parts_.layers.bind(work.to);
    declareClass(source_.typeName(*work.from));
  }

  void writeDictionary(const Work& work) {
    TagWriter out = target_.tagWriter();
    out.raw(0, "DICTIONARY").handle(5, work.to->handle).handle(330, work.owner).raw(100, "AcDbDictionary");
    parts_.editor.set(*work.to, out.integer(280, 1).integer(281, 1).take());
    for (const DictionaryContents::Entry& entry : source_.parts().dictionaries.contents(*work.from).entries) {
      const auto found = copied_.find(entry.object);
      if (entry.object == nullptr || found == copied_.end() || found->second == nullptr) continue;
      parts_.dictionaries.add(*work.to, entry.key, *found->second);
    }
  }

  std::string translated(const Work& work) {
    TagWriter reactors = target_.tagWriter();
    TagWriter body = target_.tagWriter();
    const bool isEntity = work.from->isEntity();
    const ClassEntry* const entry = classEntry(work.from->type);
    const CountedHandles counted = entry != nullptr ? entry->countedHandles : CountedHandles();
    std::string_view subclass;
    std::string_view group;
    bool isEmbedded = false;
    Tag tag;
    TagCursor cursor = work.from->tags();
    cursor.next(tag);
    for (bool more = cursor.next(tag); more;) {
      const Tag current = tag;
      more = cursor.next(tag);
      if (current.code == 999) continue;
      if (current.code >= 1000) isEmbedded = false;
      if (current.code == 100) subclass = current.trimmed();
      if (current.code == 101) isEmbedded = target_.version() < DrawingVersion::V2018;
      if (isEmbedded) continue;
      if (current.code == 102 && (isEntity || subclass.empty())) {
        group = current.trimmed();
        if (group == "}") group = {};
        continue;
      }
      if (!group.empty()) {
        // Of the reactors those stay that were copied too, such as what was drawn within a boundary.
        const auto found =
            group == "{ACAD_REACTORS" ? copied_.find(source_.findHandle(current.handle())) : copied_.end();
        if (found != copied_.end() && found->second != nullptr && found->second->isEntity()) {
          reactors.handle(330, found->second->handle);
        }
        continue;
      }
      if (subclass.empty() && (current.code == 5 || current.code == 105 || current.code == 330)) continue;
      if (subclass == "AcDbEntity" && (current.code == 67 || current.code == 410)) continue;
      if (!isKnownTag(work.from->type, subclass, current.code, target_.version())) continue;
      if (counted.countCode != 0 && current.code == counted.countCode && more && tag.code == counted.handleCode) {
        more = translateCounted(counted, cursor, tag, body);
        continue;
      }
      translate(*work.from, *work.to, subclass, current, body);
    }
    TagWriter out = target_.tagWriter();
    out.raw(0, source_.typeName(*work.from)).handle(work.from->type == DxfType::DimStyle ? 105 : 5, work.to->handle);
    if (!isEntity && !isTableRecord(work.from->type)) reactors.handle(330, work.owner);
    if (!reactors.str().empty()) out.raw(102, "{ACAD_REACTORS").bytes(reactors.str()).raw(102, "}");
    const Slot* const extension = extensionDictionary(*work.from);
    if (const auto found = copied_.find(extension); found != copied_.end() && found->second != nullptr)
      out.raw(102, "{ACAD_XDICTIONARY").handle(360, found->second->handle).raw(102, "}");
    out.handle(330, work.owner).bytes(body.str());
    return out.take();
  }

  /// The count and those of the handles behind it whose objects were copied too. `tag` is the first of them, and
  /// afterwards the tag that follows.
  bool translateCounted(const CountedHandles& counted, TagCursor& cursor, Tag& tag, TagWriter& body) {
    TagWriter handles = target_.tagWriter();
    std::int64_t count = 0;
    bool more = true;
    for (; more && tag.code == counted.handleCode; more = cursor.next(tag)) {
      const auto found = copied_.find(source_.findHandle(tag.handle()));
      if (found == copied_.end() || found->second == nullptr) continue;
      handles.handle(counted.handleCode, found->second->handle);
      ++count;
    }
    body.integer(counted.countCode, count).bytes(handles.str());
    return more;
  }

  void translate(const Slot& from, Slot& to, std::string_view subclass, const Tag& tag, TagWriter& body) {
    if (const DxfType type = namedBy(from.type, subclass, tag.code); type != DxfType::Unknown) {
      translateName(from, to, type, tag, body);
    } else if (holdsHandle(tag.code)) {
      Slot* const target = mapped(source_.findHandle(tag.handle()));
      const bool isOptional = tag.code == 347 || tag.code == 348 || tag.code >= 390 || tag.code == 360;
      if (target != nullptr || !isOptional || tag.code == 1005) {
        body.handle(tag.code, target != nullptr ? target->handle : 0);
      }
    } else if (valueKind(tag.code) == ValueKind::Text) {
      const bool isPlain = std::none_of(tag.value.begin(), tag.value.end(), [](char c) { return c < 0; }) &&
                           tag.value.find("\\U+") == std::string_view::npos;
      if (isPlain) {
        body.raw(tag.code, tag.value);
      } else {
        body.text(tag.code, source_.codec().decode(tag.value));
      }
    } else {
      body.raw(tag.code, tag.value);
    }
  }

  void translateName(const Slot& from, Slot& to, DxfType type, const Tag& tag, TagWriter& body) {
    const std::wstring name = source_.codec().decode(tag.value);
    const Slot* const record = name.empty() ? nullptr : named(type, name);
    if (record == nullptr) {
      // A program that opens a dimension without a block draws it anew; a missing style is the standard one.
      if (type == DxfType::DimStyle) body.raw(tag.code, "Standard");
      return;
    }
    if (type == DxfType::BlockRecord) {
      body.text(tag.code, target_.recordName(*record));
      return;
    }
    body.text(tag.code, name);
    if (type == DxfType::Layer && from.isEntity() && tag.code == 8) {
      to.layer = parts_.layers.enter(target_.codec().encode(name));
    }
  }

  /// Classes of the target get what the source says of the type, when they lack it.
  void declareClass(std::string_view typeName) {
    const Slot* const classes = source_.parts().file.classes;
    if (classes == nullptr || parts_.file.classes == nullptr || !declared_.insert(std::string(typeName)).second) return;
    if (!classDeclaration(*parts_.file.classes, typeName).empty()) return;
    const std::string declaration = classDeclaration(*classes, typeName);
    if (declaration.empty()) return;
    TagWriter out = target_.tagWriter();
    Tag tag;
    for (TagCursor cursor{std::string_view(declaration)}; cursor.next(tag);) {
      if (tag.code != 91 || target_.version() >= DrawingVersion::V2004) out.raw(tag.code, tag.value);
    }
    parts_.editor.edit(*parts_.file.classes).append(parts_.memory.keep(out.str()));
  }

  static std::string classDeclaration(const Slot& classes, std::string_view typeName) {
    std::string declaration;
    bool isWanted = false;
    Tag tag;
    for (TagCursor cursor = classes.tags(); cursor.next(tag);) {
      if (tag.code == 0) {
        if (isWanted) break;
        declaration.clear();
      }
      isWanted = isWanted || (tag.code == 1 && tag.trimmed() == typeName);
      declaration += tag.bytes;
    }
    return isWanted ? declaration : std::string();
  }

  DrawingDatabase& target_;
  DrawingDatabase::Parts& parts_;
  DrawingDatabase& source_;
  std::unordered_map<const Slot*, Slot*> copied_;  // null: stays behind
  std::unordered_map<const Slot*, std::pair<std::wstring_view, std::wstring>> shared_;
  std::deque<Work> waiting_;
  std::deque<std::pair<const Slot*, Slot*>> blocksWaiting_;
  std::unordered_map<std::wstring, std::uint64_t> anonymous_;  // next number to try, by "*D", "*U" ...
  std::unordered_set<std::string> declared_;
};

}  // namespace

Acad::ErrorStatus insertBlock(DrawingDatabase& target, std::wstring_view name, DrawingDatabase& source,
                              const Slot& sourceBlock, AcDbObjectId& id) {
  if (!isBlockName(name) || &target == &source) return Acad::eInvalidInput;
  if (const Slot* const existing = target.findRecord(DxfType::BlockRecord, name)) {
    const BlockContents* const block = target.block(existing);
    constexpr std::int64_t kExternal = 4;
    Tag tag;
    if (block == nullptr || block->begin == nullptr || block->end == nullptr) return Acad::eInvalidInput;
    if (findTagIn(block->begin->tags(), "AcDbBlockBegin", 70, tag) && (tag.integer() & kExternal) != 0) {
      return Acad::eInvalidInput;
    }
  }
  const bool isDrawing = &sourceBlock == source.parts().blocks.modelSpace();
  if (isDrawing && source.findRecord(DxfType::BlockRecord, name) != nullptr) return Acad::eSelfReference;
  if (wouldShowItself(target, name, source, sourceBlock)) return Acad::eSelfReference;
  Attempt attempt(target);
  id = AcDbObjectId(&Inserter(target, source).insert(name, sourceBlock));
  attempt.keep();
  return Acad::eOk;
}

}  // namespace host::database
