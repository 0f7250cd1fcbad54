#include "Hatching/HatchData.h"

#include <algorithm>
#include <numbers>

#include "Database/Attachments.h"
#include "Database/Memory.h"
#include "Database/UnwrittenTags.h"

namespace host::hatching {

namespace {

using database::TagWriter;

constexpr double kDegreesPerRad = 180 / std::numbers::pi;

std::int64_t countOf(std::size_t size) { return static_cast<std::int64_t>(size); }

bool hasBulge(const HatchLoop& loop) {
  return std::any_of(loop.vertices.begin(), loop.vertices.end(), [](const LoopVertex& v) { return v.bulge != 0; });
}

void writePolyline(const HatchLoop& loop, TagWriter& out) {
  const bool isCurved = hasBulge(loop);
  out.integer(72, isCurved ? 1 : 0).integer(73, 1).integer(93, countOf(loop.vertices.size()));
  for (const LoopVertex& v : loop.vertices) {
    out.point(10, v.x, v.y);
    if (isCurved) out.real(42, v.bulge);
  }
}

void writeLoop(const HatchLoop& loop, TagWriter& out) {
  out.integer(92, loop.type);
  if (loop.raw.empty()) {
    writePolyline(loop, out);
  } else {
    out.bytes(loop.raw);
  }
  out.integer(97, countOf(loop.sources.size()));
  for (const std::uint64_t source : loop.sources) out.handle(330, source);
}

void writePattern(const HatchContent& content, TagWriter& out) {
  out.real(52, content.angleRad * kDegreesPerRad).real(41, content.scale).integer(77, content.isDouble ? 1 : 0);
  out.integer(78, countOf(content.pattern.size()));
  for (const PatternLine& line : content.pattern) {
    out.real(53, line.angleRad * kDegreesPerRad);
    out.real(43, line.baseX).real(44, line.baseY).real(45, line.offsetX).real(46, line.offsetY);
    out.integer(79, countOf(line.dashes.size()));
    for (const double dash : line.dashes) out.real(49, dash);
  }
}

}  // namespace

void HatchData::read(database::TagCursor tags, const text::Codec& codec) {
  content = parseHatch(tags, RawLoops::Keep);
  name = codec.decode(content.name);
}

namespace {

/// Everything that two hatches of one loop can share. Holds the hatch itself to be one that a command made.
bool haveOneStyle(const HatchData& a, const HatchData& b) {
  const HatchContent& p = a.content;
  const HatchContent& q = b.content;
  return a.name == b.name && p.elevation == q.elevation && p.normal == q.normal && p.isSolid == q.isSolid &&
         p.isAssociative == q.isAssociative && p.style == q.style && p.type == q.type && p.angleRad == q.angleRad &&
         p.scale == q.scale && p.isDouble == q.isDouble && p.pattern == q.pattern && p.pixelSize == q.pixelSize;
}

/// A hatch made by a command: its loop, and what it shares with others.
class ShelvedHatch final : public database::OwnTags {
 public:
  ShelvedHatch(const HatchData& style, const HatchLoop& loop, database::Arena& arena)
      : style_(&style), type_(loop.type), count_(static_cast<std::uint32_t>(loop.vertices.size())) {
    auto* const points = arena.makeArray<Point2>(count_);
    std::transform(loop.vertices.begin(), loop.vertices.end(), points, [](const LoopVertex& vertex) {
      return Point2{vertex.x, vertex.y};
    });
    points_ = points;
    if (!hasBulge(loop)) return;
    auto* const bulges = arena.makeArray<double>(count_);
    std::transform(loop.vertices.begin(), loop.vertices.end(), bulges, [](const LoopVertex& v) { return v.bulge; });
    bulges_ = bulges;
  }

  void write(TagWriter& out) const override {
    HatchLoop loop;
    loop.type = type_;
    loop.vertices.reserve(count_);
    for (std::uint32_t i = 0; i < count_; ++i) {
      loop.vertices.push_back({points_[i].x, points_[i].y, bulges_ != nullptr ? bulges_[i] : 0});
    }
    style_->write(out, {&loop, 1});
  }

 private:
  const HatchData* style_;
  const Point2* points_ = nullptr;
  const double* bulges_ = nullptr;  // null: all straight
  std::int32_t type_;
  std::uint32_t count_;
};

/// What the hatches that commands made in a drawing have in common: each style once.
struct Styles {
  std::vector<std::unique_ptr<const HatchData>> all;
};

}  // namespace

const database::OwnTags* HatchData::shelve(database::DrawingDatabase& db) const {
  if (content.loops.size() != 1 || !content.tail.empty() || !content.seeds.empty() || content.isGradient) {
    return nullptr;
  }
  const HatchLoop& loop = content.loops.front();
  if (!loop.isPolyline() || !loop.raw.empty() || !loop.sources.empty()) return nullptr;
  // A command makes hatches of one style, or of two in alternation.
  constexpr std::size_t kMostLooks = 4;
  std::vector<std::unique_ptr<const HatchData>>& styles = db.attachments().of<Styles>().all;
  const auto end = styles.size() > kMostLooks ? styles.rbegin() + kMostLooks : styles.rend();
  const auto found =
      std::find_if(styles.rbegin(), end, [this](const auto& style) { return haveOneStyle(*style, *this); });
  const HatchData* style = nullptr;
  if (found != end) {
    style = found->get();
  } else {
    auto made = std::make_unique<HatchData>(*this);
    made->content.loops.clear();
    style = made.get();
    styles.push_back(std::move(made));
  }
  database::Arena& arena = db.memory();
  return arena.make<ShelvedHatch>(*style, loop, arena);
}

void HatchData::write(TagWriter& out, std::span<const HatchLoop> loops) const {
  out.raw(100, "AcDbHatch");
  out.point(10, 0, 0, content.elevation);
  out.point(210, content.normal.x, content.normal.y, content.normal.z);
  out.text(2, name);
  out.integer(70, content.isSolid ? 1 : 0).integer(71, content.isAssociative ? 1 : 0);
  out.integer(91, countOf(loops.size()));
  for (const HatchLoop& loop : loops) writeLoop(loop, out);
  out.integer(75, content.style).integer(76, content.type);
  if (!content.isSolid) writePattern(content, out);
  if (content.pixelSize) out.real(47, *content.pixelSize);
  // One seed at the origin is what readers expect of a hatch made without a pick.
  const std::vector<Point2> seeds = content.seeds.empty() ? std::vector<Point2>{{0, 0}} : content.seeds;
  out.integer(98, countOf(seeds.size()));
  for (const Point2 seed : seeds) out.point(10, seed.x, seed.y);
  out.bytes(content.tail);
}

}  // namespace host::hatching
