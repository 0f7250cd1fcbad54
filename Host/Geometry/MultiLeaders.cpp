#include "Geometry/MultiLeaders.h"

#include <algorithm>

#include "Database/TagValues.h"
#include "Geometry/PolylineShapes.h"

namespace host::geometry {
namespace {

using database::GeometryTags;
using database::isUsable;
using database::Tag;

struct LeaderPart {
  AcGePoint3d end, dogleg;
  double doglegLength = 0;
  std::vector<Chain> lines;  // each from its arrow tip
};

/// The parts nest as "300 CONTEXT_DATA{ ... 302 LEADER{ ... 304 LEADER_LINE{ ... 305 } ... 303 } ... 301 }"; the same
/// codes mean other things in each.
class Reader {
 public:
  explicit Reader(const database::Slot& entity) {
    GeometryTags tags(entity.tags());
    for (Tag tag; tags.next(tag);) take(tag, entity.database().codec());
    const database::Slot* const style = style_ == 0 ? nullptr : entity.database().findHandle(style_);
    if (style != nullptr && style->type == database::DxfType::TextStyle) text.face = faceOfStyle(*style);
  }

  MTextParts text;
  bool hasText = false;
  std::vector<LeaderPart> leaders;
  double arrowSize = 0;
  int lineKind = 1;  // 0 invisible, 1 straight, 2 spline

 private:
  enum class Part { Entity, Context, Leader, Line };

  void take(const Tag& tag, const text::Codec& codec) {
    const bool opens = tag.trimmed().ends_with("{");
    switch (part_) {
      case Part::Entity:
        if (tag.code == 300 && opens)
          part_ = Part::Context;
        else if (tag.code == 170)
          lineKind = static_cast<int>(tag.integer());
        break;
      case Part::Context:
        if (tag.code == 301)
          part_ = Part::Entity;
        else if (tag.code == 302 && opens) {
          part_ = Part::Leader;
          leaders.emplace_back();
        } else
          takeContext(tag, codec);
        break;
      case Part::Leader: {
        LeaderPart& leader = leaders.back();
        if (tag.code == 303)
          part_ = Part::Context;
        else if (tag.code == 304 && opens) {
          part_ = Part::Line;
          leader.lines.emplace_back();
        } else if (tag.code == 40)
          leader.doglegLength = coordinate(tag);
        else
          takePoint(tag, 10, leader.end) || takePoint(tag, 11, leader.dogleg);
        break;
      }
      case Part::Line: {
        Chain& line = leaders.back().lines.back();
        if (tag.code == 305)
          part_ = Part::Leader;
        else if (tag.code == 10)
          line.push_back({coordinate(tag), 0, 0});
        else if (!line.empty())
          takePoint(tag, 10, line.back());
        break;
      }
    }
  }

  void takeContext(const Tag& tag, const text::Codec& codec) {
    if (takePoint(tag, 12, text.position)) return;
    AcGePoint3d* vector = tag.code == 11 || tag.code == 21 || tag.code == 31   ? &normal_
                          : tag.code == 13 || tag.code == 23 || tag.code == 33 ? &direction_
                                                                               : nullptr;
    if (vector != nullptr) {
      takePoint(tag, vector == &normal_ ? 11 : 13, *vector);
      text.normal = normal_.asVector();
      text.direction = direction_.asVector();
      return;
    }
    switch (tag.code) {
      case 41:
        text.height = coordinate(tag);
        break;
      case 43:
        text.referenceWidth = std::max(0.0, tag.real());
        break;
      case 45:
        text.lineSpacing = std::clamp(tag.real(), 0.25, 4.0);
        break;
      case 140:
        arrowSize = coordinate(tag);
        break;
      case 171:
        text.attachment = std::clamp(static_cast<int>(tag.integer()), 1, 3);
        break;
      case 290:
        hasText = tag.integer() != 0;
        break;
      case 340:
        style_ = tag.handle();
        break;
      case 304:
        text.contents = codec.decode(tag.value);
        break;
      default:
        break;
    }
  }

  Part part_ = Part::Entity;
  std::uint64_t style_ = 0;
  AcGePoint3d normal_{0, 0, 1}, direction_{1, 0, 0};
};

bool isUsableDirection(const AcGeVector3d& v) { return std::isfinite(v.x + v.y + v.z) && v.length() > 0; }

}  // namespace

MultiLeaderShape readMultiLeader(const database::Slot& entity, double deviation, const TextWidth& width) {
  Reader reader(entity);
  MultiLeaderShape shape;
  for (const LeaderPart& leader : reader.leaders) {
    if (reader.lineKind == 0 || !isUsable(leader.end)) continue;
    const AcGeVector3d dogleg = isUsable(leader.dogleg) && std::isfinite(leader.doglegLength)
                                    ? leader.dogleg.asVector() * leader.doglegLength
                                    : AcGeVector3d{};
    for (const Chain& line : leader.lines) {
      if (line.empty() || !std::ranges::all_of(line, isUsable)) continue;
      Chain points = line;
      points.push_back(leader.end);
      Wire wire;
      wire.points = reader.lineKind == 2 ? flatten(curves::splineThrough(points), deviation) : points;
      if (dogleg.length() > 0) wire.points.push_back(leader.end + dogleg);
      shape.wires.push_back(std::move(wire));
      if (reader.arrowSize > 0 && points[0].distanceTo(points[1]) > reader.arrowSize)
        shape.wires.push_back(arrowhead(points[0], points[1], reader.arrowSize));
    }
  }
  MTextParts& text = reader.text;
  if (!isUsableDirection(text.normal)) text.normal = {0, 0, 1};
  if (!isUsableDirection(text.direction)) text.direction = {1, 0, 0};
  if (reader.hasText) shape.text = layoutMText(text, width);
  return shape;
}

}  // namespace host::geometry
