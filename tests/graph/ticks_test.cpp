#include "graph/ticks.h"

#include <gmock/gmock.h>

#include "core/dates.h"

namespace hyetex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

double SixWide(const std::string& text) { return 6.0 * static_cast<double>(text.size()); }

std::vector<std::string> Labels(const std::vector<Tick>& ticks) {
  std::vector<std::string> labels;
  for (const Tick& tick : ticks)
    if (!tick.Label.empty()) labels.push_back(tick.Label);
  return labels;
}

TEST(Ticks, StepsGoOnBeyondTheLadder) {
  const std::pair<double, double> cases[] = {{450, 400}, {451, 500},     {1200, 1000},  {2e6, 2e6},
                                             {0.1, 0.1}, {0.005, 0.005}, {0.003, 0.005}};
  for (const auto& [raw, step] : cases) EXPECT_DOUBLE_EQ(RoundStep(raw), step) << raw;
  EXPECT_GT(RoundStep(0), 0);
}

TEST(Ticks, NumbersStandOnTheStepAndKeepTheirDistance) {
  EXPECT_THAT(Labels(NumberTicks(-0.6, 1.1, 170, 40)), ElementsAre("-0.5", "0", "0.5", "1"));
  EXPECT_THAT(Labels(NumberTicks(3.1, 3.5, 400, 90)), ElementsAre("3.1", "3.2", "3.3", "3.4", "3.5"));
  EXPECT_THAT(NumberTicks(5, 5, 100, 10), IsEmpty());
  for (double span = 0.001; span < 1e7; span *= 1.7)
    for (double length : {60.0, 333.0, 1000.0}) {
      const auto ticks = NumberTicks(0.3 * span, 1.3 * span, length, 24);
      for (std::size_t i = 1; i < ticks.size(); ++i)
        EXPECT_GE((ticks[i].Value - ticks[i - 1].Value) * length / span, 23.9) << span << " on " << length;
      EXPECT_GE(ticks.size(), length > 100 ? 2U : 0U) << span << " on " << length;
    }
}

struct Axis {
  Date From, To;
  double Length;
  std::vector<std::string> Labels, Spans;
  std::size_t DayMarks;
};

TEST(Ticks, TimeFollowsHoursDaysMonthsAndYears) {
  const Axis cases[] = {
      {MakeDate(1998, 3, 5, 13),
       MakeDate(1998, 3, 5, 14),
       250,
       {"13:00", "13:15", "13:30", "13:45", "14:00"},
       {"05/03/1998"},
       0},
      {MakeDate(1998, 3, 5, 7),
       MakeDate(1998, 3, 6, 7),
       400,
       {"09:00", "12:00"},
       {"05/03/1998", "06/03/1998"},
       1},
      // Over the end of a February of 29 days.
      {MakeDate(1996, 2, 27, 12),
       MakeDate(1996, 3, 2, 12),
       200,
       {"12", "00"},
       {"", "28/02", "29/02", "01/03", ""},
       4},
      {MakeDate(1999, 12, 17, 9),
       MakeDate(2000, 1, 17, 9),
       300,
       {"20", "25", "1", "5", "10", "15"},
       {"December 1999", "January 2000"},
       6},
      {MakeDate(1999, 11, 1), MakeDate(2001, 2, 1), 300, {"Jan", "Apr"}, {"1999", "2000", ""}, 0},
      {MakeDate(1930, 1, 1), MakeDate(2029, 1, 1), 300, {"1950", "1975"}, {}, 0}};
  for (const Axis& axis : cases) {
    SCOPED_TRACE(GeneralDateText(axis.From));
    const TimeTicks made = MakeTimeTicks(axis.From, axis.To, axis.Length, 15, SixWide);
    std::vector<std::string> labels = Labels(made.Ticks), spans;
    if (labels.size() > axis.Labels.size()) labels.resize(axis.Labels.size());
    for (const TimeSpan& span : made.Spans) spans.push_back(span.Label);
    EXPECT_EQ(labels, axis.Labels);
    EXPECT_EQ(spans, axis.Spans);
    EXPECT_EQ(made.DayMarks.size(), axis.DayMarks);
  }
}

TEST(Ticks, TimesThatAreNoneGetNoTicks) {
  for (const auto& [from, to] : {std::pair{1e300, 2e300}, {5.0, 5.0}, {-1e9, 1e9}, {6.0, 5.0}})
    EXPECT_THAT(MakeTimeTicks(from, to, 300, 15, SixWide).Ticks, IsEmpty());
}

}  // namespace
}  // namespace hyetex
