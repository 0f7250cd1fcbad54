// AcDbTextStyleTableRecord, AcDbRegAppTableRecord: records that plug-ins only make and name.
#include "Database/ObjectAccess.h"
#include "dbsymtb.h"

using host::database::DxfType;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbRegAppTableRecord, AcDbSymbolTableRecord)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord)

namespace {

[[maybe_unused]] const bool registered =
    host::database::registerClass(
        {DxfType::AppId, &AcDbRegAppTableRecord::desc, []() -> AcDbObject* { return new AcDbRegAppTableRecord; }}) &&
    host::database::registerClass({DxfType::TextStyle, &AcDbTextStyleTableRecord::desc,
                                   []() -> AcDbObject* { return new AcDbTextStyleTableRecord; }});

}  // namespace

AcDbRegAppTableRecord::AcDbRegAppTableRecord() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(*this, "APPID", false,
                                 TagWriter(codec).raw(100, "AcDbRegAppTableRecord").raw(2, "").integer(70, 0).take());
}

AcDbTextStyleTableRecord::AcDbTextStyleTableRecord() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(*this, "STYLE", false,
                                 TagWriter(codec)
                                     .raw(100, "AcDbTextStyleTableRecord")
                                     .raw(2, "")
                                     .integer(70, 0)
                                     .real(40, 0)
                                     .real(41, 1)
                                     .real(50, 0)
                                     .integer(71, 0)
                                     .real(42, 2.5)
                                     .raw(3, "txt")
                                     .raw(4, "")
                                     .take());
}
