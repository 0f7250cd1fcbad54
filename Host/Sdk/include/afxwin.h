// The part of MFC that dialogs need: windows as objects, dialogs, controls, message maps, data exchange.
#pragma once

#include "afxstr.h"

#define afx_msg

class CDataExchange;
class CWnd;

// ---- message maps ---------------------------------------------------------------------------------------------------
struct AFX_MSGMAP_ENTRY {
  UINT message;
  WORD code;                                                    // of the notification, for WM_COMMAND
  int id;                                                       // of the control, for WM_COMMAND
  LRESULT (*call)(CWnd& window, WPARAM wParam, LPARAM lParam);  // null ends the map
};

struct AFX_MSGMAP {
  const AFX_MSGMAP* (*base)();  // null for the root
  const AFX_MSGMAP_ENTRY* entries;
};

#define DECLARE_MESSAGE_MAP()                   \
 protected:                                     \
  static const AFX_MSGMAP* GetThisMessageMap(); \
  const AFX_MSGMAP* GetMessageMap() const override;

#define BEGIN_MESSAGE_MAP(theClass, baseClass)                                                \
  const AFX_MSGMAP* theClass::GetMessageMap() const { return theClass::GetThisMessageMap(); } \
  const AFX_MSGMAP* theClass::GetThisMessageMap() {                                           \
    using ThisClass [[maybe_unused]] = theClass;                                              \
    using BaseClass = baseClass;                                                              \
    static const AFX_MSGMAP_ENTRY entries[] = {
#define END_MESSAGE_MAP()                                                 \
  { 0, 0, 0, nullptr }                                                    \
  }                                                                       \
  ;                                                                       \
  static const AFX_MSGMAP map = {&BaseClass::GetThisMessageMap, entries}; \
  return &map;                                                            \
  }

// Handlers are converted as MFC does it, so that only those compile whose class and arguments MFC takes.
#define ON_CONTROL(code, id, member)                                   \
  {WM_COMMAND, code, id, [](CWnd& window, WPARAM, LPARAM) -> LRESULT { \
     (window.*static_cast<void (CWnd::*)()>(member))();                \
     return 0;                                                         \
   }},
#define ON_COMMAND(id, member) ON_CONTROL(0, id, member)
#define ON_BN_CLICKED(id, member) ON_CONTROL(BN_CLICKED, id, member)
#define ON_CBN_SELCHANGE(id, member) ON_CONTROL(CBN_SELCHANGE, id, member)
#define ON_LBN_SELCHANGE(id, member) ON_CONTROL(LBN_SELCHANGE, id, member)
#define ON_LBN_DBLCLK(id, member) ON_CONTROL(LBN_DBLCLK, id, member)
#define ON_EN_CHANGE(id, member) ON_CONTROL(EN_CHANGE, id, member)
#define ON_MESSAGE(message, member)                                                           \
  {message, 0, 0, [](CWnd& window, WPARAM wParam, LPARAM lParam) -> LRESULT {                 \
     return (window.*static_cast<LRESULT (CWnd::*)(WPARAM, LPARAM)>(member))(wParam, lParam); \
   }},
#define ON_WM_CREATE()                                                                  \
  {WM_CREATE, 0, 0, [](CWnd& window, WPARAM, LPARAM lParam) -> LRESULT {                \
     return (window.*static_cast<int (CWnd::*)(LPCREATESTRUCT)>(&ThisClass::OnCreate))( \
         reinterpret_cast<LPCREATESTRUCT>(lParam));                                     \
   }},
#define ON_WM_SIZE()                                                                                        \
  {WM_SIZE, 0, 0, [](CWnd& window, WPARAM wParam, LPARAM lParam) -> LRESULT {                               \
     const auto size = static_cast<std::uintptr_t>(lParam);                                                 \
     (window.*static_cast<void (CWnd::*)(UINT, int, int)>(&ThisClass::OnSize))(static_cast<UINT>(wParam),   \
                                                                               LOWORD(size), HIWORD(size)); \
     return 0;                                                                                              \
   }},
#define ON_WM_PAINT()                                                \
  {WM_PAINT, 0, 0, [](CWnd& window, WPARAM, LPARAM) -> LRESULT {     \
     (window.*static_cast<void (CWnd::*)()>(&ThisClass::OnPaint))(); \
     return 0;                                                       \
   }},

// ---- windows --------------------------------------------------------------------------------------------------------

/// A window. An object may stand for a window that something else made: attach it with SubclassWindow, or get a passing
/// one with FromHandle.
class ADESK_EXPORT CWnd {
 public:
  CWnd() = default;
  CWnd(const CWnd&) = delete;
  CWnd& operator=(const CWnd&) = delete;
  virtual ~CWnd();

  /// The object of a window handle, null for a null handle. Objects made here live as long as the window.
  static CWnd* FromHandle(HWND window);
  HWND GetSafeHwnd() const { return m_hWnd; }
  /// Routes the window's messages through this object from now on. False when it has a window already.
  BOOL SubclassWindow(HWND window);

  LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
    return ::SendMessageW(m_hWnd, message, wParam, lParam);
  }
  BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
    return ::PostMessageW(m_hWnd, message, wParam, lParam);
  }
  void GetWindowText(CString& text) const;
  void SetWindowText(LPCWSTR text) { ::SetWindowTextW(m_hWnd, text); }
  BOOL EnableWindow(BOOL enable = TRUE) { return ::EnableWindow(m_hWnd, enable); }
  BOOL IsWindowEnabled() const { return ::IsWindowEnabled(m_hWnd); }
  BOOL ShowWindow(int command) { return ::ShowWindow(m_hWnd, command); }
  BOOL IsWindowVisible() const { return ::IsWindowVisible(m_hWnd); }
  CWnd* SetFocus() { return FromHandle(::SetFocus(m_hWnd)); }
  void Invalidate(BOOL erase = TRUE) { InvalidateRect(m_hWnd, nullptr, erase); }
  /// Paints what is invalid now rather than later.
  void UpdateWindow() { ::UpdateWindow(m_hWnd); }
  void GetClientRect(LPRECT out) const { ::GetClientRect(m_hWnd, out); }
  CWnd* GetParent() const { return FromHandle(::GetParent(m_hWnd)); }
  CWnd* GetDlgItem(int id) const { return FromHandle(::GetDlgItem(m_hWnd, id)); }
  int GetDlgCtrlID() const { return ::GetDlgCtrlID(m_hWnd); }
  void SetDlgItemText(int id, LPCWSTR text) { ::SetWindowTextW(::GetDlgItem(m_hWnd, id), text); }
  int MessageBox(LPCWSTR text, LPCWSTR caption = nullptr, UINT type = MB_OK) {
    return ::MessageBoxW(m_hWnd, text, caption, type);
  }
  BOOL SetWindowPos(HWND after, int x, int y, int width, int height, UINT flags) {
    return ::SetWindowPos(m_hWnd, after, x, y, width, height, flags);
  }
  void MoveWindow(int x, int y, int width, int height, BOOL repaint = TRUE) {
    ::MoveWindow(m_hWnd, x, y, width, height, repaint);
  }
  /// The object stays; it can be given another window.
  virtual BOOL DestroyWindow() { return ::DestroyWindow(m_hWnd); }
  /// Runs DoDataExchange: values into controls for FALSE, out of them for TRUE. False when an exchange failed.
  BOOL UpdateData(BOOL saveAndValidate = TRUE);

  HWND m_hWnd = nullptr;

 protected:
  afx_msg int OnCreate(LPCREATESTRUCT create);
  afx_msg void OnPaint() { Default(); }
  afx_msg void OnSize(UINT, int, int) { Default(); }

  /// Before the object's first message: the window is there already.
  virtual void PreSubclassWindow() {}
  virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
  /// A notification of a child, or a command. TRUE when it was handled.
  virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
  /// A control sees its own notifications first; TRUE keeps them from the parent.
  virtual BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result);
  virtual void DoDataExchange(CDataExchange*) {}
  virtual const AFX_MSGMAP* GetMessageMap() const;
  static const AFX_MSGMAP* GetThisMessageMap();
  /// What the window did before this object came.
  virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
  /// The same for the message being handled.
  LRESULT Default();

 private:
  friend class CDialog;
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void attach(HWND window);
  void detach();
  static CWnd* attached(HWND window);
  bool callHandler(UINT message, WORD code, int id, WPARAM wParam, LPARAM lParam, LRESULT* result);

  struct Message {
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
  };
  WNDPROC former_ = nullptr;
  Message current_;
};

/// Which way data is exchanged, and with which window.
class ADESK_EXPORT CDataExchange {
 public:
  CDataExchange(CWnd* window, BOOL saveAndValidate) : m_bSaveAndValidate(saveAndValidate), m_pDlgWnd(window) {}

  BOOL m_bSaveAndValidate;
  CWnd* m_pDlgWnd;

  /// Gives the exchange up; UpdateData answers FALSE.
  [[noreturn]] void Fail();
};

/// Binds a control object to the dialog's control on the first exchange. Fails the exchange when there is no such
/// control.
ADESK_EXPORT void DDX_Control(CDataExchange* exchange, int id, CWnd& control);

// ---- controls -------------------------------------------------------------------------------------------------------
class ADESK_EXPORT CStatic : public CWnd {};

class ADESK_EXPORT CButton : public CWnd {
 public:
  int GetCheck() const { return static_cast<int>(SendMessage(BM_GETCHECK)); }
  void SetCheck(int check) { SendMessage(BM_SETCHECK, static_cast<WPARAM>(check)); }
};

class ADESK_EXPORT CEdit : public CWnd {
 public:
  void SetSel(int begin, int end) { SendMessage(EM_SETSEL, static_cast<WPARAM>(begin), end); }
  void ReplaceSel(LPCWSTR text) { SendMessage(EM_REPLACESEL, 0, reinterpret_cast<LPARAM>(text)); }
  BOOL SetReadOnly(BOOL readOnly = TRUE) {
    return static_cast<BOOL>(SendMessage(EM_SETREADONLY, static_cast<WPARAM>(readOnly)));
  }
};

class ADESK_EXPORT CComboBox : public CWnd {
 public:
  int AddString(LPCWSTR text) { return send(CB_ADDSTRING, 0, text); }
  int InsertString(int index, LPCWSTR text) { return send(CB_INSERTSTRING, index, text); }
  int DeleteString(int index) { return send(CB_DELETESTRING, index); }
  int GetCount() const { return send(CB_GETCOUNT); }
  int GetCurSel() const { return send(CB_GETCURSEL); }
  /// -1 clears the selection. No notification is sent.
  int SetCurSel(int index) { return send(CB_SETCURSEL, index); }
  void GetLBText(int index, CString& text) const;
  int FindStringExact(int after, LPCWSTR text) const { return send(CB_FINDSTRINGEXACT, after, text); }
  void ResetContent() { send(CB_RESETCONTENT); }
  DWORD_PTR GetItemData(int index) const {
    return static_cast<DWORD_PTR>(SendMessage(CB_GETITEMDATA, static_cast<WPARAM>(index)));
  }
  int SetItemData(int index, DWORD_PTR data) {
    return static_cast<int>(SendMessage(CB_SETITEMDATA, static_cast<WPARAM>(index), static_cast<LPARAM>(data)));
  }
  /// Owner-drawn boxes: paints one item.
  virtual void DrawItem(LPDRAWITEMSTRUCT) {}

 protected:
  BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) override;

 private:
  int send(UINT message, int index = 0, LPCWSTR text = nullptr) const {
    return static_cast<int>(SendMessage(message, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text)));
  }
};

class ADESK_EXPORT CListBox : public CWnd {
 public:
  int AddString(LPCWSTR text) { return send(LB_ADDSTRING, 0, text); }
  int InsertString(int index, LPCWSTR text) { return send(LB_INSERTSTRING, index, text); }
  int GetCount() const { return send(LB_GETCOUNT); }
  int GetCurSel() const { return send(LB_GETCURSEL); }
  int SetCurSel(int index) { return send(LB_SETCURSEL, index); }
  void GetText(int index, CString& text) const;
  int FindStringExact(int after, LPCWSTR text) const { return send(LB_FINDSTRINGEXACT, after, text); }
  void ResetContent() { send(LB_RESETCONTENT); }

 private:
  int send(UINT message, int index = 0, LPCWSTR text = nullptr) const {
    return static_cast<int>(SendMessage(message, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text)));
  }
};

// ---- painting -------------------------------------------------------------------------------------------------------

/// The device context of the WM_PAINT being handled.
class ADESK_EXPORT CPaintDC {
 public:
  explicit CPaintDC(CWnd* window);
  CPaintDC(const CPaintDC&) = delete;
  CPaintDC& operator=(const CPaintDC&) = delete;
  ~CPaintDC();
  HDC GetSafeHdc() const { return m_ps.hdc; }

  PAINTSTRUCT m_ps{};

 private:
  HWND window_;
};

// ---- dialogs --------------------------------------------------------------------------------------------------------

/// A dialog made from a template of the current resources: modal by DoModal, or one that stays open by CreateIndirect.
class ADESK_EXPORT CDialog : public CWnd {
 public:
  CDialog() = default;
  explicit CDialog(UINT templateId, CWnd* parent = nullptr)
      : templateName_(MAKEINTRESOURCEW(static_cast<WORD>(templateId))), parent_(parent) {}

  /// For dialogs built at run time; the template must live until DoModal returns.
  BOOL InitModalIndirect(LPCDLGTEMPLATE dialogTemplate, CWnd* parent = nullptr);
  /// A dialog that stays open while the program goes on, until DestroyWindow; OnOK and OnCancel must be overridden,
  /// they only hide it. False when it cannot be made.
  BOOL CreateIndirect(LPCDLGTEMPLATE dialogTemplate, CWnd* parent = nullptr);
  /// What EndDialog was given, or -1 when the dialog could not be made.
  virtual INT_PTR DoModal();
  void EndDialog(int result) { ::EndDialog(m_hWnd, result); }

 protected:
  /// TRUE lets the host choose the first focus.
  virtual BOOL OnInitDialog();
  virtual void OnOK();
  virtual void OnCancel() { EndDialog(IDCANCEL); }

  DECLARE_MESSAGE_MAP()

 private:
  static INT_PTR CALLBACK dialogProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static LRESULT CALLBACK createHook(int code, WPARAM wParam, LPARAM lParam);

  LPCWSTR templateName_ = nullptr;
  LPCDLGTEMPLATE template_ = nullptr;
  CWnd* parent_ = nullptr;
};

// ---- the application ------------------------------------------------------------------------------------------------

/// A box with the application's name; an exclamation mark unless the type says otherwise.
ADESK_EXPORT int AfxMessageBox(LPCWSTR text, UINT type = MB_OK, UINT help = 0);
ADESK_EXPORT LPCWSTR AfxGetAppName();
/// The module in whose resources dialogs and strings are looked up.
ADESK_EXPORT HINSTANCE AfxGetResourceHandle();
ADESK_EXPORT void AfxSetResourceHandle(HINSTANCE module);
