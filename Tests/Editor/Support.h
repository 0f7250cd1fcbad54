// A host with a new drawing, its transcript and what scripts do to it.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "Dxf/DxfFile.h"
#include "Editor/Application.h"
#include "Editor/ScriptInput.h"
#include "Text/Text.h"
#include "acdocman.h"
#include "aced.h"

namespace test {

using host::database::DxfType;
using host::database::Slot;

/// Lines of somebody at a terminal, who can be asked again; each is taken with what `before` does.
class Typed final : public host::editor::LineInput {
 public:
  explicit Typed(std::vector<std::string> lines) : lines_(std::move(lines)) {}
  bool isInteractive() const override { return true; }
  std::function<void(const std::string& line)> before;

 protected:
  std::optional<std::wstring> readLine(const host::editor::Question&) override {
    if (next_ == lines_.size()) return std::nullopt;
    if (before) before(lines_[next_]);
    return host::text::fromUtf8(lines_[next_++]);
  }

 private:
  std::vector<std::string> lines_;
  std::size_t next_ = 0;
};

/// Commands that stand for a plug-in's: registered in a group of their own, dropped at the end.
class Host : public testing::Test {
 protected:
  Host() : app(options()) { EXPECT_TRUE(app.newDrawing()); }
  ~Host() override { acedRegCmds->removeGroup(L"TEST"); }

  host::Result<> run(std::string_view script) {
    transcript.clear();
    host::editor::ScriptInput input(script, "plan.scr");
    return app.run(input);
  }
  /// Runs a script that must succeed.
  void expectDone(std::string_view script) {
    const host::Result<> result = run(script);
    EXPECT_TRUE(result) << result.message() << "\n" << host::text::toUtf8(transcript);
  }
  /// Runs a script that must fail with a message that has the part.
  void expectFailure(std::string_view script, std::string_view part) {
    const host::Result<> result = run(script);
    EXPECT_EQ(result.status(), host::RunStatus::ScriptFailed) << host::text::toUtf8(transcript);
    EXPECT_NE(result.message().find(part), std::string::npos) << result.message();
  }
  bool said(std::wstring_view text) const { return transcript.find(text) != std::wstring::npos; }

  void command(const wchar_t* name, AcRxFunctionPtr function, int flags = ACRX_CMD_MODAL) {
    EXPECT_EQ(acedRegCmds->addCommand(L"TEST", name, name, flags, function), Acad::eOk);
  }

  /// Living entities of the current space, oldest first.
  std::vector<Slot*> entities() const {
    std::vector<Slot*> living;
    for (Slot* slot : app.currentSpace()->entities) {
      if (!slot->isErased()) living.push_back(slot);
    }
    return living;
  }
  std::string handent(const Slot& slot) const { return "(handent \"" + host::text::formatHandle(slot.handle) + "\")"; }
  /// Values of a group in an entity's record.
  static std::vector<std::string> values(const Slot& slot, int code) {
    std::vector<std::string> found;
    host::database::Tag tag;
    for (host::database::TagCursor tags = slot.tags(); tags.next(tag);) {
      if (tag.code == code) found.emplace_back(tag.trimmed());
    }
    return found;
  }
  std::wstring layerOf(const Slot& slot) const { return app.drawing()->layerName(slot.layer); }

  std::wstring transcript;
  std::vector<std::string> problems;

 private:
  class FrontEnd final : public host::editor::Observer {
   public:
    explicit FrontEnd(Host& host) : host_(host) {}
    void print(std::wstring_view text) override { host_.transcript += text; }
    void report(const host::Problem& problem) override { host_.problems.push_back(problem.sentence()); }

   private:
    Host& host_;
  };

  host::editor::ApplicationOptions options() {
    host::editor::ApplicationOptions result;
    result.observer = &frontEnd_;
    return result;
  }

  FrontEnd frontEnd_{*this};

 protected:
  host::editor::Application app;
};

}  // namespace test
