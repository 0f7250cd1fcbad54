#include "Import/BaseMap.h"

#include <algorithm>
#include <array>
#include <vector>

namespace host::import {
namespace {

constexpr std::string_view kBegin = ":sijainnit>", kPlaceEnd = ":Sijainti>";
constexpr std::array<std::string_view, 4> kKinds = {":alue>", ":keskilinja>", ":reunaviiva>", ":referenssipiste>"};

/// 0 for the best kind of place.
std::size_t rankOf(std::string_view place) {
  std::size_t rank = 0;
  while (rank < kKinds.size() && place.find(kKinds[rank]) == std::string_view::npos) ++rank;
  return rank;
}

/// The places of one thing, each with its tags; what stands between them goes with the one before.
std::vector<std::string_view> placesOf(std::string_view text) {
  std::vector<std::string_view> places;
  while (!text.empty()) {
    const std::size_t begin = text.find(kPlaceEnd);
    const std::size_t end = begin == std::string_view::npos ? begin : text.find(kPlaceEnd, begin + 1);
    const std::size_t length = end == std::string_view::npos ? text.size() : end + kPlaceEnd.size();
    places.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return places;
}

}  // namespace

bool isBaseMap(std::string_view beginning) {
  return beginning.find("palvelu.fi/gml/kantakartta") != std::string_view::npos;
}

std::string withOnePlaceEach(std::string_view gml) {
  std::string out;
  out.reserve(gml.size());
  for (;;) {
    const std::size_t begin = gml.find(kBegin);
    const std::size_t end = begin == std::string_view::npos ? begin : gml.find(kBegin, begin + 1);
    if (end == std::string_view::npos) break;
    // The end tag begins before the mark, with its own "</" and prefix.
    const std::size_t inside = begin + kBegin.size(), behind = gml.rfind('<', end);
    out += gml.substr(0, inside);
    const std::vector<std::string_view> places = placesOf(gml.substr(inside, behind - inside));
    std::size_t best = kKinds.size();
    for (const std::string_view place : places) best = std::min(best, rankOf(place));
    for (const std::string_view place : places) {
      if (best == kKinds.size() || rankOf(place) == best) out += place;
    }
    out += gml.substr(behind, end + kBegin.size() - behind);
    gml.remove_prefix(end + kBegin.size());
  }
  return out.append(gml);
}

}  // namespace host::import
