#include <cmath>
#include <memory>

#include "Hatching/Linetypes.h"
#include "Hatching/SupportFiles.h"
#include "Text/Text.h"
#include "dbobjptr.h"
#include "dbsymtb.h"

namespace {

using host::hatching::Linetype;

Acad::ErrorStatus addLinetype(AcDbLinetypeTable& table, const Linetype& linetype) {
  auto record = std::make_unique<AcDbLinetypeTableRecord>();
  const Acad::ErrorStatus named = record->setName(host::text::fromUtf8(linetype.name).c_str());
  if (named != Acad::eOk) return named;
  record->setComments(host::text::fromUtf8(linetype.description).c_str());
  record->setNumDashes(static_cast<int>(linetype.dashes.size()));
  double length = 0;
  for (std::size_t i = 0; i < linetype.dashes.size(); ++i) {
    record->setDashLengthAt(static_cast<int>(i), linetype.dashes[i]);
    length += std::abs(linetype.dashes[i]);
  }
  record->setPatternLength(length);
  const Acad::ErrorStatus added = table.add(record.get());
  if (added != Acad::eOk) return added;
  return record.release()->close();  // the table owns it now
}

}  // namespace

Acad::ErrorStatus acdbLoadLineTypeFile(const ACHAR* name, const ACHAR* fileName, AcDbDatabase* db) {
  if (name == nullptr || fileName == nullptr || *name == 0) return Acad::eInvalidInput;
  if (db == nullptr) return Acad::eNoDatabase;
  const std::optional<std::filesystem::path> path = host::hatching::findSupportFile(fileName, db, false);
  if (!path) return Acad::eFileNotFound;
  static host::hatching::DefinitionFiles<Linetype> files(host::hatching::parseLinetypeFile);
  const auto all = files.read(*path);
  if (all == nullptr) return Acad::eFileAccessErr;

  const std::wstring_view wanted(name);
  const bool isWildcard = wanted.find_first_of(L"*?") != std::wstring_view::npos;
  std::vector<Linetype> linetypes;
  for (const Linetype& linetype : *all) {
    const std::wstring wide = host::text::fromUtf8(linetype.name);
    const bool isWanted =
        isWildcard ? host::text::matchesWildcard(wide, wanted) : host::text::equalFolded(wide, wanted);
    if (isWanted) linetypes.push_back(linetype);
  }
  if (linetypes.empty()) return Acad::eUndefinedLineType;

  AcDbObjectPointer<AcDbLinetypeTable> table(db->linetypeTableId(), AcDb::kForWrite);
  if (table.openStatus() != Acad::eOk) return table.openStatus();
  for (const Linetype& linetype : linetypes) {
    const bool isLoaded = table->has(host::text::fromUtf8(linetype.name).c_str());
    const Acad::ErrorStatus status = isLoaded ? Acad::eDuplicateRecordName : addLinetype(*table, linetype);
    if (!isWildcard) return status;
    if (status != Acad::eOk && status != Acad::eDuplicateRecordName) return status;
  }
  return Acad::eOk;
}
