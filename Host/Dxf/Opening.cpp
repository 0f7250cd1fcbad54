// Opening a drawing of any form: DWG and binary drawings are brought to text; text that is not well-formed, or of a
// version before 2000, is rebuilt.
#include <algorithm>
#include <fstream>

#include "Database/DefaultDrawing.h"
#include "Database/Store/Parts.h"
#include "Dxf/Binary.h"
#include "Dxf/Cutter.h"
#include "Dxf/DxfFile.h"
#include "Dxf/LineEnds.h"
#include "Dxf/Outline.h"
#include "Dxf/Reader.h"
#include "Dxf/Rebuild.h"
#include "Platform/Files.h"

namespace host::dxf {

using database::DrawingDatabase;
using database::Tag;

namespace {

/// A drawing as text, whatever form it came in.
struct TextForm {
  std::string text;
  std::shared_ptr<BinaryForm> binary;  // null for drawings in text
  bool hasLines = true;                // lines of the text are lines of the file
  std::vector<Problem> problems;       // of bringing it to text
};

Result<TextForm> textFormOf(std::string bytes, const std::string& name) {
  TextForm form;
  if (isDwg(bytes)) {
    const database::DwgConverter convert = database::dwgConverter();
    form.hasLines = false;
    if (convert == nullptr)
      return problemOf(Code::DwgReaderMissing, name, "this is a DWG drawing, and this program has no reader for them");
    Result<database::ConvertedDrawing> converted = convert(bytes, name);
    if (!converted) return converted;
    form.text = std::move(converted->text);
    form.problems = std::move(converted->problems);
    return form;
  }
  if (isBinary(bytes)) {
    form.binary = std::make_shared<BinaryForm>();
    form.text = form.binary->textOf(bytes);
    form.hasLines = false;
    return form;
  }
  form.text = std::move(bytes);
  if (form.text.find_first_not_of(" \t\r\n") == std::string::npos)
    return problemOf(Code::DrawingUnreadable, name, "the file is empty");
  return form;
}

/// Rebuilds the text of a drawing, and then leaves out what cannot be read all the same.
class Mending {
 public:
  explicit Mending(TextForm& form)
      : form_(form), oddLineEnd_(useKnownLineEnds(form.text)), log_(form.text, form.hasLines) {
    if (!oddLineEnd_.empty())
      log_.note(Code::LineEnds, "every line ends in " + oddLineEnd_ + "; that was taken for one line end");
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

Problem unreadable(const std::string& name, std::string why) {
  return problemOf(Code::DrawingUnreadable, name, std::move(why));
}

/// The problem of the text as one of the file, which nothing can be done about.
Problem inFile(Problem problem, const std::string& name) {
  problem.file = name;
  return problem;
}

Result<std::string> bytesOf(const std::filesystem::path& file) {
  const std::string name = file.string();
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) return unreadable(name, "this is a folder, not a drawing");
  std::ifstream in(file, std::ios::binary | std::ios::ate);
  if (!in) return unreadable(name, "cannot be opened: " + platform::openingFault());
  std::string bytes;
  bytes.resize(static_cast<std::size_t>(std::max<std::streamoff>(in.tellg(), 0)));
  in.seekg(0);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (static_cast<std::size_t>(in.gcount()) != bytes.size()) return unreadable(name, "cannot be read to its end");
  return bytes;
}

constexpr const char* kNothing = "nothing of a drawing can be read from it";
constexpr const char* kNoMemory = "not enough memory to read the drawing";

}  // namespace

bool isDwg(std::string_view bytes) {
  return bytes.size() >= 6 && bytes.substr(0, 2) == "AC" &&
         std::all_of(bytes.begin() + 2, bytes.begin() + 6, [](char c) { return c >= '0' && c <= '9'; });
}

Result<> readDrawingText(DrawingDatabase& db, std::string text, const std::string& name) {
  try {
    Result<TextForm> made = textFormOf(std::move(text), name);
    if (!made) return made;
    TextForm& form = made.value();
    std::vector<Problem> problems;
    if (const Result<> strict = readWellFormed(db, std::move(form.text), name); !strict) {
      Problem fault = strict.problem();
      form.text = std::move(db.parts().file.text);
      db.clear();
      if (!form.hasLines) fault.line = 0;
      Mending mending(form);
      if (!mending.rebuild()) return form.hasLines ? inFile(fault, name) : unreadable(name, kNothing);
      for (;;) {
        const Result<> again = readWellFormed(db, std::move(form.text), name);
        if (again) break;
        form.text = std::move(db.parts().file.text);
        db.clear();
        if (!mending.leaveOut(again.problem())) return inFile(again.problem(), name);
      }
      problems = mending.problems();
      // Some mending is too plain to be told piece by piece: then what made it necessary is.
      if (problems.empty()) problems.push_back(std::move(fault));
    }
    problems.insert(problems.begin(), form.problems.begin(), form.problems.end());
    db.parts().file.problems = std::move(problems);
    db.parts().file.form = std::move(form.binary);
    return {};
  } catch (const std::bad_alloc&) {
    db.clear();
    return unreadable(name, kNoMemory);
  }
}

Result<> readDrawing(DrawingDatabase& db, const std::filesystem::path& file) {
  try {
    Result<std::string> bytes = bytesOf(file);
    if (!bytes) return bytes;
    return readDrawingText(db, std::move(bytes.value()), file.string());
  } catch (const std::bad_alloc&) {
    return unreadable(file.string(), kNoMemory);
  }
}

Result<RepairedDrawing> repairDrawing(const std::filesystem::path& file) {
  const std::string name = file.string();
  try {
    Result<std::string> bytes = bytesOf(file);
    if (!bytes) return bytes;
    Result<TextForm> made = textFormOf(std::move(bytes.value()), name);
    if (!made) return made;
    TextForm& form = made.value();
    Mending mending(form);
    if (!mending.rebuild()) return unreadable(name, kNothing);
    RepairedDrawing repaired;
    repaired.problems = mending.problems();
    repaired.problems.insert(repaired.problems.begin(), form.problems.begin(), form.problems.end());
    if (form.binary != nullptr) {
      repaired.bytes = form.binary->head();
      form.binary->spell(form.text, form.text, repaired.bytes);
      repaired.bytes += form.binary->tail();
    } else {
      repaired.bytes = std::move(form.text);
    }
    return repaired;
  } catch (const std::bad_alloc&) {
    return unreadable(name, kNoMemory);
  }
}

namespace {
[[maybe_unused]] const bool textReaderGiven = database::setTextReader(
    [](DrawingDatabase& db, std::string text) { return readDrawingText(db, std::move(text), "empty drawing").ok(); });
[[maybe_unused]] const bool fileReaderGiven = database::setFileReader(readDrawing);
}  // namespace

}  // namespace host::dxf
