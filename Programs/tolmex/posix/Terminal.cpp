#include "Terminal.h"

#include <histedit.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <tuple>

#include "Completion.h"
#include "Dxf/DxfFile.h"
#include "Text/Text.h"

namespace tolmex {

namespace fs = std::filesystem;

namespace {

constexpr int kHistoryLines = 1000;
constexpr wchar_t kEscape = 0x1B;
constexpr wchar_t kControlC = 0x03;
// Keys that send more than Esc send the rest at once.
constexpr int kEscapePatienceMs = 50;

bool moreIsThere() {
  pollfd in{STDIN_FILENO, POLLIN, 0};
  return ::poll(&in, 1, kEscapePatienceMs) == 1;
}

/// Bytes behind the first of a character in UTF-8.
int bytesToCome(unsigned char first) { return first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : first >= 0xC0 ? 1 : 0; }

}  // namespace

struct Terminal::Editor {
  EditLine* line = nullptr;
  History* history = nullptr;
  HistEvent event{};
  Names names;
  fs::path historyFile;
  std::string prompt;
  bool completes = false, isCancelled = false, isGone = false;

  static Editor& of(EditLine* line) {
    Editor* self = nullptr;
    el_get(line, EL_CLIENTDATA, &self);
    return *self;
  }

  /// The former history stands until the new one is whole. What was typed is the user's own business.
  void saveHistory() {
    std::error_code error;
    fs::create_directories(historyFile.parent_path(), error);
    // The library changes the file's permissions, so it has to be one.
    const int memory = ::memfd_create("history", MFD_CLOEXEC);
    const std::unique_ptr<FILE, int (*)(FILE*)> file(memory >= 0 ? ::fdopen(memory, "r+") : nullptr, &std::fclose);
    if (file == nullptr || ::history(history, &event, H_SAVE_FP, file.get()) < 0 || std::fflush(file.get()) != 0)
      return;
    std::string text(static_cast<std::size_t>(std::max(std::ftell(file.get()), 0L)), '\0');
    std::rewind(file.get());
    if (std::fread(text.data(), 1, text.size(), file.get()) != text.size()) return;
    const mode_t former = ::umask(077);
    std::ignore = host::dxf::writeFileWhole(historyFile, text);
    ::umask(former);
  }

  static char* promptOf(EditLine* line) { return of(line).prompt.data(); }

  static int nextByte() {
    unsigned char byte = 0;
    for (;;) {
      const ssize_t count = ::read(STDIN_FILENO, &byte, 1);
      if (count == 1) return byte;
      if (count == 0 || errno != EINTR) return -1;
    }
  }

  /// One character. What follows an Esc decides whether it is the key itself, which becomes Ctrl+C, or the beginning of
  /// another key.
  static int character(EditLine* line, wchar_t* result) {
    const int first = nextByte();
    if (first < 0) {
      of(line).isGone = true;
      return 0;
    }
    std::string bytes(1, static_cast<char>(first));
    for (int i = bytesToCome(static_cast<unsigned char>(first)); i > 0; --i) {
      const int next = nextByte();
      if (next >= 0) bytes += static_cast<char>(next);
    }
    const std::wstring decoded = host::text::fromUtf8(bytes);
    *result = decoded.empty() ? L'?' : decoded.front();
    if (*result == kEscape && !moreIsThere()) *result = kControlC;
    return 1;
  }

  static unsigned char cancel(EditLine* line, int) {
    of(line).isCancelled = true;
    return CC_NEWLINE;
  }

  static unsigned char complete(EditLine* line, int) {
    Editor& self = of(line);
    const LineInfo* const info = el_line(line);
    const std::string typed(info->buffer, info->cursor);
    if (!self.completes) return CC_ERROR;
    const Completion found = completed(typed, self.names());
    if (found.line.empty()) return CC_ERROR;
    if (found.line != typed) {
      el_deletestr(line, static_cast<int>(host::text::fromUtf8(typed).size()));
      el_insertstr(line, found.line.c_str());
    }
    if (found.choices.empty()) return CC_REFRESH;
    printColumns(found.choices);
    return CC_REDISPLAY;
  }
};

Terminal::Terminal(Names names, fs::path history) : editor_(std::make_unique<Editor>()) {
  // The transcript is UTF-8 whatever the surroundings say.
  std::setlocale(LC_CTYPE, "C.UTF-8");
  Editor& e = *editor_;
  e.names = std::move(names);
  e.historyFile = std::move(history);
  e.line = el_init("tolmex", stdin, stdout, stderr);
  e.history = history_init();
  el_set(e.line, EL_CLIENTDATA, &e);
  el_set(e.line, EL_EDITOR, "emacs");
  el_set(e.line, EL_SIGNAL, 1);
  el_set(e.line, EL_PROMPT, &Editor::promptOf);
  el_set(e.line, EL_GETCFN, &Editor::character);
  el_set(e.line, EL_HIST, &::history, e.history);
  // The narrow form of this call would never free its copies of the names.
  el_wset(e.line, EL_ADDFN, L"cancel-prompt", L"Cancel the prompt", &Editor::cancel);
  el_wset(e.line, EL_ADDFN, L"complete-name", L"Complete a command name", &Editor::complete);
  el_set(e.line, EL_SETTY, "-d", "-isig", nullptr);
  el_source(e.line, nullptr);
  el_set(e.line, EL_BIND, "^C", "cancel-prompt", nullptr);
  el_set(e.line, EL_BIND, "^I", "complete-name", nullptr);
  ::history(e.history, &e.event, H_SETSIZE, kHistoryLines);
  ::history(e.history, &e.event, H_SETUNIQUE, 1);
  if (!e.historyFile.empty()) ::history(e.history, &e.event, H_LOAD, e.historyFile.c_str());
}

Terminal::~Terminal() {
  Editor& e = *editor_;
  if (!e.historyFile.empty()) e.saveHistory();
  history_end(e.history);
  el_end(e.line);
}

bool Terminal::isThere() { return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 1; }

fs::path Terminal::historyFile() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  if (state != nullptr && state[0] == '/') return fs::path(state) / "tolmex/history";
  const char* const home = std::getenv("HOME");
  return home != nullptr && home[0] == '/' ? fs::path(home) / ".local/state/tolmex/history" : fs::path();
}

Terminal::Typed Terminal::read(const std::string& prompt, bool completes) {
  Editor& e = *editor_;
  e.prompt = prompt;
  e.completes = completes;
  e.isCancelled = false;
  std::fflush(stdout);
  int count = 0;
  const char* const text = el_gets(e.line, &count);
  if (e.isGone) return {};
  if (e.isCancelled) return {Key::Cancel, {}};
  if (text == nullptr || count <= 0) {
    std::printf("\n");
    return {Key::Leave, {}};
  }
  std::string line(text, static_cast<std::size_t>(count));
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  if (!line.empty()) ::history(e.history, &e.event, H_ENTER, line.c_str());
  return {Key::Line, std::move(line)};
}

}  // namespace tolmex
