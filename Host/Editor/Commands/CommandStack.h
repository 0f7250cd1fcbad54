// Commands by group and name.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "accmd.h"

namespace host::editor {

class Prompter;

/// A command of a plug-in (a function) or of the host (a handler).
class Command final : public AcEdCommand {
 public:
  const ACHAR* globalName() const override { return global.c_str(); }
  const ACHAR* localName() const override { return local.c_str(); }
  const ACHAR* groupName() const override { return group.c_str(); }
  Adesk::Int32 commandFlags() const override { return flags; }
  AcRxFunctionPtr functionAddr() const override { return function; }
  bool isBuiltIn() const { return handler != nullptr; }

  std::wstring group, global, local;
  Adesk::Int32 flags = 0;
  AcRxFunctionPtr function = nullptr;
  std::function<void(Prompter&)> handler;
  std::wstring help;  // of the host's own: "erases objects"
};

class CommandStack final : public AcEdCommandStack {
 public:
  Acad::ErrorStatus addCommand(const ACHAR* group, const ACHAR* globalName, const ACHAR* localName, Adesk::Int32 flags,
                               AcRxFunctionPtr function, AcEdUIContext* ui, int fcode, HINSTANCE resources,
                               AcEdCommand** command) override;
  Acad::ErrorStatus removeCmd(const ACHAR* group, const ACHAR* globalName) override;
  Acad::ErrorStatus removeGroup(const ACHAR* group) override;
  AcEdCommand* lookupCmd(const ACHAR* name, bool globalLookup, bool allGroups) const override;

  void addBuiltIn(std::wstring name, Adesk::Int32 flags, std::function<void(Prompter&)> handler, std::wstring help);
  void dropBuiltIns();
  /// An abbreviation of a built-in command.
  void addAlias(std::wstring alias, std::wstring name);
  /// A typed name with any of the prefixes ' _ - . in any order; global and local names, plug-ins' first unless "."
  /// asks for the host's own. Null when unknown.
  std::shared_ptr<Command> find(std::wstring_view typed) const;
  /// Names for completion and for "did you mean".
  std::vector<std::wstring> names() const;
  /// In the order they were added.
  const std::vector<std::shared_ptr<Command>>& all() const { return commands_; }
  /// Drops commands whose code lies in a module that goes away; how many there were.
  int forgetModule(const void* base);

 private:
  std::shared_ptr<Command> add(std::wstring group, std::wstring global, std::wstring local);

  std::vector<std::shared_ptr<Command>> commands_;
  std::vector<std::pair<std::wstring, std::wstring>> aliases_;
};

}  // namespace host::editor
