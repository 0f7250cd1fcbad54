#include "Platform/windows/Worker.h"

#include <cstdlib>

#include "Platform/Library.h"
#include "Platform/Streams.h"
#include "Platform/System.h"
#include "Platform/windows/Handles.h"
#include "Platform/windows/Kept.h"

namespace host::platform {

namespace {

constexpr const char* kTask = "TOLMEX_TASK";
constexpr UINT kInterrupted = 0xC000013A;  // as the system ends programs at Ctrl+C

std::string contentOf(const std::filesystem::path& file) {
  InputFile in(file);
  std::string all;
  char buffer[1 << 16];
  for (;;) {
    const auto count = in.read(buffer, sizeof buffer);
    if (!count || *count == 0) return all;
    all.append(buffer, *count);
  }
}

}  // namespace

struct Worker::Process {
  KeptFile in, out, err;
  StartedProcess started;
};

Worker::Worker(const std::string& task) : process_(std::make_unique<Process>()) {
  Process& p = *process_;
  const std::string& read = inputSoFar();
  if (!p.in.isOpen() || !p.out.isOpen() || !p.err.isOpen() || !p.in.write(read)) return;
  const Handle file = openInherited(read.empty() ? "NUL" : p.in.path(), false);
  const HANDLE own = ::GetStdHandle(STD_INPUT_HANDLE);
  const HANDLE in = read.empty() && own != nullptr && own != INVALID_HANDLE_VALUE ? own : file.get();
  const Handle out = openInherited(p.out.path(), true);
  const Handle err = openInherited(p.err.path(), true);
  std::vector<std::string> arguments = programArguments(0, nullptr);
  if (!arguments.empty()) arguments.erase(arguments.begin());
  ::SetEnvironmentVariableW(toWide(kTask).c_str(), toWide(task).c_str());
  p.started = startProcess(programFile(), arguments, in, out.get(), err.get(), 0);
  ::SetEnvironmentVariableW(toWide(kTask).c_str(), nullptr);
}

Worker::~Worker() {
  if (isStarted() && !ended()) {
    end();
    ::WaitForSingleObject(process_->started.process.get(), INFINITE);
  }
  process_->in.drop();
  process_->out.drop();
  process_->err.drop();
}

bool Worker::isStarted() const { return static_cast<bool>(process_->started.process); }

std::optional<std::uint32_t> Worker::ended() const {
  const HANDLE process = process_->started.process.get();
  DWORD status = 0;
  if (::WaitForSingleObject(process, 0) != WAIT_OBJECT_0 || ::GetExitCodeProcess(process, &status) == 0)
    return std::nullopt;
  return status;
}

void Worker::end() const { ::TerminateProcess(process_->started.process.get(), kInterrupted); }

std::string Worker::out() const { return contentOf(process_->out.path()); }
std::string Worker::err() const { return contentOf(process_->err.path()); }

std::optional<std::string> Worker::ownTask() { return environment(kTask); }

void Worker::leave(int status) {
  std::fflush(stdout);
  std::fflush(stderr);
  dropKeptFiles();
  ::TerminateProcess(::GetCurrentProcess(), static_cast<UINT>(status));
  std::abort();
}

void sleepMilliseconds(unsigned time) { ::Sleep(time); }

}  // namespace host::platform
