#include "Window/Canvas/Previews.h"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "Curves/Bulges.h"
#include "Hatching/PatternFill.h"
#include "Picture/EntityPainter.h"

namespace host::window {
namespace {

using database::DxfType;
using database::Slot;
using editor::Wanted;

constexpr double kDegree = std::numbers::pi / 180;

/// The column "preview": a word and numbers.
struct Form {
  QString name;
  std::vector<double> numbers;
};

Form formOf(const CanvasQuestion& question) {
  Form form;
  const QStringList words = QString::fromStdWString(question.preview).split(u' ', Qt::SkipEmptyParts);
  if (words.isEmpty()) return form;
  form.name = words.front();
  for (qsizetype i = 1; i < words.size(); ++i) form.numbers.push_back(words[i].toDouble());
  return form;
}

Point flat(const AcGePoint3d& p) { return {p.x, p.y}; }

std::vector<Point> pointsOf(const PreviewInput& input) {
  std::vector<Point> points;
  for (const AcGePoint3d& p : input.question.points) points.push_back(flat(p));
  return points;
}

/// A piece of a polyline as chords that look round.
std::vector<Point> piece(Point from, Point to, double bulge, const ViewFrame& frame) {
  constexpr double kDeviationPx = 0.2;
  std::vector<Point> points{from};
  if (bulge != 0) {
    curves::flattenBulge(from, to, bulge, kDeviationPx / frame.scale(), points);
  } else {
    points.push_back(to);
  }
  return points;
}

/// The way through the points so far.
std::vector<Point> wayOf(const PreviewInput& input, const ViewFrame& frame) {
  const std::vector<Point> points = pointsOf(input);
  std::vector<Point> way{points.front()};
  for (std::size_t i = 1; i < points.size(); ++i) {
    const double bulge = i < input.question.bulges.size() ? input.question.bulges[i] : 0;
    const std::vector<Point> next = piece(points[i - 1], points[i], bulge, frame);
    way.insert(way.end(), next.begin() + 1, next.end());
  }
  return way;
}

/// The number being typed, a comma taken for a point.
std::optional<double> typedNumber(const QString& typed) {
  bool isNumber = false;
  const double value = QString(typed).trimmed().replace(u',', u'.').toDouble(&isNumber);
  return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// The row as far as it is known: the way to the cursor, or the numbers given and the one being typed.
std::optional<ParkingRow> parkingRow(const PreviewInput& input, const Form& form) {
  const std::vector<Point> points = pointsOf(input);
  ParkingRow row;
  if (points.size() >= 2)
    row.end = points[1];
  else if (points.size() == 1 && input.cursor && input.question.wanted == Wanted::Point)
    row.end = *input.cursor;
  else
    return std::nullopt;
  row.start = points[0];
  std::vector<double> numbers = form.numbers;
  numbers.resize(3, 0);
  const std::vector<double>& given = input.question.numbers;
  for (std::size_t i = 0; i < 3; ++i) {
    if (i < given.size() && std::isfinite(given[i])) numbers[i] = given[i];
    if (i == given.size() && input.question.wanted == Wanted::Number)
      if (const auto typed = typedNumber(input.typed)) numbers[i] = *typed;
  }
  row.angleDegrees = numbers[0];
  row.width = numbers[1];
  row.length = numbers[2];
  return row;
}

class Drawing {
 public:
  Drawing(MarkPainter& marks, const ViewFrame& frame, const Scene& scene)
      : marks_(marks), frame_(frame), scene_(scene) {}

  QPointF pixel(Point plan) const { return frame_.toPixel(scene_.toScene(plan)); }
  void line(const std::vector<Point>& plan, bool isClosed, bool isSolid) {
    marks_.line(pixels(plan), isClosed, isSolid);
  }
  std::vector<QPointF> pixels(const std::vector<Point>& plan) const {
    std::vector<QPointF> at;
    at.reserve(plan.size());
    for (const Point p : plan) at.push_back(pixel(p));
    return at;
  }

  /// The text as it is typed, of the height and at the angle that were given.
  void text(MarkPainter& marks, const PreviewInput& input) const {
    const CanvasQuestion& question = input.question;
    if (question.points.empty() || question.wanted == Wanted::Point) return;
    std::vector<double> numbers = question.numbers;
    if (question.wanted == Wanted::Number)
      if (const auto typed = typedNumber(input.typed)) numbers.push_back(*typed);
    if (numbers.empty() || !(numbers[0] > 0)) return;
    const double turn = numbers.size() > 1 && std::isfinite(numbers[1]) ? numbers[1] * kDegree : 0;
    const bool isTyped = question.wanted == Wanted::Text && !input.typed.isEmpty();
    const Point at = flat(question.points.back());
    marks.ghostText(pixel(at), numbers[0] * frame_.scale(), turn, isTyped ? input.typed : QStringLiteral("Abc"));
  }

  void parking(const ParkingRow& row) {
    line({row.start, row.end}, false, true);
    constexpr std::size_t kMostDrawn = 2000;
    const auto lines = row.lines();
    if (lines.size() > kMostDrawn) return;
    for (const auto& [from, to] : lines) line({from, to}, false, false);
    // An arrow to the side where the places come.
    const Point way = row.end - row.start;
    if (!(curves::length(way) > 0) || lines.empty()) return;
    constexpr double kArrowPx = 24, kHeadPx = 7;
    const QPointF middle = pixel((row.start + row.end) * 0.5);
    const Point side = lines.front().second - lines.front().first;
    const double length = curves::length(side);
    if (!(length > 0)) return;
    const QPointF along(side.x / length, -side.y / length), across(-along.y(), along.x());
    const QPointF tip = middle + along * kArrowPx;
    marks_.line({middle, tip}, false, true);
    marks_.line({tip - along * kHeadPx + across * kHeadPx / 2, tip, tip - along * kHeadPx - across * kHeadPx / 2},
                false, true);
  }

  void roofFace(std::vector<Point> points, const std::optional<Point>& cursor, std::size_t corners) {
    if (cursor && points.size() < corners) points.push_back(*cursor);
    if (points.size() < 2) return;
    const bool isWhole = points.size() >= corners;
    const std::vector<QPointF> ring = pixels(points);
    if (isWhole) marks_.area(ring);
    marks_.line(ring, isWhole, true);
    // Slope lines run at right angles to the first edge, as far apart as can be told.
    const Point edge{ring[1].x() - ring[0].x(), ring[1].y() - ring[0].y()};
    if (!(curves::length(edge) > 0)) return;
    constexpr double kApartPx = 16;
    constexpr std::size_t kMostLines = 2000;
    const Point down = curves::left(edge) * (1 / curves::length(edge));
    const Point step = edge * (kApartPx / curves::length(edge));
    hatching::PatternLine family;
    family.angleRad = std::atan2(down.y, down.x);
    family.baseX = ring[0].x();
    family.baseY = ring[0].y();
    family.offsetX = step.x;
    family.offsetY = step.y;
    curves::Polygon area;
    for (const QPointF p : ring) area.push_back({p.x(), p.y()});
    if (area.size() == 2) {  // the side is not known yet: beginnings on the left
      constexpr double kBeginPx = 18;
      area.push_back(area[1] - down * kBeginPx);
      area.push_back(area[0] - down * kBeginPx);
    }
    hatching::fillPattern({family}, {area}, kMostLines, [&](const hatching::PatternSegment& segment) {
      marks_.line({{segment.from.x, segment.from.y}, {segment.to.x, segment.to.y}}, false, false);
    });
  }

 private:
  MarkPainter& marks_;
  const ViewFrame& frame_;
  const Scene& scene_;
};

QString lengthText(double length) { return QString::number(length, 'f', 2); }

/// Degrees counter-clockwise from east.
double angleOf(Point way) {
  const double degrees = std::atan2(way.y, way.x) / kDegree;
  return degrees < 0 ? degrees + 360 : degrees;
}

}  // namespace

std::vector<std::pair<Point, Point>> ParkingRow::lines() const {
  constexpr double kMostPlaces = 10'000;
  std::vector<std::pair<Point, Point>> lines;
  const Point way = end - start;
  const double whole = curves::length(way);
  if (!(width > 0) || !(whole > 0) || !(whole / width <= kMostPlaces) || !std::isfinite(angleDegrees + length))
    return lines;
  const double direction = std::atan2(way.y, way.x), turned = direction + angleDegrees * kDegree;
  const Point along{std::cos(direction), std::sin(direction)},
      out{std::cos(turned) * length, std::sin(turned) * length};
  for (double at = 0; whole > at; at += width) {
    const Point from = start + along * at;
    lines.emplace_back(from, from + out);
  }
  return lines;
}

/// The named block that was defined last, laid out about its base point.
const picture::Recording& Previews::block(const PreviewInput& input) {
  const Slot* newest = nullptr;
  for (const Slot* record : input.drawing->records(DxfType::BlockRecord)) {
    if (record->isErased() || (record->flags & database::kNew) == 0) continue;
    const std::wstring name = input.drawing->recordName(*record);
    if (!name.empty() && name.front() != L'*') newest = record;
  }
  const std::uint64_t change = input.drawing->changeCount();
  if (newest == blockRecord_ && change == blockChange_) return block_;
  blockRecord_ = newest;
  blockChange_ = change;
  block_ = {};
  const database::BlockContents* contents = newest != nullptr ? input.drawing->block(newest) : nullptr;
  if (contents == nullptr) return block_;
  AcGePoint3d base;
  if (contents->begin != nullptr) {
    database::TagCursor tags = contents->begin->tags();
    for (database::Tag tag; tags.next(tag);) {
      if (tag.code == 10) base.x = tag.real();
      if (tag.code == 20) base.y = tag.real();
    }
  }
  picture::View view;
  view.toPicture.y = {0, -1, 0};
  view.toPicture.origin = {-base.x, base.y, 0};
  constexpr double kDeviation = 0.01;
  view.deviation = kDeviation;
  view.thinnestLine = 0;
  view.keepsRoles = true;
  const picture::PictureOptions options;
  picture::GlyphSource glyphs;
  picture::Recorder recorder;
  picture::EntityPainter painter(*input.drawing, options, glyphs, view, recorder);
  recorder.begin(block_);
  painter.begin(*contents);
  for (const Slot* entity : contents->entities)
    if (!entity->isErased()) painter.paintOne(*entity);
  return block_;
}

void Previews::paint(MarkPainter& marks, const ViewFrame& frame, const PreviewInput& input) {
  const Scene& scene = *input.keeper->scene();
  const CanvasQuestion& question = input.question;
  Drawing drawing(marks, frame, scene);
  const Form form = formOf(question);
  const bool isPoint = question.wanted == Wanted::Point;
  if (form.name == u"parking-row") {
    if (const auto row = parkingRow(input, form)) return drawing.parking(*row);
  } else if (form.name == u"roof-face") {
    const auto corners = static_cast<std::size_t>(form.numbers.empty() ? 4 : std::clamp(form.numbers[0], 3.0, 100.0));
    if (isPoint) return drawing.roofFace(pointsOf(input), input.cursor, corners);
  } else if (form.name == u"block") {
    if (isPoint && input.cursor) marks.ghost(block(input), scene.toScene(*input.cursor));
  } else if (form.name == u"ghosts" && question.base && !question.chosen.empty()) {
    std::vector<SceneRef> entities;
    for (const Slot* slot : question.chosen)
      if (const SceneRef entity = input.keeper->find(slot)) entities.push_back(entity);
    const Point base = flat(*question.base);
    if (isPoint && input.cursor) {
      const Point way = *input.cursor - base;
      marks.ghosts(entities, scene.toScene(base), 0, {way.x, -way.y});
    } else if (question.wanted == Wanted::Number) {
      std::optional<double> turn = typedNumber(input.typed);
      if (!turn && input.cursor) turn = angleOf(*input.cursor - base);
      if (turn) marks.ghosts(entities, scene.toScene(base), -*turn * kDegree, {});
      if (!typedNumber(input.typed) && input.cursor) drawing.line({base, *input.cursor}, false, true);
    }
  } else if (form.name == u"text") {
    drawing.text(marks, input);
  } else if (form.name == u"next-piece" && question.points.size() > 1) {
    drawing.line(wayOf(input, frame), false, false);
  }
  if (!isPoint || !question.base || !input.cursor) return;
  const Point base = flat(*question.base);
  const std::optional<double> bulge =
      question.direction ? curves::tangentBulge(base, *question.direction, *input.cursor) : std::nullopt;
  drawing.line(piece(base, *input.cursor, bulge.value_or(0), frame), false, true);
}

QString Previews::words(const PreviewInput& input) const {
  const CanvasQuestion& question = input.question;
  const Form form = formOf(question);
  if (form.name == u"parking-row") {
    if (const auto row = parkingRow(input, form))
      return CanvasView::tr("%n places", nullptr, static_cast<int>(row->lines().size())) +
             QStringLiteral(" · %1 m").arg(curves::distance(row->start, row->end), 0, 'f', 1);
  }
  if (!input.cursor) return {};
  std::optional<Point> base;
  if (question.base) base = flat(*question.base);
  if (!base && form.name == u"roof-face" && !question.points.empty()) base = flat(question.points.back());
  if (!base || (question.wanted != Wanted::Point && form.name != u"ghosts")) return {};
  const Point way = *input.cursor - *base;
  return QStringLiteral("%1 m  %2°").arg(lengthText(curves::length(way))).arg(angleOf(way), 0, 'f', 1);
}

}  // namespace host::window
