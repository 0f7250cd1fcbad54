#include <algorithm>
#include <array>
#include <cwctype>

#include "afxwin.h"
#include "tchar.h"

int CString::CompareNoCase(LPCWSTR other) const { return _wcsicmp(text_.c_str(), other); }

CString CString::Mid(int first, int count) const {
  const int begin = std::clamp(first, 0, GetLength());
  const int length = std::clamp(count, 0, GetLength() - begin);
  return {text_.c_str() + begin, length};
}

CString CString::Right(int count) const {
  const int length = std::clamp(count, 0, GetLength());
  return Mid(GetLength() - length, length);
}

CString& CString::Trim() {
  const auto isInk = [](wchar_t c) { return std::iswspace(static_cast<std::wint_t>(c)) == 0; };
  text_.erase(std::find_if(text_.rbegin(), text_.rend(), isInk).base(), text_.end());
  text_.erase(text_.begin(), std::find_if(text_.begin(), text_.end(), isInk));
  return *this;
}

CString& CString::MakeLower() {
  for (wchar_t& c : text_) c = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(c)));
  return *this;
}

int CString::Replace(LPCWSTR from, LPCWSTR to) {
  const std::wstring_view wanted(from);
  const std::wstring_view put(to);
  int count = 0;
  if (wanted.empty()) return count;
  for (std::size_t at = text_.find(wanted); at != std::wstring::npos; at = text_.find(wanted, at + put.size())) {
    text_.replace(at, wanted.size(), put);
    ++count;
  }
  return count;
}

void CString::Format(LPCWSTR format, ...) {
  // The text may be longer than any first guess; a call that had to cut it is repeated with twice the room.
  for (std::size_t size = 256;; size *= 2) {
    std::wstring buffer(size, L'\0');
    std::va_list arguments;
    va_start(arguments, format);
    const int written = _vsnwprintf(buffer.data(), size, format, arguments);
    va_end(arguments);
    if (written < 0 && size < 0x1000000) continue;
    text_.assign(buffer.c_str());
    return;
  }
}

BOOL CString::LoadString(UINT id) {
  constexpr int kLongestString = 4096;  // the compiler's own limit
  std::array<wchar_t, kLongestString + 1> buffer{};
  const int length = ::LoadStringW(AfxGetResourceHandle(), id, buffer.data(), static_cast<int>(buffer.size()));
  text_.assign(buffer.data(), static_cast<std::size_t>(length));
  return length > 0 ? TRUE : FALSE;
}

LPWSTR CString::GetBuffer(int length) {
  text_.resize(static_cast<std::size_t>(std::max(length, GetLength())) + 1);
  return text_.data();
}

void CString::ReleaseBuffer(int length) {
  text_.resize(length >= 0 ? static_cast<std::size_t>(length) : std::wstring(text_.c_str()).size());
}
