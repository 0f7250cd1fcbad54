// Symbol tables and their records.
#pragma once

#include "dbmain.h"

#define ACDB_MODEL_SPACE ACRX_T("*Model_Space")
#define ACDB_PAPER_SPACE ACRX_T("*Paper_Space")

class ADESK_EXPORT AcDbSymbolTableRecord : public AcDbObject {
  ACRX_DECLARE_MEMBERS(AcDbSymbolTableRecord);

 public:
  /// Up to 255 characters, none of < > / \ " : ; ? * | , = and backquote; eInvalidInput otherwise.
  Acad::ErrorStatus setName(const ACHAR* name);
  /// A copy, to be freed with acutDelString.
  Acad::ErrorStatus getName(ACHAR*& name) const;
  /// Owned by the record, valid until it is closed.
  Acad::ErrorStatus getName(const ACHAR*& name) const;

 protected:
  AcDbSymbolTableRecord() = default;
};

/// Walks the records of a table in the order of the file. The caller deletes it.
class ADESK_EXPORT AcDbSymbolTableIterator : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcDbSymbolTableIterator);

 public:
  ~AcDbSymbolTableIterator() override;
  void start(bool atBeginning = true, bool skipDeleted = true);
  bool done() const;
  void step(bool forward = true, bool skipDeleted = true);
  Acad::ErrorStatus getRecordId(AcDbObjectId& id) const;
  Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& record, AcDb::OpenMode mode, bool openErased = false) const;

 private:
  friend class AcDbSymbolTable;
  AcDbSymbolTableIterator() = default;
  AcDbObjectIdArray ids_;
  int position_ = 0;
};

/// Names compare without regard to case.
class ADESK_EXPORT AcDbSymbolTable : public AcDbObject {
  ACRX_DECLARE_MEMBERS(AcDbSymbolTable);

 public:
  /// eKeyNotFound.
  Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id, bool getErased = false) const;
  Acad::ErrorStatus getAt(const ACHAR* name, AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                          bool openErased = false) const;
  bool has(const ACHAR* name) const;
  bool has(AcDbObjectId id) const;
  /// The record becomes resident and stays open for write. eDuplicateRecordName; the caller then deletes the record.
  Acad::ErrorStatus add(AcDbSymbolTableRecord* record);
  Acad::ErrorStatus add(AcDbObjectId& id, AcDbSymbolTableRecord* record);
  Acad::ErrorStatus newIterator(AcDbSymbolTableIterator*& iterator, bool atBeginning = true,
                                bool skipDeleted = true) const;

 protected:
  AcDbSymbolTable() = default;
};

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are class names
/// The typed look-up that every table adds to the general one.
#define ACDB_DECLARE_SYMBOL_TABLE(TABLE, RECORD)                                                                      \
  class ADESK_EXPORT TABLE : public AcDbSymbolTable {                                                                 \
    ACRX_DECLARE_MEMBERS(TABLE);                                                                                      \
                                                                                                                      \
   public:                                                                                                            \
    TABLE() = default;                                                                                                \
    using AcDbSymbolTable::getAt;                                                                                     \
    Acad::ErrorStatus getAt(const ACHAR* name, RECORD*& record, AcDb::OpenMode mode, bool openErased = false) const { \
      AcDbSymbolTableRecord* any = nullptr;                                                                           \
      const Acad::ErrorStatus status = AcDbSymbolTable::getAt(name, any, mode, openErased);                           \
      if (status == Acad::eOk) record = static_cast<RECORD*>(any);                                                    \
      return status;                                                                                                  \
    }                                                                                                                 \
  }
// NOLINTEND(bugprone-macro-parentheses)

/// A layer; new ones are white, Continuous, on, thawed, unlocked, plotted.
class ADESK_EXPORT AcDbLayerTableRecord : public AcDbSymbolTableRecord {
  ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord);

 public:
  AcDbLayerTableRecord();
  AcCmColor color() const;
  void setColor(const AcCmColor& color);
  bool isOff() const;
  void setIsOff(bool off);
  bool isFrozen() const;
  /// eInvalidLayer for the current layer.
  Acad::ErrorStatus setIsFrozen(bool frozen);
  bool isLocked() const;
  void setIsLocked(bool locked);
  bool isPlottable() const;
  Acad::ErrorStatus setIsPlottable(bool plottable);
  AcDbObjectId linetypeObjectId() const;
  Acad::ErrorStatus setLinetypeObjectId(AcDbObjectId linetype);
  /// Hundredths of a millimetre, or AcDb::kLnWtByLwDefault.
  int lineWeight() const;
  Acad::ErrorStatus setLineWeight(int weight);
};

class ADESK_EXPORT AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
  ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord);

 public:
  AcDbLinetypeTableRecord();
  Acad::ErrorStatus setComments(const ACHAR* comments);
  double patternLength() const;
  void setPatternLength(double length);
  int numDashes() const;
  void setNumDashes(int count);
  /// Positive dash, negative gap, 0 dot.
  double dashLengthAt(int index) const;
  void setDashLengthAt(int index, double length);
};

class ADESK_EXPORT AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
  ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord);

 public:
  AcDbRegAppTableRecord();
};

class ADESK_EXPORT AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
  ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord);

 public:
  AcDbTextStyleTableRecord();
};

/// Walks the entities of a block in the order they were appended. The caller deletes it.
class ADESK_EXPORT AcDbBlockTableRecordIterator : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcDbBlockTableRecordIterator);

 public:
  ~AcDbBlockTableRecordIterator() override;
  void start(bool atBeginning = true, bool skipDeleted = true);
  bool done() const;
  void step(bool forward = true, bool skipDeleted = true);
  Acad::ErrorStatus getEntityId(AcDbObjectId& id) const;
  Acad::ErrorStatus getEntity(AcDbEntity*& entity, AcDb::OpenMode mode, bool openErased = false) const;

 private:
  friend class AcDbBlockTableRecord;
  AcDbBlockTableRecordIterator() = default;
  AcDbObjectIdArray ids_;
  int position_ = 0;
};

class ADESK_EXPORT AcDbBlockTableRecord : public AcDbSymbolTableRecord {
  ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord);

 public:
  AcDbBlockTableRecord();
  /// The entity becomes resident, takes the current layer, colour and linetype where it has none, stays open for write.
  Acad::ErrorStatus appendAcDbEntity(AcDbEntity* entity);
  Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity);
  Acad::ErrorStatus newIterator(AcDbBlockTableRecordIterator*& iterator, bool atBeginning = true,
                                bool skipDeleted = true) const;
  bool isLayout() const;
};

ACDB_DECLARE_SYMBOL_TABLE(AcDbLayerTable, AcDbLayerTableRecord);
ACDB_DECLARE_SYMBOL_TABLE(AcDbLinetypeTable, AcDbLinetypeTableRecord);
ACDB_DECLARE_SYMBOL_TABLE(AcDbRegAppTable, AcDbRegAppTableRecord);
ACDB_DECLARE_SYMBOL_TABLE(AcDbTextStyleTable, AcDbTextStyleTableRecord);
ACDB_DECLARE_SYMBOL_TABLE(AcDbBlockTable, AcDbBlockTableRecord);
