#include "Database/Store/SymbolTables.h"

#include "Database/Store/Parts.h"
#include "Database/Store/TagEdits.h"

namespace host::database {

const SymbolTable* SymbolTables::find(DxfType recordType) const {
  const auto found = tables_.find(recordType);
  return found != tables_.end() ? &found->second : nullptr;
}

const SymbolTable* SymbolTables::findHead(const Slot& head) const { return find(recordTypeOf(head)); }

DxfType SymbolTables::recordTypeOf(const Slot& head) const {
  for (const auto& [type, table] : tables_) {
    if (table.head == &head) return type;
  }
  return DxfType::Unknown;
}

Slot* SymbolTables::findRecord(DxfType recordType, std::wstring_view name) const {
  const SymbolTable* const table = find(recordType);
  if (table == nullptr) return nullptr;
  const auto found = table->byName.find(name);
  if (found == table->byName.end()) return nullptr;
  if (!found->second->isErased()) return found->second;
  // An erased record may hide a living one of the same name (made again, or brought back by undo).
  for (Slot* const record : table->records) {
    if (!record->isErased() && text::equalFolded(nameOfRecord(*record, db_.codec()), name)) return record;
  }
  return nullptr;
}

SymbolTable& SymbolTables::obtain(DxfType recordType) {
  SymbolTable& table = tables_[recordType];
  if (table.head == nullptr) {
    RecordEditor& editor = db_.parts().editor;
    NewSlots made(db_.parts().slots);
    Slot* const head = editor.make(DxfType::TableHead, nullptr, 0);
    editor.set(*head, db_.tagWriter()
                          .raw(0, "TABLE")
                          .raw(2, fixedTypeName(recordType))
                          .handle(5, head->handle)
                          .handle(330, 0)
                          .raw(100, "AcDbSymbolTable")
                          .integer(70, 0)
                          .take());
    made.keep();
    table.head = head;
  }
  return table;
}

std::wstring nameOfRecord(const Slot& record, const text::Codec& codec) {
  Tag tag;
  // The name is the first tag 2 after the record's own subclass marker; every table record has it there.
  return findTagIn(record.tags(), "", 2, tag) ? codec.decode(tag.value) : std::wstring();
}

}  // namespace host::database
