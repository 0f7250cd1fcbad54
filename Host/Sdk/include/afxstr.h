// MFC's string.
#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

#include "adesk.h"
#include "windows.h"

/// A wide string by value.
class ADESK_EXPORT CString {
 public:
  CString() = default;
  CString(LPCWSTR text) : text_(text != nullptr ? text : L"") {}
  CString(LPCWSTR text, int length) : text_(text, static_cast<std::size_t>(length)) {}

  operator LPCWSTR() const { return text_.c_str(); }
  LPCWSTR GetString() const { return text_.c_str(); }
  int GetLength() const { return static_cast<int>(text_.size()); }
  bool IsEmpty() const { return text_.empty(); }
  void Empty() { text_.clear(); }
  wchar_t GetAt(int index) const { return text_[static_cast<std::size_t>(index)]; }

  CString& operator+=(const CString& other) {
    text_ += other.text_;
    return *this;
  }
  friend CString operator+(const CString& a, const CString& b) { return CString(a) += b; }
  friend CString operator+(const CString& a, LPCWSTR b) { return CString(a) += CString(b); }
  friend CString operator+(LPCWSTR a, const CString& b) { return CString(a) += b; }
  friend bool operator==(const CString& a, const CString& b) { return a.text_ == b.text_; }
  friend bool operator==(const CString& a, LPCWSTR b) { return a.text_ == b; }

  int Compare(LPCWSTR other) const { return text_.compare(other); }
  int CompareNoCase(LPCWSTR other) const;
  /// -1 when it is not there.
  int Find(LPCWSTR part, int start = 0) const { return position(text_.find(part, static_cast<std::size_t>(start))); }
  int ReverseFind(wchar_t character) const { return position(text_.rfind(character)); }
  CString Left(int count) const { return Mid(0, count); }
  CString Right(int count) const;
  /// Indices and counts outside the string are cut.
  CString Mid(int first) const { return Mid(first, GetLength()); }
  CString Mid(int first, int count) const;
  /// Takes white space off both ends.
  CString& Trim();
  CString& MakeLower();
  /// Number of replacements.
  int Replace(LPCWSTR from, LPCWSTR to);

  /// Microsoft's wide formatting; see acutPrintf.
  void Format(LPCWSTR format, ...);
  /// From the string table of the current resources; false and empty when there is no such string.
  BOOL LoadString(UINT id);

  /// Room for `length` characters and the terminator, until ReleaseBuffer.
  LPWSTR GetBuffer(int length);
  /// -1: up to the first terminator.
  void ReleaseBuffer(int length = -1);

 private:
  static int position(std::size_t found) { return found == std::wstring::npos ? -1 : static_cast<int>(found); }

  std::wstring text_;
};
