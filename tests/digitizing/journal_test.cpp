#include "digitizing/journal.h"

#include <random>

#include "child.h"
#include "digitizing/desk.h"
#include "support.h"

namespace hyetex {
namespace {

using Kind = JournalEvent::Kind;
using test::Desk;

struct Recorder : JournalSink {
  void Record(const JournalEvent& event) override { Text += JournalLine(event) + "\n"; }
  std::string Text = JournalHead(1);
};

TEST(Journal, LinesReadBackTheSame) {
  for (const JournalEvent& event :
       {JournalEvent{.X = 1200, .Y = 850}, JournalEvent{.X = 100000, .Y = 0.1},
        JournalEvent{.What = Kind::Tool, .Tool = tool::Gap}, JournalEvent{.What = Kind::Select},
        JournalEvent{.What = Kind::Select, .Points = {0, 12, 5000}},
        JournalEvent{.What = Kind::Comment, .Code = "205", .Text = " a|b # caf\xE9 "},
        JournalEvent{.What = Kind::General, .Text = "Rain"},
        JournalEvent{.What = Kind::Comment, .Code = "205"}, JournalEvent{.What = Kind::Clear},
        JournalEvent{.What = Kind::Escape}, JournalEvent{.What = Kind::Page}}) {
    const Journal journal = ReadJournal(JournalHead(3) + JournalLine(event) + "\n");
    ASSERT_FALSE(journal.Error) << *journal.Error;
    ASSERT_EQ(journal.Events.size(), 1U);
    const JournalEvent& read = journal.Events[0];
    EXPECT_EQ(std::tie(read.What, read.X, read.Y, read.Tool, read.Points, read.Code, read.Text),
              std::tie(event.What, event.X, event.Y, event.Tool, event.Points, event.Code, event.Text));
    EXPECT_EQ(journal.Tablet, 3);
    EXPECT_EQ(journal.Lines[0], 3);
  }
}

TEST(Journal, ErrorsNameTheirLineAndKeepWhatStandsBefore) {
  for (const char* bad : {"pres 1 2", "press 1", "press 1 2 3", "press 1 2x", "press nan 2", "press -5 2",
                          "press 1000000 2", "tool 18", "tool -1", "tool", "select 5001", "select a",
                          "comment 205", "comment", "clear all", "escape 1", "tablet 1", "tablet 5", "  "}) {
    const Journal journal = ReadJournal("HYETEX88 JOURNAL 1\n# by hand\ntablet 1\npress 1 2\n" +
                                        std::string(bad) + "\npress 3 4\n");
    ASSERT_TRUE(journal.Error) << bad;
    EXPECT_EQ(journal.Error->rfind("journal line 5: ", 0), 0U) << *journal.Error;
    EXPECT_EQ(journal.Events.size(), 1U);
  }
  for (const char* bad :
       {"", "HYETEX88 JOURNAL 2\ntablet 1\n", "HYETEX88 JOURNAL 1\n", "HYETEX88 JOURNAL 1\npress 1 2\n"})
    EXPECT_TRUE(ReadJournal(bad).Error) << bad;

  for (const char* impossible : {"select 0", "comment |x", "clear"}) {
    Desk desk;
    const auto result =
        Replay(ReadJournal(JournalHead(1) + "press 500 500\npress 3500 500\npress 600 600\n" + impossible),
               desk.Machine);
    ASSERT_FALSE(result) << impossible;
    EXPECT_EQ(result.error().rfind("journal line 6: ", 0), 0U) << result.error();
    EXPECT_EQ(desk.Last(), 0);
  }
}

// What a version wrote that kept the ends without a comment, and took a page from right to left.
TEST(Journal, OldStepsAreReplayedAsTheyWereOrRefused) {
  const std::string page = JournalHead(1) + "press 500 500\npress 3500 500\npress 600 600\n";
  Desk kept;
  EXPECT_TRUE(Replay(ReadJournal(page + "tool 17\npress 700 900\npress 800 900\n"), kept.Machine));
  EXPECT_EQ(kept.Last(), 2);
  Desk open;  // the session ended while the comment was asked for
  EXPECT_TRUE(Replay(ReadJournal(page + "tool 17\npress 700 900\n"), open.Machine));
  EXPECT_TRUE(open.Last() == 0 && open.View.Enabled);
  Desk backwards;
  const auto result =
      Replay(ReadJournal(JournalHead(1) + "press 3500 500\npress 500 500\n"), backwards.Machine);
  ASSERT_FALSE(result);
  EXPECT_EQ(result.error().rfind("journal line 4: The bottom-right corner", 0), 0U) << result.error();
}

TEST(Journal, AKilledSessionKeepsEveryRecordedLine) {
  std::mt19937 random(5);
  for (int round = 0; round < 5; ++round) {
    const test::TempFolder folder;
    int toParent[2];
    ASSERT_EQ(::pipe(toParent), 0);
    const pid_t child = test::StartChild([&] {
      auto journal = JournalFile::Start(folder / "Journal.txt", 1);
      for (int i = 0; journal; ++i) {
        journal->Record({.X = static_cast<double>(i), .Y = 7});
        if (::write(toParent[1], "+", 1) != 1) return false;
      }
      return false;
    });
    int recorded = 0;
    char mark = 0;
    for (const int last = std::uniform_int_distribution(1, 150)(random); recorded < last; ++recorded)
      ASSERT_EQ(::read(toParent[0], &mark, 1), 1);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ::close(toParent[0]);
    ::close(toParent[1]);
    {
      auto more = JournalFile::Continue(folder / "Journal.txt");
      ASSERT_TRUE(more);
      more->Record({.What = Kind::Escape});
    }
    const Journal journal = ReadJournal(test::ReadFile(folder / "Journal.txt"));
    ASSERT_FALSE(journal.Error) << *journal.Error;
    ASSERT_GT(static_cast<int>(journal.Events.size()), recorded);
    for (std::size_t i = 0; i + 1 < journal.Events.size(); ++i)
      ASSERT_EQ(journal.Events[i].X, static_cast<double>(i));
    EXPECT_EQ(journal.Events.back().What, Kind::Escape);
  }
}

TEST(Journal, AnEventThatDidNotFitIsWrittenBeforeTheNext) {
  const test::TempFolder folder;
  EXPECT_TRUE(test::ChildSays([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    auto journal = JournalFile::Start(folder / "Journal.txt", 1);
    const rlimit tight{40, RLIM_INFINITY}, free{RLIM_INFINITY, RLIM_INFINITY};
    ::setrlimit(RLIMIT_FSIZE, &tight);
    journal->Record({.X = 1111, .Y = 2222});
    const bool told = journal->Trouble().has_value();
    const Journal meanwhile = ReadJournal(test::ReadFile(folder / "Journal.txt"));
    ::setrlimit(RLIMIT_FSIZE, &free);
    journal->Record({.X = 3, .Y = 4});
    return told && !meanwhile.Error && meanwhile.Events.empty() && !journal->Trouble();
  }));
  EXPECT_EQ(test::ReadFile(folder / "Journal.txt"), JournalHead(1) + "press 1111 2222\npress 3 4\n");
}

// An operator who does anything at any time, with the tablet, the mouse and the keys.
void DoAnything(Desk& desk, std::mt19937& random) {
  const auto next = [&](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
  ActionMachine& machine = desk.Machine;
  if (machine.CommentIsOpen()) {
    if (next(0, 3) == 0) machine.ClearComments();
    if (next(0, 2) > 0) machine.AddComment(next(0, 1) ? "205" : "", next(0, 1) ? "wet | paper" : "");
    machine.CommentClosed();
    return;
  }
  const int x = next(400, 3700), y = next(450, 1600);
  switch (next(0, 11)) {
    case 0:
      machine.RunTool(next(tool::Recovered, ToolCount - 1));
      break;
    case 1:
      desk.OnSquare(next(tool::Recovered, ToolCount - 1), 0, next(-60, 60), next(-60, 60));
      break;
    case 2:
      desk.Report(x, y);
      break;
    case 3:
      desk.Report(next(0, 4000), next(0, 4000), next(0, 2));
      break;
    case 4:
      if (next(0, 9) == 0) machine.Escape();
      if (next(0, 15) == 0) machine.SetPageAgain();
      break;
    case 5:
      if (next(0, 5) == 0) machine.AutoZoom();
      if (next(0, 40) == 0) machine.RunTool(tool::Redigitize);
      break;
    case 6:
      machine.RunTool(next(0, 1) ? tool::SegmentComment : tool::Zoom);
      desk.Report(x, y);
      desk.Report(x, y, 0);
      break;
    default:
      desk.Click(std::min(3600, 500 + 25 * std::max(0, desk.Last())) + next(-30, 100), y);
  }
}

TEST(Journal, ALiveSessionIsReplayedToTheSameChart) {
  int points = 0, papers = 0, comments = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed);
    const auto method = static_cast<ChartMethod>(seed % 3);
    Recorder recorder;
    Desk live(method, 12.5F, &recorder), replayed(method, 12.5F);
    live.Calibrated();
    for (int i = 0; i < 250; ++i) DoAnything(live, random);
    if (live.Machine.CommentIsOpen()) live.Machine.CommentClosed();
    live.Report(1000, 1000);  // the button is up at the end

    const auto result = Replay(ReadJournal(recorder.Text), replayed.Machine);
    ASSERT_TRUE(result) << "seed " << seed << ": " << result.error();
    const Trace &a = live.Line(), &b = replayed.Line();
    ASSERT_EQ(a.LastPoint(), b.LastPoint()) << "seed " << seed;
    for (int i = 0; i <= a.LastPoint(); ++i) {
      ASSERT_EQ(std::tie(a.Point(i).X, a.Point(i).Y, a.Point(i).Comment),
                std::tie(b.Point(i).X, b.Point(i).Y, b.Point(i).Comment));
      ASSERT_EQ(a.PaperOfPoint(i), b.PaperOfPoint(i));
      comments += !a.Point(i).Comment.empty();
    }
    ASSERT_EQ(a.CurrentPaper(), b.CurrentPaper());
    for (int i = 0; i <= MaxPaper; ++i)
      ASSERT_EQ(std::tie(a.Paper(i).BottomLeftX, a.Paper(i).BottomRightY, a.Paper(i).FirstPoint),
                std::tie(b.Paper(i).BottomLeftX, b.Paper(i).BottomRightY, b.Paper(i).FirstPoint));
    // And the next press means the same: only a waiting zoom, which stores nothing, is not replayed.
    const float waits = live.State().Action == action::ZoomStart ? action::Drawing : live.State().Action;
    ASSERT_EQ(std::tie(waits, live.State().AlphaNext),
              std::tie(replayed.State().Action, replayed.State().AlphaNext));
    ASSERT_EQ(live.Traced.Chart.GeneralComment, replayed.Traced.Chart.GeneralComment);
    ASSERT_EQ(a.TotalDepth(a.LastPoint()), b.TotalDepth(b.LastPoint()));
    points += a.LastPoint();
    papers += a.CurrentPaper();
  }
  EXPECT_TRUE(points > 3000 && papers > 30 && comments > 300) << points << " " << papers << " " << comments;
}

}  // namespace
}  // namespace hyetex
