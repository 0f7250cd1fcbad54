#include "Hatching/HatchContent.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "Curves/EntityCurves.h"
#include "Text/Text.h"

namespace host::hatching {

namespace {

using database::Tag;

constexpr double kRadPerDegree = std::numbers::pi / 180;

/// NaN for what is not a number, so that it is noticed.
double realOf(const Tag& tag) { return text::parseReal(tag.value).value_or(std::numeric_limits<double>::quiet_NaN()); }

double finiteOr(double value, double otherwise) { return std::isfinite(value) ? value : otherwise; }

/// Takes the tags in their order and knows which part of the hatch it is in.
class HatchReader {
 public:
  explicit HatchReader(RawLoops rawLoops) : keepsRaw_(rawLoops == RawLoops::Keep) {}

  HatchContent read(database::TagCursor tags) {
    Tag tag;
    bool isInside = false;
    while (tags.next(tag)) {
      if (tag.code == 100) {
        if (isInside) break;
        isInside = tag.trimmed() == "AcDbHatch";
        continue;
      }
      if (!isInside) continue;
      if (tag.code >= 1000) break;
      take(tag);
    }
    endLoop();
    if (!std::isfinite(content_.normal.length()) || content_.normal.length() == 0) content_.normal = {0, 0, 1};
    std::erase_if(content_.pattern, [](const PatternLine& line) {
      return !std::isfinite(line.angleRad + line.baseX + line.baseY + line.offsetX + line.offsetY);
    });
    return std::move(content_);
  }

 private:
  enum class Part { Head, Loop, Body, Seeds };
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  void take(const Tag& tag) {
    if (tag.code == 92 && part_ != Part::Seeds) {
      endLoop();
      part_ = Part::Loop;
      content_.loops.emplace_back().type = static_cast<int>(tag.integer());
      promised_ = kNone;
      sourcesAt_ = kNone;
      return;
    }
    switch (part_) {
      case Part::Head:
        if (tag.code == 75 || tag.code == 76) return takeBody(tag);
        return takeHead(tag);
      case Part::Loop:
        if (tag.code == 75 || tag.code == 76 || tag.code == 98) {
          endLoop();
          return takeBody(tag);
        }
        return takeLoop(tag);
      case Part::Body:
      case Part::Seeds:
        return takeBody(tag);
    }
  }

  void takeHead(const Tag& tag) {
    switch (tag.code) {
      case 30:
        content_.elevation = tag.real();
        break;
      case 210:
        content_.normal.x = tag.real();
        break;
      case 220:
        content_.normal.y = tag.real();
        break;
      case 230:
        content_.normal.z = tag.real();
        break;
      case 2:
        content_.name = tag.value;
        break;
      case 70:
        content_.isSolid = tag.integer() != 0;
        break;
      case 71:
        content_.isAssociative = tag.integer() != 0;
        break;
      default:
        break;  // 10 and 20 are 0, 91 counts what follows
    }
  }

  // ---- loops ----

  void takeLoop(const Tag& tag) {
    HatchLoop& loop = content_.loops.back();
    if (tag.code == 330) {
      loop.sources.push_back(tag.handle());
      return;
    }
    // Of several tags 97 the last one counts the sources, the others fit points.
    sourcesAt_ = tag.code == 97 ? loop.raw.size() : kNone;
    if (keepsRaw_) loop.raw += tag.bytes;
    if (tag.code == 93) {
      promised_ = static_cast<std::size_t>(std::max<std::int64_t>(tag.integer(), 0));
    } else if (loop.isPolyline()) {
      takeVertex(loop, tag);
    } else {
      takeEdge(loop, tag);
    }
  }

  double realIn(HatchLoop& loop, const Tag& tag) {
    const double value = realOf(tag);
    if (!std::isfinite(value)) loop.isDamaged = true;
    return value;
  }

  void takeVertex(HatchLoop& loop, const Tag& tag) {
    if (tag.code == 10) {
      loop.vertices.push_back({realIn(loop, tag), std::numeric_limits<double>::quiet_NaN(), 0});
    } else if (!loop.vertices.empty()) {
      if (tag.code == 20) loop.vertices.back().y = realIn(loop, tag);
      if (tag.code == 42) loop.vertices.back().bulge = realIn(loop, tag);
    }
  }

  void takeEdge(HatchLoop& loop, const Tag& tag) {
    if (tag.code == 72) {
      const std::int64_t kind = tag.integer();
      if (kind < 1 || kind > 4) loop.isDamaged = true;
      loop.edges.emplace_back().kind = static_cast<HatchEdge::Kind>(kind);
      return;
    }
    if (loop.edges.empty() || tag.code == 97) return;
    HatchEdge& edge = loop.edges.back();
    if (edge.kind == HatchEdge::Kind::Spline) {
      takeSplineTag(tag, curves::kSplineEdge, edge.spline);
      return;
    }
    switch (tag.code) {
      case 10:
        edge.first.x = realIn(loop, tag);
        break;
      case 20:
        edge.first.y = realIn(loop, tag);
        break;
      case 11:
        edge.second.x = realIn(loop, tag);
        break;
      case 21:
        edge.second.y = realIn(loop, tag);
        break;
      case 40:
        edge.size = realIn(loop, tag);
        break;
      case 50:
        edge.startDeg = realIn(loop, tag);
        break;
      case 51:
        edge.endDeg = realIn(loop, tag);
        break;
      case 73:
        edge.isCounterClockwise = tag.integer() != 0;
        break;
      default:
        break;
    }
  }

  void endLoop() {
    if (part_ != Part::Loop) return;
    part_ = Part::Body;
    HatchLoop& loop = content_.loops.back();
    if (keepsRaw_ && sourcesAt_ != kNone) loop.raw.resize(sourcesAt_);
    const std::size_t found = loop.isPolyline() ? loop.vertices.size() : loop.edges.size();
    if (found == 0 || (promised_ != kNone && found < promised_)) loop.isDamaged = true;
    for (const LoopVertex& v : loop.vertices) {
      if (!std::isfinite(v.y)) loop.isDamaged = true;
    }
  }

  // ---- what follows the loops ----

  void takeBody(const Tag& tag) {
    if (part_ != Part::Seeds) part_ = Part::Body;
    switch (tag.code) {
      case 75:
        content_.style = static_cast<int>(tag.integer());
        return;
      case 76:
        content_.type = static_cast<int>(tag.integer());
        return;
      case 52:
        content_.angleRad = tag.real() * kRadPerDegree;
        return;
      case 41:
        content_.scale = tag.real();
        return;
      case 77:
        content_.isDouble = tag.integer() != 0;
        return;
      case 78:
      case 79:
        return;
      case 47:
        content_.pixelSize = tag.real();
        return;
      case 98:
        part_ = Part::Seeds;
        return;
      default:
        break;
    }
    if (part_ == Part::Seeds && (tag.code == 10 || tag.code == 20)) {
      if (tag.code == 10) content_.seeds.push_back({tag.real(), 0});
      if (tag.code == 20 && !content_.seeds.empty()) content_.seeds.back().y = tag.real();
      return;
    }
    if (takePattern(tag)) return;
    if (tag.code >= 450 || (tag.code == 63 && content_.isGradient)) takeGradient(tag);
    if (tag.code == 421) content_.gradientColors.push_back(static_cast<std::uint32_t>(tag.integer() & 0xFFFFFF));
    if (keepsRaw_) content_.tail += tag.bytes;
  }

  void takeGradient(const Tag& tag) {
    GradientForm& form = content_.gradientForm;
    switch (tag.code) {
      case 450:
        content_.isGradient = tag.integer() != 0;
        break;
      case 63:
        form.colorIndices.push_back(static_cast<int>(tag.integer()));
        break;
      case 452:
        form.isOneColor = tag.integer() != 0;
        break;
      case 460:
        form.angleRad = tag.real();
        break;
      case 461:
        form.shift = std::clamp(tag.real(), 0.0, 1.0);
        break;
      case 462:
        form.tint = std::clamp(tag.real(), 0.0, 1.0);
        break;
      case 470:
        form.name.clear();
        for (const char c : tag.trimmed()) form.name += static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
        break;
      default:
        break;
    }
  }

  bool takePattern(const Tag& tag) {
    if (part_ == Part::Seeds) return false;
    if (tag.code == 53) {
      content_.pattern.emplace_back().angleRad = realOf(tag) * kRadPerDegree;
      return true;
    }
    if (content_.pattern.empty()) return false;
    PatternLine& line = content_.pattern.back();
    switch (tag.code) {
      case 43:
        line.baseX = realOf(tag);
        return true;
      case 44:
        line.baseY = realOf(tag);
        return true;
      case 45:
        line.offsetX = realOf(tag);
        return true;
      case 46:
        line.offsetY = realOf(tag);
        return true;
      case 49:
        line.dashes.push_back(finiteOr(realOf(tag), 0));
        return true;
      default:
        return false;
    }
  }

  bool keepsRaw_;
  Part part_ = Part::Head;
  std::size_t promised_ = kNone;   // tag 93 of the loop
  std::size_t sourcesAt_ = kNone;  // where the last tag 97 stands in the loop's raw tags
  HatchContent content_;
};

}  // namespace

HatchContent parseHatch(database::TagCursor tags, RawLoops rawLoops) { return HatchReader(rawLoops).read(tags); }

}  // namespace host::hatching
