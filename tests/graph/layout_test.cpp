// Where all of a graph lies, as numbers, over a table of spans and sizes.
#include "graph/layout.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>

#include "core/dates.h"
#include "graph/draw.h"
#include "platform/cairo/pictures.h"
#include "surfaces.h"

namespace hyetex {
namespace {

Graph TimeGraph(double days, double highest) {
  Graph graph;
  graph.Title = "NM-Hill Farm-01, 05/03/1998 07:00:00 to 06/03/1998 07:00:00";
  graph.X = {"Time", AxisKind::Time, MakeDate(1998, 2, 25, 7, 10), MakeDate(1998, 2, 25, 7, 10) + days, 0};
  graph.Left = {"Accumulated depth, mm", AxisKind::Number, 0, highest, 0};
  graph.Right = GraphAxis{"Intensity, mm/h", AxisKind::Number, -highest, highest * 3, 0};
  GraphCurve curve{"Accumulated depth", {{{graph.X.From, 0}, {graph.X.To, highest}}}, {}, true};
  graph.Layers = {GraphBands{"Data gap", {{graph.X.From, graph.X.From + days / 9}}, {}},
                  GraphBars{"Intensity, steps of 15 min", {}, {}, true}, curve,
                  GraphMarks{"Comment", {}, Marker::Circle, {}}};
  for (const char* name : {"Gage 12.9 mm", "Eye 12.4 mm", "Trace 15.7 mm"})
    graph.Ends.push_back({name, highest, Marker::Circle, {}});
  return graph;
}

Graph NumberGraph(double from, double to) {
  Graph graph = TimeGraph(1, to - from);
  graph.X = {"Along the chart, mm", AxisKind::Number, from, to, 0};
  graph.Sections = {{from, (from + to) / 2, "Strip 1"}, {(from + to) / 2, to, "Strip 2"}};
  graph.Right.reset();
  graph.Ends.clear();
  return graph;
}

bool Overlap(const Rect& a, const Rect& b) {
  constexpr double touch = 0.01;
  return a.Left + touch < b.Right() && b.Left + touch < a.Right() && a.Top + touch < b.Bottom() &&
         b.Top + touch < a.Bottom();
}

// Texts keep clear of each other, of the plot and of the edges; those of notes stand in the plot.
void ExpectClear(const GraphLayout& layout, const Rect& area) {
  const auto inside = [&](const Rect& box) {
    return box.Left >= area.Left - 0.01 && box.Top >= area.Top - 0.01 && box.Right() <= area.Right() + 0.01 &&
           box.Bottom() <= area.Bottom() + 0.01;
  };
  for (std::size_t i = 0; i < layout.Texts.size(); ++i) {
    const PlacedText& text = layout.Texts[i];
    EXPECT_TRUE(inside(text.Box)) << text.Text << " leaves the surface";
    EXPECT_FALSE(layout.HasPlot && Overlap(text.Box, layout.Plot)) << text.Text << " lies in the plot";
    for (std::size_t j = 0; j < i; ++j)
      EXPECT_FALSE(Overlap(text.Box, layout.Texts[j].Box)) << text.Text << " on " << layout.Texts[j].Text;
    for (const PlacedSample& sample : layout.Legend) EXPECT_FALSE(Overlap(text.Box, sample.Box)) << text.Text;
  }
}

void ExpectClearAtAllSizes(const Surface& surface) {
  for (double fontPoints : {6.0, 10.0, 18.0, 40.0}) {
    for (double days : {1 / 48.0, 1 / 24.0, 0.3, 1.0, 2.0, 8.0, 31.0, 40.0, 400.0})
      for (double highest : {0.04, 7.0, 120.0, 99999.0}) {
        SCOPED_TRACE(::testing::PrintToString(std::tuple(surface.Area().Width, fontPoints, days, highest)));
        Graph graph = TimeGraph(days, highest);
        graph.FontPoints = fontPoints;
        ExpectClear(LayOut(graph, surface), surface.Area());
        graph.Zoom = {graph.X.From + days / 3, graph.X.From + days / 2, highest / 3, highest / 2};
        ExpectClear(LayOut(graph, surface), surface.Area());
      }
    for (const auto& [from, to] : {std::pair{-3.0, 400.0}, {4.0, 6.0}, {0.0, 123456.0}, {-0.001, 0.002}}) {
      SCOPED_TRACE(::testing::PrintToString(std::tuple(surface.Area().Width, fontPoints, from, to)));
      Graph graph = NumberGraph(from, to);
      graph.FontPoints = fontPoints;
      ExpectClear(LayOut(graph, surface), surface.Area());
    }
  }
}

TEST(GraphLayout, NoTextLiesOnAnotherOrLeavesTheSurface) {
  for (const auto& [width, height] : {std::pair{842.0, 595.0},
                                      {595.0, 842.0},
                                      {480.0, 300.0},
                                      {250.0, 180.0},
                                      {120.0, 90.0},
                                      {1600.0, 1000.0},
                                      {10.0, 10.0},
                                      {0.0, 0.0}})
    ExpectClearAtAllSizes(test::BlankSurface(width, height));
}

TEST(GraphLayout, NoTextOfARealFontLiesOnAnother) {
  for (const PageSize& page : {A4Landscape, A4Portrait, PageSize{400, 260}})
    ASSERT_TRUE(MakePicture(PictureFormat::Svg, page, 20, 72, [](Surface& surface) {
                  ExpectClearAtAllSizes(surface);
                }).has_value());
}

TEST(GraphLayout, OrdinaryChartsShowAllThatTheyHave) {
  for (const auto& [width, height] : {std::pair{842.0, 595.0}, {595.0, 842.0}, {640.0, 420.0}})
    for (double days : {1 / 24.0, 1.0, 8.0, 31.0}) {
      const GraphLayout layout = LayOut(TimeGraph(days, 30), test::BlankSurface(width, height));
      ASSERT_TRUE(layout.HasPlot);
      EXPECT_EQ(layout.Legend.size(), 4U);
      EXPECT_EQ(layout.Ends.size(), 3U);
      EXPECT_GT(layout.Plot.Width, width * 0.55);
      EXPECT_GT(layout.Plot.Height, height * 0.6);
      EXPECT_GE(layout.Grid.size(), 8U);
      EXPECT_GE(layout.Texts.size(), 20U);
    }
}

TEST(GraphLayout, TitleIsLoweredUntilItFitsAndCutOnlyThen) {
  Graph graph = TimeGraph(1, 10);
  const auto title = [&](double width) {
    return LayOut(graph, test::BlankSurface(width, 500)).Texts.front();
  };
  EXPECT_EQ(title(842).Text, graph.Title);
  EXPECT_TRUE(title(842).Style.Font.Bold);
  EXPECT_EQ(title(842).Style.Font.Size, 14);
  EXPECT_EQ(title(300).Text, graph.Title);
  EXPECT_LT(title(300).Style.Font.Size, 10);
  EXPECT_THAT(title(100).Text, ::testing::EndsWith("..."));
}

TEST(GraphLayout, MapsBothWaysZoomedAndNot) {
  Graph graph = TimeGraph(1, 10);
  const test::BlankSurface surface(640, 420);
  for (const bool zoomed : {false, true}) {
    if (zoomed) graph.Zoom = GraphWindow{graph.X.From + 0.25, graph.X.From + 0.5, 2, 7};
    const GraphLayout layout = LayOut(graph, surface);
    const GraphWindow view = ViewOf(graph);
    const Rect& plot = layout.Plot;
    EXPECT_EQ(layout.ToSurface({view.FromX, view.FromY}), (SurfacePoint{plot.Left, plot.Bottom()}));
    EXPECT_NEAR(layout.ToSurface({view.ToX, view.ToY}).X, plot.Right(), 1e-6);
    EXPECT_NEAR(layout.ToSurface({view.ToX, view.ToY}).Y, plot.Top, 1e-6);
    for (double share : {0.0, 0.123, 0.5, 1.0}) {
      const double x = plot.Left + share * plot.Width, y = plot.Top + share * plot.Height;
      const SurfacePoint back = layout.ToSurface(layout.ToData(x, y));
      EXPECT_NEAR(back.X, x, 1e-6);
      EXPECT_NEAR(back.Y, y, 1e-6);
    }
    // The right axis goes with the left one: here from -10 to 30 beside 0 to 10.
    EXPECT_NEAR(layout.Right->ToSurface(-10 + 4 * 5), layout.Left.ToSurface(5), 1e-6);
    const auto window = layout.WindowOf({plot.Left - 50, plot.Top - 50, 50 + plot.Width / 2, 5000});
    ASSERT_TRUE(window);
    EXPECT_EQ(window->FromX, view.FromX);
    EXPECT_NEAR(window->ToX, (view.FromX + view.ToX) / 2, 1e-9);
    EXPECT_NEAR(window->ToY, view.ToY, 1e-9);
    EXPECT_FALSE(layout.WindowOf({0, 0, plot.Left - 1, 400}));
  }
}

TEST(GraphZoom, StaysInTheGraphAndComesBackToTheWhole) {
  Graph graph = NumberGraph(0, 100);
  graph.X.LeastSpan = 10;
  const auto zoom = [&](double factor) { graph.Zoom = ZoomAround(graph, factor, 30, 50); };
  zoom(0.5);
  EXPECT_FALSE(graph.Zoom);
  zoom(2);
  EXPECT_EQ(*graph.Zoom, (GraphWindow{15, 65, 25, 75}));  // what is under the pointer stays there
  for (int i = 0; i < 20; ++i) zoom(2);
  EXPECT_NEAR(graph.Zoom->ToX - graph.Zoom->FromX, 10, 1e-9);
  EXPECT_NEAR((30 - graph.Zoom->FromX) / 10, 0.3, 0.35);
  for (int i = 0; i < 40 && graph.Zoom; ++i) {
    zoom(0.5);
    EXPECT_GE(ViewOf(graph).FromX, 0);
    EXPECT_LE(ViewOf(graph).ToX, 100);
  }
  EXPECT_FALSE(graph.Zoom);
  EXPECT_EQ(KeepInside(graph, {90, 110, -5, 15}), (GraphWindow{80, 100, 0, 20}));
  EXPECT_EQ(KeepInside(graph, {-50, 500, 20, 30}), (GraphWindow{0, 100, 20, 30}));
}

}  // namespace
}  // namespace hyetex
