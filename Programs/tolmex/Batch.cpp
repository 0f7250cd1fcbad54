#include "Batch.h"

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

int forEachDrawing(const CommonOptions& options, RunStatus crashStatus, const std::function<int(std::size_t)>& work,
                   const TakeResult& take) {
  if (options.drawings.size() == 1 && !take) return work(0);
  std::vector<BatchTask> tasks;
  for (std::size_t i = 0; i < options.drawings.size(); ++i)
    tasks.push_back({shownName(options.drawings[i]), [&work, i] { return work(i); }});
  std::size_t taken = 0;
  return workThrough(tasks, {options.jobs, crashStatus}, [&](const BatchTask& task, const BatchResult& result) {
    std::fwrite(result.out.data(), 1, result.out.size(), stdout);
    std::fflush(stdout);
    std::fwrite(result.err.data(), 1, result.err.size(), stderr);
    if (take) take(taken, result);
    ++taken;
    printLine(task.drawing + ": " + statusText(result.status));
    std::fflush(stdout);
  });
}

}  // namespace tolmex
