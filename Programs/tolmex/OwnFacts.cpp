#include "OwnFacts.h"

#include <cmath>
#include <string>

#include "BuildingInfo.h"
#include "Text/Text.h"
#include "Tolmex/Model/Catalogue.h"
#include "Tolmex/Model/ElementTag.h"
#include "XDataValues.h"

namespace tolmex {

using host::window::OwnFact;

namespace {

std::string metres(const std::string& value) { return value == "?" ? value : value + " m"; }

void addBuilding(const BuildingValues& building, std::vector<OwnFact>& facts) {
  facts.push_back({"Kerroksia", "Floors", building.floors});
  facts.push_back({"Kerroskorkeus", "Floor height", metres(building.floorHeight)});
  facts.push_back({"Räystäs", "Eaves", metres(building.eavesWidth)});
  facts.push_back({"Sokkeli", "Base", metres(building.baseHeight)});
  const bool hasRidge = building.ridge && building.ridgeIsAlive;
  facts.push_back({"Harja", "Ridge", hasRidge ? metres(building.ridgeHeight) : std::string("–")});
  facts.push_back({"Katon värit", "Roof colours", building.sunColor + " / " + building.shadeColor});
  const auto floors = host::text::parseReal(building.floors);
  if (floors && std::isfinite(*floors) && *floors > 0)
    facts.push_back({"Ala × kerrokset", "Area × floors", {}, *floors});
}

}  // namespace

std::vector<OwnFact> ownFacts(const host::database::Slot& entity) {
  std::vector<OwnFact> facts;
  const host::database::DrawingDatabase& drawing = entity.database();
  std::vector<host::database::Problem> problems;  // `tolmex info` tells them
  if (const auto building = readBuilding(entity, drawing, problems)) addBuilding(*building, facts);
  const OrvLib::ElementTag tag = OrvLib::readElementTag(extendedData(entity, drawing, OrvLib::kTagApplication));
  const bool isFence = tag.category == OrvLib::row(OrvLib::Category::BoardFence).tag ||
                       tag.category == OrvLib::row(OrvLib::Category::StoneFence).tag;
  if (isFence) {
    const bool hasHeight = tag.height && !tag.height->empty();
    facts.push_back({"Korkeus", "Height", hasHeight ? metres(host::text::toUtf8(*tag.height)) : std::string("–")});
  }
  return facts;
}

}  // namespace tolmex
