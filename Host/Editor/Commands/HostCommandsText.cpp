// TEXT.
#include <cmath>
#include <memory>
#include <numbers>

#include "Database/ObjectAccess.h"
#include "Editor/Commands/HostCommands.h"
#include "Editor/Session/Session.h"
#include "Text/Text.h"
#include "dbobjptr.h"
#include "dbsymtb.h"

namespace host::editor {
namespace {

using database::DxfType;
using database::Slot;
using database::Tag;

database::DrawingDatabase& drawingOf(Prompter& prompter) { return prompter.session().documents().current()->drawing(); }

/// Where the point of a text lies: tags 72 and 73.
struct Justification {
  const wchar_t* name;
  int horizontal, vertical;
};
constexpr Justification kJustifications[] = {
    {L"Left", 0, 0}, {L"Center", 1, 0}, {L"Right", 2, 0}, {L"Middle", 4, 0}, {L"TL", 0, 3},
    {L"TC", 1, 3},   {L"TR", 2, 3},     {L"ML", 0, 2},    {L"MC", 1, 2},     {L"MR", 2, 2},
    {L"BL", 0, 1},   {L"BC", 1, 1},     {L"BR", 2, 1},
};

const Justification* justificationOf(std::wstring_view name) {
  for (const Justification& each : kJustifications) {
    if (text::equalFolded(each.name, name)) return &each;
  }
  return nullptr;
}

class TextDialogue {
 public:
  explicit TextDialogue(Prompter& prompter) : prompter_(prompter) {
    const SystemVariables& variables = prompter.session().variables();
    height_ = std::get<double>(variables.get(*variables.find(L"TEXTSIZE")));
    style_ = drawingOf(prompter).headerText("$TEXTSTYLE", 7).value_or(L"Standard");
    if (drawingOf(prompter).findRecord(DxfType::TextStyle, style_) == nullptr) style_ = L"Standard";
  }

  void run() {
    if (!askPlace() || !askHeight() || !askRotation()) return;
    // Every line is a text of its own, below the one before.
    constexpr double kLineSpacing = 5.0 / 3;
    const double radians = degrees_ * std::numbers::pi / 180;
    const AcGeVector3d down{std::sin(radians), -std::cos(radians), 0};
    for (;;) {
      const auto line = prompter_.text(L"Enter text: ");
      if (!line || line.value.empty()) return;
      if (!add(line.value)) return;
      place_ = place_ + down * (height_ * kLineSpacing);
    }
  }

 private:
  bool askPlace() {
    Limits limits;
    limits.bits = RSG_NONULL;
    for (;;) {
      limits.keywords = Keywords(L"Justify Style");
      const auto place = prompter_.point(L"Specify start point of text or [Justify/Style]: ", limits);
      if (place.outcome == Outcome::Cancel) return false;
      if (place) {
        place_ = place.value;
        return true;
      }
      if (!(place.keyword == L"Style" ? askStyle() : askJustification())) return false;
    }
  }

  bool askJustification() {
    Limits limits;
    limits.keywords = Keywords(L"Left Center Right Middle TL TC TR ML MC MR BL BC BR");
    const auto option = prompter_.keyword(L"Enter an option [" + limits.keywords.shown() + L"]: ", limits);
    if (option.outcome == Outcome::Keyword) justification_ = justificationOf(option.keyword);
    return option.outcome != Outcome::Cancel;
  }

  bool askStyle() {
    for (;;) {
      const auto name = prompter_.word(L"Enter style name <" + style_ + L">: ");
      if (name.outcome == Outcome::Cancel) return false;
      if (!name) return true;
      if (const Slot* const record = drawingOf(prompter_).findRecord(DxfType::TextStyle, name.value)) {
        style_ = drawingOf(prompter_).recordName(*record);
        return true;
      }
      if (!prompter_.refuse(L"Cannot find text style \"" + name.value + L"\".")) return false;
    }
  }

  /// Of the style; 0 when it leaves the height open.
  double fixedHeight() const {
    const Slot* const record = drawingOf(prompter_).findRecord(DxfType::TextStyle, style_);
    if (record == nullptr) return 0;
    Tag tag;
    for (database::TagCursor tags = record->tags(); tags.next(tag) && tag.code < 1000;) {
      if (tag.code == 40) return tag.real();
    }
    return 0;
  }

  bool askHeight() {
    if (const double fixed = fixedHeight(); fixed > 0) {
      height_ = fixed;
      return true;
    }
    Limits limits;
    limits.bits = RSG_NOZERO | RSG_NONEG;
    limits.base = place_;
    const auto height = prompter_.real(L"Specify height <" + shownNumber(height_) + L">: ", limits);
    if (height.outcome == Outcome::Cancel) return false;
    if (height) height_ = height.value;
    return true;
  }

  bool askRotation() {
    Limits limits;
    limits.base = place_;
    const auto angle = prompter_.real(L"Specify rotation angle of text <0>: ", limits);
    if (angle.outcome == Outcome::Cancel) return false;
    if (angle) degrees_ = angle.value;
    return true;
  }

  bool add(const std::wstring& contents) {
    // The next text begins with this one's height.
    SystemVariables& variables = prompter_.session().variables();
    if (fixedHeight() <= 0) static_cast<void>(variables.set(*variables.find(L"TEXTSIZE"), height_));
    constexpr std::string_view kText = "AcDbText";
    const text::Codec utf8;
    database::TagWriter own(utf8);
    own.raw(100, kText).point(10, place_.x, place_.y, place_.z).real(40, height_).text(1, contents);
    if (degrees_ != 0) own.real(50, degrees_);
    if (!text::equalFolded(style_, L"Standard")) own.text(7, style_);
    const bool isLeft = justification_ == nullptr || (justification_->horizontal == 0 && justification_->vertical == 0);
    if (!isLeft) own.integer(72, justification_->horizontal).point(11, place_.x, place_.y, place_.z);
    own.raw(100, kText);
    if (!isLeft && justification_->vertical != 0) own.integer(73, justification_->vertical);
    auto entity = std::make_unique<AcDbProxyEntity>();
    HostObjectAccess::initDetached(*entity, "TEXT", true, own.str());
    const AcDbObjectPointer<AcDbBlockTableRecord> space(AcDbObjectId(prompter_.session().currentSpace().record),
                                                        AcDb::kForWrite);
    AcDbObjectId id;
    if (space.openStatus() != Acad::eOk || space->appendAcDbEntity(id, entity.get()) != Acad::eOk) {
      prompter_.refuse(L"The text cannot be added to the drawing.");
      return false;
    }
    entity.release()->close();
    return true;
  }

  Prompter& prompter_;
  AcGePoint3d place_;
  double height_ = 0, degrees_ = 0;
  std::wstring style_;
  const Justification* justification_ = nullptr;
};

void writeText(Prompter& prompter) { TextDialogue(prompter).run(); }

constexpr HostCommand kCommands[] = {
    {L"TEXT", ACRX_CMD_MODAL, writeText, L"writes lines of text"},
};

}  // namespace

std::span<const HostCommand> textCommands() { return kCommands; }

}  // namespace host::editor
