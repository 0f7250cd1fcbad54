#include "Tolmex/ShadowRecord.h"

#include <cmath>
#include <string_view>

#include "OrvLib/ARX/HostInterface.h"
#include "Tolmex/Names.h"

namespace OrvLib {
namespace {

namespace keys = shadow_keys;

constexpr short kFirstCodeWithoutText = 10;

std::optional<double> numberOf(const resbuf& value) {
  const short code = value.restype;
  if (code >= 60 && code < 80) return value.resval.rint;
  if (code >= 90 && code < 100) return value.resval.rlong;
  if (code >= 38 && code < 60 && std::isfinite(value.resval.rreal)) return value.resval.rreal;
  return std::nullopt;
}

std::optional<double> numberBehind(std::wstring_view key, const resbuf* chain) {
  for (const resbuf* item = chain; item != nullptr; item = item->rbnext) {
    const bool isText = item->restype >= 0 && item->restype < kFirstCodeWithoutText;
    if (!isText || item->resval.rstring == nullptr || key != item->resval.rstring) continue;
    return item->rbnext != nullptr ? numberOf(*item->rbnext) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

ShadowRecord readShadowRecord(const resbuf* chain) {
  return {numberBehind(keys::kAngle, chain), numberBehind(keys::kColor, chain), numberBehind(keys::kLength, chain),
          numberBehind(keys::kScale, chain), numberBehind(keys::kHatchType, chain)};
}

}  // namespace OrvLib
