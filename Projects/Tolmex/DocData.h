// What the system knows about each open drawing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "OrvLib/DataStruct/Array.h"
#include "Tolmex/Building.h"
#include "Tolmex/BuildingRecord.h"
#include "Tolmex/Model/Catalogue.h"
#include "Tolmex/ShadowSettings.h"

class AcApDocument;

namespace OrvLib {

class DocDataReactor;
class InputPointMonitor;

/// The record of one open drawing; its shadow settings are members of its own.
class CDocData : public ShadowSettings {
 public:
  CDocData();
  CDocData(const CDocData&) = delete;
  CDocData& operator=(const CDocData&) = delete;
  ~CDocData();

  /// Makes the reactor and the monitor of the document if the record has none yet; they go with the record.
  void attachTo(AcApDocument& document);

  std::unique_ptr<DocDataReactor> reactor;  // empty until attached, as the monitor
  bool colorsFromDrawing = false;           // an area layer was in the drawing before the system made its layers
  bool colorsChosen = false;                // the user has confirmed the colour dialog
  std::uint32_t backgroundColor = 0;        // of the current layout, 0x00BBGGRR
  std::unique_ptr<InputPointMonitor> monitor;
  ColorScheme colors;
  ColorScheme preparedColors;  // of drawing, file and defaults, before the user chose others
  AreaColors seenAreaColors;   // as the drawing showed them when `colors` was last in step with it
  bool prepared = false;       // the first command has run

  Array<Building> buildings;  // the drawing's, as last collected
  // The running command found the list not collected yet: until it changes entities, the list is the drawing's.
  bool buildingsAreFresh = false;
  // What the building dialog accepted last in this drawing.
  float nrFloors = 0;
  float eavesWidth = 0;
  float floorHeight = 0;
  float baseHeight = 0;
  RoofColours roofColours;       // chosen for buildings; written into their records
  ShadowSettings seenShadows;    // as the drawing had them stored when the record was last in step with it
  std::wstring symbolDirectory;  // of the symbol dialog, as last left; empty until then
};

/// The current document's record. Throws OrvExpAcad when no drawing is open.
CDocData& currentDocData();

/// Follows the host's documents and attaches to the current one, if there is one.
void attachToDocuments();

/// Detaches from all documents and forgets what is known about them.
void detachFromDocuments();

}  // namespace OrvLib
