// The command stack.
#pragma once

#include <windef.h>

#include "rxdict.h"

class AcEdUIContext;
class AcEdCommand;
using AcRxFunctionPtr = void (*)();

enum : Adesk::Int32 {
  ACRX_CMD_MODAL = 0x0,
  ACRX_CMD_TRANSPARENT = 0x1,
  ACRX_CMD_USEPICKSET = 0x2,
  ACRX_CMD_REDRAW = 0x4,
  ACRX_CMD_NOPERSPECTIVE = 0x8,
  ACRX_CMD_NOMULTIPLE = 0x10,
  ACRX_CMD_NOTILEMODE = 0x20,
  ACRX_CMD_NOPAPERSPACE = 0x40,
  ACRX_CMD_UNDEFINED = 0x200,
  ACRX_CMD_INPROGRESS = 0x400,
  ACRX_CMD_DEFUN = 0x800,
  ACRX_CMD_NOINTERNALLOCK = 0x20000,
  ACRX_CMD_DOCREADLOCK = 0x80000,
  ACRX_CMD_DOCEXCLUSIVELOCK = 0x100000,
  ACRX_CMD_SESSION = 0x200000,
  ACRX_CMD_INTERRUPTIBLE = 0x400000,
  ACRX_CMD_NOHISTORY = 0x800000,
  ACRX_CMD_NO_UNDO_MARKER = 0x1000000,
};

class ADESK_EXPORT AcEdCommand : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcEdCommand);

 public:
  virtual const ACHAR* globalName() const = 0;
  virtual const ACHAR* localName() const = 0;
  virtual const ACHAR* groupName() const = 0;
  virtual Adesk::Int32 commandFlags() const = 0;
  virtual AcRxFunctionPtr functionAddr() const = 0;
};

class ADESK_EXPORT AcEdCommandStack : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcEdCommandStack);

 public:
  /// The group is made on demand. eDuplicateKey for a global or local name already in that group.
  virtual Acad::ErrorStatus addCommand(const ACHAR* group, const ACHAR* globalName, const ACHAR* localName,
                                       Adesk::Int32 flags, AcRxFunctionPtr function, AcEdUIContext* ui = nullptr,
                                       int fcode = -1, HINSTANCE resources = nullptr,
                                       AcEdCommand** command = nullptr) = 0;
  /// eKeyNotFound.
  virtual Acad::ErrorStatus removeCmd(const ACHAR* group, const ACHAR* globalName) = 0;
  /// eKeyNotFound.
  virtual Acad::ErrorStatus removeGroup(const ACHAR* group) = 0;
  /// Null when unknown. A leading "_" asks for the global name.
  virtual AcEdCommand* lookupCmd(const ACHAR* name, bool globalLookup, bool allGroups = false) const = 0;
};

#define ACRX_COMMAND_DOCK ACRX_T("ACAD_REGISTERED_COMMANDS")
#define acedRegCmds AcEdCommandStack::cast(acrxSysRegistry()->at(ACRX_COMMAND_DOCK))
