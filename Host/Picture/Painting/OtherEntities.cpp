// The painter's entities that bring their picture along, or have none.
#include "Geometry/Annotations.h"
#include "Geometry/MultiLeaders.h"
#include "Geometry/ProxyGraphics.h"
#include "Picture/EntityPainter.h"

namespace host::picture {

using database::DxfType;
using database::Slot;

bool EntityPainter::paintProxy(const Slot& entity, const Place& place, const Style& style, double deviation) {
  const auto pieces = geometry::readProxyGraphics(entity, deviation, textWidth());
  for (const geometry::ProxyPiece& piece : pieces) {
    Style own = style;
    own.line.pen.color = own.fill = appearances_.color(piece.color, piece.trueColor, style.appearance);
    if (piece.lineweight) {
      Appearance weighed = style.appearance;
      weighed.lineweightMm = *piece.lineweight / 100.0;
      own.line.pen.width = styleOf(weighed, place).line.pen.width;
    }
    for (const geometry::Wire& wire : piece.wires) paintWire(wire, place, own);
    if (piece.infinite) paintInfinite(*piece.infinite, place, own);
    if (!piece.text) continue;
    own.appearance = appearances_.withColor(piece.color, piece.trueColor, style.appearance);
    paintText(*piece.text, place, own);
  }
  return !pieces.empty();
}

void EntityPainter::paintLeader(const Slot& entity, const Place& place, const Style& style, double deviation) {
  // The graphics that came along show frames, block contents and landings, too.
  if (paintProxy(entity, place, style, deviation)) return;
  const auto leader = geometry::readMultiLeader(entity, deviation, textWidth());
  for (const geometry::Wire& wire : leader.wires) paintWire(wire, place, style);
  if (leader.text) paintText(*leader.text, place, style);
}

void EntityPainter::paintOther(const Slot& entity, const Place& place, const Style& style, double deviation) {
  if (paintProxy(entity, place, style, deviation)) return;
  const bool isDimension = geometry::isDimension(entity);
  if (isDimension || entity.type == DxfType::Tolerance) {
    const auto shape = isDimension ? geometry::readDimension(entity, deviation, textWidth())
                                   : geometry::readTolerance(entity, textWidth());
    for (const geometry::Wire& wire : shape.wires) paintWire(wire, place, style);
    for (const geometry::TextBlock& text : shape.texts) paintText(text, place, style);
    if (!shape.wires.empty()) return;
  }
  ++leftOut_[db_.typeName(entity)];
}

}  // namespace host::picture
