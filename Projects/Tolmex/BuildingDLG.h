// The dialog of a building's properties.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/ParentWindow.h"
#include "OrvLib/ARX/Resources.h"
#include "Tolmex/BuildingForm.h"
#include "Tolmex/Model/BuildingRecord.h"

namespace OrvLib {

/// The modal dialog "Rakennuksen ominaisuudet". It changes nothing but its own values.
class BuildingDLG : public CAcUiDialog {
 public:
  BuildingDLG(const BuildingForm& form, bool offerRidgeButton, CWnd* parent = parentWindow(),
              HINSTANCE resources = moduleInstance());

  /// What the user accepted.
  BuildingForm form() const;
  /// The roof colours at the last OK, whether it was accepted or a number refused; nothing before the first.
  const std::optional<RoofColours>& chosenColours() const { return chosenColours_; }

 protected:
  void DoDataExchange(CDataExchange* exchange) override;
  BOOL OnInitDialog() override;
  void OnOK() override;

  afx_msg LRESULT onKeepFocus(WPARAM, LPARAM) { return TRUE; }
  afx_msg int OnCreate(LPCREATESTRUCT create) { return CAcUiDialog::OnCreate(create); }
  /// Esc, and anything that is no ridge line, takes a ridge line chosen before away: so the prompt says.
  afx_msg void onPickRidge();

  DECLARE_MESSAGE_MAP()

 private:
  struct Field;
  static const std::array<Field, 4> kFields;

  bool askRidgeHeight();
  void showRidgeStatus();
  void takeRoofColours();

  CAcUiColorComboBox shadedRoofColourCombo;
  CAcUiColorComboBox sunlitRoofColourCombo;
  CAcUiNumericEdit floorHeightEdit;
  CAcUiNumericEdit floorsEdit;
  CAcUiNumericEdit eavesWidthEdit;
  CAcUiNumericEdit baseHeightEdit;
  CButton ridgeButton;
  std::wstring floorsText;
  std::wstring eavesWidthText;
  std::wstring floorHeightText;
  std::wstring baseHeightText;
  int shadedRoofColour;
  int sunlitRoofColour;
  double ridgeHeight;
  CStatic ridgeStatus;
  bool hasRidge;
  bool offerRidgeButton;
  AcDbObjectId ridgeLineId;
  std::optional<RoofColours> chosenColours_;
};

}  // namespace OrvLib
