#include "OrvLib/ARX/Failures.h"

#include <string_view>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/DataStruct/Text.h"

namespace OrvLib {
namespace {

constexpr std::size_t kLongestReport = 2000;  // characters with the terminator

// Compilers give the path they were called with; the folders above the two source roots say nothing to a reader.
std::wstring pathInSources(const char* path) {
  std::string_view rest = path;
  for (const std::string_view root : {"OrvLib/", "OrvLib\\", "Projects/", "Projects\\"}) {
    const std::size_t at = rest.rfind(root);
    if (at != std::string_view::npos) rest.remove_prefix(at + root.size());
  }
  return decodeText(rest);
}

}  // namespace

OrvExpBase::OrvExpBase(std::wstring message, SourcePlace place)
    : message_(std::move(message)), file_(pathInSources(place.file)), line_(place.line) {
  if (message_.size() > kLongestMessage) message_.resize(kLongestMessage);
}

OrvExpBase::~OrvExpBase() = default;

void OrvExpBase::report() const noexcept {
  ACHAR text[kLongestReport];
  _snwprintf(text, kLongestReport, L"%s\n\n(Error location: %s:%d)", message_.c_str(), file_.c_str(), line_);
  acutPrintf(L"\n%s\n", text);
}

OrvExpActionCancelled::OrvExpActionCancelled(SourcePlace place) : OrvExpBase(L"User cancelled the action.", place) {}

void reportFailure(const wchar_t* message, SourcePlace place) noexcept {
  try {
    ACHAR text[kLongestReport];
    _snwprintf(text, kLongestReport, L"\nException \"%s\" at line %i in file %s.\n",
               message != nullptr ? message : L"unknown error", place.line, pathInSources(place.file).c_str());
    acutPrintf(L"%s", text);
  } catch (...) {
    acutPrintf(L"\nException \"unknown error\".\n");
  }
}

void reportFailure(const char* message, SourcePlace place) noexcept {
  try {
    reportFailure(message != nullptr ? decodeText(message).c_str() : nullptr, place);
  } catch (...) {
    reportFailure(static_cast<const wchar_t*>(nullptr), place);
  }
}

}  // namespace OrvLib
