// Templates and resources, whole and damaged.
#include <gtest/gtest.h>

#include <random>

#include "Dialogs/TemplateBytes.h"
#include "Win32/DialogTemplate.h"
#include "Win32/Resources.h"

namespace {

using namespace tests;
using host::win32::Bytes;
using host::win32::readDialogTemplate;

TemplateBytes roof(TemplateForm form) {
  TemplateBytes bytes(L"Räystäs", form);
  bytes.edit(1001, ES_NUMBER).button(IDOK, BS_DEFPUSHBUTTON, L"OK").control(0x85, 30236, CBS_DROPDOWNLIST);
  return bytes;
}

TEST(Templates, BothFormsSayTheSame) {
  for (const TemplateForm form : {TemplateForm::Extended, TemplateForm::Old}) {
    TemplateBytes bytes = roof(form);
    const auto dialog = readDialogTemplate(bytes.bytes());
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->title, L"Räystäs");
    EXPECT_EQ(dialog->rect.width, 200);
    EXPECT_EQ(dialog->font.pointSize, 8);
    EXPECT_EQ(dialog->font.face, L"MS Shell Dlg");
    ASSERT_EQ(dialog->controls.size(), 3U);
    EXPECT_EQ(dialog->controls[0].id, 1001);
    EXPECT_NE(dialog->controls[0].style & ES_NUMBER, 0U);
    EXPECT_EQ(std::get<std::wstring>(dialog->controls[1].title), L"OK");
    EXPECT_EQ(std::get<std::uint16_t>(dialog->controls[2].windowClass), host::win32::kComboBoxClass);
    EXPECT_EQ(dialog->controls[2].rect.y, 20);
    EXPECT_EQ(dialog->controls[2].rect.height, 12);
  }
}

TEST(Templates, CutAnywhereTheyAreRefused) {
  for (const TemplateForm form : {TemplateForm::Extended, TemplateForm::Old}) {
    const std::vector<std::uint8_t> whole = roof(form).bytes();
    for (std::size_t length = 0; length < whole.size(); ++length) {
      // A copy of its own, so that reading past the end is seen.
      const std::vector<std::uint8_t> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
      EXPECT_FALSE(readDialogTemplate(cut)) << length;
    }
  }
}

TEST(Templates, CountsAreNotBelieved) {
  TemplateBytes many = roof(TemplateForm::Extended);
  many.bytes()[many.countAt()] = 0xFF;
  many.bytes()[many.countAt() + 1] = 0xFF;
  EXPECT_FALSE(readDialogTemplate(many.bytes()));
  TemplateBytes extra = roof(TemplateForm::Extended);
  *(extra.bytes().end() - 1) = 0xFF;  // data of the last control
  EXPECT_FALSE(readDialogTemplate(extra.bytes()));

  std::mt19937 random(7);
  for (int round = 0; round < 20000; ++round) {
    std::vector<std::uint8_t> bytes = roof(round % 2 == 0 ? TemplateForm::Extended : TemplateForm::Old).bytes();
    for (int change = 0; change < 3; ++change) bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
    const auto dialog = readDialogTemplate(bytes);
    EXPECT_TRUE(!dialog || dialog->controls.size() <= bytes.size() / 18);
  }
}

/// A .res file with a dialog named by number and a string table of ids 16 to 31.
std::vector<std::uint8_t> resourceFile() {
  TemplateBytes out(L"");
  out.bytes().clear();
  const auto entry = [&out](unsigned type, unsigned name, const std::vector<std::uint8_t>& data) {
    while (out.bytes().size() % 4 != 0) out.byte(0);
    out.dword(static_cast<DWORD>(data.size())).dword(32);
    out.word(0xFFFF).word(type).word(0xFFFF).word(name).dword(0).word(0).word(0).dword(0).dword(0);
    out.bytes().insert(out.bytes().end(), data.begin(), data.end());
  };
  entry(0, 0, {});
  entry(5, 30298, {1, 2, 3});
  TemplateBytes strings(L"");
  strings.bytes().clear();
  strings.word(0).word(3).word('a').word(0xE4).word('b');
  for (int i = 2; i < 16; ++i) strings.word(0);
  entry(6, 2, strings.bytes());
  return out.bytes();
}

TEST(Resources, AreFoundByTypeAndNumber) {
  const std::vector<std::uint8_t> file = resourceFile();
  const auto dialog = host::win32::findResource(file, 5, MAKEINTRESOURCEW(30298));
  ASSERT_TRUE(dialog);
  EXPECT_EQ(std::vector<std::uint8_t>(dialog->begin(), dialog->end()), (std::vector<std::uint8_t>{1, 2, 3}));
  EXPECT_FALSE(host::win32::findResource(file, 5, MAKEINTRESOURCEW(30299)));
  EXPECT_FALSE(host::win32::findResource(file, 5, L"30298"));
  EXPECT_EQ(host::win32::findString(file, 17), L"aäb");
  EXPECT_FALSE(host::win32::findString(file, 16));
  EXPECT_FALSE(host::win32::findString(file, 33));
  EXPECT_FALSE(host::win32::findString(file, 0xFFFFFFFF));
}

TEST(Resources, ACutFileGivesNothingThatIsNotWhole) {
  const std::vector<std::uint8_t> whole = resourceFile();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const std::vector<std::uint8_t> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
    const auto dialog = host::win32::findResource(cut, 5, MAKEINTRESOURCEW(30298));
    EXPECT_TRUE(!dialog || dialog->size() == 3) << length;
    EXPECT_FALSE(host::win32::findString(cut, 17)) << length;
  }
}

TEST(Units, RoundAsWindowsDoes) {
  // A dialog of 203 by 207 units in a font of 6 by 13 pixels.
  EXPECT_EQ(MulDiv(203, 6, 4), 305);
  EXPECT_EQ(MulDiv(207, 13, 8), 336);
  EXPECT_EQ(MulDiv(-203, 6, 4), -305);
  EXPECT_EQ(MulDiv(1, 1, 2), 1);
  EXPECT_EQ(MulDiv(5, 1, 0), -1);
  EXPECT_EQ(MulDiv(2000000000, 2, 1), -1);
}

}  // namespace
