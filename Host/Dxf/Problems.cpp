#include "Dxf/Problems.h"

#include <algorithm>
#include <functional>

#include "Dxf/DxfFile.h"
#include "Text/Text.h"

namespace host::dxf {

namespace {

constexpr std::size_t kMostShown = 40;

}  // namespace

std::string shown(std::string_view bytes) {
  std::string text = "\"";
  for (const char c : bytes.substr(0, kMostShown)) text += c >= ' ' && c < '\x7f' ? c : '?';
  return text + (bytes.size() > kMostShown ? "...\"" : "\"");
}

std::string shown(std::wstring_view value) {
  std::wstring text(value.substr(0, kMostShown));
  for (wchar_t& c : text)
    if (c < L' ' || (c >= 0x7f && c < 0xa0) || c == 0x2028 || c == 0x2029) c = L'?';
  return "\"" + text::toUtf8(text) + (value.size() > kMostShown ? "...\"" : "\"");
}

std::size_t ProblemLog::lineAt(const char* at) {
  const std::less<> before;
  if (!hasLines_ || at == nullptr || before(at, text_.data()) || before(text_.data() + text_.size(), at)) return 0;
  const auto offset = static_cast<std::size_t>(at - text_.data());
  if (offset < countedTo_) {
    countedTo_ = 0;
    line_ = 1;
  }
  line_ += static_cast<std::size_t>(std::count(text_.data() + countedTo_, at, '\n'));
  countedTo_ = offset;
  return line_;
}

void ProblemLog::add(Code code, const char* at, std::uint64_t handle, std::string sentence) {
  if (problems_.size() < kMost) {
    problems_.push_back({code, {}, lineAt(at), handle, std::move(sentence)});
  } else {
    ++unlisted_;
  }
}

void ProblemLog::leftOut(const char* at, std::string_view what, std::uint64_t handle, std::string_view why) {
  constexpr std::size_t kMostKinds = 100;
  const std::string name = what.empty() ? "record" : std::string(what.substr(0, 40));
  add(Code::RecordLeftOut, at, handle, name + " left out: " + std::string(why));
  if (leftOut_.size() < kMostKinds || leftOut_.contains(name)) {
    ++leftOut_[name];
  } else {
    ++leftOut_["others"];
  }
}

void ProblemLog::note(Code code, std::string sentence) {
  notes_.push_back({code, {}, 0, 0, std::move(sentence), true});
}

std::vector<Problem> ProblemLog::take() {
  std::vector<Problem> all = std::move(notes_);
  std::move(problems_.begin(), problems_.end(), std::back_inserter(all));
  if (unlisted_ > 0)
    all.push_back(
        problemOf(Code::FurtherProblems, "further problems that are not listed: " + std::to_string(unlisted_)));
  if (!leftOut_.empty()) {
    std::size_t total = 0;
    std::string kinds;
    for (const auto& [name, count] : leftOut_) {
      total += count;
      kinds += (kinds.empty() ? "" : ", ") + name + " " + std::to_string(count);
    }
    all.push_back(problemOf(Code::LeftOutTotal, "left out in all: " + std::to_string(total) + " (" + kinds + ")"));
  }
  return all;
}

}  // namespace host::dxf
