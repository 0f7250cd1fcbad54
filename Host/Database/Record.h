// The tags of one object, as they stand in the drawing file.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Text/Codec.h"

namespace host::database {

/// One tag: a group code and a value, in the drawing's own encoding.
struct Tag {
  int code = 0;
  std::string_view value;  // without the line end, blanks kept
  std::string_view bytes;  // both lines with their line ends

  double real() const;           // 0 when not a number; never NaN or infinite
  std::int64_t integer() const;  // 0 when not a number
  std::uint64_t handle() const;  // 0 when not a handle
  std::string_view trimmed() const;
};

inline constexpr int kBadCode = -9999;  // a group code that is not a number

/// The number of a group code line, blanks around it allowed; kBadCode when it is none.
int parseGroupCode(std::string_view line);
/// Reads the tag at the start of `text` and moves past it. False at the end.
bool readTag(std::string_view& text, Tag& tag);

/// Walks the tags of a record. Copies are cheap.
class TagCursor {
 public:
  TagCursor() = default;
  explicit TagCursor(std::string_view single) : current_(single) {}
  explicit TagCursor(std::span<const std::string_view> pieces)
      : next_(pieces.data()), end_(pieces.data() + pieces.size()) {}
  bool next(Tag& tag);

 private:
  std::string_view current_;
  const std::string_view* next_ = nullptr;
  const std::string_view* end_ = nullptr;
};

class UnwrittenTags;

/// An object's tags as a rope of byte pieces: unchanged ones are the very bytes of the file. Piece memory belongs
/// to the database (file text or its arena), so copies are cheap and old copies stay valid for undo. A record may also
/// stand for tags that are written out when they are first read; only `unwritten` tells the difference.
class Record {
 public:
  Record() = default;
  explicit Record(std::string_view bytes) : content_(bytes) {}
  explicit Record(UnwrittenTags& tags) : content_(&tags) {}

  TagCursor tags() const { return TagCursor(pieces()); }
  std::span<const std::string_view> pieces() const;
  bool isEmpty() const { return pieces().empty(); }
  std::size_t size() const;
  std::string bytes() const;
  /// The tags behind a record that was neither read nor changed yet; else null.
  UnwrittenTags* unwritten() const;

  /// Number of tags.
  std::size_t count() const;
  /// Replaces `count` tags starting at tag number `index` by `bytes` (whole tags, in memory that outlives the record).
  void replace(std::size_t index, std::size_t count, std::string_view bytes);
  /// Adds whole tags at the end; constant time.
  void append(std::string_view bytes);
  void assign(std::string_view bytes) { content_ = bytes; }

 private:
  using Pieces = std::vector<std::string_view>;
  /// The pieces to change: of this record only, for copies share theirs.
  Pieces& ownPieces();

  // Most records are one piece.
  std::variant<std::monostate, std::string_view, UnwrittenTags*, std::shared_ptr<Pieces>> content_;
};

/// An integer as DXF writers spell it: right-justified to 9 characters under 32-bit codes, to 6 under others.
std::string spelledInteger(int code, std::int64_t value);

/// Spells tags in the form of one drawing: its line ends and its encoding.
class TagWriter {
 public:
  explicit TagWriter(const text::Codec& codec, std::string_view lineEnd = "\n") : codec_(&codec), lineEnd_(lineEnd) {}
  TagWriter& raw(int code, std::string_view value);    // bytes already in the drawing's encoding
  TagWriter& text(int code, std::wstring_view value);  // encoded and escaped
  TagWriter& real(int code, double value);
  TagWriter& integer(int code, std::int64_t value);  // width as DXF writers use: 16-bit 6, 32-bit 9 characters
  TagWriter& handle(int code, std::uint64_t value);
  TagWriter& point(int code, double x, double y, double z);  // code, code + 10, code + 20
  TagWriter& point(int code, double x, double y);
  TagWriter& bytes(std::string_view tags);  // whole tags, copied as they are
  const std::string& str() const { return out_; }
  std::string take() { return std::move(out_); }
  void clear() { out_.clear(); }

 private:
  static constexpr std::size_t kLongestLineEnd = 2;
  template <class Spell>
  TagWriter& number(int code, Spell spell);

  const text::Codec* codec_;
  std::string_view lineEnd_;
  std::string out_;
};

/// Where the parts of an entity's or object's record lie, as tag numbers. [begin, end) each.
struct RecordLayout {
  std::size_t handle = npos;                                 // tag 5 or 105
  std::size_t reactorsBegin = npos, reactorsEnd = npos;      // 102 {ACAD_REACTORS ... 102 }
  std::size_t dictionaryBegin = npos, dictionaryEnd = npos;  // 102 {ACAD_XDICTIONARY ... 102 }
  std::size_t owner = npos;                                  // the 330 outside those groups
  std::size_t firstSubclass = npos;                          // first 100
  std::size_t secondSubclass = npos;                         // second 100
  std::size_t xdata = npos;                                  // first 1001, or the end
  std::size_t end = 0;                                       // number of tags
  static constexpr std::size_t npos = static_cast<std::size_t>(-1);
};
RecordLayout layoutOf(const Record& record);
/// The part in front of the first subclass only: handle, groups and owner. The rest stays npos, `end` where it stopped.
RecordLayout frontOf(const Record& record);

}  // namespace host::database
