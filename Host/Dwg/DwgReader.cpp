#include "Dwg/DwgReader.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <mutex>
#include <sstream>

#include "Platform/Library.h"
#include "Platform/Paths.h"

namespace host::dwg {

namespace {

constexpr std::string_view kVersions[] = {"AC1014", "AC1015", "AC1018", "AC1021", "AC1024", "AC1027", "AC1032"};
constexpr std::string_view kWhatToInstall =
    "DWG drawings need Node.js and a package for it; run tools/install-dwg-reader.sh, or save the drawing as DXF";

std::filesystem::path readerFolder() {
  if (const char* const given = std::getenv("TOLMEX_DWG_READER"); given != nullptr && *given != '\0')
    return platform::pathOf(given);
  return platform::fileOf(reinterpret_cast<const void*>(&readerFolder)).parent_path() / "dwg-reader";
}

/// Drawings of version AC1014 differ from AC1015 in what they lack, and readers get along without that.
void raiseVersion(std::string& text) {
  const std::size_t variable = text.find("$ACADVER");
  if (variable == std::string::npos) return;
  constexpr std::size_t kNear = 20;  // the group code and the line ends between
  const std::size_t value = text.find("AC1014", variable);
  if (value != std::string::npos && value - variable < kNear) text.replace(value, 6, "AC1015");
}

/// Takes the lines behind the text's end: "left-out <count> <class>" and "pictured <count> <class>".
std::vector<database::Problem> takeLosses(std::string& text) {
  constexpr std::string_view kEnd = "EOF\r\n";
  const std::size_t end = text.rfind(kEnd);
  if (end == std::string::npos) return {};
  const std::string lines = text.substr(end + kEnd.size());
  text.resize(end + kEnd.size());
  struct Kind {
    Code code;
    std::string_view word, sentence;
    std::string classes = {};
    std::size_t total = 0;
  };
  Kind kinds[] = {{Code::DwgObjectsMissing, "left-out", "left out, because the DWG reader does not give them: "},
                  {Code::DwgObjectsPictured, "pictured",
                   "kept as pictures of themselves, because the DWG reader does not give their data: "}};
  std::istringstream in(lines);
  std::string word, name;
  for (std::size_t count = 0; in >> word >> count && std::getline(in >> std::ws, name);) {
    for (Kind& kind : kinds) {
      if (word != kind.word) continue;
      kind.classes += (kind.classes.empty() ? "" : ", ") + name + " " + std::to_string(count);
      kind.total += count;
    }
  }
  std::vector<database::Problem> problems;
  for (const Kind& kind : kinds) {
    if (kind.total > 0)
      problems.push_back(
          problemOf(kind.code, std::string(kind.sentence) + std::to_string(kind.total) + " (" + kind.classes + ")"));
  }
  return problems;
}

}  // namespace

ReaderSettings defaultSettings() {
  ReaderSettings settings;
  settings.script = readerFolder() / "reader.mjs";
  return settings;
}

Result<database::ConvertedDrawing> convert(ReaderProcess& reader, std::string_view bytes, const std::string& name) {
  using Outcome = ReaderProcess::Outcome;
  const auto unreadable = [&name](std::string why) { return problemOf(Code::DrawingUnreadable, name, std::move(why)); };
  const std::string_view version = bytes.substr(0, 6);
  if (std::find(std::begin(kVersions), std::end(kVersions), version) == std::end(kVersions))
    return unreadable("DWG version " + std::string(version) +
                      " cannot be read; only versions AC1014 (R14) to AC1032 (2018) can");
  database::ConvertedDrawing result;
  switch (reader.convert(bytes, result.text)) {
    case Outcome::Ok:
      result.problems = takeLosses(result.text);
      if (version == "AC1014") raiseVersion(result.text);
      return result;
    case Outcome::Damaged:
      return unreadable("the DWG drawing is damaged or of a kind that cannot be read (" + result.text.substr(0, 80) +
                        ")");
    case Outcome::TooSlow:
      return unreadable("reading the DWG drawing took too long; save it as DXF");
    case Outcome::Crashed:
      return unreadable("the DWG reader broke down on this drawing; save it as DXF");
    case Outcome::ReaderMissing:
    case Outcome::ProgramMissing:
      break;
  }
  return problemOf(Code::DwgReaderMissing, name, std::string(kWhatToInstall));
}

namespace {

Result<database::ConvertedDrawing> convertOnce(std::string_view bytes, const std::string& name) {
  static std::mutex oneAtATime;
  static ReaderProcess reader(defaultSettings());
  const std::lock_guard lock(oneAtATime);
  return convert(reader, bytes, name);
}

[[maybe_unused]] const bool converterGiven = database::setDwgConverter(convertOnce);

}  // namespace

}  // namespace host::dwg
