// The last line of a run: how much was done and what was left out.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "Editor/RunSummary.h"
#include "Problems/Problem.h"

namespace tolmex {

/// {"commands":3,"made":12,"changed":4,"erased":0,"skipped":{"not closed":2},"notHatched":{},"foundNothing":0}
nlohmann::ordered_json summaryJson(const host::editor::RunSummary& summary);
/// What a worker has left of it by `leaveNote`; empty for a text that is none.
host::editor::RunSummary summaryOfNote(const std::string& note);

/// Ends the transcript: "Done: 3 commands; 12 objects made; ...", or "Stopped: ..." of a run that has failed. A worker
/// of several leaves the sum to its parent instead.
void tellSummary(const host::editor::RunSummary& summary, bool isDone, bool isQuiet);

/// A script that left something out has failed where it was to leave out nothing.
host::Result<> checkStrictly(const host::editor::RunSummary& summary, const std::string& script);

}  // namespace tolmex
