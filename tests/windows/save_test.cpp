#include "chartfiles/windows/frmSave.h"

#include <QPushButton>
#include <memory>

#include "chartfiles/plain_session.h"
#include "platform/up_down.h"
#include "staging/definitions.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using test::Caption;
using test::Click;
using test::Find;
using test::ReadFile;
using test::ShownBox;
using test::WriteFile;

constexpr const char* Saving = "Saving the digitation";

ChartRecord SevenDays() {
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 3, 5, 12, 30);
  chart.EndTime = chart.StartTime + 7;
  chart.EyedDepth = 14;
  chart.ManualDepth = 11;
  chart.Reliability = 2;
  return chart;
}

class SaveWindow : public ::testing::Test {
 protected:
  SaveWindow() {
    session_.Line.Add(0, 0);
    session_.Line.Add(7, 12);
  }

  frmSave& Open() {
    window_ = std::make_unique<frmSave>(
        desk_, dialogs_, folder_.Path(), session_, ChartOrigin{"C", "A", "S", "RG12", "U"},
        SaveCallbacks{[this] { calls_.push_back("enable"); }, [this] { calls_.push_back("new file"); },
                      [this] { calls_.push_back("redigitize"); }});
    window_->show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    return *window_;
  }
  std::string Text(const char* box) { return Find<QLineEdit>(*window_, box).text().toStdString(); }
  std::string Report() { return Find<QPlainTextEdit>(*window_, "txtPrompt").toPlainText().toStdString(); }

  test::TempFolder folder_;
  std::string path_ = folder_ / "RG12-19980305-1230.dat";
  Session session_ = test::PlainSession(SevenDays());
  test::EmptyDesk desk_;
  test::ScriptedDialogs dialogs_;
  std::vector<std::string> calls_;
  std::unique_ptr<frmSave> window_;
};

TEST_F(SaveWindow, ShowsTheReportAndTheDetails) {
  frmSave& window = Open();
  EXPECT_EQ(window.windowTitle(), "Save digitization");
  EXPECT_THAT(Report(), testing::HasSubstr("Eyed chart depth = 14 mm\nDigitized chart depth = 12 mm\n"));
  EXPECT_EQ(Find<QLabel>(window, "labPrompt0").text(), "Digitized Rain Factor = 14%");
  EXPECT_EQ(Find<QLabel>(window, "labPrompt1").text(), "Manual Rain Factor = 21%");
  EXPECT_EQ(Find<QLabel>(window, "labPrompt2").text(), "Time Length Factor = 0%");
  EXPECT_EQ(Find<QDateEdit>(window, "dtpBeginDate").date(), QDate(1998, 3, 5));
  EXPECT_EQ(Find<QTimeEdit>(window, "dtpBeginTime").time(), QTime(12, 30));
  EXPECT_EQ(Find<QDateEdit>(window, "dtpEndDate").date(), QDate(1998, 3, 12));
  EXPECT_EQ(Find<QTimeEdit>(window, "dtpEndTime").time(), QTime(12, 30));
  EXPECT_EQ(Text("txtEyed"), "14");
  EXPECT_EQ(Text("txtManual"), "11");
  EXPECT_EQ(Find<QComboBox>(window, "comChart").currentText(), "Marginal");

  std::vector<std::string> captions, choices;
  for (const QLabel* label : window.findChildren<QLabel*>())
    if (label->buddy() != nullptr) captions.push_back(Caption(label->text()));
  EXPECT_THAT(captions,
              testing::UnorderedElementsAre("Start Date:", "Start Time:", "End Date:", "End Time:",
                                            "Eyed Chart Depth:", "Manual Gage Depth:", "Digitizer Comment:",
                                            "Selected Rain Depth:", "Chart Reliability:", "Selected Alpha:"));
  for (const char* list : {"comRain", "comChart"})
    for (int i = 0; i < Find<QComboBox>(window, list).count(); ++i)
      choices.push_back(Find<QComboBox>(window, list).itemText(i).toStdString());
  EXPECT_THAT(choices, testing::ElementsAre("Eyed Chart Depth", "Digitizd Depth", "Average", "Manual Gage",
                                            "Other", "Acceptable", "Marginal", "Unreliable", "Unknown"));
  const std::map<const char*, std::string> buttons{{"cmdSave", "Save Digitization"},
                                                   {"cmdRedigitize", "Redigitize"},
                                                   {"cmdCancel", "Cancel"},
                                                   {"cmdDefiine", "Reset Definitions"}};
  for (const auto& [name, caption] : buttons)
    EXPECT_EQ(Caption(Find<QPushButton>(window, name).text()), caption);
  EXPECT_FALSE(Find(window, "cmdBack").isVisible());
  EXPECT_FALSE(Find(window, "cmdNext").isVisible());
}

TEST_F(SaveWindow, SavesWithReturnAndGoesOn) {
  frmSave& window = Open();
  ASSERT_EQ(window.focusWidget(), &Find(window, "cmdSave"));
  Find<QLineEdit>(window, "txtComment").setText("checked twice");
  QTest::keyClick(window.focusWidget(), Qt::Key_Return);
  EXPECT_THAT(ReadFile(path_), testing::HasSubstr("\r\nDigitizer Comment: checked twice\r\n"));
  EXPECT_TRUE(session_.Saved);
  EXPECT_THAT(calls_, testing::ElementsAre("enable", "new file"));
  EXPECT_FALSE(window.isVisible());
  EXPECT_THAT(desk_.ClosedWindows, testing::ElementsAre(WindowId::Save));
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(SaveWindow, LeavesTheOldFileAndAnUnsavedSessionWhenOverwritingIsCancelled) {
  WriteFile(path_, "old");
  dialogs_.Answers = {BoxAnswer::Cancel};
  Open();
  Click(*window_, "cmdSave");
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(
                                  ShownBox{Saving,
                                           "There is an existing file by the name of RG12-19980305-1230.dat. "
                                           "The programme will overwrite it.",
                                           BoxButtons::OkCancel, BoxIcon::Warning}));
  EXPECT_EQ(ReadFile(path_), "old");
  EXPECT_FALSE(session_.Saved) << "the question on closing the session would not come";
  EXPECT_THAT(calls_, testing::ElementsAre("enable", "new file"));
}

TEST_F(SaveWindow, StaysOpenWhenTheFolderTakesNoFile) {
  std::filesystem::create_directory(path_);
  Open();
  Click(*window_, "cmdSave");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0], (ShownBox{Saving, dialogs_.Boxes[0].Text, BoxButtons::Ok, BoxIcon::Warning}));
  EXPECT_THAT(dialogs_.Boxes[0].Text, testing::HasSubstr("RG12-19980305-1230.dat"));
  EXPECT_TRUE(window_->isVisible());
  EXPECT_FALSE(session_.Saved);
  EXPECT_TRUE(calls_.empty());

  std::filesystem::remove(path_);
  Click(*window_, "cmdSave");
  EXPECT_TRUE(session_.Saved);
}

TEST_F(SaveWindow, AsksBeforeItWritesWhatReadersWillNotSee) {
  session_.Line.AddComment(1, "at 12:30");
  dialogs_.Answers = {BoxAnswer::Cancel, BoxAnswer::Ok};
  Open();
  Click(*window_, "cmdSave");
  EXPECT_TRUE(window_->isVisible());
  EXPECT_FALSE(std::filesystem::exists(path_));
  Click(*window_, "cmdSave");
  EXPECT_TRUE(session_.Saved);
  EXPECT_THAT(dialogs_.Boxes[0].Text, testing::EndsWith("\n\nSave the chart all the same ?"));
}

TEST_F(SaveWindow, TellsWhatIsMissingAndSavesNoEmptyChart) {
  session_.Line.RemoveLast();
  frmSave& window = Open();
  EXPECT_EQ(Report(), "Error:\nNo points were digitized\n");
  for (const char* label : {"labPrompt0", "labPrompt1", "labPrompt2"})
    EXPECT_EQ(Find<QLabel>(window, label).text(), "") << label;
  Click(window, "cmdDefiine");
  EXPECT_EQ(Report(), "Error:\nNo points were digitized\n");
  Click(window, "cmdSave");
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(ShownBox{Saving, "There is no chart to save.",
                                                            BoxButtons::Ok, BoxIcon::Warning}));
  EXPECT_TRUE(window.isVisible());
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(SaveWindow, TakesEditedDetailsOnlyWhenTold) {
  frmSave& window = Open();
  const QLabel& pending = Find<QLabel>(window, "labPending");
  EXPECT_EQ(pending.text(), "");
  Find<QLineEdit>(window, "txtEyed").setText("12.5");
  Find<QTimeEdit>(window, "dtpBeginTime").setTime(QTime(13, 0));
  EXPECT_EQ(pending.text(), "Not yet taken:");
  EXPECT_EQ(session_.Chart.EyedDepth, 14);

  Click(window, "cmdDefiine");
  EXPECT_EQ(pending.text(), "");
  EXPECT_EQ(session_.Chart.EyedDepth, 12.5F);
  EXPECT_EQ(DateText(session_.Chart.StartTime), "05/03/98 13:00");
  EXPECT_THAT(Report(), testing::HasSubstr("Eyed chart depth = 12.5 mm"));
  EXPECT_EQ(Find<QLabel>(window, "labPrompt0").text(), "Digitized Rain Factor = 4%");
  Click(window, "cmdSave");
  EXPECT_TRUE(std::filesystem::exists(folder_ / "RG12-19980305-1300.dat"));
}

TEST_F(SaveWindow, TakesAChangedDetailWithReturnBeforeItSaves) {
  frmSave& window = Open();
  auto& eyed = Find<QLineEdit>(window, "txtEyed");
  eyed.setText("12.5");
  QTest::keyClick(&eyed, Qt::Key_Return);
  EXPECT_EQ(session_.Chart.EyedDepth, 12.5F);
  EXPECT_TRUE(window.isVisible());
  QTest::keyClick(&eyed, Qt::Key_Return);
  EXPECT_TRUE(session_.Saved);
}

TEST_F(SaveWindow, SurvivesDetailsThatGiveNoPercentage) {
  frmSave& window = Open();
  Find<QLineEdit>(window, "txtEyed").setText("");
  Find<QDateEdit>(window, "dtpEndDate").setDate(QDate(1998, 3, 5));
  Click(window, "cmdDefiine");
  EXPECT_EQ(Find<QLabel>(window, "labPrompt0").text(), "Digitized Rain Factor = unknown");
  EXPECT_EQ(Find<QLabel>(window, "labPrompt2").text(), "Time Length Factor = unknown");
}

TEST_F(SaveWindow, StepsNumbersAndShowsTheDepthChosen) {
  frmSave& window = Open();
  Find<UpDown>(window, "udnEyed").Step(-1);
  QTest::keyClick(&Find(window, "txtManual"), Qt::Key_Up);
  Find<UpDown>(window, "udnAlpha").Step(1);
  EXPECT_EQ(Text("txtEyed"), "13.9");
  EXPECT_EQ(Text("txtManual"), "11.1");
  EXPECT_EQ(Text("txtAlpha"), "0.01");

  auto& choice = Find<QComboBox>(window, "comRain");
  EXPECT_EQ(Text("txtRain"), "12");
  const std::array<std::string, 5> depths{"14", "12", "13", "11", "11"};
  for (int i = 0; i < 5; ++i) {
    choice.setCurrentIndex(i);
    EXPECT_EQ(Text("txtRain"), depths[static_cast<std::size_t>(i)]) << i;
  }
  choice.setCurrentIndex(0);
  Find<UpDown>(window, "udnRain").Step(1);
  EXPECT_EQ(Text("txtRain"), "14.1");
  EXPECT_EQ(choice.currentText(), "Other");
}

TEST_F(SaveWindow, BlinksTheFactorInAlertAndNotTheManualOne) {
  frmSave& window = Open();
  const auto colour = [&](const char* label) {
    return Find(window, label).palette().color(QPalette::WindowText);
  };
  const QColor back = window.palette().color(QPalette::Window), manual = colour("labPrompt1");
  Find<QTimer>(window, "timPrompt").setInterval(1);
  EXPECT_TRUE(test::WaitFor([&] { return colour("labPrompt0") == back; }));
  EXPECT_TRUE(test::WaitFor([&] { return colour("labPrompt0") == QColor(255, 0, 0); }));
  EXPECT_EQ(colour("labPrompt2"), back);
  EXPECT_EQ(colour("labPrompt1"), manual);
}

TEST_F(SaveWindow, RedigitizesOnlyAfterYes) {
  dialogs_.Answers = {BoxAnswer::No, BoxAnswer::Yes};
  Open();
  Click(*window_, "cmdRedigitize");
  EXPECT_EQ(dialogs_.Boxes[0],
            (ShownBox{"Reditizing",
                      "Are you sure you want to delete the current digitization and begin a new one ?",
                      BoxButtons::YesNo, BoxIcon::None}));
  EXPECT_TRUE(calls_.empty());
  EXPECT_TRUE(window_->isVisible());
  Click(*window_, "cmdRedigitize");
  EXPECT_EQ(calls_[0], "enable");
  EXPECT_EQ(calls_[1], "redigitize");
  EXPECT_FALSE(window_->isVisible());
  EXPECT_THAT(calls_, testing::Not(testing::Contains("new file")));
}

TEST_F(SaveWindow, GoesBackWithEscapeAndRemembersItsPlace) {
  Open();
  window_->move(40, 30);
  QTest::keyClick(&Find(*window_, "txtComment"), Qt::Key_Escape);
  EXPECT_FALSE(window_->isVisible());
  EXPECT_THAT(calls_, testing::ElementsAre("enable"));
  EXPECT_FALSE(std::filesystem::exists(path_));
  EXPECT_EQ(GetDefinition(folder_.Path(), "frmSave-Left"), "600");
  EXPECT_EQ(Open().pos(), QPoint(40, 30));
}

TEST_F(SaveWindow, SelectsTheWholeCommentOnFocus) {
  frmSave& window = Open();
  auto& comment = Find<QLineEdit>(window, "txtComment");
  comment.setText("old words");
  comment.deselect();
  QTest::mouseClick(&comment, Qt::LeftButton);
  EXPECT_TRUE(test::WaitFor([&] { return comment.selectedText() == "old words"; }));
  window.FocusChanged(true);
  EXPECT_EQ(window.focusWidget(), &Find(window, "cmdSave"));
}

}  // namespace
}  // namespace hyetex
