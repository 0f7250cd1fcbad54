// What updates of shadows cost, in objects and bytes that the drawing keeps: these grow with the buildings and with
// nothing else.
#include "Database/Store/Parts.h"
#include "Illustration/BuildingPlan.h"

namespace {

using namespace tests;

class ShadowCost : public BuildingPlan {
 protected:
  struct Cost {
    std::size_t slots = 0;
    std::size_t bytes = 0;      // kept by the drawing
    std::size_t journaled = 0;  // states and moves that undo remembers
  };

  void build(int count) {
    std::map<std::string, Items> records;
    for (int i = 0; i < count; ++i) records[rectangle(i % 20 * 20, i / 20 * 20, 10, 10)] = building("2");
    store(records);
  }
  Cost update() {
    const host::database::DrawingDatabase::Parts& parts = drawing().parts();
    const std::size_t slots = drawing().slotCount();
    const std::size_t bytes = parts.memory.used();
    run("TLM_VARJO_PAIVITA\n");
    const host::database::UndoStep& step = *parts.journal.last();
    return {drawing().slotCount() - slots, parts.memory.used() - bytes, step.states.size() + step.moves.size()};
  }
};

TEST_F(ShadowCost, GrowsWithTheBuildingsOnly) {
  build(10);
  const Cost few = update();
  build(90);
  const Cost first = update();
  // A roof, four shadows with their boundaries, a group.
  EXPECT_LE(first.slots, 100U * 10 + 20);
  EXPECT_LE(first.slots, few.slots * 11);
  EXPECT_LE(first.bytes, few.bytes * 11);
  EXPECT_LE(first.bytes, 100U * 3000);
  EXPECT_LE(first.journaled, 100U * 3 + 20);
  for (int i = 0; i < 3; ++i) {
    const Cost next = update();
    EXPECT_LE(next.slots, first.slots);
    EXPECT_LE(next.bytes, first.bytes);
    EXPECT_LE(next.journaled, 100U * 10 + 20);  // shadows and roofs that go, with the buildings
  }
}

}  // namespace
