// The language of the window's texts; chosen once, before the first window is made.
#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace host::window {

enum class Language { Finnish, English };

Language language();
/// Installs the translations that belong to it.
void setLanguage(Language language);
/// Finnish where the locale is Finnish or tells no language at all, English otherwise.
Language languageOfLocale();

inline QString toQt(std::wstring_view text) {
  return QString::fromWCharArray(text.data(), static_cast<qsizetype>(text.size()));
}
inline QString toQt(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}
inline std::wstring fromQt(const QString& text) { return text.toStdWString(); }

}  // namespace host::window
