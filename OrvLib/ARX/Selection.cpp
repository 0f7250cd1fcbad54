#include "OrvLib/ARX/Selection.h"

#include <string>
#include <string_view>

#include "OrvLib/ARX/AdsResbuf.h"
#include "OrvLib/ARX/Failures.h"

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

std::vector<AcDbObjectId> polylinesOf(std::vector<AcDbObjectId> ids) {
  std::erase_if(ids, [](AcDbObjectId id) { return !isPolyline(id); });
  return ids;
}

constexpr short kTypeCode = 0;
constexpr short kLayerCode = 8;
constexpr short kXDataCode = -3;
constexpr short kApplicationCode = 1001;
// The type name POLYLINE covers meshes too, which the class tells apart.
constexpr const ACHAR* kPolylineTypes = L"LWPOLYLINE,POLYLINE";

}  // namespace

std::vector<AcDbObjectId> selectByUser() { return SelectionSet(nullptr, nullptr).ids(); }

std::vector<AcDbObjectId> selectPolylinesByUser() { return polylinesOf(selectByUser()); }

std::vector<AcDbObjectId> selectAllPolylines() {
  AdsResbuf filter;
  filter.append(kTypeCode, kPolylineTypes);
  return polylinesOf(SelectionSet(L"X", filter.get()).ids());
}

std::vector<AcDbObjectId> selectTaggedPolylines(const ACHAR* application) {
  AdsResbuf filter;
  filter.append(kTypeCode, kPolylineTypes);
  filter.append(kXDataCode);
  filter.append(kApplicationCode, literalPattern(application));
  return polylinesOf(SelectionSet(L"X", filter.get()).ids());
}

std::vector<AcDbObjectId> selectLayers(const std::vector<const ACHAR*>& layers) {
  std::wstring pattern;
  for (const ACHAR* const layer : layers) pattern += (pattern.empty() ? L"" : L",") + literalPattern(layer);
  AdsResbuf filter;
  filter.append(kLayerCode, pattern);
  return SelectionSet(L"X", filter.get()).ids();
}

bool isPolyline(AcDbObjectId id) {
  const AcRxClass* const type = id.objectClass();
  return type != nullptr && (type->isDerivedFrom(AcDbPolyline::desc()) || type->isDerivedFrom(AcDb2dPolyline::desc()) ||
                             type->isDerivedFrom(AcDb3dPolyline::desc()));
}

}  // namespace OrvLib
