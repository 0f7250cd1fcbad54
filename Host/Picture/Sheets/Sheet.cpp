#include "Picture/Sheet.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cwctype>

#include "Picture/PaperSizes.h"
#include "Text/Text.h"

namespace host::picture {
namespace {

using database::DxfType;
using database::Slot;

constexpr double kPixelsPerInch = 96;
constexpr double kMarginMm = 2;  // of the frame around the extents
constexpr double kFitSlackMm = 0.05;

std::wstring capitals(std::wstring text) {
  std::ranges::transform(text, text.begin(), [](wchar_t c) { return static_cast<wchar_t>(std::towupper(c)); });
  return text;
}

bool isAttribute(const Slot& slot) { return slot.type == DxfType::Attrib || slot.type == DxfType::AttDef; }

struct AttributeTags {
  std::wstring tag, text;
  explicit AttributeTags(const Slot& slot) {
    const auto& codec = slot.database().codec();
    database::TagCursor tags = slot.tags();
    for (database::Tag each; tags.next(each);) {
      if (each.code == 1) text = codec.decode(each.value);
      if (each.code == 2) tag = capitals(codec.decode(each.value));
    }
  }
};

/// The largest usual scale at which so many millimetres (at 1:1) fit.
double usualScale(double widthMm, double heightMm, const Box& frame) {
  const double roomX = std::max(frame.maxX - frame.minX - 2 * kMarginMm, 1.0);
  const double roomY = std::max(frame.maxY - frame.minY - 2 * kMarginMm, 1.0);
  const double least = std::max(widthMm / roomX, heightMm / roomY);
  for (double decade = 1e-6; decade < 1e12; decade *= 10)
    for (const double step : {1.0, 2.0, 2.5, 5.0})
      if (decade * step >= least * (1 - 1e-9)) return 1 / (decade * step);
  return 1 / least;
}

/// What is drawn into the template's places, in its coordinates.
class Furniture {
 public:
  Furniture(const Sheet& sheet, double mmPerMetre, EntityPainter& painter)
      : sheet_(sheet), mmPerMetre_(mmPerMetre), painter_(painter) {}

  void scaleBar(const Box& box) {
    const double height = std::min(3.0, (box.maxY - box.minY) / 3), text = std::min(2.5, height);
    // The labels of the ends hang over.
    const double most = (box.maxX - box.minX - 4 * text) / mmPerMetre_;
    if (!(most > 0)) return;
    const double decade = std::pow(10.0, std::floor(std::log10(most)));
    const double lead = most / decade;
    const int digit = lead >= 5 ? 5 : lead >= 2 ? 2 : 1;
    const double length = digit * decade, lengthMm = length * mmPerMetre_;
    const int parts = digit == 5 ? 5 : 4;
    const double left = box.minX + text, right = left + lengthMm, bottom = box.minY + 0.5, top = bottom + height / 2;
    for (int i = 0; i < parts; i += 2) {
      const double x1 = left + lengthMm * i / parts, x2 = left + lengthMm * (i + 1) / parts;
      painter_.paintArea({{x1, bottom, 0}, {x2, bottom, 0}, {x2, top, 0}, {x1, top, 0}});
    }
    constexpr double kPenMm = 0.18;
    painter_.paintLine({{left, bottom, 0}, {right, bottom, 0}, {right, top, 0}, {left, top, 0}, {left, bottom, 0}},
                       kPenMm);
    const auto label = [&](double share, const std::wstring& unit) {
      const std::wstring figures = text::fromUtf8(figure(length * share, 3));
      write(left + lengthMm * share - painter_.labelWidth(figures, text) / 2, top + text / 2, figures + unit, text);
    };
    label(0, {});
    if (digit != 5) label(0.5, {});
    label(1, L" m");
  }

  /// Up the sheet: plans are drawn with their grid upright.
  void northArrow(const Box& box) {
    const double letter = std::min((box.maxY - box.minY) * 0.22, 5.0);
    const double x = (box.minX + box.maxX) / 2, foot = box.minY + 0.5, tip = box.maxY - letter * 1.5;
    const double half = std::min(box.maxX - box.minX, tip - foot) * 0.22, notch = foot + (tip - foot) * 0.25;
    if (!(half > 0)) return;
    constexpr double kPenMm = 0.25;
    painter_.paintArea({{x, tip, 0}, {x - half, foot, 0}, {x, notch, 0}});
    painter_.paintLine({{x, tip, 0}, {x - half, foot, 0}, {x, notch, 0}, {x + half, foot, 0}, {x, tip, 0}}, kPenMm);
    const double width = painter_.labelWidth(sheet_.northLetter, letter);
    write(x - width / 2, tip + letter * 0.4, sheet_.northLetter, letter);
  }

  struct Row {
    const LegendRow* row;
    const Slot* sample;
  };
  /// Answers how many rows found no room.
  std::size_t legend(const Box& box, const std::vector<Row>& rows, double pixelsPerMm, EntityPainter& plan) {
    const double width = box.maxX - box.minX, height = box.maxY - box.minY;
    constexpr double kUsualText = 2.4, kSmallestText = 1.5, kPitch = 2.5, kLeastColumn = 42, kGap = 4;
    // Another column rather than smaller texts, as long as texts have room.
    double text = kUsualText;
    std::size_t columns = 1, perColumn = 0;
    for (;; text -= 0.1) {
      perColumn = static_cast<std::size_t>(height / (text * kPitch));
      columns = 1;
      while (perColumn * columns < rows.size() && width / static_cast<double>(columns + 1) >= kLeastColumn) ++columns;
      if (perColumn * columns >= rows.size() || text <= kSmallestText) break;
    }
    const double columnWidth = (width - kGap * static_cast<double>(columns - 1)) / static_cast<double>(columns);
    const auto pixel = [&](double x, double y) {
      return Point{(x - sheet_.paper.minX) * pixelsPerMm, (sheet_.paper.maxY - y) * pixelsPerMm};
    };
    const std::size_t shown = std::min(rows.size(), perColumn * columns);
    for (std::size_t at = 0; at < shown; ++at) {
      const std::size_t column = at / perColumn, line = at % perColumn;
      const double x = box.minX + static_cast<double>(column) * (columnWidth + kGap);
      const double y = box.maxY - static_cast<double>(line + 1) * text * kPitch + text * 0.6;
      const double swatch = text * 4;
      Box place;
      place.add(pixel(x, y - text * 0.4));
      place.add(pixel(x + swatch, y + text * 1.4));
      plan.paintSwatch(*rows[at].sample, place);
      const LegendRow& row = *rows[at].row;
      const double amountWidth = painter_.labelWidth(row.amount, text);
      const double room = columnWidth - swatch - 2 * text - amountWidth;
      const double nameWidth = painter_.labelWidth(row.name, text);
      write(x + swatch + text, y, row.name, text, nameWidth > room ? room / nameWidth : 1);
      write(x + columnWidth - amountWidth, y, row.amount, text);
    }
    return rows.size() - shown;
  }

 private:
  void write(double x, double y, const std::wstring& text, double height, double widthFactor = 1) {
    constexpr double kNarrowest = 0.3;
    geometry::LineParts label;
    label.text = text;
    label.position = {x, y, 0};
    label.height = height;
    label.widthFactor = std::max(widthFactor, kNarrowest);
    label.isRaw = true;
    painter_.paintLabel(label);
  }

  const Sheet& sheet_;
  double mmPerMetre_;
  EntityPainter& painter_;
};

}  // namespace

std::vector<std::wstring> fieldsOf(const database::DrawingDatabase& drawing) {
  std::vector<std::wstring> fields;
  const auto add = [&fields](const Slot& slot) {
    if (!isAttribute(slot) || slot.isErased()) return;
    const std::wstring tag = AttributeTags(slot).tag;
    if (!tag.empty() && std::ranges::find(fields, tag) == fields.end()) fields.push_back(tag);
  };
  for (const Slot* slot : drawing.drawOrder(drawing.modelSpace())) {
    add(*slot);
    for (const Slot* sub = slot->firstSub(); sub != nullptr; sub = sub->nextSub) add(*sub);
  }
  return fields;
}

Result<PageLayout> layOutSheet(const Box& extents, const PictureOptions& options, PictureFormat format) {
  const Sheet& sheet = *options.sheet;
  const Box area = options.window.value_or(withSize(extents));
  const double width = area.maxX - area.minX, height = area.maxY - area.minY;
  const double mmAtFull = options.metresPerUnit * 1000;
  const double frameWidth = sheet.frame.maxX - sheet.frame.minX, frameHeight = sheet.frame.maxY - sheet.frame.minY;
  const double usual = usualScale(width * mmAtFull, height * mmAtFull, sheet.frame);
  const double scale = options.scale.value_or(usual);
  PageLayout layout;
  layout.page.widthMm = sheet.paper.maxX - sheet.paper.minX;
  layout.page.heightMm = sheet.paper.maxY - sheet.paper.minY;
  layout.mmPerUnit = scale * mmAtFull;
  const double needWidth = width * layout.mmPerUnit, needHeight = height * layout.mmPerUnit;
  if (needWidth > frameWidth + kFitSlackMm || needHeight > frameHeight + kFitSlackMm)
    layout.note = "At 1:" + figure(1 / scale, 3) + " the drawing is " + figure(needWidth, 1) + " x " +
                  figure(needHeight, 1) + " mm and does not fit in the sheet's frame of " + figure(frameWidth, 1) +
                  " x " + figure(frameHeight, 1) + " mm; 1:" + figure(1 / usual, 3) + " would do.";
  if (!isRaster(format))
    layout.pixelsPerMm = kPixelsPerInch / kMmPerInch;
  else if (options.dpi)
    layout.pixelsPerMm = *options.dpi / kMmPerInch;
  else
    layout.pixelsPerMm = options.widthPx / layout.page.widthMm;
  const double k = layout.pixelsPerMm;
  Page& page = layout.page;
  page.widthPx = page.widthMm * k;
  page.heightPx = page.heightMm * k;
  if (isRaster(format)) {
    page.widthPx = std::round(page.widthPx);
    page.heightPx = std::round(page.heightPx);
    if (std::max(page.widthPx, page.heightPx) > kLargestSidePx || page.widthPx * page.heightPx > kMostPixels)
      return problemOf(Code::OutputFailed, "A picture of " + figure(page.widthPx, 0) + " x " +
                                               figure(page.heightPx, 0) +
                                               " pixels is too large; use a smaller width or --dpi.");
  }
  const double s = layout.mmPerUnit * k;
  if (!std::isfinite(s) || !(s > 0) || !(frameWidth > 0) || !(frameHeight > 0))
    return problemOf(Code::OutputFailed, "The area " + boxText(area) + " cannot be laid out on the sheet.");
  layout.frame = Box{(sheet.frame.minX - sheet.paper.minX) * k, (sheet.paper.maxY - sheet.frame.maxY) * k,
                     (sheet.frame.maxX - sheet.paper.minX) * k, (sheet.paper.maxY - sheet.frame.minY) * k};
  const double unitsX = frameWidth / layout.mmPerUnit, unitsY = frameHeight / layout.mmPerUnit;
  const double x = (area.minX + area.maxX) / 2, y = (area.minY + area.maxY) / 2;
  layout.area = {x - unitsX / 2, y - unitsY / 2, x + unitsX / 2, y + unitsY / 2};
  layout.toPicture.x = {s, 0, 0};
  layout.toPicture.y = {0, -s, 0};
  layout.toPicture.z = {0, 0, s};
  layout.toPicture.origin = {layout.frame->minX - layout.area.minX * s, layout.frame->minY + layout.area.maxY * s, 0};
  return layout;
}

std::string paintSheet(const PictureOptions& options, const PageLayout& layout, const View& view, GlyphSource& glyphs,
                       Canvas& canvas, const database::DrawingDatabase& drawing, EntityPainter& plan) {
  const Sheet& sheet = *options.sheet;
  const Box page{0, 0, layout.page.widthPx, layout.page.heightPx};
  const double k = layout.pixelsPerMm;
  View onPaper = view;
  onPaper.toPicture = {};
  onPaper.toPicture.x = {k, 0, 0};
  onPaper.toPicture.y = {0, -k, 0};
  onPaper.toPicture.z = {0, 0, k};
  onPaper.toPicture.origin = {-sheet.paper.minX * k, sheet.paper.maxY * k, 0};
  onPaper.area = page;
  PictureOptions own;
  own.background = options.background;
  own.colors = options.colors;
  EntityPainter painter(*sheet.drawing, own, glyphs, onPaper, canvas);
  std::map<std::wstring, std::wstring> fields = sheet.fields;
  const double mmPerMetre = layout.mmPerUnit / options.metresPerUnit;
  if (!sheet.scaleField.empty())
    fields.try_emplace(sheet.scaleField, L"1:" + text::fromUtf8(figure(1000 / mmPerMetre, 2)));
  std::wstring shown;
  painter.setAttributeText([&](const Slot& slot) -> const std::wstring* {
    const AttributeTags attribute(slot);
    const auto field = fields.find(attribute.tag);
    shown = field != fields.end() ? field->second : attribute.text;
    return &shown;
  });
  painter.paintSome(sheet.drawing->modelSpace(), [&sheet](const Slot& slot) {
    return std::ranges::find(sheet.placeholders, slot.layer) == sheet.placeholders.end();
  });
  plan.setArea(page);
  Furniture furniture(sheet, mmPerMetre, painter);
  if (sheet.scaleBar) furniture.scaleBar(*sheet.scaleBar);
  if (sheet.northArrow) furniture.northArrow(*sheet.northArrow);
  if (!sheet.legend) return {};
  std::vector<Furniture::Row> rows;
  for (const LegendRow& row : sheet.rows) {
    const Slot* const sample = drawing.findHandle(row.sample);
    if (sample != nullptr && plan.isShown(*sample)) rows.push_back({&row, sample});
  }
  const std::size_t left = furniture.legend(*sheet.legend, rows, k, plan);
  return left == 0 ? std::string() : "The legend has no room for " + std::to_string(left) + " of its rows.";
}

}  // namespace host::picture
