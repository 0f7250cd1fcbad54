#include "Editor/Application.h"

#include <algorithm>
#include <new>

#include "Dxf/DxfFile.h"
#include "Editor/DialogInput.h"
#include "Editor/Session/Session.h"
#include "Platform/Paths.h"
#include "Text/Text.h"

namespace host::editor {
namespace {

Session& host() { return Session::instance(); }

}  // namespace

Application::Application(ApplicationOptions options) { host().begin(std::move(options)); }
Application::~Application() {
  try {
    host().end();
  } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): drawings are closed first; the program ends anyway
  }
}

Result<> Application::openDrawing(const std::filesystem::path& file) { return host().openDrawing(file); }
Result<> Application::newDrawing() { return host().newDrawing(); }

void Application::closeDrawing() {
  if (Document* const document = host().documents().current()) host().closeDocument(*document);
}

database::DrawingDatabase* Application::drawing() const {
  const Document* const document = host().documents().current();
  return document != nullptr ? &document->drawing() : nullptr;
}

std::filesystem::path Application::drawingFile() const {
  const Document* const document = host().documents().current();
  return document != nullptr ? document->file() : std::filesystem::path();
}

std::vector<std::filesystem::path> Application::supportFolders() const {
  std::vector<std::filesystem::path> folders = {drawingFile().parent_path()};
  const auto& more = host().options().supportFolders;
  folders.insert(folders.end(), more.begin(), more.end());
  return folders;
}

Result<> Application::openContent(const std::filesystem::path& content, const std::filesystem::path& file,
                                  const std::filesystem::path& name) {
  return host().openContent(content, file, name);
}

std::vector<std::filesystem::path> Application::unsavedDrawings(Current current) const {
  std::vector<std::filesystem::path> unsaved;
  for (const auto& document : host().documents().all()) {
    if (current == Current::LeftOut && document.get() == host().documents().current()) continue;
    if (document->drawing().isModified()) unsaved.push_back(platform::pathOf(text::toUtf8(document->fileName())));
  }
  return unsaved;
}

namespace {

/// The document of an open drawing while no command runs; else null.
Document* idleDocument(const database::DrawingDatabase& drawing) {
  if (host().runner().depth() > 0) return nullptr;
  for (const auto& document : host().documents().all()) {
    if (&document->drawing() == &drawing) return document.get();
  }
  return nullptr;
}

}  // namespace

std::vector<Application::OpenDrawing> Application::drawings() const {
  std::vector<OpenDrawing> all;
  for (const auto& document : host().documents().all()) {
    const std::filesystem::path name = platform::pathOf(text::toUtf8(document->fileName()));
    all.push_back({&document->drawing(), document->file(), text::fromUtf8(name.filename().string()),
                   document->drawing().isModified(), document.get() == host().documents().current()});
  }
  return all;
}

bool Application::activateDrawing(const database::DrawingDatabase& drawing) {
  Document* const document = idleDocument(drawing);
  if (document != nullptr) host().documents().activate(*document);
  return document != nullptr;
}

bool Application::closeDrawing(const database::DrawingDatabase& drawing) {
  Document* const document = idleDocument(drawing);
  if (document == nullptr) return false;
  database::DrawingDatabase* const current = this->drawing();
  host().closeDocument(*document);
  if (current != &drawing && current != nullptr) activateDrawing(*current);
  return true;
}

std::vector<std::wstring> Application::undoNames(std::size_t most) const {
  const Document* const document = host().documents().current();
  if (document == nullptr) return {};
  return document->drawing().undoNames(most, host().input().scriptGroup().number);
}

std::vector<std::wstring> Application::redoNames(std::size_t most) const {
  const Document* const document = host().documents().current();
  if (document == nullptr) return {};
  return document->drawing().redoNames(most, host().input().scriptGroup().number);
}

void Application::setView(const curves::Box& view, double pixels) {
  Document* const document = host().documents().current();
  if (document == nullptr) return;
  const bool isView = !view.isEmpty() && pixels > 0;
  document->screen = isView ? view : geometry::Box();
  document->screenPixels = isView ? pixels : 0;
}

Result<> Application::saveDrawing(const std::filesystem::path& file) {
  Document* const document = host().documents().current();
  if (document == nullptr) return problemOf(Code::OutputFailed, file.string(), "no drawing is open");
  return host().saveDrawing(*document, file);
}

Result<std::string> Application::drawingText() {
  Document* const document = host().documents().current();
  if (document == nullptr) return problemOf(Code::OutputFailed, "no drawing is open");
  host().modules().tellAll(AcRx::kSaveMsg, document);
  try {
    return dxf::drawingText(document->drawing());
  } catch (const std::bad_alloc&) {
    return problemOf(Code::OutputFailed, "there is not enough memory to write the drawing");
  }
}

Result<> Application::loadModule(const std::filesystem::path& file) { return host().modules().load(file); }
Result<> Application::unloadModule(std::wstring_view name) { return host().modules().unload(name); }

std::vector<std::wstring> Application::moduleNames() const {
  std::vector<std::wstring> names;
  for (const auto& module : host().modules().all()) names.push_back(module->name);
  return names;
}

Result<> Application::setVariable(std::wstring_view name, std::wstring_view value) {
  const Variable* const variable = host().variables().find(name);
  if (variable == nullptr) {
    std::string hint;
    for (const std::wstring& candidate : nearestNames(name, host().variables().names()))
      hint += (hint.empty() ? "; nearest: " : ", ") + text::toUtf8(candidate);
    return problemOf(Code::VariableRefused, "unknown system variable \"" + text::toUtf8(name) + "\"" + hint);
  }
  if (const Result<> set = host().variables().setText(*variable, value); !set)
    return problemOf(Code::VariableRefused, text::toUtf8(variable->name) + ": " + set.message());
  return {};
}

Result<> Application::run(InputSource& input) { return host().runner().run(input); }
bool Application::quitRequested() const { return host().isQuitting(); }
bool Application::hasFailed() const { return host().hasFailed(); }
RunSummary Application::summary() const {
  std::vector<const database::DrawingDatabase*> open;
  for (const auto& document : host().documents().all()) open.push_back(&document->drawing());
  return host().runner().count().summary(open);
}
void Application::interrupt() { Session::interrupt(); }

void Application::addCommand(std::wstring name, std::int32_t flags, std::function<void(Prompter&)> handler,
                             std::wstring help) {
  host().commands().addBuiltIn(std::move(name), flags, std::move(handler), std::move(help));
}

std::vector<std::wstring> Application::commandNames() const { return host().commands().names(); }

void Application::setPickfirst(const std::vector<database::Slot*>& entities) {
  Document* const document = host().documents().current();
  if (document == nullptr) return;
  host().setPickfirst(*document, entities);
  host().editor().tell(&AcEditorReactor::pickfirstModified);
}

const std::vector<database::Slot*>& Application::pickfirst() const {
  static const std::vector<database::Slot*> none;
  const Document* const document = host().documents().current();
  return document != nullptr ? document->pickfirst : none;
}

const database::BlockContents* Application::currentSpace() const {
  return host().documents().current() != nullptr ? &host().currentSpace() : nullptr;
}

std::wstring Application::currentLayoutName() const {
  const Document* const document = host().documents().current();
  return document != nullptr ? document->currentLayout : std::wstring();
}

std::size_t Application::openSelectionSets() const { return host().sets().count(); }
void Application::refuseLocks(bool refuse) { host().documents().refuseLocks(refuse); }

// ---- dialogs --------------------------------------------------------------------------------------------------------

Answer nextDialogLine(std::wstring_view what) { return host().dialogLine(what); }
bool refuseDialogLine(std::wstring_view sentence) { return host().refuse(sentence); }

void dialogOpened() { host().runner().dialogOpened(); }
void dialogClosed(bool isCancelled) { host().runner().dialogClosed(isCancelled); }

bool writeDialogFile(std::wstring_view who, const std::filesystem::path& file, std::string_view bytes) {
  const auto isOpen = [&file](const auto& document) {
    std::error_code error;
    return std::filesystem::equivalent(file, document->file(), error);
  };
  const auto& documents = host().documents().all();
  const Result<> written = std::any_of(documents.begin(), documents.end(), isOpen)
                               ? problemOf(Code::OutputRefused, file.string(), "this drawing is open")
                               : dxf::writeFileWhole(file, bytes);
  return written.ok() || host().refuse(std::wstring(who) + text::fromUtf8(written.message()), written.problem().code);
}

bool inputHasStopped() { return host().isStopping(); }
bool commandIsAbandoned() { return host().runner().isAbandoned(); }
bool dialogsAreWorkedByHand() { return host().options().dialogsByHand; }
void dialogWorked(std::wstring_view what, std::wstring_view line, std::wstring_view edited) {
  host().recording().dialogWorked(what, line, edited);
}
void dialogEscaped(std::wstring_view what) { host().recording().dialogCancelled(what); }
void reportDialogProblem(const Problem& problem) { host().reportProblem(problem); }

std::filesystem::path findFolder(const std::filesystem::path& folder) { return HostServices::findFolder(folder); }

void printDialogLine(std::wstring_view text) { host().transcript().line(text); }

void showNotice(std::wstring_view caption, std::wstring_view text) { host().showNotice(caption, text); }

HINSTANCE topResource() { return host().documents().topResource(); }
void setTopResource(HINSTANCE module) { host().documents().setTopResource(module); }
std::wstring_view programName() { return host().options().programName; }

}  // namespace host::editor
