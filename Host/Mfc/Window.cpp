// Windows as objects: which object a window belongs to, and how messages find their handlers.
#include <exception>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "afxwin.h"

namespace {

/// Objects that plug-ins have attached, and passing ones made for windows that have none.
struct Objects {
  std::map<HWND, CWnd*> attached;
  std::map<HWND, std::unique_ptr<CWnd>> passing;
};

// Never destroyed: plug-ins' globals may reach it after main.
Objects& objects() {
  static auto& all = *new Objects;
  return all;
}

struct FailedExchange {};

/// A text that the window copies into a buffer of the length it names first.
CString fetchedText(const CWnd& window, UINT lengthMessage, UINT textMessage, int index) {
  const LRESULT length = window.SendMessage(lengthMessage, static_cast<WPARAM>(index));
  CString text;
  if (length < 0) return text;
  window.SendMessage(textMessage, static_cast<WPARAM>(index),
                     reinterpret_cast<LPARAM>(text.GetBuffer(static_cast<int>(length))));
  text.ReleaseBuffer();
  return text;
}

void tellOfFailure(std::string_view what) noexcept {
  try {
    const std::wstring shown(what.begin(), what.end());
    AfxMessageBox((what.empty() ? L"A message handler failed." : L"A message handler failed: " + shown).c_str());
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): there is no memory to tell the plug-in with
  }
}

}  // namespace

CWnd::~CWnd() {
  if (former_ == nullptr) return;
  SetWindowLongPtrW(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(former_));
  detach();
}

CWnd* CWnd::attached(HWND window) {
  const auto found = objects().attached.find(window);
  return found != objects().attached.end() ? found->second : nullptr;
}

CWnd* CWnd::FromHandle(HWND window) {
  if (window == nullptr) return nullptr;
  if (CWnd* const object = attached(window)) return object;
  std::erase_if(objects().passing, [](const auto& each) { return IsWindow(each.first) == FALSE; });
  std::unique_ptr<CWnd>& object = objects().passing[window];
  if (object == nullptr) {
    object = std::make_unique<CWnd>();
    object->m_hWnd = window;
  }
  return object.get();
}

void CWnd::attach(HWND window) {
  objects().attached[window] = this;
  m_hWnd = window;
  former_ =
      reinterpret_cast<WNDPROC>(SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CWnd::procedure)));
}

void CWnd::detach() {
  objects().attached.erase(m_hWnd);
  m_hWnd = nullptr;
  former_ = nullptr;
}

BOOL CWnd::SubclassWindow(HWND window) {
  if (m_hWnd != nullptr || IsWindow(window) == FALSE || attached(window) != nullptr) return FALSE;
  attach(window);
  PreSubclassWindow();
  return TRUE;
}

LRESULT CALLBACK CWnd::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  CWnd* const object = attached(window);
  if (object == nullptr) return ::DefWindowProcW(window, message, wParam, lParam);
  const Message outer = object->current_;
  object->current_ = {message, wParam, lParam};
  LRESULT result = 0;
  // Nothing may be thrown through the system's calls.
  try {
    result = object->WindowProc(message, wParam, lParam);
  } catch (const std::bad_alloc&) {
    tellOfFailure("there is not enough memory");
  } catch (const std::exception& failure) {
    tellOfFailure(failure.what());
  } catch (...) {
    tellOfFailure({});
  }
  // The handler may have destroyed the object with its window.
  if (attached(window) != object) return result;
  object->current_ = outer;
  if (message == WM_NCDESTROY) object->detach();
  return result;
}

bool CWnd::callHandler(UINT message, WORD code, int id, WPARAM wParam, LPARAM lParam, LRESULT* result) {
  for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr; map = map->base != nullptr ? map->base() : nullptr) {
    for (const AFX_MSGMAP_ENTRY* entry = map->entries; entry->call != nullptr; ++entry) {
      if (entry->message != message || entry->code != code || entry->id != id) continue;
      *result = entry->call(*this, wParam, lParam);
      return true;
    }
  }
  return false;
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  LRESULT result = 0;
  if (message == WM_COMMAND) {
    if (OnCommand(wParam, lParam) != FALSE) return TRUE;
  } else if (message == WM_DRAWITEM) {
    const auto* const draw = reinterpret_cast<LPDRAWITEMSTRUCT>(lParam);
    CWnd* const control = attached(draw->hwndItem);
    if (control != nullptr && control->OnChildNotify(message, wParam, lParam, &result) != FALSE) return TRUE;
  } else if (callHandler(message, 0, 0, wParam, lParam, &result)) {
    return result;
  }
  return DefWindowProc(message, wParam, lParam);
}

BOOL CWnd::OnCommand(WPARAM wParam, LPARAM lParam) {
  LRESULT result = 0;
  CWnd* const control = attached(reinterpret_cast<HWND>(lParam));
  if (control != nullptr && control->OnChildNotify(WM_COMMAND, wParam, lParam, &result) != FALSE) return TRUE;
  return callHandler(WM_COMMAND, HIWORD(wParam), LOWORD(wParam), wParam, lParam, &result) ? TRUE : FALSE;
}

BOOL CWnd::OnChildNotify(UINT, WPARAM, LPARAM, LRESULT*) { return FALSE; }

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  return CallWindowProcW(former_ != nullptr ? former_ : &::DefWindowProcW, m_hWnd, message, wParam, lParam);
}

LRESULT CWnd::Default() { return DefWindowProc(current_.message, current_.wParam, current_.lParam); }

int CWnd::OnCreate(LPCREATESTRUCT) { return static_cast<int>(Default()); }

const AFX_MSGMAP* CWnd::GetMessageMap() const { return GetThisMessageMap(); }

const AFX_MSGMAP* CWnd::GetThisMessageMap() {
  static const AFX_MSGMAP_ENTRY entries[] = {{0, 0, 0, nullptr}};
  static const AFX_MSGMAP map = {nullptr, entries};
  return &map;
}

void CWnd::GetWindowText(CString& text) const {
  const int length = ::GetWindowTextLengthW(m_hWnd);
  ::GetWindowTextW(m_hWnd, text.GetBuffer(length), length + 1);
  text.ReleaseBuffer();
}

BOOL CWnd::UpdateData(BOOL saveAndValidate) {
  CDataExchange exchange(this, saveAndValidate);
  try {
    DoDataExchange(&exchange);
  } catch (const FailedExchange&) {
    return FALSE;
  }
  return TRUE;
}

// ---- data exchange --------------------------------------------------------------------------------------------------

void CDataExchange::Fail() { throw FailedExchange(); }

void DDX_Control(CDataExchange* exchange, int id, CWnd& control) {
  if (control.m_hWnd != nullptr) return;
  if (control.SubclassWindow(GetDlgItem(exchange->m_pDlgWnd->m_hWnd, id)) == FALSE) exchange->Fail();
}

// ---- controls -------------------------------------------------------------------------------------------------------

void CComboBox::GetLBText(int index, CString& text) const {
  text = fetchedText(*this, CB_GETLBTEXTLEN, CB_GETLBTEXT, index);
}

void CListBox::GetText(int index, CString& text) const { text = fetchedText(*this, LB_GETTEXTLEN, LB_GETTEXT, index); }

BOOL CComboBox::OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result) {
  if (message != WM_DRAWITEM) return CWnd::OnChildNotify(message, wParam, lParam, result);
  DrawItem(reinterpret_cast<LPDRAWITEMSTRUCT>(lParam));
  return TRUE;
}

CPaintDC::CPaintDC(CWnd* window) : window_(window->m_hWnd) { BeginPaint(window_, &m_ps); }

CPaintDC::~CPaintDC() { EndPaint(window_, &m_ps); }
