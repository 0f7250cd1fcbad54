#include "Window/Files/Questions.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace host::window {
namespace {

QString say(const char* text) { return QCoreApplication::translate("Questions", text); }

}  // namespace

int ask(QWidget* parent, const QString& sentence, const QStringList& buttons) {
  QMessageBox box(parent);
  box.setWindowTitle(QStringLiteral("Tolmex"));
  box.setIcon(QMessageBox::Question);
  box.setText(sentence);
  std::vector<QPushButton*> made;
  for (qsizetype i = 0; i < buttons.size(); ++i) {
    const bool isLast = i + 1 == buttons.size();
    // Roles decide where toolkits put buttons; all of one role stay in their order.
    made.push_back(box.addButton(buttons[i], isLast && i > 0 ? QMessageBox::RejectRole : QMessageBox::ActionRole));
  }
  box.setDefaultButton(made.front());
  box.setEscapeButton(made.back());
  box.exec();
  for (std::size_t i = 0; i < made.size(); ++i) {
    if (box.clickedButton() == made[i]) return static_cast<int>(i);
  }
  return static_cast<int>(made.size()) - 1;
}

void showSentence(QWidget* parent, const QString& sentence) {
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Tolmex"), sentence, QMessageBox::NoButton, parent);
  box.addButton(say(QT_TRANSLATE_NOOP("Questions", "Close")), QMessageBox::AcceptRole);
  box.exec();
}

std::optional<std::vector<bool>> askWhichToSave(QWidget* parent, const QStringList& names) {
  QDialog dialog(parent);
  dialog.setWindowTitle(QStringLiteral("Tolmex"));
  auto* const layout = new QVBoxLayout(&dialog);
  layout->addWidget(new QLabel(say(QT_TRANSLATE_NOOP("Questions", "%1 drawings are not saved.")).arg(names.size())));
  std::vector<QCheckBox*> ticks;
  for (const QString& name : names) {
    auto* const tick = new QCheckBox(name);
    tick->setChecked(true);
    layout->addWidget(tick);
    ticks.push_back(tick);
  }
  auto* const buttons = new QDialogButtonBox;
  QPushButton* const save =
      buttons->addButton(say(QT_TRANSLATE_NOOP("Questions", "Save Ticked")), QDialogButtonBox::AcceptRole);
  QPushButton* const drop =
      buttons->addButton(say(QT_TRANSLATE_NOOP("Questions", "Don't Save")), QDialogButtonBox::DestructiveRole);
  buttons->addButton(say(QT_TRANSLATE_NOOP("Questions", "Cancel")), QDialogButtonBox::RejectRole);
  save->setDefault(true);
  layout->addWidget(buttons);
  bool isDropped = false;
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  QObject::connect(drop, &QPushButton::clicked, &dialog, [&] {
    isDropped = true;
    dialog.accept();
  });
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  std::vector<bool> wanted;
  wanted.reserve(ticks.size());
  for (const QCheckBox* const tick : ticks) wanted.push_back(!isDropped && tick->isChecked());
  return wanted;
}

}  // namespace host::window
