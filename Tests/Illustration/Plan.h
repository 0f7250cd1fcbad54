// A plan under the plug-in: the host with the plug-in loaded, a drawing made by commands, scripts run on it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Dxf/DxfFile.h"
#include "Editor/Application.h"
#include "Editor/ScriptInput.h"
#include "OwnFolder.h"
#include "Places.h"
#include "Text/Text.h"

namespace tests {

using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Slot;
using host::database::Tag;
using host::database::TagCursor;

/// Text of tags given as "0 LINE|8 0|".
inline std::string tagLines(const std::string& tags) {
  std::stringstream all(tags);
  std::string text;
  for (std::string tag; std::getline(all, tag, '|');) {
    const std::size_t blank = tag.find(' ');
    text += std::string(blank < 3 ? 3 - blank : 0, ' ') + tag.replace(blank, 1, "\n") + "\n";
  }
  return text;
}

/// A metric drawing of 2000 with entities and nothing else: no tables, no objects.
inline std::string plainDrawing(const std::string& entities) {
  return tagLines("0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|9 $MEASUREMENT|70 1|0 ENDSEC|0 SECTION|2 ENTITIES|") +
         entities + tagLines("0 ENDSEC|0 EOF|");
}

/// An old-style polyline with handles from this one on, closed; of vertices in space when none has a bulge.
inline std::string oldPolyline(int handle, const std::vector<std::string>& vertices, const std::string& normal = {}) {
  const bool isInSpace = vertices.front().find("42 ") == std::string::npos;
  const std::string kind = isInSpace ? "3d" : "2d", common = "|100 AcDbEntity|8 0|";
  std::string text = "0 POLYLINE|5 " + std::to_string(handle) + common + "100 AcDb" + kind +
                     "Polyline|66 1|10 0|20 0|30 0|70 " + (isInSpace ? "9|" : "1|") + normal;
  for (const std::string& vertex : vertices) {
    text += "0 VERTEX|5 " + std::to_string(++handle) + common + "100 AcDbVertex|100 AcDb" +
            (isInSpace ? "3dPolylineVertex|70 32|" : "2dVertex|") + vertex;
  }
  return tagLines(text + "0 SEQEND|5 " + std::to_string(++handle) + common);
}

class Plan : public testing::Test {
  class FrontEnd final : public host::editor::Observer {
   public:
    explicit FrontEnd(Plan& plan) : plan_(plan) {}
    void print(std::wstring_view text) override {
      plan_.transcript_ += host::text::toUtf8(text);
      if (plan_.whenShown_) plan_.whenShown_();
    }
    void showProgress(std::wstring_view, double fraction) override {
      if (plan_.whenAtWork_) plan_.whenAtWork_(fraction);
    }
    void report(const host::Problem& problem) override { plan_.problems_.push_back(problem.sentence()); }

   private:
    Plan& plan_;
  };

 protected:
  Plan() : application_(options(this)) {
    std::filesystem::create_directories(folder_ / "support");
    EXPECT_TRUE(application_.newDrawing());
    const auto loaded = application_.loadModule(std::filesystem::path(kBinDir) / "tolmex.arx");
    EXPECT_TRUE(loaded) << loaded.message();
  }
  static host::editor::ApplicationOptions options(Plan* plan) {
    host::editor::ApplicationOptions options;
    options.observer = &plan->frontEnd_;
    options.supportFolders = {plan->folder_ / "support"};
    return options;
  }

  /// Runs a script that must succeed; the answer is what the command line showed.
  std::string run(const std::string& script) {
    const host::Result<> result = tryRun(script);
    EXPECT_TRUE(result) << result.message() << "\n" << transcript_;
    return transcript_;
  }
  host::Result<> tryRun(const std::string& script) {
    transcript_.clear();
    problems_.clear();
    host::editor::ScriptInput input(script, "test.scr");
    return application_.run(input);
  }

  void expectFailure(const std::string& script, const std::string& part) {
    const auto result = tryRun(script);
    EXPECT_EQ(result.status(), host::RunStatus::ScriptFailed) << transcript_;
    EXPECT_NE(result.message().find(part), std::string::npos) << result.message();
  }
  bool said(const std::string& text) const { return transcript_.find(text) != std::string::npos; }

  DrawingDatabase& drawing() { return *application_.drawing(); }
  std::string text() { return host::dxf::drawingText(drawing()); }
  /// Goes on with a drawing given as text.
  void openText(const std::string& text) {
    const auto file = folder_ / "plan.dxf";
    std::ofstream(file, std::ios::binary) << text;
    application_.closeDrawing();
    const auto opened = application_.openDrawing(file);
    ASSERT_TRUE(opened) << opened.message();
  }
  void reopen() { openText(text()); }

  // ---- looking at the drawing ----
  std::vector<Slot*> living(DxfType type, std::wstring_view layer = {}) {
    std::vector<Slot*> found;
    for (Slot* const slot : drawing().modelSpace().entities) {
      if (slot->isErased() || slot->type != type) continue;
      if (layer.empty() || drawing().layerName(slot->layer) == layer) found.push_back(slot);
    }
    return found;
  }
  Slot* last(DxfType type) {
    const auto all = living(type);
    return all.empty() ? nullptr : all.back();
  }
  std::string value(const Slot& slot, int code) {
    Tag tag;
    for (TagCursor cursor = slot.tags(); cursor.next(tag) && tag.code < 1000;) {
      if (tag.code == code) return std::string(tag.trimmed());
    }
    return {};
  }
  std::wstring layer(const Slot& slot) { return drawing().layerName(slot.layer); }
  /// "1001 kaava_tolmex|1000 TOLM_VERSION|..." of one application.
  std::string xdata(const Slot& slot, const std::string& application) {
    std::string all;
    bool inside = false;
    Tag tag;
    for (TagCursor cursor = slot.tags(); cursor.next(tag);) {
      if (tag.code < 1000) continue;
      if (tag.code == 1001) inside = tag.value == application;
      if (!inside) continue;
      all += (all.empty() ? "" : "|") + std::to_string(tag.code) + " " +
             host::text::toUtf8(drawing().codec().decode(tag.value));
    }
    return all;
  }
  /// The value behind a key of the entity tag.
  std::string tagValue(const Slot& slot, const std::string& key) {
    std::stringstream items(xdata(slot, "kaava_tolmex"));
    bool next = false;
    for (std::string item; std::getline(items, item, '|');) {
      if (next) return item.substr(5);
      next = item == "1000 " + key;
    }
    return {};
  }
  int layerColor(const std::wstring& name) {
    const Slot* const record = drawing().findRecord(DxfType::Layer, name);
    return record != nullptr ? std::stoi(value(*record, 62)) : -1;
  }
  int layerFlags(const std::wstring& name) { return std::stoi(value(*drawing().findRecord(DxfType::Layer, name), 70)); }
  std::string handle(const Slot& slot) { return host::text::formatHandle(slot.handle); }
  std::string pick(const Slot& slot) { return "(handent \"" + handle(slot) + "\")\n"; }
  void iniFile(const std::string& text) { std::ofstream(folder_ / "support" / "tolm.ini") << text; }

  const OwnFolder own_;
  const std::filesystem::path& folder_ = own_.path;
  std::string transcript_;
  std::vector<std::string> problems_;
  std::function<void()> whenShown_;  // called for every piece of the transcript, dialogs open or not
  std::function<void(double)>
      whenAtWork_;  // with what the meter shows  // called for every piece of the transcript, dialogs open or not
  FrontEnd frontEnd_{*this};
  host::editor::Application application_;
};

}  // namespace tests
