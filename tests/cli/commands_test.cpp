// The commands but for digitize, which has a file of its own.
#include <sys/stat.h>

#include <algorithm>
#include <sstream>
#include <thread>

#include "chartfiles/chart_reader.h"
#include "child.h"
#include "cli/run.h"
#include "core/files.h"
#include "core/folder_lock.h"
#include "digitizing/tablets.h"
#include "paths.h"
#include "staging/lists/lists.h"

namespace hyetex::test {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

int LinesIn(const std::string& text) { return static_cast<int>(std::count(text.begin(), text.end(), '\n')); }

constexpr const char* ChartLines =
    "Instrument Code: RG1\r\nChart Method: 0 - Linear\r\nStart: 01/05/98\r\nEnd: 02/05/98\r\n"
    "Selected Depth: 10\r\nGeneral Comment: Caf\xE9\r\nAlpha 1 : 0.5\r\nAlpha 2 : 0.25\r\n"
    "10,0,\r\n20,10,Ink, \"thin\"\r\n30,20,\r\nAlpha Value Selected: 0.1\r\n";

TEST(Cli, ExitStatusTellsWhoIsAtFault) {
  const TempFolder folder;
  struct {
    std::vector<std::string> Words;
    int Status;
    const char* Error;  // a part of the one line that is said
  } const cases[] = {{{}, 2, "--help"},
                     {{"frobnicate"}, 2, "frobnicate"},
                     {{"show", "--folder"}, 2, "--folder"},
                     {{"show", "--bogus", "a.dat"}, 2, "--bogus"},
                     {{"series", "a.dat", "b.dat"}, 2, "b.dat"},
                     {{"series", "--lapse", "5x", "a.dat"}, 2, "--lapse"},
                     {{"series", "--lapse", "inf", "a.dat"}, 2, "--lapse"},
                     {{"series", "--lapse", "1,5", "a.dat"}, 2, "--lapse"},
                     {{"decode"}, 2, "--tablet is required"},
                     {{"decode", "--tablet", "0x1"}, 2, "--tablet"},
                     {{"decode", "--tablet", "5"}, 2, "from 0 to 4"},
                     {{"digitize", "j"}, 2, "--task is required"},
                     {{"digitize", "--tsk", "0", "j"}, 2, "--tsk"},  // not what is missing for want of it
                     {{"digitize", "--task", "--user", "demo", "j"}, 2, "--task"},
                     {{"show", "--folder", "", "a.dat"}, 2, "--folder"},
                     {{"create-tables", "--db", "DSN=a", "--new", "b"}, 2, "--new"},
                     {{"setting", "--folder", folder.Path(), "get"}, 2, "KEY"},
                     {{"lists", "more"}, 2, "more"},
                     {{"lists", "[more]"}, 2, " [more];"},
                     {{"show", "--folder", folder.Path(), "[none,one]"}, 1, "[none,one]"},
                     {{"show", "--folder", folder.Path(), "none.dat"}, 1, "none.dat"},
                     {{"show", folder.Path()}, 1, "it is no file"},
                     {{"decode", "--tablet", "1", folder / "none"}, 1, "none"},
                     {{"decode", "--tablet", "1", folder.Path()}, 1, "directory"},
                     {{"trace", "--tablet", "1", "--journal", folder / "no/where"}, 1, "no/where"},
                     {{"tasks", "--folder", folder / "none"}, 1, "no program folder"},
                     {{"setting", "--folder", folder / "none", "get", "A"}, 1, "no program folder"},
                     {{"setting", "--folder", folder.Path(), "set", "A:B", "1"}, 1, "colon"}};
  for (const auto& c : cases) {
    const Ran ran = RunCli(c.Words);
    SCOPED_TRACE(::testing::PrintToString(c.Words));
    EXPECT_EQ(ran.Status, c.Status);
    EXPECT_THAT(ran.Error, StartsWith("hyetex-cli: "));
    EXPECT_THAT(ran.Error, HasSubstr(c.Error));
    EXPECT_EQ(LinesIn(ran.Error), 1);
    EXPECT_EQ(ran.Out, "");
  }
}

TEST(Cli, EveryCommandExplainsItself) {
  const Ran all = RunCli({"--help"});
  EXPECT_EQ(all.Status, 0);
  for (const char* name :
       {"decode", "trace", "digitize", "show", "series", "plot", "setting", "lists", "tasks"}) {
    const Ran ran = RunCli({name, "--help"});
    EXPECT_EQ(ran.Status, 0);
    EXPECT_THAT(ran.Out, HasSubstr(std::string("Usage: hyetex-cli ") + name));
    EXPECT_THAT(ran.Error, IsEmpty());
    EXPECT_THAT(all.Out, HasSubstr(std::string("\n  ") + name + " "));
  }
  EXPECT_THAT(RunCli({"--version"}).Out, StartsWith("hyetex-cli "));
}

TEST(Cli, OutputThatCannotBeWrittenIsAFailure) {
  const TempFolder folder;
  WriteFile(folder / "a.dat", ChartLines);
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"show", folder / "a.dat"}, {"series", folder / "a.dat"}, {"--help"}}) {
    const Ran ran = RunCli(words, {.Out = "/dev/full"});
    EXPECT_EQ(ran.Status, 1);
    EXPECT_EQ(ran.Error, "hyetex-cli: the output could not be written\n");
  }
}

std::string Stream(int tablet, const std::vector<TabletReport>& reports) {
  std::string bytes;
  for (const TabletReport& report : reports)
    bytes += EncodeReport(TabletTypes()[static_cast<std::size_t>(tablet)], report);
  return bytes;
}

TEST(Decode, TellsTheSameFromAFileAPipeAndStandardInput) {
  const TempFolder folder;
  const std::string bytes = "noise" + Stream(0, {{0, 12190, -1}, {18285, 7, 15}, {301, 302, 0}}) + "1";
  WriteFile(folder / "stream", bytes);
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  std::thread writer([&] { WriteFile(folder / "pipe", bytes); });
  for (const std::string& from : {std::string(), std::string("-"), folder / "stream", folder / "pipe"}) {
    std::vector<std::string> words{"decode", "--tablet", "0"};
    if (!from.empty()) words.push_back(from);
    const Ran ran = RunCli(words, {.Input = bytes});
    EXPECT_EQ(ran.Status, 0) << from;
    EXPECT_EQ(ran.Out, "0 12190 -1\n18285 7 15\n301 302 0\n") << from;
  }
  writer.join();
}

TEST(Trace, JournalsPressesAndProposesCodes) {
  const TempFolder folder;
  std::vector<TabletReport> reports;
  for (const auto& [x, y] : {std::pair{500, 300}, {8000, 310}, {600, 400}, {900, 500}, {900, 500}}) {
    reports.push_back({x, y, 0});
    reports.push_back({x + 1, y, 0});  // the finger is not lifted at once
    reports.push_back({x + 1, y, -1});
  }
  const std::string journal =
      "HYETEX88 JOURNAL 1\ntablet 4\npress 500 300\npress 8000 310\npress 600 400\npress 900 500\npress 900 "
      "500\n";
  const Ran printed = RunCli({"trace", "--tablet", "4"}, {.Input = Stream(4, reports)});
  EXPECT_EQ(printed.Status, 0);
  EXPECT_EQ(printed.Out, journal);
  WriteFile(folder / "stream", Stream(4, reports));
  const Ran written = RunCli({"trace", "--tablet", "4", "--journal", folder / "j", folder / "stream"});
  EXPECT_EQ(written.Status, 0);
  EXPECT_EQ(written.Out, "");
  EXPECT_EQ(ReadFile(folder / "j"), journal);
}

TEST(Trace, KeepsAJournalThatHoldsSteps) {
  const TempFolder folder;
  const std::string stream = Demo("streams/siphon-1.bin");
  const auto trace = [&](const std::string& journal) {
    return RunCli({"trace", "--tablet", "1", "--journal", folder / journal, stream});
  };
  const std::string unfinished = "HYETEX88 JOURNAL 1\ntablet 1\npress 1 2\n";
  for (const std::string& kept : {unfinished, unfinished + "pre", std::string("a letter\n")}) {
    WriteFile(folder / "Journal.txt", kept);
    const Ran ran = trace("Journal.txt");
    EXPECT_EQ(ran.Status, 1);
    EXPECT_THAT(ran.Error, HasSubstr(folder / "Journal.txt"));
    EXPECT_EQ(ReadFile(folder / "Journal.txt"), kept);
  }
  for (const char* empty : {"", "HYETEX88 JOURNAL 1\ntablet 3\n# task A 05/03/1998\n"}) {
    WriteFile(folder / "Journal.txt", empty);
    EXPECT_EQ(trace("Journal.txt").Status, 0);
    EXPECT_THAT(ReadFile(folder / "Journal.txt"), StartsWith("HYETEX88 JOURNAL 1\ntablet 1\npress "));
  }
}

TEST(Cli, ChangesNoFolderThatAnotherProgramHolds) {
  const TempFolder folder;
  const std::string path = folder / "program";
  std::filesystem::copy(Demo("program"), path);
  WriteFile(folder / "rain.sqlite", "");
  const std::string db = "Driver=SQLite3;Database=" + (folder / "rain.sqlite"),
                    journal = Demo("journals/siphon-1.txt");
  const auto lock = FolderLock::Take(path);
  ASSERT_TRUE(lock);
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"setting", "--folder", path, "set", "A", "1"},
           {"synchronise", "--folder", path, "--db", db},
           {"populate", "--folder", path, "--db", db, "--instrument", "A", "--log"},
           {"digitize", "--folder", path, "--task", "0", "--target", path, journal},
           {"trace", "--tablet", "1", "--journal", path + "/Journal.txt", Demo("streams/siphon-1.bin")}}) {
    const Ran ran = RunCli(words);
    EXPECT_EQ(ran.Status, 1) << words[0];
    EXPECT_THAT(ran.Error, HasSubstr("already running on the program folder " + path)) << words[0];
  }
  EXPECT_EQ(RunCli({"setting", "--folder", path, "get", "CurrentChart"}).Out, "0\n");
  EXPECT_EQ(RunCli({"digitize", "--folder", path, "--task", "0", "--target", folder.Path(), journal}).Status,
            0);
}

TEST(Cli, SettingsThatCannotBeReadStopEveryCommand) {
  const TempFolder folder;
  std::filesystem::create_directory(folder / "Definitions.dat");
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"lists"}, {"setting", "get", "A"}, {"digitize", "--task", "0", "j"}}) {
    std::vector<std::string> all = words;
    all.insert(all.begin() + 1, {"--folder", folder.Path()});
    const Ran ran = RunCli(all);
    EXPECT_EQ(ran.Status, 1) << words[0];
    EXPECT_THAT(ran.Error, HasSubstr("Cannot read " + (folder / "Definitions.dat"))) << words[0];
  }
}

TEST(Show, NamesTheFieldsInTheirOrderAndGoesOnPastABadFile) {
  const TempFolder folder;
  std::filesystem::create_directory(folder / "Data");
  WriteFile(folder / "Data/RG1-19980501-0000.dat", ChartLines);
  ReferenceLists lists;
  lists.Stations = {{"Dale", "RG0"}, {"Hill", "rg1"}};
  ASSERT_TRUE(SaveLists(folder.Path(), lists));
  const Ran ran = RunCli({"show", "--folder", folder.Path(), "none.dat", "RG1-19980501-0000.dat"});
  EXPECT_EQ(ran.Status, 1);
  EXPECT_EQ(ran.Out,
            "FileName: RG1-19980501-0000.dat\nInstrumentIndex: 1\nInstrumentCode: RG1\nChartMethod: 0\n"
            "PaperIndex: 0\nStartTime: 01/05/1998\nEndTime: 02/05/1998\nDigitizedTime: 0\nEyedDepth: 0\n"
            "DigitizedDepth: 0\nManualDepth: 0\nSelectedDepth: 10\nGeneralComment: Caf\xC3\xA9\n"
            "DigitizerComment: \nSeriesCount: 3\nAlphaCount: 2\nAlphaValues: 0.5 0.25\nSelectedAlpha: 0.1\n"
            "Reliability: 0\nRawCount: 3\n");
}

TEST(Series, PrintsQuotedCsvAndExactNumbers) {
  const TempFolder folder;
  const std::string path = folder / "a.dat";
  WriteFile(path, ChartLines);
  EXPECT_EQ(RunCli({"series", path}).Out,
            "time,depth,comment\n1998-05-01T00:00:00,0,\n1998-05-01T08:00:00,0,\n"
            "1998-05-01T16:00:00,5,\"Ink, \"\"thin\"\"\"\n1998-05-02T00:00:00,10,\n");
  // With the skew the points lie at 10, 21 and 32; of the steps only the first is shorter than 8 hours.
  EXPECT_EQ(RunCli({"series", "--alpha", "--lapse", "480", path}).Out,
            "time,depth,comment\n1998-05-01T00:00:00,0,\n"
            "1998-05-01T15:45:00,5,\"Ink, \"\"thin\"\"\"\n1998-05-02T00:00:00,10,\n");

  const Ran exact = RunCli({"series", "--exact", "--alpha", path});
  ChartReading reading;
  ASSERT_TRUE(ReadChartFile(path, "", {.UseAlpha = true}, reading));
  std::istringstream lines(exact.Out);
  std::string line;
  std::getline(lines, line);
  for (const SeriesPoint& point : reading.SeriesPoints) {
    ASSERT_TRUE(std::getline(lines, line));
    const std::size_t comma = line.find(',');
    EXPECT_EQ(std::stod(line), point.Time);
    EXPECT_EQ(std::stof(line.substr(comma + 1)), point.Depth);
  }
  WriteFile(path, "0,0,\n");
  const Ran none = RunCli({"series", path});
  EXPECT_EQ(none.Status, 1);
  EXPECT_THAT(none.Error, HasSubstr("no series"));
}

TEST(Setting, IsReadBackByTheNextRun) {
  const TempFolder folder;
  const auto setting = [&](std::vector<std::string> words) {
    words.insert(words.begin(), {"setting", "--folder", folder.Path()});
    return RunCli(words);
  };
  EXPECT_EQ(setting({"get", "TargetFolder"}).Out, "\n");
  EXPECT_EQ(setting({"set", "TargetFolder", "C:\\Data: new"}).Status, 0);
  EXPECT_EQ(setting({"set", "frmHyetex-Left", "-1"}).Status, 0);
  EXPECT_EQ(setting({"get", "frmHyetex-Left"}).Out, "-1\n");
  EXPECT_EQ(setting({"set", "--", "COMport", "--1"}).Status, 0);
  EXPECT_EQ(setting({"get", "TargetFolder"}).Out, "C:\\Data: new\n");
  EXPECT_EQ(setting({"get", "COMport"}).Out, "--1\n");
}

TEST(Cli, TellsNobodyAPassword) {
  const Ran off = RunCli({"structure", "DSN=rain;PWD=geheim"});
  EXPECT_EQ(off.Status, 2);
  EXPECT_THAT(off.Error, AllOf(HasSubstr("DSN=rain;PWD=***"), Not(HasSubstr("geheim"))));

  // What the list of processes shows of a program that waits.
  const TempFolder folder;
  const std::string journal = folder / "x;PWD=geheim";
  int input[2];
  ASSERT_EQ(::pipe(input), 0);
  const pid_t child = StartChild([&] {
    ::dup2(input[0], 0);
    ::close(input[1]);
    const std::string program = CommandLineProgram();
    return ::execl(program.c_str(), program.c_str(), "trace", "--tablet", "0", "--journal", journal.c_str(),
                   "-", nullptr) == 0;
  });
  ::close(input[0]);
  const auto shown = [&] { return ReadFile("/proc/" + std::to_string(child) + "/cmdline"); };
  for (int i = 0; i < 1000 && shown().find("x;PWD=******") == std::string::npos; ++i) ::usleep(10000);
  EXPECT_THAT(shown(), AllOf(HasSubstr("x;PWD=******"), Not(HasSubstr("geheim"))));
  ::close(input[1]);
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(FileExists(journal)) << "the program itself knows the word";
}

TEST(ListsAndTasks, ShowTheFolderButNoPasswords) {
  const std::string folder = test::Cases() + "/linear/program";
  const Ran lists = RunCli({"lists", "--folder", folder});
  EXPECT_EQ(lists.Status, 0);
  EXPECT_THAT(lists.Out,
              HasSubstr("  1: Weekly, arc pen, non-linear, height 80 mm, depth scale 0.25 mm of rain / "
                        "mm, time scale 0.5 hours / mm, middle to bottom 20 mm\n"));
  EXPECT_THAT(lists.Out, HasSubstr("Stations\n  0: Caf\xC3\xA9 Hill - RG30, core 0, agency 0\n"));
  EXPECT_THAT(lists.Out, HasSubstr("  1: Ada Traced, level 10\n"));
  EXPECT_THAT(lists.Out, EndsWith("Comments\n  0: 301 - Hail on the gauge\n"));
  EXPECT_THAT(lists.Out, Not(HasSubstr("pass")));
  const Ran tasks = RunCli({"tasks", "--folder", folder});
  EXPECT_EQ(
      tasks.Out,
      "Staged charts\n  0: RG7, 01/01/1998 to 02/01/1998, eyed 1 mm, manual unknown, Unknown\n"
      "  1: RG12, 05/03/1998 12:30:00 to 06/03/1998 12:30:00, eyed 12.4 mm, manual 12.9 mm, Acceptable, "
      "CODE301\n");
}

#ifndef __SANITIZE_ADDRESS__
TEST(Memory, StaysSmallOnTheLongestLegalChart) {
  const TempFolder folder;
  std::string text = "Start: 01/05/98\r\nEnd: 02/05/98\r\nSelected Depth: 10\r\n";
  for (int i = 0; i < 5000; ++i)
    text += std::to_string(i) + "," + std::to_string(i % 90) + "," + std::string(780, 'x') + "\r\n";
  ASSERT_GT(text.size(), 3'900'000U);
  ASSERT_LT(text.size(), MostChartBytes);
  WriteFile(folder / "a.dat", text);
  const long libraries = RunCli({"--version"}).PeakKb;  // what the program takes before it does anything
  for (const char* command : {"show", "series"}) {
    const Ran ran = RunCli({command, folder / "a.dat"});
    EXPECT_EQ(ran.Status, 0);
    EXPECT_LT(ran.PeakKb - libraries, 16 * 1024) << command;
  }
}
#endif

}  // namespace
}  // namespace hyetex::test
