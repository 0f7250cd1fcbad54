// MOVE, COPY, ROTATE, JOIN, JOINGAP, OUTLINE, SEAM, CHPROP.
#include <cmath>
#include <numbers>

#include "Database/Editing.h"
#include "Database/ObjectAccess.h"
#include "Editor/Commands/HostCommands.h"
#include "Editor/Commands/Lookup.h"
#include "Editor/Commands/SelectedObjects.h"
#include "Editor/Editing/Joining.h"
#include "Editor/Editing/Moving.h"
#include "Editor/Editing/PolylineVertices.h"
#include "Editor/Session/Session.h"
#include "Geometry/EntityPaths.h"
#include "Geometry/Seams.h"
#include "Text/Text.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"

namespace host::editor {
namespace {

using database::Slot;

database::DrawingDatabase& drawingOf(Prompter& prompter) { return prompter.session().documents().current()->drawing(); }

std::wstring counted(std::size_t count, std::wstring_view one, std::wstring_view many) {
  return std::to_wstring(count) + L" " + std::wstring(count == 1 ? one : many);
}

/// "3 objects moved, 1 fill along".
void tellMoved(Prompter& prompter, const MoveCounts& counts, std::wstring_view done) {
  std::wstring text = counted(counts.moved, L"object ", L"objects ") + std::wstring(done);
  if (counts.fillsAlong > 0) text += L", " + counted(counts.fillsAlong, L"fill along", L"fills along");
  if (counts.freed > 0) text += L", " + counted(counts.freed, L"fill", L"fills") + L" separated from the boundary";
  prompter.line(text);
}

// ---- MOVE, COPY -----------------------------------------------------------------------------------------------------

/// How far objects go is told by two points, or by a displacement.
class Displacement {
 public:
  explicit Displacement(Prompter& prompter) : prompter_(prompter) {}

  /// The base point, or a displacement. False when the command is to end.
  bool askBase() {
    Limits limits;
    limits.keywords = Keywords(L"Displacement");
    const auto base = prompter_.point(L"Specify base point or [Displacement] <Displacement>: ", limits);
    if (base.outcome == Outcome::Cancel) return false;
    if (base) {
      base_ = base.value;
      return true;
    }
    limits.keywords = {};
    limits.bits = RSG_NONULL;
    const auto by = prompter_.point(L"Specify displacement: ", limits);
    if (!by) return false;
    shift_ = by.value.asVector();
    return true;
  }
  bool isKnown() const { return shift_.has_value(); }
  AcGeVector3d shift() const { return *shift_; }

  /// One point to which the objects go.
  Reply<AcGePoint3d> askTarget(std::wstring_view prompt, const Keywords& keywords = {}) {
    Limits limits;
    limits.base = base_;
    limits.keywords = keywords;
    return prompter_.point(prompt, limits);
  }
  AcGeVector3d to(const AcGePoint3d& target) const { return target - base_; }
  /// The base point taken as the displacement.
  AcGeVector3d byItself() const { return base_.asVector(); }

 private:
  Prompter& prompter_;
  AcGePoint3d base_;
  std::optional<AcGeVector3d> shift_;
};

constexpr std::wstring_view kSecondPoint = L"Specify second point or <use first point as displacement>: ";

void move(Prompter& prompter) {
  const std::vector<Slot*> entities = selectedObjects(prompter, true);
  if (entities.empty()) return;
  Displacement displacement(prompter);
  if (!displacement.askBase()) return;
  AcGeVector3d shift;
  if (displacement.isKnown()) {
    shift = displacement.shift();
  } else {
    const auto target = displacement.askTarget(kSecondPoint);
    if (target.outcome == Outcome::Cancel) return;
    shift = target ? displacement.to(target.value) : displacement.byItself();
  }
  if (shift == AcGeVector3d()) {
    prompter.line(L"Nothing is moved: the points are the same.");
    return;
  }
  tellMoved(prompter, moveEntities(entities, Motion::shift(shift)), L"moved");
}

/// Copies that a motion was given to.
std::vector<Slot*> copyTo(Prompter& prompter, const std::vector<Slot*>& entities, const Motion& motion) {
  std::vector<Slot*> copies = database::copyEntities(drawingOf(prompter), entities);
  moveEntities(copies, motion);
  return copies;
}

void eraseAll(const std::vector<Slot*>& entities) {
  for (Slot* const each : entities) {
    const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(each), AcDb::kForWrite);
    if (entity.openStatus() == Acad::eOk) entity->erase();
  }
}

void copy(Prompter& prompter) {
  const std::vector<Slot*> entities = movable(selectedObjects(prompter, true));
  if (entities.empty()) return;
  Displacement displacement(prompter);
  if (!displacement.askBase()) return;
  std::vector<std::vector<Slot*>> made;
  const auto tell = [&] {
    std::size_t count = 0;
    for (const auto& copies : made) count += copies.size();
    if (count > 0) prompter.line(counted(count, L"object copied", L"objects copied"));
  };
  if (displacement.isKnown()) {
    made.push_back(copyTo(prompter, entities, Motion::shift(displacement.shift())));
    tell();
    return;
  }
  for (;;) {
    const Keywords keywords(made.empty() ? L"" : L"Exit Undo");
    const auto target =
        displacement.askTarget(made.empty() ? kSecondPoint : L"Specify second point or [Exit/Undo] <Exit>: ", keywords);
    if (target.outcome == Outcome::Cancel) break;
    if (target) {
      made.push_back(copyTo(prompter, entities, Motion::shift(displacement.to(target.value))));
    } else if (target.outcome == Outcome::Keyword && target.keyword == L"Undo") {
      eraseAll(made.back());
      made.pop_back();
    } else {
      if (target.outcome == Outcome::Enter && made.empty())
        made.push_back(copyTo(prompter, entities, Motion::shift(displacement.byItself())));
      break;
    }
  }
  tell();
}

// ---- ROTATE ---------------------------------------------------------------------------------------------------------

double directionOf(const AcGePoint3d& from, const AcGePoint3d& to) {
  return std::atan2(to.y - from.y, to.x - from.x) * 180 / std::numbers::pi;
}

/// Degrees: a number, or the direction from a point to the one pointed at; a keyword in its place.
Reply<double> askAngle(Prompter& prompter, std::wstring_view prompt, const AcGePoint3d& from,
                       std::wstring_view keywords) {
  Limits limits;
  limits.bits = RSG_OTHER;
  limits.base = from;
  limits.keywords = Keywords(keywords);
  for (;;) {
    const auto reply = prompter.point(prompt, limits);
    Reply<double> angle;
    angle.outcome = reply.outcome;
    if (reply) {
      if (reply.value.x != from.x || reply.value.y != from.y) {
        angle.value = directionOf(from, reply.value);
        return angle;
      }
    } else {
      if (reply.outcome != Outcome::Keyword) return angle;
      if (limits.keywords.match(reply.keyword)) {
        angle.keyword = reply.keyword;
        return angle;
      }
      if (const std::optional<double> number = parseNumber(reply.keyword)) {
        angle.outcome = Outcome::Value;
        angle.value = *number;
        return angle;
      }
    }
    angle.outcome = Outcome::Cancel;
    if (!prompter.refuse(L"Requires valid numeric angle or second point.")) return angle;
  }
}

/// A direction that the objects have, and the one that they are to have.
std::optional<double> askByReference(Prompter& prompter, const AcGePoint3d& base) {
  const Reply<double> first = askAngle(prompter, L"Specify the reference angle <0>: ", base, {});
  if (first.outcome == Outcome::Cancel) return std::nullopt;
  const Reply<double> second = askAngle(prompter, L"Specify the new angle <0>: ", base, {});
  if (second.outcome == Outcome::Cancel) return std::nullopt;
  return second.value - first.value;
}

void rotate(Prompter& prompter) {
  const std::vector<Slot*> entities = selectedObjects(prompter, true);
  if (entities.empty()) return;
  Limits needed;
  needed.bits = RSG_NONULL;
  const auto base = prompter.point(L"Specify base point: ", needed);
  if (!base) return;
  bool copies = false;
  std::optional<double> degrees;
  while (!degrees) {
    const Reply<double> reply =
        askAngle(prompter, L"Specify rotation angle or [Copy/Reference] <0>: ", base.value, L"Copy Reference");
    if (reply.outcome == Outcome::Cancel) return;
    if (reply.keyword == L"Copy") {
      copies = true;
    } else if (reply.keyword == L"Reference") {
      degrees = askByReference(prompter, base.value);
      if (!degrees) return;
    } else {
      degrees = reply.value;
    }
  }
  const Motion motion = Motion::turn(base.value, *degrees);
  if (copies) {
    const std::size_t count = copyTo(prompter, movable(entities), motion).size();
    prompter.line(counted(count, L"object copied", L"objects copied"));
  } else if (motion.turns()) {
    tellMoved(prompter, moveEntities(entities, motion), L"rotated");
  } else {
    prompter.line(L"Nothing is rotated: the angle is 0.");
  }
}

// ---- JOIN -----------------------------------------------------------------------------------------------------------

std::wstring joined(const JoinCounts& counts) {
  std::wstring text = L"Nothing joined";
  if (counts.joined > 0) {
    text = counted(counts.joined, L"object", L"objects") + L" joined into " +
           counted(counts.polylines, L"polyline", L"polylines") + L", " + std::to_wstring(counts.closed) + L" closed";
  }
  if (counts.bridged > 0) text += L"; " + counted(counts.bridged, L"gap", L"gaps") + L" bridged";
  if (counts.open > 0) text += L"; " + std::to_wstring(counts.open) + L" open";
  if (counts.branches > 0)
    text += L"; " + counted(counts.branches, L"point", L"points") + L" where more than two ends meet";
  if (counts.unfit > 0) text += L"; " + std::to_wstring(counts.unfit) + L" cannot be joined";
  return text + L".";
}

void join(Prompter& prompter) {
  const std::vector<Slot*> entities = selectedObjects(prompter, true);
  if (!entities.empty()) prompter.line(joined(joinEntities(entities)));
}

void joinOverGaps(Prompter& prompter) {
  const std::vector<Slot*> entities = selectedObjects(prompter, true);
  if (entities.empty()) return;
  constexpr double kUsual = 0.5;
  Limits limits;
  limits.bits = RSG_NONEG;
  const auto gap = prompter.real(L"Specify widest gap <0.5>: ", limits);
  if (gap.outcome == Outcome::Cancel) return;
  const JoinCounts counts = joinEntities(entities, gap ? gap.value : kUsual);
  prompter.line(joined(counts));
  constexpr std::size_t kMostShown = 6;
  std::wstring where;
  for (std::size_t i = 0; i < std::min(counts.openEnds.size(), kMostShown); ++i)
    where += (i > 0 ? L"; " : L"") + shownNumber(counts.openEnds[i].x) + L"," + shownNumber(counts.openEnds[i].y);
  if (!where.empty())
    prompter.line(L"Open ends at " + where + (counts.openEnds.size() > kMostShown ? L"; ..." : L"") +
                  L". Ends meet within " + shownNumber(std::max(gap ? gap.value : kUsual, kMeeting)) + L".");
}

// ---- OUTLINE --------------------------------------------------------------------------------------------------------

/// Adds a closed polyline on the entity's layer. False when the drawing refuses it.
bool addRing(Slot& like, const std::vector<curves::Point2>& ring) {
  const AcDbObjectPointer<AcDbEntity> model(AcDbObjectId(&like), AcDb::kForRead);
  const AcDbObjectPointer<AcDbBlockTableRecord> space(AcDbObjectId(like.owner), AcDb::kForWrite);
  if (model.openStatus() != Acad::eOk || space.openStatus() != Acad::eOk) return false;
  auto polyline = std::make_unique<AcDbPolyline>(static_cast<unsigned>(ring.size()));
  unsigned index = 0;
  for (const curves::Point2 point : ring) polyline->addVertexAt(index++, {point.x, point.y});
  polyline->setClosed(true);
  polyline->setLayer(model->layerId());
  AcDbObjectId id;
  if (space->appendAcDbEntity(id, polyline.get()) != Acad::eOk) return false;
  polyline.release()->close();
  return true;
}

void outline(Prompter& prompter) {
  constexpr double kDeviation = 1e-3;  // of chords from their arcs, drawing units
  std::size_t hatches = 0, rings = 0, open = 0, others = 0;
  for (Slot* const slot : selectedObjects(prompter, true)) {
    if (slot->type != database::DxfType::Hatch) {
      ++others;
      continue;
    }
    ++hatches;
    for (geometry::Path& path : geometry::entityPaths(*slot, kDeviation)) {
      std::vector<curves::Point2>& ring = path.points;
      const bool repeats = ring.size() > 1 && curves::distance(ring.front(), ring.back()) <= kMeeting;
      if (repeats) ring.pop_back();
      const bool isRing = (path.closed || repeats) && ring.size() > 2 && addRing(*slot, ring);
      ++(isRing ? rings : open);
    }
  }
  if (hatches + others == 0) return;
  std::wstring text = counted(rings, L"polyline", L"polylines") + L" made of " + counted(hatches, L"hatch", L"hatches");
  if (open > 0) text += L"; " + std::to_wstring(open) + L" open";
  if (others > 0) text += L"; " + std::to_wstring(others) + L" no hatch";
  prompter.line(text + L".");
}

// ---- CHPROP ---------------------------------------------------------------------------------------------------------

/// What is to be changed, gathered until Enter.
struct NewProperties {
  std::optional<AcCmColor> color;
  Slot* layer = nullptr;
  Slot* linetype = nullptr;
  std::optional<double> scale;
  std::optional<int> weight;

  bool isEmpty() const { return !color && layer == nullptr && linetype == nullptr && !scale && !weight; }
};

constexpr std::string_view kCommon = "AcDbEntity";

void setNumber(AcDbEntity& entity, int code, double value) {
  HostObjectAccess::setTag(entity, kCommon, code, text::formatReal(value));
}

bool isLinetypeOf(const AcDbEntity& entity, const Slot& linetype) {
  return entity.linetypeId() == AcDbObjectId(const_cast<Slot*>(&linetype));
}

/// Sets what differs; false when nothing does.
bool change(AcDbEntity& entity, const NewProperties& to) {
  const database::EntityProperties now = database::entityProperties(*entity.hostSlot());
  bool isChanged = false;
  const auto unless = [&isChanged](bool isSo, const auto& set) {
    if (isSo) return;
    set();
    isChanged = true;
  };
  if (to.layer != nullptr)
    unless(entity.layerId() == AcDbObjectId(to.layer), [&] { entity.setLayer(AcDbObjectId(to.layer)); });
  if (to.color) unless(entity.color() == *to.color, [&] { entity.setColor(*to.color); });
  if (to.linetype != nullptr)
    unless(isLinetypeOf(entity, *to.linetype), [&] { entity.setLinetype(AcDbObjectId(to.linetype)); });
  if (to.scale) {
    unless(now.linetypeScale == *to.scale, [&] {
      if (*to.scale == 1) {
        HostObjectAccess::removeTag(entity, kCommon, 48);
      } else {
        setNumber(entity, 48, *to.scale);
      }
    });
  }
  if (to.weight) {
    unless(now.lineweight == *to.weight, [&] {
      if (*to.weight == AcDb::kLnWtByLayer) {
        HostObjectAccess::removeTag(entity, kCommon, 370);
      } else {
        HostObjectAccess::setTag(entity, kCommon, 370, database::spelledInteger(370, *to.weight));
      }
    });
  }
  return isChanged;
}

class ChangeDialogue {
 public:
  explicit ChangeDialogue(Prompter& prompter) : prompter_(prompter) {}

  void run() {
    const std::vector<Slot*> entities = selectedObjects(prompter_, true);
    if (entities.empty()) return;
    Limits limits;
    limits.keywords = Keywords(L"Color LAyer LType ltScale LWeight Colour");
    for (;;) {
      const auto option = prompter_.keyword(L"Enter property to change [Color/LAyer/LType/ltScale/LWeight]: ", limits);
      if (option.outcome == Outcome::Cancel) return;
      if (option.outcome == Outcome::Enter) break;
      if (!ask(option.keyword)) return;
    }
    if (!to_.isEmpty()) apply(entities);
  }

 private:
  /// False: Esc, or a failure.
  bool ask(const std::wstring& what) {
    if (what == L"Color" || what == L"Colour") {
      return askWord(L"Enter new color <BYLAYER>: ", L"BYLAYER", [this](const std::wstring& name) {
        to_.color = parseColor(name);
        return to_.color ? std::wstring() : L"Requires BYLAYER, BYBLOCK, a color from 1 to 255, a color name or r,g,b.";
      });
    }
    if (what == L"LAyer") {
      return askWord(L"Enter new layer name <0>: ", L"0", [this](const std::wstring& name) {
        to_.layer = drawingOf(prompter_).findRecord(database::DxfType::Layer, name);
        return to_.layer != nullptr ? std::wstring() : L"Cannot find layer \"" + name + L"\".";
      });
    }
    if (what == L"LType") {
      return askWord(L"Enter new linetype name <ByLayer>: ", L"ByLayer", [this](const std::wstring& name) {
        to_.linetype = linetypeByName(prompter_, name);
        return to_.linetype != nullptr ? std::wstring() : L"Cannot find linetype \"" + name + L"\".";
      });
    }
    if (what == L"ltScale") {
      Limits limits;
      limits.bits = RSG_NOZERO | RSG_NONEG;
      const auto scale = prompter_.real(L"Specify new linetype scale <1>: ", limits);
      if (scale.outcome == Outcome::Cancel) return false;
      to_.scale = scale ? scale.value : 1;
      return true;
    }
    return askWord(L"Enter new lineweight <ByLayer>: ", L"ByLayer", [this](const std::wstring& name) {
      to_.weight = parseLineweight(name);
      return to_.weight ? std::wstring() : L"Requires ByLayer, ByBlock, Default or a lineweight from 0.00 to 2.11 mm.";
    });
  }

  /// `take` answers why the word cannot be used.
  template <class Take>
  bool askWord(std::wstring_view prompt, const std::wstring& usual, const Take& take) {
    for (;;) {
      const auto reply = prompter_.word(prompt);
      if (reply.outcome == Outcome::Cancel) return false;
      const std::wstring why = take(reply ? reply.value : usual);
      if (why.empty()) return true;
      if (!prompter_.refuse(why)) return false;
    }
  }

  void apply(const std::vector<Slot*>& entities) {
    std::size_t changed = 0, same = 0;
    for (Slot* const slot : entities) {
      const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(slot), AcDb::kForWrite);
      if (entity.openStatus() != Acad::eOk) continue;  // the end of the command tells why
      ++(change(*entity, to_) ? changed : same);
    }
    std::wstring text = counted(changed, L"object changed", L"objects changed");
    if (same > 0) text += L", " + std::to_wstring(same) + (same == 1 ? L" was so already" : L" were so already");
    prompter_.line(text);
  }

  Prompter& prompter_;
  NewProperties to_;
};

void changeProperties(Prompter& prompter) { ChangeDialogue(prompter).run(); }

// ---- SEAM -----------------------------------------------------------------------------------------------------------

/// A seam that runs the way shadows fall casts none; one that runs otherwise makes a dark patch in the courtyard.
void cutSeams(Prompter& prompter) {
  const std::vector<Slot*> entities = selectedObjects(prompter, true);
  if (entities.empty()) return;
  constexpr double kUsual = 45;
  const auto degrees = prompter.real(L"Specify direction in which shadows fall <45>: ");
  if (degrees.outcome == Outcome::Cancel) return;
  const double angle = (degrees ? degrees.value : kUsual) * std::numbers::pi / 180;
  const curves::Point2 sunward{-std::cos(angle), -std::sin(angle)};
  std::size_t courtyards = 0, changed = 0;
  for (Slot* const slot : entities) {
    const std::optional<curves::Polygon> ring = straightRing(*slot);
    const geometry::HoledArea area = ring ? geometry::splitSeams(*ring) : geometry::HoledArea();
    if (area.holes.empty()) continue;
    std::vector<PolylineVertex> vertices;
    for (const curves::Point2 point : geometry::joinHoles(area, sunward)) vertices.push_back({point});
    if (!setVertices(*slot, vertices, true)) continue;  // the end of the command tells why
    courtyards += area.holes.size();
    ++changed;
  }
  prompter.line(counted(courtyards, L"seam", L"seams") + L" of " + counted(changed, L"object", L"objects") +
                L" cut anew, " + counted(entities.size() - changed, L"object has", L"objects have") + L" none");
}

constexpr HostCommand kCommands[] = {
    {L"MOVE", ACRX_CMD_USEPICKSET, move, L"moves objects from a point to another"},
    {L"COPY", ACRX_CMD_USEPICKSET, copy, L"copies objects to one or more places"},
    {L"ROTATE", ACRX_CMD_USEPICKSET, rotate, L"turns objects about a point; C turns copies"},
    {L"JOIN", ACRX_CMD_USEPICKSET, join, L"joins lines, arcs and polylines that meet, and closes them"},
    {L"JOINGAP", ACRX_CMD_USEPICKSET, joinOverGaps, L"joins what meets across gaps, and says where ends stay open"},
    {L"OUTLINE", ACRX_CMD_USEPICKSET, outline, L"makes closed polylines of the boundaries of hatches"},
    {L"SEAM", ACRX_CMD_USEPICKSET, cutSeams, L"cuts the seams to courtyards anew, the way shadows fall"},
    {L"CHPROP", ACRX_CMD_USEPICKSET, changeProperties, L"changes layer, color, linetype and lineweight of objects"},
};

}  // namespace

std::span<const HostCommand> changeCommands() { return kCommands; }

}  // namespace host::editor
