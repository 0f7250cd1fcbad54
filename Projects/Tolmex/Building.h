// Buildings of a drawing.
#pragma once

#include "OrvLib/ARX/Opened.h"
#include "OrvLib/GeomStructs/PolyLine.h"

namespace OrvLib {

class CDocData;

/// One building as it was when it was read; lengths are drawing units. It never writes itself back: a change is a new
/// object, written by writeBuildingRecord. Its inherited points stay empty, the footprint is `outline`.
class Building : public PolyLine {
 public:
  /// Arc length of the straight pieces that stand for a footprint's arcs.
  static constexpr double kOutlineStep = 5.0;

  /// The building that an entity is. Not valid when the entity bounds nothing (said on the command line) or has no
  /// complete building record. A ridge line counts when its link leads to a living polyline tagged as one.
  explicit Building(Opened<AcDbEntity> entity);
  /// A building with these values on an entity, not valid in the sense of the reading constructor.
  Building(Opened<AcDbEntity> entity, int nrFloors, double eavesWidth, double floorHeight, double baseHeight,
           bool hasRoofLine, AcDbObjectId roofLineId, double roofHeight);

  /// Reads the footprint anew; unchanged when the polyline cannot be opened.
  void refreshOutline();

  double nrFloors = 0;
  double eavesWidth = 0;
  double floorHeight = 0;
  double baseHeight = 0;
  double roofHeight = 0;           // of the ridge above the eaves; with a ridge line only
  bool firstSegmentIsArc = false;  // of the footprint; later arcs do not count
  bool valid = false;              // the record was read completely
  bool hasRoofLine = false;
  AcDbObjectId roofLineId;
  AcDbObjectId roofFillId;  // drawn last for the building; not in the record
  AcDbObjectId entityId;
  PolyLine outline;            // arcs as straight pieces
  bool followsChords = false;  // the outline does: its arcs are too long to be cut into pieces

 private:
  bool takeOutline(const AcDbEntity& entity);
  void takeRecord(const AcDbEntity& entity);
};

/// Rebuilds the building list from the working database: every polyline with a complete building record.
void collectBuildings(CDocData& data);

}  // namespace OrvLib
