// The two drawn views of a chart: what they show of it, where, and what the pointer reads there.
#include <cairo/cairo.h>
#include <gmock/gmock.h>

#include <cmath>

#include "core/dates.h"
#include "editor/chart_read_out.h"
#include "editor/chart_views.h"
#include "editor/intensity.h"
#include "graph/draw.h"
#include "platform/cairo/pictures.h"
#include "surfaces.h"

namespace hyetex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

// Ten hours from 5 March 1998, 20:00, over 100 mm of paper; 10 mm of rain of 100 mm of height.
ChartReading Read(const std::string& points, const std::string& depths =
                                                 "Eyed Depth: 9\r\nDigitized Depth: 10\r\n"
                                                 "Selected Depth: 10\r\nManual Depth: -1\r\n") {
  ChartReading reading;
  ReadChartText(
      "HYETEX88 ASCII FILE\r\nInstrument Code: RG1\r\nChart Method: 0 - Linear\r\n"
      "Start: 05/03/98 20:00\r\nEnd: 06/03/98 06:00\r\n" +
          depths + "Digitation Points:\r\n" + points + "Alpha Value Selected: None\r\n",
      "", {}, reading);
  return reading;
}
const char* const AllKinds =
    "0,0,\r\n20,0,\r\n30,40,\r\n40,40,CODE203\r\n50,40,CODE205 + Clock malfunction\r\n"
    "60,60,CODE206\r\n61,0,CODE202\r\n70,70,CODE201\r\n100,100,Ink is thin\r\n";

std::vector<std::string> Names(const Graph& graph) {
  std::vector<std::string> names;
  for (const GraphLayer& layer : graph.Layers)
    names.push_back(std::visit([](const auto& one) { return one.Name; }, layer));
  return names;
}

template <typename Layer>
const Layer& Find(const Graph& graph, const std::string& name) {
  for (const GraphLayer& layer : graph.Layers)
    if (const auto* one = std::get_if<Layer>(&layer); one && one->Name == name) return *one;
  ADD_FAILURE() << "there is no " << name;
  static const Layer none{};
  return none;
}

constexpr ChartViewOptions Trace{.Kind = ChartViewKind::Digitization};
constexpr ChartViewOptions Series{.Kind = ChartViewKind::TimeDepth, .HyetographMinutes = 60};

TEST(ChartViews, TellAllKindsOfStepsApart) {
  const ChartReading reading = Read(AllKinds);
  const Graph trace = MakeChartGraph(reading, Trace);
  EXPECT_THAT(Names(trace), ElementsAre("Trace", "Level", "Recovered", "Data gap", "", "New segment",
                                        "Alpha point", "Comment"));
  const auto& line = Find<GraphCurve>(trace, "Trace");
  EXPECT_THAT(line.Pieces, ElementsAre(ElementsAre(GraphPoint{0, 0}, GraphPoint{20, 0}, GraphPoint{30, 40}),
                                       ElementsAre(GraphPoint{70, 70}, GraphPoint{100, 100})));
  EXPECT_THAT(Find<GraphCurve>(trace, "Data gap").Pieces,
              ElementsAre(ElementsAre(GraphPoint{40, 40}, GraphPoint{50, 40})));
  EXPECT_THAT(Find<GraphMarks>(trace, "Comment").Points,
              ElementsAre(GraphPoint{50, 40}, GraphPoint{100, 100}));

  const Graph series = MakeChartGraph(reading, Series);
  EXPECT_THAT(Names(series), ElementsAre("Data gap", "Intensity, steps of 60 min", "Accumulated depth",
                                         "Recovered", "", "Comment"));
  const auto& gap = Find<GraphBands>(series, "Data gap").Spans;
  ASSERT_EQ(gap.size(), 1U);
  EXPECT_EQ(gap[0].From, reading.SeriesPoints[4].Time);
  EXPECT_EQ(gap[0].To, reading.SeriesPoints[5].Time);
  EXPECT_FALSE(MakeChartGraph(reading, {.Kind = ChartViewKind::TimeDepth}).Right.has_value());
}

TEST(ChartViews, UnknownDepthsAppearNowhere) {
  const auto ends = [](const Graph& graph) {
    std::vector<std::string> names;
    for (const GraphEndMark& end : graph.Ends) names.push_back(end.Name);
    return names;
  };
  const char* points = "0,0,\r\n50,20,\r\n100,100,\r\n";
  EXPECT_THAT(ends(MakeChartGraph(Read(points), Series)), ElementsAre("Eye 9 mm", "Trace 10 mm"));
  EXPECT_THAT(ends(MakeChartGraph(
                  Read(points, "Eyed Depth: -1\r\nDigitized Depth: 10\r\nManual Depth: 0\r\n"), Series)),
              ElementsAre("Gage 0 mm", "Trace 10 mm"));
  const ChartReading unknown = Read(points,
                                    "Eyed Depth: 3\r\nDigitized Depth: -1\r\nSelected Depth: -1\r\n"
                                    "Manual Depth: -1\r\n");
  const Graph graph = MakeChartGraph(unknown, Series);
  EXPECT_THAT(graph.Layers, IsEmpty());
  EXPECT_THAT(graph.Notes, ElementsAre("The chart's depth is unknown."));
  const ChartReadOut readOut(unknown, ChartViewKind::Digitization);
  const GraphLayout layout = LayOut(MakeChartGraph(unknown, Trace), test::BlankSurface(640, 420));
  EXPECT_THAT(readOut.At(layout, 300, 200), Not(HasSubstr(" mm/h")));
}

TEST(ChartViews, SayWhatIsMissing) {
  const char* defective = "0,0,\r\nGeneral Comment: CODE213\r\n";
  const struct {
    ChartReading Reading;
    const char *Trace, *Series;  // the words in place of the graph; none for a graph
  } cases[] = {{Read(""), "no points", "no points"},
               {Read(defective), "not digitized", "not digitized"},
               {Read("0,5,\r\n0,9,\r\n"), nullptr, "no series"},
               {Read("5,5,CODE201\r\n"), nullptr, "no series"},
               {Read("1e300,1,\r\n-1e308,2,\r\n"), "too large", "no series"}};
  for (const auto& c : cases)
    for (const auto& [options, words] : {std::pair{Trace, c.Trace}, {Series, c.Series}}) {
      const Graph graph = MakeChartGraph(c.Reading, options);
      if (words != nullptr) {
        EXPECT_THAT(graph.Layers, IsEmpty());
        ASSERT_EQ(graph.Notes.size(), 1U);
        EXPECT_THAT(graph.Notes[0], HasSubstr(words));
      }
      EXPECT_THAT(graph.Title, HasSubstr("RG1, 05/03/1998 20:00:00 to 06/03/1998 06:00:00"));
      test::BlankSurface surface(640, 420);
      Draw(graph, surface);
    }
  EXPECT_THAT(MakeChartGraph(Read("0,0,\r\n9,0,\r\n", "Manual Depth: 0\r\n"), Series).Notes,
              ElementsAre("The chart's depth is 0 mm."));
}

TEST(ChartViews, StripsFollowEachOtherWithTheirOwnOrigins) {
  const ChartReading reading =
      Read("5,0,\r\n100,30,\r\n98,31,\r\n12,40,CODE204\r\n11,41,\r\n60,50,\r\n-1,70,CODE204\r\n20,80,\r\n");
  const PlacedTrace placed = PlaceTrace(reading.RawPoints);
  // The second begins behind all of the first, though the pen had gone back, and its own pen goes back too.
  EXPECT_THAT(placed.X, ElementsAre(0, 5, 100, 98, 101, 100, 149, 149, 170));
  const Graph graph = MakeChartGraph(reading, Trace);
  ASSERT_EQ(graph.Sections.size(), 3U);
  EXPECT_EQ(graph.Sections[1].From, 100);
  EXPECT_EQ(graph.Sections[2].From, 149);
  EXPECT_EQ(graph.Sections[2].Name, "Strip 3");
  const GraphLayout layout = LayOut(graph, test::BlankSurface(640, 420));
  EXPECT_EQ(layout.Boundaries.size(), 2U);
  EXPECT_THAT(ChartReadOut(reading, ChartViewKind::Digitization)
                  .At(layout, layout.X.ToSurface(149 + 10), layout.Left.ToSurface(75)),
              HasSubstr("strip 3: 9 mm along, 75 mm high"));
}

TEST(ChartViews, IntensitiesAreMeansOfStepsCountedFromMidnight) {
  const Date start = MakeDate(1998, 3, 5, 20, 10);
  const std::vector<SeriesPoint> series{{start, 0, {}},
                                        {start + 20 / 1440.0, 2, {}},
                                        {start + 110 / 1440.0, 5, {}},
                                        {start + 200 / 1440.0, 5, {}}};
  double minutes = 30;
  const auto bars = IntensityBars(series, minutes);
  ASSERT_EQ(bars.size(), 4U);  // those without rain are left out
  EXPECT_EQ(bars[0].From, start);
  EXPECT_NEAR(bars[0].Value, 6, 1e-4);  // of its 20 minutes
  EXPECT_NEAR(bars[1].Value, 2, 1e-4);
  EXPECT_NEAR((bars[1].To - bars[1].From) * 1440, 30, 1e-6);
  double sum = 0;
  for (const GraphBar& bar : bars) sum += bar.Value * (bar.To - bar.From) * 24;
  EXPECT_NEAR(sum, 5, 1e-5);
  minutes = 0.001;
  EXPECT_LE(IntensityBars(series, minutes).size(), 20001U);
  EXPECT_NEAR(minutes, 0.01, 1e-6);
}

TEST(ChartReadOut, TellsTheSameInBothViews) {
  const ChartReading reading = Read(AllKinds);
  const auto at = [&](const ChartViewOptions& options, double x, double y) {
    const GraphLayout layout = LayOut(MakeChartGraph(reading, options), test::BlankSurface(640, 420));
    return ChartReadOut(reading, options.Kind).At(layout, layout.X.ToSurface(x), layout.Left.ToSurface(y));
  };
  // The trace counts 90 mm in time and 90 mm in height; from 20 to 30 mm it rises by 40.
  const Date begin = reading.SeriesPoints[2].Time, end = reading.SeriesPoints[3].Time;
  EXPECT_THAT(at(Trace, 25, 20),
              testing::StartsWith("05/03/1998 22:46:40    2.22 mm    4 mm/h    25 mm along, "
                                  "20 mm high"));
  EXPECT_EQ(at(Series, (begin + end) / 2, 5), "05/03/1998 22:46:40    2.22 mm    4 mm/h");
  EXPECT_THAT(at(Trace, 50, 40), HasSubstr("Point 5: End of data gap: Clock malfunction (CODE205)"));
  EXPECT_THAT(at(Trace, 46, 41), HasSubstr("data gap"));
  EXPECT_EQ(at(Trace, -50, 20), "");
  EXPECT_EQ(at(Series, begin, -99), "");
  EXPECT_EQ(CommentInWords("CODE301 + Hail::CODE203::Caf\xE9"),
            "CODE301 + Hail; Leveled point (CODE203); Café");
}

// ---- Pictures

struct Picture {
  explicit Picture(const std::string& png) {
    struct Bytes {
      const std::string& All;
      std::size_t At;
    } bytes{png, 0};
    Surface = cairo_image_surface_create_from_png_stream(
        [](void* from, unsigned char* to, unsigned length) {
          auto& rest = *static_cast<Bytes*>(from);
          if (rest.At + length > rest.All.size()) return CAIRO_STATUS_READ_ERROR;
          std::copy_n(rest.All.begin() + static_cast<std::ptrdiff_t>(rest.At), length, to);
          rest.At += length;
          return CAIRO_STATUS_SUCCESS;
        },
        &bytes);
  }
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;
  ~Picture() { cairo_surface_destroy(Surface); }
  int Width() const { return cairo_image_surface_get_width(Surface); }
  int Height() const { return cairo_image_surface_get_height(Surface); }
  Rgb At(double x, double y) const {
    const unsigned char* row = cairo_image_surface_get_data(Surface) +
                               std::lround(std::floor(y)) * cairo_image_surface_get_stride(Surface);
    const unsigned char* pixel = row + 4 * std::lround(std::floor(x));
    return {pixel[2], pixel[1], pixel[0]};
  }
  cairo_surface_t* Surface;
};

bool IsNear(Rgb a, Rgb b) {
  return std::abs(a.Red - b.Red) + std::abs(a.Green - b.Green) + std::abs(a.Blue - b.Blue) < 60;
}

TEST(ChartPicture, HasItsColoursWhereTheNumbersSay) {
  using namespace graph_colour;
  constexpr double scale = 2, margin = 20;
  for (const PageSize& page : {A4Landscape, A4Portrait})
    for (const bool zoomed : {false, true}) {
      const ChartReading reading = Read(AllKinds);
      ChartViewOptions options = Series;
      if (zoomed)
        options.Zoom = GraphWindow{reading.SeriesPoints[1].Time, reading.SeriesPoints[6].Time, 1, 8};
      const Graph graph = MakeChartGraph(reading, options);
      GraphLayout layout;
      const auto png = MakePicture(PictureFormat::Png, page, margin, 72 * scale, [&](Surface& surface) {
        layout = LayOut(graph, surface);
        Draw(graph, layout, surface);
      });
      ASSERT_TRUE(png.has_value());
      const Picture picture(*png);
      ASSERT_EQ(picture.Width(), page.Width * scale);
      ASSERT_EQ(picture.Height(), page.Height * scale);
      const auto at = [&](Date time, double depth) {
        const SurfacePoint point = layout.ToSurface({time, depth});
        return picture.At(point.X * scale, point.Y * scale);
      };
      const std::vector<SeriesPoint>& series = reading.SeriesPoints;
      const auto middle = [&](std::size_t i) { return (series[i - 1].Time + series[i].Time) / 2; };
      EXPECT_TRUE(IsNear(at(middle(3), (series[2].Depth + series[3].Depth) / 2), Blue));
      const Rgb gap = at(middle(5) + 0.001, 7.3);
      EXPECT_TRUE(gap.Red > 230 && gap.Blue < 220) << gap.Red << " " << gap.Green << " " << gap.Blue;
      EXPECT_TRUE(IsNear(
          at(MakeDate(1998, 3, 5, 22, 47), layout.Left.From + 0.01 * (layout.Left.To - layout.Left.From)),
          Sky));
      EXPECT_EQ(at(MakeDate(1998, 3, 5, 22, 20), 7.3), (Rgb{255, 255, 255}));
      EXPECT_EQ(picture.At(3, 3), (Rgb{255, 255, 255}));
      // The day mark is at midnight, when the trace is between its fourth and fifth point.
      const Rgb day = at(MakeDate(1998, 3, 6), 7.3);
      EXPECT_TRUE(day.Red > day.Green + 20 && day.Blue > day.Green + 20);
    }
}

TEST(ChartPicture, IsRefusedWhereThePageHasNoSize) {
  for (const PageSize& page : {PageSize{0, 10}, PageSize{1e9, 10}, PageSize{NAN, 10}})
    for (const auto format : {PictureFormat::Png, PictureFormat::Pdf, PictureFormat::Svg})
      EXPECT_FALSE(MakePicture(format, page, 0, 150, [](Surface&) {}).has_value());
}

}  // namespace
}  // namespace hyetex
