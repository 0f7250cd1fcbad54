// The dialog of a building's properties.
#pragma once

#include <array>
#include <string>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/ParentWindow.h"
#include "OrvLib/ARX/Resources.h"

namespace OrvLib {

/// The ridge line chosen in the dialog.
struct RidgeChoice {
  bool hasRidge = false;
  AcDbObjectId ridgeLineId;
  double ridgeHeight = 0;  // above the eaves, drawing units
};

/// The modal dialog "Rakennuksen ominaisuudet". Once the user has accepted it, the numbers and roof colours are in the
/// current document's data; the ridge line stays here.
class BuildingDLG : public CAcUiDialog {
 public:
  /// `building` is the building being edited, or null for new ones: those start from what was accepted last in any
  /// drawing.
  BuildingDLG(AcDbObjectId building, bool offerRidgeButton, CWnd* parent = parentWindow(),
              HINSTANCE resources = moduleInstance());

  RidgeChoice ridge() const { return {hasRidge, ridgeLineId, ridgeHeight}; }

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
  static constexpr int kNotChosen = -1;

  struct Field;
  static const std::array<Field, 4> kFields;

  void readBuilding(AcDbObjectId building);
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
  int shadedRoofColour = kNotChosen;
  int sunlitRoofColour = kNotChosen;
  double ridgeHeight = 0;
  CStatic ridgeStatus;
  bool hasRidge = false;
  bool offerRidgeButton;
  AcDbObjectId ridgeLineId;
};

}  // namespace OrvLib
