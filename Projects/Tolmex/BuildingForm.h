// What the building dialog is filled with and gives back.
#pragma once

#include <string>

#include "OrvLib/ARX/HostInterface.h"

namespace OrvLib {

class CDocData;

/// The ridge line of a building.
struct RidgeChoice {
  bool hasRidge = false;
  AcDbObjectId ridgeLineId;
  double ridgeHeight = 0;  // above the eaves, drawing units
};

/// Texts as typed or stored; roof colours are indices.
struct BuildingForm {
  static constexpr int kNotChosen = -1;

  std::wstring floorsText;
  std::wstring eavesWidthText;
  std::wstring floorHeightText;
  std::wstring baseHeightText;
  int shadedRoofColour = kNotChosen;
  int sunlitRoofColour = kNotChosen;
  RidgeChoice ridge;
};

/// The form of the building being edited, or of new buildings for a null id: those start from what was accepted last in
/// any drawing. Colours that are not chosen yet are the document's.
BuildingForm formFor(AcDbObjectId building, const CDocData& data);

/// Takes the numbers of an accepted form into the document's data and keeps the form for the next new building.
void takeForm(const BuildingForm& form, CDocData& data);

}  // namespace OrvLib
