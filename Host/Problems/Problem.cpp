#include "Problems/Problem.h"

#include <array>

#include "Text/Text.h"

namespace host {

namespace {

struct Row {
  Code code;
  std::string_view name;
  RunStatus status = RunStatus::Done;
};

// In the order of the codes. Programs rely on the names: add new ones, never rename or reuse one.
constexpr std::array kRows = {
    Row{Code::WrongUsage, "wrong-usage", RunStatus::WrongUsage},
    Row{Code::ModuleRefused, "module-refused", RunStatus::WrongUsage},
    Row{Code::VariableRefused, "variable-refused", RunStatus::WrongUsage},
    Row{Code::DrawingUnreadable, "drawing-unreadable", RunStatus::DrawingUnreadable},
    Row{Code::DwgReaderMissing, "dwg-reader-missing", RunStatus::DrawingUnreadable},
    Row{Code::ScriptUnreadable, "script-unreadable", RunStatus::ScriptFailed},
    Row{Code::CommandUnknown, "command-unknown", RunStatus::ScriptFailed},
    Row{Code::CommandFailed, "command-failed", RunStatus::ScriptFailed},
    Row{Code::AnswerRefused, "answer-refused", RunStatus::ScriptFailed},
    Row{Code::AnswerMissing, "answer-missing", RunStatus::ScriptFailed},
    Row{Code::NothingFound, "nothing-found", RunStatus::ScriptFailed},
    Row{Code::ObjectsSkipped, "objects-skipped", RunStatus::ScriptFailed},
    Row{Code::Interrupted, "interrupted", RunStatus::ScriptFailed},
    Row{Code::MemoryEnded, "memory-ended", RunStatus::ScriptFailed},
    Row{Code::OutputRefused, "output-refused", RunStatus::OutputFailed},
    Row{Code::OutputFailed, "output-failed", RunStatus::OutputFailed},
    Row{Code::PictureEmpty, "picture-empty", RunStatus::OutputFailed},
    Row{Code::PictureNote, "picture-note"},
    Row{Code::FileMalformed, "file-malformed", RunStatus::DrawingUnreadable},
    Row{Code::StructureMended, "structure-mended"},
    Row{Code::LineSkipped, "line-skipped"},
    Row{Code::LineEnds, "line-ends"},
    Row{Code::VersionConverted, "version-converted"},
    Row{Code::RecordLeftOut, "record-left-out"},
    Row{Code::RecordMended, "record-mended"},
    Row{Code::RecordMoved, "record-moved"},
    Row{Code::ObjectAdded, "object-added"},
    Row{Code::HandleMended, "handle-mended"},
    Row{Code::OwnerMended, "owner-mended"},
    Row{Code::ReferenceMended, "reference-mended"},
    Row{Code::ValueMended, "value-mended"},
    Row{Code::DwgObjectsMissing, "dwg-objects-missing"},
    Row{Code::DwgObjectsPictured, "dwg-objects-pictured"},
    Row{Code::ObjectNotInserted, "object-not-inserted"},
    Row{Code::FurtherProblems, "further-problems"},
    Row{Code::LeftOutTotal, "left-out-total"},
    Row{Code::ElementUntagged, "element-untagged"},
    Row{Code::ElementValue, "element-value"},
    Row{Code::ElementFill, "element-fill"},
    Row{Code::BuildingValue, "building-value"},
    Row{Code::ShadowSettings, "shadow-settings"},
    Row{Code::EncodingGuessed, "encoding-guessed"},
    Row{Code::FilePassedOver, "file-passed-over"},
    Row{Code::PlugInFailed, "plug-in-failed"},
    Row{Code::PlugInRefused, "plug-in-refused"},
    Row{Code::LeftBehind, "left-behind"},
    Row{Code::DialogsMissing, "dialogs-missing"},
    Row{Code::HostNote, "host-note"},
};

constexpr bool isInOrder() {
  for (std::size_t i = 0; i < kRows.size(); ++i) {
    if (kRows[i].code != static_cast<Code>(i)) return false;
  }
  return kRows.size() == static_cast<std::size_t>(Code::Count);
}
static_assert(isInOrder());

}  // namespace

std::string_view nameOf(Code code) { return kRows[static_cast<std::size_t>(code)].name; }
RunStatus statusOf(Code code) { return kRows[static_cast<std::size_t>(code)].status; }

std::string Problem::sentence() const {
  std::string all;
  if (!file.empty()) {
    all = file + ":";
    if (line != 0) all += std::to_string(line) + ":";
    all += " ";
  }
  if (handle != 0) all += text::formatHandle(handle) + ": ";
  return all + text;
}

Problem problemOf(Code code, std::string text) { return {code, {}, 0, 0, std::move(text)}; }
Problem problemOf(Code code, std::string file, std::string text) {
  return {code, std::move(file), 0, 0, std::move(text)};
}

}  // namespace host
