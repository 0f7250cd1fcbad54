#include "Tolmex/BuildingDLG.h"

#include <optional>

#include "OrvLib/DataStruct/Ordering.h"
#include "OrvLib/Reports/Failures.h"
#include "Tolmex/DialogFields.h"
#include "Tolmex/EntityTag.h"
#include "Tolmex/Model/Catalogue.h"
#include "Tolmex/Resource.h"

namespace OrvLib {
namespace {

constexpr double kDefaultRidgeHeight = 2.5;  // of an empty answer

}  // namespace

/// A number of the building.
struct BuildingDLG::Field {
  int id;
  CAcUiNumericEdit BuildingDLG::*edit;
  std::wstring BuildingDLG::*text;
  const wchar_t* refusal;
};

// In the order of checking.
const std::array<BuildingDLG::Field, 4> BuildingDLG::kFields{{
    {IDC_FLOORS, &BuildingDLG::floorsEdit, &BuildingDLG::floorsText, L"Kirjoita kerroksien lukumäärä."},
    {IDC_FLOOR_HEIGHT, &BuildingDLG::floorHeightEdit, &BuildingDLG::floorHeightText, L"Kirjoita kerroskorkeus."},
    {IDC_EAVES_WIDTH, &BuildingDLG::eavesWidthEdit, &BuildingDLG::eavesWidthText, L"Kirjoita räystäsleveys."},
    {IDC_BASE_HEIGHT, &BuildingDLG::baseHeightEdit, &BuildingDLG::baseHeightText, L"Kirjoita sokkelikorkeus."},
}};

BEGIN_MESSAGE_MAP(BuildingDLG, CAcUiDialog)
ON_MESSAGE(WM_ACAD_KEEPFOCUS, &BuildingDLG::onKeepFocus)
ON_BN_CLICKED(IDC_PICK_RIDGE, &BuildingDLG::onPickRidge)
ON_WM_CREATE()
END_MESSAGE_MAP()

BuildingDLG::BuildingDLG(const BuildingForm& form, bool offersButton, CWnd* parent, HINSTANCE resources)
    : CAcUiDialog(IDD_BUILDING, parent, resources),
      floorsText(form.floorsText),
      eavesWidthText(form.eavesWidthText),
      floorHeightText(form.floorHeightText),
      baseHeightText(form.baseHeightText),
      shadedRoofColour(form.shadedRoofColour),
      sunlitRoofColour(form.sunlitRoofColour),
      ridgeHeight(form.ridge.ridgeHeight),
      hasRidge(form.ridge.hasRidge),
      offerRidgeButton(offersButton),
      ridgeLineId(form.ridge.ridgeLineId) {}

BuildingForm BuildingDLG::form() const {
  return {floorsText,
          eavesWidthText,
          floorHeightText,
          baseHeightText,
          shadedRoofColour,
          sunlitRoofColour,
          {hasRidge, ridgeLineId, ridgeHeight}};
}

void BuildingDLG::DoDataExchange(CDataExchange* exchange) {
  CAcUiDialog::DoDataExchange(exchange);
  DDX_Control(exchange, IDC_ROOF_SHADED, shadedRoofColourCombo);
  DDX_Control(exchange, IDC_ROOF_SUNLIT, sunlitRoofColourCombo);
  for (const Field& field : kFields) DDX_Control(exchange, field.id, this->*field.edit);
  DDX_Control(exchange, IDC_RIDGE_STATUS, ridgeStatus);
  DDX_Control(exchange, IDC_PICK_RIDGE, ridgeButton);
}

BOOL BuildingDLG::OnInitDialog() {
  CAcUiDialog::OnInitDialog();
  guarded([this] {
    for (const Field& field : kFields) (this->*field.edit).SetWindowText((this->*field.text).c_str());
    showRidgeStatus();
    selectColor(shadedRoofColourCombo, shadedRoofColour);
    selectColor(sunlitRoofColourCombo, sunlitRoofColour);
    if (!offerRidgeButton) {
      ridgeButton.ShowWindow(SW_HIDE);
      ridgeStatus.ShowWindow(SW_HIDE);
    }
  });
  return TRUE;
}

void BuildingDLG::OnOK() {
  guarded([this] {
    takeRoofColours();
    for (const Field& field : kFields) {
      if (!hasNumber(this->*field.edit)) return refuseField(this->*field.edit, field.refusal);
    }
    for (const Field& field : kFields) this->*field.text = fieldText(this->*field.edit);
    EndDialog(IDOK);
  });
}

/// Before any check: the colours stay chosen even if the dialog is cancelled afterwards.
void BuildingDLG::takeRoofColours() {
  const int sunlit = sunlitRoofColourCombo.GetCurrentItemColorIndex();
  const int shaded = shadedRoofColourCombo.GetCurrentItemColorIndex();
  if (sunlit >= 0) sunlitRoofColour = sunlit;
  if (shaded >= 0) shadedRoofColour = shaded;
  chosenColours_ = RoofColours{shadedRoofColour, sunlitRoofColour};
}

void BuildingDLG::onPickRidge() {
  guarded([this] {
    BeginEditorCommand();
    ads_name picked = {0, 0};
    ads_point at = {0, 0, 0};
    AcDbObjectId id;
    const bool isPicked =
        acedEntSel(L"\nValitse rakennuksen harjaviiva tai paina <esc>, jos rakennuksella ei ole harjaa:", picked, at) ==
            RTNORM &&
        acdbGetObjectId(id, picked) == Acad::eOk;
    const auto category = isPicked ? readCategory(id) : std::nullopt;
    hasRidge = category && equalsIgnoringCase(*category, row(Category::RidgeLine).tag) && askRidgeHeight();
    ridgeLineId = id;
    showRidgeStatus();
    CompleteEditorCommand(TRUE);
  });
}

bool BuildingDLG::askRidgeHeight() {
  ads_real height = 0;
  const int result = acedGetReal(L"\nAnna harjan korkeus metreinä [2.5]:", &height);
  if (result == RTNORM) ridgeHeight = height;
  if (result == RTNONE) ridgeHeight = kDefaultRidgeHeight;
  return result == RTNORM || result == RTNONE;
}

void BuildingDLG::showRidgeStatus() {
  const std::wstring text =
      hasRidge ? L"Harjaviiva määritetty (" + formatNumber(ridgeHeight) + L" m)." : L"Ei määritelty harjaviivaa.";
  ridgeStatus.SetWindowText(text.c_str());
}

}  // namespace OrvLib
