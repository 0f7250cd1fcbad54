// Collecting the problems of a drawing that is not as it should be.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::dxf {

/// Collects problems with their lines. However bad the file, the list stays short: what is beyond it is only counted.
class ProblemLog {
 public:
  static constexpr std::size_t kMost = 200;

  /// `text` is the file's; without line numbers (for text that stands for a binary file) problems name objects only.
  explicit ProblemLog(std::string_view text, bool hasLines) : text_(text), hasLines_(hasLines) {}

  /// `at` lies in the text; null for problems without a line.
  void add(Code code, const char* at, std::uint64_t handle, std::string sentence);
  /// A problem that costs something of the drawing; `what` names it in the count ("LINE").
  void leftOut(const char* at, std::string_view what, std::uint64_t handle, std::string_view why);
  void note(Code code, std::string sentence);

  /// Notes, problems in the order they were found, and the counts.
  std::vector<Problem> take();

 private:
  std::size_t lineAt(const char* at);

  std::string_view text_;
  bool hasLines_;
  std::size_t countedTo_ = 0;  // lines before this offset are in `line_`
  std::size_t line_ = 1;
  std::vector<Problem> notes_;
  std::vector<Problem> problems_;
  std::size_t unlisted_ = 0;
  std::map<std::string, std::size_t, std::less<>> leftOut_;
};

/// Bytes of a file, shortened and made fit for a message.
std::string shown(std::string_view bytes);
/// Likewise with the letters of all languages, as UTF-8; for values whose encoding is known.
std::string shown(std::wstring_view value);

}  // namespace host::dxf
