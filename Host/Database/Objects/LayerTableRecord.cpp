// AcDbLayerTableRecord.
#include <cstdlib>

#include "Database/ObjectAccess.h"
#include "dbapserv.h"
#include "dbents.h"
#include "dbsymtb.h"

using host::database::DxfType;
using host::database::spelledInteger;
using host::database::Tag;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord)

namespace {

constexpr std::string_view kLayer = "AcDbLayerTableRecord";

[[maybe_unused]] const bool registered = host::database::registerClass(
    {DxfType::Layer, &AcDbLayerTableRecord::desc, []() -> AcDbObject* { return new AcDbLayerTableRecord; }});

int flagsOf(const AcDbObject& record) {
  Tag tag;
  return HostObjectAccess::findTag(record, "", 70, tag) ? static_cast<int>(tag.integer()) : 0;
}

/// Value of an integer tag of a record, or what its absence means.
std::int64_t integerOf(const AcDbObject& record, std::string_view subclass, int code, std::int64_t missing) {
  Tag tag;
  return HostObjectAccess::findTag(record, subclass, code, tag) ? tag.integer() : missing;
}

void setInteger(AcDbObject& record, std::string_view subclass, int code, std::int64_t value) {
  if (!HostObjectAccess::canWrite(record) || integerOf(record, subclass, code, value + 1) == value) return;
  HostObjectAccess::setTag(record, subclass, code, spelledInteger(code, value));
}

}  // namespace

AcDbLayerTableRecord::AcDbLayerTableRecord() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(*this, "LAYER", false,
                                 TagWriter(codec)
                                     .raw(100, kLayer)
                                     .raw(2, "")
                                     .integer(70, 0)
                                     .integer(62, 7)
                                     .raw(6, "Continuous")
                                     .integer(370, AcDb::kLnWtByLwDefault)
                                     .take());
}

AcCmColor AcDbLayerTableRecord::color() const {
  AcCmColor color;
  Tag tag;
  if (HostObjectAccess::findTag(*this, kLayer, 420, tag)) {
    const std::int64_t rgb = tag.integer();
    color.setRGB(static_cast<Adesk::UInt8>(rgb >> 16), static_cast<Adesk::UInt8>(rgb >> 8),
                 static_cast<Adesk::UInt8>(rgb));
  } else {
    color.setColorIndex(static_cast<Adesk::UInt16>(std::abs(integerOf(*this, "", 62, 7)) & 0x1FF));
  }
  return color;
}

void AcDbLayerTableRecord::setColor(const AcCmColor& color) {
  if (!HostObjectAccess::canWrite(*this) || color == this->color()) return;
  HostObjectAccess::removeTag(*this, kLayer, 430);
  if (color.isByColor()) {
    HostObjectAccess::setTag(*this, kLayer, 420,
                             spelledInteger(420, (color.red() << 16) | (color.green() << 8) | color.blue()));
  } else {
    HostObjectAccess::removeTag(*this, kLayer, 420);
  }
  setInteger(*this, kLayer, 62, isOff() ? -color.colorIndex() : color.colorIndex());
}

bool AcDbLayerTableRecord::isOff() const { return integerOf(*this, "", 62, 7) < 0; }

void AcDbLayerTableRecord::setIsOff(bool off) {
  if (off == isOff()) return;
  setInteger(*this, kLayer, 62, -integerOf(*this, "", 62, 7));
}

bool AcDbLayerTableRecord::isFrozen() const { return (flagsOf(*this) & 1) != 0; }

Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (frozen && slot_ != nullptr && database()->clayer() == objectId()) return Acad::eInvalidLayer;
  setInteger(*this, kLayer, 70, frozen ? flagsOf(*this) | 1 : flagsOf(*this) & ~1);
  return Acad::eOk;
}

bool AcDbLayerTableRecord::isLocked() const { return (flagsOf(*this) & 4) != 0; }

void AcDbLayerTableRecord::setIsLocked(bool locked) {
  setInteger(*this, kLayer, 70, locked ? flagsOf(*this) | 4 : flagsOf(*this) & ~4);
}

bool AcDbLayerTableRecord::isPlottable() const { return integerOf(*this, kLayer, 290, 1) != 0; }

Acad::ErrorStatus AcDbLayerTableRecord::setIsPlottable(bool plottable) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (plottable != isPlottable()) setInteger(*this, kLayer, 290, plottable ? 1 : 0);
  return Acad::eOk;
}

int AcDbLayerTableRecord::lineWeight() const {
  return static_cast<int>(integerOf(*this, kLayer, 370, AcDb::kLnWtByLwDefault));
}

Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(int weight) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (weight < AcDb::kLnWtByLwDefault || weight > 211) return Acad::eBadLineWeightValue;
  setInteger(*this, kLayer, 370, weight);
  return Acad::eOk;
}

AcDbObjectId AcDbLayerTableRecord::linetypeObjectId() const {
  AcDbDatabase* db = database();
  if (db == nullptr) db = acdbHostApplicationServices()->workingDatabase();
  Tag tag;
  if (db == nullptr || !HostObjectAccess::findTag(*this, "", 6, tag)) return AcDbObjectId::kNull;
  return AcDbObjectId(
      db->hostDatabase().findRecord(DxfType::LineType, HostObjectAccess::codec(*this).decode(tag.value)));
}

Acad::ErrorStatus AcDbLayerTableRecord::setLinetypeObjectId(AcDbObjectId linetype) {
  if (linetype.isNull()) return Acad::eNullObjectId;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (linetype.slot()->type != DxfType::LineType) return Acad::eWrongObjectType;
  if (linetypeObjectId() == linetype) return Acad::eOk;
  HostObjectAccess::setTag(
      *this, kLayer, 6,
      HostObjectAccess::codec(*this).encode(linetype.slot()->database().recordName(*linetype.slot())));
  return Acad::eOk;
}
