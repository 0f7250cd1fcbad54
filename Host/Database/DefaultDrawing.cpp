#include "Database/DefaultDrawing.h"

#include <utility>

#include "Database/Record.h"

namespace host::database {

namespace {

/// What other modules gave; a function's own, since they do it before main in any order.
struct Readers {
  TextReader text = nullptr;
  FileReader file = nullptr;
  DwgConverter dwg = nullptr;
};

Readers& readers() {
  static Readers all;
  return all;
}

// Handles of the objects that others of the empty drawing name.
enum Handle : std::uint64_t {
  kBlockTable = 0x1,
  kLayerTable = 0x2,
  kStyleTable = 0x3,
  kLinetypeTable = 0x5,
  kViewTable = 0x6,
  kUcsTable = 0x7,
  kVportTable = 0x8,
  kAppIdTable = 0x9,
  kDimStyleTable = 0xA,
  kRoot = 0xC,
  kGroups = 0xD,
  kPlotStyles = 0xE,
  kPlotNormal = 0xF,
  kLayerZero = 0x10,
  kStandardStyle = 0x11,
  kAcad = 0x12,
  kByBlock = 0x14,
  kByLayer = 0x15,
  kContinuous = 0x16,
  kLayouts = 0x1A,
  kPaperRecord = 0x1B,
  kPaperBlock = 0x1C,
  kPaperEnd = 0x1D,
  kPaperLayout = 0x1E,
  kModelRecord = 0x1F,
  kModelBlock = 0x20,
  kModelEnd = 0x21,
  kModelLayout = 0x22,
  kStandardDimStyle = 0x27,
  kActiveViewport = 0x29,
  kSeed = 0x30,
};

class Text : public TagWriter {
 public:
  explicit Text(const text::Codec& codec) : TagWriter(codec) {}

  void section(std::string_view name) { raw(0, "SECTION").raw(2, name); }
  void endSection() { raw(0, "ENDSEC"); }

  void table(std::string_view name, std::uint64_t handleIn, int count, std::string_view extra = {}) {
    raw(0, "TABLE").raw(2, name).handle(5, handleIn).handle(330, 0).raw(100, "AcDbSymbolTable").integer(70, count);
    if (!extra.empty()) raw(100, extra);
  }
  void endTable() { raw(0, "ENDTAB"); }

  void record(std::string_view type, std::uint64_t handleIn, std::uint64_t owner, std::string_view subclass,
              std::string_view name, int handleCode = 5) {
    raw(0, type).handle(handleCode, handleIn).handle(330, owner).raw(100, "AcDbSymbolTableRecord").raw(100, subclass);
    raw(2, name).integer(70, 0);
  }

  void variable(std::string_view name, int code, std::string_view value) { raw(9, name).raw(code, value); }
};

void writeHeader(Text& out) {
  out.section("HEADER");
  out.variable("$ACADVER", 1, "AC1027");
  out.variable("$DWGCODEPAGE", 3, "ANSI_1252");
  out.raw(9, "$INSBASE").point(10, 0, 0, 0);
  out.raw(9, "$EXTMIN").point(10, 1e20, 1e20, 1e20);
  out.raw(9, "$EXTMAX").point(10, -1e20, -1e20, -1e20);
  out.raw(9, "$LIMMIN").point(10, 0, 0);
  out.raw(9, "$LIMMAX").point(10, 420, 297);
  out.raw(9, "$LTSCALE").real(40, 1);
  out.variable("$TEXTSTYLE", 7, "Standard");
  out.variable("$CLAYER", 8, "0");
  out.variable("$CELTYPE", 6, "ByLayer");
  out.raw(9, "$CECOLOR").integer(62, 256);
  out.raw(9, "$CELTSCALE").real(40, 1);
  out.raw(9, "$LUNITS").integer(70, 2);
  out.raw(9, "$LUPREC").integer(70, 4);
  out.raw(9, "$AUNITS").integer(70, 0);
  out.raw(9, "$AUPREC").integer(70, 0);
  out.raw(9, "$ANGBASE").real(50, 0);
  out.raw(9, "$ANGDIR").integer(70, 0);
  out.raw(9, "$PDMODE").integer(70, 0);
  out.raw(9, "$PDSIZE").real(40, 0);
  out.raw(9, "$HANDSEED").handle(5, kSeed);
  out.raw(9, "$TILEMODE").integer(70, 1);
  out.raw(9, "$MEASUREMENT").integer(70, 1);
  out.raw(9, "$CELWEIGHT").integer(370, -1);
  out.raw(9, "$LWDISPLAY").integer(290, 0);
  out.raw(9, "$INSUNITS").integer(70, 6);
  out.raw(9, "$SORTENTS").integer(280, 127);
  out.endSection();
}

void writeTables(Text& out) {
  out.section("TABLES");
  out.table("VPORT", kVportTable, 1);
  out.record("VPORT", kActiveViewport, kVportTable, "AcDbViewportTableRecord", "*Active");
  out.point(10, 0, 0).point(11, 1, 1).point(12, 210, 148.5).point(13, 0, 0).point(14, 10, 10).point(15, 10, 10);
  out.point(16, 0, 0, 1).point(17, 0, 0, 0).real(40, 297).real(41, 1.5).real(42, 50).real(43, 0).real(44, 0);
  out.real(50, 0).real(51, 0).integer(71, 0).integer(72, 100).integer(73, 1).integer(74, 3).integer(75, 0);
  out.integer(76, 0).integer(77, 0).integer(78, 0);
  out.endTable();

  out.table("LTYPE", kLinetypeTable, 3);
  const std::pair<std::uint64_t, const char*> linetypes[] = {
      {kByBlock, "ByBlock"}, {kByLayer, "ByLayer"}, {kContinuous, "Continuous"}};
  for (const auto& [handle, name] : linetypes) {
    out.record("LTYPE", handle, kLinetypeTable, "AcDbLinetypeTableRecord", name);
    out.raw(3, handle == kContinuous ? "Solid line" : "").integer(72, 65).integer(73, 0).real(40, 0);
  }
  out.endTable();

  out.table("LAYER", kLayerTable, 1);
  out.record("LAYER", kLayerZero, kLayerTable, "AcDbLayerTableRecord", "0");
  out.integer(62, 7).raw(6, "Continuous").integer(370, -3).handle(390, kPlotNormal);
  out.endTable();

  out.table("STYLE", kStyleTable, 1);
  out.record("STYLE", kStandardStyle, kStyleTable, "AcDbTextStyleTableRecord", "Standard");
  out.real(40, 0).real(41, 1).real(50, 0).integer(71, 0).real(42, 2.5).raw(3, "txt").raw(4, "");
  out.endTable();

  out.table("VIEW", kViewTable, 0);
  out.endTable();
  out.table("UCS", kUcsTable, 0);
  out.endTable();

  out.table("APPID", kAppIdTable, 1);
  out.record("APPID", kAcad, kAppIdTable, "AcDbRegAppTableRecord", "ACAD");
  out.endTable();

  out.table("DIMSTYLE", kDimStyleTable, 1, "AcDbDimStyleTable");
  out.record("DIMSTYLE", kStandardDimStyle, kDimStyleTable, "AcDbDimStyleTableRecord", "Standard", 105);
  out.endTable();

  out.table("BLOCK_RECORD", kBlockTable, 2);
  out.record("BLOCK_RECORD", kModelRecord, kBlockTable, "AcDbBlockTableRecord", "*Model_Space");
  out.handle(340, kModelLayout);
  out.record("BLOCK_RECORD", kPaperRecord, kBlockTable, "AcDbBlockTableRecord", "*Paper_Space");
  out.handle(340, kPaperLayout);
  out.endTable();
  out.endSection();
}

void writeBlock(Text& out, std::string_view name, std::uint64_t record, std::uint64_t begin, std::uint64_t end,
                bool paper) {
  out.raw(0, "BLOCK").handle(5, begin).handle(330, record).raw(100, "AcDbEntity");
  if (paper) out.integer(67, 1);
  out.raw(8, "0").raw(100, "AcDbBlockBegin").raw(2, name).integer(70, 0).point(10, 0, 0, 0).raw(3, name).raw(1, "");
  out.raw(0, "ENDBLK").handle(5, end).handle(330, record).raw(100, "AcDbEntity");
  if (paper) out.integer(67, 1);
  out.raw(8, "0").raw(100, "AcDbBlockEnd");
}

void writeLayout(Text& out, std::string_view name, std::uint64_t handle, std::uint64_t record, int tab, int modelFlag) {
  out.raw(0, "LAYOUT").handle(5, handle).raw(102, "{ACAD_REACTORS").handle(330, kLayouts).raw(102, "}");
  out.handle(330, kLayouts).raw(100, "AcDbPlotSettings").raw(1, "").raw(2, "none_device").raw(4, "A3").raw(6, "");
  for (int code = 40; code <= 43; ++code) out.real(code, 7.5);
  out.real(44, 420).real(45, 297).real(46, 0).real(47, 0).real(48, 0).real(49, 0).real(140, 0).real(141, 0);
  out.real(142, 1).real(143, 1).integer(70, modelFlag).integer(72, 1).integer(73, 0).integer(74, 5).raw(7, "");
  out.integer(75, 16).integer(76, 0).integer(77, 2).integer(78, 300).real(147, 1).real(148, 0).real(149, 0);
  out.raw(100, "AcDbLayout").raw(1, name).integer(70, 1).integer(71, tab).point(10, 0, 0).point(11, 420, 297);
  out.point(12, 0, 0, 0).point(14, 1e20, 1e20, 1e20).point(15, -1e20, -1e20, -1e20).real(146, 0);
  out.point(13, 0, 0, 0).point(16, 1, 0, 0).point(17, 0, 1, 0).integer(76, 0).handle(330, record);
}

void writeObjects(Text& out) {
  out.section("OBJECTS");
  const auto dictionary = [&](std::uint64_t handle) {
    out.raw(0, "DICTIONARY").handle(5, handle);
    if (handle != kRoot) out.raw(102, "{ACAD_REACTORS").handle(330, kRoot).raw(102, "}");
    out.handle(330, handle == kRoot ? 0 : std::uint64_t{kRoot}).raw(100, "AcDbDictionary").integer(281, 1);
  };
  dictionary(kRoot);
  out.raw(3, "ACAD_GROUP").handle(350, kGroups).raw(3, "ACAD_LAYOUT").handle(350, kLayouts);
  out.raw(3, "ACAD_PLOTSTYLENAME").handle(350, kPlotStyles);
  dictionary(kGroups);
  dictionary(kLayouts);
  out.raw(3, "Model").handle(350, kModelLayout).raw(3, "Layout1").handle(350, kPaperLayout);
  out.raw(0, "ACDBDICTIONARYWDFLT").handle(5, kPlotStyles).raw(102, "{ACAD_REACTORS").handle(330, kRoot).raw(102, "}");
  out.handle(330, kRoot).raw(100, "AcDbDictionary").integer(281, 1).raw(3, "Normal").handle(350, kPlotNormal);
  out.raw(100, "AcDbDictionaryWithDefault").handle(340, kPlotNormal);
  out.raw(0, "ACDBPLACEHOLDER").handle(5, kPlotNormal).raw(102, "{ACAD_REACTORS").handle(330, kPlotStyles);
  out.raw(102, "}").handle(330, kPlotStyles);
  writeLayout(out, "Model", kModelLayout, kModelRecord, 0, 1712);
  writeLayout(out, "Layout1", kPaperLayout, kPaperRecord, 1, 688);
  out.endSection();
}

}  // namespace

bool setTextReader(TextReader reader) {
  readers().text = reader;
  return true;
}

bool setFileReader(FileReader reader) {
  readers().file = reader;
  return true;
}

FileReader fileReader() { return readers().file; }

bool setDwgConverter(DwgConverter converter) {
  readers().dwg = converter;
  return true;
}

DwgConverter dwgConverter() { return readers().dwg; }

std::string defaultDrawingText() {
  const text::Codec codec;
  Text out(codec);
  writeHeader(out);
  out.section("CLASSES");
  out.raw(0, "CLASS").raw(1, "ACDBDICTIONARYWDFLT").raw(2, "AcDbDictionaryWithDefault").raw(3, "ObjectDBX Classes");
  out.integer(90, 0).integer(91, 1).integer(280, 0).integer(281, 0);
  out.raw(0, "CLASS").raw(1, "ACDBPLACEHOLDER").raw(2, "AcDbPlaceHolder").raw(3, "ObjectDBX Classes");
  out.integer(90, 0).integer(91, 1).integer(280, 0).integer(281, 0);
  out.raw(0, "CLASS").raw(1, "LAYOUT").raw(2, "AcDbLayout").raw(3, "ObjectDBX Classes");
  out.integer(90, 0).integer(91, 2).integer(280, 0).integer(281, 0);
  out.endSection();
  writeTables(out);
  out.section("BLOCKS");
  writeBlock(out, "*Model_Space", kModelRecord, kModelBlock, kModelEnd, false);
  writeBlock(out, "*Paper_Space", kPaperRecord, kPaperBlock, kPaperEnd, true);
  out.endSection();
  out.section("ENTITIES");
  out.endSection();
  writeObjects(out);
  out.raw(0, "EOF");
  return out.take();
}

void buildDefaultDrawing(DrawingDatabase& db) {
  if (readers().text != nullptr) readers().text(db, defaultDrawingText());
}

}  // namespace host::database
