#include "Editor/Selection/Spaces.h"

#include <algorithm>
#include <functional>

#include "Editor/Selection/SelectionFilter.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"

namespace host::editor {
namespace {

using database::Slot;

constexpr int kHistoryNotInteractive = 0x100000;

}  // namespace

geometry::Box currentView(Session& session) {
  Document& document = *session.documents().current();
  if (!document.screen.isEmpty()) return document.screen;
  if (!document.view.isEmpty()) return document.view;
  geometry::Box extents = session.finder().extents(document.drawing(), session.currentSpace());
  if (extents.isEmpty()) {
    extents.add(geometry::Point{0, 0});
    extents.add(geometry::Point{1, 1});
  }
  return extents;
}

double pickAperture(Session& session) {
  const geometry::Box view = currentView(session);
  const double side = std::max(view.maxX - view.minX, view.maxY - view.minY);
  const double pixels = static_cast<double>(session.variables().integer(L"PICKBOX"));
  // Even a pick box of no size hits what the point lies on, within rounding.
  const double smallest =
      1e-9 * std::max({1.0, side, std::abs(view.maxX), std::abs(view.maxY), std::abs(view.minX), std::abs(view.minY)});
  const Document& document = *session.documents().current();
  const double pixelSize =
      document.screen.isEmpty() ? side / EntityFinder::kScreenPixels : (view.maxX - view.minX) / document.screenPixels;
  return std::max(pixelSize * pixels, smallest);
}

std::vector<Slot*> selectAll(Session& session, std::size_t* locked) {
  std::vector<Slot*> found;
  const database::BlockContents& space = session.currentSpace();
  for (auto it = space.entities.rbegin(); it != space.entities.rend(); ++it) {
    if ((*it)->isErased() || (*it)->isSubEntity()) continue;
    const geometry::LayerState& state = session.finder().layerState(**it);
    if (state.frozen) continue;
    if (!state.locked) {
      found.push_back(*it);
    } else if (locked != nullptr) {
      ++*locked;
    }
  }
  return found;
}

std::vector<Slot*> wholeDrawing(const database::DrawingDatabase& drawing, const SelectionFilter& filter) {
  std::vector<Slot*> found;
  for (const auto& [name, block] : drawing.layouts()) {
    if (block == nullptr) continue;
    for (auto it = block->entities.rbegin(); it != block->entities.rend(); ++it) {
      if (!(*it)->isErased() && !(*it)->isSubEntity() && filter.matches(**it)) found.push_back(*it);
    }
  }
  return found;
}

void tellLocked(Session& session, std::size_t count) {
  if (count > 0)
    session.transcript().line(std::to_wstring(count) + (count == 1 ? L" was" : L" were") + L" on a locked layer.");
}

Slot* lastEntity(Session& session) {
  const database::BlockContents& space = session.currentSpace();
  for (auto it = space.entities.rbegin(); it != space.entities.rend(); ++it) {
    if (session.finder().isVisible(**it)) return *it;
  }
  return nullptr;
}

Slot* entityByHandle(Session& session, std::uint64_t handle) {
  Slot* const slot = session.documents().current()->drawing().findHandle(handle);
  return slot != nullptr && slot->isEntity() && !slot->isSubEntity() && !slot->isErased() ? slot : nullptr;
}

std::wstring noSuchEntity(std::uint64_t handle) {
  return handle == 0 ? std::wstring(L"(handent ...) needs a handle in quotes, hexadecimal.")
                     : L"No entity has the handle " + text::fromUtf8(text::formatHandle(handle)) + L".";
}

std::optional<std::vector<Slot*>> groupMembers(const database::DrawingDatabase& drawing, std::wstring_view name) {
  const Slot* const root = drawing.rootDictionary();
  if (root == nullptr) return std::nullopt;
  // Entries of a dictionary: a name (3), then its object (350 or 360).
  const auto entry = [&drawing](const Slot& dictionary, std::wstring_view wanted) -> const Slot* {
    database::Tag tag;
    bool matches = false;
    for (database::TagCursor tags = dictionary.tags(); tags.next(tag);) {
      if (tag.code == 3) matches = text::equalFolded(drawing.codec().decode(tag.value), wanted);
      if ((tag.code == 350 || tag.code == 360) && matches) return drawing.findHandle(tag.handle());
    }
    return nullptr;
  };
  const Slot* const groups = entry(*root, L"ACAD_GROUP");
  const Slot* const group = groups != nullptr ? entry(*groups, name) : nullptr;
  if (group == nullptr || group->isErased()) return std::nullopt;
  std::vector<Slot*> members;
  database::Tag tag;
  for (database::TagCursor tags = group->tags(); tags.next(tag);) {
    if (tag.code != 340) continue;
    Slot* const member = drawing.findHandle(tag.handle());
    if (member != nullptr && member->isEntity() && !member->isErased()) members.push_back(member);
  }
  return members;
}

namespace {

/// Entities whose inside belongs to them.
bool isArea(const Slot& slot) {
  using database::DxfType;
  return slot.type == DxfType::Hatch || slot.type == DxfType::Solid || slot.type == DxfType::Trace ||
         slot.type == DxfType::Wipeout || slot.type == DxfType::Image;
}

/// What the monitors of the current document say of the entities there, topmost first.
std::wstring monitorsSay(Session& session, const AcGePoint3d& point, const std::vector<Slot*>& found) {
  Document& document = *session.documents().current();
  AcArray<AcDbObjectId> entities;
  AcArrayObjectCopy<AcDbObjectIdArray> nested;
  AcArray<Adesk::GsMarker> markers;
  for (Slot* slot : found) {
    entities.append(AcDbObjectId(slot));
    nested.append(AcDbObjectIdArray());
    markers.append(0);
  }
  std::wstring tooltip;
  const std::vector<AcEdInputPointMonitor*> monitors = document.pointManager().monitors();
  for (AcEdInputPointMonitor* monitor : monitors) {
    bool append = false;
    ACHAR* addition = nullptr;
    Acad::ErrorStatus status = Acad::eInvalidInput;
    callPlugIn(session, monitor, [&] {
      status = monitor->monitorInputPoint(append, addition, nullptr, &document, true, kHistoryNotInteractive,
                                          document.lastPoint, point, point, point, point, AcDb::kOsMaskNone, {},
                                          AcDb::kOsMaskNone, {}, entities, nested, markers, {}, {}, {}, {}, point,
                                          tooltip.c_str());
    });
    if (status != Acad::eOk || !append || addition == nullptr || *addition == 0) continue;
    if (!tooltip.empty()) tooltip += L"\n";
    tooltip += addition;
  }
  while (tooltip.starts_with(L'\n')) tooltip.erase(0, 1);
  return tooltip;
}

/// The same at any time: objects that were opened for it go when no command runs.
std::wstring askedAtRest(const std::function<std::wstring(Session&)>& ask) {
  Session& session = Session::instance();
  if (session.documents().current() == nullptr) return {};
  std::wstring text = ask(session);
  if (session.runner().depth() == 0) session.documents().current()->drawing().releaseObjects();
  return text;
}

}  // namespace

std::wstring tooltipAt(Session& session, const AcGePoint3d& point) {
  std::vector<Slot*> found = session.finder().at(session.documents().current()->drawing(), session.currentSpace(),
                                                 {point.x, point.y}, pickAperture(session), true);
  // A fill covers its outline: who points at the outline means that, not the area around it.
  std::stable_partition(found.begin(), found.end(), [](const Slot* slot) { return !isArea(*slot); });
  return monitorsSay(session, point, found);
}

std::wstring Application::tooltipAt(const AcGePoint3d& point) {
  return askedAtRest([&](Session& session) { return editor::tooltipAt(session, point); });
}

std::wstring Application::tooltipOf(Slot& entity, const AcGePoint3d& point) {
  if (entity.isErased()) return {};
  return askedAtRest([&](Session& session) { return monitorsSay(session, point, {&entity}); });
}

}  // namespace host::editor
