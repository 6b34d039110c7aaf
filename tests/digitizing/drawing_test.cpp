#include "digitizing/drawing.h"

#include <gmock/gmock.h>

#include "core/comments.h"
#include "digitizing/desk.h"
#include "digitizing/view.h"
#include "surfaces.h"

namespace hyetex {
namespace {

using test::Desk;
using ::testing::ElementsAre;

// What was drawn, as text: "line x1,y1 x2,y2 colour width" in whole screen units.
struct Canvas : test::BlankSurface {
  void Clear() override { Drawn = {"clear"}; }
  void Line(double x1, double y1, double x2, double y2, Rgb colour, int width) override {
    Drawn.push_back("line " + At(x1, y1) + " " + At(x2, y2) + " " + Name(colour) +
                    (width > 0 ? " thick" : ""));
  }
  void Circle(double x, double y, double radius, Rgb colour) override {
    Drawn.push_back("circle " + At(x, y) + " " + std::to_string(std::lround(radius)) + " " + Name(colour));
  }
  static std::string At(double x, double y) {
    return std::to_string(std::lround(x)) + "," + std::to_string(std::lround(y));
  }
  static std::string Name(Rgb c) {
    for (const auto& [colour, name] : std::vector<std::pair<Rgb, const char*>>{{{0, 0, 0}, "black"},
                                                                               {{100, 100, 100}, "grey"},
                                                                               {{66, 66, 66}, "dark"},
                                                                               {{255, 0, 0}, "red"},
                                                                               {{0, 255, 0}, "green"},
                                                                               {{0, 0, 255}, "blue"},
                                                                               {{255, 0, 255}, "magenta"},
                                                                               {{255, 255, 0}, "yellow"}})
      if (c == colour) return name;
    return "?";
  }
  std::vector<std::string> Drawn;
};

// A tablet of 4000 x 4000 units shown at one screen unit each; the chart's band is 1000 units high.
struct Graph {
  Graph() {
    Table.Machine.Layout.ScaleWidth = Table.Machine.Layout.ScaleHeight = 3600;
    Table.Machine.Layout.ScaleX = Table.Machine.Layout.ScaleY = 1;
  }
  std::vector<std::string> Draw(bool points = false) {
    DrawGraph(Table.Line(), Table.Machine.Layout, {.ShowPoints = points}, Screen);
    return Screen.Drawn;
  }
  Trace& Line() { return Table.Traced.Line; }
  Desk Table;
  Canvas Screen;
};

TEST(Drawing, OutlinesOnlyPapersThatHaveCorners) {
  Graph graph;
  EXPECT_THAT(graph.Draw(), ElementsAre("clear"));
  graph.Line().SetPage(500, 100, 2500, 100);
  graph.Line().AttachPaper(500, 2000, 500,
                           3000);  // its bottom line stands upright, so its top lies to the left
  EXPECT_THAT(graph.Draw(), ElementsAre("clear", "line 500,3500 2500,3500 grey",
                                        "line 500,3500 500,2500 grey", "line 2500,3500 2500,2500 grey",
                                        "line 500,2500 2500,2500 grey", "line 500,1600 500,600 grey",
                                        "line 500,1600 -500,1600 grey", "line 500,600 -500,600 grey"))
      << "the last edge lies beside the view";
}

TEST(Drawing, SegmentsTakeTheColourOfTheirEnd) {
  Graph graph;
  const auto add = [&](double x, const char* comment, bool starts = false) {
    graph.Line().Add(x, 600, starts, comment);
  };
  add(0, "");
  add(100, "");
  add(200, "CODE205 + Clock malfunction");
  add(300, "CODE206");
  add(400, "CODE202");
  add(500, "Note::CODE203");
  add(600, "", true);
  add(700, "CODE203::CODE202::CODE206");
  EXPECT_THAT(graph.Draw(),
              ElementsAre("clear", "line 100,3000 200,3000 dark thick", "line 200,3000 300,3000 dark thick",
                          "line 300,3000 400,3000 dark thick", "line 400,3000 500,3000 dark thick",
                          "line 600,3000 700,3000 dark thick", "line 0,3000 100,3000 black",
                          "line 100,3000 200,3000 red thick", "line 200,3000 300,3000 green",
                          "line 300,3000 400,3000 magenta", "line 400,3000 500,3000 yellow thick",
                          "line 600,3000 700,3000 green"));
}

TEST(Drawing, CirclesGoByTheirOwnOrderOfCodes) {
  Graph graph;
  graph.Line().Add(0, 0);
  graph.Line().Add(0, 0, true);
  graph.Line().Add(0, 0, true, "CODE202");
  graph.Line().Add(0, 0, true, "CODE205::CODE206::CODE203");
  graph.Line().Add(0, 0, true, "CODE205::CODE203::CODE202");
  graph.Line().Add(0, 0, true, "CODE203::CODE202");
  std::vector<std::string> drawn = graph.Draw(true);
  EXPECT_EQ(std::erase(drawn, "circle 0,3600 25 dark"), 5U) << "all but the blue one are edged";
  EXPECT_THAT(drawn, ElementsAre("clear", "circle 0,3600 10 blue", "circle 0,3600 10 green",
                                 "circle 0,3600 10 magenta", "circle 0,3600 10 green", "circle 0,3600 10 red",
                                 "circle 0,3600 10 yellow"));
}

TEST(Drawing, ZoomMovesThePictureAndNoPoint) {
  Graph graph;
  graph.Line().Add(1000, 1000);
  graph.Line().Add(2000, 2000);
  graph.Table.Machine.Layout.ViewX0 = 500;
  graph.Table.Machine.Layout.ViewY0 = 1000;
  graph.Table.Machine.Layout.ScaleX = 2;
  EXPECT_THAT(graph.Draw(), ElementsAre("clear", "line 1000,3600 3000,2600 black"));
  EXPECT_EQ(graph.Line().Point(0).X, 1000);
}

// ---- The view

TEST(View, WidthFollowsHeightAndTheRuleComesToRest) {
  for (const TabletType& tablet : TabletTypes()) {
    for (ViewSize before : {ViewSize{900, 600}, ViewSize{333, 200}}) {
      for (ViewSize now : {ViewSize{before.Width, 501}, ViewSize{777, before.Height}, ViewSize{701, 455}}) {
        const ViewSize kept = KeepProportions(before, now, tablet.Extents);
        EXPECT_EQ(now.Height == before.Height ? kept.Width : kept.Height,
                  now.Height == before.Height ? now.Width : now.Height);
        EXPECT_EQ(KeepProportions(now, kept, tablet.Extents), kept) << kept.Width << " x " << kept.Height;
      }
    }
  }
  EXPECT_EQ(KeepProportions({}, {0, 610}, TabletTypes()[0].Extents).Width, 915);
}

TEST(View, BoardComesBackInside) {
  DeskLayout layout = DefaultDeskLayout(TabletTypes()[1].Extents);
  const Rect place = layout.Board;
  KeepBoardInside(layout);
  EXPECT_EQ(layout.Board.Left, place.Left);
  layout.Board.Left = 1e6;
  layout.Board.Top = -50;
  KeepBoardInside(layout);
  EXPECT_EQ(layout.Board.Left, layout.ScaleWidth - place.Width);
  EXPECT_EQ(layout.Board.Top, 0);
  layout.ScaleWidth = 100;  // no room at all: its top left corner is seen
  KeepBoardInside(layout);
  EXPECT_EQ(layout.Board.Left, 0);
}

TEST(View, WheelZoomKeepsWhatIsUnderTheCursorAndComesBackToTheWhole) {
  Graph graph;
  DeskLayout& layout = graph.Table.Machine.Layout;
  layout.ScaleWidth = layout.ScaleHeight = 4000;
  graph.Table.Calibrated().Tool(tool::Gap);
  const auto under = [&](double x, double y) {
    return std::pair(layout.ViewX0 + x / layout.ScaleX, layout.ViewY0 + (4000 - y) / layout.ScaleY);
  };
  const auto zoom = [&](double factor) {
    return ZoomAround(layout, test::DeskTablet.Extents, factor, 3000, 1500);
  };
  EXPECT_FALSE(zoom(0.5));
  EXPECT_FALSE(layout.Zoomed);
  const auto before = under(3000, 1500);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(zoom(1.5));
  EXPECT_TRUE(layout.Zoomed);
  EXPECT_NEAR(under(3000, 1500).first, before.first, 0.1);
  EXPECT_NEAR(under(3000, 1500).second, before.second, 0.1);
  EXPECT_EQ(graph.Table.State().Action, action::GapEnd);
  for (int i = 0; i < 50; ++i) EXPECT_TRUE(zoom(1.5));
  EXPECT_LE(layout.ScaleX, 51);
  int out = 0;
  while (zoom(0.5)) {
    ASSERT_LT(++out, 20);
    EXPECT_GE(layout.ViewX0, 0);
    EXPECT_LE(layout.ViewX0 + 4000 / layout.ScaleX, 4000.01);
  }
}

}  // namespace
}  // namespace hyetex
