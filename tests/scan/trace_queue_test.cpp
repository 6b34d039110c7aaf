// What a box of scans says of its charts: the report's lines, the notes in a journal, how far it is.
#include <gmock/gmock.h>

#include <clocale>

#include "scan/box/chart_tracing.h"
#include "scan/box/trace_queue.h"
#include "scan/trace_steps.h"
#include "support.h"

namespace hyetex {
namespace {

using test::TempFolder;
using test::WriteFile;

TEST(TracedChartLine, ComesBackAsItWasWhateverStandsInIt) {
  const TracedChart chart{.What = TraceOutcome::ToReview,
                          .Name = "NM-\xC4 \"end\", 01-19980305-0700.dat",
                          .Scan = "/scans/\"a\", b.png",
                          .Seconds = 1.25,
                          .RainMm = 53.12,
                          .EyedDepth = 53,
                          .ManualDepth = 0,
                          .Emptyings = 5,
                          .Confidence = 0.5,
                          .Doubts = 2,
                          .Words = "No ink from 12:10,\nto \"12:40\"."};
  const std::string line = ReportLine(chart);
  EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
  const auto read = ReadReportLine(std::string_view(line).substr(0, line.size() - 1));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->Words, "No ink from 12:10, to \"12:40\".");
  EXPECT_EQ(ReportLine(*read), line);
  EXPECT_FALSE(ReadReportLine(ReportHeading));

  // Of several lines the chart's own; without one, what went wrong, but not of a process that was killed.
  const std::string out = std::string(ReportHeading) + line;
  EXPECT_EQ(ReadOutcome(out, "", true, chart.Name, chart.Scan).What, TraceOutcome::ToReview);
  EXPECT_EQ(ReadOutcome(out, "a\nno room\n", true, "Other", "s").Words, "no room");
  const TracedChart killed = ReadOutcome("", "a\n", false, "Other", "s");
  EXPECT_EQ(killed.Words, "The tracing ended before its end.");
  EXPECT_EQ(ReportLine(killed), "\"Other\",\"s\",failed,,,,,,,,\"The tracing ended before its end.\"\n");
}

TEST(NotesOfATrace, ReadTheSameWhereTheDecimalPointIsAComma) {
  ScanTrace trace;
  trace.Verdict = TraceVerdict::ToReview;
  trace.RainMm = 53.125;
  trace.Doubts = {{TraceDoubt::Kind::Chart, 0, 24, 0, -1, "The hour, 7, is to be confirmed."},
                  {TraceDoubt::Kind::OtherWay, 7.25, 8.5, 12, 15, "No ink"}};
  const auto journal = [&] {
    std::string text = "HYETEX88 JOURNAL 1\n";
    for (const std::string& note : NotesOfTrace(trace)) text += "# " + note + "\n";
    return text;
  };
  const std::string before = journal();
  const std::string locale = std::setlocale(LC_NUMERIC, nullptr);
  std::setlocale(LC_NUMERIC, "de_DE.UTF-8");  // where the machine has it
  EXPECT_EQ(journal(), before);
  const auto doubts = DoubtsOfJournal(before);
  const auto note = NoteOfJournal(before);
  std::setlocale(LC_NUMERIC, locale.c_str());
  ASSERT_EQ(doubts.size(), 2U);
  EXPECT_EQ(doubts[0].Why, trace.Doubts[0].Why);
  EXPECT_EQ(doubts[0].What, TraceDoubt::Kind::Chart);
  EXPECT_EQ(doubts[1].FromHour, 7.25);
  EXPECT_EQ(doubts[1].LastPoint, 15);
  EXPECT_EQ(note->Verdict, "to review");
  EXPECT_NEAR(*note->RainMm, 53.12, 0.01);
  // The last one counts, and what stands before it is settled.
  const std::string reviewed = before + "# " + NoteOfReview(53) + "\n";
  EXPECT_EQ(NoteOfJournal(reviewed)->Verdict, ReviewedVerdict);
  EXPECT_TRUE(DoubtsOfJournal(reviewed).empty());
  EXPECT_FALSE(NoteOfJournal("# traced by hand\n"));
}

TEST(BoxedChartFiles, TellWhatIsStillToDo) {
  const TempFolder target;
  const std::string name = "NM-Hill Farm-01-19980305-0700.dat",
                    journal = target / "NM-Hill Farm-01-19980305-0700.journal";
  const auto stands = [&] { return FindStanding(target.Path(), name).What; };
  EXPECT_EQ(stands(), Standing::Of::Nothing);
  WriteFile(journal, "# traced from a scan: clean\n");
  EXPECT_EQ(stands(), Standing::Of::Interrupted);
  WriteFile(journal, "# traced from a scan: to review, 5 mm\n# doubt 0 -1 0 24 x\n# doubt 0 1 0 2 y\n");
  EXPECT_EQ(stands(), Standing::Of::ToReview);
  EXPECT_EQ(FindStanding(target.Path(), name).Doubts, 2);
  WriteFile(journal, "cut of");
  EXPECT_EQ(stands(), Standing::Of::ToReview) << "nobody knows what is lost with it";
  ASSERT_TRUE(KeepReview(journal, "press 1 2", 5));
  EXPECT_EQ(test::ReadFile(journal), "press 1 2\n# traced from a scan: reviewed, 5 mm\n");
  EXPECT_EQ(stands(), Standing::Of::Reviewed);
  WriteFile(target / name, "x");
  EXPECT_EQ(stands(), Standing::Of::Digitized);
  ASSERT_TRUE(KeepReview(target / "other.journal", "press 1 2", 5));
  EXPECT_FALSE(std::filesystem::exists(target / "other.journal")) << "a chart that was never traced";
}

TEST(QueueOfScans, LeadsRoundAndTellsHowLongItTakes) {
  EXPECT_EQ(QueueProgress(0, 8, 3), "0 of 8 charts, 8 left");
  EXPECT_EQ(QueueProgress(3, 8, 72), "3 of 8 charts, 5 left, about 2 min");
  EXPECT_EQ(QueueProgress(1, 2, 0.2), "1 of 2 charts, 1 left, about 1 s");
  EXPECT_EQ(QueueProgress(10, 2001, 100), "10 of 2001 charts, 1991 left, about 6 h");
  EXPECT_EQ(QueueProgress(1, 1, 2), "1 of 1 chart");

  const TempFolder folder;
  ReferenceLists lists;
  lists.Stations.resize(1);
  lists.Stations[0].Name = "Hill";
  lists.Stations[0].InstrumentCode = "NM-Hill-01";
  std::vector<ChartRecord> staged(4);
  ChosenScans scans;
  for (std::size_t i = 0; i < staged.size(); ++i) {
    staged[i].InstrumentCode = "NM-Hill-01";
    staged[i].StartTime = 36000 + static_cast<double>(i % 3);  // the last one is the first one's double
    staged[i].EndTime = staged[i].StartTime + 1;
    scans.Choose(staged[i], {"/scan.png", 0});
  }
  TraceQueue queue(folder.Path(), folder.Path(), lists, staged, scans);
  EXPECT_EQ(queue.Summary(), "3 waiting, 1 left out");
  EXPECT_FALSE(queue.NextToReview());
  const auto unheard = [](std::size_t) {};
  const auto end = [&](TraceOutcome what) {
    const auto row = queue.Begin(unheard);
    TracedChart traced{.What = what, .Name = queue.Rows()[*row].Name, .Scan = "/scan.png", .Seconds = 1};
    traced.Doubts = 2;
    queue.End(*row, traced);
  };
  end(TraceOutcome::ToReview);
  end(TraceOutcome::Clean);
  const auto last = queue.Begin(unheard);
  EXPECT_FALSE(queue.Begin(unheard));
  queue.GiveUp(*last);
  EXPECT_EQ(queue.Summary(), "1 clean, 1 to review, 1 waiting, 1 left out");
  end(TraceOutcome::ToReview);
  EXPECT_EQ(queue.NextToReview(0), 2U);
  EXPECT_EQ(queue.NextToReview(2), 0U);
  EXPECT_FALSE(queue.WaitAgain(0)) << "a person looks at it";
}

}  // namespace
}  // namespace hyetex
