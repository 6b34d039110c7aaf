// What is edited of a chart: its details, its lines in the file, and the summary of many.
#include "editor/edit_record.h"

#include <gmock/gmock.h>

#include "chartfiles/chart_lines.h"
#include "core/dates.h"
#include "core/text.h"
#include "database/stored_charts.h"
#include "editor/chart_rewriting.h"
#include "editor/chart_summary.h"

namespace hyetex {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

ChartRecord Day() {
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 3, 5, 7);
  chart.EndTime = chart.StartTime + 1;
  chart.DigitizedTime = 24;
  chart.EyedDepth = 9;
  chart.DigitizedDepth = chart.SelectedDepth = 5;
  chart.ManualDepth = 5.4F;
  chart.Reliability = 1;
  return chart;
}

TEST(EditRecord, HoldsFactorsAgainstTheDepthsAndTimesThatAreTyped) {
  ChartRecord chart = Day();
  EditorEntries entries = EntriesOf(chart);
  const auto texts = [&] {
    std::string all;
    for (const EditorFactor& factor : FactorsOf(entries, chart))
      all += factor.Caption + (factor.Alert ? "! " : " ");
    return all;
  };
  EXPECT_EQ(texts(), "Digitized Depth Factor: 0 Manual Depth Factor: 8 Time Factor: 0 ");
  entries.ManualDepth = "5,41";
  entries.SelectedDepth = "4.5";
  entries.EndDate += 1;
  entries.EndTime -= 0.25;
  EXPECT_EQ(texts(), "Digitized Depth Factor: -10! Manual Depth Factor: 20.2! Time Factor: 75! ");
  entries.ManualDepth = "-1";
  chart.DigitizedDepth = 0;
  chart.DigitizedTime = 0;
  EXPECT_EQ(texts(), "Digitized Depth Factor: 0 Manual Depth Factor: unknown Time Factor: 0 ");
  entries.SelectedDepth = "0";
  entries.ManualDepth = "3";
  EXPECT_EQ(texts(), "Digitized Depth Factor: 0 Manual Depth Factor: 0 Time Factor: 0 ");
}

TEST(EditRecord, TakesAllEntriesOrNone) {
  ChartRecord chart = Day();
  chart.StartTime = MakeDate(1998, 3, 5, 7, 13, 29);
  EXPECT_FALSE(EntriesDiffer(EntriesOf(chart), chart)) << "to the second, whatever the fraction's last bits";
  const auto refusal = [&](auto change) {
    EditorEntries entries = EntriesOf(chart);
    change(entries);
    EXPECT_TRUE(EntriesDiffer(entries, chart));
    ChartRecord taken = chart;
    const auto why = TakeEntries(entries, taken);
    EXPECT_EQ(taken.StartTime, chart.StartTime);
    return why.value_or("taken");
  };
  EXPECT_THAT(refusal([](EditorEntries& e) { e.EndDate -= 1; }), HasSubstr("must be less than"));
  EXPECT_THAT(refusal([](EditorEntries& e) { e.ManualDepth = "5 mm"; }), HasSubstr("\"5 mm\""));
  EXPECT_THAT(refusal([](EditorEntries& e) { e.SelectedDepth = " "; }),
              HasSubstr("selected depth is missing"));
  EXPECT_THAT(refusal([](EditorEntries& e) { e.SelectedDepth = "-2"; }), HasSubstr("no less than 0"));
  EXPECT_EQ(refusal([](EditorEntries& e) { e.ManualDepth = "-1"; }), "taken") << "it is not known";
}

TEST(EditRecord, SaysWhatAChartLacksAndKeepsCommentsApart) {
  ChartReading reading;
  ReadChartText("HYETEX88 ASCII FILE\nNumber of Points: 2\nStart: soon\n", "", {}, reading);
  EXPECT_THAT(WhatChartLacks(reading),
              ElementsAre(HasSubstr("cut off: its head counts 2 points"), "The chart has no points.",
                          HasSubstr("does not end"), HasSubstr("\"soon\" is no date")));
  const auto captions = DetailCaptions([] {
    ChartRecord chart = Day();
    chart.EyedDepth = NoDepth;
    return chart;
  }());
  EXPECT_EQ(captions[0], "Eyed Depth: unknown");
  EXPECT_EQ(captions[6], "Digitized End: 06/03/1998 07:00:00");

  std::string comment = "CODE302::d\xE9j\xE0";
  AddTypedEntry(comment, "plain");
  EXPECT_EQ(comment, "CODE302::d\xE9j\xE0::plain") << "its bytes stay";
  AddTypedEntry(comment, "été\nlong");
  EXPECT_EQ(comment, "CODE302::déjà::plain::été long");
  DeleteEntry(comment, 1);
  DeleteEntry(comment, 7);
  EXPECT_EQ(comment, "CODE302::plain::été long");
  for (int i = 0; i < 3; ++i) DeleteEntry(comment, 0);
  EXPECT_EQ(comment, "");
}

TEST(ChartRewriting, MakesLinesThatAreMissingAndNoOthers) {
  const auto rewritten = [](std::string bytes, auto change) -> Result<std::string> {
    ChartReading reading;
    ReadChartText(bytes, "", {}, reading);
    ChartRecord edited = reading.Chart;
    change(edited);
    return RewriteChart(bytes, "RG12-19980305-0700.dat", reading.Chart, edited);
  };
  const auto nothing = [](ChartRecord&) {};
  const std::string cut =
      "HYETEX88 ASCII FILE\nSTART : 05/03/98\nEnd: 06/03/98\nDigitation Points:\n1,2,a\n3,";
  EXPECT_EQ(*rewritten(cut, nothing),
            "HYETEX88 ASCII FILE\nSTART : 05/03/98\nEnd: 06/03/1998\nDigitation Points:\n1,2,a\n3,")
      << "\"START :\" is none of our labels";
  EXPECT_EQ(*rewritten(cut,
                       [](ChartRecord& c) {
                         c.StartTime += 0.5;
                         c.ManualDepth = 3;
                         c.GeneralComment = "half";
                       }),
            "HYETEX88 ASCII FILE\nSTART : 05/03/98\nEnd: 06/03/1998\nStart: 05/03/1998 12:00:00\n"
            "Manual Depth: 3\nDigitation Points:\n1,2,a\n3,\nGeneral Comment: half\n");
  // A line of another program behind ours has the last word with the reader, so the save is refused.
  EXPECT_THAT(rewritten("Start: 05/03/98\r\nEnd: 06/03/98\r\nThe recording's end: 07/03/98\r\n",
                        [](ChartRecord& c) { c.EndTime += 5; })
                  .error(),
              HasSubstr("says another end"));
  std::string lines = "Start: 05/03/98\nEnd: 06/03/98\n";
  for (int i = 2; i < MostLines; ++i) lines += "x\n";
  EXPECT_TRUE(rewritten(lines, nothing)) << "the last that fits";
  EXPECT_THAT(rewritten(lines + "x\n", nothing).error(), HasSubstr("more than 10001 lines"));
  EXPECT_THAT(rewritten("Start: 05/03/98\nEnd: 06/03/98\n",
                        [](ChartRecord& c) { c.GeneralComment.assign(std::size_t{4} << 20, 'x'); })
                  .error(),
              HasSubstr("longer than 4 MB"));
}

TEST(ChartSummary, HoldsALineAChartInColumns) {
  ChartSummary summary;
  ChartRecord chart = Day();
  chart.GeneralComment = "d\xE9j\xE0";
  chart.DigitizerComment = "first";
  summary.Add(chart);
  chart = {};
  chart.EyedDepth = chart.ManualDepth = NoDepth;
  chart.GeneralComment = std::string(80, 'x');
  summary.Add(chart);
  std::vector<std::string> lines;
  ForEachLine(summary.Text(), [&](std::string_view line) { lines.emplace_back(line); });
  const std::string gap(51, ' ');
  EXPECT_THAT(
      lines,
      ElementsAre(
          "Start       Start       Lapse  Dig.     Eyed   Dig.     Man.   Sel.     Man.     Dig.     "
          "Time  General" +
              gap + "    Dig.",
          "Date        Time               Time    Depth  Depth    Depth  Depth     Fact     Fact     "
          "Fact  Comment" +
              gap + "    Comment",
          "05/03/1998  07:00:00       24    24        9      5      5.4      5      -40    -44.4        "
          "0  déjà" +
              gap + "       first",
          "unknown     unknown   unknown     0  unknown      0  unknown      0  unknown  unknown  "
          "unknown  " +
              std::string(57, 'x') + "..."));
  for (std::size_t i = 2; i < MostSummaryRows; ++i) EXPECT_TRUE(summary.Add(chart));
  EXPECT_FALSE(summary.Add(chart));
  EXPECT_THAT(LeftOutOfSummary(1), HasSubstr("1 chart is left out: a summary holds at most 1000"));
  EXPECT_THAT(LeftOutOfSummary(0), IsEmpty());
}

}  // namespace
}  // namespace hyetex
