// The program `tolmex`: illustrates plans, draws pictures of drawings, says what is in them.
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "CommandLine.h"
#include "Console.h"
#include "Platform/Streams.h"

using host::RunStatus;

int main(int argc, char** argv) {
  host::platform::prepareStreams();
  try {
    return tolmex::runCommandLine(host::platform::programArguments(argc, argv));
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "tolmex: there is not enough memory\n");
    return static_cast<int>(RunStatus::ScriptFailed);
  } catch (const std::exception& error) {
    return tolmex::complain(RunStatus::ScriptFailed, std::string("internal failure: ") + error.what());
  } catch (...) {
    return tolmex::complain(RunStatus::ScriptFailed, "internal failure");
  }
}
