#include "Repair.h"

#include <fstream>
#include <iterator>

#include "Console.h"
#include "Dxf/DxfFile.h"
#include "Interruption.h"
#include "Text/Text.h"

namespace tolmex {

using host::database::DrawingDatabase;
using host::database::Problem;
using host::editor::RunStatus;

std::size_t printProblems(const std::string& drawing, const std::vector<Problem>& problems) {
  std::size_t count = 0;
  for (const Problem& problem : problems) {
    complain(RunStatus::Done, host::dxf::problemSentence(drawing, problem));
    count += problem.isNote ? 0 : 1;
  }
  return count;
}

std::vector<Problem> problemsOf(const std::filesystem::path& drawing, const DrawingDatabase& read,
                                std::string& repaired) {
  std::vector<Problem> problems;
  const host::dxf::FileResult looked = host::dxf::repairDrawing(drawing, repaired, problems);
  if (!looked.ok) return read.problems();
  if (problems.empty() && read.problems().empty()) {
    // Nothing to repair: the copy is the drawing, to the byte.
    std::ifstream in(drawing, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    if (in && !bytes.empty() && !host::dxf::isDwg(bytes)) repaired = std::move(bytes);
  }
  return problems;
}

std::string refuseRepairedName(const std::filesystem::path& file) {
  if (host::text::folded(host::text::fromUtf8(file.extension().string())) == L".dxf") return {};
  return file.string() + ": a repaired copy is a DXF drawing; the name must end in .dxf";
}

int writeRepaired(const std::string& drawing, const std::filesystem::path& file, const std::string& repaired) {
  const std::string name = file.string();
  // The copy is promised to be sound, so it is read before it is given out.
  AcDbDatabase database(false);
  DrawingDatabase& copy = host::database::databaseOf(&database);
  const host::dxf::FileResult read = host::dxf::readDrawingText(copy, repaired, name);
  if (repaired.empty() || !read.ok || !copy.problems().empty()) {
    return complain(RunStatus::OutputFailed, drawing + ": could not be repaired; " + name + " was not written");
  }
  const Interruption::Writing writing;
  const host::dxf::FileResult written = host::dxf::writeFileWhole(file, repaired);
  if (!written.ok) return complain(RunStatus::OutputFailed, written.message);
  return 0;
}

}  // namespace tolmex
