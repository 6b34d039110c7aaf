#include "digitizing/resume.h"

#include <filesystem>
#include <set>

#include "chartfiles/chart_text.h"
#include "child.h"
#include "core/files.h"
#include "core/numbers.h"
#include "digitizing/desk.h"
#include "support.h"

namespace hyetex {
namespace {

using test::Desk;
using test::TempFolder;

ChartRecord Chart() {
  ChartRecord chart = test::ChartOf1998();
  chart.InstrumentCode = "RG 12";
  return chart;
}

// Two corners, then a step to the right with each press; every fifth is the end of a gap, with its comment.
void Trace(Desk& desk, int presses) {
  for (int i = 0; i < presses; ++i) {
    if (i < 2) {
      desk.Click(i == 0 ? 500 : 3500, 500 + i);
      continue;
    }
    if (i % 5 == 4) desk.Machine.RunTool(tool::Gap);
    desk.Click(550 + 20 * i, 600 + 37 * i % 800);
    if (desk.Machine.CommentIsOpen()) {
      desk.Machine.AddComment("205", "Clock malfunction");
      desk.Machine.CommentClosed();
    }
  }
}

std::string FileOf(const Session& session) {
  const auto text = MakeChartText(session, {"Core", "Agency", "Station", "RG 12", "User"}, "");
  return text ? text->Text : text.error();
}

TEST(Resume, NoPointIsLostWhereverTheProgramIsKilled) {
  constexpr int Presses = 23;
  for (int killed = 1; killed <= Presses; ++killed) {
    TempFolder folder;
    const pid_t child = test::StartChild([&] {
      SessionJournal journal;
      journal.Start(folder.Path(), 1, Chart());
      Desk desk(ChartMethod::Linear, 0, &journal);
      Trace(desk, killed);
      return ::raise(SIGKILL) == 0;
    });
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    const auto unfinished = FindUnfinishedChart(folder.Path());
    ASSERT_TRUE(unfinished);
    EXPECT_EQ(unfinished->Presses, killed);
    EXPECT_TRUE(MakeResumeOffer(*unfinished, Chart(), 1).CanResume);

    // Resumed, killed once more on the way, and resumed again.
    SessionJournal journal;
    Desk resumed(ChartMethod::Linear, 0, &journal), whole;
    ASSERT_TRUE(Replay(unfinished->Steps, resumed.Machine));
    journal.Start(folder.Path(), 1, Chart());
    resumed.Click(3400, 700);
    Desk again;
    ASSERT_TRUE(Replay(FindUnfinishedChart(folder.Path())->Steps, again.Machine));
    Trace(whole, killed);
    whole.Click(3400, 700);
    EXPECT_EQ(FileOf(again.Traced), FileOf(whole.Traced)) << killed;
    EXPECT_EQ(again.Last(), whole.Last());
  }
}

TEST(Resume, OffersOnlyWhatIsThere) {
  TempFolder folder;
  EXPECT_FALSE(FindUnfinishedChart(folder.Path()));
  SessionJournal journal;
  journal.Start(folder.Path(), 1, Chart());
  EXPECT_EQ(test::ReadFile(folder / "Journal.txt"),
            "HYETEX88 JOURNAL 1\ntablet 1\n# task RG 12 05/03/1998\n");
  EXPECT_FALSE(FindUnfinishedChart(folder.Path())) << "nothing has been pressed";
  journal.Record({.X = 500, .Y = 500});
  ASSERT_TRUE(FindUnfinishedChart(folder.Path()));
  EXPECT_EQ(FindUnfinishedChart(folder.Path())->Name, "RG 12 05/03/1998");

  // A line cut off by a power failure might read as another press.
  test::WriteFile(folder / "Journal.txt", test::ReadFile(folder / "Journal.txt") + "press 1200 8");
  const auto cut = FindUnfinishedChart(folder.Path());
  EXPECT_FALSE(cut->Steps.Error);
  EXPECT_EQ(cut->Presses, 1);

  journal.Remove();
  EXPECT_FALSE(FileExists(folder / "Journal.txt"));
  EXPECT_FALSE(FindUnfinishedChart(folder.Path()));
}

TEST(Resume, ChartsGivenUpAreKeptForTheNextTen) {
  TempFolder folder;
  const auto backups = [&] {
    std::multiset<std::string> kept;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      const Journal journal = ReadJournal(test::ReadFile(entry.path().string()));
      EXPECT_TRUE(entry.path().filename().string().starts_with("Journal.txt.bak-"));
      kept.insert(ShortText(journal.Events.at(0).X));
    }
    return kept;
  };
  for (int i = 1; i <= 12; ++i) {
    SessionJournal journal;
    journal.Start(folder.Path(), 1, Chart());
    journal.Record({.X = 100.0 + i, .Y = 500});
    ASSERT_TRUE(journal.SetAside());
    EXPECT_FALSE(FindUnfinishedChart(folder.Path()));
  }
  EXPECT_EQ(backups(), (std::multiset<std::string>{"103", "104", "105", "106", "107", "108", "109", "110",
                                                   "111", "112"}));
  SessionJournal empty;
  empty.Start(folder.Path(), 1, Chart());
  ASSERT_TRUE(empty.SetAside());
  EXPECT_EQ(backups().size(), 10U) << "one without a step is not worth one of them";
}

TEST(Resume, AnotherChartsJournalIsNeverPlayed) {
  TempFolder folder;
  SessionJournal journal;
  journal.Start(folder.Path(), 1, Chart());
  journal.Record({.X = 500, .Y = 500});
  const auto unfinished = FindUnfinishedChart(folder.Path());
  ASSERT_TRUE(unfinished);

  const auto same = MakeResumeOffer(*unfinished, Chart(), 1);
  EXPECT_TRUE(same.CanResume);
  EXPECT_EQ(same.Text,
            "The digitization of the chart RG 12 05/03/1998 was not saved when the last session ended. Its 1 "
            "presses have been kept. Do you want to go on with it?\n\nNo sets them aside and begins the "
            "chart anew. "
            "Cancel keeps them and closes this session.");
  EXPECT_EQ(same.Title, "Unfinished digitization");

  ChartRecord other = Chart();
  other.StartTime += 1;
  const auto another = MakeResumeOffer(*unfinished, other, 1);
  EXPECT_FALSE(another.CanResume);
  EXPECT_EQ(another.Title, "Unfinished digitization of another chart");
  EXPECT_NE(another.Text.find("RG 12 05/03/1998"), std::string::npos);
  EXPECT_NE(another.Text.find("This session is for the chart RG 12 06/03/1998."), std::string::npos);

  const auto otherTablet = MakeResumeOffer(*unfinished, Chart(), 2);
  EXPECT_FALSE(otherTablet.CanResume);
  EXPECT_NE(otherTablet.Text.find("DrawingBoard III+"), std::string::npos);
  EXPECT_NE(otherTablet.Text.find("GT-1812"), std::string::npos);

  test::WriteFile(folder / "Journal.txt", "My diary\n");
  const auto diary = MakeResumeOffer(*FindUnfinishedChart(folder.Path()), Chart(), 1);
  EXPECT_FALSE(diary.CanResume);
  EXPECT_NE(diary.Text.find("this is no session journal"), std::string::npos);
}

TEST(Resume, AScanIsOfferedToASessionWithOne) {
  TempFolder folder;
  SessionJournal journal;
  journal.Start(folder.Path(), 0, Chart());
  JournalEvent placed{.What = JournalEvent::Kind::Scan};
  placed.Scan = {.Sha256 = std::string(64, '0'), .Path = "/scans/a b.png"};
  journal.Record(placed);
  EXPECT_FALSE(FindUnfinishedChart(folder.Path())) << "nothing has been pressed";
  journal.Record({.X = 500, .Y = 500});
  placed.Scan.X0 = 12.5;
  journal.Record(placed);
  const auto unfinished = FindUnfinishedChart(folder.Path());
  ASSERT_TRUE(unfinished);
  EXPECT_EQ(unfinished->Scan, placed.Scan);
  EXPECT_TRUE(MakeResumeOffer(*unfinished, Chart(), 0, true).CanResume);
  const auto onTablet = MakeResumeOffer(*unfinished, Chart(), 0);
  EXPECT_FALSE(onTablet.CanResume);
  EXPECT_NE(onTablet.Text.find("/scans/a b.png"), std::string::npos);
  UnfinishedChart traced = *unfinished;
  traced.Scan.reset();
  EXPECT_FALSE(MakeResumeOffer(traced, Chart(), 0, true).CanResume);
  EXPECT_TRUE(MakeResumeOffer(traced, Chart(), 0).CanResume);
}

TEST(Resume, AFullDiskIsToldAndCaughtUpWith) {
  TempFolder folder;
  SessionJournal journal;
  Desk desk(ChartMethod::Linear, 0, &journal);
  const std::string missing = folder / "not yet";
  journal.Start(missing, 1, Chart());
  EXPECT_TRUE(journal.Trouble());
  Trace(desk, 7);
  EXPECT_TRUE(journal.Trouble());
  std::filesystem::create_directory(missing);
  desk.Click(3400, 700);
  EXPECT_FALSE(journal.Trouble());
  EXPECT_EQ(FindUnfinishedChart(missing)->Presses, 8);
}

}  // namespace
}  // namespace hyetex
