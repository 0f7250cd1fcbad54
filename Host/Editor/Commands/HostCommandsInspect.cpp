// LIST, LAYOUT, ZOOM, HOVER.
#include <algorithm>
#include <cmath>

#include "Curves/Bulges.h"
#include "Database/TagValues.h"
#include "Editor/Commands/HostCommands.h"
#include "Editor/Selection/Spaces.h"
#include "Editor/Session/Session.h"
#include "Geometry/PlainText.h"
#include "Text/Text.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbpl.h"

namespace host::editor {
namespace {

using database::Slot;

database::DrawingDatabase& drawingOf(Prompter& prompter) { return prompter.session().documents().current()->drawing(); }

// ---- LIST -----------------------------------------------------------------------------------------------------------

void listLine(Prompter& prompter, const AcDbLine& line) {
  const AcGePoint3d from = line.startPoint(), to = line.endPoint();
  prompter.line(L"    from " + shownPoint(from) + L" to " + shownPoint(to) + L"  length " +
                shownNumber(from.distanceTo(to)));
}

void listPolyline(Prompter& prompter, const AcDbPolyline& polyline) {
  curves::Loop vertices;
  double length = 0;
  for (unsigned i = 0; i < polyline.numVerts(); ++i) {
    AcGePoint2d point;
    double bulge = 0;
    polyline.getPointAt(i, point);
    polyline.getBulgeAt(i, bulge);
    vertices.push_back({point.x, point.y, bulge});
    prompter.line(L"    at " + shownNumber(point.x) + L"," + shownNumber(point.y) +
                  (bulge != 0 ? L"  bulge " + shownNumber(bulge) : std::wstring()));
  }
  const std::size_t pieces = vertices.empty() ? 0 : vertices.size() - (polyline.isClosed() ? 0 : 1);
  for (std::size_t i = 0; i < pieces; ++i) {
    const curves::Point2 next = vertices[(i + 1) % vertices.size()].point();
    length += curves::arcLength(distance(vertices[i].point(), next), vertices[i].bulge);
  }
  std::wstring summary = polyline.isClosed() ? L"    closed" : L"    open";
  summary += L"  length " + shownNumber(length);
  if (polyline.isClosed()) summary += L"  area " + shownNumber(std::abs(curves::area(vertices)));
  prompter.line(summary);
}

std::wstring handleOf(const Slot& slot) { return L"  Handle = " + text::fromUtf8(text::formatHandle(slot.handle)); }

/// The lines of a text, one beneath the other.
void listText(Prompter& prompter, const Slot& slot) {
  const std::wstring all = geometry::plainText(slot);
  for (std::size_t begin = 0; begin < all.size();) {
    const std::size_t end = std::min(all.find(L'\n', begin), all.size());
    prompter.line(L"    text \"" + all.substr(begin, end - begin) + L"\"");
    begin = end + 1;
  }
}

/// Block, place, size and turn; attributes with their handles.
void listReference(Prompter& prompter, const Slot& slot) {
  const text::Codec& codec = slot.database().codec();
  std::wstring block;
  AcGePoint3d at;
  double scale = 1, degrees = 0;
  database::GeometryTags tags(slot.tags());
  for (database::Tag tag; tags.next(tag);) {
    if (database::takePoint(tag, 10, at)) continue;
    if (tag.code == 2) block = codec.decode(tag.value);
    if (tag.code == 41) scale = tag.real();
    if (tag.code == 50) degrees = tag.real();
  }
  prompter.line(L"    block \"" + block + L"\" at " + shownPoint(at) + L"  scale " + shownNumber(scale) +
                L"  rotation " + shownNumber(degrees));
  for (const Slot* sub = slot.firstSub(); sub != nullptr; sub = sub->nextSub) {
    if (sub->type != database::DxfType::Attrib || sub->isErased()) continue;
    std::wstring name;
    database::TagCursor own = sub->tags();
    for (database::Tag tag; own.next(tag);)
      if (tag.code == 2) name = codec.decode(tag.value);
    prompter.line(L"    attribute " + name + L" \"" + geometry::plainText(*sub) + L"\"" + handleOf(*sub));
  }
}

/// The pattern, and the lines that it follows (the handles behind the count of group 97).
void listHatch(Prompter& prompter, const Slot& slot) {
  std::wstring pattern, boundary;
  bool isInSources = false;
  database::TagCursor tags = slot.tags();
  for (database::Tag tag; tags.next(tag);) {
    if (tag.code == 2 && pattern.empty()) pattern = slot.database().codec().decode(tag.value);
    if (tag.code == 97 || (isInSources && tag.code == 330)) {
      if (tag.code == 330) boundary += L" " + text::fromUtf8(text::formatHandle(tag.handle()));
      isInSources = true;
    } else {
      isInSources = false;
    }
  }
  prompter.line(L"    pattern " + pattern + (boundary.empty() ? L"" : L"  boundary" + boundary));
}

/// What the extended data names: fills of outlines, ridges of buildings.
void listReferences(Prompter& prompter, const Slot& slot) {
  constexpr int kHandle = 1005;
  std::wstring handles;
  database::TagCursor tags = slot.tags();
  for (database::Tag tag; tags.next(tag);)
    if (tag.code == kHandle && tag.handle() != 0) handles += L" " + text::fromUtf8(text::formatHandle(tag.handle()));
  if (!handles.empty()) prompter.line(L"    refers to" + handles);
}

void listEntity(Prompter& prompter, Slot& slot) {
  const database::DrawingDatabase& drawing = slot.database();
  std::wstring line = L"  " + text::fromUtf8(drawing.typeName(slot)) + L"  Layer: \"" + drawing.layerName(slot.layer) +
                      L"\"  Space: " + (slot.owner == drawing.modelSpace().record ? L"Model" : L"Paper") +
                      handleOf(slot);
  const database::EntityProperties properties = database::entityProperties(slot);
  if (properties.color == 0) {
    line += L"  Color: BYBLOCK";
  } else if (properties.color != 256) {
    line += L"  Color: " + std::to_wstring(properties.color);
  }
  if (!properties.linetype.empty()) line += L"  Linetype: \"" + drawing.codec().decode(properties.linetype) + L"\"";
  prompter.line(line);
  listText(prompter, slot);
  if (slot.type == database::DxfType::Insert) listReference(prompter, slot);
  if (slot.type == database::DxfType::Hatch) listHatch(prompter, slot);
  const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(&slot), AcDb::kForRead);
  if (entity.openStatus() != Acad::eOk) return;
  if (const auto* asLine = AcDbLine::cast(entity.object())) listLine(prompter, *asLine);
  if (const auto* asPolyline = AcDbPolyline::cast(entity.object())) listPolyline(prompter, *asPolyline);
  listReferences(prompter, slot);
}

void list(Prompter& prompter) {
  Session& session = prompter.session();
  std::vector<Slot*> entities;
  if (session.runner().mayTakePickfirst()) entities = session.takePickfirst();
  if (entities.empty()) entities = prompter.select().value;
  for (Slot* entity : entities) {
    if (!entity->isErased()) listEntity(prompter, *entity);
  }
}

// ---- LAYOUT ---------------------------------------------------------------------------------------------------------

void switchTo(Prompter& prompter, const std::wstring& name) {
  Session& session = prompter.session();
  if (text::equalFolded(session.documents().current()->currentLayout, name)) return;
  if (!session.switchLayout(name)) {
    std::wstring known;
    for (const auto& [layout, block] : drawingOf(prompter).layouts()) known += (known.empty() ? L"" : L", ") + layout;
    prompter.refuse(L"No layout is named \"" + name + L"\"; there are: " + known + L".");
  }
}

void layout(Prompter& prompter) {
  Document& document = *prompter.session().documents().current();
  Limits limits;
  limits.keywords = Keywords(L"? Set");
  const auto option = prompter.word(L"Enter layout option [Set/?] <Set>: ", limits);
  if (option.outcome == Outcome::Cancel) return;
  if (option.outcome == Outcome::Value) {
    switchTo(prompter, option.value);
    return;
  }
  if (option.outcome == Outcome::Keyword && option.keyword == L"?") {
    for (const auto& [name, block] : drawingOf(prompter).layouts())
      prompter.line(name + (text::equalFolded(name, document.currentLayout) ? L"  (current)" : L""));
    return;
  }
  const auto name = prompter.word(L"Enter layout to make current <" + document.currentLayout + L">: ");
  if (name) switchTo(prompter, name.value);
}

// ---- ZOOM -----------------------------------------------------------------------------------------------------------

geometry::Box boxAbout(double x, double y, double width, double height) {
  geometry::Box box;
  box.add(geometry::Point{x - width / 2, y - height / 2});
  box.add(geometry::Point{x + width / 2, y + height / 2});
  return box;
}

/// Gives the drawing another view; an empty box is its extents.
void setView(Prompter& prompter, const geometry::Box& view) {
  Document& document = *prompter.session().documents().current();
  document.view = view;
  // A window answers with what it shows then.
  document.screen = {};
  prompter.session().observer().showView(view);
}

void show(Prompter& prompter, const geometry::Box& view) {
  Document& document = *prompter.session().documents().current();
  constexpr std::size_t kRemembered = 10;
  document.formerViews.push_back(document.screen.isEmpty() ? document.view : document.screen);
  if (document.formerViews.size() > kRemembered) document.formerViews.erase(document.formerViews.begin());
  setView(prompter, view);
}

void showWindow(Prompter& prompter, const AcGePoint3d& a, const AcGePoint3d& b) {
  if (a.x == b.x && a.y == b.y) {
    prompter.refuse(L"The window has no size.");
    return;
  }
  geometry::Box box;
  box.add(geometry::Point{a.x, a.y});
  box.add(geometry::Point{b.x, b.y});
  show(prompter, box);
}

void scaleView(Prompter& prompter, double factor) {
  const geometry::Box view = currentView(prompter.session());
  show(prompter, boxAbout((view.minX + view.maxX) / 2, (view.minY + view.maxY) / 2, (view.maxX - view.minX) / factor,
                          (view.maxY - view.minY) / factor));
}

/// "2x", "0.5": how much larger things are to look.
bool scaleByText(Prompter& prompter, std::wstring text) {
  if (!text.empty() && (text.back() == L'x' || text.back() == L'X')) text.pop_back();
  const auto factor = parseNumber(text);
  if (!factor || *factor < 1e-9 || *factor > 1e9) return prompter.refuse(L"Requires a scale factor, as 2x or 0.5x.");
  scaleView(prompter, *factor);
  return false;
}

void zoomCenter(Prompter& prompter) {
  Limits limits;
  limits.bits = RSG_NONULL;
  const auto center = prompter.point(L"Specify center point: ", limits);
  if (!center) return;
  const geometry::Box view = currentView(prompter.session());
  limits.bits = RSG_NOZERO | RSG_NONEG;
  const double present = view.maxY - view.minY;
  const auto height = prompter.real(L"Enter height <" + shownNumber(present) + L">: ", limits);
  if (height.outcome == Outcome::Cancel) return;
  const double wanted = height ? height.value : present;
  const double width = present > 0 ? (view.maxX - view.minX) * wanted / present : wanted;
  show(prompter, boxAbout(center.value.x, center.value.y, width, wanted));
}

/// Around the objects selected, before the command or now.
void zoomObjects(Prompter& prompter) {
  std::vector<Slot*> entities = prompter.session().takePickfirst(Session::AfterUse::Keep);
  if (entities.empty()) entities = prompter.select().value;
  geometry::Box box;
  for (const Slot* entity : entities) {
    const geometry::Box own = entity->isErased() ? geometry::Box() : geometry::entityExtents(*entity);
    if (!own.isEmpty()) box.add(own);
  }
  if (entities.empty()) return;
  if (box.isEmpty()) {
    prompter.line(L"The objects have no extents.");
    return;
  }
  show(prompter, box);
}

void zoom(Prompter& prompter) {
  Document& document = *prompter.session().documents().current();
  Limits limits;
  limits.bits = RSG_OTHER;
  limits.keywords = Keywords(L"All Center Extents Previous Scale Window Object");
  for (;;) {
    const auto reply = prompter.point(
        L"Specify corner of window, enter a scale factor (nX), or [All/Center/Extents/Previous/Scale/Window/Object]: ",
        limits);
    if (reply.outcome == Outcome::Cancel || reply.outcome == Outcome::Enter) return;
    Limits needed;
    needed.bits = RSG_NONULL;
    if (reply) {
      const auto corner = prompter.point(L"Specify opposite corner: ", needed);
      if (corner) showWindow(prompter, reply.value, corner.value);
    } else if (reply.keyword == L"All" || reply.keyword == L"Extents") {
      show(prompter, {});
    } else if (reply.keyword == L"Center") {
      zoomCenter(prompter);
    } else if (reply.keyword == L"Previous") {
      if (document.formerViews.empty()) {
        prompter.line(L"No previous view.");
      } else {
        const geometry::Box former = document.formerViews.back();
        document.formerViews.pop_back();
        setView(prompter, former);
      }
    } else if (reply.keyword == L"Window") {
      const auto first = prompter.point(L"Specify first corner: ", needed);
      if (!first) return;
      const auto second = prompter.point(L"Specify opposite corner: ", needed);
      if (second) showWindow(prompter, first.value, second.value);
    } else if (reply.keyword == L"Object") {
      zoomObjects(prompter);
    } else if (reply.keyword == L"Scale") {
      const auto factor = prompter.word(L"Enter a scale factor (nX): ", needed);
      if (factor) scaleByText(prompter, factor.value);
    } else if (scaleByText(prompter, reply.keyword)) {
      continue;
    }
    return;
  }
}

// ---- HOVER ----------------------------------------------------------------------------------------------------------

void hover(Prompter& prompter) {
  Limits limits;
  limits.bits = RSG_NONULL;
  const auto point = prompter.point(L"Specify point: ", limits);
  if (!point) return;
  const std::wstring tooltip = tooltipAt(prompter.session(), point.value);
  prompter.line(tooltip.empty() ? std::wstring(L"No tooltip.") : tooltip);
}

constexpr HostCommand kCommands[] = {
    {L"LIST", ACRX_CMD_USEPICKSET | ACRX_CMD_NO_UNDO_MARKER, list,
     L"prints layer, handle, points, area and texts of objects"},
    {L"LAYOUT", ACRX_CMD_MODAL, layout, L"shows the layouts and makes one the current"},
    {L"ZOOM", ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER, zoom,
     L"sets the view, which decides how finely picks are meant"},
    {L"HOVER", ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER, hover, L"prints the tooltip at a point"},
};

}  // namespace

std::span<const HostCommand> inspectCommands() { return kCommands; }

}  // namespace host::editor
