// Boxes of the window's own: a sentence and buttons that say what they do.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

class QWidget;

namespace host::window {

/// The number of the button that was pressed; the first is the default, the last is what Esc means.
int ask(QWidget* parent, const QString& sentence, const QStringList& buttons);
void showSentence(QWidget* parent, const QString& sentence);
/// Which of several changed drawings to save; nothing when the user stays.
std::optional<std::vector<bool>> askWhichToSave(QWidget* parent, const QStringList& names);

}  // namespace host::window
