#include "digitizing/action_machine.h"

#include <cmath>

#include "digitizing/desk.h"

namespace hyetex {
namespace {

using test::Desk;
using test::DeskTablet;
using test::Shown;

constexpr int EmptySquare = 5;

TEST(ActionMachine, TwoPressesCalibrateThePage) {
  Desk desk;
  desk.Click(400, 500, 2);  // the board's button is no press
  EXPECT_EQ(desk.IsShown(), (Shown{action::PageLeftCorner, "Setting the page angle",
                                   "Click the bottom left point of the page"}));
  EXPECT_EQ(desk.View.Background, LightBlue);
  desk.Click(500, 500).Click(500, 900);  // no line stands upright
  EXPECT_EQ(desk.View.Message, "");
  desk.Click(400, 800);  // nor does one run backwards
  EXPECT_NE(desk.View.Message.find("left of the bottom-left corner"), std::string::npos);
  EXPECT_EQ(desk.IsShown(), (Shown{action::PageRightCorner, "Setting the page angle",
                                   "Click the bottom-right Corner of the Page"}));
  EXPECT_TRUE(desk.View.Background == LightOrange && !desk.View.Board);
  desk.Click(3500, 800);
  EXPECT_TRUE(desk.IsDrawing() && desk.View.Background == LightGreen && desk.View.Board);
  EXPECT_FLOAT_EQ(desk.State().PageAngle, std::atan(0.1F));
  EXPECT_FLOAT_EQ(desk.Line().Paper(0).Angle, std::atan(0.1F));
}

TEST(ActionMachine, WaitingToolsSayWhatTheyWaitForAndAreTakenBack) {
  using Case = std::pair<int, Shown>;
  for (const auto& [tool, shown] :
       {Case(tool::Recovered, {action::RecoveredEnd, "Marking a recovered segment",
                               "Click at the point where the recovered segment ends"}),
        Case(tool::AttachPaper, {action::PaperLeftCorner, "Append a new paper",
                                 "Click the bottom-left corner of the new paper"}),
        Case(tool::NewSegment, {action::NewSegment, "Starting a new segment",
                                "Click the point that overlaps the last point drawn"}),
        Case(tool::SegmentComment, {action::LassoStart, "Add a Comment for a segment",
                                    "Select the segement to which you would like to add a Comment"}),
        Case(tool::Level, {action::Leveling, "Leveling a segment",
                           "The follwing point would be considered in the same height as the first one"}),
        Case(tool::Gap, {action::GapEnd, "Data Gap", "Choose the point where the data gap ends"}),
        Case(tool::Zoom,
             {action::ZoomStart, "Zooming", "Select the area which you would like to zoom on"})}) {
    Desk desk;
    desk.Calibrated().Click(600, 600).OnSquare(tool, 0);
    EXPECT_EQ(desk.IsShown(), shown);
    EXPECT_TRUE(desk.View.MarkedTool == tool && desk.View.Marker && desk.State().WaitForRelease);
    desk.Report(700, 700, 0);  // the press that chose the tool does nothing more
    desk.Click(700, 700, 2);   // nor does the board's button
    EXPECT_EQ(desk.IsShown(), shown);
    EXPECT_EQ(desk.Last(), 0);
    EXPECT_EQ(desk.Tool(tool).IsDrawing(), tool != tool::Zoom) << tool;
    desk.Tool(tool).Machine.Escape();
    EXPECT_TRUE(desk.IsDrawing()) << tool;
  }
  EXPECT_TRUE(Desk().Calibrated().Tool(tool::AttachPaper).IsDrawing());  // nothing to continue
}

TEST(ActionMachine, APressInsideTheBoxStoresOnePoint) {
  Desk desk;
  desk.Calibrated().Traced.Saved = true;
  desk.Report(600, 700, 0).Report(601, 701, 0).Report(900, 900, 1).Report(600, 700);  // held
  ASSERT_EQ(desk.Last(), 0);
  EXPECT_TRUE(desk.LastOne().X == 600 && !desk.Traced.Saved);
  for (const auto& [y, button] : {std::pair(2000, 0), std::pair(250, 1)}) {
    EXPECT_EQ(desk.Click(600, y, button).Last(), 0);
    EXPECT_NE(desk.View.Instruction.find("outside the chart and was not stored"), std::string::npos);
    EXPECT_EQ(desk.View.Message, "");
  }
  EXPECT_TRUE(desk.Click(700, 700).Last() == 1 && desk.IsDrawing());
}

TEST(ActionMachine, TheBandIsAsHighAsTheChartType) {
  for (const auto& [heightMm, band] : {std::pair(250.F, 2500), std::pair(0.F, 1000), std::pair(-1.F, 1000)}) {
    Desk desk(ChartMethod::Linear, 0, nullptr, heightMm);
    desk.Calibrated().Click(600, 500 + band * 12 / 10 + 1);
    EXPECT_EQ(desk.Last(), -1) << heightMm;
    desk.Click(600, 500 + band * 12 / 10).Click(610, 500 + band * 6 / 10);  // a fall of 0.6 of it
    EXPECT_EQ(desk.LastOne().Comment, "");
    desk.Click(620, 500 + band).Click(630, 499 + band * 4 / 10);
    EXPECT_EQ(desk.LastOne().Comment, "CODE202") << heightMm;
  }
}

TEST(ActionMachine, NothingLeavesThePageUnset) {
  const Shown left{action::PageLeftCorner, "Setting the page angle",
                   "Click the bottom left point of the page"};
  Desk desk;
  for (int i = 0; i < ToolCount; ++i)
    EXPECT_TRUE(i == tool::GeneralComment || desk.Tool(i).State().Action == action::PageLeftCorner) << i;
  EXPECT_FALSE(desk.State().AlphaNext);
  desk.Tool(tool::Gap);
  EXPECT_EQ(desk.View.Instruction, "The page comes first. Click the bottom left point of the page");
  desk.Click(700, 700).Tool(tool::Level).Machine.Escape();
  EXPECT_EQ(desk.IsShown(), left);
  EXPECT_EQ(desk.View.Background, LightBlue);
  EXPECT_TRUE(desk.Calibrated().Click(600, 600).Last() == 0 && desk.Line().Paper(0).BottomLeftX == 500);
}

TEST(ActionMachine, AWrongPageIsSetAgainUnderItsPoints) {
  Desk desk;
  desk.Click(500, 500).Click(3500, 1100).Click(600, 600).Click(900, 800);
  desk.Machine.SetPageAgain();
  desk.Click(500, 500).Machine.Escape();  // the old page stays
  EXPECT_TRUE(desk.IsDrawing() && desk.Line().Paper(0).BottomRightY == 1100);
  desk.Machine.SetPageAgain();
  EXPECT_TRUE(desk.Calibrated().IsDrawing() && desk.Last() == 1);
  EXPECT_NEAR(desk.Traced.TotalDepth(1), 2, 1e-6);  // 20 mm up
  EXPECT_NEAR(desk.Traced.PointTime(1), MakeDate(1998, 3, 5) + 60 / 24.0, 1e-9);

  desk.Tool(tool::AttachPaper).Click(500, 2500).Click(3500, 2900);
  desk.Machine.SetPageAgain();  // the strip, which still has no point
  desk.Click(500, 2500).Click(3500, 2500);
  EXPECT_EQ(desk.State().Action, action::PaperFirstPoint);
  desk.Click(600, 2600).Click(700, 2600);
  EXPECT_TRUE(desk.Line().CurrentPaper() == 1 && desk.Line().Paper(1).FirstPoint == 2);
  EXPECT_NEAR(desk.Traced.TotalDepth(3), 2, 1e-6);
}

TEST(ActionMachine, AnEndWithoutItsCommentIsTakenBack) {
  Desk desk;
  desk.Calibrated().Click(600, 600).Tool(tool::Gap).Click(700, 900).Machine.CommentClosed();
  EXPECT_TRUE(desk.Last() == 0 && desk.View.Enabled && desk.IsDrawing());
  desk.Tool(tool::Recovered).Click(700, 900).Comment("", "");
  EXPECT_EQ(desk.Last(), 0);
  desk.Tool(tool::Gap).Click(700, 900).Machine.AddComment("205", "");
  desk.Machine.ClearComments();
  desk.Machine.CommentClosed();
  EXPECT_EQ(desk.Last(), 0);
  desk.Tool(tool::Gap).Click(700, 900).Comment("205", "");
  desk.Tool(tool::SegmentComment).Drag(650, 800, 750, 1000).Machine.CommentClosed();
  EXPECT_EQ(desk.Last(), 1) << "nor is a point that was there before";
}

TEST(ActionMachine, AJumpBackOfATwentiethStartsASegment) {
  for (const auto& [x, marked] : {std::pair(1351, false), std::pair(1350, true), std::pair(1000, true)}) {
    Desk desk;
    desk.Calibrated().Click(1700, 600).Click(1500, 600);  // the second point may go back as far as it likes
    EXPECT_FALSE(desk.LastOne().StartsSegment());
    desk.Click(x, 700);
    EXPECT_TRUE(desk.LastOne().StartsSegment() == marked && desk.LastOne().TrueX() == x && desk.IsDrawing())
        << x;
  }
}

TEST(ActionMachine, ADeepFallIsAnAlphaPoint) {
  using Case = std::tuple<ChartMethod, int, const char*>;
  for (const auto& [method, fall, comment] :
       {Case(ChartMethod::Linear, 600, ""), Case(ChartMethod::Linear, 601, "CODE202"),
        Case(ChartMethod::NonLinear, 800, ""), Case(ChartMethod::NonLinear, 801, "CODE202"),
        Case(ChartMethod::TippingBucket, 601, "CODE202")}) {
    Desk desk(method, 12.5F);
    EXPECT_EQ(desk.Calibrated().Click(600, 1400).Click(610, 1400 - fall).LastOne().Comment, comment) << fall;
    desk.Click(620, 1400)
        .Tool(tool::NewSegment)
        .Click(620, 1400)
        .Click(630, 500);  // never measured from a segment's start
    EXPECT_EQ(desk.LastOne().Comment, "");
  }
}

TEST(ActionMachine, TheAlphaToolMarksTheNextPointDrawnAndNoOther) {
  Desk desk;
  desk.Calibrated().Tool(tool::Alpha);
  EXPECT_EQ(desk.IsShown(), (Shown{action::Drawing, "Toggling an alpha sign",
                                   "Click at the point where the instrument has finished cycling"}));
  EXPECT_EQ(desk.Click(600, 2000).Click(600, 600).LastOne().Comment, "CODE202");  // the first lies outside
  EXPECT_TRUE(desk.IsDrawing());
  EXPECT_EQ(desk.Click(650, 600).LastOne().Comment, "");
  EXPECT_TRUE(desk.Tool(tool::Alpha).Tool(tool::Alpha).IsDrawing() && !desk.State().AlphaNext);
  desk.Tool(tool::Alpha).Tool(tool::Level);
  EXPECT_EQ(desk.View.Title, "Leveling a segment");
  EXPECT_EQ(desk.Tool(tool::Level).View.Title, "Toggling an alpha sign") << "it still waits";
  EXPECT_EQ(desk.Tool(tool::Alpha).View.Title, "HYETEX 88");
  EXPECT_EQ(desk.Tool(tool::Alpha).Tool(tool::NewSegment).Click(660, 600).Click(670, 600).LastOne().Comment,
            "");
}

TEST(ActionMachine, AStripIsAttachedByTwoCornersAndItsFirstPoint) {
  Desk desk;
  desk.Calibrated().Click(600, 600).Click(800, 700).Tool(tool::AttachPaper);
  desk.Click(2900, 3400).Click(2900, 3600);  // a corner may lie under the board; none above the other
  EXPECT_EQ(desk.IsShown(), (Shown{action::PaperRightCorner, "Append a new paper",
                                   "Click the bottom-right corner of the new paper"}));
  EXPECT_EQ(desk.Line().CurrentPaper(), 0);
  desk.Click(3900, 3500);
  EXPECT_EQ(desk.IsShown(), (Shown{action::PaperFirstPoint, "Append a new paper",
                                   "Click the first point of the new paper and continue drawing normally"}));
  EXPECT_FLOAT_EQ(desk.State().PageAngle, std::atan(0.1F));
  EXPECT_TRUE(desk.Click(2600, 3600).IsDrawing() && desk.LastOne().StartsSegment());
  EXPECT_TRUE(desk.Line().PaperOfPoint(1) == 0 && desk.Line().PaperOfPoint(2) == 1);
  EXPECT_EQ(desk.Line().Paper(1).FirstPoint, 2);
}

TEST(ActionMachine, LevelsAndEndsOfGapsCarryTheirCodes) {
  Desk desk;
  desk.Calibrated().Click(600, 600).Tool(tool::Level).Click(700, 900);
  EXPECT_TRUE(desk.LastOne().Comment == "CODE203" && desk.IsDrawing() && desk.Traced.TotalDepth(1) == 0);
  const std::vector<std::string> reasons[] = {
      {"Pen did not record", "Clock malfunction", "Instrument did not cycle",
       "Instrument stopped after cycle", "Pen recorded on the metal strip"},
      {"Pen did not record", "Pen recorded on the metal strip"}};
  for (const bool gap : {true, false}) {
    desk.Tool(gap ? tool::Gap : tool::Recovered).Click(800, 900);
    ASSERT_TRUE(desk.Machine.CommentIsOpen() && !desk.View.Enabled);
    const CommentRequest request = *desk.Machine.OpenCommentRequest();
    EXPECT_EQ(request.Code, gap ? "205" : "206");
    EXPECT_EQ(request.Choices, reasons[gap ? 0 : 1]);
    const std::string_view thrownAway = "0900,0900,1\r\n0900,0900,1\r\n0900";
    desk.Machine.Receive({reinterpret_cast<const std::uint8_t*>(thrownAway.data()), thrownAway.size()});
    EXPECT_EQ(desk.State().CursorX, 800);
    EXPECT_EQ(desk.Comment(request.Code, "To\nrn").LastOne().Comment, "CODE" + request.Code + " + To rn");
    EXPECT_TRUE(desk.View.Enabled && desk.IsDrawing() && desk.Line().Point(1).Comment == "CODE203");
  }
  Desk first;  // the first point takes no comment, so none is asked for
  EXPECT_FALSE(first.Calibrated().Tool(tool::Gap).Click(600, 600).Machine.CommentIsOpen());
  EXPECT_TRUE(first.View.Enabled && first.Last() == 0);
}

TEST(ActionMachine, ErasingAndRedigitizingKeepThePage) {
  Desk desk;
  EXPECT_EQ(desk.Calibrated().Tool(tool::Erase).Last(), -1);
  desk.Click(600, 600).Click(700, 600).Click(800, 600).Tool(tool::NewSegment).Click(900, 600);
  EXPECT_EQ(desk.Tool(tool::Erase).Last(), 2);
  desk.Traced.Saved = true;
  EXPECT_TRUE(desk.Tool(tool::Redigitize).Last() == -1 && !desk.Traced.Saved);
  EXPECT_EQ(desk.Click(600, 600).Last(), 0);
}

TEST(ActionMachine, WhatCannotBeKeptIsToldAndChangesNothing) {
  Desk full;
  full.Calibrated();
  while (!full.Line().IsFull()) full.Traced.Line.Add(1000, 600);
  for (const int tool : {tool::Erase, tool::Recovered, tool::NewSegment, tool::Level, tool::Gap}) {
    if (tool == tool::Erase) full.Tool(tool::Erase).Click(1000, 600);
    full.View.Message.clear();
    if (tool != tool::Erase) full.Tool(tool);
    full.Click(1100, 600);
    EXPECT_EQ(full.View.Message,
              "The chart has 5001 points and can hold no more. Save it, or delete points, before you go on.");
    EXPECT_TRUE(full.Last() == MaxPoint && full.LastOne().X == 1000 && !full.Machine.CommentIsOpen());
  }
  Desk strips;
  strips.Calibrated().Click(600, 600);
  for (int i = 1; i <= 11; ++i)
    strips.Tool(tool::AttachPaper).Click(1000, 600).Click(2000, 600).Click(1000, 700);
  EXPECT_EQ(strips.View.Message, "No more than 10 strips can be attached to a chart.");
  EXPECT_EQ(strips.Line().CurrentPaper(), 10);

  Desk arc(ChartMethod::NonLinear, 40);  // its circle ends at 101.25 mm
  arc.Calibrated().Click(600, 600).Click(700, 1650);
  EXPECT_TRUE(arc.Last() == 0 && arc.View.Message.find("arc") != std::string::npos);
  EXPECT_TRUE(arc.Tool(tool::Level).Click(700, 3300).Last() == 0 && arc.State().Action == action::Leveling);
  EXPECT_EQ(arc.Click(700, 1500).Last(), 1);
}

TEST(ActionMachine, ALassoCommentsThePointsUnderIt) {
  for (const bool zoomed : {false, true}) {
    Desk desk;
    desk.Calibrated().Click(600, 600).Click(700, 600).Click(800, 600).Click(900, 600);
    if (zoomed) desk.Machine.AutoZoom();
    desk.Tool(tool::SegmentComment).Drag(1000, 700, 1100, 800);
    EXPECT_TRUE(!desk.Machine.CommentIsOpen() && desk.IsDrawing() && !desk.View.Shape);
    desk.Tool(tool::SegmentComment).Drag(550, 500, 650, 700);  // only the first point, which takes none
    EXPECT_FALSE(desk.Machine.CommentIsOpen());
    desk.Tool(tool::SegmentComment).Drag(850, 700, 550, 500);  // from any corner
    ASSERT_TRUE(desk.Machine.CommentIsOpen()) << zoomed;
    EXPECT_EQ(desk.Machine.OpenCommentRequest()->Title, "Add a Comment for a segment...");
    EXPECT_TRUE(desk.Machine.OpenCommentRequest()->Choices.empty());
    EXPECT_TRUE(desk.Comment("", "Wet").IsDrawing() && desk.Last() == 3);
    for (int i = 0; i <= 3; ++i) EXPECT_EQ(desk.Line().Point(i).Comment, i == 1 || i == 2 ? "Wet" : "");
    desk.Tool(tool::SegmentComment).Report(650, 500).Report(650, 500, 0);
    desk.Machine.Layout.Board = {desk.Machine.Layout.ScreenX(750) - 100,
                                 desk.Machine.Layout.ScreenY(700) - 100, 900, 900};
    EXPECT_FALSE(desk.Report(750, 700, 0).State().OverToolBox) << "dragged over the board";
    desk.Report(750, 700).Machine.ClearComments();
    EXPECT_EQ(desk.Comment("7", "").Line().Point(1).Comment, "CODE7");
    EXPECT_EQ(desk.Line().Point(2).Comment, "Wet");
  }
}

TEST(ActionMachine, ZoomsToTheDraggedAreaAndBack) {
  Desk desk;
  const auto view = [&] {
    const DeskLayout& s = desk.Machine.Layout;
    return std::vector<double>{s.ViewX0, s.ViewY0, s.ScaleX, s.ScaleY};
  };
  const std::vector<double> whole{0, 0, 3, 3};
  desk.Calibrated().Tool(tool::Zoom).Report(1000, 2000).Report(1000, 2000, 0).Report(2000, 1500, 0);
  ASSERT_TRUE(desk.View.Shape);
  const Rect& shape = *desk.View.Shape;
  EXPECT_EQ(std::tuple(shape.Left, shape.Top, shape.Width, shape.Height), std::tuple(3000, 6000, 3000, 1500));
  EXPECT_EQ(desk.Tool(tool::Zoom).State().Action, action::ZoomDrag);  // ignored during the drag
  EXPECT_TRUE(desk.Report(2000, 1500).IsDrawing() && desk.View.ZoomOutPicture && desk.Last() == -1);
  EXPECT_EQ(view(), (std::vector<double>{1000, 1500, 12, 24}));
  desk.Machine.ViewResized(6000, 6000);
  EXPECT_EQ(view(), (std::vector<double>{1000, 1500, 6, 12}));
  desk.Machine.ViewResized(12000, 12000);
  EXPECT_EQ(GetToolText(tool::Zoom, true), "Zoom Out - return to normal display");
  EXPECT_TRUE(!desk.Tool(tool::Zoom).View.ZoomOutPicture && view() == whole);
  EXPECT_TRUE(desk.Tool(tool::Zoom).Click(1000, 1000).IsDrawing() && view() == whole);  // no area
  EXPECT_TRUE(desk.Tool(tool::Zoom).Drag(1000, 1000, 2000, 1000).IsDrawing() && view() == whole);
  desk.Tool(tool::Zoom);
  ZoomAround(desk.Machine.Layout, DeskTablet.Extents, 2, 0,
             0);  // by the wheel, to 0 to 2000 and 2000 to 4000
  desk.Drag(500, 3500, 1500, 2500);
  EXPECT_EQ(view(), (std::vector<double>{500, 2500, 12, 12}));
  desk.Tool(tool::Zoom).Tool(tool::Zoom).Drag(2000, 2000, 2001, 2001);  // a hand that shook
  EXPECT_EQ(view(), (std::vector<double>{1960.5F, 1960.5F, 150, 150}));
  desk.Tool(tool::Zoom);
  desk.Machine.AutoZoom();
  EXPECT_EQ(view(), (std::vector<double>{350, -500, 12000 / 3600.0F, 12000 / 3600.0F}));
}

TEST(ActionMachine, ShowsTheWholeOfAnyPage) {
  const ChartScales scales = Desk().Line().Scales();
  ChartPaper pages[] = {
      {500, 500, 3500, 500}, {500, 500, 800, 500}, {3000, 2900, 3100, 2950}, {400, 3000, 2400, 1000}};
  for (const ChartPaper& page : pages)
    for (const double wide : {12000.0, 30000.0}) {
      DeskLayout view = DefaultDeskLayout(DeskTablet.Extents, 12000);
      view.ScaleWidth = wide;
      ShowPaper(view, scales, page);
      EXPECT_EQ(view.ScaleX, view.ScaleY);
      const double across = page.BottomRightX - page.BottomLeftX, up = page.BottomRightY - page.BottomLeftY;
      const double high = scales.HeightUnits() / std::hypot(across, up);
      for (const double along : {0.0, 1.0})
        for (const double height : {0.0, high}) {
          const double x = view.ScreenX(page.BottomLeftX + along * across - height * up);
          const double y = view.ScreenY(page.BottomLeftY + along * up + height * across);
          EXPECT_TRUE(x >= 0 && x <= view.ScaleWidth && y >= 0 && y <= view.ScaleHeight)
              << page.BottomLeftX << " " << wide << " at " << x << " " << y;
        }
      EXPECT_GT(std::max(std::hypot(across, up), scales.HeightUnits()) * view.ScaleX, 12000 * 0.5) << "large";
    }
}

TEST(ActionMachine, TheBoardOpensClosesMovesAndTellsItsTools) {
  Desk desk;
  EXPECT_FALSE(desk.Calibrated().OnSquare(tool::CloseBoard, 0).View.Board);
  EXPECT_TRUE(desk.Click(600, 600, 2).View.Board && desk.Last() == -1);
  EXPECT_FALSE(desk.Click(600, 600, 2).View.Board);
  EXPECT_EQ(desk.Click(600, 600, 2).OnSquare(tool::Erase).View.Instruction, "Delete last point");
  EXPECT_EQ(desk.View.Highlight, tool::Erase);
  EXPECT_TRUE(desk.OnSquare(EmptySquare, 0).IsDrawing() &&
              desk.State().CurrentTool == tool::None);  // an empty square

  const Rect before = desk.OnSquare(EmptySquare).Machine.Layout.Board;
  desk.OnSquare(tool::MoveBoard, 0);
  const int x = static_cast<int>(desk.State().CursorX), y = static_cast<int>(desk.State().CursorY);
  for (int i = 1; i <= 10; ++i) desk.Report(x - 100 * i, y - 50 * i, 0);
  EXPECT_NEAR(desk.Machine.Layout.Board.Left, before.Left - 3000, 10);
  EXPECT_NEAR(desk.Machine.Layout.Board.Top, before.Top + 1500, 10);
  EXPECT_EQ(desk.View.Title, "Moving the tool box");
  EXPECT_TRUE(desk.Report(600, 600).IsDrawing());
  for (const auto& [dx, dy] : {std::pair(-100, 0), std::pair(0, -100)}) {
    desk.OnSquare(EmptySquare).OnSquare(tool::MoveBoard, 0);
    const int fromX = static_cast<int>(desk.State().CursorX), fromY = static_cast<int>(desk.State().CursorY);
    for (int i = 1; i <= 40; ++i) desk.Report(fromX + dx * i, fromY + dy * i, 0);
    desk.Report(3900, 3900);
  }
  const DeskLayout& layout = desk.Machine.Layout;
  EXPECT_EQ(std::pair(layout.Board.Left, layout.Board.Top),
            std::pair(0.0, layout.ScaleHeight - layout.Board.Height));
  desk.OnSquare(tool::Erase);
  EXPECT_EQ(desk.Report(3900, 3900).View.Instruction, "") << "a tool's text stays on the board";

  EXPECT_TRUE(desk.OnSquare(tool::SaveFile, 0).View.Saves == 1 && !desk.View.Enabled);
  EXPECT_DOUBLE_EQ(desk.Tool(tool::Shrink).Tool(tool::Grow).View.Factor, 0.9 * 1.1);
  EXPECT_EQ(desk.Tool(tool::NewFile).View.Closes, 1);
  ASSERT_TRUE(desk.Tool(tool::GeneralComment).Machine.CommentIsOpen());
  EXPECT_EQ(desk.Machine.OpenCommentRequest()->Title, "Add a general Comment...");
  desk.Machine.AddComment("213", "");
  EXPECT_EQ(desk.Comment("", "Torn").Traced.Chart.GeneralComment, "CODE213::Torn");
}

TEST(ActionMachine, ReadsTimeAndDepthOfTheChartUnderTheCursor) {
  const Date start = MakeDate(1998, 3, 5);
  for (const ChartMethod method : {ChartMethod::Linear, ChartMethod::NonLinear, ChartMethod::TippingBucket}) {
    Desk desk(method, 10);
    desk.Click(500, 500).Report(700, 600);
    EXPECT_FALSE(desk.State().Reading) << "there is no page";
    desk.Click(3500, 800).Report(900, 900);
    ASSERT_TRUE(desk.State().Reading);
    EXPECT_EQ(desk.State().Reading->Time, start);  // where the first point will be
    EXPECT_FALSE(desk.Report(900, 3000).State().Reading) << "there is no paper";
    desk.Click(600, 600).Click(700, 900);
    for (const auto& [x, y] : {std::pair(900, 1200), std::pair(950, 800), std::pair(1000, 1300)}) {
      const CursorReading read = *desk.Report(x, y, -1).State().Reading;
      desk.Click(x, y);
      EXPECT_DOUBLE_EQ(read.Time, desk.Traced.PointTime(desk.Last()));
      EXPECT_EQ(read.Depth.has_value(), method != ChartMethod::TippingBucket);
      EXPECT_FLOAT_EQ(read.Depth.value_or(0), desk.Traced.TotalDepth(desk.Last())) << y;
    }
    const CursorReading last = *desk.State().Reading;
    desk.Tool(tool::AttachPaper);
    EXPECT_FALSE(desk.Report(900, 900).State().Reading);
    desk.Click(500, 2500).Click(3500, 2500).Report(900, 3000);
    EXPECT_EQ(desk.State().Reading->Time, last.Time);
    EXPECT_EQ(desk.State().Reading->Depth, last.Depth);
  }
}

}  // namespace
}  // namespace hyetex
