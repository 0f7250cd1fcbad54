#include "Tolmex/ShadowSettings.h"

#include <memory>
#include <optional>

#include "OrvLib/ARX/AdsResbuf.h"
#include "OrvLib/ARX/DataChain.h"
#include "OrvLib/ARX/Opened.h"
#include "Tolmex/DocData.h"
#include "Tolmex/Model/Names.h"

namespace OrvLib {
namespace {

namespace keys = shadow_keys;

Opened<AcDbDictionary> namedObjects(AcDb::OpenMode mode) {
  AcDbDatabase* const db = orWorkingDatabase(nullptr);
  if (db == nullptr) return {};
  return Opened<AcDbDictionary>::by(
      [&](AcDbDictionary*& dictionary) { return db->getNamedObjectsDictionary(dictionary, mode); });
}

template <class T>
Opened<T> entryOf(const AcDbDictionary& dictionary, const ACHAR* key) {
  return Opened<T>::by([&](T*& object) { return dictionary.getAt(key, object, AcDb::kForRead); });
}

/// The system's own dictionary, open for write, made when missing; empty after telling why.
Opened<AcDbDictionary> ownDictionary() {
  const Opened<AcDbDictionary> root = namedObjects(AcDb::kForRead);
  if (!root) {
    acutPrintf(L"\nTolm::Unable to open the NOD! Aborting...");
    return {};
  }
  AcDbObjectId id;
  if (root->getAt(keys::kDictionary, id) == Acad::eOk) {
    AcDbObject* entry = nullptr;
    if (acdbOpenAcDbObject(entry, id, AcDb::kForWrite) != Acad::eOk) {
      acutPrintf(L"\nTolm::Cannot open the object for write.");
      return {};
    }
    if (AcDbDictionary* const dictionary = AcDbDictionary::cast(entry)) return Opened<AcDbDictionary>(dictionary);
    entry->close();
    acutPrintf(L"\nTolm::Entry found in the NOD, but it is not a dictionary.");
    return {};
  }
  if (!makeWritable(*root)) {
    acutPrintf(L"\nTolm::Cannot open NOD for Write!");
    return {};
  }
  auto made = std::make_unique<AcDbDictionary>();
  if (root->setAt(keys::kDictionary, made.get(), id) != Acad::eOk) {
    acutPrintf(L"\nTolm::Cannot add our dictionary in the AutoCAD NOD!");
    return {};
  }
  return Opened<AcDbDictionary>(made.release());
}

/// What the drawing has stored; the defaults where it has nothing, nothing when its dictionary cannot be opened.
std::optional<ShadowSettings> storedSettings() {
  const Opened<AcDbDictionary> root = namedObjects(AcDb::kForRead);
  if (!root) {
    acutPrintf(L"\nUnable to open the NOD! Aborting...");
    return std::nullopt;
  }
  const auto dictionary = entryOf<AcDbDictionary>(*root, keys::kDictionary);
  if (!dictionary) return ShadowSettings();
  const auto record = entryOf<AcDbXrecord>(*dictionary, keys::kRecord);
  resbuf* items = nullptr;
  if (!record || record->rbChain(&items) != Acad::eOk) return ShadowSettings();
  const AdsResbuf chain(items);
  return settingsOf(readShadowRecord(itemsOf(chain.get())));
}

/// Puts the settings in the place of the dictionary's record of them.
bool store(const ShadowSettings& settings, AcDbDictionary& dictionary) {
  AcDbObjectId id;
  if (dictionary.getAt(keys::kRecord, id) == Acad::eOk) {
    const Opened<AcDbObject> former(id, AcDb::kForWrite);
    if (!former || former->erase() != Acad::eOk) return false;
  }
  auto made = std::make_unique<AcDbXrecord>();
  if (dictionary.setAt(keys::kRecord, made.get(), id) != Acad::eOk) return false;
  const Opened<AcDbXrecord> record(made.release());
  return record->setFromRbChain(*AdsResbuf(shadowRecordItems(settings)).get()) == Acad::eOk;
}

}  // namespace

void readShadowSettings() {
  const std::optional<ShadowSettings> stored = storedSettings();
  CDocData& data = currentDocData();
  if (stored && *stored != data.seenShadows) static_cast<ShadowSettings&>(data) = data.seenShadows = *stored;
}

void writeShadowSettings() {
  CDocData& data = currentDocData();
  {
    const Opened<AcDbDictionary> dictionary = ownDictionary();
    if (!dictionary) return;
    if (!store(data, *dictionary)) {
      acutPrintf(L"\nTolmex-asetuksien tallentaminen NODiin epäonnistui.");
      return;
    }
  }
  data.seenShadows = storedSettings().value_or(data.seenShadows);
}

}  // namespace OrvLib
