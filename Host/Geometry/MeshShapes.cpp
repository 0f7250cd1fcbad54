#include "Geometry/MeshShapes.h"

#include <cstdlib>

#include "Database/TagValues.h"

namespace host::geometry {
namespace {

using database::DxfType;
using database::GeometryTags;
using database::Slot;
using database::Tag;

enum MeshFlag { kClosedInM = 1, kSmooth = 4, kClosedInN = 32 };
enum VertexFlag { kSplineFrame = 16, kMeshVertex = 64, kPolyfaceVertex = 128 };

struct MeshVertex {
  AcGePoint3d p;
  int flags = 0;
  std::int64_t corner[4] = {};  // of a face record: one-based, negative when the edge from it is hidden
};

std::vector<MeshVertex> readVertices(const Slot& mesh) {
  std::vector<MeshVertex> vertices;
  for (const Slot* sub = mesh.firstSub(); sub != nullptr; sub = sub->nextSub) {
    if (sub->isErased() || sub->type == DxfType::SeqEnd) continue;
    MeshVertex v;
    GeometryTags tags(sub->tags());
    for (Tag tag; tags.next(tag);) {
      if (takePoint(tag, 10, v.p)) continue;
      if (tag.code == 70)
        v.flags = static_cast<int>(tag.integer());
      else if (tag.code >= 71 && tag.code <= 74)
        v.corner[tag.code - 71] = tag.integer();
    }
    vertices.push_back(v);
  }
  return vertices;
}

void readGrid(const Slot& mesh, std::vector<Wire>& wires) {
  std::size_t size[4] = {};
  int flags = 0;
  GeometryTags tags(mesh.tags());
  for (Tag tag; tags.next(tag);) {
    if (tag.code == 70)
      flags = static_cast<int>(tag.integer());
    else if (tag.code >= 71 && tag.code <= 74)
      size[tag.code - 71] = static_cast<std::size_t>(std::max<std::int64_t>(tag.integer(), 0));
  }
  Chain points;
  const bool isSmooth = (flags & kSmooth) != 0;
  for (const MeshVertex& v : readVertices(mesh))
    if (!isSmooth || (v.flags & kSplineFrame) == 0) points.push_back(v.p);
  const std::size_t m = isSmooth ? size[2] : size[0], n = isSmooth ? size[3] : size[1];
  if (m == 0 || n == 0 || points.size() < n || m > points.size() / n) return;
  for (std::size_t i = 0; i < m; ++i) {
    Wire wire;
    for (std::size_t j = 0; j < n; ++j) wire.points.push_back(points[i * n + j]);
    wire.closed = (flags & kClosedInN) != 0;
    wires.push_back(std::move(wire));
  }
  for (std::size_t j = 0; j < n; ++j) {
    Wire wire;
    for (std::size_t i = 0; i < m; ++i) wire.points.push_back(points[i * n + j]);
    wire.closed = (flags & kClosedInM) != 0;
    wires.push_back(std::move(wire));
  }
}

void readFaces(const Slot& mesh, std::vector<Wire>& wires) {
  std::vector<MeshVertex> vertices = readVertices(mesh);
  Chain points;
  for (const MeshVertex& v : vertices)
    if ((v.flags & kMeshVertex) != 0) points.push_back(v.p);
  const auto count = static_cast<std::int64_t>(points.size());
  for (const MeshVertex& face : vertices) {
    if ((face.flags & kMeshVertex) != 0 || (face.flags & kPolyfaceVertex) == 0) continue;
    int corners = 0;
    while (corners < 4 && face.corner[corners] != 0 && face.corner[corners] >= -count && face.corner[corners] <= count)
      ++corners;
    for (int i = 0; i < corners; ++i) {
      if (face.corner[i] < 0) continue;
      const auto from = static_cast<std::size_t>(face.corner[i]);
      const auto to = static_cast<std::size_t>(std::abs(face.corner[(i + 1) % corners]));
      Wire wire;
      wire.points = {points[from - 1], points[to - 1]};
      wires.push_back(std::move(wire));
    }
  }
}

/// Subdivision mesh: 92 and points, then 93 and face lists of "90 corner count, 90 corner ...".
void readSubdivisionMesh(const Slot& mesh, std::vector<Wire>& wires) {
  Chain points;
  std::vector<std::int64_t> faces;
  std::size_t faceEntries = 0;
  GeometryTags tags(mesh.tags());
  for (Tag tag; tags.next(tag);) {
    if (tag.code == 10)
      points.push_back({coordinate(tag), 0, 0});
    else if ((tag.code == 20 || tag.code == 30) && !points.empty())
      takePoint(tag, 10, points.back());
    else if (tag.code == 93)
      faceEntries = static_cast<std::size_t>(std::max<std::int64_t>(tag.integer(), 0));
    else if (tag.code == 90 && faces.size() < faceEntries)
      faces.push_back(tag.integer());
  }
  for (std::size_t at = 0; at < faces.size();) {
    const std::int64_t corners = faces[at++];
    Wire wire;
    for (std::int64_t i = 0; i < corners && at < faces.size(); ++i, ++at)
      if (faces[at] >= 0 && faces[at] < static_cast<std::int64_t>(points.size()))
        wire.points.push_back(points[static_cast<std::size_t>(faces[at])]);
    wire.closed = true;
    wires.push_back(std::move(wire));
  }
}

}  // namespace

void readMesh(const Slot& entity, std::vector<Wire>& wires) {
  if (entity.type == DxfType::PolygonMesh)
    readGrid(entity, wires);
  else if (entity.type == DxfType::PolyFaceMesh)
    readFaces(entity, wires);
  else
    readSubdivisionMesh(entity, wires);
}

}  // namespace host::geometry
