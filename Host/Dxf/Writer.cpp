// Saving: the file's own text with edits. The writer copies what no command touched byte for byte; a drawing that was
// not changed comes out as it went in.
#include <algorithm>
#include <functional>
#include <future>
#include <map>
#include <span>
#include <unordered_map>
#include <utility>

#include "Database/Store/Parts.h"
#include "Database/Store/Settling.h"
#include "Database/Store/SlotStates.h"
#include "Dxf/DxfFile.h"

namespace host::dxf {

using database::BlockContents;
using database::DrawingDatabase;
using database::DxfType;
using database::kChanged;
using database::kNeedsHandle;
using database::kNew;
using database::Slot;
using database::TagWriter;

namespace {

/// A part of the saved text: bytes, or a new entity whose tags are spelled only when it is their turn. A drawing may
/// have far more of those than fits into memory twice.
struct Piece {
  std::string_view bytes;
  const Slot* entity = nullptr;

  Piece(std::string_view text) : bytes(text) {}
  explicit Piece(const Slot& unwritten) : entity(&unwritten) {}
};
using Pieces = std::vector<Piece>;

/// Replaces `remove` bytes at an offset of the file's text.
struct Edit {
  std::size_t at = 0;
  std::size_t remove = 0;
  Pieces pieces;
};

Pieces piecesOf(const database::Record& record) {
  const std::span<const std::string_view> pieces = record.pieces();
  return {pieces.begin(), pieces.end()};
}

class Writer {
 public:
  explicit Writer(DrawingDatabase& db) : db_(db), parts_(db.parts()), file_(parts_.file) {}

  /// Gives the drawing's text in order, until `give` answers false. Nothing of the drawing changes. What comes from the
  /// file is given where it lies, by which the binary form knows it. New entities go in batches, which a second thread
  /// spells while `give` writes the batch before.
  bool write(const std::function<bool(std::string_view)>& give) {
    const Pieces all = pieces();
    TagWriter idle = db_.tagWriter();  // its memory serves the batch after the next
    std::future<Batch> ahead;
    for (std::size_t next = 0; next < all.size();) {
      if (all[next].entity == nullptr) {
        if (!give(all[next++].bytes)) return false;
        continue;
      }
      Batch batch = ahead.valid() ? ahead.get() : spelledBatch(all, next, db_.tagWriter());
      next = batch.end;
      if (next < all.size() && all[next].entity != nullptr) {
        // Where the system has no thread to spare, the batch is spelled when it is asked for.
        ahead = std::async(std::launch::async | std::launch::deferred, [&all, next, out = std::move(idle)]() mutable {
          return spelledBatch(all, next, std::move(out));
        });
      }
      if (!give(batch.out.str())) return false;
      idle = std::move(batch.out);
    }
    return true;
  }

 private:
  struct Batch {
    TagWriter out;
    std::size_t end = 0;  // of the pieces that it holds
  };

  /// The new entities that stand there one after another, up to a size that is worth a thread.
  static Batch spelledBatch(const Pieces& all, std::size_t from, TagWriter out) {
    constexpr std::size_t kEnough = std::size_t{1} << 20;
    out.clear();
    std::size_t at = from;
    while (at < all.size() && all[at].entity != nullptr && out.str().size() < kEnough) spell(*all[at++].entity, out);
    return {std::move(out), at};
  }

  /// The drawing in order; the pieces lie in memory of the database or of the writer.
  Pieces pieces() {
    if (!isTouched()) return {Piece(file_.text)};
    settled_ = database::settledRecords(db_, memory_);
    collectChanges();
    if (edits_.empty() && insertions_.empty()) return {Piece(file_.text)};
    collectMissingHandles();
    insertNew();
    return merge();
  }

  /// Handles that the file lacks, and what counts them, are written only when something else is.
  bool isTouched() const {
    bool isTouched = parts_.sortTables.isChanged();
    parts_.slots.forEach(
        [&](const Slot& slot) { isTouched = isTouched || (slot.flags & (kNew | kChanged | database::kErased)) != 0; });
    return isTouched;
  }

  std::size_t offsetOf(const Slot& slot) const { return static_cast<std::size_t>(slot.begin - file_.text.data()); }

  void collectChanges() {
    bool anyErased = false;
    parts_.slots.forEach([&](const Slot& slot) { anyErased = anyErased || slot.isErased(); });
    parts_.slots.forEach([&](Slot& slot) {
      const bool losesMembers = anyErased && slot.type == DxfType::Group && !slot.isErased() && dropErasedMembers(slot);
      if ((slot.flags & kNew) != 0) {
        if (!slot.isErased()) insertions_.push_back(&slot);
        return;
      }
      if (slot.isErased()) {
        edits_.push_back({offsetOf(slot), slot.length, {}});
      } else if ((slot.flags & kChanged) != 0 || losesMembers || settled_.count(&slot) > 0) {
        Pieces pieces;
        appendRecord(pieces, slot);
        edits_.push_back({offsetOf(slot), slot.length, std::move(pieces)});
      }
    });
  }

  /// Groups keep their erased members, for these may come back with an undo; the file does not name them. False when
  /// there are none. Members that the file never had stay as they are.
  bool dropErasedMembers(const Slot& group) {
    constexpr int kMember = 340;
    std::string kept;
    bool found = false;
    database::Tag tag;
    for (database::TagCursor cursor = group.tags(); cursor.next(tag);) {
      const Slot* const member = tag.code == kMember ? db_.findHandle(tag.handle()) : nullptr;
      if (member != nullptr && member->isErased()) {
        found = true;
      } else {
        kept += tag.bytes;
      }
    }
    if (found) withoutErased_[&group] = memory_.keep(kept);
    return found;
  }

  /// Objects without a handle in the file get theirs as soon as anything is written, for other objects may name them.
  void collectMissingHandles() {
    const auto changes =
        static_cast<std::ptrdiff_t>(edits_.size());  // ascending, as slots stand in the order of the file
    parts_.slots.forEach([&](Slot& slot) {
      if ((slot.flags & kNeedsHandle) == 0 || slot.isErased() || (slot.flags & kNew) != 0) return;
      const int code = slot.type == DxfType::DimStyle ? 105 : 5;
      const std::string_view handle = memory_.keep(db_.tagWriter().handle(code, slot.handle).str());
      const auto trimmed = withoutErased_.find(&slot);
      database::Record record = trimmed != withoutErased_.end() ? database::Record(trimmed->second) : recordOf(slot);
      record.replace(1, 0, handle);
      const auto existing = std::lower_bound(edits_.begin(), edits_.begin() + changes, offsetOf(slot),
                                             [](const Edit& edit, std::size_t at) { return edit.at < at; });
      if (existing != edits_.begin() + changes && existing->at == offsetOf(slot)) {
        existing->pieces = piecesOf(record);
      } else {
        edits_.push_back({offsetOf(slot), slot.length, piecesOf(record)});
      }
    });
  }

  static void spell(const Slot& entity, TagWriter& out) {
    if (const database::UnwrittenTags* const unwritten = entity.live->record.unwritten()) {
      unwritten->write(out);
    } else {
      for (const std::string_view piece : entity.live->record.pieces()) out.bytes(piece);
    }
    if (const database::UnmadeVertices* const vertices = entity.unmadeVertices()) vertices->writeAll(out, entity);
  }

  void append(Pieces& out, const Slot& slot) const {
    const bool isSpelledLater = slot.live->record.unwritten() != nullptr || slot.unmadeVertices() != nullptr;
    if (isSpelledLater) {
      out.push_back(Piece(slot));
    } else {
      appendRecord(out, slot);
    }
    if (slot.unmadeVertices() != nullptr) return;
    for (const Slot* sub = slot.firstSub(); sub != nullptr; sub = sub->nextSub) {
      if (!sub->isErased() && (sub->flags & kNew) != 0) appendRecord(out, *sub);
    }
  }

  /// The text of a new or changed object itself.
  void appendRecord(Pieces& out, const Slot& slot) const {
    if (const auto trimmed = withoutErased_.find(&slot); trimmed != withoutErased_.end()) {
      out.emplace_back(trimmed->second);
      return;
    }
    const database::Record record = recordOf(slot);
    const std::span<const std::string_view> pieces = record.pieces();
    out.insert(out.end(), pieces.begin(), pieces.end());
  }

  database::Record recordOf(const Slot& slot) const {
    const auto settled = settled_.find(&slot);
    return settled != settled_.end() ? settled->second : slot.record();
  }

  std::string_view kept(const TagWriter& writer) { return memory_.keep(writer.str()); }

  /// Where text goes that a section without a place in the file has to hold: a section of its own.
  void insertInSection(std::size_t sectionEnd, std::string_view name, std::size_t orElseAt, Pieces pieces) {
    if (pieces.empty()) return;
    if (sectionEnd != 0) {
      edits_.push_back({sectionEnd, 0, std::move(pieces)});
      return;
    }
    pieces.insert(pieces.begin(), Piece(kept(db_.tagWriter().raw(0, "SECTION").raw(2, name))));
    pieces.emplace_back(kept(db_.tagWriter().raw(0, "ENDSEC")));
    edits_.push_back({orElseAt, 0, std::move(pieces)});
  }

  void insertNew() {
    Pieces tables;
    Pieces blocks;
    Pieces entities;
    Pieces objects;
    std::map<DxfType, Pieces> records;
    std::map<const Slot*, Pieces> blockEntities;
    for (const Slot* const slot : insertions_) {
      if (slot->isSubEntity() || slot->type == DxfType::TableHead || slot->type == DxfType::Header ||
          slot->type == DxfType::Classes) {
        continue;  // written with what they belong to
      }
      if (database::isTableRecord(slot->type)) {
        append(records[slot->type], *slot);
      } else if (slot->isEntity()) {
        const bool inSection = slot->owner == parts_.blocks.modelSpace() || slot->owner == parts_.blocks.paperSpace();
        append(inSection ? entities : blockEntities[slot->owner], *slot);
      } else {
        append(objects, *slot);
      }
    }

    for (const auto& [type, table] : parts_.tables.all()) {
      Pieces& own = records[type];
      if (table.head == nullptr || (table.head->flags & kNew) == 0) {
        if (!own.empty()) edits_.push_back({table.insertAt, 0, std::move(own)});
        continue;
      }
      if (own.empty() || table.head->isErased()) continue;
      append(tables, *table.head);
      tables.insert(tables.end(), own.begin(), own.end());
      tables.emplace_back(kept(db_.tagWriter().raw(0, "ENDTAB")));
    }
    for (const Slot* const record : parts_.blocks.order()) {
      const BlockContents& block = *db_.block(record);
      Pieces& own = blockEntities[record];
      if (block.begin == nullptr || (block.begin->flags & kNew) == 0) {
        if (!own.empty() && block.end != nullptr) edits_.push_back({offsetOf(*block.end), 0, std::move(own)});
        continue;
      }
      if (record->isErased()) continue;
      append(blocks, *block.begin);
      blocks.insert(blocks.end(), own.begin(), own.end());
      append(blocks, *block.end);
    }
    // Sections stand in this order; a missing one goes in front of the next that is there.
    const std::size_t end = file_.fileEnd;
    insertInSection(file_.tablesEnd, "TABLES", firstSection({"BLOCKS", "ENTITIES", "OBJECTS"}), std::move(tables));
    insertInSection(file_.blocksEnd, "BLOCKS", firstSection({"ENTITIES", "OBJECTS"}), std::move(blocks));
    insertInSection(file_.entitiesEnd, "ENTITIES", firstSection({"OBJECTS"}), std::move(entities));
    insertInSection(file_.objectsEnd, "OBJECTS", end, std::move(objects));
  }

  /// Offset of the first of the named sections that the file has; its end when it has none.
  std::size_t firstSection(std::initializer_list<std::string_view> names) const {
    std::size_t first = file_.fileEnd;
    for (const std::string_view name : names) {
      // A section begins with "0 SECTION" and "2 name"; searching the text is right, for this is rare and exact.
      const std::string tag = "SECTION" + file_.lineEnd;
      for (std::size_t at = file_.text.find(tag); at != std::string::npos; at = file_.text.find(tag, at + 1)) {
        const std::size_t codeEnd = file_.text.find('\n', at + tag.size());
        if (codeEnd == std::string::npos) break;
        if (file_.text.compare(codeEnd + 1, name.size() + file_.lineEnd.size(), std::string(name) + file_.lineEnd) !=
            0) {
          continue;
        }
        const std::size_t lineBefore = file_.text.rfind('\n', at - std::min<std::size_t>(at, 2));
        first = std::min(first, lineBefore == std::string::npos ? 0 : lineBefore + 1);
        break;
      }
    }
    return first;
  }

  Pieces merge() {
    std::stable_sort(edits_.begin(), edits_.end(), [](const Edit& a, const Edit& b) {
      // What is inserted in front of a changed record comes before it.
      return a.at != b.at ? a.at < b.at : (a.remove == 0) > (b.remove == 0);
    });
    const std::string_view text = file_.text;
    Pieces out;
    std::size_t position = 0;
    for (const Edit& edit : edits_) {
      out.emplace_back(text.substr(position, edit.at - position));
      out.insert(out.end(), edit.pieces.begin(), edit.pieces.end());
      position = edit.at + edit.remove;
    }
    out.emplace_back(text.substr(position));
    return out;
  }

  static constexpr std::size_t kMemoryStep = std::size_t{1} << 14;
  DrawingDatabase& db_;
  const DrawingDatabase::Parts& parts_;
  const database::SourceFile& file_;
  std::vector<Edit> edits_;
  std::vector<const Slot*> insertions_;
  std::unordered_map<const Slot*, std::string_view> withoutErased_;  // groups that lost members
  std::unordered_map<const Slot*, database::Record> settled_;        // see settledRecords
  database::Arena memory_{kMemoryStep};                              // of text that only the saved drawing has
};

}  // namespace

namespace {

/// Gives the bytes of the file, until `give` answers false.
bool produce(DrawingDatabase& db, const GiveBytes& give) {
  Writer writer(db);
  database::checkSlots(db);
  const database::SourceFile& file = db.parts().file;
  const auto& form = file.form;
  if (form == nullptr) return writer.write(give);
  if (!give(form->head())) return false;
  std::string spelled;
  const bool isWhole = writer.write([&](std::string_view piece) {
    spelled.clear();
    form->spell(piece, file.text, spelled);
    return give(spelled);
  });
  return isWhole && give(form->tail());
}

}  // namespace

std::string drawingText(DrawingDatabase& db) {
  std::string text;
  produce(db, [&text](std::string_view piece) {
    text += piece;
    return true;
  });
  return text;
}

Result<> saveDrawing(DrawingDatabase& db, const std::filesystem::path& file) {
  Result<> result = writeFileWhole(file, [&db](const GiveBytes& give) { return produce(db, give); });
  if (result) db.setUnmodified();
  return result;
}

}  // namespace host::dxf
