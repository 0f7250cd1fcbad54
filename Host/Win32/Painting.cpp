// Painting on what a widget lends.
#include "Win32/Painting.h"

#include <string_view>
#include <utility>
#include <vector>

#include "Win32/WindowObject.h"

namespace host::win32 {

namespace {

int paintDepth = 0;
std::vector<HostWindow*> changedLooks;

}  // namespace

bool isPainting() { return paintDepth > 0; }

void changeLooksLater(HostWindow& control) { changedLooks.push_back(&control); }

void widgetPainted(HostWindow& window, Canvas& canvas) {
  HostDeviceContext context{&canvas};
  window.painting = &context;
  window.isInvalid = false;
  ++paintDepth;
  SendMessageW(&window, WM_PAINT, 0, 0);
  if (IsWindow(&window) != FALSE) window.painting = nullptr;
  if (--paintDepth > 0) return;
  for (HostWindow* const control : std::exchange(changedLooks, {})) {
    if (IsWindow(control) != FALSE) control->widget->setEnabled(control->isEnabled());
  }
}

void showPicture(HWND window, int width, int height, const std::uint32_t* pixels) {
  if (IsWindow(window) != FALSE) window->widget->setPicture(width, height, pixels);
}

void paintInvalid(HostWindow& window) {
  if (IsWindowVisible(&window) == FALSE) return;
  if (window.isInvalid) {
    window.isInvalid = false;
    window.widget->paintNow();
  }
  // A window may close others while it paints.
  std::vector<HostWindow*> children;
  for (const auto& child : window.children) children.push_back(child.get());
  for (HostWindow* const child : children) {
    if (IsWindow(child) != FALSE) paintInvalid(*child);
  }
}

void widgetPaintsItem(HostWindow& list, Canvas& canvas, const RECT& area, int item, UINT state) {
  if (list.parent == nullptr || IsWindow(&list) == FALSE) return;
  HostDeviceContext context{&canvas};
  DRAWITEMSTRUCT draw{};
  draw.CtlType = ODT_COMBOBOX;
  draw.CtlID = static_cast<UINT>(list.id);
  draw.itemID = static_cast<UINT>(item);
  draw.itemAction = ODA_DRAWENTIRE;
  draw.itemState = state;
  draw.hwndItem = &list;
  draw.hDC = &context;
  draw.rcItem = area;
  if (item >= 0 && static_cast<std::size_t>(item) < list.itemData.size())
    draw.itemData = static_cast<DWORD_PTR>(list.itemData[static_cast<std::size_t>(item)]);
  SendMessageW(list.parent, WM_DRAWITEM, static_cast<WPARAM>(list.id), reinterpret_cast<LPARAM>(&draw));
}

}  // namespace host::win32

COLORREF GetSysColor(int index) {
  switch (index) {
    case COLOR_WINDOW:
    case COLOR_HIGHLIGHTTEXT:
      return RGB(255, 255, 255);
    case COLOR_HIGHLIGHT:
      return RGB(0, 120, 215);
    case COLOR_GRAYTEXT:
      return RGB(109, 109, 109);
    default:
      return RGB(0, 0, 0);
  }
}

HBRUSH CreateSolidBrush(COLORREF color) { return new HostBrush{color}; }

BOOL DeleteObject(HGDIOBJ object) {
  delete static_cast<HostBrush*>(object);
  return object != nullptr ? TRUE : FALSE;
}

int FillRect(HDC dc, LPCRECT area, HBRUSH brush) {
  if (dc == nullptr || area == nullptr || brush == nullptr) return 0;
  dc->canvas->fill(*area, brush->color);
  return 1;
}

int FrameRect(HDC dc, LPCRECT area, HBRUSH brush) {
  if (dc == nullptr || area == nullptr || brush == nullptr) return 0;
  dc->canvas->frame(*area, brush->color);
  return 1;
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
  if (dc == nullptr) return 0;
  const COLORREF former = dc->textColor;
  dc->textColor = color;
  return former;
}

int DrawTextW(HDC dc, LPCWSTR text, int length, LPRECT area, UINT format) {
  if (dc == nullptr || text == nullptr || area == nullptr) return 0;
  const std::wstring_view shown =
      length < 0 ? std::wstring_view(text) : std::wstring_view(text, static_cast<std::size_t>(length));
  dc->canvas->text(*area, shown, dc->textColor, (format & DT_CENTER) != 0);
  return area->bottom - area->top;
}

HDC BeginPaint(HWND window, PAINTSTRUCT* paint) {
  if (paint == nullptr || IsWindow(window) == FALSE) return nullptr;
  *paint = {};
  paint->hdc = window->painting;
  GetClientRect(window, &paint->rcPaint);
  return paint->hdc;
}

BOOL EndPaint(HWND, const PAINTSTRUCT*) { return TRUE; }
