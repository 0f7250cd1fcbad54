// What of an export can be reckoned without a dialog.
#include <QCoreApplication>
#include <algorithm>
#include <cmath>

#include "Picture/PaperSizes.h"
#include "Window/Commands/Language.h"
#include "Window/Output/ExportDialog.h"
#include "Window/Panels/Facts.h"

namespace host::window {
namespace {

QString figure(double value) { return QString::number(value, 'g', 15); }

bool fits(double width, double height, double paperWidth, double paperHeight) {
  constexpr double kSlackMm = 0.05;
  return (width <= paperWidth + kSlackMm && height <= paperHeight + kSlackMm) ||
         (width <= paperHeight + kSlackMm && height <= paperWidth + kSlackMm);
}

}  // namespace

QString pictureOptions(const ExportChoice& choice, picture::PictureFormat format) {
  QStringList options;
  const picture::PictureOptions& picture = choice.picture;
  if (format == picture::PictureFormat::Png && picture.dpi) options += "--dpi " + figure(*picture.dpi);
  if (!choice.paper.isEmpty()) options += "--paper " + choice.paper;
  if (!choice.scale.isEmpty()) options += "--scale " + choice.scale;
  if (picture.window)
    options += "--window " + QStringList{figure(picture.window->minX), figure(picture.window->minY),
                                         figure(picture.window->maxX), figure(picture.window->maxY)}
                                 .join(',');
  if (choice.background != "white") options += "--background " + choice.background;
  if (choice.lineweights != "on") options += "--lineweights " + choice.lineweights;
  if (picture.colors == picture::ColorMode::Grayscale) options += "--grayscale";
  if (picture.colors == picture::ColorMode::Monochrome) options += "--monochrome";
  if (choice.layers != "*" && !choice.layers.isEmpty()) options += "--layers " + quotedAnswer(choice.layers);
  return options.join(' ');
}

QString misfit(const ExportChoice& choice, const geometry::Box& area, double metresPerUnit, QStringList* better) {
  if (!choice.picture.paper || !choice.picture.scale || area.isEmpty()) return {};
  const double mmPerUnit = *choice.picture.scale * metresPerUnit * 1000;
  const double width = (area.maxX - area.minX) * mmPerUnit, height = (area.maxY - area.minY) * mmPerUnit;
  double paperWidth = choice.picture.paper->widthMm, paperHeight = choice.picture.paper->heightMm;
  if (fits(width, height, paperWidth, paperHeight)) return {};
  if (width > height)
    std::tie(paperWidth, paperHeight) = std::pair(std::max(paperWidth, paperHeight), std::min(paperWidth, paperHeight));
  if (better != nullptr) {
    for (const int scale : {200, 250, 500, 1000, 2000, 5000, 10000}) {
      const double change = 1.0 / scale / *choice.picture.scale;
      if (change < 1 && fits(width * change, height * change, paperWidth, paperHeight)) {
        *better += "1:" + QString::number(scale);
        break;
      }
    }
    for (const picture::PaperSize& size : picture::paperSizes()) {
      if (!fits(width, height, size.widthMm, size.heightMm)) continue;
      *better += toQt(size.name);
      break;
    }
  }
  const auto rounded = [](double mm) { return QString::number(std::ceil(mm - 0.05), 'f', 0); };
  return QCoreApplication::translate("PicturePage", "Does not fit: %1 × %2 mm needed, %3 has %4 × %5.")
      .arg(rounded(width), rounded(height), choice.paper, rounded(paperWidth), rounded(paperHeight));
}

}  // namespace host::window
