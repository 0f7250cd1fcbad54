#include "Window/Commands/Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <cstdlib>

namespace host::window {
namespace {

Language chosen = Language::English;

/// Texts are kept by the names of classes alone; the toolkit asks with their namespaces.
class OwnTexts : public QTranslator {
 public:
  QString translate(const char* context, const char* text, const char* remark, int count) const override {
    const std::string_view whole(context);
    const std::size_t colon = whole.rfind(':');
    return QTranslator::translate(colon == std::string_view::npos ? context : context + colon + 1, text, remark, count);
  }
};

}  // namespace

Language language() { return chosen; }

void setLanguage(Language wanted) {
  static auto& own = *new OwnTexts;
  static auto& toolkit = *new QTranslator;  // buttons of file dialogs and the like
  QCoreApplication::removeTranslator(&own);
  QCoreApplication::removeTranslator(&toolkit);
  chosen = wanted;
  if (wanted != Language::Finnish) return;
  if (toolkit.load("qtbase_fi", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
    QCoreApplication::installTranslator(&toolkit);
  if (own.load(":/tolmex/tolmex_fi.qm")) QCoreApplication::installTranslator(&own);
}

Language languageOfLocale() {
  for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const value = std::getenv(name);
    if (value == nullptr || *value == '\0') continue;
    const QString locale = QString::fromLocal8Bit(value);
    if (locale.startsWith("fi")) return Language::Finnish;
    // "C" and "POSIX" are settings of machines, not the language of a reader.
    const bool saysNothing = locale == "C" || locale.startsWith("C.") || locale == "POSIX";
    return saysNothing ? Language::Finnish : Language::English;
  }
  return Language::Finnish;
}

}  // namespace host::window
