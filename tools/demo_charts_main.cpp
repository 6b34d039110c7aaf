// Writes chart files with all that quality control has to find: twenty charts of three instruments, whole and
// faulty ones.
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "chartfiles/chart_lines.h"
#include "chartfiles/chart_text.h"
#include "commandline/parser.h"
#include "core/comments.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/numbers.h"
#include "tracing/rain.h"

namespace hyetex {
namespace {

struct Storm {
  double From, To, Mm;  // hours since the chart's start
};

struct DemoChart {
  Date Start = 0;
  std::vector<Storm> Storms;
  const StationRecord* Station = nullptr;
  double Hours = 24;
  int Method = 0;
  std::optional<RainChart::Span> Gap = {};
  std::optional<RainChart::Shift> Moved = {};
  std::optional<double> NewSheetAt = {};  // hours
  double DigitizedHours = 0;              // 0: as the chart
  std::optional<float> Eyed = {}, Manual = {};
  int Reliability = 1;
  std::string GeneralComment = {}, DigitizerComment = {};
  std::vector<float> Alphas = {};
  std::string FirstComment = {};  // of a point
};

const StationRecord HillFarm{"Hill Farm", "NM-Hill Farm-01", 0, 0};
const StationRecord MillPond{"Mill Pond", "NM-Mill Pond-01", 0, 0};
const StationRecord UpperDam{"Upper Dam", "NW-Upper Dam-02", 0, 1};

constexpr double MmPerHour = 16.1;

RainChart PaperOf(const DemoChart& chart) {
  RainChart made;
  made.Paper = {"",
                100,
                chart.Method == 2 ? 0.1F : 0.125F,
                static_cast<float>(1 / MmPerHour),
                static_cast<std::int16_t>(chart.Method),
                chart.Method == 1 ? 12.0F : 0.0F};
  made.Gap = chart.Gap;
  made.Moved = chart.Moved;
  return made;
}

// A storm comes up, falls, and dies away.
std::vector<RainPoint> RainOf(const DemoChart& chart) {
  std::vector<RainPoint> rain{{0, 0}};
  double fallen = 0;
  for (const Storm& storm : chart.Storms) {
    const double lasts = storm.To - storm.From;
    for (const auto& [part, share] : {std::pair(0.0, 0.0), {0.3, 0.15}, {0.6, 0.75}, {0.8, 0.92}, {1.0, 1.0}})
      rain.push_back({storm.From + part * lasts, fallen + share * storm.Mm});
    fallen += storm.Mm;
  }
  rain.push_back({chart.Hours, fallen});
  return rain;
}

std::string CommentOf(PenStep step) {
  switch (step) {
    case PenStep::Segment:
      return CodeText(CodeNewSegment);
    case PenStep::GapEnd:
      return CodeText(CodeGapEnd) + " + Clock malfunction";
    case PenStep::Leveled:
      return CodeText(CodeLeveled);
    case PenStep::Point:
    case PenStep::Drop:
      break;
  }
  return {};
}

// The points of the chart as its file has them, and the depth that they make.
std::vector<std::string> PointsOf(const DemoChart& chart, double& depth) {
  const auto drawn = DrawRain(RainOf(chart), PaperOf(chart));
  if (!drawn) return {};
  const PenLine line = WithStepsWithin(*drawn, 8);
  depth = line.Points.empty() ? 0 : line.Points.back().Rain;
  std::vector<std::string> points;
  double sheet = 0;  // where the present sheet begins
  std::size_t alphas = 0;
  bool isNewSheet = false;
  for (const PenPoint& point : line.Points) {
    if (chart.NewSheetAt && sheet == 0 && point.Hours >= *chart.NewSheetAt) {
      sheet = point.Hours * MmPerHour - 5;
      isNewSheet = true;
    }
    std::string comment = CommentOf(point.Step);
    if (std::exchange(isNewSheet, false)) comment = CodeText(CodeNewSheet);
    if (chart.Method == 1 && point.Step == PenStep::Segment && alphas < chart.Alphas.size()) {
      comment = CodeText(CodeAlpha);
      ++alphas;
    }
    if (points.size() == 1 && !chart.FirstComment.empty()) AddCode(comment, chart.FirstComment);
    points.push_back(RoundedText(line.AlongMm(point) - sheet, 2) + "," + RoundedText(point.HeightMm, 2) +
                     "," + comment);
  }
  return points;
}

std::string TextOf(const DemoChart& chart) {
  static constexpr const char* Methods[] = {"0 - Linear", "1 - Non-Linear", "2 - Tipping-Bucket"};
  double depth = 0;
  const std::vector<std::string> points = PointsOf(chart, depth);
  std::string text = "HYETEX88 ASCII FILE\r\n";
  const auto add = [&](ChartLine kind, const std::string& value) {
    text.append(LabelOf(kind)).append(value).append("\r\n");
  };
  add(ChartLine::Core, "Northland");
  add(ChartLine::Agency, chart.Station->Agency == 0 ? "Meteorological Service" : "Water Authority");
  add(ChartLine::Station, chart.Station->Name);
  add(ChartLine::Instrument, chart.Station->InstrumentCode);
  add(ChartLine::User, "demo");
  add(ChartLine::Method, Methods[chart.Method]);
  add(ChartLine::Start, DateText(chart.Start));
  add(ChartLine::End, DateText(chart.Start + chart.Hours / 24));
  add(ChartLine::DigitizedTime,
      RoundedText(chart.DigitizedHours == 0 ? chart.Hours - 0.05 : chart.DigitizedHours, 2));
  add(ChartLine::EyedDepth, ShortText(chart.Eyed.value_or(static_cast<float>(Round(depth, 0)))));
  add(ChartLine::DigitizedDepth, RoundedText(depth, 1));
  add(ChartLine::SelectedDepth, RoundedText(depth, 1));
  add(ChartLine::ManualDepth, ShortText(chart.Manual.value_or(static_cast<float>(Round(depth * 1.01, 1)))));
  add(ChartLine::PointCount, std::to_string(points.size()));
  add(ChartLine::Reliability,
      std::to_string(chart.Reliability) + "-" + std::string(ReliabilityText(chart.Reliability)));
  add(ChartLine::PointsHeading, "");
  for (const std::string& point : points) text += point + "\r\n";
  add(ChartLine::GeneralComment, chart.GeneralComment);
  add(ChartLine::DigitizerComment, chart.DigitizerComment);
  for (std::size_t i = 0; i < chart.Alphas.size(); ++i)
    add(ChartLine::Alpha, std::to_string(i + 1) + " : " + ShortText(chart.Alphas[i]));
  add(ChartLine::AlphaSelected, "None");
  return text;
}

void Replace(std::string& text, std::string_view what, std::string_view with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
    text.replace(at, what.size(), with);
}

using Fault = std::function<void(std::string& text)>;

struct Entry {
  DemoChart Chart;
  Fault Damage = {};
};

std::vector<Entry> Charts() {
  const auto april = [](int day, int minute = 0) { return MakeDate(1998, 4, day, 7, minute); };
  const auto at = [](const StationRecord& station, Date start, std::vector<Storm> storms) {
    DemoChart chart;
    chart.Station = &station;
    chart.Start = start;
    chart.Storms = std::move(storms);
    return chart;
  };
  const auto hill = [&](int day, std::vector<Storm> storms) {
    return at(HillFarm, april(day), std::move(storms));
  };
  const auto cutBehind = [](std::string_view what) {
    return [=](std::string& text) { text.resize(text.find(what) + what.size()); };
  };
  std::vector<Entry> entries;
  const auto add = [&](DemoChart chart, Fault damage = {}) -> DemoChart& {
    entries.push_back({std::move(chart), std::move(damage)});
    return entries.back().Chart;
  };

  // A whole chart; then alerts of the depths and of the time.
  add(hill(5, {{2, 5, 8.4}, {11, 16, 17.3}, {19, 20, 2.2}})).DigitizerComment = "Clear line";
  add(hill(6, {{1, 4, 6.1}, {9, 10, 4.8}})).Manual = 13.2F;
  entries.back().Chart.Eyed = 9.5F;
  entries.back().Damage = [](std::string& text) {
    Replace(text, "Selected Depth: 10.9", "Selected Depth: 9.5");
  };
  add(hill(7, {{14, 18, 21}})).DigitizedHours = 20.4;
  // What the pen did: a gap and a hand, a line that was set down anew, a second strip.
  DemoChart& gap = add(hill(8, {{3, 6, 7.5}, {12, 15, 9}}));
  gap.Gap = RainChart::Span{7, 10.5};
  gap.Moved = RainChart::Shift{16.5, 12};
  gap.GeneralComment = CodeText(302) + "::Clock stopped at night";
  DemoChart& segments = add(hill(9, {{5, 9, 12}}));
  segments.FirstComment = CodeText(CodeRecoveredEnd);
  segments.Reliability = 2;
  entries.back().Damage = [](std::string& text) {
    std::size_t comment = text.find("Digitation Points:");
    for (int i = 0; i < 12; ++i) comment = text.find("\r\n", comment + 2);
    text.insert(comment, CodeText(CodeNewSegment));
  };
  DemoChart& strips = add(hill(10, {{2, 4, 5}, {20, 29, 14.6}}));
  strips.Hours = 34;
  strips.NewSheetAt = 17;
  // Texts that do not come to their end.
  add(hill(12, {{4, 7, 9.9}}), [](std::string& text) { text.resize(text.size() * 6 / 10); });
  add(hill(13, {{4, 7, 9.9}}), cutBehind("General Comment: "));
  // Charts with nothing to draw: no points, and the form of a chart that nobody could trace.
  add(hill(14, {{4, 7, 3.3}}), [](std::string& text) {
    const std::size_t first = text.find("\r\n", text.find("Digitation Points:")) + 2;
    text.erase(first, text.find("General Comment") - first);
    Replace(text, "Number of Points: ", "Number of Points: 0");
    const std::size_t count = text.find("Number of Points: 0") + 19;
    text.erase(count, text.find("\r\n", count) - count);
  });
  DemoChart& defective = add(hill(15, {{4, 7, 12}}));
  defective.GeneralComment = CodeText(CodeDefective);
  defective.DigitizerComment = "NOT DIGITIZED";
  entries.back().Damage = [](std::string& text) {
    const std::size_t first = text.find("\r\n", text.find("Digitation Points:")) + 2;
    text.replace(first, text.find("General Comment") - first, "0,0,\r\n");
    const std::size_t count = text.find("Number of Points: ") + 18;
    text.replace(count, text.find("\r\n", count) - count, "0");
    Replace(text, "1-Acceptable", "3 - Unreliable");
  };
  // Depths that nobody knows, on a dry day; words that mean something elsewhere.
  DemoChart& dry = add(hill(16, {}));
  dry.Eyed = dry.Manual = NoDepth;
  dry.Reliability = 0;
  DemoChart& words = add(hill(17, {{6, 8, 5.5}}));
  words.GeneralComment = "manual gage read late::Selected depth: see END of the START strip";
  words.DigitizerComment = "Reliability of the instrument: good";
  words.FirstComment = "Manual: the pen was mended";
  // The first should begin at half past seven, but another chart has that name.
  add(hill(18, {{1, 3, 6}})).GeneralComment = "Laid down half an hour late";
  DemoChart& clash = add(at(HillFarm, april(18, 30), {{1, 3, 6.2}}));
  clash.Hours = 23.5;
  clash.GeneralComment = "The same sheet, digitized again";
  // Other times, code pages and line ends.
  add(at(MillPond, MakeDate(1925, 11, 27, 7), {{2, 9, 31}})).Manual = NoDepth;
  DemoChart& page = add(at(MillPond, MakeDate(1998, 5, 1, 7), {{8, 12, 4.4}}));
  page.GeneralComment =
      "Pluie \xE9parse, +3\xB0"
      "C";
  add(at(MillPond, MakeDate(1998, 5, 2, 7), {{8, 12, 7.7}}),
      [](std::string& text) { Replace(text, "\r\n", "\n"); });
  // The other kinds of paper, and the words of another program.
  DemoChart& arc = add(at(UpperDam, MakeDate(1967, 2, 14, 7), {{3, 10, 16}, {15, 17, 5}}));
  arc.Method = 1;
  arc.Alphas = {0.0291F, 0.0288F};
  add(at(UpperDam, MakeDate(1967, 2, 15, 7), {{5, 9, 11}})).Method = 2;
  add(at(UpperDam, MakeDate(1967, 2, 16, 7), {{5, 9, 8}}), [](std::string& text) {
    Replace(text, "Start: ", "Chart start date: ");
    Replace(text, "End: ", "Chart end date: ");
    Replace(text, "Manual Depth: ", "Manual depth of the gage: ");
  });
  return entries;
}

Result<void> Write(const std::string& folder) {
  for (const Entry& entry : Charts()) {
    std::string text = TextOf(entry.Chart);
    if (entry.Damage) entry.Damage(text);
    const std::string name = ChartFileName(entry.Chart.Station->InstrumentCode, entry.Chart.Start);
    if (auto written = WriteWholeFile(JoinPath(folder, name), text); !written) return written;
  }
  return {};
}

}  // namespace
}  // namespace hyetex

int main(int argc, char** argv) {
  using namespace hyetex::commandline;
  Description program("hyetex-demo-charts",
                      "Writes twenty chart files with the faults that quality control has to find.");
  std::string folder;
  AddWord(program, "DIR", folder, "where to write them; made beforehand")->required();
  if (const auto answer = Parse(program, std::vector<std::string>(argv + 1, argv + argc)))
    return Give(program.get_name(), *answer);
  const auto done = hyetex::Write(folder);
  return done ? Done : Fail(program.get_name(), done.error());
}
