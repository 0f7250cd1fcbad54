// A document lock that releases itself.
#pragma once

#include "acdocman.h"

class ADESK_EXPORT AcAxDocLock {
 public:
  enum DocLockType { kNormal = 0, kCurDocSwitch = 1 };

  /// Locks the current document.
  explicit AcAxDocLock(DocLockType type = kNormal);
  explicit AcAxDocLock(const AcDbObjectId& id, DocLockType type = kNormal);
  explicit AcAxDocLock(AcDbDatabase* db, DocLockType type = kNormal);
  AcAxDocLock(const AcAxDocLock&) = delete;
  AcAxDocLock& operator=(const AcAxDocLock&) = delete;
  ~AcAxDocLock();

  Acad::ErrorStatus lockStatus() const { return status_; }

 private:
  AcApDocument* document_ = nullptr;
  Acad::ErrorStatus status_ = Acad::eNoDatabase;
};
