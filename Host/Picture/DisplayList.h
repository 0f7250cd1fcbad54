// What a picture shows, bottom first, in picture coordinates: x right, y down, in pixels of the picture.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Geometry/EntityPaths.h"
#include "Geometry/Typefaces.h"

namespace host::picture {

using geometry::Box;
using geometry::Point;

/// What a colour stands for as long as no background is chosen.
enum class ColorRole : std::uint8_t { Fixed, Ink, Ground };

struct Color {
  std::uint8_t red = 0, green = 0, blue = 0, alpha = 255;
  ColorRole role = ColorRole::Fixed;
  bool operator==(const Color&) const = default;
};

enum class ItemKind : std::uint8_t {
  FillEvenOdd,
  FillNonzero,
  Stroke,
  FlatStroke,  // strokes: round or square-cut ends
  BeginClip,   // what follows shows inside the ring only
  EndClip
};

struct DisplayRing {
  std::uint32_t first = 0, count = 0;  // points
  bool closed = false;
};

/// Colours that run along one direction or around a middle. The unit gradient (linear: from x = 0 to x = 1; radial: the
/// circle of radius 1 around the origin) comes to stand in the picture by x -> origin + axisX * x + axisY * y.
struct Gradient {
  struct Stop {
    double offset = 0;
    Color color;
    bool operator==(const Stop&) const = default;
  };
  bool isRadial = false;
  Point origin, axisX, axisY;
  std::vector<Stop> stops;
};

struct RasterImage;  // Picture/RasterImage.h

/// An image placed in the picture: its upper left corner, and its upper and left sides.
struct Texture {
  std::shared_ptr<const RasterImage> image;
  Point origin, across, down;
};

struct DisplayItem {
  static constexpr std::uint32_t kPlain = 0xFFFFFFFF;
  ItemKind kind = ItemKind::Stroke;
  Color color;
  double width = 0;  // strokes
  std::uint32_t firstRing = 0, ringCount = 0;
  std::uint32_t gradient = kPlain;  // of a fill: index into the list's gradients
  std::uint32_t texture = kPlain;   // of a fill: into its textures; the colour's alpha is the image's
};

/// What letters say that are drawn together, a line of text or a part of one, and where they stand.
struct Lettering {
  std::wstring_view text;
  geometry::Face face;
  Point origin;             // on the base line
  Point along, up;          // from there to the end of the line, and the height of capitals
  bool hasStrokes = false;  // not all of the letters are outlines
};

/// The same among the items of a list.
struct DisplayText {
  std::uint32_t firstLetter = 0, letterCount = 0;  // in the list's letters
  std::uint32_t item = 0;                          // the last one with letters of it
  bool isTheItem = false;                          // that one is all of its letters, and nothing else
  geometry::Face face;
  Point origin, along, up;
};

/// What items belong to; zeros: to nothing.
struct Origin {
  std::uint32_t layer = 0;
  std::uint64_t handle = 0;  // of an entity that is told of
  bool operator==(const Origin&) const = default;
};

/// What is told of an entity, UTF-8.
struct EntityNote {
  std::string title;    // what the cursor's tooltip says
  std::string detail;   // more of it; may be empty
  bool isLine = false;  // a thing along its line, which fills no area
};

struct DisplayList;

/// What a picture's readers may want to know beside what they see, for formats that can tell it. UTF-8.
struct DisplayNotes {
  /// A row of the legend.
  struct Swatch {
    std::string name, amount;
    std::shared_ptr<const DisplayList> list;  // kSwatchWidthPx by kSwatchHeightPx
  };
  /// From the item of that number on.
  struct Run {
    std::size_t firstItem = 0;
    Origin origin;
  };
  std::vector<Run> runs;
  std::map<std::uint32_t, std::string> layers;   // names of those in the runs
  std::map<std::uint64_t, EntityNote> entities;  // by their handles
  std::vector<Swatch> swatches;
  std::string title;          // of the drawing
  std::string page;           // name of the page, for its bookmark
  double metresPerPixel = 0;  // on the ground; 0: not known
};
constexpr double kSwatchWidthPx = 40, kSwatchHeightPx = 16;

struct DisplayList {
  std::vector<Point> points;
  std::vector<DisplayRing> rings;
  std::vector<DisplayItem> items;
  std::vector<Gradient> gradients;
  std::vector<Texture> textures;
  std::wstring letters;
  std::vector<DisplayText> texts;  // in the order of their items; only in lists whose readers want them
  DisplayNotes notes;
};

struct Pen {
  Color color;
  double width = 1;
  bool flatEnds = false;
};
enum class FillRule { EvenOdd, Nonzero };

/// Where the painter of entities draws to.
class Canvas {
 public:
  virtual ~Canvas() = default;
  virtual void stroke(const std::vector<Point>& line, bool closed, const Pen& pen) = 0;
  virtual void fill(const std::vector<std::vector<Point>>& rings, FillRule rule, Color color) = 0;
  virtual void fillGradient(const std::vector<std::vector<Point>>& rings, FillRule rule, const Gradient& gradient) = 0;
  /// An image inside the rings; canvases that have no use for pixels leave it out.
  virtual void fillImage(const std::vector<std::vector<Point>>&, const Texture&, std::uint8_t /*alpha*/) {}
  /// Cuts what follows to the inside of a ring, until the matching end.
  virtual void beginClip(const std::vector<Point>& ring) = 0;
  virtual void endClip() = 0;
  /// What is drawn in between are the letters of a text; canvases that nobody reads leave it out.
  virtual void beginText() {}
  virtual void endText(const Lettering&) {}
  /// Part of the picture drawn to from now on.
  virtual void setClip(const Box& clip) = 0;
};

/// Collects the box of everything drawn.
class BoundsCanvas final : public Canvas {
 public:
  void stroke(const std::vector<Point>& line, bool closed, const Pen& pen) override;
  void fill(const std::vector<std::vector<Point>>& rings, FillRule rule, Color color) override;
  void fillGradient(const std::vector<std::vector<Point>>& rings, FillRule rule, const Gradient&) override {
    fill(rings, rule, {});
  }
  void fillImage(const std::vector<std::vector<Point>>& rings, const Texture&, std::uint8_t) override {
    fill(rings, FillRule::EvenOdd, {});
  }
  void beginClip(const std::vector<Point>&) override {}
  void endClip() override {}
  void setClip(const Box& clip) override;
  const Box& box() const { return box_; }
  /// The box of what follows begins anew.
  void begin() { box_ = {}; }

 private:
  void add(Point p);
  Box box_;
  Box clip_;
};

/// Cuts what is drawn to the clip box and keeps it.
class DisplayListCanvas final : public Canvas {
 public:
  /// With `keepsTexts` the list says what its letters say, as far as they show.
  explicit DisplayListCanvas(bool keepsTexts = false) : keepsTexts_(keepsTexts) {}
  void stroke(const std::vector<Point>& line, bool closed, const Pen& pen) override;
  void fill(const std::vector<std::vector<Point>>& rings, FillRule rule, Color color) override;
  void fillGradient(const std::vector<std::vector<Point>>& rings, FillRule rule, const Gradient& gradient) override;
  void fillImage(const std::vector<std::vector<Point>>& rings, const Texture& texture, std::uint8_t alpha) override;
  void beginClip(const std::vector<Point>& ring) override;
  void endClip() override;
  void beginText() override;
  void endText(const Lettering& lettering) override;
  void setClip(const Box& clip) override { clip_ = clip; }
  /// What the items that follow belong to. Those of different origins are never joined.
  void setOrigin(const Origin& origin) { origin_ = origin; }
  const DisplayList& list() const { return list_; }
  DisplayList take() { return std::move(list_); }

 private:
  void addItem(const DisplayItem& item);
  void addRing(const std::vector<Point>& points, bool closed);
  void beginStroke(const Pen& pen);

  DisplayList list_;
  Origin origin_, lastOrigin_;  // the latter: of the last item
  Box clip_;
  std::vector<Point> scratch_, scratch2_;
  bool keepsTexts_ = false;
  std::vector<curves::Polygon> clips_;  // of those that are open, where texts are kept
  std::size_t textPoints_ = 0;          // where the points of the last text begin
  bool isTextCut_ = false;              // by the clip box
};

}  // namespace host::picture
