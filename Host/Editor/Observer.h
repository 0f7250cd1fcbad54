// What a session tells the front end that shows it.
#pragma once

#include <string_view>
#include <vector>

#include "Curves/Plane.h"
#include "Database/Slot.h"
#include "Problems/Problem.h"

namespace host::editor {

/// What a command did to the current drawing.
struct DrawingChange {
  std::vector<database::Slot*> objects;  // made, changed, erased or moved in the draw order; each once
  bool isWhole = false;                  // other objects may have changed as well: an undo, a redo, another layout
};

/// Every method is called by the running session, on the thread that runs it, and does nothing unless it is overridden.
/// A method may read the drawing; it must not run commands.
class Observer {
 public:
  virtual ~Observer() = default;

  /// Text of the command line as it appears, line ends included.
  virtual void print(std::wstring_view /*text*/) {}
  virtual void report(const Problem& /*problem*/) {}
  /// Progress of long work; `fraction` from 0 to 1, negative when the meter goes away.
  virtual void showProgress(std::wstring_view /*label*/, double /*fraction*/) {}
  /// A command without a meter is at work. With a meter `showProgress` is called again in its place: while objects are
  /// worked on one of the two comes at least ten times a second, so that a front end can repaint and hear of Esc.
  virtual void working() {}
  /// ZOOM wants this shown of the current drawing; an empty box is its extents.
  virtual void showView(const curves::Box& /*view*/) {}
  /// REGEN and ads_regen: everything is to be drawn anew.
  virtual void regenerate() {}
  /// The entities selected so far by the question that is being answered; none when it has been answered.
  virtual void highlight(const std::vector<database::Slot*>& /*entities*/) {}
  /// The set selected before a command starts is another one now.
  virtual void pickfirstChanged(const std::vector<database::Slot*>& /*entities*/) {}
  /// Another drawing is the current one, or another layout of it, or none.
  virtual void currentDrawingChanged() {}
  /// A command has ended and has changed the current drawing. Gathered only where `wantsChanges` says so.
  virtual void drawingChanged(const DrawingChange& /*change*/) {}
  virtual bool wantsChanges() const { return false; }
};

}  // namespace host::editor
