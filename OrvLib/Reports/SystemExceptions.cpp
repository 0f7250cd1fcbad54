#include "OrvLib/Reports/SystemExceptions.h"

#ifdef _MSC_VER

#include <eh.h>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/Reports/Failures.h"
#include "OrvLib/Reports/System.h"

namespace OrvLib {
namespace {

void throwFailure(unsigned int code, EXCEPTION_POINTERS* information) {
  const void* const address = information != nullptr ? information->ExceptionRecord->ExceptionAddress : nullptr;
  throw OrvExpWinSeException(formatText(L"Structured exception 0x%08X at %p.", code, address));
}

}  // namespace

SystemExceptionsAsFailures::SystemExceptionsAsFailures()
    : former_(reinterpret_cast<void*>(_set_se_translator(&throwFailure))) {}

SystemExceptionsAsFailures::~SystemExceptionsAsFailures() {
  _set_se_translator(reinterpret_cast<_se_translator_function>(former_));
}

}  // namespace OrvLib

#endif
