#include "Tolmex/ColorSettings.h"

#include <array>
#include <cstddef>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/ARX/Resources.h"
#include "OrvLib/Reports/Failures.h"
#include "Tolmex/DialogFields.h"
#include "Tolmex/Resource.h"

namespace OrvLib {
namespace {

struct ColorControl {
  int id;
  int ColorScheme::*color;
};
constexpr std::array<ColorControl, 9> kControls{{
    {IDC_ASPHALT, &ColorScheme::asphalt},
    {IDC_GRAVEL, &ColorScheme::gravel},
    {IDC_YARD_PAVING, &ColorScheme::yardPaving},
    {IDC_PATH, &ColorScheme::path},
    {IDC_HEDGE, &ColorScheme::hedge},
    {IDC_FOREST, &ColorScheme::forest},
    {IDC_GRASS, &ColorScheme::grass},
    {IDC_DEFAULT_ROOF_SHADED, &ColorScheme::roofFillShadow},
    {IDC_DEFAULT_ROOF_SUNLIT, &ColorScheme::roofFillSun},
}};

class ColorSettings : public CAcUiDialog {
 public:
  ColorSettings(const ColorScheme& scheme, const TakeColors& accept, const TakeColors& save)
      : CAcUiDialog(IDD_COLORS), scheme_(scheme), accept_(accept), save_(save) {
    // A layer has a colour of its own.
    for (CAcUiColorComboBox& box : boxes_) {
      box.SetUseByBlock(FALSE);
      box.SetUseByLayer(FALSE);
    }
  }

 protected:
  void DoDataExchange(CDataExchange* exchange) override {
    CAcUiDialog::DoDataExchange(exchange);
    for (std::size_t i = 0; i < kControls.size(); ++i) DDX_Control(exchange, kControls[i].id, boxes_[i]);
  }

  BOOL OnInitDialog() override {
    const BOOL result = CAcUiDialog::OnInitDialog();
    guarded([this] {
      for (std::size_t i = 0; i < kControls.size(); ++i) selectColor(boxes_[i], scheme_.*kControls[i].color);
    });
    return result;
  }

  void OnOK() override {
    guarded([this] {
      takeColors();
      accept_(scheme_);
      EndDialog(IDOK);
    });
  }

  afx_msg void onSaveToFile() {
    guarded([this] {
      takeColors();
      save_(scheme_);
    });
  }

  DECLARE_MESSAGE_MAP()

 private:
  /// A colour that its box cannot show, from a damaged file or drawing, stays until another one is chosen.
  void takeColors() {
    for (std::size_t i = 0; i < kControls.size(); ++i) {
      const int chosen = boxes_[i].GetCurrentItemColorIndex();
      if (chosen >= 0) scheme_.*kControls[i].color = chosen;
    }
  }

  ColorScheme scheme_;
  const TakeColors& accept_;
  const TakeColors& save_;
  std::array<CAcUiColorComboBox, kControls.size()> boxes_;
};

BEGIN_MESSAGE_MAP(ColorSettings, CAcUiDialog)
ON_BN_CLICKED(IDC_SAVE_TO_FILE, &ColorSettings::onSaveToFile)
END_MESSAGE_MAP()

}  // namespace

void showColorSettings(const ColorScheme& scheme, const TakeColors& accept, const TakeColors& save) {
  const OwnResources resources;
  ColorSettings dialog(scheme, accept, save);
  dialog.DoModal();
}

}  // namespace OrvLib
