#include "Tolmex/BuildingDLG.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "OrvLib/ARX/Failures.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/DataStruct/Ordering.h"
#include "Tolmex/Catalogue.h"
#include "Tolmex/DialogFields.h"
#include "Tolmex/DocData.h"
#include "Tolmex/EntityTag.h"
#include "Tolmex/Resource.h"

namespace OrvLib {
namespace {

constexpr double kDefaultRidgeHeight = 2.5;  // of an empty answer

float toFloat(double value) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(value, -kLargest, kLargest));
}

/// The stored category of an entity that can be opened, or nothing.
std::optional<std::wstring> categoryOf(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id, AcDb::kForRead);
  return entity ? readCategory(*entity) : std::nullopt;
}

/// What was accepted last, in any drawing; where the next new building starts.
struct Accepted {
  std::array<std::wstring, 4> texts;  // in the order of the fields
  int shadedRoofColour;
  int sunlitRoofColour;
};
std::optional<Accepted>& lastAccepted() {
  static std::optional<Accepted> accepted;
  return accepted;
}

}  // namespace

/// A number of the building.
struct BuildingDLG::Field {
  int id;
  CAcUiNumericEdit BuildingDLG::*edit;
  std::wstring BuildingDLG::*text;
  float CDocData::*stored;
  const wchar_t* refusal;
};

// In the order of checking.
const std::array<BuildingDLG::Field, 4> BuildingDLG::kFields{{
    {IDC_FLOORS, &BuildingDLG::floorsEdit, &BuildingDLG::floorsText, &CDocData::nrFloors,
     L"Kirjoita kerroksien lukumäärä."},
    {IDC_FLOOR_HEIGHT, &BuildingDLG::floorHeightEdit, &BuildingDLG::floorHeightText, &CDocData::floorHeight,
     L"Kirjoita kerroskorkeus."},
    {IDC_EAVES_WIDTH, &BuildingDLG::eavesWidthEdit, &BuildingDLG::eavesWidthText, &CDocData::eavesWidth,
     L"Kirjoita räystäsleveys."},
    {IDC_BASE_HEIGHT, &BuildingDLG::baseHeightEdit, &BuildingDLG::baseHeightText, &CDocData::baseHeight,
     L"Kirjoita sokkelikorkeus."},
}};

BEGIN_MESSAGE_MAP(BuildingDLG, CAcUiDialog)
ON_MESSAGE(WM_ACAD_KEEPFOCUS, &BuildingDLG::onKeepFocus)
ON_BN_CLICKED(IDC_PICK_RIDGE, &BuildingDLG::onPickRidge)
ON_WM_CREATE()
END_MESSAGE_MAP()

BuildingDLG::BuildingDLG(AcDbObjectId building, bool offersButton, CWnd* parent, HINSTANCE resources)
    : CAcUiDialog(IDD_BUILDING, parent, resources), offerRidgeButton(offersButton) {
  if (!building.isNull()) {
    readBuilding(building);
  } else if (const std::optional<Accepted>& accepted = lastAccepted()) {
    for (std::size_t i = 0; i < kFields.size(); ++i) this->*kFields[i].text = accepted->texts[i];
    shadedRoofColour = accepted->shadedRoofColour;
    sunlitRoofColour = accepted->sunlitRoofColour;
  }
}

void BuildingDLG::readBuilding(AcDbObjectId building) {
  BuildingRecord<std::wstring> record;
  {
    const Opened<AcDbEntity> entity(building, AcDb::kForRead);
    if (!entity) return;
    if (readBuildingRecord(*entity, record)) {
      floorsText = record.nrFloors;
      floorHeightText = record.floorHeight;
      eavesWidthText = record.eavesWidth;
      baseHeightText = record.baseHeight;
      ridgeHeight = leadingNumber(record.roofHeight);
    }
    RoofColours colours;
    if (readRoofColours(*entity, colours)) {
      shadedRoofColour = colours.shaded;
      sunlitRoofColour = colours.sunlit;
    }
  }
  const AcDbObjectId line = record.hasRoofLine ? objectOfHandle(record.roofLineHandle) : AcDbObjectId();
  if (line.isNull() || categoryOf(line) != row(Category::RidgeLine).tag) return;
  ridgeLineId = line;
  hasRidge = true;
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
    const ColorScheme& defaults = currentDocData().colors;
    if (shadedRoofColour == kNotChosen) shadedRoofColour = defaults.roofFillShadow;
    if (sunlitRoofColour == kNotChosen) sunlitRoofColour = defaults.roofFillSun;
    shadedRoofColourCombo.SetCurSel(shadedRoofColourCombo.AddColorToMRU(shadedRoofColour));
    sunlitRoofColourCombo.SetCurSel(sunlitRoofColourCombo.AddColorToMRU(sunlitRoofColour));
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
    CDocData& data = currentDocData();
    Accepted accepted{{}, shadedRoofColour, sunlitRoofColour};
    for (std::size_t i = 0; i < kFields.size(); ++i) {
      const Field& field = kFields[i];
      this->*field.text = fieldText(this->*field.edit);
      data.*field.stored = toFloat(fieldNumber(this->*field.edit));
      accepted.texts[i] = this->*field.text;
    }
    lastAccepted() = std::move(accepted);
    EndDialog(IDOK);
  });
}

/// Before any check: the colours stay chosen for this drawing even if the dialog is cancelled afterwards.
void BuildingDLG::takeRoofColours() {
  const int sunlit = sunlitRoofColourCombo.GetCurrentItemColorIndex();
  const int shaded = shadedRoofColourCombo.GetCurrentItemColorIndex();
  if (sunlit >= 0) sunlitRoofColour = sunlit;
  if (shaded >= 0) shadedRoofColour = shaded;
  currentDocData().roofColours = {shadedRoofColour, sunlitRoofColour};
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
    const auto category = isPicked ? categoryOf(id) : std::nullopt;
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
