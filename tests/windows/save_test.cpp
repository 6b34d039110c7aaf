#include "chartfiles/windows/frmSave.h"

#include "chartfiles/traced_week.h"
#include "core/files.h"
#include "platform/date_box.h"
#include "platform/up_down.h"
#include "windows/support.h"

namespace hyetex {
namespace {

using namespace hyetex::test;

constexpr const char* Saving = "Saving the digitation";

class SaveWindow : public WindowTest<frmSave> {
 protected:
  frmSave& Open() {
    return Show(session_, WeekOrigin,
                SaveCallbacks{[this] { calls_ += "enable "; }, [this] { calls_ += "new file "; },
                              [this] {
                                calls_ += "redigitize ";
                                return redigitizes_;
                              },
                              comment_, [this](std::string comment) { comment_ = std::move(comment); }});
  }
  std::string Label(const char* label) { return Find<QLabel>(*window_, label).text().toStdString(); }
  std::string Text(const char* box) { return Find<QLineEdit>(*window_, box).text().toStdString(); }
  std::string Report() { return Find<QPlainTextEdit>(*window_, "txtPrompt").toPlainText().toStdString(); }

  std::string path_ = folder_ / WeekFile;
  Session session_ = TracedWeek();
  std::string calls_, comment_;
  bool redigitizes_ = true;
};

TEST_F(SaveWindow, ShowsTheReportAndTheDetails) {
  frmSave& window = Open();
  EXPECT_EQ(window.windowTitle(), "Save digitization");
  EXPECT_THAT(Report(), testing::HasSubstr("Eyed chart depth = 14 mm\nDigitized chart depth = 12 mm\n"));
  EXPECT_EQ(Label("labPrompt0"), "Digitized Rain Factor = 14%");
  EXPECT_EQ(Label("labPrompt1"), "Manual Rain Factor = 21%");
  EXPECT_EQ(Label("labPrompt2"), "Time Length Factor = 0%");
  EXPECT_EQ(Find<DateBox>(window, "dtpBeginDate").date(), QDate(1998, 3, 5));
  EXPECT_EQ(Find<QTimeEdit>(window, "dtpBeginTime").time(), QTime(12, 30));
  EXPECT_EQ(Find<DateBox>(window, "dtpEndDate").date(), QDate(1998, 3, 12));
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
  ExpectCaptions(window, {{"cmdSave", "Save Digitization"},
                          {"cmdRedigitize", "Redigitize"},
                          {"cmdCancel", "Cancel"},
                          {"cmdDefiine", "Reset Definitions"}});
  for (const char* hidden : {"cmdBack", "cmdNext"}) EXPECT_FALSE(Find(window, hidden).isVisible());
}

TEST_F(SaveWindow, SavesWithReturnAndGoesOn) {
  frmSave& window = Open();
  ASSERT_EQ(window.focusWidget(), &Find(window, "cmdSave"));
  Find<QLineEdit>(window, "txtComment").setText("checked twice");
  QTest::keyClick(window.focusWidget(), Qt::Key_Return);
  EXPECT_THAT(ReadFile(path_), testing::HasSubstr("\r\nDigitizer Comment: checked twice\r\n"));
  EXPECT_TRUE(session_.Saved);
  EXPECT_EQ(calls_, "enable new file ");
  EXPECT_FALSE(window.isVisible());
  EXPECT_THAT(desk_.ClosedWindows, testing::ElementsAre(WindowId::Save));
  EXPECT_TRUE(dialogs_.Boxes.empty());
}

TEST_F(SaveWindow, StaysOpenWhenTheFolderTakesNoFile) {
  std::filesystem::create_directory(path_);
  dialogs_.Answers = {BoxAnswer::No};
  Click(Open(), "cmdSave");
  ASSERT_EQ(dialogs_.Boxes.size(), 1U);
  EXPECT_EQ(dialogs_.Boxes[0],
            (ShownBox{Saving, dialogs_.Boxes[0].Text, BoxButtons::YesNo, BoxIcon::Warning}));
  EXPECT_THAT(dialogs_.Boxes[0].Text, testing::HasSubstr(WeekFile));
  EXPECT_TRUE(window_->isVisible());
  EXPECT_FALSE(session_.Saved);
  EXPECT_EQ(calls_, "");
  std::filesystem::remove(path_);
  Click(*window_, "cmdSave");
  EXPECT_TRUE(session_.Saved);
}

TEST_F(SaveWindow, AsksBeforeItWritesWhatReadersWillNotSee) {
  session_.Line.Add(7.5, 12, false, "CODE202");  // no drop, so the alpha has no value
  dialogs_.Answers = {BoxAnswer::Cancel, BoxAnswer::Ok};
  Click(Open(), "cmdSave");
  EXPECT_TRUE(window_->isVisible());
  EXPECT_FALSE(FileExists(path_));
  Click(*window_, "cmdSave");
  EXPECT_TRUE(session_.Saved);
  EXPECT_THAT(dialogs_.Boxes[0].Text, testing::HasSubstr("Alpha 1 (point 2) has no value"));
  EXPECT_THAT(dialogs_.Boxes[0].Text, testing::EndsWith("\n\nSave the chart all the same ?"));
}

TEST_F(SaveWindow, TellsWhatIsMissingAndSavesNoEmptyChart) {
  session_.Line.RemoveLast();
  Click(Open(), "cmdDefiine");
  EXPECT_EQ(Report(), "Error:\nNo points were digitized\n");
  EXPECT_EQ(Label("labPrompt0") + Label("labPrompt1") + Label("labPrompt2"), "");
  Click(*window_, "cmdSave");
  EXPECT_THAT(dialogs_.Boxes, testing::ElementsAre(Warning(Saving, "There is no chart to save.")));
  EXPECT_TRUE(window_->isVisible());
  EXPECT_FALSE(FileExists(path_));
}

TEST_F(SaveWindow, TakesEditedDetailsOnlyWhenTold) {
  frmSave& window = Open();
  auto& eyed = Find<QLineEdit>(window, "txtEyed");
  eyed.setText("12.5");
  Find<QTimeEdit>(window, "dtpBeginTime").setTime(QTime(13, 0));
  EXPECT_EQ(Label("labPending"), "Not yet taken:");
  EXPECT_EQ(session_.Chart.EyedDepth, 14);

  Click(window, "cmdDefiine");
  EXPECT_EQ(Label("labPending"), "");
  EXPECT_EQ(DateText(session_.Chart.StartTime), "05/03/98 13:00");
  EXPECT_THAT(Report(), testing::HasSubstr("Eyed chart depth = 12.5 mm"));
  EXPECT_EQ(Label("labPrompt0"), "Digitized Rain Factor = 4%");

  eyed.setText("");
  Click(window, "cmdDefiine");
  EXPECT_EQ(Label("labPrompt0"), "Digitized Rain Factor = unknown");
  eyed.setText("12.6");
  QTest::keyClick(&eyed, Qt::Key_Return);
  EXPECT_EQ(session_.Chart.EyedDepth, 12.6F);
  EXPECT_TRUE(window.isVisible()) << "Return takes a changed detail before it saves";
  QTest::keyClick(&eyed, Qt::Key_Return);
  EXPECT_TRUE(FileExists(folder_ / "RG12-19980305-1300.dat"));
}

TEST_F(SaveWindow, StepsNumbersAndShowsTheDepthChosen) {
  frmSave& window = Open();
  Find<UpDown>(window, "udnEyed").Step(-1);
  QTest::keyClick(&Find(window, "txtManual"), Qt::Key_Up);
  Find<UpDown>(window, "udnAlpha").Step(1);
  EXPECT_EQ(Text("txtEyed") + " " + Text("txtManual") + " " + Text("txtAlpha"), "13.9 11.1 0.01");

  auto& choice = Find<QComboBox>(window, "comRain");
  std::string depths = Text("txtRain");
  for (int i = 0; i < 5; ++i) {
    choice.setCurrentIndex(i);
    depths += " " + Text("txtRain");
  }
  EXPECT_EQ(depths, "12 14 12 13 11 11");
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
  EXPECT_TRUE(WaitFor([&] { return colour("labPrompt0") == back; }));
  EXPECT_TRUE(WaitFor([&] { return colour("labPrompt0") == QColor(255, 0, 0); }));
  EXPECT_EQ(colour("labPrompt2"), back);
  EXPECT_EQ(colour("labPrompt1"), manual);
}

TEST_F(SaveWindow, ClosesOnlyWhenThePointsMayGo) {
  redigitizes_ = false;
  Click(Open(), "cmdRedigitize");
  EXPECT_TRUE(window_->isVisible());
  redigitizes_ = true;
  Click(*window_, "cmdRedigitize");
  EXPECT_EQ(calls_, "redigitize redigitize enable ");
  EXPECT_FALSE(window_->isVisible());
}

TEST_F(SaveWindow, AsksAboutDetailsThatAreNotTaken) {
  const ShownBox question{
      Saving,
      "The times and depths that have been changed are not yet taken. Do you want to take "
      "them ?\n\nNo saves the chart with those that it had.",
      BoxButtons::YesNoCancel, BoxIcon::Question};
  frmSave& window = Open();
  auto& end = Find<DateBox>(window, "dtpEndDate");
  end.setDate(QDate(1998, 3, 5));
  dialogs_.Answers = {BoxAnswer::Cancel, BoxAnswer::Yes};
  Click(window, "cmdSave");
  Click(window, "cmdSave");
  EXPECT_THAT(dialogs_.Boxes,
              testing::ElementsAre(
                  question, question,
                  Warning("Save digitization",
                          "The beginning time and date must be less than the ending time and date")));
  EXPECT_TRUE(window.isVisible());
  EXPECT_FALSE(FileExists(path_));
  end.setDate(QDate(1998, 3, 11));
  dialogs_.Answers = {BoxAnswer::Cancel, BoxAnswer::Yes};
  EXPECT_FALSE(window.close());
  Click(window, "cmdSave");
  EXPECT_THAT(ReadFile(path_), testing::HasSubstr("End: 11/03/98 12:30"));
}

TEST_F(SaveWindow, ShowsWhatIsOnlyShown) {
  frmSave& window = Open();
  EXPECT_FALSE(Find(window, "comChart").isEnabled());
  for (const char* name : {"txtRain", "txtAlpha"}) {
    auto& box = Find<QLineEdit>(window, name);
    EXPECT_TRUE(box.isReadOnly()) << name;
    EXPECT_EQ(box.palette().color(QPalette::Base), window.palette().color(QPalette::Window)) << name;
    EXPECT_FALSE(box.focusPolicy() & Qt::TabFocus) << name;
    window.setPalette(QPalette(QColor(45, 48, 52)));
    EXPECT_EQ(box.palette().color(QPalette::Base), QColor(45, 48, 52)) << name;
    window.setPalette({});
  }
}

TEST_F(SaveWindow, GoesBackWithEscapeAndRemembersItsPlace) {
  Open().move(40, 30);
  Find<QLineEdit>(*window_, "txtComment").setText("pen skipped");
  QTest::keyClick(&Find(*window_, "txtComment"), Qt::Key_Escape);
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(calls_, "enable ");
  EXPECT_FALSE(FileExists(path_));
  EXPECT_EQ(Remembered("frmSave-Left"), "600");
  EXPECT_EQ(Open().pos(), QPoint(40, 30));
  EXPECT_EQ(Text("txtComment"), "pen skipped");
}

TEST_F(SaveWindow, SelectsTheWholeCommentOnFocus) {
  frmSave& window = Open();
  auto& comment = Find<QLineEdit>(window, "txtComment");
  comment.setText("old words");
  comment.deselect();
  QTest::mouseClick(&comment, Qt::LeftButton);
  EXPECT_TRUE(WaitFor([&] { return comment.selectedText() == "old words"; }));
  window.FocusChanged(true);
  EXPECT_EQ(window.focusWidget(), &Find(window, "cmdSave"));
}

}  // namespace
}  // namespace hyetex
