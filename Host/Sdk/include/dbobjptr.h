// An open object that closes itself.
#pragma once

#include "dbmain.h"

template <class T>
class AcDbObjectPointer {
 public:
  AcDbObjectPointer() = default;
  explicit AcDbObjectPointer(AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead, bool openErased = false) {
    open(id, mode, openErased);
  }
  AcDbObjectPointer(const AcDbObjectPointer&) = delete;
  AcDbObjectPointer& operator=(const AcDbObjectPointer&) = delete;
  ~AcDbObjectPointer() { close(); }

  Acad::ErrorStatus open(AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false) {
    close();
    return status_ = acdbOpenObject(object_, id, mode, openErased);
  }
  Acad::ErrorStatus openStatus() const { return status_; }
  T* object() const { return object_; }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  Acad::ErrorStatus close() {
    if (object_ == nullptr) return Acad::eOk;
    T* const open = object_;
    object_ = nullptr;
    return open->close();
  }
  /// Hands the open object over; the caller closes it.
  T* release() {
    T* const open = object_;
    object_ = nullptr;
    return open;
  }

 private:
  T* object_ = nullptr;
  Acad::ErrorStatus status_ = Acad::eNullObjectId;
};
