// Dialogs and controls that know the drawing.
#pragma once

#include "adui.h"

class ADESK_EXPORT CAcUiDialog : public CAdUiDialog {
 public:
  using CAdUiDialog::CAdUiDialog;

  /// Hides the dialog, so that the drawing can be asked.
  void BeginEditorCommand();
  /// Ends that; TRUE shows the dialog again.
  void CompleteEditorCommand(BOOL restoreDialogs = TRUE);
  /// Ends that and the dialog with IDCANCEL.
  void CancelEditorCommand();
};

class ADESK_EXPORT CAcUiEdit : public CAdUiEdit {};

/// A number: decimal, with or without an exponent, "." as the decimal mark. The whole text must be one.
class ADESK_EXPORT CAcUiNumericEdit : public CAcUiEdit {
 public:
  BOOL Validate() override;

 protected:
  void PreSubclassWindow() override;
};

/// An angle in degrees, as a decimal number.
class ADESK_EXPORT CAcUiAngleEdit : public CAcUiEdit {
 public:
  BOOL Validate() override;

 protected:
  void PreSubclassWindow() override;
};

class ADESK_EXPORT CAcUiComboBox : public CAdUiComboBox {};

class ADESK_EXPORT CAcUiMRUComboBox : public CAcUiComboBox {
 public:
  CAcUiMRUComboBox() = default;
  /// Whether the list begins with "ByLayer" and "ByBlock". Call before the control is bound.
  void SetUseByLayer(BOOL use) { usesByLayer_ = use != FALSE; }
  void SetUseByBlock(BOOL use) { usesByBlock_ = use != FALSE; }
  BOOL GetUseByLayer() const { return usesByLayer_ ? TRUE : FALSE; }
  BOOL GetUseByBlock() const { return usesByBlock_ ? TRUE : FALSE; }

 private:
  bool usesByLayer_ = true;
  bool usesByBlock_ = true;
};

/// A drop-down list of colours with swatches: by layer, by block, the seven standard colours, those used recently, and
/// "Select Color...", which asks for any index.
class ADESK_EXPORT CAcUiColorComboBox : public CAcUiMRUComboBox {
 public:
  /// The item of the colour, added when it is not there yet; -1 for what is no colour of this list.
  int AddColorToMRU(int colorIndex);
  /// Colour index of the selected item; -1 without a selection.
  int GetCurrentItemColorIndex();
  int GetItemColorIndex(int item);
  /// -1 when the colour is not in the list.
  int FindItemByColorIndex(int colorIndex);

  void DrawItem(LPDRAWITEMSTRUCT draw) override;

 protected:
  void PreSubclassWindow() override;
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
  BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) override;

 private:
  int insertColor(int at, LPCWSTR text, int colorIndex);
  void askForColor();

  int selectedColor_ = -1;  // to go back to when "Select Color..." is cancelled
};
