#include "Tolmex/VarjoDlg.h"

#include <array>
#include <string>

#include "OrvLib/ARX/Failures.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/ParentWindow.h"
#include "OrvLib/ARX/Resources.h"
#include "Tolmex/DialogFields.h"
#include "Tolmex/DocData.h"
#include "Tolmex/Names.h"
#include "Tolmex/Resource.h"
#include "Tolmex/ShadowCommands.h"
#include "Tolmex/ShadowSettings.h"

namespace OrvLib {
namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr const wchar_t* kLinesText = L"Viiva";
constexpr const wchar_t* kDotsText = L"Piste";

class VarjoDlg : public CAcUiDialog {
 public:
  VarjoDlg(CWnd* parent, HINSTANCE resources) : CAcUiDialog(IDD_SHADOW, parent, resources) {
    colorBox_.SetUseByBlock(FALSE);
    colorBox_.SetUseByLayer(FALSE);
  }

 protected:
  void DoDataExchange(CDataExchange* exchange) override {
    CAcUiDialog::DoDataExchange(exchange);
    DDX_Control(exchange, IDC_SHADOW_ANGLE, angleEdit_);
    DDX_Control(exchange, IDC_SHADOW_LENGTH, lengthEdit_);
    DDX_Control(exchange, IDC_SHADOW_SCALE, scaleEdit_);
    DDX_Control(exchange, IDC_SHADOW_COLOR, colorBox_);
    DDX_Control(exchange, IDC_SHADOW_HATCH, hatchBox_);
  }

  BOOL OnInitDialog() override {
    const BOOL result = CAcUiDialog::OnInitDialog();
    guarded([this] {
      const CDocData& data = currentDocData();
      angleEdit_.SetWindowText(formatNumber(data.shadowAngleRad / kTwoPi * 360).c_str());
      lengthEdit_.SetWindowText(formatNumber(data.shadowLengthPerFloor).c_str());
      scaleEdit_.SetWindowText(formatNumber(data.shadowScale).c_str());
      colorBox_.SetCurSel(colorBox_.AddColorToMRU(data.shadowColor));
      const int lines = hatchBox_.AddString(kLinesText);
      const int dots = hatchBox_.AddString(kDotsText);
      hatchBox_.SetCurSel(data.shadowHatchType == kShadowDots ? dots : lines);
    });
    return result;
  }

  void OnOK() override {
    guarded([this] {
      if (!isFilled()) return;
      CDocData& data = currentDocData();
      data.shadowAngleRad = fieldNumber(angleEdit_) / 360 * kTwoPi;
      data.shadowLengthPerFloor = fieldNumber(lengthEdit_);
      data.shadowScale = fieldNumber(scaleEdit_);
      // A colour that the box cannot show stays until another one is chosen.
      if (const int color = colorBox_.GetCurrentItemColorIndex(); color >= 0) data.shadowColor = color;
      setLayerColor(layers::kShadow, data.shadowColor);
      data.shadowHatchType = fieldText(hatchBox_) == kDotsText ? kShadowDots : kShadowLines;
      updateShadows();
      writeShadowSettings();
      EndDialog(IDOK);
    });
  }

 private:
  bool isFilled() {
    struct Field {
      CAcUiEdit& edit;
      const wchar_t* refusal;
    };
    const std::array<Field, 3> fields{{{angleEdit_, L"Kirjoita varjon suunta asteina."},
                                       {lengthEdit_, L"Kirjoita varjon pituus."},
                                       {scaleEdit_, L"Kirjoita varjon skaala."}}};
    for (const Field& field : fields) {
      if (hasNumber(field.edit)) continue;
      refuseField(field.edit, field.refusal);
      return false;
    }
    return true;
  }

  CAcUiAngleEdit angleEdit_;
  CAcUiNumericEdit lengthEdit_;
  CAcUiNumericEdit scaleEdit_;
  CAcUiColorComboBox colorBox_;
  CComboBox hatchBox_;
};

}  // namespace

void showShadowDialog() {
  const OwnResources resources;
  VarjoDlg dialog(parentWindow(), moduleInstance());
  dialog.DoModal();
}

}  // namespace OrvLib
