#include "Picture/Formats/HtmlWriter.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "Picture/Formats/SvgWriter.h"

// The page around a picture (page.html), behind its length.
extern "C" const unsigned char tolmexWebPage[];

namespace host::picture {
namespace {

std::string_view pageText() {
  std::uint64_t size = 0;
  std::memcpy(&size, tolmexWebPage, sizeof size);
  return {reinterpret_cast<const char*>(tolmexWebPage) + sizeof size, static_cast<std::size_t>(size)};
}

std::string legendOf(const DisplayNotes& notes) {
  constexpr double kMmPerPixel = 25.4 / 96;
  const Page small{kSwatchWidthPx * kMmPerPixel, kSwatchHeightPx * kMmPerPixel, kSwatchWidthPx, kSwatchHeightPx, {}};
  std::string rows;
  for (std::size_t i = 0; i < notes.swatches.size(); ++i) {
    const DisplayNotes::Swatch& swatch = notes.swatches[i];
    rows += "<li>" + writeSvg(*swatch.list, small, {}, {true, "s" + std::to_string(i)}) + "<span>" +
            markupText(swatch.name) + "</span><span class=\"amount\">" + markupText(swatch.amount) + "</span></li>\n";
  }
  return rows;
}

}  // namespace

std::string writeHtml(const DisplayList& list, const Page& page, std::optional<std::uint32_t> background) {
  char metres[48];
  std::snprintf(metres, sizeof metres, "%.9g", list.notes.metresPerPixel);
  // In the order of their places. What is put in is never looked through for places itself.
  const std::pair<std::string_view, std::string> parts[] = {
      {"@TITLE@", markupText(list.notes.title)},
      {"@PLAN@", writeSvg(list, page, background, {true, {}})},
      {"@LEGEND@", legendOf(list.notes)},
      {"@METRES@", metres},
  };
  std::string html;
  std::string_view rest = pageText();
  for (const auto& [place, part] : parts) {
    const std::size_t at = rest.find(place);
    html += rest.substr(0, at);
    html += part;
    rest.remove_prefix(at + place.size());
  }
  html += rest;
  return html;
}

}  // namespace host::picture
