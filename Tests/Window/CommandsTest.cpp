// Tables of commands, completion, prompts with links, phrases in Finnish: what needs no window.
#include <gmock/gmock.h>

#include "Support.h"
#include "Window/Commands/Completion.h"
#include "Window/Input/HostPhrases.h"
#include "Window/Input/Prompt.h"
#include "Window/Output/ExportDialog.h"

using namespace tests;
using namespace host::window;
using testing::ElementsAre;

namespace {

class Commands : public testing::Test {
 protected:
  Commands() {
    setLanguage(Language::Finnish);
    tables.load(windowFolder(), {QString(kBinDir) + "/tolmex.arx"});
  }
  ~Commands() override { setLanguage(Language::English); }
  QString meant(const char* typed) const { return Completion(tables, {"LINE", "LINETYPE", "LIST"}).meant(typed); }
  std::vector<QString> matching(const char* typed) const {
    std::vector<QString> names;
    for (const Candidate& each : Completion(tables, {"LINE", "LINETYPE"}).matching(QString::fromUtf8(typed), 8))
      names.push_back(each.command);
    return names;
  }
  CommandTables tables;
};

TEST_F(Commands, ShortFormsRunTheirCommands) {
  int count = 0;
  for (const MenuRow* const row : tables.all()) {
    for (const QString& word : row->typed) {
      EXPECT_EQ(meant(word.toUtf8()), row->commandName()) << word.toStdString();
      ++count;
    }
  }
  EXPECT_GT(count, 40);
  EXPECT_EQ(meant("line"), "line");               // exact names win over what they begin
  EXPECT_EQ(meant("nurm"), "TLM_MUOK_NURMIKKO");  // three letters that begin a part of a name
  EXPECT_EQ(meant("xq"), "");
  EXPECT_EQ(meant("nu"), "");
}

TEST_F(Commands, CompletionFindsWordsOfBothLanguagesWithoutTheirDots) {
  EXPECT_THAT(matching("alaat"), ElementsAre("TLM_MUOK_PIHALAATTA")) << "inside a name";
  EXPECT_THAT(matching("grass"), testing::Contains(QString("TLM_MUOK_NURMIKKO")));
  EXPECT_THAT(matching("metsa"), testing::Contains(QString("TLM_MUOK_METSA")));
  EXPECT_THAT(matching("päivitä"), testing::Contains(QString("TLM_VARJO_PAIVITA")));
  EXPECT_LE(matching("t").size(), 8U);
  EXPECT_TRUE(matching("").empty());
}

TEST_F(Commands, LayersTellWhatMakesAndEmptiesThem) {
  ASSERT_NE(tables.makerOf("TMV_NURMI"), nullptr);
  EXPECT_EQ(tables.makerOf("TMV_NURMI")->command, "TLM_MUOK_NURMIKKO");
  EXPECT_FALSE(tables.isFillLayer("tmv_nurmi"));
  EXPECT_TRUE(tables.isFillLayer("tma_nurmi"));
  ASSERT_NE(tables.emptierOf("tmv_varjo"), nullptr);
  EXPECT_EQ(tables.makerOf("0"), nullptr);
  EXPECT_EQ(tables.title("TLM_VARJO_PAIVITA"), QString::fromUtf8("Päivitä varjot"));
  EXPECT_EQ(tables.title("nur"), "Nurmikko");
}

std::vector<std::string> sent(const char* prompt) {
  std::vector<std::string> answers;
  for (const PromptPiece& piece : promptPieces(QString::fromUtf8(prompt))) {
    if (piece.sends == PromptPiece::Sends::Text) answers.push_back(piece.answer.toStdString());
    if (piece.sends == PromptPiece::Sends::Enter) answers.emplace_back("<Enter>");
    if (piece.sends == PromptPiece::Sends::Escape) answers.emplace_back("<Esc>");
  }
  return answers;
}

TEST(Prompts, BracketsAreLinksAndRoundOnesAreNot) {
  EXPECT_THAT(sent("Anna seuraava piste tai [Kumoa (U)]: "), ElementsAre("U"));
  EXPECT_THAT(sent("Specify next point or [Close/Undo]: "), ElementsAre("Close", "Undo"));
  EXPECT_THAT(sent("Paikan kulma asteina [90] (0-360):"), ElementsAre("<Enter>"));
  EXPECT_THAT(sent("Anna uusi insertointipiste [Esc - lopetus / Enter - paluu]:"), ElementsAre("<Esc>", "<Enter>"));
  EXPECT_THAT(sent("Enter height <2.5>: "), ElementsAre("<Enter>"));
  EXPECT_THAT(sent("Enter lineweight (0.00mm - 2.11mm) <Default>: "), ElementsAre("<Enter>"));
  EXPECT_EQ(defaultOf("Paikan leveys metreinä [2.5]:"), "2.5");
}

TEST(Prompts, NumbersGetTheirPointAndDistancesTheirDirection) {
  using host::editor::Wanted;
  EXPECT_EQ(withDecimalPoint("2,5", Wanted::Number), "2.5");
  EXPECT_EQ(withDecimalPoint("10,5", Wanted::Point), "10,5");
  EXPECT_EQ(withDecimalPoint("1,2,3", Wanted::Number), "1,2,3");
  EXPECT_EQ(typedDistance("12", {1, 1, 0}, {1, 5, 0}, false).value(), "@12<90");
  EXPECT_EQ(typedDistance("3", {0, 0, 0}, {5, 1, 0}, true).value(), "@3<0");
  EXPECT_EQ(typedDistance("3", {0, 0, 0}, {0, -1, 0}, false).value(), "@3<270");
  EXPECT_FALSE(typedDistance("3,4", {0, 0, 0}, {1, 0, 0}, false));
  EXPECT_FALSE(typedDistance("3", {0, 0, 0}, {0, 0, 0}, false));
}

TEST_F(Commands, HostSpeaksFinnishAndKeepsItsKeys) {
  EXPECT_EQ(hostPhrase("Select objects: ").text, "Valitse kohteet: ");
  EXPECT_EQ(hostPhrase("1 found, 3 total").text, QString::fromUtf8("1 löytyi, yhteensä 3"));
  const Phrase unknown = hostPhrase("Unknown command \"TLM_MUOK_ASF\".  Nearest: TLM_MUOK_ASFALTTI.");
  EXPECT_TRUE(unknown.isRefusal);
  EXPECT_EQ(unknown.text, QString::fromUtf8("Tuntematon komento \"TLM_MUOK_ASF\". Lähimmät: TLM_MUOK_ASFALTTI."));
  EXPECT_EQ(hostPhrase("Save drawing as <a %2.dxf>: ").text, "Tallenna nimellä <a %2.dxf>: ");
  EXPECT_EQ(hostPhrase("Valitse muokattava nurmialue:").text, "Valitse muokattava nurmialue:");
}

TEST(Pages, WhatDoesNotFitNamesWhatWould) {
  setLanguage(Language::English);
  ExportChoice choice;
  ASSERT_TRUE(host::picture::setPaper(choice.picture, "A3"));
  ASSERT_TRUE(host::picture::setScale(choice.picture, "1:250"));
  choice.scale = "1:250";
  host::geometry::Box plan;
  plan.add(host::geometry::Point{0, 0});
  plan.add(host::geometry::Point{148, 134});
  QStringList better;
  EXPECT_EQ(misfit(choice, plan, 1, &better),
            QString::fromUtf8("Does not fit: 592 × 536 mm needed, A3 has 420 × 297."));
  EXPECT_EQ(better, QStringList({"1:500", "A1"}));
  ASSERT_TRUE(host::picture::setScale(choice.picture, "1:500"));
  EXPECT_EQ(misfit(choice, plan, 1, nullptr), "");
  choice.scale = "1:500";
  choice.layers = "tm? x";
  EXPECT_EQ(pictureOptions(choice, host::picture::PictureFormat::Pdf), "--paper A3 --scale 1:500 --layers \"tm? x\"");
}

}  // namespace
