// What a running command is going to make, drawn before the click that makes it: its rubber band, and what the column
// "preview" of a table of commands names.
#pragma once

#include <QString>
#include <optional>

#include "Window/Canvas/CanvasView.h"
#include "Window/Canvas/Marks.h"
#include "Window/Canvas/ViewFrame.h"

namespace host::window {

struct PreviewInput {
  const CanvasQuestion& question;
  const QString& typed;         // what stands in the command line
  std::optional<Point> cursor;  // plan coordinates; nothing while it is elsewhere
  const database::DrawingDatabase* drawing = nullptr;
  const SceneKeeper* keeper = nullptr;
};

/// A row of parking places left of the way from `start` to `end`: its lines, drawing units.
struct ParkingRow {
  Point start, end;
  double angleDegrees = 90, width = 2.5, length = 5;

  /// Lines between places and at the row's start; none for widths and numbers that make no row.
  std::vector<std::pair<Point, Point>> lines() const;
};

class Previews {
 public:
  void paint(MarkPainter& marks, const ViewFrame& frame, const PreviewInput& input);
  /// Words for the cursor: length and angle of the rubber band, how many places.
  QString words(const PreviewInput& input) const;

 private:
  const picture::Recording& block(const PreviewInput& input);

  // The block that was laid out last, about its base point.
  const database::Slot* blockRecord_ = nullptr;
  std::uint64_t blockChange_ = 0;
  picture::Recording block_;
};

}  // namespace host::window
