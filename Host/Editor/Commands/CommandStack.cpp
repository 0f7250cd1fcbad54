#include "Editor/Commands/CommandStack.h"

#include <algorithm>

#include "Editor/PlugIns/Modules.h"
#include "Text/Text.h"
#include "rxboiler.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcEdCommand, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEdCommandStack, AcRxObject)

namespace host::editor {
namespace {

constexpr const wchar_t* kBuiltInGroup = L"ACAD_BUILT_IN";

}  // namespace

std::shared_ptr<Command> CommandStack::add(std::wstring group, std::wstring global, std::wstring local) {
  auto command = std::make_shared<Command>();
  command->group = std::move(group);
  command->global = std::move(global);
  command->local = std::move(local);
  commands_.push_back(command);
  return command;
}

Acad::ErrorStatus CommandStack::addCommand(const ACHAR* group, const ACHAR* globalName, const ACHAR* localName,
                                           Adesk::Int32 flags, AcRxFunctionPtr function, AcEdUIContext*, int, HINSTANCE,
                                           AcEdCommand** command) {
  if (group == nullptr || globalName == nullptr || function == nullptr) return Acad::eNullObjectPointer;
  if (localName == nullptr) localName = globalName;
  if (*group == 0 || *globalName == 0 || *localName == 0) return Acad::eInvalidInput;
  for (const auto& other : commands_) {
    if (!text::equalFolded(other->group, group)) continue;
    if (text::equalFolded(other->global, globalName) || text::equalFolded(other->local, localName))
      return Acad::eDuplicateKey;
  }
  const std::shared_ptr<Command> added = add(group, globalName, localName);
  added->flags = flags;
  added->function = function;
  if (command != nullptr) *command = added.get();
  return Acad::eOk;
}

Acad::ErrorStatus CommandStack::removeCmd(const ACHAR* group, const ACHAR* globalName) {
  if (group == nullptr || globalName == nullptr) return Acad::eNullObjectPointer;
  const auto removed = std::erase_if(commands_, [&](const auto& command) {
    return !command->isBuiltIn() && text::equalFolded(command->group, group) &&
           text::equalFolded(command->global, globalName);
  });
  return removed > 0 ? Acad::eOk : Acad::eKeyNotFound;
}

Acad::ErrorStatus CommandStack::removeGroup(const ACHAR* group) {
  if (group == nullptr) return Acad::eNullObjectPointer;
  const auto removed = std::erase_if(commands_, [&](const auto& command) {
    return !command->isBuiltIn() && text::equalFolded(command->group, group);
  });
  return removed > 0 ? Acad::eOk : Acad::eKeyNotFound;
}

AcEdCommand* CommandStack::lookupCmd(const ACHAR* name, bool globalLookup, bool) const {
  if (name == nullptr) return nullptr;
  std::wstring_view wanted = name;
  if (wanted.starts_with(L'_')) {
    globalLookup = true;
    wanted.remove_prefix(1);
  }
  for (const bool builtIn : {false, true}) {
    for (const auto& command : commands_) {
      if (command->isBuiltIn() == builtIn && text::equalFolded(globalLookup ? command->global : command->local, wanted))
        return command.get();
    }
  }
  return nullptr;
}

void CommandStack::addBuiltIn(std::wstring name, Adesk::Int32 flags, std::function<void(Prompter&)> handler,
                              std::wstring help) {
  std::erase_if(commands_,
                [&name](const auto& other) { return other->isBuiltIn() && text::equalFolded(other->global, name); });
  std::wstring local = name;
  const std::shared_ptr<Command> added = add(kBuiltInGroup, std::move(name), std::move(local));
  added->flags = flags;
  added->handler = std::move(handler);
  added->help = std::move(help);
}

void CommandStack::dropBuiltIns() {
  std::erase_if(commands_, [](const auto& command) { return command->isBuiltIn(); });
  aliases_.clear();
}

void CommandStack::addAlias(std::wstring alias, std::wstring name) {
  std::erase_if(aliases_, [&alias](const auto& other) { return other.first == alias; });
  aliases_.emplace_back(std::move(alias), std::move(name));
}

std::shared_ptr<Command> CommandStack::find(std::wstring_view typed) const {
  bool wantsBuiltIn = false;
  while (!typed.empty() && std::wstring_view(L"'_-.").find(typed.front()) != std::wstring_view::npos) {
    wantsBuiltIn = wantsBuiltIn || typed.front() == L'.';
    typed.remove_prefix(1);
  }
  if (typed.empty()) return nullptr;
  for (const bool builtIn : {false, true}) {
    if (!builtIn && wantsBuiltIn) continue;
    for (const auto& command : commands_) {
      if (command->isBuiltIn() == builtIn &&
          (text::equalFolded(command->global, typed) || text::equalFolded(command->local, typed)))
        return command;
    }
  }
  for (const auto& [alias, name] : aliases_) {
    if (text::equalFolded(alias, typed)) return find(L"." + name);
  }
  return nullptr;
}

std::vector<std::wstring> CommandStack::names() const {
  std::vector<std::wstring> all;
  for (const auto& command : commands_) {
    all.push_back(command->global);
    all.push_back(command->local);
  }
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

int CommandStack::forgetModule(const void* base) {
  return static_cast<int>(std::erase_if(commands_, [base](const auto& command) {
    return command->function != nullptr && moduleBase(reinterpret_cast<const void*>(command->function)) == base;
  }));
}

}  // namespace host::editor
