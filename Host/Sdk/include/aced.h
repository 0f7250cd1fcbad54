// The editor and its reactors.
#pragma once

#include <windef.h>

#include "acedads.h"
#include "rxdict.h"

class ADESK_EXPORT AcRxEventReactor : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcRxEventReactor);
};

/// Told what happens in the editor; not owned by it.
class ADESK_EXPORT AcEditorReactor : public AcRxEventReactor {
  ACRX_DECLARE_MEMBERS(AcEditorReactor);

 public:
  virtual void commandWillStart(const ACHAR*) {}
  virtual void commandEnded(const ACHAR*) {}
  virtual void commandCancelled(const ACHAR*) {}
  virtual void commandFailed(const ACHAR*) {}
  /// After the switch: "Model" or the name of a paper layout.
  virtual void layoutSwitched(const ACHAR*) {}
  virtual void pickfirstModified() {}
  virtual void sysVarChanged(const ACHAR*, Adesk::Boolean) {}
};

class ADESK_EXPORT AcEditor : public AcRxObject {
  ACRX_DECLARE_MEMBERS(AcEditor);

 public:
  /// Adding twice is ignored.
  virtual void addReactor(AcEditorReactor* reactor) = 0;
  virtual void removeReactor(AcEditorReactor* reactor) = 0;
};

#define ACED_EDITOR_OBJ ACRX_T("AcEditor")
#define acedEditor AcEditor::cast(acrxSysRegistry()->at(ACED_EDITOR_OBJ))

/// Colours of the display, COLORREF values.
struct AcColorSettings {
  std::uint32_t dwGfxModelBkColor = 0;
  std::uint32_t dwGfxLayoutBkColor = 0;
  std::uint32_t dwParallelBkColor = 0;
  std::uint32_t dwBEditBkColor = 0;
  std::uint32_t dwCmdLineBkColor = 0;
  std::uint32_t dwPlotPrevBkColor = 0;
};

/// Non-zero on success.
ADESK_EXPORT int acedGetCurrentColors(AcColorSettings* colors);
ADESK_EXPORT int acedSetCurrentColors(const AcColorSettings* colors);
