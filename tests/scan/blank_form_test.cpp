// What the charts of a box have in common is print, and so no ink of a pen.
#include "scan/blank_form.h"

#include <gmock/gmock.h>

#include <clocale>
#include <opencv2/core.hpp>

#include "drawn_sheets.h"
#include "scan/ink.h"
#include "scan/scan_trace.h"

namespace hyetex {
namespace {

using ::testing::HasSubstr;

std::vector<FormSheet> SixDays(const char* damage) {
  std::vector<FormSheet> days;
  for (int day = 0; day < 6; ++day) {
    test::Sheets sheets;
    sheets.Line = test::DayOf({{0, 0}, {1.0 + day, 0}, {2.0 + day, 3.0 + 2 * day}, {12, 4.0 + 2 * day}});
    auto sheet = SheetForForm(sheets.Draw(damage), sheets.Wish());
    if (sheet) days.push_back(*std::move(sheet));
  }
  return days;
}

double InkOver(const FormSheet& sheet, const PenInk& ink, double fromMm) {
  return cv::sum(ink.Raw.rowRange(0, static_cast<int>(sheet.Flat.Row(fromMm))))[0];
}

TEST(BlankForm, LeavesThePensLineAndTakesTheNumbers) {
  const std::vector<FormSheet> days = SixDays("grey");
  ASSERT_GE(days.size(), BlankForm::FewestSheets);
  const auto form = BlankForm::Of(days);
  ASSERT_TRUE(form) << form.error();
  // Numbers stand over the band up to its top, the pen of these days stays below.
  const FormSheet& day = days[1];
  const PenInk before = FindPenInk(day.Flat), after = FindPenInk(day.Flat, form->On(day));
  EXPECT_LT(InkOver(day, after, 60), 0.35 * InkOver(day, before, 60));
  const auto row = [&](double mm) { return static_cast<int>(day.Flat.Row(mm)); };
  const auto line = [&](const PenInk& ink) {
    return cv::sum(ink.Raw(cv::Range(row(50), row(46)), cv::Range(ink.Raw.cols / 2, ink.Raw.cols - 60)))[0];
  };
  EXPECT_GT(line(before), 0);
  EXPECT_GT(line(after), 0.85 * line(before));
}

TEST(BlankForm, IsKeptInAFileAndRefusesWhatIsNone) {
  test::Sheets sheets;
  const auto sheet = SheetForForm(sheets.Draw(""), sheets.Wish());
  ASSERT_TRUE(sheet) << sheet.error();
  EXPECT_FALSE(BlankForm::Of(std::vector<FormSheet>(4, *sheet)));
  const BlankForm form = BlankForm::OfBlank(*sheet);
  const std::string locale = std::setlocale(LC_NUMERIC, nullptr);
  std::setlocale(LC_NUMERIC, "de_DE.UTF-8");  // where the machine has it: the desk's numbers have commas
  const auto bytes = form.Bytes();
  ASSERT_TRUE(bytes);
  const auto again = BlankForm::Read(*bytes);
  std::setlocale(LC_NUMERIC, locale.c_str());
  ASSERT_TRUE(again) << again.error();
  EXPECT_EQ(cv::norm(form.On(*sheet), again->On(*sheet), cv::NORM_INF), 0);
  for (const std::string& damaged :
       {std::string(), bytes->substr(0, 30), bytes->substr(0, bytes->size() / 2), "x" + *bytes}) {
    const auto none = BlankForm::Read(damaged);
    EXPECT_TRUE(!none || !none->On(*sheet).empty());
  }
  EXPECT_FALSE(BlankForm::Read("hyetex blank form 1 3 1e9\nx"));
  EXPECT_THAT(BlankFormPath("/p", "Täg \"end\"/a"), HasSubstr("FORMS/T%C3%A4g %22end%22%2Fa.form"));

  // A chart of another hour finds its own part, and bare paper beyond.
  FormSheet later = *sheet;
  later.StartMm += 100;
  const cv::Mat print = form.On(later);
  EXPECT_EQ(cv::mean(print.colRange(print.cols - 700, print.cols))[0], 255);
  EXPECT_LT(cv::mean(print.colRange(0, 500))[0], 250);
}

}  // namespace
}  // namespace hyetex
