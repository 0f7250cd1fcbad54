// Run-time class information: the root class and the member macros.
#pragma once

#include "acadstrc.h"
#include "adesk.h"

class AcRxClass;

/// Root of every class the host interface hands out.
class ADESK_EXPORT AcRxObject {
 public:
  virtual ~AcRxObject();
  AcRxObject(const AcRxObject&) = delete;
  AcRxObject& operator=(const AcRxObject&) = delete;

  static AcRxClass* desc();
  virtual AcRxClass* isA() const;
  bool isKindOf(const AcRxClass* base) const;
  static AcRxObject* cast(const AcRxObject* object) { return const_cast<AcRxObject*>(object); }

 protected:
  AcRxObject() = default;
};

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are class names
/// Class members of the run-time class information; every class of the interface has them.
#define ACRX_DECLARE_MEMBERS(CLASS)                                    \
 public:                                                               \
  static AcRxClass* desc();                                            \
  AcRxClass* isA() const override;                                     \
  static CLASS* cast(const AcRxObject* object) {                       \
    return object != nullptr && object->isKindOf(CLASS::desc())        \
               ? const_cast<CLASS*>(static_cast<const CLASS*>(object)) \
               : nullptr;                                              \
  }                                                                    \
                                                                       \
 private:                                                              \
  using rxThisClass = CLASS
// NOLINTEND(bugprone-macro-parentheses)
