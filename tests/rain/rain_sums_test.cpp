#include "core/dates.h"
#include "rain/rain_maxima.h"
#include "rain/rain_steps.h"
#include "rain/rain_storms.h"
#include "slow_rain.h"

namespace hyetex::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr int Seeds = 60, Rows = 120;

RainTime At(int year, int month, int day, int hour = 0, int minute = 0) {
  return SecondsOf(MakeDate(year, month, day, hour, minute));
}
RainRow Row(RainTime start, RainTime minutes, double depth) { return {start, start + 60 * minutes, depth}; }

std::vector<RainStep> StepsOf(const std::vector<RainRow>& rows, RainStepKind kind, RainClock clock = {},
                              RainSpan span = {}) {
  std::vector<RainStep> steps;
  RainSteps sink(kind, clock, span, [&](const RainStep& step) { steps.push_back(step); });
  Sweep(rows, {&sink}, span);
  return steps;
}

TEST(RainSums, OfStepsAreThoseOfASlowReadingAndLeaveNoRest) {
  for (unsigned seed = 0; seed < Seeds; ++seed) {
    const std::vector<RainRow> rows = RandomRows(seed, Rows, seed % 2 == 1);
    const SlowRain slow(rows);
    for (const int minutes : {1, 5, 60}) {
      std::vector<RainStep> steps;
      RainSteps sink({RainStepKind::Unit::Minutes, minutes}, {}, {},
                     [&](const RainStep& step) { steps.push_back(step); });
      const RainRemarks remarks = Sweep(rows, {&sink});
      RainSum sum = 0, all = 0;
      for (const RainStep& step : steps) {
        EXPECT_NEAR(step.Depth, slow.Until(step.Start, step.End, false), 1e-6) << "seed " << seed;
        EXPECT_NEAR(step.Covered, slow.KnownShare(step.Start, step.End), 1e-12) << "seed " << seed;
        EXPECT_TRUE(&step == &steps.front() || step.Start == (&step)[-1].End);
        sum += AmountOf(step.Depth);
      }
      for (const RainRow& row : rows) all += std::max<RainAmount>(0, AmountOf(row.Depth.value_or(0)));
      EXPECT_TRUE(sum == remarks.Depth) << "to the last bit; seed " << seed;
      EXPECT_TRUE(sum == all - remarks.OverlappedDepth) << "seed " << seed;
      EXPECT_TRUE(seed % 2 == 1 || remarks.Overlaps == 0);
    }
  }
}

TEST(RainSums, OfMaximaAreThoseOfASlowReading) {
  const int durations[] = {1, 2, 5, 15, 60, 1440};
  for (unsigned seed = 0; seed < Seeds; ++seed) {
    const std::vector<RainRow> rows = RandomRows(seed, Rows, seed % 2 == 1);
    const SlowRain slow(rows);
    RainMaxima maxima(durations);
    Sweep(rows, {&maxima});
    std::vector<double> sums{0};  // before each second
    for (std::size_t i = 0; i < slow.Fallen.size(); ++i)
      sums.push_back(sums.back() + slow.Fallen[i] + slow.Moments[i]);
    const auto before = [&](RainTime time) {
      return time <= FirstSecond ? 0 : sums[SlowRain::Index(std::min(time, slow.Last))];
    };
    for (const RainMaximum& maximum : maxima.Maxima()) {
      const RainTime length = 60 * maximum.Minutes;
      double most = 0;
      for (RainTime start = FirstSecond - length; start <= slow.Last; ++start) {
        const RainTime end = start + length;
        const double last = end < FirstSecond || end > slow.Last ? 0 : slow.Moments[SlowRain::Index(end)];
        most = std::max(most, before(end) + last - before(start));
      }
      EXPECT_NEAR(maximum.Depth, most, 1e-6) << maximum.Minutes << " minutes, seed " << seed;
      ASSERT_TRUE(maximum.Start);
      EXPECT_NEAR(maximum.Depth, slow.Until(*maximum.Start, *maximum.Start + length, true), 1e-6)
          << maximum.Minutes << " minutes, seed " << seed;
      EXPECT_NEAR(maximum.Covered, slow.KnownShare(*maximum.Start, *maximum.Start + length), 1e-12)
          << maximum.Minutes << " minutes, seed " << seed;
    }
  }
}

TEST(RainSums, CountOverlappingRowsOnceByTheOneThatStartsLater) {
  const RainTime ten = At(1998, 3, 5, 10);
  // Ten hours of a chart of which only the whole is known, with an hour and its repetition within; then the
  // end of one chart over the begin of the next.
  const std::vector<RainRow> rows = {Row(ten, 600, 10), Row(ten + 3600, 60, 5), Row(ten + 3600, 60, 5),
                                     Row(ten + 36000, 20, 2), Row(ten + 36000 + 600, 20, 4)};
  RainSums sums(
      {{ten, ten + 3600}, {ten + 3600, ten + 7200}, {ten, ten + 36000}, {ten + 36000, ten + 40000}});
  const RainRemarks remarks = Sweep(rows, {&sums});
  std::vector<double> depths;
  for (const RainInterval& each : sums.Intervals()) depths.push_back(each.Depth);
  EXPECT_THAT(depths, ElementsAre(1, 5, 14, 5));
  EXPECT_EQ(remarks.Overlaps, 3);
  EXPECT_EQ(remarks.Overlapped, 3600 + 3600 + 600);
  EXPECT_EQ(MmOf(remarks.OverlappedDepth), 1 + 5 + 1);
  EXPECT_THAT(remarks.Lines(),
              ElementsAre("3 rows overlap earlier ones for 2.2 hours: that time counts once, by the "
                          "row that starts later, and 7 mm of the others are left out"));
}

TEST(RainSums, TellWhatIsOddAndCountNoRainOfIt) {
  const RainTime ten = At(1998, 3, 5, 10);
  const std::vector<RainRow> rows = {{{}, ten, 1},
                                     {ten, {}, 1},
                                     Row(ten, 10, 1),
                                     Row(ten + 600, 10, -0.3),
                                     {ten + 1200, ten + 1800, {}},
                                     {ten + 1800, ten + 1200, 2},
                                     Row(ten + 1800, 0, 0.5),
                                     Row(ten + 1800, 10, 1e300),
                                     Row(ten + 1800, 527'100, 3),
                                     Row(ten + 3000, 10, 1),
                                     Row(ten + 600, 10, 4)};
  const RainRemarks remarks = Sweep(rows, {});
  EXPECT_EQ(remarks.Rows, 11);
  EXPECT_EQ(MmOf(remarks.Depth), 2.5);
  EXPECT_THAT(
      remarks.Lines(),
      ElementsAre("1 row has a depth below 0 and counts as dry (together -0.3 mm)",
                  "1 row has no depth: its time is not covered",
                  "1 row has no length: its rain fell at a moment (together 0.5 mm)",
                  "2 rows without a start or an end are left out",
                  "1 row ends before it starts and is left out", "1 row longer than 93 days is left out",
                  "1 row has a depth that no rain has and is left out",
                  "1 row has a time that the database does not sort and is left out",
                  "What is left out has 11 mm", "Nothing is known of 30 minutes in 2 stretches"));
  EXPECT_THAT(Sweep({}, {}).Lines(), IsEmpty());
}

TEST(RainSums, OfStepsTellGapsFromDryTimes) {
  const RainTime ten = At(1998, 3, 5, 10);
  const std::vector<RainRow> rows = {Row(ten, 30, 3), Row(ten + 1800, 30, 0), Row(ten + 7200, 15, 1)};
  std::vector<std::string> lines;
  for (const RainStep& step : StepsOf(rows, {RainStepKind::Unit::Minutes, 30}, {}, {ten - 1800, ten + 10800}))
    lines.push_back(TimeText(ToLocal(step.Start, {})) + " " + std::to_string(step.Depth) + " " +
                    std::to_string(step.Covered) + (step.IsGap() ? " gap" : ""));
  EXPECT_THAT(lines, ElementsAre("09:30:00 0.000000 0.000000 gap", "10:00:00 3.000000 1.000000",
                                 "10:30:00 0.000000 1.000000", "11:00:00 0.000000 0.000000 gap",
                                 "11:30:00 0.000000 0.000000 gap", "12:00:00 1.000000 0.500000",
                                 "12:30:00 0.000000 0.000000 gap"));
  EXPECT_EQ(StepsOf({}, RainDays, {}, {ten, ten + DaySeconds}).size(), 2U)
      << "a table without rows has gaps alone";
  EXPECT_THAT(StepsOf({}, RainDays), IsEmpty());
}

TEST(RainSums, OfDaysGoByTheClock) {
  // A millimetre an hour over the end of February of a leap year and of one that is none.
  for (const int year : {1996, 1900}) {
    const std::vector<RainRow> rows = {Row(At(year, 2, 27), 5 * 1440, 120)};
    const auto daysOf = [&](RainClock clock) {
      std::vector<std::string> days;
      for (const RainStep& day : StepsOf(rows, RainDays, clock))
        days.push_back(IsoWithZone(day.Start, clock) + " " + std::to_string(std::lround(day.Depth)));
      return days;
    };
    EXPECT_EQ(daysOf({})[2].substr(5, 5), year == 1996 ? "02-29" : "03-01");
    EXPECT_EQ(daysOf({}).size(), 5U);
    EXPECT_EQ(daysOf({-420, 0})[0], std::to_string(year) + "-02-26T00:00:00-07:00 7");
    EXPECT_EQ(daysOf({0, 420})[0], std::to_string(year) + "-02-26T07:00:00+00:00 7");
    EXPECT_EQ(daysOf({345, 420})[0], std::to_string(year) + "-02-26T07:00:00+05:45 1")
        << "75 minutes of the first day are left";
    EXPECT_EQ(daysOf({345, 420})[1], std::to_string(year) + "-02-27T07:00:00+05:45 24");
  }
}

TEST(RainSums, OfMonthsAndYearsSayHowMuchIsCovered) {
  const RainClock clock{120, 420};
  std::vector<RainRow> rows;
  for (int day = 0; day < 366 + 10; ++day)
    if (day != 40) rows.push_back(Row(At(1996, 1, 1, 5) + day * DaySeconds, 1440, day % 2));
  RainPeriods years(RainYears, clock), months(RainMonths, clock);
  RainSteps days(RainDays, clock, {}, [&](const RainStep& day) {
    years.Add(day);
    months.Add(day);
  });
  Sweep(rows, {&days});
  ASSERT_EQ(years.Periods().size(), 2U);
  const RainPeriod& year = years.Periods()[0];
  EXPECT_EQ(year.Year, 1996);
  EXPECT_EQ(year.Start, At(1996, 1, 1, 5));
  EXPECT_EQ(year.Depth, 183);
  EXPECT_EQ(year.Days, 366);
  EXPECT_EQ(year.WholeDays, 365);
  EXPECT_EQ(year.WetDays, 183);
  EXPECT_DOUBLE_EQ(year.Covered, 365.0 / 366);
  EXPECT_DOUBLE_EQ(years.Periods()[1].Covered, 10.0 / 365) << "a year that has just begun";
  EXPECT_EQ(months.Periods().size(), 13U);
  EXPECT_EQ(months.Periods()[1].Month, 2);
  EXPECT_EQ(months.Periods()[1].Days, 29);
  EXPECT_EQ(months.Periods()[1].WholeDays, 28);
}

TEST(RainSums, OfSpansTakeARowsShare) {
  const RainTime ten = At(1998, 3, 5, 10);
  const RainSpan span{ten + 900, ten + 2700};
  const auto steps =
      StepsOf({Row(ten, 60, 4), Row(ten + 2700, 0, 9)}, {RainStepKind::Unit::Minutes, 60}, {}, span);
  ASSERT_EQ(steps.size(), 1U);
  EXPECT_EQ(steps[0].Depth, 2);
  EXPECT_EQ(steps[0].Covered, 0.5);
}

TEST(RainSums, OfMaximaSayWhenTheirRainBeginsAndWhatIsMissing) {
  const RainTime ten = At(1998, 3, 5, 10);
  const int durations[] = {10, 60};
  RainMaxima maxima(durations);
  Sweep({Row(ten, 60, 0), Row(ten + 3600, 5, 2), Row(ten + 3900, 5, 1), Row(ten + 5400, 30, 3)}, {&maxima});
  EXPECT_EQ(maxima.Maxima()[0].Depth, 3);
  EXPECT_EQ(maxima.Maxima()[0].Start, ten + 3600);
  EXPECT_EQ(maxima.Maxima()[0].Covered, 1);
  EXPECT_EQ(maxima.Maxima()[1].Depth, 6);
  EXPECT_EQ(maxima.Maxima()[1].Start, ten + 3600);
  EXPECT_NEAR(maxima.Maxima()[1].Covered, 40.0 / 60, 1e-12);
  RainMaxima none(durations);
  Sweep({Row(ten, 600, 0)}, {&none});
  EXPECT_FALSE(none.Maxima()[0].Start);
  EXPECT_EQ(none.Maxima()[0].Covered, 1);
}

TEST(RainStormList, EndsAStormWithADrySpell) {
  const RainTime ten = At(1998, 3, 5, 10);
  const auto stormsOf = [&](double dry, const std::vector<RainRow>& rows) {
    std::vector<RainStorm> storms;
    RainStorms sink(dry, [&](const RainStorm& storm) { storms.push_back(storm); });
    Sweep(rows, {&sink});
    return storms;
  };
  const std::vector<RainRow> rows = {Row(ten - 36000, 600, 0), Row(ten, 10, 1),
                                     Row(ten + 600, 60, 0),    Row(ten + 4200, 2, 1),
                                     Row(ten + 4320, 1, 0),    Row(ten + 40000, 10, 6)};
  const auto two = stormsOf(6, rows);
  ASSERT_EQ(two.size(), 2U);
  EXPECT_EQ(two[0].Start, ten);
  EXPECT_EQ(two[0].End, ten + 4320);
  EXPECT_EQ(two[0].Depth, 2);
  EXPECT_EQ(two[0].Peak, 12) << "a millimetre in five minutes, though it fell in two";
  EXPECT_EQ(two[0].Covered, 1);
  EXPECT_FALSE(two[0].Bounded) << "nobody knows what fell between the two";
  EXPECT_EQ(two[1].Peak, 36);
  EXPECT_EQ(stormsOf(1, rows).size(), 3U) << "an hour without rain ends a storm";
  EXPECT_EQ(stormsOf(240, rows).size(), 1U);
  EXPECT_LT(stormsOf(240, rows)[0].Covered, 0.2);
  const auto trembling =
      stormsOf(6, {Row(ten, 420, 0.01), Row(ten + 25200, 10, 1), Row(ten + 25800, 60, 0.01),
                   Row(ten + 29400, 10, 1), Row(ten + 30000, 600, 0.5)});
  ASSERT_EQ(trembling.size(), 1U);
  EXPECT_EQ(trembling[0].Start, ten + 25200) << "a pen that trembles in dry hours begins no storm";
  EXPECT_EQ(trembling[0].End, ten + 30000);
  EXPECT_EQ(trembling[0].Depth, 2.01);
}

}  // namespace
}  // namespace hyetex::test
