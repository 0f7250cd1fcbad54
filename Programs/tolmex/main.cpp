// The program `tolmex`: illustrates plans, draws pictures of drawings, says what is in them.
#include <csignal>
#include <cstdio>
#include <exception>

#include "CommandLine.h"
#include "Editor/Result.h"

int main(int argc, char** argv) {
  // Writing then fails with a reason that can be told: a file beyond the limit, a reader of standard output that left.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return tolmex::runCommandLine(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tolmex: internal failure: %s\n", error.what());
  } catch (...) {
    std::fprintf(stderr, "tolmex: internal failure\n");
  }
  return static_cast<int>(host::editor::RunStatus::ScriptFailed);
}
