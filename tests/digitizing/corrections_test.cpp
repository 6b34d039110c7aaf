// Undo, redo and corrections, each also by its journal.
#include <gtest/gtest.h>

#include <random>

#include "core/comments.h"
#include "digitizing/desk.h"
#include "digitizing/scan_placement.h"

namespace hyetex::test {
namespace {

struct TextJournal : JournalSink {
  std::string Text = JournalHead(0);
  void Record(const JournalEvent& event) override { Text += JournalLine(event) + "\n"; }
};

// All that a chart file is made from.
struct Held {
  std::vector<std::tuple<double, double, std::string>> Points;
  std::vector<ChartPaper> Papers;
  int Paper = 0;
  std::string General;
  bool operator==(const Held&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Held& held) {
  for (const auto& [x, y, comment] : held.Points) out << x << " " << y << " " << comment << "\n";
  for (int i = 0; i <= held.Paper; ++i) {
    const ChartPaper& paper = held.Papers[static_cast<std::size_t>(i)];
    out << "paper " << paper.BottomLeftX << " " << paper.BottomLeftY << " " << paper.BottomRightX << " "
        << paper.BottomRightY << " from " << paper.FirstPoint << "\n";
  }
  return out << held.General;
}
Held HeldBy(const Session& session) {
  Held held;
  for (const DigitizedPoint& p : session.Line.Points()) held.Points.emplace_back(p.X, p.Y, p.Comment);
  held.Papers.assign(session.Line.Papers().begin(), session.Line.Papers().end());
  held.Paper = session.Line.CurrentPaper();
  held.General = session.Chart.GeneralComment;
  return held;
}

// What a replay of the journal gives: the chart, and what the next press would mean.
void ExpectReplayed(const TextJournal& journal, const Desk& desk) {
  Desk again;
  const auto replayed = Replay(ReadJournal(journal.Text), again.Machine);
  ASSERT_TRUE(replayed) << replayed.error() << "\n" << journal.Text;
  ASSERT_EQ(HeldBy(again.Traced), HeldBy(desk.Traced)) << journal.Text;
  // What only the view waits for is not in the journal.
  const bool view = desk.State().Action >= action::MovingBoard && desk.State().Action <= action::ZoomDrag;
  ASSERT_TRUE(view || again.State().Action == desk.State().Action) << journal.Text;
  ASSERT_EQ(again.State().AlphaNext, desk.State().AlphaNext) << journal.Text;
  ASSERT_EQ(again.Machine.UndoText(), desk.Machine.UndoText()) << journal.Text;
  ASSERT_EQ(again.Machine.RedoText(), desk.Machine.RedoText()) << journal.Text;
}

TEST(Undo, TakesBackOneStepWithTheToolThatBeganIt) {
  Desk desk;
  EXPECT_FALSE(desk.Machine.CanUndo());
  desk.Calibrated().Click(600, 600).Click(700, 700).Tool(tool::NewSegment).Click(650, 650);
  EXPECT_EQ(desk.Machine.UndoText(), "Undo new segment");
  desk.Traced.Saved = true;
  desk.Machine.Undo();
  EXPECT_EQ(desk.Last(), 1);
  EXPECT_TRUE(desk.IsDrawing()) << desk.IsShown();
  EXPECT_FALSE(desk.Traced.Saved);
  desk.Machine.Redo();
  EXPECT_TRUE(desk.LastOne().StartsSegment());
  EXPECT_FALSE(desk.Machine.CanRedo());
  for (int i = 0; i < 4; ++i) desk.Machine.Undo();
  EXPECT_EQ(desk.State().Action, action::PageLeftCorner);
  EXPECT_FALSE(IsCalibrated(desk.Line().Paper(0)));
  EXPECT_FALSE(desk.Machine.CanUndo());
  desk.Click(500, 510);
  EXPECT_FALSE(desk.Machine.CanRedo() && desk.Machine.CanUndo() &&
               desk.Machine.UndoText() != "Undo first corner");
}

TEST(Undo, TakesBackWhatWaitsFirst) {
  Desk desk;
  desk.Calibrated().Click(600, 600).Tool(tool::Level);
  EXPECT_EQ(desk.Machine.UndoText(), "Undo choice of tool");
  desk.Machine.Undo();
  EXPECT_TRUE(desk.IsDrawing());
  EXPECT_EQ(desk.Last(), 0);
  desk.Tool(tool::AttachPaper).Click(600, 1700);
  desk.Machine.Undo();
  EXPECT_TRUE(desk.IsDrawing());
  desk.Tool(tool::SegmentComment).Report(550, 550).Report(550, 550, 0).Report(700, 700, 0);
  desk.Machine.Undo();
  desk.Report(700, 700);
  EXPECT_FALSE(desk.Machine.LassoIsOpen());
  EXPECT_FALSE(desk.Machine.CommentIsOpen());
  EXPECT_EQ(desk.Last(), 0);
}

TEST(Undo, TakesAnEndTogetherWithItsComment) {
  TextJournal journal;
  Desk desk(ChartMethod::Linear, 0, &journal);
  desk.Calibrated().Click(600, 600).Click(700, 700).Tool(tool::Gap).Click(900, 700);
  EXPECT_FALSE(desk.Machine.CanUndo());
  desk.Comment("205", "Clock malfunction");
  EXPECT_EQ(desk.Machine.UndoText(), "Undo data gap");
  desk.Tool(tool::Gap).Click(1000, 700);
  desk.Machine.CommentClosed();  // without a comment: no step
  ExpectReplayed(journal, desk);
  desk.Machine.Undo();
  EXPECT_EQ(desk.Last(), 1);
  desk.Machine.Redo();
  EXPECT_TRUE(HasCode(desk.LastOne().Comment, CodeGapEnd));
  ExpectReplayed(journal, desk);
}

TEST(Undo, BringsBackAllThatRedigitizeTook) {
  Desk desk;
  desk.Calibrated();
  for (int i = 0; i < 40; ++i) desk.Click(600 + 10 * i, 600 + i);
  desk.Tool(tool::AttachPaper).Click(500, 2000).Click(3500, 2010).Click(520, 2100).Click(600, 2200);
  const Held before = HeldBy(desk.Traced);
  desk.Machine.State().SelectedPoint = 3;
  desk.Tool(tool::Redigitize);
  EXPECT_EQ(desk.Machine.UndoText(), "Undo Redigitize");
  EXPECT_EQ(desk.State().SelectedPoint, -1);
  desk.Machine.Undo();
  EXPECT_EQ(HeldBy(desk.Traced), before);
  EXPECT_EQ(desk.Line().PaperOfPoint(desk.Last()), 1);
}

TEST(Undo, AgainstAPlainModelWithReplayInTheMiddle) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    std::mt19937 random(seed);
    const auto upTo = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    TextJournal journal;
    Desk desk(ChartMethod::Linear, 0, &journal);
    std::vector<Held> past{HeldBy(desk.Traced)};
    std::size_t at = 0;
    for (int step = 0; step < 160; ++step) {
      ActionMachine& machine = desk.Machine;
      const Held before = HeldBy(desk.Traced);
      const int x = 400 + upTo(3200), y = 400 + upTo(1300), last = desk.Last() + 1;
      const int what = upTo(20);
      bool undoes = false;
      if (what < 7) {
        desk.Click(desk.Last() >= 0 ? std::min(3600, static_cast<int>(desk.LastOne().TrueX()) + upTo(60)) : x,
                   y);
      } else if (what < 11) {
        const int tools[] = {2, 3, 4, 6, 7, 8, 11, 12, 13, 14, 16, 17, 9};
        const int tool = tools[upTo(13)];
        desk.Tool(tool == 2 && upTo(4) != 0 ? tool::Alpha : tool);
      } else if (what == 11) {
        (void)machine.MovePoint(upTo(last + 1), x, y);
      } else if (what == 12) {
        (void)machine.DeletePoint(upTo(last + 1));
      } else if (what == 13 && last > 1) {
        const int i = 1 + upTo(last - 1);
        const auto &a = desk.Line().Point(i - 1), &b = desk.Line().Point(i);
        (void)machine.InsertPoint(i, (a.TrueX() + b.TrueX()) / 2, y);
      } else if (what == 14) {
        (void)machine.MoveCorner(upTo(2) == 1, x, y);
      } else if (what == 15) {
        upTo(2) == 1 ? machine.Escape() : machine.SetPageAgain();
      } else if (what == 16) {
        desk.Drag(x, y, x + upTo(900), y + upTo(900));
      } else {
        const bool waited =
            machine.UndoText() == "Undo first corner" || machine.UndoText() == "Undo choice of tool";
        const bool can = upTo(3) > 0 ? machine.CanUndo() : false;
        undoes = true;
        if (can) {
          machine.Undo();
          if (!waited) --at;
        } else if (machine.CanRedo()) {
          machine.Redo();
          ++at;
        }
        ASSERT_LT(at, past.size());
        ASSERT_EQ(HeldBy(desk.Traced), past[at]) << "seed " << seed << "\n" << journal.Text;
      }
      if (machine.CommentIsOpen()) {
        if (upTo(3) == 0) machine.ClearComments();
        if (upTo(3) != 0)
          (void)machine.AddComment(machine.OpenCommentRequest()->Code, "why " + std::to_string(step));
        machine.CommentClosed();
      }
      if (const Held now = HeldBy(desk.Traced); !undoes && now != before) {
        past.resize(at + 1);
        past.push_back(now);
        ++at;
      }
      if (step % 20 == 19) ExpectReplayed(journal, desk);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Corrections, KeepWhatSegmentsAndStripsNeed) {
  Desk desk;
  desk.Calibrated().Click(600, 600).Click(700, 700).Tool(tool::NewSegment).Click(800, 700).Click(900, 800);
  desk.Tool(tool::AttachPaper).Click(500, 2000).Click(3500, 2000).Click(520, 2100).Click(600, 2200);
  ASSERT_EQ(desk.Line().Paper(1).FirstPoint, 4);
  ActionMachine& machine = desk.Machine;
  EXPECT_FALSE(machine.InsertPoint(2, 750, 700));  // between two segments
  EXPECT_FALSE(machine.InsertPoint(0, 550, 600));
  EXPECT_FALSE(machine.InsertPoint(6, 700, 2300));
  EXPECT_FALSE(machine.MovePoint(5, 600, 700));  // on the page, not on its strip
  EXPECT_FALSE(machine.MovePoint(1, 300, 700));  // back in time
  EXPECT_FALSE(machine.MovePoint(9, 600, 700));

  ASSERT_TRUE(machine.InsertPoint(1, 650, 650));
  EXPECT_EQ(desk.Line().Paper(1).FirstPoint, 5);
  ASSERT_TRUE(machine.MovePoint(3, 810, 705));
  EXPECT_TRUE(desk.Line().Point(3).StartsSegment());
  ASSERT_TRUE(machine.DeletePoint(3));
  EXPECT_TRUE(desk.Line().Point(3).StartsSegment());
  EXPECT_EQ(desk.Line().Point(3).TrueX(), 900);
  machine.State().SelectedPoint = 4;
  ASSERT_TRUE(machine.DeletePoint(3));
  EXPECT_EQ(desk.State().SelectedPoint, 3);
  EXPECT_EQ(desk.Line().Paper(1).FirstPoint, 3);
  ASSERT_TRUE(machine.DeletePoint(3));  // the strip begins with its next point
  EXPECT_EQ(desk.State().SelectedPoint, -1);
  EXPECT_EQ(desk.Line().PaperOfPoint(3), 1);
  EXPECT_TRUE(desk.Line().Point(3).StartsSegment());
  ASSERT_TRUE(machine.DeletePoint(3));
  EXPECT_EQ(desk.State().Action, action::PaperFirstPoint);
  desk.Click(530, 2150);
  EXPECT_TRUE(desk.LastOne().StartsSegment());
}

TEST(Corrections, ADropsCodeGoesAndComesWithTheDrop) {
  Desk desk;
  desk.Calibrated().Click(600, 600).Click(700, 1450).Click(705, 520).Click(800, 600);
  ASSERT_EQ(desk.Line().Point(2).Comment, "CODE202");
  ASSERT_TRUE(desk.Machine.MovePoint(2, 705, 1200));
  EXPECT_EQ(desk.Line().Point(2).Comment, "");
  ASSERT_TRUE(desk.Machine.MovePoint(2, 705, 530));
  EXPECT_EQ(desk.Line().Point(2).Comment, "CODE202");
  ASSERT_TRUE(desk.Machine.MovePoint(1, 700, 900));  // it no longer drops from so high
  EXPECT_EQ(desk.Line().Point(2).Comment, "");
  ASSERT_TRUE(desk.Machine.MovePoint(1, 700, 1450));
  EXPECT_EQ(desk.Line().Point(2).Comment, "CODE202");
  ASSERT_TRUE(desk.Machine.DeletePoint(2));
  EXPECT_EQ(desk.Line().Point(2).Comment, "CODE202");  // the next one stands where it dropped to
  desk.Tool(tool::Alpha).Click(900, 700);
  ASSERT_TRUE(desk.Machine.MovePoint(3, 905, 705));
  EXPECT_EQ(desk.Line().Point(3).Comment, "CODE202");  // the operator's own
  ASSERT_TRUE(desk.Machine.DeletePoint(0));
  ASSERT_TRUE(desk.Machine.DeletePoint(0));
  EXPECT_EQ(desk.Line().Point(0).Comment, "");
}

TEST(Corrections, AnArcRefusesWhatItsPenCannotReach) {
  Desk desk(ChartMethod::NonLinear, 50);  // half a circle over the band
  desk.Calibrated().Click(1000, 700).Click(1100, 800);
  EXPECT_FALSE(desk.Machine.MovePoint(1, 1100, 480));
  EXPECT_FALSE(desk.Machine.InsertPoint(1, 1050, 1550));
  EXPECT_TRUE(desk.Machine.MovePoint(1, 1100, 900));
}

TEST(Corrections, ACornerKeepsThePointsAndTheirOrder) {
  Desk desk;
  desk.Calibrated().Click(600, 600).Click(700, 700);
  EXPECT_FALSE(desk.Machine.MoveCorner(true, 500, 600));
  ASSERT_TRUE(desk.Machine.MoveCorner(true, 3500, 530));
  EXPECT_GT(desk.State().PageAngle, 0);
  EXPECT_EQ(desk.Line().Point(1).X, 700);
  desk.Machine.Undo();
  EXPECT_EQ(desk.State().PageAngle, 0);
}

TEST(Corrections, JournalWordsThatCannotBe) {
  const std::string sha(64, 'a');
  const std::string page = JournalHead(0) + "press 500 500\npress 3500 500\npress 600 600\npress 700 700\n";
  const struct {
    std::string Line, Why;
  } cases[] = {{"move 2 700 700", "no point 2"},
               {"move 1 700", "no step"},
               {"move -1 700 700", "no step"},
               {"delete 9", "no point 9"},
               {"insert 1 100 9000", "outside"},
               {"corner up 1 2", "no step"},
               {"corner left 3600 500", "to the right"},
               {"undo 1", "no step"},
               {"redo", "nothing to redo"},
               {"scan " + sha + " 0 1 2 nan 0 /a.png", "no step"},
               {"scan " + sha + " 0 1 2 0 0 /a.png", "no step"},
               {"scan abc 0 1 2 1 0 /a.png", "no step"},
               {"scan " + sha + " 0 1 2 1 0 ", "no step"}};
  for (const auto& c : cases) {
    Desk desk;
    const auto replayed = Replay(ReadJournal(page + c.Line + "\npress 800 800\n"), desk.Machine);
    ASSERT_FALSE(replayed) << c.Line;
    EXPECT_NE(replayed.error().find("line 7"), std::string::npos) << replayed.error();
    EXPECT_NE(replayed.error().find(c.Why), std::string::npos) << replayed.error();
    EXPECT_EQ(desk.Last(), 1);
  }
}

TEST(Corrections, AScanIsNoPartOfTheHistory) {
  TextJournal journal;
  Desk desk(ChartMethod::Linear, 0, &journal);
  ScanPlacement scan{std::string(64, 'b'), 2, -10.25, 2000.5, 1.7, 90.5, "/scans/a b  end \"x\" .png "};
  ASSERT_TRUE(desk.Machine.PlaceScan(scan));
  EXPECT_FALSE(desk.Machine.CanUndo());
  desk.Calibrated().Click(600, 600);
  scan.X0 = 7;
  ASSERT_TRUE(desk.Machine.PlaceScan(scan));
  desk.Machine.Undo();
  EXPECT_EQ(desk.Last(), -1);
  Desk again;
  ASSERT_TRUE(Replay(ReadJournal(journal.Text), again.Machine));
  EXPECT_EQ(again.Traced.Scan, scan);
  scan.Path = "/a\nb";
  EXPECT_FALSE(desk.Machine.PlaceScan(scan));
}

}  // namespace
}  // namespace hyetex::test
