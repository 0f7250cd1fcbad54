#include "Resume.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <optional>

#include "Outputs.h"
#include "Platform/Paths.h"

namespace tolmex {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

namespace {

/// FNV-1a, 64 bits.
std::string fingerprint(const std::string& text) {
  std::uint64_t hash = 0xCBF29CE484222325U;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
  return digits.data();
}

struct State {
  std::uintmax_t size = 0;
  std::int64_t time = 0;
};

std::optional<State> stateOf(const fs::path& file) {
  std::error_code error;
  State state;
  state.size = fs::file_size(file, error);
  if (error) return std::nullopt;
  state.time = static_cast<std::int64_t>(fs::last_write_time(file, error).time_since_epoch().count());
  return error ? std::nullopt : std::optional(state);
}

/// The file as it is now, for what has no text of its own in the call.
void addFile(std::string& text, const fs::path& file) {
  if (const std::optional<State> state = stateOf(file))
    text += "\n" + file.string() + " " + std::to_string(state->size) + " " + std::to_string(state->time);
}

constexpr std::array kSettings = {"tolm.ini", "orvpath.cfg"};

}  // namespace

ResumeLog::ResumeLog(const RunOptions& options, const std::string& script) : call_(options.asGiven + "\n" + script) {
  addFile(call_, host::platform::pathOf(options.picture.sheetFile));
  addFile(call_, host::platform::pathOf(options.picture.legendFile));
  for (const fs::path& folder : options.supportFolders) {
    std::error_code error;
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder, error)) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) addFile(call_, file);
  }
  for (const char* const name : kSettings) addFile(call_, name);
}

std::string ResumeLog::howMade(const fs::path& drawing) const {
  std::string text = call_ + "\n" + drawing.string();
  for (const char* const name : kSettings) addFile(text, drawing.parent_path() / name);
  return fingerprint(text);
}

ResumeLog::Folder& ResumeLog::folderOf(const fs::path& output) {
  const fs::path place = output.parent_path();
  const auto [found, isNew] = folders_.try_emplace(place);
  if (!isNew) return found->second;
  std::ifstream stream(place / kName);
  for (std::string line; std::getline(stream, line);) {
    // The last line of a call that was killed may be cut; what is not as add() writes it is no line of ours.
    try {
      const Json json = Json::parse(line);
      found->second[json.at("file").get<std::string>()] = {json.at("made").get<std::string>(),
                                                           json.at("size").get<std::uintmax_t>(),
                                                           json.at("time").get<std::int64_t>()};
    } catch (const Json::exception&) {
      continue;
    }
  }
  return found->second;
}

bool ResumeLog::isUpToDate(const fs::path& drawing, const std::vector<fs::path>& outputs) {
  const std::optional<State> source = stateOf(drawing);
  const std::string made = howMade(drawing);
  return source && !outputs.empty() && std::all_of(outputs.begin(), outputs.end(), [&](const fs::path& output) {
           const std::optional<State> state = stateOf(output);
           if (!state || state->time < source->time) return false;
           const Folder& folder = folderOf(output);
           const auto known = folder.find(output.filename().string());
           return known != folder.end() && known->second == Known{made, state->size, state->time};
         });
}

void ResumeLog::add(const fs::path& drawing, const std::vector<fs::path>& outputs) {
  const std::string made = howMade(drawing);
  for (const fs::path& output : outputs) {
    const std::optional<State> state = stateOf(output);
    if (!state || isStandardStream(output)) continue;
    const Json json = {
        {"file", output.filename().string()}, {"made", made}, {"size", state->size}, {"time", state->time}};
    std::ofstream(output.parent_path() / kName, std::ios::app)
        << json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
  }
}

}  // namespace tolmex
