// The inside of rebuilding: a drawing's outline, matched with the parts of an empty drawing and written record by
// record.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Database/Record.h"
#include "Dxf/Outline.h"
#include "Dxf/Problems.h"
#include "Dxf/Rebuild.h"
#include "Text/Codec.h"
#include "Text/Text.h"

namespace host::dxf {

using database::readTag;
using database::Tag;
using database::TagWriter;

// Places of tables in kTableNames, and versions.
inline constexpr std::size_t kLinetypes = 1;
inline constexpr std::size_t kLayers = 2;
inline constexpr std::size_t kStyles = 3;
inline constexpr std::size_t kAppIds = 6;
inline constexpr std::size_t kDimStyles = 7;
inline constexpr std::size_t kBlockRecords = 8;
inline constexpr int kFirstVersion = 1015;
inline constexpr int kFirstUtf8Version = 1021;

enum class Kind { Entity, TableRecord, Object };

/// Rebuilds one drawing: `run` may be called once.
class Rebuilder {
 public:
  Rebuilder(Outline outline, std::string_view lineEnd, ProblemLog& problems);
  Rebuilt run();

 private:
  using OwnerOf = std::function<std::uint64_t(const RawRecord&)>;
  TagWriter writer() const { return TagWriter(codec_, lineEnd_); }

  // ---- version and names ----

  std::optional<std::string_view> variable(std::string_view name, int code) const;
  bool hasMarks() const;
  void findVersion();
  std::wstring folded(std::string_view raw) const { return text::folded(codec_.decode(trimmed(raw))); }
  std::string shownName(std::string_view raw) const { return shown(std::wstring_view(codec_.decode(trimmed(raw)))); }
  static std::string_view nameOf(const RawRecord& record) { return firstValue(record.bytes, 2).value_or(""); }

  // ---- handles ----

  template <class Visit>
  void forEachRecord(const Visit& visit) {
    for (Outline::Table& table : outline_.tables) {
      if (table.head) visit(*table.head, Kind::TableRecord);
      for (RawRecord& record : table.records) visit(record, Kind::TableRecord);
    }
    for (Outline::Table& table : outline_.otherTables) {
      visit(*table.head, Kind::TableRecord);
      for (RawRecord& record : table.records) visit(record, Kind::TableRecord);
    }
    for (Outline::Block& block : outline_.blocks) {
      visit(block.begin, Kind::Entity);
      for (RawRecord& record : block.entities) visit(record, Kind::Entity);
      if (block.end) visit(*block.end, Kind::Entity);
    }
    for (RawRecord& record : outline_.entities) visit(record, Kind::Entity);
    for (RawRecord& record : outline_.objects) visit(record, Kind::Object);
  }

  /// Every record gets a handle of its own. What names one that is no handle is named anew.
  void giveHandles();
  /// The handle that the tag holds, or the one that stands for it now; 0 for neither.
  std::uint64_t resolved(const Tag& tag) const;
  /// Whether the tag names an object by what is no handle.
  bool namesNew(const Tag& tag, bool isSortTable) const;
  /// The tags with such names replaced.
  std::string withNewHandles(std::string_view bytes) const;
  std::uint64_t newHandle();

  /// The handle that stands for one of the basic drawing.
  std::uint64_t basicHandle(std::uint64_t handle) const;

  // ---- tables and blocks ----

  void matchTables();

  /// R12 names the spaces with a dollar sign.
  std::string_view blockName(const RawRecord& begin) const;

  /// Every block gets its record, every record its block.
  void matchBlocks();
  std::string_view keep(std::string bytes);

  /// A new record of a table with nothing but its name and what its kind cannot do without.
  void addRecord(std::size_t table, std::string_view name, std::uint64_t handle);

  /// Names that entities use get a record each.
  void addMissingNames();
  void use(std::size_t table, std::string_view raw, const RawRecord& by);
  void writeTables(std::string& out);
  std::uint64_t layoutOf(std::uint64_t blockRecord) const;

  // ---- blocks and entities ----

  void writeBlock(std::string& out, Outline::Block& block);
  void writeBasicBlock(std::string& out, const Outline::Block& block);
  void writeEntities(std::string& out);
  static bool isPart(std::string_view type) { return type == "VERTEX" || type == "ATTRIB" || type == "SEQEND"; }

  static int flagsOf(const RawRecord& record);

  /// Vertices of a polyline or attributes of a reference.
  struct Parts {
    std::vector<RawRecord*> records;
    RawRecord* end = nullptr;
    bool areAnnounced = false;  // by the record that they belong to
  };
  /// Those that stand behind the record in front of `next`, which moves past them.
  Parts takeParts(std::vector<RawRecord>& records, std::size_t& next);
  std::string withAttributesAnnounced(std::string_view bytes) const;
  void writeEntityList(std::string& out, std::vector<RawRecord>& records, const OwnerOf& ownerOf);

  /// Some programs give parts the block as their owner; that is left alone.
  static std::uint64_t partOwner(const RawRecord& part, const RawRecord& whole, std::uint64_t owner);
  std::string whyNot(const RawRecord& record) const;

  /// References that close a circle of blocks are left out.
  void cutBlockCycles();

  // ---- objects ----

  static bool isDictionary(const RawRecord& record);
  void findRoot();
  static std::uint64_t lastHandle(const RawRecord& record, int code);

  /// Owners of objects: as they say, unless nothing of that handle is there or owners go in a circle; then the
  /// dictionary that lists the object, or the root.
  void settleOwners();
  void writeObjects(std::string& out);
  void emitBasicObject(std::string& out, const RawRecord& record);

  // ---- records ----

  /// A record of the basic drawing, with handles of this one.
  void emitBasic(std::string& out, const RawRecord& record, std::uint64_t owner);
  void useNames(const RawRecord& record, Kind kind);

  /// A record of the drawing with its handle and its owner; its own bytes when nothing had to change.
  void emit(std::string& out, RawRecord& record, std::uint64_t owner, Kind kind, int polylineFlags = 0);
  void emitMended(std::string& out, const RawRecord& record, std::uint64_t owner, Kind kind);
  static bool frontHas(const RawRecord& record, int handleCode);
  void writeMissingEntries(TagWriter& tags) const;

  /// Values that are none: a number where there is no number becomes 0.
  bool mendValue(TagWriter& tags, const RawRecord& record, const Tag& tag);

  // ---- the whole ----

  template <class WriteContent>
  void writeSection(std::string& out, std::string_view name, const WriteContent& content) const {
    out += writer().raw(0, "SECTION").raw(2, name).str();
    content();
    if (!out.ends_with('\n')) out += lineEnd_;
    out += writer().raw(0, "ENDSEC").str();
  }

  /// Bytes of the records with room for what they get; memory that is not written to costs nothing.
  std::size_t expectedSize();

  /// Ends of polylines and of blocks may still get handles.
  std::uint64_t seed();
  void writeHeader(std::string& out);
  void writeClasses(std::string& out) const;

  Outline outline_;
  std::string_view lineEnd_;
  ProblemLog& problems_;
  Outline basic_;
  text::Codec codec_;
  std::string codePage_;
  int version_ = kFirstVersion;
  bool isOld_ = false;

  std::unordered_set<std::uint64_t> handles_;
  std::unordered_map<std::string, std::uint64_t> newHandles_;  // by the text that is no handle, in capitals
  std::uint64_t nextHandle_ = 1;
  std::uint64_t highestHandle_ = 0;  // of the file
  std::uint64_t seed_ = 0;           // of the file
  std::uint64_t basicOffset_ = 0;
  std::unordered_map<std::uint64_t, std::uint64_t> basicHandles_;
  std::array<std::unordered_set<std::wstring>, 9> names_;
  std::unordered_map<std::wstring, std::uint64_t> blockNames_;
  std::unordered_set<std::uint64_t> cut_;  // references left out
  std::uint64_t model_ = 0;
  std::uint64_t paper_ = 0;
  struct Use {
    std::string_view name;
    const char* at;
    std::uint64_t handle;
  };
  std::array<std::unordered_set<std::string_view>, 9> used_;
  std::vector<std::pair<std::size_t, Use>> usedInOrder_;

  RawRecord* root_ = nullptr;
  std::uint64_t rootHandle_ = 0;
  std::vector<std::pair<std::string_view, std::uint64_t>> missingEntries_;  // of the root
  std::vector<RawRecord*> basicObjects_;
  std::unordered_map<std::uint64_t, std::uint64_t> layouts_;  // by block record
};

}  // namespace host::dxf
