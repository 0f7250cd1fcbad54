#include "Batch.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "Commands.h"
#include "Console.h"
#include "Outputs.h"

namespace tolmex {

using host::RunStatus;

const char* statusText(int status) {
  constexpr std::array kTexts = {"done", "wrong usage", "the drawing could not be read", "the script failed",
                                 "an output could not be written"};
  return status >= 0 && static_cast<std::size_t>(status) < kTexts.size() ? kTexts[static_cast<std::size_t>(status)]
                                                                         : "failed";
}

namespace {

// Notes come behind all that is printed as problems, in which there are no control characters.
constexpr char kNote = '\x1E';
bool hasParent = false;

/// Takes the note out of what was printed.
std::string takeNote(std::string& printed) {
  const std::size_t at = printed.rfind(kNote);
  if (at == std::string::npos) return {};
  const std::size_t end = std::min(printed.find('\n', at), printed.size());
  std::string note = printed.substr(at + 1, end - at - 1);
  printed.erase(at, end + 1 - at);
  return note;
}

}  // namespace

bool leaveNote(const std::string& note) {
  if (!hasParent) return false;
  std::fputs((kNote + note + "\n").c_str(), stderr);
  return true;
}

int forEachDrawing(const CommonOptions& options, RunStatus crashStatus, const std::function<int(std::size_t)>& work,
                   const TakeResult& take, bool wantsWorker) {
  if (options.drawings.size() == 1 && !wantsWorker && !isWorker()) return work(0);
  std::vector<BatchTask> tasks;
  for (std::size_t i = 0; i < options.drawings.size(); ++i)
    tasks.push_back({shownName(options.drawings[i]), [&work, i] {
                       hasParent = true;
                       return work(i);
                     }});
  std::size_t taken = 0;
  return workThrough(tasks, {options.jobs, crashStatus}, [&](const BatchTask& task, const BatchResult& printed) {
    BatchResult result = printed;
    result.note = takeNote(result.err);
    std::fwrite(result.out.data(), 1, result.out.size(), stdout);
    std::fflush(stdout);
    std::fwrite(result.err.data(), 1, result.err.size(), stderr);
    const std::string more = take ? take(taken, result) : std::string();
    ++taken;
    printLine(task.drawing + ": " + statusText(result.status) + (more.empty() ? "" : "; " + more));
    std::fflush(stdout);
  });
}

}  // namespace tolmex
