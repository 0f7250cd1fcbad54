#include "OrvLib/Reports/Failures.h"

#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string_view>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/ParentWindow.h"
#include "OrvLib/DataStruct/Text.h"
#include "OrvLib/Reports/MessageDialog.h"
#include "OrvLib/Reports/System.h"

namespace OrvLib {
namespace {

constexpr std::size_t kLongestReport = 2000;  // characters with the terminator

// MessageBox defines no buttons of this number. A host that shows the box all the same answers 6 for "details".
constexpr UINT kOutOfMemoryStyle = 58;
constexpr int kDetailsAnswer = 6;

/// Compilers give the path they were called with; only the part below the source roots says something to a reader.
std::string_view pathInSources(const char* path) {
  std::string_view rest = path;
  bool isKnown = false;
  for (const std::string_view root : {"OrvLib/", "OrvLib\\", "Projects/", "Projects\\"}) {
    const std::size_t at = rest.rfind(root);
    if (at == std::string_view::npos) continue;
    rest.remove_prefix(at + root.size());
    isKnown = true;
  }
  return isKnown ? rest : rest.substr(rest.find_last_of("/\\") + 1);
}

/// Memory that a report may use when there is no other.
class Reserve {
 public:
  Reserve() { fill(); }
  void release() { kept_.reset(); }
  void fill() { kept_.reset(new (std::nothrow) char[kSize]); }

 private:
  static constexpr std::size_t kSize = 0x20000;
  std::unique_ptr<char[]> kept_;
};
Reserve reserve;

HWND handleOf(const CWnd* window) {
  if (window == nullptr) window = parentWindow();
  return window != nullptr ? window->GetSafeHwnd() : nullptr;
}

/// Where not even a text can be made.
void reportWithoutMemory(const wchar_t* title) noexcept {
  try {
    MessageBoxW(nullptr, L"Not enough memory to perform the current operation.", title, MB_OK);
  } catch (...) {  // NOLINT(bugprone-empty-catch): nothing is left to be done
  }
}

template <class Report>
void safely(const wchar_t* title, Report&& report) noexcept {
  try {
    report();
  } catch (...) {
    reportWithoutMemory(title);
  }
}

// Files' names are ASCII.
void plainReport(const wchar_t* message, std::string_view file, int line, const CWnd* parent) {
  ACHAR text[kLongestReport];
  _snwprintf(text, kLongestReport, L"\nException \"%s\" at line %i in file %s.\n",
             message != nullptr ? message : L"unknown error", line, std::wstring(file.begin(), file.end()).c_str());
  text[kLongestReport - 1] = 0;
  MessageBoxW(handleOf(parent), text, L"Error", MB_OK);
}

void outOfMemoryReport(const wchar_t* message, std::string_view file, int line) {
  const DWORD systemError = GetLastError();  // before a refused box sets its own
  ACHAR text[kLongestReport];
  _snwprintf(text, kLongestReport,
             L"Not enough memory to perform the current operation.\n%s.\n\nPress CONTINUE to get more information.\n",
             L"It's recommended to upgrade your PC with more memory");
  const int answer = MessageBoxW(GetActiveWindow(), text, OrvExpNoMem::kTitle, kOutOfMemoryStyle);
  if (answer == 0) plainReport(message, file, line, nullptr);
  if (answer != kDetailsAnswer) return;
  const std::wstring details =
      formatText(L"\n%s at line %i in file %s.\n\n", message, line, std::wstring(file.begin(), file.end()).c_str()) +
      memorySummary(systemError);
  MessageBoxW(GetActiveWindow(), details.c_str(), OrvExpNoMem::kTitle, MB_ICONEXCLAMATION);
}

void outOfMemory(const wchar_t* message, std::string_view file, int line) noexcept {
  reserve.release();
  safely(OrvExpNoMem::kTitle, [&] { outOfMemoryReport(message, file, line); });
  reserve.fill();
}

}  // namespace

OrvExpBase::OrvExpBase(std::wstring message, SourcePlace place)
    : message_(std::move(message)), file_(decodeText(pathInSources(place.file))), line_(place.line) {
  if (message_.size() > kLongestMessage) message_.resize(kLongestMessage);
}

OrvExpBase::~OrvExpBase() = default;

void OrvExpBase::report() const noexcept {
  safely(title(), [this] {
    ACHAR text[kLongestReport];
    _snwprintf(text, kLongestReport, L"%s\n\n(Error location: %s:%d)", message_.c_str(), file_.c_str(), line_);
    text[kLongestReport - 1] = 0;
    if (!showMessageDialog(title(), text, {}, parentWindow()))
      plainReport(message_.c_str(), encodeUtf8(file_), line_, nullptr);
  });
}

void OrvExpNoMem::report() const noexcept {
  safely(kTitle, [this] { outOfMemory(message().c_str(), encodeUtf8(file()), line()); });
}

OrvExpActionCancelled::OrvExpActionCancelled(SourcePlace place) : OrvExpBase(L"User cancelled the action.", place) {}

void OrvExpActionCancelled::report() const noexcept {
  safely(title(), [this] { acutPrintf(L"\n%s\n", message().c_str()); });
}

void reportFailure(const wchar_t* message, SourcePlace place, CWnd* parent) noexcept {
  safely(L"Error", [&] { plainReport(message, pathInSources(place.file), place.line, parent); });
}

void reportFailure(const char* message, SourcePlace place, CWnd* parent) noexcept {
  safely(L"Error", [&] {
    const std::optional<std::wstring> text = message != nullptr ? std::optional(decodeText(message)) : std::nullopt;
    plainReport(text ? text->c_str() : nullptr, pathInSources(place.file), place.line, parent);
  });
}

void reportOutOfMemory(const wchar_t* message, SourcePlace place) noexcept {
  outOfMemory(message, pathInSources(place.file), place.line);
}

void reportCurrentException(SourcePlace place) noexcept {
  try {
    throw;
  } catch (const OrvExpBase& failure) {
    failure.report();
  } catch (const std::bad_alloc&) {
    reportOutOfMemory(L"Out of memory", place);
  } catch (const std::exception& failure) {
    reportFailure(failure.what(), place);
  } catch (...) {
    reportFailure(static_cast<const wchar_t*>(nullptr), place);
  }
}

void printFailed(const wchar_t* detail, const wchar_t* more, SourcePlace place) noexcept {
  try {
    const std::string_view path = pathInSources(place.file);
    const std::wstring file(path.begin(), path.end());
    if (detail == nullptr) {
      acutPrintf(L"failed %s:%i\n", file.c_str(), place.line);
    } else if (more == nullptr) {
      acutPrintf(L"failed %s:%i %s\n", file.c_str(), place.line, detail);
    } else {
      acutPrintf(L"failed %s:%i %s/%s\n", file.c_str(), place.line, detail, more);
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch): the line is for developers
  }
}

}  // namespace OrvLib
