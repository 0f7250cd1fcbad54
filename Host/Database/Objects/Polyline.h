// Parsed polylines.
#pragma once

#include <string>
#include <vector>

#include "Database/ObjectAccess.h"
#include "gepnt2d.h"
#include "gepnt3d.h"

namespace host::database {

/// An LWPOLYLINE in its own plane.
struct LightPolyline final : ObjectData {
  struct Vertex {
    AcGePoint2d point;
    double bulge = 0;
    double startWidth = -1, endWidth = -1;  // negative: the constant width
  };
  std::vector<Vertex> vertices;
  int flags = 0;  // 1 closed, 128 linetype along the whole
  double constantWidth = 0;
  double elevation = 0;
  double thickness = 0;
  AcGeVector3d normal{0, 0, 1};

  void read(TagCursor tags, const text::Codec& codec);
  void write(TagWriter& out) const override;
};

/// A POLYLINE without its vertices, which are objects of their own; `vertices` holds those of a polyline that is not in
/// a drawing yet.
struct OldPolyline final : ObjectData {
  struct Vertex {
    AcGePoint3d point;
    double bulge = 0, startWidth = 0, endWidth = 0;
  };
  std::vector<Vertex> vertices;
  int flags = 0;  // 1 closed, 8 three-dimensional, as tag 70
  int smoothType = 0;
  double elevation = 0;
  AcGeVector3d normal{0, 0, 1};

  bool is3d() const { return (flags & 8) != 0; }
  void read(TagCursor tags, const text::Codec& codec);
  void write(TagWriter& out) const override;
  const OwnTags* shelve(DrawingDatabase& db) const override;
  /// A vertex's own tags, from its subclass marker on.
  std::string vertexTags(std::size_t index, const text::Codec& codec, std::string_view lineEnd) const;
};

}  // namespace host::database
