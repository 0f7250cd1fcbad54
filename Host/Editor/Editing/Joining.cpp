#include "Editor/Editing/Joining.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <memory>
#include <numbers>
#include <optional>
#include <unordered_map>

#include "Curves/EntityCurves.h"
#include "Curves/Plane.h"
#include "Database/Editing.h"
#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"
#include "Editor/Editing/PolylineVertices.h"
#include "acutads.h"
#include "acutmem.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"

namespace host::editor {
namespace {

using curves::Point2;
using database::DxfType;
using database::Slot;
using database::Tag;

constexpr double kTolerance = kMeeting;

using Vertex = PolylineVertex;

struct Piece {
  Slot* entity = nullptr;
  std::vector<Vertex> vertices;
  double elevation = 0;
  std::array<std::size_t, 2> nodes{};  // where it begins and ends
  bool isUsed = false;
};

std::optional<Piece> pieceOfLine(const Slot& slot) {
  AcGePoint3d from, to;
  database::GeometryTags tags(slot.tags());
  for (Tag tag; tags.next(tag);) takePoint(tag, 10, from) || takePoint(tag, 11, to);
  if (!database::isUsable(from) || !database::isUsable(to) || std::abs(from.z - to.z) > kTolerance) return std::nullopt;
  Piece piece;
  piece.vertices = {{{from.x, from.y}}, {{to.x, to.y}}};
  piece.elevation = from.z;
  return piece;
}

std::optional<Piece> pieceOfArc(const Slot& slot) {
  const auto arc = curves::readArc(slot);
  if (!arc || arc->isWhole() || arc->major.z != 0 || arc->minor.z != 0) return std::nullopt;
  const AcGePoint3d from = arc->at(arc->start), to = arc->at(arc->start + arc->sweep);
  // Arcs seen from below run the other way round.
  const double side = arc->major.x * arc->minor.y - arc->major.y * arc->minor.x;
  Piece piece;
  piece.vertices = {{{from.x, from.y}, std::copysign(std::tan(arc->sweep / 4), side * arc->sweep)}, {{to.x, to.y}}};
  piece.elevation = from.z;
  return piece;
}

std::optional<Piece> pieceOfPolyline(Slot& slot) {
  const AcDbObjectPointer<AcDbPolyline> polyline(AcDbObjectId(&slot), AcDb::kForRead);
  if (polyline.openStatus() != Acad::eOk || polyline->isClosed() || polyline->numVerts() < 2) return std::nullopt;
  const AcGeVector3d normal = polyline->normal();
  if (normal.x != 0 || normal.y != 0 || normal.z <= 0) return std::nullopt;
  Piece piece;
  piece.elevation = polyline->elevation();
  for (unsigned i = 0; i < polyline->numVerts(); ++i) {
    AcGePoint2d point;
    Vertex vertex;
    polyline->getPointAt(i, point);
    polyline->getBulgeAt(i, vertex.bulge);
    polyline->getWidthsAt(i, vertex.startWidth, vertex.endWidth);
    vertex.point = {point.x, point.y};
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) return std::nullopt;
    piece.vertices.push_back(vertex);
  }
  return piece;
}

std::optional<Piece> pieceOf(Slot& slot) {
  std::optional<Piece> piece;
  if (slot.type == DxfType::Line) piece = pieceOfLine(slot);
  if (slot.type == DxfType::Arc) piece = pieceOfArc(slot);
  if (slot.type == DxfType::LwPolyline) piece = pieceOfPolyline(slot);
  if (piece) piece->entity = &slot;
  return piece;
}

/// Numbers for places: ends that are near enough have the same.
class Nodes {
 public:
  std::size_t at(Point2 point, double elevation) {
    const auto cellOf = [](double value) { return static_cast<std::int64_t>(std::floor(value / kCell)); };
    const std::int64_t x = cellOf(point.x), y = cellOf(point.y);
    for (std::int64_t i = x - 1; i <= x + 1; ++i) {
      for (std::int64_t j = y - 1; j <= y + 1; ++j) {
        const auto cell = cells_.find({i, j});
        if (cell == cells_.end()) continue;
        for (const std::size_t node : cell->second) {
          if (distance(places_[node].point, point) <= kTolerance &&
              std::abs(places_[node].elevation - elevation) <= kTolerance) {
            ++places_[node].ends;
            return node;
          }
        }
      }
    }
    cells_[{x, y}].push_back(places_.size());
    places_.push_back({point, elevation, 1});
    return places_.size() - 1;
  }
  std::size_t ends(std::size_t node) const { return places_[node].ends; }
  /// Two free ends become one place.
  void unite(std::size_t kept, std::size_t gone) {
    places_[kept].ends = 2;
    places_[gone].ends = 0;
  }
  std::size_t branches() const {
    return static_cast<std::size_t>(
        std::count_if(places_.begin(), places_.end(), [](const Place& place) { return place.ends > 2; }));
  }

 private:
  static constexpr double kCell = 2 * kTolerance;
  struct Place {
    Point2 point;
    double elevation = 0;
    std::size_t ends = 0;
  };
  std::vector<Place> places_;
  std::map<std::pair<std::int64_t, std::int64_t>, std::vector<std::size_t>> cells_;
};

void reverse(std::vector<Vertex>& vertices) {
  std::reverse(vertices.begin(), vertices.end());
  for (std::size_t i = 0; i + 1 < vertices.size(); ++i) {
    vertices[i].bulge = -vertices[i + 1].bulge;
    vertices[i].startWidth = vertices[i + 1].endWidth;
    vertices[i].endWidth = vertices[i + 1].startWidth;
  }
  vertices.back().bulge = vertices.back().startWidth = vertices.back().endWidth = 0;
}

/// Pieces one behind the other.
struct Chain {
  struct Link {
    Piece* piece = nullptr;
    bool isReversed = false;
  };
  std::vector<Link> links;
  bool isClosed = false;
};

class Joiner {
 public:
  Joiner(const std::vector<Slot*>& entities, double gap) {
    for (Slot* const entity : entities) {
      std::optional<Piece> piece = entity->isErased() ? std::nullopt : pieceOf(*entity);
      if (!piece) {
        ++counts_.unfit;
      } else if (mayChange(*entity)) {
        pieces_.push_back(std::move(*piece));
      }
    }
    for (Piece& piece : pieces_) {
      for (const std::size_t end : {0U, 1U}) {
        const Vertex& vertex = end == 0 ? piece.vertices.front() : piece.vertices.back();
        piece.nodes[end] = nodes_.at(vertex.point, piece.elevation);
        atNode_[piece.nodes[end]].push_back({&piece, end});
      }
    }
    if (gap > kTolerance) bridge(gap);
  }

  JoinCounts join() {
    counts_.branches = nodes_.branches();
    for (Piece& piece : pieces_) {
      if (piece.isUsed) continue;
      const Chain chain = chainFrom(piece);
      const bool isMade = (chain.links.size() > 1 || chain.isClosed) && make(chain);
      if (!isMade || !chain.isClosed) {
        ++counts_.open;
        addOpenEnds(chain);
      }
    }
    return counts_;
  }

 private:
  struct End {
    Piece* piece = nullptr;
    std::size_t which = 0;
  };

  static const Vertex& vertexAt(const End& end) {
    return end.which == 0 ? end.piece->vertices.front() : end.piece->vertices.back();
  }

  void addOpenEnds(const Chain& chain) {
    const Chain::Link &first = chain.links.front(), &last = chain.links.back();
    counts_.openEnds.push_back(vertexAt({first.piece, first.isReversed ? 1U : 0U}).point);
    counts_.openEnds.push_back(vertexAt({last.piece, last.isReversed ? 0U : 1U}).point);
  }

  /// Free ends that are near one another become one place, the nearest pairs first.
  void bridge(double gap) {
    std::vector<End> free;
    for (Piece& piece : pieces_) {
      for (const std::size_t end : {0U, 1U}) {
        if (nodes_.ends(piece.nodes[end]) == 1) free.push_back({&piece, end});
      }
    }
    std::sort(free.begin(), free.end(),
              [](const End& a, const End& b) { return vertexAt(a).point.x < vertexAt(b).point.x; });
    struct Pair {
      double apart = 0;
      std::size_t a = 0, b = 0;
    };
    std::vector<Pair> pairs;
    for (std::size_t i = 0; i < free.size(); ++i) {
      const Point2 from = vertexAt(free[i]).point;
      for (std::size_t k = i + 1; k < free.size() && vertexAt(free[k]).point.x - from.x <= gap; ++k) {
        const double apart = distance(from, vertexAt(free[k]).point);
        const bool isLevel = std::abs(free[i].piece->elevation - free[k].piece->elevation) <= kTolerance;
        // A piece that is itself as short as a gap is no ring.
        const bool isRing = free[i].piece == free[k].piece;
        if (apart <= gap && isLevel && !(isRing && free[i].piece->vertices.size() < 3)) pairs.push_back({apart, i, k});
      }
    }
    std::stable_sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) { return a.apart < b.apart; });
    std::vector<bool> isTaken(free.size());
    for (const Pair& pair : pairs) {
      if (isTaken[pair.a] || isTaken[pair.b]) continue;
      isTaken[pair.a] = isTaken[pair.b] = true;
      const End &kept = free[pair.a], &gone = free[pair.b];
      const std::size_t node = kept.piece->nodes[kept.which], other = gone.piece->nodes[gone.which];
      nodes_.unite(node, other);
      gone.piece->nodes[gone.which] = node;
      atNode_[node].push_back(gone);
      ++counts_.bridged;
    }
  }

  static bool mayChange(Slot& entity) {
    return AcDbObjectPointer<AcDbEntity>(AcDbObjectId(&entity), AcDb::kForWrite).openStatus() == Acad::eOk;
  }

  /// The unused piece that meets the given end, and nothing else does.
  End next(const End& end) const {
    const std::size_t node = end.piece->nodes[end.which];
    if (nodes_.ends(node) != 2) return {};
    for (const End& other : atNode_.at(node)) {
      if (other.piece != end.piece && !other.piece->isUsed) return other;
    }
    return {};
  }

  Chain chainFrom(Piece& first) {
    Chain chain;
    chain.links.push_back({&first, false});
    first.isUsed = true;
    End last{&first, 1};
    for (End met = next(last); met.piece != nullptr; met = next(last)) {
      chain.links.push_back({met.piece, met.which == 1});
      met.piece->isUsed = true;
      last = {met.piece, 1 - met.which};
    }
    const std::size_t begin = first.nodes[0];
    // Two pieces may meet at both of their ends; a piece alone may be a ring.
    chain.isClosed = last.piece->nodes[last.which] == begin && nodes_.ends(begin) == 2;
    End front{&first, 0};
    for (End met = next(front); !chain.isClosed && met.piece != nullptr; met = next(front)) {
      chain.links.insert(chain.links.begin(), {met.piece, met.which == 0});
      met.piece->isUsed = true;
      front = {met.piece, 1 - met.which};
    }
    return chain;
  }

  /// The piece whose entity goes on: the first polyline as it was selected, else the first piece.
  const Chain::Link& baseOf(const Chain& chain) const {
    const Chain::Link* base = nullptr;
    const auto isBetter = [&base](const Chain::Link& link) {
      const bool isPolyline = link.piece->entity->type == DxfType::LwPolyline;
      const bool wasPolyline = base->piece->entity->type == DxfType::LwPolyline;
      return isPolyline != wasPolyline ? isPolyline : link.piece < base->piece;
    };
    for (const Chain::Link& link : chain.links) {
      if (base == nullptr || isBetter(link)) base = &link;
    }
    return *base;
  }

  std::vector<Vertex> verticesOf(const Chain& chain, const Chain::Link& base) const {
    std::vector<Vertex> all;
    for (const Chain::Link& link : chain.links) {
      std::vector<Vertex> vertices = link.piece->vertices;
      if (link.isReversed) reverse(vertices);
      if (!all.empty() && distance(all.back().point, vertices.front().point) <= kTolerance) {
        // The base keeps its points to the last digit.
        const Point2 meeting = &link == &base ? vertices.front().point : all.back().point;
        all.back() = vertices.front();
        all.back().point = meeting;
        vertices.erase(vertices.begin());
      }
      all.insert(all.end(), vertices.begin(), vertices.end());
    }
    if (base.isReversed) reverse(all);
    // Over a gap the closing piece is straight.
    if (chain.isClosed && distance(all.front().point, all.back().point) <= kTolerance) all.pop_back();
    return all;
  }

  /// False for what would have no length or no inside.
  bool make(const Chain& chain) {
    const Chain::Link& base = baseOf(chain);
    const std::vector<Vertex> vertices = verticesOf(chain, base);
    const bool isStraight =
        std::all_of(vertices.begin(), vertices.end(), [](const Vertex& vertex) { return vertex.bulge == 0; });
    if (vertices.size() < (chain.isClosed && isStraight ? 3U : 2U)) return false;
    Slot& kept = *base.piece->entity;
    for (const Chain::Link& link : chain.links) {
      for (Slot* const hatch : database::hatchesOf(*link.piece->entity)) database::dissociateHatch(*hatch);
    }
    const bool extends = kept.type == DxfType::LwPolyline;
    if (extends) {
      setVertices(kept, vertices, chain.isClosed);
    } else {
      makeNew(kept, vertices, base.piece->elevation, chain.isClosed);
    }
    for (const Chain::Link& link : chain.links) {
      if (extends && link.piece->entity == &kept) continue;
      const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(link.piece->entity), AcDb::kForWrite);
      if (entity.openStatus() == Acad::eOk) entity->erase();
    }
    counts_.joined += chain.links.size();
    ++counts_.polylines;
    if (chain.isClosed) ++counts_.closed;
    return true;
  }

  /// A polyline with the properties and extended data of the entity.
  void makeNew(Slot& like, const std::vector<Vertex>& vertices, double elevation, bool isClosed) const {
    const AcDbObjectPointer<AcDbEntity> model(AcDbObjectId(&like), AcDb::kForRead);
    const AcDbObjectPointer<AcDbBlockTableRecord> space(AcDbObjectId(like.owner), AcDb::kForWrite);
    if (model.openStatus() != Acad::eOk || space.openStatus() != Acad::eOk) return;
    auto polyline = std::make_unique<AcDbPolyline>(static_cast<unsigned>(vertices.size()));
    unsigned index = 0;
    for (const Vertex& vertex : vertices)
      polyline->addVertexAt(index++, {vertex.point.x, vertex.point.y}, vertex.bulge, vertex.startWidth,
                            vertex.endWidth);
    if (isClosed) polyline->setClosed(true);
    if (elevation != 0) polyline->setElevation(elevation);
    polyline->setLayer(model->layerId());
    polyline->setColor(model->color());
    polyline->setLinetype(model->linetypeId());
    AcDbObjectId id;
    if (space->appendAcDbEntity(id, polyline.get()) != Acad::eOk) return;
    AcDbPolyline* const added = polyline.release();
    // The tags that have no setter of their own: visibility, linetype scale, lineweight, transparency.
    for (const int code : {60, 48, 370, 440}) {
      Tag tag;
      if (HostObjectAccess::findTag(*model, "AcDbEntity", code, tag)) {
        HostObjectAccess::setTag(*added, "AcDbEntity", code, tag.value);
      } else {
        HostObjectAccess::removeTag(*added, "AcDbEntity", code);
      }
    }
    if (resbuf* const data = model->xData()) {
      added->setXData(data);
      acutRelRb(data);
    }
    added->close();
  }

  std::vector<Piece> pieces_;  // as they were selected
  Nodes nodes_;
  std::unordered_map<std::size_t, std::vector<End>> atNode_;
  JoinCounts counts_;
};

}  // namespace

JoinCounts joinEntities(const std::vector<Slot*>& entities, double gap) { return Joiner(entities, gap).join(); }

}  // namespace host::editor
