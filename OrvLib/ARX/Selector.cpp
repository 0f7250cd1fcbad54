#include "OrvLib/ARX/Selector.h"

#include <string>
#include <string_view>

#include "OrvLib/ARX/AdsResbuf.h"
#include "OrvLib/Reports/Failures.h"

namespace OrvLib {
namespace {

/// One of the host's selection sets, of which it has few; gives it back.
class SelectionSet {
 public:
  /// `mode` null asks the user. Only with no filter the entities selected before the command are taken.
  SelectionSet(const ACHAR* mode, const resbuf* filter) {
    exists_ = acedSSGet(mode, nullptr, nullptr, filter, set_) == RTNORM;
  }
  SelectionSet(const SelectionSet&) = delete;
  SelectionSet& operator=(const SelectionSet&) = delete;
  ~SelectionSet() {
    if (exists_) acedSSFree(set_);
  }

  std::vector<AcDbObjectId> ids() const {
    std::vector<AcDbObjectId> ids;
    Adesk::Int32 length = 0;
    if (!exists_) return ids;
    if (acedSSLength(set_, &length) != RTNORM) throw OrvExpAcad(L"acedSSLength() failed.");
    ids.reserve(static_cast<std::size_t>(length));
    for (Adesk::Int32 i = 0; i < length; ++i) {
      ads_name name = {0, 0};
      AcDbObjectId id;
      // A command that worked on a part of the selection would look finished.
      if (acedSSName(set_, i, name) != RTNORM || acdbGetObjectId(id, name) != Acad::eOk) {
        throw OrvExpAcad(L"acedSSName() failed.");
      }
      ids.push_back(id);
    }
    return ids;
  }

 private:
  ads_name set_ = {0, 0};
  bool exists_ = false;
};

/// A layer's name as a filter takes it literally: pattern characters escaped.
std::wstring literalPattern(const ACHAR* name) {
  static constexpr std::wstring_view kPatternCharacters = L"#@.*?~[]-,`";
  std::wstring pattern;
  for (const ACHAR c : std::wstring_view(name)) {
    if (kPatternCharacters.find(c) != std::wstring_view::npos) pattern += L'`';
    pattern += c;
  }
  return pattern;
}

constexpr short kTypeCode = 0;
constexpr short kLayerCode = 8;
constexpr short kXDataCode = -3;
constexpr short kApplicationCode = 1001;

constexpr const ACHAR* kPolylineTypes = L"LWPOLYLINE,POLYLINE";
constexpr const ACHAR* kWholeDrawing = L"X";

/// Known without opening the object.
bool isPolyline(AcDbObjectId id) {
  const AcRxClass* const type = id.objectClass();
  return type != nullptr && (type->isDerivedFrom(AcDbPolyline::desc()) || type->isDerivedFrom(AcDb2dPolyline::desc()) ||
                             type->isDerivedFrom(AcDb3dPolyline::desc()));
}

}  // namespace

/// What spares the host entities of other classes. The type name POLYLINE covers meshes too, which the class tells
/// apart.
AdsResbuf Selector::filter() const {
  AdsResbuf types;
  if (polylinesOnly_) types.append(kTypeCode, kPolylineTypes);
  return types;
}

std::vector<AcDbObjectId> Selector::taken(const ACHAR* mode, const resbuf* wanted) const {
  std::vector<AcDbObjectId> ids = SelectionSet(mode, wanted).ids();
  if (polylinesOnly_) std::erase_if(ids, [](AcDbObjectId id) { return !isPolyline(id); });
  return ids;
}

std::vector<AcDbObjectId> Selector::byUser() const { return taken(nullptr, nullptr); }

std::vector<AcDbObjectId> Selector::all() const { return taken(kWholeDrawing, filter().get()); }

std::vector<AcDbObjectId> Selector::withDataOf(const ACHAR* application) const {
  AdsResbuf wanted = filter();
  wanted.append(kXDataCode);
  wanted.append(kApplicationCode, literalPattern(application));
  return taken(kWholeDrawing, wanted.get());
}

std::vector<AcDbObjectId> Selector::onLayers(const std::vector<const ACHAR*>& layers) const {
  std::wstring pattern;
  for (const ACHAR* const layer : layers) pattern += (pattern.empty() ? L"" : L",") + literalPattern(layer);
  AdsResbuf wanted = filter();
  wanted.append(kLayerCode, pattern);
  return taken(kWholeDrawing, wanted.get());
}

}  // namespace OrvLib
