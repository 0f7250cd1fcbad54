#include "Window/Commands/SvgDrawing.h"

#include <QColor>
#include <QPainter>
#include <QTransform>
#include <QXmlStreamReader>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>
#include <string>
#include <string_view>

namespace host::window {
namespace {

/// What elements take from those around them.
struct Style {
  QString fill = "black", stroke = "none", cap = "butt", join = "miter", rule = "nonzero";
  qreal width = 1;

  void take(const QXmlStreamAttributes& attributes) {
    const auto read = [&attributes](const char* name, QString& value) {
      if (attributes.hasAttribute(QLatin1String(name))) value = attributes.value(QLatin1String(name)).toString();
    };
    read("fill", fill);
    read("stroke", stroke);
    read("stroke-linecap", cap);
    read("stroke-linejoin", join);
    read("fill-rule", rule);
    if (attributes.hasAttribute(QLatin1String("stroke-width")))
      width = attributes.value(QLatin1String("stroke-width")).toDouble();
  }

  QBrush brush() const { return fill == "none" ? QBrush(Qt::NoBrush) : QBrush(QColor(fill)); }
  QPen pen() const {
    if (stroke == "none") return {Qt::NoPen};
    QPen pen(QColor(stroke), width, Qt::SolidLine,
             cap == "round"    ? Qt::RoundCap
             : cap == "square" ? Qt::SquareCap
                               : Qt::FlatCap,
             join == "round"   ? Qt::RoundJoin
             : join == "bevel" ? Qt::BevelJoin
                               : Qt::SvgMiterJoin);
    pen.setMiterLimit(4);
    return pen;
  }
};

/// The letters and numbers of a path's data, which stand without anything between them where that is clear.
class PathData {
 public:
  /// The text must outlive it.
  explicit PathData(const std::string& text) : rest_(text) {}

  /// The letter of the next command; that of the last one where only its numbers follow; 0 at the end.
  char command(char last) {
    skip();
    if (rest_.empty()) return 0;
    const char next = rest_.front();
    if ((next >= 'a' && next <= 'z') || (next >= 'A' && next <= 'Z')) {
      rest_.remove_prefix(1);
      return next;
    }
    if (last == 'M') return 'L';
    return last == 'm' ? 'l' : last;
  }
  qreal number() {
    skip();
    double value = 0;
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
    if (error != std::errc())
      rest_ = {};
    else
      rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
    return value;
  }
  QPointF point() {
    const qreal x = number();
    return {x, number()};
  }
  /// A single digit.
  bool flag() {
    skip();
    if (rest_.empty()) return false;
    const bool is = rest_.front() == '1';
    rest_.remove_prefix(1);
    return is;
  }

 private:
  void skip() { rest_.remove_prefix(std::min(rest_.find_first_not_of(" ,\t\r\n"), rest_.size())); }

  std::string_view rest_;
};

/// An arc between two points, in quarters or less (SVG 1.1, F.6.5: from end points to the centre).
void arcTo(QPainterPath& path, qreal rx, qreal ry, qreal degrees, bool isLarge, bool isClockwise, const QPointF& end) {
  const QPointF begin = path.currentPosition();
  rx = std::abs(rx);
  ry = std::abs(ry);
  if (begin == end) return;
  if (rx == 0 || ry == 0) {
    path.lineTo(end);
    return;
  }
  const QTransform turn = QTransform().rotate(degrees);
  // Where the ellipse is a circle of radius 1.
  const QTransform toUnit = turn.inverted() * QTransform::fromScale(1 / rx, 1 / ry);
  const QPointF a = toUnit.map(begin), b = toUnit.map(end);
  const QPointF half = (b - a) / 2;
  const qreal length = std::hypot(half.x(), half.y());
  const qreal radius = std::max(qreal(1), length);  // an ellipse that is too small grows
  const qreal off = std::sqrt(std::max(qreal(0), radius * radius - length * length)) / length;
  const QPointF side = QPointF(-half.y(), half.x()) * (isLarge == isClockwise ? -off : off);
  const QPointF centre = (a + b) / 2 + side;
  const qreal from = std::atan2(a.y() - centre.y(), a.x() - centre.x());
  qreal sweep = std::atan2(b.y() - centre.y(), b.x() - centre.x()) - from;
  constexpr qreal kTurn = 2 * std::numbers::pi;
  if (isClockwise && sweep < 0) sweep += kTurn;
  if (!isClockwise && sweep > 0) sweep -= kTurn;
  const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / (kTurn / 4) - 1e-9)));
  const qreal step = sweep / pieces;
  const qreal handle = 4.0 / 3 * std::tan(step / 4);
  const QTransform back = toUnit.inverted();
  const auto at = [&](qreal angle, qreal along) {
    const QPointF out(std::cos(angle), std::sin(angle));
    return back.map(centre + (out + QPointF(-out.y(), out.x()) * along) * radius);
  };
  for (int i = 0; i < pieces; ++i) {
    const qreal angle = from + i * step;
    path.cubicTo(at(angle, handle), at(angle + step, -handle), i + 1 == pieces ? end : at(angle + step, 0));
  }
}

QPainterPath pathOf(const std::string& text) {
  QPainterPath path;
  PathData data(text);
  QPointF start, handle;  // of the ring, and the last one of a curve
  char last = 0;
  for (char command = data.command(0); command != 0; command = data.command(last)) {
    const bool isRelative = command >= 'a';
    const QPointF here = path.elementCount() == 0     ? QPointF()
                         : last == 'Z' || last == 'z' ? start
                                                      : path.currentPosition();
    const QPointF base = isRelative ? here : QPointF();
    const auto point = [&] { return base + data.point(); };
    const bool wasCurve = last == 'C' || last == 'c' || last == 'S' || last == 's';
    if ((last == 'Z' || last == 'z') && command != 'M' && command != 'm') path.moveTo(start);
    switch (isRelative ? command - 'a' + 'A' : command) {
      case 'M':
        path.moveTo(start = point());
        break;
      case 'L':
        path.lineTo(point());
        break;
      case 'H':
        path.lineTo(base.x() + data.number(), here.y());
        break;
      case 'V':
        path.lineTo(here.x(), base.y() + data.number());
        break;
      case 'C':
      case 'S': {
        const bool isShort = command == 'S' || command == 's';
        const QPointF first = !isShort ? point() : wasCurve ? 2 * here - handle : here;
        handle = point();
        path.cubicTo(first, handle, point());
        break;
      }
      case 'A': {
        const QPointF radii = data.point();
        const qreal turn = data.number();
        const bool isLarge = data.flag(), isClockwise = data.flag();
        arcTo(path, radii.x(), radii.y(), turn, isLarge, isClockwise, point());
        break;
      }
      case 'Z':
        path.closeSubpath();
        break;
      default:  // what is not known ends the path
        return path;
    }
    last = command;
  }
  return path;
}

QPainterPath outlineOf(QStringView element, const QXmlStreamAttributes& attributes) {
  const auto number = [&attributes](const char* name) { return attributes.value(QLatin1String(name)).toDouble(); };
  QPainterPath path;
  if (element == QLatin1String("path")) {
    path = pathOf(attributes.value(QLatin1String("d")).toString().toStdString());
  } else if (element == QLatin1String("rect")) {
    const qreal round = number("rx");
    path.addRoundedRect(QRectF(number("x"), number("y"), number("width"), number("height")), round, round);
  } else if (element == QLatin1String("circle")) {
    path.addEllipse(QPointF(number("cx"), number("cy")), number("r"), number("r"));
  }
  return path;
}

}  // namespace

SvgDrawing::SvgDrawing(const QByteArray& svg) {
  QXmlStreamReader reader(svg);
  QList<Style> styles{{}};  // of the elements that are open
  while (!reader.atEnd()) {
    const auto token = reader.readNext();
    if (token == QXmlStreamReader::EndElement) styles.removeLast();
    if (token != QXmlStreamReader::StartElement) continue;
    const QXmlStreamAttributes attributes = reader.attributes();
    Style style = styles.last();
    style.take(attributes);
    styles.append(style);
    if (attributes.hasAttribute(QLatin1String("viewBox"))) {
      const std::string text = attributes.value(QLatin1String("viewBox")).toString().toStdString();
      PathData box(text);
      const QPointF corner = box.point(), size = box.point();
      viewBox_ = QRectF(corner.x(), corner.y(), size.x(), size.y());
    }
    QPainterPath outline = outlineOf(reader.name(), attributes);
    if (outline.isEmpty()) continue;
    outline.setFillRule(style.rule == "evenodd" ? Qt::OddEvenFill : Qt::WindingFill);
    shapes_.append({outline, style.brush(), style.pen()});
  }
  if (reader.hasError() || viewBox_.isEmpty()) shapes_.clear();
}

void SvgDrawing::paint(QPainter& painter, const QRectF& place) const {
  if (isEmpty()) return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(place.topLeft());
  painter.scale(place.width() / viewBox_.width(), place.height() / viewBox_.height());
  painter.translate(-viewBox_.topLeft());
  for (const Shape& shape : shapes_) {
    painter.setBrush(shape.fill);
    painter.setPen(shape.stroke);
    painter.drawPath(shape.outline);
  }
  painter.restore();
}

}  // namespace host::window
