#include "Platform/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace host::platform {

struct ChildProcess::Process {
  pid_t number = -1;
  int socket = -1;
};

namespace {

/// Waits until the socket can be used; false when the time is over.
bool awaitSocket(int socket, short events, std::chrono::steady_clock::time_point deadline) {
  for (;;) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) return false;
    pollfd ready{socket, events, 0};
    const int count = ::poll(&ready, 1, static_cast<int>(left.count()));
    if (count > 0) return true;
    if (count < 0 && errno != EINTR) return true;  // the transfer then meets the error
  }
}

}  // namespace

ChildProcess::ChildProcess() : process_(std::make_unique<Process>()) {}
ChildProcess::~ChildProcess() { stop(); }
int ChildProcess::number() const { return process_->number; }

bool ChildProcess::start(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                         std::uint64_t memoryLimit) {
  if (process_->number > 0) return true;
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return false;
  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::vector<std::string> words{program.string()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const int error = ::posix_spawnp(&process_->number, program.c_str(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  if (error != 0) {
    process_->number = -1;
    ::close(ends[0]);
    return false;
  }
  process_->socket = ends[0];
  const rlimit memory{memoryLimit, memoryLimit};
  ::prlimit(process_->number, RLIMIT_DATA, &memory, nullptr);
  return true;
}

void ChildProcess::stop() {
  if (process_->number <= 0) return;
  ::close(process_->socket);
  ::kill(process_->number, SIGKILL);
  while (::waitpid(process_->number, nullptr, 0) < 0 && errno == EINTR) {
  }
  process_->number = process_->socket = -1;
}

ChildProcess::Transfer ChildProcess::send(std::string_view bytes, Clock::time_point deadline) const {
  const int socket = process_->socket;
  while (!bytes.empty()) {
    if (!awaitSocket(socket, POLLOUT, deadline)) return Transfer::TimedOut;
    const ssize_t count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) continue;
    if (count <= 0) return Transfer::Closed;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return Transfer::Done;
}

ChildProcess::Transfer ChildProcess::receive(std::string& buffer, Clock::time_point deadline) const {
  const int socket = process_->socket;
  std::array<char, 65536> part{};
  for (;;) {
    if (!awaitSocket(socket, POLLIN, deadline)) return Transfer::TimedOut;
    const ssize_t count = ::recv(socket, part.data(), part.size(), MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) continue;
    if (count <= 0) return Transfer::Closed;
    buffer.append(part.data(), static_cast<std::size_t>(count));
    return Transfer::Done;
  }
}

}  // namespace host::platform
