// Open host objects that close themselves.
#pragma once

#include <utility>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

/// Holds one host object open and closes it on every way out. Movable, not copyable; empty when the opening failed.
template <class T>
class Opened {
 public:
  Opened() = default;
  Opened(AcDbObjectId id, AcDb::OpenMode mode) { status_ = acdbOpenObject(object_, id, mode); }
  /// Takes over an object that is open already; null makes an empty one.
  explicit Opened(T* open) : object_(open), status_(open != nullptr ? Acad::eOk : Acad::eNullObjectPointer) {}
  /// Opens by a call of the form `status = open(T*&)`, for instance a table of the database.
  template <class Open>
  static Opened by(const Open& open) {
    Opened opened;
    opened.status_ = open(opened.object_);
    return opened;
  }
  Opened(Opened&& other) noexcept
      : object_(std::exchange(other.object_, nullptr)),
        status_(std::exchange(other.status_, Acad::eNullObjectPointer)) {}
  Opened& operator=(Opened&& other) noexcept {
    if (this != &other) {
      close();
      object_ = std::exchange(other.object_, nullptr);
      status_ = std::exchange(other.status_, Acad::eNullObjectPointer);
    }
    return *this;
  }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;
  ~Opened() { close(); }

  explicit operator bool() const { return object_ != nullptr; }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  T* get() const { return object_; }
  /// Why it is empty.
  Acad::ErrorStatus status() const { return status_; }
  void close() {
    if (T* const object = std::exchange(object_, nullptr)) object->close();
  }

 private:
  T* object_ = nullptr;
  Acad::ErrorStatus status_ = Acad::eNullObjectId;
};

/// Makes sure that an open object is open for write. False when the host refuses, for instance with other readers.
inline bool makeWritable(AcDbObject& object) { return object.isWriteEnabled() || object.upgradeOpen() == Acad::eOk; }

/// `db`, or the working database for null; null without an open drawing.
inline AcDbDatabase* orWorkingDatabase(AcDbDatabase* db) {
  return db != nullptr ? db : acdbHostApplicationServices()->workingDatabase();
}

}  // namespace OrvLib
