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

constexpr Variable session(const wchar_t* name, Type type, double initial, double min, double max) {
  return {name, type, Home::Session, false, nullptr, 0, initial, min, max};
}
constexpr Variable header(const wchar_t* name, Type type, const char* headerName, int code, double initial, double min,
                          double max) {
  return {name, type, Home::Header, false, headerName, code, initial, min, max};
}
constexpr Variable computed(const wchar_t* name, Type type, bool readOnly = true) {
  return {name, type, Home::Computed, readOnly, nullptr, 0, 0, -kAny, kAny};
}
constexpr Variable fixed(const wchar_t* name, Type type, double value) {
  return {name, type, Home::Session, true, nullptr, 0, value, -kAny, kAny};
}

// In the order of names: found by binary search.
constexpr Variable kVariables[] = {
    computed(L"ACADVER", Type::Text),
    header(L"ANGBASE", Type::Real, "$ANGBASE", 50, 0, -kAny, kAny),
    header(L"ANGDIR", Type::Short, "$ANGDIR", 70, 0, 0, 1),
    header(L"ATTMODE", Type::Short, "$ATTMODE", 70, 1, 0, 2),
    header(L"AUNITS", Type::Short, "$AUNITS", 70, 0, 0, 4),
    header(L"AUPREC", Type::Short, "$AUPREC", 70, 0, 0, 8),
    computed(L"CDATE", Type::Real),
    computed(L"CECOLOR", Type::Text, false),
    header(L"CELTSCALE", Type::Real, "$CELTSCALE", 40, 1, 1e-99, kAny),
    computed(L"CELTYPE", Type::Text, false),
    header(L"CELWEIGHT", Type::Short, "$CELWEIGHT", 370, -1, -3, 211),
    computed(L"CLAYER", Type::Text, false),
    computed(L"CMDACTIVE", Type::Short),
    session(L"CMDECHO", Type::Short, 1, 0, 1),
    computed(L"CMDNAMES", Type::Text),
    computed(L"CTAB", Type::Text, false),
    computed(L"DBMOD", Type::Short),
    computed(L"DWGNAME", Type::Text),
    computed(L"DWGPREFIX", Type::Text),
    computed(L"DWGTITLED", Type::Short),
    header(L"ELEVATION", Type::Real, "$ELEVATION", 40, 0, -kAny, kAny),
    session(L"ERRNO", Type::Short, 0, -kAny, kAny),
    session(L"EXPERT", Type::Short, 0, 0, 5),
    computed(L"EXTMAX", Type::Point3),
    computed(L"EXTMIN", Type::Point3),
    session(L"FILEDIA", Type::Short, 1, 0, 1),
    header(L"FILLMODE", Type::Short, "$FILLMODE", 70, 1, 0, 1),
    session(L"HIGHLIGHT", Type::Short, 1, 0, 1),
    header(L"INSUNITS", Type::Short, "$INSUNITS", 70, 6, 0, 24),
    computed(L"LASTPOINT", Type::Point3, false),
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
    computed(L"SCREENSIZE", Type::Point2),
    header(L"SORTENTS", Type::Short, "$SORTENTS", 280, 127, 0, 127),
    header(L"TEXTSIZE", Type::Real, "$TEXTSIZE", 40, 2.5, 1e-99, kAny),
    header(L"THICKNESS", Type::Real, "$THICKNESS", 40, 0, -kAny, kAny),
    computed(L"TILEMODE", Type::Short, false),
    fixed(L"UCSFOLLOW", Type::Short, 0),
    computed(L"UCSNAME", Type::Text),
    computed(L"UCSORG", Type::Point3),
    computed(L"UCSXDIR", Type::Point3),
    computed(L"UCSYDIR", Type::Point3),
    computed(L"VIEWCTR", Type::Point3),
    computed(L"VIEWSIZE", Type::Real),
    fixed(L"WORLDUCS", Type::Short, 1),
};

std::wstring nameOfRecord(AcDbObjectId id) {
  return id.isNull() ? std::wstring() : id.slot()->database().recordName(*id.slot());
}

constexpr const wchar_t* kColorNames[] = {L"red", L"yellow", L"green", L"cyan", L"blue", L"magenta", L"white"};

std::wstring colorText(const AcCmColor& color) {
  if (color.isByColor())
    return L"RGB:" + std::to_wstring(color.red()) + L"," + std::to_wstring(color.green()) + L"," +
           std::to_wstring(color.blue());
  if (color.isByLayer()) return L"BYLAYER";
  if (color.isByBlock()) return L"BYBLOCK";
  return std::to_wstring(color.colorIndex());
}

geometry::Box spaceExtents(Session& host) {
  return host.finder.extents(host.documents.current()->drawing(), host.currentSpace());
}

VariableValue computedValue(Session& host, std::wstring_view name) {
  if (name == L"ACADVER") return std::wstring(L"20.1");
  if (name == L"CMDACTIVE") return std::int64_t{host.commandDepth() > 0 ? 1 : 0};
  if (name == L"CMDNAMES") return host.runningNames();
  if (name == L"SCREENSIZE") return AcGePoint3d(EntityFinder::kScreenPixels, EntityFinder::kScreenPixels, 0);
  // Runs of the same input give the same drawing: the date is no part of it.
  if (name == L"CDATE") return 0.0;
  if (name == L"UCSNAME") return std::wstring();
  if (name == L"UCSORG") return AcGePoint3d();
  if (name == L"UCSXDIR") return AcGePoint3d(1, 0, 0);
  if (name == L"UCSYDIR") return AcGePoint3d(0, 1, 0);
  Document* const document = host.documents.current();
  if (document == nullptr) {
    for (const Variable& variable : kVariables) {
      if (name != variable.name) continue;
      if (variable.type == Type::Text) return std::wstring();
      if (variable.type == Type::Real) return 0.0;
      if (variable.type == Type::Point2 || variable.type == Type::Point3) return AcGePoint3d();
    }
    return std::int64_t{0};
  }
  const AcDbDatabase& db = *document->database();
  if (name == L"CECOLOR") return colorText(db.cecolor());
  if (name == L"CELTYPE") return nameOfRecord(db.celtype());
  if (name == L"CLAYER") return nameOfRecord(db.clayer());
  if (name == L"CTAB") return document->currentLayout;
  if (name == L"DBMOD") return std::int64_t{document->drawing().isModified() ? 1 : 0};
  if (name == L"DWGTITLED") return std::int64_t{document->file().empty() ? 0 : 1};
  if (name == L"DWGNAME")
    return document->file().empty() ? std::wstring(document->fileName())
                                    : text::fromUtf8(document->file().filename().string());
  if (name == L"DWGPREFIX") {
    const std::string folder = document->file().parent_path().string();
    return text::fromUtf8(folder.empty() || folder.ends_with('/') ? folder : folder + "/");
  }
  if (name == L"LASTPOINT") return document->lastPoint;
  if (name == L"TILEMODE") return std::int64_t{text::equalFolded(document->currentLayout, L"Model") ? 1 : 0};
  if (name == L"EXTMIN" || name == L"EXTMAX") {
    const geometry::Box box = spaceExtents(host);
    if (box.isEmpty()) return name == L"EXTMIN" ? AcGePoint3d(1e20, 1e20, 1e20) : AcGePoint3d(-1e20, -1e20, -1e20);
    return name == L"EXTMIN" ? AcGePoint3d(box.minX, box.minY, 0) : AcGePoint3d(box.maxX, box.maxY, 0);
  }
  const geometry::Box view = currentView(host);
  if (name == L"VIEWCTR") return AcGePoint3d((view.minX + view.maxX) / 2, (view.minY + view.maxY) / 2, 0);
  return view.maxY - view.minY;  // VIEWSIZE
}

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
  if (variable.home == Home::Computed) return computedValue(session_, variable.name);
  Document* const document = session_.documents.current();
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

std::optional<std::wstring> SystemVariables::setSpecial(const Variable& variable, const VariableValue& value,
                                                        bool& handled) {
  const std::wstring_view name = variable.name;
  handled = variable.home == Home::Computed;
  if (!handled) return std::nullopt;
  Document* const document = session_.documents.current();
  if (document == nullptr) return L"no drawing is open";
  AcDbDatabase& db = *document->database();
  database::DrawingDatabase& drawing = document->drawing();
  if (name == L"LASTPOINT") {
    document->lastPoint = std::get<AcGePoint3d>(value);
    return std::nullopt;
  }
  if (name == L"TILEMODE") {
    const auto wanted = std::get<std::int64_t>(value);
    if (wanted != 0 && wanted != 1) return L"must be 0 or 1";
    if ((wanted == 1) == text::equalFolded(document->currentLayout, L"Model")) return std::nullopt;
    const auto layouts = drawing.layouts();
    if (wanted == 0 && layouts.size() < 2) return L"the drawing has no paper layout";
    session_.switchLayout(wanted == 1 ? std::wstring(L"Model") : layouts[1].first);
    return std::nullopt;
  }
  const std::wstring& text = std::get<std::wstring>(value);
  if (name == L"CTAB") {
    if (text::equalFolded(document->currentLayout, text)) return std::nullopt;
    return session_.switchLayout(text) ? std::nullopt : std::optional(L"no layout is named \"" + text + L"\"");
  }
  if (name == L"CLAYER") {
    database::Slot* const layer = drawing.findRecord(database::DxfType::Layer, text);
    if (layer == nullptr) return L"cannot find layer \"" + text + L"\"";
    database::Tag tag;
    for (database::TagCursor tags = layer->tags(); tags.next(tag);) {
      if (tag.code == 70 && (tag.integer() & 1) != 0) return L"layer \"" + text + L"\" is frozen";
    }
    return db.setClayer(AcDbObjectId(layer)) == Acad::eOk ? std::nullopt
                                                          : std::optional<std::wstring>(L"cannot be made current");
  }
  if (name == L"CELTYPE") {
    database::Slot* const linetype = drawing.findRecord(database::DxfType::LineType, text);
    if (linetype == nullptr) return L"linetype \"" + text + L"\" is not loaded";
    return db.setCeltype(AcDbObjectId(linetype)) == Acad::eOk ? std::nullopt
                                                              : std::optional<std::wstring>(L"cannot be made current");
  }
  if (name == L"CECOLOR") {
    const std::optional<AcCmColor> color = parseColor(text);
    if (!color) return L"needs BYLAYER, BYBLOCK, a colour from 1 to 255, a colour name or RGB:r,g,b";
    return db.setCecolor(*color) == Acad::eOk ? std::nullopt : std::optional<std::wstring>(L"cannot be set");
  }
  return L"is read-only";
}

std::optional<std::wstring> SystemVariables::set(const Variable& variable, const VariableValue& value) {
  const auto attempt = [&]() -> std::optional<std::wstring> {
    if (variable.readOnly) return L"is read-only";
    if (value.index() != get(variable).index()) return L"needs a value of another type";
    if (isNumber(variable) && variable.home != Home::Computed) {
      const double number =
          variable.type == Type::Real ? std::get<double>(value) : static_cast<double>(std::get<std::int64_t>(value));
      if (!std::isfinite(number) || number < variable.minimum || number > variable.maximum) {
        const bool isOpen = variable.maximum >= kAny;
        if (variable.minimum <= -kAny) return L"needs a finite number";
        if (isOpen) return L"needs a number above " + shownNumber(0);
        return L"needs a number from " + shownNumber(variable.minimum) + L" to " + shownNumber(variable.maximum);
      }
    }
    if (const auto* point = std::get_if<AcGePoint3d>(&value)) {
      if (!std::isfinite(point->x) || !std::isfinite(point->y) || !std::isfinite(point->z))
        return L"needs finite numbers";
    }
    bool handled = false;
    std::optional<std::wstring> problem = setSpecial(variable, value, handled);
    if (handled) return problem;
    if (variable.home == Home::Session) {
      values_[variable.name] = value;
      return std::nullopt;
    }
    Document* const document = session_.documents.current();
    if (document == nullptr) return L"no drawing is open";
    // Setting what is set already leaves the drawing as it is.
    if (get(variable) == value) return std::nullopt;
    if (variable.type == Type::Real) {
      document->drawing().setHeaderReal(variable.headerName, variable.headerCode, std::get<double>(value));
    } else {
      document->drawing().setHeaderInteger(variable.headerName, variable.headerCode, std::get<std::int64_t>(value));
    }
    return std::nullopt;
  };
  std::optional<std::wstring> problem = attempt();
  session_.editor.tell(&AcEditorReactor::sysVarChanged, variable.name, !problem.has_value());
  return problem;
}

std::optional<std::wstring> SystemVariables::setText(const Variable& variable, std::wstring_view text) {
  switch (variable.type) {
    case Type::Short:
    case Type::Long:
      if (const auto whole = parseWhole(text)) return set(variable, *whole);
      return L"needs a whole number";
    case Type::Real:
      if (const auto real = parseNumber(text)) return set(variable, *real);
      return L"needs a number";
    case Type::Text:
      return set(variable, std::wstring(text));
    case Type::Point2:
    case Type::Point3: {
      const Document* const document = session_.documents.current();
      const auto point = parsePoint(text, document != nullptr ? document->lastPoint : AcGePoint3d());
      if (point) return set(variable, *point);
      return L"needs a point";
    }
  }
  return L"is unknown";
}

std::wstring SystemVariables::shown(const Variable& variable) const {
  const VariableValue value = get(variable);
  if (const auto* text = std::get_if<std::wstring>(&value)) return L"\"" + *text + L"\"";
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_wstring(*number);
  if (const auto* real = std::get_if<double>(&value)) return shownNumber(*real);
  return shownPoint(std::get<AcGePoint3d>(value));
}

}  // namespace host::editor
