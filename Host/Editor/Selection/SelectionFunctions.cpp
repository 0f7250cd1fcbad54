// Selection sets of the C interface.
#include <algorithm>
#include <optional>

#include "Editor/Selection/SelectionFilter.h"
#include "Editor/Selection/Spaces.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"
#include "acedads.h"

namespace {

using host::database::BlockContents;
using host::database::Slot;
using host::editor::Document;
using host::editor::Outcome;
using host::editor::Prompter;
using host::editor::SelectionFilter;
using host::editor::SelectOptions;
using host::editor::Session;
using host::editor::wholeDrawing;
using host::geometry::Point;
using host::geometry::Window;

/// "_:S:L" or "CP:E": the method and its options.
struct Mode {
  std::wstring method;
  bool single = false, everything = false, skipLocked = false, ownPrompts = false;
};

std::optional<Mode> parseMode(const ACHAR* text) {
  Mode mode;
  if (text == nullptr) return mode;
  std::wstring rest = host::text::folded(text);
  if (rest.starts_with(L'_')) rest.erase(0, 1);
  const std::size_t colon = std::min(rest.find(L':'), rest.size());
  mode.method = rest.substr(0, colon);
  for (std::size_t i = colon; i < rest.size(); ++i) {
    switch (rest[i]) {
      case L':':
      case L'-':
        break;
      case L's':
        mode.single = true;
        break;
      case L'e':
        mode.everything = true;
        break;
      case L'l':
        mode.skipLocked = true;
        break;
      case L'$':
        mode.ownPrompts = true;
        break;
      case L'd':
      case L'n':
      case L'u':
      case L'v':
      case L'k':
      case L'?':
        break;  // nothing here behaves differently with them
      default:
        return std::nullopt;
    }
  }
  return mode;
}

Point flat(const ads_real* point) { return {point[0], point[1]}; }

/// Points of a chain of result buffers.
std::vector<Point> pointsOf(const void* chain) {
  std::vector<Point> points;
  for (const auto* item = static_cast<const resbuf*>(chain); item != nullptr; item = item->rbnext) {
    if (item->restype == RTPOINT || item->restype == RT3DPOINT || (item->restype >= 10 && item->restype <= 18))
      points.push_back(flat(item->resval.rpoint));
  }
  return points;
}

/// The set selected before the command started; it is handed over once.
std::vector<Slot*> takePickfirst(Session& session) {
  if (!session.runner().mayTakePickfirst()) return {};
  return session.takePickfirst();
}

/// Selections that need no questions; nothing when the method or its points are wrong.
std::optional<std::vector<Slot*>> selectByMethod(Session& session, const Mode& mode, const void* point1,
                                                 const void* point2) {
  Document& document = *session.documents().current();
  const BlockContents& space = session.currentSpace();
  const auto* const a = static_cast<const ads_real*>(point1);
  const auto* const b = static_cast<const ads_real*>(point2);
  const std::wstring& method = mode.method;
  if (method == L"a" || method == L"all") return host::editor::selectAll(session);
  if (method == L"i") return takePickfirst(session);
  if (method == L"l") {
    Slot* const last = host::editor::lastEntity(session);
    return last != nullptr ? std::vector<Slot*>{last} : std::vector<Slot*>{};
  }
  if (method == L"p") {
    std::vector<Slot*> former = document.previousSelection;
    std::erase_if(former, [&](const Slot* entity) { return entity->isErased() || entity->owner != space.record; });
    return former;
  }
  if (method == L"w" || method == L"c" || method == L"b") {
    if (a == nullptr || b == nullptr) return std::nullopt;
    const bool crossing = method == L"c" || (method == L"b" && b[0] < a[0]);
    return session.finder().inWindow(space, {{a[0], a[1]}, {b[0], a[1]}, {b[0], b[1]}, {a[0], b[1]}},
                                     crossing ? Window::Crossing : Window::Inside);
  }
  if (method == L"wp" || method == L"cp" || method == L"f") {
    const std::vector<Point> points = pointsOf(point1);
    if (points.size() < (method == L"f" ? 2U : 3U)) return std::nullopt;
    if (method == L"f") return session.finder().onFence(space, points);
    return session.finder().inWindow(space, points, method == L"wp" ? Window::Inside : Window::Crossing);
  }
  if (method.empty() && a != nullptr)
    return session.finder().at(document.drawing(), space, flat(a), host::editor::pickAperture(session),
                               mode.everything);
  return std::nullopt;
}

int giveSet(Session& session, std::vector<Slot*> members, ads_name set) {
  if (members.empty()) return RTERROR;
  return session.sets().make(std::move(members), set) ? RTNORM : RTERROR;
}

int askForSet(Session& session, const Mode& mode, const void* prompts, const resbuf* filterList,
              const SelectionFilter& filter, ads_name set) {
  if (filterList == nullptr && mode.method.empty()) {
    std::vector<Slot*> before = takePickfirst(session);
    if (mode.skipLocked)
      host::editor::tellLocked(session, std::erase_if(before, [&session](const Slot* entity) {
                                 return session.finder().layerState(*entity).locked;
                               }));
    if (!before.empty()) {
      session.transcript().line(std::to_wstring(before.size()) + L" found");
      session.runner().skips().selected(before);
      session.documents().current()->previousSelection = before;
      return giveSet(session, std::move(before), set);
    }
  }
  SelectOptions options;
  options.single = mode.single;
  options.everything = mode.everything;
  options.skipLocked = mode.skipLocked;
  if (filterList != nullptr) options.accepts = [&filter](const Slot& entity) { return filter.matches(entity); };
  if (mode.ownPrompts && prompts != nullptr) {
    const auto* const texts = static_cast<const ACHAR* const*>(prompts);
    if (texts[0] != nullptr) options.prompt = texts[0];
    if (texts[1] != nullptr) options.removePrompt = texts[1];
  }
  auto reply = Prompter(session).select(options);
  if (reply.outcome == Outcome::Cancel) return RTCAN;
  session.runner().skips().selected(reply.value);
  return giveSet(session, std::move(reply.value), set);
}

}  // namespace

int acedSSGet(const ACHAR* modeText, const void* point1, const void* point2, const resbuf* filterList, ads_name set) {
  Session& session = Session::instance();
  if (set == nullptr || session.documents().current() == nullptr) return RTERROR;
  const host::database::DrawingDatabase& drawing = session.documents().current()->drawing();
  const std::optional<Mode> mode = parseMode(modeText);
  const std::optional<SelectionFilter> filter = SelectionFilter::compile(filterList, drawing);
  if (!mode || !filter || session.sets().count() >= host::editor::SelectionSets::kLimit) return RTERROR;

  if (mode->method == L"x") return giveSet(session, wholeDrawing(drawing, *filter), set);
  if (mode->method.empty() && (point1 == nullptr || mode->ownPrompts))
    return askForSet(session, *mode, point1, filterList, *filter, set);
  std::optional<std::vector<Slot*>> found = selectByMethod(session, *mode, point1, point2);
  if (!found) return RTERROR;
  std::erase_if(*found, [&](const Slot* entity) {
    return !filter->matches(*entity) || (mode->skipLocked && session.finder().layerState(*entity).locked);
  });
  return giveSet(session, std::move(*found), set);
}

int acedSSLength(const ads_name set, Adesk::Int32* length) {
  const auto* const found = Session::instance().sets().find(set);
  if (found == nullptr || length == nullptr) return RTERROR;
  *length = static_cast<Adesk::Int32>(found->members.size());
  return RTNORM;
}

int acedSSName(const ads_name set, Adesk::Int32 index, ads_name entity) {
  const auto* const found = Session::instance().sets().find(set);
  if (found == nullptr || entity == nullptr || index < 0 || static_cast<std::size_t>(index) >= found->members.size())
    return RTERROR;
  host::editor::nameOf(found->members[static_cast<std::size_t>(index)], entity);
  return RTNORM;
}

int acedSSFree(const ads_name set) { return Session::instance().sets().free(set) ? RTNORM : RTERROR; }

int acedSSAdd(const ads_name entity, const ads_name set, ads_name result) {
  auto& sets = Session::instance().sets();
  if (result == nullptr) return RTERROR;
  Slot* slot = nullptr;
  if (entity != nullptr) {
    slot = host::editor::entityOf(entity);
    if (slot == nullptr) return RTERROR;
  }
  if (set == nullptr)
    return sets.make(slot != nullptr ? std::vector<Slot*>{slot} : std::vector<Slot*>{}, result) ? RTNORM : RTERROR;
  auto* const found = sets.find(set);
  if (found == nullptr || slot == nullptr) return RTERROR;
  found->add(slot);
  if (set != result) ads_name_set(set, result);
  return RTNORM;
}

int acedSSDel(const ads_name entity, const ads_name set) {
  auto* const found = Session::instance().sets().find(set);
  Slot* const slot = host::editor::entityOf(entity);
  return found != nullptr && slot != nullptr && found->remove(slot) ? RTNORM : RTERROR;
}

int acedSSMemb(const ads_name entity, const ads_name set) {
  auto* const found = Session::instance().sets().find(set);
  Slot* const slot = host::editor::entityOf(entity);
  return found != nullptr && slot != nullptr && found->contains(slot) ? RTNORM : RTERROR;
}
