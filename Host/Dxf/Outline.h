// A drawing's text cut into records, whatever state it is in. Nothing is changed or judged here beyond the structure:
// what cannot be part of a drawing is left out and told.
#pragma once

#include <array>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Dxf/Problems.h"

namespace host::dxf {

/// A tag 0 and what follows up to the next one.
struct RawRecord {
  std::string_view type;     // without blanks
  std::string_view bytes;    // whole tags
  const char* at = nullptr;  // in the file's text, for messages
  std::uint64_t handle = 0;  // as the file gives it, then the one it gets
  std::uint64_t owner = 0;
  bool isMarked = false;  // has subclass markers
  bool isOwn = true;      // of the drawing; otherwise it was added
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

  std::vector<Variable> variables;
  std::vector<RawRecord> classes;
  std::array<Table, 9> tables;  // in the order of kTableNames
  std::vector<Block> blocks;
  std::vector<RawRecord> entities;
  std::vector<RawRecord> objects;
  std::vector<Section> others;
  std::deque<std::string> mended;  // records that could not stay where they are

  /// Whether there is anything of a drawing at all.
  bool isEmpty() const;
};

/// The tables of a drawing, in the order in which they stand in the file.
inline constexpr std::array<std::string_view, 9> kTableNames = {"VPORT", "LTYPE", "LAYER",    "STYLE",       "VIEW",
                                                                "UCS",   "APPID", "DIMSTYLE", "BLOCK_RECORD"};
/// Place of a table (or of the type of its records) in kTableNames; none for other names.
std::optional<std::size_t> tableIndex(std::string_view name);

/// The value of the first tag with the code, up to the extended data; none when there is none.
std::optional<std::string_view> firstValue(std::string_view bytes, int code);

Outline outlineOf(std::string_view text, ProblemLog& problems);

}  // namespace host::dxf
