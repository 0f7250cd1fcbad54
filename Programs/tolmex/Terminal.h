// Lines typed at a terminal: editing, history, completion of names.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tolmex {

class Terminal {
 public:
  /// Names for completion, UTF-8 in capitals.
  using Names = std::function<std::vector<std::string>()>;

  /// `history` is read now and written at the end; an empty path: none is kept.
  Terminal(Names names, std::filesystem::path history);
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  /// Standard input and output are both terminals.
  static bool isThere();
  /// "tolmex/history" in the user's folder for such files ($XDG_STATE_HOME or ~/.local/state); empty without a home.
  static std::filesystem::path historyFile();

  enum class Key {
    Line,    // Enter
    Cancel,  // Esc or Ctrl+C
    Leave,   // Ctrl+D on an empty line
    Gone     // the terminal is closed
  };
  struct Typed {
    Key key = Key::Gone;
    std::string text;  // UTF-8, without line end
  };
  /// One line behind `prompt` (UTF-8), which is shown by this call. `completes`: Tab completes names, from their
  /// beginning or, where none begins so, from any part.
  Typed read(const std::string& prompt, bool completes);

 private:
  struct Editor;
  std::unique_ptr<Editor> editor_;
};

}  // namespace tolmex
