// What controls do with their messages.
#include <algorithm>
#include <cstring>
#include <cwchar>

#include "Text/Text.h"
#include "Win32/WindowObject.h"

namespace host::win32 {
namespace {

LPCWSTR asText(LPARAM lParam) { return reinterpret_cast<LPCWSTR>(lParam); }
std::wstring_view orEmpty(LPARAM lParam) {
  return lParam != 0 ? std::wstring_view(asText(lParam)) : std::wstring_view();
}

LRESULT copyText(std::wstring_view text, WPARAM size, LPARAM buffer) {
  auto* const out = reinterpret_cast<LPWSTR>(buffer);
  if (out == nullptr || size == 0) return 0;
  const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size) - 1);
  std::copy_n(text.data(), count, out);
  out[count] = 0;
  return static_cast<LRESULT>(count);
}

// ---- lists ----------------------------------------------------------------------------------------------------------

// Combo boxes and list boxes do the same under different numbers.
struct ListMessages {
  UINT add, insert, remove, reset, setCurrent, current, text, textLength, count, data, setData, find;
};
constexpr ListMessages kComboMessages{CB_ADDSTRING, CB_INSERTSTRING, CB_DELETESTRING, CB_RESETCONTENT,
                                      CB_SETCURSEL, CB_GETCURSEL,    CB_GETLBTEXT,    CB_GETLBTEXTLEN,
                                      CB_GETCOUNT,  CB_GETITEMDATA,  CB_SETITEMDATA,  CB_FINDSTRINGEXACT};
constexpr ListMessages kListMessages{LB_ADDSTRING, LB_INSERTSTRING, LB_DELETESTRING, LB_RESETCONTENT,
                                     LB_SETCURSEL, LB_GETCURSEL,    LB_GETTEXT,      LB_GETTEXTLEN,
                                     LB_GETCOUNT,  LB_GETITEMDATA,  LB_SETITEMDATA,  LB_FINDSTRINGEXACT};

LRESULT insertItem(HostWindow& list, int at, std::wstring_view text) {
  const int count = list.widget->count();
  if (at < -1 || at > count) return CB_ERR;
  if (at == -1) at = count;
  // Items and their data are of one number, also when memory ends between the two.
  list.itemData.insert(list.itemData.begin() + at, 0);
  try {
    list.widget->insertItem(at, text);
  } catch (...) {
    list.itemData.erase(list.itemData.begin() + at);
    throw;
  }
  return at;
}

LRESULT addItem(HostWindow& list, std::wstring_view text) {
  const bool isSorted = (list.style & (list.kind == WindowKind::ComboBox ? CBS_SORT : LBS_SORT)) != 0;
  int at = list.widget->count();
  if (isSorted) {
    at = 0;
    while (at < list.widget->count() && text::folded(list.widget->item(at)) <= text::folded(text)) ++at;
  }
  return insertItem(list, at, text);
}

/// The first item of the text after `after`, around the end.
LRESULT findItem(HostWindow& list, int after, std::wstring_view text) {
  const int count = list.widget->count();
  for (int i = 1; i <= count; ++i) {
    const int item = (std::max(after, -1) + i) % count;
    if (text::equalFolded(list.widget->item(item), text)) return item;
  }
  return CB_ERR;
}

bool handleList(HostWindow& list, const ListMessages& messages, UINT message, WPARAM wParam, LPARAM lParam,
                LRESULT& result) {
  Widget& widget = *list.widget;
  const int index = static_cast<int>(wParam);
  const bool isItem = index >= 0 && index < widget.count();
  if (message == messages.add) {
    result = addItem(list, orEmpty(lParam));
  } else if (message == messages.insert) {
    result = insertItem(list, index, orEmpty(lParam));
  } else if (message == messages.remove) {
    result = CB_ERR;
    if (!isItem) return true;
    widget.removeItem(index);
    list.itemData.erase(list.itemData.begin() + index);
    result = widget.count();
  } else if (message == messages.reset) {
    widget.clear();
    list.itemData.clear();
    result = 0;
  } else if (message == messages.setCurrent) {
    widget.setCurrent(isItem ? index : -1);
    result = isItem ? index : CB_ERR;
  } else if (message == messages.current) {
    result = widget.current();
  } else if (message == messages.text) {
    result = CB_ERR;
    if (!isItem || lParam == 0) return true;
    const std::wstring text = widget.item(index);
    result = copyText(text, text.size() + 1, lParam);
  } else if (message == messages.textLength) {
    result = isItem ? static_cast<LRESULT>(widget.item(index).size()) : CB_ERR;
  } else if (message == messages.count) {
    result = widget.count();
  } else if (message == messages.data) {
    result = isItem ? list.itemData[static_cast<std::size_t>(index)] : CB_ERR;
  } else if (message == messages.setData) {
    if (isItem) list.itemData[static_cast<std::size_t>(index)] = lParam;
    result = isItem ? 0 : CB_ERR;
  } else if (message == messages.find) {
    result = findItem(list, index, orEmpty(lParam));
  } else {
    return false;
  }
  return true;
}

// ---- the others -----------------------------------------------------------------------------------------------------

bool handleButton(HostWindow& button, UINT message, WPARAM wParam, LRESULT& result) {
  result = 0;
  if (message == BM_GETCHECK) result = button.widget->isChecked() ? BST_CHECKED : BST_UNCHECKED;
  if (message == BM_SETCHECK) button.widget->setChecked(wParam != BST_UNCHECKED);
  if (message == BM_CLICK) button.widget->click();
  return message == BM_GETCHECK || message == BM_SETCHECK || message == BM_CLICK;
}

bool handleEdit(HostWindow& edit, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
  result = 0;
  switch (message) {
    case EM_SETSEL:
      edit.widget->select(static_cast<int>(wParam), static_cast<int>(lParam));
      return true;
    case EM_REPLACESEL:
      edit.widget->replaceSelection(orEmpty(lParam));
      return true;
    case EM_SCROLLCARET:
      edit.widget->scrollToCaret();
      return true;
    case EM_SETREADONLY:
      edit.style = wParam != 0 ? edit.style | ES_READONLY : edit.style & ~ES_READONLY;
      edit.widget->setReadOnly(wParam != 0);
      result = TRUE;
      return true;
    case WM_CHAR:
      edit.widget->type(static_cast<wchar_t>(wParam));
      return true;
    default:
      return false;
  }
}

/// Radio buttons of one group: from a button with the group style up to the next control that has it.
void checkRadio(HostWindow& radio) {
  std::vector<HostWindow*> group;
  for (const auto& child : radio.parent->children) {
    if ((child->style & WS_GROUP) != 0) {
      if (std::find(group.begin(), group.end(), &radio) != group.end()) break;
      group.clear();
    }
    group.push_back(child.get());
  }
  for (HostWindow* each : group) {
    if (each->kind == WindowKind::Button && each->buttonType() == BS_AUTORADIOBUTTON)
      each->widget->setChecked(each == &radio);
  }
}

}  // namespace

LRESULT CALLBACK controlProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  LRESULT result = 0;
  bool isHandled = false;
  switch (window->kind) {
    case WindowKind::ComboBox:
      isHandled = handleList(*window, kComboMessages, message, wParam, lParam, result);
      break;
    case WindowKind::ListBox:
      isHandled = handleList(*window, kListMessages, message, wParam, lParam, result);
      break;
    case WindowKind::Button:
      isHandled = handleButton(*window, message, wParam, result);
      break;
    case WindowKind::Edit:
      isHandled = handleEdit(*window, message, wParam, lParam, result);
      break;
    default:
      break;
  }
  return isHandled ? result : DefWindowProcW(window, message, wParam, lParam);
}

// ---- what widgets report --------------------------------------------------------------------------------------------

void widgetClicked(HostWindow& button) {
  recordPressed(button);
  if (button.buttonType() == BS_AUTORADIOBUTTON && button.parent != nullptr) checkRadio(button);
  notifyParent(button, BN_CLICKED);
}

void widgetTextChanged(HostWindow& edit) { notifyParent(edit, EN_CHANGE); }

void widgetEdited(HostWindow& edit) { recordEdited(edit); }

void widgetChosen(HostWindow& list) {
  recordChosen(list);
  if (list.kind == WindowKind::ComboBox) {
    notifyParent(list, CBN_SELENDOK);
    notifyParent(list, CBN_SELCHANGE);
  } else if ((list.style & LBS_NOTIFY) != 0) {
    notifyParent(list, LBN_SELCHANGE);
  }
}

void widgetPressed(HostWindow& window, int x, int y) {
  SendMessageW(&window, WM_LBUTTONDOWN, 0, MAKELPARAM(static_cast<WORD>(x), static_cast<WORD>(y)));
}

void widgetDoubleClicked(HostWindow& list) {
  recordDoubleClicked(list);
  if (list.kind == WindowKind::ListBox && (list.style & LBS_NOTIFY) != 0) notifyParent(list, LBN_DBLCLK);
}

}  // namespace host::win32

using namespace host::win32;

LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (!IsWindow(window)) return 0;
  switch (message) {
    case WM_SETTEXT:
      window->widget->setText(orEmpty(lParam));
      return TRUE;
    case WM_GETTEXT:
      return copyText(window->widget->text(), wParam, lParam);
    case WM_GETTEXTLENGTH:
      return static_cast<LRESULT>(window->widget->text().size());
    case WM_CLOSE:
      DestroyWindow(window);
      return 0;
    default:
      return 0;
  }
}
