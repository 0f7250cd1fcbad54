#include "Database/Support.h"

namespace tests {

namespace {

// Tags parted by " |" and a blank or a line end; code and value by the first blank.
constexpr const char* kTags = R"(999 made by a stranger |
0 SECTION | 2 HEADER | 9 $ACADVER | 1 AC1018 | 9 $DWGCODEPAGE | 3 ANSI_1252 | 9 $HANDSEED | 5 100 | 9 $CLAYER |
8 0 | 9 $UNKNOWNVAR | 40 .5 | 9 $MEASUREMENT | 70      1 |
0 ENDSEC |
0 SECTION | 2 CLASSES |
0 CLASS | 1 STRANGE | 2 AcDbStrange | 3 Strange App | 90 0 | 91 1 | 280 0 | 281 0 |
0 ENDSEC |
0 SECTION | 2 TABLES |
0 TABLE | 2 LTYPE | 5 5 | 330 0 | 100 AcDbSymbolTable | 70 1 |
0 LTYPE | 5 16 | 330 5 | 100 AcDbSymbolTableRecord | 100 AcDbLinetypeTableRecord | 2 Continuous | 70 0 |
3 Solid line | 72 65 | 73 0 | 40 0.0 |
0 ENDTAB |
0 TABLE | 2 LAYER | 5 2 | 330 0 | 100 AcDbSymbolTable | 70 7 |
0 LAYER | 5 10 | 330 2 | 100 AcDbSymbolTableRecord | 100 AcDbLayerTableRecord | 2 0 | 70 0 | 62 7 | 6 Continuous |
370 -3 | 390 F |
0 LAYER | 5 11 | 330 2 | 100 AcDbSymbolTableRecord | 100 AcDbLayerTableRecord | 2 vanha | 70 0 | 62 -3 |
420 16711680 | 6 Continuous |
0 LAYER | 5 12 | 330 2 | 100 AcDbSymbolTableRecord | 100 AcDbLayerTableRecord | 2 metsä | 70 0 | 62 3 |
6 Continuous |
0 LAYER | 5 13 | 330 2 | 100 AcDbSymbolTableRecord | 100 AcDbLayerTableRecord | 2 lukittu | 70 4 | 62 1 |
6 Continuous |
0 ENDTAB |
0 TABLE | 2 APPID | 5 9 | 330 0 | 100 AcDbSymbolTable | 70 2 |
0 APPID | 5 14 | 330 9 | 100 AcDbSymbolTableRecord | 100 AcDbRegAppTableRecord | 2 ACAD | 70 0 |
0 APPID | 5 15 | 330 9 | 100 AcDbSymbolTableRecord | 100 AcDbRegAppTableRecord | 2 VIERAS | 70 0 |
0 ENDTAB |
0 TABLE | 2 BLOCK_RECORD | 5 1 | 330 0 | 100 AcDbSymbolTable | 70 2 |
0 BLOCK_RECORD | 5 1F | 102 {ACAD_XDICTIONARY | 360 60 | 102 } | 330 1 | 100 AcDbSymbolTableRecord |
100 AcDbBlockTableRecord | 2 *Model_Space | 340 0 |
0 BLOCK_RECORD | 5 1B | 330 1 | 100 AcDbSymbolTableRecord | 100 AcDbBlockTableRecord | 2 *Paper_Space | 340 0 |
0 ENDTAB |
0 ENDSEC |
0 SECTION | 2 BLOCKS |
0 BLOCK | 5 20 | 330 1F | 100 AcDbEntity | 8 0 | 100 AcDbBlockBegin | 2 *Model_Space | 70 0 | 10 0.0 | 20 0.0 |
30 0.0 | 3 *Model_Space | 1  |
0 ENDBLK | 5 21 | 330 1F | 100 AcDbEntity | 8 0 | 100 AcDbBlockEnd |
0 BLOCK | 5 1C | 330 1B | 100 AcDbEntity | 8 0 | 100 AcDbBlockBegin | 2 *Paper_Space | 70 0 | 10 0.0 | 20 0.0 |
30 0.0 | 3 *Paper_Space | 1  |
0 ENDBLK | 5 1D | 330 1B | 100 AcDbEntity | 8 0 | 100 AcDbBlockEnd |
0 ENDSEC |
0 SECTION | 2 ENTITIES |
0 LWPOLYLINE | 5 50 | 330 1F | 100 AcDbEntity | 8 0 | 62 256 | 100 AcDbPolyline | 90 4 | 70 1 | 43 0.0 | 10 .5 |
20 -0.000 | 10 +1.0E+02 | 20 0 | 10 100. | 20 100 | 10 0.5 | 20 100 |
0 LWPOLYLINE | 5 51 | 102 {ACAD_REACTORS | 330 70 | 102 } | 330 1F | 100 AcDbEntity | 8 vanha | 6 Continuous |
62  3 | 420 1193046 | 100 AcDbPolyline | 90 4 | 70 1 | 38 0.0 | 10 0 | 20 0 | 10 10 | 20 0 | 42 1.0 | 10 10 |
20 10 | 10 0 | 20 10 | 1001 VIERAS | 1000   text with blanks   | 1002 { | 1003 vanha | 1004 DEADBEEF | 1005 50 |
1010 1.0 | 1020 2.0 | 1030 3.0 | 1011 .1 | 1021 .2 | 1031 .3 | 1040 2.50000 | 1041 1e3 | 1042 -0 | 1070 -7 |
1071 70000 | 1002 } | 1000 jääli |
0 STRANGE | 5 52 | 330 1F | 100 AcDbEntity | 8 0 | 100 AcDbStrange | 1 ^I tab and ^ caret \U+20AC | 310 00FF |
0 POLYLINE | 5 53 | 330 1F | 100 AcDbEntity | 8 vanha | 100 AcDb2dPolyline | 66 1 | 10 0.0 | 20 0.0 | 30 0.0 |
70 1 |
0 VERTEX | 5 54 | 330 53 | 100 AcDbEntity | 8 vanha | 100 AcDbVertex | 100 AcDb2dVertex | 10 0 | 20 0 | 30 0 |
0 VERTEX | 5 55 | 330 53 | 100 AcDbEntity | 8 vanha | 100 AcDbVertex | 100 AcDb2dVertex | 10 5 | 20 0 | 30 0 |
42 0.5 |
0 VERTEX | 5 56 | 330 53 | 100 AcDbEntity | 8 vanha | 100 AcDbVertex | 100 AcDb2dVertex | 10 5 | 20 5 | 30 0 |
0 SEQEND | 5 57 | 330 53 | 100 AcDbEntity | 8 vanha |
0 LINE | 5 58 | 330 1F | 100 AcDbEntity | 8 lukittu | 100 AcDbLine | 10 0 | 20 0 | 30 0 | 11 1 | 21 1 | 31 0 |
0 ENDSEC |
0 SECTION | 2 OBJECTS |
0 DICTIONARY | 5 C | 330 0 | 100 AcDbDictionary | 281 1 | 3 ACAD_GROUP | 350 D | 3 STRANGE_DATA | 350 71 |
0 DICTIONARY | 5 D | 102 {ACAD_REACTORS | 330 C | 102 } | 330 C | 100 AcDbDictionary | 281 1 | 3 Ryhmä | 350 70 |
0 GROUP | 5 70 | 102 {ACAD_REACTORS | 330 D | 102 } | 330 D | 100 AcDbGroup | 300 kuvaus | 70 0 | 71 1 | 340 51 |
0 STRANGEOBJECT | 5 71 | 330 C | 100 AcDbStrangeObject | 5 99 | 1 anything |
0 DICTIONARY | 5 60 | 330 1F | 100 AcDbDictionary | 280 1 | 281 1 | 3 ACAD_SORTENTS | 360 61 | 3 EXTRA | 360 62 |
0 SORTENTSTABLE | 5 61 | 102 {ACAD_REACTORS | 330 60 | 102 } | 330 60 | 100 AcDbSortentsTable | 330 1F | 331 52 |
5 50 | 331 50 | 5 51 | 331 51 | 5 52 |
0 XRECORD | 5 62 | 330 60 | 100 AcDbXrecord | 280 1 | 1 TEXT | 40 1.5 | 70 3 | 10 1.0 | 20 2.0 | 30 3.0 | 290 1 |
330 51 |
0 ENDSEC |
0 EOF |
)";

}  // namespace

std::string probeDrawing(const std::string& lineEnd) {
  std::string text;
  std::string_view rest = kTags;
  for (std::size_t end = rest.find(" |"); end != std::string_view::npos; end = rest.find(" |")) {
    std::string tag(rest.substr(0, end));
    rest.remove_prefix(end + 3);
    // The drawing is in code page 1252, this file in UTF-8.
    for (std::size_t at = tag.find("ä"); at != std::string::npos; at = tag.find("ä")) tag.replace(at, 2, "\xe4");
    const std::size_t blank = tag.find(' ');
    std::string code = tag.substr(0, blank);
    if (code.size() < 3) code.insert(0, 3 - code.size(), ' ');
    text += code + lineEnd + tag.substr(blank + 1) + lineEnd;
  }
  return text;
}

}  // namespace tests
