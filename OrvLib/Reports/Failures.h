// Failures of the library and of host calls, and how they are reported to the user.
#pragma once

#include <string>
#include <utility>

#include "OrvLib/Reports/SystemExceptions.h"

class CWnd;

namespace OrvLib {

/// A place in the source. std::source_location would do, but not every compiler and checker in use has it yet.
struct SourcePlace {
  const char* file;
  int line;

  /// As a default argument: the place of the call.
  static constexpr SourcePlace current(const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    return {file, line};
  }
};

/// Root of the failures. Carries a message and the place in the source that raised it. A command handler catches it, so
/// that it never reaches the host.
class OrvExpBase {
 public:
  static constexpr std::size_t kLongestMessage = 4096;  // characters; the rest is cut

  explicit OrvExpBase(std::wstring message, SourcePlace place = SourcePlace::current());
  OrvExpBase(const OrvExpBase&) = default;
  OrvExpBase& operator=(const OrvExpBase&) = default;
  virtual ~OrvExpBase();

  /// Tells the user in the library's message dialog: "message (Error location: file:line)", at most 1999 characters.
  /// Where no dialog can be shown the plain report tells it. Never throws.
  virtual void report() const noexcept;
  /// Title of the report.
  virtual const wchar_t* title() const noexcept { return L"Error"; }

  const std::wstring& message() const { return message_; }
  /// Path below the source root without its leading folders, for instance "ARX/GenARX.cpp".
  const std::wstring& file() const { return file_; }
  int line() const { return line_; }

 private:
  std::wstring message_;
  std::wstring file_;
  int line_;
};

// Every class below has its own constructor: an inherited one would take the class for the place of the failure.

/// A fault of the library itself.
class OrvExpInternal : public OrvExpBase {
 public:
  explicit OrvExpInternal(std::wstring message, SourcePlace place = SourcePlace::current())
      : OrvExpBase(std::move(message), place) {}
};

/// A failed allocation.
class OrvExpNoMem : public OrvExpInternal {
 public:
  explicit OrvExpNoMem(std::wstring message, SourcePlace place = SourcePlace::current())
      : OrvExpInternal(std::move(message), place) {}
  /// As reportOutOfMemory.
  void report() const noexcept override;
  const wchar_t* title() const noexcept override { return kTitle; }

  static constexpr const wchar_t* kTitle = L"Out of memory";
};

/// An index outside a container.
class OrvExpRange : public OrvExpBase {
 public:
  explicit OrvExpRange(std::wstring message, SourcePlace place = SourcePlace::current())
      : OrvExpBase(std::move(message), place) {}
};

/// A failed host call or allocation of a host object.
class OrvExpAcad : public OrvExpBase {
 public:
  explicit OrvExpAcad(std::wstring message, SourcePlace place = SourcePlace::current())
      : OrvExpBase(std::move(message), place) {}
};

/// A refusal that the user can do something about.
class OrvExpUser : public OrvExpBase {
 public:
  explicit OrvExpUser(std::wstring message, SourcePlace place = SourcePlace::current())
      : OrvExpBase(std::move(message), place) {}
};

/// The user cancelled an action.
class OrvExpActionCancelled : public OrvExpBase {
 public:
  explicit OrvExpActionCancelled(SourcePlace place = SourcePlace::current());
  /// The user knows: one line on the command line, no box.
  void report() const noexcept override;
};

/// A structured system exception turned into a failure of the library.
class OrvExpWinSeException : public OrvExpBase {
 public:
  explicit OrvExpWinSeException(std::wstring message, SourcePlace place = SourcePlace::current())
      : OrvExpBase(std::move(message), place) {}
};

/// Plain report, without an exception object: a message box with at most 1999 characters, above `parent` or else the
/// host's main frame. Null means that nothing is known about the failure. Never throws, as all of these.
void reportFailure(const wchar_t* message, SourcePlace place = SourcePlace::current(), CWnd* parent = nullptr) noexcept;

/// The same with the narrow text of a standard exception.
void reportFailure(const char* message, SourcePlace place = SourcePlace::current(), CWnd* parent = nullptr) noexcept;

/// Offers the machine's memory figures in a second box. Where the first one cannot be shown the plain report tells of
/// the failure. Works with memory kept back for it.
void reportOutOfMemory(const wchar_t* message, SourcePlace place = SourcePlace::current()) noexcept;

/// Reports the exception being handled, whatever it is; to be called in a catch clause.
void reportCurrentException(SourcePlace place = SourcePlace::current()) noexcept;

/// A host call failed and the work goes on without it: "failed file:line" on the command line, with one or two details.
void printFailed(const wchar_t* detail = nullptr, const wchar_t* more = nullptr,
                 SourcePlace place = SourcePlace::current()) noexcept;

/// For what the host calls all the time, as at every move of the cursor: as `guarded`, but only the first failure is
/// reported; `wasTold` remembers it.
template <class Body>
void guardedOnce(bool& wasTold, Body&& body, SourcePlace place = SourcePlace::current()) noexcept {
  const SystemExceptionsAsFailures translated;
  try {
    std::forward<Body>(body)();
  } catch (...) {
    if (!std::exchange(wasTold, true)) reportCurrentException(place);
  }
}

/// Runs `body` and reports whatever it throws: the door through which the host calls the plug-in.
template <class Body>
void guarded(Body&& body, SourcePlace place = SourcePlace::current()) noexcept {
  const SystemExceptionsAsFailures translated;
  try {
    std::forward<Body>(body)();
  } catch (...) {
    reportCurrentException(place);
  }
}

}  // namespace OrvLib
