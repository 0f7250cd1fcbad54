#include "Dwg/ReaderProcess.h"

#include <algorithm>
#include <charconv>

namespace host::dwg {

using Transfer = platform::ChildProcess::Transfer;

bool ReaderProcess::start() {
  // Without the flag the optimising compiler works through nine megabytes of code before the first drawing: ten seconds
  // and 800 MB instead of a third of a second.
  return process_.start(settings_.program, {"--liftoff-only", settings_.script.string()}, settings_.memoryLimit);
}

Transfer ReaderProcess::exchange(std::string_view dwg, std::string& status, std::string& answer) const {
  const auto deadline = platform::ChildProcess::Clock::now() + settings_.timeLimit;
  Transfer transfer = process_.send(std::to_string(dwg.size()) + "\n", deadline);
  if (transfer == Transfer::Done) transfer = process_.send(dwg, deadline);
  if (transfer != Transfer::Done) return transfer;

  // "<status> <length>\n", then that many bytes.
  constexpr std::size_t kLongestHead = 64;
  std::string head;
  std::size_t headEnd = std::string::npos;
  while ((headEnd = head.find('\n')) == std::string::npos) {
    if (head.size() > kLongestHead) return Transfer::Closed;
    transfer = process_.receive(head, deadline);
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
    transfer = process_.receive(answer, deadline);
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
    process_.stop();
    return transfer == Transfer::TimedOut ? Outcome::TooSlow : Outcome::Crashed;
  }
  if (status == "ok") return Outcome::Ok;
  if (status == "missing") {
    process_.stop();  // it may be installed when the next drawing comes
    return Outcome::ReaderMissing;
  }
  return Outcome::Damaged;
}

}  // namespace host::dwg
