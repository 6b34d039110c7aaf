#include "chartfiles/chart_report.h"

#include <cmath>

#include "plain_session.h"
#include "support.h"

namespace hyetex::test {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

// Ten days from 01/05/98 with a trace that says `days`, and 12 mm of rain.
Session TenDays(double days) {
  ChartRecord chart;
  chart.StartTime = MakeDate(1998, 5, 1);
  chart.EndTime = MakeDate(1998, 5, 11);
  chart.EyedDepth = 10;
  chart.ManualDepth = 10.25F;
  Session session = PlainSession(chart);
  session.Line.Add(50, 0);
  session.Line.Add(52, 12);
  session.Line.Add(52, 8, false, "CODE202");
  session.Line.Add(50 + days, 8);
  return session;
}

TEST(ChartReport, RoundsFactorsToTheEvenPercent) {
  ChartReport report;
  WriteReport(TenDays(9), report);
  EXPECT_THAT(report.Text,
              HasSubstr("Difference = -2 mm , -20%\r\n\r\nEyed chart depth = 10 mm\r\n"
                        "Manual gage depth = 10.25 mm\r\nDifference = -0.25 mm , -2.5%\r\n\r\n"));
  EXPECT_THAT(report.Factors, ::testing::ElementsAre(-20, -2, 10, 0));
  EXPECT_THAT(report.Captions,
              ::testing::ElementsAre("Digitized Rain Factor = -20%", "Manual Rain Factor = -2%",
                                     "Time Length Factor = 10%"));
  Session session = TenDays(9);
  session.Chart.ManualDepth = NoDepth;  // what was found of a manual depth stays while there is none
  WriteReport(session, report);
  EXPECT_THAT(report.Text, Not(HasSubstr("Manual")));
  EXPECT_EQ(report.Factors[1], -2);
  EXPECT_EQ(report.Captions[1], "Manual Rain Factor = -2%");
}

TEST(ChartReport, TellsHowFarTheEndsLieApart) {
  struct {
    double Days;
    const char *Line, *Caption;
    bool Attention;
  } const cases[] = {{9, "Difference: 1 day and 00:00:00 , 10%\r\n", "= 10%", false},  // no more than 10%
                     {10, "Difference: 00:00:00 , 0%\r\n", "= 0%", false},
                     {10.75, "Difference: 18:00:00 , 7.5%\r\n", "= -8%", false},  // -7.5: to the even -8
                     {8.5, "Difference: 1 day and 12:00:00 , 15%\r\n", "= 15%", true},
                     {12.25, "Difference: 2 days and 06:00:00 , 22.5%\r\n", "= -22%", true},
                     {9 - 1 / 64., "Difference: 1 day and 00:22:30 , 10.2%\r\n", "= 10%", true}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Line);
    ChartReport report;
    WriteReport(TenDays(c.Days), report);
    EXPECT_THAT(report.Text, HasSubstr(c.Line));
    EXPECT_THAT(report.Captions[2], EndsWith(c.Caption));
    EXPECT_EQ(
        report.Text.find("Attention: The difference between the user's defined time and the calculated time "
                         "is greater than 10%\r\n") != std::string::npos,
        c.Attention);
  }
}

TEST(ChartReport, LeavesOutPercentagesThatHaveNoSense) {
  for (const float eyed : {0.0F, NoDepth}) {
    Session session = TenDays(9);
    session.Chart.EyedDepth = eyed;
    session.Chart.EndTime = session.Chart.StartTime;
    ChartReport report;
    WriteReport(session, report);
    EXPECT_THAT(report.Text, HasSubstr("Difference: 9 days and 00:00:00\r\n"));
    EXPECT_THAT(report.Text, Not(HasSubstr("%")));
    EXPECT_THAT(report.Text,
                HasSubstr(eyed == NoDepth ? "Difference = unknown\r\n" : "Difference = -12 mm\r\n"));
    EXPECT_THAT(report.Factors, ::testing::Each(0));
  }
}

TEST(ChartReport, MeasuresAlphaOnThePaperItLiesOn) {
  Session session = TenDays(9);
  session.Line.AttachPaper(0, 0, 400, 300);  // tan = 0.75
  session.Line.AddFirstOfPaper(100, 200);
  session.Line.Add(101, 190, false, "CODE202");  // 0.1; so (0.75 + 0.1) / (1 - 0.075)
  session.Line.Add(101, 190, false, "CODE202");
  ChartReport report;
  WriteReport(session, report);
  EXPECT_THAT(report.Text, HasSubstr("Alpha 1 = 0\r\nAlpha 2 = 0.92\r\nAlpha 3 = none\r\n\r\n"));
}

TEST(FactorAlert, ToleranceFallsWithTheValue) {
  struct {
    Factor Kind;
    float Limits[3], Shares[4];  // the share below each limit, and from the last one on
  } const cases[] = {{Factor::Digitized, {5, 10, 15}, {0.10F, 0.08F, 0.06F, 0.05F}},
                     {Factor::Manual, {5, 10, 15}, {0.10F, 0.08F, 0.06F, 0.05F}},
                     {Factor::Time, {0.5F, 0.8F, 1}, {0.10F, 0.08F, 0.07F, 0.06F}}};
  const auto expectShare = [](Factor kind, float value, float share) {
    EXPECT_FALSE(FactorAlert(-share, value, kind)) << value;
    EXPECT_TRUE(FactorAlert(-std::nextafter(share, 1.0F), value, kind)) << value;
    EXPECT_TRUE(FactorAlert(std::nextafter(share, 1.0F), value, kind)) << value;
  };
  for (const auto& c : cases)
    for (int i = 0; i < 3; ++i) {
      expectShare(c.Kind, std::nextafter(c.Limits[i], 0.0F), c.Shares[i]);
      expectShare(c.Kind, c.Limits[i], c.Shares[i + 1]);
    }
}

}  // namespace
}  // namespace hyetex::test
