// What the database keeps for every object of a drawing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "Database/Record.h"

class AcDbObject;

namespace host::database {

class DrawingDatabase;
struct UnmadeVertices;

/// Index into the database's list of DXF types ("LWPOLYLINE", "LAYER" ...); see DrawingDatabase::typeName.
/// The first ones are fixed, so that walks over slots compare numbers.
enum class DxfType : std::uint16_t {
  Unknown = 0,
  Line,
  Point,
  LwPolyline,
  Polyline2d,
  Polyline3d,
  PolygonMesh,
  PolyFaceMesh,
  Vertex2d,
  Vertex3d,
  VertexOther,
  SeqEnd,
  Insert,
  Attrib,
  AttDef,
  Circle,
  Arc,
  Ellipse,
  Spline,
  Text,
  MText,
  Solid,
  Trace,
  Face3d,
  Hatch,
  Region,
  Dimension,
  Leader,
  XLine,
  Ray,
  Viewport,
  Image,
  Wipeout,
  MLine,
  MultiLeader,
  Solid3d,
  Body,
  Shape,
  Tolerance,
  Table,
  Mesh,
  Proxy,
  Block,
  EndBlk,
  // tables and their records
  TableHead,
  Layer,
  LineType,
  TextStyle,
  DimStyle,
  AppId,
  BlockRecord,
  VPort,
  View,
  Ucs,
  // objects
  Dictionary,
  DictionaryWithDefault,
  Group,
  XRecord,
  SortentsTable,
  Layout,
  // parts of the file that are edited like objects
  Header,
  Classes,
  FirstOther,  // from here on: types met in files
};

enum SlotFlag : std::uint16_t {
  kErased = 1,         // gone unless undone
  kEntity = 2,         // something drawn (in a block, or a part of such an entity)
  kSubEntity = 4,      // vertex, attribute or sequence end of another entity
  kNew = 8,            // made in this session, not in the file
  kPaper = 16,         // stands in the ENTITIES section for a paper layout (67 1)
  kChanged = 32,       // its record differs from the file
  kHasXData = 64,      // the record may have extended data; without it there is none
  kNeedsHandle = 128,  // the file gives it no handle: one is written as soon as anything is saved
  kUnmade = 256,       // a new polyline whose vertices are values yet, no slots
  kFollows = 512,      // a vertex made by firstSub: erased and brought back with its polyline until changed itself
};

/// What exists only while an object is open, was changed or is new.
struct Live {
  AcDbObject* object = nullptr;  // the host-interface object, made on first open
  Record record;                 // meaningful when the slot is new or changed
  std::uint16_t readers = 0;
  bool writer = false;
  bool isAppending = false;       // open for write since it was added
  std::uint32_t journalMark = 0;  // undo step that already holds its former state
  bool modified = false;          // written to since it was opened for write
};

/// One object. 64 bytes; addresses are stable and are what AcDbObjectId holds. Its legal states: Store/SlotStates.h.
struct Slot {
  std::uint64_t handle = 0;
  const char* begin = nullptr;  // its bytes in the file text; null when new
  Slot* owner = nullptr;        // block record, table, dictionary, polyline ...; null when not known
  Live* live = nullptr;
  union {
    Slot* madeSub = nullptr;
    const UnmadeVertices* unmade;  // with kUnmade
  };
  Slot* nextSub = nullptr;
  std::uint32_t length = 0;  // bytes in the file
  std::uint32_t layer = 0;   // index into the database's layer names; 0 = none
  DxfType type = DxfType::Unknown;
  std::uint16_t flags = 0;

  bool isErased() const { return (flags & kErased) != 0; }
  bool isEntity() const { return (flags & kEntity) != 0; }
  bool isSubEntity() const { return (flags & kSubEntity) != 0; }

  /// First vertex or attribute, then along nextSub to the SEQEND. Makes the vertices of a new polyline.
  Slot* firstSub() const { return (flags & kUnmade) == 0 ? madeSub : makeSubs(); }
  bool hasSubs() const { return (flags & kUnmade) != 0 || madeSub != nullptr; }
  /// The vertices of a new polyline as long as they are no objects yet; else null.
  const UnmadeVertices* unmadeVertices() const { return (flags & kUnmade) != 0 ? unmade : nullptr; }

  /// The database of the slot.
  DrawingDatabase& database() const;
  /// The tags as they stand now; valid until the object is written to next.
  TagCursor tags() const;
  /// The record as it stands now.
  Record record() const;
  std::string_view fileBytes() const { return {begin, length}; }

 private:
  Slot* makeSubs() const;
};

}  // namespace host::database
