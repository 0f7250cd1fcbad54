// The program's calls: what the command line asks for, and carrying it out.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Editor/Result.h"
#include "Picture/Picture.h"

namespace tolmex {

/// What every call takes.
struct CommonOptions {
  std::filesystem::path drawing;
  std::vector<std::filesystem::path> supportFolders;
};

struct RunOptions : CommonOptions {
  std::filesystem::path script;       // empty: only `commands`
  std::vector<std::string> commands;  // script lines given inline, after the script
  std::filesystem::path out;
  bool savesDrawing = false;  // to `out`
  std::vector<std::filesystem::path> pictures;
  std::vector<std::string> variables;  // NAME=VALUE
  bool quiet = false;
};

struct PictureCallOptions : CommonOptions {
  std::filesystem::path out;
  host::picture::PictureOptions picture;
};

struct InfoOptions : CommonOptions {};

/// Each answers the exit status; problems have then been printed to standard error.
int runDrawing(const RunOptions& options);
int pictureDrawing(const PictureCallOptions& options);
int describeDrawing(const InfoOptions& options);

/// Empty, or one sentence: the name of a picture has no ending that names a format.
std::string refusePictureName(const std::filesystem::path& file);
/// Prints one sentence to standard error and answers the status.
int complain(host::editor::RunStatus status, const std::string& sentence);
/// Draws one file of the named format; problems are printed.
host::editor::RunStatus writePicture(const host::database::DrawingDatabase& drawing,
                                     host::picture::PictureOptions options, const std::filesystem::path& file);

}  // namespace tolmex
