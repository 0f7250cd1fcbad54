// Dictionaries: named objects.
#pragma once

#include "dbmain.h"

class ADESK_EXPORT AcDbDictionaryIterator : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcDbDictionaryIterator);

 public:
  ~AcDbDictionaryIterator() override;
  /// Owned by the iterator.
  const ACHAR* name() const;
  AcDbObjectId objectId() const;
  bool done() const;
  bool next();

 private:
  friend class AcDbDictionary;
  AcDbDictionaryIterator() = default;
  struct Entry;
  Entry* entries_ = nullptr;
  int count_ = 0;
  int position_ = 0;
};

/// Names compare without regard to case and keep theirs.
class ADESK_EXPORT AcDbDictionary : public AcDbObject {
  ACRX_DECLARE_MEMBERS(AcDbDictionary);

 public:
  AcDbDictionary();
  /// eKeyNotFound.
  Acad::ErrorStatus getAt(const ACHAR* key, AcDbObjectId& id) const;
  Acad::ErrorStatus getAt(const ACHAR* key, AcDbObject*& object, AcDb::OpenMode mode) const;
  template <class T>
  Acad::ErrorStatus getAt(const ACHAR* key, T*& object, AcDb::OpenMode mode) const {
    AcDbObjectId id;
    const Acad::ErrorStatus status = getAt(key, id);
    return status == Acad::eOk ? acdbOpenObject(object, id, mode) : status;
  }
  bool has(const ACHAR* key) const;
  bool has(AcDbObjectId id) const;
  /// The object becomes resident, owned by the dictionary, and stays open for write. An entry of that name is replaced,
  /// its object erased. A key "*" or one starting with "*" makes an anonymous name "*A<n>".
  Acad::ErrorStatus setAt(const ACHAR* key, AcDbObject* object, AcDbObjectId& id);
  /// Takes the entry out; the object is not erased.
  Acad::ErrorStatus remove(const ACHAR* key);
  Acad::ErrorStatus remove(AcDbObjectId id);
  Adesk::UInt32 numEntries() const;
  /// A copy of the key under which the object stands, to be freed with acutDelString.
  Acad::ErrorStatus nameAt(AcDbObjectId id, ACHAR*& name) const;
  AcDbDictionaryIterator* newIterator() const;
};
