// Pictures and prints: what is on the page is chosen before its preview, and a PICTURE line in the command line makes
// it, so that the same line makes the same bytes without a window.
#pragma once

#include <QStringList>

#include "Picture/Picture.h"
#include "Window/Canvas/CanvasView.h"
#include "Window/Frame/Conversation.h"
#include "Window/Frame/Engine.h"

namespace host::window {

enum class ExportKind { File, Printer };

/// Shows the dialog until the user has his picture or leaves.
void exportPicture(QWidget& window, Engine& engine, Conversation& talk, CanvasView& canvas, ExportKind kind);

/// What the dialog has chosen.
struct ExportChoice {
  picture::PictureOptions picture;
  QString paper = "A3";     // "A3", "594x420"; empty: no paper
  QString scale = "1:500";  // empty: fitted
  QString background = "white";
  QString lineweights = "on";
  QString layers = "*";
};
/// The options of the line behind the file's name, in the form of the program's own options; those that are the usual
/// ones are left out.
QString pictureOptions(const ExportChoice& choice, picture::PictureFormat format);
/// What of the plan has to be on the page and is not: "Does not fit: 592 × 536 mm needed, A3 has 420 × 297."; empty
/// when it fits. `better` gets scales and papers that would do.
QString misfit(const ExportChoice& choice, const geometry::Box& area, double metresPerUnit, QStringList* better);

}  // namespace host::window
