#include "Import/Rules.h"

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>

namespace host::import {
namespace {

using Json = nlohmann::ordered_json;

Problem wrong(const std::filesystem::path& file, const std::string& why) {
  return problemOf(Code::WrongUsage, file.string(), why);
}

/// Reads the file and hands its object to `fill`; what that throws, and what the library throws, is the problem.
template <class T, class Fill>
Result<T> readJson(const std::filesystem::path& file, const Fill& fill) {
  std::ifstream stream(file);
  if (!stream) return wrong(file, "cannot be read");
  try {
    const Json json = Json::parse(stream, nullptr, true, true);
    if (!json.is_object()) return wrong(file, "is no JSON object");
    T result;
    fill(json, result);
    return result;
  } catch (const Json::exception& error) {
    return wrong(file, error.what());
  } catch (const std::invalid_argument& error) {
    return wrong(file, error.what());
  }
}

/// Refuses names that nothing is read by: a misspelt one would be passed over.
void checkKeys(const Json& object, const std::vector<std::string>& known, const std::string& what) {
  for (const auto& [key, value] : object.items()) {
    if (std::find(known.begin(), known.end(), key) != known.end()) continue;
    std::string why = what;
    throw std::invalid_argument(why.append(" has no \"").append(key).append("\""));
  }
}

/// A way or several of them; numbers stand for themselves.
std::vector<std::string> waysOf(const Json& object, const char* key) {
  std::vector<std::string> ways;
  if (!object.contains(key)) return ways;
  const auto add = [&ways](const Json& value) {
    ways.push_back(value.is_string() ? value.get<std::string>() : value.dump());
  };
  const Json& value = object[key];
  if (!value.is_array()) add(value);
  if (value.is_array()) {
    for (const Json& each : value) add(each);
  }
  return ways;
}

std::vector<std::string> linesOf(const Json& object, const char* key) {
  return object.contains(key) ? object[key].get<std::vector<std::string>>() : std::vector<std::string>();
}

Shape shapeOf(const std::string& name) {
  if (name == "area") return Shape::Area;
  if (name == "line") return Shape::Line;
  if (name == "point") return Shape::Point;
  throw std::invalid_argument("\"" + name + "\" is no shape; shapes are area, line and point");
}

Element elementOf(const std::string& name, const Json& json) {
  checkKeys(json, {"shape", "layer", "title", "lines", "each", "fill", "color", "whole", "merge"}, "element " + name);
  Element element;
  element.name = name;
  element.shape = shapeOf(json.value("shape", "area"));
  element.layer = json.value("layer", "");
  element.title = json.value("title", name);
  element.lines = linesOf(json, "lines");
  element.each = linesOf(json, "each");
  element.fill = json.value("fill", 0);
  element.color = json.value("color", 0);
  element.keepsWhole = json.value("whole", false);
  element.mayMerge = json.value("merge", true);
  return element;
}

Rule ruleOf(const Json& json, const ElementTable& elements) {
  checkKeys(json,
            {"where", "layer", "make", "width", "floors", "height", "size", "direction", "every", "part", "bottom"},
            "a rule");
  Rule rule;
  rule.where = json.value("where", "");
  rule.layer = json.value("layer", "");
  rule.make = json.value("make", "");
  rule.width = waysOf(json, "width");
  rule.floors = waysOf(json, "floors");
  rule.height = waysOf(json, "height");
  rule.size = waysOf(json, "size");
  rule.direction = waysOf(json, "direction");
  rule.isPart = json.value("part", false);
  rule.bottom = waysOf(json, "bottom");
  rule.every = json.value("every", 0.0);
  if (!rule.make.empty() && elements.find(rule.make) == nullptr) {
    std::string known;
    for (const Element& element : elements.elements) known.append(known.empty() ? "" : ", ").append(element.name);
    throw std::invalid_argument("nothing is made by the name \"" + rule.make + "\"; there are " + known);
  }
  return rule;
}

RoofRules roofRulesOf(const Json& json) {
  checkKeys(json, {"shape", "gabled", "hipped", "height", "angle", "direction", "across"}, "\"roof\"");
  RoofRules rules;
  rules.shape = json.at("shape");
  rules.gabled = json.value("gabled", "gabled");
  rules.hipped = json.value("hipped", "hipped");
  rules.height = waysOf(json, "height");
  rules.angle = waysOf(json, "angle");
  rules.direction = json.value("direction", "");
  rules.across = json.value("across", "");
  return rules;
}

}  // namespace

const Element* ElementTable::find(std::string_view name) const {
  const auto found =
      std::find_if(elements.begin(), elements.end(), [name](const Element& each) { return each.name == name; });
  return found == elements.end() ? nullptr : &*found;
}

Result<ElementTable> readElements(const std::filesystem::path& file) {
  return readJson<ElementTable>(file, [](const Json& json, ElementTable& table) {
    checkKeys(json, {"before", "after", "defaults", "sizes", "beforePoints", "afterPoints", "elements"}, "the table");
    table.before = linesOf(json, "before");
    table.after = linesOf(json, "after");
    table.beforePoints = linesOf(json, "beforePoints");
    table.afterPoints = linesOf(json, "afterPoints");
    for (const Json& each : json.value("sizes", Json::array()))
      table.sizes.push_back({each.at(0), each.at(1), each.at(2)});
    table.defaults = json.value("defaults", std::map<std::string, std::string>());
    for (const auto& [name, element] : json.at("elements").items()) table.elements.push_back(elementOf(name, element));
  });
}

Result<Rules> readRules(const std::filesystem::path& file, const ElementTable& elements) {
  return readJson<Rules>(file, [&elements](const Json& json, Rules& rules) {
    checkKeys(json,
              {"name", "credit", "system", "tags", "floorHeight", "shadow", "floors", "height", "floorsByUse",
               "floorsByArea", "roof", "rules"},
              "the file");
    rules.name = json.value("name", "");
    rules.credit = json.value("credit", "");
    rules.system = json.value("system", "");
    if (json.contains("tags")) {
      rules.keyColumn = json["tags"].at(0);
      rules.valueColumn = json["tags"].at(1);
    }
    rules.floorHeight = json.value("floorHeight", rules.floorHeight);
    if (!(rules.floorHeight > 0)) throw std::invalid_argument("\"floorHeight\" must be greater than 0");
    if (json.contains("shadow")) {
      checkKeys(json["shadow"], {"direction", "length"}, "\"shadow\"");
      rules.shadowDegrees = json["shadow"].value("direction", rules.shadowDegrees);
      rules.shadowLength = json["shadow"].value("length", rules.shadowLength);
    }
    rules.floors = waysOf(json, "floors");
    rules.height = waysOf(json, "height");
    if (json.contains("floorsByUse")) {
      for (const auto& [key, value] : json["floorsByUse"].items()) {
        if (value.is_string()) {
          if (key != "attribute") throw std::invalid_argument("\"floorsByUse\": \"" + key + "\" needs a number");
          rules.use = value;
        } else {
          rules.floorsByUse.emplace_back(key, value.get<double>());
        }
      }
    }
    if (json.contains("floorsByArea")) {
      for (const Json& each : json["floorsByArea"]) {
        if (each.is_array()) {
          rules.floorsByArea.push_back({each.at(0), each.at(1)});
        } else {
          rules.floorsByArea.push_back({0, each});
        }
      }
    }
    if (json.contains("roof")) rules.roof = roofRulesOf(json["roof"]);
    for (const Json& each : json.at("rules")) rules.rules.push_back(ruleOf(each, elements));
  });
}

}  // namespace host::import
