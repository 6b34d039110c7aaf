#include "scan/scan_scale.h"

#include <gmock/gmock.h>

#include <cmath>

#include "support.h"

namespace hyetex {
namespace {

using test::TempFolder;
using ::testing::HasSubstr;
using Source = ScanScale::Source;

TEST(ScanScaleRules, MeasureByMarksAndByThePaper) {
  const auto marks = ScaleByMarks(100, 200, 100 + 300 / 25.4 * 120, 200 + 300 / 25.4 * 160, 200);
  ASSERT_TRUE(marks) << marks.error();
  EXPECT_DOUBLE_EQ(marks->PixelsPerMm, 300 / 25.4);
  EXPECT_EQ(ScaleText(*marks), "300 dpi by two marks 200 mm apart");
  const auto paper = ScaleByPaperWidth(4030, 442.5);
  EXPECT_EQ(ScaleText(*paper), "231.3 dpi by a paper 442.5 mm wide");
  EXPECT_EQ(ScaleText({Source::Resolution, 11811 / 1000.0}), "300 dpi by the file");

  EXPECT_THAT(ScaleByMarks(1, 1, 30, 30, 200).error(), HasSubstr("too close"));
  for (const double mm : {0.0, -5.0, std::nan(""), 1e30, 1e-9})
    EXPECT_THAT(ScaleByMarks(0, 0, 900, 0, mm).error(), HasSubstr("millimetres")) << mm;
  EXPECT_THAT(ScaleByMarks(0, std::nan(""), 900, 0, 100).error(), HasSubstr("too close"));
  EXPECT_THAT(ScaleByPaperWidth(100, 442).error(), HasSubstr("5.7 dpi, which no scanner has (40 to 4800)"));
}

TEST(ScanScaleRules, AreRememberedForEachChartType) {
  const TempFolder folder;
  const std::vector<std::string> names{"Daily",
                                       "end",
                                       "\"Daily\" 1",
                                       "W\xc3\xa4"
                                       "chter: 7 Tage",
                                       "W\xc4",
                                       "marks 1 2 3 x",
                                       " Daily "};
  double pixels = 5.1;
  for (const std::string& name : names) {
    EXPECT_EQ(RememberedScale(folder.Path(), name), std::nullopt);
    EXPECT_TRUE(RememberScale(folder.Path(), name, {Source::Marks, pixels += 1.1, 200.5, 11.811}));
  }
  pixels = 5.1;
  for (const std::string& name : names)
    EXPECT_EQ(RememberedScale(folder.Path(), name), (ScanScale{Source::Marks, pixels += 1.1, 200.5, 11.811}))
        << name;
  // The last one counts; lines that say nothing to us stay and do no harm.
  test::WriteFile(folder / "Scans.dat",
                  "a note\r\nmarks 1e999 3 4 Daily\nwidth 0 3 4 Daily\nwidth 9 nan 4 Daily\n\xff\n" +
                      test::ReadFile(folder / "Scans.dat"));
  EXPECT_TRUE(RememberScale(folder.Path(), "Daily", {Source::PaperWidth, 9, 442}));
  EXPECT_EQ(RememberedScale(folder.Path(), "Daily"), (ScanScale{Source::PaperWidth, 9, 442}));
  EXPECT_THAT(test::ReadFile(folder / "Scans.dat"), HasSubstr("a note\r\n"));
  EXPECT_NE(RememberedScale(folder.Path(), "end"), std::nullopt);

  EXPECT_FALSE(RememberScale(folder.Path(), "Two\nlines", {Source::Marks, 9, 200}));
  EXPECT_FALSE(RememberScale(folder.Path(), "Daily", {Source::Marks, std::nan(""), 200}));
  EXPECT_FALSE(RememberScale(folder / "missing", "Daily", {Source::Marks, 9, 200}));
  EXPECT_EQ(RememberedScale(folder / "missing", "Daily"), std::nullopt);
}

TEST(ScanScaleRules, CarryOverToTheNextScan) {
  ScanFacts at300, at600, unknown;
  at300.Width = at600.Width = unknown.Width = 4000;
  at300.PixelsPerMm = 300 / 25.4;
  at600.PixelsPerMm = 600 / 25.4;
  EXPECT_EQ(InitialScale({}, at300), (ScanScale{Source::Resolution, 300 / 25.4, 0, 300 / 25.4}));
  EXPECT_EQ(InitialScale({}, unknown), std::nullopt);
  // A scanner that gives 297 dpi for 300 gives 594 for 600; of one that does not say, nothing follows.
  const ScanScale marks{Source::Marks, 297 / 25.4, 200, 300 / 25.4};
  EXPECT_DOUBLE_EQ(InitialScale(marks, at600)->PixelsPerMm, 594 / 25.4);
  EXPECT_EQ(InitialScale(marks, at600)->Mm, 200);
  EXPECT_EQ(InitialScale(marks, unknown), std::nullopt);
  EXPECT_EQ(InitialScale(ScanScale{Source::Marks, 11, 200}, at300), std::nullopt);
  EXPECT_DOUBLE_EQ(InitialScale(ScanScale{Source::PaperWidth, 9, 442}, unknown)->PixelsPerMm, 4000 / 442.0);
}

}  // namespace
}  // namespace hyetex
