// The symbol tables of a drawing and their records by name.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Database/Store/Names.h"

namespace host::database {

/// A symbol table: its head and records in file order.
struct SymbolTable {
  Slot* head = nullptr;
  std::vector<Slot*> records;  // erased ones included
  NameMap<Slot*> byName;
  std::size_t insertAt = 0;  // offset of ENDTAB in the file text
};

/// By the type of their records.
class SymbolTables {
 public:
  explicit SymbolTables(DrawingDatabase& db) : db_(db) {}
  SymbolTables(const SymbolTables&) = delete;
  SymbolTables& operator=(const SymbolTables&) = delete;

  /// Null when the drawing has no such table.
  const SymbolTable* find(DxfType recordType) const;
  /// The table of a head, or null.
  const SymbolTable* findHead(const Slot& head) const;
  /// Which table a head belongs to; Unknown for none.
  DxfType recordTypeOf(const Slot& head) const;
  /// The living record of the name (without regard to case), or null.
  Slot* findRecord(DxfType recordType, std::wstring_view name) const;

  /// For the reader: the table, with no head yet when it is new.
  SymbolTable& enter(DxfType recordType) { return tables_[recordType]; }
  /// The table, made with a head when the drawing lacks it.
  SymbolTable& obtain(DxfType recordType);

  const std::map<DxfType, SymbolTable>& all() const { return tables_; }

 private:
  DrawingDatabase& db_;
  std::map<DxfType, SymbolTable> tables_;
};

/// Name of a table record: tag 2, decoded; empty when it has none.
std::wstring nameOfRecord(const Slot& record, const text::Codec& codec);

}  // namespace host::database
