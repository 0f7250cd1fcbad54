// Anonymous pipes know no deadline: a thread of its own reads and another one writes, and the caller waits for them.
#include "Platform/ChildProcess.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "Platform/windows/Handles.h"

namespace host::platform {

namespace {

/// At the end of the process the system has ended all threads but this one, wherever they were.
bool areThreadsGone() {
  using Ask = BOOLEAN(WINAPI*)();
  const HMODULE library = ::GetModuleHandleW(L"ntdll.dll");
  const auto ask =
      library != nullptr
          ? reinterpret_cast<Ask>(reinterpret_cast<void*>(::GetProcAddress(library, "RtlDllShutdownInProgress")))
          : nullptr;
  return ask != nullptr && ask() != 0;
}

}  // namespace

struct ChildProcess::Process {
  StartedProcess started;
  Handle input, output;  // our ends
  std::thread reader, writer;
  std::mutex mutex;
  std::condition_variable changed;
  std::string received, toSend;
  bool isEnded = false, isRefused = false, isLeaving = false;

  void read() {
    std::array<char, 65536> part{};
    DWORD count = 0;
    while (::ReadFile(output.get(), part.data(), static_cast<DWORD>(part.size()), &count, nullptr) != 0 && count > 0) {
      const std::lock_guard lock(mutex);
      received.append(part.data(), count);
      changed.notify_all();
    }
    const std::lock_guard lock(mutex);
    isEnded = true;
    changed.notify_all();
  }

  void write() {
    std::unique_lock lock(mutex);
    for (;;) {
      changed.wait(lock, [this] { return isLeaving || !toSend.empty(); });
      if (isLeaving) return;
      const std::string bytes = toSend;
      lock.unlock();
      bool isDone = true;
      for (std::string_view left = bytes; isDone && !left.empty();) {
        DWORD count = 0;
        constexpr std::size_t kMost = std::size_t{1} << 20;
        isDone = ::WriteFile(input.get(), left.data(), static_cast<DWORD>(std::min(left.size(), kMost)), &count,
                             nullptr) != 0;
        left.remove_prefix(count);
      }
      lock.lock();
      toSend.clear();
      isRefused = isRefused || !isDone;
      changed.notify_all();
    }
  }
};

ChildProcess::ChildProcess() = default;
ChildProcess::~ChildProcess() { stop(); }
int ChildProcess::number() const { return process_ != nullptr ? static_cast<int>(process_->started.number) : -1; }

bool ChildProcess::start(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                         std::uint64_t memoryLimit) {
  if (process_ != nullptr) return true;
  auto process = std::make_unique<Process>();
  HANDLE itsInput = nullptr, ourInput = nullptr, itsOutput = nullptr, ourOutput = nullptr;
  if (::CreatePipe(&itsInput, &ourInput, nullptr, 0) == 0) return false;
  const Handle in(itsInput);
  process->input = Handle(ourInput);
  if (::CreatePipe(&ourOutput, &itsOutput, nullptr, 0) == 0) return false;
  const Handle out(itsOutput);
  process->output = Handle(ourOutput);
  const Handle nothing = openInherited("NUL", true);
  process->started = startProcess(program, arguments, in.get(), out.get(), nothing.get(), memoryLimit);
  if (!process->started.process) return false;
  process_ = std::move(process);
  process_->reader = std::thread([self = process_.get()] { self->read(); });
  process_->writer = std::thread([self = process_.get()] { self->write(); });
  return true;
}

void ChildProcess::stop() {
  if (process_ == nullptr) return;
  ::TerminateProcess(process_->started.process.get(), 1);
  if (areThreadsGone()) {  // nobody to wait for
    static_cast<void>(process_.release());
    return;
  }
  ::WaitForSingleObject(process_->started.process.get(), INFINITE);
  {
    const std::lock_guard lock(process_->mutex);
    process_->isLeaving = true;
    process_->changed.notify_all();
  }
  process_->reader.join();
  process_->writer.join();
  process_.reset();
}

ChildProcess::Transfer ChildProcess::send(std::string_view bytes, Clock::time_point deadline) const {
  std::unique_lock lock(process_->mutex);
  process_->toSend = bytes;
  process_->changed.notify_all();
  const bool isDone = process_->changed.wait_until(lock, deadline, [this] { return process_->toSend.empty(); });
  if (!isDone) return Transfer::TimedOut;
  return process_->isRefused ? Transfer::Closed : Transfer::Done;
}

ChildProcess::Transfer ChildProcess::receive(std::string& buffer, Clock::time_point deadline) const {
  std::unique_lock lock(process_->mutex);
  const bool hasCome =
      process_->changed.wait_until(lock, deadline, [this] { return process_->isEnded || !process_->received.empty(); });
  if (!hasCome) return Transfer::TimedOut;
  if (process_->received.empty()) return Transfer::Closed;
  buffer += std::exchange(process_->received, {});
  return Transfer::Done;
}

}  // namespace host::platform
