#include "Dwg/ReaderProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>

namespace host::dwg {

bool ReaderProcess::start() {
  if (process_ > 0) return true;
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return false;
  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::string program = settings_.program.string();
  // Without it the optimising compiler works through nine megabytes of code before the first drawing: ten seconds and
  // 800 MB instead of a third of a second.
  std::string flag = "--liftoff-only";
  std::string script = settings_.script.string();
  std::array<char*, 4> arguments{program.data(), flag.data(), script.data(), nullptr};
  const int error = ::posix_spawnp(&process_, program.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  if (error != 0) {
    process_ = -1;
    ::close(ends[0]);
    return false;
  }
  socket_ = ends[0];
  const rlimit memory{settings_.memoryLimit, settings_.memoryLimit};
  ::prlimit(process_, RLIMIT_DATA, &memory, nullptr);
  return true;
}

void ReaderProcess::stop() {
  if (process_ <= 0) return;
  ::close(socket_);
  ::kill(process_, SIGKILL);
  while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
  }
  process_ = socket_ = -1;
}

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

ReaderProcess::Transfer ReaderProcess::send(std::string_view bytes, Clock::time_point deadline) const {
  while (!bytes.empty()) {
    if (!awaitSocket(socket_, POLLOUT, deadline)) return Transfer::TimedOut;
    const ssize_t count = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) continue;
    if (count <= 0) return Transfer::Closed;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return Transfer::Done;
}

ReaderProcess::Transfer ReaderProcess::receive(std::string& buffer, Clock::time_point deadline) const {
  std::array<char, 65536> part{};
  for (;;) {
    if (!awaitSocket(socket_, POLLIN, deadline)) return Transfer::TimedOut;
    const ssize_t count = ::recv(socket_, part.data(), part.size(), MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) continue;
    if (count <= 0) return Transfer::Closed;
    buffer.append(part.data(), static_cast<std::size_t>(count));
    return Transfer::Done;
  }
}

ReaderProcess::Transfer ReaderProcess::exchange(std::string_view dwg, std::string& status, std::string& answer) const {
  const Clock::time_point deadline = Clock::now() + settings_.timeLimit;
  Transfer transfer = send(std::to_string(dwg.size()) + "\n", deadline);
  if (transfer == Transfer::Done) transfer = send(dwg, deadline);
  if (transfer != Transfer::Done) return transfer;

  // "<status> <length>\n", then that many bytes.
  constexpr std::size_t kLongestHead = 64;
  std::string head;
  std::size_t headEnd = std::string::npos;
  while ((headEnd = head.find('\n')) == std::string::npos) {
    if (head.size() > kLongestHead) return Transfer::Closed;
    transfer = receive(head, deadline);
    if (transfer != Transfer::Done) return transfer;
  }
  const std::size_t blank = std::min(head.find(' '), headEnd);
  std::size_t length = 0;
  const char* const numberEnd = head.data() + headEnd;
  const auto [end, error] = std::from_chars(head.data() + std::min(blank + 1, headEnd), numberEnd, length);
  if (error != std::errc() || end != numberEnd || length > settings_.longestAnswer) return Transfer::Closed;
  status = head.substr(0, blank);
  answer = head.substr(headEnd + 1);
  answer.reserve(length);
  while (answer.size() < length) {
    transfer = receive(answer, deadline);
    if (transfer != Transfer::Done) return transfer;
  }
  return answer.size() == length ? Transfer::Done : Transfer::Closed;
}

ReaderProcess::Outcome ReaderProcess::convert(std::string_view dwg, std::string& answer) {
  std::error_code error;
  if (!std::filesystem::exists(settings_.script, error)) return Outcome::ReaderMissing;
  if (!start()) return Outcome::ProgramMissing;
  std::string status;
  const Transfer transfer = exchange(dwg, status, answer);
  if (transfer != Transfer::Done) {
    stop();
    return transfer == Transfer::TimedOut ? Outcome::TooSlow : Outcome::Crashed;
  }
  if (status == "ok") return Outcome::Ok;
  if (status == "missing") {
    stop();  // it may be installed when the next drawing comes
    return Outcome::ReaderMissing;
  }
  return Outcome::Damaged;
}

}  // namespace host::dwg
