#include "Canvas.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QWheelEvent>
#include <cstdio>
#include <functional>
#include <stdexcept>

#include "Dxf/DxfFile.h"
#include "Measurement.h"
#include "Picture/Composition.h"
#include "Window/Canvas/CanvasView.h"

namespace benchmarks {
namespace {

namespace fs = std::filesystem;
using host::window::CanvasView;

constexpr int kWidth = 1396, kHeight = 798;  // of the canvas on a screen of 1920 x 1080

void readPlan(host::database::DrawingDatabase& drawing, const fs::path& plan) {
  const host::Result<> read = host::dxf::readDrawing(drawing, plan);
  if (!read) throw std::runtime_error(read.message());
}

/// A canvas without a screen, in a process of its own.
class Stage {
 public:
  Stage() : database_(false), application_(count_, arguments_) { canvas.resize(kWidth, kHeight); }

  host::database::DrawingDatabase& drawing() { return host::database::databaseOf(&database_); }
  void show() { canvas.setDrawing(&drawing(), &drawing().modelSpace()); }
  void paint() {
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    canvas.render(&image);
  }
  void paintUntilSharp() {
    do {
      paint();
      QApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    } while (!canvas.isSharp());
  }
  /// Until a frame shows the plan: large plans are laid out on a worker, and frames are empty meanwhile.
  void paintUntilShown() {
    while (canvas.isLayingOut()) QApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    paint();
  }
  /// Shows the middle of the plan, `share` of its width.
  void showMiddle(double share) {
    paintUntilShown();
    canvas.zoomToAll();
    const host::geometry::Box all = canvas.visibleBox();
    const double x = (all.minX + all.maxX) / 2, y = (all.minY + all.maxY) / 2;
    const double halfWidth = (all.maxX - all.minX) * share / 2, halfHeight = (all.maxY - all.minY) * share / 2;
    canvas.zoomTo(host::geometry::Box{x - halfWidth, y - halfHeight, x + halfWidth, y + halfHeight});
    paintUntilSharp();
  }
  void moveTo(QPointF at) {
    QMouseEvent event(QEvent::MouseMove, at, at, Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(&canvas, &event);
  }
  void turnWheel(int angle) {
    const QPointF at(kWidth / 2.0, kHeight / 2.0);
    QWheelEvent event(at, at, {}, {0, angle}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&canvas, &event);
  }

 private:
  int count_ = 3;
  char name_[10] = "benchmark", option_[10] = "-platform", platform_[10] = "offscreen";
  char* arguments_[4] = {name_, option_, platform_, nullptr};
  AcDbDatabase database_;
  QApplication application_;

 public:
  CanvasView canvas;
};

/// Opening and one composition of a picture.
void openAndCompose(Clock& clock, const fs::path& plan) {
  clock.time([&] {
    AcDbDatabase database(false);
    host::database::DrawingDatabase& drawing = host::database::databaseOf(&database);
    readPlan(drawing, plan);
    if (!host::picture::composePicture(drawing, {}, host::picture::PictureFormat::Png))
      throw std::runtime_error("nothing to compose");
  });
}

void firstFrame(Clock& clock, const fs::path& plan) {
  Stage stage;
  clock.time([&] {
    readPlan(stage.drawing(), plan);
    stage.show();
    stage.paintUntilShown();
  });
}

/// What is done on a canvas that shows a part of the plan.
void inView(Clock& clock, const fs::path& plan, double share, const std::function<void(Stage&, Clock&)>& work) {
  Stage stage;
  readPlan(stage.drawing(), plan);
  stage.show();
  stage.showMiddle(share);
  work(stage, clock);
}

constexpr double kPart = 0.1;

void panFrame(Clock& clock, const fs::path& plan) {
  inView(clock, plan, kPart, [](Stage& stage, Clock& timed) {
    const double before = stage.canvas.visibleBox().minX;
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Right, Qt::ControlModifier);
    timed.time([&] {
      QApplication::sendEvent(&stage.canvas, &key);
      stage.paint();
    });
    if (stage.canvas.visibleBox().minX == before) throw std::runtime_error("the view has not moved");
  });
}
void sharpZoom(Clock& clock, const fs::path& plan) {
  inView(clock, plan, kPart, [](Stage& stage, Clock& timed) {
    timed.time([&] {
      stage.turnWheel(120);
      stage.paintUntilSharp();
    });
  });
}
void stretchedZoom(Clock& clock, const fs::path& plan) {
  inView(clock, plan, 1, [](Stage& stage, Clock& timed) {
    timed.time([&] {
      stage.turnWheel(120);
      stage.paint();
    });
  });
}
void hover(Clock& clock, const fs::path& plan) {
  inView(clock, plan, kPart, [](Stage& stage, Clock& timed) {
    host::editor::DrawingChange change;
    change.objects = {stage.drawing().modelSpace().entities.front()};
    stage.canvas.drawingChanged(change);
    timed.time([&] { stage.moveTo({kWidth / 2.0, kHeight / 2.0}); });
  });
}
/// One entity has changed: until the picture shows it.
void changedEntity(Clock& clock, const fs::path& plan) {
  inView(clock, plan, kPart / 10, [](Stage& stage, Clock& timed) {
    host::editor::DrawingChange change;
    const auto& entities = stage.drawing().modelSpace().entities;
    change.objects = {entities[entities.size() / 2]};
    timed.time([&] {
      stage.canvas.drawingChanged(change);
      stage.paintUntilSharp();
    });
  });
}

struct Step {
  const char* name;
  void (*run)(Clock&, const fs::path&);
  void (*limit)(Clock&, const fs::path&);  // null: the time below
  double seconds;                          // that it may take; with a limit: how many times the limit
  double secondsOfHuge;                    // the same from 100,000 buildings on
};
constexpr Step kSteps[] = {
    {"first frame", firstFrame, openAndCompose, 2, 2},  //
    {"frame while panning", panFrame, nullptr, 0.016, 0.016},
    {"frame while zooming", stretchedZoom, nullptr, 0.016, 0.016},
    {"sharp after a zoom", sharpZoom, nullptr, 0.15, 0.3},
    {"hover", hover, nullptr, 0.002, 0.002},
    {"one entity changed", changedEntity, nullptr, 0.05, 0.05},
};
constexpr std::uintmax_t kHugeBytes = 100'000'000;

}  // namespace

int measureCanvas(const std::vector<fs::path>& plans, int tries) {
  int failures = 0;
  std::printf("%-14s %-20s %9s %9s %7s\n", "plan", "canvas", "time ms", "may ms", "ratio");
  for (const fs::path& plan : plans)
    for (const Step& step : kSteps) {
      double allowed = fs::file_size(plan) >= kHugeBytes ? step.secondsOfHuge : step.seconds;
      std::string failure;
      if (step.limit != nullptr) {
        const Measurement limit = measure(tries, [&](Clock& clock) { step.limit(clock, plan); });
        allowed *= limit.seconds;
        failure = limit.failure;
      }
      const Measurement done = measure(tries, [&](Clock& clock) { step.run(clock, plan); });
      if (failure.empty()) failure = done.failure;
      if (!failure.empty()) {
        std::printf("%-14s %-20s failed: %s\n", plan.stem().c_str(), step.name, failure.c_str());
        ++failures;
        continue;
      }
      const double ratio = done.seconds / allowed;
      std::printf("%-14s %-20s %9.2f %9.2f %7.2f%s\n", plan.stem().c_str(), step.name, done.seconds * 1e3,
                  allowed * 1e3, ratio, ratio > 1 ? "!" : "");
      std::fflush(stdout);
      failures += ratio > 1 ? 1 : 0;
    }
  return failures;
}

}  // namespace benchmarks
