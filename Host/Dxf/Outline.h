// A drawing's text as records, whatever state it is in. Nothing is changed or judged here beyond the structure: what
// cannot be part of a drawing is left out and told.
#pragma once

#include <array>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Dxf/Problems.h"

namespace host::dxf {

/// What the first subclass marker of a record says of it.
enum class Mark : char { None, Entity, TableRecord, Other };

/// A tag 0 and what follows up to the next one.
struct RawRecord {
  std::string_view type;     // without blanks
  std::string_view bytes;    // whole tags
  const char* at = nullptr;  // in the file's text, for messages
  std::uint64_t handle = 0;  // as the file gives it, then the one it gets
  std::uint64_t owner = 0;
  Mark mark = Mark::None;
  bool isOwn = true;  // of the drawing; otherwise it was added

  bool isMarked() const { return mark != Mark::None; }
};

struct Outline {
  struct Variable {
    std::string_view name;  // "$CLAYER"
    std::string_view bytes;
  };
  struct Table {
    std::optional<RawRecord> head;
    std::vector<RawRecord> records;
  };
  struct Block {
    RawRecord begin;
    std::optional<RawRecord> end;
    std::vector<RawRecord> entities;
  };
  struct Section {  // of a kind that is copied as it is
    std::string_view name;
    std::string_view front;  // tags between its name and the first record
    std::vector<RawRecord> records;
  };
  /// Values that stand where a record has its handle and its owner, and are no handles.
  struct OddHandles {
    std::string_view handle, owner;
  };

  std::vector<Variable> variables;
  std::vector<RawRecord> classes;
  std::array<Table, 9> tables;    // in the order of kTableNames
  std::deque<Table> otherTables;  // of unknown names, with records of unknown types
  std::vector<Block> blocks;
  std::vector<RawRecord> entities;
  std::vector<RawRecord> objects;
  std::vector<Section> others;
  std::deque<std::string> mended;                          // records that could not stay where they are
  std::unordered_map<const char*, OddHandles> oddHandles;  // by the place of the record
  bool isUtf8 = false;                                     // by a mark at the text's beginning, whatever the version

  /// Whether there is anything of a drawing at all.
  bool isEmpty() const;
};

/// The tables of a drawing, in the order in which they stand in the file.
inline constexpr std::array<std::string_view, 9> kTableNames = {"VPORT", "LTYPE", "LAYER",    "STYLE",       "VIEW",
                                                                "UCS",   "APPID", "DIMSTYLE", "BLOCK_RECORD"};
/// Place of a table (or of the type of its records) in kTableNames; none for other names.
std::optional<std::size_t> tableIndex(std::string_view name);

/// The bytes that some programs put in front of texts in UTF-8.
inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

/// Without blanks around it and the carriage return of a line end.
std::string_view trimmed(std::string_view line);
/// The handle that a value is; 0 when it is none as a whole, or does not fit into 64 bits.
std::uint64_t handleIn(std::string_view value);
/// The value of the first tag with the code, up to the extended data; none when there is none.
std::optional<std::string_view> firstValue(std::string_view bytes, int code);

/// Whether records of the drawing stand behind an EOF. Another drawing, which begins with a header of its own, is none
/// of it once this one has had a header.
bool goesOnBehindEof(std::string_view rest, bool hadHeader);

Outline outlineOf(std::string_view text, ProblemLog& problems);

}  // namespace host::dxf
