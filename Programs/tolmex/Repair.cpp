#include "Repair.h"

#include <fstream>
#include <iterator>

#include "Console.h"
#include "Interruption.h"
#include "Text/Text.h"

namespace tolmex {

using host::Code;
using host::Problem;
using host::problemOf;
using host::Result;
using host::database::DrawingDatabase;
using host::dxf::RepairedDrawing;

std::size_t printProblems(const std::string& drawing, const std::vector<Problem>& problems) {
  std::size_t count = 0;
  for (Problem problem : problems) {
    problem.file = drawing;
    complain(problem);
    count += problem.isNote ? 0 : 1;
  }
  return count;
}

RepairedDrawing lookThroughFile(const std::filesystem::path& drawing, const DrawingDatabase& read) {
  Result<RepairedDrawing> repaired = host::dxf::repairDrawing(drawing);
  if (!repaired) return {{}, read.problems()};
  if (repaired->problems.empty() && read.problems().empty()) {
    // Nothing to repair: the copy is the drawing, to the byte.
    std::ifstream in(drawing, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    if (in && !bytes.empty() && !host::dxf::isDwg(bytes)) repaired->bytes = std::move(bytes);
  }
  return std::move(repaired.value());
}

Result<> checkRepairedName(const std::filesystem::path& file) {
  if (host::text::folded(host::text::fromUtf8(file.extension().string())) == L".dxf") return {};
  return problemOf(Code::WrongUsage, file.string(), "a repaired copy is a DXF drawing; the name must end in .dxf");
}

Result<> writeRepaired(const std::string& drawing, const std::filesystem::path& file, const std::string& repaired) {
  const std::string name = file.string();
  // The copy is promised to be sound, so it is read before it is given out.
  AcDbDatabase database(false);
  DrawingDatabase& copy = host::database::databaseOf(&database);
  const Result<> read = host::dxf::readDrawingText(copy, repaired, name);
  if (repaired.empty() || !read || !copy.problems().empty())
    return problemOf(Code::OutputFailed, drawing, "could not be repaired; " + name + " was not written");
  const Interruption::Writing writing;
  return host::dxf::writeFileWhole(file, repaired);
}

}  // namespace tolmex
