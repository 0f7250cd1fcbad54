// Entities turned into strokes and fills: the front end of every picture.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Geometry/EntityShapes.h"
#include "Geometry/References.h"
#include "Geometry/TextLayout.h"
#include "Picture/Appearance.h"
#include "Picture/Details.h"
#include "Picture/DisplayList.h"
#include "Picture/Glyphs.h"
#include "Picture/Images.h"
#include "Picture/Picture.h"

namespace host::picture {

class EntityPainter {
 public:
  EntityPainter(const database::DrawingDatabase& db, const PictureOptions& options, GlyphSource& glyphs,
                const View& view, Canvas& canvas);
  /// Gives the details instead of working them out.
  EntityPainter(const database::DrawingDatabase& db, const PictureOptions& options, GlyphSource& glyphs,
                const View& view, Details& details);

  /// Living, visible entities in draw order.
  void paint(const database::BlockContents& block);
  /// The same; `visit` is called before and after each entity.
  template <class Visit>
  void paintEach(const database::BlockContents& block, const Visit& visit) {
    const std::vector<database::Slot*>& order = drawOrder(block);
    begin(block);
    for (const database::Slot* slot : order) {
      visit(*slot, true);
      paintOne(*slot);
      visit(*slot, false);
    }
    chain_.leave();
  }
  /// The same, of those that `isWanted`.
  template <class Wanted>
  void paintSome(const database::BlockContents& block, const Wanted& isWanted) {
    const std::vector<database::Slot*>& order = drawOrder(block);
    begin(block);
    for (const database::Slot* slot : order)
      if (isWanted(*slot)) paintOne(*slot);
    chain_.leave();
  }
  /// The same, without what cannot show in the view's area.
  void paintInArea(const database::BlockContents& block);
  /// The same for single entities of one block, in any order, after `begin`.
  void begin(const database::BlockContents& block);
  void paintOne(const database::Slot& entity) { paintEntity(entity, {view_.toPicture, {}}); }
  /// Texts in place of those of attributes; null for one that keeps its own.
  using AttributeText = std::function<const std::wstring*(const database::Slot& attribute)>;
  void setAttributeText(AttributeText text) { attributeText_ = std::move(text); }

  /// Called before what an entity consists of is drawn: with the layer that shows or hides it, and the handle of the
  /// entity of the drawn space (in a viewport: of the model) to which it belongs.
  using Enter = std::function<void(std::uint32_t layer, std::uint64_t handle)>;
  void setEnter(Enter enter) { enter_ = std::move(enter); }

  // What no entity tells, in the coordinates of the painted space, in the colour of ink.
  void paintLabel(const geometry::LineParts& label);
  void paintLine(const geometry::Chain& line, double lineweightMm);
  void paintArea(const geometry::Chain& ring);
  /// The same in the colour of the background.
  void paintGround(const geometry::Chain& ring);
  /// Of a label along its line.
  double labelWidth(const std::wstring& text, double height);

  /// The look of an entity of the painted space in a box of the picture: a hatch fills it, a line crosses it, all else
  /// is shown as large as it may be. Entities without extents show nothing.
  void paintSwatch(const database::Slot& entity, const Box& box);
  /// The part of the picture that is drawn to from now on.
  void setArea(const Box& area);

  /// Whether the entity's layer lets it show.
  bool isShown(const database::Slot& entity) { return appearances_.isShown(entity, entity.layer); }
  /// Something was left out because the drawing asks for more pieces than a picture can hold.
  bool isCutShort() const { return cutShort_; }
  /// Whether blocks were nested too deeply to be shown.
  bool isTooDeep() const { return chain_.wasTooDeep(); }
  /// Whether there was more text than a picture of vectors can hold; the rest are bars.
  bool hasTextBars() const { return painted_ && painted_->hasTextBars(); }
  /// Visible entities of kinds without a picture, by type name.
  const std::map<std::string_view, std::size_t>& leftOut() const { return leftOut_; }
  /// Files of images that could not be shown.
  const std::set<std::string>& missingImages() const { return images_.missing(); }
  /// References whose boundaries could not be used: they are shown whole.
  std::size_t damagedClips() const { return damagedClips_.size(); }
  /// Entities of the painted space on layers that are not plotted, by layer.
  const std::map<std::uint32_t, std::size_t>& unplotted() const { return unplotted_; }

 private:
  /// Where and as part of what an entity is drawn.
  struct Place {
    geometry::Transform toPicture;
    Surroundings surroundings;
  };
  /// An entity's look in pixels.
  struct Style {
    LineStyle line;
    Color fill;  // of what is filled: the line's, but for areas of a picture in one colour
    Appearance appearance;
  };

  EntityPainter(const database::DrawingDatabase& db, const PictureOptions& options, GlyphSource& glyphs,
                const View& view, std::optional<PaintedDetails> painted, Details* details);
  void paintEntity(const database::Slot& entity, const Place& place);
  /// False for a dimension or table without a block.
  bool paintReference(const database::Slot& entity, const Place& place, std::uint32_t layer, const Appearance& own);
  void paintContent(const geometry::BlockReference& reference, const Place& place, const Surroundings& inside);
  /// Cuts what follows to a ring in picture coordinates, or to what lies outside of it; false, and nothing is begun,
  /// when nothing can show. Answers the area to go back to.
  bool beginClip(std::vector<Point> ring, bool isInverted, Box& outerArea);
  void endClip(const Box& outerArea);
  /// Inside of a reference or a viewport.
  bool isRepeating() const { return chain_.depth() > 1; }
  /// Takes what repeats from what is left of their pieces or points; false, from then on, when there is not so much.
  bool spend(std::size_t& left, std::size_t count);
  void paintViewport(const database::Slot& entity);
  void paintWire(const geometry::Wire& wire, const Place& place, const Style& style);
  void paintPoint(const AcGePoint3d& p, const Place& place, const Style& style);
  void paintInfinite(const geometry::InfiniteLine& line, const Place& place, const Style& style);
  void paintImage(const geometry::ImageFrame& frame, const Place& place, const Style& style);
  /// Whether frames of wipeouts are plotted.
  bool hasWipeoutFrames();
  void paintText(const geometry::TextBlock& text, const Place& place, const Style& style);
  /// With `loopsOf`, the hatch's look in other loops of its plane.
  using LoopsOf = std::function<std::vector<curves::Polygon>(const geometry::Transform& plane)>;
  void paintHatch(const database::Slot& entity, const Place& place, const Style& style, const LoopsOf& loopsOf = {});

  void paintLeader(const database::Slot& entity, const Place& place, const Style& style, double deviation);
  /// Through the graphics its application left; false when there are none.
  bool paintProxy(const database::Slot& entity, const Place& place, const Style& style, double deviation);
  void paintOther(const database::Slot& entity, const Place& place, const Style& style, double deviation);

  Style styleOf(const Appearance& appearance, const Place& place) const;
  void strokeLine(const std::vector<Point>& line, bool closed, const Style& style);
  void fillChains(const std::vector<geometry::Chain>& rings, const geometry::Transform& toPicture, FillRule rule,
                  Color color);
  bool project(const geometry::Chain& chain, const geometry::Transform& toPicture, std::vector<Point>& out) const;
  const std::vector<database::Slot*>& drawOrder(const database::BlockContents& block);
  geometry::TextWidth textWidth();

  const database::DrawingDatabase& db_;
  GlyphSource& glyphs_;
  View view_;
  std::optional<PaintedDetails> painted_;  // unless somebody else takes the details
  Details& details_;
  Appearances appearances_;
  ImageFiles images_;
  double lineweightFactor_;
  bool lineweightsOff_;
  double dashScale_;   // pixels for one unit of a linetype, outside of blocks
  double outerScale_;  // pixels for one unit of the drawing, outside of blocks
  std::map<std::string_view, std::size_t> leftOut_;
  std::map<std::uint32_t, std::size_t> unplotted_;
  geometry::ReferenceChain chain_;
  std::unordered_map<const database::BlockContents*, std::vector<database::Slot*>> orders_;
  std::size_t repeatsLeft_ = 0;
  std::size_t pointsLeft_ = 0;
  bool cutShort_ = false;
  bool isInViewport_ = false;
  bool isInDimension_ = false;
  std::set<const database::Slot*> damagedClips_;
  std::optional<bool> hasWipeoutFrames_;
  AttributeText attributeText_;
  Enter enter_;
  std::uint64_t outermost_ = 0;  // handle of the entity that references lead from
  PointMark pointMark_;          // its size in units of the drawing
  DetailWire wire_;
};

}  // namespace host::picture
