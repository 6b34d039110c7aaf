// The numbers above the band, by their width alone, tell which line is which hour.
#include "scan/hour_labels.h"

#include <gtest/gtest.h>

namespace hyetex {
namespace {

// The labels of a form that prints `hours` hours from the `first` one on; the first line is number 3.
std::vector<LabelWidth> Form(int first, int hours, bool midnightIsWide = true) {
  std::vector<LabelWidth> labels;
  for (int i = 0; i < hours; ++i) {
    const int hour = (first + i) % 24;
    const bool wide = hour == 0 ? midnightIsWide : hour >= 10;
    labels.push_back({3.0 + i, (wide ? 20.0 : 5.0) + (i * 7) % 4});
  }
  return labels;
}

TEST(HourLabels, TellWhichOfSeveralLinesIsTheStart) {
  for (const bool midnightIsWide : {true, false}) {
    // From 6 to 8 of the next day: a page from 7 to 7 fits at three places.
    const auto labels = Form(6, 27, midnightIsWide);
    const std::vector<double> starts{3, 5, 4};
    EXPECT_EQ(StartByLabels(labels, starts, 7).Start, 2U);
    EXPECT_TRUE(StartByLabels(labels, starts, 7).Against) << "line 3 stands for 6 o'clock";
    // The page may begin between two hours.
    EXPECT_EQ(StartByLabels(labels, std::vector<double>{3.5, 4.5}, 7.5).Start, 1U);
  }
}

TEST(HourLabels, BearABlotAndALostNumber) {
  auto labels = Form(6, 27);
  labels[9].Width = 3;  // of two digits
  labels.erase(labels.begin() + 2);
  EXPECT_EQ(StartByLabels(labels, std::vector<double>{3, 4, 5}, 7).Start, 1U);
}

TEST(HourLabels, DoNotTellWhatTheyCannot) {
  const std::vector<double> starts{3, 4};
  const auto told = [&](const std::vector<LabelWidth>& labels) { return StartByLabels(labels, starts, 7); };
  EXPECT_FALSE(told(Form(10, 14)).Start) << "all of two digits";
  EXPECT_FALSE(told(Form(7, 12)).Start) << "one change, which a blot may have moved";
  EXPECT_FALSE(told(Form(6, 9)).Start) << "too few";
  EXPECT_FALSE(told({}).Start);
  // Numbers of quite another hour are no proof for the nearest.
  const LabelledStart other = told(Form(1, 27));
  EXPECT_FALSE(other.Start);
  EXPECT_TRUE(other.Against);
}

}  // namespace
}  // namespace hyetex
