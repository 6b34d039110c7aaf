// The page on the numbers, computed from its own words: nothing here asks the program how it computes, only
// what came out.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "cli/run.h"
#include "core/comments.h"
#include "database/access/names.h"
#include "database/access/schema.h"
#include "digitizing/tablets.h"
#include "docs/document.h"

namespace hyetex {
namespace {

using test::Document;
using test::LinesOf;
using test::ReadFile;
using test::RunCli;
using test::TempFolder;

constexpr const char* Page = "docs/numbers.md";
constexpr const char* ChartName = "NM-Hill Farm-01-19980305-0700.dat";

template <typename... Values>
std::string Print(const char* form, Values... values) {
  std::array<char, 200> text;
  return {text.data(), static_cast<std::size_t>(std::snprintf(text.data(), text.size(), form, values...))};
}

struct Place {
  double X = 0, Y = 0;
  bool StartsSegment = false;
  int Code = 0;
};

// The chart by hand. Tablet 1, and a chart type of 0.125 mm of rain and 0.0621118 hours a mm.
struct ByHand {
  double W = 458.0 / 9145, H = 350.0 / 6100, L = 0;
  std::vector<Place> Presses;  // the points alone
  Place Left, Right;
  std::vector<Place> Points;  // of the file, mm
  double Rises = 0, Steps = 0;
  float A = 0, B = 0;  // at the last moment
  struct Moment {
    double Seconds = 0;  // from the midnight before the chart, local time
    float Depth = 0;
  };
  std::vector<Moment> Series;

  double Along(const Place& p) const {
    return ((Right.X - Left.X) * (p.X - Left.X) + (Right.Y - Left.Y) * (p.Y - Left.Y)) / L;
  }
  double Height(const Place& p) const {
    return ((Right.X - Left.X) * (p.Y - Left.Y) - (Right.Y - Left.Y) * (p.X - Left.X)) / L;
  }

  ByHand(const std::string& journal, const std::string& chart) {
    bool segment = false;
    for (const std::string& line : LinesOf(journal)) {
      Place p;
      if (line == "tool 8") segment = true;
      if (std::sscanf(line.c_str(), "press %lf %lf", &p.X, &p.Y) != 2) continue;
      p.StartsSegment = std::exchange(segment, false);
      Presses.push_back(p);
    }
    Left = Presses[0];
    Right = Presses[1];
    Presses.erase(Presses.begin(), Presses.begin() + 2);
    L = std::hypot(Right.X - Left.X, Right.Y - Left.Y);
    for (std::size_t i = 1; i < Presses.size(); ++i) {
      if (Presses[i].StartsSegment) continue;
      Steps += Along(Presses[i]) - Along(Presses[i - 1]);
      Rises += std::max(0.0, Height(Presses[i]) - Height(Presses[i - 1]));
    }
    for (const std::string& line : LinesOf(chart)) {
      Place p;
      if (std::sscanf(line.c_str(), "%lf,%lf,CODE%d", &p.X, &p.Y, &p.Code) >= 2) Points.push_back(p);
    }
    MakeSeries();
  }

  void MakeSeries() {
    constexpr double start = 7 * 3600, span = 24 * 3600;
    Series.push_back({start, 0});
    std::vector<std::pair<float, float>> sums;
    Place before;
    for (const Place& p : Points) {
      if (p.Code == 0 || p.Code == 203 || p.Code == 205 || p.Code == 206) {
        A = static_cast<float>(A + (p.X - before.X));
        if (p.Y >= before.Y && p.Code != 203 && p.Code != 205) B = static_cast<float>(B + (p.Y - before.Y));
        sums.emplace_back(A, B);
      }
      before = p;
    }
    for (const auto& [a, b] : sums) {
      Moment moment{static_cast<double>(a) / A * span + start,
                    static_cast<float>(static_cast<double>(b) / B * 53.1F)};
      if (moment.Seconds <= Series.back().Seconds) moment.Seconds = Series.back().Seconds + 60;
      Series.push_back(moment);
    }
  }

  struct Row {
    std::string Start, End, Depth;
  };
  // Two hours off for GMT; the digitized depth counts, which is the selected one.
  std::vector<Row> Rows() const {
    std::vector<Row> rows;
    float done = 0;
    for (std::size_t i = 1; i < Series.size(); ++i) {
      const float depth = Series[i].Depth - done;
      done += depth;
      rows.push_back({Gmt(Series[i - 1].Seconds), Gmt(Series[i].Seconds),
                      Print("%g", std::nearbyint(static_cast<double>(depth) * 100) / 100)});
    }
    return rows;
  }
  static std::string Gmt(double seconds) { return Clock(std::nearbyint(seconds / 10) * 10 - 2 * 3600); }
  static std::string Clock(double seconds) {
    const long all = std::lround(seconds), day = all / 86400, rest = all % 86400;
    return Print("1998-03-%02ldT%02ld:%02ld:%02ld", 5 + day, rest / 3600, rest / 60 % 60, rest % 60);
  }
};

std::string Short(double value) {
  std::string text = Print("%.2f", value);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text == "-0" ? "0" : text;
}

// The lines that the page shows of it.
std::vector<std::string> WorkedLines(const ByHand& chart) {
  std::vector<std::string> lines;
  lines.push_back(Print("L = √(%.0f² + %.0f²) = %.4f units", chart.Right.X - chart.Left.X,
                        chart.Right.Y - chart.Left.Y, chart.L));
  lines.push_back(Print("w = 458 / 9145 = %.7f mm a unit,  h = 350 / 6100 = %.7f", chart.W, chart.H));
  lines.emplace_back();
  for (std::size_t i = 0; i < 5; ++i) {
    const Place& p = chart.Presses[i];
    lines.push_back(Print("(%4.0f, %3.0f)  along %9.4f  height %7.4f units,  times w: ", p.X, p.Y,
                          chart.Along(p), chart.Height(p)) +
                    Short(chart.Along(p) * chart.W) + "," + Short(chart.Height(p) * chart.W));
  }
  lines.emplace_back();
  lines.push_back(
      Print("rises %.4f units × h × 0.125 = %.4f mm of rain", chart.Rises, chart.Rises * chart.H * 0.125));
  lines.push_back(
      Print("steps %.4f units × w × 0.0621118 = %.4f hours", chart.Steps, chart.Steps * chart.W * 0.0621118));
  lines.push_back(Print("A = %.2f, B = %.2f mm at the last point", static_cast<double>(chart.A),
                        static_cast<double>(chart.B)));
  lines.emplace_back();
  for (std::size_t i = 0; i < 5; ++i)
    lines.push_back(Print("moment %zu  %s  %.6f mm", i,
                          ByHand::Clock(chart.Series[i].Seconds).substr(11).c_str(),
                          static_cast<double>(chart.Series[i].Depth)));
  lines.emplace_back();
  const auto rows = chart.Rows();
  for (std::size_t i = 0; i < 4; ++i)
    lines.push_back("row " + std::to_string(i + 1) + "  " + rows[i].Start + "  " + rows[i].End + "  " +
                    rows[i].Depth + " mm");
  return lines;
}

class NumbersPage : public ::testing::Test {
 protected:
  NumbersPage() {
    std::filesystem::copy(test::Demo("program"), folder_ / "program");
    Must({"digitize", "--target", folder_.Path(), "--task", "0", test::Demo("journals/siphon-1.txt")});
  }
  std::string Must(std::vector<std::string> words) {
    words.insert(words.begin() + 1, {"--folder", folder_ / "program"});
    const test::Ran ran = RunCli(std::move(words));
    EXPECT_EQ(ran.Status, 0) << ran.Error;
    return ran.Out;
  }
  ByHand Hand() const {
    return {ReadFile(test::Demo("journals/siphon-1.txt")), ReadFile(folder_ / ChartName)};
  }
  TempFolder folder_;
};

TEST_F(NumbersPage, GivesTheChartFileItsPoints) {
  const ByHand chart = Hand();
  ASSERT_EQ(chart.Points.size(), chart.Presses.size());
  const std::vector<std::string> lines = LinesOf(ReadFile(folder_ / ChartName));
  const auto heading = std::ranges::find(lines, "Digitation Points:\r");
  ASSERT_NE(heading, lines.end());
  for (std::size_t i = 0; i < chart.Presses.size(); ++i) {
    const Place& p = chart.Presses[i];
    const std::string& line = heading[static_cast<std::ptrdiff_t>(i) + 1];
    const std::string wanted = Short(chart.Along(p) * chart.W) + "," + Short(chart.Height(p) * chart.W) + ",";
    EXPECT_TRUE(line.starts_with(wanted)) << line << " " << wanted;
    EXPECT_EQ(chart.Points[i].Code == 201, p.StartsSegment) << line;
  }
  const auto says = [&](const std::string& line) { return std::ranges::count(lines, line + "\r"); };
  EXPECT_EQ(says("Digitized Depth: " + Print("%.1f", chart.Rises * chart.H * 0.125)), 1);
  EXPECT_EQ(says("Digitized Time: " + Short(chart.Steps * chart.W * 0.0621118)), 1);
  const auto alpha = std::ranges::find(chart.Points, 202, &Place::Code) - chart.Points.begin();
  const Place &foot = chart.Presses[static_cast<std::size_t>(alpha)],
              &top = chart.Presses[static_cast<std::size_t>(alpha) - 1];
  EXPECT_EQ(says("Alpha 1 : " + Print("%.6f", std::abs((chart.Along(foot) - chart.Along(top)) /
                                                       (chart.Height(foot) - chart.Height(top))))),
            1);
}

TEST_F(NumbersPage, GivesEveryMomentAndEveryRow) {
  const ByHand chart = Hand();
  std::vector<std::string> printed = LinesOf(Must({"series", "--exact", folder_ / ChartName}));
  ASSERT_EQ(printed.size(), chart.Series.size() + 1);
  for (std::size_t i = 0; i < chart.Series.size(); ++i) {
    double days = 0;
    float depth = 0;
    ASSERT_EQ(std::sscanf(printed[i + 1].c_str(), "%lf,%f", &days, &depth), 2);
    constexpr double midnight = 35859;  // 05/03/1998
    EXPECT_NEAR((days - midnight) * 86400, chart.Series[i].Seconds, 1e-3) << i;
    EXPECT_EQ(depth, chart.Series[i].Depth) << i;
  }

  const std::string made = RunCli({"create-tables", "--new", folder_ / "rain.sqlite"}).Out;
  Must({"setting", "set", "DataBaseName", made.substr(0, made.find('\n'))});
  Must({"synchronise", "--start", "01/01/1998"});
  Must({"load", folder_ / ChartName});
  Must({"populate", "--instrument", "NM-Hill Farm-01"});
  printed = LinesOf(Must({"rows", "CHART"}));
  const auto rows = chart.Rows();
  ASSERT_EQ(printed.size(), rows.size() + 1);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string wanted = "Hill Farm,NM-Hill Farm-01," + rows[i].Start + "," + rows[i].End + "," +
                               rows[i].Depth + ",ASCII,Acceptable,";
    EXPECT_TRUE(printed[i + 1].starts_with(wanted)) << printed[i + 1] << "\n" << wanted;
  }
}

TEST_F(NumbersPage, ShowsWhatIsComputed) {
  for (const test::Block& block : Document(Page).Blocks) {
    if (block.Kind != "worked") continue;
    const std::vector<std::string> lines = WorkedLines(Hand());
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    EXPECT_EQ(block.Lines, lines) << text;
    return;
  }
  FAIL() << "the page has no worked example";
}

TEST(NumbersTables, AreWhole) {
  const std::string page = Document(Page).Prose;
  int type = 0;
  for (const TabletType& tablet : TabletTypes()) {
    const TabletExtents& size = tablet.Extents;
    const std::string row =
        Print("| %d | ", type++) + std::string(tablet.Name) +
        Print(" | %g | %g | %g | %g |", static_cast<double>(size.TabletWidthUnits),
              static_cast<double>(size.TabletHeightUnits), static_cast<double>(size.TabletWidthMm),
              static_cast<double>(size.TabletHeightMm));
    EXPECT_NE(page.find(row), std::string::npos) << row;
  }

  // Each table of columns from its heading to the next empty line.
  const auto part = [&](const std::string& table) {
    const std::size_t at = page.find("| column of `" + table + "` |");
    return at == std::string::npos ? "" : page.substr(at, page.find("\n\n", at) - at);
  };
  for (const char* table : {table_name::Chart, table_name::ChartAscii, table_name::Conversion}) {
    const SchemaTable* schema = table == table_name::Conversion ? &ConversionTable() : FindSchemaTable(table);
    for (const SchemaColumn& column : schema->Columns)
      EXPECT_NE(part(table).find("`" + std::string(column.Name) + "`"), std::string::npos)
          << table << "." << column.Name;
  }

  for (const FixedComment& comment : FixedComments())
    EXPECT_NE(page.find(std::to_string(comment.Code)), std::string::npos) << comment.Text;
}

}  // namespace
}  // namespace hyetex
