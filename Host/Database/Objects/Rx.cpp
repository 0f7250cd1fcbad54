// AcRxClass, AcGiDrawable, AcDbDatabaseReactor: run-time class information; the names of statuses.
#include <iterator>

#include "acestext.h"
#include "dbmain.h"
#include "rxboiler.h"
#include "rxclass.h"

AcRxObject::~AcRxObject() = default;

AcRxClass* AcRxObject::desc() {
  static AcRxClass* const description = new AcRxClass(ACRX_T("AcRxObject"), nullptr);
  return description;
}
AcRxClass* AcRxObject::isA() const { return AcRxObject::desc(); }

bool AcRxObject::isKindOf(const AcRxClass* base) const { return isA()->isDerivedFrom(base); }

bool AcRxClass::isDerivedFrom(const AcRxClass* base) const {
  for (const AcRxClass* type = this; type != nullptr; type = type->parent_) {
    if (type == base) return true;
  }
  return false;
}

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxClass, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcGiDrawable, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDatabaseReactor, AcRxObject)

namespace {

struct StatusName {
  Acad::ErrorStatus status;
  const ACHAR* name;
};

#define STATUS(name) \
  { Acad::name, ACRX_T(#name) }
constexpr StatusName kStatusNames[] = {STATUS(eOk),
                                       STATUS(eNotImplementedYet),
                                       STATUS(eNotApplicable),
                                       STATUS(eInvalidInput),
                                       STATUS(eAmbiguousInput),
                                       STATUS(eAmbiguousOutput),
                                       STATUS(eOutOfMemory),
                                       STATUS(eBufferTooSmall),
                                       STATUS(eInvalidOpenState),
                                       STATUS(eBrokenHandle),
                                       STATUS(eContainerNotEmpty),
                                       STATUS(eNullObjectPointer),
                                       STATUS(eNullObjectId),
                                       STATUS(eNotThatKindOfClass),
                                       STATUS(eNotAnEntity),
                                       STATUS(eWrongObjectType),
                                       STATUS(eNotInDatabase),
                                       STATUS(eAlreadyInDb),
                                       STATUS(eNoDatabase),
                                       STATUS(eKeyNotFound),
                                       STATUS(eDuplicateKey),
                                       STATUS(eDuplicateRecordName),
                                       STATUS(eInvalidIndex),
                                       STATUS(eDeletedEntry),
                                       STATUS(eUnknownHandle),
                                       STATUS(eInvalidKey),
                                       STATUS(eAnonymousEntry),
                                       STATUS(eNotInBlock),
                                       STATUS(eInvalidDxfCode),
                                       STATUS(eBadDxfSequence),
                                       STATUS(eFilerError),
                                       STATUS(eRegappIdNotFound),
                                       STATUS(eXdataSizeExceeded),
                                       STATUS(eWasErased),
                                       STATUS(ePermanentlyErased),
                                       STATUS(eWasOpenForRead),
                                       STATUS(eWasOpenForWrite),
                                       STATUS(eWasOpenForNotify),
                                       STATUS(eWasOpenForUndo),
                                       STATUS(eWasNotifying),
                                       STATUS(eHadMultipleReaders),
                                       STATUS(eNotOpenForRead),
                                       STATUS(eNotOpenForWrite),
                                       STATUS(eAtMaxReaders),
                                       STATUS(eLockViolation),
                                       STATUS(eOnLockedLayer),
                                       STATUS(eInvalidLayer),
                                       STATUS(eNotNewlyCreated),
                                       STATUS(eCloseWasNotifying),
                                       STATUS(eCloseModifyAborted),
                                       STATUS(eClosePartialFailure),
                                       STATUS(eCloseFailObjectDamaged),
                                       STATUS(eCannotBeErasedByCaller),
                                       STATUS(eDegenerateGeometry),
                                       STATUS(eSelfReference),
                                       STATUS(eHatchTooDense),
                                       STATUS(eBadLayerName),
                                       STATUS(eBadColorIndex),
                                       STATUS(eBadLinetypeName),
                                       STATUS(eBadLinetypeScale),
                                       STATUS(eBadLineWeightValue),
                                       STATUS(eBadColor),
                                       STATUS(eUndefinedLineType),
                                       STATUS(eAlreadyInGroup),
                                       STATUS(eFileNotFound),
                                       STATUS(eNotAcadFile),
                                       STATUS(eBadDwgHeader),
                                       STATUS(eFileAccessErr),
                                       STATUS(eCantOpenFile),
                                       STATUS(eBadDxfFile),
                                       STATUS(eUserBreak)};
#undef STATUS

}  // namespace

const ACHAR* acadErrorStatusText(Acad::ErrorStatus status) {
  for (const StatusName& entry : kStatusNames) {
    if (entry.status == status) return entry.name;
  }
  return ACRX_T("Unknown status");
}
