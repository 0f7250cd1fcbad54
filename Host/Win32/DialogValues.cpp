#include "Win32/DialogValues.h"

#include <optional>

namespace host::win32 {

std::wstring inQuotes(std::wstring_view text) { return L"\"" + std::wstring(text) + L"\""; }

std::wstring captionOf(HostWindow& control) {
  std::wstring caption = textOf(control);
  for (std::size_t i = 0; i < caption.size(); ++i) {
    if (caption[i] == L'&') caption.erase(i, 1);
  }
  return caption;
}

bool isCheckBox(const HostWindow& control) {
  return control.kind == WindowKind::Button &&
         (control.buttonType() == BS_AUTOCHECKBOX || control.buttonType() == BS_CHECKBOX);
}

bool isList(const HostWindow& control) {
  return control.kind == WindowKind::ComboBox || control.kind == WindowKind::ListBox;
}

std::wstring labelOf(HostWindow& text) {
  std::wstring label;
  for (const wchar_t c : captionOf(text)) {
    const bool isBlank = c == L' ' || c == L'\t';
    if (!isBlank || (!label.empty() && label.back() != L' ')) label += isBlank ? L' ' : c;
  }
  while (label.ends_with(L' ') || label.ends_with(L':')) label.pop_back();
  return label;
}

namespace {

bool isRadio(const HostWindow& control) {
  return control.kind == WindowKind::Button &&
         (control.buttonType() == BS_AUTORADIOBUTTON || control.buttonType() == BS_RADIOBUTTON);
}

/// As a script would give it; nothing of what holds no value.
std::optional<std::wstring> valueOf(HostWindow& control) {
  if (isCheckBox(control) || isRadio(control)) return control.widget->isChecked() ? L"on" : L"off";
  if (control.kind == WindowKind::ComboBox || control.kind == WindowKind::ListBox) {
    const int current = control.widget->current();
    return current < 0 ? std::wstring() : control.widget->item(current);
  }
  if (control.kind == WindowKind::Edit) return control.widget->text();
  return std::nullopt;
}

std::wstring shown(const std::wstring& value) {
  return value.empty() || value.find_first_of(L" ,") != std::wstring::npos ? inQuotes(value) : value;
}

/// `before` stands in front of it in the dialog's order; null for the first.
std::wstring nameOf(HostWindow& control, HostWindow* before) {
  std::wstring name;
  if (control.kind == WindowKind::Button) {
    name = captionOf(control);
  } else if (before != nullptr && before->kind == WindowKind::Static) {
    name = labelOf(*before);
  }
  return name.empty() ? std::to_wstring(control.id) : name;
}

}  // namespace

DialogValues::DialogValues(const HostWindow& dialog) {
  for (const auto& child : dialog.children) {
    if (const auto value = valueOf(*child)) values_[child.get()] = *value;
  }
}

std::wstring DialogValues::changes(const HostWindow& dialog) const {
  std::wstring all;
  HostWindow* before = nullptr;
  for (const auto& child : dialog.children) {
    HostWindow& control = *child;
    const auto former = values_.find(&control);
    const std::optional<std::wstring> value = valueOf(control);
    // Of radio buttons the chosen one says all.
    const bool isSaid =
        value && former != values_.end() && former->second != *value && !(isRadio(control) && value == L"off");
    if (isSaid) {
      all += (all.empty() ? L"" : L", ") + nameOf(control, before);
      all += isRadio(control) ? L" chosen" : L" " + shown(former->second) + L" -> " + shown(*value);
    }
    before = &control;
  }
  return all;
}

}  // namespace host::win32
