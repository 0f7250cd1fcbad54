// What a running command is going to make, drawn before the click that makes it.
#pragma once

#include <QString>

#include "Window/Canvas/CanvasView.h"
#include "Window/Canvas/Marks.h"
#include "Window/Canvas/ViewFrame.h"

namespace host::window {

struct PreviewInput {
  const CanvasQuestion& question;
  const QString& typed;  // what stands in the command line
  Point cursor;          // plan coordinates
  const database::DrawingDatabase* drawing = nullptr;
  const SceneKeeper* keeper = nullptr;
};

/// Rubber band, next piece, ghosts, and what the column "preview" of a table of commands names.
void paintPreview(MarkPainter& marks, const ViewFrame& frame, const PreviewInput& input);
/// Words for the cursor: length and angle of the rubber band, a count.
QString previewWords(const PreviewInput& input);

}  // namespace host::window
