#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <numbers>
#include <random>
#include <sstream>

#include "Hatching/Loops.h"
#include "Places.h"

namespace host::hatching {

void PrintTo(LoopFault fault, std::ostream* out) {
  static const char* const names[] = {"None", "NotFinite", "NotClosed", "TooFewPoints", "ZeroArea", "SelfCrossing"};
  *out << names[static_cast<int>(fault)];
}

namespace {

using Vertices = std::vector<LoopVertex>;

struct HardLoop {
  std::string name;
  LoopFault fault = LoopFault::None;
  bool closed = false;
  Vertices vertices;
};

std::vector<HardLoop> hardLoops() {
  static const std::map<std::string, LoopFault> faults{
      {"None", LoopFault::None},           {"NotFinite", LoopFault::NotFinite},
      {"NotClosed", LoopFault::NotClosed}, {"TooFewPoints", LoopFault::TooFewPoints},
      {"ZeroArea", LoopFault::ZeroArea},   {"SelfCrossing", LoopFault::SelfCrossing}};
  std::ifstream file(std::filesystem::path(kSourceDir) / "Tests/Hatching/loops.txt");
  std::vector<HardLoop> loops;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.front() == '#') continue;
    std::istringstream words(line);
    HardLoop loop;
    std::string fault;
    std::string closed;
    words >> loop.name >> fault >> closed;
    loop.fault = faults.at(fault);
    loop.closed = closed == "closed";
    for (std::string point; words >> point;) {
      double values[3] = {0, 0, 0};
      std::istringstream fields(point);
      std::string field;
      for (int i = 0; i < 3 && std::getline(fields, field, ','); ++i) values[i] = std::stod(field);
      loop.vertices.push_back({values[0], values[1], values[2]});
    }
    loops.push_back(std::move(loop));
  }
  return loops;
}

Vertices moved(Vertices vertices, double dx, double dy) {
  for (LoopVertex& v : vertices) {
    v.x += dx;
    v.y += dy;
  }
  return vertices;
}

/// The same way round the other side: each piece keeps its arc.
Vertices reversed(const Vertices& vertices) {
  Vertices back;
  for (std::size_t i = vertices.size(); i-- > 0;) {
    const double bulge = vertices[(i + vertices.size() - 1) % vertices.size()].bulge;
    back.push_back({vertices[i].x, vertices[i].y, bulge == 0 ? 0 : -bulge});
  }
  return back;
}

Vertices rotated(Vertices vertices) {
  if (vertices.size() > 2) std::rotate(vertices.begin(), vertices.begin() + 2, vertices.end());
  return vertices;
}

Loop made(const Vertices& vertices, bool closed = true) {
  Loop loop;
  EXPECT_EQ(makeLoop(vertices, closed, loop), LoopFault::None);
  return loop;
}

TEST(Loops, HardOnesAreJudgedTheSameInEveryDress) {
  const std::vector<HardLoop> loops = hardLoops();
  ASSERT_GT(loops.size(), 30u);
  for (const HardLoop& hard : loops) {
    std::vector<std::pair<const char*, Vertices>> dresses{{"as is", hard.vertices}};
    dresses.emplace_back("reversed", reversed(hard.vertices));
    if (hard.closed) dresses.emplace_back("rotated", rotated(hard.vertices));
    for (std::size_t i = 0, count = dresses.size(); i < count; ++i) {
      dresses.emplace_back("moved", moved(dresses[i].second, 25'500'000, 6'700'000));
    }
    const double own = hard.fault == LoopFault::None ? area(made(hard.vertices, hard.closed)) : 0;
    for (const auto& [dress, vertices] : dresses) {
      SCOPED_TRACE(hard.name + " " + dress);
      Loop loop{{1, 2, 3}};
      EXPECT_EQ(makeLoop(vertices, hard.closed, loop), hard.fault);
      if (hard.fault != LoopFault::None) {
        EXPECT_EQ(loop.size(), 1u);  // left alone
      } else {
        EXPECT_NEAR(std::abs(area(loop)), std::abs(own), 1e-6);
      }
    }
  }
}

TEST(Loops, DroppedRepeatsKeepTheArcThatFollows) {
  const Loop loop = made({{0, 0, 0.7}, {0, 0, 1}, {10, 0, 0}, {10, 0, 1}, {0, 0, 0.2}}, false);
  ASSERT_EQ(loop.size(), 2u);
  EXPECT_EQ(loop[0].bulge, 1);
  EXPECT_EQ(loop[1].bulge, 1);
  EXPECT_NEAR(area(loop), std::numbers::pi * 25, 1e-9);
}

/// A closed saw-tooth band: `teeth` long teeth side by side, turned by an angle.
Vertices longTeeth(int teeth, double angle) {
  Vertices vertices;
  const auto add = [&](double x, double y) {
    vertices.push_back({x * std::cos(angle) - y * std::sin(angle), x * std::sin(angle) + y * std::cos(angle), 0});
  };
  for (int i = 0; i < teeth; ++i) {
    add(i, 0);
    add(i + 0.5, teeth);
  }
  add(teeth, -1);
  add(0, -1);
  return vertices;
}

TEST(Loops, LargeOnesAreJudgedInTime) {
  Vertices round;
  for (int i = 0; i < 100'000; ++i) {
    const double a = 2 * std::numbers::pi * i / 100'000;
    const double r = 500 + (i % 2 == 0 ? 0.01 : 0);
    round.push_back({25'500'000 + r * std::cos(a), 6'700'000 + r * std::sin(a), i % 3 == 0 ? 0.2 : 0});
  }
  made(round);
  std::swap(round[70'000], round[70'003]);
  Loop loop;
  EXPECT_EQ(makeLoop(round, true, loop), LoopFault::SelfCrossing);

  for (const double angle : {0.0, std::numbers::pi / 4, 1.0}) {
    Vertices teeth = longTeeth(20'000, angle);
    made(teeth);
    std::swap(teeth[20'001], teeth[20'003]);
    EXPECT_EQ(makeLoop(teeth, true, loop), LoopFault::SelfCrossing) << angle;
  }
}

/// Loops of a few pieces are looked at in another way than those of many.
TEST(Loops, CrossWhetherTheirPiecesAreFewOrMany) {
  std::mt19937 random(27);
  std::uniform_real_distribution<double> coordinate(0, 10);
  int crossing = 0;
  for (int i = 0; i < 3000; ++i) {
    Vertices few;
    Vertices many;
    const std::size_t count = 4 + random() % 5;
    const double spread = i % 2 == 0 ? 1 : 0.1;  // rings round a middle hardly ever cross
    for (std::size_t k = 0; k < count; ++k) {
      const double angle = 2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(count);
      few.push_back({27496000 + 20 * std::cos(angle) + 4 * spread * coordinate(random),
                     6700000 + 20 * std::sin(angle) + 4 * spread * coordinate(random), 0});
    }
    constexpr int kParts = 5;
    for (std::size_t k = 0; k < count; ++k) {
      const LoopVertex& a = few[k];
      const LoopVertex& b = few[(k + 1) % count];
      for (int part = 0; part < kParts; ++part) {
        many.push_back({a.x + (b.x - a.x) * part / kParts, a.y + (b.y - a.y) * part / kParts, 0});
      }
    }
    Loop loop;
    const LoopFault fault = makeLoop(few, true, loop);
    crossing += fault == LoopFault::SelfCrossing ? 1 : 0;
    ASSERT_EQ(fault, makeLoop(many, true, loop)) << i;
  }
  EXPECT_GT(crossing, 100);
  EXPECT_LT(crossing, 2000);
}

}  // namespace
}  // namespace host::hatching
