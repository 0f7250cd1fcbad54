// The file that a drawing was read from.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Text/Codec.h"

namespace host::database {

/// How a drawing's text is spelled in its file, when not as it stands (binary drawings).
class FileForm {
 public:
  FileForm() = default;
  FileForm(const FileForm&) = delete;
  FileForm& operator=(const FileForm&) = delete;
  virtual ~FileForm() = default;
  /// What stands before and behind the spelled text.
  virtual std::string_view head() const = 0;
  virtual std::string_view tail() const = 0;
  /// Adds the bytes that a piece of text (whole tags) makes in the file; `text` is the drawing's text as it was read,
  /// in which unchanged pieces lie.
  virtual void spell(std::string_view piece, std::string_view text, std::string& out) const = 0;
};

/// Plain values: the reader fills them in, and from then on only the list of problems grows.
struct SourceFile {
  std::string text;                      // slots point into it
  std::string name;                      // as messages call it
  std::shared_ptr<const FileForm> form;  // null: the text is the file
  DrawingVersion version = DrawingVersion::V2013;
  text::Codec codec;
  std::string lineEnd = "\n";
  std::size_t tablesEnd = 0;  // offsets of the ENDSEC of each section; 0 when the file lacks it
  std::size_t blocksEnd = 0;
  std::size_t entitiesEnd = 0;
  std::size_t objectsEnd = 0;
  std::size_t fileEnd = 0;  // offset of EOF
  Slot* classes = nullptr;  // the CLASSES section
  std::vector<Problem> problems;
};

}  // namespace host::database
