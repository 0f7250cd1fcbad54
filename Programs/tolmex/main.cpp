// The program `tolmex`: illustrates plans, draws pictures of drawings, says what is in them.
#include <poll.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>

#include "Commands.h"

namespace {

using host::editor::RunStatus;

constexpr const char* kFooter =
    "Exit status: 0 done, 1 wrong usage, 2 a drawing could not be read, 3 the script failed,\n"
    "4 an output could not be written.";

void addCommon(CLI::App& call, tolmex::CommonOptions& options) {
  call.add_option("PLAN", options.drawing, "the drawing, a DXF or DWG file")->required()->type_name("FILE");
}

void addSupport(CLI::App& call, tolmex::CommonOptions& options) {
  call.add_option("--support", options.supportFolders,
                  "a folder with tolm.ini, orvpath.cfg, linetype and pattern files; may be given more than once")
      ->type_name("DIR")
      ->allow_extra_args(false)
      ->check(CLI::ExistingDirectory);
}

/// An option whose text a function of the picture module reads; its sentence becomes the usage error.
void addPictureOption(CLI::App& call, const std::string& name, host::picture::PictureOptions& options,
                      std::string (*read)(host::picture::PictureOptions&, std::string_view), const std::string& form,
                      const std::string& description) {
  call.add_option_function<std::string>(
          name,
          [&options, read, name](const std::string& text) {
            const std::string refusal = read(options, text);
            if (!refusal.empty()) throw CLI::ValidationError(name, refusal);
          },
          description)
      ->type_name(form);
}

/// Whoever read standard output through a pipe has seen enough.
bool readerLeft() {
  pollfd out{STDOUT_FILENO, 0, 0};
  return ::poll(&out, 1, 0) == 1 && (out.revents & POLLERR) != 0;
}

int runProgram(int argc, char** argv) {
  CLI::App app("Illustrates land-use plans: hatched areas, hedges, fences, parking rows, without a CAD program.");
  app.set_version_flag("--version", "tolmex " TOLMEX_VERSION);
  app.footer(kFooter);
  app.require_subcommand(1);
  int status = 0;

  tolmex::RunOptions run;
  CLI::App* const runCall = app.add_subcommand("run", "run a script on a drawing, save it, draw pictures of it");
  addCommon(*runCall, run);
  runCall->add_option("--script", run.script, "the script: commands and answers, as typed")->type_name("FILE");
  runCall->add_option("--command", run.commands, "a line of script; may be given more than once, after --script")
      ->type_name("LINE")
      ->allow_extra_args(false);
  runCall->add_option("--out", run.out, "where the drawing is saved; without it nothing is written to it")
      ->type_name("FILE");
  runCall
      ->add_option("--picture", run.pictures,
                   "a picture of the result, .png, .svg or .pdf; may be given more than once")
      ->type_name("FILE")
      ->allow_extra_args(false);
  runCall->add_option("--set", run.variables, "sets a system variable first; may be given more than once")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  runCall->add_flag("--quiet", run.quiet, "do not print what the command line would show");
  addSupport(*runCall, run);
  runCall->callback([&] {
    run.savesDrawing = runCall->count("--out") > 0;
    if (run.script.empty() && run.commands.empty()) throw CLI::RequiredError("--script or --command");
    status = tolmex::runDrawing(run);
  });

  tolmex::PictureCallOptions picture;
  CLI::App* const pictureCall = app.add_subcommand("picture", "draw a picture of a drawing as it is");
  addCommon(*pictureCall, picture);
  pictureCall->add_option("OUT", picture.out, "the picture, .png, .svg or .pdf")->required()->type_name("FILE");
  addPictureOption(*pictureCall, "--width", picture.picture, host::picture::setWidth, "PX", "width in pixels");
  addPictureOption(*pictureCall, "--paper", picture.picture, host::picture::setPaper, "SIZE",
                   "paper: A0 to A5, A3-landscape, or 594x420 in millimetres");
  addPictureOption(*pictureCall, "--scale", picture.picture, host::picture::setScale, "1:N", "scale on the paper");
  addPictureOption(*pictureCall, "--window", picture.picture, host::picture::setWindow, "x1,y1,x2,y2",
                   "the part to draw, drawing units");
  addPictureOption(*pictureCall, "--background", picture.picture, host::picture::setBackground, "COLOUR",
                   "a name, #rrggbb or transparent");
  addPictureOption(*pictureCall, "--lineweights", picture.picture, host::picture::setLineweights, "off|FACTOR",
                   "draw lines thin, or their widths times a factor");
  pictureCall->add_option("--layers", picture.picture.layers, "only layers whose names match, for instance tm?_*")
      ->type_name("PATTERN");
  CLI::Option* const gray = pictureCall->add_flag_callback(
      "--grayscale", [&] { picture.picture.colors = host::picture::ColorMode::Grayscale; }, "shades of grey");
  pictureCall
      ->add_flag_callback(
          "--monochrome", [&] { picture.picture.colors = host::picture::ColorMode::Monochrome; }, "one colour")
      ->excludes(gray);
  pictureCall->callback([&] { status = tolmex::pictureDrawing(picture); });

  tolmex::InfoOptions info;
  CLI::App* const infoCall = app.add_subcommand("info", "say which elements a drawing has and what is wrong with them");
  addCommon(*infoCall, info);
  infoCall->callback([&] { status = tolmex::describeDrawing(info); });

  // Writing then fails with a reason that can be told: a file beyond the limit, a reader of standard output that left.
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
  try {
    // The library would say of a misspelt call that it is missing.
    if (argc > 1 && argv[1][0] != '-') {
      const auto calls = app.get_subcommands(nullptr);
      if (std::ranges::none_of(calls, [&](const CLI::App* call) { return call->get_name() == argv[1]; })) {
        throw CLI::ValidationError(argv[1], "No such call; the calls are run, picture and info");
      }
    }
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // Help and version are no errors; everything else is wrong usage, whatever number the library gives it.
    return app.exit(error) == 0 ? 0 : static_cast<int>(RunStatus::WrongUsage);
  }
  if ((std::fflush(stdout) != 0 || std::ferror(stdout) != 0) && !readerLeft()) {
    return std::max(status, tolmex::complain(RunStatus::OutputFailed, "standard output cannot be written"));
  }
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return runProgram(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tolmex: internal failure: %s\n", error.what());
  } catch (...) {
    std::fprintf(stderr, "tolmex: internal failure\n");
  }
  return static_cast<int>(RunStatus::ScriptFailed);
}
