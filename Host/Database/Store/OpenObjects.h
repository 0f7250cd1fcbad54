// Objects of the host interface over a drawing's slots: opened, closed, and kept for a while.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "Database/ObjectAccess.h"

namespace host::database {

class OpenObjects {
 public:
  explicit OpenObjects(DrawingDatabase& db) : db_(db) {}
  OpenObjects(const OpenObjects&) = delete;
  OpenObjects& operator=(const OpenObjects&) = delete;

  // As AcDbObject and acdbOpenObject say.
  Acad::ErrorStatus open(AcDbObject*& object, Slot* slot, AcDb::OpenMode mode, bool openErased);
  Acad::ErrorStatus close(AcDbObject& object);
  Acad::ErrorStatus upgrade(AcDbObject& object);
  Acad::ErrorStatus downgrade(AcDbObject& object);

  /// Gathers what `adopt` needs, so that it cannot fail.
  void prepareAdoption(Slot& slot);
  /// Ties an object to its new slot and leaves it open for write: the last step of making it the drawing's.
  void adopt(AcDbObject& object, Slot& slot) noexcept;

  /// As DrawingDatabase::releaseObjects and takeLostChanges say.
  int release();
  int takeLostChanges();

 private:
  AcDbObject* objectFor(Slot& slot);
  bool refusesChange(const Slot& slot);
  void parkData(Slot& slot);
  void writeData(Slot& slot, const ObjectData& data);

  DrawingDatabase& db_;
  std::vector<Slot*> opened_;  // slots whose Live holds an object
  // Objects closed a moment ago that still hold what was read from the file: a command that works on an entity opens
  // it several times. Oldest at `nextParked_`.
  std::array<Slot*, 8> parked_{};
  std::size_t nextParked_ = 0;
  int lostChanges_ = 0;  // objects whose values could not be written at their close
};

/// The table object of a table whose records have the type; null for tables without a class of their own.
AcDbObject* createTable(DxfType recordType);

}  // namespace host::database
