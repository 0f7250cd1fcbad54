// LINE and PLINE.
#include <cmath>
#include <memory>
#include <numbers>
#include <utility>

#include "Curves/Bulges.h"
#include "Editor/Commands/HostCommands.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"

namespace host::editor {
namespace {

using curves::Point2;

constexpr double kPi = std::numbers::pi;

/// Adds the entity to the current space and closes it.
AcDbObjectId append(Prompter& prompter, std::unique_ptr<AcDbEntity> entity) {
  const AcDbObjectPointer<AcDbBlockTableRecord> space(AcDbObjectId(prompter.session().currentSpace().record),
                                                      AcDb::kForWrite);
  AcDbObjectId id;
  if (space.openStatus() == Acad::eOk && space->appendAcDbEntity(id, entity.get()) == Acad::eOk) {
    entity.release()->close();
    return id;
  }
  prompter.refuse(L"The entity cannot be added to the drawing.");
  return {};
}

void eraseById(AcDbObjectId id) {
  const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
  if (entity.openStatus() == Acad::eOk) entity->erase();
}

void line(Prompter& prompter) {
  Document& document = *prompter.session().documents().current();
  const AcGePoint3d last = document.lastPoint;
  const auto first = prompter.point(L"Specify first point: ");
  if (first.outcome == Outcome::Cancel) return;
  if (!first) prompter.session().recording().wasPoint(last);
  std::vector<AcGePoint3d> points{first ? first.value : last};
  std::vector<AcDbObjectId> made;
  for (;;) {
    Limits limits;
    limits.base = points.back();
    limits.keywords = Keywords(made.size() >= 2 ? L"Close Undo" : L"Undo");
    const auto reply = prompter.point(L"Specify next point or [" + limits.keywords.shown() + L"]: ", limits);
    if (reply.outcome == Outcome::Cancel || reply.outcome == Outcome::Enter) return;
    if (reply.outcome == Outcome::Keyword && reply.keyword == L"Undo") {
      if (made.empty()) {
        prompter.line(L"All segments already undone.");
        continue;
      }
      eraseById(made.back());
      made.pop_back();
      points.pop_back();
      document.lastPoint = points.back();
      continue;
    }
    const bool closes = reply.outcome == Outcome::Keyword;
    const AcGePoint3d end = closes ? points.front() : reply.value;
    const AcDbObjectId id = append(prompter, std::make_unique<AcDbLine>(points.back(), end));
    if (id.isNull()) return;
    made.push_back(id);
    points.push_back(end);
    if (closes) return;
  }
}

/// A vertex and the piece that starts there.
struct DraftVertex {
  Point2 point;
  double bulge = 0;
  double startWidth = 0, endWidth = 0;
};

/// The dialogue of PLINE: collects vertices, makes the polyline at the end.
class PolylineDialogue {
 public:
  explicit PolylineDialogue(Prompter& prompter) : prompter_(prompter) {}

  void run() {
    const auto first = prompter_.point(L"Specify start point: ");
    if (!first) return;
    elevation_ = first.value.z;
    vertices_.push_back({flat(first.value), 0, 0, 0});
    prompter_.line(L"Current line-width is " + shownNumber(startWidth_));
    while (!done_) {
      const bool goesOn = arcs_ ? askArc() : askLine();
      if (!goesOn) break;
    }
    finish();
  }

 private:
  static Point2 flat(const AcGePoint3d& point) { return {point.x, point.y}; }
  AcGePoint3d lastPoint() const { return {vertices_.back().point.x, vertices_.back().point.y, elevation_}; }

  /// Direction in which the next arc leaves: that of the last piece, east when there is none.
  double direction() const {
    if (vertices_.size() < 2) return 0;
    const DraftVertex& before = vertices_[vertices_.size() - 2];
    return endDirection(before.point, vertices_.back().point, before.bulge);
  }

  Limits limits(std::wstring_view keywords) const {
    Limits result;
    result.base = lastPoint();
    result.keywords = Keywords(keywords);
    return result;
  }

  void add(Point2 point, double bulge) {
    DraftVertex& from = vertices_.back();
    from.bulge = bulge;
    from.startWidth = startWidth_;
    from.endWidth = endWidth_;
    startWidth_ = endWidth_;
    vertices_.push_back({point, 0, endWidth_, endWidth_});
    prompter_.session().documents().current()->lastPoint = lastPoint();
  }

  bool askLine() {
    const bool canClose = vertices_.size() >= 3;
    const Limits next =
        limits(canClose ? L"Arc Close Halfwidth Length Undo Width" : L"Arc Halfwidth Length Undo Width");
    const auto reply = prompter_.point(L"Specify next point or [" + next.keywords.shown() + L"]: ", next);
    if (reply.outcome == Outcome::Cancel || reply.outcome == Outcome::Enter) return false;
    if (reply) {
      add(flat(reply.value), 0);
    } else if (reply.keyword == L"Arc") {
      arcs_ = true;
    } else if (reply.keyword == L"Close") {
      close(0);
    } else if (reply.keyword == L"Length") {
      return askLength();
    } else {
      return askCommon(reply.keyword);
    }
    return true;
  }

  bool askArc() {
    const bool canClose = vertices_.size() >= 2;
    Limits next = limits(canClose ? L"Angle CEnter CLose Direction Halfwidth Line Radius Second Undo Width"
                                  : L"Angle CEnter Direction Halfwidth Line Radius Second Undo Width");
    next.direction = direction();
    const auto reply = prompter_.point(L"Specify endpoint of arc or [" + next.keywords.shown() + L"]: ", next);
    if (reply.outcome == Outcome::Cancel || reply.outcome == Outcome::Enter) return false;
    if (reply) return addArc(flat(reply.value), tangentBulge(vertices_.back().point, direction(), flat(reply.value)));
    if (reply.keyword == L"Line") {
      arcs_ = false;
      return true;
    }
    if (reply.keyword == L"CLose") {
      const auto bulge = tangentBulge(vertices_.back().point, direction(), vertices_.front().point);
      if (!bulge) return prompter_.refuse(L"No arc closes the polyline from here.");
      close(*bulge);
      return true;
    }
    if (reply.keyword == L"Angle") return askAngle();
    if (reply.keyword == L"CEnter") return askCenter();
    if (reply.keyword == L"Direction") return askDirection();
    if (reply.keyword == L"Radius") return askRadius();
    if (reply.keyword == L"Second") return askSecond();
    return askCommon(reply.keyword);
  }

  bool addArc(Point2 end, std::optional<double> bulge) {
    if (!bulge || !std::isfinite(*bulge)) return prompter_.refuse(L"No arc goes through these points.");
    add(end, *bulge);
    return true;
  }

  std::optional<Point2> askPoint(std::wstring_view prompt) {
    Limits needed = limits({});
    needed.bits = RSG_NONULL;
    const auto reply = prompter_.point(prompt, needed);
    return reply ? std::optional(flat(reply.value)) : std::nullopt;
  }

  std::optional<double> askNumber(std::wstring_view prompt, int bits) {
    Limits needed;
    needed.bits = bits;
    const auto reply = prompter_.real(prompt, needed);
    return reply ? std::optional(reply.value) : std::nullopt;
  }

  bool askAngle() {
    const auto degrees = askNumber(L"Specify included angle: ", RSG_NONULL | RSG_NOZERO);
    if (!degrees) return false;
    if (std::abs(*degrees) >= 360) return prompter_.refuse(L"The included angle must be less than 360 degrees.");
    const auto end = askPoint(L"Specify endpoint of arc: ");
    if (!end) return false;
    return addArc(*end, std::tan(*degrees * kPi / 180 / 4));
  }

  bool askCenter() {
    const auto center = askPoint(L"Specify center point of arc: ");
    if (!center) return false;
    const auto toward = askPoint(L"Specify endpoint of arc: ");
    if (!toward) return false;
    Point2 end;
    const auto bulge = bulgeAbout(*center, vertices_.back().point, *toward, end);
    return addArc(end, bulge);
  }

  bool askDirection() {
    const auto toward = askPoint(L"Specify the tangent direction from the start point of arc: ");
    if (!toward) return false;
    const auto end = askPoint(L"Specify endpoint of the arc: ");
    if (!end) return false;
    const Point2 from = vertices_.back().point;
    return addArc(*end, tangentBulge(from, std::atan2(toward->y - from.y, toward->x - from.x), *end));
  }

  bool askRadius() {
    const auto radius = askNumber(L"Specify radius of arc: ", RSG_NONULL | RSG_NOZERO | RSG_NONEG);
    if (!radius) return false;
    const auto end = askPoint(L"Specify endpoint of arc: ");
    if (!end) return false;
    const Point2 from = vertices_.back().point;
    const double halfChord = distance(from, *end) / 2;
    if (halfChord == 0 || halfChord > *radius)
      return prompter_.refuse(L"No arc of that radius goes through the points.");
    // The shorter arc, counter-clockwise.
    return addArc(*end, std::tan(std::asin(halfChord / *radius) / 2));
  }

  bool askSecond() {
    const auto on = askPoint(L"Specify second point on arc: ");
    if (!on) return false;
    const auto end = askPoint(L"Specify end point of arc: ");
    if (!end) return false;
    return addArc(*end, bulgeThrough(vertices_.back().point, *on, *end));
  }

  bool askLength() {
    const auto length = askNumber(L"Specify length of line: ", RSG_NONULL);
    if (!length) return false;
    const Point2 from = vertices_.back().point;
    add({from.x + *length * std::cos(direction()), from.y + *length * std::sin(direction())}, 0);
    return true;
  }

  bool askCommon(std::wstring_view keyword) {
    if (keyword == L"Undo") {
      if (vertices_.size() > 1) {
        vertices_.pop_back();
        startWidth_ = endWidth_ = vertices_.back().startWidth;
        vertices_.back().bulge = 0;
        prompter_.session().documents().current()->lastPoint = lastPoint();
      } else {
        prompter_.line(L"All segments already undone.");
      }
      return true;
    }
    const bool isHalf = keyword == L"Halfwidth";
    const double factor = isHalf ? 2 : 1;
    Limits limits;
    limits.bits = RSG_NONEG;
    const std::wstring what = isHalf ? L"half-width" : L"width";
    const auto start =
        prompter_.real(L"Specify starting " + what + L" <" + shownNumber(startWidth_ / factor) + L">: ", limits);
    if (start.outcome == Outcome::Cancel) return false;
    if (start) startWidth_ = start.value * factor;
    const auto end =
        prompter_.real(L"Specify ending " + what + L" <" + shownNumber(startWidth_ / factor) + L">: ", limits);
    if (end.outcome == Outcome::Cancel) return false;
    endWidth_ = end ? end.value * factor : startWidth_;
    return true;
  }

  void close(double bulge) {
    DraftVertex& last = vertices_.back();
    last.bulge = bulge;
    last.startWidth = startWidth_;
    last.endWidth = endWidth_;
    closed_ = done_ = true;
  }

  void finish() {
    if (vertices_.size() < 2) return;
    auto polyline = std::make_unique<AcDbPolyline>(static_cast<unsigned>(vertices_.size()));
    unsigned index = 0;
    for (const DraftVertex& vertex : vertices_)
      polyline->addVertexAt(index++, {vertex.point.x, vertex.point.y}, vertex.bulge, vertex.startWidth,
                            vertex.endWidth);
    if (closed_) polyline->setClosed(true);
    if (elevation_ != 0) polyline->setElevation(elevation_);
    append(prompter_, std::move(polyline));
  }

  Prompter& prompter_;
  std::vector<DraftVertex> vertices_;
  double elevation_ = 0;
  double startWidth_ = 0, endWidth_ = 0;
  bool arcs_ = false;
  bool closed_ = false;
  bool done_ = false;
};

void pline(Prompter& prompter) { PolylineDialogue(prompter).run(); }

constexpr HostCommand kCommands[] = {
    {L"LINE", ACRX_CMD_MODAL, line, L"draws lines"},
    {L"PLINE", ACRX_CMD_MODAL, pline, L"draws a polyline, with arcs; C closes it"},
};

}  // namespace

std::span<const HostCommand> drawCommands() { return kCommands; }

}  // namespace host::editor
