// Small drawings written in a few words, for tests of shapes and pictures.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Dxf/DxfFile.h"

namespace tests {

/// Tags are given as "code value|code value|...". Handles count up from 100 (hex) in the order of `entity` calls,
/// blocks' entities included, so a test can name them.
class SmallDrawing {
 public:
  SmallDrawing& header(const std::string& name, const std::string& tag) {
    header_ += "9\n" + name + "\n" + lines(tag);
    return *this;
  }
  SmallDrawing& layer(const std::string& name, const std::string& tags) {
    layers_ += "0\nLAYER\n5\n" + next() + "\n100\nAcDbSymbolTableRecord\n100\nAcDbLayerTableRecord\n2\n" + name + "\n" +
               lines(tags);
    return *this;
  }
  SmallDrawing& linetype(const std::string& name, const std::string& tags) {
    linetypes_ += "0\nLTYPE\n5\n" + next() + "\n100\nAcDbSymbolTableRecord\n100\nAcDbLinetypeTableRecord\n2\n" + name +
                  "\n70\n0\n" + lines(tags);
    return *this;
  }
  SmallDrawing& style(const std::string& name, const std::string& tags) {
    styles_ += "0\nSTYLE\n5\n" + next() + "\n100\nAcDbSymbolTableRecord\n100\nAcDbTextStyleTableRecord\n2\n" + name +
               "\n" + lines(tags);
    return *this;
  }
  /// Entities from here on belong to the block; `base` is its base point.
  SmallDrawing& block(const std::string& name, const std::string& base = "10 0|20 0") {
    current_ = name;
    blocks_[name].base = base;
    return *this;
  }
  SmallDrawing& model() {
    current_.clear();
    return *this;
  }
  /// `own` follows the entity's subclass marker, `common` the one of entities (layer, colour, ...).
  SmallDrawing& entity(const std::string& type, const std::string& own, const std::string& common = "8 0") {
    (current_.empty() ? model_ : blocks_[current_].entities) += "0\n" + type + "\n5\n" + next() +
                                                                "\n100\nAcDbEntity\n" + lines(common) + "100\n" +
                                                                marker(type) + "\n" + lines(own);
    return *this;
  }
  SmallDrawing& objects(const std::string& tags) {
    objects_ += lines(tags);
    return *this;
  }
  /// In the record of the model space (its extension dictionary).
  SmallDrawing& modelRecord(const std::string& tags) {
    modelRecord_ += lines(tags);
    return *this;
  }

  std::string text() const {
    std::string t = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1021\n9\n$HANDSEED\n5\nFFFFF\n" + header_ + "0\nENDSEC\n";
    t += "0\nSECTION\n2\nTABLES\n" + table("LTYPE", "5", linetypes_) + table("LAYER", "2", layers_) +
         (styles_.empty() ? "" : table("STYLE", "3", styles_));
    std::string records = record("*Model_Space", "1F", modelRecord_);
    std::string sections = blockText("*Model_Space", "1F", "20", "21", "10 0|20 0", "");
    int handle = 0x40000;  // far above those of entities
    for (const auto& [name, content] : blocks_) {
      const std::string owner = hex(handle++), begin = hex(handle++), end = hex(handle++);
      records += record(name, owner, "");
      sections += blockText(name, owner, begin, end, content.base, content.entities);
    }
    t += table("BLOCK_RECORD", "1", records) + "0\nENDSEC\n";
    t += "0\nSECTION\n2\nBLOCKS\n" + sections + "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" + model_ + "0\nENDSEC\n";
    t += "0\nSECTION\n2\nOBJECTS\n" + lines("0 DICTIONARY|5 C|330 0|100 AcDbDictionary|281 1") + objects_ +
         "0\nENDSEC\n0\nEOF\n";
    return t;
  }

 private:
  struct Content {
    std::string base, entities;
  };
  static std::string lines(std::string_view tags) {
    std::string out;
    while (!tags.empty()) {
      const std::size_t end = tags.find('|');
      const std::string_view tag = tags.substr(0, end);
      const std::size_t blank = tag.find(' ');
      out += std::string(tag.substr(0, blank)) + "\n" +
             (blank == std::string_view::npos ? "" : std::string(tag.substr(blank + 1))) + "\n";
      tags = end == std::string_view::npos ? std::string_view() : tags.substr(end + 1);
    }
    return out;
  }
  static std::string marker(const std::string& type) {
    static const std::map<std::string, std::string> markers = {
        {"LINE", "AcDbLine"},        {"HATCH", "AcDbHatch"},         {"INSERT", "AcDbBlockReference"},
        {"ATTRIB", "AcDbAttribute"}, {"LWPOLYLINE", "AcDbPolyline"}, {"POLYLINE", "AcDb2dPolyline"},
        {"VERTEX", "AcDbVertex"}};
    const auto found = markers.find(type);
    return found == markers.end() ? "AcDbOther" : found->second;
  }
  static std::string hex(int value) {
    char text[16];
    std::snprintf(text, sizeof text, "%X", static_cast<unsigned>(value));
    return text;
  }
  std::string next() { return hex(handle_++); }
  static std::string table(const std::string& name, const std::string& handle, const std::string& records) {
    return "0\nTABLE\n2\n" + name + "\n5\n" + handle + "\n330\n0\n100\nAcDbSymbolTable\n70\n9\n" + records +
           "0\nENDTAB\n";
  }
  static std::string record(const std::string& name, const std::string& handle, const std::string& more) {
    return "0\nBLOCK_RECORD\n5\n" + handle + "\n" + more +
           "330\n1\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n2\n" + name + "\n340\n0\n";
  }
  static std::string blockText(const std::string& name, const std::string& owner, const std::string& begin,
                               const std::string& end, const std::string& base, const std::string& entities) {
    return "0\nBLOCK\n5\n" + begin + "\n330\n" + owner + "\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockBegin\n2\n" + name +
           "\n70\n0\n" + lines(base) + "3\n" + name + "\n" + entities + "0\nENDBLK\n5\n" + end + "\n330\n" + owner +
           "\n100\nAcDbEntity\n8\n0\n100\nAcDbBlockEnd\n";
  }

  std::string header_, layers_, linetypes_, styles_, model_, objects_, modelRecord_, current_;
  std::map<std::string, Content> blocks_;
  int handle_ = 0x100;
};

/// A drawing in memory.
class SmallDatabase {
 public:
  explicit SmallDatabase(const std::string& text) : db_(nullptr) {
    const auto result = host::dxf::readDrawingText(db_, text, "small.dxf");
    if (!result.ok()) throw std::runtime_error(result.message());
  }
  explicit SmallDatabase(const SmallDrawing& drawing) : SmallDatabase(drawing.text()) {}
  host::database::DrawingDatabase& operator*() { return db_; }
  host::database::DrawingDatabase* operator->() { return &db_; }
  /// The n-th entity of the model space.
  const host::database::Slot& at(std::size_t n) { return *db_.modelSpace().entities.at(n); }

 private:
  host::database::DrawingDatabase db_;
};

}  // namespace tests
