// Previews of drawing files in windows.
#include <cstdint>
#include <set>
#include <string>

#include "Editor/DialogInput.h"
#include "Preview/FilePreview.h"
#include "Text/FilePath.h"
#include "Win32/Painting.h"
#include "rxmfcapi.h"

namespace {

/// 0x00BBGGRR to 0xRRGGBB.
std::uint32_t toRgb(std::uint32_t color) { return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF); }

/// The control paints often; it reports a drawing that cannot be drawn once.
void reportOnce(const host::Problem& problem) {
  static auto& reported = *new std::set<std::string>;
  if (reported.insert(problem.text).second) host::editor::reportDialogProblem(problem);
}

}  // namespace

bool acdbDisplayPreviewFromDwg(const ACHAR* dwgFile, void* window, Adesk::UInt32* background) {
  const HWND pane = window != nullptr ? static_cast<const CWnd*>(window)->GetSafeHwnd() : nullptr;
  RECT area{};
  if (dwgFile == nullptr || GetClientRect(pane, &area) == FALSE || area.right <= 0 || area.bottom <= 0) return false;
  const host::preview::Canvas canvas{area.right, area.bottom, background != nullptr ? toRgb(*background) : 0xFFFFFF};
  const host::preview::FilePreview& preview = host::preview::previewOf(host::text::toPath(dwgFile), canvas);
  if (preview.problem) reportOnce(*preview.problem);
  if (!preview.pixels) return false;
  host::win32::showPicture(pane, preview.pixels->width, preview.pixels->height, preview.pixels->argb.data());
  return true;
}
