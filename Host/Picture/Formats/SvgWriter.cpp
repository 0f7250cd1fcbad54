#include "Picture/Formats/SvgWriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>

#include "Picture/Fonts/Shaping.h"
#include "Picture/Glyphs.h"
#include "Picture/Images/RasterImage.h"
#include "Text/Text.h"

namespace host::picture {
namespace {

constexpr double kStepsPerPixel = 100;

/// Builds the text. Coordinates are whole steps, so that rounding never adds up along relative moves.
class Writer {
 public:
  std::string take() { return std::move(out_); }

  void text(std::string_view s) { out_ += s; }

  /// At most three decimals, no zeros at the end.
  void number(double value) {
    char text[48];
    std::snprintf(text, sizeof text, "%.3f", value);
    std::string_view s(text);
    while (s.ends_with('0')) s.remove_suffix(1);
    if (s.ends_with('.')) s.remove_suffix(1);
    out_ += s == "-0" ? "0" : s;
  }

  void base64(std::string_view bytes) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
      std::uint32_t group = 0;
      for (std::size_t i = at; i < at + 3; ++i)
        group = group << 8 | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
      for (std::size_t i = 0; i < 4; ++i) out_ += at + i > bytes.size() ? '=' : kDigits[group >> (18 - 6 * i) & 63];
    }
  }

  void color(const char* property, Color c) {
    char text[64];
    std::snprintf(text, sizeof text, " %s=\"#%02x%02x%02x\"", property, c.red, c.green, c.blue);
    out_ += text;
    if (c.alpha == 255) return;
    // The opacity of "stop-color" is "stop-opacity".
    const std::string_view name(property);
    out_ += ' ';
    out_ += name.substr(0, name.find('-'));
    out_ += "-opacity=\"";
    number(c.alpha / 255.0);
    out_ += '"';
  }

  void ring(const DisplayList& list, const DisplayRing& ring) {
    const Point* points = list.points.data() + ring.first;
    Step at = step(points[0]);
    out_ += 'M';
    pair(at);
    char command = 0;
    for (std::uint32_t i = 1; i < ring.count; ++i) {
      const Step next = step(points[i]);
      const Step move{next.x - at.x, next.y - at.y};
      if (move.x == 0 && move.y == 0 && command != 0) continue;
      if (command != 'l')
        out_ += command = 'l';
      else if (move.x >= 0)
        out_ += ' ';
      pair(move);
      at = next;
    }
    // A dot is a line without length and shows by its round ends.
    if (command == 0) out_ += "h0";
    if (ring.closed) out_ += 'z';
  }

 private:
  struct Step {
    long long x = 0, y = 0;
  };
  static Step step(Point p) { return {std::llround(p.x * kStepsPerPixel), std::llround(p.y * kStepsPerPixel)}; }

  void pair(Step s) {
    hundredths(s.x);
    if (s.y >= 0) out_ += ' ';
    hundredths(s.y);
  }
  void hundredths(long long steps) {
    char text[32];
    char* end = text;
    if (steps < 0) {
      *end++ = '-';
      steps = -steps;
    }
    const long long whole = steps / 100;
    const int rest = static_cast<int>(steps % 100);
    if (whole != 0 || rest == 0) end = std::to_chars(end, text + sizeof text, whole).ptr;
    if (rest != 0) {
      *end++ = '.';
      *end++ = static_cast<char>('0' + rest / 10);
      if (rest % 10 != 0) *end++ = static_cast<char>('0' + rest % 10);
    }
    out_.append(text, end);
  }

  std::string out_;
};

bool isStroke(const DisplayItem& item) { return item.kind == ItemKind::Stroke || item.kind == ItemKind::FlatStroke; }

bool sameLook(const DisplayItem& a, const DisplayItem& b) {
  return a.kind == b.kind && a.color == b.color && a.width == b.width && a.gradient == b.gradient;
}

void defineGradient(Writer& writer, const Gradient& gradient, const std::string& id) {
  const std::string kind = gradient.isRadial ? "radialGradient" : "linearGradient";
  writer.text("<" + kind + " id=\"" + id + "\" gradientUnits=\"userSpaceOnUse\"" +
              (gradient.isRadial ? R"( cx="0" cy="0" r="1")" : R"( x1="0" y1="0" x2="1" y2="0")") +
              " gradientTransform=\"matrix(");
  const char* separator = "";
  for (const Point& p : {gradient.axisX, gradient.axisY, gradient.origin})
    for (const double value : {p.x, p.y}) {
      writer.text(separator);
      writer.number(value);
      separator = " ";
    }
  writer.text(")\">\n");
  for (const Gradient::Stop& stop : gradient.stops) {
    writer.text("<stop offset=\"");
    writer.number(stop.offset);
    writer.text("\"");
    writer.color("stop-color", stop.color);
    writer.text("/>\n");
  }
  writer.text("</" + kind + ">\n");
}

/// The image as it is in its file, or as a PNG; cut by the clip of the same number.
void writeImage(Writer& writer, const Texture& texture, int alpha, const std::string& clip) {
  const RasterImage& image = *texture.image;
  const int width = std::max(1, image.width), height = std::max(1, image.height);
  writer.text("<g clip-path=\"url(#" + clip + ")\"><image width=\"" + std::to_string(width) + "\" height=\"" +
              std::to_string(height) + "\" preserveAspectRatio=\"none\"");
  if (alpha != 255) {
    writer.text(" opacity=\"");
    writer.number(alpha / 255.0);
    writer.text("\"");
  }
  char matrix[256];
  std::snprintf(matrix, sizeof matrix, " transform=\"matrix(%.9g %.9g %.9g %.9g %.9g %.9g)\"", texture.across.x / width,
                texture.across.y / width, texture.down.x / height, texture.down.y / height, texture.origin.x,
                texture.origin.y);
  writer.text(matrix);
  writer.text(std::string(" xlink:href=\"data:image/") + (image.isJpeg ? "jpeg" : "png") + ";base64,");
  writer.base64(fileOf(image));
  writer.text("\"/></g>\n");
}

/// Families as a list of CSS; the last one is generic.
std::string familyList(const std::vector<std::string>& families) {
  std::string list;
  for (const std::string& family : families) {
    if (!list.empty()) list += ", ";
    const bool isGeneric = &family == &families.back();
    if (!isGeneric) list += '\'';
    for (const char c : family)
      if (c != '\'' && c != '\\') list += c;
    if (!isGeneric) list += '\'';
  }
  return list;
}

/// A text in place of its outlines, which it covers where the reader has the font, and is as long as where it has not.
/// False, and nothing is written, for letters without a width or on each other.
bool writeText(Writer& writer, GlyphSource& glyphs, std::wstring_view letters, const DisplayText& text) {
  const GlyphSource::Choice& font = glyphs.choice(text.face);
  const double capitals = length(text.up);
  const double width = glyphs.width(letters, text.face) * capitals / font.narrowing;
  const Point right = text.along * (1 / width), down = text.up * (-1 / capitals);
  if (!isFinite(right) || !isFinite(down) || cross(right, down) == 0) return false;
  char matrix[256];
  // Adding nothing makes no negative zeros.
  std::snprintf(matrix, sizeof matrix, "<text transform=\"matrix(%.6g %.6g %.6g %.6g %.8g %.8g)\"", right.x + 0.0,
                right.y + 0.0, down.x + 0.0, down.y + 0.0, text.origin.x, text.origin.y);
  writer.text(matrix);
  // The length is that with all blanks.
  if (letters.front() == L' ' || letters.back() == L' ' || letters.find(L"  ") != std::wstring_view::npos)
    writer.text(" xml:space=\"preserve\"");
  writer.text(" font-family=\"");
  writer.text(markupText(familyList(font.families)) + "\" font-size=\"");
  writer.number(capitals * font.emHeight);
  writer.text(font.isBold ? "\" font-weight=\"bold" : "");
  writer.text(font.isItalic ? "\" font-style=\"italic" : "");
  writer.text("\" textLength=\"");
  writer.number(width);
  writer.text("\" lengthAdjust=\"spacingAndGlyphs\"");
  // What runs from the right begins there, as it does in drawings.
  if (needsShaping(letters)) writer.text(" style=\"unicode-bidi:plaintext\"");
  writer.text(">" + markupText(text::toUtf8(std::wstring(letters))) + "</text>");
  return true;
}

void openGroup(Writer& writer, const DisplayItem& item, const std::string& gradient) {
  writer.text("<g");
  if (!isStroke(item)) {
    if (item.gradient == DisplayItem::kPlain)
      writer.color("fill", item.color);
    else
      writer.text(" fill=\"url(#" + gradient + ")\"");
    if (item.kind == ItemKind::FillEvenOdd) writer.text(" fill-rule=\"evenodd\"");
  } else {
    writer.text(" fill=\"none\"");
    writer.color("stroke", item.color);
    writer.text(" stroke-width=\"");
    writer.number(item.width);
    writer.text(item.kind == ItemKind::FlatStroke ? "\" stroke-linecap=\"butt\" stroke-linejoin=\"miter\""
                                                  : "\" stroke-linecap=\"round\" stroke-linejoin=\"round\"");
  }
  writer.text(">\n");
}

/// Keeps the groups of layers and entities: of several clips each begins them anew.
class OriginGroups {
 public:
  OriginGroups(Writer& writer, const DisplayNotes& notes, bool isInPage)
      : writer_(writer), notes_(notes), isInPage_(isInPage) {}

  /// Whether the item begins another group.
  bool changesAt(std::size_t item) {
    bool changes = false;
    for (; next_ < notes_.runs.size() && notes_.runs[next_].firstItem <= item; ++next_) {
      wanted_ = notes_.runs[next_].origin;
      changes = true;
    }
    return changes || wanted_ != open_;
  }
  void open() {
    if (wanted_.layer != open_.layer) close();
    closeEntity();
    if (open_.layer != wanted_.layer) {
      const auto layer = notes_.layers.find(wanted_.layer);
      const std::string name = layer == notes_.layers.end() ? std::string() : markupText(layer->second);
      writer_.text(isInPage_ ? "<g data-layer=\"" + name + "\">\n"
                             : "<g inkscape:groupmode=\"layer\" inkscape:label=\"" + name + "\">\n");
    }
    open_ = wanted_;
    const auto entity = notes_.entities.find(open_.handle);
    if (open_.handle == 0 || entity == notes_.entities.end()) return;
    const EntityNote& note = entity->second;
    writer_.text(isInPage_ && note.isLine ? "<g class=\"line\">" : "<g>");
    writer_.text("<title>" + markupText(note.title) + "</title>");
    if (!note.detail.empty()) writer_.text("<desc>" + markupText(note.detail) + "</desc>");
    writer_.text("\n");
    isEntityOpen_ = true;
  }
  void close() {
    closeEntity();
    if (open_.layer != 0) writer_.text("</g>\n");
    open_ = {};
  }

 private:
  void closeEntity() {
    if (isEntityOpen_) writer_.text("</g>\n");
    isEntityOpen_ = false;
    open_.handle = 0;
  }

  Writer& writer_;
  const DisplayNotes& notes_;
  bool isInPage_;
  std::size_t next_ = 0;
  Origin wanted_, open_;
  bool isEntityOpen_ = false;
};

}  // namespace

std::string markupText(std::string_view utf8) {
  std::wstring out;
  for (const wchar_t c : text::fromUtf8(utf8)) {
    switch (c) {
      case L'<':
        out += L"&lt;";
        break;
      case L'>':
        out += L"&gt;";
        break;
      case L'&':
        out += L"&amp;";
        break;
      case L'"':
        out += L"&quot;";
        break;
      default:
        // Neither control characters, of which only the first are no XML, nor U+FFFE and U+FFFF.
        if (c >= 0x20 && (c < 0x7F || c >= 0xA0) && c != 0xFFFE && c != 0xFFFF) out += c;
    }
  }
  return text::toUtf8(out);
}

std::string writeSvg(const DisplayList& list, const Page& page, std::optional<std::uint32_t> background,
                     const SvgPlace& place) {
  Writer writer;
  if (!place.isInPage) writer.text("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
  writer.text("<svg xmlns=\"http://www.w3.org/2000/svg\"");
  // Drawing programs know layers by the attributes of one of them.
  if (!place.isInPage && !list.notes.runs.empty())
    writer.text(" xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\"");
  const auto id = [&place](char kind, std::size_t number) {
    return std::string(place.ids) + kind + std::to_string(number);
  };
  // Older readers know an image's address by the name of another standard only.
  if (!list.textures.empty()) writer.text(" xmlns:xlink=\"http://www.w3.org/1999/xlink\"");
  writer.text(" width=\"");
  writer.number(page.widthMm);
  writer.text("mm\" height=\"");
  writer.number(page.heightMm);
  writer.text("mm\" viewBox=\"0 0 ");
  writer.number(page.widthPx);
  writer.text(" ");
  writer.number(page.heightPx);
  writer.text("\">\n");
  if (background) {
    writer.text("<rect width=\"");
    writer.number(page.widthPx);
    writer.text("\" height=\"");
    writer.number(page.heightPx);
    writer.text("\"");
    writer.color("fill", {static_cast<std::uint8_t>(*background >> 16), static_cast<std::uint8_t>(*background >> 8),
                          static_cast<std::uint8_t>(*background), 255});
    writer.text("/>\n");
  }
  const auto path = [&](const DisplayItem& item, const char* attribute = "") {
    writer.text("<path d=\"");
    for (std::uint32_t i = 0; i < item.ringCount; ++i) writer.ring(list, list.rings[item.firstRing + i]);
    writer.text("\"");
    writer.text(attribute);
    writer.text("/>");
  };
  // Before everything else: readers that know no clips would draw their outlines.
  const auto isClip = [](const DisplayItem& item) { return item.kind == ItemKind::BeginClip; };
  const bool hasClips = std::ranges::any_of(list.items, isClip);
  if (!list.gradients.empty() || !list.textures.empty() || hasClips) {
    writer.text("<defs>\n");
    for (std::size_t i = 0; i < list.gradients.size(); ++i) defineGradient(writer, list.gradients[i], id('g', i));
    std::size_t defined = 0;
    for (const DisplayItem& item : list.items) {
      if (item.texture != DisplayItem::kPlain) {
        writer.text("<clipPath id=\"" + id('i', item.texture) + "\">");
        path(item);
        writer.text("</clipPath>\n");
      }
      if (!isClip(item)) continue;
      writer.text("<clipPath id=\"" + id('c', defined++) + "\">");
      // Of a ring with corners to spare parts may lie on each other.
      constexpr std::uint32_t kCorners = 4;
      path(item, list.rings[item.firstRing].count > kCorners ? " clip-rule=\"evenodd\"" : "");
      writer.text("</clipPath>\n");
    }
    writer.text("</defs>\n");
  }
  const DisplayItem* last = nullptr;
  const auto closeGroup = [&] {
    if (last != nullptr) writer.text("</g>\n");
    last = nullptr;
  };
  OriginGroups origins(writer, list.notes, place.isInPage);
  GlyphSource glyphs;
  std::size_t clips = 0, texts = 0;
  for (const DisplayItem& item : list.items) {
    const auto number = static_cast<std::size_t>(&item - list.items.data());
    while (texts < list.texts.size() && list.texts[texts].item < number) ++texts;
    const bool isText = texts < list.texts.size() && list.texts[texts].item == number && list.texts[texts].isTheItem;
    const bool isChange = origins.changesAt(number);
    const bool isEdge = item.kind == ItemKind::BeginClip || item.kind == ItemKind::EndClip;
    if (isChange || isEdge) closeGroup();
    if (isEdge) {
      origins.close();
    } else if (isChange) {
      origins.open();
    }
    if (item.kind == ItemKind::BeginClip) {
      writer.text("<g clip-path=\"url(#" + id('c', clips++) + ")\">\n");
      continue;
    }
    if (item.kind == ItemKind::EndClip) {
      writer.text("</g>\n");
      continue;
    }
    if (item.texture != DisplayItem::kPlain) {
      closeGroup();
      writeImage(writer, list.textures[item.texture], item.color.alpha, id('i', item.texture));
      continue;
    }
    if (last == nullptr || !sameLook(*last, item)) {
      closeGroup();
      openGroup(writer, item, id('g', item.gradient));
      last = &item;
    }
    const auto written = [&](const DisplayText& text) {
      return writeText(writer, glyphs, std::wstring_view(list.letters).substr(text.firstLetter, text.letterCount),
                       text);
    };
    if (!isText || !written(list.texts[texts])) path(item);
    writer.text("\n");
  }
  closeGroup();
  origins.close();
  writer.text("</svg>\n");
  return writer.take();
}

}  // namespace host::picture
