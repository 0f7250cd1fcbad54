// The editor of the host: what programs (command line, terminal, window) open, run and ask.
//
// A front end gives an Observer, which hears of everything, and runs commands from an InputSource, which is asked for
// every answer. One Application at a time stands for the process-wide host that plug-ins see (document manager, command
// stack, registry). Destroying it closes the drawings and unloads the modules.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Curves/Plane.h"
#include "Database/DrawingDatabase.h"
#include "Editor/InputSource.h"
#include "Editor/Observer.h"
#include "Editor/Prompter.h"
#include "Editor/RunSummary.h"
#include "Problems/Problem.h"

namespace host::editor {

class Session;

struct ApplicationOptions {
  std::wstring programName = L"tolmex";  // caption of message boxes
  Observer* observer = nullptr;          // outlives the application; null: none
  std::vector<std::filesystem::path> supportFolders;
  bool problemsOnScreen = false;              // beside the transcript: what that has shown is not reported again
  std::vector<std::wstring> failureCaptions;  // of message boxes by which plug-ins tell that a command has failed
  bool dialogsByHand = false;  // dialogs and boxes stand on the screen instead of taking lines of the input
  bool isStrict = false;       // what a command skips, or a pick does not find, fails the script
};

class Application {
 public:
  explicit Application(ApplicationOptions options = {});
  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  /// Opens a drawing as a further document and makes it the current one; one that is open already only becomes current.
  /// Status 2 with one sentence on failure.
  Result<> openDrawing(const std::filesystem::path& file);
  /// A new drawing with the standard tables, metric, as a further document.
  Result<> newDrawing();
  /// Closes the current document without saving; the one before it becomes current.
  void closeDrawing();
  /// The current drawing, or null.
  database::DrawingDatabase* drawing() const;
  /// File of the current drawing; empty for a new one.
  std::filesystem::path drawingFile() const;
  /// The folders of the drawing and of the options, in the order in which files that a drawing needs are looked for.
  std::vector<std::filesystem::path> supportFolders() const;
  /// Opens what `content` holds as a further drawing that counts as changed. With `file` it is the drawing of that file
  /// (a recovery); without one it is a new drawing called `name`.
  Result<> openContent(const std::filesystem::path& content, const std::filesystem::path& file,
                       const std::filesystem::path& name);
  enum class Current { Counts, LeftOut };
  /// Names of the open drawings with changes that were not saved; of new ones without a folder.
  std::vector<std::filesystem::path> unsavedDrawings(Current current) const;
  /// The open drawings in the order they were opened.
  struct OpenDrawing {
    database::DrawingDatabase* drawing = nullptr;  // names it to `activateDrawing` and `closeDrawing`
    std::filesystem::path file;                    // empty for a new one
    std::wstring name;                             // of the file, or "Drawing1.dxf"
    bool isModified = false;
    bool isCurrent = false;
  };
  std::vector<OpenDrawing> drawings() const;
  /// Makes an open drawing the current one. False while a command runs, and for a drawing that is not open.
  bool activateDrawing(const database::DrawingDatabase& drawing);
  /// Closes an open drawing without saving. False as above.
  bool closeDrawing(const database::DrawingDatabase& drawing);
  /// Names of the commands that U, or REDO, would take in turn in the current drawing, the next one first.
  std::vector<std::wstring> undoNames(std::size_t most = 20) const;
  std::vector<std::wstring> redoNames(std::size_t most = 20) const;
  /// Writes the current drawing; status 4. The drawing keeps its own name. Refused when the file belongs to another
  /// open drawing, or is the drawing's own and another program has changed it.
  Result<> saveDrawing(const std::filesystem::path& file);
  /// The current drawing as it would be written; status 4.
  Result<std::string> drawingText();

  /// Loads a module and tells it about the open drawings. A module that is loaded already stays as it is.
  Result<> loadModule(const std::filesystem::path& file);
  /// Refused while the module is locked.
  Result<> unloadModule(std::wstring_view name);
  std::vector<std::wstring> moduleNames() const;

  /// "LTSCALE", "0.5": the value as SETVAR takes it. Status 1.
  Result<> setVariable(std::wstring_view name, std::wstring_view value);

  /// Runs commands until the input ends, fails or says QUIT. The first failure is the answer.
  Result<> run(InputSource& input);
  /// QUIT was said.
  bool quitRequested() const;
  /// An answer or command of interactive input has failed, which did not end it.
  bool hasFailed() const;
  /// What was done since the application was made.
  RunSummary summary() const;
  /// Makes the running command's next question end in Esc and stops the script; a command at work is left, and the
  /// drawing is as it was before it. Safe from signal handlers and threads.
  static void interrupt();

  /// A command of the program itself. The handler uses `Prompter` for questions and failures. Names are in capitals;
  /// `help` says what it does, as in "draws the drawing into a file".
  void addCommand(std::wstring name, std::int32_t flags, std::function<void(Prompter&)> handler, std::wstring help);
  /// Global and local names of all commands, sorted: for completion.
  std::vector<std::wstring> commandNames() const;

  /// The set selected before a command starts; for windows. Handed to the next command that takes it.
  void setPickfirst(const std::vector<database::Slot*>& entities);
  const std::vector<database::Slot*>& pickfirst() const;
  /// What the input-point monitors say at a point of the current space, lines separated by "\n".
  std::wstring tooltipAt(const AcGePoint3d& point);
  /// What they say there of one entity, whatever else lies at the point; such as of the outline around a fill.
  std::wstring tooltipOf(database::Slot& entity, const AcGePoint3d& point);

  /// What the window shows of the current drawing, and how many pixels wide it is: VIEWCTR, VIEWSIZE and SCREENSIZE
  /// tell it, and picks and tooltips take PICKBOX pixels of it. Nothing that scripts are answered with depends on it: a
  /// saved script names what was picked. Without it the view is that of ZOOM, or the extents. Another drawing or layout
  /// has a view of its own. An empty box takes it away.
  void setView(const curves::Box& view, double pixels);

  /// Block of the current layout.
  const database::BlockContents* currentSpace() const;
  std::wstring currentLayoutName() const;

  /// Selection sets that plug-ins have not freed.
  std::size_t openSelectionSets() const;
  /// Makes every document lock of plug-ins fail from now on, for trying out what they do then.
  void refuseLocks(bool refuse);
};

}  // namespace host::editor
