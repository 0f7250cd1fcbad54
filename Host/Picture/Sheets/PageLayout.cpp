#include "Picture/PageLayout.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Picture/PaperSizes.h"

namespace host::picture {

using geometry::Box;

namespace {

constexpr double kPixelsPerInch = 96;
constexpr double kMarginShare = 0.03;             // of the larger side, around the extents
constexpr double kPaperMarginMm = 10;             // when the area is fitted to a paper
constexpr double kFlattest = 0.1, kSteepest = 4;  // height to width of pictures that follow the extents
constexpr double kFitSlackMm = 0.05;
constexpr double kLeastPageMm = 0.1;

double width(const Box& b) { return b.maxX - b.minX; }
double height(const Box& b) { return b.maxY - b.minY; }

Box grown(const Box& b, double dx, double dy) { return {b.minX - dx, b.minY - dy, b.maxX + dx, b.maxY + dy}; }

Box withForm(const Box& b) {
  const double w = width(b), h = height(b);
  if (h < w * kFlattest) return grown(b, 0, (w * kFlattest - h) / 2);
  if (h > w * kSteepest) return grown(b, (h / kSteepest - w) / 2, 0);
  return b;
}

bool fits(double needWidth, double needHeight, double paperWidth, double paperHeight) {
  return needWidth <= paperWidth + kFitSlackMm && needHeight <= paperHeight + kFitSlackMm;
}

std::string paperName(const PaperSize& paper) {
  if (paper.name.empty()) return figure(paper.widthMm, 1) + " x " + figure(paper.heightMm, 1) + " mm";
  return paper.name + (paper.widthMm > paper.heightMm ? " landscape" : " portrait");
}

std::string misfitNote(double needWidth, double needHeight, const PaperSize& paper, double scale) {
  std::string note = "At 1:" + figure(1 / scale, 3) + " the drawing is " + figure(needWidth, 1) + " x " +
                     figure(needHeight, 1) + " mm and does not fit on " + paperName(paper) + ": ";
  const double overWidth = needWidth - paper.widthMm, overHeight = needHeight - paper.heightMm;
  if (overWidth > kFitSlackMm) note += figure(overWidth, 1) + " mm too wide";
  if (overHeight > kFitSlackMm)
    note += (overWidth > kFitSlackMm ? " and " : "") + figure(overHeight, 1) + " mm too high";
  for (const PaperSize& size : paperSizes()) {
    if (fits(needWidth, needHeight, size.widthMm, size.heightMm))
      return note + "; " + size.name + " portrait would do.";
    if (fits(needWidth, needHeight, size.heightMm, size.widthMm))
      return note + "; " + size.name + " landscape would do.";
  }
  const PaperSize& largest = paperSizes().back();
  const double upright = std::min(largest.widthMm / needWidth, largest.heightMm / needHeight);
  const double across = std::min(largest.heightMm / needWidth, largest.widthMm / needHeight);
  const double best = std::max(upright, across) * scale;
  return note + "; no paper up to A0 would do at this scale, A0 would at 1:" + figure(std::ceil(1 / best), 0) + ".";
}

/// Why a page cannot be so large.
std::optional<Problem> sizeProblem(const Page& page, PictureFormat format) {
  if (isRaster(format)) {
    if (page.widthPx <= kLargestSidePx && page.heightPx <= kLargestSidePx &&
        page.widthPx * page.heightPx <= kMostPixels)
      return std::nullopt;
    return problemOf(Code::OutputFailed, "A picture of " + figure(page.widthPx, 0) + " x " + figure(page.heightPx, 0) +
                                             " pixels is too large; use a smaller width or --dpi.");
  }
  constexpr double kLargestPageMm = 5000;
  if (page.widthMm <= kLargestPageMm && page.heightMm <= kLargestPageMm) return std::nullopt;
  return problemOf(Code::OutputFailed, "A page of " + figure(page.widthMm, 1) + " x " + figure(page.heightMm, 1) +
                                           " mm is too large; pages may be up to " + figure(kLargestPageMm, 0) +
                                           " mm, so use a smaller scale.");
}

}  // namespace

std::string figure(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  std::string s(text);
  if (s.find('.') != std::string::npos) {
    s.erase(s.find_last_not_of('0') + 1);
    if (s.ends_with('.')) s.pop_back();
  }
  return s == "-0" ? "0" : s;
}

Box withSize(const Box& b) {
  const double size = std::max(width(b), height(b));
  const double least = size > 0 ? size * 0.05 : 1;
  return grown(b, std::max(0.0, (least - width(b)) / 2), std::max(0.0, (least - height(b)) / 2));
}

std::string boxText(const Box& box) {
  const double size = std::max(width(box), height(box));
  const int decimals = size >= 100 ? 1 : size >= 1 ? 3 : 6;
  return "(" + figure(box.minX, decimals) + ", " + figure(box.minY, decimals) + ") - (" + figure(box.maxX, decimals) +
         ", " + figure(box.maxY, decimals) + ")";
}

Result<PageLayout> layOutPage(const Box& extents, const PictureOptions& options, PictureFormat format) {
  PageLayout layout;
  const bool isRaster = picture::isRaster(format);
  double widthPx = options.widthPx;
  double penScale = 1;
  Box area = options.window.value_or(withSize(extents));
  double pixelsPerUnit = 0;
  const double mmPerUnit = options.scale.value_or(0) * options.metresPerUnit * 1000;

  if (options.paper) {
    PaperSize paper = *options.paper;
    if (paper.mayTurn && (width(area) > height(area)) != (paper.widthMm > paper.heightMm))
      std::swap(paper.widthMm, paper.heightMm);
    layout.page.widthMm = paper.widthMm;
    layout.page.heightMm = paper.heightMm;
    double scale = mmPerUnit;
    if (!options.scale) {
      const double margin = std::min({kPaperMarginMm, paper.widthMm / 10, paper.heightMm / 10});
      scale = std::min((paper.widthMm - 2 * margin) / width(area), (paper.heightMm - 2 * margin) / height(area));
    } else if (!fits(width(area) * scale, height(area) * scale, paper.widthMm, paper.heightMm)) {
      layout.note = misfitNote(width(area) * scale, height(area) * scale, paper, *options.scale);
    }
    if (options.dpi) widthPx = std::round(paper.widthMm / kMmPerInch * *options.dpi);
    layout.pixelsPerMm = widthPx / paper.widthMm;
    pixelsPerUnit = scale * layout.pixelsPerMm;
    layout.area = grown(area, (paper.widthMm / scale - width(area)) / 2, (paper.heightMm / scale - height(area)) / 2);
  } else {
    if (!options.window) {
      const double margin = kMarginShare * std::max(width(area), height(area));
      area = withForm(grown(area, margin, margin));
    }
    layout.area = area;
    // Lines belong to the drawing: without paper and scale it is drawn as on a sheet of the default width, and a
    // picture of another width is that one made larger or smaller.
    if (options.scale)
      layout.page.widthMm = width(area) * mmPerUnit;
    else if (isRaster)
      layout.page.widthMm = PictureOptions::kDefaultWidthPx / kPixelsPerInch * kMmPerInch;
    else
      layout.page.widthMm = widthPx / kPixelsPerInch * kMmPerInch;
    if (!options.scale && !isRaster) penScale = widthPx / PictureOptions::kDefaultWidthPx;
    if (options.scale && options.dpi)
      widthPx = std::max(1.0, std::round(layout.page.widthMm / kMmPerInch * *options.dpi));
    layout.page.heightMm = layout.page.widthMm * height(area) / width(area);
    layout.pixelsPerMm = widthPx / layout.page.widthMm;
    pixelsPerUnit = widthPx / width(area);
  }
  if (!isRaster) {
    // Vector pages are laid out at a fixed resolution, whatever their width in pixels would be.
    const double change = kPixelsPerInch / kMmPerInch / layout.pixelsPerMm;
    layout.pixelsPerMm *= change;
    pixelsPerUnit *= change;
  }
  Page& page = layout.page;
  page.widthPx = page.widthMm * layout.pixelsPerMm;
  page.heightPx = page.heightMm * layout.pixelsPerMm;
  layout.pixelsPerMm *= penScale;
  if (isRaster) {
    page.widthPx = widthPx;
    page.heightPx = std::max(1.0, std::round(page.heightPx));
  }
  if (std::optional<Problem> problem = sizeProblem(page, format)) return *std::move(problem);
  if (!std::isfinite(pixelsPerUnit) || !(pixelsPerUnit > 0) || page.widthMm < kLeastPageMm ||
      page.heightMm < kLeastPageMm) {
    return problemOf(Code::OutputFailed, "The area " + boxText(area) + " cannot be laid out on a page.");
  }
  const double s = pixelsPerUnit;
  layout.toPicture.x = {s, 0, 0};
  layout.toPicture.y = {0, -s, 0};
  layout.toPicture.z = {0, 0, s};
  layout.toPicture.origin = {-layout.area.minX * s, layout.area.maxY * s, 0};
  return layout;
}

Result<PageLayout> layOutPaper(const PaperPlace& place, const PictureOptions& options, PictureFormat format) {
  PageLayout layout;
  layout.area = place.paper;
  Page& page = layout.page;
  page.widthMm = width(place.paper) * place.mmPerUnit;
  page.heightMm = height(place.paper) * place.mmPerUnit;
  layout.pixelsPerMm = kPixelsPerInch / kMmPerInch;
  if (isRaster(format)) layout.pixelsPerMm = options.dpi ? *options.dpi / kMmPerInch : options.widthPx / page.widthMm;
  page.widthPx = page.widthMm * layout.pixelsPerMm;
  page.heightPx = page.heightMm * layout.pixelsPerMm;
  if (isRaster(format)) {
    page.widthPx = std::max(1.0, std::round(page.widthPx));
    page.heightPx = std::max(1.0, std::round(page.heightPx));
  }
  if (std::optional<Problem> problem = sizeProblem(page, format)) return *std::move(problem);
  const double s = place.mmPerUnit * layout.pixelsPerMm;
  if (!std::isfinite(s) || !(s > 0) || page.widthMm < kLeastPageMm || page.heightMm < kLeastPageMm)
    return problemOf(Code::OutputFailed,
                     "The layout's paper " + boxText(place.paper) + " cannot be laid out on a page.");
  layout.toPicture.x = {s, 0, 0};
  layout.toPicture.y = {0, -s, 0};
  layout.toPicture.z = {0, 0, s};
  layout.toPicture.origin = {-place.paper.minX * s, place.paper.maxY * s, 0};
  if (place.window) {
    layout.frame.emplace();
    layout.frame->add(layout.toPicture.plan({place.window->minX, place.window->minY, 0}));
    layout.frame->add(layout.toPicture.plan({place.window->maxX, place.window->maxY, 0}));
  }
  return layout;
}

}  // namespace host::picture
