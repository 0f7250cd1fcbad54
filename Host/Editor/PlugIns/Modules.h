// Plug-in modules: loading, messages, unloading.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Problems/Problem.h"
#include "rxdlinkr.h"
#include "rxregsvc.h"

namespace host::editor {

class Document;
class Session;

/// What a module's objects are called, and the extended data by which they are known.
struct ObjectKind {
  std::vector<std::wstring> names;
  std::wstring application, key, value;
};

struct Module {
  std::filesystem::path file;
  std::wstring name;  // file name
  void* library = nullptr;
  AcRx::AppRetCode (*entry)(AcRx::AppMsgCode, void*) = nullptr;
  const void* base = nullptr;  // where the loader put it
  bool locked = true;
  bool severalDrawings = false;   // registered for several open drawings
  std::vector<ObjectKind> kinds;  // of the table beside it, if there is one
};

/// File of the host's own library.
std::filesystem::path libraryFile();
/// Start of the module that holds the address; null when there is none.
const void* moduleBase(const void* address);
/// The module whose class an object is of: its methods are code of that module.
const void* moduleOfObject(const void* object);
/// Those of the objects whose class lies in the module.
template <class T>
std::vector<T*> objectsOfModule(const std::vector<T*>& objects, const void* base) {
  std::vector<T*> found;
  for (T* object : objects) {
    if (moduleOfObject(object) == base) found.push_back(object);
  }
  return found;
}

class ModuleList final : public AcRxDynamicLinker {
 public:
  explicit ModuleList(Session& session) : session_(session) {}

  bool unlockApplication(void* appId) const override;
  bool lockApplication(void* appId) const override;
  bool registerAppMDIAware(void* appId) const override;
  bool registerAppNotMDIAware(void* appId) const override;

  Result<> load(const std::filesystem::path& file);
  Result<> unload(std::wstring_view name);
  /// When the host ends: every module gets its message, locked or not.
  void unloadAll();
  /// Tells every module about one document, which is current meanwhile.
  void tellAll(AcRx::AppMsgCode message, Document* document);
  /// Null when a further drawing may be opened; otherwise the module that works with one drawing only.
  const Module* blocksFurtherDrawing() const;
  const std::vector<std::unique_ptr<Module>>& all() const { return modules_; }
  /// Reports that a plug-in's object (a reactor, a monitor) threw while the host called it; `reason` may be empty.
  void reportThrown(const void* object, const std::string& reason) const;

 private:
  Module* find(void* appId) const;
  AcRx::AppRetCode tell(Module& module, AcRx::AppMsgCode message, void* packet);
  void drop(Module& module);

  Session& session_;
  std::vector<std::unique_ptr<Module>> modules_;
};

}  // namespace host::editor
