#include "Interruption.h"

#include <atomic>
#include <cstdlib>
#include <thread>

#include "Editor/Application.h"
#include "Platform/Streams.h"
#include "Platform/windows/Keys.h"
#include "Platform/windows/Worker.h"

namespace tolmex {

namespace {

// The system calls in a thread of its own.
std::atomic<bool> asked = false;
std::atomic<int> writing = 0;
std::atomic<int> exitStatus = 0;
std::atomic<int> life = 0;  // odd while an interruption is there, another number for each

/// Work that does not notice is ended.
void endLater(int ownLife) {
  do {
    host::platform::sleepMilliseconds(static_cast<unsigned>(Interruption::kPatienceMs));
    if (life != ownLife) return;
  } while (writing > 0);
  host::platform::sayFromHandler("tolmex: interrupted; unfinished outputs were not written\n");
  host::platform::Worker::leave(exitStatus);
}

void ask(bool /*waits*/) {
  if (asked.exchange(true)) return;
  host::editor::Application::interrupt();
  std::thread(endLater, life.load()).detach();
}

}  // namespace

Interruption::Interruption(host::RunStatus status) {
  asked = false;
  exitStatus = static_cast<int>(status);
  ++life;
  host::platform::onEndAsked(&ask);
}

Interruption::~Interruption() {
  ++life;
  host::platform::onEndAsked(nullptr);
}

bool Interruption::isAsked() { return asked; }
host::RunStatus Interruption::status() { return static_cast<host::RunStatus>(exitStatus.load()); }

Interruption::Writing::Writing() { ++writing; }
Interruption::Writing::~Writing() { --writing; }

}  // namespace tolmex
