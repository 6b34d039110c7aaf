// A drawn scan of a known day traces itself, or says what it is not sure of.
#include "scan/scan_trace.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <opencv2/core.hpp>

#include "core/geometry.h"
#include "digitizing/action_machine.h"
#include "drawn_sheets.h"
#include "scan/lattice.h"
#include "scan/trace_steps.h"
#include "scans/scan_file.h"
#include "support.h"

namespace hyetex {
namespace {

using test::DayOf;
using test::Sheets;
using test::TempFolder;
using ::testing::HasSubstr;

TEST(Lattice, LiesOnTheGridOfATiltedWarpedOrTurnedSheet) {
  Sheets sheets;
  struct {
    const char* Damage;
    int Quarters;
  } const cases[] = {{"", 0}, {"tilt=0.8,shear=0.6,shrink=0.7,warp=0.3", 0}, {"tilt=0.2", 1}, {"", 2}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.Damage + std::to_string(c.Quarters));
    const ScanImage image = sheets.Draw(c.Damage, c.Quarters);
    const auto lattice = Lattice::Find(image, {sheets.Line.Paper, 7, 12});
    ASSERT_TRUE(lattice) << lattice.error();
    // Where the first hour is not sure, a whole hour may be off, and is told.
    const double off = lattice->ToPaper(sheets.Drawn->PlaceOf(6, 40)).x - 6 * 16.1;
    const double hours = std::round(off / 16.1);
    EXPECT_TRUE(hours == 0 || !lattice->Doubts().empty());
    for (const double hour : {0.0, 3.5, 6.0, 11.5})
      for (const double height : {0.0, 40.0, 80.0}) {
        const cv::Point2d away =
            lattice->ToImage({(hour + hours) * 16.1, height}) - sheets.Drawn->PlaceOf(hour, height);
        EXPECT_LT(std::hypot(away.x, away.y) / lattice->PixelsPerMm(), 0.45)
            << hour << " h, " << height << " mm";
        const cv::Point2d there = lattice->ToPaper(lattice->ToImage({hour * 16.1, height}));
        EXPECT_NEAR(there.x, hour * 16.1, 1e-3);
        EXPECT_NEAR(there.y, height, 1e-3);
      }
  }
}

TEST(ScanTrace, GivesTheRainAndTheEmptyingsOfADrawnDay) {
  Sheets sheets;
  const double rain = sheets.Line.Points.back().Rain;
  std::vector<double> falls;
  for (const PenPoint& point : sheets.Line.Points)
    if (point.Step == PenStep::Drop) falls.push_back(point.Hours);
  ASSERT_EQ(falls.size(), 2U);
  for (const char* damage : {"", "tilt=0.5,shrink=0.5", "grey,jpeg=0.5", "stains=0.4,tint=0.5,holes=0.5"}) {
    SCOPED_TRACE(damage);
    const ScanTrace trace = TraceScan(sheets.Draw(damage), sheets.Wish());
    ASSERT_NE(trace.Verdict, TraceVerdict::NotTraced) << trace.Doubts.front().Why;
    const bool clean = trace.Verdict == TraceVerdict::Clean;
    EXPECT_NEAR(trace.RainMm, rain, (clean ? 0.01 : 0.03) * rain) << VerdictText(trace.Verdict);
    ASSERT_EQ(trace.EmptyingHours.size(), falls.size());
    for (std::size_t i = 0; i < falls.size(); ++i) EXPECT_NEAR(trace.EmptyingHours[i], falls[i], 0.025);
  }
}

// 21 mm within some minutes: limbs and falls that stand as close as the pen is wide.
TEST(ScanTrace, IsNotSilentlyWrongAboutACloudburst) {
  for (const double minutes : {4.0, 9.0}) {
    SCOPED_TRACE(minutes);
    Sheets sheets;
    sheets.Line = DayOf({{0, 0}, {3, 2}, {5, 2}, {5 + minutes / 60, 23}, {9, 24}, {12, 24}});
    const ScanTrace trace = TraceScan(sheets.Draw(""), sheets.Wish());
    ASSERT_NE(trace.Verdict, TraceVerdict::NotTraced);
    const bool told = std::any_of(trace.Doubts.begin(), trace.Doubts.end(), [](const TraceDoubt& doubt) {
      return doubt.What != TraceDoubt::Kind::Chart && doubt.FromHour < 5.2 && doubt.ToHour > 4.9;
    });
    const bool right = std::abs(trace.RainMm - 24) < 0.02 * 24 && trace.EmptyingHours.size() == 2;
    EXPECT_TRUE(told || right) << trace.RainMm << " mm, " << trace.EmptyingHours.size() << " emptyings";
    EXPECT_NEAR(trace.RainMm, 24, 11) << "no emptying more or less than one";
  }
}

// A sheet that was left on the drum: the second turn goes on as high as the first one ended.
TEST(ScanTrace, TellsTwoLinesOnOneSheetApartWhenAsked) {
  const PenLine both = WithStepsWithin(
      DayOf({{0, 0}, {2, 1}, {5, 4}, {6, 14}, {9, 15}, {12, 15}, {16, 15}, {18, 21}, {22, 22}, {24, 22}}), 1);
  Sheets first, second;
  first.Line.Points.clear();
  second.Line.Points.clear();
  for (PenPoint point : both.Points) {
    Sheets& turn = point.Hours < 12 ? first : second;
    if (point.Hours >= 12) point.Hours -= 12;
    turn.Line.Points.push_back(point);
  }
  const double firstRain = first.Line.Points.back().Rain, secondRain = both.Points.back().Rain - firstRain;
  first.Draw("");
  second.Draw("");
  cv::Mat sheet;
  cv::min(first.Drawn->Image, second.Drawn->Image, sheet);
  const std::string path = first.Folder / "both.png";
  test::WriteFile(path, *EncodeScan(sheet, path, std::nullopt, 92));
  const ScanImage image = *ScanImage::Open(path);
  TraceWish wish = first.Wish();
  EXPECT_NE(TraceScan(image, wish).Verdict, TraceVerdict::Clean);
  wish.Line = 1;
  EXPECT_NEAR(TraceScan(image, wish).RainMm, firstRain, 0.02 * firstRain);
  wish.Line = 2;
  const ScanTrace other = TraceScan(image, wish);
  EXPECT_NEAR(other.RainMm, secondRain, 0.03 * secondRain);
  EXPECT_EQ(other.Verdict, TraceVerdict::ToReview);

  const ScanTrace alone = TraceScan(first.Draw(""), wish);
  EXPECT_EQ(alone.Verdict, TraceVerdict::NotTraced);
  EXPECT_THAT(alone.Doubts.front().Why, HasSubstr("one line"));
}

TEST(ScanTrace, GoesTheRoadOfEveryChart) {
  Sheets sheets;
  const ScanImage image = sheets.Draw("tilt=0.3");
  const TraceWish wish = sheets.Wish();
  const auto tracer = ScanTracer::Open(image, wish);
  ASSERT_TRUE(tracer) << tracer.error();
  const ScanTrace trace = tracer->Trace();
  const auto steps = StepsOfTrace(trace, *tracer, image, wish);
  ASSERT_TRUE(steps) << steps.error();
  const Journal journal = ReadJournal(JournalOfTrace(*steps, trace));
  ASSERT_FALSE(journal.Error);
  Session session(TabletTypes()[ScanTablet].Extents, wish.Paper, {});
  SilentView view;
  ActionMachine machine(session, TabletTypes()[ScanTablet], view);
  machine.Start();
  ASSERT_TRUE(Replay(journal, machine));
  EXPECT_NEAR(session.TotalDepth(session.Line.LastPoint()), trace.RainMm, 0.1);
  EXPECT_NEAR(session.Line.TimeTo(session.Line.LastPoint()) * 24, 12, 0.03);

  // The line between two of its places, as an operator gives them.
  const double from = 4.52, to = 4.65;
  const auto height = [&](double hour) {
    for (std::size_t i = 1; i < trace.Points.size(); ++i) {
      const double a = trace.Points[i - 1].AlongMm / 16.1, b = trace.Points[i].AlongMm / 16.1;
      if (b >= hour && b > a)
        return std::lerp(trace.Points[i - 1].HeightMm, trace.Points[i].HeightMm, (hour - a) / (b - a));
    }
    return 0.0;
  };
  const ScanTrace again = tracer->Between(from, height(from), to, height(to));
  ASSERT_GE(again.Points.size(), 2U);
  EXPECT_NEAR(again.Points.front().HeightMm, height(from), 0.4);
  EXPECT_NEAR(again.Points.back().HeightMm, height(to), 0.4);
  EXPECT_NEAR(again.RainMm, (height(to) - height(from)) * 0.125, 0.15);
}

TEST(ScanTrace, SaysInWordsWhatIsNoChartOfThisKind) {
  Sheets sheets;
  const auto open = [&](const cv::Mat& image) {
    const std::string path = sheets.Folder / "other.png";
    test::WriteFile(path, *EncodeScan(image, path, 170));
    return *ScanImage::Open(path);
  };
  const auto trace = [&](const cv::Mat& image, const TraceWish& wish) {
    const ScanTrace told = TraceScan(open(image), wish);
    EXPECT_EQ(told.Verdict, TraceVerdict::NotTraced);
    EXPECT_TRUE(told.Points.empty());
    return told.Doubts.empty() ? std::string() : told.Doubts.front().Why;
  };
  cv::Mat noise(700, 2800, CV_8UC1);
  cv::theRNG().state = 7;
  cv::randu(noise, 0, 255);
  EXPECT_THAT(trace(noise, sheets.Wish()), HasSubstr("no printed grid"));
  EXPECT_THAT(trace(cv::Mat(600, 2400, CV_8UC1, cv::Scalar(250)), sheets.Wish()),
              HasSubstr("no printed grid"));

  sheets.Draw("");
  TraceWish week = sheets.Wish();
  week.Paper.TimeScale = 0.5F;
  week.Hours = 168;
  // Its lines are taken for those of the other type, at a scale that the file contradicts.
  const ScanTrace other = TraceScan(open(sheets.Drawn->Image), week);
  EXPECT_NE(other.Verdict, TraceVerdict::Clean);
  ASSERT_FALSE(other.Doubts.empty());
  EXPECT_THAT(other.Doubts.front().Why, ::testing::AnyOf(HasSubstr("dpi"), HasSubstr("mm high")));
  TraceWish arc = sheets.Wish();
  arc.Paper.ChartMethod = 1;
  EXPECT_THAT(trace(sheets.Drawn->Image, arc), HasSubstr("arc is none"));
}

TEST(ScanTrace, DoubtsADepthThatIsKnownOtherwiseAndInkThatIsMissing) {
  Sheets sheets;
  TraceWish wish = sheets.Wish();
  wish.GageDepth = static_cast<float>(1.2 * sheets.Line.Points.back().Rain);
  const ScanTrace off = TraceScan(sheets.Draw(""), wish);
  EXPECT_EQ(off.Verdict, TraceVerdict::ToReview);
  ASSERT_FALSE(off.Doubts.empty());
  EXPECT_THAT(off.Doubts.front().Why, HasSubstr("the gage gave"));

  const ScanTrace gaps = TraceScan(sheets.Draw("gaps=1"), sheets.Wish());
  EXPECT_NE(gaps.Verdict, TraceVerdict::Clean);
  EXPECT_FALSE(gaps.Doubts.empty());
}

}  // namespace
}  // namespace hyetex
