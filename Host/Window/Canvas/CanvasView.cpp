#include "Window/Canvas/CanvasView.h"

namespace host::window {

struct CanvasView::State {
  geometry::Box visible;
  bool snapping = true, ortho = false;
};

CanvasView::CanvasView(QWidget* parent) : QWidget(parent), state_(std::make_unique<State>()) {}
CanvasView::~CanvasView() = default;
void CanvasView::setDrawing(database::DrawingDatabase*, const database::BlockContents*) {}
void CanvasView::forget(const database::DrawingDatabase*) {}
void CanvasView::drawingChanged(const editor::DrawingChange&) {}
void CanvasView::setMode(CanvasMode, const CanvasQuestion&) {}
void CanvasView::setTypedText(const QString&) {}
void CanvasView::setSelected(const std::vector<database::Slot*>&) {}
void CanvasView::setHighlighted(const std::vector<database::Slot*>&) {}
void CanvasView::blink(const std::vector<database::Slot*>&) {}
void CanvasView::setTooltipSource(std::function<std::wstring(const AcGePoint3d&)>) {}
geometry::Box CanvasView::visibleBox() const { return state_->visible; }
double CanvasView::unitsPerPixel() const { return 1; }
void CanvasView::zoomToDrawing() {}
void CanvasView::zoomToAll() {}
void CanvasView::zoomTo(const geometry::Box&) {}
void CanvasView::zoomTo(const std::vector<database::Slot*>&, double) {}
void CanvasView::zoomBy(double) {}
void CanvasView::zoomPrevious() {}
void CanvasView::askForWindow() {}
void CanvasView::askForRectangle(std::function<void(std::optional<geometry::Box>)>, double) {}
void CanvasView::setDarkGround(bool) {}
void CanvasView::setSnapping(bool on) { state_->snapping = on; }
void CanvasView::setOrtho(bool on) { state_->ortho = on; }
void CanvasView::setKeyboardPointing(bool) {}
bool CanvasView::isSnapping() const { return state_->snapping; }
bool CanvasView::isOrtho() const { return state_->ortho; }

}  // namespace host::window
