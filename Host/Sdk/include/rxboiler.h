// Definitions that go with ACRX_DECLARE_MEMBERS.
#pragma once

#include "rxclass.h"

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are class names
#define ACRX_NO_CONS_DEFINE_MEMBERS(CLASS, PARENT)                                       \
  AcRxClass* CLASS::desc() {                                                             \
    static AcRxClass* const description = new AcRxClass(ACRX_T(#CLASS), PARENT::desc()); \
    return description;                                                                  \
  }                                                                                      \
  AcRxClass* CLASS::isA() const { return CLASS::desc(); }
// NOLINTEND(bugprone-macro-parentheses)
