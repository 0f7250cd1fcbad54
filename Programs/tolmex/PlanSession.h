// Host and plug-in brought together around one drawing: what `run` and `shell` share.
#pragma once

#include "Commands.h"
#include "Editor/Application.h"

namespace tolmex {

/// Where the results of one drawing go.
struct PlanOutputs {
  std::optional<std::filesystem::path> drawing;
  std::vector<PictureFile> pictures;

  bool isEmpty() const { return !drawing && pictures.empty(); }
  std::vector<std::filesystem::path> files() const;
};

/// The outputs a call names for one of its drawings; `refusal` is one sentence when a name cannot be used.
PlanOutputs outputsOf(const RunOptions& options, const std::filesystem::path& drawing, std::string& refusal);
/// Wrong usage of a call that opens drawings; one sentence, or empty.
std::string refuseRunOptions(const RunOptions& options);

/// Says why a drawing could not be opened, or that the work was interrupted; the exit status.
host::editor::RunStatus sayUnopened(const host::editor::Result& opened);
/// Opens a drawing (an empty path: a new one) and sets the variables. A failure has been printed.
host::editor::RunStatus openDrawing(host::editor::Application& application, const std::filesystem::path& file,
                                    const std::vector<std::string>& variables);

class PlanSession {
 public:
  PlanSession(const RunOptions& options, host::editor::ApplicationOptions settings);

  host::editor::Application& application() { return application_; }
  /// Opens the drawing (an empty path: a new one), sets the variables, loads the plug-in. A failure has been printed.
  host::editor::RunStatus open(const std::filesystem::path& drawing);
  /// Saves and draws the current drawing; every failure is printed, none stops the rest.
  host::editor::RunStatus write(const PlanOutputs& outputs);

 private:
  host::editor::RunStatus save(const std::filesystem::path& file);

  const RunOptions& options_;
  host::editor::Application application_;
};

}  // namespace tolmex
