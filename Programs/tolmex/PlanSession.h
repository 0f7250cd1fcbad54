// Host and plug-in brought together around one drawing: what `run` and `shell` share.
#pragma once

#include "Commands.h"
#include "Editor/Application.h"

namespace tolmex {

/// The plug-in beside the program; never one that lies in the current folder. Empty when /proc cannot be read.
std::filesystem::path plugInFile();
/// Captions of the boxes by which the plug-in reports failures.
inline const std::vector<std::wstring> kFailureCaptions = {L"Error", L"Out of memory"};

/// Where the results of one drawing go.
struct PlanOutputs {
  std::optional<std::filesystem::path> drawing;
  std::vector<PictureFile> pictures;

  bool isEmpty() const { return !drawing && pictures.empty(); }
  std::vector<std::filesystem::path> files() const;
};

/// The outputs a call names for one of its drawings; refuses names that cannot be used.
host::Result<PlanOutputs> outputsOf(const RunOptions& options, const std::filesystem::path& drawing);
/// Refuses wrong usage of a call that opens drawings.
host::Result<> checkRunOptions(const RunOptions& options);

/// Prints why a drawing could not be opened, or that the work was interrupted; answers the exit status.
int sayUnopened(const host::Problem& problem);
/// Opens a drawing (an empty path: a new one) and sets the variables.
host::Result<> openDrawing(host::editor::Application& application, const std::filesystem::path& file,
                           const std::vector<std::string>& variables);

/// Prints the problems that the host reports.
class ProblemPrinter : public host::editor::Observer {
 public:
  void report(const host::Problem& problem) override;
};

class PlanSession {
 public:
  PlanSession(const RunOptions& options, host::editor::ApplicationOptions settings);

  host::editor::Application& application() { return application_; }
  /// Opens the drawing (an empty path: a new one), sets the variables, loads the plug-in.
  host::Result<> open(const std::filesystem::path& drawing);
  /// Saves and draws the current drawing; every failure is printed, none stops the rest.
  host::RunStatus write(const PlanOutputs& outputs);

 private:
  host::Result<> save(const std::filesystem::path& file);

  const RunOptions& options_;
  host::editor::Application application_;
};

}  // namespace tolmex
