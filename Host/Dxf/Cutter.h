// Cuts a drawing's text into records, whatever state it is in.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Database/Record.h"
#include "Dxf/Outline.h"
#include "Dxf/Problems.h"

namespace host::dxf {

/// A record as it was cut, or tags that belong to none (their type is empty).
struct Cut {
  RawRecord record;
  std::string_view loss;  // why the record is lost; empty when it is whole
};

enum class Section { None, Header, Classes, Tables, Blocks, Entities, Objects, Other };

inline constexpr std::pair<std::string_view, Section> kSections[] = {
    {"HEADER", Section::Header}, {"CLASSES", Section::Classes},   {"TABLES", Section::Tables},
    {"BLOCKS", Section::Blocks}, {"ENTITIES", Section::Entities}, {"OBJECTS", Section::Objects}};
/// None for the name of a section that is copied as it is.
std::optional<Section> sectionOf(std::string_view name);

/// Whether the type stands for the structure of the file, not for something of the drawing.
bool isMarker(std::string_view type);

class Cutter {
 public:
  /// Records that cannot stay where they are, and odd handles, are kept in the outline.
  Cutter(std::string_view text, Outline& outline, ProblemLog& problems);

  /// Cuts the next record; false at the end of the text. Lines that cannot be read cost the record they stand in: it
  /// goes on at the next one, or at the next variable in the header.
  bool next(Cut& cut);
  /// Tells what the next record stands in.
  void setSection(Section section) { section_ = section; }

  bool isAtEnd() const { return position_ >= text_.size(); }
  std::string_view rest() const { return text_.substr(position_); }
  /// Type of the record that stands next; empty when none does.
  std::string_view nextType() const;

 private:
  const char* at(std::size_t offset) const { return text_.data() + offset; }
  bool isLastLine(std::size_t from) const;
  void cleanUpTo(std::size_t here);
  void skipBlankLine(std::size_t here);
  void damage(std::size_t here, bool isBadType);
  void noteTag(RawRecord& record, const database::Tag& tag);
  void noteHandle(RawRecord& record, const database::Tag& tag);
  void rearrange(RawRecord& record);

  std::string_view text_;
  Outline& outline_;
  ProblemLog& problems_;
  std::size_t position_ = 0;
  Section section_ = Section::None;
  bool saidBlank_ = false;
  std::string reason_;

  // Of the record being cut.
  struct Present {
    std::size_t begin = 0;
    bool hasHead = false;
    bool isHeader = false;  // the section of that name
    bool isDamaged = false;
    bool isCutOff = false;             // by the end of the text
    std::optional<std::string> clean;  // its tags, when lines between them had to go
    int handleCode = 5;
    bool isInFront = true;  // before the first subclass marker
    bool isInGroup = false;
    int markers = 0;
    bool hasXData = false;
    bool isXDataEarly = false;    // in front of the first subclass marker
    std::string_view lateHandle;  // its tag, behind the first subclass marker of an entity
  } present_;
};

}  // namespace host::dxf
