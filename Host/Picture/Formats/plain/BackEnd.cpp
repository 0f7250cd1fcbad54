// A picture library without a toolkit: no PNG, no images in PDF, and no previews.
#include "Picture/BackEnd.h"

#include <array>
#include <charconv>

#include "Picture/Formats/HtmlWriter.h"
#include "Picture/Formats/PdfWriter.h"
#include "Picture/Formats/PixelRows.h"
#include "Picture/Formats/SvgWriter.h"
#include "Preview/FilePreview.h"
#include "adesk.h"

namespace host::picture {

std::string_view whyNot(PictureFormat format) {
  return isRaster(format) ? "This program was built without a painter; it makes SVG, PDF and web pages only."
                          : std::string_view();
}

std::string renderPicture(const DisplayList& list, const Page& page, std::optional<std::uint32_t> background,
                          PictureFormat format) {
  if (format == PictureFormat::Html) return writeHtml(list, page, background);
  if (format == PictureFormat::Pdf) return writePdf(std::array{PdfPage{&list, page, list.notes.page}}, background);
  return format == PictureFormat::Svg ? writeSvg(list, page, background) : std::string();
}

PixelRows pixelRows(const RasterImage&) { return {}; }

std::string compressed(const std::string&) { return {}; }

std::optional<std::uint32_t> colorOf(const std::string& name) {
  if (name == "white") return 0xFFFFFFU;
  if (name == "black") return 0U;
  std::string digits = name.starts_with('#') ? name.substr(1) : std::string();
  if (digits.size() == 3) digits = {digits[0], digits[0], digits[1], digits[1], digits[2], digits[2]};
  std::uint32_t rgb = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), rgb, 16);
  if (digits.size() != 6 || error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return rgb;
}

}  // namespace host::picture

// Nobody sees it: what matters is whether there would be something to see.
extern "C" ADESK_EXPORT bool tolmexDrawPreview(const host::database::DrawingDatabase& drawing,
                                               const host::preview::Canvas& canvas, host::preview::Pixels& pixels) {
  using namespace host::picture;
  if (!drawPicture(drawing, PictureOptions(), PictureFormat::Svg)) return false;
  pixels.width = canvas.width;
  pixels.height = canvas.height;
  pixels.argb.assign(static_cast<std::size_t>(canvas.width) * static_cast<std::size_t>(canvas.height),
                     canvas.background | 0xFF000000U);
  return true;
}

extern "C" ADESK_EXPORT bool tolmexDecodePreview(std::string_view, const host::preview::Canvas&,
                                                 host::preview::Pixels&) {
  return false;
}
