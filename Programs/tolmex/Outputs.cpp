#include "Outputs.h"

#include <algorithm>
#include <map>

#include "Console.h"
#include "Dxf/DxfFile.h"
#include "Interruption.h"
#include "Platform/Files.h"
#include "Platform/Streams.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Code;
using host::problemOf;
using host::Result;

namespace {

fs::path trueName(const fs::path& file) {
  std::error_code error;
  const fs::path name = fs::weakly_canonical(fs::absolute(file, error), error);
  return error ? file : name;
}

/// Files by name and, where they are there, by what the name leads to.
class FileSet {
 public:
  /// The name under which the same file was added before; null when it was not.
  const fs::path* find(const fs::path& file) const {
    if (const auto known = byName_.find(trueName(file)); known != byName_.end()) return &known->second;
    const host::platform::FileFacts facts = host::platform::factsOf(file);
    if (!facts.isThere) return nullptr;
    const auto known = byNode_.find({facts.device, facts.node});
    return known != byNode_.end() ? &known->second : nullptr;
  }
  void add(const fs::path& file) { add(file, file); }
  void add(const fs::path& file, const fs::path& shown) {
    byName_.emplace(trueName(file), shown);
    const host::platform::FileFacts facts = host::platform::factsOf(file);
    if (facts.isThere) byNode_.emplace(std::pair(facts.device, facts.node), shown);
  }

 private:
  std::map<fs::path, fs::path> byName_;
  std::map<std::pair<std::uint64_t, std::uint64_t>, fs::path> byNode_;
};

}  // namespace

std::string shownName(const fs::path& name) { return isStandardStream(name) ? "standard input" : name.string(); }

Result<> checkOutputs(const std::vector<fs::path>& inputs, const std::vector<fs::path>& outputs,
                      const fs::path& folderToCome) {
  FileSet sources, results;
  for (const fs::path& input : inputs)
    sources.add(isStandardStream(input) ? host::platform::standardInputName() : input, shownName(input));
  std::error_code error;
  bool takesStandardOutput = false;
  for (const fs::path& output : outputs) {
    const auto refused = [&output](std::string why) {
      return problemOf(Code::OutputRefused, output.string(), std::move(why));
    };
    if (isStandardStream(output)) {
      if (takesStandardOutput) return refused("two outputs go to standard output");
      takesStandardOutput = true;
      continue;
    }
    if (fs::is_directory(output, error)) return refused("this output is a folder");
    // Outputs take the place of older files; a device or a pipe must not be replaced by a file.
    if (fs::exists(output, error) && !fs::is_regular_file(output, error))
      return refused("this output is no ordinary file");
    const fs::path folder = output.parent_path();
    if (!folder.empty() && folder != folderToCome && !fs::is_directory(folder, error))
      return refused("there is no folder " + folder.string());
    if (const fs::path* const input = sources.find(output))
      return refused("this output is the input " + input->string());
    if (results.find(output) != nullptr) return refused("two outputs have this name");
    results.add(output);
  }
  return {};
}

Result<> prepareOutputs(const std::vector<fs::path>& inputs, const std::vector<fs::path>& outputs,
                        const std::optional<fs::path>& folder) {
  const auto refused = [](const fs::path& name, std::string why) {
    return problemOf(Code::OutputRefused, name.string(), std::move(why));
  };
  std::error_code error;
  if (folder && fs::exists(*folder, error) && !fs::is_directory(*folder, error))
    return refused(*folder, "this is no folder");
  if (Result<> checked = checkOutputs(inputs, outputs, folder.value_or(fs::path())); !checked) return checked;
  if (std::any_of(outputs.begin(), outputs.end(), isStandardStream)) {
    if (host::platform::isTerminal(host::platform::Stream::Out))
      return refused("-", "standard output is a terminal; name a file or send it elsewhere");
    if (!keepStandardOutputForData()) return refused("-", "standard output cannot be written");
  }
  if (folder && !fs::is_directory(*folder, error)) {
    fs::create_directories(*folder, error);
    if (error) return refused(*folder, "the folder cannot be made: " + error.message());
  }
  return {};
}

Result<> writeOutput(const fs::path& file, std::string_view bytes) {
  if (!isStandardStream(file)) {
    const Interruption::Writing writing;
    return host::dxf::writeFileWhole(file, bytes);
  }
  if (writeStandardOutput(bytes)) return {};
  return problemOf(Code::OutputFailed, "standard output cannot be written");
}

}  // namespace tolmex
