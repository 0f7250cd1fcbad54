// A scene that follows the drawing is the scene of the drawing as it stands; its tiles are the picture.
#include <cmath>
#include <cstdlib>
#include <memory>

#include "Editor/Application.h"
#include "Editor/ScriptInput.h"
#include "Picture/Picture.h"
#include "Window/Canvas/SceneKeeper.h"
#include "Window/Canvas/Support.h"
#include "Window/Canvas/TileRenderer.h"

namespace {

using namespace host::window;
using namespace tests;

/// What entities look like, bottom first.
std::vector<std::string> lookOf(const Scene& scene) {
  std::vector<std::string> look;
  for (const auto& chunk : scene.chunks)
    for (const SceneEntity& entity : chunk->entities) {
      char text[160];
      std::snprintf(text, sizeof text, "%llX %d%d %.3f %.3f %.3f %.3f",
                    static_cast<unsigned long long>(entity.slot->handle), entity.isPickable, entity.isLocked,
                    entity.box.minX + scene.origin.x, entity.box.minY - scene.origin.y,
                    entity.box.maxX + scene.origin.x, entity.box.maxY - scene.origin.y);
      std::string line = text;
      for (std::uint32_t i = 0; i < entity.itemCount; ++i) {
        const auto& item = chunk->recording.items[entity.firstItem + i];
        std::snprintf(text, sizeof text, " %d:%02X%02X%02X%02X/%g/%u", static_cast<int>(item.kind), item.color.red,
                      item.color.green, item.color.blue, item.color.alpha, static_cast<double>(item.width),
                      item.ringCount);
        line += text;
      }
      look.push_back(line);
    }
  return look;
}

class Following : public testing::Test, public host::editor::Observer {
 protected:
  Following() : app(options()) { EXPECT_TRUE(app.newDrawing()); }
  host::editor::ApplicationOptions options() {
    host::editor::ApplicationOptions made;
    made.observer = this;
    return made;
  }
  bool wantsChanges() const override { return true; }
  void drawingChanged(const host::editor::DrawingChange& change) override {
    if (keeper == nullptr) return;
    keeper->update(change);
    ++updates;
    const SceneKeeper anew(*app.drawing(), *app.currentSpace());
    EXPECT_EQ(lookOf(*keeper->scene()), lookOf(*anew.scene())) << "update " << updates;
    EXPECT_EQ(indexed(*keeper), indexed(anew));
  }
  /// What the index finds: everything that shows, each once.
  static std::vector<std::uint64_t> indexed(const SceneKeeper& keeper) {
    std::vector<std::uint64_t> handles;
    keeper.query({-1e14, -1e14, 1e14, 1e14}, [&](SceneRef entity) { handles.push_back(entity->slot->handle); });
    std::ranges::sort(handles);
    return handles;
  }
  void run(std::string_view script) {
    host::editor::ScriptInput input(script, "plan.scr");
    const auto result = app.run(input);
    EXPECT_TRUE(result) << result.message();
  }
  void watch() { keeper = std::make_unique<SceneKeeper>(*app.drawing(), *app.currentSpace()); }

  host::editor::Application app;
  std::unique_ptr<SceneKeeper> keeper;
  int updates = 0;
};

TEST_F(Following, CommandsUndoAndRedo) {
  run("LINE\n0,0\n10,0\n10,10\n0,10\n\nLAYER\nM\nroads\n\n");
  watch();
  for (int i = 0; i < 30; ++i) {
    const std::string y = std::to_string(20 + i);
    run(std::string("LINE\n0,").append(y).append("\n10,").append(y).append("\n\n"));
  }
  run("ERASE\nW\n-1,19\n11,25.5\n\n");
  run("LAYER\nC\n1\nroads\n\n");
  run("LAYER\nOFF\nroads\n\n");
  run("LAYER\nON\nroads\nLO\nroads\n\n");
  run("SETVAR\nLTSCALE\n2\n");
  for (int i = 0; i < 6; ++i) run("U\n");
  for (int i = 0; i < 5; ++i) run("REDO\n");
  for (int i = 0; i < 40; ++i) run("U\n");
  EXPECT_GT(updates, 60);
  EXPECT_EQ(keeper->scene()->entityCount(), 0U);
}

TEST_F(Following, ThePlugInAtWork) {
  const std::filesystem::path bin = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  ASSERT_TRUE(app.loadModule(bin / "tolmex.arx"));
  run("LAYER\nM\nplan\n\nPLINE\n0,0\n40,0\n40,30\n0,30\nC\nPLINE\n5,5\n15,5\n15,15\n5,15\nC\n");
  watch();
  run("TLM_MUOK_NURMIKKO\n0,10\n\n");
  run("TLM_MUOK_ASFALTTI\n5,10\n\n");
  run("TLM_VIE_TAAKSE\n0,10\n\n");
  run("TLM_TUO_ETEEN\n5,10\n\n");
  run("TLM_MUOK_VARIT_POIS\n");
  run("TLM_MUOK_VARIT_PAALLE\n");
  for (int i = 0; i < 6; ++i) run("U\n");
  for (int i = 0; i < 6; ++i) run("REDO\n");
  EXPECT_GT(updates, 12);
}

TEST_F(Following, ChunksOfLargeDrawingsAreShared) {
  SmallDrawing drawing;
  for (int i = 0; i < 2000; ++i)
    drawing.entity("LINE", "10 " + std::to_string(i) + "|20 0|11 " + std::to_string(i) + "|21 1");
  SmallDatabase db(drawing);
  SceneKeeper scene(*db, db->modelSpace());
  const auto before = scene.scene();
  host::editor::DrawingChange change;
  change.objects = {db->modelSpace().entities[1000]};
  const std::vector<Box> parts = scene.update(change).value();
  std::size_t shared = 0;
  for (const auto& chunk : scene.scene()->chunks)
    shared += static_cast<std::size_t>(std::ranges::count(before->chunks, chunk));
  EXPECT_EQ(shared + 1, before->chunks.size());
  EXPECT_EQ(scene.scene()->entityCount(), 2000U);
  ASSERT_FALSE(parts.empty());
  EXPECT_LT(parts[0].maxX - parts[0].minX, 1);
}

TEST(Refining, CurvesSmoothenWhereTheyAreSeenFromNear) {
  SmallDrawing drawing;
  drawing.entity("CIRCLE", "10 0|20 0|40 1000")
      .entity("CIRCLE", "10 5000|20 0|40 1000")
      .entity("LINE", "10 0|20 0|11 1|21 1");
  drawing.entity("LWPOLYLINE", "90 3|70 1|10 990|20 0|10 1010|20 0|10 1010|20 10");
  SmallDatabase db(drawing);
  SceneKeeper keeper(*db, db->modelSpace());
  const auto points = [&](std::size_t n) {
    const SceneRef entity = keeper.find(db->modelSpace().entities[n]);
    const auto& item = entity.chunk->recording.items[entity->firstItem];
    return entity.chunk->recording.rings[item.firstRing].count;
  };
  const auto first = points(0), second = points(1);
  const Point edge = keeper.scene()->toScene(Point{1000, 0});
  const Box seen{edge.x - 1, edge.y - 1, edge.x + 1, edge.y + 1};
  EXPECT_FALSE(keeper.refine(seen, 1e-4).empty());
  EXPECT_GT(points(0), 4 * first);
  EXPECT_EQ(points(1), second) << "what is not seen stays";
  EXPECT_TRUE(keeper.refine(seen, 1e-4).empty()) << "once is enough";
  EXPECT_EQ(keeper.refine(seen, 1e-6).size(), 2U) << "the circle before and after; the polyline has no curves";
}

TEST(Indexing, FindsWhatIsNearAndEndsAnywhere) {
  BoxIndex<int> index(1e-6);
  int number = 0;
  std::vector<Box> boxes;
  for (const double size : {0.0, 1e-3, 1.0, 300.0, 1e9})
    for (const double at : {0.0, -5.5, 25496000.25, 9e14}) boxes.push_back({at, at / 2, at + size, at / 2 + size});
  for (const Box& box : boxes) index.insert(box, number++);
  const auto found = [&](const Box& box) {
    std::vector<int> values;
    index.query(box, [&](int value, const Box&) { values.push_back(value); });
    std::ranges::sort(values);
    return values;
  };
  for (const Box& asked : boxes) {
    std::vector<int> expected;
    for (std::size_t i = 0; i < boxes.size(); ++i)
      if (boxes[i].intersects(asked)) expected.push_back(static_cast<int>(i));
    EXPECT_EQ(found(asked), expected) << asked.minX << " " << asked.maxX;
  }
  for (std::size_t i = 0; i < boxes.size(); ++i) index.remove(boxes[i], static_cast<int>(i));
  EXPECT_TRUE(found({-1e15, -1e15, 1e15, 1e15}).empty());
  EXPECT_EQ(index.size(), 0U);
}

/// Pixels that are farther from all pixels of the other image nearby than a step that eyes see.
double differing(const QImage& a, const QImage& b) {
  int different = 0;
  const auto near = [](QRgb p, QRgb q) {
    constexpr int kStep = 40;
    return std::abs(qRed(p) - qRed(q)) < kStep && std::abs(qGreen(p) - qGreen(q)) < kStep &&
           std::abs(qBlue(p) - qBlue(q)) < kStep;
  };
  for (int y = 1; y + 1 < a.height(); ++y)
    for (int x = 1; x + 1 < a.width(); ++x) {
      bool isFound = false;
      for (int dy = -1; dy <= 1 && !isFound; ++dy)
        for (int dx = -1; dx <= 1 && !isFound; ++dx) isFound = near(a.pixel(x, y), b.pixel(x + dx, y + dy));
      different += isFound ? 0 : 1;
    }
  return different;
}

class Tiles : public CanvasTest {
 protected:
  /// The canvas shows what a picture of the same part shows.
  void expectLikePicture(const SmallDrawing& drawing, const Box& part, bool isDark = false) {
    open(drawing);
    canvas->setDarkGround(isDark);
    canvas->zoomTo(part);
    const QImage shown = sharp();
    host::picture::PictureOptions options;
    options.widthPx = 400;
    EXPECT_TRUE(setLineweights(options, "4"));  // pixels of 96 to the inch, as on a sheet of four times that width
    options.window = canvas->visibleBox();
    if (isDark) options.background = 0x1E2227;
    const auto picture = host::picture::drawPicture(*db, options, host::picture::PictureFormat::Png);
    ASSERT_TRUE(picture) << picture.message();
    QImage expected;
    ASSERT_TRUE(
        expected.loadFromData(QByteArray(picture->bytes.data(), static_cast<qsizetype>(picture->bytes.size())), "PNG"));
    const QImage cut =
        shown.copy(0, 0, std::min(shown.width(), expected.width()), std::min(shown.height(), expected.height()));
    EXPECT_NEAR(expected.height(), shown.height(), 1);

    EXPECT_LT(differing(cut, expected), 60) << "of 120,000 pixels";
    EXPECT_LT(differing(expected.copy(cut.rect()), cut), 60);
    int drawn = 0;
    for (int y = 0; y < shown.height(); ++y)
      for (int x = 0; x < shown.width(); ++x) drawn += shown.pixel(x, y) != shown.pixel(0, 0) ? 1 : 0;
    EXPECT_GT(drawn, 200);
  }
};

SmallDrawing everything(double x, double y) {
  const auto at = [&](double dx, double dy, int first = 10) {
    return std::to_string(first) + " " + std::to_string(x + dx) + "|" + std::to_string(first + 10) + " " +
           std::to_string(y + dy);
  };
  SmallDrawing drawing;
  drawing.linetype("DASHED", "72 65|73 2|40 1.5|49 1|49 -0.5");
  drawing.layer("thick", "70 0|62 1|370 100").layer("dashed", "70 0|62 5|6 DASHED");
  drawing.block("tree").entity("CIRCLE", "10 0|20 0|40 1").entity("LINE", "10 -1|20 0|11 1|21 0", "8 0|62 3");
  drawing.model();
  drawing.entity("LWPOLYLINE", "90 3|70 0|" + at(1, 1) + "|" + at(9, 1) + "|42 0.5|" + at(9, 9), "8 thick");
  drawing.entity("LWPOLYLINE", "90 3|70 1|" + at(2, 2) + "|" + at(8, 2) + "|" + at(5, 8), "8 dashed");
  drawing.entity("LWPOLYLINE", "90 2|70 0|43 0.4|" + at(1, 11) + "|" + at(9, 12), "8 0|62 30");
  drawing.entity("HATCH",
                 "10 0|20 0|30 0|210 0|220 0|230 1|2 ANSI31|70 0|71 0|91 1|92 3|72 0|73 1|93 3|" + at(11, 1) + "|" +
                     at(19, 1) + "|" + at(15, 8) +
                     "|97 0|75 0|76 1|52 0|41 1|77 0|78 1|53 45|43 0|44 0|45 -0.3|46 0.3|79 0|98 0",
                 "8 0|62 4");
  drawing.entity("HATCH",
                 "10 0|20 0|30 0|210 0|220 0|230 1|2 SOLID|70 1|71 0|91 1|92 3|72 0|73 1|93 3|" + at(11, 10) + "|" +
                     at(19, 10) + "|" + at(15, 14) + "|97 0|75 0|76 1|98 0",
                 "8 0|62 2");
  drawing.entity("TEXT", at(1, 13) + "|40 1|1 Koivukatu 4", "8 0");
  drawing.entity("INSERT", "2 tree|" + at(17, 13) + "|41 1.5|42 1.5");
  drawing.entity("XLINE", at(10, 0) + "|11 0.1|21 1|31 0", "8 0|62 6");
  return drawing;
}

TEST_F(Tiles, ShowWhatPicturesShow) {
  expectLikePicture(everything(0, 0), {0, 0, 20, 15});
  expectLikePicture(everything(0, 0), {0, 0, 20, 15}, true);
  expectLikePicture(everything(0, 0), {4, 4, 10, 8});
}

TEST_F(Tiles, MapCoordinatesLoseNothing) {
  const double x = 25496000, y = 6672000;
  expectLikePicture(everything(x, y), {x, y, x + 20, y + 15});
  expectLikePicture(everything(x, y), {x + 10.7, y + 4.8, x + 11.3, y + 5.25});
}

TEST_F(Tiles, VeryManySelectedAreMarkedToo) {
  SmallDrawing drawing;
  for (int i = 0; i < 800; ++i)
    drawing.entity("LINE", "10 " + std::to_string(i) + "|20 0|11 " + std::to_string(i) + "|21 600");
  open(drawing);
  const auto marked = [this] {
    const QImage image = sharp();
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x) {
        const QRgb pixel = image.pixel(x, y);
        count += qBlue(pixel) > 150 && qRed(pixel) < 60 ? 1 : 0;
      }
    return count;
  };
  EXPECT_EQ(marked(), 0);
  canvas->setSelected({entity(0), entity(700)});
  EXPECT_GT(marked(), 100);
  canvas->setSelected(db->modelSpace().entities);
  EXPECT_GT(marked(), 10000);
  canvas->setSelected({});
  EXPECT_EQ(marked(), 0);
}

TEST_F(Tiles, StretchedUntilSharpAndSharpAfterChanges) {
  open(everything(0, 0));
  const QImage whole = sharp();
  wheel({200, 150}, 240);
  const QImage stretched = canvas->grab().toImage();
  EXPECT_FALSE(canvas->isSharp());
  int drawn = 0;
  for (int y = 0; y < stretched.height(); ++y)
    for (int x = 0; x < stretched.width(); ++x) drawn += stretched.pixel(x, y) != 0xFFFFFFFF ? 1 : 0;
  EXPECT_GT(drawn, 2000) << "the last image stands in";
  const QImage fine = sharp();
  wheel({200, 150}, -240);
  EXPECT_EQ(sharp(), whole) << "back to the same pixels";
  // A layer goes off: the old picture stays until the new one is there, then nothing of the layer is left.
  db->setHeaderReal("$LTSCALE", 40, 3);
  host::editor::DrawingChange change;
  change.isWhole = true;
  canvas->drawingChanged(change);
  EXPECT_NE(sharp(), whole);
}

/// So many entities that a worker lays them out; a third of them is erased at once.
TEST_F(Tiles, MuchThatChangesIsLaidOutBehindTheFormerPicture) {
  constexpr int kLines = 12'000;
  SmallDrawing drawing;
  for (int i = 0; i < kLines; ++i) {
    const std::string x = std::to_string(i % 200), y = std::to_string(i / 200);
    std::string tags = "10 ";
    tags.append(x).append("|20 ").append(y).append("|11 ").append(x).append(".5|21 ").append(y);
    drawing.entity("LINE", tags);
  }
  open(drawing);
  EXPECT_TRUE(canvas->isLayingOut());
  const QImage whole = sharp();
  for (int i = 0; i < kLines / 3; ++i) entity(static_cast<std::size_t>(i))->flags |= host::database::kErased;
  db->setHeaderReal("$LTSCALE", 40, 3);
  host::editor::DrawingChange change;
  change.isWhole = true;
  // While a command works nothing is read; what it changed is seen when it has ended.
  canvas->setMode(CanvasMode::Working);
  canvas->drawingChanged(change);
  EXPECT_FALSE(canvas->isLayingOut());
  canvas->setMode(CanvasMode::Rest);
  EXPECT_TRUE(canvas->isLayingOut());
  const QImage meanwhile = canvas->grab().toImage();
  EXPECT_EQ(meanwhile.copy(0, 0, 400, 120), whole.copy(0, 0, 400, 120)) << "the former picture stays";
  click(100, 10);
  EXPECT_TRUE(selection.empty()) << "nothing can be pointed at";
  // The next command stops the worker at once; afterwards all of it is done again.
  canvas->finishLayingOut();
  EXPECT_FALSE(canvas->isLayingOut());
  canvas->setMode(CanvasMode::Working);
  canvas->setMode(CanvasMode::Rest);
  EXPECT_TRUE(canvas->isLayingOut());
  const QImage done = sharp();
  EXPECT_NE(done, whole);
  click(100.25, 10);
  EXPECT_TRUE(selection.empty()) << "erased";
  canvas->leave();  // the window that the click began
  click(100.25, 40);
  EXPECT_EQ(selection.size(), 1U);
  // A command that asks waits for it.
  db->setHeaderReal("$LTSCALE", 40, 4);
  canvas->setMode(CanvasMode::Working);
  canvas->drawingChanged(change);
  ask(host::editor::Wanted::Entity);
  EXPECT_FALSE(canvas->isLayingOut());
  click(100.25, 40);
  EXPECT_EQ(answers.size(), 1);
}

}  // namespace
