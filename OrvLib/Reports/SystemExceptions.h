// Structured system exceptions (a bad address, a division by zero) as failures of the library.
#pragma once

namespace OrvLib {

#ifdef _MSC_VER

/// As long as it lives, system exceptions of this thread are thrown as OrvExpWinSeException. Needs the option /EHa.
class SystemExceptionsAsFailures {
 public:
  SystemExceptionsAsFailures();
  SystemExceptionsAsFailures(const SystemExceptionsAsFailures&) = delete;
  SystemExceptionsAsFailures& operator=(const SystemExceptionsAsFailures&) = delete;
  ~SystemExceptionsAsFailures();

 private:
  void* former_;
};

#else

/// Other platforms have none: what goes wrong there ends the process with a signal.
class SystemExceptionsAsFailures {
 public:
  SystemExceptionsAsFailures() {}  // not trivial, so that an unused one is no warning
  ~SystemExceptionsAsFailures() {}
};

#endif

}  // namespace OrvLib
