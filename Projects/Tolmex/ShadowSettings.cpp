#include "Tolmex/ShadowSettings.h"

#include <cmath>
#include <memory>
#include <optional>
#include <string_view>

#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/ResbufChain.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/Catalogue.h"
#include "Tolmex/DocData.h"

namespace OrvLib {
namespace {

namespace keys = shadow_keys;

constexpr short kTextCode = 1;
constexpr short kRealCode = 40;
constexpr short kShortCode = 70;
constexpr short kFirstCodeWithoutText = 10;

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

/// The value behind a key: numbers of either kind, whatever code they are stored under.
std::optional<double> storedNumber(const resbuf* chain, std::wstring_view key) {
  for (const resbuf* item = chain; item != nullptr; item = item->rbnext) {
    const bool isText = item->restype >= 0 && item->restype < kFirstCodeWithoutText;
    if (!isText || item->resval.rstring == nullptr || key != item->resval.rstring) continue;
    const resbuf* const value = item->rbnext;
    if (value == nullptr) return std::nullopt;
    const short code = value->restype;
    if (code >= 60 && code < 80) return value->resval.rint;
    if (code >= 90 && code < 100) return value->resval.rlong;
    if (code >= 38 && code < 60 && std::isfinite(value->resval.rreal)) return value->resval.rreal;
    return std::nullopt;
  }
  return std::nullopt;
}

void takeSettings(const resbuf* chain, ShadowSettings& settings) {
  if (const auto angle = storedNumber(chain, keys::kAngle)) settings.shadowAngleRad = *angle;
  if (const auto color = storedNumber(chain, keys::kColor)) settings.shadowColor = toInt(*color);
  if (const auto length = storedNumber(chain, keys::kLength)) settings.shadowLengthPerFloor = *length;
  if (const auto scale = storedNumber(chain, keys::kScale)) settings.shadowScale = *scale;
  if (const auto type = storedNumber(chain, keys::kHatchType)) {
    settings.shadowHatchType = *type == keys::kStoredDots ? kShadowDots : kShadowLines;
  }
}

ResbufChain recordOf(const ShadowSettings& settings) {
  ResbufChain chain;
  chain.append(kTextCode, keys::kAngle);
  chain.appendReal(kRealCode, settings.shadowAngleRad);
  chain.append(kTextCode, keys::kColor);
  chain.appendShort(kShortCode, static_cast<short>(settings.shadowColor));
  chain.append(kTextCode, keys::kLength);
  chain.appendReal(kRealCode, settings.shadowLengthPerFloor);
  chain.append(kTextCode, keys::kScale);
  chain.appendReal(kRealCode, settings.shadowScale);
  chain.append(kTextCode, keys::kHatchType);
  chain.appendShort(kShortCode, settings.shadowHatchType == kShadowDots ? keys::kStoredDots : keys::kStoredLines);
  return chain;
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

}  // namespace

void readShadowSettings() {
  const Opened<AcDbDictionary> root = namedObjects(AcDb::kForRead);
  if (!root) {
    acutPrintf(L"\nUnable to open the NOD! Aborting...");
    return;
  }
  const auto dictionary = entryOf<AcDbDictionary>(*root, keys::kDictionary);
  if (!dictionary) return;
  const auto record = entryOf<AcDbXrecord>(*dictionary, keys::kRecord);
  resbuf* items = nullptr;
  if (!record || record->rbChain(&items) != Acad::eOk) return;
  const ResbufChain chain(items);
  takeSettings(chain.get(), currentDocData().shadows);
}

void writeShadowSettings() {
  const Opened<AcDbDictionary> dictionary = ownDictionary();
  if (!dictionary) return;
  AcDbObjectId id;
  if (dictionary->getAt(keys::kRecord, id) == Acad::eOk) {
    const Opened<AcDbObject> former(id, AcDb::kForWrite);
    if (former) former->erase();
  }
  auto made = std::make_unique<AcDbXrecord>();
  if (dictionary->setAt(keys::kRecord, made.get(), id) != Acad::eOk) {
    acutPrintf(L"\nTolmex-asetuksien tallentaminen NODiin epäonnistui.");
    return;
  }
  const Opened<AcDbXrecord> record(made.release());
  record->setFromRbChain(*recordOf(currentDocData().shadows).get());
}

}  // namespace OrvLib
