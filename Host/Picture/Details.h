// What entities are made of once they are laid out, before a scale is chosen: lines with their linetypes, texts, hatch
// patterns, marks of points. Pictures have them worked out at once (PaintedDetails); a window keeps them (Recording)
// and has them worked out for every zoom.
#pragma once

#include <vector>

#include "Geometry/TextLayout.h"
#include "Hatching/PatternFill.h"
#include "Picture/Appearance.h"
#include "Picture/DisplayList.h"
#include "Picture/Glyphs.h"

namespace host::picture {

using Rings = std::vector<std::vector<Point>>;

/// How drawing coordinates become picture coordinates.
struct View {
  geometry::Transform toPicture;  // plan coordinates to pixels, y down
  double pixelsPerMm = 1;         // of lineweights
  double deviation = 0.1;         // pixels; of curves
  double thinnestLine = 1;        // pixels
  double barsBelow = 0;           // texts lower than this many pixels become bars
  Box area;                       // the part of the picture that is drawn to, pixels
  /// Only extents are wanted: no dashes, no pattern lines, no infinite lines.
  bool boundsOnly = false;
  /// The details are kept for any scale: colours that depend on the background keep their role.
  bool keepsRoles = false;
};

struct LineStyle {
  Pen pen;
  const LinePattern* pattern = nullptr;  // null: unbroken
  double dashUnit = 0;                   // pixels for one unit of the linetype
};

/// A connected line in picture coordinates.
struct DetailWire {
  std::vector<Point> line;
  bool closed = false;
  std::vector<std::uint32_t> corners;  // where a linetype starts anew; empty: it runs through
  Rings outline;                       // of a polyline with width: filled by the nonzero rule in place of the line
  double width = 0;                    // of that, when it is the same all along, pixels; else 0
  bool hasOutline() const { return !outline.empty(); }
};

/// The mark of a POINT ($PDMODE, $PDSIZE).
struct PointMark {
  int mode = 0;
  double size = 0;   // pixels; 0: a share of the picture's height
  double share = 0;  // of that
};

class Details {
 public:
  virtual ~Details() = default;
  virtual void wire(const DetailWire& wire, const LineStyle& style) = 0;
  virtual void fill(const Rings& rings, FillRule rule, Color color) = 0;
  virtual void fillGradient(const Rings& rings, const Gradient& gradient) = 0;
  /// `frame` leads from text coordinates to the picture.
  /// The pen is that of letters made of strokes.
  virtual void text(const geometry::TextRun& run, const geometry::Transform& frame, const Pen& pen) = 0;
  virtual void point(Point at, const PointMark& mark, const Pen& pen) = 0;
  /// The direction is that of the picture and has a length.
  virtual void infinite(Point base, Point direction, bool bothWays, const LineStyle& style) = 0;
  /// Pattern lines inside loops (even-odd); `plane` leads from the coordinates of both to the picture.
  virtual void pattern(const std::vector<hatching::PatternLine>& families, const std::vector<curves::Polygon>& loops,
                       const geometry::Transform& plane, const Pen& pen) = 0;
  virtual void beginClip(const std::vector<Point>& ring) = 0;
  virtual void endClip() = 0;
  /// Part of the picture drawn to from now on.
  virtual void setArea(const Box& area) = 0;
};

/// Works details out at the scale of a view, as strokes and fills.
class PaintedDetails final : public Details {
 public:
  PaintedDetails(const View& view, GlyphSource& glyphs, Canvas& canvas);

  void wire(const DetailWire& wire, const LineStyle& style) override;
  void fill(const Rings& rings, FillRule rule, Color color) override { canvas_.fill(rings, rule, color); }
  void fillGradient(const Rings& rings, const Gradient& gradient) override {
    canvas_.fillGradient(rings, FillRule::EvenOdd, gradient);
  }
  void text(const geometry::TextRun& run, const geometry::Transform& frame, const Pen& pen) override;
  void point(Point at, const PointMark& mark, const Pen& pen) override;
  void infinite(Point base, Point direction, bool bothWays, const LineStyle& style) override;
  void pattern(const std::vector<hatching::PatternLine>& families, const std::vector<curves::Polygon>& loops,
               const geometry::Transform& plane, const Pen& pen) override;
  /// Windows show images' frames; pictures have this instead.
  void image(const Rings& rings, const Texture& texture, std::uint8_t alpha) {
    canvas_.fillImage(rings, texture, alpha);
  }
  void beginClip(const std::vector<Point>& ring) override { canvas_.beginClip(ring); }
  void endClip() override { canvas_.endClip(); }
  void setArea(const Box& area) override;

  /// The picture of which the view's area is a part: what infinite lines must cross, and its height, of which sizes of
  /// points are shares.
  void setWhole(const Box& whole, double height) {
    whole_ = whole;
    height_ = height;
  }
  /// Whether there was more text than a picture of vectors can hold; the rest are bars.
  bool hasTextBars() const { return hasTextBars_; }

 private:
  /// Dashes in pixels; none when the line is unbroken or the round too short to tell.
  void chooseDashes(const LineStyle& style);
  void strokeLine(const std::vector<Point>& line, bool closed, const LineStyle& style, const Pen& pen);
  void paintMark(const LinePattern::Mark& mark, Point at, Point along, double unit, const Pen& pen);
  const Box& whole() const { return whole_.isEmpty() ? view_.area : whole_; }

  View view_;
  GlyphSource& glyphs_;
  Canvas& canvas_;
  Box whole_;
  double height_ = 0;
  std::vector<double> dashes_;
  std::vector<Point> scratch_;
  std::vector<PlacedGlyph> letters_;
  std::size_t glyphsDrawn_ = 0;
  std::size_t patternPieces_ = 0;
  std::size_t dashPieces_ = 0;
  bool hasTextBars_ = false;
};

}  // namespace host::picture
