// Plans with building records, which tests put into the drawing's text as another session would have stored them.
#pragma once

#include <map>
#include <utility>

#include "Illustration/Plan.h"

namespace tests {

class BuildingPlan : public Plan {
 protected:
  using Items = std::vector<std::pair<std::string, std::string>>;

  /// The items that make a building, in the order in which they are stored.
  static Items building(const std::string& floors = "2", const std::string& ridgeHandle = {}) {
    Items items = {{"_ENTITYTYPE", "building"}, {"baseheight", "0.4"},          {"eavesWidth", "0.5"},
                   {"floorheight", "3"},        {"nrfloors", floors},           {"roofheight", "2"},
                   {"TOLM_VERSION", "1"},       {"tolm_bld_shadowcolor", "45"}, {"tolm_bld_suncolor", "42"}};
    if (!ridgeHandle.empty()) items.emplace_back("tolm_roofline_handle", ridgeHandle);
    return items;
  }
  static Items without(Items items, const std::string& key) {
    std::erase_if(items, [&](const auto& item) { return item.first == key; });
    return items;
  }

  /// Makes the entities buildings of these items, keyed by handle, and goes on with the drawing.
  void store(const std::map<std::string, Items>& records) {
    std::string all = text();
    for (const auto& [handle, items] : records) {
      const std::size_t at = all.find("\n  5\n" + handle + "\n", all.find("\nENTITIES\n"));
      ASSERT_NE(at, std::string::npos) << handle;
      std::string record = "1001\nORV_VR\n";
      for (const auto& [key, value] : items) {
        record += "1000\n" + key + "\n" + (key == "tolm_roofline_handle" ? "1005\n" : "1000\n") + value + "\n";
      }
      all.insert(all.find("\n  0\n", at) + 1, record);
    }
    addApplication(all, "ORV_VR");
    openText(all);
  }
  /// Puts shadow settings into the drawing: tags of an xrecord.
  void storeSettings(const std::string& tags) {
    std::string all = text();
    const std::string head = "\n100\nAcDbDictionary\n281\n     1\n";
    const std::size_t root = all.find(head, all.find("\nOBJECTS\n"));
    ASSERT_NE(root, std::string::npos);
    all.insert(root + head.size(), "  3\norv_tolmex\n350\nFA0\n");
    all.insert(all.find("  0\nENDSEC", root),
               "  0\nDICTIONARY\n  5\nFA0\n100\nAcDbDictionary\n281\n     1\n  3\nshadowSettings\n350\nFA1\n"
               "  0\nXRECORD\n  5\nFA1\n330\nFA0\n100\nAcDbXrecord\n280\n     1\n" +
                   tags);
    openText(all);
  }

  /// Settings of shadows for that: cast from there, in the colour 5, with the scale 0.3.
  static std::string settings(const std::string& angle, const std::string& type = "20",
                              const std::string& length = "3.0") {
    return tagLines("1 SHADOWANGLERAD|40 " + angle + "|1 SHADOWCOLOR|70 5|1 SHADOWLENGTHPERFLOOR|40 " + length +
                    "|1 SHADOWSCALE|40 0.3|1 SHADOWHATCHTYPE|70 " + type + "|");
  }

  /// A closed rectangle; its handle.
  std::string rectangle(double x, double y, double width, double height) {
    const auto corner = [](double a, double b) { return std::to_string(a) + "," + std::to_string(b) + "\n"; };
    run("PLINE\n" + corner(x, y) + corner(x + width, y) + corner(x + width, y + height) + corner(x, y + height) +
        "C\n");
    return handle(*last(DxfType::LwPolyline));
  }
  /// An open polyline through "x,y" points; its handle.
  std::string course(const std::string& points) {
    run("PLINE\n" + points + "\n");
    return handle(*last(DxfType::LwPolyline));
  }
  static std::string pickHandle(const std::string& handle) { return "(handent \"" + handle + "\")\n"; }
  Slot& slot(const std::string& handle) { return *drawing().findHandle(host::text::parseHandle(handle)); }

  std::size_t shadowCount() { return living(DxfType::Hatch, L"tmv_varjo").size(); }
  /// The corners of a hatch's one loop.
  static std::vector<std::pair<double, double>> corners(const Slot& hatch) {
    std::vector<std::pair<double, double>> found;
    bool isInLoop = false;
    Tag tag;
    for (TagCursor cursor = hatch.tags(); cursor.next(tag) && tag.code != 97;) {
      isInLoop = isInLoop || tag.code == 93;
      if (isInLoop && tag.code == 10) found.emplace_back(tag.real(), 0);
      if (isInLoop && tag.code == 20) found.back().second = tag.real();
    }
    return found;
  }
  std::size_t roofCount() { return living(DxfType::Hatch, L"tma_katto").size(); }
  /// Every living group's description by its name.
  std::map<std::string, const Slot*> groups() {
    std::map<std::string, const Slot*> found;
    const std::string all = text();
    drawing().forEachSlot([&](Slot& group) {
      if (group.type != DxfType::Group || group.isErased()) return;
      const std::size_t entry = all.find("\n350\n" + handle(group) + "\n");
      const std::size_t name = all.rfind('\n', entry - 1) + 1;
      found[all.substr(name, entry - name)] = &group;
    });
    return found;
  }
  static std::size_t members(const Slot& group) {
    std::size_t count = 0;
    Tag tag;
    for (TagCursor cursor = group.tags(); cursor.next(tag);) count += tag.code == 340 ? 1 : 0;
    return count;
  }

 private:
  static void addApplication(std::string& all, const std::string& name) {
    if (all.find("\n  2\n" + name + "\n", all.find("\nAPPID\n")) != std::string::npos) return;
    all.insert(all.find("  0\nAPPID"),
               "  0\nAPPID\n  5\nFF0\n100\nAcDbSymbolTableRecord\n100\nAcDbRegAppTableRecord\n"
               "  2\n" +
                   name + "\n 70\n     0\n");
  }
};

}  // namespace tests
