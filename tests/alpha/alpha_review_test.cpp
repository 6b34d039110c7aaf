// Which rows are worked on, their average, and the graph of them.
#include "alpha/alpha_review.h"

#include <gmock/gmock.h>

#include "alpha/alpha_graph.h"
#include "core/dates.h"
#include "graph/layout.h"
#include "surfaces.h"

namespace hyetex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

AlphaChart Chart(Date start, float selected, std::vector<float> alphas) {
  AlphaChart chart;
  chart.Chart.StartTime = chart.ChartDate = start;
  chart.Chart.SelectedAlpha = selected;
  chart.Chart.AlphaValues[0] = 77;  // no value
  for (const float alpha : alphas)
    chart.Chart.AlphaValues[static_cast<std::size_t>(++chart.Chart.AlphaCount)] = alpha;
  return chart;
}

AlphaReview Review() {
  AlphaReview review;
  review.Show({.InstrumentCode = "RG12",
               .Charts = {Chart(MakeDate(1998, 3, 5, 7), NoAlpha, {0.004F, 0.005F}),
                          Chart(MakeDate(1998, 4, 5), 0, {}),
                          Chart(MakeDate(1999, 1, 5), 0.25F, {0.5F, 0.123456F, 1.5F}),
                          Chart(MakeDate(2001, 1, 5), NoAlpha, {9})}});
  return review;
}

TEST(AlphaReview, ShowsNoIndexZeroAndNoneForNone) {
  const AlphaReview review = Review();
  EXPECT_EQ(review.ColumnCount(), 6);
  std::vector<std::string> titles, cells;
  for (int column = 0; column < 6; ++column) {
    titles.push_back(AlphaReview::Title(column));
    for (int row = 0; row < 3; ++row) cells.push_back(review.Cell(row, column));
  }
  EXPECT_THAT(titles, ElementsAre("Instrument", "Date", "Sel. Alpha", "Alpha 1", "Alpha 2", "Alpha 3"));
  EXPECT_THAT(cells,
              ElementsAre("RG12", "RG12", "RG12", "05/03/1998 07:00:00", "05/04/1998", "05/01/1999", "None",
                          "0", "0.25", "0.004", "", "0.5", "0.005", "", "0.123456", "", "", "1.5"));
}

TEST(AlphaReview, AveragesTheBlockWithoutTheExcluded) {
  AlphaReview review = Review();
  const auto average = [&](std::optional<RowBlock> block) { return review.Average(review.WorkedOn(block)); };
  EXPECT_EQ(average({}), "1.85541");  // of 0.004 0.005 0.5 0.123456 1.5 9
  EXPECT_EQ(average(RowBlock{0, 0}), "0.0045");
  EXPECT_EQ(average(RowBlock{1, 1}), "") << "0 of nothing";
  EXPECT_EQ(average(RowBlock{0, 2}), "0.42649");
  EXPECT_EQ(average(RowBlock{-1, 2}), average({})) << "no block";
  review.Flip(3);
  review.Flip(0);
  EXPECT_EQ(average({}), "0.70782");
  EXPECT_EQ(average(RowBlock{3, 3}), "");
  review.Flip(0);
  EXPECT_EQ(average({}), "0.42649");
  EXPECT_EQ(review.Summary({}), "4 charts, 1 excluded; no block selected: all are worked on");
  EXPECT_EQ(review.Summary(RowBlock{1, 3}), "4 charts, 1 excluded; worked on: rows 2 to 4, 1 excluded");
  review.Show({.InstrumentCode = "RG12", .Charts = review.Charts()});
  EXPECT_EQ(review.ExcludedIn(review.WorkedOn({})), 0) << "loaded again";
  review.Show({});
  EXPECT_EQ(average({}), "");
  EXPECT_EQ(average(RowBlock{0, 0}), "") << "of a list that is gone";
}

TEST(AlphaReview, AsksWithAllThatTheWritingWouldTouch) {
  AlphaReview review = Review();
  EXPECT_EQ(review.WriteQuestion({2, 2}, {0.0}),
            "Write \"Alpha Value Selected: 0\" into 1 chart of RG12 in the database ?");
  review.Flip(1);
  review.Flip(2);
  AlphaList list{.InstrumentCode = "RG12", .Charts = review.Charts(), .Notes = {"Some are not listed."}};
  list.Charts[3].IsConverted = true;
  review.Show(list);
  review.Flip(1);
  review.Flip(2);
  EXPECT_EQ(review.WriteQuestion(review.WorkedOn({}), {}),
            "Write \"Alpha Value Selected: None\" into all 4 charts of RG12 in the database ?\n\n"
            "2 excluded charts are among them, and get it too.\n\n"
            "One of them was converted to time-depth data, and will need converting again.\n\nSome are not "
            "listed.");
}

const GraphMarks& Marks(const Graph& graph, std::size_t layer) {
  return std::get<GraphMarks>(graph.Layers.at(layer));
}

TEST(AlphaGraph, HasThePairsOfTheRowsOnAxesThatEndOnSteps) {
  AlphaReview review = Review();
  const Graph graph = MakeAlphaGraph(review, review.Drawn(RowBlock{1, 1}), {.Grid = false, .FontPoints = 99});
  EXPECT_EQ(graph.Title, "Alpha Values For RG12");
  EXPECT_FALSE(graph.Grid);
  EXPECT_EQ(graph.FontPoints, 24);
  ASSERT_THAT(graph.Layers, SizeIs(2));
  EXPECT_THAT(Marks(graph, 0).Points, SizeIs(6)) << "a single row draws all";
  EXPECT_THAT(Marks(graph, 1).Points,
              ElementsAre(GraphPoint{MakeDate(1998, 4, 5), 0}, GraphPoint{MakeDate(1999, 1, 5), 0.25}));
  EXPECT_NE(Marks(graph, 0).Shape, Marker(Marks(graph, 1).Shape));
  EXPECT_EQ(graph.Left.From, -1);
  EXPECT_EQ(graph.Left.To, 10);
  EXPECT_LT(graph.X.From, MakeDate(1998, 3, 5));
  EXPECT_GT(graph.X.To, MakeDate(2001, 1, 5));

  review.Flip(3);
  review.Flip(2);
  const Graph fewer = MakeAlphaGraph(review, review.Drawn({}), {});
  EXPECT_THAT(Marks(fewer, 0).Points, SizeIs(2));
  EXPECT_NEAR(fewer.Left.From, -0.0005, 1e-9);
  EXPECT_NEAR(fewer.Left.To, 0.0055, 1e-9);
  EXPECT_THAT(MakeAlphaGraph(review, {2, 3}, {}).Notes, ElementsAre("These charts have no alpha values."));
  const Graph none = MakeAlphaGraph({}, {}, {});
  EXPECT_THAT(none.Layers, IsEmpty());
  EXPECT_THAT(none.Notes, ElementsAre("This instrument has no charts."));
}

TEST(AlphaGraph, DrawsNoMoreThanItsPairsAndNothingThatIsNoDateOrNumber) {
  AlphaList list{.InstrumentCode = "RG12"};
  for (int i = 0; i < 400; ++i)
    list.Charts.push_back(Chart(MakeDate(1998, 1, 1) + i, 0.1F, std::vector<float>(15, 0.2F)));
  list.Charts.push_back(Chart(0, 5, {5}));
  AlphaReview review;
  review.Show(list);
  const Graph graph = MakeAlphaGraph(review, review.WorkedOn({}), {});
  EXPECT_EQ(Marks(graph, 0).Points.size() + Marks(graph, 1).Points.size(), 5001U);
  EXPECT_THAT(graph.Notes, ElementsAre("Not drawn, without a date: 1 chart",
                                       "Values not drawn, behind the first 5001: 1399"));
  list.Charts = {Chart(MakeDate(1998, 1, 1), NoAlpha, {1, 3e38F})};
  review.Show(list);
  EXPECT_THAT(MakeAlphaGraph(review, {0, 0}, {}).Notes, ElementsAre(HasSubstr("too large to draw")));
}

bool Overlap(const Rect& a, const Rect& b) {
  return a.Left + 0.01 < b.Right() && b.Left + 0.01 < a.Right() && a.Top + 0.01 < b.Bottom() &&
         b.Top + 0.01 < a.Bottom();
}

TEST(AlphaGraph, KeepsItsTextsApartOverAllSpansAndSizes) {
  for (const auto& [width, height] : {std::pair(200.0, 140.0), {480.0, 315.0}, {842.0, 595.0}})
    for (const double font : {4.0, 9.0, 24.0})
      for (const double days : {0.0, 3.0, 90.0, 700.0, 20000.0})
        for (const float alpha : {0.0F, 0.0043F, -0.2F, 3000.0F}) {
          SCOPED_TRACE(::testing::PrintToString(std::tuple(width, font, days, alpha)));
          AlphaReview review;
          review.Show({.InstrumentCode = "NM-Hill Farm of a long name-01",
                       .Charts = {Chart(MakeDate(1948, 2, 25), 0.0041F, {alpha}),
                                  Chart(MakeDate(1948, 2, 25) + days, NoAlpha, {0.0042F})}});
          const test::BlankSurface surface(width, height);
          const GraphLayout layout = LayOut(MakeAlphaGraph(review, {0, 1}, {.FontPoints = font}), surface);
          for (std::size_t i = 0; i < layout.Texts.size(); ++i) {
            const Rect& box = layout.Texts[i].Box;
            EXPECT_TRUE(box.Left >= 0 && box.Top >= 0 && box.Right() <= width && box.Bottom() <= height)
                << layout.Texts[i].Text;
            EXPECT_FALSE(layout.HasPlot && Overlap(box, layout.Plot)) << layout.Texts[i].Text;
            for (std::size_t j = 0; j < i; ++j)
              EXPECT_FALSE(Overlap(box, layout.Texts[j].Box))
                  << layout.Texts[i].Text << " on " << layout.Texts[j].Text;
          }
          EXPECT_TRUE(layout.HasPlot || font > 9);
        }
}

}  // namespace
}  // namespace hyetex
