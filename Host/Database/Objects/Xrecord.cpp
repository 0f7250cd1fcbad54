// AcDbXrecord.
#include "Database/ObjectAccess.h"
#include "Database/ResbufTypes.h"
#include "acutads.h"
#include "dbxrecrd.h"

using host::database::addValue;
using host::database::Chain;
using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Record;
using host::database::Slot;
using host::database::Tag;
using host::database::TagCursor;
using host::database::TagWriter;
using host::database::ValueKind;
using host::database::valueKind;
using host::database::writeValue;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbXrecord, AcDbObject)

namespace {

[[maybe_unused]] const bool registered = host::database::registerClass(
    {DxfType::XRecord, &AcDbXrecord::desc, []() -> AcDbObject* { return new AcDbXrecord; }});

constexpr std::string_view kXrecord = "AcDbXrecord";

/// Entity and object names in chains are ids; in records they are handles.
void writeXrecordItem(TagWriter& out, const resbuf& item) {
  if (writeValue(out, item) || valueKind(item.restype) != ValueKind::Name) return;
  AcDbObjectId id;
  acdbGetObjectId(id, item.resval.rlname);
  out.handle(item.restype, id.handle());
}

/// Tag number where the data begin: behind the subclass marker and its merge flag.
std::size_t xrecordDataBegin(const AcDbObject& object) {
  std::size_t number = 0;
  bool inside = false;
  Tag tag;
  for (TagCursor cursor = HostObjectAccess::tags(object); cursor.next(tag); ++number) {
    if (inside) return tag.code == 280 ? number + 1 : number;
    inside = tag.code == 100 && tag.trimmed() == kXrecord;
  }
  return number;
}

}  // namespace

AcDbXrecord::AcDbXrecord() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(*this, "XRECORD", false, TagWriter(codec).raw(100, kXrecord).integer(280, 1).take());
}

Acad::ErrorStatus AcDbXrecord::rbChain(resbuf** chain, AcDbDatabase*) const {
  if (chain == nullptr) return Acad::eNullObjectPointer;
  const std::size_t begin = xrecordDataBegin(*this);
  const host::text::Codec& codec = HostObjectAccess::codec(*this);
  DrawingDatabase* const db = HostObjectAccess::database(*this);
  Chain items;
  std::size_t number = 0;
  Tag tag;
  for (TagCursor cursor = HostObjectAccess::tags(*this); cursor.next(tag) && tag.code < 1000; ++number) {
    if (number < begin) continue;
    const std::size_t taken = addValue(items, tag, cursor, codec);
    if (taken > 1) number += taken - 1;
    if (taken == 0 && valueKind(tag.code) == ValueKind::Name) {
      Slot* const slot = db != nullptr ? db->findHandle(tag.handle()) : nullptr;
      items.add(tag.code)->resval.rlname[0] = AcDbObjectId(slot).asOldId();
    }
  }
  *chain = items.release();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf& chain, AcDbDatabase*) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  TagWriter out = HostObjectAccess::tagWriter(*this);
  for (const resbuf* item = &chain; item != nullptr; item = item->rbnext) {
    const ValueKind kind = valueKind(item->restype);
    if (item->restype < 1 || item->restype > 369 || item->restype == 5 || item->restype == 105 ||
        kind == ValueKind::Unknown || kind == ValueKind::None || kind == ValueKind::Binary) {
      return Acad::eInvalidDxfCode;
    }
    writeXrecordItem(out, *item);
  }
  const std::size_t begin = xrecordDataBegin(*this);
  Record& record = HostObjectAccess::editRecord(*this);
  const std::size_t end = host::database::layoutOf(record).xdata;
  record.replace(begin, end - begin, HostObjectAccess::keep(*this, out.take()));
  return Acad::eOk;
}
