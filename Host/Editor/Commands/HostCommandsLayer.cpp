// LAYER and LINETYPE.
#include <cmath>
#include <memory>

#include "Editor/Commands/HostCommands.h"
#include "Editor/Commands/Lookup.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"
#include "dbobjptr.h"
#include "dbsymtb.h"

namespace host::editor {
namespace {

using database::DxfType;
using database::Slot;

database::DrawingDatabase& drawingOf(Prompter& prompter) { return prompter.session().documents().current()->drawing(); }
AcDbDatabase& facadeOf(Prompter& prompter) { return *prompter.session().documents().current()->database(); }

std::vector<std::wstring> splitNames(std::wstring_view list) {
  std::vector<std::wstring> names;
  for (std::size_t begin = 0; begin <= list.size();) {
    const std::size_t end = std::min(list.find(L',', begin), list.size());
    if (end > begin) names.emplace_back(list.substr(begin, end - begin));
    begin = end + 1;
  }
  return names;
}

/// Living records whose names the list matches, wildcards included.
std::vector<Slot*> matchingRecords(const database::DrawingDatabase& drawing, DxfType type, std::wstring_view list) {
  std::vector<Slot*> found;
  for (Slot* record : drawing.records(type)) {
    if (!record->isErased() && text::matchesWildcard(drawing.recordName(*record), list)) found.push_back(record);
  }
  return found;
}

// ---- LAYER ----------------------------------------------------------------------------------------------------------

class LayerDialogue {
 public:
  explicit LayerDialogue(Prompter& prompter) : prompter_(prompter) {}

  void run() {
    prompter_.line(L"Current layer:  \"" + currentName() + L"\"");
    Limits limits;
    limits.keywords = Keywords(L"? Make Set New ON OFF Color Colour Ltype LWeight Freeze Thaw LOck Unlock");
    for (;;) {
      const auto option = prompter_.keyword(
          L"Enter an option [?/Make/Set/New/ON/OFF/Color/Ltype/LWeight/Freeze/Thaw/LOck/Unlock]: ", limits);
      if (option.outcome != Outcome::Keyword) return;
      if (!apply(option.keyword)) return;
    }
  }

 private:
  using Record = AcDbLayerTableRecord;

  std::wstring currentName() const {
    const AcDbObjectId id = facadeOf(prompter_).clayer();
    return id.isNull() ? std::wstring() : drawingOf(prompter_).recordName(*id.slot());
  }

  /// False ends the command.
  bool apply(const std::wstring& option) {
    if (option == L"?") return list();
    if (option == L"New")
      return ask(L"Enter name list for new layer(s): ", [this](auto& names) { return make(names); });
    if (option == L"Make") return makeCurrent();
    if (option == L"Set") {
      return ask(L"Enter layer name to make current <" + currentName() + L">: ",
                 [this](auto& name) { return setCurrent(name); });
    }
    if (option == L"Color" || option == L"Colour") return color();
    if (option == L"Ltype") return linetype();
    if (option == L"LWeight") return lineweight();
    struct Switch {
      const wchar_t* option;
      const wchar_t* prompt;
      void (*change)(Record&);
    };
    static constexpr Switch kSwitches[] = {
        {L"ON", L"Enter name list of layer(s) to turn on: ", [](Record& r) { r.setIsOff(false); }},
        {L"OFF", L"Enter name list of layer(s) to turn off: ", [](Record& r) { r.setIsOff(true); }},
        {L"Freeze", L"Enter name list of layer(s) to freeze: ", [](Record& r) { r.setIsFrozen(true); }},
        {L"Thaw", L"Enter name list of layer(s) to thaw: ", [](Record& r) { r.setIsFrozen(false); }},
        {L"LOck", L"Enter name list of layer(s) to lock: ", [](Record& r) { r.setIsLocked(true); }},
        {L"Unlock", L"Enter name list of layer(s) to unlock: ", [](Record& r) { r.setIsLocked(false); }},
    };
    for (const Switch& row : kSwitches) {
      if (option != row.option) continue;
      const bool freezes = option == L"Freeze";
      return ask(row.prompt, [&](auto& names) { return change(names, row.change, freezes); });
    }
    return true;
  }

  template <class Use>
  bool ask(const std::wstring& prompt, const Use& use) {
    for (;;) {
      const auto reply = prompter_.word(prompt);
      if (reply.outcome == Outcome::Cancel) return false;
      if (!reply || use(reply.value)) return true;
    }
  }

  /// Refuses an answer; false asks again at a terminal. In a script the command ends.
  bool refused(const std::wstring& sentence) {
    stopped_ = !prompter_.refuse(sentence);
    return stopped_;
  }

  bool change(const std::wstring& names, const std::function<void(Record&)>& edit, bool freezes = false) {
    const std::vector<Slot*> layers = matchingRecords(drawingOf(prompter_), DxfType::Layer, names);
    if (layers.empty()) return refused(L"No matching layer names found: \"" + names + L"\".");
    const Slot* const current = facadeOf(prompter_).clayer().slot();
    for (Slot* layer : layers) {
      if (freezes && layer == current) {
        if (layers.size() == 1)
          return refused(L"Cannot freeze layer \"" + currentName() + L"\": it is the current layer.");
        prompter_.line(L"Layer \"" + currentName() + L"\" is current: not frozen.");
        continue;
      }
      const AcDbObjectPointer<Record> record(AcDbObjectId(layer), AcDb::kForWrite);
      if (record.openStatus() != Acad::eOk)
        return refused(L"Layer \"" + drawingOf(prompter_).recordName(*layer) + L"\" is in use and cannot be changed.");
      edit(*record);
    }
    return true;
  }

  bool make(const std::wstring& names) {
    for (const std::wstring& name : splitNames(names)) {
      if (drawingOf(prompter_).findRecord(DxfType::Layer, name) != nullptr) {
        prompter_.line(L"Layer \"" + name + L"\" already exists.");
        continue;
      }
      const AcDbObjectPointer<AcDbLayerTable> table(facadeOf(prompter_).layerTableId(), AcDb::kForWrite);
      if (table.openStatus() != Acad::eOk) return refused(L"The table of layers is in use and cannot be changed.");
      auto record = std::make_unique<Record>();
      if (record->setName(name.c_str()) != Acad::eOk || table->add(record.get()) != Acad::eOk)
        return refused(L"\"" + name + L"\" cannot be a layer name.");
      record.release()->close();
    }
    return true;
  }

  bool setCurrent(const std::wstring& name) {
    SystemVariables& variables = prompter_.session().variables();
    const Result<> set = variables.set(*variables.find(L"CLAYER"), name);
    return set || refused(L"CLAYER: " + text::fromUtf8(set.message()) + L".");
  }

  bool makeCurrent() {
    return ask(L"Enter name for new layer (becomes the current layer) <" + currentName() + L">: ", [this](auto& name) {
      if (drawingOf(prompter_).findRecord(DxfType::Layer, name) == nullptr && !make(name)) return false;
      return stopped_ || setCurrent(name);
    });
  }

  /// Asks for the layers that get a new value; Enter means the current one.
  bool askLayers(const std::wstring& what, const std::function<void(Record&)>& edit) {
    const auto reply = prompter_.word(L"Enter name list of layer(s) for " + what + L" <" + currentName() + L">: ");
    if (reply.outcome == Outcome::Cancel) return false;
    change(reply ? reply.value : currentName(), edit);
    return !stopped_;
  }

  bool color() {
    std::optional<AcCmColor> color;
    std::wstring typed;
    const bool goOn = ask(L"New color: ", [&](auto& text) {
      typed = text;
      color = parseColor(text);
      if (color && !color->isByLayer() && !color->isByBlock()) return true;
      color.reset();
      return refused(L"Requires a color from 1 to 255, a color name or r,g,b.");
    });
    if (!goOn || !color) return goOn && !stopped_;
    return askLayers(L"color " + typed, [&](Record& record) { record.setColor(*color); });
  }

  bool linetype() {
    Slot* linetype = nullptr;
    std::wstring typed;
    const bool goOn = ask(L"Enter loaded linetype name <Continuous>: ", [&](auto& name) {
      linetype = linetypeByName(prompter_, name);
      if (linetype != nullptr) typed = name;
      return linetype != nullptr || refused(L"Cannot find linetype \"" + name + L"\".");
    });
    if (!goOn || stopped_) return false;
    if (typed.empty()) {
      typed = L"Continuous";
      linetype = facadeOf(prompter_).continuousLinetype().slot();
    }
    if (linetype == nullptr) return true;
    return askLayers(L"linetype \"" + typed + L"\"",
                     [&](Record& record) { record.setLinetypeObjectId(AcDbObjectId(linetype)); });
  }

  bool lineweight() {
    int weight = AcDb::kLnWtByLwDefault;
    const bool goOn = ask(L"Enter lineweight (0.00mm - 2.11mm) <Default>: ", [&](auto& text) {
      const std::optional<int> parsed = parseLineweight(text);
      if (!parsed || *parsed == AcDb::kLnWtByLayer || *parsed == AcDb::kLnWtByBlock)
        return refused(L"Requires a lineweight from 0.00 to 2.11 mm.");
      weight = *parsed;
      return true;
    });
    if (!goOn || stopped_) return false;
    return askLayers(L"the lineweight", [&](Record& record) { record.setLineWeight(weight); });
  }

  bool list() {
    for (const Slot* layer : drawingOf(prompter_).records(DxfType::Layer)) {
      if (layer->isErased()) continue;
      const AcDbObjectPointer<Record> record(AcDbObjectId(const_cast<Slot*>(layer)), AcDb::kForRead);
      if (record.openStatus() != Acad::eOk) continue;
      prompter_.line(L"\"" + drawingOf(prompter_).recordName(*layer) + L"\"" + (record->isOff() ? L"  off" : L"  on") +
                     (record->isFrozen() ? L"  frozen" : L"") + (record->isLocked() ? L"  locked" : L"") + L"  color " +
                     std::to_wstring(record->color().colorIndex()));
    }
    return true;
  }

  Prompter& prompter_;
  bool stopped_ = false;
};

void layer(Prompter& prompter) { LayerDialogue(prompter).run(); }

// ---- LINETYPE -------------------------------------------------------------------------------------------------------

/// Answers that a linetype is nowhere: the command ends, the current linetype stays. A script fails, a program that
/// runs the command goes on.
void linetypeMissing(Prompter& prompter, const std::wstring& name) {
  const std::wstring sentence = L"Cannot find linetype \"" + name + L"\".";
  if (prompter.session().input().isFromCode()) {
    prompter.line(sentence);
  } else {
    prompter.refuse(sentence);
  }
}

/// False ends the command.
bool setLinetype(Prompter& prompter) {
  SystemVariables& variables = prompter.session().variables();
  const Variable& current = *variables.find(L"CELTYPE");
  const auto name =
      prompter.word(L"Specify linetype name or [?] <" + std::get<std::wstring>(variables.get(current)) + L">: ");
  if (name.outcome == Outcome::Cancel) return false;
  if (!name) return true;
  if (linetypeByName(prompter, name.value) == nullptr) {
    linetypeMissing(prompter, name.value);
    return false;
  }
  if (const Result<> set = variables.set(current, name.value); !set)
    prompter.refuse(L"CELTYPE: " + text::fromUtf8(set.message()) + L".");
  return true;
}

bool loadLinetypes(Prompter& prompter) {
  const auto names = prompter.word(L"Enter linetype(s) to load: ");
  if (names.outcome == Outcome::Cancel) return false;
  if (!names) return true;
  const bool metric = facadeOf(prompter).measurement() == AcDb::kMetric;
  const std::wstring usual = metric ? L"acadiso.lin" : L"acad.lin";
  const auto file = prompter.word(L"Enter name of linetype file to search <" + usual + L">: ");
  if (file.outcome == Outcome::Cancel) return false;
  std::wstring fileName = file ? file.value : usual;
  if (text::toUtf8(fileName).find('.') == std::string::npos) fileName += L".lin";
  for (const std::wstring& name : splitNames(names.value)) {
    const Acad::ErrorStatus status = acdbLoadLineTypeFile(name.c_str(), fileName.c_str(), &facadeOf(prompter));
    if (status == Acad::eOk) {
      prompter.line(L"Linetype " + name + L" loaded.");
    } else if (status == Acad::eDuplicateRecordName) {
      prompter.line(L"Linetype \"" + name + L"\" is already loaded.");
    } else if (status == Acad::eFileNotFound) {
      prompter.refuse(L"Cannot find the linetype file \"" + fileName + L"\".");
      return false;
    } else {
      linetypeMissing(prompter, name);
      return false;
    }
  }
  return true;
}

void linetype(Prompter& prompter) {
  Limits limits;
  limits.keywords = Keywords(L"? Load Set");
  for (;;) {
    const auto option = prompter.keyword(L"Enter an option [?/Load/Set]: ", limits);
    if (option.outcome != Outcome::Keyword) return;
    if (option.keyword == L"?") {
      for (const Slot* record : drawingOf(prompter).records(DxfType::LineType)) {
        if (!record->isErased()) prompter.line(L"\"" + drawingOf(prompter).recordName(*record) + L"\"");
      }
    } else if (!(option.keyword == L"Set" ? setLinetype(prompter) : loadLinetypes(prompter))) {
      return;
    }
  }
}

constexpr HostCommand kCommands[] = {
    {L"LAYER", ACRX_CMD_MODAL, layer, L"makes layers, sets the current one, and their states and colours"},
    {L"LINETYPE", ACRX_CMD_MODAL, linetype, L"loads linetypes and sets the current one"},
};

}  // namespace

std::span<const HostCommand> layerCommands() { return kCommands; }

Slot* linetypeByName(Prompter& prompter, const std::wstring& name) {
  database::DrawingDatabase& drawing = drawingOf(prompter);
  if (Slot* const loaded = drawing.findRecord(DxfType::LineType, name)) return loaded;
  const bool metric = facadeOf(prompter).measurement() == AcDb::kMetric;
  acdbLoadLineTypeFile(name.c_str(), metric ? L"acadiso.lin" : L"acad.lin", &facadeOf(prompter));
  return drawing.findRecord(DxfType::LineType, name);
}

std::optional<int> parseLineweight(std::wstring_view text) {
  constexpr double kWidest = 2.11;  // mm
  if (text::equalFolded(text, L"ByLayer")) return AcDb::kLnWtByLayer;
  if (text::equalFolded(text, L"ByBlock")) return AcDb::kLnWtByBlock;
  if (text::equalFolded(text, L"Default")) return AcDb::kLnWtByLwDefault;
  const std::optional<double> millimetres = parseNumber(text);
  if (!millimetres || *millimetres < 0 || *millimetres > kWidest) return std::nullopt;
  return static_cast<int>(std::lround(*millimetres * 100));
}

}  // namespace host::editor
