// The part of the Windows interface that dialogs need: windows, messages, dialog templates, resources, message boxes.
// Values and meanings are those of Windows; strings are wide throughout.
#pragma once

#include "adesk.h"
#include "windef.h"

struct CREATESTRUCTW {
  LPVOID lpCreateParams;
  HINSTANCE hInstance;
  HMENU hMenu;
  HWND hwndParent;
  int cy;
  int cx;
  int y;
  int x;
  LONG style;
  LPCWSTR lpszName;
  LPCWSTR lpszClass;
  DWORD dwExStyle;
};
using CREATESTRUCT = CREATESTRUCTW;
using LPCREATESTRUCT = CREATESTRUCTW*;

struct DRAWITEMSTRUCT {
  UINT CtlType;
  UINT CtlID;
  UINT itemID;
  UINT itemAction;
  UINT itemState;
  HWND hwndItem;
  HDC hDC;
  RECT rcItem;
  DWORD_PTR itemData;
};
using LPDRAWITEMSTRUCT = DRAWITEMSTRUCT*;

struct MEASUREITEMSTRUCT {
  UINT CtlType;
  UINT CtlID;
  UINT itemID;
  UINT itemWidth;
  UINT itemHeight;
  DWORD_PTR itemData;
};
using LPMEASUREITEMSTRUCT = MEASUREITEMSTRUCT*;

struct PAINTSTRUCT {
  HDC hdc;
  BOOL fErase;
  RECT rcPaint;
};

/// First fields of a dialog template in memory; what follows is packed and of varying length.
struct DLGTEMPLATE {
  DWORD style;
  DWORD dwExtendedStyle;
  WORD cdit;
  short x;
  short y;
  short cx;
  short cy;
};
using LPCDLGTEMPLATE = const DLGTEMPLATE*;

using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using DLGPROC = INT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using HOOKPROC = LRESULT(CALLBACK*)(int, WPARAM, LPARAM);

constexpr WORD LOWORD(std::uintptr_t value) { return static_cast<WORD>(value & 0xFFFF); }
constexpr WORD HIWORD(std::uintptr_t value) { return static_cast<WORD>((value >> 16) & 0xFFFF); }
constexpr LPARAM MAKELONG(WORD low, WORD high) {
  return static_cast<LONG>(static_cast<DWORD>(low) | static_cast<DWORD>(high) << 16);
}
constexpr WPARAM MAKEWPARAM(WORD low, WORD high) { return static_cast<DWORD>(low) | static_cast<DWORD>(high) << 16; }
constexpr LPARAM MAKELPARAM(WORD low, WORD high) { return MAKELONG(low, high); }
constexpr COLORREF RGB(BYTE red, BYTE green, BYTE blue) {
  return red | static_cast<COLORREF>(green) << 8 | static_cast<COLORREF>(blue) << 16;
}
/// A resource's number in place of its name.
inline LPCWSTR MAKEINTRESOURCEW(WORD id) { return reinterpret_cast<LPCWSTR>(static_cast<std::uintptr_t>(id)); }
inline bool IS_INTRESOURCE(LPCWSTR name) { return reinterpret_cast<std::uintptr_t>(name) <= 0xFFFF; }

// ---- messages -------------------------------------------------------------------------------------------------------
inline constexpr UINT WM_NULL = 0x0000;
inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT WM_SETFOCUS = 0x0007;
inline constexpr UINT WM_KILLFOCUS = 0x0008;
inline constexpr UINT WM_ENABLE = 0x000A;
inline constexpr UINT WM_SETTEXT = 0x000C;
inline constexpr UINT WM_GETTEXT = 0x000D;
inline constexpr UINT WM_GETTEXTLENGTH = 0x000E;
inline constexpr UINT WM_PAINT = 0x000F;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_SHOWWINDOW = 0x0018;
inline constexpr UINT WM_DRAWITEM = 0x002B;
inline constexpr UINT WM_MEASUREITEM = 0x002C;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_CHAR = 0x0102;
inline constexpr UINT WM_INITDIALOG = 0x0110;
inline constexpr UINT WM_COMMAND = 0x0111;
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_USER = 0x0400;
inline constexpr UINT WM_APP = 0x8000;
inline constexpr UINT EM_SETSEL = 0x00B1;
inline constexpr UINT EM_SCROLLCARET = 0x00B7;
inline constexpr UINT EM_REPLACESEL = 0x00C2;
inline constexpr UINT EM_LIMITTEXT = 0x00C5;
inline constexpr UINT EM_SETREADONLY = 0x00CF;
inline constexpr UINT BM_GETCHECK = 0x00F0;
inline constexpr UINT BM_SETCHECK = 0x00F1;
inline constexpr UINT BM_CLICK = 0x00F5;
inline constexpr UINT CB_ADDSTRING = 0x0143;
inline constexpr UINT CB_DELETESTRING = 0x0144;
inline constexpr UINT CB_GETCOUNT = 0x0146;
inline constexpr UINT CB_GETCURSEL = 0x0147;
inline constexpr UINT CB_GETLBTEXT = 0x0148;
inline constexpr UINT CB_GETLBTEXTLEN = 0x0149;
inline constexpr UINT CB_INSERTSTRING = 0x014A;
inline constexpr UINT CB_RESETCONTENT = 0x014B;
inline constexpr UINT CB_SETCURSEL = 0x014E;
inline constexpr UINT CB_GETITEMDATA = 0x0150;
inline constexpr UINT CB_SETITEMDATA = 0x0151;
inline constexpr UINT CB_FINDSTRINGEXACT = 0x0158;
inline constexpr UINT LB_ADDSTRING = 0x0180;
inline constexpr UINT LB_INSERTSTRING = 0x0181;
inline constexpr UINT LB_DELETESTRING = 0x0182;
inline constexpr UINT LB_RESETCONTENT = 0x0184;
inline constexpr UINT LB_SETCURSEL = 0x0186;
inline constexpr UINT LB_GETCURSEL = 0x0188;
inline constexpr UINT LB_GETTEXT = 0x0189;
inline constexpr UINT LB_GETTEXTLEN = 0x018A;
inline constexpr UINT LB_GETCOUNT = 0x018B;
inline constexpr UINT LB_GETITEMDATA = 0x0199;
inline constexpr UINT LB_SETITEMDATA = 0x019A;
inline constexpr UINT LB_FINDSTRINGEXACT = 0x01A2;
inline constexpr int CB_ERR = -1;
inline constexpr int LB_ERR = -1;

inline constexpr WORD BN_CLICKED = 0;
inline constexpr WORD BN_DOUBLECLICKED = 5;
inline constexpr WORD CBN_SELCHANGE = 1;
inline constexpr WORD CBN_DBLCLK = 2;
inline constexpr WORD CBN_SELENDOK = 9;
inline constexpr WORD LBN_SELCHANGE = 1;
inline constexpr WORD LBN_DBLCLK = 2;
inline constexpr WORD EN_SETFOCUS = 0x0100;
inline constexpr WORD EN_KILLFOCUS = 0x0200;
inline constexpr WORD EN_CHANGE = 0x0300;
inline constexpr WORD EN_UPDATE = 0x0400;

inline constexpr WPARAM BST_UNCHECKED = 0;
inline constexpr WPARAM BST_CHECKED = 1;
inline constexpr WPARAM BST_INDETERMINATE = 2;
inline constexpr UINT ODT_LISTBOX = 2;
inline constexpr UINT ODT_COMBOBOX = 3;
inline constexpr UINT ODT_BUTTON = 4;
inline constexpr UINT ODA_DRAWENTIRE = 1;
inline constexpr UINT ODS_SELECTED = 1;
inline constexpr UINT ODS_DISABLED = 4;
inline constexpr UINT ODS_COMBOBOXEDIT = 0x1000;

// ---- styles ---------------------------------------------------------------------------------------------------------
inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_CHILD = 0x40000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_DISABLED = 0x08000000;
inline constexpr DWORD WS_CAPTION = 0x00C00000;
inline constexpr DWORD WS_BORDER = 0x00800000;
inline constexpr DWORD WS_VSCROLL = 0x00200000;
inline constexpr DWORD WS_HSCROLL = 0x00100000;
inline constexpr DWORD WS_SYSMENU = 0x00080000;
inline constexpr DWORD WS_THICKFRAME = 0x00040000;  // the user may resize it
inline constexpr DWORD WS_GROUP = 0x00020000;
inline constexpr DWORD WS_TABSTOP = 0x00010000;
inline constexpr DWORD DS_SETFONT = 0x40;
inline constexpr DWORD DS_MODALFRAME = 0x80;
inline constexpr DWORD DS_FIXEDSYS = 0x08;
inline constexpr DWORD DS_CENTER = 0x0800;
inline constexpr DWORD ES_MULTILINE = 0x4;
inline constexpr DWORD ES_AUTOVSCROLL = 0x40;
inline constexpr DWORD ES_AUTOHSCROLL = 0x80;
inline constexpr DWORD ES_READONLY = 0x800;
inline constexpr DWORD ES_NUMBER = 0x2000;
inline constexpr DWORD BS_PUSHBUTTON = 0;
inline constexpr DWORD BS_DEFPUSHBUTTON = 1;
inline constexpr DWORD BS_CHECKBOX = 2;
inline constexpr DWORD BS_AUTOCHECKBOX = 3;
inline constexpr DWORD BS_RADIOBUTTON = 4;
inline constexpr DWORD BS_GROUPBOX = 7;
inline constexpr DWORD BS_AUTORADIOBUTTON = 9;
inline constexpr DWORD BS_TYPEMASK = 0xF;
inline constexpr DWORD SS_LEFT = 0;
inline constexpr DWORD SS_CENTER = 1;
inline constexpr DWORD SS_RIGHT = 2;
inline constexpr DWORD SS_BLACKFRAME = 7;
inline constexpr DWORD SS_GRAYFRAME = 8;
inline constexpr DWORD SS_LEFTNOWORDWRAP = 12;
inline constexpr DWORD SS_TYPEMASK = 0x1F;
inline constexpr DWORD SS_NOPREFIX = 0x80;
inline constexpr DWORD SS_CENTERIMAGE = 0x200;
inline constexpr DWORD CBS_DROPDOWNLIST = 3;
inline constexpr DWORD CBS_OWNERDRAWFIXED = 0x10;
inline constexpr DWORD CBS_SORT = 0x100;
inline constexpr DWORD CBS_HASSTRINGS = 0x200;
inline constexpr DWORD LBS_NOTIFY = 1;
inline constexpr DWORD LBS_SORT = 2;
inline constexpr DWORD LBS_NOINTEGRALHEIGHT = 0x100;

// ---- windows --------------------------------------------------------------------------------------------------------
inline constexpr int SW_HIDE = 0;
inline constexpr int SW_SHOW = 5;
inline constexpr int GWLP_WNDPROC = -4;
inline constexpr int GWL_STYLE = -16;
inline constexpr int GWL_EXSTYLE = -20;
inline constexpr int GWLP_USERDATA = -21;
inline constexpr int GWLP_ID = -12;
inline constexpr int DWLP_MSGRESULT = 0;
inline constexpr int DWLP_DLGPROC = 8;
inline constexpr int DWLP_USER = 16;
inline constexpr int WH_CBT = 5;
inline constexpr int HCBT_CREATEWND = 3;

ADESK_EXPORT BOOL IsWindow(HWND window);
/// 0 for a window that is not there.
ADESK_EXPORT LRESULT SendMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
/// Delivered before the next input of a modal dialog.
ADESK_EXPORT BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
ADESK_EXPORT LRESULT SendDlgItemMessageW(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam);
ADESK_EXPORT LRESULT CallWindowProcW(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam);
ADESK_EXPORT LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
ADESK_EXPORT LONG_PTR GetWindowLongPtrW(HWND window, int index);
ADESK_EXPORT LONG_PTR SetWindowLongPtrW(HWND window, int index, LONG_PTR value);
ADESK_EXPORT BOOL DestroyWindow(HWND window);
ADESK_EXPORT HWND GetParent(HWND window);
ADESK_EXPORT HWND GetDlgItem(HWND dialog, int id);
ADESK_EXPORT int GetDlgCtrlID(HWND window);
ADESK_EXPORT BOOL SetWindowTextW(HWND window, LPCWSTR text);
ADESK_EXPORT int GetWindowTextW(HWND window, LPWSTR text, int size);
ADESK_EXPORT int GetWindowTextLengthW(HWND window);
/// True when it was disabled before.
ADESK_EXPORT BOOL EnableWindow(HWND window, BOOL enable);
ADESK_EXPORT BOOL IsWindowEnabled(HWND window);
/// True when it was visible before.
ADESK_EXPORT BOOL ShowWindow(HWND window, int command);
ADESK_EXPORT BOOL IsWindowVisible(HWND window);
ADESK_EXPORT HWND SetFocus(HWND window);
ADESK_EXPORT HWND GetFocus();
/// The whole window and those in it are painted anew before the next input; `erase` takes pictures shown in them away.
ADESK_EXPORT BOOL InvalidateRect(HWND window, LPCRECT area, BOOL erase);
/// Paints now what is invalid.
ADESK_EXPORT BOOL UpdateWindow(HWND window);
ADESK_EXPORT BOOL GetClientRect(HWND window, LPRECT out);
ADESK_EXPORT BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
inline const HWND HWND_TOP = nullptr;
inline const HWND HWND_BOTTOM = reinterpret_cast<HWND>(static_cast<INT_PTR>(1));
inline const HWND HWND_TOPMOST = reinterpret_cast<HWND>(static_cast<INT_PTR>(-1));
inline const HWND HWND_NOTOPMOST = reinterpret_cast<HWND>(static_cast<INT_PTR>(-2));
inline constexpr UINT SWP_NOSIZE = 1;
inline constexpr UINT SWP_NOMOVE = 2;
inline constexpr UINT SWP_NOZORDER = 4;
inline constexpr UINT SWP_NOACTIVATE = 0x10;
/// `after` is one of the four values above: windows are not put behind single other ones.
ADESK_EXPORT BOOL SetWindowPos(HWND window, HWND after, int x, int y, int width, int height, UINT flags);
/// The dialog that has the focus; null when none has it.
ADESK_EXPORT HWND GetActiveWindow();
ADESK_EXPORT UINT RegisterWindowMessageW(LPCWSTR name);
/// WH_CBT only, with HCBT_CREATEWND only: `wParam` is the window that comes into being.
ADESK_EXPORT HHOOK SetWindowsHookExW(int kind, HOOKPROC procedure, HINSTANCE module, DWORD thread);
ADESK_EXPORT BOOL UnhookWindowsHookEx(HHOOK hook);
ADESK_EXPORT LRESULT CallNextHookEx(HHOOK hook, int code, WPARAM wParam, LPARAM lParam);

// ---- dialogs --------------------------------------------------------------------------------------------------------
inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDABORT = 3;
inline constexpr int IDRETRY = 4;
inline constexpr int IDIGNORE = 5;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;
inline constexpr int IDCLOSE = 8;
inline constexpr int IDTRYAGAIN = 10;
inline constexpr int IDCONTINUE = 11;
inline constexpr UINT MB_OK = 0x0;
inline constexpr UINT MB_OKCANCEL = 0x1;
inline constexpr UINT MB_ABORTRETRYIGNORE = 0x2;
inline constexpr UINT MB_YESNOCANCEL = 0x3;
inline constexpr UINT MB_YESNO = 0x4;
inline constexpr UINT MB_RETRYCANCEL = 0x5;
inline constexpr UINT MB_CANCELTRYCONTINUE = 0x6;
inline constexpr UINT MB_ICONERROR = 0x10;
inline constexpr UINT MB_ICONQUESTION = 0x20;
inline constexpr UINT MB_ICONEXCLAMATION = 0x30;
inline constexpr UINT MB_ICONINFORMATION = 0x40;
inline constexpr UINT MB_ICONMASK = 0xF0;
inline constexpr UINT MB_DEFBUTTON2 = 0x100;
inline constexpr UINT MB_DEFBUTTON3 = 0x200;
inline constexpr UINT MB_TYPEMASK = 0xF;
inline constexpr UINT MB_TASKMODAL = 0x2000;

/// What EndDialog was given; -1 when the template cannot be used.
ADESK_EXPORT INT_PTR DialogBoxIndirectParamW(HINSTANCE module, LPCDLGTEMPLATE dialogTemplate, HWND parent,
                                             DLGPROC procedure, LPARAM parameter);
ADESK_EXPORT INT_PTR DialogBoxParamW(HINSTANCE module, LPCWSTR name, HWND parent, DLGPROC procedure, LPARAM parameter);
/// A modeless dialog; null when the template cannot be used.
ADESK_EXPORT HWND CreateDialogIndirectParamW(HINSTANCE module, LPCDLGTEMPLATE dialogTemplate, HWND parent,
                                             DLGPROC procedure, LPARAM parameter);
ADESK_EXPORT BOOL EndDialog(HWND dialog, INT_PTR result);
/// Dialog units to pixels, in the dialog's font.
ADESK_EXPORT BOOL MapDialogRect(HWND dialog, LPRECT rect);
/// value * numerator / denominator, rounded to the nearest; -1 for a zero denominator or a result out of range.
ADESK_EXPORT int MulDiv(int value, int numerator, int denominator);
/// 0 for button types that are not defined (last error 1438): nothing is shown then.
ADESK_EXPORT int MessageBoxW(HWND parent, LPCWSTR text, LPCWSTR caption, UINT type);

// ---- modules and resources ------------------------------------------------------------------------------------------
#define RT_STRING MAKEINTRESOURCEW(6)
#define RT_DIALOG MAKEINTRESOURCEW(5)
inline constexpr DWORD GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT = 0x2;
inline constexpr DWORD GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS = 0x4;
inline constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400;
inline constexpr DWORD ERROR_INVALID_MSGBOX_STYLE = 1438;
inline constexpr DWORD ERROR_INVALID_DATA = 13;
inline constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
inline constexpr DWORD ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;
inline constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814;

/// Only by an address inside the module, with both flags.
ADESK_EXPORT BOOL GetModuleHandleExW(DWORD flags, LPCWSTR address, HMODULE* module);
ADESK_EXPORT HRSRC FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type);
ADESK_EXPORT HGLOBAL LoadResource(HMODULE module, HRSRC resource);
ADESK_EXPORT LPVOID LockResource(HGLOBAL resource);
ADESK_EXPORT DWORD SizeofResource(HMODULE module, HRSRC resource);
/// Characters copied, cut to the buffer; 0 when there is no such string.
ADESK_EXPORT int LoadStringW(HINSTANCE module, UINT id, LPWSTR buffer, int size);
ADESK_EXPORT DWORD GetLastError();
ADESK_EXPORT void SetLastError(DWORD error);

// ---- painting -------------------------------------------------------------------------------------------------------
inline constexpr UINT DT_LEFT = 0;
inline constexpr UINT DT_CENTER = 1;
inline constexpr UINT DT_VCENTER = 4;
inline constexpr UINT DT_SINGLELINE = 0x20;
inline constexpr int COLOR_WINDOW = 5;
inline constexpr int COLOR_WINDOWTEXT = 8;
inline constexpr int COLOR_HIGHLIGHT = 13;
inline constexpr int COLOR_HIGHLIGHTTEXT = 14;
inline constexpr int COLOR_GRAYTEXT = 17;

ADESK_EXPORT COLORREF GetSysColor(int index);
ADESK_EXPORT HBRUSH CreateSolidBrush(COLORREF color);
ADESK_EXPORT BOOL DeleteObject(HGDIOBJ object);
ADESK_EXPORT int FillRect(HDC dc, LPCRECT area, HBRUSH brush);
ADESK_EXPORT int FrameRect(HDC dc, LPCRECT area, HBRUSH brush);
ADESK_EXPORT COLORREF SetTextColor(HDC dc, COLORREF color);
/// One line, centred vertically; `length` -1 for text with a terminator. Answers 0 when nothing can be drawn.
ADESK_EXPORT int DrawTextW(HDC dc, LPCWSTR text, int length, LPRECT area, UINT format);
/// The device context of the WM_PAINT being handled; null outside of it.
ADESK_EXPORT HDC BeginPaint(HWND window, PAINTSTRUCT* paint);
ADESK_EXPORT BOOL EndPaint(HWND window, const PAINTSTRUCT* paint);

// ---- names without a letter ----------------------------------------------------------------------------------------
// Windows' headers name the wide functions so by macros. They rename members of classes as well: in a class derived
// from CWnd the global function has to be called as ::SendMessageW.
#define GetWindowText GetWindowTextW
#define GetWindowTextLength GetWindowTextLengthW
#define LoadString LoadStringW
#define MessageBox MessageBoxW
#define PostMessage PostMessageW
#define SendDlgItemMessage SendDlgItemMessageW
#define SendMessage SendMessageW
#define SetDlgItemText SetDlgItemTextW
#define SetWindowText SetWindowTextW

#include "winbase.h"
