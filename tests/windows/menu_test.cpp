// The Main Menu, and the question where the editor finds its charts.
#include <QDesktopServices>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTextBrowser>
#include <QTimer>

#include "app/app_desk.h"
#include "app/help_places.h"
#include "core/definitions.h"
#include "paths.h"
#include "platform/qt_text.h"
#include "staging/windows/frmInit.h"
#include "staging/windows/frmMessageBox.h"
#include "staging/windows/frmSettingsText.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

class MainMenu : public WindowTest<frmInit> {
 protected:
  void Open() {
    Show(connection_, MainMenuServices{.Level = [this] { return level_; },
                                       .DatabaseOpens = [this] { return ++connects_, hasDatabase_; },
                                       .AskForSource = [this] { return answer_; },
                                       .SetSource = [this](ChartSourceKind s) { source_ = s; },
                                       .Help = [] {},
                                       .OpenText = [this](const std::string& path) -> Result<void> {
                                         edited_ = path;
                                         if (!hasEditor_) return Failure("No application");
                                         return {};
                                       }});
  }
  void OpenWithAllWindows() {
    for (const MenuCommand& command : MainMenuCommands()) desk_.Present.insert(command.Opens);
    Open();
  }

  std::string connection_;
  std::int16_t level_ = 1;
  bool hasDatabase_ = false, hasEditor_ = true;
  std::string edited_;
  int connects_ = 0;
  std::optional<ChartSourceKind> answer_, source_;
};

TEST_F(MainMenu, ShowsAllCommandsAndDisablesThoseWithoutWindow) {
  Remember("DataBaseName", "DSN=rain");
  desk_.Present = {WindowId::Lists};
  Open();
  EXPECT_EQ(window_->windowTitle(), "Main Menu");
  EXPECT_EQ(Find<QLabel>(*window_, "labDataBase").text(), "DSN=rain");
  EXPECT_EQ(connection_, "DSN=rain");

  const Captions captions{{"cmdLists", "Edit Information Needed to Digitize Charts"},
                          {"cmdTask", "Prepare and Digitize Charts"},
                          {"cmdEditor", "Quality Control of Digitized Charts"},
                          {"cmdPopulate", "Load/Extract Digitized ASCII Files To/From Database"},
                          {"cmdAlpha", "Define ALPHA Pen Skew "},
                          {"Command1", "Convert ASCII Data to Time-Depth Data"},
                          {"cmdDataBase", "Select Database Source"},
                          {"cmdSelectDatabaseEdit", "Edit Database Records"},
                          {"cmdCompress", "Export or Import Rainfall Intensity Data as XML"},
                          {"cmdRainfall", "Rainfall Results"},
                          {"cmdViewSettings", "View and Edit Program Definitions File (definitions.dat)"},
                          {"cmdHelp", "HELP"},
                          {"cmdExit", "EXIT"}};
  ExpectCaptions(*window_, captions);
  std::set<QChar> letters;
  for (const auto& [name, _] : captions) {
    auto& button = Find<QAbstractButton>(*window_, name);
    const auto mark = button.text().indexOf('&');
    ASSERT_GE(mark, 0) << name;
    EXPECT_TRUE(letters.insert(button.text()[mark + 1].toUpper()).second) << name << " shares its letter";
    EXPECT_GE(button.width(), button.sizeHint().width()) << name << " is clipped";
  }
  EXPECT_TRUE(Find(*window_, "cmdLists").isEnabled());
  EXPECT_FALSE(Find(*window_, "cmdTask").isEnabled());
  EXPECT_FALSE(Find(*window_, "cmdTask").toolTip().isEmpty());
}

TEST_F(MainMenu, RefusesByLevelBeforeItTriesTheDatabase) {
  level_ = 10;
  hasDatabase_ = true;
  OpenWithAllWindows();
  const ShownBox refused =
      Warning("Authorization Limitation", "You are not authorized to perform that action.");
  const ShownBox refusedEditor = Warning("Authorization Error", "you are not authorized to use this option");
  for (const char* name : {"cmdPopulate", "cmdAlpha", "Command1", "cmdEditor"}) Click(*window_, name);
  EXPECT_EQ(dialogs_.Boxes, (std::vector<ShownBox>{refused, refused, refused, refusedEditor}));
  EXPECT_EQ(connects_, 0);
  EXPECT_TRUE(desk_.Opened.empty());

  Click(*window_, "cmdTask");
  EXPECT_EQ(desk_.Opened, std::vector{WindowId::Tasks});
}

TEST_F(MainMenu, SaysThatThereIsNoDatabase) {
  level_ = 5;
  OpenWithAllWindows();
  Click(*window_, "cmdPopulate");
  EXPECT_THAT(dialogs_.Boxes,
              testing::ElementsAre(
                  Warning("Defining Alpha Values", "Your database is not defined or does not exist")));
  EXPECT_TRUE(window_->isVisible());
  EXPECT_TRUE(desk_.Opened.empty());
}

TEST_F(MainMenu, ClosesBehindAMainWindowAndKeepsItsPlace) {
  OpenWithAllWindows();
  window_->move(40, 30);
  Click(*window_, "cmdDataBase");
  EXPECT_TRUE(window_->isVisible());
  Click(*window_, "cmdLists");
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(desk_.Opened, (std::vector{WindowId::Connection, WindowId::Lists}));
  EXPECT_EQ(desk_.ClosedWindows, std::vector{WindowId::MainMenu});
  EXPECT_EQ(Remembered("frmInit-Left"), "600");
  EXPECT_EQ(Remembered("frmInit-Top"), "450");
}

TEST_F(MainMenu, AsksForTheChartsOnlyWithADatabase) {
  level_ = 5;
  OpenWithAllWindows();
  Click(*window_, "cmdEditor");
  EXPECT_EQ(source_, ChartSourceKind::HardDrive);
  EXPECT_EQ(desk_.Opened, std::vector{WindowId::Editor});

  desk_.Opened.clear();
  hasDatabase_ = true;
  Open();
  Click(*window_, "cmdEditor");  // the question is closed without an answer
  EXPECT_TRUE(desk_.Opened.empty());
  EXPECT_TRUE(window_->isVisible());
  answer_ = ChartSourceKind::Database;
  Click(*window_, "cmdEditor");
  EXPECT_EQ(source_, ChartSourceKind::Database);
  EXPECT_EQ(desk_.Opened, std::vector{WindowId::Editor});
}

TEST_F(MainMenu, EndsTheProgramByItsButtonOnly) {
  Open();
  QTest::keyClick(window_.get(), Qt::Key_Escape);
  EXPECT_FALSE(desk_.HasEnded);
  Click(*window_, "cmdExit");
  EXPECT_TRUE(desk_.HasEnded);
}

TEST_F(MainMenu, OpensTheDefinitionsInAnEditorOrInItsOwnView) {
  Open();
  Click(*window_, "cmdViewSettings");
  EXPECT_EQ(edited_, folder_ / "Definitions.dat");
  EXPECT_TRUE(desk_.Opened.empty());
  hasEditor_ = false;
  Click(*window_, "cmdViewSettings");
  EXPECT_EQ(desk_.Opened, std::vector{WindowId::Definitions});
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

using DefinitionsView = WindowTest<frmSettingsText>;

TEST_F(DefinitionsView, SavesWhatWasEditedAndAsksBeforeItIsLeft) {
  const ShownBox question{"Definitions.dat", "Would you like to save the definitions before you exit?",
                          BoxButtons::YesNoCancel, BoxIcon::Question};
  Remember("HelpSite", "https://one");
  const auto text = [this] { return &Find<QPlainTextEdit>(*window_, "txtDefinitions"); };
  Show(ReadDefinitions(folder_.Path()).value());
  QTest::keyClick(text(), Qt::Key_End);
  QTest::keyClicks(text(), "2");
  dialogs_.Answers = {BoxAnswer::Cancel, BoxAnswer::No};
  QTest::keyClick(text(), Qt::Key_Escape);
  EXPECT_TRUE(window_->isVisible());
  window_->close();
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(Remembered("HelpSite"), "https://one");
  EXPECT_EQ(dialogs_.Boxes, (std::vector{question, question}));

  Show(ReadDefinitions(folder_.Path()).value());
  QTest::keyClick(text(), Qt::Key_End);
  QTest::keyClicks(text(), "2");
  ASSERT_TRUE(settings_.Set(setting::UserName, "Anna"));  // meanwhile
  Click(*window_, "cmdSave");
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(Remembered("HelpSite"), "https://one2");
  EXPECT_EQ(Remembered("frmLogin-UserName"), "Anna");
  EXPECT_EQ(dialogs_.Boxes.size(), 2U);

  Show(ReadDefinitions(folder_.Path()).value());
  QTest::keyClick(text(), Qt::Key_Escape);
  EXPECT_FALSE(window_->isVisible()) << "nothing was changed";
}

TEST_F(FolderTest, HelpOpensThePageThatComesWithTheProgramUnlessASiteIsNamed) {
  AppDesk desk({.Folder = folder_.Path()}, dialogs_);
  desk.Start();
  Click(*desk.Login(), "cmdOK");
  QWidget* menu = desk.Window(WindowId::MainMenu);
  ASSERT_NE(menu, nullptr);
  QTextBrowser browser;
  QDesktopServices::setUrlHandler("file", &browser, "setSource");
  Click(*menu, "cmdHelp");
  QDesktopServices::unsetUrlHandler("file");
  EXPECT_EQ(browser.documentTitle(), "Hyetex: an operator's day")
      << browser.source().toString().toStdString();
  Click(*menu, "cmdHelp");  // no browser
  QWidget* view = desk.Window(WindowId::LargeView);
  ASSERT_NE(view, nullptr);
  const QString words = Find<QPlainTextEdit>(*view, "txtView").toPlainText();
  EXPECT_TRUE(words.startsWith("Hyetex: an operator's day") && words.contains("Pen skew"));
  EXPECT_FALSE(words.contains(QChar::ObjectReplacementCharacter)) << "of a picture";
  for (const QString& line : words.split('\n')) EXPECT_LE(line.size(), 80) << line.toStdString();
  EXPECT_TRUE(dialogs_.Boxes.empty());

  Remember("HelpSite", "https://www.example.org");
  dialogs_.Answers = {BoxAnswer::Cancel};
  Click(*menu, "cmdHelp");
  EXPECT_EQ(dialogs_.Boxes,
            (std::vector<ShownBox>{{"Asking for help",
                                    "In order to view the help you need to connected to the internet, "
                                    "otherwise use the manual.",
                                    BoxButtons::OkCancel, BoxIcon::None}}));
}

TEST_F(FolderTest, HelpOpensAtTheSectionOfTheWindowInFront) {
  const QString file = ToQt(test::Sources() + "/docs/help/hyetex_instructions_part1.htm");
  const QString page = ToQt(test::ReadFile(FromQt(file)));
  AppDesk desk({.Folder = folder_.Path()}, dialogs_);
  for (int id = 1; id < 28; ++id) {
    const QString place = ToQt(HelpPlace(static_cast<WindowId>(id)));
    if (!desk.Has(static_cast<WindowId>(id)) || place.isEmpty()) continue;
    EXPECT_EQ(page.count(" id=\"" + place + "\">"), 1) << id << " " << place.toStdString();
  }

  desk.Start();
  Click(*desk.Login(), "cmdOK");
  desk.Open(WindowId::Lists);
  QTextBrowser browser;
  QDesktopServices::setUrlHandler("file", &browser, "setSource");
  desk.ShellWindow()->findChild<QAction*>("actHelp")->trigger();
  QDesktopServices::unsetUrlHandler("file");
  EXPECT_EQ(browser.source().fragment(), "before");
  desk.ShellWindow()->findChild<QAction*>("actHelp")->trigger();  // no browser
  QWidget* view = desk.Window(WindowId::LargeView);
  ASSERT_NE(view, nullptr);
  EXPECT_TRUE(Find<QPlainTextEdit>(*view, "txtView").toPlainText().startsWith("Before the first chart\n"))
      << Find<QPlainTextEdit>(*view, "txtView").toPlainText().left(60).toStdString();
}

TEST(DataSourceQuestion, StaysWhenTheDatabaseIsRefused) {
  ScriptedDialogs dialogs;
  QWidget shell;
  shell.setGeometry(30, 30, 600, 300);
  shell.show();
  frmMessageBox question(dialogs, 10, &shell);
  EXPECT_EQ(question.windowTitle(), "Selecting Data Source");
  EXPECT_EQ(Find<QLabel>(question, "labQuestion").text(),
            "Are your raw ascii files located on your HARD DRIVE or your DATABASE ?");
  ExpectCaptions(question, {{"cmdAnswer0", "Hard Drive"}, {"cmdAnswer1", "Database"}});

  QPoint place;
  QTimer::singleShot(0, &question, [&] {
    place = question.pos() - shell.mapToGlobal(QPoint());
    Click(question, "cmdAnswer1");
    EXPECT_TRUE(question.isVisible());
    Click(question, "cmdAnswer0");
  });
  EXPECT_EQ(question.Ask(), ChartSourceKind::HardDrive);
  EXPECT_EQ(place, QPoint(200, 100));
  ASSERT_EQ(dialogs.Boxes.size(), 1U);
  EXPECT_EQ(dialogs.Boxes[0].Title, "Authorization Limitation");

  QTimer::singleShot(0, &question, [&] { QTest::keyClick(&question, Qt::Key_Escape); });
  EXPECT_EQ(question.Ask(), std::nullopt);
}

}  // namespace
}  // namespace hyetex
