// Controls that nobody sees, for programs without a toolkit: scripts work dialogs with them, and users cannot.
#include <algorithm>
#include <cwctype>

#include "Win32/WindowObject.h"
#include "adesk.h"

namespace host::widgets {
namespace {

using win32::WindowKind;

class NoCanvas final : public win32::Canvas {
 public:
  void fill(const RECT&, COLORREF) override {}
  void frame(const RECT&, COLORREF) override {}
  void text(const RECT&, std::wstring_view, COLORREF, bool) override {}
};

class PlainWidget : public win32::Widget {
 public:
  explicit PlainWidget(HostWindow& window) : window_(window) {}
  void setEnabled(bool enabled) override { isEnabled_ = enabled; }
  void paintNow() override {
    NoCanvas canvas;
    win32::widgetPainted(window_, canvas);
  }
  std::wstring text() const override { return text_; }
  void setText(std::wstring_view text) override { text_ = text; }

 protected:
  HostWindow& window_;
  std::wstring text_;
  bool isEnabled_ = true;
};

class PlainButton final : public PlainWidget {
 public:
  using PlainWidget::PlainWidget;
  bool isChecked() const override { return isChecked_; }
  void setChecked(bool checked) override { isChecked_ = checked && isCheckable(); }
  void click() override {
    if (!isEnabled_) return;
    if (isCheckable()) isChecked_ = !isChecked_;
    win32::widgetClicked(window_);
  }

 private:
  bool isCheckable() const {
    const DWORD type = window_.buttonType();
    return type == BS_CHECKBOX || type == BS_AUTOCHECKBOX || type == BS_RADIOBUTTON || type == BS_AUTORADIOBUTTON;
  }
  bool isChecked_ = false;
};

class PlainEdit final : public PlainWidget {
 public:
  PlainEdit(HostWindow& window, bool hasLines) : PlainWidget(window), hasLines_(hasLines) {}
  void setText(std::wstring_view text) override {
    std::wstring fresh(text);
    if (hasLines_) fresh.erase(std::remove(fresh.begin(), fresh.end(), L'\r'), fresh.end());
    const bool isOther = fresh != text_;
    text_ = std::move(fresh);
    begin_ = end_ = hasLines_ ? 0 : text_.size();
    if (isOther || hasLines_) win32::widgetTextChanged(window_);
  }
  void setReadOnly(bool readOnly) override { isReadOnly_ = readOnly; }
  void setNumeric() override { isNumeric_ = true; }
  void select(int begin, int end) override {
    const auto within = [this](int place) {
      return place < 0 ? text_.size() : std::min(static_cast<std::size_t>(place), text_.size());
    };
    begin_ = within(std::max(begin, 0));
    end_ = std::max(begin_, within(end));
  }
  void replaceSelection(std::wstring_view text) override {
    text_.replace(begin_, end_ - begin_, text);
    begin_ = end_ = begin_ + text.size();
    if (!hasLines_) win32::widgetEdited(window_);
    win32::widgetTextChanged(window_);
  }
  void type(wchar_t character) override {
    if (!isEnabled_ || isReadOnly_ || character < L' ') return;
    if ((window_.style & ES_NUMBER) != 0 && std::iswdigit(static_cast<std::wint_t>(character)) == 0) return;
    if (isNumeric_ && character == L',') character = L'.';
    replaceSelection({&character, 1});
  }

 private:
  bool hasLines_;
  bool isReadOnly_ = false, isNumeric_ = false;
  std::size_t begin_ = 0, end_ = 0;  // of the selection
};

class PlainList final : public PlainWidget {
 public:
  using PlainWidget::PlainWidget;
  std::wstring text() const override {
    if (window_.kind != WindowKind::ComboBox) return text_;
    return current_ >= 0 ? items_[static_cast<std::size_t>(current_)] : std::wstring();
  }
  int count() const override { return static_cast<int>(items_.size()); }
  std::wstring item(int index) const override { return items_[static_cast<std::size_t>(index)]; }
  void insertItem(int index, std::wstring_view text) override {
    items_.insert(items_.begin() + index, std::wstring(text));
    if (current_ >= index) ++current_;
  }
  void removeItem(int index) override {
    items_.erase(items_.begin() + index);
    if (current_ == index) current_ = -1;
    if (current_ > index) --current_;
  }
  void clear() override {
    items_.clear();
    current_ = -1;
  }
  int current() const override { return current_; }
  void setCurrent(int index) override { current_ = index; }

 private:
  std::vector<std::wstring> items_;
  int current_ = -1;
};

class PlainSystem final : public win32::WidgetSystem {
 public:
  win32::BaseUnits measure(const win32::DialogFont&) override { return {6, 13}; }
  std::unique_ptr<win32::Widget> make(HostWindow& window, const win32::DialogFont*) override {
    switch (window.kind) {
      case WindowKind::Button:
        return std::make_unique<PlainButton>(window);
      case WindowKind::Edit:
        return std::make_unique<PlainEdit>(window, (window.style & ES_MULTILINE) != 0);
      case WindowKind::ListBox:
      case WindowKind::ComboBox:
        return std::make_unique<PlainList>(window);
      default:
        return std::make_unique<PlainWidget>(window);
    }
  }
  void waitForEvents() override {}
  std::wstring askFolder(HostWindow*, std::wstring_view) override { return {}; }
  int messageBox(HostWindow*, std::wstring_view, std::wstring_view, UINT) override { return IDCANCEL; }
  std::wstring askFile(HostWindow*, const win32::FileQuestion&) override { return {}; }
};

}  // namespace
}  // namespace host::widgets

extern "C" ADESK_EXPORT host::win32::WidgetSystem* tolmexMakeWidgetSystem(bool onScreen) {
  static host::widgets::PlainSystem system;
  return onScreen ? nullptr : &system;
}
