#include "database/conversion/populate_choice.h"

#include <gtest/gtest.h>

namespace hyetex::test {
namespace {

TEST(PopulateChoice, ReadsNumbersLenientlyAndHoursAsDays) {
  const ComputationVariables all = ReadComputation(true, "7.5 min", "2", true);
  EXPECT_TRUE(all.UseAlpha && all.DefaultDepthManual);
  EXPECT_EQ(all.MinimalLapse, 7.5F);
  EXPECT_EQ(all.GmtShift, 2.0F / 24);
  EXPECT_EQ(ReadComputation(false, "", "-5.5", false).GmtShift, -5.5F / 24);
  EXPECT_EQ(ReadComputation(false, "", "east", false).MinimalLapse, 0);
}

TEST(PopulateChoice, SortsDatesAsDatesAndNumbersAsNumbers) {
  // As texts, most of the first would stand behind those of the second.
  const PopulateRow first{.Start = 36000,
                          .End = 36010,
                          .Cells = {"31/01/98", "30/04/98", "9.5", "2.5", "None", "Unknown", "Digitized"}};
  const PopulateRow second{.Start = 36005,
                           .End = 36020,
                           .Cells = {"01/02/98", "01/05/98", "10.1", "12", "-0.5", "Acceptable", "Manual"}};
  for (int column = 0; column < PopulateColumns; ++column) {
    SCOPED_TRACE(PopulateTitles[static_cast<std::size_t>(column)]);
    EXPECT_EQ(StandsBefore(first, second, column), column != 5);
    EXPECT_EQ(StandsBefore(second, first, column), column == 5);
    EXPECT_FALSE(StandsBefore(first, first, column));
  }
}

}  // namespace
}  // namespace hyetex::test
