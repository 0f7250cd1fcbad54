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
#include <random>
#include <vector>

#include "Target.h"

extern "C" void __sanitizer_set_death_callback(void (*callback)()) __attribute__((weak));  // NOLINT
extern "C" const char* __asan_default_options();                                           // NOLINT
extern "C" const char* __asan_default_options() {                                          // NOLINT
  // No count in a file may make the host ask for that much at once.
  return "max_allocation_size_mb=1024:detect_stack_use_after_return=0";
}

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

class Mutator {
 public:
  Mutator(std::vector<std::string> corpus, unsigned long seed) : corpus_(std::move(corpus)), random_(seed) {}

  std::string next() {
    std::string text = corpus_[below(corpus_.size())];
    const std::size_t times = 1 + below(6);
    for (std::size_t i = 0; i < times; ++i) change(text);
    if (text.size() > kLongest) text.resize(kLongest);
    return text;
  }

 private:
  std::size_t below(std::size_t end) { return end == 0 ? 0 : random_() % end; }

  /// Begin of a line near a random place.
  std::size_t line(const std::string& text) {
    const std::size_t at = text.find('\n', below(text.size()));
    return at == std::string::npos ? 0 : at + 1;
  }
  static std::size_t behind(const std::string& text, std::size_t at, std::size_t lines) {
    for (; lines > 0 && at < text.size(); --lines) {
      const std::size_t end = text.find('\n', at);
      at = end == std::string::npos ? text.size() : end + 1;
    }
    return at;
  }

  void change(std::string& text) {
    static const char* const kValues[] = {"0",          "-1",          "1",
                                          "2147483648", "-2147483649", "4294967295",
                                          "nan",        "inf",         "1e308",
                                          "-1e308",     "1e-320",      "9999999999999999999",
                                          "",           " ",           "FFFFFFFFFFFFFFFF",
                                          "*",          "\\U+0000",    "^J",
                                          "70",         "330",         "ENDSEC",
                                          "SECTION",    "100",         "1001",
                                          "INSERT",     "POLYLINE",    "*Model_Space",
                                          "65535",      "32768",       "1.7976931348623157e308"};
    if (text.empty()) text = "0";
    const std::size_t at = below(text.size());
    switch (random_() % 10) {
      case 0:
        text[at] = static_cast<char>(random_());
        break;
      case 1:
        text[at] = static_cast<char>(text[at] ^ (1U << below(8)));
        break;
      case 2:
        text.erase(at, 1 + below(30));
        break;
      case 3:
        text.resize(at);
        break;
      case 4:
        text.insert(at, text.substr(below(text.size()), below(400)));
        break;
      case 5: {  // another value
        const std::size_t begin = line(text);
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        text.replace(begin, end - begin, kValues[below(std::size(kValues))]);
        break;
      }
      case 6: {  // some lines twice
        const std::size_t begin = line(text);
        text.insert(begin, text.substr(begin, behind(text, begin, 1 + below(40)) - begin));
        break;
      }
      case 7: {  // some lines gone
        const std::size_t begin = line(text);
        text.erase(begin, behind(text, begin, 1 + below(20)) - begin);
        break;
      }
      case 8: {  // a line of one place in another
        const std::size_t from = line(text);
        const std::string taken = text.substr(from, behind(text, from, 1) - from);
        const std::size_t begin = line(text);
        text.replace(begin, behind(text, begin, 1) - begin, taken);
        break;
      }
      default: {  // lines of another file
        const std::string& other = corpus_[below(corpus_.size())];
        const std::size_t begin = below(other.size());
        text.insert(line(text), other.substr(begin, below(600)));
      }
    }
  }

  std::vector<std::string> corpus_;
  std::mt19937_64 random_;
};

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
  Mutator mutator(corpus, seed);
  unsigned long done = 0;
  for (; done < runs; ++done) {
    if (std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() > seconds) break;
    current = mutator.next();
    runInput(seed, done + 1);
  }
  std::printf("%zu files, %lu mutations\n", corpus.size(), done);
  return 0;
}
