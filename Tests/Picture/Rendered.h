// Pictures of small drawings as pixels, whatever their format.
#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cmath>
#include <string>

#include "Geometry/SmallDrawing.h"
#include "Picture/Picture.h"

namespace tests {

using host::picture::drawPicture;
using host::picture::Picture;
using host::picture::PictureFormat;
using host::picture::PictureOptions;

/// Drawing coordinates 0..20 both ways on 400 x 400 pixels.
inline PictureOptions twentyByTwenty() {
  PictureOptions options;
  options.widthPx = 400;
  // Widths belong to the drawing as on a sheet 1,600 pixels wide: here 96 pixels are an inch all the same.
  EXPECT_TRUE(setLineweights(options, "4"));
  EXPECT_TRUE(setWindow(options, "0,0,20,20"));
  return options;
}

/// What the user is told about a picture, made or not; empty when there is nothing to tell.
inline std::string toldOf(const host::Result<Picture>& result) {
  if (!result.ok()) return result.message();
  return result->remark ? result->remark->sentence() : std::string();
}

class Rendered {
 public:
  Rendered(SmallDatabase& db, const PictureOptions& options, PictureFormat format) {
    const host::Result<host::picture::Picture> result = drawPicture(*db, options, format);
    EXPECT_TRUE(result.ok()) << result.message();
    if (!result.ok()) return;
    const QByteArray bytes(result->bytes.data(), static_cast<qsizetype>(result->bytes.size()));
    if (format == PictureFormat::Png) {
      image_.loadFromData(bytes, "PNG");
    } else {
      image_ = QImage(options.widthPx, options.widthPx, QImage::Format_ARGB32);
      image_.fill(Qt::transparent);
      QSvgRenderer renderer(bytes);
      EXPECT_TRUE(renderer.isValid());
      QPainter painter(&image_);
      renderer.render(&painter);
    }
    area_ = result->drawn;
  }

  /// 0xRRGGBB at a place of the drawing; -1 where the picture is transparent or has no such place.
  int at(double x, double y) const {
    const QPoint p(static_cast<int>((x - area_.minX) / (area_.maxX - area_.minX) * image_.width()),
                   static_cast<int>((area_.maxY - y) / (area_.maxY - area_.minY) * image_.height()));
    if (!image_.valid(p) || qAlpha(image_.pixel(p)) == 0) return -1;
    return static_cast<int>(image_.pixel(p) & 0xFFFFFF);
  }
  /// Share of pixels in a box of the drawing that differ from the color.
  double shareUnlike(int color, double x1, double y1, double x2, double y2) const {
    int unlike = 0, all = 0;
    const double step = (area_.maxX - area_.minX) / image_.width();
    for (double x = x1 + step / 2; x < x2; x += step)
      for (double y = y1 + step / 2; y < y2; y += step, ++all)
        if (at(x, y) != color) ++unlike;
    return all > 0 ? static_cast<double>(unlike) / all : 0;
  }
  const QImage& image() const { return image_; }

 private:
  QImage image_;
  host::geometry::Box area_;
};

/// "x y rrggbb|..." checked in PNG and SVG.
inline void expectPixels(const SmallDrawing& drawing, const std::string& samples,
                         const PictureOptions& options = twentyByTwenty()) {
  SmallDatabase db(drawing);
  for (const PictureFormat format : {PictureFormat::Png, PictureFormat::Svg}) {
    const Rendered picture(db, options, format);
    std::size_t begin = 0;
    while (begin < samples.size()) {
      const std::size_t end = std::min(samples.find('|', begin), samples.size());
      double x = 0, y = 0;
      int color = 0;
      ASSERT_EQ(std::sscanf(samples.substr(begin, end - begin).c_str(), "%lf %lf %x", &x, &y,
                            reinterpret_cast<unsigned*>(&color)),
                3);
      char text[64];
      std::snprintf(text, sizeof text, "got %06X, expected %06X", static_cast<unsigned>(picture.at(x, y)),
                    static_cast<unsigned>(color));
      EXPECT_EQ(picture.at(x, y), color) << (format == PictureFormat::Png ? "PNG" : "SVG") << " at " << x << ", " << y
                                         << ": " << text;
      begin = end + 1;
    }
  }
}

/// A solid hatch over a box, or a box with a square hole.
inline std::string solidBox(int x1, int y1, int x2, int y2) {
  const auto n = [](int v) { return std::to_string(v); };
  return "10 0|20 0|30 0|210 0|220 0|230 1|2 SOLID|70 1|71 0|91 1|92 3|72 0|73 1|93 4|10 " + n(x1) + "|20 " + n(y1) +
         "|10 " + n(x2) + "|20 " + n(y1) + "|10 " + n(x2) + "|20 " + n(y2) + "|10 " + n(x1) + "|20 " + n(y2) +
         "|97 0|75 0|76 1|98 0";
}

}  // namespace tests
