#include "Tolmex/BuildingDLG.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string>

#include "OrvLib/ARX/Failures.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/ParentWindow.h"
#include "OrvLib/ARX/Resources.h"
#include "OrvLib/DataStruct/Ordering.h"
#include "Tolmex/Catalogue.h"
#include "Tolmex/DialogFields.h"
#include "Tolmex/DocData.h"
#include "Tolmex/EntityTag.h"
#include "Tolmex/Resource.h"

namespace OrvLib {
namespace {

constexpr double kDefaultRidgeHeight = 2.5;  // of an empty answer
constexpr int kNotChosen = -1;

/// What the dialog shows and gives back.
struct BuildingValues {
  std::wstring floors;
  std::wstring eavesWidth;
  std::wstring floorHeight;
  std::wstring baseHeight;
  int shadedRoofColor = kNotChosen;
  int sunlitRoofColor = kNotChosen;
};

/// What was accepted last, in any drawing; where the next new building starts.
BuildingValues& lastAccepted() {
  static BuildingValues values;
  return values;
}

float toFloat(double value) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(value, -kLargest, kLargest));
}

/// The stored category of an entity that can be opened, or nothing.
std::optional<std::wstring> categoryOf(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id, AcDb::kForRead);
  return entity ? readCategory(*entity) : std::nullopt;
}

class BuildingDLG : public CAcUiDialog {
 public:
  BuildingDLG(AcDbObjectId building, bool offerRidgeButton, CWnd* parent, HINSTANCE resources)
      : CAcUiDialog(IDD_BUILDING, parent, resources), offersRidgeButton_(offerRidgeButton) {
    if (building.isNull()) {
      values_ = lastAccepted();
    } else {
      readBuilding(building);
    }
  }

  const RidgeChoice& ridge() const { return ridge_; }

 protected:
  void DoDataExchange(CDataExchange* exchange) override {
    CAcUiDialog::DoDataExchange(exchange);
    DDX_Control(exchange, IDC_ROOF_SHADED, shadedRoofBox_);
    DDX_Control(exchange, IDC_ROOF_SUNLIT, sunlitRoofBox_);
    for (const Field& field : kFields) DDX_Control(exchange, field.id, this->*field.edit);
    DDX_Control(exchange, IDC_RIDGE_STATUS, ridgeStatus_);
    DDX_Control(exchange, IDC_PICK_RIDGE, ridgeButton_);
  }

  BOOL OnInitDialog() override {
    CAcUiDialog::OnInitDialog();
    guarded([this] {
      for (const Field& field : kFields) (this->*field.edit).SetWindowText((values_.*field.text).c_str());
      showRidgeStatus();
      const ColorScheme& defaults = currentDocData().colors;
      if (values_.shadedRoofColor == kNotChosen) values_.shadedRoofColor = defaults.roofFillShadow;
      if (values_.sunlitRoofColor == kNotChosen) values_.sunlitRoofColor = defaults.roofFillSun;
      shadedRoofBox_.SetCurSel(shadedRoofBox_.AddColorToMRU(values_.shadedRoofColor));
      sunlitRoofBox_.SetCurSel(sunlitRoofBox_.AddColorToMRU(values_.sunlitRoofColor));
      if (!offersRidgeButton_) {
        ridgeButton_.ShowWindow(SW_HIDE);
        ridgeStatus_.ShowWindow(SW_HIDE);
      }
    });
    return TRUE;
  }

  void OnOK() override {
    guarded([this] {
      takeRoofColors();
      for (const Field& field : kFields) {
        if (!hasNumber(this->*field.edit)) return refuseField(this->*field.edit, field.refusal);
      }
      CDocData& data = currentDocData();
      for (const Field& field : kFields) {
        values_.*field.text = fieldText(this->*field.edit);
        data.*field.stored = toFloat(fieldNumber(this->*field.edit));
      }
      lastAccepted() = values_;
      EndDialog(IDOK);
    });
  }

  afx_msg LRESULT onKeepFocus(WPARAM, LPARAM) { return TRUE; }
  afx_msg int OnCreate(LPCREATESTRUCT create) { return CAcUiDialog::OnCreate(create); }

  /// Esc, and anything that is no ridge line, takes a ridge line chosen before away: so the prompt says.
  afx_msg void onPickRidge() {
    guarded([this] {
      BeginEditorCommand();
      ads_name picked = {0, 0};
      ads_point at = {0, 0, 0};
      AcDbObjectId id;
      const bool isPicked =
          acedEntSel(L"\nValitse rakennuksen harjaviiva tai paina <esc>, jos rakennuksella ei ole harjaa:", picked,
                     at) == RTNORM &&
          acdbGetObjectId(id, picked) == Acad::eOk;
      const auto category = isPicked ? categoryOf(id) : std::nullopt;
      ridge_.hasRidge = category && equalsIgnoringCase(*category, row(Category::RidgeLine).tag) && askRidgeHeight();
      ridge_.ridgeLineId = id;
      showRidgeStatus();
      CompleteEditorCommand(TRUE);
    });
  }

  DECLARE_MESSAGE_MAP()

 private:
  /// A number of the building, in the order of checking.
  struct Field {
    int id;
    CAcUiNumericEdit BuildingDLG::*edit;
    std::wstring BuildingValues::*text;
    float CDocData::*stored;
    const wchar_t* refusal;
  };
  static const std::array<Field, 4> kFields;

  void readBuilding(AcDbObjectId building) {
    BuildingRecord<std::wstring> record;
    {
      const Opened<AcDbEntity> entity(building, AcDb::kForRead);
      if (!entity) return;
      if (readBuildingRecord(*entity, record)) {
        values_.floors = record.nrFloors;
        values_.floorHeight = record.floorHeight;
        values_.eavesWidth = record.eavesWidth;
        values_.baseHeight = record.baseHeight;
        ridge_.ridgeHeight = leadingNumber(record.roofHeight);
      }
      RoofColours colours;
      if (readRoofColours(*entity, colours)) {
        values_.shadedRoofColor = colours.shaded;
        values_.sunlitRoofColor = colours.sunlit;
      }
    }
    const AcDbObjectId line = record.hasRoofLine ? objectOfHandle(record.roofLineHandle) : AcDbObjectId();
    if (line.isNull() || categoryOf(line) != row(Category::RidgeLine).tag) return;
    ridge_.ridgeLineId = line;
    ridge_.hasRidge = true;
  }

  bool askRidgeHeight() {
    ads_real height = 0;
    const int result = acedGetReal(L"\nAnna harjan korkeus metreinä [2.5]:", &height);
    if (result == RTNORM) ridge_.ridgeHeight = height;
    if (result == RTNONE) ridge_.ridgeHeight = kDefaultRidgeHeight;
    return result == RTNORM || result == RTNONE;
  }

  void showRidgeStatus() {
    const std::wstring text = ridge_.hasRidge ? L"Harjaviiva määritetty (" + formatNumber(ridge_.ridgeHeight) + L" m)."
                                              : L"Ei määritelty harjaviivaa.";
    ridgeStatus_.SetWindowText(text.c_str());
  }

  /// Before any check: the colours stay chosen for this drawing even if the dialog is cancelled afterwards.
  void takeRoofColors() {
    const int sunlit = sunlitRoofBox_.GetCurrentItemColorIndex();
    const int shaded = shadedRoofBox_.GetCurrentItemColorIndex();
    if (sunlit >= 0) values_.sunlitRoofColor = sunlit;
    if (shaded >= 0) values_.shadedRoofColor = shaded;
    currentDocData().roofColours = {values_.shadedRoofColor, values_.sunlitRoofColor};
  }

  CAcUiColorComboBox shadedRoofBox_;
  CAcUiColorComboBox sunlitRoofBox_;
  CAcUiNumericEdit floorHeightEdit_;
  CAcUiNumericEdit floorsEdit_;
  CAcUiNumericEdit eavesWidthEdit_;
  CAcUiNumericEdit baseHeightEdit_;
  CButton ridgeButton_;
  CStatic ridgeStatus_;
  BuildingValues values_;
  RidgeChoice ridge_;
  bool offersRidgeButton_;
};

const std::array<BuildingDLG::Field, 4> BuildingDLG::kFields{{
    {IDC_FLOORS, &BuildingDLG::floorsEdit_, &BuildingValues::floors, &CDocData::nrFloors,
     L"Kirjoita kerroksien lukumäärä."},
    {IDC_FLOOR_HEIGHT, &BuildingDLG::floorHeightEdit_, &BuildingValues::floorHeight, &CDocData::floorHeight,
     L"Kirjoita kerroskorkeus."},
    {IDC_EAVES_WIDTH, &BuildingDLG::eavesWidthEdit_, &BuildingValues::eavesWidth, &CDocData::eavesWidth,
     L"Kirjoita räystäsleveys."},
    {IDC_BASE_HEIGHT, &BuildingDLG::baseHeightEdit_, &BuildingValues::baseHeight, &CDocData::baseHeight,
     L"Kirjoita sokkelikorkeus."},
}};

BEGIN_MESSAGE_MAP(BuildingDLG, CAcUiDialog)
ON_MESSAGE(WM_ACAD_KEEPFOCUS, &BuildingDLG::onKeepFocus)
ON_BN_CLICKED(IDC_PICK_RIDGE, &BuildingDLG::onPickRidge)
ON_WM_CREATE()
END_MESSAGE_MAP()

}  // namespace

bool askBuilding(AcDbObjectId building, bool offerRidgeButton, RidgeChoice& ridge) {
  const OwnResources resources;
  BuildingDLG dialog(building, offerRidgeButton, parentWindow(), moduleInstance());
  if (dialog.DoModal() != IDOK) return false;
  ridge = dialog.ridge();
  return true;
}

}  // namespace OrvLib
