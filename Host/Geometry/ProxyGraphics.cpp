#include "Geometry/ProxyGraphics.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <numbers>
#include <string>

#include "Curves/Bulges.h"
#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"

namespace host::geometry {
namespace {

using SpaceArc = curves::EllipseArc<AcGePoint3d>;
using database::GeometryTags;
using database::isUsable;
using database::kLargestCoordinate;
using database::Slot;
using database::Tag;

constexpr std::size_t kHeadBytes = 8;  // of the metafile: size and count; of a record: size and kind
constexpr std::size_t kMostPieces = 200'000;
constexpr std::size_t kDeepestMatrices = 64;
constexpr int kFillAlways = 1;

enum RecordKind : std::uint32_t {
  kCircle = 2,
  kCircleThroughPoints = 3,
  kArc = 4,
  kArcThroughPoints = 5,
  kPolyline = 6,
  kPolygon = 7,
  kMesh = 8,
  kShell = 9,
  kText = 10,
  kTextWithFont = 11,
  kXLine = 12,
  kRay = 13,
  kColor = 14,
  kFill = 20,
  kTrueColor = 22,
  kLineweight = 23,
  kPushMatrix = 29,
  kPushOtherMatrix = 30,
  kPopMatrix = 31,
  kPolylineWithNormal = 32,
  kLightPolyline = 33,
  kUnicodeText = 36,
  kUnicodeTextWithFont = 38,
};

/// Little-endian values from a stretch of bytes; zeros, and isShort, behind its end.
class Bytes {
 public:
  explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

  bool isShort() const { return isShort_; }
  std::size_t left() const { return bytes_.size() - at_; }
  std::uint32_t whole() {
    std::uint32_t value = 0;
    for (unsigned i = 0; i < 4; ++i) value |= static_cast<std::uint32_t>(byte()) << (8 * i);
    return value;
  }
  std::int32_t signedWhole() { return static_cast<std::int32_t>(whole()); }
  double real() {
    std::uint64_t bits = whole();
    bits |= static_cast<std::uint64_t>(whole()) << 32;
    return std::bit_cast<double>(bits);
  }
  AcGePoint3d point() {
    const double x = real(), y = real(), z = real();
    return {x, y, z};
  }
  /// Up to the ending zero; the next value begins at a multiple of four.
  std::string narrow() {
    std::string text;
    while (left() > 0) {
      const unsigned char c = byte();
      if (c == 0) break;
      text += static_cast<char>(c);
    }
    align();
    return text;
  }
  std::wstring wide() {
    std::wstring text;
    while (left() > 1) {
      unsigned unit = byte();
      unit |= static_cast<unsigned>(byte()) << 8;
      if (unit == 0) break;
      text += static_cast<wchar_t>(unit);
    }
    align();
    return text;
  }

 private:
  unsigned char byte() {
    if (at_ >= bytes_.size()) {
      isShort_ = true;
      return 0;
    }
    return static_cast<unsigned char>(bytes_[at_++]);
  }
  void align() { at_ = std::min((at_ + 3) / 4 * 4, bytes_.size()); }

  std::string_view bytes_;
  std::size_t at_ = 0;
  bool isShort_ = false;
};

/// Values packed in bits as DWG files pack them.
class Bits {
 public:
  explicit Bits(std::string_view bytes) : bytes_(bytes) {}

  bool isShort() const { return isShort_; }
  unsigned bits(int count) {
    unsigned value = 0;
    for (int i = 0; i < count; ++i, ++at_) {
      const std::size_t byte = at_ / 8;
      if (byte >= bytes_.size()) {
        isShort_ = true;
        return 0;
      }
      value = value << 1 | (static_cast<unsigned char>(bytes_[byte]) >> (7 - at_ % 8) & 1U);
    }
    return value;
  }
  unsigned bitShort() {
    switch (bits(2)) {
      case 0: {
        const unsigned low = bits(8);
        return low | bits(8) << 8;
      }
      case 1:
        return bits(8);
      case 2:
        return 0;
      default:
        return 256;
    }
  }
  std::uint32_t bitLong() {
    switch (bits(2)) {
      case 0: {
        std::uint32_t value = 0;
        for (unsigned i = 0; i < 4; ++i) value |= bits(8) << (8 * i);
        return value;
      }
      case 1:
        return bits(8);
      default:
        return 0;
    }
  }
  double rawDouble() {
    std::uint64_t value = 0;
    for (unsigned i = 0; i < 8; ++i) value |= static_cast<std::uint64_t>(bits(8)) << (8 * i);
    return std::bit_cast<double>(value);
  }
  double bitDouble() {
    switch (bits(2)) {
      case 0:
        return rawDouble();
      case 1:
        return 1;
      default:
        return 0;
    }
  }
  /// A value told by the bytes in which it differs from another.
  double doubleLike(double other) {
    const auto replaced = [&](std::initializer_list<unsigned> places) {
      auto value = std::bit_cast<std::uint64_t>(other);
      for (const unsigned place : places) {
        value &= ~(std::uint64_t{0xFF} << (8 * place));
        value |= static_cast<std::uint64_t>(bits(8)) << (8 * place);
      }
      return std::bit_cast<double>(value);
    };
    switch (bits(2)) {
      case 0:
        return other;
      case 1:
        return replaced({0, 1, 2, 3});
      case 2:
        return replaced({4, 5, 0, 1, 2, 3});
      default:
        return rawDouble();
    }
  }

 private:
  std::string_view bytes_;
  std::size_t at_ = 0;
  bool isShort_ = false;
};

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

/// The metafile: tags 310 behind the first 92 or 160 that gives a length, and no more of them than that length tells.
std::string metafile(const Slot& entity) {
  std::string bytes;
  std::size_t promised = 0;
  GeometryTags tags(entity.tags());
  for (Tag tag; tags.next(tag);) {
    if ((tag.code == 92 || tag.code == 160) && promised == 0)
      promised = static_cast<std::size_t>(std::max<std::int64_t>(tag.integer(), 0));
    if (tag.code != 310 || promised == 0) continue;
    const std::string_view hex = tag.trimmed();
    for (std::size_t i = 0; i + 1 < hex.size() && bytes.size() < promised; i += 2) {
      const int high = hexDigit(hex[i]), low = hexDigit(hex[i + 1]);
      if (high < 0 || low < 0) return bytes;
      bytes += static_cast<char>(high * 16 + low);
    }
    if (bytes.size() >= promised) break;
  }
  return bytes;
}

bool isUsable(const AcGeVector3d& v) { return std::isfinite(v.x + v.y + v.z); }

class Player {
 public:
  Player(const Slot& entity, double deviation, const TextWidth& width)
      : codec_(entity.database().codec()),
        isAfter2010_(entity.database().version() >= database::DrawingVersion::V2010),
        deviation_(deviation),
        width_(width) {}

  std::vector<ProxyPiece> play(std::string_view file) {
    for (std::size_t at = kHeadBytes; at + kHeadBytes <= file.size() && pieces_.size() < kMostPieces;) {
      Bytes head(file.substr(at, kHeadBytes));
      const std::uint32_t size = head.whole(), kind = head.whole();
      if (size < kHeadBytes || size > file.size() - at) break;
      record(kind, file.substr(at + kHeadBytes, size - kHeadBytes));
      at += size;
    }
    return std::move(pieces_);
  }

 private:
  void record(std::uint32_t kind, std::string_view data) {
    Bytes bytes(data);
    switch (kind) {
      case kCircle:
        return circle(bytes);
      case kCircleThroughPoints:
      case kArcThroughPoints:
        return throughPoints(bytes, kind == kCircleThroughPoints);
      case kArc:
        return arc(bytes);
      case kPolyline:
      case kPolygon:
      case kPolylineWithNormal:
        return polyline(bytes, kind == kPolygon);
      case kLightPolyline:
        return lightPolyline(data);
      case kMesh:
        return mesh(bytes);
      case kShell:
        return shell(bytes);
      case kText:
      case kTextWithFont:
      case kUnicodeText:
      case kUnicodeTextWithFont:
        return text(bytes, kind);
      case kXLine:
      case kRay:
        return infinite(bytes, kind == kXLine);
      default:
        return attribute(kind, bytes);
    }
  }

  void attribute(std::uint32_t kind, Bytes& bytes) {
    switch (kind) {
      case kColor: {
        const std::uint32_t index = bytes.whole();
        look_.trueColor = -1;
        look_.color = index > 0 && index < 256 ? static_cast<int>(index) : -1;
        break;
      }
      case kTrueColor: {
        // The highest byte tells the kind: by layer, by block, given, of the palette.
        const std::uint32_t value = bytes.whole();
        const std::uint32_t method = value >> 24;
        look_.trueColor = method == 0xC2 ? static_cast<std::int64_t>(value & 0xFFFFFF) : -1;
        look_.color = method == 0xC3 && (value & 0xFF) != 0 ? static_cast<int>(value & 0xFF) : -1;
        break;
      }
      case kLineweight: {
        const std::int32_t weight = bytes.signedWhole();
        look_.lineweight.reset();
        if (weight >= 0 && weight <= 211) look_.lineweight = weight;
        break;
      }
      case kFill:
        isFilled_ = bytes.whole() == kFillAlways;
        break;
      case kPushMatrix:
      case kPushOtherMatrix: {
        double m[16];
        for (double& value : m) value = bytes.real();
        if (matrices_.size() >= kDeepestMatrices) break;
        const Transform given{{m[0], m[4], m[8]}, {m[1], m[5], m[9]}, {m[2], m[6], m[10]}, {m[3], m[7], m[11]}};
        matrices_.push_back(matrices_.empty() ? given : matrices_.back().after(given));
        break;
      }
      case kPopMatrix:
        if (!matrices_.empty()) matrices_.pop_back();
        break;
      default:
        break;  // layers and linetypes are counted in ways no drawing tells; clips, markers, materials
    }
  }

  Transform matrix() const { return matrices_.empty() ? Transform{} : matrices_.back(); }

  void add(Wire wire) {
    const Transform m = matrix();
    if (!matrices_.empty())
      for (AcGePoint3d& p : wire.points) p = m.point(p);
    const auto inReach = [](const AcGePoint3d& p) {
      return isUsable(p) && std::max({std::abs(p.x), std::abs(p.y), std::abs(p.z)}) <= kLargestCoordinate;
    };
    if (wire.points.empty() || !std::ranges::all_of(wire.points, inReach)) return;
    // Pieces of one look in a row stay together.
    if (pieces_.empty() || pieces_.back().text || pieces_.back().infinite || pieces_.back().color != look_.color ||
        pieces_.back().trueColor != look_.trueColor || pieces_.back().lineweight != look_.lineweight)
      pieces_.push_back(look_);
    pieces_.back().wires.push_back(std::move(wire));
  }

  void addArc(const SpaceArc& curve) {
    Wire wire;
    flatten(curve, deviation_, wire.points);
    wire.closed = curve.isWhole();
    wire.filled = wire.closed && isFilled_;
    add(std::move(wire));
  }

  void circle(Bytes& bytes) {
    SpaceArc curve;
    curve.centre = bytes.point();
    const double radius = bytes.real();
    const AcGeVector3d normal = bytes.point().asVector();
    if (bytes.isShort() || !(radius > 0) || !isUsable(curve.centre) || !isUsable(normal)) return;
    const database::ObjectAxes axes(normal);
    curve.major = axes.ax * radius;
    curve.minor = axes.ay * radius;
    addArc(curve);
  }

  void arc(Bytes& bytes) {
    SpaceArc curve;
    curve.centre = bytes.point();
    const double radius = bytes.real();
    const AcGeVector3d normal = bytes.point().asVector(), start = bytes.point().asVector();
    curve.sweep = bytes.real();
    if (bytes.isShort() || !(radius > 0) || !isUsable(curve.centre) || !isUsable(normal) || !isUsable(start) ||
        !(start.length() > 0) || !(normal.length() > 0))
      return;
    curve.major = start.normal() * radius;
    curve.minor = normal.normal().crossProduct(start.normal()) * radius;
    addArc(curve);
  }

  void throughPoints(Bytes& bytes, bool isCircle) {
    const AcGePoint3d a = bytes.point(), b = bytes.point(), c = bytes.point();
    if (bytes.isShort() || !isUsable(a) || !isUsable(b) || !isUsable(c)) return;
    // Centre of the circle through three points of space.
    const AcGeVector3d u = b - a, v = c - a, normal = u.crossProduct(v);
    const double area = normal.dotProduct(normal);
    if (!(area > 0)) return add({.points = {a, b, c}, .corners = {}, .outline = {}});
    const AcGeVector3d toCenter =
        (normal.crossProduct(u) * v.dotProduct(v) + v.crossProduct(normal) * u.dotProduct(u)) * (1 / (2 * area));
    SpaceArc curve;
    curve.centre = a + toCenter;
    curve.major = a - curve.centre;
    curve.minor = normal.normal().crossProduct(curve.major);
    const AcGeVector3d end = c - curve.centre;
    curve.sweep = std::atan2(end.dotProduct(curve.minor), end.dotProduct(curve.major));
    if (curve.sweep <= 0) curve.sweep += 2 * std::numbers::pi;
    if (isCircle) curve.sweep = 2 * std::numbers::pi;
    addArc(curve);
  }

  void polyline(Bytes& bytes, bool closed) {
    const std::size_t count = bytes.whole();
    if (count > bytes.left() / 24) return;
    Wire wire;
    for (std::size_t i = 0; i < count; ++i) wire.points.push_back(bytes.point());
    wire.closed = closed;
    wire.filled = closed && isFilled_ && count > 2;
    add(std::move(wire));
  }

  void lightPolyline(std::string_view data) {
    constexpr unsigned kNormal = 1, kThickness = 2, kWidth = 4, kElevation = 8, kBulges = 16, kWidths = 32;
    constexpr unsigned kClosed = 512;
    Bits bits(data);
    const unsigned flags = bits.bitShort();
    double elevation = 0;
    AcGeVector3d normal{0, 0, 1};
    if ((flags & kWidth) != 0) bits.bitDouble();
    if ((flags & kElevation) != 0) elevation = bits.bitDouble();
    if ((flags & kThickness) != 0) bits.bitDouble();
    if ((flags & kNormal) != 0)
      for (double* axis : {&normal.x, &normal.y, &normal.z}) *axis = bits.bitDouble();
    const std::size_t count = bits.bitLong();
    const std::size_t bulges = (flags & kBulges) != 0 ? bits.bitLong() : 0;
    if (isAfter2010_) bits.bitLong();
    if ((flags & kWidths) != 0) bits.bitLong();
    if (count == 0 || count > data.size() * 4 || bulges > count) return;
    std::vector<Point> corners{{bits.rawDouble(), 0}};
    corners.back().y = bits.rawDouble();
    while (corners.size() < count) {
      const double x = bits.doubleLike(corners.back().x);
      corners.push_back({x, bits.doubleLike(corners.back().y)});
    }
    std::vector<double> bulge(count, 0);
    for (std::size_t i = 0; i < bulges; ++i) bulge[i] = bits.bitDouble();
    if (bits.isShort() || !isUsable(normal)) return;
    const database::ObjectAxes axes(normal);
    Wire wire;
    wire.closed = (flags & kClosed) != 0;
    wire.points.push_back({corners[0].x, corners[0].y, elevation});
    for (std::size_t i = 0; i + (wire.closed ? 0 : 1) < count; ++i) {
      const Point& from = corners[i];
      const Point& to = corners[(i + 1) % count];
      if (!std::isfinite(from.x + from.y + to.x + to.y + bulge[i])) return;
      curves::flattenBulge<AcGePoint3d>({from.x, from.y, elevation}, {to.x, to.y, elevation}, bulge[i], deviation_,
                                        wire.points);
    }
    for (AcGePoint3d& p : wire.points) p = axes.toWorld(p.x, p.y, p.z);
    add(std::move(wire));
  }

  void mesh(Bytes& bytes) {
    const std::size_t rows = bytes.whole(), columns = bytes.whole();
    if (rows == 0 || columns == 0 || rows > bytes.left() / 24 / columns) return;
    Chain points;
    for (std::size_t i = 0; i < rows * columns; ++i) points.push_back(bytes.point());
    for (std::size_t i = 0; i < rows; ++i) {
      const auto row = points.begin() + static_cast<std::ptrdiff_t>(i * columns);
      add({.points = {row, row + static_cast<std::ptrdiff_t>(columns)}, .corners = {}, .outline = {}});
    }
    for (std::size_t j = 0; j < columns; ++j) {
      Wire wire;
      for (std::size_t i = 0; i < rows; ++i) wire.points.push_back(points[i * columns + j]);
      add(std::move(wire));
    }
  }

  void shell(Bytes& bytes) {
    const std::size_t count = bytes.whole();
    if (count > bytes.left() / 24) return;
    Chain points;
    for (std::size_t i = 0; i < count; ++i) points.push_back(bytes.point());
    std::size_t entries = bytes.whole();
    if (entries > bytes.left() / 4) return;
    while (entries > 0) {
      const std::int32_t corners = bytes.signedWhole();  // negative: a hole in the face before
      --entries;
      Wire wire;
      for (std::int64_t i = std::abs(static_cast<std::int64_t>(corners)); i > 0 && entries > 0; --i, --entries)
        if (const std::size_t index = bytes.whole(); index < points.size()) wire.points.push_back(points[index]);
      wire.closed = true;
      wire.filled = isFilled_ && corners > 0 && wire.points.size() > 2;
      add(std::move(wire));
    }
  }

  void text(Bytes& bytes, std::uint32_t kind) {
    const bool isWide = kind == kUnicodeText || kind == kUnicodeTextWithFont;
    const bool hasFont = kind == kTextWithFont || kind == kUnicodeTextWithFont;
    LineParts parts;
    parts.position = bytes.point();
    parts.normal = bytes.point().asVector();
    parts.direction = bytes.point().asVector();
    const auto contents = [&] { parts.text = isWide ? bytes.wide() : codec_.decode(bytes.narrow()); };
    if (hasFont) {
      contents();
      bytes.whole();  // length
      parts.isRaw = bytes.whole() != 0;
    }
    parts.height = bytes.real();
    parts.widthFactor = bytes.real();
    parts.obliqueRad = bytes.real();
    if (hasFont) {
      parts.tracking = bytes.real();
      parts.isBackwards = bytes.whole() != 0;
      parts.isUpsideDown = bytes.whole() != 0;
      bytes.whole();  // vertical
      parts.isUnderlined = bytes.whole() != 0;
    } else {
      contents();
    }
    if (kind == kUnicodeTextWithFont) {
      bytes.whole();  // overlined
      parts.face.isBold = bytes.whole() != 0;
    }
    auto block = layoutLine(parts, width_);
    if (!block) return;
    block->frame = matrix().after(block->frame);
    pieces_.push_back(look_);
    pieces_.back().text = std::move(block);
  }

  void infinite(Bytes& bytes, bool bothWays) {
    const Transform m = matrix();
    const AcGePoint3d from = m.point(bytes.point()), to = m.point(bytes.point());
    if (bytes.isShort() || !isUsable(from) || !isUsable(to) || from == to) return;
    pieces_.push_back(look_);
    pieces_.back().infinite = InfiniteLine{from, (to - from).normal(), bothWays};
  }

  const text::Codec& codec_;
  bool isAfter2010_;
  double deviation_;
  const TextWidth& width_;
  std::vector<Transform> matrices_;
  bool isFilled_ = false;
  ProxyPiece look_;  // of what comes next, without content
  std::vector<ProxyPiece> pieces_;
};

}  // namespace

std::vector<ProxyPiece> readProxyGraphics(const Slot& entity, double deviation, const TextWidth& width) {
  const std::string file = metafile(entity);
  if (file.size() <= kHeadBytes) return {};
  return Player(entity, deviation, width).play(file);
}

}  // namespace host::geometry
