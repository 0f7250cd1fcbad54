// Details of entities kept for any scale, packed: what a window paints from. Coordinates are those of the view that the
// painter had (units of the drawing about an origin of its own, y down), widths of pens millimetres.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "Picture/Details.h"

namespace host::picture {

struct Recording {
  enum class Kind : std::uint8_t {
    Wire,
    FillEvenOdd,
    FillNonzero,
    Gradient,
    Text,
    Mark,
    Infinite,
    Pattern,
    BeginClip,
    EndClip,
    Area
  };
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  struct Item {
    Kind kind = Kind::Wire;
    Color color;
    float width = 0;  // of the pen, millimetres
    std::uint32_t firstRing = 0, ringCount = 0;
    std::uint32_t more = kNone;  // index into the list of the item's kind
  };
  /// Of wires and infinite lines that are more than a plain line. A wire's first ring is the line, the others its
  /// outline.
  struct Line {
    std::shared_ptr<const LinePattern> pattern;
    double dashUnit = 0, width = 0;
    std::vector<std::uint32_t> corners;
  };
  struct Text {
    geometry::TextRun run;
    geometry::Transform frame;
  };
  struct Pattern {
    std::shared_ptr<const std::vector<hatching::PatternLine>> families;
    std::vector<curves::Polygon> loops;
    geometry::Transform plane;
  };

  std::vector<Point> points;
  std::vector<DisplayRing> rings;
  std::vector<Item> items;
  std::vector<Gradient> gradients;
  std::vector<Line> lines;
  std::vector<Text> texts;
  std::vector<PointMark> marks;
  std::vector<Pattern> patterns;

  /// Adds items of another recording.
  void append(const Recording& other, std::size_t first, std::size_t count);
};

/// Text coordinates of what a run covers, with the parts of letters below the line.
Box runBox(const geometry::TextRun& run);

/// A scale and a place for a recording, and the colours that depend on the ground.
struct Playing {
  double pixelsPerUnit = 1;
  Point shift;  // of the recording's origin, pixels
  double pixelsPerMm = 1;
  double thinnestLine = 1;
  Box area;  // pixels that are drawn to
  Color ink{0, 0, 0, 255}, ground{255, 255, 255, 255};
};

/// Hands items on at a scale. Keeps its working memory from call to call.
class Player {
 public:
  Player(const Playing& how, Details& to) : how_(how), to_(to) {}
  void play(const Recording& recording, std::size_t first, std::size_t count);
  /// The colour on the chosen ground.
  Color colorOf(Color color) const;

 private:
  Point placed(Point p) const {
    return {p.x * how_.pixelsPerUnit + how_.shift.x, p.y * how_.pixelsPerUnit + how_.shift.y};
  }
  geometry::Transform placed(const geometry::Transform& t) const;
  void place(const Recording& recording, const DisplayRing& ring, bool isThinned, std::vector<Point>& out) const;
  void playWire(const Recording& recording, const Recording::Item& item, const Pen& pen);

  Playing how_;
  Details& to_;
  DetailWire wire_;
  Rings rings_;
};

/// Takes details of a painter whose view keeps roles, has one pixel a unit and a millimetre, and no thinnest line.
class Recorder final : public Details {
 public:
  /// Where what follows is kept. The box begins anew.
  void begin(Recording& recording);
  /// Of all that was taken since `begin`; endless lines count with their base.
  const Box& box() const { return box_; }
  bool hasEndless() const { return hasEndless_; }

  void wire(const DetailWire& wire, const LineStyle& style) override;
  void fill(const Rings& rings, FillRule rule, Color color) override;
  void fillGradient(const Rings& rings, const Gradient& gradient) override;
  void text(const geometry::TextRun& run, const geometry::Transform& frame, const Pen& pen) override;
  void point(Point at, const PointMark& mark, const Pen& pen) override;
  void infinite(Point base, Point direction, bool bothWays, const LineStyle& style) override;
  void pattern(const std::vector<hatching::PatternLine>& families, const std::vector<curves::Polygon>& loops,
               const geometry::Transform& plane, const Pen& pen) override;
  void beginClip(const std::vector<Point>& ring) override;
  void endClip() override;
  void setArea(const Box& area) override;

 private:
  Recording::Item& add(Recording::Kind kind, Color color, double width = 0);
  void addRing(const std::vector<Point>& points, bool closed);
  std::shared_ptr<const LinePattern> kept(const LinePattern* pattern);

  Recording* to_ = nullptr;
  Box box_;
  bool hasEndless_ = false;
  int clips_ = 0;  // what is cut does not make the box larger
  std::unordered_map<const LinePattern*, std::shared_ptr<const LinePattern>> patterns_;
  std::shared_ptr<const std::vector<hatching::PatternLine>> families_;
};

}  // namespace host::picture
