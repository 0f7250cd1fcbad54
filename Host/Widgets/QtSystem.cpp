// The widgets' library: started by the host when the first dialog is made.
#include <QApplication>
#include <QFileDialog>
#include <QFontMetrics>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <memory>

#include "Widgets/QtText.h"
#include "Widgets/QtWidgets.h"
#include "adesk.h"

namespace host::widgets {

QFont dialogFont(const win32::DialogFont& font) {
  const QString face = toQt(font.face);
  const bool isWindowsFace = face.startsWith("MS ", Qt::CaseInsensitive) ||
                             face.compare("Tahoma", Qt::CaseInsensitive) == 0 ||
                             face.compare("Segoe UI", Qt::CaseInsensitive) == 0;
  const bool isConsoleFace = face.compare("Lucida Console", Qt::CaseInsensitive) == 0;
  QFont shown(isWindowsFace ? QString("DejaVu Sans") : isConsoleFace ? QString("DejaVu Sans Mono") : face);
  shown.setPixelSize(std::max(MulDiv(font.pointSize, 96, 72), 1));
  shown.setBold(font.isBold);
  shown.setItalic(font.isItalic);
  return shown;
}

namespace {

struct BoxButton {
  QMessageBox::StandardButton button;
  int id;
};
constexpr BoxButton kBoxButtons[] = {{QMessageBox::Ok, IDOK},         {QMessageBox::Cancel, IDCANCEL},
                                     {QMessageBox::Abort, IDABORT},   {QMessageBox::Retry, IDRETRY},
                                     {QMessageBox::Ignore, IDIGNORE}, {QMessageBox::Yes, IDYES},
                                     {QMessageBox::No, IDNO}};
constexpr QMessageBox::StandardButtons kButtonsOfType[] = {
    QMessageBox::Ok,
    QMessageBox::Ok | QMessageBox::Cancel,
    QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore,
    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
    QMessageBox::Yes | QMessageBox::No,
    QMessageBox::Retry | QMessageBox::Cancel,
    QMessageBox::Cancel,
};

class QtSystem final : public win32::WidgetSystem {
 public:
  explicit QtSystem(Shown shown) : shown_(shown) {}

  win32::BaseUnits measure(const win32::DialogFont& font) override {
    // As Windows does it: the average over the letters of the alphabet, rounded.
    const QFontMetrics metrics(dialogFont(font));
    const int width = metrics.horizontalAdvance("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    return {(width / 26 + 1) / 2, metrics.height()};
  }

  std::unique_ptr<win32::Widget> make(HostWindow& window, const win32::DialogFont* font) override {
    return makeWidget(window, font, shown_);
  }

  void waitForEvents() override { QApplication::processEvents(QEventLoop::WaitForMoreEvents); }

  std::wstring askFolder(HostWindow* parent, std::wstring_view title) override {
    return QFileDialog::getExistingDirectory(parentFor(parent), toQt(title)).toStdWString();
  }

  int messageBox(HostWindow* parent, std::wstring_view text, std::wstring_view caption, UINT type) override {
    QMessageBox box(parentFor(parent));
    box.setWindowTitle(toQt(caption));
    box.setText(toQt(text));
    const UINT kind = type & MB_TYPEMASK;
    box.setStandardButtons(kButtonsOfType[kind]);
    const QAbstractButton* const tryAgain =
        kind == MB_CANCELTRYCONTINUE ? box.addButton("Try Again", QMessageBox::ActionRole) : nullptr;
    const QAbstractButton* const goOn =
        kind == MB_CANCELTRYCONTINUE ? box.addButton("Continue", QMessageBox::ActionRole) : nullptr;
    const UINT icon = type & MB_ICONMASK;
    if (icon == MB_ICONERROR) box.setIcon(QMessageBox::Critical);
    if (icon == MB_ICONQUESTION) box.setIcon(QMessageBox::Question);
    if (icon == MB_ICONEXCLAMATION) box.setIcon(QMessageBox::Warning);
    if (icon == MB_ICONINFORMATION) box.setIcon(QMessageBox::Information);
    const int pressed = box.exec();
    if (tryAgain != nullptr && box.clickedButton() == tryAgain) return IDTRYAGAIN;
    if (goOn != nullptr && box.clickedButton() == goOn) return IDCONTINUE;
    for (const BoxButton& each : kBoxButtons) {
      if (pressed == each.button) return each.id;
    }
    return IDCANCEL;
  }

  std::wstring askFile(HostWindow* parent, const win32::FileQuestion& question) override {
    QStringList filters;
    for (const auto& [text, patterns] : question.filters) {
      QString globs = toQt(patterns);
      // The toolkit shows what stands before the patterns in parentheses.
      const QString shown = toQt(text);
      filters += shown.left(shown.indexOf('(')).trimmed() + " (" + globs.replace(';', ' ').replace("*.*", "*") + ")";
    }
    const QFileDialog::Options options =
        question.asksBeforeOverwriting ? QFileDialog::Options() : QFileDialog::DontConfirmOverwrite;
    const bool isPattern = question.name.find_first_of(L"*?") != std::wstring::npos;
    return QFileDialog::getSaveFileName(parentFor(parent), toQt(question.title),
                                        isPattern ? QString() : toQt(question.name), filters.join(";;"), nullptr,
                                        options)
        .toStdWString();
  }

 private:
  Shown shown_;
};

/// The application object, made when there is none yet. It stays to the end of the process.
bool startToolkit(Shown shown) {
  if (QCoreApplication::instance() != nullptr)
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
  static char name[] = "tolmex";
  static char platform[] = "-platform";
  static char offScreen[] = "offscreen";
  static char* arguments[] = {name, platform, offScreen, nullptr};
  static int count = 1;
  if (shown == Shown::OffScreen) {
    count = 3;
    QApplication::setStyle("Fusion");
    QApplication::setDesktopSettingsAware(false);
    QApplication::setCursorFlashTime(0);  // pictures do not depend on the moment
  }
  // Off-screen the toolkit's complaints about this machine are of no use to the user.
  const QtMessageHandler former =
      shown == Shown::OffScreen ? qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {})
                                : nullptr;
  static auto& application = *new QApplication(count, arguments);
  if (shown == Shown::OffScreen) qInstallMessageHandler(former);
  application.setQuitOnLastWindowClosed(false);
  return true;
}

}  // namespace
}  // namespace host::widgets

extern "C" ADESK_EXPORT host::win32::WidgetSystem* tolmexMakeWidgetSystem(bool onScreen) {
  using namespace host::widgets;
  const Shown shown = onScreen ? Shown::OnScreen : Shown::OffScreen;
  if (!startToolkit(shown)) return nullptr;
  static auto& system = *new QtSystem(shown);
  return &system;
}
