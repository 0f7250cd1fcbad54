// Object ids: names of objects in memory, valid as long as their database.
#pragma once

#include "adesk.h"
#include "dbhandle.h"

class AcDbDatabase;
class AcRxClass;

namespace host::database {
struct Slot;
}

class ADESK_EXPORT AcDbObjectId {
 public:
  static const AcDbObjectId kNull;

  AcDbObjectId() = default;
  explicit AcDbObjectId(host::database::Slot* slot) : slot_(slot) {}

  bool isNull() const { return slot_ == nullptr; }
  bool isValid() const { return slot_ != nullptr; }
  void setNull() { slot_ = nullptr; }
  bool isErased() const;
  AcDbHandle handle() const;
  AcDbDatabase* database() const;
  /// Class of the object, known without opening it; null for a null id.
  AcRxClass* objectClass() const;
  Adesk::Int64 asOldId() const { return reinterpret_cast<Adesk::Int64>(slot_); }

  bool operator==(const AcDbObjectId& other) const { return slot_ == other.slot_; }
  bool operator!=(const AcDbObjectId& other) const { return slot_ != other.slot_; }
  bool operator<(const AcDbObjectId& other) const { return slot_ < other.slot_; }

  /// The host's own record behind the id; opaque to plug-ins.
  host::database::Slot* slot() const { return slot_; }

 private:
  host::database::Slot* slot_ = nullptr;
};
inline const AcDbObjectId AcDbObjectId::kNull{};
