// "Select object" and "Select objects".
#include <algorithm>
#include <set>
#include <unordered_set>

#include "Editor/Prompter.h"
#include "Editor/Selection/FilterText.h"
#include "Editor/Selection/Spaces.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"

namespace host::editor {
namespace {

using database::Slot;
using geometry::Point;

constexpr std::wstring_view kOptions =
    L"Window Last Crossing BOX ALL Fence WPolygon CPolygon Group Add Remove Multiple Previous Undo AUto SIngle SAme "
    L"LAYer KInd";
constexpr std::wstring_view kInvalid =
    L"*Invalid selection*  Expects a point or "
    L"Window/Last/Crossing/BOX/ALL/Fence/WPolygon/CPolygon/Group/Add/Remove/Multiple/Previous/Undo/AUto/SIngle/SAme/"
    L"LAYer/KInd, (handent ...) or (ssget ...)";

Point flat(const AcGePoint3d& point) { return {point.x, point.y}; }

std::wstring flatText(const AcGePoint3d& point) { return shownNumber(point.x) + L"," + shownNumber(point.y); }
std::wstring at(const AcGePoint3d& point) { return L"at " + flatText(point); }

std::vector<Point> rectangle(const AcGePoint3d& a, const AcGePoint3d& b) {
  return {{a.x, a.y}, {b.x, a.y}, {b.x, b.y}, {a.x, b.y}};
}

/// A point on the entity, for picks by name.
AcGePoint3d pointOn(const Slot& entity) {
  for (const geometry::Path& path : geometry::entityPaths(entity, 1e-3)) {
    if (!path.points.empty()) return {path.points.front().x, path.points.front().y, 0};
  }
  return {};
}

bool isPolyline(const Slot& entity) {
  return entity.type == database::DxfType::LwPolyline || entity.type == database::DxfType::Polyline2d ||
         entity.type == database::DxfType::Polyline3d;
}

/// By the flag, or because the last point is the first again.
bool isClosed(const Slot& polyline) {
  database::Tag tag;
  for (database::TagCursor tags = polyline.tags(); tags.next(tag) && tag.code != 1001;) {
    if (tag.code == 70 && (tag.integer() & 1) != 0) return true;
  }
  const std::vector<geometry::Path> paths = geometry::entityPaths(polyline, 1.0);
  if (paths.size() != 1 || paths[0].points.size() < 3) return false;
  const Point first = paths[0].points.front(), last = paths[0].points.back();
  return first.x == last.x && first.y == last.y;
}

/// The selection as it grows, with the messages that go with it.
class Selection {
 public:
  Selection(Session& session, const SelectOptions& options) : session_(session), options_(options) {}

  /// How much is said of what was found: of things chosen by what they are, also what may be wrong with them.
  enum class Told { Counts, States };

  void take(std::vector<Slot*> found, bool expandGroups, Told told) {
    undo_.push_back(members_);
    if (expandGroups && (session_.variables().integer(L"PICKSTYLE") & 1) != 0) found = withGroups(found);
    std::size_t elsewhere = 0, locked = 0, filtered = 0, duplicate = 0, count = 0, open = 0, shut = 0;
    const Slot* const space = session_.currentSpace().record;
    for (Slot* entity : found) {
      const bool isHere = entity->owner == space;
      if (told == Told::States && isHere) {
        if (isPolyline(*entity) && !isClosed(*entity)) ++open;
        if (session_.finder().layerState(*entity).locked) ++shut;
      }
      if (!isHere) {
        ++elsewhere;
      } else if (options_.skipLocked && session_.finder().layerState(*entity).locked) {
        ++locked;
      } else if (options_.accepts && !options_.accepts(*entity)) {
        ++filtered;
        ++count;
        if (!removing) session_.runner().skips().filteredOut(*entity);
      } else {
        ++count;
        if (!(removing ? remove(entity) : add(entity))) ++duplicate;
      }
    }
    if (removing) std::erase_if(members_, [this](Slot* member) { return !known_.contains(member); });
    session_.observer().highlight(members_);
    std::wstring states;
    if (open > 0) states += L", " + std::to_wstring(open) + L" not closed";
    if (shut > 0) states += L", " + std::to_wstring(shut) + L" on a locked layer";
    report(count, duplicate, filtered, states, told == Told::States ? 0 : locked, elsewhere);
  }

  void undo() {
    if (undo_.empty()) return;
    members_ = std::move(undo_.back());
    undo_.pop_back();
    known_.clear();
    known_.insert(members_.begin(), members_.end());
    session_.observer().highlight(members_);
  }

  Selection(const Selection&) = delete;
  Selection& operator=(const Selection&) = delete;
  ~Selection() {
    if (!undo_.empty()) session_.observer().highlight({});
  }

  bool isEmpty() const { return members_.empty(); }
  const std::vector<Slot*>& members() const { return members_; }
  std::vector<Slot*> release() { return std::move(members_); }

  bool removing = false;

 private:
  std::vector<Slot*> withGroups(const std::vector<Slot*>& found) {
    std::vector<Slot*> all;
    std::unordered_set<Slot*> seen;
    for (Slot* entity : found) {
      for (Slot* member : session_.finder().withGroups(entity)) {
        if (seen.insert(member).second) all.push_back(member);
      }
    }
    return all;
  }

  bool add(Slot* entity) {
    if (!known_.insert(entity).second) return false;
    members_.push_back(entity);
    return true;
  }

  bool remove(Slot* entity) {
    return known_.erase(entity) > 0;  // `take` then clears up the members
  }

  void report(std::size_t count, std::size_t duplicate, std::size_t filtered, const std::wstring& states,
              std::size_t locked, std::size_t elsewhere) {
    std::wstring text = std::to_wstring(count) + L" found";
    if (filtered > 0) text += L", " + std::to_wstring(filtered) + L" filtered out";
    if (removing) {
      text += L", " + std::to_wstring(count - filtered - duplicate) + L" removed";
    } else if (duplicate > 0) {
      text += L" (" + std::to_wstring(duplicate) + L" duplicate)";
    }
    text += states;
    if (removing || reported_) text += L", " + std::to_wstring(members_.size()) + L" total";
    session_.transcript().line(text);
    tellLocked(session_, locked);
    if (elsewhere > 0)
      session_.transcript().line(std::to_wstring(elsewhere) + (elsewhere == 1 ? L" was" : L" were") +
                                 L" not in current space.");
    reported_ = true;
  }

  Session& session_;
  const SelectOptions& options_;
  std::vector<Slot*> members_;
  std::unordered_set<Slot*> known_;
  std::vector<std::vector<Slot*>> undo_;
  bool reported_ = false;
};

/// One "Select objects" dialogue.
class Selector {
 public:
  Selector(Session& session, const SelectOptions& options)
      : session_(session), prompter_(session), options_(options), selection_(session, options) {}

  Reply<std::vector<Slot*>> run() {
    Reply<std::vector<Slot*>> reply;
    const Keywords keywords(kOptions);
    while (!done_) {
      Question question;
      question.prompt = selection_.removing ? options_.removePrompt : options_.prompt;
      question.wanted = Wanted::Entities;
      question.keywords = &keywords;
      const Answer answer = session_.ask(question);
      if (answer.kind == Answer::Kind::Cancel || answer.kind == Answer::Kind::End) return reply;
      if (answer.kind == Answer::Kind::Enter) break;
      if (!handle(answer, keywords)) return reply;
    }
    reply.outcome = selection_.isEmpty() ? Outcome::Enter : Outcome::Value;
    reply.value = selection_.release();
    if (reply) session_.documents().current()->previousSelection = reply.value;
    return reply;
  }

 private:
  /// False: the dialogue has ended in Esc or a failure.
  bool handle(const Answer& answer, const Keywords& keywords) {
    if (answer.kind == Answer::Kind::Entity) return take({answer.entity.slot()}, true);
    if (answer.kind == Answer::Kind::Point) return pick(answer.point, true);
    if (const std::optional<std::uint64_t> handle = parseHandent(answer.text)) return takeHandle(*handle);
    if (isFilterExpression(answer.text)) return takeFiltered(answer.text);
    if (text::equalFolded(answer.text, L"(entlast)")) return option(L"Last");
    if (const std::optional<AcGePoint3d> point = parsePoint(answer.text, session_.documents().current()->lastPoint))
      return pick(*point, false);
    if (const std::optional<std::wstring> keyword = keywords.match(answer.text)) return option(*keyword);
    return prompter_.refuse(kInvalid);
  }

  /// `where` names the pick or window for the message that it found nothing.
  using Told = Selection::Told;
  bool take(std::vector<Slot*> found, bool expandGroups, const std::wstring& where = {}, Told told = Told::Counts) {
    const bool any = !found.empty();
    selection_.take(std::move(found), expandGroups, told);
    if (any && (options_.single || single_)) done_ = true;
    if (!any && !where.empty()) session_.foundNothing(where);
    return true;
  }

  bool takeHandle(std::uint64_t handle) {
    Slot* const entity = entityByHandle(session_, handle);
    if (entity == nullptr) return prompter_.refuse(noSuchEntity(handle));
    return take({entity}, true);
  }

  bool pick(const AcGePoint3d& point, bool pointedAt) {
    Document& document = *session_.documents().current();
    document.lastPoint = point;
    std::vector<Slot*> found = session_.finder().at(document.drawing(), session_.currentSpace(), flat(point),
                                                    pickAperture(session_), options_.everything);
    if (!found.empty() || !pointedAt) {
      session_.recording().wereEntities(found);
      return take(std::move(found), true, at(point));
    }
    // Pointing at nothing opens a window: to the right inside, to the left crossing.
    Limits limits;
    limits.base = point;
    const std::size_t place = session_.recording().place();
    const Reply<AcGePoint3d> corner = prompter_.point(L"Specify opposite corner: ", limits);
    if (!corner) {
      // The corner is left out with its point: a script has nothing to point at.
      session_.recording().wasNoWindow(place, corner.outcome == Outcome::Enter);
      return corner.outcome == Outcome::Enter;
    }
    const bool isCrossing = corner.value.x < point.x;
    session_.recording().wasWindow(place, isCrossing);
    return window(point, corner.value, isCrossing ? geometry::Window::Crossing : geometry::Window::Inside);
  }

  bool window(const AcGePoint3d& a, const AcGePoint3d& b, geometry::Window kind) {
    return take(session_.finder().inWindow(session_.currentSpace(), rectangle(a, b), kind), true,
                L"in the window from " + flatText(a) + L" to " + flatText(b));
  }

  bool askWindow(std::wstring_view name) {
    Limits limits;
    limits.bits = RSG_NONULL;
    const Reply<AcGePoint3d> first = prompter_.point(L"Specify first corner: ", limits);
    if (!first) return false;
    limits.base = first.value;
    const Reply<AcGePoint3d> second = prompter_.point(L"Specify opposite corner: ", limits);
    if (!second) return false;
    const bool crossing = name == L"Crossing" || (name == L"BOX" && second.value.x < first.value.x);
    return window(first.value, second.value, crossing ? geometry::Window::Crossing : geometry::Window::Inside);
  }

  bool askPolygon(std::wstring_view name) {
    const bool isFence = name == L"Fence";
    std::vector<Point> points;
    Limits limits;
    limits.bits = RSG_NONULL;
    limits.keywords = Keywords(L"Undo");
    std::wstring_view prompt = isFence ? L"Specify first fence point: " : L"First polygon point: ";
    for (;;) {
      const Reply<AcGePoint3d> reply = prompter_.point(prompt, limits);
      if (reply.outcome == Outcome::Cancel) return false;
      if (reply.outcome == Outcome::Enter) break;
      if (reply.outcome == Outcome::Keyword) {
        if (!points.empty()) points.pop_back();
      } else {
        points.push_back(flat(reply.value));
        limits.base = reply.value;
      }
      limits.bits = points.empty() ? RSG_NONULL : 0;
      prompt = isFence ? L"Specify next fence point or [Undo]: " : L"Specify endpoint of line or [Undo]: ";
    }
    if (points.size() < (isFence ? 2U : 3U))
      return prompter_.refuse(isFence ? L"A fence needs two points." : L"A polygon needs three points.");
    const database::BlockContents& space = session_.currentSpace();
    if (isFence) return take(session_.finder().onFence(space, points), true, L"on the fence");
    return take(session_.finder().inWindow(space, points,
                                           name == L"WPolygon" ? geometry::Window::Inside : geometry::Window::Crossing),
                true, L"in the polygon");
  }

  bool askGroup() {
    const Reply<std::wstring> name = prompter_.word(L"Enter group name: ");
    if (name.outcome == Outcome::Cancel) return false;
    if (!name) return true;
    const std::optional<std::vector<Slot*>> members =
        groupMembers(session_.documents().current()->drawing(), name.value);
    if (!members) return prompter_.refuse(L"No group is named \"" + name.value + L"\".");
    return take(*members, false);
  }

  bool takeAll() {
    std::size_t locked = 0;
    take(selectAll(session_, &locked), false);
    tellLocked(session_, locked);
    return true;
  }

  /// All of the kinds and layers that are selected; asks for one of the kind while nothing is.
  bool takeSame() {
    std::vector<Slot*> models = selection_.members();
    if (models.empty()) {
      const Reply<EntityPick> model = prompter_.entity(L"Select object of the same kind: ");
      if (model.outcome == Outcome::Cancel) return false;
      if (!model || model.value.entity == nullptr) return true;
      models = {model.value.entity};
    }
    std::set<std::pair<database::DxfType, std::uint32_t>> kinds;
    for (const Slot* model : models) kinds.emplace(model->type, model->layer);
    std::vector<Slot*> same = session_.finder().visibleNewestFirst(session_.currentSpace());
    std::erase_if(same, [&kinds](const Slot* each) { return !kinds.contains({each->type, each->layer}); });
    return take(std::move(same), false, {}, Told::States);
  }

  /// Those of the current space that a filter lets through and that are not on frozen layers.
  bool takeMatching(const std::vector<SelectionFilter>& filters, const std::wstring& where) {
    const database::BlockContents& space = session_.currentSpace();
    std::vector<Slot*> found;
    for (auto it = space.entities.rbegin(); it != space.entities.rend(); ++it) {
      Slot& entity = **it;
      if (entity.isErased() || entity.isSubEntity() || session_.finder().layerState(entity).frozen) continue;
      const auto fits = [&entity](const SelectionFilter& filter) { return filter.matches(entity); };
      if (std::any_of(filters.begin(), filters.end(), fits)) found.push_back(&entity);
    }
    return take(std::move(found), false, where, Told::States);
  }

  bool takeFiltered(const std::wstring& text) {
    const database::DrawingDatabase& drawing = session_.documents().current()->drawing();
    Result<FilterExpression> expression = parseFilterExpression(text, drawing);
    if (!expression) return prompter_.refuse(text::fromUtf8(expression.problem().sentence()));
    const std::wstring where = L"by " + text;
    if (expression->isWholeDrawing) return take(wholeDrawing(drawing, expression->filter), false, where, Told::States);
    std::vector<SelectionFilter> filters;
    filters.push_back(std::move(expression->filter));
    return takeMatching(filters, where);
  }

  bool askLayer() {
    const Reply<std::wstring> pattern = prompter_.word(L"Enter layer name, * and ? stand for others: ");
    if (pattern.outcome == Outcome::Cancel) return false;
    if (!pattern) return true;
    std::vector<SelectionFilter> filters;
    filters.push_back(filterOfLayers(pattern.value, session_.documents().current()->drawing()));
    return takeMatching(filters, L"on layer " + pattern.value);
  }

  bool askKind() {
    const Reply<std::wstring> name = prompter_.word(L"Enter kind of object or [?]: ");
    if (name.outcome == Outcome::Cancel) return false;
    if (!name) return true;
    const database::DrawingDatabase& drawing = session_.documents().current()->drawing();
    std::vector<SelectionFilter> filters;
    std::vector<std::wstring> known;
    for (const auto& module : session_.modules().all()) {
      for (const ObjectKind& kind : module->kinds) {
        known.insert(known.end(), kind.names.begin(), kind.names.end());
        if (std::any_of(kind.names.begin(), kind.names.end(),
                        [&](const std::wstring& each) { return text::matchesWildcard(each, name.value); }))
          filters.push_back(filterOfTag(kind.application, kind.key, kind.value, drawing));
      }
    }
    if (!filters.empty()) return takeMatching(filters, L"of kind " + name.value);
    if (name.value == L"?") {
      for (const std::wstring& each : known) prompter_.line(L"  " + each);
      return true;
    }
    std::wstring hint = known.empty() ? L"; no plug-in has kinds of objects" : L"";
    for (const std::wstring& close : nearestNames(name.value, known))
      hint += (hint.empty() ? L"; nearest: " : L", ") + close;
    return prompter_.refuse(L"No kind of object is named \"" + name.value + L"\"" + hint + L".");
  }

  bool option(std::wstring_view name) {
    Document& document = *session_.documents().current();
    if (name == L"Window" || name == L"Crossing" || name == L"BOX") return askWindow(name);
    if (name == L"WPolygon" || name == L"CPolygon" || name == L"Fence") return askPolygon(name);
    if (name == L"Group") return askGroup();
    if (name == L"ALL") return takeAll();
    if (name == L"SAme") return takeSame();
    if (name == L"LAYer") return askLayer();
    if (name == L"KInd") return askKind();
    if (name == L"Last") {
      Slot* const last = lastEntity(session_);
      return take(last != nullptr ? std::vector<Slot*>{last} : std::vector<Slot*>{}, true);
    }
    if (name == L"Previous") {
      std::vector<Slot*> former = document.previousSelection;
      std::erase_if(former, [](const Slot* entity) { return entity->isErased(); });
      if (former.empty()) return prompter_.refuse(L"No previous selection set.");
      return take(std::move(former), false);
    }
    if (name == L"Remove") selection_.removing = true;
    if (name == L"Add") selection_.removing = false;
    if (name == L"Undo") selection_.undo();
    if (name == L"SIngle") single_ = true;
    return true;  // Multiple and AUto are how picks work anyway
  }

  Session& session_;
  Prompter prompter_;
  const SelectOptions& options_;
  Selection selection_;
  bool single_ = false;
  bool done_ = false;
};

}  // namespace

Reply<std::vector<Slot*>> Prompter::select(const SelectOptions& options) {
  Document* const document = session_.documents().current();
  if (document == nullptr) return {};
  return Selector(session_, options).run();
}

Reply<EntityPick> Prompter::entity(std::wstring_view prompt, const Limits& limits) {
  Document* const document = session_.documents().current();
  if (document == nullptr) return {};
  Reply<EntityPick> reply;
  for (;;) {
    const Answer answer = session_.ask(limits.question(prompt, AnswerForm::Word, Wanted::Entity));
    std::optional<AcGePoint3d> point;
    Slot* named = nullptr;
    std::wstring why = L"*Invalid selection*  Expects a point or Last";
    switch (answer.kind) {
      case Answer::Kind::Cancel:
      case Answer::Kind::End:
        return reply;
      case Answer::Kind::Enter:
        if ((limits.bits & RSG_NONULL) == 0) {
          reply.outcome = Outcome::Enter;
          return reply;
        }
        why = L"An answer is needed here.";
        break;
      case Answer::Kind::Entity:
        named = answer.entity.slot();
        break;
      case Answer::Kind::Point:
        point = answer.point;
        break;
      case Answer::Kind::Text:
        if (const auto keyword = limits.keywords.match(answer.text)) {
          reply.outcome = Outcome::Keyword;
          reply.keyword = *keyword;
          return reply;
        }
        if (const std::optional<std::uint64_t> handle = parseHandent(answer.text)) {
          named = entityByHandle(session_, *handle);
          if (named == nullptr) why = noSuchEntity(*handle);
        } else if (Keywords(L"Last").match(answer.text) || text::equalFolded(answer.text, L"(entlast)")) {
          named = lastEntity(session_);
          if (named == nullptr) why = L"The drawing has no visible entity.";
        } else {
          point = parsePoint(answer.text, document->lastPoint);
        }
        break;
    }
    if (named != nullptr && named->owner != session_.currentSpace().record) {
      named = nullptr;
      why = L"The entity is not in current space.";
    }
    if (named != nullptr || point) {
      reply.outcome = Outcome::Value;
      reply.value.entity = named;
      reply.value.point = point.value_or(named != nullptr ? pointOn(*named) : AcGePoint3d());
      if (point) {
        const std::vector<Slot*> found = session_.finder().at(document->drawing(), session_.currentSpace(),
                                                              flat(*point), pickAperture(session_), false);
        if (!found.empty()) {
          reply.value.entity = found.front();
          session_.recording().wereEntities({found.front()});
        } else {
          session_.foundNothing(at(*point));
          if ((limits.bits & RSG_NONULL) == 0) session_.recording().wasNothing();
        }
      }
      document->lastPoint = reply.value.point;
      return reply;
    }
    if (!refuse(why)) return reply;
  }
}

}  // namespace host::editor
