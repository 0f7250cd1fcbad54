#include "Tolmex/VarjoDlg.h"

#include <array>
#include <string>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/ParentWindow.h"
#include "OrvLib/ARX/Resources.h"
#include "OrvLib/Reports/Failures.h"
#include "Tolmex/DialogFields.h"
#include "Tolmex/Resource.h"

namespace OrvLib {
namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr const wchar_t* kLinesText = L"Viiva";
constexpr const wchar_t* kDotsText = L"Piste";

using Accept = std::function<void(const ShadowSettings&)>;

class VarjoDlg : public CAcUiDialog {
 public:
  VarjoDlg(const ShadowSettings& settings, const Accept& accept, CWnd* parent, HINSTANCE resources)
      : CAcUiDialog(IDD_SHADOW, parent, resources), settings_(settings), accept_(accept) {
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
      angleEdit_.SetWindowText(formatNumber(settings_.shadowAngleRad / kTwoPi * 360).c_str());
      lengthEdit_.SetWindowText(formatNumber(settings_.shadowLengthPerFloor).c_str());
      scaleEdit_.SetWindowText(formatNumber(settings_.shadowScale).c_str());
      selectColor(colorBox_, settings_.shadowColor);
      const int lines = hatchBox_.AddString(kLinesText);
      const int dots = hatchBox_.AddString(kDotsText);
      hatchBox_.SetCurSel(settings_.shadowHatchType == kShadowDots ? dots : lines);
    });
    return result;
  }

  void OnOK() override {
    guarded([this] {
      if (!isFilled()) return;
      settings_.shadowAngleRad = fieldNumber(angleEdit_) / 360 * kTwoPi;
      settings_.shadowLengthPerFloor = fieldNumber(lengthEdit_);
      settings_.shadowScale = fieldNumber(scaleEdit_);
      // A colour that the box cannot show stays until another one is chosen.
      if (const int color = colorBox_.GetCurrentItemColorIndex(); color >= 0) settings_.shadowColor = color;
      settings_.shadowHatchType = fieldText(hatchBox_) == kDotsText ? kShadowDots : kShadowLines;
      accept_(settings_);
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

  ShadowSettings settings_;
  const Accept& accept_;
  CAcUiAngleEdit angleEdit_;
  CAcUiNumericEdit lengthEdit_;
  CAcUiNumericEdit scaleEdit_;
  CAcUiColorComboBox colorBox_;
  CComboBox hatchBox_;
};

}  // namespace

void showShadowDialog(const ShadowSettings& settings, const std::function<void(const ShadowSettings&)>& accept) {
  const OwnResources resources;
  VarjoDlg dialog(settings, accept, parentWindow(), moduleInstance());
  dialog.DoModal();
}

}  // namespace OrvLib
