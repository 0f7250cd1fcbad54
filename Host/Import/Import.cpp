#include "Import/Import.h"

#include <cpl_conv.h>

#include "Import/Features.h"
#include "Import/Plan.h"
#include "Import/Rules.h"

namespace host::import {
namespace {

/// The text of the rules with the date in the place of {date}; without one the mark goes, with the blank before it.
std::string creditOf(std::string credit, const std::string& date) {
  constexpr std::string_view kMark = "{date}";
  const std::size_t at = credit.find(kMark);
  if (at == std::string::npos) return credit;
  credit.replace(at, kMark.size(), date);
  while (date.empty() && !credit.empty() && credit.back() == ' ') credit.pop_back();
  return credit;
}

Result<Imported> importPlan(const ImportCall& call, AcDbDatabase& drawing) {
  const Result<ElementTable> table = readElements(call.elements);
  if (!table) return table;
  const Result<Rules> rules = readRules(call.rules, *table);
  if (!rules) return rules;
  Result<Features> features = readFeatures(call, *table, *rules);
  if (!features) return features;

  Imported imported;
  imported.credit = creditOf(rules->credit, call.date);
  ScriptValues values;
  values.shadowDegrees = call.shadowDegrees.value_or(rules->shadowDegrees);
  values.shadowLength = rules->shadowLength;
  values.symbols = call.symbols;
  values.head = "; " + rules->name + ", " + features->system + "\n; " + imported.credit + "\n";
  DrawnPlan drawn = drawFeatures(*features, values.shadowDegrees, table->find(kRidgeElement), drawing);
  const curves::Box& box = drawn.box;
  imported.extents = {box.minX, box.minY, box.maxX, box.maxY};
  values.ridges = std::move(drawn.ridges);
  const std::size_t ridges = values.ridges.size();
  imported.script = scriptOf(*features, *table, values);
  imported.system = features->system;
  imported.report = std::move(features->report);
  std::string made = "made:";
  for (const Batch& batch : features->batches) {
    made += (made.ends_with(':') ? " " : ", ") + batch.layer + " " +
            std::to_string(batch.areas.size() + batch.lines.size() + batch.points.size());
  }
  if (ridges > 0) made += ", " + std::to_string(ridges) + " ridges";
  imported.report.push_back(made);
  imported.warnings = std::move(features->warnings);
  return imported;
}

}  // namespace
}  // namespace host::import

extern "C" void tolmexImport(const host::import::ImportCall& call, AcDbDatabase& drawing,
                             std::optional<host::Result<host::import::Imported>>& answer) {
  answer.emplace(host::import::importPlan(call, drawing));
}
