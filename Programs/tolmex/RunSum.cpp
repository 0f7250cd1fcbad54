#include "RunSum.h"

#include <nlohmann/json.hpp>

#include "Batch.h"
#include "Console.h"
#include "Text/Text.h"

namespace tolmex {

using host::editor::RunSummary;
using Json = nlohmann::ordered_json;

namespace {

Json reasonsJson(const RunSummary::Reasons& reasons) {
  Json json = Json::object();
  for (const auto& [reason, count] : reasons) json[reason] = count;
  return json;
}

RunSummary::Reasons reasonsOf(const Json& json) {
  RunSummary::Reasons reasons;
  for (const auto& [reason, count] : json.items()) reasons.emplace_back(reason, count.get<std::size_t>());
  return reasons;
}

}  // namespace

Json summaryJson(const RunSummary& summary) {
  return {{"commands", summary.commands},
          {"made", summary.made},
          {"changed", summary.changed},
          {"erased", summary.erased},
          {"skipped", reasonsJson(summary.skipped)},
          {"notHatched", reasonsJson(summary.notHatched)},
          {"foundNothing", summary.foundNothing}};
}

RunSummary summaryOfNote(const std::string& note) {
  RunSummary summary;
  const Json json = Json::parse(note, nullptr, false);
  if (!json.is_object()) return summary;
  summary.commands = json.value("commands", std::size_t{0});
  summary.made = json.value("made", std::size_t{0});
  summary.changed = json.value("changed", std::size_t{0});
  summary.erased = json.value("erased", std::size_t{0});
  summary.skipped = reasonsOf(json.at("skipped"));
  summary.notHatched = reasonsOf(json.at("notHatched"));
  summary.foundNothing = json.value("foundNothing", std::size_t{0});
  return summary;
}

void tellSummary(const RunSummary& summary, bool isDone, bool isQuiet) {
  if (leaveNote(summaryJson(summary).dump())) return;
  if (isQuiet) return;
  printTranscript(host::text::fromUtf8((isDone ? "Done: " : "Stopped: ") + summary.sentence() + "\n"));
}

host::Result<> checkStrictly(const RunSummary& summary, const std::string& script) {
  if (!summary.leftAnythingOut()) return {};
  return host::problemOf(host::Code::ObjectsSkipped, script, summary.sentence());
}

}  // namespace tolmex
