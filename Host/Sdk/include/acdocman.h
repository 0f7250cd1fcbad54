// Open drawings.
#pragma once

#include "accmd.h"
#include "acedinpt.h"
#include "dbmain.h"

struct AcAp {
  enum DocLockMode {
    kNone = 0x00,
    kAutoWrite = 0x01,
    kNotLocked = 0x02,
    kWrite = 0x04,
    kProtectedAutoWrite = 0x14,
    kRead = 0x20,
    kXWrite = 0x40
  };
};

class ADESK_EXPORT AcApDocument : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcApDocument);

 public:
  virtual AcDbDatabase* database() const = 0;
  virtual const ACHAR* fileName() const = 0;
  virtual AcEdInputPointManager* inputPointManager() const = 0;
  virtual AcAp::DocLockMode myLockMode() const = 0;
};

/// Told what happens to documents; not owned by the manager.
class ADESK_EXPORT AcApDocManagerReactor : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcApDocManagerReactor);

 public:
  virtual void documentCreateStarted(AcApDocument*) {}
  /// The new document need not be the current one yet.
  virtual void documentCreated(AcApDocument*) {}
  virtual void documentToBeDestroyed(AcApDocument*) {}
  virtual void documentDestroyed(const ACHAR*) {}
  virtual void documentCreateCanceled(AcApDocument*) {}
  virtual void documentBecameCurrent(AcApDocument*) {}
  virtual void documentToBeActivated(AcApDocument*) {}
  virtual void documentToBeDeactivated(AcApDocument*) {}
  virtual void documentActivated(AcApDocument*) {}
};

class ADESK_EXPORT AcApDocManager : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcApDocManager);

 public:
  /// The document of the running command or notification; null when no drawing is open.
  virtual AcApDocument* curDocument() const = 0;
  virtual AcApDocument* mdiActiveDocument() const = 0;
  virtual AcApDocument* document(const AcDbDatabase* db) const = 0;
  virtual void addReactor(AcApDocManagerReactor* reactor) = 0;
  virtual void removeReactor(AcApDocManagerReactor* reactor) = 0;
  /// Locks nest; each needs its unlock.
  virtual Acad::ErrorStatus lockDocument(AcApDocument* document, AcAp::DocLockMode mode = AcAp::kWrite,
                                         const ACHAR* globalCommand = nullptr, const ACHAR* localCommand = nullptr,
                                         bool prompt = true) = 0;
  virtual Acad::ErrorStatus unlockDocument(AcApDocument* document) = 0;
  /// A stack of resource handles; MFC looks dialogs and strings up in the top one.
  virtual void pushResourceHandle(HINSTANCE resources) = 0;
  virtual void popResourceHandle() = 0;
};

ADESK_EXPORT AcApDocManager* acDocManagerPtr();
#define acDocManager acDocManagerPtr()
/// Database of the current document.
ADESK_EXPORT AcDbDatabase* acdbCurDwg();
