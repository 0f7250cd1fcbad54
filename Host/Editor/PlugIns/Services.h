// Services of the host by name, editor reactors, file search, progress.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "Database/Reactors.h"
#include "aced.h"
#include "dbapserv.h"

namespace host::editor {

class Session;

class Registry final : public AcRxDictionary {
 public:
  explicit Registry(Session& session) : session_(session) {}
  AcRxObject* at(const ACHAR* key) const override;

 private:
  Session& session_;
};

class EditorService final : public AcEditor {
 public:
  void addReactor(AcEditorReactor* reactor) override;
  void removeReactor(AcEditorReactor* reactor) override;

  template <class... Parameters, class... Values>
  void tell(void (AcEditorReactor::*message)(Parameters...), Values... values) {
    database::tellEach(reactors_, [&](AcEditorReactor& reactor) { (reactor.*message)(values...); });
  }
  bool has(const AcEditorReactor* reactor) const;
  /// Reactors whose code lies in a module.
  std::vector<AcEditorReactor*> reactorsOf(const void* moduleBase) const;

 private:
  std::vector<AcEditorReactor*> reactors_;
};

class HostServices final : public AcDbHostApplicationServices {
 public:
  /// Plug-ins go on without a file that they cannot read, and say nothing: what is wrong with it is said here, once.
  Acad::ErrorStatus findFile(ACHAR* pathOut, int bufferLength, const ACHAR* fileName, AcDbDatabase* db,
                             FindFileHint hint) override;
  /// Current folder, the drawing's folder, the support folders, the host's own `support` folder; empty when not found.
  /// `passedOver`: names on the way that are no files, as pipes and links that lead nowhere.
  static std::filesystem::path find(const std::filesystem::path& name, const AcDbDatabase* db,
                                    std::vector<std::filesystem::path>* passedOver = nullptr);

  /// A folder, by the same search.
  static std::filesystem::path findFolder(const std::filesystem::path& name);
  /// What was said of files that cannot be read may be said again.
  void forgetToldFiles() { told_.clear(); }

  AcDbDatabase* working = nullptr;

 private:
  void tellOnce(const std::filesystem::path& file, const std::string& what);

  std::set<std::filesystem::path> told_;
};

/// The status bar's progress meter.
struct ProgressMeter {
  bool isShown = false;
  std::wstring label;
  int minimum = 0, maximum = 100, position = 0;
};

}  // namespace host::editor
