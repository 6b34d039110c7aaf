// A box of scans from the command line: what is written, what is passed over, what is told.
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "cli/run.h"
#include "core/folder_lock.h"
#include "paths.h"
#include "scans/drawn_scan.h"
#include "scans/scan_file.h"
#include "tracing/rain.h"

namespace hyetex::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

constexpr const char* Stem = "NM-Hill Farm-01-19980306-0700";

// The demonstration's program folder with a scan of its second chart, 4.2 mm of rain.
class Autotrace : public ::testing::Test {
 protected:
  Autotrace() {
    fs::copy(Demo("program"), Folder / "program", fs::copy_options::recursive);
    for (const char* name : {"target", "scans", "pictures"}) fs::create_directory(Folder / name);
  }
  void DrawScan(const std::string& stem = Stem, double more = 0) const {
    const std::vector<RainPoint> rain{{0, 0},           {6, 0},           {7, 3 + more},
                                      {12, 3.2 + more}, {15, 4.2 + more}, {24, 4.2 + more}};
    RainChart chart;
    chart.Paper.TimeScale = 1 / 16.1F;
    chart.Paper.DepthScale = 0.125F;
    ScanStyle style;
    style.Dpi = 150;
    style.ZeroMm = 3.2;
    style.BandMm = 85.2;
    const auto drawn = hyetex::DrawScan(*DrawRain(rain, chart), style, 3);
    WriteFile(Folder / ("scans/" + stem + ".png"), *EncodeScan(drawn->Image, "scan.png", 150));
  }
  Ran Run(std::vector<std::string> words) {
    const std::vector<std::string> first{"autotrace", "--folder", Folder / "program", "--user",
                                         "demo",      "--target", Folder / "target"};
    words.insert(words.begin(), first.begin(), first.end());
    return RunCli(words);
  }
  std::string Target(const std::string& ending) const {
    return Folder / ("target/" + std::string(Stem) + ending);
  }

  TempFolder Folder;
};

TEST_F(Autotrace, WritesJournalAndChartFileOnceAndReportsEachChart) {
  DrawScan();
  const Ran ran = Run({"--scans", Folder / "scans", "--report", Folder / "report.csv", "--doubtful",
                       "--pictures", Folder / "pictures"});
  EXPECT_TRUE(ran.Status == 0 || ran.Status == 3) << ran.Error;
  ASSERT_TRUE(fs::exists(Target(".dat"))) << ran.Out << ran.Error;
  ASSERT_TRUE(fs::exists(Target(".journal")));
  const std::string report = ReadFile(Folder / "report.csv");
  EXPECT_THAT(report, HasSubstr(std::string("\"") + Stem + ".dat\""));
  EXPECT_THAT(report, HasSubstr(",4.2,"));

  EXPECT_THAT(ReadFile(Target(".dat")), HasSubstr("\nScan: 0 "));
  EXPECT_TRUE(fs::exists(Folder / ("pictures/" + std::string(Stem) + ".jpg")));

  // A run that goes on where another was ended writes nothing twice.
  const std::string chart = ReadFile(Target(".dat"));
  const auto before = fs::last_write_time(Target(".dat")) - std::chrono::hours(1);
  fs::last_write_time(Target(".dat"), before);
  const Ran again = Run({"--scans", Folder / "scans", "--report", Folder / "report.csv", "--doubtful"});
  EXPECT_EQ(again.Status, 0);
  EXPECT_THAT(again.Error, HasSubstr("passed over"));
  EXPECT_EQ(ReadFile(Folder / "report.csv"), report);
  EXPECT_EQ(fs::last_write_time(Target(".dat")), before);

  // The journal alone gives the same chart.
  fs::rename(Target(".dat"), Folder / "traced.dat");
  const Ran digitized =
      RunCli({"digitize", "--folder", Folder / "program", "--user", "demo", "--task", "1", "--target",
              Folder / "target", "--comment", "Traced from a scan by the program", Target(".journal")});
  EXPECT_EQ(digitized.Status, 0) << digitized.Error;
  EXPECT_EQ(ReadFile(Target(".dat")), chart);
}

TEST_F(Autotrace, KeepsTheBlankFormOfAChartTypeAndTracesWithIt) {
  DrawScan();
  const std::string form = Folder / "program/FORMS/Daily siphon%2C 10 mm.form";
  const Ran few = Run({"--scans", Folder / "scans", "--make-form"});
  EXPECT_EQ(few.Status, 1);
  EXPECT_THAT(few.Error, HasSubstr("No form was made"));

  const std::string empty = Folder / ("scans/" + std::string(Stem) + ".png");
  const Ran made = Run({"--task", "1", "--scan", empty, "--make-form"});
  EXPECT_EQ(made.Status, 0) << made.Error;
  ASSERT_TRUE(fs::exists(form)) << made.Error;
  EXPECT_FALSE(fs::exists(Target(".journal"))) << "an empty chart is not traced";

  // A chart that is all form has no line of its own.
  const Ran same = Run({"--scans", Folder / "scans", "--doubtful"});
  EXPECT_EQ(same.Status, 3);
  EXPECT_FALSE(fs::exists(Target(".dat"))) << same.Out;

  DrawScan(Stem, 3);
  EXPECT_THAT(Run({"--scans", Folder / "scans", "--again", "--doubtful"}).Error, HasSubstr("0 not traced"));
  EXPECT_TRUE(fs::exists(Target(".dat")));

  WriteFile(form, "hyetex blank form 1 nothing");
  const Ran damaged = Run({"--scans", Folder / "scans"});
  EXPECT_EQ(damaged.Status, 1);
  EXPECT_THAT(damaged.Error, HasSubstr("form cannot be used"));
}

TEST_F(Autotrace, SaysThatASheetHasOneLineOnly) {
  DrawScan();
  const Ran ran =
      Run({"--task", "1", "--scan", Folder / ("scans/" + std::string(Stem) + ".png"), "--line", "2"});
  EXPECT_EQ(ran.Status, 3);
  EXPECT_THAT(ran.Out, HasSubstr("there is one line on the chart, not two"));
  EXPECT_FALSE(fs::exists(Target(".journal")));
}

TEST_F(Autotrace, EndsItsChartsWhenItIsEnded) {
  DrawScan();
  RunCli({"autotrace", "--folder", Folder / "program", "--target", Folder / "target", "--scans",
          Folder / "scans"},
         {.KillAfter = 300000});
  std::this_thread::sleep_for(std::chrono::milliseconds(2500));  // longer than a chart takes
  EXPECT_FALSE(fs::exists(Target(".journal")));
}

// As the desk has its charts traced: one by its name, into the folder that the desk itself holds.
TEST_F(Autotrace, TracesOneChartForTheProgramThatHoldsTheFolder) {
  DrawScan();
  const auto lock = FolderLock::Take(Folder / "program");
  ASSERT_TRUE(lock);
  const std::string scan = Folder / ("scans/" + std::string(Stem) + ".png"),
                    name = std::string(Stem) + ".dat";
  std::vector<std::string> words{"autotrace", "--folder", Folder / "program", "--target", Folder / "program",
                                 "--chart",   name,       "--scan",           scan};
  // Somebody else's does not get in.
  std::string line = CommandLineProgram();
  for (const std::string& word : words) line += " '" + word + "'";
  const Ran other = RunProgram("/bin/sh", {"-c", line + "; exit $?"});
  EXPECT_EQ(other.Status, 1);
  EXPECT_THAT(other.Error, HasSubstr("is already running"));
  const Ran ran = RunCli(words);
  EXPECT_TRUE(ran.Status == 0 || ran.Status == 3) << ran.Error;
  EXPECT_TRUE(fs::exists(Folder / ("program/" + std::string(Stem) + ".journal")));

  words[6] = "NM-Hill Farm-01-19990306-0700.dat";
  EXPECT_THAT(RunCli(words).Error, HasSubstr("There is no staged chart NM-Hill Farm-01-19990306-0700.dat"));

  // A chart that was begun at the desk is its own.
  WriteFile(Folder / "program/Journal.txt",
            "HYETEX88 JOURNAL 1\ntablet 1\n# task NM-Hill Farm-01 06/03/1998 07:00:00\npress 500 800\n");
  const Ran begun = Run({"--scans", Folder / "scans"});
  EXPECT_EQ(begun.Status, 0);
  EXPECT_THAT(begun.Error, HasSubstr("passed over: it was begun at the desk"));
  EXPECT_TRUE(fs::is_empty(Folder / "target"));
}

TEST_F(Autotrace, ReviewsWhatIsNoChartAndRefusesWordsThatDoNotFit) {
  WriteFile(Folder / "broken.png", "no image");
  // As often as it is tried, it has one line in the report; a line that a kill cut short goes.
  for (const char* rest : {"", "\"NM-Other-01-19"}) {
    WriteFile(Folder / "report.csv",
              fs::exists(Folder / "report.csv") ? ReadFile(Folder / "report.csv") + rest : "");
    const Ran broken =
        Run({"--task", "1", "--scan", Folder / "broken.png", "--report", Folder / "report.csv"});
    EXPECT_EQ(broken.Status, 3);
    EXPECT_THAT(broken.Out, HasSubstr(",not traced,"));
    const std::string report = ReadFile(Folder / "report.csv");
    EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 2) << report;
    EXPECT_THAT(report, ::testing::Not(HasSubstr("Other")));
  }
  EXPECT_TRUE(fs::is_empty(Folder / "target"));

  struct {
    std::vector<std::string> Words;
    int Status;
    const char* Error;
  } const cases[] = {{{"--task", "1"}, 2, "--scan or --scans is missing"},
                     {{"--scan", Folder / "broken.png"}, 2, "--scan wants the --task"},
                     {{"--task", "9", "--scan", Folder / "broken.png"}, 1, "There is no chart 9"},
                     {{"--scans", Folder / "none"}, 1, "none"},
                     {{"--task", "1", "--scan", Folder / "broken.png", "--report", Folder / "broken.png"},
                      1,
                      "is no report"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Error);
    const Ran ran = Run(c.Words);
    EXPECT_EQ(ran.Status, c.Status);
    EXPECT_THAT(ran.Error, HasSubstr(c.Error));
  }
}

}  // namespace
}  // namespace hyetex::test
