// Every kind of control in a dialog of the test's own, worked by scripts as plug-ins' dialogs are.
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>

#include "Dialogs/TemplateBytes.h"
#include "Editor/Support.h"
#include "OwnFolder.h"
#include "acui.h"
#include "tchar.h"

namespace {

using namespace tests;

/// What happened in the dialog, in order.
std::wstring events;
std::function<INT_PTR()> showDialog;
std::function<void(CDialog&)> onOk;

class TryDialog : public CAcUiDialog {
 public:
  explicit TryDialog(const TemplateBytes& bytes) : CAcUiDialog(0) { InitModalIndirect(bytes.get()); }

 protected:
  BOOL OnInitDialog() override {
    CListBox list;
    if (list.SubclassWindow(::GetDlgItem(m_hWnd, 40))) {
      for (const wchar_t* const text : {L"mänty", L"kuusi", L"koivu"}) list.AddString(text);
    }
    events.clear();
    return CAcUiDialog::OnInitDialog();
  }
  void OnOK() override {
    events += L"ok ";
    if (onOk) return onOk(*this);
    EndDialog(IDOK);
  }
  afx_msg void onRadio() { events += L"radio "; }
  afx_msg void onCheck() { events += L"check "; }
  afx_msg void onChange() { events += L"change "; }
  afx_msg void onSelect() { events += L"select "; }
  afx_msg void onDouble() { events += L"double "; }
  afx_msg int OnCreate(LPCREATESTRUCT create) {
    events += L"create ";
    return CAcUiDialog::OnCreate(create);
  }
  DECLARE_MESSAGE_MAP()
};
BEGIN_MESSAGE_MAP(TryDialog, CAcUiDialog)
ON_WM_CREATE()
ON_BN_CLICKED(10, &TryDialog::onRadio)
ON_BN_CLICKED(11, &TryDialog::onRadio)
ON_BN_CLICKED(20, &TryDialog::onCheck)
ON_EN_CHANGE(30, &TryDialog::onChange)
ON_LBN_SELCHANGE(40, &TryDialog::onSelect)
ON_LBN_DBLCLK(40, &TryDialog::onDouble)
END_MESSAGE_MAP()

class Dialogs : public test::Host {
 protected:
  Dialogs() {
    command(L"TRY", [] { acutPrintf(L"\nresult %d\n", static_cast<int>(showDialog())); });
    bytes.button(10, BS_AUTORADIOBUTTON | WS_GROUP, L"&Lines").button(11, BS_AUTORADIOBUTTON, L"Dots");
    bytes.button(12, BS_AUTORADIOBUTTON | WS_GROUP, L"Other group");
    bytes.button(20, BS_AUTOCHECKBOX | WS_GROUP, L"Roof").edit(30, ES_NUMBER).edit(31, ES_READONLY);
    bytes.control(0x83, 40, LBS_NOTIFY).control(0x83, 41, LBS_SORT).control(0x82, -1, SS_LEFT, L"Text");
    bytes.edit(32, WS_DISABLED).button(IDOK, BS_DEFPUSHBUTTON, L"OK").button(IDCANCEL, 0, L"Cancel");
    onOk = nullptr;
    showDialog = [this] { return TryDialog(bytes).DoModal(); };
  }

  TemplateBytes bytes{L"Try"};
};

TEST_F(Dialogs, EveryControlIsWorked) {
  expectDone(
      "TRY\n"
      "10\n"
      "dots\n"
      "12\n"
      "roof on\n"
      "20 on\n"
      "30 \"2,5 \"\"m\"\"\"\n"
      "40 Kuusi\n"
      "double-click 40\n"
      "LIST\n"
      "OK\n");
  EXPECT_EQ(events, L"radio radio check change select double ok ");
  EXPECT_TRUE(said(L"10 button \"&Lines\"\n"));
  EXPECT_TRUE(said(L"11 button \"Dots\", on\n"));
  EXPECT_TRUE(said(L"12 button \"Other group\", on\n"));
  EXPECT_TRUE(said(L"20 check box \"Roof\", on\n"));
  EXPECT_TRUE(said(L"30 edit \"2,5 \"m\"\"\n"));
  EXPECT_TRUE(said(L"40 list \"kuusi\" of "));
  EXPECT_TRUE(said(L"result 1\n"));
}

TEST_F(Dialogs, EnterAndEscape) {
  expectDone("TRY\n\n");
  EXPECT_EQ(events, L"ok ");
  EXPECT_TRUE(said(L"result 1\n"));
  expectDone("TRY\n^C\n");
  EXPECT_EQ(events, L"");
  EXPECT_TRUE(said(L"result 2\n"));
}

TEST_F(Dialogs, WhatCannotBeDoneNamesDialogLineAndControls) {
  expectFailure("TRY\n999 5\n", "plan.scr:2: TRY: dialog \"Try\" has no control \"999\"; it has 10 \"Lines\"");
  expectFailure("TRY\nApply\n", "has no control \"Apply\"");
  expectFailure("TRY\n31 x\n", "control 31 is read-only");
  expectFailure("TRY\n32 x\n", "control 32 is disabled");
  expectFailure("TRY\n20 maybe\n", "control 20 is a check box");
  expectFailure("TRY\nroof\n", "control 20 is a check box: give it on or off");
  expectFailure("TRY\n30\n", "control 30 is an edit");
  expectFailure("TRY\n40 lehmus\n", "has no entry \"lehmus\"; its entries: \"mänty\", \"kuusi\", \"koivu\"");
  EXPECT_TRUE(said(L"result 2\n"));  // cancelled, not hung
  expectFailure("TRY\n30 5\n", "plan.scr:2: dialog \"Try\" was left without an answer");
  EXPECT_TRUE(said(L"result 2\n"));
}

TEST_F(Dialogs, NobodyLeftToAnswerEndsEvenAStubbornDialog) {
  class Stubborn : public TryDialog {
   public:
    using TryDialog::TryDialog;

   protected:
    void OnCancel() override {}
  };
  showDialog = [this] { return Stubborn(bytes).DoModal(); };
  expectFailure("TRY\n^C\n30 5\n", "was left without an answer");
  EXPECT_TRUE(said(L"result 2\n"));
}

TEST_F(Dialogs, DigitsOnlyHoldsForTypingAlone) {
  onOk = [](CDialog& dialog) {
    const HWND edit = ::GetDlgItem(dialog.m_hWnd, 30);
    SetWindowTextW(edit, L"-2.5");
    CString text;
    CWnd::FromHandle(edit)->GetWindowText(text);
    EXPECT_EQ(text, L"-2.5");
    SendMessageW(edit, EM_SETSEL, 0, -1);
    for (const wchar_t key : {L'7', L'.', L'-', L'x', L'5'}) SendMessageW(edit, WM_CHAR, static_cast<WPARAM>(key), 0);
    CWnd::FromHandle(edit)->GetWindowText(text);
    EXPECT_EQ(text, L"75");
    dialog.EndDialog(7);
  };
  expectDone("TRY\nOK\n");
  EXPECT_TRUE(said(L"result 7\n"));
}

TEST_F(Dialogs, ListsAnswerAsWindowsDoes) {
  onOk = [](CDialog& dialog) {
    const HWND list = ::GetDlgItem(dialog.m_hWnd, 40);
    EXPECT_EQ(SendMessageW(list, LB_GETCURSEL, 0, 0), LB_ERR);
    EXPECT_EQ(SendMessageW(list, LB_SETCURSEL, 9, 0), LB_ERR);
    EXPECT_EQ(SendMessageW(list, LB_GETTEXT, 3, 0), LB_ERR);
    EXPECT_EQ(SendMessageW(list, LB_INSERTSTRING, 4, reinterpret_cast<LPARAM>(L"x")), LB_ERR);
    EXPECT_EQ(SendMessageW(list, LB_SETITEMDATA, 2, 77), 0);
    EXPECT_EQ(SendMessageW(list, LB_DELETESTRING, 0, 0), 2);
    EXPECT_EQ(SendMessageW(list, LB_GETITEMDATA, 1, 0), 77);  // moves with its item
    EXPECT_EQ(SendMessageW(list, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(L"KOIVU")), 1);
    const HWND sorted = ::GetDlgItem(dialog.m_hWnd, 41);
    for (const wchar_t* const text : {L"c", L"A", L"b"})
      SendMessageW(sorted, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    EXPECT_EQ(SendMessageW(sorted, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(L"c")), 2);
    dialog.EndDialog(IDOK);
  };
  expectDone("TRY\nOK\n");
  EXPECT_EQ(events, L"ok ");  // nothing of this is a user's choice
}

TEST_F(Dialogs, HandlesOutliveNothing) {
  HWND edit = nullptr;
  onOk = [&edit](CDialog& dialog) {
    edit = ::GetDlgItem(dialog.m_hWnd, 30);
    PostMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"late"));
    dialog.EndDialog(IDOK);
  };
  expectDone("TRY\nOK\nTRY\nOK\n");
  EXPECT_EQ(IsWindow(edit), FALSE);
  EXPECT_EQ(SendMessageW(edit, WM_GETTEXTLENGTH, 0, 0), 0);
  EXPECT_EQ(SetWindowTextW(edit, L"x"), FALSE);
  EXPECT_EQ(GetParent(nullptr), nullptr);
}

TEST_F(Dialogs, TemplatesThatCannotBeUsedShowNothing) {
  TemplateBytes unknown(L"Unknown");
  unknown.control(0x84, 5, 0);  // no scroll bars here
  showDialog = [&] { return TryDialog(unknown).DoModal(); };
  expectDone("TRY\n");
  EXPECT_TRUE(said(L"result -1\n"));
  showDialog = [] { return CDialog(12345).DoModal(); };
  expectDone("TRY\n");
  EXPECT_TRUE(said(L"result -1\n"));
}

TEST_F(Dialogs, ABoundControlThatIsMissingGivesTheDialogUp) {
  class Missing : public TryDialog {
   public:
    using TryDialog::TryDialog;

   protected:
    void DoDataExchange(CDataExchange* exchange) override { DDX_Control(exchange, 4711, edit_); }
    CEdit edit_;
  };
  showDialog = [this] { return Missing(bytes).DoModal(); };
  expectDone("TRY\n");
  EXPECT_TRUE(said(L"result -1\n"));
}

TEST_F(Dialogs, AFailingHandlerIsToldAndTheDialogGoesOn) {
  onOk = [](CDialog&) {
    onOk = nullptr;
    throw std::runtime_error("no paper");
  };
  expectDone("TRY\nOK\nOK\n");
  EXPECT_TRUE(said(L"[tolmex] A message handler failed: no paper\n"));
  EXPECT_TRUE(said(L"result 1\n"));
}

TEST_F(Dialogs, NumbersOfNumericEdits) {
  class Numbers : public TryDialog {
   public:
    using TryDialog::TryDialog;

   protected:
    void DoDataExchange(CDataExchange* exchange) override { DDX_Control(exchange, 30, edit_); }
    void OnOK() override {
      for (const wchar_t* const text : {L"", L"  ", L"3", L" 2.8 ", L"-0.5", L"+1e3", L".5", L"5."}) {
        edit_.SetWindowText(text);
        EXPECT_TRUE(edit_.Validate()) << host::text::toUtf8(text);
      }
      for (const wchar_t* const text :
           {L"abc", L"2,8", L"2 8", L"1e999", L"inf", L"nan", L"0x10", L"--1", L"+-1", L"1e", L"3 m", L"\u0663"}) {
        edit_.SetWindowText(text);
        EXPECT_FALSE(edit_.Validate()) << host::text::toUtf8(text);
      }
      EndDialog(IDOK);
    }
    CAcUiNumericEdit edit_;
  };
  showDialog = [this] { return Numbers(bytes).DoModal(); };
  expectDone("TRY\nOK\n");
}

TEST_F(Dialogs, APictureIsMadeWithItsTitle) {
  const OwnFolder own;
  const auto file = own.path / "try.png";
  const auto pictureUnder = [&](const wchar_t* title) {
    TemplateBytes titled(title);
    titled.button(IDOK, BS_DEFPUSHBUTTON, L"OK").button(IDCANCEL, 0, L"Cancel");
    showDialog = [titled] { return TryDialog(titled).DoModal(); };
    expectDone("TRY\nPICTURE \"" + file.string() + "\"\nOK\n");
    return fileText(file);
  };
  const std::string tried = pictureUnder(L"Try");
  EXPECT_GT(tried.size(), 500U);
  EXPECT_EQ(tried, pictureUnder(L"Try"));
  EXPECT_NE(tried, pictureUnder(L"Try it"));
  expectFailure("TRY\nPICTURE try.gif\n", ".png");
}

TEST_F(Dialogs, APictureTakesNoOtherFilesPlace) {
  const OwnFolder own;
  const auto& folder = own.path;
  TemplateBytes plain(L"Try");
  plain.button(IDOK, BS_DEFPUSHBUTTON, L"OK").button(IDCANCEL, 0, L"Cancel");
  showDialog = [plain] { return TryDialog(plain).DoModal(); };
  const auto expectRefused = [&](const char* name, std::string_view why) {
    const auto result = run("TRY\nPICTURE \"" + (folder / name).string() + "\"\nOK\n");
    EXPECT_EQ(result.status(), host::RunStatus::OutputFailed);
    EXPECT_NE(result.message().find(std::string(name) + ": " + std::string(why)), std::string::npos)
        << result.message();
  };
  expectRefused("gone/try.png", "cannot be written: ");
  ASSERT_EQ(::mkfifo((folder / "pipe.png").c_str(), 0600), 0);
  expectRefused("pipe.png", "this is no ordinary file");  // and nobody waits for a reader
  ASSERT_TRUE(app.saveDrawing(folder / "plan.dxf"));
  ASSERT_TRUE(app.openDrawing(folder / "plan.dxf"));
  const std::string drawing = fileText(folder / "plan.dxf");
  std::filesystem::create_symlink("plan.dxf", folder / "link.png");
  expectRefused("link.png", "this drawing is open");
  EXPECT_EQ(fileText(folder / "plan.dxf"), drawing);
  const std::filesystem::directory_iterator all(folder);
  EXPECT_EQ(std::distance(begin(all), end(all)), 3);
}

// ---- message boxes --------------------------------------------------------------------------------------------------

class Boxes : public test::Host {
 protected:
  /// The answer of a box of the type to one line, and that the next command runs.
  int answer(UINT type, const std::string& line) {
    static UINT asked = 0;
    static int answered = -1;
    asked = type;
    answered = -1;
    command(L"BOX", [] { answered = MessageBoxW(nullptr, L"Jatketaanko?", L"Tolmex", asked); });
    last = run("BOX\n" + line);
    acedRegCmds->removeGroup(L"TEST");
    return answered;
  }
  host::Result<> last;
};

TEST_F(Boxes, EachTypeTakesItsOwnAnswers) {
  struct Row {
    UINT type;
    const char* line;
    int answer;
  };
  const Row rows[] = {
      {MB_YESNO, "Yes\n", IDYES},
      {MB_YESNO, "no\n", IDNO},
      {MB_YESNO | MB_ICONQUESTION, "\n", IDYES},
      {MB_YESNO | MB_DEFBUTTON2, "\n", IDNO},
      {MB_YESNOCANCEL, "^C\n", IDCANCEL},
      {MB_OKCANCEL, "OK\n", IDOK},
      {MB_OKCANCEL, "Cancel\n", IDCANCEL},
      {MB_ABORTRETRYIGNORE, "Ignore\n", IDIGNORE},
      {MB_ABORTRETRYIGNORE | MB_DEFBUTTON3, "\n", IDIGNORE},
      {MB_RETRYCANCEL, "Retry\n", IDRETRY},
      {MB_CANCELTRYCONTINUE, "Try Again\n", IDTRYAGAIN},
      {MB_CANCELTRYCONTINUE, "Continue\n", IDCONTINUE},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(answer(row.type, row.line), row.answer) << row.type << " " << row.line;
    EXPECT_TRUE(last) << last.message();
    EXPECT_TRUE(said(L"[Tolmex] Jatketaanko?\n"));
  }
}

TEST_F(Boxes, OnlyOkTakesNoLine) {
  EXPECT_EQ(answer(MB_OK | MB_ICONERROR, "SETVAR\nLTSCALE\n2\n"), IDOK);
  EXPECT_TRUE(last) << last.message();
  EXPECT_TRUE(said(L"[Tolmex] Jatketaanko?\n"));
}

TEST_F(Boxes, AnUndefinedTypeShowsNothing) {
  for (const UINT type : {58U, 7U, 0xFU}) {
    EXPECT_EQ(answer(type, ""), 0);
    EXPECT_TRUE(last) << last.message();
    EXPECT_FALSE(said(L"Jatketaanko"));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_MSGBOX_STYLE);
  }
}

TEST_F(Boxes, OtherAnswersFailTheScript) {
  EXPECT_EQ(answer(MB_YESNO, "Maybe\n"), IDNO);
  EXPECT_NE(last.message().find("message box \"Tolmex\" has no button \"Maybe\"; it has Yes, No"), std::string::npos);
  EXPECT_EQ(answer(MB_YESNO, "^C\n"), IDNO);
  EXPECT_NE(last.message().find("cannot be left with Esc"), std::string::npos);
  EXPECT_EQ(answer(MB_ABORTRETRYIGNORE, ""), IDABORT);
  EXPECT_NE(last.message().find("message box \"Tolmex\" [Abort, Retry, Ignore] was left without an answer"),
            std::string::npos);
}

TEST(Strings, FollowMfc) {
  CString text(L"Lauta-aita");
  EXPECT_EQ(text.Mid(6), L"aita");
  EXPECT_EQ(text.Mid(20, 5), L"");
  EXPECT_EQ(text.Right(99), L"Lauta-aita");
  EXPECT_EQ(text.Find(L"a", 2), 4);
  EXPECT_EQ(text.ReverseFind(L'z'), -1);
  EXPECT_EQ(text.Replace(L"a", L"aa"), 4);
  EXPECT_EQ(text, L"Laautaa-aaitaa");
  text.Format(L"%s %d %g", L"Räystäs", 3, 0.5);
  EXPECT_EQ(text, L"Räystäs 3 0.5");
  text.Format(L"%s", std::wstring(5000, L'x').c_str());
  EXPECT_EQ(text.GetLength(), 5000);
  EXPECT_EQ(CString(L" \t x \n").Trim(), L"x");
}

}  // namespace
