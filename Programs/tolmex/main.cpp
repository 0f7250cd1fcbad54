// The program `tolmex`: illustrates plans, draws pictures of drawings, says what is in them.
#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "CommandLine.h"
#include "Console.h"

using host::RunStatus;

namespace {

/// Closed standard streams: the next files opened would take their numbers, and what is printed would go into them. The
/// device in their place is opened so that using it fails as the closed stream did.
void keepStandardStreamsApart() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) < 0) ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

}  // namespace

int main(int argc, char** argv) {
  keepStandardStreamsApart();
  // Writing then fails with a reason that can be told: a file beyond the limit, a reader of standard output that left.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return tolmex::runCommandLine(argc, argv);
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "tolmex: there is not enough memory\n");
    return static_cast<int>(RunStatus::ScriptFailed);
  } catch (const std::exception& error) {
    return tolmex::complain(RunStatus::ScriptFailed, std::string("internal failure: ") + error.what());
  } catch (...) {
    return tolmex::complain(RunStatus::ScriptFailed, "internal failure");
  }
}
