// Opening a drawing of any form: DWG and binary drawings are brought to text; text that is not well-formed, or of a
// version before 2000, is rebuilt.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>

#include "Database/DefaultDrawing.h"
#include "Database/Store/Parts.h"
#include "Dxf/Binary.h"
#include "Dxf/Cutter.h"
#include "Dxf/DxfFile.h"
#include "Dxf/LineEnds.h"
#include "Dxf/Outline.h"
#include "Dxf/Reader.h"
#include "Dxf/Rebuild.h"

namespace host::dxf {

using database::DrawingDatabase;
using database::Problem;
using database::Tag;

namespace {

/// A drawing as text, whatever form it came in.
struct TextForm {
  std::string text;
  std::shared_ptr<BinaryForm> binary;  // null for drawings in text
  bool hasLines = true;                // lines of the text are lines of the file
  std::vector<Problem> problems;       // of bringing it to text
  std::string failure;
};

TextForm textFormOf(std::string bytes, const std::string& name) {
  TextForm form;
  if (isDwg(bytes)) {
    const database::DwgConverter convert = database::dwgConverter();
    form.hasLines = false;
    if (convert == nullptr) {
      form.failure = name + ": this is a DWG drawing, and this program has no reader for them";
      return form;
    }
    database::ConvertedDrawing converted = convert(bytes, name);
    if (!converted.ok) form.failure = std::move(converted.message);
    form.text = std::move(converted.text);
    form.problems = std::move(converted.problems);
    return form;
  }
  if (isBinary(bytes)) {
    form.binary = std::make_shared<BinaryForm>();
    form.text = form.binary->textOf(bytes);
    form.hasLines = false;
    return form;
  }
  form.text = std::move(bytes);
  if (form.text.find_first_not_of(" \t\r\n") == std::string::npos) form.failure = name + ": the file is empty";
  return form;
}

/// Rebuilds the text of a drawing, and then leaves out what cannot be read all the same.
class Mending {
 public:
  explicit Mending(TextForm& form)
      : form_(form), oddLineEnd_(useKnownLineEnds(form.text)), log_(form.text, form.hasLines) {
    if (!oddLineEnd_.empty()) log_.note("every line ends in " + oddLineEnd_ + "; that was taken for one line end");
  }

  /// False when the text holds nothing of a drawing.
  bool rebuild() {
    Outline outline = outlineOf(form_.text, log_);
    if (outline.isEmpty()) return false;
    const std::size_t firstLine = form_.text.find('\n');
    const bool hasReturns = firstLine != std::string::npos && firstLine > 0 && form_.text[firstLine - 1] == '\r';
    Rebuilt rebuilt = dxf::rebuild(std::move(outline), hasReturns ? "\r\n" : "\n", log_);
    form_.text = std::move(rebuilt.text);
    if (form_.binary != nullptr) form_.binary->useForNewText(rebuilt.wasUpgraded);
    return true;
  }

  /// Leaves out of the rebuilt text the record in which the fault lies; false when the file's structure is at fault, or
  /// when that happened often already.
  bool leaveOut(const Problem& fault) {
    constexpr int kMostTries = 50;
    if (fault.line == 0 || ++tries_ > kMostTries) return false;
    std::size_t line = 1;
    Tag tag;
    std::string_view record;
    std::string_view rest = form_.text;
    if (rest.starts_with(kUtf8Mark)) rest.remove_prefix(kUtf8Mark.size());
    while (line <= fault.line && database::readTag(rest, tag)) {
      if (tag.code == 0) record = tag.bytes;
      if (!record.empty()) record = {record.data(), static_cast<std::size_t>(rest.data() - record.data())};
      line += static_cast<std::size_t>(std::count(tag.bytes.begin(), tag.bytes.end(), '\n'));
    }
    while (database::readTag(rest, tag) && tag.code != 0) {
      record = {record.data(), record.size() + tag.bytes.size()};
    }
    std::string_view head = record;
    if (!database::readTag(head, tag) || isMarker(tag.trimmed())) return false;
    log_.leftOut(nullptr, tag.trimmed(), 0, fault.text);
    form_.text.erase(static_cast<std::size_t>(record.data() - form_.text.data()), record.size());
    return true;
  }

  std::vector<Problem> problems() { return log_.take(); }

 private:
  TextForm& form_;
  std::string oddLineEnd_;
  ProblemLog log_;
  int tries_ = 0;
};

/// Why the text is not well-formed; nothing when it was read.
std::optional<Problem> readOrSay(DrawingDatabase& db, std::string text, const std::string& name) {
  try {
    readWellFormed(db, std::move(text), name);
    return std::nullopt;
  } catch (const ReadError& error) {
    return Problem{error.line, 0, error.sentence};
  }
}

FileResult bytesOf(const std::filesystem::path& file, std::string& bytes) {
  const std::string name = file.string();
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) return {false, name + ": this is a folder, not a drawing"};
  std::ifstream in(file, std::ios::binary | std::ios::ate);
  if (!in) return {false, name + ": cannot be opened: " + std::strerror(errno)};
  bytes.resize(static_cast<std::size_t>(std::max<std::streamoff>(in.tellg(), 0)));
  in.seekg(0);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (static_cast<std::size_t>(in.gcount()) != bytes.size()) return {false, name + ": cannot be read to its end"};
  return {};
}

constexpr const char* kNothing = ": nothing of a drawing can be read from it";
constexpr const char* kNoMemory = ": not enough memory to read the drawing";

}  // namespace

bool isDwg(std::string_view bytes) {
  return bytes.size() >= 6 && bytes.substr(0, 2) == "AC" &&
         std::all_of(bytes.begin() + 2, bytes.begin() + 6, [](char c) { return c >= '0' && c <= '9'; });
}

FileResult readDrawingText(DrawingDatabase& db, std::string text, const std::string& name) {
  try {
    TextForm form = textFormOf(std::move(text), name);
    if (!form.failure.empty()) return {false, std::move(form.failure)};
    std::optional<Problem> fault = readOrSay(db, std::move(form.text), name);
    std::vector<Problem> problems;
    if (fault) {
      form.text = std::move(db.parts().file.text);
      db.clear();
      if (!form.hasLines) fault->line = 0;
      Mending mending(form);
      if (!mending.rebuild()) return {false, form.hasLines ? problemSentence(name, *fault) : name + kNothing};
      while (const auto still = readOrSay(db, std::move(form.text), name)) {
        form.text = std::move(db.parts().file.text);
        db.clear();
        if (!mending.leaveOut(*still)) return {false, problemSentence(name, *still)};
      }
      problems = mending.problems();
      // Some mending is too plain to be told piece by piece: then what made it necessary is.
      if (problems.empty()) problems.push_back(std::move(*fault));
    }
    problems.insert(problems.begin(), form.problems.begin(), form.problems.end());
    db.parts().file.problems = std::move(problems);
    db.parts().file.form = std::move(form.binary);
    return {};
  } catch (const std::bad_alloc&) {
    db.clear();
    return {false, name + kNoMemory};
  }
}

FileResult readDrawing(DrawingDatabase& db, const std::filesystem::path& file) {
  try {
    std::string bytes;
    if (FileResult read = bytesOf(file, bytes); !read.ok) return read;
    return readDrawingText(db, std::move(bytes), file.string());
  } catch (const std::bad_alloc&) {
    return {false, file.string() + kNoMemory};
  }
}

FileResult repairDrawing(const std::filesystem::path& file, std::string& repaired, std::vector<Problem>& problems) {
  const std::string name = file.string();
  try {
    std::string bytes;
    if (FileResult read = bytesOf(file, bytes); !read.ok) return read;
    TextForm form = textFormOf(std::move(bytes), name);
    if (!form.failure.empty()) return {false, std::move(form.failure)};
    Mending mending(form);
    if (!mending.rebuild()) return {false, name + kNothing};
    problems = mending.problems();
    problems.insert(problems.begin(), form.problems.begin(), form.problems.end());
    if (form.binary != nullptr) {
      repaired = form.binary->head();
      form.binary->spell(form.text, form.text, repaired);
      repaired += form.binary->tail();
    } else {
      repaired = std::move(form.text);
    }
    return {};
  } catch (const std::bad_alloc&) {
    return {false, name + kNoMemory};
  }
}

namespace {
[[maybe_unused]] const bool textReaderGiven = database::setTextReader(
    [](DrawingDatabase& db, std::string text) { return readDrawingText(db, std::move(text), "empty drawing").ok; });
[[maybe_unused]] const bool fileReaderGiven =
    database::setFileReader([](DrawingDatabase& db, const std::filesystem::path& file, std::string& message) {
      FileResult result = readDrawing(db, file);
      message = std::move(result.message);
      return result.ok;
    });
}  // namespace

}  // namespace host::dxf
