// The part of the extended data that needs no host.
#include <string_view>

#include "OrvLib/ARX/XData.h"
#include "OrvLib/DataStruct/Text.h"

namespace OrvLib {
namespace {

constexpr short kLayerName = 1003;
constexpr short kReal = 1040;
constexpr short kDistance = 1041;
constexpr short kScale = 1042;
constexpr short kShort = 1070;
constexpr short kLong = 1071;

const ACHAR* textOf(const resbuf& item) {
  const bool hasText = (item.restype >= kXDataText && item.restype <= kLayerName) || item.restype == kXDataHandle;
  return hasText ? item.resval.rstring : nullptr;
}

bool isText(const resbuf& item, std::wstring_view expected) {
  const ACHAR* text = textOf(item);
  if (text == nullptr) return false;
  // Most differ in the first characters: no looking for the end.
  for (const ACHAR c : expected) {
    if (*text++ != c) return false;
  }
  return *text == 0;
}

std::optional<std::wstring> valueText(const resbuf& item) {
  switch (item.restype) {
    case kXDataControl:
      return std::nullopt;
    case kReal:
    case kDistance:
    case kScale:
      return formatNumber(item.resval.rreal);
    case kShort:
      return std::to_wstring(item.resval.rint);
    case kLong:
      return std::to_wstring(item.resval.rlong);
    default:
      break;
  }
  const ACHAR* const text = textOf(item);
  if (text == nullptr) return std::nullopt;
  return text;
}

}  // namespace

std::optional<std::wstring> valueInChain(const resbuf* chain, const ACHAR* application, const ACHAR* key,
                                         short keyCode) {
  if (chain == nullptr || !isText(*chain, application)) return std::nullopt;
  for (const resbuf* item = chain; item != nullptr; item = item->rbnext) {
    if (item->restype != keyCode || !isText(*item, key)) continue;
    const resbuf* value = item->rbnext;
    while (value != nullptr && value->restype == kXDataControl && isText(*value, L"}")) value = value->rbnext;
    return value != nullptr ? valueText(*value) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace OrvLib
