// A box of scans at the desk: what is traced, what is left, and the way from one chart to review to the next.
#include <gmock/gmock.h>
#include <signal.h>

#include <QListWidget>
#include <QPlainTextEdit>
#include <QProcess>
#include <filesystem>

#include "core/folder_lock.h"
#include "scan/windows/frmTraceScans.h"
#include "windows/scan_fixture.h"

namespace hyetex {
namespace {

using namespace hyetex::test;
namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

// Rows of the window, which are the staged charts of the sample folder.
enum Chart : int { Doubtful = 0, Clean = 1, AlsoDoubtful = 2, Defective = 3, NoChart = 4, Without = 5 };
constexpr const char* Stems[] = {"NM-Hill Farm-01-19980305-0700", "NM-Hill Farm-01-19980306-0700",
                                 "NM-Mill Pond-01-19251120-0700", "", "NM-Hill Farm-01-19980307-0700"};

// Chart files go into the program folder, which the program holds as ever.
class TraceBox : public ScanDesk {
 protected:
  TraceBox() {
    fs::create_directory(folder_ / "scans");
    Remember("frmTasks-Scans", (folder_ / "scans").c_str());
    Remember("frmTasks-Source", "1");
  }
  void Draw(Chart chart, double mm, const char* damage = "") {
    const std::vector<RainPoint> rain{{0, 0}, {6, 0}, {9, mm / 2}, {12, mm / 2}, {17, mm}, {24, mm}};
    RainChart drawn;
    drawn.Paper = ReadLists(folder_.Path())->ChartTypes[0];
    ScanStyle style;
    style.Dpi = 150;
    ASSERT_TRUE(*damage == 0 || Damage(style, damage, 7));
    const auto scan = hyetex::DrawScan(*DrawRain(rain, drawn), style, 7);
    ASSERT_TRUE(scan) << scan.error();
    const std::string name = std::string(Stems[chart]) + ".png";
    WriteFile(folder_ / ("scans/" + name), *EncodeScan(scan->Image, name, style.Dpi));
  }
  // Half of what was eyed, so that its sum is in doubt, whatever the rest is.
  void DrawDoubtful(Chart chart) { Draw(chart, 6); }
  void DrawBroken(Chart chart) {
    WriteFile(folder_ / ("scans/" + std::string(Stems[chart]) + ".png"), "no image");
  }
  /// A program in the place of the one that traces.
  void UseProgram(const std::string& script) {
    program_ = folder_ / "program.sh";
    WriteFile(program_, "#!/bin/sh\n" + script + "\n");
    fs::permissions(program_, fs::perms::owner_all);
  }
  void OpenBox() {
    OpenTasks();
    desk_->TraceProgram = program_;
    Click(Tasks(), "cmdTrace");
    ASSERT_NE(desk_->Window(WindowId::TraceScans), nullptr);
    EXPECT_EQ(desk_->Window(WindowId::Tasks), nullptr);
    QCoreApplication::processEvents();
  }
  frmTraceScans& Box() { return *qobject_cast<frmTraceScans*>(desk_->Window(WindowId::TraceScans)); }
  bool HasBox() { return desk_->Window(WindowId::TraceScans) != nullptr; }
  QTableWidget& Grid() { return Find<QTableWidget>(Box(), "fgdScans"); }
  std::string Cell(int row, int column) { return Grid().item(row, column)->text().toStdString(); }
  std::string State(int row) { return Cell(row, QueueStateColumn); }
  std::string Words() { return Find<QPlainTextEdit>(Box(), "txtWords").toPlainText().toStdString(); }
  std::string Progress() { return Find<QLabel>(Box(), "labProgress").text().toStdString(); }
  bool Runs() { return Find<QPushButton>(Box(), "cmdCancel").isEnabled(); }
  void Trace() {
    Click(Box(), "cmdStart");
    ASSERT_TRUE(WaitFor([&] { return !Runs(); }, 180000)) << Progress();
  }
  void BoxKey(Qt::Key key) {
    Grid().setFocus();
    QTest::keyClick(&Grid(), key);
    QCoreApplication::processEvents();
  }
  bool Stands(int chart, const char* ending) {
    return fs::exists(folder_ / (std::string(Stems[chart]) + ending));
  }
  std::string TraceJournal(int chart) { return ReadFile(folder_ / (std::string(Stems[chart]) + ".journal")); }
  std::vector<pid_t> Children() {
    std::vector<pid_t> children;
    for (const QProcess* process : Box().findChildren<QProcess*>())
      if (process->processId() > 0) children.push_back(static_cast<pid_t>(process->processId()));
    return children;
  }

  std::string program_ = CommandLineProgram();
  Result<FolderLock> lock_ = FolderLock::Take(folder_.Path());
};

TEST_F(TraceBox, TracesAllThatWaitAndLeadsFromOneReviewToTheNext) {
  DrawDoubtful(Doubtful);
  Draw(Clean, 4.2);
  DrawDoubtful(AlsoDoubtful);
  DrawBroken(NoChart);
  OpenBox();
  EXPECT_EQ(State(Doubtful), "waiting");
  EXPECT_EQ(State(Defective), "left out");
  EXPECT_EQ(State(Without), "without a scan");
  Trace();
  EXPECT_EQ(State(Clean), "clean");
  EXPECT_TRUE(Stands(Clean, ".dat") && Stands(Clean, ".journal"));
  EXPECT_EQ(Cell(Clean, 3) + " of " + Cell(Clean, 4), "4.2 of 4.2");
  for (const int chart : {Doubtful, AlsoDoubtful}) {
    EXPECT_EQ(State(chart), "to review");
    EXPECT_TRUE(Stands(chart, ".journal") && !Stands(chart, ".dat"));
  }
  EXPECT_EQ(State(NoChart), "not traced");
  EXPECT_FALSE(Stands(NoChart, ".journal"));
  EXPECT_THAT(Progress(), StartsWith("1 clean, 2 to review, 1 not traced"));
  EXPECT_FALSE(Find<QPushButton>(Box(), "cmdStart").isEnabled()) << "nothing waits";

  // From chart to chart with the keyboard.
  EXPECT_EQ(Grid().currentRow(), Doubtful);
  EXPECT_THAT(Words(), HasSubstr("the eye gave 53.0 mm"));
  BoxKey(Qt::Key_Return);
  ASSERT_TRUE(IsOpen());
  EXPECT_THAT(Label("labScanName"), HasSubstr(Stems[Doubtful])) << "its scan lies under it";
  EXPECT_NEAR(Digitized().TotalDepth(LastPoint()), 6, 0.1);
  EXPECT_THAT(Panel(panel::Instruction), HasSubstr(" mm traced. "));
  Key(Qt::Key_Tab);
  EXPECT_THAT(Panel(panel::Instruction), StartsWith("Doubt 1 of "));
  while (Window().Review().Shown() != nullptr) Key(Qt::Key_Return);
  Key(Qt::Key_S, Qt::ControlModifier);
  ASSERT_NE(desk_->Window(WindowId::Save), nullptr);
  Click(*desk_->Window(WindowId::Save), "cmdSave");
  ASSERT_TRUE(WaitFor([&] { return !IsOpen(); }));
  ASSERT_TRUE(HasBox());
  EXPECT_EQ(State(Doubtful), "digitized already");
  EXPECT_EQ(Grid().currentRow(), AlsoDoubtful);
  EXPECT_TRUE(WaitFor([&] { return QApplication::focusWidget() == &Grid(); })) << "so that Return opens it";
  EXPECT_FALSE(fs::exists(folder_ / "Journal.txt"));
  EXPECT_THAT(TraceJournal(Doubtful), HasSubstr("\n# traced from a scan: reviewed, 6"));
  const std::string chart = ReadFile(folder_ / (std::string(Stems[Doubtful]) + ".dat"));
  EXPECT_THAT(chart, HasSubstr("\nScan: 0 "));

  // One that is given up is to be reviewed as before.
  dialogs_.Answers = {BoxAnswer::Yes};
  BoxKey(Qt::Key_Return);
  ASSERT_TRUE(IsOpen());
  Window().parentWidget()->close();
  ASSERT_TRUE(WaitFor([&] { return !IsOpen(); }));
  EXPECT_EQ(State(AlsoDoubtful), "to review");
  EXPECT_EQ(Grid().currentRow(), AlsoDoubtful);

  // What was reviewed is no open work, even where its chart file has gone on to the database.
  BoxKey(Qt::Key_Escape);
  ASSERT_FALSE(HasBox());
  fs::remove(folder_ / (std::string(Stems[Doubtful]) + ".dat"));
  Click(Tasks(), "cmdTrace");
  EXPECT_EQ(State(Doubtful), "digitized already");
  EXPECT_EQ(State(AlsoDoubtful), "to review");
  EXPECT_NE(Cell(AlsoDoubtful, 6), "") << "how many doubts";
  Grid().selectRow(AlsoDoubtful);
  EXPECT_THAT(Words(), HasSubstr("the eye gave 53.0 mm"));
  EXPECT_EQ(State(NoChart), "waiting");
}

TEST_F(TraceBox, EndsAtOnceAndLeavesNothingHalfWritten) {
  for (const Chart chart : {Doubtful, Clean, AlsoDoubtful}) DrawBroken(chart);
  UseProgram("exec sleep 100");
  OpenBox();
  const auto files = [&] { return std::distance(fs::directory_iterator(folder_.Path()), {}); };
  Click(Box(), "cmdStart");
  ASSERT_TRUE(WaitFor([&] { return !Children().empty(); }));
  EXPECT_EQ(State(Doubtful), "being traced");
  EXPECT_THAT(Progress(), StartsWith("0 of 3 charts, 3 left: "));
  const auto before = files();
  const auto children = Children();
  BoxKey(Qt::Key_Escape);
  EXPECT_FALSE(Runs());
  for (const pid_t child : children) EXPECT_NE(::kill(child, 0), 0);
  for (const int chart : {Doubtful, Clean, AlsoDoubtful}) EXPECT_EQ(State(chart), "waiting");
  EXPECT_EQ(files(), before);

  // The window, and the whole program, ask before they end it.
  Click(Box(), "cmdStart");
  ASSERT_TRUE(WaitFor([&] { return !Children().empty(); }));
  const auto more = Children();
  dialogs_.Answers = {BoxAnswer::No, BoxAnswer::No, BoxAnswer::Yes};
  Click(Box(), "cmdExit");
  ASSERT_TRUE(HasBox());
  desk_->EndProgram();
  ASSERT_TRUE(HasBox());
  EXPECT_TRUE(Runs());
  Click(Box(), "cmdExit");
  EXPECT_FALSE(HasBox());
  EXPECT_NE(desk_->Window(WindowId::Tasks), nullptr);
  for (const pid_t child : more) EXPECT_NE(::kill(child, 0), 0);

  Click(Tasks(), "cmdTrace");
  Click(Box(), "cmdStart");
  ASSERT_TRUE(WaitFor([&] { return !Children().empty(); }));
  const auto last = Children();
  BreakDown();
  for (const pid_t child : last) EXPECT_NE(::kill(child, 0), 0) << "with the desk";
}

TEST_F(TraceBox, TellsOfEachChartThatFailsAndGoesOn) {
  DrawBroken(Doubtful);
  DrawBroken(Clean);
  UseProgram("case \"$*\" in *19980305*) kill -9 $$ ;; *) echo 'hyetex-cli: no room' >&2; exit 1 ;; esac");
  OpenBox();
  Trace();
  EXPECT_EQ(State(Doubtful) + ", " + State(Clean), "failed, failed");
  Grid().selectRow(Doubtful);
  EXPECT_EQ(Words(), "The tracing ended before its end.");
  Grid().selectRow(Clean);
  EXPECT_EQ(Words(), "hyetex-cli: no room");
  // Once what was wrong is right, one alone can be traced anew.
  fs::remove(folder_ / ("scans/" + std::string(Stems[Clean]) + ".png"));
  Draw(Clean, 4.2);
  fs::remove(program_);
  fs::create_symlink(CommandLineProgram(), program_);
  Click(Box(), "cmdAgain");
  ASSERT_TRUE(WaitFor([&] { return !Runs(); }, 180000));
  EXPECT_EQ(State(Clean) + ", " + State(Doubtful), "clean, failed");

  fs::remove(program_);
  Grid().selectRow(Doubtful);
  Click(Box(), "cmdAgain");
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("The program that traces the scans is not there"));
  EXPECT_EQ(State(Doubtful), "waiting");
}

TEST_F(TraceBox, LeavesToThePersonWhatAPersonHasBegun) {
  Draw(Clean, 4.2);
  const std::string begun =
      "HYETEX88 JOURNAL 1\ntablet 1\n# task NM-Hill Farm-01 06/03/1998 07:00:00\npress 500 800\n";
  WriteFile(folder_ / "Journal.txt", begun);
  OpenBox();
  EXPECT_EQ(State(Clean), "begun at the desk");
  EXPECT_FALSE(Find<QPushButton>(Box(), "cmdStart").isEnabled());
  // Begun while it waits, it is passed over as well.
  fs::remove(folder_ / "Journal.txt");
  BoxKey(Qt::Key_Escape);
  Click(Tasks(), "cmdTrace");
  EXPECT_EQ(State(Clean), "waiting");
  WriteFile(folder_ / "Journal.txt", begun);
  Trace();
  EXPECT_EQ(State(Clean), "begun at the desk");
  EXPECT_FALSE(Stands(Clean, ".journal"));
  EXPECT_EQ(ReadFile(folder_ / "Journal.txt"), begun);
}

TEST_F(TraceBox, OpensWhatWaitsToBeTracedByHandAndTellsOfAJournalThatCannotBeRead) {
  Draw(Clean, 4.2);
  DrawDoubtful(Doubtful);
  WriteFile(folder_ / (std::string(Stems[Doubtful]) + ".journal"), "cut of");
  OpenBox();
  EXPECT_EQ(State(Doubtful), "to review");
  Grid().selectRow(Doubtful);
  BoxKey(Qt::Key_Return);
  EXPECT_FALSE(IsOpen());
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("cannot be read: "));
  // Before the first press no journal tells that it is a person's.
  Grid().selectRow(Clean);
  BoxKey(Qt::Key_Return);
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(State(Clean), "begun at the desk");
  EXPECT_FALSE(Find<QPushButton>(Box(), "cmdStart").isEnabled());
  dialogs_.Answers = {BoxAnswer::Yes};
  Window().parentWidget()->close();
  ASSERT_TRUE(WaitFor([&] { return !IsOpen(); }));
  EXPECT_EQ(State(Clean), "waiting");
}

TEST_F(TraceBox, IsOfferedWhereItsChartIsDigitizedByHand) {
  Draw(Doubtful, 6, "gaps=1");
  OpenBox();
  Trace();
  ASSERT_EQ(State(Doubtful), "to review");
  BoxKey(Qt::Key_Escape);
  Find<QTableWidget>(Tasks(), "fgdTasks").selectRow(0);
  dialogs_.Answers = {BoxAnswer::Yes};
  Click(Tasks(), "cmdActivate");
  ASSERT_TRUE(IsOpen());
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("Do you want to look that trace over ?"));
  EXPECT_FALSE(Window().Review().Open().empty());
  // A stretch is traced again although this session has not traced the scan.
  const std::size_t doubts = Window().Review().Open().size();
  do Key(Qt::Key_Tab);
  while (Window().Review().Shown() != nullptr &&
         StretchOf(*Window().Review().Shown(), Digitized().Line).second < 0);
  ASSERT_NE(Window().Review().Shown(), nullptr);
  Key(Qt::Key_R);
  EXPECT_THAT(Panel(panel::Instruction), Not(HasSubstr("Tab leads to a stretch")));
  EXPECT_NEAR(Digitized().TotalDepth(LastPoint()), 6, 0.3);
  BreakDown();
  dialogs_.Answers = {BoxAnswer::Yes};
  OpenBox();
  ASSERT_EQ(State(Doubtful), "begun at the desk");
  Grid().selectRow(Doubtful);
  BoxKey(Qt::Key_Return);
  ASSERT_TRUE(IsOpen());
  EXPECT_EQ(Window().Review().Open().size(), doubts);
  dialogs_.Answers = {BoxAnswer::Yes};
  Window().parentWidget()->close();
  ASSERT_TRUE(WaitFor([&] { return !IsOpen(); }));

  // On another chart type the same line is other rain.
  BoxKey(Qt::Key_Escape);
  Find<QListWidget>(Tasks(), "lstChartType").setCurrentRow(2);
  Click(Tasks(), "cmdTrace");
  Grid().selectRow(Doubtful);
  BoxKey(Qt::Key_Return);
  ASSERT_TRUE(IsOpen());
  EXPECT_THAT(dialogs_.Boxes.back().Text, HasSubstr("mm were traced, but on this chart type the line makes"));
}

}  // namespace
}  // namespace hyetex
