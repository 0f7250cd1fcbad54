// Several drawings, each in a process of its own, so that what fails in one leaves the others alone.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Problems/Problem.h"

namespace tolmex {

struct BatchTask {
  std::string drawing;        // as the command line names it
  std::function<int()> work;  // in the worker; answers the exit status, prints as usual
};

struct BatchResult {
  int status = 0;
  std::string out, err;  // what the worker printed; a crash adds its sentence
  double seconds = 0;    // from the start of the work to its end
  std::string note;      // what the worker has left for its parent
};

struct BatchOptions {
  int jobs = 1;                                                 // drawings worked on at once
  host::RunStatus crashStatus = host::RunStatus::ScriptFailed;  // of workers that did not end by themselves
  bool showsProgress = true;
};

/// True in a process that was started for one of the tasks and comes through main to it, as on Windows. A task is known
/// by its drawing's name there.
bool isWorker();

/// Hands the results out in the order of the tasks and answers the highest status. Signals that end programs end the
/// workers; drawings that were not begun then are results too.
int workThrough(const std::vector<BatchTask>& tasks, const BatchOptions& options,
                const std::function<void(const BatchTask&, const BatchResult&)>& take);

/// In a worker: a line that its parent gets beside what is printed. False where there is no parent.
bool leaveNote(const std::string& note);

/// "done", "the script failed": what an exit status says.
const char* statusText(int status);

}  // namespace tolmex
