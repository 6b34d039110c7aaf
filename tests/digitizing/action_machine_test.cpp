#include "digitizing/action_machine.h"

#include <cmath>

#include "digitizing/desk.h"

namespace hyetex {
namespace {

using test::Desk;

TEST(ActionMachine, TwoPressesCalibrateThePage) {
  Desk desk;
  EXPECT_EQ(desk.View.Title, "Setting the page angle");
  EXPECT_EQ(desk.View.Instruction, "Click the bottom left point of the page");
  EXPECT_EQ(desk.View.Background, LightBlue);
  desk.Click(500, 500, 2);  // the board's button is no press
  EXPECT_EQ(desk.State.Action, 3.0F);
  desk.Click(500, 500);
  EXPECT_EQ(desk.State.Action, 3.5F);
  EXPECT_EQ(desk.View.Instruction, "Click the bottom-right Corner of the Page");
  EXPECT_EQ(desk.View.Background, LightOrange);
  desk.Click(500, 900);  // no line stands upright
  EXPECT_EQ(desk.State.Action, 3.5F);
  EXPECT_FALSE(desk.View.Board);
  desk.Click(3500, 800);
  EXPECT_TRUE(desk.IsDrawing() && desk.View.Instruction.empty() && desk.View.Board);
  EXPECT_EQ(desk.View.Background, LightGreen);
  EXPECT_FLOAT_EQ(desk.State.PageAngle, std::atan(0.1F));
  EXPECT_FLOAT_EQ(desk.Line().Paper(0).Angle, std::atan(0.1F));
}

TEST(ActionMachine, WaitingToolsSayWhatTheyWaitForAndAreTakenBack) {
  const struct {
    int Tool;
    float Waits;
    const char *Title, *Prompt;
  } cases[] = {{3, 11, "Marking a recovered segment", "Click at the point where the recovered segment ends"},
               {4, 1, "Append a new paper", "Click the bottom-left corner of the new paper"},
               {8, 0.5F, "Starting a new segment", "Click the point that overlaps the last point drawn"},
               {12, 7.1F, "Add a Comment for a segment",
                "Select the segement to which you would like to add a Comment"},
               {16, 9, "Leveling a segment",
                "The follwing point would be considered in the same height as the first one"},
               {17, 10, "Data Gap", "Choose the point where the data gap ends"},
               {13, 8, "Zooming", "Select the area which you would like to zoom on"}};
  for (const auto& c : cases) {
    Desk desk;
    desk.Calibrated().Click(600, 600);
    desk.OnSquare(c.Tool, 0);
    EXPECT_EQ(desk.View.MarkedTool, c.Tool);
    EXPECT_EQ(desk.State.Action, c.Waits);
    EXPECT_EQ(desk.View.Title, c.Title);
    EXPECT_EQ(desk.View.Instruction, c.Prompt);
    EXPECT_TRUE(desk.View.Marker && desk.State.WaitForRelease);
    desk.Report(700, 700, 0);  // the press that chose the tool does nothing more
    EXPECT_EQ(desk.Last(), 0);
    desk.Report(700, 700);
    desk.Click(700, 700, 2);
    EXPECT_EQ(desk.State.Action, c.Waits);
    desk.Machine.RunTool(c.Tool);
    EXPECT_EQ(desk.IsDrawing() && desk.View.Instruction.empty(), c.Tool != 13) << c.Tool;
    desk.Machine.RunTool(c.Tool);
    desk.Machine.Escape();
    EXPECT_TRUE(desk.IsDrawing() && desk.View.Instruction.empty()) << c.Tool;
  }
  Desk empty;
  empty.Calibrated().Machine.RunTool(4);
  EXPECT_TRUE(empty.IsDrawing());
}

TEST(ActionMachine, APressInsideTheBoxStoresOnePoint) {
  Desk desk;
  desk.Calibrated().State.Saved = true;
  desk.Report(600, 700, 0);
  desk.Report(601, 701, 0);  // held
  desk.Report(900, 900, 1);
  desk.Report(600, 700);
  ASSERT_EQ(desk.Last(), 0);
  EXPECT_EQ(desk.LastOne().X, 600);
  EXPECT_FALSE(desk.State.Saved);
  EXPECT_EQ(desk.State.RefX, 600);
  EXPECT_NEAR(desk.State.RefTime, MakeDate(2024, 1, 1, 10), 1e-9);  // the nearest whole hour
  desk.Click(600, 2000);
  desk.Click(600, 250, 1);
  EXPECT_TRUE(desk.Last() == 0 && desk.View.Message.empty());
}

TEST(ActionMachine, AJumpBackOfATwentiethStartsASegment) {
  for (const auto& [x, marked] : {std::pair(1351, false), std::pair(1350, true), std::pair(1000, true)}) {
    Desk desk;
    desk.Calibrated().Click(1600, 600);
    desk.Click(1500, 600);  // the second point may go back as far as it likes
    EXPECT_FALSE(desk.LastOne().StartsSegment());
    desk.Click(x, 700);
    EXPECT_EQ(desk.LastOne().StartsSegment(), marked) << x;
    EXPECT_EQ(desk.LastOne().TrueX(), x);
    EXPECT_TRUE(desk.IsDrawing());
  }
}

TEST(ActionMachine, ADeepFallIsAnAlphaPoint) {
  const struct {
    ChartMethod Method;
    int Fall;
    bool Alpha;
  } cases[] = {{ChartMethod::Linear, 600, false},
               {ChartMethod::Linear, 601, true},
               {ChartMethod::NonLinear, 800, false},
               {ChartMethod::NonLinear, 801, true},
               {ChartMethod::TippingBucket, 601, true}};
  for (const auto& c : cases) {
    Desk desk(c.Method, 12.5F);
    desk.Calibrated().Click(600, 1400);
    desk.Click(610, 1400 - c.Fall);
    EXPECT_EQ(desk.LastOne().Comment, c.Alpha ? "CODE202" : "") << c.Fall;
    desk.Click(620, 1400);
    desk.Machine.RunTool(8);
    desk.Click(620, 1400);
    desk.Click(630, 500);  // never measured from a segment's start
    EXPECT_EQ(desk.LastOne().Comment, "");
  }
}

TEST(ActionMachine, TheAlphaToolMarksTheNextPointDrawnAndNoOther) {
  Desk desk;
  desk.Calibrated().Machine.RunTool(6);
  EXPECT_EQ(desk.View.Title, "Toggling an alpha sign");
  EXPECT_EQ(desk.View.Instruction, "Click at the point where the instrument has finished cycling");
  desk.Click(600, 3300);  // outside: still waiting
  desk.Click(600, 600);
  EXPECT_EQ(desk.LastOne().Comment, "CODE202");
  desk.Click(650, 600);
  EXPECT_EQ(desk.LastOne().Comment, "");
  desk.Machine.RunTool(6);
  desk.Machine.RunTool(6);
  EXPECT_TRUE(desk.IsDrawing() && !desk.State.AlphaNext);
  desk.Machine.RunTool(6);
  desk.Machine.RunTool(8);
  desk.Click(660, 600);
  desk.Click(670, 600);
  EXPECT_EQ(desk.LastOne().Comment, "");
}

TEST(ActionMachine, AStripIsAttachedByTwoCornersAndItsFirstPoint) {
  Desk desk;
  desk.Calibrated().Click(600, 600);
  desk.Click(800, 700);
  desk.Machine.RunTool(4);
  desk.Click(1000, 2000);
  EXPECT_EQ(desk.State.Action, 1.5F);
  EXPECT_EQ(desk.View.Instruction, "Click the bottom-right corner of the new paper");
  desk.Click(1000, 2100);
  EXPECT_TRUE(desk.State.Action == 1.5F && desk.Line().CurrentPaper() == 0);
  desk.Click(2000, 2100);
  EXPECT_EQ(desk.State.Action, 1.7F);
  EXPECT_EQ(desk.View.Instruction, "Click the first point of the new paper and continue drawing normally");
  EXPECT_FLOAT_EQ(desk.State.PageAngle, std::atan(0.1F));
  EXPECT_FALSE(desk.View.Marker);
  desk.Click(1000, 2300);
  EXPECT_TRUE(desk.IsDrawing() && desk.LastOne().StartsSegment());
  EXPECT_EQ(desk.Line().Paper(1).FirstPoint, 2);
  desk.Click(1100, 2300);
  EXPECT_EQ(desk.Line().PaperOfPoint(1), 0);
  EXPECT_EQ(desk.Line().PaperOfPoint(3), 1);
}

TEST(ActionMachine, LevelsAndEndsOfGapsCarryTheirCodes) {
  Desk desk;
  desk.Calibrated().Click(600, 600);
  desk.Machine.RunTool(16);
  desk.Click(700, 900);
  EXPECT_TRUE(desk.LastOne().Comment == "CODE203" && desk.IsDrawing());
  EXPECT_FLOAT_EQ(desk.State.TotalDepth(desk.Last()), 0);
  for (const int tool : {17, 3}) {
    desk.Machine.RunTool(tool);
    desk.Click(800, 900);
    ASSERT_TRUE(desk.Machine.CommentIsOpen() && !desk.View.Enabled);
    const CommentRequest request = *desk.Machine.OpenCommentRequest();
    EXPECT_EQ(request.Code, tool == 17 ? "205" : "206");
    EXPECT_EQ(
        request.Choices,
        tool == 17
            ? (std::vector<std::string>{"Pen did not record", "Clock malfunction", "Instrument did not cycle",
                                        "Instrument stopped after cycle", "Pen recorded on the metal strip"})
            : (std::vector<std::string>{"Pen did not record", "Pen recorded on the metal strip"}));
    const std::string_view thrownAway = "0900,0900,1\r\n0900,0900,1\r\n0900";
    desk.Machine.Receive({reinterpret_cast<const std::uint8_t*>(thrownAway.data()), thrownAway.size()});
    EXPECT_EQ(desk.State.CursorX, 800);
    EXPECT_TRUE(desk.Machine.AddComment(request.Code, "two\nlines"));
    EXPECT_FALSE(desk.Machine.AddComment(request.Code, "Clock malfunction"));
    desk.Machine.CommentClosed();
    EXPECT_EQ(desk.LastOne().Comment, "CODE" + request.Code + " + Clock malfunction");
    EXPECT_TRUE(desk.View.Enabled && desk.IsDrawing());
    EXPECT_EQ(desk.Line().Point(1).Comment, "CODE203");
  }
  Desk first;
  first.Calibrated().Machine.RunTool(17);
  first.Click(600, 600);
  first.Machine.AddComment("205", "");
  EXPECT_EQ(first.LastOne().Comment, "");  // point 0 never gets one
}

TEST(ActionMachine, ErasingAndRedigitizingKeepThePage) {
  Desk desk;
  desk.Calibrated().Machine.RunTool(7);
  EXPECT_EQ(desk.Last(), -1);
  for (const int x : {600, 700, 800}) desk.Click(x, 600);
  desk.Machine.RunTool(8);
  desk.Click(900, 600);
  EXPECT_EQ(desk.State.RefX, 900);
  desk.Machine.RunTool(7);
  EXPECT_EQ(desk.State.RefX, 600);  // no earlier segment: point 0
  EXPECT_EQ(desk.Last(), 2);
  desk.State.Saved = true;
  desk.Machine.RunTool(2);
  EXPECT_TRUE(desk.Last() == -1 && desk.State.RefX == 0 && !desk.State.Saved);
  desk.Click(600, 600);
  EXPECT_EQ(desk.Last(), 0);
}

TEST(ActionMachine, WhatCannotBeKeptIsToldAndChangesNothing) {
  Desk full;
  full.Calibrated();
  while (!full.Line().IsFull()) full.State.Line.Add(1000, 600);
  for (const int tool : {-1, 3, 8, 16, 17}) {
    full.View.Message.clear();
    if (tool >= 0) full.Machine.RunTool(tool);
    full.Report(1100, 600);
    full.Click(1100, 600);
    EXPECT_EQ(full.View.Message,
              "The chart has 5001 points and can hold no more. Save it, or delete points, before you go on.");
    EXPECT_TRUE(full.Last() == MaxPoint && full.LastOne().X == 1000 && !full.Machine.CommentIsOpen());
  }
  Desk strips;
  strips.Calibrated().Click(600, 600);
  for (int i = 1; i <= 11; ++i) {
    strips.Machine.RunTool(4);
    strips.Click(1000, 600);
    strips.Click(2000, 600);
    strips.Click(1000, 700);
  }
  EXPECT_EQ(strips.View.Message, "No more than 10 strips can be attached to a chart.");
  EXPECT_EQ(strips.Line().CurrentPaper(), 10);

  Desk arc(ChartMethod::NonLinear, 40);  // its circle ends at 101.25 mm
  arc.Calibrated().Click(600, 600);
  arc.Click(700, 1650);
  EXPECT_TRUE(arc.Last() == 0 && arc.View.Message.find("arc") != std::string::npos);
  arc.Machine.RunTool(16);
  arc.Click(700, 3300);
  EXPECT_TRUE(arc.Last() == 0 && arc.State.Action == action::Leveling);
  arc.Click(700, 1500);
  EXPECT_EQ(arc.Last(), 1);
}

TEST(ActionMachine, ALassoCommentsThePointsUnderIt) {
  for (const bool zoomed : {false, true}) {
    Desk desk;
    desk.Calibrated();
    for (const int x : {600, 700, 800, 900}) desk.Click(x, 600);
    if (zoomed) desk.Machine.AutoZoom();
    desk.Machine.RunTool(12);
    desk.Drag(1000, 700, 1100, 800);
    EXPECT_TRUE(!desk.Machine.CommentIsOpen() && desk.IsDrawing() && !desk.View.Shape);
    desk.Machine.RunTool(12);
    desk.Drag(850, 700, 550, 500);  // from any corner
    ASSERT_TRUE(desk.Machine.CommentIsOpen()) << zoomed;
    EXPECT_EQ(desk.Machine.OpenCommentRequest()->Title, "Add a Comment for a segment...");
    EXPECT_TRUE(desk.Machine.OpenCommentRequest()->Choices.empty());
    desk.Machine.AddComment("", "Wet");
    desk.Machine.CommentClosed();
    for (int i = 0; i <= 3; ++i) EXPECT_EQ(desk.Line().Point(i).Comment, i == 1 || i == 2 ? "Wet" : "");
    EXPECT_TRUE(desk.IsDrawing() && desk.Last() == 3);
    desk.Machine.RunTool(12);
    desk.Drag(650, 500, 750, 700);
    desk.Machine.ClearComments();
    desk.Machine.AddComment("7", "");
    desk.Machine.CommentClosed();
    EXPECT_EQ(desk.Line().Point(1).Comment, "CODE7");
    EXPECT_EQ(desk.Line().Point(2).Comment, "Wet");
  }
}

TEST(ActionMachine, TheGeneralCommentIsTheCharts) {
  Desk desk;
  desk.Calibrated().OnSquare(11, 0);
  ASSERT_TRUE(desk.Machine.CommentIsOpen());
  EXPECT_EQ(desk.Machine.OpenCommentRequest()->Title, "Add a general Comment...");
  desk.Machine.AddComment("213", "");
  desk.Machine.AddComment("", "Torn");
  EXPECT_EQ(desk.State.Chart.GeneralComment, "CODE213::Torn");
  desk.Machine.ClearComments();
  EXPECT_EQ(desk.State.Chart.GeneralComment, "");
}

TEST(ActionMachine, ZoomsToTheDraggedAreaAndBack) {
  Desk desk;
  desk.Calibrated();
  const auto isWhole = [&] {
    const Session& s = desk.State;
    return !s.Zoomed && s.ViewX0 == 0 && s.ViewY0 == 0 && s.ScaleX == 3 && s.ScaleY == 3;
  };
  desk.Machine.RunTool(13);
  desk.Report(1000, 2000);
  desk.Report(1000, 2000, 0);
  EXPECT_EQ(desk.State.Action, 8.1F);
  desk.Report(2000, 1500, 0);
  ASSERT_TRUE(desk.View.Shape);
  EXPECT_DOUBLE_EQ(desk.View.Shape->Left, 3000);
  EXPECT_DOUBLE_EQ(desk.View.Shape->Top, 6000);
  EXPECT_DOUBLE_EQ(desk.View.Shape->Width, 3000);
  EXPECT_DOUBLE_EQ(desk.View.Shape->Height, 1500);
  desk.Machine.RunTool(13);  // ignored during the drag
  EXPECT_EQ(desk.State.Action, 8.1F);
  desk.Report(2000, 1500);
  EXPECT_TRUE(desk.State.Zoomed && desk.IsDrawing() && desk.View.ZoomOutPicture && desk.Last() == -1);
  EXPECT_FLOAT_EQ(desk.State.ViewX0, 1000);
  EXPECT_FLOAT_EQ(desk.State.ViewY0, 1500);
  EXPECT_FLOAT_EQ(desk.State.ScaleX, 12);
  EXPECT_FLOAT_EQ(desk.State.ScaleY, 24);
  desk.Machine.ViewResized(6000, 6000);
  EXPECT_FLOAT_EQ(desk.State.ScaleX, 6);
  desk.Machine.ViewResized(12000, 12000);
  EXPECT_EQ(GetToolText(13, true), "Zoom Out - return to normal display");
  desk.Machine.RunTool(13);
  EXPECT_TRUE(isWhole() && !desk.View.ZoomOutPicture);
  desk.Machine.RunTool(13);
  desk.Click(1000, 1000);  // no area
  EXPECT_TRUE(isWhole() && desk.IsDrawing());
  desk.Machine.AutoZoom();
  EXPECT_FLOAT_EQ(desk.State.ViewX0, 350);
  EXPECT_FLOAT_EQ(desk.State.ViewY0, -500);
  EXPECT_FLOAT_EQ(desk.State.ScaleX, 12000 / 3600.0F);
  EXPECT_EQ(desk.State.ScaleX, desk.State.ScaleY);
}

TEST(ActionMachine, TheBoardOpensClosesMovesAndTellsItsTools) {
  Desk desk;
  desk.Calibrated().OnSquare(10, 0);
  EXPECT_FALSE(desk.View.Board);
  desk.Report(3500, 3500);
  desk.Click(600, 600, 2);
  EXPECT_TRUE(desk.View.Board && desk.Last() == -1);
  desk.Click(600, 600, 2);
  EXPECT_FALSE(desk.View.Board);
  desk.Click(600, 600, 2);

  desk.OnSquare(7);
  EXPECT_EQ(desk.View.Instruction, "Delete last point");
  EXPECT_EQ(desk.View.Highlight, 7);
  desk.OnSquare(5, 0);  // an empty square
  EXPECT_TRUE(desk.State.CurrentTool == -1 && desk.IsDrawing() && desk.View.Instruction.empty());
  desk.OnSquare(5);

  const Rect before = desk.Machine.Layout.Board;
  const auto [x, y] = TabletPositionOfTool(desk.Machine.Layout, test::DeskTablet.Extents, 9);
  desk.OnSquare(9, 0);
  EXPECT_EQ(desk.State.Action, 6.0F);
  for (int i = 1; i <= 10; ++i) desk.Report(static_cast<int>(x) - 100 * i, static_cast<int>(y) - 50 * i, 0);
  EXPECT_NEAR(desk.Machine.Layout.Board.Left, before.Left - 3000, 10);
  EXPECT_NEAR(desk.Machine.Layout.Board.Top, before.Top + 1500, 10);
  desk.Report(600, 600);
  EXPECT_TRUE(desk.IsDrawing());

  desk.OnSquare(1, 0);
  EXPECT_TRUE(desk.View.Saves == 1 && !desk.View.Enabled);
  desk.Machine.RunTool(14);
  desk.Machine.RunTool(15);
  EXPECT_DOUBLE_EQ(desk.View.Factor, 0.9 * 1.1);
  desk.Machine.RunTool(0);
  EXPECT_EQ(desk.View.Closes, 1);
}

TEST(ActionMachine, ReadsTimeAndDepthUnderTheCursor) {
  Desk desk;
  desk.Click(500, 500);
  desk.Click(3500, 500);
  desk.Report(900, 900);
  EXPECT_EQ(desk.State.CursorTime, MakeDate(1998, 3, 5));
  EXPECT_EQ(desk.State.CursorDepth, 0);
  desk.Click(500, 500);
  desk.Report(740, 600);
  EXPECT_NEAR(desk.State.CursorTime, MakeDate(1998, 3, 6), 1e-6);  // ten units to the millimetre, times 24
  EXPECT_NEAR(desk.State.CursorDepth, 10, 1e-5);
  EXPECT_FALSE(desk.View.Pressed);
  desk.State.PageAngle = std::atan(0.75F);
  desk.Report(500 + 80 - 60, 500 + 60 + 80, 1);  // 100 along and 100 up
  EXPECT_NEAR(desk.State.CursorTime, MakeDate(1998, 3, 5, 10), 1e-6);
  EXPECT_NEAR(desk.State.CursorDepth, 10, 1e-4);
  EXPECT_TRUE(desk.View.Pressed);
  desk.State.PageAngle = 0;
  desk.OnSquare(5);  // on the board it is measured from the first point, and from the session's hour
  EXPECT_NEAR(desk.State.CursorTime, MakeDate(2024, 1, 1, 10) + (desk.State.CursorX - 500) / 240, 1e-6);
  EXPECT_NEAR(desk.State.CursorDepth, (desk.State.CursorY - 500) / 10, 1e-3);
}

}  // namespace
}  // namespace hyetex
