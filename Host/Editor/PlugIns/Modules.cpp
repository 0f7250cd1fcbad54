#include "Editor/PlugIns/Modules.h"

#include <algorithm>
#include <exception>
#include <fstream>

#include "Editor/Session/Session.h"
#include "Platform/Library.h"
#include "Text/Text.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxDynamicLinker, AcRxObject)

namespace host::editor {
namespace {

template <class Function>
Function symbol(void* library, const char* name) {
  return reinterpret_cast<Function>(platform::symbolOf(library, name));
}

std::vector<std::wstring> split(std::wstring_view text, wchar_t separator) {
  std::vector<std::wstring> parts;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    parts.emplace_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return parts;
}

/// Rows of the table "MODULE.menu/kinds.tsv" beside a module: names divided by commas, application, key, value.
std::vector<ObjectKind> readKinds(const std::filesystem::path& module) {
  std::vector<ObjectKind> kinds;
  std::filesystem::path table = module;
  table.replace_extension(".menu");
  std::ifstream stream(table / "kinds.tsv");
  for (std::string line; std::getline(stream, line);) {
    if (line.empty() || line.front() == '#') continue;
    const std::vector<std::wstring> cells = split(text::fromUtf8(line), L'\t');
    if (cells.size() == 4) kinds.push_back({split(cells[0], L','), cells[1], cells[2], cells[3]});
  }
  return kinds;
}

}  // namespace

std::filesystem::path libraryFile() { return platform::fileOf(reinterpret_cast<const void*>(&libraryFile)); }

const void* moduleBase(const void* address) { return address != nullptr ? platform::baseOf(address) : nullptr; }

const void* moduleOfObject(const void* object) {
  // An object with virtual functions begins with the address of its class's table, which lies in its module.
  return object != nullptr ? moduleBase(*static_cast<const void* const*>(object)) : nullptr;
}

Module* ModuleList::find(void* appId) const {
  for (const auto& module : modules_) {
    if (module.get() == appId) return module.get();
  }
  return nullptr;
}

bool ModuleList::unlockApplication(void* appId) const {
  Module* const module = find(appId);
  if (module != nullptr) module->locked = false;
  return module != nullptr;
}

bool ModuleList::lockApplication(void* appId) const {
  Module* const module = find(appId);
  if (module != nullptr) module->locked = true;
  return module != nullptr;
}

bool ModuleList::registerAppMDIAware(void* appId) const {
  Module* const module = find(appId);
  if (module != nullptr) module->severalDrawings = true;
  return module != nullptr;
}

bool ModuleList::registerAppNotMDIAware(void* appId) const {
  Module* const module = find(appId);
  if (module != nullptr) module->severalDrawings = false;
  return module != nullptr;
}

AcRx::AppRetCode ModuleList::tell(Module& module, AcRx::AppMsgCode message, void* packet) {
  try {
    return module.entry(message, packet);
  } catch (const std::exception& error) {
    session_.reportProblem(
        problemOf(Code::PlugInFailed, module.file.string(), std::string("failed in its entry point: ") + error.what()));
  } catch (...) {
    session_.reportProblem(problemOf(Code::PlugInFailed, module.file.string(), "failed in its entry point"));
  }
  return AcRx::kRetError;
}

void ModuleList::tellAll(AcRx::AppMsgCode message, Document* document) {
  Document* const former = session_.documents().current();
  if (document != nullptr) session_.documents().setCurrent(document);
  for (const auto& module : modules_) {
    if (tell(*module, message, nullptr) == AcRx::kRetError && message == AcRx::kLoadDwgMsg)
      session_.reportProblem(problemOf(
          Code::PlugInRefused, text::toUtf8(module->name),
          "refused the drawing " + (document != nullptr ? text::toUtf8(document->fileName()) : std::string())));
  }
  if (document != nullptr) session_.documents().setCurrent(former);
}

const Module* ModuleList::blocksFurtherDrawing() const {
  if (session_.documents().all().empty()) return nullptr;
  for (const auto& module : modules_) {
    if (!module->severalDrawings) return module.get();
  }
  return nullptr;
}

void ModuleList::reportThrown(const void* object, const std::string& reason) const {
  const void* const base = moduleOfObject(object);
  const auto module =
      std::find_if(modules_.begin(), modules_.end(), [base](const auto& each) { return each->base == base; });
  session_.reportProblem(problemOf(Code::PlugInFailed,
                                   module != modules_.end() ? (*module)->file.string() : std::string(),
                                   "failed when the host called it" + (reason.empty() ? "" : ": " + reason)));
}

Result<> ModuleList::load(const std::filesystem::path& file) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::weakly_canonical(file, error);
  const std::string shown = file.string();
  const auto refusal = [&shown](std::string why) { return problemOf(Code::ModuleRefused, shown, std::move(why)); };
  if (!std::filesystem::is_regular_file(path, error)) return refusal("no such module");
  for (const auto& module : modules_) {
    if (module->file == path) return {};
  }
  auto owned = std::make_unique<Module>();
  Module& module = *owned;
  module.file = path;
  module.name = text::fromUtf8(path.filename().string());
  std::string reason;
  module.library = platform::openLibrary(path, reason);
  if (module.library == nullptr) return refusal("cannot be loaded: " + reason);
  const auto refuse = [&](const std::string& why) {
    platform::closeLibrary(module.library);
    return refusal(why);
  };
  module.entry = symbol<decltype(module.entry)>(module.library, "acrxEntryPoint");
  const auto version = symbol<int (*)()>(module.library, "acrxGetApiVersion");
  if (module.entry == nullptr || version == nullptr)
    return refuse(std::string("is no module of this host: it has no ") +
                  (module.entry == nullptr ? "acrxEntryPoint" : "acrxGetApiVersion"));
  if (const int number = version(); number != ACRX_API_VERSION)
    return refuse("is made for interface version " + std::to_string(number) + "; this host has version " +
                  std::to_string(ACRX_API_VERSION));
  module.base = moduleBase(reinterpret_cast<const void*>(module.entry));
  module.kinds = readKinds(path);

  modules_.push_back(std::move(owned));
  const auto giveUp = [&](const std::string& why) {
    tell(module, AcRx::kUnloadAppMsg, &module);
    drop(module);
    return refusal(why);
  };
  if (tell(module, AcRx::kInitAppMsg, &module) == AcRx::kRetError) return giveUp("refused to start");
  if (!module.severalDrawings && session_.documents().all().size() > 1)
    return giveUp("works with one open drawing only, and " + std::to_string(session_.documents().all().size()) +
                  " are open");
  Document* const former = session_.documents().current();
  bool refused = false;
  for (const auto& document : session_.documents().all()) {
    session_.documents().setCurrent(document.get());
    refused = tell(module, AcRx::kLoadDwgMsg, nullptr) == AcRx::kRetError;
    if (refused) break;
  }
  session_.documents().setCurrent(former);
  if (refused) return giveUp("refused an open drawing");
  return {};
}

Result<> ModuleList::unload(std::wstring_view name) {
  const auto found = std::find_if(modules_.begin(), modules_.end(), [name](const auto& module) {
    return text::equalFolded(module->name, name) ||
           text::equalFolded(text::fromUtf8(module->file.stem().string()), name) ||
           text::equalFolded(text::fromUtf8(module->file.string()), name);
  });
  if (found == modules_.end()) return problemOf(Code::ModuleRefused, text::toUtf8(name), "no such module is loaded");
  Module& module = **found;
  if (module.locked)
    return problemOf(Code::ModuleRefused, text::toUtf8(module.name), "the module is locked, it cannot be unloaded");
  tell(module, AcRx::kUnloadAppMsg, &module);
  drop(module);
  return {};
}

void ModuleList::unloadAll() {
  while (!modules_.empty()) {
    Module& module = *modules_.back();
    tell(module, AcRx::kQuitMsg, nullptr);
    tell(module, AcRx::kUnloadAppMsg, &module);
    drop(module);
  }
}

void ModuleList::drop(Module& module) {
  // What the module leaves behind would be called after its code is gone. Its globals may still take themselves out
  // while it is unloaded, so what is left is seen afterwards, by then as addresses only.
  const std::vector<AcEditorReactor*> editorReactors = session_.editor().reactorsOf(module.base);
  const std::vector<AcApDocManagerReactor*> documentReactors = session_.documents().reactorsOf(module.base);
  std::vector<std::pair<Document*, AcEdInputPointMonitor*>> monitors;
  for (const auto& document : session_.documents().all()) {
    for (AcEdInputPointMonitor* monitor : objectsOfModule(document->pointManager().monitors(), module.base))
      monitors.emplace_back(document.get(), monitor);
  }
  int left = session_.commands().forgetModule(module.base);
  const std::string name = text::toUtf8(module.name);
  const std::filesystem::path file = module.file;
  void* const library = module.library;
  std::erase_if(modules_, [&module](const auto& other) { return other.get() == &module; });
  platform::closeLibrary(library);

  // A library that the loader keeps in memory does not run its globals' constructors again: they stay registered.
  if (!platform::isLoaded(file)) {
    for (AcEditorReactor* reactor : editorReactors) {
      if (session_.editor().has(reactor)) ++left;
      session_.editor().removeReactor(reactor);
    }
    for (AcApDocManagerReactor* reactor : documentReactors) {
      if (session_.documents().has(reactor)) ++left;
      session_.documents().removeReactor(reactor);
    }
    for (const auto& [document, monitor] : monitors) {
      if (document->pointManager().removePointMonitor(monitor) == Acad::eOk) ++left;
    }
  }
  if (left > 0)
    session_.reportProblem(problemOf(
        Code::LeftBehind, name, "left " + std::to_string(left) + " commands or reactors behind; they are removed"));
}

}  // namespace host::editor
