#include "Terminal.h"

#include <algorithm>
#include <cstdio>

#include "Completion.h"
#include "Platform/Streams.h"
#include "Platform/System.h"
#include "Platform/windows/Keys.h"

namespace tolmex {

namespace fs = std::filesystem;

// The console itself edits lines and keeps the history of its window.
struct Terminal::Editor {
  Names names;
};

Terminal::Terminal(Names names, fs::path) : editor_(std::make_unique<Editor>()) { editor_->names = std::move(names); }

Terminal::~Terminal() = default;

bool Terminal::isThere() {
  using host::platform::Stream;
  return host::platform::isTerminal(Stream::In) && host::platform::isTerminal(Stream::Out);
}

fs::path Terminal::historyFile() { return {}; }

Terminal::Typed Terminal::read(const std::string& prompt, bool completes) {
  using host::platform::LineEnd;
  std::string line;
  const auto show = [&prompt](const std::string& typed) {
    const std::string shown = prompt + typed;
    std::fwrite(shown.data(), 1, shown.size(), stdout);
    std::fflush(stdout);
  };
  show({});
  for (;;) {
    const LineEnd end = host::platform::readConsoleLine(line, completes);
    if (end == LineEnd::Entered) return {Key::Line, std::move(line)};
    if (end != LineEnd::Tab) std::printf("\n");
    if (end == LineEnd::Cancelled) return {Key::Cancel, {}};
    if (end == LineEnd::Gone) return {Key::Leave, {}};
    const Completion found = completed(line, editor_->names());
    if (!found.choices.empty()) {
      std::printf("\n");
      printColumns(found.choices);
    } else {
      std::printf("\r");
    }
    line = found.line;
    show(line);
  }
}

}  // namespace tolmex
