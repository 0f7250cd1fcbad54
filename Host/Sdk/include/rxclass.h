// Class descriptors.
#pragma once

#include "rxobject.h"

/// Describes one class: its name and its parent. One instance per class, alive as long as the process.
class ADESK_EXPORT AcRxClass : public AcRxObject {
 public:
  AcRxClass(const ACHAR* name, AcRxClass* parent) : name_(name), parent_(parent) {}
  const ACHAR* name() const { return name_; }
  AcRxClass* myParent() const { return parent_; }
  /// True for the class itself and all its ancestors.
  bool isDerivedFrom(const AcRxClass* base) const;
  AcRxClass* isA() const override;
  static AcRxClass* desc();

 private:
  const ACHAR* name_;
  AcRxClass* parent_;
};
