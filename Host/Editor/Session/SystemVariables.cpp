#include "Editor/Session/SystemVariables.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "Editor/Selection/Spaces.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"
#include "dbsymtb.h"

namespace host::editor {
namespace {

using Type = Variable::Type;
using Home = Variable::Home;

constexpr double kAny = 1e300;

Problem refusal(std::wstring_view clause) { return problemOf(Code::VariableRefused, text::toUtf8(clause)); }

// ---- values got from the host and the drawing -----------------------------------------------------------------------

VariableValue whole(std::int64_t value) { return value; }

VariableValue release(Session&) { return std::wstring(L"20.1"); }
// Runs of the same input give the same drawing: the date is no part of it.
VariableValue date(Session&) { return 0.0; }
VariableValue commandIsActive(Session& host) { return whole(host.runner().depth() > 0 ? 1 : 0); }
VariableValue commandNames(Session& host) { return host.runner().names(); }
VariableValue screenSize(Session& host) {
  const Document* const document = host.documents().current();
  if (document == nullptr || document->screen.isEmpty())
    return AcGePoint3d(EntityFinder::kScreenPixels, EntityFinder::kScreenPixels, 0);
  const geometry::Box& view = document->screen;
  const double shape = (view.maxY - view.minY) / (view.maxX - view.minX);
  return AcGePoint3d(document->screenPixels, document->screenPixels * shape, 0);
}
VariableValue noText(Session&) { return std::wstring(); }
VariableValue origin(Session&) { return AcGePoint3d(); }
VariableValue xDirection(Session&) { return AcGePoint3d(1, 0, 0); }
VariableValue yDirection(Session&) { return AcGePoint3d(0, 1, 0); }

// The rest is asked for only while a drawing is open.
Document& documentOf(Session& host) { return *host.documents().current(); }
database::DrawingDatabase& drawingOf(Session& host) { return documentOf(host).drawing(); }
AcDbDatabase& facadeOf(Session& host) { return *documentOf(host).database(); }

Result<> done(Acad::ErrorStatus status, const wchar_t* otherwise) {
  if (status == Acad::eOk) return {};
  return refusal(otherwise);
}

std::wstring nameOfRecord(AcDbObjectId id) {
  return id.isNull() ? std::wstring() : id.slot()->database().recordName(*id.slot());
}

constexpr const wchar_t* kColorNames[] = {L"red", L"yellow", L"green", L"cyan", L"blue", L"magenta", L"white"};

VariableValue entityColor(Session& host) {
  const AcCmColor color = facadeOf(host).cecolor();
  if (color.isByColor())
    return L"RGB:" + std::to_wstring(color.red()) + L"," + std::to_wstring(color.green()) + L"," +
           std::to_wstring(color.blue());
  if (color.isByLayer()) return std::wstring(L"BYLAYER");
  if (color.isByBlock()) return std::wstring(L"BYBLOCK");
  return std::to_wstring(color.colorIndex());
}

Result<> setEntityColor(Session& host, const VariableValue& value) {
  const std::optional<AcCmColor> color = parseColor(std::get<std::wstring>(value));
  if (!color) return refusal(L"needs BYLAYER, BYBLOCK, a colour from 1 to 255, a colour name or RGB:r,g,b");
  return done(facadeOf(host).setCecolor(*color), L"cannot be set");
}

VariableValue entityLinetype(Session& host) { return nameOfRecord(facadeOf(host).celtype()); }

Result<> setEntityLinetype(Session& host, const VariableValue& value) {
  const std::wstring& name = std::get<std::wstring>(value);
  database::Slot* const linetype = drawingOf(host).findRecord(database::DxfType::LineType, name);
  if (linetype == nullptr) return refusal(L"linetype \"" + name + L"\" is not loaded");
  return done(facadeOf(host).setCeltype(AcDbObjectId(linetype)), L"cannot be made current");
}

VariableValue currentLayer(Session& host) { return nameOfRecord(facadeOf(host).clayer()); }

Result<> setCurrentLayer(Session& host, const VariableValue& value) {
  const std::wstring& name = std::get<std::wstring>(value);
  database::Slot* const layer = drawingOf(host).findRecord(database::DxfType::Layer, name);
  if (layer == nullptr) return refusal(L"cannot find layer \"" + name + L"\"");
  database::Tag tag;
  for (database::TagCursor tags = layer->tags(); tags.next(tag);) {
    if (tag.code == 70 && (tag.integer() & 1) != 0) return refusal(L"layer \"" + name + L"\" is frozen");
  }
  return done(facadeOf(host).setClayer(AcDbObjectId(layer)), L"cannot be made current");
}

VariableValue currentTab(Session& host) { return documentOf(host).currentLayout; }

Result<> setCurrentTab(Session& host, const VariableValue& value) {
  const std::wstring& name = std::get<std::wstring>(value);
  if (text::equalFolded(documentOf(host).currentLayout, name) || host.switchLayout(name)) return {};
  return refusal(L"no layout is named \"" + name + L"\"");
}

bool isModelCurrent(Session& host) { return text::equalFolded(documentOf(host).currentLayout, L"Model"); }
VariableValue tileMode(Session& host) { return whole(isModelCurrent(host) ? 1 : 0); }

Result<> setTileMode(Session& host, const VariableValue& value) {
  const auto wanted = std::get<std::int64_t>(value);
  if (wanted != 0 && wanted != 1) return refusal(L"must be 0 or 1");
  if ((wanted == 1) == isModelCurrent(host)) return {};
  const auto layouts = drawingOf(host).layouts();
  if (wanted == 0 && layouts.size() < 2) return refusal(L"the drawing has no paper layout");
  host.switchLayout(wanted == 1 ? std::wstring(L"Model") : layouts[1].first);
  return {};
}

VariableValue lastPoint(Session& host) { return documentOf(host).lastPoint; }

Result<> setLastPoint(Session& host, const VariableValue& value) {
  documentOf(host).lastPoint = std::get<AcGePoint3d>(value);
  return {};
}

VariableValue isModified(Session& host) { return whole(drawingOf(host).isModified() ? 1 : 0); }
VariableValue isTitled(Session& host) { return whole(documentOf(host).file().empty() ? 0 : 1); }

VariableValue drawingName(Session& host) {
  const Document& document = documentOf(host);
  return document.file().empty() ? std::wstring(document.fileName())
                                 : text::fromUtf8(document.file().filename().string());
}

VariableValue drawingFolder(Session& host) {
  const std::string folder = documentOf(host).file().parent_path().string();
  return text::fromUtf8(folder.empty() || folder.ends_with('/') ? folder : folder + "/");
}

geometry::Box spaceExtents(Session& host) { return host.finder().extents(drawingOf(host), host.currentSpace()); }

VariableValue lowerExtents(Session& host) {
  const geometry::Box box = spaceExtents(host);
  return box.isEmpty() ? AcGePoint3d(1e20, 1e20, 1e20) : AcGePoint3d(box.minX, box.minY, 0);
}

VariableValue upperExtents(Session& host) {
  const geometry::Box box = spaceExtents(host);
  return box.isEmpty() ? AcGePoint3d(-1e20, -1e20, -1e20) : AcGePoint3d(box.maxX, box.maxY, 0);
}

VariableValue viewCentre(Session& host) {
  const geometry::Box view = currentView(host);
  return AcGePoint3d((view.minX + view.maxX) / 2, (view.minY + view.maxY) / 2, 0);
}

VariableValue viewHeight(Session& host) {
  const geometry::Box view = currentView(host);
  return view.maxY - view.minY;
}

// ---- the table ------------------------------------------------------------------------------------------------------

constexpr Variable session(const wchar_t* name, Type type, double initial, double min, double max) {
  return {name, type, Home::Session, false, nullptr, 0, initial, min, max};
}
constexpr Variable header(const wchar_t* name, Type type, const char* headerName, int code, double initial, double min,
                          double max) {
  return {name, type, Home::Header, false, headerName, code, initial, min, max};
}
using Get = VariableValue (*)(Session&);
using Set = Result<> (*)(Session&, const VariableValue&);

constexpr Variable ofHost(const wchar_t* name, Type type, Get get) {
  return {name, type, Home::Host, true, nullptr, 0, 0, -kAny, kAny, get};
}
constexpr Variable ofDrawing(const wchar_t* name, Type type, Get get, Set set = nullptr) {
  return {name, type, Home::Drawing, set == nullptr, nullptr, 0, 0, -kAny, kAny, get, set};
}
constexpr Variable fixed(const wchar_t* name, Type type, double value) {
  return {name, type, Home::Session, true, nullptr, 0, value, -kAny, kAny};
}

// In the order of names: found by binary search.
constexpr Variable kVariables[] = {
    ofHost(L"ACADVER", Type::Text, release),
    header(L"ANGBASE", Type::Real, "$ANGBASE", 50, 0, -kAny, kAny),
    header(L"ANGDIR", Type::Short, "$ANGDIR", 70, 0, 0, 1),
    header(L"ATTMODE", Type::Short, "$ATTMODE", 70, 1, 0, 2),
    header(L"AUNITS", Type::Short, "$AUNITS", 70, 0, 0, 4),
    header(L"AUPREC", Type::Short, "$AUPREC", 70, 0, 0, 8),
    ofHost(L"CDATE", Type::Real, date),
    ofDrawing(L"CECOLOR", Type::Text, entityColor, setEntityColor),
    header(L"CELTSCALE", Type::Real, "$CELTSCALE", 40, 1, 1e-99, kAny),
    ofDrawing(L"CELTYPE", Type::Text, entityLinetype, setEntityLinetype),
    header(L"CELWEIGHT", Type::Short, "$CELWEIGHT", 370, -1, -3, 211),
    ofDrawing(L"CLAYER", Type::Text, currentLayer, setCurrentLayer),
    ofHost(L"CMDACTIVE", Type::Short, commandIsActive),
    session(L"CMDECHO", Type::Short, 1, 0, 1),
    ofHost(L"CMDNAMES", Type::Text, commandNames),
    ofDrawing(L"CTAB", Type::Text, currentTab, setCurrentTab),
    ofDrawing(L"DBMOD", Type::Short, isModified),
    ofDrawing(L"DWGNAME", Type::Text, drawingName),
    ofDrawing(L"DWGPREFIX", Type::Text, drawingFolder),
    ofDrawing(L"DWGTITLED", Type::Short, isTitled),
    header(L"ELEVATION", Type::Real, "$ELEVATION", 40, 0, -kAny, kAny),
    session(L"ERRNO", Type::Short, 0, -kAny, kAny),
    session(L"EXPERT", Type::Short, 0, 0, 5),
    ofDrawing(L"EXTMAX", Type::Point3, upperExtents),
    ofDrawing(L"EXTMIN", Type::Point3, lowerExtents),
    session(L"FILEDIA", Type::Short, 1, 0, 1),
    header(L"FILLMODE", Type::Short, "$FILLMODE", 70, 1, 0, 1),
    session(L"HIGHLIGHT", Type::Short, 1, 0, 1),
    header(L"INSUNITS", Type::Short, "$INSUNITS", 70, 6, 0, 24),
    ofDrawing(L"LASTPOINT", Type::Point3, lastPoint, setLastPoint),
    header(L"LTSCALE", Type::Real, "$LTSCALE", 40, 1, 1e-99, kAny),
    header(L"LUNITS", Type::Short, "$LUNITS", 70, 2, 1, 5),
    header(L"LUPREC", Type::Short, "$LUPREC", 70, 4, 0, 8),
    header(L"LWDISPLAY", Type::Short, "$LWDISPLAY", 290, 0, 0, 1),
    session(L"MAXACTVP", Type::Short, 64, 2, 64),
    header(L"MEASUREMENT", Type::Short, "$MEASUREMENT", 70, 0, 0, 1),
    header(L"MIRRTEXT", Type::Short, "$MIRRTEXT", 70, 0, 0, 1),
    session(L"NOMUTT", Type::Short, 0, 0, 1),
    header(L"ORTHOMODE", Type::Short, "$ORTHOMODE", 70, 0, 0, 1),
    session(L"OSMODE", Type::Short, 0, 0, 32767),
    header(L"PDMODE", Type::Short, "$PDMODE", 70, 0, 0, 100),
    header(L"PDSIZE", Type::Real, "$PDSIZE", 40, 0, -kAny, kAny),
    session(L"PICKADD", Type::Short, 2, 0, 2),
    session(L"PICKAUTO", Type::Short, 1, 0, 7),
    session(L"PICKBOX", Type::Short, 3, 0, 50),
    session(L"PICKFIRST", Type::Short, 1, 0, 1),
    session(L"PICKSTYLE", Type::Short, 1, 0, 3),
    fixed(L"PLATFORM", Type::Text, 0),
    header(L"PLINEGEN", Type::Short, "$PLINEGEN", 70, 0, 0, 1),
    session(L"PLINETYPE", Type::Short, 2, 0, 2),
    header(L"PSLTSCALE", Type::Short, "$PSLTSCALE", 70, 1, 0, 1),
    header(L"REGENMODE", Type::Short, "$REGENMODE", 70, 1, 0, 1),
    ofHost(L"SCREENSIZE", Type::Point2, screenSize),
    header(L"SORTENTS", Type::Short, "$SORTENTS", 280, 127, 0, 127),
    header(L"TEXTSIZE", Type::Real, "$TEXTSIZE", 40, 2.5, 1e-99, kAny),
    header(L"THICKNESS", Type::Real, "$THICKNESS", 40, 0, -kAny, kAny),
    ofDrawing(L"TILEMODE", Type::Short, tileMode, setTileMode),
    fixed(L"UCSFOLLOW", Type::Short, 0),
    ofHost(L"UCSNAME", Type::Text, noText),
    ofHost(L"UCSORG", Type::Point3, origin),
    ofHost(L"UCSXDIR", Type::Point3, xDirection),
    ofHost(L"UCSYDIR", Type::Point3, yDirection),
    ofDrawing(L"VIEWCTR", Type::Point3, viewCentre),
    ofDrawing(L"VIEWSIZE", Type::Real, viewHeight),
    fixed(L"WORLDUCS", Type::Short, 1),
};

bool isNumber(const Variable& variable) {
  return variable.type == Type::Short || variable.type == Type::Long || variable.type == Type::Real;
}

}  // namespace

std::optional<AcCmColor> parseColor(std::wstring_view text) {
  AcCmColor color;
  if (text::equalFolded(text, L"BYLAYER")) return color;
  if (text::equalFolded(text, L"BYBLOCK")) {
    color.setColorIndex(0);
    return color;
  }
  for (std::size_t i = 0; i < std::size(kColorNames); ++i) {
    if (!text::equalFolded(text, kColorNames[i])) continue;
    color.setColorIndex(static_cast<Adesk::UInt16>(i + 1));
    return color;
  }
  if (text.size() > 4 && text::equalFolded(text.substr(0, 4), L"RGB:")) text.remove_prefix(4);
  if (text.find(L',') != std::wstring_view::npos) {
    std::int64_t parts[3] = {0, 0, 0};
    int count = 0;
    for (std::size_t begin = 0; begin <= text.size();) {
      const std::size_t end = std::min(text.find(L',', begin), text.size());
      const auto value = parseWhole(text.substr(begin, end - begin));
      if (!value || *value < 0 || *value > 255 || count == 3) return std::nullopt;
      parts[count++] = *value;
      begin = end + 1;
    }
    if (count != 3) return std::nullopt;
    color.setRGB(static_cast<Adesk::UInt8>(parts[0]), static_cast<Adesk::UInt8>(parts[1]),
                 static_cast<Adesk::UInt8>(parts[2]));
    return color;
  }
  const auto index = parseWhole(text);
  if (!index || *index < 1 || *index > 255) return std::nullopt;
  color.setColorIndex(static_cast<Adesk::UInt16>(*index));
  return color;
}

const Variable* SystemVariables::find(std::wstring_view name) const {
  while (name.starts_with(L'\'') || name.starts_with(L'_')) name.remove_prefix(1);
  const std::wstring wanted = text::folded(name);
  const auto found = std::lower_bound(
      std::begin(kVariables), std::end(kVariables), wanted,
      [](const Variable& variable, const std::wstring& key) { return text::folded(variable.name) < key; });
  return found != std::end(kVariables) && text::folded(found->name) == wanted ? found : nullptr;
}

std::vector<std::wstring> SystemVariables::names() const {
  std::vector<std::wstring> all;
  for (const Variable& variable : kVariables) all.emplace_back(variable.name);
  return all;
}

VariableValue SystemVariables::get(const Variable& variable) const {
  Document* const document = session_.documents().current();
  if (variable.get != nullptr && (variable.home == Home::Host || document != nullptr)) return variable.get(session_);
  if (variable.home == Home::Header && document != nullptr) {
    const database::DrawingDatabase& drawing = document->drawing();
    if (variable.type == Type::Real)
      return drawing.headerReal(variable.headerName, variable.headerCode).value_or(variable.initial);
    return drawing.headerInteger(variable.headerName, variable.headerCode)
        .value_or(static_cast<std::int64_t>(variable.initial));
  }
  const auto stored = values_.find(variable.name);
  if (stored != values_.end()) return stored->second;
  if (variable.type == Type::Text) return std::wstring();
  if (variable.type == Type::Real) return variable.initial;
  if (!isNumber(variable)) return AcGePoint3d();
  return static_cast<std::int64_t>(variable.initial);
}

std::int64_t SystemVariables::integer(std::wstring_view name) const {
  const Variable* const variable = find(name);
  if (variable == nullptr) return 0;
  const VariableValue value = get(*variable);
  const auto* const number = std::get_if<std::int64_t>(&value);
  return number != nullptr ? *number : 0;
}

namespace {

/// Whether the row lets a value of its type be set.
Result<> checked(const Variable& variable, const VariableValue& value) {
  const bool isKept = variable.home == Home::Session || variable.home == Home::Header;
  if (isNumber(variable) && isKept) {
    const double number =
        variable.type == Type::Real ? std::get<double>(value) : static_cast<double>(std::get<std::int64_t>(value));
    if (!std::isfinite(number) || number < variable.minimum || number > variable.maximum) {
      if (variable.minimum <= -kAny) return refusal(L"needs a finite number");
      if (variable.maximum >= kAny) return refusal(L"needs a number above " + shownNumber(0));
      return refusal(L"needs a number from " + shownNumber(variable.minimum) + L" to " + shownNumber(variable.maximum));
    }
  }
  if (const auto* point = std::get_if<AcGePoint3d>(&value)) {
    if (!std::isfinite(point->x) || !std::isfinite(point->y) || !std::isfinite(point->z))
      return refusal(L"needs finite numbers");
  }
  return {};
}

}  // namespace

Result<> SystemVariables::store(const Variable& variable, const VariableValue& value) {
  if (variable.readOnly) return refusal(L"is read-only");
  if (value.index() != get(variable).index()) return refusal(L"needs a value of another type");
  if (Result<> fit = checked(variable, value); !fit) return fit;
  if (variable.home == Home::Session) {
    values_[variable.name] = value;
    return {};
  }
  Document* const document = session_.documents().current();
  if (document == nullptr) return refusal(L"no drawing is open");
  if (variable.set != nullptr) return variable.set(session_, value);
  // Setting what is set already leaves the drawing as it is.
  if (get(variable) == value) return {};
  if (variable.type == Type::Real) {
    document->drawing().setHeaderReal(variable.headerName, variable.headerCode, std::get<double>(value));
  } else {
    document->drawing().setHeaderInteger(variable.headerName, variable.headerCode, std::get<std::int64_t>(value));
  }
  return {};
}

Result<> SystemVariables::set(const Variable& variable, const VariableValue& value) {
  Result<> stored = store(variable, value);
  session_.editor().tell(&AcEditorReactor::sysVarChanged, variable.name, stored.ok());
  return stored;
}

Result<> SystemVariables::setText(const Variable& variable, std::wstring_view text) {
  switch (variable.type) {
    case Type::Short:
    case Type::Long:
      if (const auto whole = parseWhole(text)) return set(variable, *whole);
      return refusal(L"needs a whole number");
    case Type::Real:
      if (const auto real = parseNumber(text)) return set(variable, *real);
      return refusal(L"needs a number");
    case Type::Text:
      return set(variable, std::wstring(text));
    case Type::Point2:
    case Type::Point3: {
      const Document* const document = session_.documents().current();
      const auto point = parsePoint(text, document != nullptr ? document->lastPoint : AcGePoint3d());
      if (point) return set(variable, *point);
      return refusal(L"needs a point");
    }
  }
  return refusal(L"is unknown");
}

std::wstring SystemVariables::shown(const Variable& variable) const {
  const VariableValue value = get(variable);
  if (const auto* text = std::get_if<std::wstring>(&value)) return L"\"" + *text + L"\"";
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_wstring(*number);
  if (const auto* real = std::get_if<double>(&value)) return shownNumber(*real);
  return shownPoint(std::get<AcGePoint3d>(value));
}

}  // namespace host::editor
