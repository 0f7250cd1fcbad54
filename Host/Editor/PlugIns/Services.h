// Services of the host by name, editor reactors, file search, progress.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "Database/Reactors.h"
#include "Editor/PlugIns/Guard.h"
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
  explicit EditorService(Session& session) : session_(session) {}
  void addReactor(AcEditorReactor* reactor) override;
  void removeReactor(AcEditorReactor* reactor) override;

  /// Tells the reactors; what one of them throws is reported.
  template <class... Parameters, class... Values>
  void tell(void (AcEditorReactor::*message)(Parameters...), Values... values) {
    database::tellEach(reactors_, [&](AcEditorReactor& reactor) {
      callPlugIn(session_, &reactor, [&] { (reactor.*message)(values...); });
    });
  }
  bool has(const AcEditorReactor* reactor) const;
  /// Reactors whose code lies in a module.
  std::vector<AcEditorReactor*> reactorsOf(const void* moduleBase) const;

 private:
  Session& session_;
  std::vector<AcEditorReactor*> reactors_;
};

class HostServices final : public AcDbHostApplicationServices {
 public:
  /// Plug-ins go on without a file that they cannot read, and say nothing: the host reports what is wrong with it,
  /// once.
  Acad::ErrorStatus findFile(ACHAR* pathOut, int bufferLength, const ACHAR* fileName, AcDbDatabase* db,
                             FindFileHint hint) override;
  /// Current folder, the drawing's folder, the support folders, the host's own `support` folder; empty when not found.
  /// `passedOver`: names on the way that are no files, as pipes and links that lead nowhere.
  static std::filesystem::path find(const std::filesystem::path& name, const AcDbDatabase* db,
                                    std::vector<std::filesystem::path>* passedOver = nullptr);

  /// A folder, by the same search.
  static std::filesystem::path findFolder(const std::filesystem::path& name);
  /// Files that cannot be read may be reported again.
  void forgetToldFiles() { told_.clear(); }

  AcDbDatabase* working() const { return working_; }
  void setWorking(AcDbDatabase* db) { working_ = db; }

 private:
  void tellOnce(const std::filesystem::path& file, const std::string& what);

  AcDbDatabase* working_ = nullptr;
  std::set<std::filesystem::path> told_;
};

/// The status bar's progress meter, shown by the session's observer.
class ProgressMeter {
 public:
  explicit ProgressMeter(Session& session) : session_(session) {}

  void show(std::wstring label, int minimum, int maximum);
  /// A negative position moves on by that much. False when no meter is shown.
  bool move(int position);
  /// Shows it again as it is; without one the observer hears that work goes on.
  void repeat();
  /// Takes it away if it is shown.
  void hide();
  /// Takes it away without telling the observer, which may be gone.
  void forget() { isShown_ = false; }

 private:
  Session& session_;
  bool isShown_ = false;
  std::wstring label_;
  int minimum_ = 0, maximum_ = 100, position_ = 0;
};

}  // namespace host::editor
