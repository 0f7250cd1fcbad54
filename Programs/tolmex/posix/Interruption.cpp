#include "Interruption.h"

#include <unistd.h>

#include <atomic>
#include <ctime>

#include "Editor/Application.h"
#include "Platform/Streams.h"
#include "posix/Signals.h"

namespace tolmex {

namespace {

// Read and set by signal handlers.
std::atomic<bool> asked = false;
std::atomic<int> writing = 0;
std::atomic<int> exitStatus = 0;
timer_t patience{};
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

void startTimer() {
  itimerspec time{};
  time.it_value.tv_nsec = Interruption::kPatienceMs * 1'000'000;
  ::timer_settime(patience, 0, &time, nullptr);
}

extern "C" void ask(int) {
  if (asked.exchange(true)) return;
  host::editor::Application::interrupt();
  startTimer();
}

extern "C" void endWork(int) {
  if (writing > 0) {
    startTimer();
    return;
  }
  host::platform::sayFromHandler("tolmex: interrupted; unfinished outputs were not written\n");
  ::_exit(exitStatus);
}

struct sigaction handle(int signal, void (*handler)(int)) {
  struct sigaction action {
  }, former{};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  ::sigaction(signal, &action, &former);
  return former;
}

}  // namespace

Interruption::Interruption(host::RunStatus status) {
  asked = false;
  exitStatus = static_cast<int>(status);
  sigevent event{};
  event.sigev_notify = SIGEV_SIGNAL;
  event.sigev_signo = SIGALRM;
  handle(SIGALRM, endWork);
  // Without a timer the default stays: a signal ends the program at once.
  if (::timer_create(CLOCK_MONOTONIC, &event, &patience) != 0) return;
  for (const int signal : kEndingSignals) {
    // A job in the background was started with the signal ignored, and stays so.
    if (handle(signal, ask).sa_handler == SIG_IGN) handle(signal, SIG_IGN);
  }
}

Interruption::~Interruption() {
  for (const int signal : kEndingSignals) {
    if (handle(signal, SIG_DFL).sa_handler == SIG_IGN) handle(signal, SIG_IGN);
  }
  ::timer_delete(patience);
}

bool Interruption::isAsked() { return asked; }
host::RunStatus Interruption::status() { return static_cast<host::RunStatus>(exitStatus.load()); }

Interruption::Writing::Writing() { ++writing; }
Interruption::Writing::~Writing() { --writing; }

}  // namespace tolmex
