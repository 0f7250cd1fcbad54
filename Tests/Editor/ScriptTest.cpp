// How scripts are cut into answers, and how runs end.
#include <filesystem>
#include <fstream>

#include "Editor/Answers.h"
#include "Editor/DialogInput.h"
#include "OwnFolder.h"
#include "Support.h"
#include "acedCmdNF.h"
#include "acedads.h"
#include "dbents.h"
#include "dbsymtb.h"

namespace {

using host::editor::Answer;
using host::editor::AnswerForm;
using host::editor::ScriptInput;

/// Answers of a script as one text: "a|b|<enter>|<esc>"; `forms` says how each is asked for (w, t, l), the last one
/// goes on.
std::string answersOf(std::string_view script, std::string_view forms) {
  ScriptInput input(script, "s");
  std::string all;
  for (std::size_t i = 0;; ++i) {
    const char form = forms[std::min(i, forms.size() - 1)];
    host::editor::Question question;
    question.form = form == 'w' ? AnswerForm::Word : form == 't' ? AnswerForm::Text : AnswerForm::Line;
    const Answer answer = input.next(question);
    if (answer.kind == Answer::Kind::End) return all;
    if (!all.empty()) all += '|';
    all += answer.kind == Answer::Kind::Enter    ? "<enter>"
           : answer.kind == Answer::Kind::Cancel ? "<esc>"
                                                 : host::text::toUtf8(answer.text);
  }
}

TEST(ScriptWords, EndAtBlanksAndLineEnds) {
  EXPECT_EQ(answersOf("LINE 0,0 10,0\n\n", "w"), "LINE|0,0|10,0|<enter>");
  EXPECT_EQ(answersOf("A\r\nB\r\n", "w"), "A|B");
  EXPECT_EQ(answersOf("\xEF\xBB\xBF"
                      "A B",
                      "w"),
            "A|B");
  // A blank after an answer ends it, so one before the line end leaves an Enter.
  EXPECT_EQ(answersOf("A \nB\n", "w"), "A|<enter>|B");
  EXPECT_EQ(answersOf("A  B\n", "w"), "A|<enter>|B");
}

TEST(ScriptWords, QuotesListsCommentsAndEsc) {
  EXPECT_EQ(answersOf("N \"my layer\" X\n", "w"), "N|my layer|X");
  EXPECT_EQ(answersOf("\"say \"\"so\"\"\"\n", "w"), "say \"so\"");
  EXPECT_EQ(answersOf("(handent \"2F\") Y\n", "w"), "(handent \"2F\")|Y");
  EXPECT_EQ(answersOf("(ssget \"X\"\n; a comment\n  '((8 . \"A)\")\r\n  )) Y\nB\n", "w"),
            "(ssget \"X\"   '((8 . \"A)\")   ))|Y|B");
  // What is not closed ends at the next empty line, with it.
  EXPECT_EQ(answersOf("(ssget \"X\"\n'((8 . \"A\")\n\nB\n", "w"), "(ssget \"X\" '((8 . \"A\")|B");
  EXPECT_EQ(answersOf("(handent \"2F\nB\n", "w"), "(handent \"2F|B");
  EXPECT_EQ(answersOf("A\n; a comment\nB ;no\n", "w"), "A|B|;no");
  EXPECT_EQ(answersOf("^C\nLINE\n", "w"), "<esc>|LINE");
  EXPECT_EQ(answersOf("^C^C_LINE\n", "w"), "<esc>|<esc>|_LINE");
  EXPECT_EQ(answersOf("^C LINE\n", "w"), "<esc>|LINE");
  EXPECT_EQ(answersOf("\"\"\n", "w"), "");  // an empty text, which is no Enter
}

TEST(ScriptTexts, TakeTheRestOfTheLine) {
  EXPECT_EQ(answersOf("OPEN my plan.dxf\nQSAVE\n", "wtw"), "OPEN|my plan.dxf|QSAVE");
  EXPECT_EQ(answersOf("OPEN \"my plan.dxf\"\n", "wt"), "OPEN|my plan.dxf");
  EXPECT_EQ(answersOf("T \"a\" and \"b\"\n", "wt"), "T|\"a\" and \"b\"");
  EXPECT_EQ(answersOf("CMD\n30206 2.8\n30255 \"\"\n", "wl"), "CMD|30206 2.8|30255 \"\"");
  EXPECT_EQ(answersOf("T\n\n", "wt"), "T|<enter>");
}

TEST(TypedPoints, AbsoluteRelativePolarAndRefused) {
  using host::editor::parsePoint;
  const AcGePoint3d origin(100, 200, 3);
  struct Row {
    const wchar_t* text;
    AcGePoint3d point;
  };
  for (const Row& row : {Row{L"10,5", {10, 5, 0}}, Row{L"10,5,2", {10, 5, 2}}, Row{L"@5,0", {105, 200, 3}},
                         Row{L"@10<90", {100, 210, 3}}, Row{L"@10<-90", {100, 190, 3}}, Row{L"2<180", {-2, 0, 0}},
                         Row{L"@", {100, 200, 3}}, Row{L"#1,2", {1, 2, 0}}, Row{L"-1e3,.5", {-1000, 0.5, 0}}}) {
    const auto point = parsePoint(row.text, origin);
    ASSERT_TRUE(point) << host::text::toUtf8(row.text);
    EXPECT_EQ(*point, row.point) << host::text::toUtf8(row.text);
  }
  const auto slanted = parsePoint(L"@2<30", origin);
  ASSERT_TRUE(slanted);
  EXPECT_NEAR(slanted->x, 101.7320508075689, 1e-12);
  for (const wchar_t* text : {L"10", L"1,2,3,4", L"1,", L"a,b", L"1<x", L"nan,1", L"1,inf", L"1e999,0", L"1 ,2", L""})
    EXPECT_FALSE(parsePoint(text, origin)) << host::text::toUtf8(text);
}

TEST(KeywordLists, AbbreviationsAndGlobalNames) {
  const host::editor::Keywords words(L"Close CEnter Undo");
  EXPECT_EQ(words.match(L"c"), L"Close");
  EXPECT_EQ(words.match(L"CE"), L"CEnter");
  EXPECT_EQ(words.match(L"_clo"), L"Close");
  EXPECT_FALSE(words.match(L"x"));
  EXPECT_FALSE(words.match(L"closest"));
  const host::editor::Keywords local(L"Ja Nein _Yes No");
  EXPECT_EQ(local.match(L"j"), L"Yes");
  EXPECT_EQ(local.match(L"_n"), L"No");
  EXPECT_FALSE(local.match(L"_ja"));
}

class Runs : public test::Host {};

TEST_F(Runs, CommandsByAnySpelling) {
  expectDone("_.line 0,0 1,1\n\nLINE 0,0 2,2\n\n-L 0,0 3,3\n\n");
  EXPECT_EQ(entities().size(), 3U);
  EXPECT_TRUE(said(L"Command: LINE\nSpecify first point: 0,0\nSpecify next point or [Undo]: 2,2\n"))
      << host::text::toUtf8(transcript);
}

TEST_F(Runs, BlankLinesBetweenCommandsDoNothing) {
  expectDone("LINE 0,0 1,1\n\n\n\nLINE 0,0 2,2\n\n\n");
  EXPECT_EQ(entities().size(), 2U);
}

TEST_F(Runs, UnknownCommandNamesItsNeighboursAndLine) {
  expectFailure("LINE 0,0 1,1\n\n; here\nLAYR\n", "plan.scr:4: unknown command \"LAYR\"; nearest: LAYER");
  EXPECT_TRUE(said(L"Unknown command \"LAYR\"."));
  expectFailure("XYZZYQQ\n", "plan.scr:1: unknown command \"XYZZYQQ\"");
}

TEST_F(Runs, AnswersRunOutInsideACommandButNotBetween) {
  expectFailure("LINE 0,0\n5,5\n", "plan.scr:2: the input ended while LINE waited");
  // What was drawn before is one step that can be undone.
  EXPECT_EQ(entities().size(), 1U);
  expectDone("");
}

TEST_F(Runs, RefusedAnswersAreSaidAndFail) {
  expectFailure("LINE 0,0 5\n9,9\n\n", "plan.scr:1: LINE: Invalid point.");
  EXPECT_TRUE(said(L"Invalid point."));
  expectFailure("ERASE (handent \"FFFFFF\")\n\n", "No entity has the handle FFFFFF");
  expectFailure("SETVAR LTSCALE big\n", "LTSCALE needs a number");
}

TEST_F(Runs, TransparentCommandInsideAPrompt) {
  expectDone("LINE 0,0 'SETVAR LTSCALE 2 'ZOOM W 0,0 10,10 5,0\n\n");
  EXPECT_TRUE(said(L"Resuming LINE command."));
  ASSERT_EQ(entities().size(), 1U);
  EXPECT_EQ(values(*entities()[0], 11), std::vector<std::string>{"5.0"});
  EXPECT_EQ(app.drawing()->headerReal("$LTSCALE", 40), 2.0);
  expectFailure("LINE 0,0 'ERASE\n", "ERASE may not be invoked transparently");
}

TEST_F(Runs, EscEndsTheCommandAndKeepsTheScript) {
  expectDone("LINE 0,0 ^C\nLINE 0,0 4,4\n\n");
  EXPECT_EQ(entities().size(), 1U);
}

TEST_F(Runs, ScriptsCallScripts) {
  const tests::OwnFolder own;
  const auto& folder = own.path;
  std::ofstream(folder / "inner.scr") << "LINE 0,0 1,0\n\n";
  std::ofstream(folder / "endless.scr") << "SCRIPT " << (folder / "endless.scr").string() << "\n";
  expectDone("SCRIPT " + (folder / "inner").string() + "\nDELAY 500\nRESUME\nLINE 0,0 2,0\n\n");
  EXPECT_EQ(entities().size(), 2U);
  expectDone("RSCRIPT\nRSCRIPT\n");  // the last one that SCRIPT ran
  EXPECT_EQ(entities().size(), 4U);
  std::ofstream(folder / "again.scr") << "LINE 0,0 3,0\n\nRSCRIPT\n";
  expectFailure("SCRIPT " + (folder / "again.scr").string() + "\n",
                "again.scr:3: RSCRIPT: It would repeat this script without end");
  expectFailure("SCRIPT " + (folder / "endless.scr").string() + "\n", "too deeply");
  expectFailure("SCRIPT " + (folder / "none.scr").string() + "\n", "cannot be read");
}

TEST_F(Runs, AWholeScriptIsOneUndoStep) {
  const tests::OwnFolder own;
  const auto& folder = own.path;
  std::ofstream(folder / "inner.scr") << "LINE 0,0 1,0\n\nLINE 0,0 2,0\n\n";
  std::ofstream(folder / "outer.scr") << "LINE 0,0 3,0\n\nSCRIPT " << (folder / "inner.scr").string()
                                      << "\nLINE 0,0 4,0\n\n";
  std::ofstream(folder / "steps.scr") << "LINE 0,0 3,0\n\nLINE 0,0 4,0\n\nU\n";
  const std::string outer = "SCRIPT " + (folder / "outer.scr").string() + "\n";
  expectDone("LINE 0,0 9,9\n\n" + outer + "LINE 0,0 8,8\n\n");
  EXPECT_EQ(entities().size(), 6U);
  expectDone("U\n");
  EXPECT_EQ(entities().size(), 5U);
  expectDone("U\n");
  EXPECT_TRUE(said(L"SCRIPT outer.scr")) << host::text::toUtf8(transcript);
  EXPECT_EQ(entities().size(), 1U) << "the line before the script stays";
  expectDone("REDO\n");
  EXPECT_EQ(entities().size(), 5U);
  expectDone(outer + "U\nU\n");
  EXPECT_EQ(entities().size(), 1U) << "two scripts are two steps";
  // Within a script U takes its own commands back one by one.
  expectDone("SCRIPT " + (folder / "steps.scr").string() + "\n");
  EXPECT_EQ(entities().size(), 2U);
  expectDone("U\n");
  EXPECT_EQ(entities().size(), 1U);
}

TEST_F(Runs, ACommandLeftAtOnceLeavesTheDrawingAsItWas) {
  // As plug-ins do, it prepares the drawing before it asks anything.
  command(L"PREPARES", [] {
    for (const wchar_t* name : {L"mine", L"yours"}) {
      AcDbLayerTable* table = nullptr;
      if (acdbCurDwg()->getLayerTable(table, AcDb::kForWrite) != Acad::eOk) return;
      if (!table->has(name)) {
        auto* record = new AcDbLayerTableRecord;
        record->setName(name);
        table->add(record);
        record->close();
      }
      table->close();
    }
    ads_point first{}, second{};
    if (acedGetPoint(nullptr, L"\nFrom: ", first) != RTNORM) return;
    auto* line = new AcDbLine(AcGePoint3d(first[0], first[1], 0), AcGePoint3d(9, 9, 0));
    AcDbBlockTableRecord* space = nullptr;
    AcDbBlockTable* blocks = nullptr;
    if (acdbCurDwg()->getBlockTable(blocks, AcDb::kForRead) != Acad::eOk) return;
    blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForWrite);
    blocks->close();
    AcDbObjectId id;
    space->appendAcDbEntity(id, line);
    line->close();
    space->close();
    acedGetPoint(nullptr, L"\nTo: ", second);
  });
  const auto hasLayer = [this] { return app.drawing()->findRecord(test::DxfType::Layer, L"mine") != nullptr; };
  const std::string before = host::dxf::drawingText(*app.drawing());
  expectDone("PREPARES ^C\n");
  EXPECT_FALSE(hasLayer());
  EXPECT_FALSE(app.drawing()->isModified());
  EXPECT_EQ(host::dxf::drawingText(*app.drawing()), before);
  expectDone("U\n");
  EXPECT_TRUE(said(L"Everything has been undone")) << "there is no step to take back";
  // What a command did before it was left stays, and so do the layers that it needs.
  expectDone("PREPARES 1,1 ^C\n");
  EXPECT_EQ(entities().size(), 1U);
  EXPECT_TRUE(hasLayer());
  expectDone("U\n");
  EXPECT_FALSE(hasLayer());
}

TEST_F(Runs, ExceptionsOfACommandAreItsFailure) {
  command(L"THROWS", [] { throw std::runtime_error("out of paint"); });
  expectFailure("THROWS\n", "plan.scr:1: THROWS failed: out of paint");
  expectDone("LINE 0,0 1,1\n\n");
}

TEST_F(Runs, QuitAsksOnlyForChanges) {
  expectDone("QUIT\n");
  EXPECT_TRUE(app.quitRequested());
  expectDone("LINE 0,0 1,1\n\nQUIT N\nLINE 0,0 2,2\n\nQUIT Y\nNONSENSE\n");
  EXPECT_TRUE(app.quitRequested());
  EXPECT_EQ(entities().size(), 2U);
}

TEST_F(Runs, QuestionsOfPlugins) {
  static std::vector<int> results;
  static std::vector<double> numbers;
  results.clear();
  numbers.clear();
  command(L"ASKS", [] {
    ads_point p{};
    double real = 7;
    int whole = 0;
    wchar_t text[32] = L"";
    results.push_back(acedGetPoint(nullptr, L"\nPoint: ", p));
    numbers.insert(numbers.end(), {p[0], p[1]});
    const ads_point base{10, 10, 0};
    results.push_back(acedGetPoint(base, L"\nNext: ", p));
    numbers.insert(numbers.end(), {p[0], p[1]});
    results.push_back(acedGetReal(L"\nHeight [2.5]:", &real));
    numbers.push_back(real);
    acedInitGet(RSG_NOZERO, L"Yes No");
    results.push_back(acedGetReal(L"\nOr yes: ", &real));
    acedGetInput(text, 32);
    acutPrintf(L"\ngot %s %d %ls", text, 5, L"wide");
    results.push_back(acedGetInt(L"\nCount: ", &whole));
    numbers.push_back(whole);
    results.push_back(acedGetString(1, L"\nName: ", text, 5));
    acutPrintf(L"\n[%s]", text);
    acedAlert(L"Mind the gap");
    acedAlert(L"\n\nand the step.\n\nTwice");  // boxes may begin with room
  });
  expectDone("ASKS 1,2 @5,0\n\nY 12 long name\n");
  EXPECT_EQ(results, (std::vector<int>{RTNORM, RTNORM, RTNONE, RTKWORD, RTNORM, RTNORM}));
  EXPECT_EQ(numbers, (std::vector<double>{1, 2, 15, 10, 7, 12}));
  EXPECT_EQ(transcript,
            L"Command: ASKS\nPoint: 1,2\nNext: @5,0\nHeight [2.5]:\nOr yes: Y\ngot Yes 5 wide\nCount: 12\n"
            L"Name: long name\n[long]\n[tolmex] Mind the gap\n[tolmex] and the step.\n\nTwice\nCommand: \n");
}

TEST_F(Runs, DialogsTakeWholeLines) {
  static std::vector<std::wstring> lines;
  static bool again;
  lines.clear();
  command(L"OPENSDIALOG", [] {
    for (;;) {
      const Answer answer = host::editor::nextDialogLine(L"dialog \"Roof\"");
      if (answer.kind == Answer::Kind::Cancel) return;
      lines.push_back(answer.text);
      if (answer.text == L"OK") return;
      if (answer.text == L"99 1") again = host::editor::refuseDialogLine(L"There is no control 99.");
    }
  });
  expectDone("OPENSDIALOG\n30206 2.8\n; not this\n30211 \"a b\"\n\nOK\nLINE 0,0 1,1\n\n");
  EXPECT_EQ(lines, (std::vector<std::wstring>{L"30206 2.8", L"30211 \"a b\"", L"", L"OK"}));
  EXPECT_TRUE(
      said(L"Command: OPENSDIALOG\ndialog \"Roof\": 30206 2.8\ndialog \"Roof\": 30211 \"a b\"\n"
           L"dialog \"Roof\": \ndialog \"Roof\": OK\nCommand: LINE\n"))
      << host::text::toUtf8(transcript);
  expectFailure("OPENSDIALOG\n30206 1\n", "plan.scr:2: dialog \"Roof\" was left without an answer");
  expectFailure("OPENSDIALOG\n99 1\nOK\n", "plan.scr:2: OPENSDIALOG: There is no control 99.");
  EXPECT_FALSE(again);
}

TEST_F(Runs, InterruptEndsTheCommandAndTheScript) {
  static int result;
  command(L"WAITS", [] {
    host::editor::Application::interrupt();
    double number = 0;
    result = acedGetReal(L"\nNumber: ", &number);
  });
  expectFailure("WAITS\n5\nLINE 0,0 1,1\n\n", "plan.scr:1: interrupted");
  EXPECT_EQ(result, RTCAN);
  EXPECT_TRUE(entities().empty());
  expectDone("LINE 0,0 1,1\n\n");
}

TEST_F(Runs, AtATerminalQuestionsAreAskedAgain) {
  test::Typed input({"LAYR", "LINE", "oops", "0,0", "1,1", "", "", "2,2", "3,3", "", "LAYER S nowhere", "0", ""});
  const host::Result<> result = app.run(input);
  EXPECT_TRUE(result) << result.message();
  EXPECT_EQ(problems.size(), 1U);    // the unknown command
  EXPECT_EQ(entities().size(), 2U);  // Enter repeated LINE
}

TEST_F(Runs, CommandsFromCode) {
  static std::vector<int> results;
  results.clear();
  command(
      L"DRAWS",
      [] {
        const ads_point end{8, 0, 0};
        results.push_back(acedCommandS(RTSTR, L"_.LINE", RTSTR, L"0,0", RT3DPOINT, end, RTSTR, L"", RTNONE));
        results.push_back(acedCommandS(RTSTR, L"LINE", RTSTR, L"0,0", RTNONE));
        results.push_back(acedCommandS(RTSTR, L"NOTHINGOFTHEKIND", RTNONE));
        // An unknown linetype: said, and the command is over.
        results.push_back(acedCommandS(RTSTR, L"linetype", RTSTR, L"s", RTSTR, L"NO_SUCH_DASHES", RTSTR, L"", RTNONE));
        double real = 0;
        results.push_back(acedGetReal(L"\nNumber: ", &real));
      },
      ACRX_CMD_TRANSPARENT);
  expectDone("DRAWS 3\n");
  EXPECT_EQ(results, (std::vector<int>{RTNORM, RTERROR, RTERROR, RTNORM, RTNORM}));
  EXPECT_TRUE(said(L"Cannot find linetype \"NO_SUCH_DASHES\"."));
  EXPECT_EQ(entities().size(), 1U);
  // Inside another command the host runs none for code.
  results.clear();
  expectDone("LINE 0,0 'DRAWS 3 ^C\n");
  EXPECT_EQ(results, (std::vector<int>{RTERROR, RTERROR, RTERROR, RTERROR, RTNORM}));
}

}  // namespace
