#include "XDataValues.h"

#include <memory>

#include "OrvLib/ARX/DataChain.h"
#include "Text/Text.h"
#include "acutads.h"
#include "dbobjptr.h"

namespace tolmex {

using host::database::DrawingDatabase;
using host::database::Slot;
using host::database::Tag;
using host::database::TagCursor;

namespace {

/// Most entities have no data of the application: that is seen without opening them.
bool hasData(const Slot& slot, const DrawingDatabase& drawing, const wchar_t* application) {
  constexpr int kApplicationCode = 1001;
  Tag tag;
  for (TagCursor cursor = slot.tags(); cursor.next(tag);) {
    if (tag.code == kApplicationCode && host::text::equalFolded(drawing.codec().decode(tag.value), application))
      return true;
  }
  return false;
}

}  // namespace

OrvLib::DataItems extendedData(const Slot& slot, const DrawingDatabase& drawing, const wchar_t* application) {
  if (!hasData(slot, drawing, application)) return {};
  const AcDbObjectPointer<AcDbObject> object(AcDbObjectId(const_cast<Slot*>(&slot)), AcDb::kForRead);
  if (object.openStatus() != Acad::eOk) return {};
  const std::unique_ptr<resbuf, int (*)(resbuf*)> chain(object->xData(application), &acutRelRb);
  return OrvLib::itemsOf(chain.get());
}

}  // namespace tolmex
