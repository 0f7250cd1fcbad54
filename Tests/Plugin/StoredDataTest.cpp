// What drawings store: keys and values, the entity tag, the building record, the shadow settings.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "OrvLib/DataStruct/DataItems.h"
#include "Tolmex/Model/BuildingRecord.h"
#include "Tolmex/Model/ElementTag.h"
#include "Tolmex/Model/Names.h"
#include "Tolmex/Model/ShadowRecord.h"

namespace OrvLib {
namespace {

DataItem text(const wchar_t* value, short code = kXDataText) { return DataItem(code, value); }

TEST(ExtendedData, FindsTheItemAfterTheKeyWhateverItsCode) {
  const DataItems items{text(L"app", 1001),
                        text(L"A"),
                        text(L"B"),
                        text(L"C"),
                        text(L"2F", 1005),
                        text(L"R"),
                        DataItem(1040, 2.50),
                        text(L"I"),
                        DataItem(1070, std::int16_t{-7}),
                        text(L"L"),
                        DataItem(1071, std::int32_t{70000}),
                        text(L"B"),
                        text(L"second"),
                        text(L"P"),
                        DataItem(1010, {})};
  const auto lookUp = [&](const wchar_t* key) { return valueOfKey(items, L"app", key); };
  EXPECT_EQ(lookUp(L"A"), L"B");
  EXPECT_EQ(lookUp(L"C"), L"2F");
  EXPECT_EQ(lookUp(L"R"), L"2.5");
  EXPECT_EQ(lookUp(L"I"), L"-7");
  EXPECT_EQ(lookUp(L"L"), L"70000");
  EXPECT_EQ(lookUp(L"B"), L"C");  // a value is a key as well: items are walked one by one, the first match wins
  for (const wchar_t* key : {L"a", L"2F", L"P"}) EXPECT_EQ(lookUp(key), std::nullopt) << key;
  EXPECT_EQ(valueOfKey(items, L"other", L"A"), std::nullopt);
  EXPECT_EQ(valueOfKey({}, L"app", L"A"), std::nullopt);
}

TEST(ExtendedData, TakesBracesForNeitherKeysNorValues) {
  const DataItems items{text(L"app", 1001), text(L"{", 1002), text(L"A"),       text(L"}", 1002),
                        text(L"x"),         text(L"B"),       text(L"{", 1002), text(L"}", 1002)};
  EXPECT_EQ(valueOfKey(items, L"app", L"A"), L"x");
  EXPECT_EQ(valueOfKey(items, L"app", L"B"), std::nullopt);
  EXPECT_EQ(valueOfKey(items, L"app", L"{"), std::nullopt);
}

TEST(ElementTag, ReadsBackWhatIsWrittenAndWhatLacksKeys) {
  EXPECT_EQ(readElementTag(elementTagItems(L"Metsä", L"0", L"2F")), (ElementTag{L"Metsä", L"0", L"2F"}));
  EXPECT_EQ(readElementTag({text(L"kaava_tolmex", 1001), text(L"HEIGHT"), DataItem(1040, 1.5)}),
            (ElementTag{std::nullopt, L"1.5", std::nullopt}));
  EXPECT_EQ(readElementTag({}), ElementTag());
}

BuildingRecord<double> house() { return {0.5, 2.8, 2, 0.6, 3.25, true, L"1A"}; }

TEST(BuildingRecordItems, ReadBackAsTextsAndNumbers) {
  const StoredBuilding stored = readStoredBuilding(buildingRecordItems(house(), {45, 42}));
  EXPECT_TRUE(stored.isBuilding());
  EXPECT_EQ(stored.roofColours(), (RoofColours{45, 42}));
  const auto texts = stored.complete();
  ASSERT_TRUE(texts);
  EXPECT_EQ(texts->floorHeight, L"2.8");
  EXPECT_EQ(texts->roofLineHandle, L"1A");
  EXPECT_EQ(buildingTooltip(*texts), L"Rakennus (2 kerrosta): harjaviiva määritelty (3.25 m).");
  const BuildingRecord<double> numbers = numbersOf(*texts);
  EXPECT_EQ(numbers.baseHeight, 0.5);
  EXPECT_EQ(numbers.nrFloors, 2);
  EXPECT_EQ(numbers.eavesWidth, 0.6);
  EXPECT_TRUE(numbers.hasRoofLine);
  BuildingRecord<double> flat = house();
  flat.hasRoofLine = false;
  const DataItems items = buildingRecordItems(flat, {});
  EXPECT_EQ(items.size() + 2, buildingRecordItems(house(), {}).size());
  EXPECT_FALSE(readStoredBuilding(items).roofLineHandle);
}

TEST(BuildingRecordItems, AreABuildingWithTypeAndColoursAndCompleteWithAllValues) {
  const auto without = [](const wchar_t* key) {
    DataItems items = buildingRecordItems(house(), {1, 2});
    for (auto item = items.begin(); item != items.end();)
      item = item->isText(key) ? items.erase(item, item + 2) : item + 1;
    return readStoredBuilding(items);
  };
  for (const wchar_t* key : {L"_ENTITYTYPE", L"tolm_bld_shadowcolor", L"tolm_bld_suncolor"})
    EXPECT_FALSE(without(key).isBuilding()) << key;
  for (const wchar_t* key : {L"baseheight", L"floorheight", L"nrfloors", L"eavesWidth", L"roofheight"}) {
    EXPECT_TRUE(without(key).isBuilding()) << key;
    EXPECT_FALSE(without(key).complete()) << key;
  }
  EXPECT_TRUE(without(L"tolm_roofline_handle").complete());
  DataItems shouted = buildingRecordItems(house(), {});
  shouted[2].value = L"BUILDING";
  EXPECT_TRUE(readStoredBuilding(shouted).isBuilding());
}

TEST(ShadowRecordItems, ReadBackInAnyOrderAndFromAnyKindOfNumber) {
  const ShadowSettings settings{1.5, 3, 2.25, 0.3, kShadowDots};
  EXPECT_EQ(settingsOf(readShadowRecord(shadowRecordItems(settings))), settings);
  EXPECT_EQ(settingsOf(readShadowRecord(shadowRecordItems({}))), ShadowSettings());
  const ShadowRecord record = readShadowRecord(
      {text(L"SHADOWSCALE", 1), DataItem(90, std::int32_t{2}), text(L"shadowcolor", 1), DataItem(70, std::int16_t{5}),
       text(L"SHADOWHATCHTYPE", 300), DataItem(70, std::int16_t{20}), text(L"SHADOWLENGTHPERFLOOR", 1),
       DataItem(40, std::numeric_limits<double>::infinity()), text(L"SHADOWANGLERAD", 1)});
  EXPECT_EQ(record.scale, 2);
  EXPECT_FALSE(record.color || record.hatchType || record.lengthPerFloor || record.angleRad);
}

}  // namespace
}  // namespace OrvLib
