// A small fuzzer for compilers without libFuzzer: runs every file of a folder, then seeded mutations of them.
//
//   fuzz_drawing CORPUS... [-runs=N] [-seed=N] [-max_total_time=SECONDS]
//
// A file as CORPUS is run as it is. An input that crashes, or takes longer than a hundred seconds, is left in the
// current folder as crash-SEED-NUMBER.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "Mutator.h"
#include "Target.h"

extern "C" void __sanitizer_set_death_callback(void (*callback)()) __attribute__((weak));  // NOLINT

namespace {

constexpr unsigned kSecondsPerInput = 100;
constexpr std::size_t kLongest = 200000;  // bytes of a mutated input

std::string current;
char crashFile[128];

void keepInput() {
  const int file = ::open(crashFile, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (file < 0) return;
  if (::write(file, current.data(), current.size()) < 0) ::_exit(71);
  ::close(file);
  constexpr std::string_view kSaid = "\nthe input was left in ";
  if (::write(STDERR_FILENO, kSaid.data(), kSaid.size()) < 0 ||
      ::write(STDERR_FILENO, crashFile, std::char_traits<char>::length(crashFile)) < 0) {
    ::_exit(71);
  }
}

void onSignal(int signal) {
  keepInput();
  std::signal(signal, SIG_DFL);
  if (signal == SIGALRM) ::_exit(70);
  std::raise(signal);
}

void runInput(unsigned long seed, unsigned long number) {
  std::snprintf(crashFile, sizeof crashFile, "crash-%lu-%lu", seed, number);
  ::alarm(kSecondsPerInput);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(current.data()), current.size());
  ::alarm(0);
}

/// The corpus changed some times over.
std::string mutated(fuzz::Mutator& mutator, const std::vector<std::string>& corpus) {
  std::string text = corpus[mutator.below(corpus.size())];
  for (std::size_t times = 1 + mutator.below(6); times > 0; --times) {
    mutator.change(text, corpus[mutator.below(corpus.size())]);
  }
  if (text.size() > kLongest) text.resize(kLongest);
  return text;
}

}  // namespace

int main(int argc, char** argv) {
  unsigned long runs = 0;
  unsigned long seed = 1;
  double seconds = 1e9;
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    const auto number = [&](std::string_view name) {
      return argument.starts_with(name) ? std::strtoul(argv[i] + name.size(), nullptr, 10) : 0;
    };
    if (argument.starts_with("-runs=")) {
      runs = number("-runs=");
    } else if (argument.starts_with("-seed=")) {
      seed = number("-seed=");
    } else if (argument.starts_with("-max_total_time=")) {
      seconds = static_cast<double>(number("-max_total_time="));
    } else if (std::filesystem::is_directory(argument)) {
      for (const auto& entry : std::filesystem::directory_iterator(argument)) files.push_back(entry.path());
    } else {
      files.emplace_back(argument);
    }
  }
  std::sort(files.begin(), files.end());
  for (const int signal : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGALRM}) std::signal(signal, onSignal);
  if (__sanitizer_set_death_callback != nullptr) __sanitizer_set_death_callback(keepInput);

  std::vector<std::string> corpus;
  for (const auto& file : files) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "%s: cannot be read\n", file.c_str());
      return 1;
    }
    corpus.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    current = corpus.back();
    runInput(0, corpus.size());
  }
  if (corpus.empty()) {
    std::fprintf(stderr, "no inputs\n");
    return 1;
  }
  const auto start = std::chrono::steady_clock::now();
  fuzz::Mutator mutator(seed);
  unsigned long done = 0;
  for (; done < runs; ++done) {
    if (std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() > seconds) break;
    current = mutated(mutator, corpus);
    runInput(seed, done + 1);
  }
  std::printf("%zu files, %lu mutations\n", corpus.size(), done);
  return 0;
}
